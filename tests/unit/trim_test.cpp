// The trims, both widths.
#include <limits.h>

#include "test_support.h"

namespace {

using test::Arena;
using test::kPlacements;
using test::Placed;
using test::Random;

template <typename T>
struct Api;

template <>
struct Api<Zel8u> {
    static constexpr auto trimC = zelsTrimC_8u;
    static constexpr auto trimCInPlace = zelsTrimC_8u_I;
    static constexpr auto both = zelsTrimCAny_8u;
    static constexpr auto start = zelsTrimStartCAny_8u;
    static constexpr auto end = zelsTrimEndCAny_8u;
};

template <>
struct Api<Zel16u> {
    static constexpr auto trimC = zelsTrimC_16u;
    static constexpr auto trimCInPlace = zelsTrimC_16u_I;
    static constexpr auto both = zelsTrimCAny_16u;
    static constexpr auto start = zelsTrimStartCAny_16u;
    static constexpr auto end = zelsTrimEndCAny_16u;
};

// What must be kept of a text.
template <typename T>
std::vector<T> kept(const std::vector<T>& src, const std::vector<T>& set, bool atStart,
                    bool atEnd) {
    const auto inSet = [&](T c) { return std::find(set.begin(), set.end(), c) != set.end(); };
    auto first = src.begin(), last = src.end();
    while (atStart && first != last && inSet(*first)) ++first;
    while (atEnd && last != first && inSet(last[-1])) --last;
    return std::vector<T>(first, last);
}

template <typename T>
class Trim : public testing::Test {
protected:
    Arena<T> srcArena{1 << 17};
    Arena<T> setArena{1 << 12};
    Arena<T> dstArena{1 << 17};
    Random random{17};

    // Trims into a buffer that is larger than needed and gives what was written.
    static std::vector<T> trimC(const char* text, T val) {
        const auto src = test::text<T>(text);
        std::vector<T> dst(src.size() + 1, T(9));
        int len = 77;
        EXPECT_EQ(Api<T>::trimC(src.empty() ? dst.data() : src.data(), static_cast<int>(src.size()),
                                val, dst.data(), &len),
                  zelStatusOk);
        return written(dst, len);
    }

    template <typename Member>
    static std::vector<T> trimCAny(Member member, const char* text, const char* set) {
        const auto src = test::text<T>(text), trimmed = test::text<T>(set);
        const T none = 0;
        std::vector<T> dst(src.size() + 1, T(9));
        int len = 77;
        EXPECT_EQ(member(src.empty() ? &none : src.data(), static_cast<int>(src.size()),
                         trimmed.empty() ? &none : trimmed.data(), static_cast<int>(trimmed.size()),
                         dst.data(), &len),
                  zelStatusOk);
        return written(dst, len);
    }

private:
    // The result; everything behind it must be untouched.
    static std::vector<T> written(const std::vector<T>& dst, int len) {
        EXPECT_TRUE(std::all_of(dst.begin() + len, dst.end(), [](T c) { return c == 9; }));
        return std::vector<T>(dst.begin(), dst.begin() + len);
    }
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(Trim, Widths);

TYPED_TEST(Trim, NullPointersComeBeforeNegativeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', ' '};
    T dst[] = {9, 9};
    int dstLen = 77;
    for (const int len : {2, 0, -1, INT_MIN}) {
        EXPECT_EQ(A::trimC(nullptr, len, ' ', dst, &dstLen), zelStatusNullPointer);
        EXPECT_EQ(A::trimC(s, len, ' ', nullptr, &dstLen), zelStatusNullPointer);
        EXPECT_EQ(A::trimC(s, len, ' ', dst, nullptr), zelStatusNullPointer);
        EXPECT_EQ(A::trimC(nullptr, len, ' ', nullptr, nullptr), zelStatusNullPointer);
        int inOut = len;
        EXPECT_EQ(A::trimCInPlace(nullptr, &inOut, ' '), zelStatusNullPointer);
        EXPECT_EQ(A::trimCInPlace(dst, nullptr, ' '), zelStatusNullPointer);
        EXPECT_EQ(inOut, len);
        for (const auto member : {A::both, A::start, A::end}) {
            EXPECT_EQ(member(nullptr, len, s, 1, dst, &dstLen), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, nullptr, 1, dst, &dstLen), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, nullptr, 0, dst, &dstLen), zelStatusNullPointer);
            EXPECT_EQ(member(s, 2, nullptr, len, dst, &dstLen), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, s, 1, nullptr, &dstLen), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, s, 1, dst, nullptr), zelStatusNullPointer);
            EXPECT_EQ(member(nullptr, len, nullptr, len, nullptr, nullptr), zelStatusNullPointer);
        }
    }
    EXPECT_EQ(dstLen, 77);
    EXPECT_EQ(dst[0], 9);
}

