// The comparisons, both widths.
#include <limits.h>

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
    static constexpr auto compare = zelsCompare_8u, equal = zelsEqual_8u;
    static constexpr auto compareLatin = zelsCompareIgnoreCaseLatin_8u;
};

template <>
struct Api<Zel16u> {
    static constexpr auto compare = zelsCompare_16u, equal = zelsEqual_16u;
    static constexpr auto compareLatin = zelsCompareIgnoreCaseLatin_16u;
};

template <typename T>
using Member = ZelStatus (*)(const T*, const T*, int, int*);

// Every comparison of a width.
template <typename T>
std::vector<Member<T>> allMembers() {
    std::vector<Member<T>> members = {Api<T>::compare, Api<T>::equal, Api<T>::compareLatin};
    if constexpr (sizeof(T) == 2) members.push_back(zelsCompareIgnoreCase_16u);
    return members;
}

int foldLatin(int c) {
    return c >= 'A' && c <= 'Z' ? c + 32 : c;
}

// Lower case as the conversion function has it; its own tests hold that against the Unicode data.
int foldByTable(int c) {
    const Zel16u src = static_cast<Zel16u>(c);
    Zel16u dst = 0;
    zelsLowercase_16u(&src, &dst, 1);
    return dst;
}

int noFold(int c) {
    return c;
}

template <typename T>
int expectedDifference(const T* a, const T* b, int len, int (*fold)(int)) {
    for (int i = 0; i < len; ++i) {
        if (a[i] != b[i] && fold(a[i]) != fold(b[i])) return fold(a[i]) - fold(b[i]);
    }
    return 0;
}

template <typename T>
class Compare : public testing::Test {
protected:
    Arena<T> firstArena{1 << 17};
    Arena<T> secondArena{1 << 17};
    Random random{3};

    static int call(Member<T> member, const T* a, const T* b, int len) {
        int result = 7777777;
        EXPECT_EQ(member(a, b, len, &result), zelStatusOk);
        return result;
    }

    static int callOnOne(Member<T> member, T a, T b) { return call(member, &a, &b, 1); }
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(Compare, Widths);

TYPED_TEST(Compare, NullPointersComeBeforeNegativeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    const T s[] = {'a', 'b'};
    int result = 77;
    for (const Member<T> member : allMembers<T>()) {
        for (const int len : {2, 0, -1, INT_MIN}) {
            EXPECT_EQ(member(nullptr, s, len, &result), zelStatusNullPointer);
            EXPECT_EQ(member(s, nullptr, len, &result), zelStatusNullPointer);
            EXPECT_EQ(member(s, s, len, nullptr), zelStatusNullPointer);
            EXPECT_EQ(member(nullptr, nullptr, len, nullptr), zelStatusNullPointer);
        }
        for (const int len : {-1, INT_MIN}) {
            EXPECT_EQ(member(s, s, len, &result), zelStatusLengthError);
        }
    }
    EXPECT_EQ(result, 77);
}

TYPED_TEST(Compare, EmptyStringsAreEqual) {
    using T = TypeParam;
    const T a = 'a', b = 'b';
    EXPECT_EQ(this->call(Api<T>::compare, &a, &b, 0), 0);
    EXPECT_EQ(this->call(Api<T>::compareLatin, &a, &b, 0), 0);
    EXPECT_EQ(this->call(Api<T>::equal, &a, &b, 0), 1);
    if constexpr (sizeof(T) == 2) {
        EXPECT_EQ(this->call(zelsCompareIgnoreCase_16u, &a, &b, 0), 0);
    }
}

TYPED_TEST(Compare, Compare_SubtractsUnsignedElements) {
    using T = TypeParam;
    EXPECT_EQ(this->callOnOne(Api<T>::compare, 0x61, 0xE1), -128);
    EXPECT_EQ(this->callOnOne(Api<T>::compare, 0xFF, 0x00), 255);
    const T max = static_cast<T>(~0);
    EXPECT_EQ(this->callOnOne(Api<T>::compare, max, 0), max);
    EXPECT_EQ(this->callOnOne(Api<T>::compare, 0, max), -int{max});
}

TYPED_TEST(Compare, Compare_TakesTheFirstDifference) {
    using T = TypeParam;
    const auto a = test::text<T>("abcdz"), b = test::text<T>("abxda");
    EXPECT_EQ(this->call(Api<T>::compare, a.data(), b.data(), 5), 'c' - 'x');
}

TYPED_TEST(Compare, IgnoreCaseLatin_FoldsTheCapitalsAndNothingElse) {
    using T = TypeParam;
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 'A', 'a'), 0);
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 'z', 'Z'), 0);
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, '[', '{'), -32);
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, '@', '`'), -32);
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 0xC9, 0xE9), -32);
    // The difference is that of the folded elements.
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 'A', 'b'), -1);
    EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 'B', '_'), 'b' - '_');
    if constexpr (sizeof(T) == 2) {
        EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 0x0141, 0x0161), -32);
        EXPECT_EQ(this->callOnOne(Api<T>::compareLatin, 0x4100, 0x6100), -0x2000);
    }
}

