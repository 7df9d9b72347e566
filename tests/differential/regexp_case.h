// One case of the regular-expression differential test: what goes in, and the comparison of library
// and model on it.
#pragma once

#include <string>

#include "random.h"

namespace differential {

struct RegexpCase {
    std::string pattern;
    std::string options;
    int format = 1;
    int limit = 10000;
    std::string subject;
    int behind = 0;    // the readable byte behind the subject
    int records = 16;  // capacity of the result array

    /// A C++ initializer.
    std::string text() const;
};

RegexpCase makeRegexpCase(Random& random);

/// Compiles and searches with library and model. Empty when they agree in everything, else what
/// they disagree about.
std::string compare(const RegexpCase& testCase);

/// The smallest case found that still fails.
RegexpCase shrink(const RegexpCase& testCase);

/// What the comparisons ran so far, in words.
std::string regexpTotals();

}  // namespace differential
