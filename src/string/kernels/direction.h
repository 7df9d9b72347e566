// A search from the start of a text to its end, or from its end to its start, is written once: all
// that its direction means for positions, blocks and masks is said here.
//
// A position lies between two elements. What a search has before it at a position is what it has
// not yet seen: the elements behind the position on the way up, those in front of it on the way
// down.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

/// Where a search begins.
enum class From { Start, End };

template <From from>
struct Way {
    static constexpr bool kIsUp = from == From::Start;
    using Back = Way<kIsUp ? From::End : From::Start>;

    /// Where a search of len elements begins and ends.
    template <typename T>
    ZEL_INLINE static const T* begin(const T* src, ptrdiff_t len) {
        return kIsUp ? src : src + len;
    }
    template <typename T>
    ZEL_INLINE static const T* end(const T* src, ptrdiff_t len) {
        return Back::begin(src, len);
    }
    /// The position n elements further on.
    template <typename T>
    ZEL_INLINE static const T* on(const T* p, ptrdiff_t n) {
        return kIsUp ? p + n : p - n;
    }
    /// Elements between a position and one further on.
    template <typename T>
    ZEL_INLINE static ptrdiff_t distance(const T* p, const T* further) {
        return kIsUp ? further - p : p - further;
    }
    /// The address of the kth block of n elements before the search at p, and of those behind it.
    template <typename T>
    ZEL_INLINE static const T* block(const T* p, ptrdiff_t n, ptrdiff_t k) {
        return kIsUp ? p + k * n : p - (k + 1) * n;
    }
    template <typename T>
    ZEL_INLINE static const T* blockBack(const T* p, ptrdiff_t n, ptrdiff_t k) {
        return Back::block(p, n, k);
    }
    /// Elements up to the next vector boundary: at least one and at most a vector.
    template <typename T>
    ZEL_INLINE static ptrdiff_t toBoundary(const T* p) {
        return kIsUp ? ZEL_ISA::toBoundary(p) : fromBoundary(p);
    }
    /// The lane of a mask that the search meets first, where there is one.
    template <typename T>
    ZEL_INLINE static int nearest(Mask<T> mask) {
        return kIsUp ? mask.first() : mask.last();
    }
    template <typename T>
    ZEL_INLINE static Mask<T> withoutNearest(Mask<T> mask) {
        return kIsUp ? mask.withoutFirst() : mask.without(mask.last());
    }
    /// The same of the first n lanes, or kNotFound; without a branch.
    template <typename T>
    ZEL_INLINE static int nearestOf(Mask<T> mask, int n) {
        return kIsUp ? mask.firstBelow(n) : nearestAmong(mask & Mask<T>::firstN(n), n);
    }
    /// The same where the mask has no other lanes.
    template <typename T>
    ZEL_INLINE static int nearestAmong(Mask<T> mask, int n) {
        return kIsUp ? mask.firstBelow(n) : mask.lastOrNotFound();
    }
};

}  // namespace zel::ZEL_ISA
