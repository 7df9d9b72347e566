// The three hash formulas. Their values are part of the interface: callers store them, so no
// initial value, step or stopping rule may ever change. All arithmetic wraps modulo 2^32.
#pragma once

#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// Shift and exclusive-or. An element more than 31 places before the end has no effect.
template <typename T>
Zel32u hashShift(const T* src, int len) {
    Zel32u h = 0;
    for (int i = 0; i < len; ++i) h = (h << 1) ^ src[i];
    return h;
}

/// Polynomial in 31.
template <typename T>
Zel32u hashSJ2(const T* src, int len) {
    Zel32u h = 0;
    for (int i = 0; i < len; ++i) h = h * 31 + src[i];
    return h;
}

/// Multiply by 33 and exclusive-or, up to the first zero element.
template <typename T>
Zel32u hashMSCS(const T* src, int len) {
    Zel32u h = 5381;
    for (int i = 0; i < len && src[i] != 0; ++i) h = (h * 33) ^ src[i];
    return h;
}

}  // namespace zel::ZEL_ISA
