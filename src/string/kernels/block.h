// Copying, moving and clearing of valid ranges, by bytes. A count may be zero or negative, which
// does nothing. Copies and moves answer zelStatusOk, so that a caller whose last they are can go
// there without coming back.
//
// Up to four vectors are loaded before the first is stored, so that it does not matter how the
// ranges lie. What is longer goes in rounds of a few, from the end where the rest of the source
// would be overwritten otherwise, and what is much longer is left to the C library. One thing it
// has no function for: a copy to a higher address inside its own source, which repeats the leading
// bytes.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

/// Bytes that moveShort can take.
inline constexpr ptrdiff_t kShortBlock = 4 * Vec<Zel8u>::kBytes;

#if defined(ZEL_ISA_AVX512)

ZEL_INLINE __m256i loadHalf(const Zel8u* p) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
ZEL_INLINE void storeHalf(Zel8u* p, __m256i half) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), half);
}

/// Bytes that moveShortest can take.
inline constexpr ptrdiff_t kShortestBlock = 32;

/// Moves n bytes, at most kShortestBlock.
ZEL_INLINE void moveShortest(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    const auto lanes = static_cast<__mmask32>(lowBitsInShort(static_cast<int>(n)));
    asm("vmovdqu8 %1, %%ymm16%{%2%}%{z%}\n\tvmovdqu8 %%ymm16, %0%{%2%}"
        : "+m"(*reinterpret_cast<Zel8u(*)[kShortestBlock]>(dst))
        : "m"(*reinterpret_cast<const Zel8u(*)[kShortestBlock]>(src)), "Yk"(lanes)
        : "xmm16");
}

/// Moves n bytes, at most two vectors. By halves: a store that crosses the end of a cache line
/// takes two, a narrow one seldom does, and two narrow ones go at once.
ZEL_INLINE void moveUpToTwo(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n <= kShortestBlock) {
        moveShortest(src, dst, n);
        return;
    }
    const __m256i first = loadHalf(src);
    const __m256i last = loadHalf(src + n - 32);
    if (n > 64) {
        const __m256i second = loadHalf(src + 32);
        const __m256i third = loadHalf(src + n - 64);
        storeHalf(dst + 32, second);
        storeHalf(dst + n - 64, third);
    }
    storeHalf(dst, first);
    storeHalf(dst + n - 32, last);
}

#else

inline constexpr ptrdiff_t kShortestBlock = Vec<Zel8u>::kBytes;

ZEL_INLINE void moveShortest(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    V::loadFirst(src, static_cast<int>(n)).storeFirst(dst, static_cast<int>(n));
}

/// Moves n bytes, at most two vectors.
ZEL_INLINE void moveUpToTwo(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    if (n <= kShortestBlock) {
        moveShortest(src, dst, n);
        return;
    }
    const V first = V::load(src);
    const V last = V::load(src + n - V::kBytes);
    first.store(dst);
    last.store(dst + n - V::kBytes);
}

#endif

/// A few vectors in a row, all loaded before the first is stored. A tree of them, because compilers
/// keep the elements of an array in memory.
template <int count>
struct VectorRow {
    static constexpr ptrdiff_t kBytes = count * Vec<Zel8u>::kBytes;
    VectorRow<count / 2> low, high;

    ZEL_INLINE static VectorRow load(const Zel8u* p) {
        return {VectorRow<count / 2>::load(p), VectorRow<count / 2>::load(p + kBytes / 2)};
    }
    ZEL_INLINE void store(Zel8u* p) const {
        low.store(p);
        high.store(p + kBytes / 2);
    }
};
template <>
struct VectorRow<1> {
    Vec<Zel8u> v;

    ZEL_INLINE static VectorRow load(const Zel8u* p) { return {Vec<Zel8u>::load(p)}; }
    ZEL_INLINE void store(Zel8u* p) const { v.store(p); }
};

/// Moves n bytes, at most kShortBlock.
ZEL_INLINE void moveShort(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    constexpr ptrdiff_t k = V::kBytes;
    // Likely, but not so much that compilers put the other way where its place costs a cycle.
    if (__builtin_expect_with_probability(n <= 2 * k, 1, 0.7)) {
        moveUpToTwo(src, dst, n);
        return;
    }
    const V first = V::load(src);
    const V second = V::load(src + k);
    const V third = V::load(src + n - 2 * k);
    const V last = V::load(src + n - k);
    first.store(dst);
    second.store(dst + k);
    third.store(dst + n - 2 * k);
    last.store(dst + n - k);
}

/// From here on the C library's way of copying pays for the way to it.
inline constexpr ptrdiff_t kLongBlock = 16384;

