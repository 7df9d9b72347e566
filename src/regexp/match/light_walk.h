// The light walk: runs a pattern's light program over a short ASCII text, as texts are that one
// validates or takes apart. It needs hardly any set-up: the kernels say in one go which bytes of
// the text are in which of the program's sets, and after that a run is a matter of a shift and a
// count.
//
// It takes the way that the engine takes, in fewer steps. What it leaves out, because it cannot
// change the result, it pays for with an upper bound. In such a pattern nothing looks at a group
// while the match is under way, so captures are written and never put back; a group that is passed
// over unsets its own.
#pragma once

#include "regexp/light_program.h"
#include "regexp/match/driver.h"
#include "regexp/required_text.h"

namespace zel {

enum class LightOutcome { kMatched, kFailed, kNotKnown };

/// The pattern's light program; null when it has none.
inline const LightProgram* findLightProgram(const ZelRegExpState& state) {
    if (!mayHaveLightProgram(state)) return nullptr;
    const auto* text = reinterpret_cast<const Zel8u*>(state.nodes() + state.nodeCount);
    const Zel8u* note = text;
    if (*text != 0) {  // only such a pattern requires some
        note = findNotes(state);
        if (note[1] == RequiredText::kMark) note += sizeof(RequiredText);
    }
    return note[1] == LightProgram::kMark ? reinterpret_cast<const LightProgram*>(note) : nullptr;
}

/// Searches with a light program, and writes the outcome if it is known: then it is that of the
/// whole search, within the budget.
LightOutcome walkLightly(const LightProgram& program, const SearchRequest& request);

}  // namespace zel