TYPED_TEST(Trim, NegativeLengthsAreRefusedAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', ' '};
    T dst[] = {9, 9};
    int dstLen = 77;
    for (const int bad : {-1, INT_MIN}) {
        EXPECT_EQ(A::trimC(s, bad, ' ', dst, &dstLen), zelStatusLengthError);
        int inOut = bad;
        EXPECT_EQ(A::trimCInPlace(dst, &inOut, ' '), zelStatusLengthError);
        EXPECT_EQ(inOut, bad);
        for (const auto member : {A::both, A::start, A::end}) {
            EXPECT_EQ(member(s, bad, s, 1, dst, &dstLen), zelStatusLengthError);
            EXPECT_EQ(member(s, 2, s, bad, dst, &dstLen), zelStatusLengthError);
            EXPECT_EQ(member(s, 0, s, bad, dst, &dstLen), zelStatusLengthError);
            EXPECT_EQ(member(s, bad, s, bad, dst, &dstLen), zelStatusLengthError);
        }
    }
    EXPECT_EQ(dstLen, 77);
    EXPECT_EQ(dst[0], 9);
}

TYPED_TEST(Trim, TrimC_CutsBothEnds) {
    using T = TypeParam;
    EXPECT_EQ(this->trimC("  a ", ' '), test::text<T>("a"));
    EXPECT_EQ(this->trimC("a b", ' '), test::text<T>("a b"));
    EXPECT_EQ(this->trimC("  ", 'x'), test::text<T>("  "));
}

TYPED_TEST(Trim, TrimC_OfNothingElseGivesTheEmptyString) {
    using T = TypeParam;
    EXPECT_EQ(this->trimC("                                        ", ' '), std::vector<T>());
    EXPECT_EQ(this->trimC(" ", ' '), std::vector<T>());
    EXPECT_EQ(this->trimC("", ' '), std::vector<T>());
}

TYPED_TEST(Trim, TrimCAny_EachMemberCutsItsEnds) {
    using T = TypeParam;
    using A = Api<T>;
    EXPECT_EQ(this->trimCAny(A::both, "\t a b \n", " \t\n"), test::text<T>("a b"));
    EXPECT_EQ(this->trimCAny(A::start, "\t a b \n", " \t\n"), test::text<T>("a b \n"));
    EXPECT_EQ(this->trimCAny(A::end, "\t a b \n", " \t\n"), test::text<T>("\t a b"));
}

TYPED_TEST(Trim, TrimCAny_AnEmptySetCopiesTheSource) {
    using T = TypeParam;
    using A = Api<T>;
    for (const auto member : {A::both, A::start, A::end}) {
        EXPECT_EQ(this->trimCAny(member, " a ", ""), test::text<T>(" a "));
        EXPECT_EQ(this->trimCAny(member, "", ""), std::vector<T>());
    }
}

TYPED_TEST(Trim, TrimCAny_OfNothingElseGivesTheEmptyString) {
    using T = TypeParam;
    using A = Api<T>;
    for (const auto member : {A::both, A::start, A::end}) {
        EXPECT_EQ(this->trimCAny(member, " \t \t ", "\t "), std::vector<T>());
        EXPECT_EQ(this->trimCAny(member, "", "\t "), std::vector<T>());
    }
}

TYPED_TEST(Trim, TrimCInPlace_TwentyElementsKeepTheirFifteenMiddleOnes) {
    using T = TypeParam;
    const auto content = test::text<T>("***0123456789abcde**");
    for (int placement = 0; placement < kPlacements; ++placement) {
        const Placed<T> text = this->srcArena.place(content, placement, '*');
        int len = 20;
        ASSERT_EQ(Api<T>::trimCInPlace(text, &len, '*'), zelStatusOk);
        ASSERT_EQ(len, 15);
        // The kept part moved down by three; the last five elements were not written.
        ASSERT_EQ(std::vector<T>(text.data, text.data + 20), test::text<T>("0123456789abcdecde**"));
        ASSERT_TRUE(text.intact());
    }
}

// A text of `len` elements with runs of the set's elements at both ends.
template <typename T>
std::vector<T> paddedText(Random& random, int len, const std::vector<T>& set) {
    auto text = random.text(len, test::trickyAlphabet<T>());
    if (set.empty()) return text;
    const int start = random.below(len + 1), end = random.below(len + 1);
    for (int i = 0; i < len; ++i) {
        if (i < start / 2 || i >= len - end / 2) text[static_cast<size_t>(i)] = random.pick(set);
    }
    return text;
}

