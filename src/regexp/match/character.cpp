// One character against one node. What categories mean stands in category.h.
#include "regexp/match/character.h"

#include "regexp/unicode/unicode.h"

namespace zel {

namespace {

bool beyondTable(int codePoint) {
    return codePoint > kUniTblLast;
}

/// The case-folded form; everything beyond the table folds to the same value.
int fold(int codePoint) {
    if (findUniRange(codePoint) != nullptr) return codePoint;
    if (beyondTable(codePoint)) return 0;
    const UniEntry* entry = findUniEntry(codePoint);
    return entry != nullptr && entry->lower != 0 ? static_cast<int>(entry->lower) : codePoint;
}

/// Decodes for combining sequences, where an ill-formed byte is negative and so neither base nor
/// mark.
Utf8Char decodeSigned(const Zel8u* text, const Zel8u* end) {
    Utf8Char character = decodeUtf8(text, end - text);
    if (!character.wellFormed) character.value -= 0x100;
    return character;
}

/// The ends of a range compare as unsigned numbers.
bool between(int value, const Node& range) {
    const Zel32u code = static_cast<Zel32u>(value);
    return code >= static_cast<Zel32u>(range.value) && code <= static_cast<Zel32u>(range.count);
}

bool mappingBetween(Zel32u mapping, const Node& range) {
    return mapping != 0 && between(static_cast<int>(mapping), range);
}

bool rangeAccepts(const Node& range, int codePoint, int length, bool ignoreCase) {
    if (between(codePoint, range)) return true;
    if (!ignoreCase) return false;
    if (length == 1 && static_cast<Zel32u>(range.count) < 0x100) {
        return isAsciiLetter(static_cast<Zel8u>(codePoint)) && between(codePoint ^ 0x20, range);
    }
    const UniEntry* entry = findUniEntry(codePoint);
    return entry != nullptr &&
           (mappingBetween(entry->upper, range) || mappingBetween(entry->lower, range));
}

}  // namespace

bool acceptsCodePoint(const Node& node, int codePoint, Zel32u flags) {
    switch (node.kind) {
        case NodeLetterUtf8:
            if (codePoint == node.value) return true;
            return (flags & kOptionIgnoreCase) != 0 && fold(codePoint) == fold(node.value);
        case NodeUnicodeCategory:
            return inGroups(acceptedGroups(node), codePoint);
        case NodeUnicodeProperty:
            return between(codePoint, node) != (node.extra != 0);
        case NodeUnicodeScript:
            return inUniPairs(static_cast<const UniPair*>(node.data), node.extra, codePoint) !=
                   (node.count != 0);
        default:
            return false;
    }
}

int measureCombiningSequence(const Zel8u* text, const Zel8u* end) {
    const Zel8u* next = text + utf8Length(text, end - text);
    while (next < end) {
        const Utf8Char character = decodeSigned(next, end);
        if (!inGroups(kMarks, character.value)) break;
        next += character.length;
    }
    return static_cast<int>(next - text);
}

int matchCombiningSequence(const Zel8u* text, const Zel8u* end) {
    return inGroups(kBases, decodeSigned(text, end).value) ? measureCombiningSequence(text, end)
                                                           : 0;
}

int previousSequenceLength(const Zel8u* text, const Zel8u* start) {
    const Zel8u* base = text;
    do {
        base -= previousLength(base, start);
    } while (base > start && inGroups(kMarks, decodeSigned(base, text).value));
    return static_cast<int>(text - base);
}

int matchCharacter(const Node& node, const Zel8u* text, const Zel8u* end, Zel32u flags) {
    switch (node.kind) {
        case NodeLetter:
            return sameByte(*text, static_cast<Zel8u>(node.value),
                            (flags & kOptionIgnoreCase) != 0);
        case NodeLetterRange:
            return matchShorthand(shorthandBytes(node.value, flags), text, end);
        case NodeAnyByte:
            return 1;
        case NodeCombLetter:
            return matchCombiningSequence(text, end);
        default:
            return CodePointMatcher(node, end, flags)(text);
    }
}

bool memberAccepts(const Node& member, const Zel8u* text, int codePoint, int length, Zel32u flags) {
    const bool ignoreCase = (flags & kOptionIgnoreCase) != 0;
    switch (member.kind) {
        case NodeLetter:
            if (codePoint == member.value) return true;
            return ignoreCase && codePoint < 0x80 && isAsciiLetter(static_cast<Zel8u>(codePoint)) &&
                   (codePoint ^ member.value) == 0x20;
        case NodeRange:
            return rangeAccepts(member, codePoint, length, ignoreCase);
        case NodeLetterRange:
            return shorthandBytes(member.value, flags).has(*text);
        case NodeCombLetter:
            return inGroups(kBases,
                            length == 1 && codePoint >= 0x80 ? codePoint - 0x100 : codePoint);
        default:
            return acceptsCodePoint(member, codePoint, flags);
    }
}

bool classAccepts(const Node& head, const Zel8u* text, int codePoint, int length, Zel32u flags) {
    bool accepted = false;
    for (int i = 1; i <= head.count && !accepted; ++i) {
        const Node& member = (&head)[i];
        // Only all bits set inverts; the extra of the Unicode kinds means something else to them.
        accepted = memberAccepts(member, text, codePoint, length, flags) != (member.extra < 0);
    }
    return accepted != (head.value < 0);
}

bool hasCaptures(const Node* nodes, int open) {
    const int close = open + 1 + nodes[open].count;
    for (int i = open + 1; i < close; ++i) {
        if (nodes[i].kind == NodeGroupingCapture) return true;
    }
    return false;
}

}  // namespace zel
