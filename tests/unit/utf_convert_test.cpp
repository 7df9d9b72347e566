// UTF-8 to UTF-16 and back, against converters written from the rules in another way.
#include <limits.h>

#include "string/utf8.h"
#include "test_support.h"

namespace {

using test::Arena;
using test::kPlacements;
using test::Placed;
using test::Random;

using Bytes = std::vector<Zel8u>;
using Units = std::vector<Zel16u>;

// ---- The rules ----

// A sequence's number of bytes and value by its lead byte alone: a table of bit patterns.
struct Lead {
    int mask, bits, length, least;
};
constexpr Lead kLeads[] = {
    {0x80, 0x00, 1, 0},       {0xE0, 0xC0, 2, 0x80},     {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000}, {0xFC, 0xF8, 5, 0x200000}, {0xFE, 0xFC, 6, 0x4000000},
};

// One character of well-formed or other text: its value and the bytes it takes.
std::pair<int, int> decodeOne(const Zel8u* p) {
    for (const Lead& lead : kLeads) {
        if ((*p & lead.mask) != lead.bits) continue;
        int value = *p & ~lead.mask;
        for (int i = 1; i < lead.length; ++i) {
            if (p[i] < 0x80 || p[i] > 0xBF) return {*p, 1};
            value = value * 64 + (p[i] - 0x80);
        }
        if (value < lead.least) return {*p, 1};
        return {value, lead.length};
    }
    return {*p, 1};
}

Bytes encode(long value) {
    for (const Lead& lead : kLeads) {
        const long most = lead.length == 1 ? 0x7F : (1L << (5 * lead.length + 1)) - 1;
        if (value > most) continue;
        Bytes bytes(static_cast<size_t>(lead.length));
        for (size_t i = bytes.size(); --i > 0; value /= 64) {
            bytes[i] = static_cast<Zel8u>(0x80 + value % 64);
        }
        bytes[0] = static_cast<Zel8u>(lead.bits + value);
        return bytes;
    }
    return {};
}

struct Result {
    int consumed;
    int written;

