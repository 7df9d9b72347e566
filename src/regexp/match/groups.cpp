// Groups that repeat: capturing, non-capturing, option and conditional groups and their closing
// node.
//
// How a group runs. The opening node fills the group's frame and runs the body. The body ends at
// the closing node, or at a bar that goes there. The closing node decides: leave the group and run
// the rest of the program, or run the body once more, all inside the call that ran the body before.
// So a repeated group is a recursion with one level per repetition, and giving back is returning: a
// repetition whose continuation failed returns to the close of the repetition in front of it, which
// then tries the rest from there.
//
// The frame counts what is left behind the repetition now running. Who changes a frame or a capture
// record puts it back before he reports failure, so every level finds them as it left them. The
// length in slot 0 is the exception: it is set right only in front of a further alternative of a
// repetition.
#include "regexp/match/group_body.h"

namespace zel {

namespace {

/// The position behind the group: past the closing node and its quantifier.
int restOfGroup(const RegExpMatchContext& context, int close) {
    return quantifierAt(context, close + 1) != nullptr ? close + 2 : close + 1;
}

/// Runs the rest of the program behind the group, with the flags that hold there.
int leaveGroup(int close, const Zel8u* text, int length, RegExpMatchContext& context) {
    const Zel32u savedFlags = context.flags;
    context.flags = static_cast<Zel32u>(context.nodes[close].count);
    if (runFrom(restOfGroup(context, close), text, length, context) == 0) return 0;
    context.flags = savedFlags;
    return 1;
}

/// Runs the alternatives of an unconditional body in order. In front of a further alternative of a
/// repetition the whole match's length is set to the text that lies behind its start.
int runAlternatives(int open, const Zel8u* text, int length, RegExpMatchContext& context,
                    bool repetition) {
    const int close = closingNode(context, open);
    const int serial = context.nodes[open].value;
    for (int first = open + 1;;) {
        if (runFrom(first, text, length, context) == 0) return 0;
        const int bar = nextAlternative(context, first, close, serial);
        if (bar == close) return 1;
        if (repetition) {
            CaptureRecord& whole = context.captures[0];
            whole.length = static_cast<int>(text - whole.text);
        }
        context.flags = static_cast<Zel32u>(context.nodes[bar].count);
        first = bar + 1;
    }
}

/// First node behind the condition of the conditional group that opens at node `open`.
int behindCondition(int open, const RegExpMatchContext& context) {
    const Node& condition = context.nodes[open + 1];
    return condition.kind == NodeBackReference ? open + 2 : closingNode(context, open + 1) + 1;
}

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

/// Runs the branch that the condition chooses, and no other. Without a second branch, a condition
/// that does not hold leads to an empty body.
int runChosenBranch(int open, const Zel8u* text, int length, RegExpMatchContext& context) {
    const int close = closingNode(context, open);
    const int behind = behindCondition(open, context);
    return keepingCaptures(CaptureRange(context, open + 1, behind), context, [&] {
        if (conditionHolds(open, text, length, context)) {
            return runFrom(behind, text, length, context);
        }
        const int bar = nextAlternative(context, behind, close, context.nodes[open].value);
        if (bar == close) return runFrom(close, text, length, context);
        context.flags = static_cast<Zel32u>(context.nodes[bar].count);
        return runFrom(bar + 1, text, length, context);
    });
}

int runBody(int open, const Zel8u* text, int length, RegExpMatchContext& context, bool repetition) {
    if (context.nodes[open].kind == NodeGroupingCondition) {
        return runChosenBranch(open, text, length, context);
    }
    return runAlternatives(open, text, length, context, repetition);
}

}  // namespace

int ownsNodeGrouping(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int open = context.node;
    const Node& node = context.nodes[open];
    const int close = closingNode(context, open);
    const Zel32u entryFlags = context.flags;
    const Node* quantifier = quantifierAt(context, close + 1);
    const int min = quantifier != nullptr ? quantifier->value : 1;
    const int max = quantifier != nullptr ? quantifier->count : 1;
    const bool lazy = quantifier != nullptr && quantifier->kind == NodeQuantifierMin;
    if (max < 1) return leaveGroup(close, text, length, context);
    if (lazy && min == 0 && leaveGroup(close, text, length, context) == 0) return 0;

    GroupFrame& frame = context.groups[node.value];
    const GroupFrame entryFrame = frame;  // of an earlier entry that is still open
    frame = {.minLeft = min - 1,
             .maxLeft = max - 1,
             .openNode = open,
             .lengthAtEntry = length,
             .captureSlot = 0,
             .reentries = 0,
             .undoPending = 0,
             .iterationLength = 0};
    CaptureRecord entryRecord = {};
    if (node.kind == NodeGroupingCapture) {
        frame.captureSlot = node.extra;
        entryRecord = context.captures[node.extra];
        context.captures[node.extra] = {text, 0};
    } else if (node.kind == NodeGroupingOptions) {
        context.flags = static_cast<Zel32u>(node.extra);
    }

    if (runBody(open, text, length, context, false) == 0) return 0;

    context.flags = entryFlags;
    frame = entryFrame;
    if (node.kind == NodeGroupingCapture) context.captures[node.extra] = entryRecord;
    return !lazy && min == 0 ? leaveGroup(close, text, length, context) : 1;
}

int ownsNodeGroupingClose(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int close = context.node;
    const Node& closing = context.nodes[close];
    GroupFrame& frame = context.groups[closing.value];
    const GroupFrame entryFrame = frame;
    const int open = frame.openNode;
    const Node& opening = context.nodes[open];
    const Zel32u entryFlags = context.flags;

    frame.iterationLength = frame.lengthAtEntry - length;
    frame.lengthAtEntry = length;
    if (frame.reentries != 0) {
        --frame.reentries;
        --frame.minLeft;
        --frame.maxLeft;
    }
    CaptureRecord entryRecord = {};
    if (opening.kind == NodeGroupingCapture) {
        CaptureRecord& record = context.captures[frame.captureSlot];
        entryRecord = record;
        record = {text - frame.iterationLength, frame.iterationLength};
    }

    const Node* quantifier = quantifierAt(context, close + 1);
    const bool lazy = quantifier != nullptr && quantifier->kind == NodeQuantifierMin;
    const bool enough = frame.minLeft < 1;
    const bool full = frame.maxLeft < 1;
    int result = 1;
    if ((full && !lazy) || frame.iterationLength == 0) {
        result = leaveGroup(close, text, length, context);
    } else {
        if (lazy && enough) result = leaveGroup(close, text, length, context);
        if (result != 0 && !full) {
            // One more repetition, with the flags that the first one started with.
            const int flags = opening.kind == NodeGroupingOptions ? opening.extra : closing.count;
            context.flags = static_cast<Zel32u>(flags);
            frame.reentries = 1;
            result = runBody(open, text, length, context, true);
            frame.reentries = 0;
            if (result != 0 && enough && !lazy) result = leaveGroup(close, text, length, context);
        }
    }
    if (result == 0) return 0;

    context.flags = entryFlags;
    frame = entryFrame;
    if (opening.kind == NodeGroupingCapture) context.captures[frame.captureSlot] = entryRecord;
    return 1;
}

}  // namespace zel
