// Patterns that are a literal and nothing else. Their matches are the places of the literal, from
// left to right and without overlaps, which are collected without the engine. No attempt costs more
// than one step, and no text has more attempts than bytes and one.
#pragma once

#include "regexp/program.h"

namespace zel {

struct PlainLiteral {
    const Zel8u* text;
    int length;
    bool ignoreCase;

    /// Reads the pattern; false when it is of another kind, or when its places need not be places
    /// where a character begins.
    bool read(const ZelRegExpState& state);

    /// Writes the matches in [start, end), in order, until there are `capacity` of them; answers
    /// how many.
    int collect(const Zel8u* start, const Zel8u* end, ZelRegExpFind* results, int capacity) const;
};

}  // namespace zel