    bool operator==(const Result&) const = default;
};

void PrintTo(const Result& r, std::ostream* os) {
    *os << r.consumed << " consumed, " << r.written << " written";
}

// The units that the first `len` bytes become. A byte that continues no sequence stands behind
// them.
Result expected8u16u(const Zel8u* src, int len, int room, bool swap, Units& out) {
    out.clear();
    int at = 0;
    while (at != len && static_cast<int>(out.size()) != room) {
        const auto [value, length] = decodeOne(src + at);
        at += length;
        if (value < 0x10000) {
            out.push_back(static_cast<Zel16u>(swap ? (value & 0xFF) << 8 : value));
            continue;
        }
        // Only 20 bits have a place in a pair.
        const int offset = (value - 0x10000) & 0xFFFFF;
        const Zel16u high = static_cast<Zel16u>(0xD800 + offset / 0x400);
        const Zel16u low = static_cast<Zel16u>(0xDC00 + offset % 0x400);
        out.push_back(swap ? low : high);
        out.push_back(swap ? high : low);
    }
    return {at, static_cast<int>(out.size())};
}

Result expected16u8u(const Units& src, int room, bool swap, Bytes& out) {
    out.clear();
    size_t at = 0;
    const auto unit = [&](size_t i) { return swap ? src[i] >> 8 | (src[i] & 0xFF) << 8 : src[i]; };
    while (at < src.size()) {
        long value = unit(at);
        size_t units = 1;
        if (value / 0x400 == 0x36 && at + 1 < src.size() && unit(at + 1) / 0x400 == 0x37) {
            value = 0x10000 + (value - 0xD800) * 0x400 + (unit(at + 1) - 0xDC00);
            units = 2;
        }
        const Bytes bytes = encode(value);
        if (out.size() + bytes.size() > static_cast<size_t>(room)) break;
        out.insert(out.end(), bytes.begin(), bytes.end());
        at += units;
    }
    return {static_cast<int>(at), static_cast<int>(out.size())};
}

// ---- The functions ----

struct To16 {
    Result result;
    Units units;
    bool operator==(const To16&) const = default;
};

To16 to16(const Bytes& src, int swap = 0, int room = 64) {
    Units dst(static_cast<size_t>(room) + 8, 0x7777);
    int srcLen = static_cast<int>(src.size()), dstLen = room;
    EXPECT_EQ(zelsConvertUTF_8u16u(src.data(), &srcLen, dst.data(), &dstLen, swap), zelStatusOk);
    for (size_t i = static_cast<size_t>(dstLen); i < dst.size(); ++i) EXPECT_EQ(dst[i], 0x7777);
    dst.resize(static_cast<size_t>(dstLen));
    return {{srcLen, dstLen}, dst};
}

struct To8 {
    Result result;
    Bytes bytes;
    bool operator==(const To8&) const = default;
};

To8 to8(const Units& src, int swap = 0, int room = 64) {
    Bytes dst(static_cast<size_t>(room) + 8, 0x77);
    int srcLen = static_cast<int>(src.size()), dstLen = room;
    EXPECT_EQ(zelsConvertUTF_16u8u(src.data(), &srcLen, dst.data(), &dstLen, swap), zelStatusOk);
    for (size_t i = static_cast<size_t>(dstLen); i < dst.size(); ++i) EXPECT_EQ(dst[i], 0x77);
    dst.resize(static_cast<size_t>(dstLen));
    return {{srcLen, dstLen}, dst};
}

#define EXPECT_TO16(src, consumed, ...)                               \
    do {                                                              \
        const To16 got = src;                                         \
        const Units units = __VA_ARGS__;                              \
        EXPECT_EQ(got.units, units);                                  \
        EXPECT_EQ(got.result, (Result{consumed, int(units.size())})); \
    } while (0)

#define EXPECT_TO8(src, consumed, ...)                                \
    do {                                                              \
        const To8 got = src;                                          \
        const Bytes bytes = __VA_ARGS__;                              \
        EXPECT_EQ(got.bytes, bytes);                                  \
        EXPECT_EQ(got.result, (Result{consumed, int(bytes.size())})); \
    } while (0)

TEST(Utf8Tables, AreIndexedByTheNumberOfContinuationBytes) {
    const int largest[] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    const int markers[] = {0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
    const int masks[] = {0xFF, 0x1F, 0x0F, 0x07, 0x03, 0x01};
    for (int k = 0; k < 6; ++k) {
        EXPECT_EQ(zel::UTF8_table1[k], largest[k]);
        EXPECT_EQ(zel::UTF8_table2[k], markers[k]);
        EXPECT_EQ(zel::UTF8_table3[k], masks[k]);
    }
}

TEST(ConvertUtf, NullPointersAreTheOnlyError) {
    const Zel8u src8[] = {'a'};
    const Zel16u src16[] = {'a'};
    Zel8u dst8[] = {9};
    Zel16u dst16[] = {9};
    int srcLen = 1, dstLen = 1;
    for (const int len : {1, 0, -1}) {
        srcLen = dstLen = len;
        EXPECT_EQ(zelsConvertUTF_8u16u(nullptr, &srcLen, dst16, &dstLen, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_8u16u(src8, nullptr, dst16, &dstLen, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_8u16u(src8, &srcLen, nullptr, &dstLen, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_8u16u(src8, &srcLen, dst16, nullptr, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_16u8u(nullptr, &srcLen, dst8, &dstLen, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_16u8u(src16, nullptr, dst8, &dstLen, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_16u8u(src16, &srcLen, nullptr, &dstLen, 0), zelStatusNullPointer);
        EXPECT_EQ(zelsConvertUTF_16u8u(src16, &srcLen, dst8, nullptr, 0), zelStatusNullPointer);
        EXPECT_EQ(srcLen, len);
        EXPECT_EQ(dstLen, len);
    }
    EXPECT_EQ(dst8[0], 9);
    EXPECT_EQ(dst16[0], 9);
}

TEST(ConvertUtf, AnEmptySourceSetsBothCountsToZero) {
    const Zel8u src8 = 'a';
    const Zel16u src16 = 'a';
    Zel8u dst8 = 9;
    Zel16u dst16 = 9;
    for (const int room : {5, 0, -5}) {
        int srcLen = 0, dstLen = room;
        EXPECT_EQ(zelsConvertUTF_8u16u(&src8, &srcLen, &dst16, &dstLen, 0), zelStatusOk);
        EXPECT_EQ(srcLen, 0);
        EXPECT_EQ(dstLen, 0);
        dstLen = room;
        EXPECT_EQ(zelsConvertUTF_16u8u(&src16, &srcLen, &dst8, &dstLen, 0), zelStatusOk);
        EXPECT_EQ(srcLen, 0);
        EXPECT_EQ(dstLen, 0);
    }
    EXPECT_EQ(dst8, 9);
    EXPECT_EQ(dst16, 9);
}

TEST(ConvertUtf, To16_WellFormedSequences) {
    EXPECT_TO16(to16({0x41}), 1, {0x0041});
    EXPECT_TO16(to16({0xC3, 0xA9}), 2, {0x00E9});
    EXPECT_TO16(to16({0xE4, 0xB8, 0xAD}), 3, {0x4E2D});
    EXPECT_TO16(to16({0xF0, 0x9F, 0x98, 0x80}), 4, {0xD83D, 0xDE00});
    EXPECT_TO16(to16({0xED, 0xA0, 0x80}), 3, {0xD800});  // an encoded surrogate
    EXPECT_TO16(to16({0xF4, 0x8F, 0xBF, 0xBF}), 4, {0xDBFF, 0xDFFF});
}

TEST(ConvertUtf, To16_ValuesAboveTheLastPlaneKeepTwentyBitsOfTheirOffset) {
    EXPECT_TO16(to16({0xF4, 0x90, 0x80, 0x80}), 4, {0xD800, 0xDC00});  // 0x110000
    EXPECT_TO16(to16({0xF8, 0x88, 0x80, 0x80, 0x81}), 5, {0xDBC0, 0xDC01});
    EXPECT_TO16(to16({0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}), 6, {0xDBBF, 0xDFFF});
}

TEST(ConvertUtf, To16_WhatIsMalformedPassesByteByByte) {
    EXPECT_TO16(to16({0xC0, 0x80}), 2, {0x00C0, 0x0080});  // an overlong zero
    EXPECT_TO16(to16({0xC1, 0xBF}), 2, {0x00C1, 0x00BF});
    EXPECT_TO16(to16({0xE0, 0x9F, 0xBF}), 3, {0x00E0, 0x009F, 0x00BF});
    EXPECT_TO16(to16({0xF8, 0x87, 0xBF, 0xBF, 0xBF}), 5, {0xF8, 0x87, 0xBF, 0xBF, 0xBF});
    EXPECT_TO16(to16({0x80}), 1, {0x0080});
    EXPECT_TO16(to16({0xFF}), 1, {0x00FF});
    EXPECT_TO16(to16({0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80}), 7,
                {0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80});
    EXPECT_TO16(to16({0xC3, 0x41}), 2, {0x00C3, 0x0041});
    EXPECT_TO16(to16({0xE4, 0xB8, 0x41}), 3, {0x00E4, 0x00B8, 0x0041});
    EXPECT_TO16(to16({0xC3, 0xC3, 0xA9}), 3, {0x00C3, 0x00E9});
}

TEST(ConvertUtf, To16_SwapBytesShiftsUnitsAndReversesPairs) {
    for (const int swap : {1, -1, 256, INT_MIN}) {
        EXPECT_TO16(to16({0x41}, swap), 1, {0x4100});
        EXPECT_TO16(to16({0xE4, 0xB8, 0xAD}, swap), 3, {0x2D00});
        EXPECT_TO16(to16({0xF0, 0x9F, 0x98, 0x80}, swap), 4, {0xDE00, 0xD83D});
        EXPECT_TO16(to16({0xFF}, swap), 1, {0xFF00});
    }
}

TEST(ConvertUtf, To16_StopsWhenTheRoomIsUsedUp) {
    EXPECT_TO16(to16({'a', 'b', 'c'}, 0, 2), 2, {'a', 'b'});
    EXPECT_TO16(to16({'a', 0xC3, 0xA9, 'c'}, 0, 2), 3, {'a', 0xE9});
    EXPECT_TO16(to16({'a', 'b', 'c'}, 0, 0), 0, {});
    EXPECT_TO16(to16({'a', 0xF0, 0x9F, 0x98, 0x80, 'b'}, 0, 3), 5, {'a', 0xD83D, 0xDE00});
}

TEST(ConvertUtf, To16_APairIntoOneUnitOfRoomRunsOnToTheEndOfTheSource) {
    const Bytes src = {'a', 0xF0, 0x9F, 0x98, 0x80, 'b', 'c'};
    Units dst(16, 0x7777);
    int srcLen = 7, dstLen = 2;
    EXPECT_EQ(zelsConvertUTF_8u16u(src.data(), &srcLen, dst.data(), &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 7);
    EXPECT_EQ(dstLen, 5);
    dst.resize(6);
    EXPECT_EQ(dst, (Units{'a', 0xD83D, 0xDE00, 'b', 'c', 0x7777}));
}

TEST(ConvertUtf, To16_ANegativeRoomRunsToTheEndOfTheSource) {
    for (const int room : {-1, INT_MIN}) {
        const Bytes src = {'a', 'b', 'c'};
        Units dst(8, 0x7777);
        int srcLen = 3, dstLen = room;
        EXPECT_EQ(zelsConvertUTF_8u16u(src.data(), &srcLen, dst.data(), &dstLen, 0), zelStatusOk);
        EXPECT_EQ(srcLen, 3);
        EXPECT_EQ(dstLen, 3);
        EXPECT_EQ(dst[3], 0x7777);
    }
}

TEST(ConvertUtf, To16_ASequenceIsReadPastTheEndAndRunsOnToTheEndOfTheRoom) {
    const Bytes src = {'a', 0xC3, 0xA9, 'b', 'c', 'd'};
    Units dst(8, 0x7777);
    int srcLen = 2, dstLen = 4;
    EXPECT_EQ(zelsConvertUTF_8u16u(src.data(), &srcLen, dst.data(), &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 5);
    EXPECT_EQ(dstLen, 4);
    dst.resize(5);
    EXPECT_EQ(dst, (Units{'a', 0x00E9, 'b', 'c', 0x7777}));
}

TEST(ConvertUtf, To16_ASequenceThatDoesNotGoOnBehindTheEndStaysInside) {
    const Bytes src = {'a', 0xE4, 0xB8, 'b'};
    Units dst(8, 0x7777);
    int srcLen = 3, dstLen = 8;
    EXPECT_EQ(zelsConvertUTF_8u16u(src.data(), &srcLen, dst.data(), &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 3);
    EXPECT_EQ(dstLen, 3);
    dst.resize(4);
    EXPECT_EQ(dst, (Units{'a', 0x00E4, 0x00B8, 0x7777}));
}

TEST(ConvertUtf, To8_UnitsAndPairs) {
    EXPECT_TO8(to8({0x0000}), 1, {0x00});
    EXPECT_TO8(to8({0x0041}), 1, {0x41});
    EXPECT_TO8(to8({0x007F, 0x0080}), 2, {0x7F, 0xC2, 0x80});
    EXPECT_TO8(to8({0x07FF, 0x0800}), 2, {0xDF, 0xBF, 0xE0, 0xA0, 0x80});
    EXPECT_TO8(to8({0xFFFF}), 1, {0xEF, 0xBF, 0xBF});
    EXPECT_TO8(to8({0xD83D, 0xDE00}), 2, {0xF0, 0x9F, 0x98, 0x80});
    EXPECT_TO8(to8({0xDBFF, 0xDFFF}), 2, {0xF4, 0x8F, 0xBF, 0xBF});
}

TEST(ConvertUtf, To8_ALoneSurrogateIsEncodedAsItStands) {
    EXPECT_TO8(to8({0xD800}), 1, {0xED, 0xA0, 0x80});
    EXPECT_TO8(to8({0xDC00, 0x0041}), 2, {0xED, 0xB0, 0x80, 0x41});
    EXPECT_TO8(to8({0xD83D, 0x0041}), 2, {0xED, 0xA0, 0xBD, 0x41});
    EXPECT_TO8(to8({0xD83D, 0xD83D, 0xDE00}), 3, {0xED, 0xA0, 0xBD, 0xF0, 0x9F, 0x98, 0x80});
    EXPECT_TO8(to8({0xDE00, 0xD83D}), 2, {0xED, 0xB8, 0x80, 0xED, 0xA0, 0xBD});
}

TEST(ConvertUtf, To8_SwapBytesSwapsEveryUnitFirst) {
    for (const int swap : {1, -1, 256, INT_MIN}) {
        EXPECT_TO8(to8({0x4100}, swap), 1, {0x41});
        EXPECT_TO8(to8({0x2D4E}, swap), 1, {0xE4, 0xB8, 0xAD});
        EXPECT_TO8(to8({0x3DD8, 0x00DE}, swap), 2, {0xF0, 0x9F, 0x98, 0x80});
    }
}

TEST(ConvertUtf, To8_StopsInFrontOfACharacterThatDoesNotFit) {
    EXPECT_TO8(to8({0x4E2D}, 0, 2), 0, {});
    EXPECT_TO8(to8({0x0041, 0x4E2D}, 0, 3), 1, {0x41});
    EXPECT_TO8(to8({0x0041, 0xD83D, 0xDE00}, 0, 4), 1, {0x41});
    EXPECT_TO8(to8({0x0041}, 0, 0), 0, {});
    const Zel16u src = 'a';
    Zel8u dst = 9;
    int srcLen = 1, dstLen = -5;
    EXPECT_EQ(zelsConvertUTF_16u8u(&src, &srcLen, &dst, &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 0);
    EXPECT_EQ(dstLen, 0);
    EXPECT_EQ(dst, 9);
}

TEST(ConvertUtf, To8_AHighSurrogateAtTheEndIsNotJoinedWithWhatFollows) {
    const Units src = {0xD83D, 0xDE00};
    Bytes dst(8, 0x77);
    int srcLen = 1, dstLen = 8;
    EXPECT_EQ(zelsConvertUTF_16u8u(src.data(), &srcLen, dst.data(), &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 1);
    EXPECT_EQ(dstLen, 3);
    EXPECT_EQ(dst[2], 0xBD);
}

TEST(ConvertUtf, EveryCodePointGoesThereAndBack) {
    for (int value = 0; value <= 0x10FFFF; ++value) {
        const Bytes bytes = encode(value);
        Zel16u units[2] = {};
        Zel8u back[4] = {};
        int consumed = static_cast<int>(bytes.size()), written = 2;
        ASSERT_EQ(zelsConvertUTF_8u16u(bytes.data(), &consumed, units, &written, 0), zelStatusOk);
        ASSERT_EQ(consumed, static_cast<int>(bytes.size()));
        ASSERT_EQ(written, value > 0xFFFF ? 2 : 1);
        int room = 4;
        ASSERT_EQ(zelsConvertUTF_16u8u(units, &written, back, &room, 0), zelStatusOk);
        ASSERT_EQ(Bytes(back, back + room), bytes) << value;
    }
}

TEST(ConvertUtf, To16_EveryPairOfBytesAndEveryThirdFollowsTheRule) {
    Units expected;
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            for (const int c : {0x00, 0x7F, 0x80, 0xBF, 0xC0, 0xFF}) {
                // Ends that no sequence passes over.
                const Bytes src = {Zel8u(a), Zel8u(b), Zel8u(c), 'x', 'y', 'z', 'u', 'v'};
                const Result want = expected8u16u(src.data(), 8, 64, false, expected);
                Zel16u dst[8];
                int srcLen = 8, dstLen = 8;
                zelsConvertUTF_8u16u(src.data(), &srcLen, dst, &dstLen, 0);
                ASSERT_EQ((Result{srcLen, dstLen}), want);
                ASSERT_EQ(Units(dst, dst + dstLen), expected) << a << ' ' << b << ' ' << c;
            }
        }
    }
}

// Text of characters of one to six bytes with some malformed bytes, that ends on a boundary.
Bytes randomUtf8(Random& random, int len, int kind) {
    Bytes text;
    while (static_cast<int>(text.size()) < len) {
        const int left = len - static_cast<int>(text.size());
        long value = random.below(0x80);
        switch (kind % 6) {
            case 0:
                break;
            case 1:
                value = random.below(0x800);
                break;
            case 2:
                value = 0x400 + random.below(0x60);
                break;
            case 3:
                value = 0x4E00 + random.below(0x5000);
                break;
            case 4:
                value = 0x1F300 + random.below(0x500);
                break;
            default:
                value = random.below(1 << (7 + random.below(24)));
        }
        const Bytes bytes = encode(value);
        const bool malformed = kind >= 6 && random.below(10) == 0;
        if (malformed) {
            text.push_back(static_cast<Zel8u>(0x80 + random.below(0x80)));
        } else if (static_cast<int>(bytes.size()) <= left) {
            text.insert(text.end(), bytes.begin(), bytes.end());
        } else {
            text.push_back('.');
        }
    }
    return text;
}

TEST(ConvertUtf, To16_AgreesWithTheRuleEverywhere) {
    const Arena<Zel8u> srcArena(1 << 17);
    const Arena<Zel16u> dstArena(1 << 17);
    Random random(29);
    Units expected, part;
    const auto check = [&](int len, int placement) {
        const int kind = (len + placement) % 12;
        Bytes text = randomUtf8(random, len, kind);
        // Malformed text may end in a sequence that is read further than the text goes; directly
        // before an inaccessible page it must not.
        if (kind >= 6 && len > 0 && placement == test::kBeforeGuard) text.back() = '.';
        const Placed<Zel8u> src = srcArena.place(text, placement, 'x');
        text.push_back('x');
        for (const bool swap : {false, true}) {
            const Result want = expected8u16u(text.data(), len, INT_MAX, swap, expected);
            // As much room as callers are told to give.
            const Placed<Zel16u> dst = dstArena.place(len, (placement * 7 + len) % kPlacements);
            int srcLen = len, dstLen = len;
            ASSERT_EQ(zelsConvertUTF_8u16u(src, &srcLen, dst, &dstLen, swap), zelStatusOk);
            ASSERT_EQ((Result{srcLen, dstLen}), want) << len << " at " << placement;
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));
            ASSERT_TRUE(dst.intactFrom(dstLen)) << len << " at " << placement;

            // A smaller room; where it would end inside a pair, it gets a unit more.
            int room = random.below(want.written + 1);
            Result wantPart = expected8u16u(text.data(), len, room, swap, part);
            if (wantPart.written > room) {
                ++room;
                wantPart = expected8u16u(text.data(), len, room, swap, part);
            }
            const Placed<Zel16u> small = dstArena.place(room, (placement * 3 + len) % kPlacements);
            srcLen = len;
            dstLen = room;
            ASSERT_EQ(zelsConvertUTF_8u16u(src, &srcLen, small, &dstLen, swap), zelStatusOk);
            ASSERT_EQ((Result{srcLen, dstLen}), wantPart) << len << " at " << placement;
            ASSERT_TRUE(std::equal(part.begin(), part.end(), small.begin()));
            ASSERT_TRUE(small.intact()) << len << " at " << placement;
        }
    };
    test::forEachPlacement(check);
    for (const int len : {4096, 65537, 100003}) {
        for (int kind = 0; kind < 12; ++kind) check(len, kind);
    }
}

// Ordinary text is converted in blocks: a defect anywhere in them must not change what the rule
// gives for the rest.
TEST(ConvertUtf, To16_OneStrayByteAnywhereFollowsTheRule) {
    const Arena<Zel8u> srcArena(1 << 12);
    Random random(37);
    Units expected;
    for (int kind = 0; kind < 6; ++kind) {
        const Bytes ordinary = randomUtf8(random, 200, kind);
        for (size_t at = 0; at < ordinary.size() - 8; ++at) {
            for (const int stray :
                 {0x41, 0x80, 0xC0, 0xC1, 0xD7, 0xE0, 0xED, 0xF0, 0xF3, 0xF4, 0xF8, 0xFE, 0xFF}) {
                Bytes text = ordinary;
                text[at] = static_cast<Zel8u>(stray);
                const Placed<Zel8u> src = srcArena.place(text, static_cast<int>(at % 64), 'x');
                const Result want = expected8u16u(src, 200, INT_MAX, false, expected);
                Zel16u dst[200];
                int srcLen = 200, dstLen = 200;
                zelsConvertUTF_8u16u(src, &srcLen, dst, &dstLen, 0);
                ASSERT_EQ((Result{srcLen, dstLen}), want) << kind << ' ' << at << ' ' << stray;
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst))
                    << kind << ' ' << at << ' ' << stray;
            }
        }
    }
}

TEST(ConvertUtf, To16_EveryRoomAndEveryEndFollowsTheRule) {
    constexpr int kLen = 200;
    const Arena<Zel8u> srcArena(1 << 12);
    const Arena<Zel16u> dstArena(1 << 12);
    Random random(41);
    Units expected;
    for (int kind = 0; kind < 12; ++kind) {
        const Bytes text = randomUtf8(random, kLen, kind);
        const Placed<Zel8u> src = srcArena.place(text, kind, 'x');
        const auto check = [&](int len, int room) {
            for (const bool swap : {false, true}) {
                const Result want = expected8u16u(src, len, room, swap, expected);
                const Placed<Zel16u> dst = dstArena.place(want.written, (len + room) % kPlacements);
                int srcLen = len, dstLen = room;
                zelsConvertUTF_8u16u(src, &srcLen, dst, &dstLen, swap);
                ASSERT_EQ((Result{srcLen, dstLen}), want) << kind << ": " << len << " in " << room;
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()))
                    << kind << ": " << len << " in " << room;
                ASSERT_TRUE(dst.intact()) << kind << ": " << len << " in " << room;
            }
        };
        for (int room = 0; room <= kLen; ++room) check(kLen, room);
        // An end inside a character is passed over, up to the end of the room; where pairs may pass
        // over that one too, nothing would stop it.
        if (kind % 6 > 3) continue;
        for (int len = 0; len <= kLen; ++len) {
            for (const int room : {len / 3, len / 2, len}) check(len, room);
        }
    }
}

// Texts of many megabytes take a way of their own as long as they are ASCII.
TEST(ConvertUtf, To16_VeryLongAsciiWithAndWithoutAnotherCharacter) {
    constexpr int kLen = (16 << 20) + 300007;
    Bytes src(kLen);
    for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<Zel8u>('a' + i % 23);
    Units dst(kLen + 64, 0x7777);
    const auto check = [&](int offset, int room, Result want) {
        Zel16u* const to = dst.data() + offset;
        int srcLen = kLen, dstLen = room;
        zelsConvertUTF_8u16u(src.data(), &srcLen, to, &dstLen, 0);
        ASSERT_EQ((Result{srcLen, dstLen}), want) << offset;
        ASSERT_EQ(to[want.written], 0x7777);
        // What comes behind the other character has moved by one.
        const long same = std::mismatch(to, to + want.written, src.data()).first - to;
        if (same == want.written) return;
        ASSERT_EQ(to[same], 0xE9);
        ASSERT_TRUE(std::equal(to + same + 1, to + want.written, src.data() + same + 2));
    };
    check(0, 200003, {200003, 200003});
    check(31, kLen, {kLen, kLen});
    std::fill(dst.begin(), dst.end(), Zel16u{0x7777});
    src[100001] = 0xC3;
    src[100002] = 0xA9;
    check(5, kLen, {kLen, kLen - 1});
}

Units randomUtf16(Random& random, int len, int kind) {
    Units text(static_cast<size_t>(len));
    for (Zel16u& unit : text) {
        int value = random.below(0x80);
        switch (kind % 6) {
            case 0:
                break;
            case 1:
                value = random.below(0x800);
                break;
            case 2:
                value = 0x4E00 + random.below(0x5000);
                break;
            case 3:
                value = 0xD800 + random.below(0x800);
                break;
            case 4:
                value = random.below(0x10000);
                break;
            default:
                value = random.below(1 << (7 + random.below(10)));
        }
        unit = static_cast<Zel16u>(value);
    }
    // Pairs as they should be.
    if (kind % 12 >= 6) {
        for (size_t i = 0; i + 1 < text.size(); i += 2 + static_cast<size_t>(random.below(5))) {
            text[i] = static_cast<Zel16u>(0xD800 + random.below(0x400));
            text[i + 1] = static_cast<Zel16u>(0xDC00 + random.below(0x400));
        }
    }
    return text;
}

TEST(ConvertUtf, To8_AgreesWithTheRuleEverywhere) {
    const Arena<Zel16u> srcArena(1 << 17);
    const Arena<Zel8u> dstArena(1 << 19);
    Random random(31);
    Bytes expected, part;
    const auto check = [&](int len, int placement) {
        const Units text = randomUtf16(random, len, (len + placement) % 12);
        // A low surrogate follows behind the end.
        const Placed<Zel16u> src = srcArena.place(text, placement, 0xDC00);
        for (const bool swap : {false, true}) {
            const Result want = expected16u8u(text, INT_MAX, swap, expected);
            const Placed<Zel8u> dst =
                dstArena.place(want.written, (placement * 7 + len) % kPlacements);
            int srcLen = len, dstLen = want.written;
            ASSERT_EQ(zelsConvertUTF_16u8u(src, &srcLen, dst, &dstLen, swap), zelStatusOk);
            ASSERT_EQ((Result{srcLen, dstLen}), want) << len << " at " << placement;
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));
            ASSERT_TRUE(dst.intact()) << len << " at " << placement;

            const int less = random.below(want.written + 1);
            const Result wantPart = expected16u8u(text, less, swap, part);
            const Placed<Zel8u> small = dstArena.place(less, (placement * 3 + len) % kPlacements);
            srcLen = len;
            dstLen = less;
            ASSERT_EQ(zelsConvertUTF_16u8u(src, &srcLen, small, &dstLen, swap), zelStatusOk);
            ASSERT_EQ((Result{srcLen, dstLen}), wantPart) << len << " at " << placement;
            ASSERT_TRUE(std::equal(part.begin(), part.end(), small.begin()));
            ASSERT_TRUE(small.intactFrom(dstLen)) << len << " at " << placement;
        }
    };
    test::forEachPlacement(check);
    for (const int len : {4096, 65537, 100003}) {
        for (int kind = 0; kind < 12; ++kind) check(len, kind);
    }
}

TEST(ConvertUtf, To8_EveryRoomFollowsTheRule) {
    constexpr int kLen = 150;
    const Arena<Zel16u> srcArena(1 << 12);
    const Arena<Zel8u> dstArena(1 << 12);
    Random random(43);
    Bytes expected;
    for (int kind = 0; kind < 12; ++kind) {
        const Units text = randomUtf16(random, kLen, kind);
        const Placed<Zel16u> src = srcArena.place(text, test::kBeforeGuard - kind % 2);
        for (const bool swap : {false, true}) {
            const int most = expected16u8u(text, INT_MAX, swap, expected).written;
            for (int room = 0; room <= most + 70; ++room) {
                const Result want = expected16u8u(text, room, swap, expected);
                const Placed<Zel8u> dst = dstArena.place(room, (kind + room) % kPlacements);
                int srcLen = kLen, dstLen = room;
                zelsConvertUTF_16u8u(src, &srcLen, dst, &dstLen, swap);
                ASSERT_EQ((Result{srcLen, dstLen}), want) << kind << " in " << room;
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()))
                    << kind << " in " << room;
                ASSERT_TRUE(dst.intactFrom(dstLen)) << kind << " in " << room;
            }
        }
    }
}

// A pair's second unit, alone and in a pair, at every place of a block and at its edges.
TEST(ConvertUtf, To8_SurrogatesAnywhereFollowTheRule) {
    Bytes expected;
    for (const Zel16u around : {Zel16u('a'), Zel16u(0x416), Zel16u(0x4E2D)}) {
        for (size_t at = 0; at + 3 < 100; ++at) {
            for (const Units& part :
                 {Units{0xD83D, 0xDE00}, Units{0xDE00}, Units{0xD83D},
                  Units{0xD83D, 0xD83D, 0xDE00}, Units{0xD83D, 0xDE00, 0xDE00}}) {
                Units text(100, around);
                std::copy(part.begin(), part.end(), text.begin() + static_cast<long>(at));
                const Result want = expected16u8u(text, INT_MAX, false, expected);
                Zel8u dst[400];
                int srcLen = 100, dstLen = 400;
                zelsConvertUTF_16u8u(text.data(), &srcLen, dst, &dstLen, 0);
                ASSERT_EQ((Result{srcLen, dstLen}), want) << around << " at " << at;
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst)) << at;
            }
        }
    }
}

