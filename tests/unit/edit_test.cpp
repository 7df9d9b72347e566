// Insertion, removal, replacement, concatenation and splitting, both widths.
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
    static constexpr auto insert = zelsInsert_8u;
    static constexpr auto insertInPlace = zelsInsert_8u_I;
    static constexpr auto remove = zelsRemove_8u;
    static constexpr auto removeInPlace = zelsRemove_8u_I;
    static constexpr auto replaceC = zelsReplaceC_8u;
    static constexpr auto concat = zelsConcat_8u;
    static constexpr auto concatList = zelsConcat_8u_D2L;
    static constexpr auto concatListC = zelsConcatC_8u_D2L;
    static constexpr auto splitC = zelsSplitC_8u_D2L;
};

template <>
struct Api<Zel16u> {
    static constexpr auto insert = zelsInsert_16u;
    static constexpr auto insertInPlace = zelsInsert_16u_I;
    static constexpr auto remove = zelsRemove_16u;
    static constexpr auto removeInPlace = zelsRemove_16u_I;
    static constexpr auto replaceC = zelsReplaceC_16u;
    static constexpr auto concat = zelsConcat_16u;
    static constexpr auto concatList = zelsConcat_16u_D2L;
    static constexpr auto concatListC = zelsConcatC_16u_D2L;
    static constexpr auto splitC = zelsSplitC_16u_D2L;
};

template <typename T>
std::vector<T> content(const Placed<T>& run, int len) {
    return std::vector<T>(run.data, run.data + len);
}

template <typename T>
class Edit : public testing::Test {
protected:
    Arena<T> srcArena{1 << 17};
    Arena<T> otherArena{1 << 12};
    Arena<T> dstArena{1 << 18};
    Random random{13};
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(Edit, Widths);

// ---- Insert ----

TYPED_TEST(Edit, Insert_NullPointersComeBeforeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 'c'};
    T dst[] = {9, 9, 9, 9, 9, 9};
    int len = 3;
    for (const int bad : {3, -1, INT_MIN}) {
        EXPECT_EQ(A::insert(nullptr, bad, s, 1, dst, 0), zelStatusNullPointer);
        EXPECT_EQ(A::insert(s, bad, nullptr, 1, dst, 0), zelStatusNullPointer);
        EXPECT_EQ(A::insert(s, bad, s, 1, nullptr, 0), zelStatusNullPointer);
        EXPECT_EQ(A::insert(nullptr, bad, nullptr, bad, nullptr, bad), zelStatusNullPointer);
        EXPECT_EQ(A::insert(s, 3, nullptr, bad, dst, bad), zelStatusNullPointer);
        EXPECT_EQ(A::insertInPlace(nullptr, bad, dst, &len, 0), zelStatusNullPointer);
        EXPECT_EQ(A::insertInPlace(s, bad, nullptr, &len, 0), zelStatusNullPointer);
        EXPECT_EQ(A::insertInPlace(s, bad, dst, nullptr, bad), zelStatusNullPointer);
    }
    EXPECT_EQ(A::insert(nullptr, 3, s, 0, dst, 0), zelStatusNullPointer);
    EXPECT_EQ(A::insertInPlace(nullptr, 0, dst, &len, 0), zelStatusNullPointer);
    EXPECT_EQ(len, 3);
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, Insert_LengthsAndTheIndexMustLieInTheString) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 'c'};
    T dst[] = {9, 9, 9, 9, 9, 9};
    for (const int bad : {-1, INT_MIN}) {
        EXPECT_EQ(A::insert(s, bad, s, 1, dst, 0), zelStatusLengthError);
        EXPECT_EQ(A::insert(s, 3, s, bad, dst, 0), zelStatusLengthError);
        EXPECT_EQ(A::insert(s, 3, s, 1, dst, bad), zelStatusLengthError);
        EXPECT_EQ(A::insert(s, bad, s, bad, dst, bad), zelStatusLengthError);
        EXPECT_EQ(A::insert(s, bad, s, 0, dst, 0), zelStatusLengthError);
        int len = 3, badLen = bad;
        EXPECT_EQ(A::insertInPlace(s, bad, dst, &len, 0), zelStatusLengthError);
        EXPECT_EQ(A::insertInPlace(s, 1, dst, &len, bad), zelStatusLengthError);
        EXPECT_EQ(A::insertInPlace(s, 0, dst, &len, bad), zelStatusLengthError);
        EXPECT_EQ(A::insertInPlace(s, 1, dst, &badLen, 0), zelStatusLengthError);
        EXPECT_EQ(A::insertInPlace(s, 0, dst, &badLen, 0), zelStatusLengthError);
        EXPECT_EQ(len, 3);
        EXPECT_EQ(badLen, bad);
    }
    for (const int start : {4, INT_MAX}) {
        int len = 3;
        EXPECT_EQ(A::insert(s, 3, s, 1, dst, start), zelStatusLengthError);
        EXPECT_EQ(A::insert(s, 3, s, 0, dst, start), zelStatusLengthError);
        EXPECT_EQ(A::insertInPlace(s, 1, dst, &len, start), zelStatusLengthError);
        EXPECT_EQ(len, 3);
    }
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, Insert_OfNothingLeavesTheDestinationAlone) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 'c'};
    T dst[] = {9, 9, 9};
    int len = 3;
    EXPECT_EQ(A::insert(s, 3, s, 0, dst, 1), zelStatusOk);
    EXPECT_EQ(A::insertInPlace(s, 0, dst, &len, 1), zelStatusOk);
    EXPECT_EQ(len, 3);
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, Insert_AtTheEndAppends) {
    using T = TypeParam;
    const auto src = test::text<T>("abc"), piece = test::text<T>("xy");
    std::vector<T> dst(5);
    EXPECT_EQ(Api<T>::insert(src.data(), 3, piece.data(), 2, dst.data(), 3), zelStatusOk);
    EXPECT_EQ(dst, test::text<T>("abcxy"));
}

