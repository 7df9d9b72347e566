// All matches of a literal, a run of bytes of a set behind it, and perhaps another literal behind
// that, written down as the records of a search: numbers with a prefix, values behind a key, tags
// with their ends.
#pragma once

#include "string/kernels/literals.h"
#include "string/kernels/same.h"

namespace zel::ZEL_ISA {

/// The match at a place of the opening literal, and what it costs to look for it.
class EnclosedAttempt {
public:
    EnclosedAttempt(const kernels::EnclosedRun& run, const Zel8u* start, const Zel8u* end,
                    int64_t budget)
        : run_(run),
          others_{ByteClass::fromWords(run.set)},
          start_(start),
          end_(end),
          budget_(budget),
          behind_(start) {}

    bool isOutOfBudget() const { return budget_ < 0; }

    /// The match's length, 0 when there is none, or none that begins behind the match before.
    ZEL_INLINE int lengthAt(const Zel8u* at) {
        if (at < behind_ || budget_ < 0 || !opensAt(at)) return 0;
        const Zel8u* stop = at + run_.openLength;
        const bool isLongEnough = run_.min == 0 || (stop < end_ && isFirst(*stop));
        if (isLongEnough) {
            stop += run_.min;
            stop = runEnd(stop);
        }
        const ptrdiff_t length = stop + run_.closeLength - at;
        budget_ -= run_.nodes + length * run_.price;
        if (!isLongEnough || !closesAt(stop)) return 0;
        behind_ = at + length;
        return static_cast<int>(length);
    }

private:
    ZEL_INLINE bool isFirst(Zel8u byte) const { return run_.first[byte >> 6] >> (byte & 63) & 1; }
    ZEL_INLINE bool opensAt(const Zel8u* at) const {
        if (run_.atLineStart && at != start_ && at[-1] != '\n') return false;
        // Of a literal of two bytes the probes have seen everything.
        return run_.openLength <= 2 || isSame(at, run_.open, run_.openLength);
    }
    /// Where the run that begins at `stop` ends; most are short.
    ZEL_INLINE const Zel8u* runEnd(const Zel8u* stop) const {
        const int left = static_cast<int>(end_ - stop);
        if (left >= NotInClass::kLanes) [[likely]] {
            const Mask<Zel8u> others = others_.hits(stop).mask();
            if (others.any()) return stop + others.first();
        }
        const int length = firstHit(stop, left, others_);
        return stop + (length == kNotFound ? left : length);
    }
    ZEL_INLINE bool closesAt(const Zel8u* stop) const {
        if (run_.toLineEnd) return stop == end_ || *stop == '\n';
        if (end_ - stop < run_.closeLength) return false;
        if (run_.closeLength == 1) return *stop == *run_.close;
        return isSame(stop, run_.close, run_.closeLength);
    }

    const kernels::EnclosedRun& run_;
    const NotInClass others_;
    const Zel8u* const start_;
    const Zel8u* const end_;
    int64_t budget_;
    const Zel8u* behind_;  // the last match
};

ZEL_INLINE int collectEnclosed(const Zel8u* p, int len, const kernels::EnclosedRun& run,
                               ZelRegExpFind* matches, int capacity, int64_t budget) {
    const auto probeOf = [](Zel8u c) { return EqualsAnyOf<Zel8u, 1>::of(&c); };
    const Probes<EqualsAnyOf<Zel8u, 1>> probes(run.open, RarePlaces(run.open, run.openLength),
                                               probeOf);
    EnclosedAttempt attempt(run, p, p + len, budget);
    const auto lengthAt = [&](const Zel8u* at) { return attempt.lengthAt(at); };
    const ptrdiff_t positions = ptrdiff_t{len} - run.openLength + 1;
    const int count =
        collectMatches(p, positions, ProbedStarts(probes), lengthAt, matches, capacity);
    return attempt.isOutOfBudget() ? -1 : count;
}

}  // namespace zel::ZEL_ISA
