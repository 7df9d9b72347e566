// Searches of the matcher that answer with many places at once: of a literal, of bytes of a set, of
// a byte of one set before a byte of another, of doubled bytes, of what several literals begin
// with.
//
// A search for the next place costs as much for the call, and for finding its bearings, as for some
// hundred bytes of text. So the search does not end with the first place: it goes on for some more
// blocks of 64 positions and keeps a bit for each, which costs the same whether there are many
// places or none and leaves nothing to guess. Up to the first place it is as fast as there is a
// loop for.
#pragma once

#include "string/kernels/byte_runs.h"
#include "string/kernels/find_element.h"
#include "string/kernels/find_ignore_case.h"
#include "string/kernels/find_string.h"

namespace zel::ZEL_ISA {

constexpr int kGroupPositions = kMaskBits * kernels::Gathered::kGroup;

/// The processor reads ahead by itself up to the end of a page. This distance bridges the gap
/// there; a longer one only gets in its way.
constexpr int kBridge = 192;

/// Asks for text that far ahead of where it is looked at. Behind the end of the text nothing comes
/// of it.
template <int kDistance>
ZEL_INLINE void prefetchText(const Zel8u* block) {
    __builtin_prefetch(block + kDistance);
}

/// Places in the text p from the first position of a range on. `bitsOf(position, bits)` sets kGroup
/// words of bits, one for each place among the positions from `position` on which are below
/// `positions`, and says whether there are any. `len` is the length of the whole text, which is the
/// answer to how far was searched when everything was.
template <typename BitsOf>
ZEL_INLINE void gatherGroups(const Zel8u* p, ptrdiff_t first, ptrdiff_t positions, int len,
                             const BitsOf& bitsOf, kernels::Gathered* result) {
    using kernels::Gathered;
    ptrdiff_t at = first;
    while (at < positions && !bitsOf(at, result->bits)) {
        for (int k = 0; k < Gathered::kGroup; ++k) prefetchText<kBridge>(p + at + kMaskBits * k);
        at += kGroupPositions;
    }
    result->begin = static_cast<int>(at);
    int blocks = 0;
    for (int group = 0; group < result->groups && at < positions; ++group) {
        if (group > 0) bitsOf(at, result->bits + blocks);
        blocks += Gathered::kGroup;
        at += kGroupPositions;
    }
    result->blocks = blocks;
    result->scanned = at < positions ? static_cast<int>(at) : len;
    uint64_t filled = 0;
    for (int i = 0; i < blocks; ++i) filled |= uint64_t{result->bits[i] != 0} << i;
    result->filled = filled;
}

/// Sets the bits of a group, `bitsAt(k)` being those of its block k; whether there are any.
template <typename BitsAt>
ZEL_INLINE bool setGroup(uint64_t* bits, const BitsAt& bitsAt) {
    uint64_t any = 0;
    for (int k = 0; k < kernels::Gathered::kGroup; ++k) any |= bits[k] = bitsAt(k);
    return any != 0;
}

/// Sets the bits of the group at a position, `bitsAt(block, left)` being those of 64 positions, of
/// which `left` count. Mostly all do, which is then nothing to ask of each block.
template <typename BitsAt>
ZEL_INLINE bool setGroupAt(ptrdiff_t at, ptrdiff_t positions, uint64_t* bits,
                           const BitsAt& bitsAt) {
    const ptrdiff_t left = positions - at;
    if (left >= kGroupPositions) [[likely]] {
        return setGroup(bits,
                        [&](int k) { return bitsAt(at + kMaskBits * k, ptrdiff_t{kMaskBits}); });
    }
    return setGroup(bits, [&](int k) { return bitsAt(at + kMaskBits * k, left - kMaskBits * k); });
}

/// Gathers with setGroupAt.
template <typename BitsAt>
ZEL_INLINE void gatherFrom(const Zel8u* p, ptrdiff_t first, ptrdiff_t positions, int len,
                           const BitsAt& bitsAt, kernels::Gathered* result) {
    const auto bitsOf = [&](ptrdiff_t at, uint64_t* bits) {
        return setGroupAt(at, positions, bits, bitsAt);
    };
    gatherGroups(p, first, positions, len, bitsOf, result);
}

/// Where to begin, when the first place was found in another way, or none.
ZEL_INLINE ptrdiff_t firstOr(int first, ptrdiff_t positions) {
    return first == kNotFound ? positions : first;
}

/// Places where the first, the last and two middle bytes of a literal are right.
template <typename MakeProbe>
ZEL_INLINE void gatherLiteral(const Zel8u* p, int first, int len, int literalLength,
                              const MakeProbe& probeAt, kernels::Gathered* result) {
    const ptrdiff_t offsets[] = {literalLength - 1, literalLength / 2, literalLength / 3};
    const auto begin = probeAt(0);
    const auto end = probeAt(offsets[0]);
    const auto middle = probeAt(offsets[1]);
    const auto third = probeAt(offsets[2]);
    const ptrdiff_t positions = ptrdiff_t{len} - literalLength + 1;
    const auto bitsOf = [&](ptrdiff_t at, uint64_t* bits) {
        const auto both = [&](ptrdiff_t i, const auto& a, ptrdiff_t j, const auto& b, int k) {
            const ptrdiff_t block = at + kMaskBits * k;
            const ptrdiff_t left = positions - block;
            return memberBits(a, p + block + i, left) & memberBits(b, p + block + j, left);
        };
        if (!setGroup(bits, [&](int k) { return both(0, begin, offsets[0], end, k); }))
            return false;
        if (literalLength <= 2) return true;
        return setGroup(
            bits, [&](int k) { return bits[k] & both(offsets[1], middle, offsets[2], third, k); });
    };
    gatherGroups(p, firstOr(first, positions), positions, len, bitsOf, result);
}

template <typename Class>
ZEL_INLINE void gatherClass(const Zel8u* p, int len, const Class& members,
                            kernels::Gathered* result) {
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        return memberBits(members, p + at, left);
    };
    gatherFrom(p, firstOr(firstHit(p, len, members), len), len, len, bitsAt, result);
}