TYPED_TEST(Edit, Insert_IntoAnEmptyStringGivesThePiece) {
    using T = TypeParam;
    const auto piece = test::text<T>("xy");
    const T none = 0;
    std::vector<T> dst(2);
    int len = 0;
    EXPECT_EQ(Api<T>::insert(&none, 0, piece.data(), 2, dst.data(), 0), zelStatusOk);
    EXPECT_EQ(dst, piece);
    EXPECT_EQ(Api<T>::insertInPlace(piece.data(), 1, dst.data(), &len, 0), zelStatusOk);
    EXPECT_EQ(len, 1);
}

TYPED_TEST(Edit, Insert_ComposesHeadPieceAndTailEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    test::forEachPlacement([&](int len, int placement) {
        const int lenInsert = 1 + this->random.below(placement % 4 == 0 ? kMaxLen : 20);
        const int start = this->random.below(len + 1);
        const auto srcText = this->random.template text<T>(len);
        const auto pieceText = this->random.template text<T>(lenInsert);
        std::vector<T> expected = srcText;
        expected.insert(expected.begin() + start, pieceText.begin(), pieceText.end());
        const int lenDst = len + lenInsert;
        const Placed<T> src = this->srcArena.place(srcText, (placement * 7 + len) % kPlacements);
        const Placed<T> piece =
            this->otherArena.place(pieceText, (placement * 3 + len) % kPlacements);

        const Placed<T> dst = this->dstArena.place(lenDst, placement);
        ASSERT_EQ(A::insert(src, len, piece, lenInsert, dst, start), zelStatusOk);
        ASSERT_EQ(content(dst, lenDst), expected) << len << " at " << placement;
        ASSERT_TRUE(dst.intact() && src.intact() && piece.intact());

        // The destination may be the source, and the in-place member is the same.
        for (const bool named : {true, false}) {
            const Placed<T> both = this->dstArena.place(lenDst, placement);
            std::copy(srcText.begin(), srcText.end(), both.data);
            int newLen = len;
            ASSERT_EQ(named ? A::insertInPlace(piece, lenInsert, both, &newLen, start)
                            : A::insert(both, len, piece, lenInsert, both, start),
                      zelStatusOk);
            ASSERT_EQ(content(both, lenDst), expected) << len << " at " << placement;
            ASSERT_TRUE(both.intact());
            ASSERT_EQ(newLen, named ? lenDst : len);
        }
    });
}

// ---- Remove ----

TYPED_TEST(Edit, Remove_NullPointersComeBeforeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 'c'};
    T dst[] = {9, 9, 9};
    int len = 3;
    for (const int bad : {3, -1, INT_MIN}) {
        EXPECT_EQ(A::remove(nullptr, bad, dst, 0, 1), zelStatusNullPointer);
        EXPECT_EQ(A::remove(s, bad, nullptr, 0, 1), zelStatusNullPointer);
        EXPECT_EQ(A::remove(nullptr, bad, nullptr, bad, bad), zelStatusNullPointer);
        EXPECT_EQ(A::removeInPlace(nullptr, &len, 0, bad), zelStatusNullPointer);
        EXPECT_EQ(A::removeInPlace(dst, nullptr, bad, bad), zelStatusNullPointer);
    }
    EXPECT_EQ(len, 3);
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, Remove_TheRangeMustLieInTheString) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b', 'c'};
    T dst[] = {9, 9, 9};
    const struct {
        int len, start, lenRemove;
    } cases[] = {
        {3, 0, -1},
        {3, -1, 1},
        {3, -1, -1},
        {3, 0, 4},
        {3, 2, 2},
        {3, 4, 0},
        {3, INT_MIN, 0},
        {3, 0, INT_MIN},
        {3, 0, INT_MAX},
        {3, INT_MAX, 0},
        {3, INT_MAX, 1},  // a 32-bit sum would be negative
        {3, INT_MAX, INT_MAX},
        {3, 1, INT_MAX},
        {3, INT_MAX - 1, 2},
        {-1, 0, 0},
        {-1, 0, 1},
        {INT_MIN, 0, 0},
        {INT_MIN, 1, 1},
        {0, 0, 1},
        {0, 1, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(A::remove(s, c.len, dst, c.start, c.lenRemove), zelStatusLengthError)
            << c.len << ' ' << c.start << ' ' << c.lenRemove;
        int len = c.len;
        EXPECT_EQ(A::removeInPlace(dst, &len, c.start, c.lenRemove), zelStatusLengthError)
            << c.len << ' ' << c.start << ' ' << c.lenRemove;
        EXPECT_EQ(len, c.len);
    }
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, Remove_UpToTheEndCutsTheTailAndMovesNothing) {
    using T = TypeParam;
    auto text = test::text<T>("abcdef");
    int len = 6;
    EXPECT_EQ(Api<T>::removeInPlace(text.data(), &len, 4, 2), zelStatusOk);
    EXPECT_EQ(len, 4);
    EXPECT_EQ(text, test::text<T>("abcdef"));
}

