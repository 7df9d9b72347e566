// The node function of position assertions.
#include "regexp/match/positions.h"

namespace zel {

int ownsNodePosition(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int index = context.node;
    const Node* quantifier = quantifierAt(context, index + 1);
    if (quantifier != nullptr && quantifier->value == 0) {
        context.node = index + 2;
        return 0;
    }
    if (!positionHolds(context.nodes[index].value, text, length, context)) return 1;
    context.node = index + 1;
    return 0;
}

}  // namespace zel
