// Searches for one element or another, on valid arguments: the index, or kNotFound.
#pragma once

#include "string/kernels/scan.h"

namespace zel::ZEL_ISA {

template <From from = From::Start, typename T>
ZEL_INLINE int findElement(const T* src, int len, T val) {
    return findHit<from>(src, len, EqualsAnyOf<T, 1>::of(&val));
}

}  // namespace zel::ZEL_ISA
