// What a search can know about its pattern before it starts: which bytes a match begins with, and
// what a start position costs that begins with something else. Made on the stack at the start of a
// search over enough text, never kept.
//
// A plan is a promise about the engine: an attempt at a start position that the plan rejects would
// fail, and would cost at most `price` steps. How the plan is drawn from the nodes is therefore
// bound to how the engine executes them; whoever changes the one has to look at the other.
#pragma once

#include "regexp/match/byte_set.h"
#include "regexp/program.h"

namespace zel {

struct Plan {
    enum Kind {
        kNone,     // every position has to be tried
        kLiteral,  // a match begins with `literal`
        kBytes,    // a match begins with one of up to three bytes
        kSet,      // a match begins with a byte of `first`
    };
    Kind kind = kNone;
    int price = 0;       // what a rejected start position costs at most
    bool exact = false;  // and whether it costs just that
    ByteSet first = {};
    const Zel8u* literal = nullptr;
    int literalLength = 0;
    bool ignoreCase = false;
    int byteCount = 0;
    Zel8u bytes[3] = {};

    /// The first position of text[0..length) that the plan does not reject, `length` when there is
    /// none.
    int next(const Zel8u* text, int length) const;
};

/// Draws up a plan for the pattern.
void makePlan(const ZelRegExpState& state, Plan& plan);

}  // namespace zel
