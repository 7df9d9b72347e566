// Bracket classes and their repetition. A class is one character long: a byte in byte format, a
// decoded character in UTF-8 format. Repetition is a loop that takes characters and one that gives
// them back; the single character test is a look-up in a 256-bit set made when the search first
// meets the class.
#include "regexp/match/character.h"
#include "regexp/match/repetition.h"

namespace zel {

namespace {

constexpr int kIgnoreCaseKey = 1 << 30;

const ClassSet& classSet(RegExpMatchContext& context, int index) {
    ClassCache& cache = context.classes;
    const int slot = index % ClassCache::kSize;
    const int key = (context.flags & kOptionIgnoreCase) != 0 ? index | kIgnoreCaseKey : index;
    if (cache.key[slot] != key) {
        cache.key[slot] = key;
        buildClassSet(context.nodes[index], context.flags, cache.sets[slot]);
    }
    return cache.sets[slot];
}

struct ClassMatcher {
    ClassSet set;
    const Node* head;
    const Zel8u* end;
    Zel32u flags;
    bool utf8;

    int operator()(const Zel8u* text) const {
        if (*text < 0x80 || !utf8) return set.bytes.has(*text);
        const Utf8Char character = decodeUtf8Sequence(text, end - text);
        if (character.length == 1) return set.bytes.has(*text);
        if (set.wide == ClassSet::kNoWide) return 0;
        if (set.wide == ClassSet::kTestWide &&
            !classAccepts(*head, text, character.value, character.length, flags)) {
            return 0;
        }
        return character.length;
    }
};

ClassMatcher classMatcher(RegExpMatchContext& context) {
    const int index = context.node;
    return {classSet(context, index), &context.nodes[index], context.textEnd, context.flags,
            context.format == kFormatUtf8};
}

/// The node behind the members and the class's quantifier.
int restOfClass(const RegExpMatchContext& context) {
    const int next = context.node + 1 + context.nodes[context.node].count;
    return quantifierAt(context, next) != nullptr ? next + 1 : next;
}

}  // namespace

int ownsNodeCharacterClassQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context,
                                        int minLeft, int maxLeft) {
    const int rest = restOfClass(context);
    const ClassMatcher matches = classMatcher(context);
    Run run;
    if (!run.take(text, length, minLeft, matches)) return 1;
    run.take(text, length, maxLeft, matches);
    const bool utf8 = matches.utf8;
    return giveBack(
        text, length, context, rest, run.count, run.offset, minLeft,
        [text, utf8](const Zel8u* position) { return utf8 ? previousLength(position, text) : 1; });
}

int ownsNodeCharacterClassQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context,
                                        int minLeft, int maxLeft) {
    CaptureRecord& whole = context.captures[0];
    const int rest = restOfClass(context);
    const ClassMatcher matches = classMatcher(context);
    Run run;
    if (!run.take(text, length, minLeft, matches)) return 1;
    whole.length += run.offset;
    for (;;) {
        if (runFrom(rest, text + run.offset, length - run.offset, context) == 0) return 0;
        const int before = run.offset;
        if (run.count >= maxLeft || !run.take(text, length, run.count + 1, matches)) break;
        whole.length += run.offset - before;
    }
    whole.length -= run.offset;
    return 1;
}

}  // namespace zel
