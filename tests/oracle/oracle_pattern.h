// The pattern for which PCRE2 must give the library's result.
#pragma once

#include <string>

#include "differences.h"

namespace worlds {

/// Rewrites a pattern for the oracle; `behind` is the byte behind the text. Notes in `expectation`
/// what it met.
std::string oraclePattern(const Tree& tree, bool ignoreCase, char behind, Expectation& expectation);

}  // namespace worlds
