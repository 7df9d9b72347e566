// The light program: a second form of simple patterns that begin at the start of the text, made for
// short texts. Where the object has room behind the text of its literals, the compiler puts one
// there, and the matcher's light walk runs it; the nodes say the same, and are what counts.
//
//   text of the literals | zeros up to a multiple of 8 | LightProgram | sets | operations
//
// Literal text holds no zero byte, so that the first one leads to the program. It is there whenever
// the first node is an assertion that leaves room; a first word of 0 then means that there is no
// program. All places are relative: an object may be copied to another address.
//
// A program is for ASCII texts. Then each character is a byte in either format, and a set of them
// takes 16 bytes.
#pragma once

#include <stdint.h>

#include "regexp/program.h"

namespace zel {

/// A set of ASCII characters, as the kernels take it: bit c >> 4 of byte c & 15.
struct AsciiSet {
    uint64_t words[2];

    constexpr bool has(unsigned c) const { return (words[(c & 15) >> 3] & bitOf(c)) != 0; }
    constexpr void add(unsigned c) { words[(c & 15) >> 3] |= bitOf(c); }
    /// The characters from first to last; those that are not ASCII are left out.
    constexpr void addRange(unsigned first, unsigned last) {
        if (last > 0x7F) last = 0x7F;
        for (; first <= last; first = (first | 15) + 1) {  // those with the same high half
            const unsigned from = first & 15;
            const unsigned behind = (first | 15) <= last ? 16 : (last & 15) + 1;
            const uint64_t bits = uint64_t{0x0101010101010101} << (first >> 4);
            words[0] |= bits & bytesFrom(from) & ~bytesFrom(behind);
            words[1] |=
                bits & bytesFrom(from < 8 ? 0 : from - 8) & ~bytesFrom(behind < 8 ? 0 : behind - 8);
        }
    }
    constexpr void addAll(const AsciiSet& other) {
        words[0] |= other.words[0];
        words[1] |= other.words[1];
    }
    constexpr void invert() {
        words[0] = ~words[0];
        words[1] = ~words[1];
    }
    constexpr bool operator==(const AsciiSet&) const = default;

private:
    static constexpr uint64_t bitOf(unsigned c) {
        return uint64_t{1} << (8 * (c & 7) + ((c >> 4) & 7));
    }
    static constexpr uint64_t bytesFrom(unsigned i) { return i < 8 ? ~uint64_t{0} << (8 * i) : 0; }
};

constexpr bool disjoint(const AsciiSet& a, const AsciiSet& b) {
    return ((a.words[0] & b.words[0]) | (a.words[1] & b.words[1])) == 0;
}

constexpr AsciiSet asciiRanges(const char* firstsAndLasts) {
    AsciiSet set = {};
    for (const char* pair = firstsAndLasts; *pair != '\0'; pair += 2)
        set.addRange(static_cast<unsigned>(pair[0]), static_cast<unsigned>(pair[1]));
    return set;
}
constexpr AsciiSet inverted(AsciiSet set) {
    set.invert();
    return set;
}
inline constexpr AsciiSet kAsciiDigits = asciiRanges("09");
inline constexpr AsciiSet kAsciiWords = asciiRanges("09AZaz__");
inline constexpr AsciiSet kAsciiSpaces = asciiRanges("\t\n\f\r  ");
inline constexpr AsciiSet kAsciiNewLine = asciiRanges("\n\n");

/// What one operation does at the position. Those that can fail say so by "must".
enum LightKind : Zel8u {
    kLightLetter,     // the letter `set` must stand there; behind it
    kLightText,       // `max` bytes from offset `min` of the literals' text must stand there
    kLightOne,        // a member of `set` must stand there
    kLightRun,        // `min` to `max` members of `set`, as many as there are
    kLightRunLetter,  // the same, and behind them the letter `rest` must stand
    kLightGiving,     // the same, but when the rest fails it is tried behind fewer of them
    kLightLazy,       // as few members as there can be
    kLightRaising,    // the same; when it fails, it leaves the whole match longer by what it took
    kLightOptional,   // a group that may be passed over, to go on at operation `min`: because its
                      // body cannot begin in front of what stands there. Else `max` characters and
                      // operations are done with: 1 when the body begins with one character.
    kLightTrying,     // the same, but also passed over when the body or what is behind it fails
    kLightOpen,       // the capture `slot` begins
    kLightClose,      // and ends
    kLightEnd,        // here must be the end, perhaps behind a newline
    kLightVeryEnd,    // the end
    kLightLineEnd,    // the end or a newline
    kLightBoundary,   // a word boundary
    kLightInside,     // no word boundary
    kLightMatch,      // a match
    kLightEndMatch,   // kLightEnd, kLightMatch
};

/// One operation. Sets are given by their numbers. `rest` are the characters that what follows can
/// begin with (of an optional group: it and what follows), kAnything when it may also be nothing.
struct LightOperation {
    static constexpr Zel8u kAnything = 0xFF;
    static constexpr Zel16u kNoLimit = 0xFFFF;

    Zel8u kind;
    Zel8u set;  // of an optional group: how many captures it has
    Zel8u rest;
    Zel8u slot;  // of a run that is all there is in a capture; of a group's first capture
    Zel16u min;
    Zel16u max;
};
static_assert(sizeof(LightOperation) == 8);

struct LightProgram {
    // The lowest byte, the first in memory, is zero.
    static constexpr Zel32u kMark = 0x7A4C7000;
    static constexpr int kMaxSets = 16;
    static constexpr int kMaxChoices = 16;  // operations that may leave a choice behind them

    Zel32u mark;
    Zel8u setCount;
    Zel8u missPrice;   // steps at most, to find out that what follows does not begin somewhere
    Zel16u pathPrice;  // and to go through the program once, with nothing given back

    const AsciiSet* sets() const { return reinterpret_cast<const AsciiSet*>(this + 1); }
    const LightOperation* operations() const {
        return reinterpret_cast<const LightOperation*>(sets() + setCount);
    }
};
static_assert(sizeof(LightProgram) == 8);

/// Whether the object says, behind the text of its literals, if it has a light program: its first
/// node must be an assertion that stands in the pattern.
inline bool mayHaveLightProgram(const ZelRegExpState& state) {
    if (state.nodeCount == 0) return false;
    const Node& first = state.nodes()[0];
    return first.kind == NodePosition && first.value != kLineStartMarker;
}

}  // namespace zel
