// Scanning for the first or last element that a test accepts.
//
// A test looks at a block of kLanes elements at a time:
//   hits(p)          which elements of the block at p it accepts, in a form with operator|, any()
//                    and mask(); whole vectors are loaded
//   maskFirst(p, n)  the mask of a block of which only the first n elements, 0 <= n <= kLanes, are
//                    loaded; what it says of the others means nothing
// A text that fits one block is one partial load and no branch on its length. Up to four blocks
// overlap so that one question covers them all. A longer text starts with four unaligned blocks,
// goes on in rounds of four aligned ones, and ends with four that overlap what was seen before, so
// that nothing outside the text is touched.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

/// What four blocks have, asked for at once: the first hit in the order given, or kNotFound.
template <typename Test, typename T, typename Locate>
ZEL_INLINE int hitInFour(const Test& test, const T* p, const T* q, const T* r, const T* s,
                         Locate locate) {
    const auto a = test.hits(p);
    const auto b = test.hits(q);
    const auto c = test.hits(r);
    const auto d = test.hits(s);
    if (!((a | b) | (c | d)).any()) [[likely]]
        return kNotFound;
    if (a.any()) return locate(p, a);
    if (b.any()) return locate(q, b);
    if (c.any()) return locate(r, c);
    return locate(s, d);
}

/// For a text longer than one block.
template <typename T, typename Test>
ZEL_INLINE int firstHitLong(const T* src, int len, const Test& test) {
    constexpr ptrdiff_t n = Test::kLanes;
    const T* const end = src + len;
    const auto locate = [src](const T* p, auto hits) {
        return static_cast<int>(p - src) + hits.mask().first();
    };

    if (len <= 2 * n) {
        const auto a = test.hits(src);
        const auto b = test.hits(end - n);
        if (!(a | b).any()) return kNotFound;
        return a.any() ? locate(src, a) : locate(end - n, b);
    }
    if (len <= 4 * n) return hitInFour(test, src, src + n, end - 2 * n, end - n, locate);

    if (const int i = hitInFour(test, src, src + n, src + 2 * n, src + 3 * n, locate); i >= 0)
        return i;
    for (const T* p = src + 3 * n + toBoundary(src); end - p > 4 * n; p += 4 * n) {
        if (const int i = hitInFour(test, p, p + n, p + 2 * n, p + 3 * n, locate); i >= 0) return i;
    }
    return hitInFour(test, end - 4 * n, end - 3 * n, end - 2 * n, end - n, locate);
}

template <typename T, typename Test>
ZEL_INLINE int lastHitLong(const T* src, int len, const Test& test) {
    constexpr ptrdiff_t n = Test::kLanes;
    const T* const end = src + len;
    const auto locate = [src](const T* p, auto hits) {
        return static_cast<int>(p - src) + hits.mask().last();
    };

    if (len <= 2 * n) {
        const auto a = test.hits(end - n);
        const auto b = test.hits(src);
        if (!(a | b).any()) return kNotFound;
        return a.any() ? locate(end - n, a) : locate(src, b);
    }
    if (len <= 4 * n) return hitInFour(test, end - n, end - 2 * n, src + n, src, locate);

    if (const int i = hitInFour(test, end - n, end - 2 * n, end - 3 * n, end - 4 * n, locate);
        i >= 0)
        return i;
    for (const T* p = end - 3 * n - fromBoundary(end); p - src > 4 * n; p -= 4 * n) {
        if (const int i = hitInFour(test, p - n, p - 2 * n, p - 3 * n, p - 4 * n, locate); i >= 0)
            return i;
    }
    return hitInFour(test, src + 3 * n, src + 2 * n, src + n, src, locate);
}

/// Index of the first accepted element, or kNotFound.
template <typename T, typename Test>
ZEL_INLINE int firstHit(const T* src, int len, const Test& test) {
    if (len > Test::kLanes) [[unlikely]]
        return firstHitLong(src, len, test);
    return test.maskFirst(src, len).firstBelow(len);
}

/// Index of the last accepted element, or kNotFound.
template <typename T, typename Test>
ZEL_INLINE int lastHit(const T* src, int len, const Test& test) {
    if (len > Test::kLanes) [[unlikely]]
        return lastHitLong(src, len, test);
    const Mask<T> found = test.maskFirst(src, len) & Mask<T>::firstN(len);
    return found.any() ? found.last() : kNotFound;
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
        return N == 1 ? Mask<T>{equalBits(v, values[0])} : hits(v).mask();
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
        return maskOf(Vec<T>::loadFirst(p, n));
    }
};

}  // namespace zel::ZEL_ISA
