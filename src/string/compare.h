// Comparison of two valid runs of the same length. The result of every comparison is a property of
// the first pair that differs, so that its sign orders the strings.
#pragma once

#include "string/case.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// The difference of the first pair that differs, as it stands, else 0.
template <typename T>
int compareExact(const T* src1, const T* src2, int len) {
    for (int i = 0; i < len; ++i) {
        if (src1[i] != src2[i]) return src1[i] - src2[i];
    }
    return 0;
}

/// The difference of the first pair that differs when folded, else 0. A pair that is equal as it
/// stands is equal when folded.
template <typename Fold, typename T>
int compareFolded(const T* src1, const T* src2, int len, Fold fold) {
    for (int i = 0; i < len; ++i) {
        if (src1[i] == src2[i]) continue;
        const int difference = fold(src1[i]) - fold(src2[i]);
        if (difference != 0) return difference;
    }
    return 0;
}

/// True when all elements are equal.
template <typename T>
bool equalElements(const T* src1, const T* src2, int len) {
    for (int i = 0; i < len; ++i) {
        if (src1[i] != src2[i]) return false;
    }
    return true;
}

}  // namespace zel::ZEL_ISA
