// Searches for one element, on valid arguments: the index, or kNotFound.
#pragma once

#include "string/kernels/scan.h"

namespace zel::ZEL_ISA {

/// For texts longer than a vector.
template <From from, typename T>
ZEL_INLINE int findElementLong(const T* src, int len, T val) {
    return findHitLong<from>(src, len, EqualsAnyOf<T, 1>::of(&val));
}

/// For texts of any length.
template <From from = From::Start, typename T>
ZEL_INLINE int findElement(const T* src, int len, T val) {
    if (len > Vec<T>::kLanes) [[unlikely]]
        return findElementLong<from>(src, len, val);
    return Way<from>::nearestAmong(equalFirst(src, len, val), len);
}

}  // namespace zel::ZEL_ISA
