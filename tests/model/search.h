// The search behind both zelsRegExpFind_8u and the replace service of the model.
#pragma once

#include "model.h"

namespace model {

/// In find-all mode `wholeMatchToo` asks for the whole match in front of the groups.
ZelStatus findWith(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                   ZelRegExpFind* pResult, int* pNumFind, bool wholeMatchToo);

}  // namespace model
