#include "peers/loops_impl.h"

namespace bench {

template struct Loop<NativeBuild, Zel8u>;
template struct Loop<NativeBuild, Zel16u>;
template struct UtfLoop<NativeBuild>;

}  // namespace bench
