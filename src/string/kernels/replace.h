// One element in place of another.
#pragma once

#include "string/kernels/map.h"

namespace zel::ZEL_ISA {

/// Copies src to dst, which may be src, with valNew for valOld.
template <typename T>
ZEL_INLINE void replaceElement(const T* src, T* dst, int len, T valOld, T valNew) {
    const Vec<T> from = Vec<T>::splat(valOld);
    const Vec<T> to = Vec<T>::splat(valNew);
    mapElements(src, dst, len, [=](Vec<T> v) { return replaceEqual(v, from, to); });
}

}  // namespace zel::ZEL_ISA
