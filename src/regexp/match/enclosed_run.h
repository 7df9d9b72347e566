// Patterns that are a literal, a run of bytes behind it, and perhaps a literal that ends the run:
// `0x[0-9a-f]+`, `"[^"]*"`, `error: .*`; also of that kind at the start of a line, or up to its
// end. At each place of the first literal there is one match or none, so all of them can be
// collected without the engine.
#pragma once

#include "regexp/match/one_way.h"
#include "string/kernels/api.h"

namespace zel {

class EnclosedRun {
public:
    /// Reads the pattern; false when it is of another kind, or when longer characters might make a
    /// difference.
    bool read(const ZelRegExpState& state, StackGuard& stack);

    /// Writes the matches in [start, end), in order, until there are `capacity` of them; answers
    /// how many, or -1 when the budget may not suffice.
    int collect(const Zel8u* start, const Zel8u* end, int steps, ZelRegExpFind* results,
                int capacity) const;

private:
    bool describe(const ZelRegExpState& state, StackGuard& stack);
    bool readParts(const OneWay::Part* parts, bool utf8);

    kernels::EnclosedRun run_;
};

}  // namespace zel
