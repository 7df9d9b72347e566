// Notes that the compiler leaves in an object to spare searches work. The object has room for a
// node for each byte of the pattern, and most constructs are longer than that.
//
//   text of the literals | RequiredText | LightProgram
//
// Each note may be missing. Literal text holds no zero byte and notes begin with one, which leads
// to them; the byte behind it says what the note is. Where there is no light program, two zeros
// stand in its place. Nothing in a note is an address: an object may be copied.
#pragma once

#include <emmintrin.h>

#include "regexp/program.h"

namespace zel {

/// Whether there are 16 bytes at least behind the text of the literals, so that notes can be there.
/// Without the marker in front there is room for a node more than there can be; else a literal
/// makes some.
inline bool mayHaveNotes(const ZelRegExpState& state) {
    if (state.nodeCount == 0) return false;
    const Node* const nodes = state.nodes();
    const bool hasMarker = nodes[0].kind == NodePosition && nodes[0].value == kLineStartMarker;
    return !hasMarker || (state.nodeCount > 3 && nodes[3].kind == NodeString);
}

/// The zero behind the text of the literals, of an object that may have notes.
inline const Zel8u* findNotes(const ZelRegExpState& state) {
    const auto* text = reinterpret_cast<const Zel8u*>(state.nodes() + state.nodeCount);
    for (;; text += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        const int zeros = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128()));
        if (zeros != 0) return text + __builtin_ctz(static_cast<unsigned>(zeros));
    }
}

}  // namespace zel
