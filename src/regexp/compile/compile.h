// Entry to the compiler.
#pragma once

#include "regexp/program.h"

namespace zel {

/// Compiles a pattern into an object of sufficient size. On failure *pErrOffset is the byte offset
/// of the fault; on success it is not written. See zelsRegExpInit.
ZelStatus compilePattern(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                         int* pErrOffset);

}  // namespace zel
