// UTF-8 to UTF-16 and back, on valid arguments. Both directions convert character by character and
// never fail: what is malformed passes through by a fixed rule.
#pragma once

#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// How much of a source was read and how much of a destination was written, in elements of each.
struct Converted {
    int consumed;
    int written;
};

/// Ends when the source or the room is exactly used up; nothing else stops it. A pair that is
/// written into one unit of room, or a sequence that is longer than the rest of the source, passes
/// over that end, and the conversion then runs on to the other one.
Converted convertUtf8To16(const Zel8u* src, int srcLen, Zel16u* dst, int dstLen, bool swapBytes);

/// Ends when the source is used up or the next character does not fit.
Converted convertUtf16To8(const Zel16u* src, int srcLen, Zel8u* dst, int dstLen, bool swapBytes);

}  // namespace zel::ZEL_ISA
