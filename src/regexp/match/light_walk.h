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

namespace zel {

enum class LightOutcome { kMatched, kFailed, kNotKnown };

/// The program behind the text of literals, or what stands in its place.
const LightProgram* findLightProgramBehind(const Zel8u* text);

/// The pattern's light program; null when it has none.
inline const LightProgram* findLightProgram(const ZelRegExpState& state) {
    if (!mayHaveLightProgram(state)) return nullptr;
    const Node* const end = state.nodes() + state.nodeCount;
    const auto* text = reinterpret_cast<const Zel8u*>(end);
    const LightProgram* program =
        *text == 0 ? reinterpret_cast<const LightProgram*>(end) : findLightProgramBehind(text);
    return program->mark == LightProgram::kMark ? program : nullptr;
}

/// Searches with a light program, and writes the outcome if it is known: then it is that of the
/// whole search, within the budget.
LightOutcome walkLightly(const LightProgram& program, const SearchRequest& request);

}  // namespace zel
