// The search family, both widths, against the standard algorithms.
#include <limits.h>

#include <string>

#include "test_support.h"

namespace {

using test::Arena;
using test::kMaxLen;
using test::kPlacements;
using test::Placed;
using test::Random;

template <typename T>
struct Api;

template <>
struct Api<Zel8u> {
    static constexpr auto find = zelsFind_8u, findRev = zelsFindRev_8u;
    static constexpr auto findC = zelsFindC_8u, findRevC = zelsFindRevC_8u;
    static constexpr auto findCAny = zelsFindCAny_8u, findRevCAny = zelsFindRevCAny_8u;
    static constexpr auto findZ = zelsFind_Z_8u;
    static constexpr auto findCZ = zelsFindC_Z_8u;
};

template <>
struct Api<Zel16u> {
    static constexpr auto find = zelsFind_16u, findRev = zelsFindRev_16u;
    static constexpr auto findC = zelsFindC_16u, findRevC = zelsFindRevC_16u;
    static constexpr auto findCAny = zelsFindCAny_16u, findRevCAny = zelsFindRevCAny_16u;
    static constexpr auto findZ = zelsFind_Z_16u;
    static constexpr auto findCZ = zelsFindC_Z_16u;
};

// What the members must give.

template <typename T>
int indexOf(const T* begin, const T* end, const T* at) {
    return at == end ? -1 : static_cast<int>(at - begin);
}

template <typename T>
int firstOf(const T* src, int len, const T* pattern, int lenPattern) {
    if (lenPattern == 0) return -1;
    return indexOf(src, src + len, std::search(src, src + len, pattern, pattern + lenPattern));
}

template <typename T>
int lastOf(const T* src, int len, const T* pattern, int lenPattern) {
    if (lenPattern == 0) return -1;
    return indexOf(src, src + len, std::find_end(src, src + len, pattern, pattern + lenPattern));
}

template <typename T>
int firstOfSet(const T* src, int len, const T* set, int lenSet) {
    return indexOf(src, src + len, std::find_first_of(src, src + len, set, set + lenSet));
}

template <typename T>
int lastOfSet(const T* src, int len, const T* set, int lenSet) {
    int i = len - 1;
    while (i >= 0 && std::find(set, set + lenSet, src[i]) == set + lenSet) --i;
    return i;
}

template <typename T>
class Search : public testing::Test {
protected:
    // Calls one of the four members with two strings and expects success.
    template <typename Member>
    static int call(Member member, const std::vector<T>& src, const std::vector<T>& other) {
        static const T kNothing = 0;
        int index = 77;
        EXPECT_EQ(member(src.empty() ? &kNothing : src.data(), static_cast<int>(src.size()),
                         other.empty() ? &kNothing : other.data(), static_cast<int>(other.size()),
                         &index),
                  zelStatusOk);
        return index;
    }

