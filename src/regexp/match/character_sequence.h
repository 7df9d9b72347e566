// Patterns that are nothing but a few characters in a row, the last of which may repeat: `[а-яё]+`,
// `\p{Lu}\p{Ll}+`, `.{8}`. There is one way to match such a pattern at a position, so all matches
// in UTF-8 text can be collected without the engine. No attempt costs more steps than the pattern
// has parts, and no text has more attempts than bytes and two.
#pragma once

#include "regexp/match/byte_set.h"
#include "regexp/match/stack_guard.h"
#include "regexp/program.h"
#include "string/kernels/api.h"

namespace zel {

class CharacterSequence {
public:
    static constexpr int kMaxParts = kernels::CharacterPattern::kMaxParts;

    /// Reads the pattern; false when it is of another kind or matches no UTF-8 text.
    bool read(const ZelRegExpState& state);

    /// What an attempt costs at most.
    int price() const { return count_; }

    /// Writes the matches in [start, end), in order, until there are `capacity` of them; answers
    /// how many. `start` is where the text begins.
    int collect(const Zel8u* start, const Zel8u* end, ZelRegExpFind* results, int capacity) const;

private:
    struct Part {
        const Node* node;
        ByteSet first;  // what its characters can begin with
        ClassSet set;
        WideAnswers learnt;
        int min;
        int max;
    };
    bool readPart(const Node& node);
    const Zel8u* matchAt(const Zel8u* text, const Zel8u* end) const;
    void makePattern(kernels::CharacterPattern& pattern) const;

    int count_ = 0;
    Zel32u flags_ = 0;
    Part parts_[kMaxParts];
};

}  // namespace zel
