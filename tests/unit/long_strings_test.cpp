// The string functions on strings of 2^31 - 1 elements that they have to go through as a whole. A
// range of that size is one block of memory mapped over and over, so that it costs address space
// only. Its last page is memory of its own, directly before an inaccessible one: what is written or
// differs there shows that a function came to the end.
#include <limits.h>

#include "test_support.h"

namespace {

using test::GuardedPages;

template <typename T>
class LongRange {
public:
    // All elements are `fill`.
    explicit LongRange(T fill) : pages_(kBytes) {
        if (!pages_.available()) return;
        const int block = memfd_create("block", 0);
        if (block < 0 || ftruncate(block, kBlock) != 0) return;
        for (size_t at = 0; at < kBytes; at += kBlock) {
            void* const mapped = mmap(pages_.begin() + at, std::min(kBlock, kBytes - at),
                                      PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, block, 0);
            if (mapped == MAP_FAILED) return;
        }
        close(block);
        void* const last = mmap(pages_.end() - kLast, kLast, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
        if (last == MAP_FAILED) return;
        T* const begin = reinterpret_cast<T*>(pages_.begin());
        std::fill(begin, begin + kBlock / sizeof(T), fill);
        std::fill(data() + kMax - kLast / sizeof(T), data() + kMax, fill);
        available_ = true;
    }

    bool available() const { return available_; }
    T* data() const { return reinterpret_cast<T*>(pages_.end()) - kMax; }

    static constexpr long kMax = INT_MAX;

private:
    static constexpr size_t kBlock = 4 << 20;
    static constexpr size_t kLast = 4096;
    // One page more than the elements need, so that there is an element in front of the first.
    static constexpr size_t kBytes = (size_t{1} << 31) * sizeof(T) + kLast;

    GuardedPages pages_;
    bool available_ = false;
};

template <typename T>
struct Api;

template <>
struct Api<Zel8u> {
    static constexpr auto find = zelsFind_8u, findRev = zelsFindRev_8u;
    static constexpr auto findC = zelsFindC_8u, findRevC = zelsFindRevC_8u;
    static constexpr auto findCAny = zelsFindCAny_8u, findRevCAny = zelsFindRevCAny_8u;
    static constexpr auto findZ = zelsFind_Z_8u;
    static constexpr auto findCZ = zelsFindC_Z_8u;
    static constexpr auto compare = zelsCompare_8u, equal = zelsEqual_8u;
    static constexpr auto compareLatin = zelsCompareIgnoreCaseLatin_8u;
    static constexpr auto upperLatin = zelsUppercaseLatin_8u_I;
    static constexpr auto replaceC = zelsReplaceC_8u;
    static constexpr auto insert = zelsInsert_8u;
    static constexpr auto remove = zelsRemove_8u;
    static constexpr auto concat = zelsConcat_8u;
    static constexpr auto splitC = zelsSplitC_8u_D2L;
    static constexpr auto trimC = zelsTrimC_8u_I;
    static constexpr auto trimCAny = zelsTrimCAny_8u;
    static constexpr auto hash = zelsHash_8u32u, hashSJ2 = zelsHashSJ2_8u32u;
    static constexpr auto hashMSCS = zelsHashMSCS_8u32u;
};

template <>
struct Api<Zel16u> {
    static constexpr auto find = zelsFind_16u, findRev = zelsFindRev_16u;
    static constexpr auto findC = zelsFindC_16u, findRevC = zelsFindRevC_16u;
    static constexpr auto findCAny = zelsFindCAny_16u, findRevCAny = zelsFindRevCAny_16u;
    static constexpr auto findZ = zelsFind_Z_16u;
    static constexpr auto findCZ = zelsFindC_Z_16u;
    static constexpr auto compare = zelsCompare_16u, equal = zelsEqual_16u;
    static constexpr auto compareLatin = zelsCompareIgnoreCaseLatin_16u;
    static constexpr auto upperLatin = zelsUppercaseLatin_16u_I;
    static constexpr auto replaceC = zelsReplaceC_16u;
    static constexpr auto insert = zelsInsert_16u;
    static constexpr auto remove = zelsRemove_16u;
    static constexpr auto concat = zelsConcat_16u;
    static constexpr auto splitC = zelsSplitC_16u_D2L;
    static constexpr auto trimC = zelsTrimC_16u_I;
    static constexpr auto trimCAny = zelsTrimCAny_16u;
    static constexpr auto hash = zelsHash_16u32u, hashSJ2 = zelsHashSJ2_16u32u;
    static constexpr auto hashMSCS = zelsHashMSCS_16u32u;
};

template <typename T>
class LongStrings : public testing::Test {
protected:
    void SetUp() override {
        if (!range.available()) GTEST_SKIP() << "the system grants no such address range";
    }

