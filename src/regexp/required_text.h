// What the compiler knows about texts that a pattern can match in: some triples of neighbouring
// bytes that each of them holds. Pattern sets, which look for many patterns in one text, pass over
// a pattern whose triples are not all there, see match/text_triples.h.
// It is the first of the notes that notes.h speaks of.
#pragma once

#include "regexp/notes.h"
#include "regexp/program.h"

namespace zel {

inline constexpr int kTripleLength = 3;
inline constexpr int kTripleSlotBits = 10;
inline constexpr int kTripleSlots = 1 << kTripleSlotBits;
// Parts of tripleSlot.
inline constexpr unsigned kTripleCaseMask = 0xDF;
inline constexpr unsigned kTripleFirstFactor = 40503;  // for the first two bytes
inline constexpr unsigned kTripleThirdFactor = 13849;

/// Where to look up a triple in a table of kTripleSlots. ASCII letters are the same in either case,
/// as are some other bytes.
constexpr Zel16u tripleSlot(unsigned a, unsigned b, unsigned c) {
    const unsigned both = (a & kTripleCaseMask) | (b & kTripleCaseMask) << 8;
    const unsigned hash = both * kTripleFirstFactor + (c & kTripleCaseMask) * kTripleThirdFactor;
    return static_cast<Zel16u>(static_cast<Zel16u>(hash) >> (16 - kTripleSlotBits));
}

struct RequiredText {
    static constexpr Zel8u kMark = 0x7B;
    static constexpr int kSlots = 4;
    static constexpr int kMostRuns = 3;

    Zel8u zero;
    Zel8u mark;
    // Where one of the triples is missing, a search of n bytes ends without a match after at most
    // steps * (n + 1) ^ runs steps.
    Zel8u runs;
    Zel8u steps;
    Zel8u slots[kSlots][2];
    // A literal that they are from, in the text of the literals; of no length where there is none
    // that a text can be searched for as it is.
    Zel8u literal;
    Zel8u literalLength;

    /// Where the next note is.
    const Zel8u* end() const { return &zero + sizeof *this; }
};
static_assert(sizeof(RequiredText) == 14);

/// What the pattern requires; null when that is not known.
inline const RequiredText* findRequiredText(const ZelRegExpState& state) {
    if (!mayHaveNotes(state)) return nullptr;
    const auto* note = reinterpret_cast<const RequiredText*>(findNotes(state));
    return note->mark == RequiredText::kMark ? note : nullptr;
}

}  // namespace zel
