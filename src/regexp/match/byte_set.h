// Sets of bytes as 256 bits, and the small cache of sets that a search builds for its bracket
// classes.
#pragma once

#include <stdint.h>

#include "zelchmx.h"

namespace zel {

struct ByteSet {
    uint64_t words[4];

    constexpr bool has(Zel8u byte) const { return (words[byte >> 6] >> (byte & 63)) & 1; }
    constexpr void add(unsigned byte) { words[byte >> 6] |= uint64_t{1} << (byte & 63); }
    constexpr void addRange(unsigned first, unsigned last) {
        for (unsigned byte = first; byte <= last; ++byte) add(byte);
    }
    constexpr void invert() {
        for (uint64_t& word : words) word = ~word;
    }
};

/// What a bracket class accepts: its one-byte characters as a set, and how to treat the others.
struct ClassSet {
    enum Wide : int { kNoWide, kAllWide, kTestWide };
    ByteSet bytes;
    Wide wide;  // characters of two or more bytes: none, all, or member by member
};

/// The classes that a search has met, looked up by the index of their head node. Filled on first
/// use.
struct ClassCache {
    static constexpr int kSize = 8;
    int key[kSize];  // node index, and the ignore-case flag in bit 30; -1 empty
    ClassSet sets[kSize];

    void clear() {
        for (int& k : key) k = -1;
    }
};

}  // namespace zel