    Arena<T> srcArena{1 << 17};
    Arena<T> otherArena{1 << 12};
    Random random{7};
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(Search, Widths);

TYPED_TEST(Search, Find_GivesTheFirstPositionAndFindRevTheLast) {
    using T = TypeParam;
    const auto src = test::text<T>("xxabcabc"), pattern = test::text<T>("abc");
    EXPECT_EQ(this->call(Api<T>::find, src, pattern), 2);
    EXPECT_EQ(this->call(Api<T>::findRev, src, pattern), 5);
}

TYPED_TEST(Search, Find_EmptyPatternIsNeverFound) {
    using T = TypeParam;
    for (const char* src : {"", "abc"}) {
        EXPECT_EQ(this->call(Api<T>::find, test::text<T>(src), {}), -1);
        EXPECT_EQ(this->call(Api<T>::findRev, test::text<T>(src), {}), -1);
    }
}

TYPED_TEST(Search, Find_PatternLongerThanTheSourceIsNotFound) {
    using T = TypeParam;
    const auto src = test::text<T>("ab"), pattern = test::text<T>("abc");
    EXPECT_EQ(this->call(Api<T>::find, src, pattern), -1);
    EXPECT_EQ(this->call(Api<T>::findRev, src, pattern), -1);
    EXPECT_EQ(this->call(Api<T>::find, {}, pattern), -1);
    EXPECT_EQ(this->call(Api<T>::findRev, {}, pattern), -1);
}

TYPED_TEST(Search, Find_PatternEqualToTheSourceIsFoundAtZero) {
    using T = TypeParam;
    const auto src = test::text<T>("abc");
    EXPECT_EQ(this->call(Api<T>::find, src, src), 0);
    EXPECT_EQ(this->call(Api<T>::findRev, src, src), 0);
}

TYPED_TEST(Search, Find_OverlappingOccurrencesCountEach) {
    using T = TypeParam;
    const auto src = test::text<T>("aaaa"), pattern = test::text<T>("aa");
    EXPECT_EQ(this->call(Api<T>::find, src, pattern), 0);
    EXPECT_EQ(this->call(Api<T>::findRev, src, pattern), 2);
}

TYPED_TEST(Search, FindC_EmptySourceHoldsNothing) {
    using T = TypeParam;
    const T src = 'a';
    int index = 77;
    EXPECT_EQ(Api<T>::findC(&src, 0, 'a', &index), zelStatusOk);
    EXPECT_EQ(index, -1);
    index = 77;
    EXPECT_EQ(Api<T>::findRevC(&src, 0, 'a', &index), zelStatusOk);
    EXPECT_EQ(index, -1);
}

TYPED_TEST(Search, FindC_GivesTheFirstAndFindRevCTheLastOfSeveral) {
    using T = TypeParam;
    const auto src = test::text<T>("xaxbxax");
    int index = 77;
    EXPECT_EQ(Api<T>::findC(src.data(), 7, 'a', &index), zelStatusOk);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(Api<T>::findRevC(src.data(), 7, 'a', &index), zelStatusOk);
    EXPECT_EQ(index, 5);
}

TEST(SearchIn16Bit, FindC_ComparesWholeUnits) {
    const Zel16u src[] = {0x0063, 0x0061, 0x0066, 0x00E9};
    int index = 77;
    EXPECT_EQ(zelsFindC_16u(src, 4, 0x00E9, &index), zelStatusOk);
    EXPECT_EQ(index, 3);
    EXPECT_EQ(zelsFindC_16u(src, 4, 0xE900, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
}

TEST(SearchIn16Bit, Find_PatternAtAnOddByteIsNoMatch) {
    const Zel16u src[] = {0x6100, 0x6200, 0x6300}, pattern[] = {0x0061, 0x0062};
    int index = 77;
    EXPECT_EQ(zelsFind_16u(src, 3, pattern, 2, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(zelsFindRev_16u(src, 3, pattern, 2, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
}

TYPED_TEST(Search, FindCAny_EmptySetMatchesNothing) {
    using T = TypeParam;
    EXPECT_EQ(this->call(Api<T>::findCAny, test::text<T>("abc"), {}), -1);
    EXPECT_EQ(this->call(Api<T>::findRevCAny, test::text<T>("abc"), {}), -1);
}

TYPED_TEST(Search, FindZ_MeasuresBothStrings) {
    using T = TypeParam;
    const T src[] = {'a', 'b', 'c', 'b', 0, 'z', 0}, pattern[] = {'b', 0, 'z'}, z[] = {'z', 0};
    const T empty[] = {0};
    int index = 77;
    EXPECT_EQ(Api<T>::findZ(src, pattern, &index), zelStatusOk);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(Api<T>::findZ(src, z, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
    index = 77;
    EXPECT_EQ(Api<T>::findZ(src, empty, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
    index = 77;
    EXPECT_EQ(Api<T>::findZ(empty, empty, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(Api<T>::findCZ(src, 'c', &index), zelStatusOk);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(Api<T>::findCZ(src, 'z', &index), zelStatusOk);
    EXPECT_EQ(index, -1);
}

TYPED_TEST(Search, FindCZ_TheTerminatorIsNotFound) {
    using T = TypeParam;
    const T src[] = {'a', 0};
    int index = 77;
    EXPECT_EQ(Api<T>::findCZ(src, 0, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
}

TYPED_TEST(Search, NullPointersComeBeforeNegativeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 0};
    T* const null = nullptr;
    int index = 77;
    for (const int len : {2, 0, -1, INT_MIN}) {
        for (const auto member : {A::find, A::findRev, A::findCAny, A::findRevCAny}) {
            EXPECT_EQ(member(null, len, s, 1, &index), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, null, 1, &index), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, null, -1, &index), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, s, 1, nullptr), zelStatusNullPointer);
            EXPECT_EQ(member(null, len, null, len, nullptr), zelStatusNullPointer);
            EXPECT_EQ(member(s, 2, null, len, &index), zelStatusNullPointer);
        }
        for (const auto member : {A::findC, A::findRevC}) {
            EXPECT_EQ(member(null, len, 'a', &index), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, 'a', nullptr), zelStatusNullPointer);
        }
    }
    EXPECT_EQ(A::findZ(null, s, &index), zelStatusNullPointer);
    EXPECT_EQ(A::findZ(s, null, &index), zelStatusNullPointer);
    EXPECT_EQ(A::findZ(s, s, nullptr), zelStatusNullPointer);
    EXPECT_EQ(A::findCZ(null, 'a', &index), zelStatusNullPointer);
    EXPECT_EQ(A::findCZ(s, 'a', nullptr), zelStatusNullPointer);
    EXPECT_EQ(index, 77);
}

TYPED_TEST(Search, NegativeLengthsAreRefusedAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 0};
    int index = 77;
    for (const int bad : {-1, INT_MIN}) {
        for (const auto member : {A::find, A::findRev, A::findCAny, A::findRevCAny}) {
            EXPECT_EQ(member(s, bad, s, 1, &index), zelStatusLengthError);
            EXPECT_EQ(member(s, 2, s, bad, &index), zelStatusLengthError);
            EXPECT_EQ(member(s, 0, s, bad, &index), zelStatusLengthError);
            EXPECT_EQ(member(s, bad, s, bad, &index), zelStatusLengthError);
        }
        EXPECT_EQ(A::findC(s, bad, 'a', &index), zelStatusLengthError);
        EXPECT_EQ(A::findRevC(s, bad, 'a', &index), zelStatusLengthError);
    }
    EXPECT_EQ(index, 77);
}

// The value that is searched stands directly outside both ends, so that a read too far is a wrong
// result also where no inaccessible page catches it.
TYPED_TEST(Search, FindC_AgreesWithAPlainScanEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    const auto alphabet = test::trickyAlphabet<T>();
    test::forEachPlacement([&](int len, int placement) {
        const T val = this->random.pick(alphabet);
        auto content = this->random.text(len, alphabet);
        // Mostly none, one or two occurrences, at any distance from the ends.
        if (placement % 4 != 0) std::replace(content.begin(), content.end(), val, T('-'));
        for (int k = placement % 4; k > 1 && len > 0; --k) {
            content[static_cast<size_t>(this->random.below(len))] = val;
        }
        const Placed<T> src = this->srcArena.place(content, placement, val);
        const int first = indexOf<T>(src, src.end(), std::find(src.begin(), src.end(), val));
        const int last = lastOfSet<T>(src, len, &val, 1);
        int index = 77;
        ASSERT_EQ(A::findC(src, len, val, &index), zelStatusOk);
        ASSERT_EQ(index, first) << len << " at " << placement;
        ASSERT_EQ(A::findRevC(src, len, val, &index), zelStatusOk);
        ASSERT_EQ(index, last) << len << " at " << placement;
    });
}

TYPED_TEST(Search, FindC_FindsEveryPositionOfEveryValue) {
    using T = TypeParam;
    using A = Api<T>;
    for (const T val : test::trickyAlphabet<T>()) {
        for (int len = 1; len <= kMaxLen; len += 7) {
            const Placed<T> src =
                this->srcArena.place(len, test::kBeforeGuard, static_cast<T>(~val));
            for (int at = 0; at < len; ++at) {
                src[at] = val;
                int first = 77, last = 77;
                ASSERT_EQ(A::findC(src, len, val, &first), zelStatusOk);
                ASSERT_EQ(A::findRevC(src, len, val, &last), zelStatusOk);
                ASSERT_EQ(first, at);
                ASSERT_EQ(last, at);
                src[at] = static_cast<T>(~val);
            }
        }
    }
}

TYPED_TEST(Search, FindCAny_AgreesWithAPlainScanEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    const auto alphabet = test::trickyAlphabet<T>();
    const int setSizes[] = {0, 1, 2, 3, 4, 5, 8, 9, 16, 17, 31, 63, 64, 65, 100, 300};
    test::forEachPlacement([&](int len, int placement) {
        const int lenSet = setSizes[(len + placement) % 16];
        std::vector<T> members = lenSet <= 4 ? this->random.text(lenSet, alphabet)
                                             : this->random.template text<T>(lenSet);
        const Placed<T> set =
            this->otherArena.place(members, (placement * 7 + len) % kPlacements, 'x');
        auto content = this->random.template text<T>(len);
        const auto inSet = [&](T c) { return std::find(set.begin(), set.end(), c) != set.end(); };
        // A character outside the set, when the set leaves one.
        T outside = 0;
        while (inSet(outside) && outside < 255) ++outside;
        if (placement % 3 != 0 && !inSet(outside)) {
            std::replace_if(content.begin(), content.end(), inSet, outside);
            if (len > 0 && lenSet > 0 && placement % 3 == 1) {
                content[static_cast<size_t>(this->random.below(len))] = this->random.pick(members);
            }
        }
        const Placed<T> src =
            this->srcArena.place(content, placement, lenSet > 0 ? set[lenSet - 1] : outside);
        int index = 77;
        ASSERT_EQ(A::findCAny(src, len, set, lenSet, &index), zelStatusOk);
        ASSERT_EQ(index, firstOfSet<T>(src, len, set, lenSet)) << len << " at " << placement;
        ASSERT_EQ(A::findRevCAny(src, len, set, lenSet, &index), zelStatusOk);
        ASSERT_EQ(index, lastOfSet<T>(src, len, set, lenSet)) << len << " at " << placement;
    });
}

TYPED_TEST(Search, FindCAny_EveryValueIsToldFromItsNeighbours) {
    using T = TypeParam;
    using A = Api<T>;
    // Small and large sets, in one row of 256 units and across rows; every element is looked up.
    const std::vector<std::vector<T>> sets = {
        test::text<T>(" "),
        test::text<T>(" \t\n\r\f\v"),
        test::text<T>("0123456789"),
        test::text<T>("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_"),
        test::text<T>("\x80\xFF\xE1\x7F"),
        {T(0), T(0x8000), T(0xFFFF), T(0x00FF), T(0x0100)},
        {T(0x0430), T(0x0431), T(0x0450), T(0x2028), T(0x3000), T(0xFEFF), T(0x0020)},
    };
    const int values = sizeof(T) == 1 ? 0x100 : 0x10000;
    for (const auto& members : sets) {
        const int lenSet = static_cast<int>(members.size());
        const Placed<T> set = this->otherArena.place(members, test::kBeforeGuard);
        for (const int len : {1, 40}) {
            for (int c = 0; c < values; ++c) {
                // The tested element among copies of itself plus or minus one bit is the only
                // member or the only stranger, which both directions must see.
                const Placed<T> src =
                    this->srcArena.place(len, test::kBeforeGuard, static_cast<T>(c));
                int first = 77, last = 77;
                ASSERT_EQ(A::findCAny(src, len, set, lenSet, &first), zelStatusOk);
                ASSERT_EQ(A::findRevCAny(src, len, set, lenSet, &last), zelStatusOk);
                const bool member = std::find(members.begin(), members.end(), c) != members.end();
                ASSERT_EQ(first, member ? 0 : -1) << c;
                ASSERT_EQ(last, member ? len - 1 : -1) << c;
            }
        }
    }
}

TYPED_TEST(Search, Find_AgreesWithAPlainScanEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    const std::vector<T> two = {'a', 'b'};
    const auto tricky = test::trickyAlphabet<T>();
    test::forEachPlacement([&](int len, int placement) {
        const bool dense = placement % 2 == 0;
        const auto content = this->random.text(len, dense ? two : tricky);
        std::vector<T> pattern;
        const int lenPattern = this->random.below(placement % 5 == 0 ? len + 3 : 8);
        if (len >= lenPattern && placement % 3 != 0) {
            // A piece of the text, sometimes with one element changed.
            const int from = this->random.below(len - lenPattern + 1);
            pattern.assign(content.begin() + from, content.begin() + from + lenPattern);
            if (lenPattern > 0 && placement % 3 == 2) {
                pattern[static_cast<size_t>(this->random.below(lenPattern))] ^= 1;
            }
        } else {
            pattern = this->random.text(lenPattern, dense ? two : tricky);
        }
        const Placed<T> find = this->otherArena.place(pattern, (placement * 7 + len) % kPlacements);
        // The pattern's last element continues behind the text: a match that would hang over.
        const Placed<T> src =
            this->srcArena.place(content, placement, lenPattern > 0 ? pattern.back() : T('a'));
        int index = 77;
        ASSERT_EQ(A::find(src, len, find, lenPattern, &index), zelStatusOk);
        ASSERT_EQ(index, firstOf<T>(src, len, find, lenPattern)) << len << " at " << placement;
        ASSERT_EQ(A::findRev(src, len, find, lenPattern, &index), zelStatusOk);
        ASSERT_EQ(index, lastOf<T>(src, len, find, lenPattern)) << len << " at " << placement;
    });
}

TYPED_TEST(Search, Find_FindsASingleOccurrenceAtEveryPosition) {
    using T = TypeParam;
    using A = Api<T>;
    for (const int lenPattern : {1, 2, 3, 4, 7, 8, 9, 16, 17, 33, 64, 65, 130}) {
        auto pattern = std::vector<T>(static_cast<size_t>(lenPattern), T('a'));
        pattern[static_cast<size_t>(lenPattern / 2)] = T('b');
        const Placed<T> find = this->otherArena.place(pattern, test::kBeforeGuard);
        for (const int len : {lenPattern, lenPattern + 1, 150, kMaxLen}) {
            if (len < lenPattern) continue;
            for (int at = 0; at <= len - lenPattern; ++at) {
                // A sea of near misses.
                const Placed<T> src = this->srcArena.place(len, test::kBeforeGuard, T('a'));
                std::copy(pattern.begin(), pattern.end(), src.data + at);
                int first = 77, last = 77;
                ASSERT_EQ(A::find(src, len, find, lenPattern, &first), zelStatusOk);
                ASSERT_EQ(A::findRev(src, len, find, lenPattern, &last), zelStatusOk);
                ASSERT_EQ(first, at);
                ASSERT_EQ(last, at);
            }
        }
    }
}

TYPED_TEST(Search, AllMembersAgreeWithAPlainScanOnLargeTexts) {
    using T = TypeParam;
    using A = Api<T>;
    const std::vector<T> letters = {'a', 'b', 'c', 'd'};
    for (const int len : {4095, 4096, 4097, 65536, 100003}) {
        for (const int placement : {0, 1, 31, test::kBeforeGuard, test::kBehindGuard}) {
            auto content = this->random.text(len, letters);
            content[static_cast<size_t>(this->random.below(len))] = 'x';
            content[static_cast<size_t>(this->random.below(len))] = 'y';
            const Placed<T> src = this->srcArena.place(content, placement, 'x');
            const std::vector<T> set = {'y', 'x', 'z'};
            int index = 77;
            ASSERT_EQ(A::findC(src, len, 'x', &index), zelStatusOk);
            ASSERT_EQ(index, firstOfSet<T>(src, len, set.data() + 1, 1));
            ASSERT_EQ(A::findRevC(src, len, 'x', &index), zelStatusOk);
            ASSERT_EQ(index, lastOfSet<T>(src, len, set.data() + 1, 1));
            ASSERT_EQ(A::findCAny(src, len, set.data(), 3, &index), zelStatusOk);
            ASSERT_EQ(index, firstOfSet<T>(src, len, set.data(), 3));
            ASSERT_EQ(A::findRevCAny(src, len, set.data(), 3, &index), zelStatusOk);
            ASSERT_EQ(index, lastOfSet<T>(src, len, set.data(), 3));
            for (const int lenPattern : {3, 8, 20, 1000}) {
                const int from = this->random.below(len - lenPattern);
                const T* const pattern = src + from;
                ASSERT_EQ(A::find(src, len, pattern, lenPattern, &index), zelStatusOk);
                ASSERT_EQ(index, firstOf<T>(src, len, pattern, lenPattern));
                ASSERT_EQ(A::findRev(src, len, pattern, lenPattern, &index), zelStatusOk);
                ASSERT_EQ(index, lastOf<T>(src, len, pattern, lenPattern));
            }
        }
    }
}

// The terminator is the last element before an inaccessible page, and the first behind one.
TYPED_TEST(Search, FindZ_ReadsNothingBehindTheTerminator) {
    using T = TypeParam;
    using A = Api<T>;
    const std::vector<T> letters = {'a', 'b', 'c', T(0xFF61)};
    for (int len = 0; len <= kMaxLen; ++len) {
        for (int placement = 0; placement < kPlacements; ++placement) {
            auto content = this->random.text(len, letters);
            content.push_back(0);
            std::vector<T> pattern = this->random.text(this->random.below(4), letters);
            pattern.push_back(0);
            const Placed<T> src = this->srcArena.place(content, placement, 'a');
            const Placed<T> find =
                this->otherArena.place(pattern, (placement * 7 + len) % kPlacements, 'a');
            int index = 77;
            ASSERT_EQ(A::findZ(src, find, &index), zelStatusOk);
            ASSERT_EQ(index, firstOf<T>(src, len, find, find.len - 1));
            ASSERT_EQ(A::findCZ(src, 'b', &index), zelStatusOk);
            const T b = 'b';
            ASSERT_EQ(index, firstOfSet<T>(src, len, &b, 1));
        }
    }
}

// The largest length there is. Only the pages that hold the ends are ever touched.
TYPED_TEST(Search, LengthsNear31BitsDoNotOverflow) {
    using T = TypeParam;
    using A = Api<T>;
    const test::GuardedPages pages(static_cast<size_t>(INT_MAX) * sizeof(T));
    if (!pages.available()) GTEST_SKIP() << "the system grants no such address range";
    T* const src = reinterpret_cast<T*>(pages.end()) - INT_MAX;
    const T pattern[] = {'a', 'b', 'c'};
    std::copy(pattern, pattern + 3, src);
    std::copy(pattern, pattern + 3, src + (INT_MAX - 3));
    int index = 77;
    EXPECT_EQ(A::find(src, INT_MAX, pattern, 3, &index), zelStatusOk);
    EXPECT_EQ(index, 0);
    EXPECT_EQ(A::findRev(src, INT_MAX, pattern, 3, &index), zelStatusOk);
    EXPECT_EQ(index, INT_MAX - 3);
    EXPECT_EQ(A::findC(src, INT_MAX, 'b', &index), zelStatusOk);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(A::findRevC(src, INT_MAX, 'c', &index), zelStatusOk);
    EXPECT_EQ(index, INT_MAX - 1);
    EXPECT_EQ(A::findCAny(src, INT_MAX, pattern + 1, 2, &index), zelStatusOk);
    EXPECT_EQ(index, 1);
    EXPECT_EQ(A::findRevCAny(src, INT_MAX, pattern, 2, &index), zelStatusOk);
    EXPECT_EQ(index, INT_MAX - 2);
    EXPECT_EQ(A::find(pattern, 3, src, INT_MAX, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(A::findRev(pattern, 3, src, INT_MAX, &index), zelStatusOk);
    EXPECT_EQ(index, -1);
}

// Texts that nearly match everywhere, so that a search soon stops to look for one rare element
// only.
TEST(Search, Find_LooksAtEveryPlaceBehindManyNearMisses) {
    const std::string needle = "xyyx";
    for (int length = 6000; length < 6130; ++length) {
        for (int place = length - 500; place + 4 <= length; ++place) {
            std::string text;
            while (static_cast<int>(text.size()) < length) text += "xy";
            text.resize(static_cast<std::size_t>(length));
            text.replace(static_cast<std::size_t>(place), 4, needle);
            const auto expected = static_cast<int>(text.find(needle));
            int index = -1;
            ASSERT_EQ(zelsFind_8u(reinterpret_cast<const Zel8u*>(text.data()), length,
                                  reinterpret_cast<const Zel8u*>(needle.data()), 4, &index),
                      zelStatusOk);
            ASSERT_EQ(index, expected) << length << ' ' << place;
        }
    }
}

}  // namespace
