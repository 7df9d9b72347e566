// Quantified code points, Unicode categories, ranges, scripts and combining sequences.
//
// The greedy routines give back whole characters or sequences. The lazy ones each have an order of
// their own, visible in results, and none of them lowers the consumed length again:
//   - a code point never tries the rest at the very end of the text, with a hint tries it only in
//   front of
//     its own letter, and reports success at the first character that is not its letter;
//   - a Unicode kind tries the rest only in front of characters that it accepts, and steps over the
//   others;
//   - a combining sequence tests its base in the mandatory part only.
#include "regexp/match/character.h"
#include "regexp/match/repetition.h"

namespace zel {

namespace {

/// Takes the mandatory characters of a lazy repetition and adds them to the consumed length.
template <typename Matches>
bool takeMandatory(Run& run, const Zel8u* text, int length, RegExpMatchContext& context,
                   const Matches& matches) {
    if (!run.take(text, length, context.nodes[context.node + 1].value, matches)) return false;
    CaptureRecord& whole = context.captures[0];
    whole.length = wrappingSum(whole.length, run.offset);
    return true;
}

int repetitionLimit(const RegExpMatchContext& context, int length) {
    const int max = context.nodes[context.node + 1].count;
    return max < length ? max : length;
}

CodePointMatcher codePointMatcher(const RegExpMatchContext& context) {
    return {context.nodes[context.node], context.textEnd, context.flags};
}

/// Whether the node behind the quantifier is a single letter or Unicode kind and case counts.
bool hasHint(const RegExpMatchContext& context) {
    const int next = context.node + 2;
    if (next >= context.end || (context.flags & kOptionIgnoreCase) != 0) return false;
    switch (context.nodes[next].kind) {
        case NodeLetter:
        case NodeLetterUtf8:
        case NodeUnicodeCategory:
        case NodeUnicodeProperty:
        case NodeUnicodeScript:
            return true;
        default:
            return false;
    }
}

bool hasLazyCodePoint(const RegExpMatchContext& context) {
    for (int i = 0; i + 1 < context.nodeCount; ++i) {
        if (context.nodes[i].kind == NodeLetterUtf8 &&
            context.nodes[i + 1].kind == NodeQuantifierMin) {
            return true;
        }
    }
    return false;
}

/// The end of the run of a lazy code point's characters that starts at `start`. When the budget has
/// ended, one repetition after the other looks for the end of the same run, from further left each
/// time; so the last one is remembered.
template <typename Matches>
const Zel8u* endOfLazyRun(int node, const Zel8u* start, RegExpMatchContext& context,
                          const Matches& matches) {
    auto& known = context.lazyRun;
    const Zel8u* end = start;
    while (end < context.textEnd) {
        if (known.node == node && known.start == end) {
            end = known.end;
            break;
        }
        const int taken = matches(end);
        if (taken == 0) break;
        end += taken;
    }
    known = {node, start, end};
    return end;
}

}  // namespace

bool isHopeless(RegExpMatchContext& context) {
    if (context.steps >= 0) return false;
    if (context.lazyCodePoints < 0) context.lazyCodePoints = hasLazyCodePoint(context);
    return context.lazyCodePoints == 0;
}

int ownsNodeLetterQuantifierMinUtf8(const Zel8u* text, int length, RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const int index = context.node;
    const Node& letter = context.nodes[index];
    const int rest = index + 2;
    const int limit = repetitionLimit(context, length);
    const bool hinted = hasHint(context);
    const auto matches = codePointMatcher(context);
    Run run;
    if (!takeMandatory(run, text, length, context, matches)) return 1;
    while (run.count <= limit) {
        if (run.offset >= length) return 1;
        const Zel8u* position = text + run.offset;
        // The hint looks at the node's own letter, not at what follows it.
        if (!hinted || decodeUtf8(position, length - run.offset).value == letter.value) {
            if (runFrom(rest, position, length - run.offset, context) == 0) return 0;
        }
        int taken = matches(position);
        if (taken == 0) {
            context.reached = position;
            return 0;  // another character ends the repetition as a success
        }
        if (context.steps < 0 && limit == length) {
            // Nothing is tried any more, and there are not more characters than may be taken.
            taken = static_cast<int>(endOfLazyRun(index, position, context, matches) - position);
        }
        whole.length = wrappingSum(whole.length, taken);
        run.offset += taken;
        ++run.count;
    }
    return 1;
}

int ownsNodeLetterQuantifierMinUnicodeBlock(const Zel8u* text, int length,
                                            RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const int rest = context.node + 2;
    const int limit = repetitionLimit(context, length);
    const auto matches = codePointMatcher(context);
    Run run;
    if (!takeMandatory(run, text, length, context, matches)) return 1;
    while (run.count <= limit) {
        if (run.offset >= length) return 1;
        const Zel8u* position = text + run.offset;
        if (matches(position) != 0) {
            if (runFrom(rest, position, length - run.offset, context) == 0) return 0;
            if (isHopeless(context)) return 1;
        }
        const int taken = utf8Length(position, length - run.offset);
        whole.length = wrappingSum(whole.length, taken);
        run.offset += taken;
        ++run.count;
    }
    return 1;
}

int ownsNodeLetterQuantifierMinCombLetter(const Zel8u* text, int length,
                                          RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const Zel8u* end = context.textEnd;
    const int rest = context.node + 2;
    const int limit = repetitionLimit(context, length);
    const auto matches = [end](const Zel8u* position) {
        return matchCombiningSequence(position, end);
    };
    Run run;
    if (!takeMandatory(run, text, length, context, matches)) return 1;
    while (run.count <= limit) {
        const Zel8u* position = text + run.offset;
        if (runFrom(rest, position, length - run.offset, context) == 0) return 0;
        if (run.offset >= length || isHopeless(context)) return 1;
        const int taken = measureCombiningSequence(position, end);
        whole.length = wrappingSum(whole.length, taken);
        run.offset += taken;
        ++run.count;
    }
    return 1;
}

}  // namespace zel
