// Patterns that are a literal and nothing else, or several to choose from: `error|warning`. Their
// matches are the places of the literals, from left to right and without overlaps, which are
// collected without the engine. An attempt costs at most one step for each literal and as many for
// the bars between, and no text has more attempts than bytes and one.
#pragma once

#include "regexp/program.h"
#include "string/kernels/api.h"

namespace zel {

/// A literal of the program; false when the node is none, or when its places need not be places
/// where a character begins.
inline bool readLiteral(const Node& node, int format, kernels::Literal& literal) {
    if (node.kind == NodeString) {
        literal = {static_cast<const Zel8u*>(node.data), node.count};
    } else if (node.kind == NodeLetter) {
        // The number's first byte in memory is its lowest.
        literal = {reinterpret_cast<const Zel8u*>(&node.value), 1};
    } else {
        return false;
    }
    return format != kFormatUtf8 || (*literal.text & 0xC0) != 0x80;
}

class PlainLiterals {
public:
    /// Reads the pattern; false when it is of another kind, or when its places need not be places
    /// where a character begins.
    bool read(const ZelRegExpState& state);

    /// What an attempt costs at most.
    int price() const { return set_.count == 1 ? 1 : 2 * set_.count; }

    const kernels::LiteralSet& set() const { return set_; }

    /// Writes the matches in [start, end), in order, until there are `capacity` of them; answers
    /// how many.
    int collect(const Zel8u* start, const Zel8u* end, ZelRegExpFind* results, int capacity) const {
        return kernels::collectLiterals(start, static_cast<int>(end - start), &set_, results,
                                        capacity);
    }

private:
    bool makePrefixes();

    kernels::LiteralSet set_;
};

}  // namespace zel
