// Conditional groups. The condition is a group that has taken part, or a look-around; it chooses
// one of two branches, and no other is ever tried. A condition is tested anew in every repetition.
#include "regexp/match/group_body.h"

namespace zel {

namespace {

/// First node behind the condition of the group that opens at node `open`.
int behindCondition(int open, const RegExpMatchContext& context) {
    const Node& condition = context.nodes[open + 1];
    return condition.kind == NodeBackReference ? open + 2 : closingNode(context, open + 1) + 1;
}

/// Tests a look-around by running it as a program that ends right behind it.
bool conditionHolds(int open, const Zel8u* text, int length, RegExpMatchContext& context) {
    const Node& condition = context.nodes[open + 1];
    if (condition.kind == NodeBackReference) {
        return condition.value < context.numCaptures &&
               context.captures[condition.value].length >= 0;
    }
    const int savedEnd = context.end;
    context.end = behindCondition(open, context);
    const bool holds = runFrom(open + 1, text, length, context) == 0;
    context.end = savedEnd;
    return holds;
}

}  // namespace

int runChosenBranch(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int open = context.node;
    const int close = closingNode(context, open);
    const int behind = behindCondition(open, context);
    return keepingCaptures(CaptureRange(context, open + 1, behind), context, [&] {
        if (conditionHolds(open, text, length, context)) {
            return runFrom(behind, text, length, context);
        }
        // Without a second branch the body is empty.
        const int bar = nextBar(context.nodes, behind, close, context.nodes[open].value);
        if (bar == close) return runFrom(close, text, length, context);
        const Zel32u savedFlags = context.flags;
        context.flags = static_cast<Zel32u>(context.nodes[bar].count);
        const int result = runFrom(bar + 1, text, length, context);
        if (result != 0) context.flags = savedFlags;
        return result;
    });
}

}  // namespace zel
