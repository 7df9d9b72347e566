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
        buildClassSet(context.nodes[index], context.flags, cache.sets[slot]);
    }
    return cache.sets[slot];
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
        if (*text < 0x80 || !utf8) return set.bytes.has(*text);
        const unsigned lead = *text - 0xC0u;
        if (lead < 32 && set.met[lead] == ClassSet::kKnown && end - text > 1) {
            const unsigned low = text[1] ^ 0x80u;
            if (low > 0x3F) return set.bytes.has(*text);
            return ((set.answers[lead] >> low) & 1) != 0 ? 2 : 0;
        }
        const Utf8Char character = decodeUtf8Sequence(text, end - text);
        if (character.length == 1) return set.bytes.has(*text);
        return acceptsWide(character.value, text, character.length) ? character.length : 0;
    }

private:
    bool acceptsWide(int codePoint, const Zel8u* text, int length) const {
        if (set.wide != ClassSet::kTestWide) return set.wide == ClassSet::kAllWide;
        const Zel32u c = static_cast<Zel32u>(codePoint);
        if (c < set.first || c > set.last) return set.elsewhere;
        if (length == 2) return learnClassAnswer(head, text, codePoint, flags, set);
        return classAccepts(head, text, codePoint, length, flags);
    }
};

}  // namespace zel
