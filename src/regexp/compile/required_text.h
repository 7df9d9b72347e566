// Finds out what text a pattern requires, see regexp/required_text.h.
#pragma once

#include "regexp/program.h"

namespace zel {

/// Puts what the pattern, which has no bar at top level, requires, if anything is known, to where
/// the text of the literals ends; answers where the next note can be.
Zel8u* addRequiredText(const ZelRegExpState& state, Zel8u* textEnd);

}  // namespace zel
