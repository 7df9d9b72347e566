// The first pass of compilation: parentheses are balanced and not too many. Nothing is written.
#pragma once

#include "regexp/program.h"

namespace zel {

struct Structure {
    ZelStatus status;
    const Zel8u* errorAt;  // when status is not zelStatusOk
    int groupCount;        // capturing groups plus one
};

Structure checkStructure(const Zel8u* pattern, Zel32u flags);

}  // namespace zel
