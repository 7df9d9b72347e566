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

/// Where a match may start, `starts` says: after starts.begin(p, left), of the blocks from p on, of
/// which `left` positions count, starts.likely(p, n) gives bits for the first n of the 64 positions
/// at p, one block after the other, and starts.refine(p, left, bits) those of them to look at,
/// which is asked only where there are many. What it reads first of a position is starts.ahead
/// behind it.
///
/// This passes over blocks, two at a time, while they have none, and answers where it stopped.
/// Nothing is stored meanwhile and nothing guessed wrong, so that far text comes as fast as it can
/// be had.
template <typename Starts>
ZEL_INLINE ptrdiff_t passQuietText(const Zel8u* p, ptrdiff_t from, ptrdiff_t positions,
                                   Starts& starts) {
    constexpr int kBlocks = 2;
    // Not every batch ends with a whole block: what is carried on from one that is not is wrong.
    starts.begin(p + from, positions - from);
    for (; positions - from >= kBlocks * kMaskBits; from += kBlocks * kMaskBits) {
        uint64_t any = 0;
        for (int i = 0; i < kBlocks; ++i) {
            const Zel8u* const block = p + from + i * kMaskBits;
            prefetchText<kBridge>(block + starts.ahead);
            any |= starts.likely(block, kMaskBits);
        }
        if (any != 0) break;
    }
    return from;
}

