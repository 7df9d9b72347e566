// The case table of the 16-bit functions: three constant arrays over all 65536 code units, written
// by tools/generate_case_tables.py, which also documents every bit of the property word. Conversion
// and case-blind comparison share this one copy.
#pragma once

#include "zelchmx.h"

namespace zel {

namespace case_tables {

/// Start in Y of the block of 64 entries that a code unit lies in, indexed by code unit >> 6.
extern const Zel16u X[1024];
/// Index into A.
extern const Zel8u Y[7808];
/// The property word of a class of characters.
extern const int A[128];

}  // namespace case_tables

inline constexpr int kHasLower = 1 << 21;
inline constexpr int kHasUpper = 1 << 20;

/// The property word of a code unit.
inline int caseProperties(Zel16u c) {
    using namespace case_tables;
    return A[Y[X[c >> 6] | (c & 63)]];
}

/// Lowercase minus uppercase code unit, from a property word.
constexpr int caseDelta(int properties) {
    return properties >> 22;
}

}  // namespace zel
