// Searches of the matcher that answer with many places at once: of a literal, of bytes of a set, of
// a byte of one set before a byte of another, of doubled bytes, of what several literals begin
// with.
//
// A search for the next place costs as much for the call, and for finding its bearings, as for some
// hundred bytes of text. So the search does not end with the first place: it goes on for some more
// blocks of 64 positions and writes down all that it meets. Up to the first place it is as fast as
// there is a loop for.
#pragma once

#include "string/kernels/byte_runs.h"
#include "string/kernels/find_element.h"
#include "string/kernels/find_ignore_case.h"
#include "string/kernels/find_string.h"

namespace zel::ZEL_ISA {

/// Places from the first position of a range on: `bitsAt(position, left)` has a bit for each of the
/// 64 positions from `position` on, and is asked for those below `positions`. `len` is the length
/// of the whole text, which is the answer to how far was searched when everything was.
template <typename BitsAt>
ZEL_INLINE void gatherFrom(ptrdiff_t first, ptrdiff_t positions, int len, const BitsAt& bitsAt,
                           kernels::Gathered* result) {
    using kernels::Gathered;
    result->begin = result->count = 0;
    result->scanned = len;
    ptrdiff_t at = first;
    uint64_t bits = 0;
    for (; at < positions; at += kMaskBits) {
        bits = bitsAt(at, positions - at);
        if (bits != 0) break;
    }
    if (at >= positions) return;
    result->begin = static_cast<int>(at);
    Zel16u* out = result->offsets;
    for (int block = 0;;) {
        // Mostly there are a few: these are written without asking how many.
        constexpr int kFew = 4;
        static_assert(kFew <= Gathered::kSpare);
        Zel16u* const behind = out + __builtin_popcountll(bits);
        do {
            for (int i = 0; i < kFew; ++i, bits &= bits - 1)
                *out++ = static_cast<Zel16u>(kMaskBits * block + countTrailingZeros(bits));
        } while (out < behind);
        out = behind;
        at += kMaskBits;
        if (++block == Gathered::kBlocks || at >= positions) break;
        bits = bitsAt(at, positions - at);
    }
    result->count = static_cast<int>(out - result->offsets);
    if (at < positions) result->scanned = static_cast<int>(at);
}

/// Likewise, from a first place that was found in another way, kNotFound when there is none.
template <typename BitsAt>
ZEL_INLINE void gatherNear(int first, ptrdiff_t positions, int len, const BitsAt& bitsAt,
                           kernels::Gathered* result) {
    gatherFrom(first == kNotFound ? positions : first, positions, len, bitsAt, result);
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
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        const Zel8u* const block = p + at;
        uint64_t bits = memberBits(begin, block, left);
        bits &= memberBits(end, block + offsets[0], left);
        if (bits != 0) bits &= memberBits(middle, block + offsets[1], left);
        if (bits != 0) bits &= memberBits(third, block + offsets[2], left);
        return bits;
    };
    gatherNear(first, ptrdiff_t{len} - literalLength + 1, len, bitsAt, result);
}

template <typename Class>
ZEL_INLINE void gatherClass(const Zel8u* p, int len, const Class& members,
                            kernels::Gathered* result) {
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        return memberBits(members, p + at, left);
    };
    gatherNear(firstHit(p, len, members), len, len, bitsAt, result);
}

/// Up to three members are compared one by one.
ZEL_INLINE void gatherMembers(const Zel8u* p, int len, const uint64_t* set,
                              kernels::Gathered* result) {
    constexpr int kFew = 3;
    Zel8u members[kFew] = {};
    int count = 0;
    for (int w = 0; w < 4; ++w) {
        for (uint64_t bits = set[w]; bits != 0 && count <= kFew; bits &= bits - 1, ++count) {
            if (count < kFew)
                members[count] = static_cast<Zel8u>(64 * w + countTrailingZeros(bits));
        }
    }
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
    gatherFrom(0, ptrdiff_t{len} - 1, len, bitsAt, result);
}

