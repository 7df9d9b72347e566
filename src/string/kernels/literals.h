// All matches of a literal, or of one of several literals, written down as the records of a search:
// from left to right, without overlaps. A filter looks at many positions at a time, for the two
// rarest bytes of the literal or for what the literals begin with; what it lets through is
// compared.
#pragma once

#include "string/kernels/gather.h"
#include "string/kernels/probes.h"

namespace zel::ZEL_ISA {

/// Places that writePlaces may write without there being any.
constexpr int kSpare = 16;

/// Writes the places of bits, counted from `base`, and up to kSpare more behind them that mean
/// nothing; answers where they end. Mostly there are two or fewer: these are written without asking
/// how many.
ZEL_INLINE Zel16u* writePlaces(uint64_t bits, int base, Zel16u* out) {
    Zel16u* const end = out + __builtin_popcountll(bits);
#if defined(ZEL_ISA_AVX512)
    constexpr int kAtOnce = kSpare;
    static_assert(kAtOnce == 16);
    __m128i lanes[4];
    splitIntoSixteens(compress(bits, laneNumbers()), lanes);
    const __m256i from = _mm256_set1_epi16(static_cast<short>(base));
    for (const __m128i& sixteen : lanes) {
        storeWord(out, _mm256_add_epi16(_mm256_cvtepu8_epi16(sixteen), from));
        out += kAtOnce;
        if (out >= end) [[likely]]
            break;
    }
#else
    constexpr int kPair = 2;
    do {
        const int one = base + countTrailingZeros(bits);
        bits &= bits - 1;
        const int next = base + countTrailingZeros(bits);
        bits &= bits - 1;
        storeWord(out, static_cast<Zel32u>(one | next << 16));
        out += kPair;
    } while (out < end);
#endif
    return end;
}

/// Blocks of positions looked at before the places in them are: so many that it does not count that
/// the end of a loop cannot be guessed.
inline constexpr int kBatchBlocks = 64;

/// Asks for the block one batch further on. The processor does so by itself only while it is not
/// held up by wrong guesses. Behind the end of the text nothing comes of it.
ZEL_INLINE void prefetchNextBatch(const Zel8u* block) {
    __builtin_prefetch(block + kMaskBits * kBatchBlocks);
}

/// Where a match may start, `starts` says in three steps: starts.mayHave(p) whether anywhere in the
/// kGroupBlocks blocks at p; for the 64 positions at p, of which `left` count, starts.likely(p,
/// left) gives bits, and starts.refine(p, left, bits) those of them to look at. `lengthAt(p)` is
/// the length of the match at p, or 0.
template <typename Starts, typename LengthAt>
ZEL_INLINE int collectMatches(const Zel8u* p, ptrdiff_t positions, const Starts& starts,
                              const LengthAt& lengthAt, ZelRegExpFind* matches, int capacity) {
    constexpr ptrdiff_t kBatch = kMaskBits * kBatchBlocks;
    constexpr ptrdiff_t kGroup = kMaskBits * kGroupBlocks;
    constexpr int kRoom = 1024;  // for places
    uint64_t bits[kBatchBlocks];
    Zel16u block[kBatchBlocks];
    Zel16u places[kRoom + kSpare];
    int count = 0;
    const Zel8u* behind = p;  // the last match
    ptrdiff_t from = 0;
    // The first batch ends at a cache line, so that all others begin with one.
    ptrdiff_t size = kBatch - kMaskBits + toBoundary(p);
    for (; from < positions; from += size, size = kBatch) {
        const Zel8u* const batch = p + from;
        const ptrdiff_t left = positions - from < size ? positions - from : size;
        ptrdiff_t at = 0;
        for (; left - at >= kGroup && !starts.mayHave(batch + at); at += kGroup) {
            for (int i = 0; i < kGroupBlocks; ++i) prefetchNextBatch(batch + at + kMaskBits * i);
        }
        // First the blocks that have any, which cannot be guessed, then the places in these.
        int blocks = 0;
        for (; at < left; at += kMaskBits) {
            prefetchNextBatch(batch + at);
            bits[blocks] = starts.likely(batch + at, left - at);
            block[blocks] = static_cast<Zel16u>(at);
            blocks += bits[blocks] != 0;
        }
        for (int i = 0; i < blocks;) {
            Zel16u* end = places;
            do {
                const int base = block[i];
                end = writePlaces(starts.refine(batch + base, left - base, bits[i]), base, end);
            } while (++i < blocks && end <= places + kRoom - kMaskBits);
            for (const Zel16u* place = places; place < end; ++place) {
                // Whether there is a match cannot be guessed either: a record is written anyway.
                const Zel8u* const start = batch + *place;
                const int length = lengthAt(start);
                const bool isMatch = length != 0 && start >= behind;
                ZelRegExpFind refused;
                *(isMatch ? &matches[count] : &refused) = {const_cast<Zel8u*>(start), length};
                behind = isMatch ? start + length : behind;
                count += isMatch;
                if (count == capacity) return count;
            }
        }
    }
    return count;
}

template <typename MakeProbe, typename IsSame>
ZEL_INLINE int collectWithProbes(const Zel8u* p, int len, const Zel8u* literal, int length,
                                 const MakeProbe& probeOf, const IsSame& isSameAs,
                                 ZelRegExpFind* matches, int capacity) {
    const Probes<decltype(probeOf(*literal))> probes(literal, RarePlaces(literal, length), probeOf);
    const auto lengthAt = [&](const Zel8u* at) {
        return isSameAs(at, literal, length) ? length : 0;
    };
    return collectMatches(p, ptrdiff_t{len} - length + 1, probes, lengthAt, matches, capacity);
}

ZEL_INLINE int collectOneLiteral(const Zel8u* p, int len, const kernels::Literal& literal,
                                 bool ignoreCase, ZelRegExpFind* matches, int capacity) {
    if (ignoreCase)
        return collectWithProbes(
            p, len, literal.text, literal.length, [](Zel8u c) { return FoldedByte(c); },
            [](const Zel8u* a, const Zel8u* b, int n) { return isSameFolded(a, b, n); }, matches,
            capacity);
    return collectWithProbes(
        p, len, literal.text, literal.length, [](Zel8u c) { return EqualsAnyOf<Zel8u, 1>::of(&c); },
        [](const Zel8u* a, const Zel8u* b, int n) { return isSame(a, b, n); }, matches, capacity);
}

/// The literals, one bit each, whose heads the text at p begins with.
ZEL_INLINE Zel32u headsAt(const Zel8u* p, const Zel8u* end, const kernels::LiteralSet& set) {
    constexpr int kHeadBytes = 4;
    constexpr int kAtOnce = 4;
    const bool isLast = end - p < kHeadBytes;
    const __m128i bytes = loadUpTo16(p, isLast ? static_cast<int>(end - p) : kHeadBytes);
    const __m128i text = _mm_shuffle_epi32(bytes, 0);
    Zel32u which = 0;
    for (int i = 0; i < set.count; i += kAtOnce) {
        const __m128i heads = loadWord<__m128i>(set.heads + i);
        const __m128i ignored = loadWord<__m128i>(set.ignored + i);
        const __m128i same = _mm_cmpeq_epi32(_mm_or_si128(text, ignored), heads);
        which |= static_cast<Zel32u>(_mm_movemask_ps(_mm_castsi128_ps(same))) << i;
    }
    return which & static_cast<Zel32u>(lowBits(set.count));
}

/// What several literals begin with, for collectMatches.
template <int kDepth>
struct PrefixStarts {
    const PrefixFilter<kDepth> filter;

