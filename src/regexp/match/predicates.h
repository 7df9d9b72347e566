// Class shorthands: which bytes \d \D \s \S \w \W and the dot accept.
//
// A predicate takes a byte and returns a value that is not negative exactly when the byte is
// accepted; it computes without branches: a range test is the sign of (c - low) | (high - c), an
// equality test the sign of -(c ^ k). For a character of several bytes the Unicode forms look at
// its first byte alone, which is 0xC0 or above; there the byte predicates give the same answers
// (never a digit, space or word character), so one set of bytes per shorthand serves both. The sets
// are what the matcher uses.
#pragma once

#include "regexp/match/byte_set.h"

namespace zel {

using Predicate = int(int c);

constexpr int inRange(int c, int low, int high) {
    return (c - low) | (high - c);
}
constexpr int isEqual(int c, int k) {
    return -(c ^ k);
}

// A conjunction of signs: negative only when every test is.
constexpr int ownsIsItDigit(int c) {
    return inRange(c, '0', '9');
}
constexpr int ownsIsItWord(int c) {
    return inRange(c, '0', '9') & inRange(c, 'A', 'Z') & inRange(c, 'a', 'z') & isEqual(c, '_');
}
constexpr int ownsIsItSpace(int c) {  // 0x0B is not a space
    return isEqual(c, 0x09) & isEqual(c, 0x0A) & isEqual(c, 0x0C) & isEqual(c, 0x0D) &
           isEqual(c, 0x20);
}
constexpr int ownsIsItNewLineNot(int c) {
    return ~isEqual(c, 0x0A);
}
constexpr int ownsIsItAnyThing(int) {
    return 0;
}
constexpr int ownsIsItAnyThingNot(int) {
    return -1;
}
constexpr int ownsIsItDigitNot(int c) {
    return ~ownsIsItDigit(c);
}
constexpr int ownsIsItSpaceNot(int c) {
    return ~ownsIsItSpace(c);
}
constexpr int ownsIsItWordNot(int c) {
    return ~ownsIsItWord(c);
}

/// The predicate of a shorthand letter; a letter without one accepts nothing.
constexpr Predicate* ownsNodeLetterRangeChange(int letter, bool dotAll) {
    switch (letter) {
        case 'd':
            return ownsIsItDigit;
        case 'D':
            return ownsIsItDigitNot;
        case 's':
            return ownsIsItSpace;
        case 'S':
            return ownsIsItSpaceNot;
        case 'w':
            return ownsIsItWord;
        case 'W':
            return ownsIsItWordNot;
        case '.':
            return dotAll ? ownsIsItAnyThing : ownsIsItNewLineNot;
        default:
            return ownsIsItAnyThingNot;
    }
}

constexpr ByteSet bytesAccepted(Predicate* predicate) {
    ByteSet set = {};
    for (int c = 0; c < 256; ++c) {
        if (predicate(c) >= 0) set.add(static_cast<unsigned>(c));
    }
    return set;
}

inline constexpr ByteSet kDigitBytes = bytesAccepted(ownsNodeLetterRangeChange('d', false));
inline constexpr ByteSet kDigitNotBytes = bytesAccepted(ownsNodeLetterRangeChange('D', false));
inline constexpr ByteSet kSpaceBytes = bytesAccepted(ownsNodeLetterRangeChange('s', false));
inline constexpr ByteSet kSpaceNotBytes = bytesAccepted(ownsNodeLetterRangeChange('S', false));
inline constexpr ByteSet kWordBytes = bytesAccepted(ownsNodeLetterRangeChange('w', false));
inline constexpr ByteSet kWordNotBytes = bytesAccepted(ownsNodeLetterRangeChange('W', false));
inline constexpr ByteSet kNewLineNotBytes = bytesAccepted(ownsNodeLetterRangeChange('.', false));
inline constexpr ByteSet kAnyThingBytes = bytesAccepted(ownsNodeLetterRangeChange('.', true));
inline constexpr ByteSet kNoBytes = bytesAccepted(ownsNodeLetterRangeChange('\0', false));

/// The bytes, as whole characters or as first bytes of one, that a shorthand accepts.
constexpr const ByteSet& shorthandBytes(int letter, Zel32u flags) {
    switch (letter) {
        case 'd':
            return kDigitBytes;
        case 'D':
            return kDigitNotBytes;
        case 's':
            return kSpaceBytes;
        case 'S':
            return kSpaceNotBytes;
        case 'w':
            return kWordBytes;
        case 'W':
            return kWordNotBytes;
        case '.':
            return flags & 1 ? kAnyThingBytes : kNewLineNotBytes;
        default:
            return kNoBytes;
    }
}

constexpr bool isAsciiLetter(Zel8u c) {
    return static_cast<Zel8u>((c | 0x20) - 'a') <= 'z' - 'a';
}

/// The one rule for comparing a text byte with a pattern byte: ignoring case, a text byte that is
/// an ASCII letter may differ in bit 0x20; any other text byte must be equal.
constexpr bool sameByte(Zel8u text, Zel8u pattern, bool ignoreCase) {
    if (text == pattern) return true;
    return ignoreCase && isAsciiLetter(text) && (text ^ pattern) == 0x20;
}

}  // namespace zel
