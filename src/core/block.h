// The two block workers through which the library itself copies and clears memory. Both take a byte
// count that may be zero or negative, which does nothing, so that callers need no test of their
// own.
#pragma once

#include <stddef.h>
#include <string.h>

#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// Copies n bytes as if one by one from index 0 up, also when the ranges overlap: a copy to a lower
/// address is exact, a copy to a higher one inside the source repeats the leading bytes.
/// The count is 64 bits wide because 2^31 - 1 elements of 16 bits need it. Returns dst.
inline Zel8u* ownsCopy_8u(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n < 1 || src == dst) return dst;
    const bool repeats = src < dst && dst < src + n;
    if (!repeats) {
        memmove(dst, src, static_cast<size_t>(n));
        return dst;
    }
    for (ptrdiff_t i = 0; i < n; ++i) dst[i] = src[i];
    return dst;
}

/// Clears n bytes. Returns dst.
inline Zel8u* ownsZero_8u(Zel8u* dst, ptrdiff_t n) {
    if (n < 1) return dst;
    memset(dst, 0, static_cast<size_t>(n));
    return dst;
}

/// Moves n bytes so that overlapping ranges keep their content in either direction.
inline void moveBytes(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n < 1) return;
    memmove(dst, src, static_cast<size_t>(n));
}

/// The element forms: n counts elements of T.
template <typename T>
void copyElements(const T* src, T* dst, ptrdiff_t n) {
    ownsCopy_8u(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
                n * static_cast<ptrdiff_t>(sizeof(T)));
}

template <typename T>
void moveElements(const T* src, T* dst, ptrdiff_t n) {
    moveBytes(reinterpret_cast<const Zel8u*>(src), reinterpret_cast<Zel8u*>(dst),
              n * static_cast<ptrdiff_t>(sizeof(T)));
}

}  // namespace zel::ZEL_ISA
