// Bracket classes as the matcher sees them: one character against a class, by a look-up in a
// 256-bit set made when the search first meets the class. A character is a byte in byte format, a
// decoded character in UTF-8 format.
#pragma once

#include "regexp/match/character.h"
#include "regexp/match/context.h"

namespace zel {

/// The set form of the class at node `index`.
inline const ClassSet& classSet(RegExpMatchContext& context, int index) {
    constexpr int kIgnoreCaseKey = 1 << 30;
    ClassCache& cache = context.classes;
    const int slot = index % ClassCache::kSize;
    const int key = (context.flags & kOptionIgnoreCase) != 0 ? index | kIgnoreCaseKey : index;
    if (cache.key[slot] != key) {
        cache.key[slot] = key;
        ClassSet& set = cache.sets[slot];
        set.bytes = bytesOfClass(context.nodes[index], context.flags);
        if (context.format == kFormatUtf8) {
            lookAtWide(context.nodes[index], context.flags, set);
            if (set.wide == ClassSet::kTestWide) set.learnt = cache.newLearner();
        }
    }
    return cache.sets[slot];
}

/// Length of the character at a position of UTF-8 text if the node, whose set form is `set`,
/// accepts it, else 0.
inline int acceptedLength(const ClassSet& set, const Node& node, const Zel8u* text,
                          const Zel8u* end, Zel32u flags) {
    if (*text < 0x80) return set.bytes.has(*text);
    const unsigned lead = *text - 0xC0u;
    const WideAnswers* const learnt = set.learnt;
    if (lead < 32 && learnt != nullptr && learnt->met[lead] == WideAnswers::kKnown &&
        end - text > 1) {
        const unsigned low = text[1] ^ 0x80u;
        if (low > 0x3F) return set.bytes.has(*text);
        return ((learnt->answers[lead] >> low) & 1) != 0 ? 2 : 0;
    }
    const Utf8Char character = decodeUtf8Sequence(text, end - text);
    if (character.length == 1) return set.bytes.has(*text);
    const Zel32u c = static_cast<Zel32u>(character.value);
    const bool isTested = set.wide == ClassSet::kTestWide && c >= set.first && c <= set.last;
    bool accepted = set.elsewhere;
    if (isTested && character.length == 2) {
        accepted = learnAnswer(node, text, character.value, flags, set);
    } else if (isTested) {
        accepted = acceptsCharacter(node, text, character.value, character.length, flags);
    }
    return accepted ? character.length : 0;
}

/// Answers the length of the character at a position, 0 when the class does not accept it. Stays
/// right as long as the search meets no other class: whoever runs the program in between keeps a
/// copy of the set.
struct ClassMatcher {
    const ClassSet& set;
    const Node& head;
    const Zel8u* end;
    Zel32u flags;
    bool utf8;

    ClassMatcher(RegExpMatchContext& context, int index)
        : ClassMatcher(context, index, classSet(context, index)) {}
    ClassMatcher(const RegExpMatchContext& context, int index, const ClassSet& classSet)
        : set(classSet),
          head(context.nodes[index]),
          end(context.textEnd),
          flags(context.flags),
          utf8(context.format == kFormatUtf8) {}

    int operator()(const Zel8u* text) const {
        if (!utf8) return set.bytes.has(*text);
        return acceptedLength(set, head, text, end, flags);
    }
};

}  // namespace zel
