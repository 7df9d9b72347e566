// Where the kept part of a string begins and ends. The exported functions in trim.cpp combine these
// two scans with one copy.
#pragma once

#include "string/kernels/find_any.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// What is trimmed: one element, or the elements of a set. Their two scans give the index of the
/// first and of the last element that is kept; len and -1 when none is.
template <typename T>
struct TrimElement {
    T val;

    int firstKept(const T* src, int len) const {
        for (int i = 0; i < len; ++i) {
            if (src[i] != val) return i;
        }
        return len;
    }

    int lastKept(const T* src, int len) const {
        for (int i = len - 1; i >= 0; --i) {
            if (src[i] != val) return i;
        }
        return -1;
    }
};

template <typename T>
struct TrimAnyOf {
    const T* set;
    int lenSet;

    int firstKept(const T* src, int len) const {
        for (int i = 0; i < len; ++i) {
            if (findElement(set, lenSet, src[i]) == kNotFound) return i;
        }
        return len;
    }

    int lastKept(const T* src, int len) const {
        for (int i = len - 1; i >= 0; --i) {
            if (findElement(set, lenSet, src[i]) == kNotFound) return i;
        }
        return -1;
    }
};

}  // namespace zel::ZEL_ISA