/// The first two probes are asked of every block, the others where those leave something.
ZEL_INLINE void gatherShape(const Zel8u* p, int len, const kernels::Shape& shape,
                            kernels::Gathered* result) {
    const ByteClass first = ByteClass::fromWords(shape.sets[0]);
    const ByteClass second = ByteClass::fromWords(shape.sets[1]);
    const ByteClass third = ByteClass::fromWords(shape.sets[2]);
    const ByteClass fourth = ByteClass::fromWords(shape.sets[3]);
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        const Zel8u* const block = p + at;
        uint64_t bits = memberBits(first, block + shape.offsets[0], left);
        bits &= memberBits(second, block + shape.offsets[1], left);
        if (bits != 0) bits &= memberBits(third, block + shape.offsets[2], left);
        if (bits != 0) bits &= memberBits(fourth, block + shape.offsets[3], left);
        return bits;
    };
    gatherFrom(0, ptrdiff_t{len} - shape.length + 1, len, bitsAt, result);
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
    gatherFrom(0, ptrdiff_t{len} - 1, len, bitsAt, result);
}

#if defined(ZEL_ISA_AVX512)

/// The literals that the low 7 bits of a byte allow; before that, to pass over text quickly, those
/// that its low 6 bits allow, which are one instruction to look up.
struct PrefixProbe {
    static constexpr int kLanes = 64;
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
    /// Whether there may be starts among the 64 positions at p.
    template <int kDepth>
    ZEL_INLINE bool mayHaveStarts(const Zel8u* p) const {
        __m512i found = _mm512_permutexvar_epi8(Vec<Zel8u>::load(p).v, folded[0]);
        for (int i = 1; i < kDepth; ++i) {
            const __m512i next = _mm512_permutexvar_epi8(Vec<Zel8u>::load(p + i).v, folded[i]);
            found = _mm512_and_si512(found, next);
        }
        return _mm512_test_epi8_mask(found, found) != 0;
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
    ZEL_INLINE bool mayHaveStarts(const Zel8u*) const {
        return true;
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
    static constexpr bool isExact = false;
    explicit PrefixProbe(const kernels::PrefixTables&) {}
    template <int kDepth>
    bool mayHaveStarts(const Zel8u*) const {
        return true;
    }
    template <int kDepth>
    uint64_t starts(const Zel8u*, int) const {
        return 1;
    }
};

#endif

template <int kDepth>
ZEL_INLINE void gatherPrefixOfDepth(const Zel8u* p, int len, const kernels::PrefixTables& prefix,
                                    kernels::Gathered* result) {
    const PrefixProbe probe(prefix);
    const auto isStart = [&](const Zel8u* at) {
        unsigned found = prefix.tables[0][at[0]];
        for (int i = 1; i < kDepth; ++i) found &= prefix.tables[i][at[i]];
        return found != 0;
    };
    const auto bitsAt = [&](ptrdiff_t at, ptrdiff_t left) {
        uint64_t bits = 0;
        if (left >= kMaskBits && !probe.template mayHaveStarts<kDepth>(p + at)) return bits;
        for (int lane = 0; lane < kMaskBits && lane < left; lane += PrefixProbe::kLanes) {
            const ptrdiff_t rest = left - lane;
            const int n = rest < PrefixProbe::kLanes ? static_cast<int>(rest) : PrefixProbe::kLanes;
            bits |= probe.template starts<kDepth>(p + at + lane, n) << lane;
        }
        if (probe.isExact) return bits;
        uint64_t sure = bits;
        for (; bits != 0; bits &= bits - 1) {
            if (!isStart(p + at + countTrailingZeros(bits))) sure &= ~(bits & -bits);
        }
        return sure;
    };
    gatherFrom(0, ptrdiff_t{len} - kDepth + 1, len, bitsAt, result);
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