TYPED_TEST(Edit, Remove_JoinsHeadAndTailEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    test::forEachPlacement([&](int len, int placement) {
        const int start = this->random.below(len + 1);
        const int lenRemove =
            this->random.below(std::min(len - start, placement % 2 ? 9 : 999) + 1);
        const auto srcText = this->random.template text<T>(len);
        std::vector<T> expected = srcText;
        expected.erase(expected.begin() + start, expected.begin() + start + lenRemove);
        const int lenDst = len - lenRemove;
        const Placed<T> src = this->srcArena.place(srcText, (placement * 7 + len) % kPlacements);

        const Placed<T> dst = this->dstArena.place(lenDst, placement);
        ASSERT_EQ(A::remove(src, len, dst, start, lenRemove), zelStatusOk);
        ASSERT_EQ(content(dst, lenDst), expected) << len << " at " << placement;
        ASSERT_TRUE(dst.intact() && src.intact());

        // In place. What lies behind the new end stays as it was.
        for (const bool named : {true, false}) {
            const Placed<T> both = this->dstArena.place(srcText, placement);
            int newLen = len;
            ASSERT_EQ(named ? A::removeInPlace(both, &newLen, start, lenRemove)
                            : A::remove(both, len, both, start, lenRemove),
                      zelStatusOk);
            ASSERT_EQ(content(both, lenDst), expected) << len << " at " << placement;
            ASSERT_TRUE(std::equal(both.data + lenDst, both.end(), srcText.begin() + lenDst));
            ASSERT_TRUE(both.intact());
            ASSERT_EQ(newLen, named ? lenDst : len);
        }
    });
}

TYPED_TEST(Edit, Remove_EveryPieceOfAShortText) {
    using T = TypeParam;
    using A = Api<T>;
    for (int len = 0; len <= 68; ++len) {
        const auto srcText = this->random.template text<T>(len);
        const Placed<T> src = this->srcArena.place(srcText, test::kBeforeGuard);
        for (int start = 0; start <= len; ++start) {
            for (int lenRemove = 0; lenRemove <= len - start; ++lenRemove) {
                std::vector<T> expected = srcText;
                expected.erase(expected.begin() + start, expected.begin() + start + lenRemove);
                const Placed<T> dst = this->dstArena.place(len - lenRemove, test::kBeforeGuard);
                ASSERT_EQ(A::remove(src, len, dst, start, lenRemove), zelStatusOk);
                ASSERT_EQ(content(dst, len - lenRemove), expected)
                    << len << " without " << lenRemove << " at " << start;
                ASSERT_TRUE(dst.intact());
            }
        }
    }
}

TYPED_TEST(Edit, Insert_EveryPieceIntoAShortText) {
    using T = TypeParam;
    using A = Api<T>;
    for (int total = 1; total <= 68; ++total) {
        const auto srcText = this->random.template text<T>(total);
        for (int lenInsert = 1; lenInsert <= total; ++lenInsert) {
            const int len = total - lenInsert;
            const Placed<T> piece = this->otherArena.place(lenInsert, test::kBeforeGuard);
            const Placed<T> src = this->srcArena.place(len, test::kBeforeGuard);
            for (int start = 0; start <= len; ++start) {
                const auto gap = srcText.begin() + start;
                std::copy(srcText.begin(), gap, src.data);
                std::copy(gap, gap + lenInsert, piece.data);
                std::copy(gap + lenInsert, srcText.end(), src.data + start);
                const Placed<T> dst = this->dstArena.place(total, test::kBeforeGuard);
                ASSERT_EQ(A::insert(src, len, piece, lenInsert, dst, start), zelStatusOk);
                ASSERT_EQ(content(dst, total), srcText)
                    << len << " with " << lenInsert << " at " << start;
                ASSERT_TRUE(dst.intact());
            }
        }
    }
}

