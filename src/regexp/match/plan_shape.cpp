// Plans for matches that begin with a fixed number of bytes, each of a set of its own: dates,
// times, numbers of a known form. A separator in their midst is rarer than what they begin with.
#include <string.h>

#include "regexp/match/planner.h"

namespace zel {

/// The sets of the bytes that every match begins with, as far as these are ASCII; answers how many
/// there are. `nodes`: how many nodes that takes. `isWhole`: whether matches end there, too.
int Planner::readShape(const Lead& lead, ByteSet* sets, int room, int& nodes, bool& isWhole) const {
    Zel32u flags = lead.flags;
    int length = 0;
    isWhole = false;
    for (int i = lead.index; i < count_ && length < room; isWhole = i == count_ && length < room) {
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

void Planner::addProbe(int offset, const ByteSet& set, kernels::Shape& shape) const {
    int number = 0;
    while (number < shape.setCount &&
           memcmp(shape.sets[number], set.words, sizeof set.words) != 0) {
        ++number;
    }
    if (number == kernels::Shape::kSets) return;
    if (number == shape.setCount) memcpy(shape.sets[shape.setCount++], set.words, sizeof set.words);
    shape.probes[shape.probeCount++] = {static_cast<Zel8u>(offset), static_cast<Zel8u>(number)};
}

bool Planner::planShape(const Lead& lead, Plan& plan) const {
    constexpr int kLongest = kernels::Shape::kMostProbes;
    ByteSet sets[kLongest];
    int nodes = 0;
    bool isWhole = false;
    const int length = readShape(lead, sets, kLongest, nodes, isWhole);
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
    plan.shape.probeCount = plan.shape.setCount = 0;
    for (const int offset : smallest) addProbe(offset, sets[offset], plan.shape);
    const bool isAll = isWhole && lead.index == 0 && groups_ == 1;
    for (int i = 0; i < length; i += isAll ? 1 : length - 1) {
        if (i != smallest[0] && i != smallest[1]) addProbe(i, sets[i], plan.shape);
    }
    if (isAll && plan.shape.probeCount == length) plan.matchLength = length;
    return true;
}

}  // namespace zel