TYPED_TEST(Compare, IgnoreCaseLatin_EveryPairOfLatinElementsIsFoldedRight) {
    using T = TypeParam;
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            ASSERT_EQ(this->callOnOne(Api<T>::compareLatin, static_cast<T>(a), static_cast<T>(b)),
                      foldLatin(a) - foldLatin(b));
        }
    }
}

TEST(CompareByTable, IgnoreCase_UsesTheLowercaseMapping) {
    const auto call = [](Zel16u a, Zel16u b) {
        int result = 7777777;
        EXPECT_EQ(zelsCompareIgnoreCase_16u(&a, &b, 1, &result), zelStatusOk);
        return result;
    };
    EXPECT_EQ(call(0x0130, 'i'), 0);
    EXPECT_EQ(call(0x212A, 'k'), 0x212A - 0x006B);
    EXPECT_EQ(call(0x01C4, 0x01C5), 0);
    EXPECT_EQ(call(0x01C6, 0x01C5), 0);
    EXPECT_EQ(call(0x03C2, 0x03A3), -1);  // final sigma stays, capital sigma becomes small sigma
    EXPECT_EQ(call(0xFF21, 0xFF41), 0);
    EXPECT_EQ(call(0x0410, 0x0431), -1);
    EXPECT_EQ(call(0xD800, 0xDC00), -0x400);
    EXPECT_EQ(call(0xFFFF, 0x0000), 0xFFFF);
}

TEST(CompareByTable, IgnoreCase_EveryCodeUnitEqualsItsLowercaseForm) {
    for (int c = 0; c < 0x10000; ++c) {
        const Zel16u a = static_cast<Zel16u>(c), b = static_cast<Zel16u>(foldByTable(c));
        int result = 7777777;
        ASSERT_EQ(zelsCompareIgnoreCase_16u(&a, &b, 1, &result), zelStatusOk);
        // A lowercase form that folds on would leave a difference.
        ASSERT_EQ(result, a == b ? 0 : b - foldByTable(b)) << c;
        ASSERT_EQ(zelsCompareIgnoreCase_16u(&b, &a, 1, &result), zelStatusOk);
        ASSERT_EQ(result, a == b ? 0 : foldByTable(b) - b) << c;
    }
}

// Two strings in different placements that differ in a few places. What lies around them differs
// everywhere, so that a look too far is a wrong result.
TYPED_TEST(Compare, AllMembersAgreeWithAPlainScanEverywhere) {
    using T = TypeParam;
    auto alphabet = test::trickyAlphabet<T>();
    if constexpr (sizeof(T) == 2) {
        alphabet.insert(alphabet.end(), {0x0130, 'i', 0x0410, 0x0430, 0x01C4, 0x01C5, 0x01C6,
                                         0x212A, 'k', 'K', 0x00DF, 0x0178, 0x00FF});
    }
    test::forEachPlacement([&](int len, int placement) {
        auto first = this->random.text(len, alphabet);
        auto second = first;
        for (int k = placement % 4; k > 0 && len > 0; --k) {
            second[static_cast<size_t>(this->random.below(len))] = this->random.pick(alphabet);
        }
        // Differences that a case-blind comparison passes over.
        if (placement % 5 == 0) {
            for (T& c : second) c = c >= 'a' && c <= 'z' ? static_cast<T>(c - 32) : c;
        }
        const Placed<T> a = this->firstArena.place(first, placement, 'a');
        const Placed<T> b =
            this->secondArena.place(second, (placement * 7 + len) % kPlacements, 'b');
        ASSERT_EQ(this->call(Api<T>::compare, a, b, len), expectedDifference<T>(a, b, len, noFold));
        ASSERT_EQ(this->call(Api<T>::equal, a, b, len), first == second ? 1 : 0);
        ASSERT_EQ(this->call(Api<T>::compareLatin, a, b, len),
                  expectedDifference<T>(a, b, len, foldLatin));
        if constexpr (sizeof(T) == 2) {
            ASSERT_EQ(this->call(zelsCompareIgnoreCase_16u, a, b, len),
                      expectedDifference<T>(a, b, len, foldByTable));
        }
    });
}

