// Whether two runs of elements are the same: for candidates of a search, where runs are short and
// most differ early.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

template <typename T>
ZEL_INLINE bool isSame(const T* a, const T* b, ptrdiff_t len) {
    using V = Vec<T>;
    constexpr ptrdiff_t n = V::kLanes;
    for (; len > n; a += n, b += n, len -= n) {
        if (Mask<T>{equalBits(V::load(a), V::load(b))}.bits != Mask<T>::all().bits) return false;
    }
    const int rest = static_cast<int>(len);
    const Mask<T> same{equalBits(V::loadFirst(a, rest), V::loadFirst(b, rest))};
    return (~same & Mask<T>::firstN(rest)).bits == 0;
}

}  // namespace zel::ZEL_ISA
