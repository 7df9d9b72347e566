// Look-ahead and look-behind. A body is run as a program of its own; where it ends does not matter.
// A look-behind of n characters starts its body n characters in front of the position, and nothing
// makes the body end exactly there. Characters are those that a walk from the start of the text
// would meet; because a lead byte is never inside another well-formed sequence, walking back from
// the position finds the same ones.
#include "regexp/match/character.h"
#include "regexp/match/group_body.h"

namespace zel {

bool runSubprogram(int open, const Zel8u* text, int length, RegExpMatchContext& context) {
    const Zel32u savedFlags = context.flags;
    const int savedEnd = context.end;
    const int close = closingNode(context, open);
    const int serial = context.nodes[open].value;
    context.end = close;
    bool succeeded = false;
    for (int first = open + 1;;) {
        succeeded = runFrom(first, text, length, context) == 0;
        context.flags = savedFlags;
        if (succeeded) break;
        const int bar = nextBar(context.nodes, first, close, serial);
        if (bar == close) break;
        context.flags = static_cast<Zel32u>(context.nodes[bar].count);
        first = bar + 1;
    }
    context.flags = savedFlags;
    context.end = savedEnd;
    return succeeded;
}

namespace {

/// The position `characters` characters in front of `text`, or null when the text begins behind it.
const Zel8u* stepBack(const Zel8u* text, int characters, const RegExpMatchContext& context) {
    if (text - context.textStart < characters) return nullptr;
    const Zel8u* position = characterBoundary(text, context.textStart, context.textEnd);
    for (; characters > 0; --characters) {
        if (position <= context.textStart) return nullptr;
        position -= previousLength(position, context.textStart);
    }
    return position;
}

}  // namespace

bool lookAroundPasses(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int open = context.node;
    const Node& node = context.nodes[open];
    const bool behind =
        node.kind == NodeGroupingLookBehind || node.kind == NodeGroupingLookBehindNot;
    const bool negative =
        node.kind == NodeGroupingLookBehindNot || node.kind == NodeGroupingLookAheadNot;
    const Zel8u* position = behind ? stepBack(text, node.extra, context) : text;
    bool succeeded = false;
    if (position != nullptr) {
        const int savedLength = context.captures[0].length;
        succeeded =
            runSubprogram(open, position, length + static_cast<int>(text - position), context);
        context.captures[0].length = savedLength;
    }
    return succeeded != negative;
}

int runLookAroundWithCaptures(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int open = context.node;
    const int close = closingNode(context, open);
    return keepingCaptures(CaptureRange(context, open, close), context, [&] {
        if (!lookAroundPasses(text, length, context)) return 1;
        return runFrom(close + 1, text, length, context);
    });
}

}  // namespace zel
