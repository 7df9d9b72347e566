// Tests of one text character against one node: literals, shorthands, code points, Unicode
// properties and the members of a bracket class. A character that is not well-formed UTF-8 is its
// first byte, with length 1; a sequence that does not fit in front of the text's end is not
// well-formed.
#pragma once

#include "regexp/match/byte_set.h"
#include "regexp/match/category.h"
#include "regexp/match/predicates.h"
#include "regexp/program.h"
#include "string/utf8.h"

namespace zel {

/// Length in bytes of the character at `text` (which lies in front of `end`) if the node, an atom,
/// accepts it, else 0. For NodeCombLetter the character includes its combining marks.
int matchCharacter(const Node& node, const Zel8u* text, const Zel8u* end, Zel32u flags);

/// Whether a code-point node, NodeLetterUtf8 or one of the Unicode kinds, accepts a code point.
bool acceptsCodePoint(const Node& node, int codePoint, Zel32u flags);

/// The groups of code points that a category node accepts.
inline UniGroups acceptedGroups(const Node& category) {
    return groupsInCategory(static_cast<Zel32u>(category.value), category.count != 0);
}

/// matchCharacter for code-point nodes, prepared for a run.
struct CodePointMatcher {
    const Node& node;
    const Zel8u* end;
    Zel32u flags;
    bool isCategory;
    UniGroups groups;

    CodePointMatcher(const Node& theNode, const Zel8u* theEnd, Zel32u theFlags)
        : node(theNode),
          end(theEnd),
          flags(theFlags),
          isCategory(node.kind == NodeUnicodeCategory),
          groups(isCategory ? acceptedGroups(node) : 0) {}

    int operator()(const Zel8u* text) const {
        const Utf8Char character = decodeUtf8(text, end - text);
        const bool accepted = isCategory ? inGroups(groups, character.value)
                                         : acceptsCodePoint(node, character.value, flags);
        return accepted ? character.length : 0;
    }
};

/// Length of the combining sequence at `text`, or 0 when its first character cannot be a base.
int matchCombiningSequence(const Zel8u* text, const Zel8u* end);

/// Length of the character at `text`, whatever it is, and the marks that follow it.
int measureCombiningSequence(const Zel8u* text, const Zel8u* end);

/// Length of the combining sequence that ends at `text`; it begins behind `start`.
int previousSequenceLength(const Zel8u* text, const Zel8u* start);

/// Whether a bracket class, or one of its members, accepts a character. `length` is its length in
/// bytes. A member that is inverted is not inverted here.
bool memberAccepts(const Node& member, const Zel8u* text, int codePoint, int length, Zel32u flags);
bool classAccepts(const Node& head, const Zel8u* text, int codePoint, int length, Zel32u flags);

// class_set.cpp
/// Builds the set form of a bracket class: all of it, its one-byte characters, all but those.
void buildClassSet(const Node& head, Zel32u flags, ClassSet& set);
ByteSet bytesOfClass(const Node& head, Zel32u flags);
void lookAtWide(const Node& head, Zel32u flags, ClassSet& set);
/// The bytes that an accepted character can begin with, and perhaps others: of any node that stands
/// for one character, but a letter.
ByteSet firstBytes(const Node& node, Zel32u flags, bool utf8);
/// The set form of any node that stands for one character, but a letter.
void buildCharacterSet(const Node& node, Zel32u flags, ClassSet& set);
/// acceptsCharacter for a character of two bytes; learns from it when the set has where to.
bool learnAnswer(const Node& node, const Zel8u* text, int codePoint, Zel32u flags,
                 const ClassSet& set);

/// The same for a class or any other node that stands for one character, but a letter.
inline bool acceptsCharacter(const Node& node, const Zel8u* text, int codePoint, int length,
                             Zel32u flags) {
    return node.kind == NodeCharacterClass ? classAccepts(node, text, codePoint, length, flags)
                                           : memberAccepts(node, text, codePoint, length, flags);
}

/// Length of the character that ends at `text`, in text that begins at `start`, a character
/// boundary. The bytes inside a well-formed sequence are never lead bytes, so looking back from a
/// boundary to the nearest lead byte decides it.
inline int previousLength(const Zel8u* text, const Zel8u* start) {
    if (text[-1] < 0x80) return 1;
    for (int back = 2; back <= 6 && text - back >= start; ++back) {
        const Zel8u byte = text[-back];
        if (byte >= 0xC0) return utf8Length(text - back, back) == back ? back : 1;
        if (byte < 0x80) return 1;
    }
    return 1;
}

/// The end of the character that `text` lies inside of, or `text` itself at a boundary. Characters
/// begin at `start`, itself a boundary, or behind it.
inline const Zel8u* characterBoundary(const Zel8u* text, const Zel8u* start, const Zel8u* end) {
    if (text >= end || (*text & 0xC0) != 0x80) return text;
    for (int back = 1; back <= 5 && text - back >= start; ++back) {
        const Zel8u* lead = text - back;
        if (*lead < 0x80) break;
        if (*lead >= 0xC0) {
            const int length = utf8Length(lead, end - lead);
            return length > back ? lead + length : text;
        }
    }
    return text;
}

/// Length of a shorthand's character at `text`, or 0 when it is not accepted.
inline int matchShorthand(const ByteSet& bytes, const Zel8u* text, const Zel8u* end) {
    if (!bytes.has(*text)) return 0;
    return utf8Length(text, end - text);
}

/// Whether there is a capturing group inside the group that opens at node `open`.
bool hasCaptures(const Node* nodes, int open);

}  // namespace zel
