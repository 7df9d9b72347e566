// Membership of bytes in an arbitrary set, a vector of bytes at a time.
//
// AVX-512 has three ways. A small set is looked up by the low 6 bits where these tell its members
// apart, and for a short text by the halves of the bytes, which takes no table. Else a
// two-register permute looks up the low 7 bits of every byte in a table of 128 whose bit
// 7 stands for the byte itself and bit 6 for the byte plus 128; the byte's own top bit chooses.
// AVX2: the set as a bitmap of 32 bytes is its own table: bits 3-6 of a byte choose a row in one of
// its halves, bits 0-2 the bit of the row. SSE2 has no byte shuffle and looks up one byte at a
// time.
#pragma once

#include "string/kernels/scan.h"

namespace zel::ZEL_ISA {

#if defined(ZEL_ISA_AVX512)

/// Bit 7 of a byte says that it hits.
struct SignHits {
    __m512i v;
    ZEL_INLINE Mask<Zel8u> mask() const { return {_mm512_movepi8_mask(v)}; }
    ZEL_INLINE bool any() const { return mask().any(); }
    friend ZEL_INLINE SignHits operator|(SignHits a, SignHits b) {
        return {_mm512_or_si512(a.v, b.v)};
    }
};

struct ByteClass {
    using HitsType = SignHits;
    static constexpr int kLanes = 64;
    __m512i low;
    __m512i high;

    /// From a table of 256 bytes, 0x80 for a member and 0 for any other byte.
    ZEL_INLINE static ByteClass fromTable(const Zel8u* table) {
        const auto half = [table](int at) {
            const __m512i top = _mm512_loadu_si512(table + at);
            const __m512i next = _mm512_loadu_si512(table + at + 128);
            return _mm512_or_si512(top, _mm512_srli_epi16(next, 1));
        };
        return {half(0), half(64)};
    }
    ZEL_INLINE static ByteClass fromWords(const uint64_t* set) {
        const auto half = [set](int at) {
            const __m512i top = _mm512_maskz_set1_epi8(set[at], static_cast<char>(0x80));
            const __m512i next = _mm512_maskz_set1_epi8(set[at + 2], 0x40);
            return _mm512_or_si512(top, next);
        };
        return {half(0), half(1)};
    }

    ZEL_INLINE SignHits hits(Vec<Zel8u> text) const {
        constexpr int kAChoosesBElseC = 0xCA;
        const __m512i found = _mm512_permutex2var_epi8(low, text.v, high);
        const __m512i next = _mm512_add_epi8(found, found);
        return {_mm512_ternarylogic_epi64(text.v, next, found, kAChoosesBElseC)};
    }
    ZEL_INLINE SignHits hits(const Zel8u* p) const { return hits(Vec<Zel8u>::load(p)); }
    ZEL_INLINE Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        return hits(Vec<Zel8u>::loadFirst(p, n)).mask();
    }
};

/// A small set in which no two members agree in their low 6 bits: these choose the one member that
/// a byte can be. One permute and one comparison.
struct SlotClass {
    static constexpr int kLanes = 64;
    Vec<Zel8u> memberOf;
    bool isExact;  // false when two members fell into one slot: then it is of no use

    /// The set has 1 to 64 members.
    ZEL_INLINE static SlotClass of(const Zel8u* p, int n) {
        // A slot without a member holds a byte that belongs to another one.
        alignas(64) Zel8u slots[64];
        _mm512_store_si512(slots, _mm512_set1_epi8(1));
        slots[1] = 2;
        for (int i = 0; i < n; ++i) slots[p[i] & 63] = p[i];
        SlotClass result;
        result.memberOf = Vec<Zel8u>::load(slots);
        const Vec<Zel8u> members = Vec<Zel8u>::loadFirst(p, n);
        const Mask<Zel8u> found{equalBits(result.slotOf(members), members)};
        result.isExact = (~found & Mask<Zel8u>::firstN(n)).bits == 0;
        return result;
    }

    ZEL_INLINE Hits<Zel8u> hits(Vec<Zel8u> text) const { return equal(slotOf(text), text); }
    ZEL_INLINE Hits<Zel8u> hits(const Zel8u* p) const { return hits(Vec<Zel8u>::load(p)); }
    ZEL_INLINE Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        return hits(Vec<Zel8u>::loadFirst(p, n)).mask();
    }

private:
    ZEL_INLINE Vec<Zel8u> slotOf(Vec<Zel8u> bytes) const {
        return {_mm512_permutexvar_epi8(bytes.v, memberOf.v)};
    }
};

/// Lanes that are not zero hit.
struct NonZeroHits {
    __m512i v;
    ZEL_INLINE Mask<Zel8u> mask() const { return {_mm512_test_epi8_mask(v, v)}; }
    ZEL_INLINE bool any() const { return mask().any(); }
    friend ZEL_INLINE NonZeroHits operator|(NonZeroHits a, NonZeroHits b) {
        return {_mm512_or_si512(a.v, b.v)};
    }
};

