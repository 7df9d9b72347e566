// Collecting the places of a literal.
#include "regexp/match/plain_literal.h"

#include <string.h>

#include "regexp/match/places.h"
#include "regexp/match/predicates.h"

namespace zel {

bool PlainLiteral::read(const ZelRegExpState& state) {
    if (state.nodeCount != 1) return false;
    const Node& node = *state.nodes();
    if (node.kind == NodeString) {
        text = static_cast<const Zel8u*>(node.data);
        length = node.count;
    } else if (node.kind == NodeLetter) {
        // The number's first byte in memory is its lowest.
        text = reinterpret_cast<const Zel8u*>(&node.value);
        length = 1;
    } else {
        return false;
    }
    ignoreCase = (state.options & kOptionIgnoreCase) != 0;
    return state.format != kFormatUtf8 || (*text & 0xC0) != 0x80;
}

int PlainLiteral::collect(const Zel8u* start, const Zel8u* end, ZelRegExpFind* results,
                          int capacity) const {
    // Of so short a literal the gathering has compared all bytes.
    constexpr int kAllProbed = 4;
    const auto isThere = [this](const Zel8u* place) {
        if (length <= kAllProbed) return true;
        if (!ignoreCase) return memcmp(place, text, static_cast<size_t>(length)) == 0;
        for (int i = 0; i < length; ++i) {
            if (!sameByte(place[i], text[i], true)) return false;
        }
        return true;
    };
    const auto gather = [this](const Zel8u* p, int size, kernels::Gathered* gathered) {
        const auto kernel = ignoreCase ? kernels::gatherBytesFolded : kernels::gatherBytes;
        kernel(p, size, text, length, gathered);
    };
    Places places;
    places.clear();
    int count = 0;
    for (const Zel8u* from = start; count < capacity;) {
        const Zel8u* place = places.next(from, end, gather);
        if (place == end) break;
        from = place + 1;
        if (!isThere(place)) continue;
        results[count++] = {const_cast<Zel8u*>(place), length};
        from = place + length;
    }
    return count;
}

}  // namespace zel
