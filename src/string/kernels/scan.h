// Scanning for the first or last element that a test accepts.
//
// A test looks at a block of kLanes elements at a time:
//   hits(p)          which elements of the block at p it accepts, in a form with operator|, any()
//                    and mask(); whole vectors are loaded
//   maskFirst(p, n)  the mask of the first n elements only, 0 <= n <= kLanes
// A text that fits one block is one partial load and no branch on its length. A longer one starts
// with an unaligned block, goes on in rounds of four aligned ones, whose hits are combined before
// they are asked for, and ends with blocks that overlap what was seen before, so that nothing
// outside the text is touched.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

/// Elements from p up to the next vector boundary: at least one and at most a vector, for a p that
/// is aligned to its own size.
template <typename T>
ZEL_INLINE ptrdiff_t toBoundary(const T* p) {
    constexpr size_t kBytes = Vec<T>::kBytes;
    return static_cast<ptrdiff_t>((kBytes - reinterpret_cast<uintptr_t>(p) % kBytes) / sizeof(T));
}
/// The same from the vector boundary before p up to p.
template <typename T>
ZEL_INLINE ptrdiff_t fromBoundary(const T* p) {
    constexpr size_t kBytes = Vec<T>::kBytes;
    return static_cast<ptrdiff_t>(((reinterpret_cast<uintptr_t>(p) - 1) % kBytes + 1) / sizeof(T));
}

/// For a text longer than one block.
template <typename T, typename Test>
[[gnu::noinline]] int firstHitLong(const T* src, int len, const Test& testInMemory) {
    const Test test = testInMemory;
    constexpr ptrdiff_t n = Test::kLanes;
    const T* const end = src + len;
    const auto at = [src](const T* p, auto hits) {
        return static_cast<int>(p - src) + hits.mask().first();
    };

    if (const auto a = test.hits(src); a.any()) return at(src, a);
    const T* p = src + toBoundary(src);
    for (; end - p >= 4 * n; p += 4 * n) {
        const auto a = test.hits(p);
        const auto b = test.hits(p + n);
        const auto c = test.hits(p + 2 * n);
        const auto d = test.hits(p + 3 * n);
        if (((a | b) | (c | d)).any()) {
            if (a.any()) return at(p, a);
            if (b.any()) return at(p + n, b);
            if (c.any()) return at(p + 2 * n, c);
            return at(p + 3 * n, d);
        }
    }
    if (end - p > 2 * n) {
        const auto a = test.hits(p);
        const auto b = test.hits(p + n);
        if ((a | b).any()) return a.any() ? at(p, a) : at(p + n, b);
        p += 2 * n;
    }
    // At most two blocks are left; what they repeat was seen to have no hit.
    const T* const first = end - p > n ? p : end - n;
    const auto a = test.hits(first);
    const auto b = test.hits(end - n);
    if ((a | b).any()) return a.any() ? at(first, a) : at(end - n, b);
    return kNotFound;
}

template <typename T, typename Test>
[[gnu::noinline]] int lastHitLong(const T* src, int len, const Test& testInMemory) {
    const Test test = testInMemory;
    constexpr ptrdiff_t n = Test::kLanes;
    const T* const end = src + len;
    const auto at = [src](const T* p, auto hits) {
        return static_cast<int>(p - src) + hits.mask().last();
    };

    if (const auto a = test.hits(end - n); a.any()) return at(end - n, a);
    const T* p = end - fromBoundary(end);
    for (; p - src >= 4 * n; p -= 4 * n) {
        const auto a = test.hits(p - n);
        const auto b = test.hits(p - 2 * n);
        const auto c = test.hits(p - 3 * n);
        const auto d = test.hits(p - 4 * n);
        if (((a | b) | (c | d)).any()) {
            if (a.any()) return at(p - n, a);
            if (b.any()) return at(p - 2 * n, b);
            if (c.any()) return at(p - 3 * n, c);
            return at(p - 4 * n, d);
        }
    }
    if (p - src > 2 * n) {
        const auto a = test.hits(p - n);
        const auto b = test.hits(p - 2 * n);
        if ((a | b).any()) return a.any() ? at(p - n, a) : at(p - 2 * n, b);
        p -= 2 * n;
    }
    const T* const last = p - src > n ? p - n : src;
    const auto a = test.hits(last);
    const auto b = test.hits(src);
    if ((a | b).any()) return a.any() ? at(last, a) : at(src, b);
    return kNotFound;
}

/// Index of the first accepted element, or kNotFound.
template <typename T, typename Test>
ZEL_INLINE int firstHit(const T* src, int len, const Test& test) {
    if (len > Test::kLanes) return firstHitLong(src, len, test);
    return test.maskFirst(src, len).firstOrNotFound();
}

/// Index of the last accepted element, or kNotFound.
template <typename T, typename Test>
ZEL_INLINE int lastHit(const T* src, int len, const Test& test) {
    if (len > Test::kLanes) return lastHitLong(src, len, test);
    return test.maskFirst(src, len).lastOrNotFound();
}

/// The usual test: one vector a block, accepted where it equals one of N values.
template <typename T, int N>
struct EqualsAnyOf {
    static constexpr int kLanes = Vec<T>::kLanes;
    Vec<T> values[N];

    /// The values stand at p.
    ZEL_INLINE static EqualsAnyOf of(const T* p) {
        EqualsAnyOf test;
        for (int i = 0; i < N; ++i) test.values[i] = Vec<T>::splat(p[i]);
        return test;
    }
    ZEL_INLINE Hits<T> hits(Vec<T> v) const {
        Hits<T> result = equal(v, values[0]);
        for (int i = 1; i < N; ++i) result = result | equal(v, values[i]);
        return result;
    }
    ZEL_INLINE Hits<T> hits(const T* p) const { return hits(Vec<T>::load(p)); }
    ZEL_INLINE Mask<T> maskFirst(const T* p, int n) const {
        const Vec<T> v = Vec<T>::loadFirst(p, n);
        const Mask<T> found = N == 1 ? Mask<T>{equalBits(v, values[0])} : hits(v).mask();
        return found & Mask<T>::firstN(n);
    }
};

/// Accepts everything but one value.
template <typename T>
struct Differs {
    static constexpr int kLanes = Vec<T>::kLanes;
    Vec<T> value;

    ZEL_INLINE Mask<T> maskOf(Vec<T> v) const { return ~Mask<T>{equalBits(v, value)}; }
    ZEL_INLINE MaskHits<T> hits(const T* p) const { return {maskOf(Vec<T>::load(p))}; }
    ZEL_INLINE Mask<T> maskFirst(const T* p, int n) const {
        return maskOf(Vec<T>::loadFirst(p, n)) & Mask<T>::firstN(n);
    }
};

}  // namespace zel::ZEL_ISA