/// Up to eight members, each with a bit of its own: a byte is one of them when the members with its
/// low half and the members with its high half have one in common. Made without memory, by
/// comparing the halves of all members with all their sixteen values at once, which is what counts
/// for a text of a few vectors.
struct HalvesClass {
    static constexpr int kLanes = 64;
    __m512i low;
    __m512i high;

    /// The set has n members; places beyond the eighth are for another class.
    ZEL_INLINE static HalvesClass of(const Zel8u* p, int n) {
        const __m128i padding = _mm_set1_epi8(static_cast<char>(p[0]));
        const __m128i members =
            _mm_mask_loadu_epi8(padding, static_cast<__mmask16>(lowBits(n < 8 ? n : 8)), p);
        const __m512i all = _mm512_broadcastq_epi64(members);
        const __m512i half = _mm512_set1_epi8(0x0F);
        return {membersByValue(_mm512_and_si512(all, half)),
                membersByValue(_mm512_and_si512(_mm512_srli_epi16(all, 4), half))};
    }

    ZEL_INLINE NonZeroHits hits(Vec<Zel8u> text) const {
        const __m512i half = _mm512_set1_epi8(0x0F);
        const __m512i byLow = _mm512_shuffle_epi8(low, _mm512_and_si512(text.v, half));
        const __m512i byHigh =
            _mm512_shuffle_epi8(high, _mm512_and_si512(_mm512_srli_epi16(text.v, 4), half));
        return {_mm512_and_si512(byLow, byHigh)};
    }
    ZEL_INLINE NonZeroHits hits(const Zel8u* p) const { return hits(Vec<Zel8u>::load(p)); }
    ZEL_INLINE Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        return hits(Vec<Zel8u>::loadFirst(p, n)).mask();
    }

private:
    /// For each of the values 0 to 15 a byte: which of the eight halves in a quadword have it.
    ZEL_INLINE static __m512i membersByValue(__m512i halves) {
        const __m512i firstEight = _mm512_set_epi64(
            0x0707070707070707, 0x0606060606060606, 0x0505050505050505, 0x0404040404040404,
            0x0303030303030303, 0x0202020202020202, 0x0101010101010101, 0);
        const __m512i lastEight = _mm512_add_epi8(firstEight, _mm512_set1_epi8(8));
        const auto first = static_cast<long long>(_mm512_cmpeq_epi8_mask(halves, firstEight));
        const auto last = static_cast<long long>(_mm512_cmpeq_epi8_mask(halves, lastEight));
        return _mm512_broadcast_i32x4(_mm_set_epi64x(last, first));
    }
};

#elif defined(ZEL_ISA_AVX2)

struct ByteClass {
    using HitsType = Hits<Zel8u>;
    static constexpr int kLanes = 32;
    __m256i low;   // rows of the bytes below 128, in both lanes
    __m256i high;  // rows of the others

    ZEL_INLINE static ByteClass fromWords(const uint64_t* set) {
        const auto rows = [set](int at) {
            return _mm256_broadcastsi128_si256(
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(set + at)));
        };
        return {rows(0), rows(2)};
    }
    ZEL_INLINE static ByteClass fromTable(const Zel8u* table) {
        uint64_t set[4];
        for (int i = 0; i < 4; ++i) {
            const auto half = [table, i](int at) {
                const Vec<Zel8u> v = Vec<Zel8u>::load(table + 64 * i + at);
                return uint64_t{static_cast<unsigned>(_mm256_movemask_epi8(v.v))};
            };
            set[i] = half(0) | half(32) << 32;
        }
        return fromWords(set);
    }

    ZEL_INLINE Hits<Zel8u> hits(Vec<Zel8u> text) const {
        const __m256i top = _mm256_set1_epi8(static_cast<char>(0x80));
        const __m256i bitOf = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201));
        // A byte shuffle gives zero where the index has its top bit set, so each half of the set
        // answers for its own bytes only.
        const __m256i row =
            _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(text.v, 3), _mm256_set1_epi8(0x0F)),
                            _mm256_and_si256(text.v, top));
        const __m256i rows = _mm256_or_si256(_mm256_shuffle_epi8(low, row),
                                             _mm256_shuffle_epi8(high, _mm256_xor_si256(row, top)));
        const __m256i bit =
            _mm256_shuffle_epi8(bitOf, _mm256_and_si256(text.v, _mm256_set1_epi8(7)));
        return {_mm256_cmpeq_epi8(_mm256_and_si256(rows, bit), bit)};
    }
    ZEL_INLINE Hits<Zel8u> hits(const Zel8u* p) const { return hits(Vec<Zel8u>::load(p)); }
    ZEL_INLINE Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        return hits(Vec<Zel8u>::loadFirst(p, n)).mask();
    }
};

#else

struct ByteClass {
    static constexpr int kLanes = 16;
    uint64_t words[4];

