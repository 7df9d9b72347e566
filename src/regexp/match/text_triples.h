// A cheap reject for pattern sets: a short text that many patterns are looked for in is looked at
// once, and a pattern whose matches all hold what the text does not hold needs no search.
#pragma once

#include "regexp/required_text.h"

namespace zel {

/// Which triples of neighbouring bytes a text holds.
class TextTriples {
public:
    /// Longer texts hold too many to reject much, and a few patterns are searched for as quickly.
    /// Then nothing is excluded.
    static constexpr int kLongestText = 1024;
    static constexpr int kFewestPatterns = 6;

    TextTriples(const Zel8u* text, int length, int patterns);

    /// Whether a search of the text must end without a match and within the budget, as can be seen
    /// from what every match holds and the text does not.
    bool surelyExclude(const ZelRegExpState& state) const {
        const RequiredText* const required = findRequiredText(state);
        return required != nullptr &&
               required->steps * powers_[required->runs] <= state.matchLimit && !mayHold(*required);
    }

private:
    bool mayHold(const RequiredText& required) const {
        int all = 1;
        for (const Zel8u* slot : required.slots) {  // one branch for all of them
            Zel16u number;
            __builtin_memcpy(&number, slot, sizeof number);
            all &= present_[number];
        }
        return all != 0;
    }

    // Of the text's length and one; beyond every budget where the triples are not known.
    int64_t powers_[RequiredText::kMostRuns + 1];
    Zel8u present_[kTripleSlots];
};

}  // namespace zel