/// Up to `room` members of a set, in order; answers how many it has, or room + 1 when it has more.
ZEL_INLINE int listMembers(const uint64_t* set, Zel8u* members, int room) {
    int count = 0;
    for (int w = 0; w < 4; ++w) {
        for (uint64_t bits = set[w]; bits != 0 && count <= room; bits &= bits - 1, ++count) {
            if (count < room)
                members[count] = static_cast<Zel8u>(64 * w + countTrailingZeros(bits));
        }
    }
    return count;
}

/// Up to three members are compared one by one.
ZEL_INLINE void gatherMembers(const Zel8u* p, int len, const uint64_t* set,
                              kernels::Gathered* result) {
    constexpr int kFew = 3;
    Zel8u members[kFew] = {};
    const int count = listMembers(set, members, kFew);
    if (count == 0 || count > kFew) return gatherClass(p, len, ByteClass::fromWords(set), result);
    if (count == 1) return gatherClass(p, len, EqualsAnyOf<Zel8u, 1>::of(members), result);
    if (count == 2) members[2] = members[1];
    return gatherClass(p, len, EqualsAnyOf<Zel8u, kFew>::of(members), result);
}

ZEL_INLINE void gatherPair(const Zel8u* p, int len, const uint64_t* first, const uint64_t* second,
                           kernels::Gathered* result) {
    const ByteClass a = ByteClass::fromWords(first);
    const ByteClass b = ByteClass::fromWords(second);
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        return memberBits(a, p + at, left) & memberBits(b, p + at + 1, left);
    };
    gatherFrom(p, 0, ptrdiff_t{len} - 1, len, bitsAt, result);
}

/// The first two probes, `first` and `second`, are asked of every block, the others where those
/// leave something. Then the members of a set are found once for all probes that ask for it, in the
/// blocks of a group and in the one behind: whatever a probe's offset, its bits are a window into
/// these.
template <typename Class>
ZEL_INLINE void gatherShapeBy(const Class& first, const Class& second, const Zel8u* p, int len,
                              const kernels::Shape& shape, kernels::Gathered* result) {
    using kernels::Shape;
    constexpr int kBlocks = kernels::Gathered::kGroup + 1;
    static_assert(Shape::kMostProbes <= kMaskBits);
    const Shape::Probe* const probes = shape.probes;
    const ptrdiff_t positions = ptrdiff_t{len} - shape.length + 1;
    const ptrdiff_t firstAt = probes[0].offset;
    const ptrdiff_t secondAt = probes[1].offset;
    const auto bitsOf = [&](ptrdiff_t at, uint64_t* bits) {
        const auto filter = [&](ptrdiff_t block, ptrdiff_t left) {
            return memberBits(first, p + block + firstAt, left) &
                   memberBits(second, p + block + secondAt, left);
        };
        if (!setGroupAt(at, positions, bits, filter)) return false;
        uint64_t members[kBlocks];
        int set = -1;
        for (int i = 2; i < shape.probeCount; ++i) {
            if (set != probes[i].set) {
                set = probes[i].set;
                const ByteClass all = ByteClass::fromWords(shape.sets[set]);
                for (int k = 0; k < kBlocks; ++k) {
                    const ptrdiff_t block = at + kMaskBits * k;
                    members[k] = memberBits(all, p + block, len - block);
                }
            }
            // Twice, since a shift by 64 means nothing.
            const int offset = probes[i].offset;
            for (int k = 0; k < kBlocks - 1; ++k)
                bits[k] &= members[k] >> offset | members[k + 1] << (kMaskBits - 1 - offset) << 1;
        }
        return setGroup(bits, [&](int k) { return bits[k]; });
    };
    gatherGroups(p, 0, positions, len, bitsOf, result);
}

