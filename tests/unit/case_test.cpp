// Case conversion, and the tables behind it.
#include "string/case_tables.h"

#include <limits.h>

#include <set>

#include "test_support.h"

namespace {

using test::Arena;
using test::kPlacements;
using test::Placed;
using test::Random;

template <typename T>
struct Member {
    ZelStatus (*convert)(const T*, T*, int);
    ZelStatus (*inPlace)(T*, int);
    T (*expected)(T);
};

template <typename T>
T upperLatin(T c) {
    return c >= 'a' && c <= 'z' ? static_cast<T>(c - 32) : c;
}

template <typename T>
T lowerLatin(T c) {
    return c >= 'A' && c <= 'Z' ? static_cast<T>(c + 32) : c;
}

// The table rules, spelled out on the raw arrays.
int word(Zel16u c) {
    using namespace zel::case_tables;
    return A[Y[X[c >> 6] | (c & 63)]];
}

Zel16u upperByTable(Zel16u c) {
    return word(c) & (1 << 20) ? static_cast<Zel16u>(c - (word(c) >> 22)) : c;
}

Zel16u lowerByTable(Zel16u c) {
    return word(c) & (1 << 21) ? static_cast<Zel16u>(c + (word(c) >> 22)) : c;
}

// Every conversion of a width.
template <typename T>
std::vector<Member<T>> allMembers();

template <>
std::vector<Member<Zel8u>> allMembers() {
    return {
        {zelsUppercaseLatin_8u, zelsUppercaseLatin_8u_I, upperLatin<Zel8u>},
        {zelsLowercaseLatin_8u, zelsLowercaseLatin_8u_I, lowerLatin<Zel8u>},
    };
}

template <>
std::vector<Member<Zel16u>> allMembers() {
    return {
        {zelsUppercaseLatin_16u, zelsUppercaseLatin_16u_I, upperLatin<Zel16u>},
        {zelsLowercaseLatin_16u, zelsLowercaseLatin_16u_I, lowerLatin<Zel16u>},
        {zelsUppercase_16u, zelsUppercase_16u_I, upperByTable},
        {zelsLowercase_16u, zelsLowercase_16u_I, lowerByTable},
    };
}

// ---- The tables ----

TEST(CaseTables, XNamesStartsOfBlocksInY) {
    for (const Zel16u start : zel::case_tables::X) {
        EXPECT_EQ(start % 64, 0);
        EXPECT_LT(start, 7808);
    }
    for (const Zel8u index : zel::case_tables::Y) EXPECT_LT(index, 128);
}

TEST(CaseTables, EqualBlocksAndEqualWordsAreStoredOnce) {
    using namespace zel::case_tables;
    EXPECT_EQ(sizeof X / sizeof X[0], 1024u);
    EXPECT_EQ(sizeof Y, 7808u);
    EXPECT_EQ(sizeof A / sizeof A[0], 128u);
    std::set<std::vector<Zel8u>> blocks;
    for (int i = 0; i < 7808; i += 64) blocks.emplace(Y + i, Y + i + 64);
    EXPECT_EQ(blocks.size(), 122u);
    EXPECT_EQ(std::set<Zel16u>(X, X + 1024).size(), 122u);
    EXPECT_EQ(std::set<int>(A, A + 128).size(), 124u);
    EXPECT_EQ(std::set<Zel8u>(Y, Y + 7808).size(), 124u);
}

TEST(CaseTables, CountsOfMappings) {
    int lower = 0, upper = 0, last = 0;
    for (int c = 0; c < 0x10000; ++c) {
        const int properties = word(static_cast<Zel16u>(c));
        lower += (properties & (1 << 21)) != 0;
        upper += (properties & (1 << 20)) != 0;
        if (properties & (3 << 20)) last = c;
    }
    EXPECT_EQ(lower, 704);
    EXPECT_EQ(upper, 673);
    EXPECT_EQ(last, 0xFF5A);
}

// The sum was taken of the two case mapping fields of the Unicode 2.0.14 data file as they stand
// there, not of the tables: all lowercase forms in the order of the code units, then all uppercase
// forms, each unit entered at once into the 64-bit FNV-1a sum.
TEST(CaseTables, AllMappingsAreThoseOfTheUnicodeData) {
    unsigned long sum = 0xCBF29CE484222325;
    for (const auto mapping : {lowerByTable, upperByTable}) {
        for (int c = 0; c < 0x10000; ++c) {
            sum = (sum ^ mapping(static_cast<Zel16u>(c))) * 0x100000001B3;
        }
    }
    EXPECT_EQ(sum, 0x8940DF0CD43F20AEUL);
}

struct Row {
    Zel16u c, lower, upper;
};

TEST(CaseTables, KnownRows) {
    const Row rows[] = {
        {0x0041, 0x0061, 0x0041}, {0x0061, 0x0061, 0x0041}, {0x00E9, 0x00E9, 0x00C9},
        {0x00FF, 0x00FF, 0x0178}, {0x0178, 0x00FF, 0x0178}, {0x0130, 0x0069, 0x0130},
        {0x0131, 0x0131, 0x0049}, {0x017F, 0x017F, 0x0053}, {0x01C4, 0x01C6, 0x01C4},
        {0x01C5, 0x01C6, 0x01C4}, {0x01C6, 0x01C6, 0x01C4}, {0x03C2, 0x03C2, 0x03C2},
        {0x03C3, 0x03C3, 0x03A3}, {0x10A0, 0x10D0, 0x10A0}, {0x1E00, 0x1E01, 0x1E00},
        {0x1F80, 0x1F80, 0x1F88}, {0x24D0, 0x24D0, 0x24B6}, {0xFF21, 0xFF41, 0xFF21},
    };
    const Zel16u caseless[] = {0x00B5, 0x00DF, 0x0220, 0x023A, 0x03F7, 0x1E9E, 0x2126, 0x212A,
                               0x2C00, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFFFF, 0x0000};
    const auto check = [](const Row& row) {
        Zel16u dst = 0;
        EXPECT_EQ(zelsLowercase_16u(&row.c, &dst, 1), zelStatusOk);
        EXPECT_EQ(dst, row.lower) << row.c;
        EXPECT_EQ(zelsUppercase_16u(&row.c, &dst, 1), zelStatusOk);
        EXPECT_EQ(dst, row.upper) << row.c;
    };
    for (const Row& row : rows) check(row);
    for (const Zel16u c : caseless) check({c, c, c});
}

TEST(CaseTables, TheLowerBitsHoldTheGeneralCategory) {
    const auto category = [](Zel16u c) { return word(c) & 31; };
    // Letters of one kind share it, whatever their case delta.
    EXPECT_EQ(category('A'), category(0x0410));
    EXPECT_EQ(category('a'), category(0x00DF));
    EXPECT_NE(category('A'), category('a'));
    EXPECT_EQ(category('0'), category(0x0660));
    EXPECT_EQ(category(0xD800), category(0xDFFF));
    EXPECT_EQ(category(0x0220), 0);  // not assigned
}

// ---- The functions ----

template <typename T>
class Case : public testing::Test {
protected:
    Arena<T> srcArena{1 << 17};
    Arena<T> dstArena{1 << 17};
    Random random{5};
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(Case, Widths);

TYPED_TEST(Case, NullPointersComeBeforeNegativeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    const T src[] = {'a', 'B'};
    T dst[] = {'x', 'Y'};
    for (const Member<T>& member : allMembers<T>()) {
        for (const int len : {2, 0, -1, INT_MIN}) {
            EXPECT_EQ(member.convert(nullptr, dst, len), zelStatusNullPointer);
            EXPECT_EQ(member.convert(src, nullptr, len), zelStatusNullPointer);
            EXPECT_EQ(member.convert(nullptr, nullptr, len), zelStatusNullPointer);
            EXPECT_EQ(member.inPlace(nullptr, len), zelStatusNullPointer);
        }
        for (const int len : {-1, INT_MIN}) {
            EXPECT_EQ(member.convert(src, dst, len), zelStatusLengthError);
            EXPECT_EQ(member.inPlace(dst, len), zelStatusLengthError);
        }
        EXPECT_EQ(member.convert(src, dst, 0), zelStatusOk);
        EXPECT_EQ(member.inPlace(dst, 0), zelStatusOk);
    }
    EXPECT_EQ(dst[0], 'x');
    EXPECT_EQ(dst[1], 'Y');
}

TYPED_TEST(Case, EveryElementIsConvertedByItsRule) {
    using T = TypeParam;
    const int values = sizeof(T) == 1 ? 0x100 : 0x10000;
    std::vector<T> all(static_cast<size_t>(values)), dst(all.size());
    for (int c = 0; c < values; ++c) all[static_cast<size_t>(c)] = static_cast<T>(c);
    for (const Member<T>& member : allMembers<T>()) {
        EXPECT_EQ(member.convert(all.data(), dst.data(), values), zelStatusOk);
        for (int c = 0; c < values; ++c) {
            ASSERT_EQ(dst[static_cast<size_t>(c)], member.expected(static_cast<T>(c))) << c;
        }
    }
}

TYPED_TEST(Case, Latin_ChangesTheTwentySixLettersOnly) {
    using T = TypeParam;
    const auto members = allMembers<T>();
    const auto convert = [](const Member<T>& member, T c) {
        T dst = 0;
        EXPECT_EQ(member.convert(&c, &dst, 1), zelStatusOk);
        return dst;
    };
    EXPECT_EQ(convert(members[0], 'z'), 'Z');
    EXPECT_EQ(convert(members[0], 'a'), 'A');
    EXPECT_EQ(convert(members[0], 0xE9), 0xE9);
    EXPECT_EQ(convert(members[0], '`'), '`');
    EXPECT_EQ(convert(members[0], '{'), '{');
    EXPECT_EQ(convert(members[1], 'Z'), 'z');
    EXPECT_EQ(convert(members[1], 'A'), 'a');
    EXPECT_EQ(convert(members[1], 0xC9), 0xC9);
    EXPECT_EQ(convert(members[1], '@'), '@');
    EXPECT_EQ(convert(members[1], '['), '[');
}

// Texts of one script as well as mixed ones, since a fast path may look at blocks of elements.
template <typename T>
std::vector<T> sampleText(Random& random, int len, int kind) {
    std::vector<T> result(static_cast<size_t>(len));
    for (T& c : result) {
        switch (kind % 6) {
            case 0:
                c = static_cast<T>(random.below(0x80));
                break;
            case 1:
                c = static_cast<T>(random.below(0x180));
                break;
            case 2:
                c = static_cast<T>(0x0400 + random.below(0x60));
                break;
            case 3:
                c = static_cast<T>(0x4E00 + random.below(0x5000));
                break;
            case 4:
                c = static_cast<T>(0x1E00 + random.below(0x200));
                break;
            default:
                c = static_cast<T>(random.below(0x10000));
        }
    }
    return result;
}

TYPED_TEST(Case, AllMembersAgreeWithTheirRuleEverywhere) {
    using T = TypeParam;
    const auto members = allMembers<T>();
    test::forEachPlacement([&](int len, int placement) {
        const Member<T>& member = members[static_cast<size_t>(len + placement) % members.size()];
        const auto content = sampleText<T>(this->random, len, placement);
        std::vector<T> expected = content;
        for (T& c : expected) c = member.expected(c);
        // Letters all around: a write too far shows, whichever way it converts.
        const Placed<T> src =
            this->srcArena.place(content, (placement * 7 + len) % kPlacements, 'q');
        const Placed<T> dst = this->dstArena.place(len, placement, 'Q');
        ASSERT_EQ(member.convert(src, dst, len), zelStatusOk);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));
        ASSERT_TRUE(dst.intact()) << len << " at " << placement;
        ASSERT_TRUE(std::equal(content.begin(), content.end(), src.begin()));

        for (const bool named : {true, false}) {
            const Placed<T> both = this->dstArena.place(content, placement, named ? 'q' : 'Q');
            ASSERT_EQ(named ? member.inPlace(both, len) : member.convert(both, both, len),
                      zelStatusOk);
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), both.begin()));
            ASSERT_TRUE(both.intact()) << len << " at " << placement;
        }
    });
}

TYPED_TEST(Case, LargeTextsAgreeWithTheirRule) {
    using T = TypeParam;
    for (const Member<T>& member : allMembers<T>()) {
        for (const int len : {4096, 65537, 100003}) {
            for (int kind = 0; kind < 6; ++kind) {
                const auto content = sampleText<T>(this->random, len, kind);
                std::vector<T> expected = content;
                for (T& c : expected) c = member.expected(c);
                const Placed<T> src = this->srcArena.place(content, 2 * kind + 1);
                const Placed<T> dst = this->dstArena.place(len, test::kBeforeGuard);
                ASSERT_EQ(member.convert(src, dst, len), zelStatusOk);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));
                ASSERT_TRUE(dst.intact());
            }
        }
    }
}

}  // namespace
