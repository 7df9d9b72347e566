// Quantified letters, class shorthands and \C. A letter is one byte. A shorthand's character is a
// well-formed UTF-8 sequence or one byte, whatever the format of the text. The greedy shorthand
// gives back by the length of the character that stands behind the run, not of the run's last:
// exact for one-byte text, and what defines the result on other text, where it can lead into or
// even in front of the run.
#include <string.h>

#include "regexp/match/character.h"
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

int oneByte(const Zel8u*) {
    return 1;
}

}  // namespace

int ownsNodeLetterQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context) {
    return repeatGreedy(text, length, context, letterMatcher(context), oneByte);
}

int ownsNodeLetterQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    return repeatLazy(text, length, context, letterMatcher(context), nextLetter(context));
}

int ownsNodeLetterRangeQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context) {
    const Zel8u* end = context.textEnd;
    const auto lengthBehind = [end](const Zel8u* position) {
        return position < end ? utf8Length(position, end - position) : 1;
    };
    return repeatGreedy(text, length, context, shorthandMatcher(context), lengthBehind);
}

int ownsNodeLetterRangeQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    return repeatLazy(text, length, context, shorthandMatcher(context), nextLetter(context));
}

int ownsNodeAnyByteQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context) {
    const Node& quantifier = context.nodes[context.node + 1];
    if (length < quantifier.value) return 1;
    const int taken = quantifier.count < length ? quantifier.count : length;
    return giveBack(text, length, context, context.node + 2, taken, taken, quantifier.value,
                    oneByte);
}

/// Unlike the lazy routines of letters and shorthands this one puts the whole match's length back.
int ownsNodeAnyByteQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    CaptureRecord& whole = context.captures[0];
    const int entryLength = whole.length;
    const Node& quantifier = context.nodes[context.node + 1];
    const int rest = context.node + 2;
    const int hint = nextLetter(context);
    const int max = quantifier.count < length ? quantifier.count : length;
    if (length < quantifier.value) return 1;
    whole.length += quantifier.value;
    for (int count = quantifier.value; count <= max; ++count) {
        if (hint < 0 || text[count] == hint) {
            if (runFrom(rest, text + count, length - count, context) == 0) return 0;
        }
        ++whole.length;
    }
    whole.length = entryLength;
    return 1;
}

}  // namespace zel
