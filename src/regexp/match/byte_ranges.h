// A set of bytes as a few ranges, so that sixteen bytes of text are compared with all of it at
// once. Nearly every class that people write is a few ranges, or all but a few.
#pragma once

#include <emmintrin.h>

#include "regexp/match/byte_set.h"

namespace zel {

class ByteRanges {
public:
    static constexpr int kMost = 6;
    static constexpr int kWidth = 16;

    /// False when neither the set nor what it leaves out is so few ranges.
    bool describe(const ByteSet& set);

    /// A bit for each of the kWidth bytes at `text` that is not in the set.
    unsigned outside(const Zel8u* text) const {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
        __m128i hits = _mm_setzero_si128();
        for (int i = 0; i < count_; ++i) {
            const __m128i distance = _mm_sub_epi8(bytes, _mm_set1_epi64x(first_[i]));
            const __m128i inside = _mm_min_epu8(distance, _mm_set1_epi64x(span_[i]));
            hits = _mm_or_si128(hits, _mm_cmpeq_epi8(inside, distance));
        }
        return static_cast<unsigned>(_mm_movemask_epi8(hits)) ^ ifMembers_;
    }

private:
    bool addRanges(const ByteSet& set);

    int count_;
    unsigned ifMembers_;    // all bits, when the ranges are of members
    int64_t first_[kMost];  // each eight times the same byte
    int64_t span_[kMost];
};

}  // namespace zel
