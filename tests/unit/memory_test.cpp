// Allocation and the block primitives.
#include <dlfcn.h>
#include <limits.h>
#include <stdint.h>
#include <stdlib.h>

#include "core/memory.h"
#include "test_support.h"
#include "zelcore.h"

namespace {

using test::Arena;
using test::kMaxLen;
using test::kPlacements;
using test::Placed;
using test::Random;

int g_mallocCalls = 0;
int g_mallocLen = 0;
int g_freeCalls = 0;
void* g_freed = nullptr;
bool g_exhausted = false;

}  // namespace

// These stand in for libzelcore's: the program's own symbols come first.
extern "C" void* zelMalloc(int len) {
    ++g_mallocCalls;
    g_mallocLen = len;
    return g_exhausted ? nullptr : malloc(static_cast<size_t>(len));
}

extern "C" void zelFree(void* ptr) {
    ++g_freeCalls;
    g_freed = ptr;
    free(ptr);
}

namespace {

// The allocator pair of the shared library, as a user's program reaches it.
class Allocator : public testing::Test {
protected:
    void SetUp() override {
        library = dlopen(ZELCHMX_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        allocate = reinterpret_cast<decltype(allocate)>(dlsym(library, "zelsMalloc_8u"));
        release = reinterpret_cast<decltype(release)>(dlsym(library, "zelsFree"));
        ASSERT_NE(allocate, nullptr);
        ASSERT_NE(release, nullptr);
        g_mallocCalls = g_freeCalls = 0;
        g_freed = nullptr;
        g_exhausted = false;
    }
    void TearDown() override {
        if (library != nullptr) dlclose(library);
    }

    void* library = nullptr;
    void* (*allocate)(int) = nullptr;
    void (*release)(void*) = nullptr;
};

TEST_F(Allocator, Malloc_MakesOneCallOfTheCoreLibrary) {
    void* const block = allocate(1000);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(g_mallocCalls, 1);
    EXPECT_EQ(g_mallocLen, 1000);
    memset(block, 0x5A, 1000);
    release(block);
    EXPECT_EQ(g_mallocCalls, 1);
    EXPECT_EQ(g_freeCalls, 1);
    EXPECT_EQ(g_freed, block);
}

TEST_F(Allocator, Malloc_BelowOneByteDoesNotReachTheCoreLibrary) {
    for (const int len : {0, -1, -5, INT_MIN}) EXPECT_EQ(allocate(len), nullptr);
    EXPECT_EQ(g_mallocCalls, 0);
}

TEST_F(Allocator, Malloc_PassesExhaustionThrough) {
    g_exhausted = true;
    EXPECT_EQ(allocate(INT_MAX), nullptr);
    EXPECT_EQ(g_mallocCalls, 1);
    EXPECT_EQ(g_mallocLen, INT_MAX);
}

TEST_F(Allocator, Free_PassesANullPointerOn) {
    release(nullptr);
    EXPECT_EQ(g_freeCalls, 1);
    EXPECT_EQ(g_freed, nullptr);
}

// Every other test with guard pages relies on this one.
TEST(TestSupport, AnInaccessiblePageStopsAReadAtEitherEnd) {
    const Arena<Zel8u> arena(100);
    const volatile Zel8u* const end = arena.place(10, test::kBeforeGuard).end();
    EXPECT_DEATH(EXPECT_EQ(*end, 0), "");
    const volatile Zel8u* const begin = arena.place(10, test::kBehindGuard).begin();
    EXPECT_DEATH(EXPECT_EQ(begin[-1], 0), "");
}

TEST(TestSupport, AChangedCanaryIsSeen) {
    const Arena<Zel16u> arena(100);
    for (int placement = 0; placement < kPlacements; ++placement) {
        Placed<Zel16u> run = arena.place(10, placement);
        EXPECT_TRUE(run.intact());
        run[0] = run[9] = 1;
        EXPECT_TRUE(run.intact());
        EXPECT_FALSE(run.intactFrom(9));
        if (placement != test::kBeforeGuard) {
            run.data[10] ^= 0x100;
            EXPECT_FALSE(run.intact());
            run.data[10] ^= 0x100;
        }
        if (placement != test::kBehindGuard) {
            run.data[-1] ^= 1;
            EXPECT_FALSE(run.intact());
        }
    }
}

template <typename T>
struct Api;

template <>
struct Api<Zel8u> {
    static constexpr auto copy = zelsCopy_8u, move = zelsMove_8u;
};

template <>
struct Api<Zel16s> {
    static constexpr auto copy = zelsCopy_16s, move = zelsMove_16s;
};

template <typename T>
class Blocks : public testing::Test {
protected:
    Arena<T> srcArena{1 << 17};
    Arena<T> dstArena{1 << 17};
    Random random{11};
};

using Widths = testing::Types<Zel8u, Zel16s>;
TYPED_TEST_SUITE(Blocks, Widths);

TYPED_TEST(Blocks, NullPointersComeBeforeBadCountsAndNothingIsWritten) {
    using T = TypeParam;
    const T src[4] = {1, 2, 3, 4};
    T dst[4] = {9, 9, 9, 9};
    for (const auto member : {Api<T>::copy, Api<T>::move}) {
        for (const int len : {3, 0, -1, INT_MIN}) {
            EXPECT_EQ(member(nullptr, dst, len), zelStatusNullPointer);
            EXPECT_EQ(member(src, nullptr, len), zelStatusNullPointer);
            EXPECT_EQ(member(nullptr, nullptr, len), zelStatusNullPointer);
        }
        for (const int len : {0, -1, INT_MIN}) {
            EXPECT_EQ(member(src, dst, len), zelStatusSizeError);
            EXPECT_EQ(member(dst, dst, len), zelStatusSizeError);
        }
    }
    for (const T element : dst) EXPECT_EQ(element, 9);
}

TYPED_TEST(Blocks, CopyAndMove_TransferExactlyTheElementsEverywhere) {
    using T = TypeParam;
    for (const auto member : {Api<T>::copy, Api<T>::move}) {
        test::forEachPlacement([&](int len, int placement) {
            if (len == 0) return;
            const Placed<T> src = this->srcArena.place(this->random.template text<T>(len),
                                                       (placement * 7 + len) % kPlacements);
            const Placed<T> dst = this->dstArena.place(len, placement);
            ASSERT_EQ(member(src, dst, len), zelStatusOk);
            ASSERT_TRUE(std::equal(src.begin(), src.end(), dst.begin())) << len;
            ASSERT_TRUE(dst.intact() && src.intact()) << len << " at " << placement;
        });
    }
}

TYPED_TEST(Blocks, CopyAndMove_TransferLargeBlocks) {
    using T = TypeParam;
    for (const auto member : {Api<T>::copy, Api<T>::move}) {
        for (const int len : {4095, 4096, 4097, 65535, 100003}) {
            for (const int placement : {0, 1, 15, 63, test::kBeforeGuard, test::kBehindGuard}) {
                const Placed<T> src =
                    this->srcArena.place(this->random.template text<T>(len), 63 - placement / 2);
                const Placed<T> dst = this->dstArena.place(len, placement);
                ASSERT_EQ(member(src, dst, len), zelStatusOk);
                ASSERT_TRUE(std::equal(src.begin(), src.end(), dst.begin())) << len;
                ASSERT_TRUE(dst.intact()) << len << " at " << placement;
            }
        }
    }
}

// One distance between source and destination inside one buffer.
template <typename T, typename Member, typename Model>
void checkOverlap(const Arena<T>& arena, Random& random, int len, int distance, Member member,
                  Model model) {
    const int placement = random.below(kPlacements);
    const auto content = random.text<T>(2 * len + std::abs(distance));
    const int from = distance < 0 ? -distance : 0;
    std::vector<T> expected = content;
    model(expected.data() + from, expected.data() + from + distance, len);
    const Placed<T> run = arena.place(content, placement);
    ASSERT_EQ(member(run.data + from, run.data + from + distance, len), zelStatusOk);
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), run.begin()))
        << len << " moved by " << distance;
    ASSERT_TRUE(run.intact());
}

