// Membership of 16-bit units in an arbitrary set.
//
// Two vectors of units become two vectors of bytes, their low and their high halves, which are
// looked up separately. AVX-512 gives every high byte that occurs in the set one of eight group
// bits: a unit is a member when the groups that its low byte occurs in and the group of its high
// byte have a bit in common. That is exact for up to eight high bytes. AVX2 asks only whether both
// halves occur in the set. Hits that are not exact are looked up in the set itself.
//
// Most sets have one high byte, that of ASCII; for them the units are packed to bytes with
// saturation, and the bytes are classified.
#pragma once

#include "string/kernels/byte_class.h"

namespace zel::ZEL_ISA {

/// Packing interleaves groups of eight units of its two sources: back to the order of the text.
ZEL_INLINE Mask<Zel16u> unpackMask(uint64_t bits) {
    constexpr uint64_t kFromFirst = 0x00FF00FF00FF00FF;
    constexpr int n = Vec<Zel16u>::kLanes;
    const uint64_t ordered = _pext_u64(bits, kFromFirst) | _pext_u64(bits, ~kFromFirst) << n;
    return {Mask<Zel16u>::kStep == 1 ? ordered : _pdep_u64(ordered, 0x5555555555555555)};
}

/// Hits among the bytes that two vectors of units were packed to.
template <typename ByteHits>
struct PackedHits {
    ByteHits bytes;
    ZEL_INLINE Mask<Zel16u> mask() const { return unpackMask(bytes.mask().bits); }
    ZEL_INLINE bool any() const { return bytes.any(); }
    friend ZEL_INLINE PackedHits operator|(PackedHits a, PackedHits b) {
        return {a.bytes | b.bytes};
    }
};

/// What the tests of two vectors a block have in common; Test::classify(a, b) is their own.
template <typename Test>
struct PairTest {
    using V = Vec<Zel16u>;
    static constexpr int kLanes = 2 * V::kLanes;

    ZEL_INLINE auto hits(const Zel16u* p) const {
        return static_cast<const Test*>(this)->classify(V::load(p), V::load(p + V::kLanes));
    }
    ZEL_INLINE Mask<Zel16u> maskFirst(const Zel16u* p, int n) const {
        const int inFirst = n < V::kLanes ? n : V::kLanes;
        const V a = V::loadFirst(p, inFirst);
        const V b = V::loadFirst(p + inFirst, n - inFirst);
        return static_cast<const Test*>(this)->classify(a, b).mask();
    }
};

/// A set with one high byte. Units with another one saturate to 0 or 0xFF once theirs is taken out
/// by exclusive or, so neither of these may be a low byte of the set.
struct RowClass : PairTest<RowClass> {
    Vec<Zel16u> row;
    ByteClass lows;

    ZEL_INLINE PackedHits<ByteClass::HitsType> classify(V a, V b) const {
        return {lows.hits(packSaturated(a ^ row, b ^ row))};
    }

    /// Whether the set at p is of this kind.
    static bool fits(const Zel16u* p, ptrdiff_t n) {
        const V first = V::splat(p[0]);
        for (ptrdiff_t i = 0; i < n; i += V::kLanes) {
            const auto left = static_cast<int>(n - i < V::kLanes ? n - i : V::kLanes);
            const V units = V::loadFirst(p + i, left);
            const V otherRow = (units ^ first) & V::splat(0xFF00);
            const V low = units & V::splat(0xFF);
            const Mask<Zel16u> outside = ~equal(otherRow, V::zero()).mask() |
                                         equal(low, V::zero()).mask() |
                                         equal(low, V::splat(0xFF)).mask();
            if ((outside & Mask<Zel16u>::firstN(left)).any()) return false;
        }
        return true;
    }
    ZEL_INLINE static RowClass of(const Zel16u* p, ptrdiff_t n) {
        RowClass result;
        result.row = V::splat(static_cast<Zel16u>(p[0] & 0xFF00));
        result.lows = byteClassOf(p, n);
        return result;
    }
};

#if defined(ZEL_ISA_AVX512)

struct UnitClass : PairTest<UnitClass> {
    __m512i lowGroups[4];   // the groups that a low byte occurs in
    __m512i highGroups[4];  // the group of a high byte
    bool isExact;

    ZEL_INLINE PackedHits<NonZeroHits> classify(V a, V b) const {
        const __m512i low = lookUp(lowGroups, packLow(a, b).v);
        const __m512i high = lookUp(highGroups, packHigh(a, b).v);
        return {{_mm512_and_si512(low, high)}};
    }

    static UnitClass of(const Zel16u* p, ptrdiff_t n) {
        alignas(64) Zel8u low[256] = {};
        alignas(64) Zel8u high[256] = {};
        int groups = 0;
        for (ptrdiff_t i = 0; i < n; ++i) {
            Zel8u& group = high[p[i] >> 8];
            if (group == 0) group = static_cast<Zel8u>(1 << (groups++ & 7));
            low[p[i] & 0xFF] |= group;
        }
        UnitClass result;
        for (int i = 0; i < 4; ++i) {
            result.lowGroups[i] = _mm512_load_si512(low + 64 * i);
            result.highGroups[i] = _mm512_load_si512(high + 64 * i);
        }
        result.isExact = groups <= 8;
        return result;
    }

private:
    ZEL_INLINE static __m512i lookUp(const __m512i (&table)[4], __m512i bytes) {
        const __mmask64 top = _mm512_movepi8_mask(bytes);
        const __m512i low = _mm512_permutex2var_epi8(table[0], bytes, table[1]);
        const __m512i high = _mm512_permutex2var_epi8(table[2], bytes, table[3]);
        return _mm512_mask_blend_epi8(top, low, high);
    }
};

#else

struct UnitClass : PairTest<UnitClass> {
    static constexpr bool isExact = false;
    ByteClass lows;
    ByteClass highs;

    ZEL_INLINE PackedHits<ByteClass::HitsType> classify(V a, V b) const {
        return {lows.hits(packLow(a, b)) & highs.hits(packHigh(a, b))};
    }

    static UnitClass of(const Zel16u* p, ptrdiff_t n) {
        alignas(64) Zel8u high[256] = {};
        for (ptrdiff_t i = 0; i < n; ++i) high[p[i] >> 8] = 0x80;
        UnitClass result;
        result.lows = byteClassOf(p, n);
        result.highs = ByteClass::fromTable(high);
        return result;
    }
};

#endif

}  // namespace zel::ZEL_ISA
