// The engine: walks the node array from `context.node` to `context.end`. What a walk is stands in
// walk.h; this file executes the nodes, greedy_runs.h and groups.h hold the node functions that
// leave choices behind.
//
// Each executed node costs one step of the budget, counted before it runs; steps are visible to
// callers through the match limit, so a node may neither be skipped nor executed twice without
// paying the same. Choices cost nothing themselves. Node functions that call one another directly
// cost nothing either.
#include <string.h>

#include "regexp/match/class_matcher.h"
#include "regexp/match/greedy_runs.h"
#include "regexp/match/groups.h"
#include "regexp/match/straight_line.h"
#include "regexp/match/walk.h"

namespace zel {

namespace {

bool sameText(const Zel8u* text, const Zel8u* pattern, int count, bool ignoreCase) {
    if (!ignoreCase) {
        return *text == *pattern && memcmp(text, pattern, static_cast<size_t>(count)) == 0;
    }
    for (int i = 0; i < count; ++i) {
        if (!sameByte(text[i], pattern[i], true)) return false;
    }
    return true;
}

/// The node function of an atom in front of a lazy quantifier.
NodeFunction* lazyAtom(Zel32u kind) {
    switch (kind) {
        case NodeLetter:
            return ownsNodeLetterQuantifierMin;
        case NodeLetterRange:
            return ownsNodeLetterRangeQuantifierMin;
        case NodeAnyByte:
            return ownsNodeAnyByteQuantifierMin;
        case NodeLetterUtf8:
            return ownsNodeLetterQuantifierMinUtf8;
        case NodeCombLetter:
            return ownsNodeLetterQuantifierMinCombLetter;
        default:
            return ownsNodeLetterQuantifierMinUnicodeBlock;
    }
}

/// Whether the closing node of group `serial` ends the subprogram being run: a look-around's or an
/// atomic group's body ends in front of its own closing node.
bool closesSubprogram(const RegExpMatchContext& context, int serial) {
    if (context.end >= context.nodeCount) return false;
    const Node& end = context.nodes[context.end];
    return end.kind == NodeGroupingClose && end.value == serial;
}

int runAtomicNode(const Zel8u* text, int length, RegExpMatchContext& context) {
    const Node* quantifier = quantifierAt(context, closingNode(context, context.node) + 1);
    if (quantifier == nullptr)
        return ownsNodeGroupingAtomQuantifierMax(text, length, context, 1, 1);
    if (quantifier->kind == NodeQuantifierMin) {
        return ownsNodeGroupingAtomQuantifierMin(text, length, context);
    }
    return ownsNodeGroupingAtomQuantifierMax(text, length, context, quantifier->value,
                                             quantifier->count);
}

}  // namespace

Walk::Step Walk::executeAtom(const Node& node) {
    if (const Node* quantifier = quantifierAt(context, index + 1)) {
        if (text == context.textEnd && quantifier->value > 0) return kFailed;
        const bool greedy = quantifier->kind == NodeQuantifierMax;
        if (node.kind == NodeBackReference) {
            return handOver(greedy ? ownsNodeBackReferenceQuantifierMax
                                   : ownsNodeBackReferenceQuantifierMin);
        }
        return greedy ? runGreedy(node, *quantifier, index + 2) : handOver(lazyAtom(node.kind));
    }
    if (text == context.textEnd) return kFailed;
    if (node.kind == NodeBackReference) return handOver(ownsNodeBackReference);
    const int taken = matchCharacter(node, text, context.textEnd, context.flags);
    if (taken == 0) return kFailed;
    take(taken);
    ++index;
    return kGoOn;
}

Walk::Step Walk::executeClass(const Node& node) {
    const int next = index + 1 + node.count;
    if (const Node* quantifier = quantifierAt(context, next)) {
        if (quantifier->kind == NodeQuantifierMin)
            return handOver(ownsNodeCharacterClassQuantifierMin);
        return runGreedy(node, *quantifier, next + 1);
    }
    if (text == context.textEnd) return kFailed;
    const int taken = ClassMatcher(context, index)(text);
    if (taken == 0) return kFailed;
    take(taken);
    index = next;
    return kGoOn;
}

Walk::Step Walk::execute(const Node& node) {
    switch (node.kind) {
        case NodeLetter:
        case NodeBackReference:
        case NodeLetterRange:
        case NodeAnyByte:
        case NodeLetterUtf8:
        case NodeUnicodeCategory:
        case NodeUnicodeProperty:
        case NodeUnicodeScript:
        case NodeCombLetter:
            return executeAtom(node);
        case NodeCharacterClass:
            return executeClass(node);
        case NodeString:
            if (length() < node.count ||
                !sameText(text, static_cast<const Zel8u*>(node.data), node.count,
                          (context.flags & kOptionIgnoreCase) != 0)) {
                return kFailed;
            }
            take(node.count);
            ++index;
            return kGoOn;
        case NodePosition:
            context.node = index;
            if (ownsNodePosition(text, length(), context) != 0) return kFailed;
            index = context.node;
            return kGoOn;
        case NodeOptions:
            context.flags = static_cast<Zel32u>(node.value);
            ++index;
            return kGoOn;
        case NodeAlternative: {
            if (node.value < 1) {  // the whole match is complete
                whole.length = wrappingSum(whole.length, consumed);
                return kDone;
            }
            if (closesSubprogram(context, node.value)) return finish();
            const int open = context.groups[node.value].openNode;
            return ownsNodeGroupingClose(closingNode(context, open));
        }
        case NodeGroupingLookBehind:
        case NodeGroupingLookBehindNot:
        case NodeGroupingLookAhead:
        case NodeGroupingLookAheadNot: {
            if (hasCaptures(context.nodes, index)) return handOver(runLookAroundWithCaptures);
            context.node = index;
            if (!withLength([&] { return lookAroundPasses(text, length(), context); }))
                return kFailed;
            index += 2 + node.count;
            return kGoOn;
        }
        case NodeGroupingOptions:
        case NodeGroupingCondition:
        case NodeGroupingCapture:
        case NodeGroupingNoCapture:
            return ownsNodeGrouping(node);
        case NodeGroupingAtom:
            return handOver(runAtomicNode);
        case NodeGroupingClose:
            return ownsNodeGroupingClose(index);
        default:
            return kFailed;  // a quantifier or a class member reached by itself
    }
}

/// The end of the (sub)program.
Walk::Step Walk::finish() {
    if (context.noEmpty != 0 && wrappingSum(whole.length, consumed) == 0) return kFailed;
    whole.length = wrappingSum(whole.length, consumed);
    context.reached = text;
    return kDone;
}

/// Goes back to the newest choice that has something left to try.
Walk::Step Walk::goBack() {
    while (top > 0) {
        Choice& choice = choices[top - 1];
        if (choice.kind > Choice::kRunOfSequences) {
            const Step step = resumeGroup(choice);
            if (step != kFailed) return step;
        } else if (context.steps < 0) {
            --top;  // every further try would fail
        } else if (giveBack(choice)) {
            return kGoOn;
        }
    }
    return kFailed;
}

int Walk::run() {
    const Zel32u entryFlags = context.flags;
    for (;;) {
        Step step = followLine();
        if (step == kGoOn) {
            if (index == context.end) {
                step = finish();
            } else if (full()) {
                step = handOver(ownsRunFuncRegExp);
            } else {
                --context.steps;
                step = execute(context.nodes[index]);
            }
        }
        if (step == kFailed) step = goBack();
        if (step == kDone) return 0;
        if (step == kFailed) {
            context.flags = entryFlags;
            return 1;
        }
    }
}

int ownsRunFuncRegExp(const Zel8u* text, int, RegExpMatchContext& context) {
    if (context.steps < 0) return 1;
    if (!context.stack.hasRoom()) {
        context.steps = -1;  // ends like a search whose budget ran out
        return 1;
    }
    return Walk(text, context).run();
}

}  // namespace zel