TYPED_TEST(Edit, InsertAndRemove_LargeTexts) {
    using T = TypeParam;
    using A = Api<T>;
    for (const int len : {4096, 65537, 100003}) {
        for (const int start : {0, 1, len / 2, len - 1, len}) {
            const auto srcText = this->random.template text<T>(len);
            const auto pieceText = this->random.template text<T>(1000);
            std::vector<T> expected = srcText;
            expected.insert(expected.begin() + start, pieceText.begin(), pieceText.end());
            const Placed<T> both = this->dstArena.place(len + 1000, test::kBeforeGuard);
            std::copy(srcText.begin(), srcText.end(), both.data);
            int newLen = len;
            ASSERT_EQ(A::insertInPlace(pieceText.data(), 1000, both, &newLen, start), zelStatusOk);
            ASSERT_EQ(newLen, len + 1000);
            ASSERT_EQ(content(both, newLen), expected);
            ASSERT_EQ(A::removeInPlace(both, &newLen, start, 1000), zelStatusOk);
            ASSERT_EQ(newLen, len);
            ASSERT_EQ(content(both, newLen), srcText);
            ASSERT_TRUE(both.intact());
        }
    }
}

// The pages between the two ends are never touched.
TYPED_TEST(Edit, InsertAndRemove_LengthsNear31BitsAreExact) {
    using T = TypeParam;
    using A = Api<T>;
    const test::GuardedPages pages(static_cast<size_t>(INT_MAX) * sizeof(T));
    if (!pages.available()) GTEST_SKIP() << "the system grants no such address range";
    T* const s = reinterpret_cast<T*>(pages.end()) - INT_MAX;
    const auto tail = test::text<T>("0123456789");
    std::copy(tail.begin(), tail.end(), s + (INT_MAX - 10));
    int len = INT_MAX;
    EXPECT_EQ(A::removeInPlace(s, &len, INT_MAX - 9, 3), zelStatusOk);
    EXPECT_EQ(len, INT_MAX - 3);
    EXPECT_EQ(std::vector<T>(s + (INT_MAX - 10), s + len), test::text<T>("0456789"));
    const auto piece = test::text<T>("abc");
    EXPECT_EQ(A::insertInPlace(piece.data(), 3, s, &len, INT_MAX - 8), zelStatusOk);
    EXPECT_EQ(len, INT_MAX);
    EXPECT_EQ(std::vector<T>(s + (INT_MAX - 10), s + len), test::text<T>("04abc56789"));
    EXPECT_EQ(A::removeInPlace(s, &len, INT_MAX, 1), zelStatusLengthError);
    EXPECT_EQ(A::removeInPlace(s, &len, INT_MAX - 1, 2), zelStatusLengthError);
    EXPECT_EQ(A::removeInPlace(s, &len, 0, INT_MAX), zelStatusOk);
    EXPECT_EQ(len, 0);
}

// ---- ReplaceC ----

TYPED_TEST(Edit, ReplaceC_NullPointersComeBeforeNegativeLengths) {
    using T = TypeParam;
    const T s[] = {'a', 'b'};
    T dst[] = {9, 9};
    for (const int len : {2, 0, -1, INT_MIN}) {
        EXPECT_EQ(Api<T>::replaceC(nullptr, dst, len, 'a', 'b'), zelStatusNullPointer);
        EXPECT_EQ(Api<T>::replaceC(s, nullptr, len, 'a', 'b'), zelStatusNullPointer);
        EXPECT_EQ(Api<T>::replaceC(nullptr, nullptr, len, 'a', 'b'), zelStatusNullPointer);
    }
    for (const int len : {-1, INT_MIN}) {
        EXPECT_EQ(Api<T>::replaceC(s, dst, len, 'a', 'b'), zelStatusLengthError);
    }
    EXPECT_EQ(Api<T>::replaceC(s, dst, 0, 'a', 'b'), zelStatusOk);
    EXPECT_EQ(dst[0], 9);
}

TYPED_TEST(Edit, ReplaceC_WritesEveryElementEverywhere) {
    using T = TypeParam;
    const auto alphabet = test::trickyAlphabet<T>();
    const auto check = [&](int len, int placement) {
        const T valOld = this->random.pick(alphabet), valNew = this->random.pick(alphabet);
        const auto srcText = this->random.text(len, alphabet);
        std::vector<T> expected = srcText;
        std::replace(expected.begin(), expected.end(), valOld, valNew);
        const Placed<T> src = this->srcArena.place(srcText, (placement * 7 + len) % kPlacements);
        const Placed<T> dst = this->dstArena.place(len, placement, valOld);
        ASSERT_EQ(Api<T>::replaceC(src, dst, len, valOld, valNew), zelStatusOk);
        ASSERT_EQ(content(dst, len), expected) << len << " at " << placement;
        ASSERT_TRUE(dst.intact() && src.intact());
        const Placed<T> both = this->dstArena.place(srcText, placement, valOld);
        ASSERT_EQ(Api<T>::replaceC(both, both, len, valOld, valNew), zelStatusOk);
        ASSERT_EQ(content(both, len), expected) << len << " at " << placement;
        ASSERT_TRUE(both.intact());
    };
    test::forEachPlacement(check);
    for (const int len : {4096, 65537, 100003}) check(len, len % 64);
}

