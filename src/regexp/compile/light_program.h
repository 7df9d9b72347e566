// Makes the light program of a pattern, see regexp/light_program.h.
#pragma once

#include "regexp/program.h"

namespace zel {

/// Puts a program, if the pattern has one, to `place` behind the text of the literals. `nodeRoom`
/// is the number of nodes that there is room for in the object.
void addLightProgram(ZelRegExpState& state, Zel8u* place, long nodeRoom);

}  // namespace zel
