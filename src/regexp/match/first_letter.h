// What a node, or the program from a node on, needs to find at the text position to get past its
// first step.
#pragma once

#include "regexp/match/context.h"

namespace zel {

/// The byte that a letter or literal run begins with and cannot do without; -1 for any other node
/// and when case is ignored. In front of another byte, and at the end of the text, the node costs
/// one step and fails.
inline int firstLetterOfNode(const RegExpMatchContext& context, int index, Zel32u flags) {
    if (index >= context.end || (flags & kOptionIgnoreCase) != 0) return -1;
    const Node& node = context.nodes[index];
    if (node.kind == NodeString) return *static_cast<const Zel8u*>(node.data);
    if (node.kind != NodeLetter) return -1;
    const Node* quantifier = quantifierAt(context, index + 1);
    return quantifier == nullptr || quantifier->value > 0 ? static_cast<Zel8u>(node.value) : -1;
}

/// The byte that the program from `node` on begins with, when all it does in front of any other
/// byte is to close groups and fail: `price` is what that costs. -1 when there is no such byte.
struct FirstLetter {
    int letter;
    int price;
};

inline FirstLetter firstLetter(const RegExpMatchContext& context, int node) {
    Zel32u flags = context.flags;
    for (int price = 1; node < context.end; ++price, ++node) {
        const Node& rest = context.nodes[node];
        if (rest.kind == NodeGroupingClose && quantifierAt(context, node + 1) == nullptr) {
            flags = static_cast<Zel32u>(rest.count);
            continue;
        }
        return {firstLetterOfNode(context, node, flags), price};
    }
    return {-1, 0};
}

}  // namespace zel