// ---- Concat ----

TYPED_TEST(Edit, Concat_NullPointersComeBeforeNegativeLengths) {
    using T = TypeParam;
    const T s[] = {'a', 'b'};
    T dst[] = {9, 9, 9, 9};
    for (const int len : {2, 0, -1, INT_MIN}) {
        EXPECT_EQ(Api<T>::concat(nullptr, len, s, 2, dst), zelStatusNullPointer);
        EXPECT_EQ(Api<T>::concat(s, 2, nullptr, len, dst), zelStatusNullPointer);
        EXPECT_EQ(Api<T>::concat(s, len, s, 2, nullptr), zelStatusNullPointer);
        EXPECT_EQ(Api<T>::concat(s, len, nullptr, 2, dst), zelStatusNullPointer);
    }
    for (const int len : {-1, INT_MIN}) {
        EXPECT_EQ(Api<T>::concat(s, len, s, 2, dst), zelStatusLengthError);
        EXPECT_EQ(Api<T>::concat(s, 2, s, len, dst), zelStatusLengthError);
        EXPECT_EQ(Api<T>::concat(s, len, s, len, dst), zelStatusLengthError);
    }
    EXPECT_EQ(Api<T>::concat(s, 0, s, 0, dst), zelStatusOk);
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, Concat_JoinsTwoStringsEverywhere) {
    using T = TypeParam;
    const auto check = [&](int len, int placement) {
        const int len1 = placement % 3 == 0 ? len : this->random.below(len + 1);
        const auto text1 = this->random.template text<T>(len1);
        const auto text2 = this->random.template text<T>(len - len1);
        std::vector<T> expected = text1;
        expected.insert(expected.end(), text2.begin(), text2.end());
        const Placed<T> src1 = this->srcArena.place(text1, (placement * 7 + len) % kPlacements);
        const Placed<T> src2 = this->otherArena.place(text2, (placement * 3 + len) % kPlacements);
        const Placed<T> dst = this->dstArena.place(len, placement);
        ASSERT_EQ(Api<T>::concat(src1, len1, src2, len - len1, dst), zelStatusOk);
        ASSERT_EQ(content(dst, len), expected) << len << " at " << placement;
        ASSERT_TRUE(dst.intact() && src1.intact() && src2.intact());
    };
    test::forEachPlacement(check);
    check(4000, 3);
}

// ---- Concat of a list ----

TYPED_TEST(Edit, ConcatList_ChecksPointersThenTheCount) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b'};
    const T* const list[] = {s, s};
    const int lens[] = {2, 2};
    T dst[] = {9, 9, 9, 9, 9};
    for (const int count : {2, 0, -1, INT_MIN}) {
        EXPECT_EQ(A::concatList(nullptr, lens, count, dst), zelStatusNullPointer);
        EXPECT_EQ(A::concatList(list, nullptr, count, dst), zelStatusNullPointer);
        EXPECT_EQ(A::concatList(list, lens, count, nullptr), zelStatusNullPointer);
        EXPECT_EQ(A::concatListC(nullptr, lens, count, ',', dst), zelStatusNullPointer);
        EXPECT_EQ(A::concatListC(list, nullptr, count, ',', dst), zelStatusNullPointer);
        EXPECT_EQ(A::concatListC(list, lens, count, ',', nullptr), zelStatusNullPointer);
    }
    for (const int count : {0, -1, INT_MIN}) {
        EXPECT_EQ(A::concatList(list, lens, count, dst), zelStatusSizeError);
        EXPECT_EQ(A::concatListC(list, lens, count, ',', dst), zelStatusSizeError);
    }
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Edit, ConcatList_AnEntryIsCheckedWhenTheWorkReachesIt) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b'};
    const T* const nullSecond[] = {s, nullptr, nullptr};
    const T* const list[] = {s, s, s};
    const int lens[] = {2, 2, 2}, negativeSecond[] = {2, -1, -1}, nullAndNegative[] = {2, -1, 2};
    // The separator of a bad entry is not written.
    const std::vector<T> written = {'a', 'b', 9, 9, 9, 9, 9, 9};
    const auto check = [&](const T* const* srcs, const int* srcLens, ZelStatus status) {
        std::vector<T> dst(8, 9);
        EXPECT_EQ(A::concatList(srcs, srcLens, 3, dst.data()), status);
        EXPECT_EQ(dst, written);
        std::fill(dst.begin(), dst.end(), T(9));
        EXPECT_EQ(A::concatListC(srcs, srcLens, 3, ',', dst.data()), status);
        EXPECT_EQ(dst, written);
    };
    check(nullSecond, lens, zelStatusNullPointer);
    check(list, negativeSecond, zelStatusLengthError);
    check(nullSecond, nullAndNegative, zelStatusNullPointer);

    const T* const nullFirst[] = {nullptr, s};
    std::vector<T> dst(8, 9);
    EXPECT_EQ(A::concatList(nullFirst, lens, 2, dst.data()), zelStatusNullPointer);
    EXPECT_EQ(A::concatListC(nullFirst, lens, 2, ',', dst.data()), zelStatusNullPointer);
    EXPECT_EQ(dst, std::vector<T>(8, 9));
    // Entries behind the count are not looked at.
    EXPECT_EQ(A::concatList(nullSecond, lens, 1, dst.data()), zelStatusOk);
    EXPECT_EQ(A::concatListC(nullSecond, lens, 1, ',', dst.data()), zelStatusOk);
    EXPECT_EQ(dst, written);
}

