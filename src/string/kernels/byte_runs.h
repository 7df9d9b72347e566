// The runs of a set's bytes: what they sum up to, and where they are.
//
// Both think in masks of 64 positions, whatever the width of the vectors behind them.
#pragma once

#include "string/kernels/api.h"
#include "string/kernels/byte_class.h"

namespace zel::ZEL_ISA {

constexpr int kMaskBits = 64;

/// Bit i says whether p[i] is in the class, for the first n bytes at p; n may be more than 64.
template <typename Class>
ZEL_INLINE uint64_t memberBits(const Class& members, const Zel8u* p, ptrdiff_t n) {
    uint64_t bits = 0;
    for (int at = 0; at < kMaskBits; at += Class::kLanes) {
        const ptrdiff_t left = n - at;
        if (left >= Class::kLanes) {
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

/// The same of two classes, loading the bytes once.
template <typename Class>
ZEL_INLINE void memberBitsOfBoth(const Class& a, const Class& b, const Zel8u* p, ptrdiff_t n,
                                 uint64_t (&bits)[2]) {
    bits[0] = bits[1] = 0;
    for (int at = 0; at < kMaskBits && at < n; at += Class::kLanes) {
        const ptrdiff_t left = n - at;
        const int count = left < Class::kLanes ? static_cast<int>(left) : Class::kLanes;
        const auto text =
            left < Class::kLanes ? Vec<Zel8u>::loadFirst(p + at, count) : Vec<Zel8u>::load(p + at);
        const auto lanes = Mask<Zel8u>::firstN(count);
        bits[0] |= inGeneralRegister((a.maskOf(text) & lanes).bits) << at;
        bits[1] |= inGeneralRegister((b.maskOf(text) & lanes).bits) << at;
    }
}

/// The ones of a word weighed: at least the sum of n * (n + 1) / 2 over its runs of n ones, and
/// less than twice as much. A run leaves n - k ones when it is eroded k times, and the sum is that
/// of the ones left after each erosion; here these are counted before every doubling of k only.
ZEL_INLINE int64_t weighRuns(uint64_t bits) {
    int64_t sum = __builtin_popcountll(bits);
    for (int k = 1; k < kMaskBits; k *= 2) {
        bits &= bits >> k;
        sum += int64_t{2 * k} * __builtin_popcountll(bits);
    }
    return sum;
}

ZEL_INLINE int64_t boundOfRuns(const Zel8u* p, int len, const uint64_t* set) {
    const ByteClass members = ByteClass::fromWords(set);
    int64_t sum = 0;
    int64_t preceding = 0;  // length of the run that ends the block before
    for (ptrdiff_t at = 0; at < len; at += kMaskBits) {
        const uint64_t bits = memberBits(members, p + at, len - at);
        if (bits == ~uint64_t{0}) {
            sum += kMaskBits * (kMaskBits + 1) / 2 + kMaskBits * preceding;
            preceding += kMaskBits;
            continue;
        }
        sum += weighRuns(bits) + countTrailingZeros(~bits) * preceding;
        preceding = countLeadingZeros(~bits);
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
