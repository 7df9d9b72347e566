// The engine: walks the node array from `context.node` to `context.end`, executes single characters
// and tests itself, and hands quantified and structured nodes to their node functions.
//
// The machine stack is the backtracking stack, and it holds choices only: a single character, a
// literal run or an assertion is executed in the loop, which remembers what the straight line has
// consumed and takes it off the whole match's length when the line fails. Each executed node costs
// one step of the budget, counted before it runs; steps are visible to callers through the match
// limit, so a node may neither be skipped nor executed twice. Node functions that call one another
// directly cost nothing.
#include <string.h>

#include "regexp/match/character.h"
#include "regexp/match/context.h"
#include "regexp/match/predicates.h"

namespace zel {

namespace {

bool sameText(const Zel8u* text, const Zel8u* pattern, int count, bool ignoreCase) {
    if (!ignoreCase) return memcmp(text, pattern, static_cast<size_t>(count)) == 0;
    for (int i = 0; i < count; ++i) {
        if (!sameByte(text[i], pattern[i], true)) return false;
    }
    return true;
}

/// The node function of an atom in front of a quantifier.
NodeFunction* quantifiedAtom(Zel32u kind, bool greedy) {
    switch (kind) {
        case NodeLetter:
            return greedy ? ownsNodeLetterQuantifierMax : ownsNodeLetterQuantifierMin;
        case NodeBackReference:
            return greedy ? ownsNodeBackReferenceQuantifierMax : ownsNodeBackReferenceQuantifierMin;
        case NodeLetterRange:
            return greedy ? ownsNodeLetterRangeQuantifierMax : ownsNodeLetterRangeQuantifierMin;
        case NodeAnyByte:
            return greedy ? ownsNodeAnyByteQuantifierMax : ownsNodeAnyByteQuantifierMin;
        case NodeLetterUtf8:
            return greedy ? ownsNodeLetterQuantifierMaxUtf8 : ownsNodeLetterQuantifierMinUtf8;
        case NodeCombLetter:
            return greedy ? ownsNodeLetterQuantifierMaxCombLetter
                          : ownsNodeLetterQuantifierMinCombLetter;
        default:
            return greedy ? ownsNodeLetterQuantifierMaxUtf8
                          : ownsNodeLetterQuantifierMinUnicodeBlock;
    }
}

/// Whether the closing node of group `serial` ends the subprogram being run: a look-around's or an
/// atomic group's body ends in front of its own closing node.
bool closesSubprogram(const RegExpMatchContext& context, int serial) {
    if (context.end >= context.nodeCount) return false;
    const Node& end = context.nodes[context.end];
    return end.kind == NodeGroupingClose && end.value == serial;
}

int runClassNode(int index, const Zel8u* text, int length, RegExpMatchContext& context) {
    const Node* quantifier = quantifierAt(context, index + 1 + context.nodes[index].count);
    if (quantifier == nullptr) {
        return ownsNodeCharacterClassQuantifierMax(text, length, context, 1, 1);
    }
    auto* function = quantifier->kind == NodeQuantifierMin ? ownsNodeCharacterClassQuantifierMin
                                                           : ownsNodeCharacterClassQuantifierMax;
    return function(text, length, context, quantifier->value, quantifier->count);
}

int runAtomicNode(int index, const Zel8u* text, int length, RegExpMatchContext& context) {
    const Node* quantifier = quantifierAt(context, index + 2 + context.nodes[index].count);
    if (quantifier == nullptr)
        return ownsNodeGroupingAtomQuantifierMax(text, length, context, 1, 1);
    if (quantifier->kind == NodeQuantifierMin) {
        return ownsNodeGroupingAtomQuantifierMin(text, length, context);
    }
    return ownsNodeGroupingAtomQuantifierMax(text, length, context, quantifier->value,
                                             quantifier->count);
}

/// The bar at the end of a group's alternative: goes on at the group's closing node.
int runAlternativeNode(int index, const Zel8u* text, int length, RegExpMatchContext& context) {
    const int open = context.groups[context.nodes[index].value].openNode;
    context.node = open + 1 + context.nodes[open].count;
    return ownsNodeGroupingClose(text, length, context);
}

}  // namespace

int ownsRunFuncRegExp(const Zel8u* text, int length, RegExpMatchContext& context) {
    if (context.steps < 0) return 1;
    if (!context.stack.hasRoom()) {
        context.steps = -1;  // ends like a search whose budget ran out
        return 1;
    }
    CaptureRecord& whole = context.captures[0];
    const Zel32u entryFlags = context.flags;
    int consumed = 0;  // by the straight line that this call has walked
    int index = context.node;

    for (;;) {
        if (index == context.end) {
            if (context.noEmpty != 0 && whole.length == 0) break;
            context.reached = text;
            return 0;
        }
        --context.steps;
        const Node& node = context.nodes[index];
        context.node = index;
        int taken = 0;  // length of the character or literal that the node matched

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
                if (const Node* quantifier = quantifierAt(context, index + 1)) {
                    if (length == 0 && quantifier->value > 0) goto failed;
                    const bool greedy = quantifier->kind == NodeQuantifierMax;
                    if (quantifiedAtom(node.kind, greedy)(text, length, context) == 0) return 0;
                    goto failed;
                }
                if (length == 0) goto failed;
                if (node.kind == NodeBackReference) {
                    if (ownsNodeBackReference(text, length, context) == 0) return 0;
                    goto failed;
                }
                taken = matchCharacter(node, text, context.textEnd, context.flags);
                if (taken == 0) goto failed;
                index += 1;
                break;
            case NodeString:
                if (length < node.count ||
                    !sameText(text, static_cast<const Zel8u*>(node.data), node.count,
                              (context.flags & kOptionIgnoreCase) != 0)) {
                    goto failed;
                }
                taken = node.count;
                index += 1;
                break;
            case NodePosition:
                if (ownsNodePosition(text, length, context) != 0) goto failed;
                index = context.node;
                break;
            case NodeOptions:
                context.flags = static_cast<Zel32u>(node.value);
                index += 1;
                break;
            case NodeAlternative:
                if (node.value < 1) return 0;  // the whole match is complete
                if (closesSubprogram(context, node.value)) {
                    index = context.end;
                    continue;
                }
                if (runAlternativeNode(index, text, length, context) == 0) return 0;
                goto failed;
            case NodeCharacterClass:
                if (runClassNode(index, text, length, context) == 0) return 0;
                goto failed;
            case NodeGroupingLookBehind:
            case NodeGroupingLookBehindNot:
            case NodeGroupingLookAhead:
            case NodeGroupingLookAheadNot:
                if (hasCaptures(context.nodes, index)) {
                    if (runLookAroundWithCaptures(text, length, context) == 0) return 0;
                    goto failed;
                }
                if (!lookAroundPasses(text, length, context)) goto failed;
                index += 2 + node.count;
                break;
            case NodeGroupingOptions:
            case NodeGroupingCondition:
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                if (ownsNodeGrouping(text, length, context) == 0) return 0;
                goto failed;
            case NodeGroupingAtom:
                if (runAtomicNode(index, text, length, context) == 0) return 0;
                goto failed;
            case NodeGroupingClose:
                if (ownsNodeGroupingClose(text, length, context) == 0) return 0;
                goto failed;
            default:
                goto failed;  // a quantifier or a class member reached by itself
        }
        if (context.steps < 0) break;
        text += taken;
        length -= taken;
        whole.length += taken;
        consumed += taken;
    }
failed:
    whole.length -= consumed;
    context.flags = entryFlags;
    return 1;
}

}  // namespace zel
