// Case conversion of single elements and of runs. Each element maps to exactly one element and is
// read before it is written, so a run may be converted where it lies.
#pragma once

#include "string/case_tables.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// The rules, as function objects that map one element.
struct ToUpperByTable {
    Zel16u operator()(Zel16u c) const {
        const int properties = caseProperties(c);
        return properties & kHasUpper ? static_cast<Zel16u>(c - caseDelta(properties)) : c;
    }
};

struct ToLowerByTable {
    Zel16u operator()(Zel16u c) const {
        const int properties = caseProperties(c);
        return properties & kHasLower ? static_cast<Zel16u>(c + caseDelta(properties)) : c;
    }
};

struct ToUpperLatin {
    template <typename T>
    constexpr T operator()(T c) const {
        return c >= 'a' && c <= 'z' ? static_cast<T>(c - 32) : c;
    }
};

struct ToLowerLatin {
    template <typename T>
    constexpr T operator()(T c) const {
        return c >= 'A' && c <= 'Z' ? static_cast<T>(c + 32) : c;
    }
};

/// Writes rule(src[i]) for each element. dst may be src.
template <typename Rule, typename T>
void convertCase(const T* src, T* dst, int len, Rule rule) {
    for (int i = 0; i < len; ++i) dst[i] = rule(src[i]);
}

}  // namespace zel::ZEL_ISA
