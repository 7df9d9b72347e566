// Literals that a pattern cannot do without: the runs outside of groups, and in groups that are
// passed just once, in front of anything that branches. What the engine spends in front of such a
// literal when it is never there is bounded on the way: every start position, every choice of run
// lengths, and each node on the way once for each.
#include "regexp/match/required.h"

#include <emmintrin.h>
#include <stdint.h>
#include <string.h>

namespace zel {

namespace {

/// Whether each way through the group takes its body once, in order.
bool isPassedOnce(const Node* nodes, int count, int open) {
    const int close = open + 1 + nodes[open].count;
    return (close + 1 >= count || !isQuantifier(nodes[close + 1])) &&
           nextBar(nodes, open + 1, close, nodes[open].value) == close;
}

}  // namespace

TextPairs::TextPairs(const Zel8u* text, int length) : length_(length) {
    memset(present_, 0, sizeof present_);
    int i = 0;
    for (; i + 16 <= length; i += 16) {  // slotOf for eight pairs
        const __m128i pairs = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        const __m128i hashed = _mm_mullo_epi16(pairs, _mm_set1_epi16(static_cast<short>(kFactor)));
        const __m128i slots = _mm_srli_epi16(hashed, 16 - kSlotBits);
        uint64_t halves[2];
        memcpy(halves, &slots, sizeof halves);
        for (uint64_t half : halves) {
            for (int k = 0; k < 4; ++k, half >>= 16) present_[half & 0xFFFF] = 1;
        }
    }
    for (; i + 1 < length; i += 2) present_[slotOf(text + i)] = 1;
}

bool surelyFindsNothing(const ZelRegExpState& state, const TextPairs& pairs) {
    const Node* const nodes = state.nodes();
    const int count = state.nodeCount;
    const int length = pairs.textLength();
    Zel32u flags = state.options;
    int64_t ways = int64_t{length} + 1;  // to get to the node: a start and a length for each run
    int passed = 1;                      // nodes up to and with this one
    for (int i = 0; i < count; ++passed) {
        if (ways * passed > state.matchLimit) return false;
        const Node& node = nodes[i];
        switch (node.kind) {
            case NodeString:
                if ((flags & kOptionIgnoreCase) == 0 && node.count >= TextPairs::kShortestLiteral &&
                    !pairs.mayHold(static_cast<const Zel8u*>(node.data), node.count)) {
                    return nextBar(nodes, i, count, 0) == count;
                }
                ++i;
                break;
            case NodeLetter:
            case NodeLetterRange:
            case NodeAnyByte:
            case NodePosition:
                ++i;
                break;
            case NodeCharacterClass:
                i += 1 + node.count;
                break;
            case NodeOptions:
                flags = static_cast<Zel32u>(node.value);
                ++i;
                break;
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                if (!isPassedOnce(nodes, count, i)) return false;
                ++i;
                break;
            case NodeGroupingClose:
                flags = static_cast<Zel32u>(node.count);
                ++i;
                break;
            case NodeQuantifierMin:
            case NodeQuantifierMax: {
                const int most = node.count < length ? node.count : length;
                if (most > node.value) ways *= most - node.value + 1;
                ++i;
                break;
            }
            default:
                return false;  // a top-level bar, or what is not worth a look
        }
    }
    return false;
}

}  // namespace zel
