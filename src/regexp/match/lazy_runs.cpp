// Lazy repetition of one character: take the minimum, then try the rest of the program before each
// further character. A letter is one byte; a shorthand's character is a well-formed UTF-8 sequence
// or one byte, whatever the format of the text; a class follows the format.
//
// Letters and shorthands deliberately leave the whole match's length raised by what they took when
// they fail;
// \C and classes put it back.
#include "regexp/match/class_matcher.h"
#include "regexp/match/repetition.h"

namespace zel {

namespace {

bool ignoresCase(const RegExpMatchContext& context) {
    return (context.flags & kOptionIgnoreCase) != 0;
}

/// The byte that the node behind the quantifier begins with, -1 when it is no letter or case is
/// ignored.
int nextLetter(const RegExpMatchContext& context) {
    const int next = context.node + 2;
    if (next >= context.end || ignoresCase(context)) return -1;
    const Node& node = context.nodes[next];
    return node.kind == NodeLetter ? static_cast<Zel8u>(node.value) : -1;
}

auto letterMatcher(const RegExpMatchContext& context) {
    const Zel8u letter = static_cast<Zel8u>(context.nodes[context.node].value);
    const bool ignoreCase = ignoresCase(context);
    return [letter, ignoreCase](const Zel8u* text) -> int {
        return sameByte(*text, letter, ignoreCase);
    };
}

auto shorthandMatcher(const RegExpMatchContext& context) {
    const ByteSet& bytes = shorthandBytes(context.nodes[context.node].value, context.flags);
    const Zel8u* end = context.textEnd;
    return [&bytes, end](const Zel8u* text) { return matchShorthand(bytes, text, end); };
}

}  // namespace

int ownsNodeLetterQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    return repeatLazy(text, length, context, letterMatcher(context), nextLetter(context));
}

int ownsNodeLetterRangeQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    return repeatLazy(text, length, context, shorthandMatcher(context), nextLetter(context));
}

int ownsNodeAnyByteQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const Node& quantifier = context.nodes[context.node + 1];
    const int rest = context.node + 2;
    const int hint = nextLetter(context);
    const int max = quantifier.count < length ? quantifier.count : length;
    if (length < quantifier.value) return 1;
    int taken = quantifier.value;
    whole.length = wrappingSum(whole.length, taken);
    for (; taken <= max; ++taken, whole.length = wrappingSum(whole.length, 1)) {
        if (hint < 0 || text[taken] == hint) {
            if (runFrom(rest, text + taken, length - taken, context) == 0) return 0;
            if (isHopeless(context)) break;
        }
    }
    whole.length = wrappingDifference(whole.length, taken);
    return 1;
}

int ownsNodeCharacterClassQuantifierMin(const Zel8u* text, int length,
                                        RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const int index = context.node;
    const int behind = index + 1 + context.nodes[index].count;
    const Node& quantifier = context.nodes[behind];
    const ClassSet set = classSet(context, index);  // a copy: the rest may meet other classes
    const ClassMatcher matches(context, index, set);
    Run run;
    if (!run.take(text, length, quantifier.value, matches)) return 1;
    whole.length = wrappingSum(whole.length, run.offset);
    for (;;) {
        if (runFrom(behind + 1, text + run.offset, length - run.offset, context) == 0) return 0;
        const int before = run.offset;
        if (isHopeless(context) || run.count >= quantifier.count ||
            !run.take(text, length, run.count + 1, matches))
            break;
        whole.length = wrappingSum(whole.length, run.offset - before);
    }
    whole.length = wrappingDifference(whole.length, run.offset);
    return 1;
}

}  // namespace zel
