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
        seen_ = gathered_.count = 0;
        gathered_.groups = kFewGroups;
    }

    /// The first of the places that `gather(position, length, &gathered)` finds which is not in
    /// front of `from`, `end` when there is none. Each question is about the same or a later part
    /// of the text than the one before.
    template <typename Gather>
    const Zel8u* next(const Zel8u* from, const Zel8u* end, const Gather& gather) {
        for (;;) {
            for (; seen_ < gathered_.count; ++seen_) {
                const Zel8u* place = begin_ + gathered_.offsets[seen_];
                if (place >= from) return place;
            }
            const Zel8u* at = from > scanned_ ? from : scanned_;
            if (at >= end) return end;
            gather(at, static_cast<int>(end - at), &gathered_);
            // Who has come back for more will want many.
            if (gathered_.groups < kernels::Gathered::kMostGroups) gathered_.groups *= 2;
            scanned_ = at + gathered_.scanned;
            begin_ = at + gathered_.begin;
            seen_ = 0;
        }
    }

private:
    static constexpr int kFewGroups = 2;

    kernels::Gathered gathered_;
    const Zel8u* begin_;    // where the offsets gathered count from
    const Zel8u* scanned_;  // as far as was looked, null before that
    int seen_;              // how many of the places lie behind
};

}  // namespace zel
