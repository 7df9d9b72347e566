// The light program: a second form of simple patterns that begin at the start of the text, made for
// short texts. Where the object has room behind the text of its literals, the compiler puts one
// there, and the matcher's light walk runs it; the nodes say the same, and are what counts. It is
// the last of the notes that notes.h speaks of.
//
//   LightProgram | its own sets | operations
//
// Room is scarce, as little as 24 bytes where each byte of the pattern became a node. So everything
// in a program is bytes, and operations are of different sizes.
//
// A program is for short ASCII texts. Then each character is a byte in either format, and a set of
// them takes 16 bytes.
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

/// The sets of the shorthands, in the order of their letters. They have numbers of their own, from
/// kFirstShorthand on, and take no room in a program.
inline constexpr char kShorthandLetters[] = "dDsSwW.";
inline constexpr int kShorthands = 7;
inline constexpr AsciiSet kShorthandSets[kShorthands] = {
    kAsciiDigits, inverted(kAsciiDigits), kAsciiSpaces,           inverted(kAsciiSpaces),
    kAsciiWords,  inverted(kAsciiWords),  inverted(kAsciiNewLine)};

/// What one operation does at the position. Those that can fail say so by "must". In front of each
/// its size in bytes: those of LightOperation that it has.
enum LightKind : Zel8u {
    kLightLetter,     // 2  the letter `set` must stand there; behind it
    kLightOne,        // 2  a member of `set` must stand there
    kLightOpen,       // 2  the capture `set` begins
    kLightClose,      // 2  and ends
    kLightText,       // 3  `rest` bytes from offset `set` of the literals' text must stand there
    kLightRun,        // 6  `min` to `max` members of `set`, as many as there are
    kLightRunLetter,  // 6  the same, and behind them the letter `rest` must stand
    kLightGiving,     // 6  the same as kLightRun, but when what follows fails it is tried behind
                      //    fewer of them
    kLightLazy,       // 6  as few members as there can be
    kLightRaising,   // 6  the same; when it fails, it leaves the whole match longer by what it took
    kLightOptional,  // 6  a group, or an alternative in front of others, that may be passed over,
                     //    to go on `min` bytes further: because its body cannot begin in front of
                     //    what stands there. Else `max` bytes further, and when that is not 0, one
                     //    character.
    kLightTrying,    // 6  the same, but also passed over when the body or what follows fails
    kLightLeave,     // 6  the end of an alternative: passes over those behind it
    kLightEnd,       // 1  here must be the end, perhaps behind a newline
    kLightVeryEnd,   // 1  the end
    kLightLineEnd,   // 1  the end or a newline
    kLightBoundary,  // 1  a word boundary
    kLightInside,    // 1  no word boundary
    kLightMatch,     // 1  a match
    kLightEndMatch,  // 1  kLightEnd, kLightMatch
};

/// One operation, as far as its kind has it. Sets are given by their numbers. `rest` are the
/// characters that what follows can begin with (of what may be passed over: itself and what
/// follows), kAnything when it may also be nothing.
struct LightOperation {
    static constexpr Zel8u kAnything = 0xFF;
    static constexpr Zel8u kNoLimit = 0xFF;  // no text is longer

    Zel8u kind;
    Zel8u set;  // of what may be passed over: how many captures are in it
    Zel8u rest;
    Zel8u
        slot;  // of a run that is all there is in a capture; of the first capture in a group; or 0
    Zel8u min;
    Zel8u max;

    static constexpr Zel8u sizeOf(Zel8u kind) {
        return kind < kLightText ? 2 : kind == kLightText ? 3 : kind < kLightEnd ? kLargest : 1;
    }
    static constexpr Zel8u kLargest = 6;
    /// What stands so many bytes further.
    const LightOperation* further(int bytes) const {
        return reinterpret_cast<const LightOperation*>(&kind + bytes);
    }
    /// What stands behind an operation, which is known to be as large as those of the kind.
    template <LightKind known>
    const LightOperation* behind() const {
        return further(sizeOf(known));
    }
};
static_assert(sizeof(LightOperation) == LightOperation::kLargest);

struct LightProgram {
    static constexpr Zel8u kMark = 0x7A;
    static constexpr int kFirstShorthand = 9;  // and the largest number of other sets
    static constexpr int kMaxChoices = 16;     // operations that may leave a choice behind them

    Zel8u zero;
    Zel8u mark;
    Zel8u setCount;
    Zel8u shorthands;  // which of them it uses, a bit for each
    Zel8u missPrice;   // steps at most, to find out that what follows does not begin somewhere

    const Zel8u* sets() const { return &zero + sizeof *this; }
    const LightOperation* operations() const {
        return reinterpret_cast<const LightOperation*>(sets() + setCount * sizeof(AsciiSet));
    }
};
static_assert(sizeof(LightProgram) == 5);

/// Whether the first node is an assertion that stands in the pattern.
inline bool mayHaveLightProgram(const ZelRegExpState& state) {
    if (state.nodeCount == 0) return false;
    const Node& first = state.nodes()[0];
    return first.kind == NodePosition && first.value != kLineStartMarker;
}

}  // namespace zel
