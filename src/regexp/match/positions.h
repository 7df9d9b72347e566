// Position assertions. They work on bytes in both formats. \b and \B look at the byte at the
// position even at the end of the text: a caller keeps one readable byte there.
#pragma once

#include "regexp/match/context.h"
#include "regexp/match/predicates.h"

namespace zel {

inline bool atWordBoundary(const Zel8u* text, const Zel8u* textStart) {
    const Zel8u before = text == textStart ? Zel8u{' '} : text[-1];
    return kWordBytes.has(before) != kWordBytes.has(*text);
}

/// Whether a position assertion holds at a text position, `length` bytes in front of the end.
inline bool positionHolds(int assertion, const Zel8u* text, int length, const Zel8u* textStart,
                          Zel32u flags) {
    const bool multiLine = (flags & kOptionMultiLine) != 0;
    const bool atStart = text == textStart;
    switch (assertion) {
        case '^':
            return atStart || (multiLine && length != 0 && text[-1] == '\n');
        case '$':
            if (multiLine) return length == 0 || *text == '\n';
            return length == 0 || (length == 1 && *text == '\n');
        case 'A':
        case 'G':
            return atStart;
        case 'Z':
            return length == 0 || (length == 1 && *text == '\n');
        case 'z':
            return length == 0;
        case 'b':
            return atWordBoundary(text, textStart);
        case 'B':
            return !atWordBoundary(text, textStart);
        case kLineStartMarker:
            return atStart || text[-1] == '\n';
        default:
            return false;
    }
}

inline bool positionHolds(int assertion, const Zel8u* text, int length,
                          const RegExpMatchContext& context) {
    return positionHolds(assertion, text, length, context.textStart, context.flags);
}

}  // namespace zel
