// The part of the pattern language that every Perl-like engine shares: generated patterns and
// texts, the library's answer in a plain form, and the table of places where the library differs on
// purpose.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "differential/random.h"

namespace witness {

/// Start and length of the whole match and of every group; (-1, -1) for a group that took no part.
/// Empty when there is no match.
using Spans = std::vector<std::pair<int, int>>;

std::string describe(const Spans& spans);

struct OrdinaryCase {
    std::string pattern;
    std::string options;  // of i, m and s
    std::string text;
};

/// A pattern that is valid everywhere, and a text that may match it.
OrdinaryCase makeOrdinaryCase(differential::Random& random);

/// The library's first match, with a budget that is never the limit.
struct Answer {
    bool compiles = false;
    bool comparable = false;  // none of the deliberate differences below can show
    Spans spans;
};
Answer ask(const OrdinaryCase& testCase);

/// A deliberate difference: what the library answers, what Perl-like engines answer, and why.
struct Difference {
    const char* pattern;
    const char* options;
    const char* text;
    Spans library;
    Spans others;
    const char* reason;
};
const std::vector<Difference>& deliberateDifferences();

}  // namespace witness
