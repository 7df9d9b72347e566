// One case of the replace differential test: a pattern, a subject, a template and the room for the
// output and for the records.
#pragma once

#include <string>

#include "random.h"

namespace differential {

struct ReplaceCase {
    std::string pattern;
    std::string options;
    int limit = 10000;
    std::string subject;
    bool noTemplate = false;
    std::string replacement;
    int capacity = 100;
    int records = 16;

    std::string text() const;
};

ReplaceCase makeReplaceCase(Random& random);
std::string compare(const ReplaceCase& testCase);
ReplaceCase shrink(const ReplaceCase& testCase);

/// One case of the pattern-set differential test: everything in it follows from one number.
struct SetCase {
    uint64_t number = 0;

    std::string text() const;
};

SetCase makeSetCase(Random& random);
std::string compare(const SetCase& testCase);
SetCase shrink(const SetCase& testCase);

}  // namespace differential