ZEL_INLINE void gatherShape(const Zel8u* p, int len, const kernels::Shape& shape,
                            kernels::Gathered* result) {
    using Byte = EqualsAnyOf<Zel8u, 1>;
    const uint64_t* const first = shape.sets[shape.probes[0].set];
    const uint64_t* const second = shape.sets[shape.probes[1].set];
    Zel8u byte[2];
    if (listMembers(first, byte, 1) == 1 && listMembers(second, byte + 1, 1) == 1)
        return gatherShapeBy(Byte::of(byte), Byte::of(byte + 1), p, len, shape, result);
    gatherShapeBy(ByteClass::fromWords(first), ByteClass::fromWords(second), p, len, shape, result);
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

ZEL_INLINE void gatherDoubledIn(const Zel8u* p, int len, const uint64_t* set,
                                kernels::Gathered* result) {
    const ByteClass members = ByteClass::fromWords(set);
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        const uint64_t doubled = doubledBits(p + at, left);
        return doubled != 0 ? doubled & memberBits(members, p + at, left) : 0;
    };
    gatherFrom(p, 0, ptrdiff_t{len} - 1, len, bitsAt, result);
}

#if defined(ZEL_ISA_AVX512)

/// The literals that the low 7 bits of a byte allow; before that, to pass over text quickly, those
/// that its low 6 bits allow, which are one instruction to look up.
struct PrefixProbe {
    static constexpr int kLanes = 64;
    static constexpr bool kIsQuick = true;
    static constexpr int kDepths = kernels::PrefixTables::kMaxDepth;
    __m512i low[kDepths];
    __m512i high[kDepths];
    __m512i folded[kDepths];
    bool isExact;

    ZEL_INLINE explicit PrefixProbe(const kernels::PrefixTables& prefix) {
        __m512i wide = _mm512_setzero_si512();
        for (int i = 0; i < kDepths; ++i) {
            const auto quarter = [&prefix, i](int at) {
                return _mm512_loadu_si512(prefix.tables[i] + 64 * at);
            };
            low[i] = _mm512_or_si512(quarter(0), quarter(2));
            high[i] = _mm512_or_si512(quarter(1), quarter(3));
            folded[i] = _mm512_or_si512(low[i], high[i]);
            wide = _mm512_or_si512(wide, _mm512_or_si512(quarter(2), quarter(3)));
        }
        isExact = _mm512_test_epi8_mask(wide, wide) == 0;
    }
    /// The positions of the 64 at p that may be starts, found quickly.
    template <int kDepth>
    ZEL_INLINE uint64_t likelyStarts(const Zel8u* p) const {
        __m512i found = _mm512_permutexvar_epi8(Vec<Zel8u>::load(p).v, folded[0]);
        for (int i = 1; i < kDepth; ++i) {
            const __m512i next = _mm512_permutexvar_epi8(Vec<Zel8u>::load(p + i).v, folded[i]);
            found = _mm512_and_si512(found, next);
        }
        return _mm512_test_epi8_mask(found, found);
    }
    /// The starts among the first n positions at p; exactly those, if the tables have nothing for
    /// bytes from 0x80 on.
    template <int kDepth>
    ZEL_INLINE uint64_t starts(const Zel8u* p, int n) const {
        __m512i found = _mm512_set1_epi8(-1);
        __m512i bytes = _mm512_setzero_si512();
        for (int i = 0; i < kDepth; ++i) {
            const __m512i text = Vec<Zel8u>::loadFirst(p + i, n).v;
            bytes = _mm512_or_si512(bytes, text);
            found = _mm512_and_si512(found, _mm512_permutex2var_epi8(low[i], text, high[i]));
        }
        const uint64_t wide = isExact ? _mm512_movepi8_mask(bytes) : 0;
        return _mm512_test_epi8_mask(found, found) & ~wide & lowBits(n);
    }
};

#elif defined(ZEL_ISA_AVX2)

/// The literals that a byte's halves allow.
struct PrefixProbe {
    static constexpr int kLanes = 32;
    static constexpr bool kIsQuick = false;
    static constexpr bool isExact = false;
    __m256i low[kernels::PrefixTables::kMaxDepth];
    __m256i high[kernels::PrefixTables::kMaxDepth];