// All distances of short ranges, in both directions; of long ones those about the sizes of vectors
// and of rounds, about the length, and a little beside whole pages.
template <typename T, typename Member, typename Model>
void checkOverlaps(const Arena<T>& arena, Random& random, Member member, Model model) {
    for (const int len : {1, 2, 5, 6, 7, 8, 15, 16, 17, 31, 33, 63, 64, 65, 100, 129, 257, 300}) {
        for (int distance = -len - 2; distance <= len + 2; ++distance) {
            ASSERT_NO_FATAL_FAILURE(checkOverlap(arena, random, len, distance, member, model));
        }
    }
    for (const int len : {511, 512, 513, 700, 1025, 3000, 8193, 17000}) {
        for (const int distance :
             {1,    2,    15,   31,   63,      64,      65,   127,     128,
              255,  256,  257,  500,  len / 2, len - 1, len,  len + 1, len + 63,
              4096, 4097, 4160, 5100, 5200,    8191,    8192, 8200,    20481}) {
            for (const int signedDistance : {distance, -distance})
                ASSERT_NO_FATAL_FAILURE(
                    checkOverlap(arena, random, len, signedDistance, member, model));
        }
    }
}

TYPED_TEST(Blocks, Copy_RunsForwardElementByElementAlsoOverItsOwnSource) {
    using T = TypeParam;
    checkOverlaps<T>(this->dstArena, this->random, Api<T>::copy, [](const T* src, T* dst, int len) {
        for (int i = 0; i < len; ++i) dst[i] = src[i];
    });
}

