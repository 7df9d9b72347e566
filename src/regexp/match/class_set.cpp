// The set form of a bracket class. It is made at every search that meets the class, so what can be
// had without asking members about single characters is: words of bits for letters, ranges and
// shorthands, and for characters of several bytes the bounds outside of which no member looks at
// them.
#include "regexp/match/character.h"
#include "regexp/unicode/unicode.h"

namespace zel {

namespace {

constexpr Zel32u kLastValue = 0x7FFFFFFF;

/// Characters of several bytes that a member has to look at, those from `first` to `last`; whether
/// it accepts the others.
struct Span {
    Zel32u first;
    Zel32u last;
    bool elsewhere;
};
constexpr Span kNowhere = {1, 0, false};
constexpr Span kAnywhere = {0, kLastValue, false};

bool isInverted(const Node& node) {
    // Only all bits set inverts; the extra of the Unicode kinds means something else to them.
    return node.extra < 0;
}

Zel32u low(const Node& range) {
    return static_cast<Zel32u>(range.value);
}
Zel32u high(const Node& range) {
    return static_cast<Zel32u>(range.count);
}

/// One of 64 characters after the other: those with a code point from `base` on.
template <typename Test>
uint64_t bitsThat(unsigned base, const Test& test) {
    uint64_t bits = 0;
    for (unsigned i = 0; i < 64; ++i) {
        if (test(base + i)) bits |= uint64_t{1} << i;
    }
    return bits;
}

ByteSet oneByteCharacters(const Node& member, Zel32u flags) {
    const bool ignoreCase = (flags & kOptionIgnoreCase) != 0;
    ByteSet set = {};
    switch (member.kind) {
        case NodeLetter: {
            const Zel8u letter = static_cast<Zel8u>(member.value);
            set.add(letter);
            if (ignoreCase && isAsciiLetter(letter)) set.add(letter ^ 0x20u);
            return set;
        }
        case NodeRange:
            set.addRange(low(member), high(member));
            if (!ignoreCase) return set;
            if (high(member) < 0x100) {
                // The range's letters, with bit 0x20 inverted.
                constexpr uint64_t kLetters = 0x07FFFFFE;
                const uint64_t letters = set.words[1];
                set.words[1] |= ((letters & kLetters) << 32) | ((letters & (kLetters << 32)) >> 32);
                return set;
            }
            break;
        case NodeLetterRange:
            return shorthandBytes(member.value, flags);
        case NodeLetterUtf8:
            if (ignoreCase) break;
            set.addRange(low(member), low(member));
            return set;
        case NodeUnicodeProperty:
            set.addRange(low(member), high(member));
            if (member.extra != 0) set.invert();
            return set;
        default:
            break;
    }
    for (unsigned w = 0; w < 4; ++w) {
        set.words[w] = bitsThat(64 * w, [&](unsigned c) {
            const Zel8u byte = static_cast<Zel8u>(c);
            return memberAccepts(member, &byte, byte, 1, flags);
        });
    }
    return set;
}

Span wideSpan(const Node& member, Zel32u flags) {
    const bool ignoreCase = (flags & kOptionIgnoreCase) != 0;
    switch (member.kind) {
        case NodeLetter:
            if (low(member) < 0x80) return kNowhere;
            return {low(member), low(member), false};
        case NodeRange:
            if (ignoreCase) return kAnywhere;  // a mapping may lie in the range
            if (high(member) < 0x80) return kNowhere;
            return {low(member), high(member), false};
        case NodeLetterRange:
            return {1, 0, shorthandBytes(member.value, flags).has(0xC0)};
        case NodeLetterUtf8:
            if (ignoreCase) return kAnywhere;
            return {low(member), low(member), false};
        case NodeUnicodeProperty:
            return {low(member), high(member), member.extra != 0};
        default:
            return kAnywhere;
    }
}

/// What a member says to the 64 characters of two bytes that begin with a lead byte.
uint64_t twoByteCharacters(const Node& member, Zel8u lead, Zel32u flags) {
    const unsigned base = (lead & 0x1Fu) << 6;
    const Span span = wideSpan(member, flags);
    const bool isLooking = span.first <= base + 63 && span.last >= base;
    if (!isLooking || span.first > span.last) return span.elsewhere ? ~uint64_t{0} : 0;
    if (span.last < kLastValue) {  // all that lie in the span are treated alike
        const uint64_t bits = bitsBetween(span.first, span.last, base);
        return span.elsewhere ? ~bits : bits;
    }
    return bitsThat(base, [&](unsigned c) {
        return memberAccepts(member, &lead, static_cast<int>(c), 2, flags);
    });
}

Zel32u leadByte(Zel32u codePoint) {
    int continuation = 1;
    while (continuation < 5 && codePoint > static_cast<Zel32u>(UTF8_table1[continuation]))
        ++continuation;
    return static_cast<Zel32u>(UTF8_table2[continuation]) | (codePoint >> (6 * continuation));
}

constexpr ByteSet kLeads = {{0, 0, 0, ~uint64_t{0}}};

/// First bytes of the characters of several bytes that a node accepts, and perhaps others.
ByteSet leadBytes(const Node& node, Zel32u flags) {
    ByteSet leads = {};
    if (node.kind == NodeUnicodeCategory) {
        for (int i = 0; i < kUniGroupCount; ++i) {
            if (((acceptedGroups(node) >> i) & 1) != 0) leads.words[3] |= UniGroupTbl[i].leads;
        }
        return leads;
    }
    if (node.kind == NodeUnicodeScript && node.count == 0) {
        const UniPair* pairs = static_cast<const UniPair*>(node.data);
        for (int i = 0; i < node.extra; ++i) {
            if (pairs[i].last >= 0x80)
                leads.addRange(leadByte(pairs[i].first), leadByte(pairs[i].last));
        }
        return leads;
    }
    const Span span = wideSpan(node, flags);
    if (span.elsewhere) return kLeads;
    if (span.first > span.last || span.first > kLastValue) return leads;
    leads.addRange(leadByte(span.first), leadByte(span.last < kLastValue ? span.last : kLastValue));
    return leads;
}

/// What a set says to characters of several bytes.
void setWide(const Span& span, ClassSet& set) {
    set.elsewhere = span.elsewhere;
    set.first = span.first;
    set.last = span.last;
    set.wide = span.elsewhere ? ClassSet::kAllWide : ClassSet::kNoWide;
    if (span.first <= span.last) set.wide = ClassSet::kTestWide;
    set.learnt = nullptr;
}

/// Adds a member that is a plain byte, range or shorthand; false for any other.
bool addPlainMember(const Node& member, Zel32u flags, ByteSet& set) {
    switch (member.kind) {
        case NodeLetter:
            set.add(static_cast<Zel8u>(member.value));
            return true;
        case NodeRange:
            set.addRange(low(member), high(member));
            return true;
        case NodeLetterRange:
            set.addAll(shorthandBytes(member.value, flags));
            return true;
        default:
            return false;
    }
}

/// Of a node that stands for code points.
ByteSet firstBytesOfCodePoints(const Node& node, Zel32u flags) {
    ByteSet bytes = oneByteCharacters(node, flags);
    bytes.addAll(leadBytes(node, flags));
    return bytes;
}

/// Of a bracket class in UTF-8 text.
ByteSet firstBytesOfClass(const Node& head, Zel32u flags) {
    ClassSet set;
    buildClassSet(head, flags, set);
    if (set.wide == ClassSet::kNoWide) return set.bytes;
    for (int i = 1; i <= head.count; ++i) {
        const Node& member = (&head)[i];
        const bool inverted = isInverted(member) || head.value < 0;
        set.bytes.addAll(inverted ? kLeads : leadBytes(member, flags));
    }
    return set.bytes;
}

}  // namespace

ByteSet bytesOfClass(const Node& head, Zel32u flags) {
    const bool ignoreCase = (flags & kOptionIgnoreCase) != 0;
    ByteSet set = {};
    for (int i = 1; i <= head.count; ++i) {
        const Node& member = (&head)[i];
        if (!ignoreCase && member.extra == 0 && addPlainMember(member, flags, set)) continue;
        ByteSet bytes = oneByteCharacters(member, flags);
        if (isInverted(member)) bytes.invert();
        set.addAll(bytes);
    }
    if (head.value < 0) set.invert();
    return set;
}

ByteSet firstBytes(const Node& node, Zel32u flags, bool utf8) {
    if (node.kind == NodeLetterRange) return shorthandBytes(node.value, flags);
    if (node.kind != NodeCharacterClass) return firstBytesOfCodePoints(node, flags);
    return utf8 ? firstBytesOfClass(node, flags) : bytesOfClass(node, flags);
}

void lookAtWide(const Node& head, Zel32u flags, ClassSet& set) {
    Span all = kNowhere;
    for (int i = 1; i <= head.count; ++i) {
        const Node& member = (&head)[i];
        Span span = wideSpan(member, flags);
        if (isInverted(member)) span.elsewhere = !span.elsewhere;
        all.elsewhere = all.elsewhere || span.elsewhere;
        if (span.first > span.last) continue;
        const bool isFirst = all.first > all.last;
        if (isFirst || span.first < all.first) all.first = span.first;
        if (isFirst || span.last > all.last) all.last = span.last;
    }
    if (head.value < 0) all.elsewhere = !all.elsewhere;
    setWide(all, set);
}

void buildClassSet(const Node& head, Zel32u flags, ClassSet& set) {
    set.bytes = bytesOfClass(head, flags);
    lookAtWide(head, flags, set);
}

void buildCharacterSet(const Node& node, Zel32u flags, ClassSet& set) {
    if (node.kind == NodeCharacterClass) return buildClassSet(node, flags, set);
    set.bytes = oneByteCharacters(node, flags);
    setWide(wideSpan(node, flags), set);
}

bool learnAnswer(const Node& node, const Zel8u* text, int codePoint, Zel32u flags,
                 const ClassSet& set) {
    if (set.learnt == nullptr) return acceptsCharacter(node, text, codePoint, 2, flags);
    const Zel8u lead = *text;
    Zel8u& met = set.learnt->met[lead & 0x1F];
    if (met + 1 < WideAnswers::kKnown) {
        ++met;
        return acceptsCharacter(node, text, codePoint, 2, flags);
    }
    uint64_t answers = 0;
    if (node.kind == NodeCharacterClass) {
        for (int i = 1; i <= node.count; ++i) {
            const Node& member = (&node)[i];
            const uint64_t bits = twoByteCharacters(member, lead, flags);
            answers |= isInverted(member) ? ~bits : bits;
        }
        if (node.value < 0) answers = ~answers;
    } else {
        answers = twoByteCharacters(node, lead, flags);
    }
    set.learnt->answers[lead & 0x1F] = answers;
    met = WideAnswers::kKnown;
    return ((answers >> (text[1] & 0x3F)) & 1) != 0;
}

}  // namespace zel