TYPED_TEST(Edit, ConcatListC_ThreeStringsGetTwoSeparatorsAlsoAroundAnEmptyOne) {
    using T = TypeParam;
    const auto a = test::text<T>("ab"), c = test::text<T>("cd");
    const T none = 0;
    const T* const list[] = {a.data(), &none, c.data()};
    const int lens[] = {2, 0, 2}, onlyEmpty[] = {0, 0, 0};
    std::vector<T> dst(7, 9);
    EXPECT_EQ(Api<T>::concatListC(list, lens, 3, ',', dst.data()), zelStatusOk);
    EXPECT_EQ(dst, test::text<T>("ab,,cd\x09"));
    std::fill(dst.begin(), dst.end(), T(9));
    EXPECT_EQ(Api<T>::concatListC(list, onlyEmpty, 3, ',', dst.data()), zelStatusOk);
    EXPECT_EQ(dst, test::text<T>(",,\x09\x09\x09\x09\x09"));
}

TYPED_TEST(Edit, ConcatList_JoinsPiecesOfAllLengthsEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    for (int round = 0; round < 1500; ++round) {
        const int count = 1 + this->random.below(12);
        const int longest = 1 + this->random.below(round % 5 == 0 ? 300 : 40);
        std::vector<std::vector<T>> pieces;
        std::vector<T> joined, separated;
        for (int i = 0; i < count; ++i) {
            pieces.push_back(this->random.template text<T>(this->random.below(longest)));
            joined.insert(joined.end(), pieces.back().begin(), pieces.back().end());
            if (i > 0) separated.push_back('|');
            separated.insert(separated.end(), pieces.back().begin(), pieces.back().end());
        }
        // The pieces stand in one row; the last ends before an inaccessible page.
        const Placed<T> src = this->srcArena.place(joined, test::kBeforeGuard);
        std::vector<const T*> list;
        std::vector<int> lens;
        const T* at = src;
        for (const auto& piece : pieces) {
            list.push_back(at);
            lens.push_back(static_cast<int>(piece.size()));
            at += piece.size();
        }
        const int placement = round % kPlacements;
        const Placed<T> dst = this->dstArena.place(static_cast<int>(joined.size()), placement);
        ASSERT_EQ(A::concatList(list.data(), lens.data(), count, dst), zelStatusOk);
        ASSERT_EQ(content(dst, dst.len), joined);
        ASSERT_TRUE(dst.intact() && src.intact());
        const Placed<T> dstC = this->dstArena.place(static_cast<int>(separated.size()), placement);
        ASSERT_EQ(A::concatListC(list.data(), lens.data(), count, '|', dstC), zelStatusOk);
        ASSERT_EQ(content(dstC, dstC.len), separated);
        ASSERT_TRUE(dstC.intact());
    }
}

// ---- Split ----

// Destination slots of given capacities, each filled with a value that no text here has.
template <typename T>
struct Slots {
    explicit Slots(std::vector<int> capacities) : lens(std::move(capacities)) {
        for (const int capacity : lens) {
            texts.emplace_back(static_cast<size_t>(std::max(capacity, 0) + 2), T(9));
        }
        for (auto& text : texts) pointers.push_back(text.data());
        count = static_cast<int>(lens.size());
    }

    ZelStatus split(const std::vector<T>& src, T delim) {
        static const T kNothing = 0;
        return Api<T>::splitC(src.empty() ? &kNothing : src.data(), static_cast<int>(src.size()),
                              delim, pointers.data(), lens.data(), &count);
    }

    std::vector<T> token(size_t i) const {
        return std::vector<T>(texts[i].begin(), texts[i].begin() + lens[i]);
    }

    std::vector<int> lens;
    std::vector<std::vector<T>> texts;
    std::vector<T*> pointers;
    int count;
};