/// Whether a copy from low to high addresses loads what lies a multiple of 4 KiB from what it has
/// just stored. Processors compare the low twelve bits of addresses first, and would wait.
ZEL_INLINE bool trailsItsStores(const Zel8u* src, const Zel8u* dst) {
    constexpr size_t kPage = 4096;
    constexpr size_t kStoresInFlight = 1024;
    return static_cast<size_t>(dst - src) % kPage - 1 < kStoresInFlight;
}

/// What a round of moveLong moves. The last round overlaps the one before it, so that there is no
/// rest to be counted; the shorter it is, the less is stored twice.
using Round = VectorRow<Vec<Zel8u>::kBytes == 64 ? 2 : 4>;

/// Moves n bytes, more than kShortBlock. Whole vectors of the destination are stored in the middle;
/// both ends are loaded before anything is stored, and stored last.
[[gnu::noinline]] inline ZelStatus moveLong(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    if (n > kLongBlock) {
        memmove(dst, src, static_cast<size_t>(n));
        return zelStatusOk;
    }
    const ptrdiff_t rest = n - Round::kBytes;
    const auto size = static_cast<size_t>(n);
    const bool upIsSafe = static_cast<size_t>(dst - src) >= size;
    const bool downIsSafe = static_cast<size_t>(src - dst) >= size;
    if (upIsSafe && !(trailsItsStores(src, dst) && downIsSafe)) [[likely]] {
        const V first = V::load(src);
        const Round last = Round::load(src + rest);
        for (ptrdiff_t at = toBoundary(dst); at < rest; at += Round::kBytes)
            Round::load(src + at).store(dst + at);
        first.store(dst);
        last.store(dst + rest);
    } else {
        const V last = V::load(src + n - V::kBytes);
        const Round first = Round::load(src);
        for (ptrdiff_t at = rest - fromBoundary(dst + n); at > 0; at -= Round::kBytes)
            Round::load(src + at).store(dst + at);
        last.store(dst + n - V::kBytes);
        first.store(dst);
    }
    return zelStatusOk;
}

/// Copies n bytes to an address less than n above the source: the bytes before dst over and over.
/// What has been written is itself the source of the next, twice as long piece.
[[gnu::noinline]] inline ZelStatus repeatBytes(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    for (ptrdiff_t period = dst - src; n > 0; period *= 2) {
        const ptrdiff_t piece = period < n ? period : n;
        memcpy(dst, src, static_cast<size_t>(piece));
        dst += piece;
        n -= piece;
    }
    return zelStatusOk;
}

/// Moves n bytes so that overlapping ranges keep their content in either direction.
ZEL_INLINE ZelStatus moveRange(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n > kShortBlock) [[unlikely]]
        return moveLong(src, dst, n);
    if (n > 0) [[likely]]
        moveShort(src, dst, n);
    return zelStatusOk;
}

/// Whether a copy begins inside its source. A negative n is a large number here.
ZEL_INLINE bool repeats(const Zel8u* src, const Zel8u* dst, ptrdiff_t n) {
    return static_cast<size_t>(dst - src) < static_cast<size_t>(n);
}

/// Copies n bytes as if one by one from index 0 up, also when the ranges overlap: a copy to a lower
/// address is exact, a copy to a higher one inside the source repeats the leading bytes.
ZEL_INLINE ZelStatus copyForward(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (repeats(src, dst, n)) [[unlikely]]
        return n > 0 && src != dst ? repeatBytes(src, dst, n) : zelStatusOk;
    if (n <= kShortestBlock) [[likely]] {
        moveShortest(src, dst, n);
        return zelStatusOk;
    }
    return moveRange(src, dst, n);
}

/// Clears n bytes.
ZEL_INLINE void clearRange(Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    constexpr ptrdiff_t k = V::kBytes;
    if (n < 1) return;
    if (n <= k) [[likely]] {
        V::zero().storeFirst(dst, static_cast<int>(n));
    } else if (n <= kShortBlock) {
        V::zero().store(dst);
        V::zero().store(dst + n - k);
        if (n > 2 * k) {
            V::zero().store(dst + k);
            V::zero().store(dst + n - 2 * k);
        }
    } else {
        memset(dst, 0, static_cast<size_t>(n));
    }
}

/// The element forms: n counts elements of T. A function that ends with a copy ends with its
/// answer.
template <typename T>
ZEL_INLINE ZelStatus copyElements(const T* src, T* dst, ptrdiff_t n) {
    return copyForward(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
                       n * static_cast<ptrdiff_t>(sizeof(T)));
}

template <typename T>
ZEL_INLINE ZelStatus moveElements(const T* src, T* dst, ptrdiff_t n) {
    return moveRange(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
                     n * static_cast<ptrdiff_t>(sizeof(T)));
}

}  // namespace zel::ZEL_ISA
