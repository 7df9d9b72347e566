#include "peers/loops_impl.h"

namespace bench {

template struct Loop<PlainBuild, Zel8u>;
template struct Loop<PlainBuild, Zel16u>;
template struct UtfLoop<PlainBuild>;

}  // namespace bench
