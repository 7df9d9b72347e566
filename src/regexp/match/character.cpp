// One character against one node. The rules of the Unicode kinds are written out as they stand,
// with their asymmetries: a range that holds the code point without matching does not decide, code
// points beyond the table are in no category, and those absent from it are in the unassigned one
// alone.
#include "regexp/match/character.h"

#include "regexp/unicode/unicode.h"

namespace zel {

namespace {

constexpr Zel32u kMajorMask = 0xFFFFFF80;
constexpr Zel32u kMinorMask = 0x7F;
constexpr Zel32u kMark = 0x100;
constexpr Zel32u kUnassigned = 0x2010;

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

bool inCategory(int codePoint, Zel32u mask, bool negated) {
    if (const UniRange* range = findUniRange(codePoint)) {
        const Zel32u bits = range->category;
        if (negated ? (mask & ~bits) != 0 : (bits & mask) == mask) return true;
    }
    if (beyondTable(codePoint)) return false;
    const UniEntry* entry = findUniEntry(codePoint);
    if (entry == nullptr) return mask == kUnassigned;
    const bool sameMajor = (entry->category & kMajorMask) == (mask & kMajorMask);
    const bool wholeMajor = (mask & kMinorMask) == 0;
    const bool sharesMinor = (entry->category & mask & kMinorMask) != 0;
    return (sameMajor && (wholeMajor || sharesMinor)) != negated;
}

bool isMark(int codePoint) {
    if (const UniRange* range = findUniRange(codePoint)) {
        if ((range->category & kMark) != 0) return true;
    }
    const UniEntry* entry = findUniEntry(codePoint);
    return entry != nullptr && (entry->category & kMajorMask) == kMark;
}

bool isBase(int codePoint) {
    if (const UniRange* range = findUniRange(codePoint)) {
        if ((range->category & kMark) == 0) return true;
    }
    const UniEntry* entry = findUniEntry(codePoint);
    return entry != nullptr && (entry->category & kMajorMask) != kMark;
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
            return isBase(length == 1 && codePoint >= 0x80 ? codePoint - 0x100 : codePoint);
        default:
            return acceptsCodePoint(member, codePoint, flags);
    }
}

/// Whether a class member decides characters of several bytes without looking at them.
bool acceptsNoWide(const Node& member) {
    switch (member.kind) {
        case NodeLetter:
            return member.value < 0x80 && member.extra >= 0;
        case NodeRange:
            return static_cast<Zel32u>(member.count) < 0x80 && member.extra >= 0;
        case NodeLetterRange:
            return (member.value == 'd' || member.value == 's' || member.value == 'w') &&
                   member.extra >= 0;
        default:
            return false;
    }
}

}  // namespace

bool acceptsCodePoint(const Node& node, int codePoint, Zel32u flags) {
    switch (node.kind) {
        case NodeLetterUtf8:
            if ((flags & kOptionIgnoreCase) != 0) return fold(codePoint) == fold(node.value);
            return codePoint == node.value;
        case NodeUnicodeCategory:
            return inCategory(codePoint, static_cast<Zel32u>(node.value), node.count != 0);
        case NodeUnicodeProperty:
            return between(codePoint, node) != (node.extra != 0);
        case NodeUnicodeScript:
            return inUniPairs(static_cast<const UniPair*>(node.data), node.extra, codePoint) !=
                   (node.count != 0);
        default:
            return false;
    }
}

int matchCodePoint(const Node& node, const Zel8u* text, const Zel8u* end, Zel32u flags) {
    const Utf8Char character = decodeUtf8(text, end - text);
    return acceptsCodePoint(node, character.value, flags) ? character.length : 0;
}

int measureCombiningSequence(const Zel8u* text, const Zel8u* end) {
    const Zel8u* next = text + utf8Length(text, end - text);
    while (next < end) {
        const Utf8Char character = decodeSigned(next, end);
        if (!isMark(character.value)) break;
        next += character.length;
    }
    return static_cast<int>(next - text);
}

int matchCombiningSequence(const Zel8u* text, const Zel8u* end) {
    return isBase(decodeSigned(text, end).value) ? measureCombiningSequence(text, end) : 0;
}

int previousSequenceLength(const Zel8u* text, const Zel8u* start) {
    const Zel8u* base = text;
    do {
        base -= previousLength(base, start);
    } while (base > start && isMark(decodeSigned(base, text).value));
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
            return matchCodePoint(node, text, end, flags);
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

void buildClassSet(const Node& head, Zel32u flags, ClassSet& set) {
    set.bytes = ByteSet{};
    set.wide = ClassSet::kNoWide;
    const bool ignoreCase = (flags & kOptionIgnoreCase) != 0;
    bool simple = true;
    bool foldsWide = false;  // a range may hold a mapping of a character of several bytes
    for (int i = 1; i <= head.count && simple; ++i) {
        const Node& member = (&head)[i];
        simple = acceptsNoWide(member);
        if (!simple) break;
        if (member.kind == NodeLetter) {
            const unsigned letter = static_cast<unsigned>(member.value);
            set.bytes.add(letter);
            if (ignoreCase && isAsciiLetter(static_cast<Zel8u>(letter)))
                set.bytes.add(letter ^ 0x20);
        } else if (member.kind == NodeRange) {
            set.bytes.addRange(static_cast<unsigned>(member.value),
                               static_cast<unsigned>(member.count));
            if (ignoreCase) {
                foldsWide = true;
                for (int c = member.value; c <= member.count; ++c) {
                    if (isAsciiLetter(static_cast<Zel8u>(c ^ 0x20))) {
                        set.bytes.add(static_cast<unsigned>(c ^ 0x20));
                    }
                }
            }
        } else {
            const ByteSet& bytes = shorthandBytes(member.value, flags);
            for (int w = 0; w < 4; ++w) set.bytes.words[w] |= bytes.words[w];
        }
    }
    if (simple) {
        if (head.value < 0) {
            set.bytes.invert();
            set.wide = ClassSet::kAllWide;
        }
        if (foldsWide) set.wide = ClassSet::kTestWide;
        return;
    }
    set.bytes = ByteSet{};
    set.wide = ClassSet::kTestWide;
    for (int c = 0; c < 256; ++c) {
        const Zel8u byte = static_cast<Zel8u>(c);
        if (classAccepts(head, &byte, c, 1, flags)) set.bytes.add(static_cast<unsigned>(c));
    }
}

bool hasCaptures(const Node* nodes, int open) {
    const int close = open + 1 + nodes[open].count;
    for (int i = open + 1; i < close; ++i) {
        if (nodes[i].kind == NodeGroupingCapture) return true;
    }
    return false;
}

}  // namespace zel
