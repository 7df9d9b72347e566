// Plans for matches that begin with a fixed number of bytes, each of a set of its own: dates,
// times, numbers of a known form. A separator in their midst is rarer than what they begin with.
#include "regexp/match/planner.h"

namespace zel {

/// The sets of the bytes that every match begins with, as far as these are ASCII; answers how many
/// there are. `nodes`: how many nodes that takes.
int Planner::readShape(const Lead& lead, ByteSet* sets, int room, int& nodes) const {
    Zel32u flags = lead.flags;
    int length = 0;
    for (int i = lead.index; i < count_ && length < room;) {
        const Node& node = nodes_[i];
        nodes = i + 1 - lead.index;
        switch (node.kind) {
            case NodeGroupingCapture:
            case NodeGroupingNoCapture: {
                const int close = closeOf(i);
                if (quantifier(close + 1) != nullptr) return length;
                for (int k = i; k < close; ++k) {
                    if (nodes_[k].kind == NodeAlternative) return length;
                }
                ++i;
                continue;
            }
            case NodeGroupingClose:
                if (openOf(i) < 0 || quantifier(i + 1) != nullptr) return length;
                flags = static_cast<Zel32u>(node.count);
                ++i;
                continue;
            case NodeString:
                for (int k = 0; k < node.count && length < room; ++k) {
                    sets[length++] = literalByte(static_cast<const Zel8u*>(node.data)[k], flags);
                }
                ++i;
                continue;
            default:
                break;
        }
        ByteSet bytes;
        if (!isAtom(node.kind) || !isAsciiRun(i, flags, bytes)) break;
        const Node* repeat = quantifier(behindAtom(i));
        const int sure = repeat == nullptr ? 1 : repeat->value;
        for (int k = 0; k < sure && length < room; ++k) sets[length++] = bytes;
        if (repeat != nullptr && (repeat->count != sure || repeat->kind != NodeQuantifierMax))
            break;  // how it goes on depends
        i = behindAtom(i) + (repeat != nullptr);
    }
    return length;
}

bool Planner::planShape(const Lead& lead, Plan& plan) const {
    constexpr int kLongest = 24;
    ByteSet sets[kLongest];
    int nodes = 0;
    const int length = readShape(lead, sets, kLongest, nodes);
    // The two smallest sets, and where the shape begins and ends.
    int smallest[2] = {0, 0};
    for (int i = 1; i < length; ++i) {
        if (sizeOf(sets[i]) < sizeOf(sets[smallest[0]])) {
            smallest[1] = smallest[0];
            smallest[0] = i;
        } else if (smallest[1] == smallest[0] || sizeOf(sets[i]) < sizeOf(sets[smallest[1]])) {
            smallest[1] = i;
        }
    }
    if (length < 3 || sizeOf(sets[smallest[0]]) > 2) return false;
    plan.kind = Plan::kShape;
    plan.price = lead.price + nodes;
    plan.exact = false;
    plan.shape.length = length;
    const int offsets[kernels::Shape::kProbes] = {smallest[0], smallest[1], 0, length - 1};
    for (int i = 0; i < kernels::Shape::kProbes; ++i) {
        plan.shape.offsets[i] = offsets[i];
        for (int w = 0; w < 4; ++w) plan.shape.sets[i][w] = sets[offsets[i]].words[w];
    }
    return true;
}

}  // namespace zel