// A source that is said to be endless, and ends in front of an inaccessible page where the room is
// used up.
TEST(ConvertUtf, To16_NothingIsReadBehindWhatTheRoomTakes) {
    const Arena<Zel8u> srcArena(1 << 12);
    Units dst(300);
    for (const int value : {0x61, 0x416, 0x4E2D, 0x1F600}) {
        const Bytes one = encode(value);
        const int units = value > 0xFFFF ? 2 : 1;
        for (int count = 1; count <= 150; ++count) {
            Bytes text;
            for (int i = 0; i < count; ++i) text.insert(text.end(), one.begin(), one.end());
            const Placed<Zel8u> src = srcArena.place(text, test::kBeforeGuard);
            int srcLen = INT_MAX, dstLen = count * units;
            zelsConvertUTF_8u16u(src, &srcLen, dst.data(), &dstLen, 0);
            ASSERT_EQ((Result{srcLen, dstLen}), (Result{src.len, count * units})) << value;
        }
    }
}

TEST(ConvertUtf, To8_NothingIsReadBehindWhatTheRoomTakes) {
    const Arena<Zel16u> srcArena(1 << 12);
    Bytes dst(600);
    for (const int value : {0x61, 0x416, 0x4E2D, 0x1F600}) {
        const int size = static_cast<int>(encode(value).size());
        for (int count = 1; count <= 150; ++count) {
            Units text;
            for (int i = 0; i < count; ++i) {
                if (value > 0xFFFF) text.push_back(0xD83D);
                text.push_back(static_cast<Zel16u>(value > 0xFFFF ? 0xDE00 : value));
            }
            const Placed<Zel16u> src = srcArena.place(text, test::kBeforeGuard);
            for (const int swap : {0, 1}) {
                if (swap != 0) {
                    for (int i = 0; i < src.len; ++i) src[i] = __builtin_bswap16(src[i]);
                }
                int srcLen = INT_MAX, dstLen = count * size;
                zelsConvertUTF_16u8u(src, &srcLen, dst.data(), &dstLen, swap);
                ASSERT_EQ((Result{srcLen, dstLen}), (Result{src.len, count * size})) << value;
            }
        }
    }
}

