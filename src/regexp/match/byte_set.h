// Sets of bytes as 256 bits, and the small cache of sets that a search builds for its bracket
// classes.
#pragma once

#include <stdint.h>

#include "zelchmx.h"

namespace zel {

/// A bit for each number of [base, base + 64) from first to last.
constexpr uint64_t bitsBetween(unsigned first, unsigned last, unsigned base) {
    if (first > last || last < base || first > base + 63) return 0;
    const unsigned low = first > base ? first - base : 0;
    const unsigned high = last - base < 63 ? last - base : 63;
    return (~uint64_t{0} << low) & (~uint64_t{0} >> (63 - high));
}

struct ByteSet {
    uint64_t words[4];

    constexpr bool has(Zel8u byte) const { return (words[byte >> 6] >> (byte & 63)) & 1; }
    constexpr void add(unsigned byte) { words[byte >> 6] |= uint64_t{1} << (byte & 63); }
    /// Adds the bytes from first to last; there may be none, and numbers that are no bytes.
    constexpr void addRange(unsigned first, unsigned last) {
        if (last < 256 && first <= last && first >> 6 == last >> 6) {  // as most ranges are
            words[first >> 6] |=
                (~uint64_t{0} << (first & 63)) & (~uint64_t{0} >> (63 - (last & 63)));
            return;
        }
        for (unsigned w = 0; w < 4; ++w) words[w] |= bitsBetween(first, last, 64 * w);
    }
    constexpr void addAll(const ByteSet& other) {
        for (int w = 0; w < 4; ++w) words[w] |= other.words[w];
    }
    constexpr void invert() {
        for (uint64_t& word : words) word = ~word;
    }
};

/// What is known of a class's characters of two bytes, a word for each of the 32 lead bytes: made
/// when the lead byte has been met `kKnown` times, since few of them are met at all.
struct WideAnswers {
    static constexpr int kKnown = 8;
    Zel8u met[32];
    uint64_t answers[32];

    void clear() {
        for (Zel8u& count : met) count = 0;
    }
};

/// What a bracket class accepts: its one-byte characters as a set, and how to treat the others.
struct ClassSet {
    enum Wide : int { kNoWide, kAllWide, kTestWide };
    ByteSet bytes;
    Wide wide;  // characters of two or more bytes: none, all, or member by member
    // For kTestWide: outside [first, last] all of them are treated alike.
    bool elsewhere;
    Zel32u first;
    Zel32u last;
    WideAnswers* learnt;  // for kTestWide; null where nothing is to be learnt
};

/// The classes that a search has met, looked up by the index of their head node. Filled on first
/// use. Whoever keeps a copy of a set learns together with all others: answers belong to one class
/// for as long as the search lasts, and classes beyond the first few with many characters go
/// without.
struct ClassCache {
    static constexpr int kSize = 8;
    static constexpr int kLearners = 3;
    int key[kSize];  // node index, and the ignore-case flag in bit 30; -1 empty
    ClassSet sets[kSize];
    int learners;
    WideAnswers learnt[kLearners];

    void clear() {
        for (int& k : key) k = -1;
        learners = 0;
    }
    WideAnswers* newLearner() {
        if (learners == kLearners) return nullptr;
        learnt[learners].clear();
        return &learnt[learners++];
    }
};

}  // namespace zel
