// Places worth a look in a text, gathered some blocks at a time: what comes every few bytes is not
// worth a search of its own, and what is rare is still found at the pace of the kernels.
#pragma once

#include "string/kernels/api.h"

namespace zel {

class Places {
public:
    /// Forgets what was gathered.
    void clear() {
        scanned_ = begin_ = nullptr;
        blocksSeen_ = gathered_.blocks = 0;
    }

    /// The first of the places that `gather(position, length, &gathered)` finds which is not in
    /// front of `from`, `end` when there is none. Each question is about the same or a later part
    /// of the text than the one before.
    template <typename Gather>
    const Zel8u* next(const Zel8u* from, const Zel8u* end, const Gather& gather) {
        constexpr int kBits = 64;
        for (;;) {
            if (begin_ != nullptr && from > begin_)
                blocksSeen_ = static_cast<int>(from - begin_) / kBits;
            for (; blocksSeen_ < gathered_.blocks; ++blocksSeen_) {
                const Zel8u* block = begin_ + kBits * blocksSeen_;
                uint64_t bits = gathered_.bits[blocksSeen_];
                if (from > block) bits = bits >> (from - block) << (from - block);
                if (bits != 0) return block + __builtin_ctzll(bits);
            }
            const Zel8u* at = from > scanned_ ? from : scanned_;
            if (at >= end) return end;
            gather(at, static_cast<int>(end - at), &gathered_);
            scanned_ = at + gathered_.scanned;
            begin_ = at + gathered_.begin;
            blocksSeen_ = 0;
        }
    }

private:
    kernels::Gathered gathered_;
    const Zel8u* begin_;    // where the masks gathered begin, null when there are none yet
    const Zel8u* scanned_;  // and as far as they go
    int blocksSeen_;        // how many of them lie behind
};

}  // namespace zel