TYPED_TEST(Edit, Split_ChecksPointersThenTheLengthThenTheCount) {
    using T = TypeParam;
    const T s[] = {'a', 'b'};
    T slot[] = {9, 9};
    T* slots[] = {slot};
    int lens[] = {2};
    int count = 1;
    for (const int len : {2, 0, -1, INT_MIN}) {
        for (const int slotCount : {1, 0, -1}) {
            count = slotCount;
            EXPECT_EQ(Api<T>::splitC(nullptr, len, ',', slots, lens, &count), zelStatusNullPointer);
            EXPECT_EQ(Api<T>::splitC(s, len, ',', nullptr, lens, &count), zelStatusNullPointer);
            EXPECT_EQ(Api<T>::splitC(s, len, ',', slots, nullptr, &count), zelStatusNullPointer);
            EXPECT_EQ(Api<T>::splitC(s, len, ',', slots, lens, nullptr), zelStatusNullPointer);
            EXPECT_EQ(count, slotCount);
            if (len < 0) {
                EXPECT_EQ(Api<T>::splitC(s, len, ',', slots, lens, &count), zelStatusLengthError);
            } else if (slotCount < 1) {
                EXPECT_EQ(Api<T>::splitC(s, len, ',', slots, lens, &count), zelStatusSizeError);
            }
            EXPECT_EQ(count, slotCount);
        }
    }
    EXPECT_EQ(slot[0], 9);
    EXPECT_EQ(lens[0], 2);
}

TYPED_TEST(Edit, Split_EmptyTokensCountAndTheSeparatorIsNeverCopied) {
    using T = TypeParam;
    Slots<T> slots({4, 4, 4});
    EXPECT_EQ(slots.split(test::text<T>("a,,b"), ','), zelStatusOk);
    EXPECT_EQ(slots.count, 3);
    EXPECT_EQ(slots.token(0), test::text<T>("a"));
    EXPECT_EQ(slots.lens[1], 0);
    EXPECT_EQ(slots.token(2), test::text<T>("b"));
    EXPECT_EQ(slots.texts[0][1], 9);
    EXPECT_EQ(slots.texts[1][0], 9);
}

TYPED_TEST(Edit, Split_TooFewSlotsIsReported) {
    using T = TypeParam;
    Slots<T> slots({4, 4});
    EXPECT_EQ(slots.split(test::text<T>("a,,b"), ','), zelStatusSplitIncompleteWarning);
    EXPECT_EQ(slots.count, 2);
    EXPECT_EQ(slots.token(0), test::text<T>("a"));
    EXPECT_EQ(slots.lens[1], 0);
}

TYPED_TEST(Edit, Split_ALongTokenIsCutAndReported) {
    using T = TypeParam;
    Slots<T> slots({4, 9});
    EXPECT_EQ(slots.split(test::text<T>("0123456789,x"), ','), zelStatusTruncatedWarning);
    EXPECT_EQ(slots.count, 2);
    EXPECT_EQ(slots.token(0), test::text<T>("0123"));
    EXPECT_EQ(slots.texts[0][4], 9);
    EXPECT_EQ(slots.token(1), test::text<T>("x"));
}

TYPED_TEST(Edit, Split_IncompleteTakesPrecedenceOverTruncated) {
    using T = TypeParam;
    Slots<T> slots({4});
    EXPECT_EQ(slots.split(test::text<T>("0123456789,x"), ','), zelStatusSplitIncompleteWarning);
    EXPECT_EQ(slots.count, 1);
    EXPECT_EQ(slots.token(0), test::text<T>("0123"));
}

TYPED_TEST(Edit, Split_ATrailingDelimiterGivesNoEmptyToken) {
    using T = TypeParam;
    Slots<T> slots({4, 4});
    EXPECT_EQ(slots.split(test::text<T>("ab,"), ','), zelStatusOk);
    EXPECT_EQ(slots.count, 1);
    EXPECT_EQ(slots.lens[1], 4);  // not looked at
    Slots<T> exact({4});
    EXPECT_EQ(exact.split(test::text<T>("ab,"), ','), zelStatusOk);
    EXPECT_EQ(exact.count, 1);
}

TYPED_TEST(Edit, Split_ALeadingDelimiterGivesAnEmptyToken) {
    using T = TypeParam;
    Slots<T> slots({4, 4, 4});
    EXPECT_EQ(slots.split(test::text<T>(",ab"), ','), zelStatusOk);
    EXPECT_EQ(slots.count, 2);
    EXPECT_EQ(slots.lens[0], 0);
    EXPECT_EQ(slots.token(1), test::text<T>("ab"));
}

TYPED_TEST(Edit, Split_AnEmptySourceHasNoTokens) {
    using T = TypeParam;
    Slots<T> slots({4});
    slots.pointers[0] = nullptr;  // not looked at
    EXPECT_EQ(slots.split({}, ','), zelStatusOk);
    EXPECT_EQ(slots.count, 0);
}

