// Where a conversion between UTF-8 and UTF-16 stands.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

template <typename From, typename To>
struct Cursor {
    const From* src;
    long remaining;  // of the source; negative once a sequence has passed over its end
    To* dst;
    long room;  // negative once a pair has passed over its end

    ZEL_INLINE bool isAtEnd() const { return remaining == 0 || room == 0; }
    ZEL_INLINE void advance(long consumed, long written) {
        src += consumed;
        remaining -= consumed;
        dst += written;
        room -= written;
    }
};

}  // namespace zel::ZEL_ISA