// The trimmed elements also lie around the text, so that a look too far is a wrong result.
TYPED_TEST(Trim, TrimC_AgreesWithAPlainScanEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    const auto alphabet = test::trickyAlphabet<T>();
    const auto check = [&](int len, int placement) {
        const T val = this->random.pick(alphabet);
        auto content = paddedText<T>(this->random, len, {val});
        if (placement % 9 == 0) std::fill(content.begin(), content.end(), val);
        const auto expected = kept<T>(content, {val}, true, true);
        const int lenKept = static_cast<int>(expected.size());
        const Placed<T> src =
            this->srcArena.place(content, (placement * 7 + len) % kPlacements, val);

        const Placed<T> dst = this->dstArena.place(lenKept, placement, val);
        int dstLen = 77;
        ASSERT_EQ(A::trimC(src, len, val, dst, &dstLen), zelStatusOk);
        ASSERT_EQ(dstLen, lenKept) << len << " at " << placement;
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));
        ASSERT_TRUE(dst.intact() && src.intact());

        for (const bool named : {true, false}) {
            const Placed<T> both = this->dstArena.place(content, placement, val);
            int newLen = len;
            ASSERT_EQ(named ? A::trimCInPlace(both, &newLen, val)
                            : A::trimC(both, len, val, both, &newLen),
                      zelStatusOk);
            ASSERT_EQ(newLen, lenKept) << len << " at " << placement;
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), both.begin()));
            // Bytes behind the new end stay as they were.
            ASSERT_TRUE(std::equal(both.data + newLen, both.end(), content.begin() + newLen));
            ASSERT_TRUE(both.intact());
        }
    };
    test::forEachPlacement(check);
    for (const int len : {4096, 65537, 100003}) check(len, len % kPlacements);
}

TYPED_TEST(Trim, TrimCAny_AgreesWithAPlainScanEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    const auto alphabet = test::trickyAlphabet<T>();
    const auto check = [&](int len, int placement) {
        const int lenSet = placement % 7 == 0 ? this->random.below(80) : this->random.below(5);
        const auto setText = lenSet < 5 ? this->random.text(lenSet, alphabet)
                                        : this->random.template text<T>(lenSet);
        const auto content = paddedText<T>(this->random, len, setText);
        const T around = setText.empty() ? T('x') : setText.back();
        const Placed<T> set =
            this->setArena.place(setText, (placement * 3 + len) % kPlacements, 'a');
        const Placed<T> src =
            this->srcArena.place(content, (placement * 7 + len) % kPlacements, around);
        const struct {
            ZelStatus (*member)(const T*, int, const T*, int, T*, int*);
            bool start, end;
        } members[] = {{A::both, true, true}, {A::start, true, false}, {A::end, false, true}};
        for (const auto& m : members) {
            const auto expected = kept<T>(content, setText, m.start, m.end);
            const int lenKept = static_cast<int>(expected.size());
            const Placed<T> dst = this->dstArena.place(lenKept, placement, around);
            int dstLen = 77;
            ASSERT_EQ(m.member(src, len, set, lenSet, dst, &dstLen), zelStatusOk);
            ASSERT_EQ(dstLen, lenKept) << len << " at " << placement;
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin()));
            ASSERT_TRUE(dst.intact() && src.intact() && set.intact());

            const Placed<T> both = this->dstArena.place(content, placement, around);
            ASSERT_EQ(m.member(both, len, set, lenSet, both, &dstLen), zelStatusOk);
            ASSERT_EQ(dstLen, lenKept) << len << " at " << placement;
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), both.begin()));
            ASSERT_TRUE(std::equal(both.data + dstLen, both.end(), content.begin() + dstLen));
            ASSERT_TRUE(both.intact());
        }
    };
    test::forEachPlacement(check);
    for (const int len : {4096, 65537}) check(len, len % kPlacements);
}

TYPED_TEST(Trim, LengthsNear31BitsDoNotOverflow) {
    using T = TypeParam;
    using A = Api<T>;
    const test::GuardedPages pages(static_cast<size_t>(INT_MAX) * sizeof(T));
    if (!pages.available()) GTEST_SKIP() << "the system grants no such address range";
    T* const src = reinterpret_cast<T*>(pages.end()) - INT_MAX;
    // Everything but a few elements at one end is cut, or nothing is and the part stays in place.
    src[0] = src[INT_MAX - 1] = 'x';
    int len = INT_MAX;
    EXPECT_EQ(A::trimCInPlace(src, &len, '*'), zelStatusOk);
    EXPECT_EQ(len, INT_MAX);
    const T set[] = {'*', 'x'};
    EXPECT_EQ(A::start(src, INT_MAX, set, 1, src, &len), zelStatusOk);
    EXPECT_EQ(len, INT_MAX);
    EXPECT_EQ(A::end(src, INT_MAX, set, 2, src, &len), zelStatusOk);
    EXPECT_EQ(len, INT_MAX - 1);
}

}  // namespace
