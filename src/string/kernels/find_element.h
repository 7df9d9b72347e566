// Searches for one element or another, on valid arguments: the index, or kNotFound.
#pragma once

#include "string/kernels/scan.h"

namespace zel::ZEL_ISA {

template <typename T>
ZEL_INLINE int findElement(const T* src, int len, T val) {
    return firstHit(src, len, EqualsAnyOf<T, 1>::of(&val));
}

template <typename T>
ZEL_INLINE int findElementRev(const T* src, int len, T val) {
    return lastHit(src, len, EqualsAnyOf<T, 1>::of(&val));
}

}  // namespace zel::ZEL_ISA