TEST(ConvertUtf, LengthsNear31BitsDoNotOverflow) {
    const Zel8u src8[] = {0xC3, 0xA9, 0};
    const Zel16u src16[] = {0x00E9, 0};
    Zel8u dst8[4];
    Zel16u dst16[4];
    // The other side ends the conversion long before the large one is used.
    int srcLen = INT_MAX, dstLen = 1;
    EXPECT_EQ(zelsConvertUTF_8u16u(src8, &srcLen, dst16, &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 2);
    EXPECT_EQ(dstLen, 1);
    srcLen = 2;
    dstLen = INT_MAX;
    EXPECT_EQ(zelsConvertUTF_8u16u(src8, &srcLen, dst16, &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 2);
    EXPECT_EQ(dstLen, 1);
    srcLen = INT_MAX;
    dstLen = 2;
    EXPECT_EQ(zelsConvertUTF_16u8u(src16, &srcLen, dst8, &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 1);
    EXPECT_EQ(dstLen, 2);
    srcLen = 1;
    dstLen = INT_MAX;
    EXPECT_EQ(zelsConvertUTF_16u8u(src16, &srcLen, dst8, &dstLen, 0), zelStatusOk);
    EXPECT_EQ(srcLen, 1);
    EXPECT_EQ(dstLen, 2);
}

}  // namespace