TYPED_TEST(Blocks, Move_KeepsOverlappingContentInBothDirections) {
    using T = TypeParam;
    checkOverlaps<T>(this->dstArena, this->random, Api<T>::move, [](const T* src, T* dst, int len) {
        const std::vector<T> copy(src, src + len);
        std::copy(copy.begin(), copy.end(), dst);
    });
}

TEST(Blocks8Bit, Move_ByOneShiftsTenBytesEitherWay) {
    Zel8u up[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 99};
    EXPECT_EQ(zelsMove_8u(up, up + 1, 10), zelStatusOk);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(up[i + 1], i + 1);
    EXPECT_EQ(up[0], 1);
    Zel8u down[] = {99, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(zelsMove_8u(down + 1, down, 10), zelStatusOk);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(down[i], i + 1);
    EXPECT_EQ(down[10], 10);
}

TEST(Blocks8Bit, Move_OntoItselfChangesNothing) {
    Zel8u bytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(zelsMove_8u(bytes, bytes, 10), zelStatusOk);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(bytes[i], i + 1);
}

TEST(Blocks16Bit, Copy_OfThreeElementsCopiesSixBytes) {
    const Zel16s src[] = {0x0102, -1, 0x7FFF, 0x5555};
    Zel16s dst[] = {0, 0, 0, 0};
    EXPECT_EQ(zelsCopy_16s(src, dst, 3), zelStatusOk);
    EXPECT_EQ(memcmp(src, dst, 6), 0);
    EXPECT_EQ(dst[3], 0);
}

TEST(Zero, NullPointerComesBeforeBadCounts) {
    Zel8u byte = 9;
    for (const int len : {1, 0, -1, INT_MIN})
        EXPECT_EQ(zelsZero_8u(nullptr, len), zelStatusNullPointer);
    for (const int len : {0, -1, INT_MIN}) EXPECT_EQ(zelsZero_8u(&byte, len), zelStatusSizeError);
    EXPECT_EQ(byte, 9);
}

TEST(Zero, ClearsExactlyTheBytesEverywhere) {
    const Arena<Zel8u> arena(1 << 17);
    const auto check = [&](int len, int placement) {
        const Placed<Zel8u> run = arena.place(len, placement, 0xFF);
        ASSERT_EQ(zelsZero_8u(run, len), zelStatusOk);
        ASSERT_EQ(std::count(run.begin(), run.end(), 0), len);
        ASSERT_TRUE(run.intact()) << len << " at " << placement;
    };
    test::forEachPlacement([&](int len, int placement) {
        if (len > 0) check(len, placement);
    });
    for (const int len : {4096, 65537, 100003}) {
        for (const int placement : {0, 1, 63, test::kBeforeGuard, test::kBehindGuard})
            check(len, placement);
    }
}

TEST(Zero, ThirtySevenBytesFromAnOddAddress) {
    alignas(16) Zel8u bytes[48];
    memset(bytes, 0xEE, sizeof bytes);
    EXPECT_EQ(zelsZero_8u(bytes + 1, 37), zelStatusOk);
    EXPECT_EQ(bytes[0], 0xEE);
    for (int i = 1; i <= 37; ++i) EXPECT_EQ(bytes[i], 0);
    EXPECT_EQ(bytes[38], 0xEE);
}

// The workers, as the library itself calls them.

TEST(Workers, NothingHappensBelowOneByteAndTheDestinationComesBack) {
    const Zel8u src[] = {1, 2};
    Zel8u dst[] = {9, 9};
    for (const int n : {0, -1, INT_MIN}) {
        EXPECT_EQ(zel::ownsCopy_8u(src, dst, n), dst);
        EXPECT_EQ(zel::ownsZero_8u(dst, n), dst);
    }
    EXPECT_EQ(dst[0], 9);
    EXPECT_EQ(zel::ownsCopy_8u(src, dst, 1), dst);
    EXPECT_EQ(dst[0], 1);
    EXPECT_EQ(dst[1], 9);
    EXPECT_EQ(zel::ownsZero_8u(dst, 2), dst);
    EXPECT_EQ(dst[0] | dst[1], 0);
}

// The count of elements fits 31 bits, the count of bytes does not. A block moved onto itself is the
// one transfer of that size that a test can afford.
TEST(Blocks16Bit, ByteCountsAbove31BitsDoNotOverflow) {
    const test::GuardedPages pages(static_cast<size_t>(INT_MAX) * sizeof(Zel16s));
    if (!pages.available()) GTEST_SKIP() << "the system grants no such address range";
    Zel16s* const block = reinterpret_cast<Zel16s*>(pages.end()) - INT_MAX;
    block[0] = 5;
    EXPECT_EQ(zelsMove_16s(block, block, INT_MAX), zelStatusOk);
    EXPECT_EQ(zelsCopy_16s(block, block, INT_MAX), zelStatusOk);
    EXPECT_EQ(block[0], 5);
}

}  // namespace
