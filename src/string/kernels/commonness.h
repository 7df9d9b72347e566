// A guess, made without looking at the text, how common an element is in texts of all kinds: prose,
// source code, records, binary data. It only steers which element a search looks for first.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

struct CommonnessTable {
    Zel8u of[256];
};

/// The bytes of the list from the most common one down; every other byte is taken to be rare.
constexpr CommonnessTable makeCommonnessTable() {
    constexpr char kCommonFirst[] =
        " etaoinsrhldcumfpgwybvk\n.,0123456789_-\"'()/;:=x\r\tTSAICMPBEDRLNFjqz*<>{}[]HWGOUJKVYXQZ";
    CommonnessTable table{};
    int rank = 255;
    for (const char c : kCommonFirst) {
        if (c != 0) table.of[static_cast<Zel8u>(c)] = static_cast<Zel8u>(rank--);
    }
    // In UTF-8 most characters of a text begin with one of a few bytes.
    for (int c = 0x80; c < 0x100; ++c) table.of[c] = c < 0xC0 ? 50 : 100;
    table.of[0] = 255;
    table.of[0xFF] = 200;
    return table;
}

inline constexpr CommonnessTable kCommonness = makeCommonnessTable();

/// Units beyond the bytes count as rare.
constexpr int commonness(unsigned element) {
    return element < 256 ? kCommonness.of[element] : 0;
}

ZEL_INLINE bool isLatinLetter(Zel8u c) {
    return static_cast<unsigned>((c | 0x20) - 'a') < 26;
}

/// The places of the two rarest bytes of a needle, of its first few, letters in their small form;
/// and one place more, as far from its beginning as there is one.
struct RarePlaces {
    ptrdiff_t first = 0;
    ptrdiff_t second = 0;
    ptrdiff_t third;

    ZEL_INLINE RarePlaces(const Zel8u* needle, int len) {
        constexpr int kFew = 16;
        constexpr int kNever = 256;
        int rank = kNever;
        int secondRank = kNever;
        for (int at = 0; at < len && at < kFew; ++at) {
            const Zel8u byte = needle[at];
            const int next = commonness(isLatinLetter(byte) ? byte | 0x20u : byte);
            if (next < rank) {
                second = first;
                secondRank = rank;
                first = at;
                rank = next;
            } else if (next < secondRank) {
                second = at;
                secondRank = next;
            }
        }
        const ptrdiff_t last = len - 1;
        third = first != last && second != last ? last : 0;
    }
};

}  // namespace zel::ZEL_ISA