    LongRange<T> range{'a'};
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(LongStrings, Widths);

TYPED_TEST(LongStrings, SearchesReachTheOtherEnd) {
    using T = TypeParam;
    using A = Api<T>;
    T* const s = this->range.data();
    const T ab[] = {'a', 'b'}, bx[] = {'b', 'x'};
    int index = 77;
    const auto expect = [&](ZelStatus status, int expected) {
        EXPECT_EQ(status, zelStatusOk);
        EXPECT_EQ(index, expected);
        index = 77;
    };
    expect(A::findC(s, INT_MAX, 'b', &index), -1);
    expect(A::findRevC(s, INT_MAX, 'b', &index), -1);
    expect(A::findCAny(s, INT_MAX, bx, 2, &index), -1);
    expect(A::findRevCAny(s, INT_MAX, bx, 2, &index), -1);
    expect(A::find(s, INT_MAX, ab, 2, &index), -1);
    expect(A::findRev(s, INT_MAX, bx, 2, &index), -1);
    s[INT_MAX - 1] = 'b';
    expect(A::findC(s, INT_MAX, 'b', &index), INT_MAX - 1);
    expect(A::findCAny(s, INT_MAX, bx, 2, &index), INT_MAX - 1);
    expect(A::find(s, INT_MAX, ab, 2, &index), INT_MAX - 2);
}

TYPED_TEST(LongStrings, ZeroTerminatedStringsMayHaveTheLargestLengthAndNoMore) {
    using T = TypeParam;
    using A = Api<T>;
    T* const s = this->range.data();
    const T ax[] = {'a', 'x', 0};
    s[INT_MAX - 1] = 0;
    s[INT_MAX - 2] = 'x';
    int index = 77;
    EXPECT_EQ(A::findZ(s, ax, &index), zelStatusOk);
    EXPECT_EQ(index, INT_MAX - 3);
    EXPECT_EQ(A::findCZ(s - 1, 'x', &index), zelStatusOk);
    EXPECT_EQ(index, INT_MAX - 1);
    index = 77;
    EXPECT_EQ(A::findCZ(s - 2, 'b', &index), zelStatusLengthError);
    EXPECT_EQ(A::findZ(s - 2, ax, &index), zelStatusLengthError);
    EXPECT_EQ(A::findZ(ax, s - 2, &index), zelStatusLengthError);
    EXPECT_EQ(A::findZ(s - 2, ax, nullptr), zelStatusNullPointer);
    EXPECT_EQ(index, 77);
}

TYPED_TEST(LongStrings, ComparisonsReachTheEnd) {
    using A = Api<TypeParam>;
    auto* const s = this->range.data();
    int result = 77;
    s[INT_MAX - 1] = 'c';
    EXPECT_EQ(A::compare(s, s + 1, INT_MAX - 1, &result), zelStatusOk);
    EXPECT_EQ(result, 'a' - 'c');
    EXPECT_EQ(A::compareLatin(s, s + 1, INT_MAX - 1, &result), zelStatusOk);
    EXPECT_EQ(result, 'a' - 'c');
    EXPECT_EQ(A::equal(s, s + 1, INT_MAX - 1, &result), zelStatusOk);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(A::equal(s, s + 1, INT_MAX - 2, &result), zelStatusOk);
    EXPECT_EQ(result, 1);
}

TYPED_TEST(LongStrings, ConversionsAndReplacementsReachTheEnd) {
    using A = Api<TypeParam>;
    auto* const s = this->range.data();
    EXPECT_EQ(A::upperLatin(s, INT_MAX), zelStatusOk);
    EXPECT_EQ(s[0], 'A');
    EXPECT_EQ(s[INT_MAX - 1], 'A');
    EXPECT_EQ(A::replaceC(s, s, INT_MAX, 'A', 'b'), zelStatusOk);
    EXPECT_EQ(s[0], 'b');
    EXPECT_EQ(s[INT_MAX - 1], 'b');
}

TYPED_TEST(LongStrings, SplitTakesATokenOfTheWholeString) {
    using T = TypeParam;
    T* const s = this->range.data();
    T slot[] = {9, 9, 9};
    T* const slots[] = {slot, slot};
    int lens[] = {2, 1}, count = 2;
    EXPECT_EQ(Api<T>::splitC(s, INT_MAX, ',', slots, lens, &count), zelStatusTruncatedWarning);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(slot[1], 'a');
    EXPECT_EQ(slot[2], 9);
    s[INT_MAX - 1] = ',';
    count = 2;
    EXPECT_EQ(Api<T>::splitC(s, INT_MAX, ',', slots, lens, &count), zelStatusTruncatedWarning);
    EXPECT_EQ(count, 1);
}

TYPED_TEST(LongStrings, TrimsGoThroughTheWholeString) {
    using T = TypeParam;
    T* const s = this->range.data();
    int len = INT_MAX;
    EXPECT_EQ(Api<T>::trimC(s, &len, 'a'), zelStatusOk);
    EXPECT_EQ(len, 0);
    s[INT_MAX - 1] = 'c';
    const T set[] = {'x', 'a'};
    T dst[] = {9, 9};
    EXPECT_EQ(Api<T>::trimCAny(s, INT_MAX, set, 2, dst, &len), zelStatusOk);
    EXPECT_EQ(len, 1);
    EXPECT_EQ(dst[0], 'c');
}

TYPED_TEST(LongStrings, HashesAreExact) {
    using T = TypeParam;
    T* const s = this->range.data();
    Zel32u h = 0;
    // 1 + 31 + 31^2 + ... is (31^n - 1) / 30, and the arithmetic wraps.
    unsigned __int128 power = 1, base = 31;
    const unsigned __int128 modulus = static_cast<unsigned __int128>(30) << 32;
    for (unsigned n = INT_MAX; n > 0; n >>= 1) {
        if (n & 1) power = power * base % modulus;
        base = base * base % modulus;
    }
    EXPECT_EQ(Api<T>::hashSJ2(s, INT_MAX, &h), zelStatusOk);
    EXPECT_EQ(h, static_cast<Zel32u>((power - 1) / 30 * 'a'));
    // 'a' + 2 'a' + 4 'a' ... without carries, in the last 32 places.
    Zel32u expected = 0;
    for (int place = 0; place < 32; ++place) expected ^= Zel32u{'a'} << place;
    EXPECT_EQ(Api<T>::hash(s, INT_MAX, &h), zelStatusOk);
    EXPECT_EQ(h, expected);
    s[INT_MAX - 1] = 0;
    Zel32u upToTheZero = 0;
    EXPECT_EQ(Api<T>::hashMSCS(s, INT_MAX, &h), zelStatusOk);
    EXPECT_EQ(Api<T>::hashMSCS(s, INT_MAX - 1, &upToTheZero), zelStatusOk);
    EXPECT_EQ(h, upToTheZero);
}

TYPED_TEST(LongStrings, CopiesReachTheEnd) {
    using T = TypeParam;
    using A = Api<T>;
    T* const s = this->range.data();
    LongRange<T> other{'o'};
    ASSERT_TRUE(other.available());
    T* const dst = other.data();
    const T piece[] = {'x', 'y'};
    s[INT_MAX - 3] = 'z';
    EXPECT_EQ(A::insert(s, INT_MAX - 2, piece, 2, dst, INT_MAX - 2), zelStatusOk);
    EXPECT_EQ(dst[INT_MAX - 3], 'z');
    EXPECT_EQ(dst[INT_MAX - 1], 'y');
    EXPECT_EQ(A::remove(s, INT_MAX, dst, 1, 1), zelStatusOk);
    EXPECT_EQ(dst[INT_MAX - 4], 'z');
    EXPECT_EQ(dst[INT_MAX - 1], 'y');
    EXPECT_EQ(A::concat(piece, 1, s, INT_MAX - 1, dst), zelStatusOk);
    EXPECT_EQ(dst[INT_MAX - 2], 'z');
    EXPECT_EQ(dst[INT_MAX - 1], 'a');
}

TEST(LongBlocks, CopyMoveAndZeroReachTheEnd) {
    LongRange<Zel16u> from{'a'}, to{'o'};
    if (!from.available() || !to.available()) {
        GTEST_SKIP() << "the system grants no such address range";
    }
    const Zel16s* const src = reinterpret_cast<Zel16s*>(from.data());
    Zel16s* const dst = reinterpret_cast<Zel16s*>(to.data());
    from.data()[INT_MAX - 1] = 'x';
    EXPECT_EQ(zelsCopy_16s(src, dst, INT_MAX), zelStatusOk);
    EXPECT_EQ(dst[INT_MAX - 1], 'x');
    from.data()[INT_MAX - 1] = 'y';
    EXPECT_EQ(zelsMove_16s(src, dst, INT_MAX), zelStatusOk);
    EXPECT_EQ(dst[INT_MAX - 1], 'y');
    Zel8u* const bytes = reinterpret_cast<Zel8u*>(to.data() + INT_MAX) - INT_MAX;
    EXPECT_EQ(zelsZero_8u(bytes, INT_MAX), zelStatusOk);
    EXPECT_EQ(bytes[INT_MAX - 1], 0);
}

}  // namespace