    static ByteClass fromWords(const uint64_t* set) { return {{set[0], set[1], set[2], set[3]}}; }
    static ByteClass fromTable(const Zel8u* table) {
        ByteClass result;
        for (int i = 0; i < 16; ++i) {
            const Vec<Zel8u> v = Vec<Zel8u>::load(table + 16 * i);
            const auto bits = static_cast<unsigned>(_mm_movemask_epi8(v.v));
            const uint64_t low = i % 4 == 0 ? 0 : result.words[i / 4];
            result.words[i / 4] = low | uint64_t{bits} << (16 * (i % 4));
        }
        return result;
    }

    bool has(Zel8u byte) const { return (words[byte >> 6] >> (byte & 63)) & 1; }
    MaskHits<Zel8u> hits(const Zel8u* p) const { return {maskFirst(p, kLanes)}; }
    Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        uint64_t bits = 0;
        for (int i = 0; i < n; ++i) bits |= uint64_t{has(p[i])} << i;
        return {bits};
    }
};

#endif

/// The class of the low bytes of the n elements at p.
template <typename T>
ZEL_INLINE ByteClass byteClassByTable(const T* p, ptrdiff_t n) {
    alignas(64) Zel8u table[256] = {};
    for (ptrdiff_t i = 0; i < n; ++i) table[p[i] & 0xFF] = 0x80;
    return ByteClass::fromTable(table);
}

#if defined(ZEL_ISA_AVX512)

/// The low bytes of eight elements, each as a quadword.
ZEL_INLINE __m512i quadwordsAt(const Zel8u* p) {
    return _mm512_cvtepu8_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}
ZEL_INLINE __m512i quadwordsAt(const Zel16u* p) {
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return _mm512_cvtepu16_epi64(_mm_and_si128(units, _mm_set1_epi16(0xFF)));
}

/// Two words of the set of the low bytes of the n elements at p, at least 8: `first` is the byte
/// that the lowest bit stands for. Eight elements at a time are one bit each, shifted to their
/// places; a shift by 64 or more, as which a byte below comes out too, leaves nothing.
template <typename T>
ZEL_INLINE __m128i twoWordsOfSet(const T* p, ptrdiff_t n, int first, __m512i& seen) {
    const __m512i one = _mm512_set1_epi64(1);
    const __m512i low = _mm512_set1_epi64(first);
    const __m512i high = _mm512_set1_epi64(first + 64);
    __m512i lowWord = _mm512_setzero_si512();
    __m512i highWord = lowWord;
    const auto add = [&](const T* eight) __attribute__((always_inline)) {
        const __m512i bytes = quadwordsAt(eight);
        const __m512i inLow = _mm512_sllv_epi64(one, _mm512_sub_epi64(bytes, low));
        const __m512i inHigh = _mm512_sllv_epi64(one, _mm512_sub_epi64(bytes, high));
        seen = _mm512_or_si512(seen, bytes);
        lowWord = _mm512_or_si512(lowWord, inLow);
        highWord = _mm512_or_si512(highWord, inHigh);
    };
#pragma GCC unroll 1
    for (ptrdiff_t i = 0; i < n - 8; i += 8) add(p + i);
    add(p + n - 8);
    const __m512i pairs = _mm512_or_si512(_mm512_unpacklo_epi64(lowWord, highWord),
                                          _mm512_unpackhi_epi64(lowWord, highWord));
    const __m256i half =
        _mm256_or_si256(_mm512_castsi512_si256(pairs), _mm512_extracti64x4_epi64(pairs, 1));
    return _mm_or_si128(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
}

/// The class of the low bytes of the n elements at p, at least 8, made without memory.
template <typename T>
ZEL_INLINE ByteClass byteClassByShifts(const T* p, ptrdiff_t n) {
    const auto lower = [](__m128i words) {
        return static_cast<uint64_t>(_mm_cvtsi128_si64(words));
    };
    const auto upper = [](__m128i words) {
        return static_cast<uint64_t>(_mm_extract_epi64(words, 1));
    };
    __m512i seen = _mm512_setzero_si512();
    const __m128i ascii = twoWordsOfSet(p, n, 0, seen);
    uint64_t words[4] = {lower(ascii), upper(ascii), 0, 0};
    if (_mm512_test_epi64_mask(seen, _mm512_set1_epi64(0x80)) != 0) {
        const __m128i others = twoWordsOfSet(p, n, 128, seen);
        words[2] = lower(others);
        words[3] = upper(others);
    }
    return ByteClass::fromWords(words);
}

/// The class of the low bytes of the n elements at p.
template <typename T>
ZEL_INLINE ByteClass byteClassOf(const T* p, ptrdiff_t n) {
    return n >= 8 ? byteClassByShifts(p, n) : byteClassByTable(p, n);
}

#else

template <typename T>
ZEL_INLINE ByteClass byteClassOf(const T* p, ptrdiff_t n) {
    return byteClassByTable(p, n);
}

#endif

/// The bytes that are not in a class.
struct NotInClass {
    static constexpr int kLanes = ByteClass::kLanes;
    ByteClass members;

    ZEL_INLINE MaskHits<Zel8u> hits(const Zel8u* p) const { return {~members.hits(p).mask()}; }
    ZEL_INLINE Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        return ~members.maskFirst(p, n);
    }
};

}  // namespace zel::ZEL_ISA
