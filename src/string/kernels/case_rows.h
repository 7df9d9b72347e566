// The case tables in the form that the kernels read, derived from those of case_tables.h, which
// stay the source of truth: for each row of 64 code units what is to be added to each of them,
// modulo 2^16, on the way to lower or to upper case.
#pragma once

#include "zelchmx.h"

namespace zel::case_rows {

inline constexpr int kRowLength = 64;
inline constexpr int kRows = 33;

/// The row of a code unit, indexed by code unit >> 6; row 0 has no mapping at all.
extern const Zel8u kRowOf[1024];
extern const Zel16u kToLower[kRows * kRowLength];
extern const Zel16u kToUpper[kRows * kRowLength];

/// Two long ranges without a mapping: punctuation and symbols, and everything from box drawing over
/// the ideographs to the surrogates and beyond.
inline constexpr Zel16u kCaselessFirst = 0x1FFD;
inline constexpr Zel16u kCaselessLast = 0x215F;
inline constexpr Zel16u kCaselessHighFirst = 0x24EA;
inline constexpr Zel16u kCaselessHighLast = 0xFF20;

}  // namespace zel::case_rows
