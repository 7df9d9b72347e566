// Copying, moving and clearing of valid ranges, by bytes. A count may be zero or negative, which
// does nothing.
//
// Up to four vectors are loaded before the first is stored, so that it does not matter how the
// ranges lie. What is longer goes in rounds of four, from the end where the rest of the source
// would be overwritten otherwise, and what is much longer is left to the C library. One thing it
// has no function for: a copy to a higher address inside its own source, which repeats the leading
// bytes.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

/// Bytes that moveShort can take.
inline constexpr ptrdiff_t kShortBlock = 4 * Vec<Zel8u>::kBytes;

/// Moves n bytes, at most kShortBlock.
ZEL_INLINE void moveShort(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    constexpr ptrdiff_t k = V::kBytes;
    if (n <= k) [[likely]] {
        V::loadFirst(src, static_cast<int>(n)).storeFirst(dst, static_cast<int>(n));
        return;
    }
    const V first = V::load(src);
    const V last = V::load(src + n - k);
    if (n > 2 * k) {
        const V second = V::load(src + k);
        const V third = V::load(src + n - 2 * k);
        second.store(dst + k);
        third.store(dst + n - 2 * k);
    }
    first.store(dst);
    last.store(dst + n - k);
}

/// From here on the C library's way of copying pays for the way to it.
inline constexpr ptrdiff_t kLongBlock = 16384;

/// Moves n bytes, more than kShortBlock. Whole vectors of the destination are stored in the middle;
/// both ends are loaded before anything is stored, and stored last.
[[gnu::noinline]] inline void moveLong(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    constexpr ptrdiff_t k = V::kBytes;
    if (n > kLongBlock) {
        memmove(dst, src, static_cast<size_t>(n));
        return;
    }
    const auto moveFour = [=](ptrdiff_t at) __attribute__((always_inline)) {
        const V a = V::load(src + at);
        const V b = V::load(src + at + k);
        const V c = V::load(src + at + 2 * k);
        const V d = V::load(src + at + 3 * k);
        a.store(dst + at);
        b.store(dst + at + k);
        c.store(dst + at + 2 * k);
        d.store(dst + at + 3 * k);
    };
    if (static_cast<size_t>(dst - src) >= static_cast<size_t>(n)) {
        const ptrdiff_t rest = n - 4 * k;
        const V first = V::load(src);
        const V a = V::load(src + rest);
        const V b = V::load(src + rest + k);
        const V c = V::load(src + rest + 2 * k);
        const V d = V::load(src + rest + 3 * k);
        for (ptrdiff_t at = toBoundary(dst); at < rest; at += 4 * k) moveFour(at);
        first.store(dst);
        a.store(dst + rest);
        b.store(dst + rest + k);
        c.store(dst + rest + 2 * k);
        d.store(dst + rest + 3 * k);
    } else {
        const V last = V::load(src + n - k);
        const V a = V::load(src);
        const V b = V::load(src + k);
        const V c = V::load(src + 2 * k);
        const V d = V::load(src + 3 * k);
        for (ptrdiff_t at = n - fromBoundary(dst + n) - 4 * k; at > 0; at -= 4 * k) moveFour(at);
        last.store(dst + n - k);
        a.store(dst);
        b.store(dst + k);
        c.store(dst + 2 * k);
        d.store(dst + 3 * k);
    }
}

/// Copies n bytes to an address less than n above the source: the bytes before dst over and over.
/// What has been written is itself the source of the next, twice as long piece.
[[gnu::noinline]] inline void repeatBytes(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    for (ptrdiff_t period = dst - src; n > 0; period *= 2) {
        const ptrdiff_t piece = period < n ? period : n;
        memcpy(dst, src, static_cast<size_t>(piece));
        dst += piece;
        n -= piece;
    }
}

/// Copies n bytes as if one by one from index 0 up, also when the ranges overlap: a copy to a lower
/// address is exact, a copy to a higher one inside the source repeats the leading bytes.
ZEL_INLINE void copyForward(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    using V = Vec<Zel8u>;
    const auto size = static_cast<size_t>(n);
    const auto distance = static_cast<size_t>(dst - src);
    if (size <= size_t{V::kBytes} && distance >= size) [[likely]] {
        V::loadFirst(src, static_cast<int>(n)).storeFirst(dst, static_cast<int>(n));
        return;
    }
    if (n < 1 || distance == 0) return;
    if (distance < size) [[unlikely]]
        repeatBytes(src, dst, n);
    else if (n <= kShortBlock)
        moveShort(src, dst, n);
    else
        moveLong(src, dst, n);
}

/// Moves n bytes so that overlapping ranges keep their content in either direction.
ZEL_INLINE void moveRange(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n < 1) return;
    if (n <= kShortBlock) [[likely]]
        moveShort(src, dst, n);
    else
        moveLong(src, dst, n);
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

/// The element forms: n counts elements of T.
template <typename T>
ZEL_INLINE void copyElements(const T* src, T* dst, ptrdiff_t n) {
    copyForward(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
                n * static_cast<ptrdiff_t>(sizeof(T)));
}

template <typename T>
ZEL_INLINE void moveElements(const T* src, T* dst, ptrdiff_t n) {
    moveRange(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
              n * static_cast<ptrdiff_t>(sizeof(T)));
}

}  // namespace zel::ZEL_ISA