    /// What several can begin with is not rare.
    ZEL_INLINE bool mayHave(const Zel8u*) const { return true; }
    ZEL_INLINE uint64_t likely(const Zel8u* p, ptrdiff_t left) const {
        return PrefixProbe::kIsQuick && left >= kMaskBits ? filter.likelyStarts(p)
                                                          : filter.starts(p, left);
    }
    ZEL_INLINE uint64_t refine(const Zel8u*, ptrdiff_t, uint64_t bits) const { return bits; }
};

template <int kDepth>
ZEL_INLINE int collectByPrefix(const Zel8u* p, int len, const kernels::LiteralSet& set,
                               ZelRegExpFind* matches, int capacity) {
    const PrefixStarts<kDepth> starts{PrefixFilter<kDepth>(set.prefix)};
    const Zel8u* const end = p + len;
    const auto lengthAt = [&](const Zel8u* at) {
        for (Zel32u which = headsAt(at, end, set); which != 0; which &= which - 1) {
            const kernels::Literal& literal = set.literals[countTrailingZeros(which)];
            if (end - at < literal.length) continue;
            const bool same = set.ignoreCase ? isSameFolded(at, literal.text, literal.length)
                                             : isSame(at, literal.text, literal.length);
            // Mostly there is no other; whether this one is there cannot be guessed.
            const bool isOnly = (which & (which - 1)) == 0;
            if (isOnly) [[likely]]
                return literal.length & -int{same};
            if (same) return literal.length;
        }
        return 0;
    };
    return collectMatches(p, ptrdiff_t{len} - kDepth + 1, starts, lengthAt, matches, capacity);
}

ZEL_INLINE int collectOfSet(const Zel8u* p, int len, const kernels::LiteralSet& set,
                            ZelRegExpFind* matches, int capacity) {
    if (set.count == 1)
        return collectOneLiteral(p, len, set.literals[0], set.ignoreCase, matches, capacity);
    if (set.prefix.depth == 4) return collectByPrefix<4>(p, len, set, matches, capacity);
    if (set.prefix.depth == 3) return collectByPrefix<3>(p, len, set, matches, capacity);
    return collectByPrefix<2>(p, len, set, matches, capacity);
}

}  // namespace zel::ZEL_ISA
