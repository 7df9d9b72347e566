// Places worth a look in a text, gathered some blocks at a time: what comes every few bytes is not
// worth a search of its own, and what is rare is still found at the pace of the kernels.
#pragma once

#include "string/kernels/api.h"

namespace zel {

class Places {
public:
    /// Forgets what was gathered.
    void clear() {
        begin_ = scanned_ = nullptr;
        gathered_.blocks = 0;
        gathered_.groups = 2;
    }

    /// The first of the places that `gather(position, length, &gathered)` finds which is not in
    /// front of `from`, `end` when there is none. Each question is about the same or a later part
    /// of the text than the one before.
    template <typename Gather>
    const Zel8u* next(const Zel8u* from, const Zel8u* end, const Gather& gather) {
        using kernels::Gathered;
        for (;;) {
            if (const Zel8u* place = gatheredFrom(from); place != nullptr) return place;
            if (from < scanned_) from = scanned_;
            if (from >= end) return end;
            gather(from, static_cast<int>(end - from), &gathered_);
            begin_ = from + gathered_.begin;
            scanned_ = from + gathered_.scanned;
            // Who comes back for more will want many.
            if (gathered_.groups < Gathered::kBlocks / Gathered::kGroup) gathered_.groups *= 2;
        }
    }

    /// The same, if that place has been gathered already; else null.
    const Zel8u* gatheredFrom(const Zel8u* from) const {
        const ptrdiff_t at = from > begin_ ? from - begin_ : 0;
        const ptrdiff_t block = at / kPositions;
        if (block >= gathered_.blocks) return nullptr;
        const uint64_t bits = gathered_.bits[block] >> (at % kPositions);
        if (bits != 0) return begin_ + at + __builtin_ctzll(bits);
        const uint64_t behind = gathered_.filled & ~uint64_t{1} << block;
        if (behind == 0) return nullptr;
        const int filled = __builtin_ctzll(behind);
        return begin_ + kPositions * filled + __builtin_ctzll(gathered_.bits[filled]);
    }

private:
    static constexpr ptrdiff_t kPositions = 64;  // in a block

    kernels::Gathered gathered_;
    const Zel8u* begin_;    // the position of the first bit
    const Zel8u* scanned_;  // as far as was looked, null before that
};

}  // namespace zel
