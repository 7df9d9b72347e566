// Where a conversion between UTF-8 and UTF-16 stands.
//
// A source may be said to be longer than the room can take up: the conversion then ends with the
// room, and a caller may rely on nothing being read beyond. So blocks are read only as far as one
// character after the other would be: an element of either side makes at most three of the other.
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
    /// How many elements of the source may be read from here, when there is room.
    ZEL_INLINE long readable() const {
        if constexpr (sizeof(From) == 1) return remaining <= 3 * room ? remaining : room;
        return remaining <= room ? remaining : (room + 2) / 3;
    }
    ZEL_INLINE void advance(long consumed, long written) {
        src += consumed;
        remaining -= consumed;
        dst += written;
        room -= written;
    }
};

}  // namespace zel::ZEL_ISA
