// Element by element from a source to a destination, which may be the source itself.
//
// A text that fits one vector is one partial load and one partial store. Up to four vectors overlap
// and are all loaded and mapped before the first is stored, so that the result is right also when
// the destination is the source. For the same reason a longer text's last vector, which overlaps
// what comes before it, is mapped first and stored last. A long one stores whole cache lines, and
// begins with two vectors that overlap.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

// map(Vec<T>) gives the mapped elements; it may keep what it learns from one call to the next.
// Map::kIsSmall says whether it consists of a few instructions.

/// For texts of at most a vector. The widest are taken by halves when the map may stand there
/// twice.
template <typename T, typename Map>
ZEL_INLINE void mapShort(const T* src, T* dst, int len, Map map) {
    using V = Vec<T>;
    if constexpr (Map::kIsSmall && V::kBytes == 64) {
        if (len > V::kLanes / 2)
            map(V::loadEnds(src, len)).storeEnds(dst, len);
        else
            map(V::loadFirst(src, len)).storeFirstOfHalf(dst, len);
    } else {
        map(V::loadFirst(src, len)).storeFirst(dst, len);
    }
}

/// For longer texts.
template <typename T, typename Map>
ZEL_INLINE void mapLong(const T* src, T* dst, int len, Map&& map) {
    using V = Vec<T>;
    constexpr ptrdiff_t n = V::kLanes;
    const T* const lastSrc = src + len - n;
    T* const lastDst = dst + len - n;
    const V last = map(V::load(lastSrc));
    if (len <= 4 * n) {
        const V first = map(V::load(src));
        if (len > 2 * n) {
            const V second = map(V::load(src + n));
            const V third = map(V::load(lastSrc - n));
            second.store(dst + n);
            third.store(lastDst - n);
        }
        first.store(dst);
        last.store(lastDst);
        return;
    }
    if (len >= 8 * n) {
        const ptrdiff_t skip = toBoundary(dst);
        const V first = map(V::load(src));
        const V second = map(V::load(src + skip));
        first.store(dst);
        second.store(dst + skip);
        src += skip + n;
        dst += skip + n;
    }
    for (; lastSrc - src >= 4 * n; src += 4 * n, dst += 4 * n) {
        const V a = map(V::load(src));
        const V b = map(V::load(src + n));
        const V c = map(V::load(src + 2 * n));
        const V d = map(V::load(src + 3 * n));
        a.store(dst);
        b.store(dst + n);
        c.store(dst + 2 * n);
        d.store(dst + 3 * n);
    }
    for (; lastSrc > src; src += n, dst += n) map(V::load(src)).store(dst);
    last.store(lastDst);
}

/// For texts of any length.
template <typename T, typename Map>
ZEL_INLINE void mapElements(const T* src, T* dst, int len, Map map) {
    if (len <= Vec<T>::kLanes) [[likely]]
        mapShort(src, dst, len, map);
    else
        mapLong(src, dst, len, map);
}

}  // namespace zel::ZEL_ISA
