// A cheap reject for pattern sets: a short text that many patterns are looked for in is looked at
// once, and a pattern whose matches all hold a literal that the text does not hold needs no search.
#pragma once

#include "regexp/program.h"

namespace zel {

/// Which pairs of neighbouring bytes a text holds at even offsets. Wherever a literal of three
/// bytes or more stands, either its pairs at even offsets are among them or those at odd offsets
/// are.
class TextPairs {
public:
    /// Longer texts hold too many pairs to reject much.
    static constexpr int kLongestText = 2048;
    static constexpr int kShortestLiteral = 3;

    TextPairs(const Zel8u* text, int length);

    /// False only when the text does not hold the literal, of at least kShortestLiteral bytes.
    bool mayHold(const Zel8u* literal, int length) const {
        return hasPairs(literal, literal + length) || hasPairs(literal + 1, literal + length);
    }
    int textLength() const { return length_; }

private:
    static constexpr int kSlotBits = 10;
    static constexpr unsigned kFactor = 40503;

    static unsigned slotOf(const Zel8u* pair) {
        Zel16u both;
        __builtin_memcpy(&both, pair, sizeof both);
        return static_cast<Zel16u>(both * kFactor) >> (16 - kSlotBits);
    }
    bool hasPairs(const Zel8u* from, const Zel8u* end) const {
        for (; end - from >= 2; from += 2) {
            if (present_[slotOf(from)] == 0) return false;
        }
        return true;
    }

    const int length_;
    Zel8u present_[1 << kSlotBits];
};

/// Whether a search of the text must end without a match and within the budget, as can be seen from
/// a literal that every match holds and the text does not.
bool surelyFindsNothing(const ZelRegExpState& state, const TextPairs& pairs);

}  // namespace zel
