// Searches of the matcher that look at neighbouring bytes: a byte of one set before a byte of
// another, the first bytes of several literals, doubled bytes, and the runs of a set.
//
// All of them think in masks of 64 positions, whatever the width of the vectors behind them.
#pragma once

#include "string/kernels/api.h"
#include "string/kernels/byte_class.h"

namespace zel::ZEL_ISA {

constexpr int kMaskBits = 64;

/// Bit i says whether p[i] is in the class, for the first n bytes at p; n may be more than 64.
ZEL_INLINE uint64_t memberBits(const ByteClass& members, const Zel8u* p, ptrdiff_t n) {
    uint64_t bits = 0;
    for (int at = 0; at < kMaskBits; at += ByteClass::kLanes) {
        const ptrdiff_t left = n - at;
        if (left >= ByteClass::kLanes) {
            bits |= members.hits(p + at).mask().bits << at;
        } else {
            if (left <= 0) return bits;
            const int rest = static_cast<int>(left);
            const auto last = members.maskFirst(p + at, rest) & Mask<Zel8u>::firstN(rest);
            return bits | last.bits << at;
        }
    }
    return bits;
}

ZEL_INLINE void markMembers(const Zel8u* p, int len, const uint64_t* set, uint64_t* marks) {
    const ByteClass members = ByteClass::fromWords(set);
    for (ptrdiff_t at = 0; at < len; at += kMaskBits) {
        *marks++ = memberBits(members, p + at, len - at);
    }
}

/// Index of the first set bit of `bitsAt(position, left)`, asked for every 64th position below len.
template <typename BitsAt>
ZEL_INLINE int firstBit(int len, const BitsAt& bitsAt) {
    for (ptrdiff_t at = 0; at < len; at += kMaskBits) {
        const uint64_t bits = bitsAt(at, len - at);
        if (bits != 0) return static_cast<int>(at) + countTrailingZeros(bits);
    }
    return kNotFound;
}

ZEL_INLINE int findPair(const Zel8u* p, int len, const uint64_t* first, const uint64_t* second) {
    const ByteClass a = ByteClass::fromWords(first);
    const ByteClass b = ByteClass::fromWords(second);
    return firstBit(len - 1, [&](ptrdiff_t at, ptrdiff_t left) {
        return memberBits(a, p + at, left) & memberBits(b, p + at + 1, left);
    });
}

/// Bit i says whether p[i] equals p[i + 1], for the first n positions.
ZEL_INLINE uint64_t doubledBits(const Zel8u* p, ptrdiff_t n) {
    constexpr int kLanes = Vec<Zel8u>::kLanes;
    uint64_t bits = 0;
    for (int at = 0; at < kMaskBits && at < n; at += kLanes) {
        const int left = n - at < kLanes ? static_cast<int>(n - at) : kLanes;
        const auto a = Vec<Zel8u>::loadFirst(p + at, left);
        const auto b = Vec<Zel8u>::loadFirst(p + at + 1, left);
        bits |= (Mask<Zel8u>{equalBits(a, b)} & Mask<Zel8u>::firstN(left)).bits << at;
    }
    return bits;
}

ZEL_INLINE int findDoubledIn(const Zel8u* p, int len, const uint64_t* set) {
    const ByteClass members = ByteClass::fromWords(set);
    return firstBit(len - 1, [&](ptrdiff_t at, ptrdiff_t left) {
        const uint64_t doubled = doubledBits(p + at, left);
        return doubled != 0 ? doubled & memberBits(members, p + at, left) : 0;
    });
}

#if defined(ZEL_ISA_AVX512)

/// A table of 256 bytes, looked up for 64 bytes at a time.
struct ByteTable {
    __m512i parts[4];

    explicit ByteTable(const Zel8u* table) {
        for (int i = 0; i < 4; ++i) parts[i] = _mm512_loadu_si512(table + 64 * i);
    }
    ZEL_INLINE __m512i lookUp(__m512i bytes) const {
        const __m512i low = _mm512_permutex2var_epi8(parts[0], bytes, parts[1]);
        const __m512i high = _mm512_permutex2var_epi8(parts[2], bytes, parts[3]);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(bytes), low, high);
    }
};

