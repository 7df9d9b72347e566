// One element in place of another.
#pragma once

#include "string/kernels/map.h"

namespace zel::ZEL_ISA {

template <typename T>
struct Replacement {
    static constexpr bool kIsSmall = true;
    Vec<T> from;
    Vec<T> to;

    ZEL_INLINE Replacement(T valOld, T valNew)
        : from(Vec<T>::splat(valOld)), to(Vec<T>::splat(valNew)) {}
    ZEL_INLINE Vec<T> operator()(Vec<T> v) const { return replaceEqual(v, from, to); }
};

}  // namespace zel::ZEL_ISA
