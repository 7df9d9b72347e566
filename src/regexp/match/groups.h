// Groups inside a walk: entering, closing, repeating and leaving them, and going back into them.
//
// The opening node fills the group's frame and goes on with the body. The body ends at the closing
// node, or at a bar that goes there. The closing node decides: leave the group, or run the body
// once more. Each time a group is opened or closed a choice remembers the frame and the capture
// record as they were, so that going back finds them again, and what else could be done there: the
// body's next alternative, leaving after all, or one more repetition.
//
// The frame counts what is left behind the repetition now running. The whole match's length is not
// put back like the rest: it is set right only in front of a further alternative of a further
// repetition.
#pragma once

#include "regexp/match/first_letter.h"
#include "regexp/match/group_body.h"
#include "regexp/match/walk.h"

namespace zel {

inline GroupFrame& frameOf(const RegExpMatchContext& context, int node) {
    return context.groups[context.nodes[node].value];
}

/// Remembers the state of the group in the choice.
inline void saveGroup(Choice& choice, const RegExpMatchContext& context, const GroupFrame& frame,
                      const Node& opening, bool repeats) {
    choice.group.repeats = repeats;
    choice.group.frame.lengthAtEntry = frame.lengthAtEntry;
    if (repeats) {
        choice.group.frame.minLeft = frame.minLeft;
        choice.group.frame.maxLeft = frame.maxLeft;
        choice.group.frame.reentries = frame.reentries;
    }
    if (opening.kind == NodeGroupingCapture) choice.group.record = context.captures[opening.extra];
}

/// Puts the group's frame and capture record back.
inline void Walk::putBack(const Choice& choice, int open) {
    const Node& opening = context.nodes[open];
    GroupFrame& frame = context.groups[opening.value];
    frame.lengthAtEntry = choice.group.frame.lengthAtEntry;
    if (choice.group.repeats) {
        frame.minLeft = choice.group.frame.minLeft;
        frame.maxLeft = choice.group.frame.maxLeft;
        frame.reentries = choice.group.frame.reentries;
    }
    if (opening.kind == NodeGroupingCapture) context.captures[opening.extra] = choice.group.record;
}

/// Goes on behind the group, with the flags that hold there.
inline Walk::Step Walk::leaveGroup(int close) {
    context.flags = static_cast<Zel32u>(context.nodes[close].count);
    index = quantifierAt(context, close + 1) != nullptr ? close + 2 : close + 1;
    return kGoOn;
}

/// Goes on with the first alternative of the body, or the one that a condition chooses; `choice` is
/// told where to look for the next.
inline Walk::Step Walk::runBody(Choice& choice, int open) {
    if (context.nodes[open].kind == NodeGroupingCondition) {
        choice.group.next = closingNode(context, open);
        index = open;
        return handOver(runChosenBranch);
    }
    choice.group.next = open + 1;
    index = open + 1;
    return kGoOn;
}

/// Goes on with the next alternative; false when there is none. One that begins with a literal
/// whose first byte is not there costs its step and is passed over.
inline bool Walk::tryNextAlternative(Choice& choice, int open) {
    const int close = closingNode(context, open);
    const int serial = context.nodes[open].value;
    for (;;) {
        const int bar = nextBar(context.nodes, choice.group.next, close, serial);
        if (bar == close) return false;
        if (choice.kind == Choice::kRepeat) {
            whole.length = static_cast<int>(text - whole.text) - consumed;
        }
        context.flags = static_cast<Zel32u>(context.nodes[bar].count);
        choice.group.next = bar + 1;
        index = bar + 1;
        const int letter = firstLetterOfNode(context, index, context.flags);
        if (letter < 0 || (text < context.textEnd && *text == letter) || !context.charge(1))
            return true;
    }
}

inline Walk::Step Walk::ownsNodeGrouping(const Node& node) {
    const int close = closingNode(context, index);
    const Node* quantifier = quantifierAt(context, close + 1);
    if (quantifier != nullptr) {
        if (quantifier->count < 1) return leaveGroup(close);
        if (quantifier->kind == NodeQuantifierMin && quantifier->value == 0) {
            push(Choice::kEnter, index);
            return leaveGroup(close);
        }
    }
    return enterGroup(index, node, quantifier);
}

inline Walk::Step Walk::enterGroup(int open, const Node& node, const Node* quantifier) {
    Choice& choice = push(Choice::kBody, open);
    GroupFrame& frame = context.groups[node.value];
    saveGroup(choice, context, frame, node, quantifier != nullptr);
    frame.openNode = open;
    frame.lengthAtEntry = length();
    if (quantifier != nullptr) {
        frame.minLeft = quantifier->value - 1;
        frame.maxLeft = quantifier->count - 1;
        frame.reentries = 0;
    }
    if (node.kind == NodeGroupingCapture) {
        context.captures[node.extra] = {text, 0};
    } else if (node.kind == NodeGroupingOptions) {
        context.flags = static_cast<Zel32u>(node.extra);
    }
    return runBody(choice, open);
}

inline Walk::Step Walk::ownsNodeGroupingClose(int close) {
    GroupFrame& frame = frameOf(context, close);
    const int open = frame.openNode;
    const Node& opening = context.nodes[open];
    const Node* quantifier = quantifierAt(context, close + 1);
    if (quantifier == nullptr && opening.kind != NodeGroupingCapture) return leaveGroup(close);

    Choice& choice = push(Choice::kRestore, close);
    saveGroup(choice, context, frame, opening, quantifier != nullptr);
    const int iterationLength = frame.lengthAtEntry - length();
    if (opening.kind == NodeGroupingCapture) {
        context.captures[opening.extra] = {text - iterationLength, iterationLength};
    }
    if (quantifier == nullptr) return leaveGroup(close);
    frame.lengthAtEntry = length();
    if (frame.reentries != 0) {
        --frame.reentries;
        --frame.minLeft;
        --frame.maxLeft;
    }
    const bool lazy = quantifier->kind == NodeQuantifierMin;
    const bool mayRepeat = frame.maxLeft >= 1;
    if ((!mayRepeat && !lazy) || iterationLength == 0) return leaveGroup(close);
    if (lazy && frame.minLeft < 1) {
        if (mayRepeat) choice.kind = Choice::kLeft;
        return leaveGroup(close);
    }
    return mayRepeat ? repeatGroup(choice, close) : kFailed;
}

/// One more repetition, with the flags that the first one started with.
inline Walk::Step Walk::repeatGroup(Choice& choice, int close) {
    GroupFrame& frame = frameOf(context, close);
    const Node& opening = context.nodes[frame.openNode];
    const int flags =
        opening.kind == NodeGroupingOptions ? opening.extra : context.nodes[close].count;
    context.flags = static_cast<Zel32u>(flags);
    choice.kind = Choice::kRepeat;
    frame.reentries = 1;
    return runBody(choice, frame.openNode);
}

/// Goes back into the group to the newest choice; kFailed when that was its last.
inline Walk::Step Walk::resumeGroup(Choice& choice) {
    standAt(choice);
    if (choice.kind == Choice::kEnter) {
        const int open = choice.node;
        --top;
        return enterGroup(open, context.nodes[open],
                          quantifierAt(context, closingNode(context, open) + 1));
    }
    if (choice.kind == Choice::kBody) {
        const int open = choice.node;
        if (tryNextAlternative(choice, open)) return kGoOn;
        putBack(choice, open);
        context.flags = choice.flags;
        --top;
        const int close = closingNode(context, open);
        const Node* quantifier = quantifierAt(context, close + 1);
        const bool passOver = quantifier != nullptr && quantifier->value == 0 &&
                              quantifier->kind == NodeQuantifierMax;
        return passOver ? leaveGroup(close) : kFailed;
    }
    const int close = choice.node;
    GroupFrame& frame = frameOf(context, close);
    const int open = frame.openNode;
    if (choice.kind == Choice::kLeft) return repeatGroup(choice, close);
    if (choice.kind == Choice::kRepeat) {
        if (tryNextAlternative(choice, open)) return kGoOn;
        frame.reentries = 0;
        if (frame.minLeft < 1 && context.nodes[close + 1].kind == NodeQuantifierMax) {
            choice.kind = Choice::kRestore;
            return leaveGroup(close);
        }
    }
    putBack(choice, open);
    --top;
    return kFailed;
}

}  // namespace zel