template <int kDepth>
ZEL_INLINE int findPrefixOfDepth(const Zel8u* p, int len, const kernels::PrefixTables& prefix) {
    const ByteTable tables[3] = {ByteTable(prefix.tables[0]), ByteTable(prefix.tables[1]),
                                 ByteTable(prefix.tables[2])};
    return firstBit(len - kDepth + 1, [&](ptrdiff_t at, ptrdiff_t left) {
        const int n = left < kMaskBits ? static_cast<int>(left) : kMaskBits;
        __m512i found = tables[0].lookUp(Vec<Zel8u>::loadFirst(p + at, n).v);
        for (int i = 1; i < kDepth; ++i) {
            found =
                _mm512_and_si512(found, tables[i].lookUp(Vec<Zel8u>::loadFirst(p + at + i, n).v));
        }
        return _mm512_test_epi8_mask(found, found) & lowBits(n);
    });
}

ZEL_INLINE int findPrefix(const Zel8u* p, int len, const kernels::PrefixTables& prefix) {
    return prefix.depth == 3 ? findPrefixOfDepth<3>(p, len, prefix)
                             : findPrefixOfDepth<2>(p, len, prefix);
}

#else

ZEL_INLINE int findPrefix(const Zel8u* p, int len, const kernels::PrefixTables& prefix) {
    for (int at = 0; at + prefix.depth <= len; ++at) {
        unsigned found = prefix.tables[0][p[at]];
        for (int i = 1; i < prefix.depth && found != 0; ++i) found &= prefix.tables[i][p[at + i]];
        if (found != 0) return at;
    }
    return kNotFound;
}

#endif

/// The sum of n * (n + 1) / 2 over the lengths n of all runs. A run of n ones leaves n - k ones
/// when it is eroded k times, so the sum is that of the ones left after each erosion.
ZEL_INLINE int64_t sumOfRuns(const Zel8u* p, int len, const uint64_t* set) {
    const ByteClass members = ByteClass::fromWords(set);
    int64_t sum = 0;
    int64_t following = 0;  // length of the run that begins the block behind
    for (ptrdiff_t at = (len - 1) & -kMaskBits; at >= 0; at -= kMaskBits) {
        const uint64_t bits = memberBits(members, p + at, len - at);
        if (bits == ~uint64_t{0}) {
            sum += kMaskBits * (kMaskBits + 1) / 2 + kMaskBits * following;
            following += kMaskBits;
            continue;
        }
        for (uint64_t left = bits; left != 0; left &= left >> 1) sum += __builtin_popcountll(left);
        if (bits >> 63 != 0) sum += __builtin_clzll(~bits) * following;
        following = countTrailingZeros(~bits);
    }
    return sum;
}

ZEL_INLINE int collectRuns(const Zel8u* p, int len, const uint64_t* set, ZelRegExpFind* runs,
                           int capacity, int* resume) {
    const ByteClass members = ByteClass::fromWords(set);
    int count = 0;
    ptrdiff_t start = -1;  // of a run that is still open
    const auto close = [&](ptrdiff_t end) {
        runs[count++] = {const_cast<Zel8u*>(p + start), static_cast<int>(end - start)};
        start = -1;
        *resume = static_cast<int>(end);
        return count == capacity;
    };
    *resume = 0;
    for (ptrdiff_t at = 0; at < len; at += kMaskBits) {
        const uint64_t bits = memberBits(members, p + at, len - at);
        uint64_t edges = bits ^ (bits << 1 | static_cast<uint64_t>(start >= 0));
        if (len - at < kMaskBits) edges &= lowBits(static_cast<int>(len - at));
        if (start >= 0 && edges != 0) {
            if (close(at + countTrailingZeros(edges))) return count;
            edges &= edges - 1;
        }
        while (edges != 0) {
            start = at + countTrailingZeros(edges);
            edges &= edges - 1;
            if (edges == 0) break;
            if (close(at + countTrailingZeros(edges))) return count;
            edges &= edges - 1;
        }
    }
    if (start >= 0) close(len);
    return count;
}

}  // namespace zel::ZEL_ISA