TYPED_TEST(Edit, Split_ASlotOfNoCapacityTakesEmptyTokensOnly) {
    using T = TypeParam;
    Slots<T> slots({0, 0});
    EXPECT_EQ(slots.split(test::text<T>(",a"), ','), zelStatusTruncatedWarning);
    EXPECT_EQ(slots.count, 2);
    EXPECT_EQ(slots.lens[1], 0);
    EXPECT_EQ(slots.texts[1][0], 9);
}

TYPED_TEST(Edit, Split_ASlotIsCheckedWhenItsTokenIsDue) {
    using T = TypeParam;
    const auto src = test::text<T>("a,b,c");
    Slots<T> null({4, 4, 4});
    null.pointers[1] = nullptr;
    null.lens[1] = -1;
    EXPECT_EQ(null.split(src, ','), zelStatusNullPointer);
    EXPECT_EQ(null.count, 3);
    EXPECT_EQ(null.token(0), test::text<T>("a"));
    EXPECT_EQ(null.lens[2], 4);

    Slots<T> negative({4, -1, 4});
    EXPECT_EQ(negative.split(src, ','), zelStatusLengthError);
    EXPECT_EQ(negative.count, 3);
    EXPECT_EQ(negative.token(0), test::text<T>("a"));

    Slots<T> behind({4, 4, 4, -1});
    behind.pointers[3] = nullptr;
    EXPECT_EQ(behind.split(src, ','), zelStatusOk);
    EXPECT_EQ(behind.count, 3);
}

TYPED_TEST(Edit, Split_AgreesWithAPlainScanEverywhere) {
    using T = TypeParam;
    const std::vector<T> alphabet = {'a', ',', 'b', 'c', 'd', 'e', T(0xFF2C), T(0x2C00)};
    test::forEachPlacement([&](int len, int placement) {
        std::vector<T> letters = alphabet;
        if (placement % 2) letters.insert(letters.end(), 40, 'x');  // long tokens
        const auto srcText = this->random.text(len, letters);
        const Placed<T> src = this->srcArena.place(srcText, placement, ',');
        const int slotCount = 1 + this->random.below(placement % 3 == 0 ? 10 : 320);
        std::vector<int> capacities;
        for (int i = 0; i < slotCount; ++i) {
            capacities.push_back(placement % 5 == 0 ? this->random.below(4) : len);
        }

        // The tokens as they should be.
        std::vector<std::vector<T>> tokens;
        auto at = srcText.begin();
        while (at != srcText.end() && static_cast<int>(tokens.size()) < slotCount) {
            const auto end = std::find(at, srcText.end(), T(','));
            tokens.emplace_back(at, end);
            at = end == srcText.end() ? end : end + 1;
        }
        ZelStatus expected = zelStatusOk;
        for (size_t i = 0; i < tokens.size(); ++i) {
            if (static_cast<int>(tokens[i].size()) <= capacities[i]) continue;
            tokens[i].resize(static_cast<size_t>(capacities[i]));
            expected = zelStatusTruncatedWarning;
        }
        if (at != srcText.end()) expected = zelStatusSplitIncompleteWarning;

        // All slots in one row, with a canary element between them.
        std::vector<T*> slots;
        std::vector<int> lens = capacities;
        int room = 0;
        for (const int capacity : capacities) room += capacity + 1;
        const Placed<T> dst = this->dstArena.place(room, test::kBeforeGuard, 9);
        T* slot = dst;
        for (const int capacity : capacities) {
            slots.push_back(slot);
            slot += capacity + 1;
        }
        int count = slotCount;
        ASSERT_EQ(Api<T>::splitC(src, len, ',', slots.data(), lens.data(), &count), expected);
        ASSERT_EQ(count, static_cast<int>(tokens.size()));
        for (int i = 0; i < slotCount; ++i) {
            const auto k = static_cast<size_t>(i);
            const int filled = i < count ? static_cast<int>(tokens[k].size()) : 0;
            ASSERT_EQ(lens[k], i < count ? filled : capacities[k]);
            if (i < count) {
                ASSERT_TRUE(std::equal(tokens[k].begin(), tokens[k].end(), slots[k]));
            }
            ASSERT_EQ(std::count(slots[k] + filled, slots[k] + capacities[k] + 1, T(9)),
                      capacities[k] + 1 - filled);
        }
        ASSERT_TRUE(dst.intact());
    });
}

TYPED_TEST(Edit, Split_LengthsNear31BitsDoNotOverflow) {
    using T = TypeParam;
    const test::GuardedPages pages(static_cast<size_t>(INT_MAX) * sizeof(T));
    if (!pages.available()) GTEST_SKIP() << "the system grants no such address range";
    T* const src = reinterpret_cast<T*>(pages.end()) - INT_MAX;
    src[2] = ',';
    T first[4] = {9, 9, 9, 9};
    T* slots[] = {first};
    int lens[] = {4};
    int count = 1;
    EXPECT_EQ(Api<T>::splitC(src, INT_MAX, ',', slots, lens, &count),
              zelStatusSplitIncompleteWarning);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(lens[0], 2);
}

}  // namespace
