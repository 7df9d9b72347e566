// A walk for short texts and simple patterns, as they are used to validate and to take apart. It
// needs no set-up, and a choice is a few words. What is not simple enough it leaves to the engine,
// which then starts from the beginning.
//
// It executes the same nodes in the same order as the engine, and counts them. What makes it light
// is what it need not keep: in such a pattern nothing looks at a group while the match is under
// way, so captures are written and never put back; a group that is passed over unsets its own.
#pragma once

#include "regexp/match/driver.h"
#include "regexp/program.h"

namespace zel {

enum class LightOutcome { kMatched, kFailed, kNotKnown };

/// Whether the pattern is anchored at the start of the text, as far as one look tells.
inline bool beginsAtStart(const ZelRegExpState& state) {
    if (state.nodeCount == 0 || (state.options & kOptionIgnoreCase) != 0) return false;
    const Node& first = state.nodes()[0];
    return first.kind == NodePosition &&
           (first.value == 'A' || first.value == 'G' ||
            (first.value == '^' && (state.options & kOptionMultiLine) == 0));
}

/// Searches with a pattern that begins at the start. On a match all capture records have been
/// written. An outcome that is known is that of the whole search, within the budget.
LightOutcome walkLightly(const ZelRegExpState& state, const Zel8u* text, int length,
                         WorkAreas work);

}  // namespace zel
