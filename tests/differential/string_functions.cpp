#include "string_functions.h"

#include "model/model.h"
#include "string/kernels/instances.h"

namespace differential {

const Side exportedSide =
#define SIDE(name) ::name
#include "string_side.inc"
#undef SIDE
    ;

const Side sse2Side =
#define SIDE(name) zel::sse2::name
#include "string_side.inc"
#undef SIDE
    ;

const Side avx2Side =
#define SIDE(name) zel::avx2::name
#include "string_side.inc"
#undef SIDE
    ;

const Side avx512Side =
#define SIDE(name) zel::avx512::name
#include "string_side.inc"
#undef SIDE
    ;

const Side modelSide =
#define SIDE(name) model::name
#include "string_side.inc"
#undef SIDE
    ;

const Side* librarySide(int instance) {
    switch (instance) {
        case 0:
            return &exportedSide;
        case 1:
            return &sse2Side;
        case 2:
            return zel::isSupported(zel::Isa::Avx2) ? &avx2Side : nullptr;
        default:
            return zel::isSupported(zel::Isa::Avx512) ? &avx512Side : nullptr;
    }
}

}  // namespace differential
