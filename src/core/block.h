// Copying, moving and clearing of valid ranges, by bytes. A count may be zero or negative, which
// does nothing.
#pragma once

#include <stddef.h>
#include <string.h>

#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// Copies n bytes as if one by one from index 0 up, also when the ranges overlap: a copy to a lower
/// address is exact, a copy to a higher one inside the source repeats the leading bytes.
inline void copyForward(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n < 1 || src == dst) return;
    const bool repeats = src < dst && dst < src + n;
    if (!repeats) {
        memmove(dst, src, static_cast<size_t>(n));
        return;
    }
    for (ptrdiff_t i = 0; i < n; ++i) dst[i] = src[i];
}

/// Clears n bytes.
inline void clearRange(Zel8u* dst, ptrdiff_t n) {
    if (n < 1) return;
    memset(dst, 0, static_cast<size_t>(n));
}

/// Moves n bytes so that overlapping ranges keep their content in either direction.
inline void moveRange(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n < 1) return;
    memmove(dst, src, static_cast<size_t>(n));
}

/// The element forms: n counts elements of T.
template <typename T>
void copyElements(const T* src, T* dst, ptrdiff_t n) {
    copyForward(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
                n * static_cast<ptrdiff_t>(sizeof(T)));
}

template <typename T>
void moveElements(const T* src, T* dst, ptrdiff_t n) {
    moveRange(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
              n * static_cast<ptrdiff_t>(sizeof(T)));
}

}  // namespace zel::ZEL_ISA
