// Reading literals, and what they begin with.
#include "regexp/match/plain_literals.h"

#include <string.h>

#include "regexp/match/predicates.h"

namespace zel {

bool PlainLiterals::makePrefixes() {
    using kernels::PrefixTables;
    PrefixTables& prefix = set_.prefix;
    prefix = {};
    prefix.depth = PrefixTables::kMaxDepth;
    for (int i = 0; i < set_.count; ++i) {
        const kernels::Literal& literal = set_.literals[i];
        if (literal.length < prefix.depth) prefix.depth = literal.length;
        const auto bit = static_cast<Zel8u>(1u << prefix.bitFor(*literal.text));
        Zel8u head[PrefixTables::kMaxDepth];
        Zel8u ignored[PrefixTables::kMaxDepth];
        for (int at = 0; at < PrefixTables::kMaxDepth; ++at) {
            head[at] = ignored[at] = 0xFF;
            if (at >= literal.length) continue;
            const Zel8u byte = literal.text[at];
            ignored[at] = set_.ignoreCase && isAsciiLetter(byte) ? 0x20 : 0;
            head[at] = byte | ignored[at];
            prefix.add(at, head[at], bit);
            prefix.add(at, static_cast<Zel8u>(head[at] & ~ignored[at]), bit);
        }
        memcpy(&set_.heads[i], head, sizeof head);
        memcpy(&set_.ignored[i], ignored, sizeof ignored);
    }
    return prefix.depth >= 2;
}

bool PlainLiterals::read(const ZelRegExpState& state) {
    const Node* const nodes = state.nodes();
    set_.count = 0;
    set_.ignoreCase = (state.options & kOptionIgnoreCase) != 0;
    // Literals stand at the even places, bars at the others.
    if (state.nodeCount % 2 == 0) return false;
    for (int i = 0; i < state.nodeCount; i += 2) {
        if (i > 0 && nodes[i - 1].kind != NodeAlternative) return false;
        if (set_.count == kernels::LiteralSet::kMax) return false;
        if (!readLiteral(nodes[i], state.format, set_.literals[set_.count++])) return false;
    }
    return set_.count == 1 || makePrefixes();
}

}  // namespace zel