/// The matches from left to right. `lengthAt(p)` is the length of the match at p, or 0.
template <typename Starts, typename LengthAt>
ZEL_INLINE int collectMatches(const Zel8u* p, ptrdiff_t positions, Starts starts,
                              const LengthAt& lengthAt, ZelRegExpFind* matches, int capacity) {
    // Blocks of positions looked at before the places in them are: so many that it does not count
    // that the end of a loop cannot be guessed, and no more than there are bits in a word.
    constexpr int kBlocks = 64;
    constexpr ptrdiff_t kBatch = kMaskBits * kBlocks;
    constexpr int kMany = kBlocks / 4;  // blocks with likely starts, to be refined
    // The processor does not read ahead by itself while it is held up by wrong guesses.
    constexpr int kAhead = 2048;
    constexpr int kRoom = 1024;  // for places
    uint64_t likely[kBlocks];
    Zel16u places[kRoom + kSpare];
    int count = 0;
    const Zel8u* behind = p;  // the last match
    ptrdiff_t from = 0;
    // The first batch ends with a whole vector that is read, on AVX-512 a cache line, so that all
    // others begin with one.
    ptrdiff_t size = kBatch - kMaskBits + toBoundary(p + starts.ahead);
    while (from < positions) {
        const Zel8u* const batch = p + from;
        const ptrdiff_t left = positions - from < size ? positions - from : size;
        // First the blocks that have any, which cannot be guessed, a bit for each, the first one's
        // highest; then the places in these.
        uint64_t filled = 0;
        int blocks = 0;
        const auto look = [&](const Zel8u* block, int n) {
            likely[blocks] = starts.likely(block, n);
            filled = filled + filled + (likely[blocks] != 0);
            ++blocks;
        };
        starts.begin(batch, left);
        ptrdiff_t at = 0;
#pragma GCC unroll 2
        for (; left - at >= kMaskBits; at += kMaskBits) {
            prefetchText<kAhead>(batch + starts.ahead + at);
            look(batch + at, kMaskBits);
        }
        if (at < left) look(batch + at, static_cast<int>(left - at));
        from += size;
        size = kBatch;
        if (filled == 0) {
            from = passQuietText(p, from, positions, starts);
            continue;
        }
        const bool areMany = __builtin_popcountll(filled) > kMany;
        filled <<= kBlocks - blocks;
        while (filled != 0) {
            Zel16u* end = places;
            do {
                const int i = countLeadingZeros(filled);
                const int base = i * kMaskBits;
                filled &= ~(uint64_t{1} << (kBlocks - 1) >> i);
                const uint64_t bits =
                    areMany ? starts.refine(batch + base, left - base, likely[i]) : likely[i];
                end = writePlaces(bits, base, end);
            } while (filled != 0 && end <= places + kRoom - kMaskBits);
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

/// Positions where the probes are right. Of the two rarest bytes, the bits of where the one that
/// stands before the other is are moved on to where it should be: so each byte of the text is
/// loaded once, by whole cache lines.
template <typename Probe>
struct ProbedStarts {
    const Probe& earlier;
    const Probe& later;
    const Probe& third;
    const ptrdiff_t thirdAt;
    const ptrdiff_t ahead;  // of the later one
    const int distance;     // between the two
    uint64_t before = 0;    // where the earlier one is right, in the block before

    ZEL_INLINE explicit ProbedStarts(const Probes<Probe>& probes)
        : ProbedStarts(probes, probes.firstAt < probes.secondAt) {}

    // When there is no distance, both probes are the same: then nothing comes of what is moved.
    ZEL_INLINE void begin(const Zel8u* p, ptrdiff_t n) {
        before = memberBits(earlier, p + ahead - distance, n) << (-distance & (kMaskBits - 1));
    }
    ZEL_INLINE uint64_t likely(const Zel8u* p, int n) {
        uint64_t found[2];
        memberBitsOfBoth(earlier, later, p + ahead, n, found);
        const uint64_t moved = found[0] << distance | before >> (-distance & (kMaskBits - 1));
        before = found[0];
        return moved & found[1];
    }
    ZEL_INLINE uint64_t refine(const Zel8u* p, ptrdiff_t left, uint64_t bits) const {
        return bits & memberBits(third, p + thirdAt, left);
    }

private:
    ZEL_INLINE ProbedStarts(const Probes<Probe>& probes, bool isFirstEarlier)
        : earlier(isFirstEarlier ? probes.first : probes.second),
          later(isFirstEarlier ? probes.second : probes.first),
          third(probes.third),
          thirdAt(probes.thirdAt),
          ahead(isFirstEarlier ? probes.secondAt : probes.firstAt),
          distance(static_cast<int>(ahead - (isFirstEarlier ? probes.firstAt : probes.secondAt))) {}
};

/// A literal to compare texts with, as it stands or in any case; its beginning is at hand.
template <bool ignoreCase>
class PreparedLiteral {
    using V = Vec<Zel8u>;

public:
    ZEL_INLINE explicit PreparedLiteral(const kernels::Literal& literal)
        : text_(literal.text),
          length_(literal.length),
          head_(literal.length < V::kLanes ? literal.length : V::kLanes),
          caseBits_(V::zero()),
          folded_(V::loadFirst(literal.text, head_)) {
        if constexpr (ignoreCase) {
            folded_ = ToLowerLatin{}(folded_);
            caseBits_ = ToUpperLatin{}(folded_) ^ folded_;
        }
    }
    /// Its length if it stands at p, else 0.
    ZEL_INLINE int lengthAt(const Zel8u* p) const {
        const auto same = equalWithBits(V::loadFirst(p, head_), caseBits_, folded_);
        if (!same.mask().isAll()) return 0;
        if (length_ <= V::kLanes) [[likely]]
            return length_;
        const bool isRest = ignoreCase ? isSameFolded(p + head_, text_ + head_, length_ - head_)
                                       : isSame(p + head_, text_ + head_, length_ - head_);
        return isRest ? length_ : 0;
    }
    ZEL_INLINE int find(const Zel8u* p, int len) const {
        return ignoreCase ? findStringIgnoreCase(p, len, text_, length_)
                          : findString(p, len, text_, length_);
    }
    ZEL_INLINE static auto probeOf(Zel8u c) {
        if constexpr (ignoreCase)
            return FoldedByte(c);
        else
            return EqualsAnyOf<Zel8u, 1>::of(&c);
    }

private:
    const Zel8u* text_;
    int length_;
    int head_;  // bytes at hand
    V caseBits_;
    V folded_;
};

template <bool ignoreCase>
ZEL_INLINE int collectOneLiteral(const Zel8u* p, int len, const kernels::Literal& literal,
                                 ZelRegExpFind* matches, int capacity) {
    const PreparedLiteral<ignoreCase> prepared(literal);
    // While the text comes from a near cache, no way to the first match is faster.
    constexpr int kNearText = 1 << 19;
    if (len <= kNearText) {
        const int first = prepared.find(p, len);
        if (first == kNotFound) return 0;
        p += first;
        len -= first;
    }
    const Probes<decltype(prepared.probeOf(0))> probes(
        literal.text, RarePlaces(literal.text, literal.length), prepared.probeOf);
    const auto lengthAt = [&](const Zel8u* at) { return prepared.lengthAt(at); };
    return collectMatches(p, ptrdiff_t{len} - literal.length + 1, ProbedStarts(probes), lengthAt,
                          matches, capacity);
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
    static constexpr ptrdiff_t ahead = 0;
    const PrefixFilter<kDepth> filter;

    ZEL_INLINE void begin(const Zel8u*, ptrdiff_t) {}
    ZEL_INLINE uint64_t likely(const Zel8u* p, int n) const {
        return PrefixProbe::kIsQuick && n == kMaskBits ? filter.likelyStarts(p)
                                                       : filter.starts(p, n);
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
    if (set.count == 1) {
        const kernels::Literal& literal = set.literals[0];
        return set.ignoreCase ? collectOneLiteral<true>(p, len, literal, matches, capacity)
                              : collectOneLiteral<false>(p, len, literal, matches, capacity);
    }
    if (set.prefix.depth == 4) return collectByPrefix<4>(p, len, set, matches, capacity);
    if (set.prefix.depth == 3) return collectByPrefix<3>(p, len, set, matches, capacity);
    return collectByPrefix<2>(p, len, set, matches, capacity);
}

}  // namespace zel::ZEL_ISA
