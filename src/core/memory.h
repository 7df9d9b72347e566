// The two block workers through which the library itself copies and clears memory. Both take a byte
// count that may be zero or negative, which does nothing, so that callers need no test of their
// own. The count is 64 bits wide because 2^31 - 1 elements of 16 bits need it.
#pragma once

#include <stddef.h>

#include "string/kernels/api.h"
#include "zelchmx.h"

namespace zel {

/// Copies n bytes as if one by one from index 0 up, also when the ranges overlap: a copy to a lower
/// address is exact, a copy to a higher one inside the source repeats the leading bytes. Returns
/// dst.
inline Zel8u* ownsCopy_8u(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    kernels::copyBytes(src, dst, n);
    return dst;
}

/// Clears n bytes. Returns dst.
inline Zel8u* ownsZero_8u(Zel8u* dst, ptrdiff_t n) {
    kernels::zeroBytes(dst, n);
    return dst;
}

}  // namespace zel
