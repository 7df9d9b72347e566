// Makes the light program of a pattern, see regexp/light_program.h.
#pragma once

#include "regexp/program.h"

namespace zel {

/// Puts a program, or what says that there is none, behind the text of the literals, which
/// ends at `textEnd`. `nodeRoom` is the number of nodes that there is room for in the object.
void addLightProgram(ZelRegExpState& state, Zel8u* textEnd, long nodeRoom);

}  // namespace zel