    ZEL_INLINE explicit PrefixProbe(const kernels::PrefixTables& prefix) {
        const auto both = [](const Zel8u* half) {
            return _mm256_broadcastsi128_si256(
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(half)));
        };
        for (int i = 0; i < kernels::PrefixTables::kMaxDepth; ++i) {
            low[i] = both(prefix.low[i]);
            high[i] = both(prefix.high[i]);
        }
    }
    template <int kDepth>
    ZEL_INLINE uint64_t likelyStarts(const Zel8u*) const {
        return ~uint64_t{0};
    }
    template <int kDepth>
    ZEL_INLINE uint64_t starts(const Zel8u* p, int n) const {
        const __m256i half = _mm256_set1_epi8(0x0F);
        __m256i found = _mm256_set1_epi8(-1);
        for (int i = 0; i < kDepth; ++i) {
            const __m256i text = Vec<Zel8u>::loadFirst(p + i, n).v;
            const __m256i byLow = _mm256_shuffle_epi8(low[i], _mm256_and_si256(text, half));
            const __m256i byHigh =
                _mm256_shuffle_epi8(high[i], _mm256_and_si256(_mm256_srli_epi16(text, 4), half));
            found = _mm256_and_si256(found, _mm256_and_si256(byLow, byHigh));
        }
        const __m256i none = _mm256_cmpeq_epi8(found, _mm256_setzero_si256());
        const auto misses = static_cast<unsigned>(_mm256_movemask_epi8(none));
        return uint64_t{~misses} & lowBits(n);
    }
};

#else

struct PrefixProbe {
    static constexpr int kLanes = 1;
    static constexpr bool kIsQuick = false;
    static constexpr bool isExact = false;
    explicit PrefixProbe(const kernels::PrefixTables&) {}
    template <int kDepth>
    uint64_t likelyStarts(const Zel8u*) const {
        return ~uint64_t{0};
    }
    template <int kDepth>
    uint64_t starts(const Zel8u*, int) const {
        return 1;
    }
};

#endif

/// The positions where the first kDepth bytes of one of the literals stand.
template <int kDepth>
struct PrefixFilter {
    const kernels::PrefixTables& prefix;
    PrefixProbe probe;

    ZEL_INLINE explicit PrefixFilter(const kernels::PrefixTables& thePrefix)
        : prefix(thePrefix), probe(thePrefix) {}

    ZEL_INLINE bool isStart(const Zel8u* p) const {
        unsigned found = prefix.tables[0][p[0]];
        for (int i = 1; i < kDepth; ++i) found &= prefix.tables[i][p[i]];
        return found != 0;
    }
    /// A bit for each of the 64 positions at p that may be one.
    ZEL_INLINE uint64_t likelyStarts(const Zel8u* p) const {
        return probe.template likelyStarts<kDepth>(p);
    }
    /// A bit for each of the 64, or the first `left`, that is one.
    ZEL_INLINE uint64_t starts(const Zel8u* p, ptrdiff_t left) const {
        uint64_t bits = 0;
        for (int lane = 0; lane < kMaskBits && lane < left; lane += PrefixProbe::kLanes) {
            const ptrdiff_t rest = left - lane;
            const int n = rest < PrefixProbe::kLanes ? static_cast<int>(rest) : PrefixProbe::kLanes;
            bits |= probe.template starts<kDepth>(p + lane, n) << lane;
        }
        if (probe.isExact) return bits;
        uint64_t sure = bits;
        for (; bits != 0; bits &= bits - 1) {
            if (!isStart(p + countTrailingZeros(bits))) sure &= ~(bits & -bits);
        }
        return sure;
    }
};

template <int kDepth>
ZEL_INLINE void gatherPrefixOfDepth(const Zel8u* p, int len, const kernels::PrefixTables& prefix,
                                    kernels::Gathered* result) {
    const PrefixFilter<kDepth> filter(prefix);
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        if (left >= kMaskBits && filter.likelyStarts(p + at) == 0) return uint64_t{0};
        return filter.starts(p + at, left);
    };
    gatherFrom(p, 0, ptrdiff_t{len} - kDepth + 1, len, bitsAt, result);
}

ZEL_INLINE void gatherPrefix(const Zel8u* p, int len, const kernels::PrefixTables& prefix,
                             kernels::Gathered* result) {
    if (prefix.depth == 4)
        gatherPrefixOfDepth<4>(p, len, prefix, result);
    else if (prefix.depth == 3)
        gatherPrefixOfDepth<3>(p, len, prefix, result);
    else
        gatherPrefixOfDepth<2>(p, len, prefix, result);
}

}  // namespace zel::ZEL_ISA
