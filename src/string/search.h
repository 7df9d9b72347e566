// Search in valid arguments: every function returns the index of the match, or -1. One text serves
// both element widths; the exported functions in search.cpp add the argument checks.
#pragma once

#include "zelchmx.h"

namespace zel {

inline constexpr int kNotFound = -1;

/// First element equal to val.
template <typename T>
int findElement(const T* src, int len, T val) {
    for (int i = 0; i < len; ++i) {
        if (src[i] == val) return i;
    }
    return kNotFound;
}

/// Last element equal to val.
template <typename T>
int findElementRev(const T* src, int len, T val) {
    for (int i = len - 1; i >= 0; --i) {
        if (src[i] == val) return i;
    }
    return kNotFound;
}

/// First element equal to any of the set's.
template <typename T>
int findAnyOf(const T* src, int len, const T* set, int lenSet) {
    for (int i = 0; i < len; ++i) {
        if (findElement(set, lenSet, src[i]) != kNotFound) return i;
    }
    return kNotFound;
}

/// Last element equal to any of the set's.
template <typename T>
int findAnyOfRev(const T* src, int len, const T* set, int lenSet) {
    for (int i = len - 1; i >= 0; --i) {
        if (findElement(set, lenSet, src[i]) != kNotFound) return i;
    }
    return kNotFound;
}

/// True when the pattern stands at p.
template <typename T>
bool standsAt(const T* p, const T* pattern, int lenPattern) {
    for (int i = 0; i < lenPattern; ++i) {
        if (p[i] != pattern[i]) return false;
    }
    return true;
}

/// First position of the pattern. An empty pattern is never found.
template <typename T>
int findString(const T* src, int len, const T* pattern, int lenPattern) {
    if (lenPattern == 0) return kNotFound;
    for (int i = 0; i <= len - lenPattern; ++i) {
        if (standsAt(src + i, pattern, lenPattern)) return i;
    }
    return kNotFound;
}

/// Last position of the pattern. An empty pattern is never found.
template <typename T>
int findStringRev(const T* src, int len, const T* pattern, int lenPattern) {
    if (lenPattern == 0) return kNotFound;
    for (int i = len - lenPattern; i >= 0; --i) {
        if (standsAt(src + i, pattern, lenPattern)) return i;
    }
    return kNotFound;
}

/// Number of elements before the terminating zero; -1 when a length cannot express it.
template <typename T>
int measure(const T* srcZ) {
    const T* end = srcZ;
    while (*end != 0) ++end;
    const auto len = end - srcZ;
    return len <= 0x7FFFFFFF ? static_cast<int>(len) : -1;
}

}  // namespace zel
