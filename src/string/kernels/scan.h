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

#include "string/kernels/direction.h"

namespace zel::ZEL_ISA {

/// The index of the hit that the search meets first in a block which has one.
template <From from, typename T, typename H>
ZEL_INLINE int nearestHit(const T* src, const T* block, H hits) {
    return static_cast<int>(block - src) + Way<from>::nearest(hits.mask());
}

/// The same of two blocks, of which the one at p comes first.
template <From from, typename T, typename H>
ZEL_INLINE int nearestHitInTwo(const T* src, const T* p, const T* q, H atP, H atQ) {
    Mask<T> mask = atQ.mask();
    const Mask<T> first = atP.mask();
    const T* block = q;
    if (first.any()) {
        mask = first;
        block = p;
    }
    return static_cast<int>(block - src) + Way<from>::nearest(mask);
}

/// What four blocks have, asked for at once: the first hit in the order given, or kNotFound.
template <From from, typename T, typename Test>
ZEL_INLINE int hitInFour(const Test& test, const T* src, const T* p, const T* q, const T* r,
                         const T* s) {
    const auto a = test.hits(p);
    const auto b = test.hits(q);
    const auto c = test.hits(r);
    const auto d = test.hits(s);
    if (!((a | b) | (c | d)).any()) [[likely]]
        return kNotFound;
    if ((a | b).any()) return nearestHitInTwo<from>(src, p, q, a, b);
    return nearestHitInTwo<from>(src, r, s, c, d);
}

/// For a text longer than one block.
template <From from, typename T, typename Test>
ZEL_INLINE int findHitLong(const T* src, int len, const Test& test) {
    using W = Way<from>;
    constexpr ptrdiff_t n = Test::kLanes;
    const T* const begin = W::begin(src, len);
    const T* const end = W::end(src, len);
    const T* const first = W::block(begin, n, 0);
    const T* const second = W::block(begin, n, 1);
    const T* const nextToLast = W::blockBack(end, n, 1);
    const T* const last = W::blockBack(end, n, 0);

    if (len <= 2 * n) {
        const auto a = test.hits(first);
        const auto b = test.hits(last);
        if (!(a | b).any()) return kNotFound;
        return a.any() ? nearestHit<from>(src, first, a) : nearestHit<from>(src, last, b);
    }
    if (len <= 4 * n) return hitInFour<from>(test, src, first, second, nextToLast, last);

    const auto hitInRound = [&](const T* p) __attribute__((always_inline)) {
        return hitInFour<from>(test, src, W::block(p, n, 0), W::block(p, n, 1), W::block(p, n, 2),
                               W::block(p, n, 3));
    };
    if (const int i = hitInRound(begin); i >= 0) return i;
    const T* p = W::on(begin, 3 * n + W::toBoundary(begin));
    for (; W::distance(p, end) > 4 * n; p = W::on(p, 4 * n)) {
        if (const int i = hitInRound(p); i >= 0) return i;
    }
    return hitInRound(W::on(end, -4 * n));
}

/// Index of the accepted element that the search meets first, or kNotFound.
template <From from, typename T, typename Test>
ZEL_INLINE int findHit(const T* src, int len, const Test& test) {
    if (len > Test::kLanes) [[unlikely]]
        return findHitLong<from>(src, len, test);
    return Way<from>::nearestOf(test.maskFirst(src, len), len);
}

template <typename T, typename Test>
ZEL_INLINE int firstHit(const T* src, int len, const Test& test) {
    return findHit<From::Start>(src, len, test);
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
    ZEL_INLINE Mask<T> maskOf(Vec<T> v) const {
        return N == 1 ? Mask<T>{equalBits(v, values[0])} : hits(v).mask();
    }
    ZEL_INLINE Mask<T> maskFirst(const T* p, int n) const {
        return maskOf(Vec<T>::loadFirst(p, n));
    }
};

/// Accepts everything but one value.
template <typename T>
struct Differs {
    static constexpr int kLanes = Vec<T>::kLanes;
    Vec<T> value;

    ZEL_INLINE static Differs from(T value) { return {Vec<T>::splat(value)}; }
    ZEL_INLINE Differences<T> hits(const T* p) const { return difference(Vec<T>::load(p), value); }
    ZEL_INLINE Mask<T> maskFirst(const T* p, int n) const {
        return ~Mask<T>{equalBits(Vec<T>::loadFirst(p, n), value)};
    }
};

}  // namespace zel::ZEL_ISA