TYPED_TEST(Compare, ASingleDifferenceIsFoundAtEveryPosition) {
    using T = TypeParam;
    for (int len = 1; len <= kMaxLen; len += len < 70 ? 1 : 23) {
        for (const int placement : {0, 1, test::kBeforeGuard}) {
            const Placed<T> a = this->firstArena.place(len, test::kBeforeGuard, 'q');
            const Placed<T> b = this->secondArena.place(len, placement, 'q');
            for (int at = 0; at < len; ++at) {
                b[at] = '5';
                // A later, opposite difference must not show.
                if (at + 1 < len) b[len - 1] = 'z';
                ASSERT_EQ(this->call(Api<T>::compare, a, b, len), 'q' - '5');
                ASSERT_EQ(this->call(Api<T>::compareLatin, a, b, len), 'q' - '5');
                ASSERT_EQ(this->call(Api<T>::equal, a, b, len), 0);
                if constexpr (sizeof(T) == 2) {
                    ASSERT_EQ(this->call(zelsCompareIgnoreCase_16u, a, b, len), 'q' - '5');
                }
                b[at] = b[len - 1] = 'q';
            }
        }
    }
}

TYPED_TEST(Compare, AStringEqualsItself) {
    using T = TypeParam;
    const auto content = this->random.template text<T>(100);
    for (const Member<T> member : allMembers<T>()) {
        const int expected = member == Api<T>::equal ? 1 : 0;
        EXPECT_EQ(this->call(member, content.data(), content.data(), 100), expected);
    }
}

TYPED_TEST(Compare, LargeTextsAgreeWithAPlainScan) {
    using T = TypeParam;
    const std::vector<T> letters = {'a', 'B', 'c', 'D'};
    for (const int len : {4095, 4096, 4097, 65536, 100003}) {
        for (const int placement : {0, 1, 31, test::kBeforeGuard, test::kBehindGuard}) {
            const auto content = this->random.text(len, letters);
            const Placed<T> a = this->firstArena.place(content, placement);
            const Placed<T> b = this->secondArena.place(content, 5);
            ASSERT_EQ(this->call(Api<T>::compare, a, b, len), 0);
            ASSERT_EQ(this->call(Api<T>::equal, a, b, len), 1);
            b[this->random.below(len)] = 'C';
            b[this->random.below(len)] = '!';
            for (const Member<T> member : {Api<T>::compare, Api<T>::compareLatin}) {
                ASSERT_EQ(this->call(member, a, b, len),
                          expectedDifference<T>(a, b, len,
                                                member == Api<T>::compare ? noFold : foldLatin));
            }
            ASSERT_EQ(this->call(Api<T>::equal, a, b, len), 0);
            if constexpr (sizeof(T) == 2) {
                ASSERT_EQ(this->call(zelsCompareIgnoreCase_16u, a, b, len),
                          expectedDifference<T>(a, b, len, foldByTable));
            }
        }
    }
}

TYPED_TEST(Compare, LengthsNear31BitsDoNotOverflow) {
    using T = TypeParam;
    const test::GuardedPages pages(static_cast<size_t>(INT_MAX) * sizeof(T));
    if (!pages.available()) GTEST_SKIP() << "the system grants no such address range";
    T* const s = reinterpret_cast<T*>(pages.end()) - INT_MAX;
    s[0] = 'a';
    s[1] = 'c';
    for (const Member<T> member : allMembers<T>()) {
        const int result = this->call(member, s, s + 1, INT_MAX - 1);
        EXPECT_EQ(result, member == Api<T>::equal ? 0 : 'a' - 'c');
    }
}

}  // namespace
