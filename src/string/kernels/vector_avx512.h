// The vector model of AVX-512 with byte and word instructions: 64 bytes, real masks.
#pragma once

namespace zel::ZEL_ISA {

ZEL_INLINE uint64_t lowBits(int n) {
    return _bzhi_u64(~uint64_t{0}, static_cast<unsigned>(n));
}
ZEL_INLINE int countTrailingZeros(uint64_t bits) {
    return static_cast<int>(_tzcnt_u64(bits));
}
ZEL_INLINE int countLeadingZeros(uint64_t bits) {
    return static_cast<int>(_lzcnt_u64(bits));
}

/// Minus one that the compiler does not know to be it: so it is made once, in four bytes of
/// instructions, and kept in a register, instead of being written out in up to seven at each use.
ZEL_INLINE int64_t minusOne() {
    int64_t result;
    asm("or $-1, %0" : "=a"(result));
    return result;
}

/// The first n bytes at p, at most 16 of them; the others are zero.
ZEL_INLINE __m128i loadUpTo16(const void* p, int n) {
    return _mm_maskz_loadu_epi8(static_cast<__mmask16>(lowBits(n)), p);
}

}  // namespace zel::ZEL_ISA

#include "string/kernels/mask.h"

namespace zel::ZEL_ISA {

template <typename T>
struct Vec {
    static constexpr int kBytes = 64;
    static constexpr int kLanes = kBytes / static_cast<int>(sizeof(T));
    static constexpr int kMaskStep = 1;
    __m512i v;

    ZEL_INLINE static Vec zero() { return {_mm512_setzero_si512()}; }
    ZEL_INLINE static Vec splat(T x) {
        if constexpr (sizeof(T) == 1)
            return {_mm512_set1_epi8(static_cast<char>(x))};
        else
            return {_mm512_set1_epi16(static_cast<short>(x))};
    }
    ZEL_INLINE static Vec load(const T* p) { return {_mm512_loadu_si512(p)}; }
    ZEL_INLINE static Vec loadFirst(const T* p, int n) {
        if constexpr (sizeof(T) == 1)
            return {_mm512_maskz_loadu_epi8(lowBits(n), p)};
        else
            return {_mm512_maskz_loadu_epi16(static_cast<__mmask32>(lowBits(n)), p)};
    }
    ZEL_INLINE void store(T* p) const { _mm512_storeu_si512(p, v); }
    ZEL_INLINE void storeFirst(T* p, int n) const {
        if constexpr (sizeof(T) == 1)
            _mm512_mask_storeu_epi8(p, lowBits(n), v);
        else
            _mm512_mask_storeu_epi16(p, static_cast<__mmask32>(lowBits(n)), v);
    }

    // By halves: a store that crosses the end of a cache line takes two, a narrow one seldom does.

    /// The first n elements, which are at most a half.
    ZEL_INLINE void storeFirstOfHalf(T* p, int n) const {
        const auto lanes = static_cast<__mmask32>(lowBits(n * static_cast<int>(sizeof(T))));
        _mm256_mask_storeu_epi8(p, lanes, _mm512_castsi512_si256(v));
    }
    /// The first and the last half vector of n elements, which are at least a half.
    ZEL_INLINE static Vec loadEnds(const T* p, int n) {
        const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        const __m256i last =
            _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + n - kLanes / 2));
        return {_mm512_inserti64x4(_mm512_castsi256_si512(first), last, 1)};
    }
    ZEL_INLINE void storeEnds(T* p, int n) const {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(v));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + n - kLanes / 2),
                            _mm512_extracti64x4_epi64(v, 1));
    }
};

template <typename T>
ZEL_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) {
    return {_mm512_xor_si512(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return {_mm512_and_si512(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) {
    return {_mm512_or_si512(a.v, b.v)};
}

template <typename T>
ZEL_INLINE uint64_t equalBits(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return _mm512_cmpeq_epi8_mask(a.v, b.v);
    else
        return _mm512_cmpeq_epi16_mask(a.v, b.v);
}

// What a call on a short text consists of. No intrinsic says that a comparison reads memory under
// its mask, nor that the registers are among the upper sixteen, which need no vzeroupper before the
// return. Said in assembly, such a call is a cache line of instructions, checks included.

/// As lowBits.
ZEL_INLINE uint64_t lowBitsInShort(int n) {
    return _bzhi_u64(static_cast<uint64_t>(minusOne()), static_cast<unsigned>(n));
}

/// The first n elements at p, at most kLanes, that equal the value. No others are read.
ZEL_INLINE Mask<Zel8u> equalFirst(const Zel8u* p, int n, Zel8u value) {
    using Lanes = const Zel8u[64];
    __mmask64 equal;
    asm("vpbroadcastb %k2, %%zmm16\n\tvpcmpeqb %1, %%zmm16, %0%{%3%}"
        : "=Yk"(equal)
        : "m"(*reinterpret_cast<Lanes*>(p)), "r"(value), "Yk"(__mmask64{lowBitsInShort(n)})
        : "xmm16");
    return {equal};
}
ZEL_INLINE Mask<Zel16u> equalFirst(const Zel16u* p, int n, Zel16u value) {
    using Lanes = const Zel16u[32];
    const auto lanes = static_cast<__mmask32>(lowBitsInShort(n));
    __mmask32 equal;
    asm("vpbroadcastw %k2, %%zmm16\n\tvpcmpeqw %1, %%zmm16, %0%{%3%}"
        : "=Yk"(equal)
        : "m"(*reinterpret_cast<Lanes*>(p)), "r"(value), "Yk"(lanes)
        : "xmm16");
    return {equal};
}

/// Where the first n elements of two texts differ, at most kLanes. No others are read.
ZEL_INLINE Mask<Zel8u> differFirst(const Zel8u* a, const Zel8u* b, int n) {
    using Lanes = const Zel8u[64];
    __mmask64 differ;
    asm("vmovdqu8 %1, %%zmm16%{%3%}%{z%}\n\tvpcmpneqb %2, %%zmm16, %0%{%3%}"
        : "=Yk"(differ)
        : "m"(*reinterpret_cast<Lanes*>(a)), "m"(*reinterpret_cast<Lanes*>(b)),
          "Yk"(__mmask64{lowBitsInShort(n)})
        : "xmm16");
    return {differ};
}
ZEL_INLINE Mask<Zel16u> differFirst(const Zel16u* a, const Zel16u* b, int n) {
    using Lanes = const Zel16u[32];
    const auto lanes = static_cast<__mmask32>(lowBitsInShort(n));
    __mmask32 differ;
    asm("vmovdqu16 %1, %%zmm16%{%3%}%{z%}\n\tvpcmpneqw %2, %%zmm16, %0%{%3%}"
        : "=Yk"(differ)
        : "m"(*reinterpret_cast<Lanes*>(a)), "m"(*reinterpret_cast<Lanes*>(b)), "Yk"(lanes)
        : "xmm16");
    return {differ};
}

/// A lane is zero where it hits.
template <typename T>
struct Hits {
    __m512i miss;

    ZEL_INLINE Mask<T> mask() const {
        if constexpr (sizeof(T) == 1)
            return {_mm512_testn_epi8_mask(miss, miss)};
        else
            return {_mm512_testn_epi16_mask(miss, miss)};
    }
    ZEL_INLINE bool any() const { return mask().any(); }
    friend ZEL_INLINE Hits operator|(Hits a, Hits b) {
        if constexpr (sizeof(T) == 1)
            return {_mm512_min_epu8(a.miss, b.miss)};
        else
            return {_mm512_min_epu16(a.miss, b.miss)};
    }
    friend ZEL_INLINE Hits operator&(Hits a, Hits b) { return {_mm512_or_si512(a.miss, b.miss)}; }
};

template <typename T>
ZEL_INLINE Hits<T> equal(Vec<T> a, Vec<T> b) {
    return {_mm512_xor_si512(a.v, b.v)};
}
/// equal(a | bits, b) in one instruction.
template <typename T>
ZEL_INLINE Hits<T> equalWithBits(Vec<T> a, Vec<T> bits, Vec<T> b) {
    constexpr int kAOrBXorC = 0x56;
    return {_mm512_ternarylogic_epi64(a.v, bits.v, b.v, kAOrBXorC)};
}
/// hits & equal(a, b) in one instruction.
template <typename T>
ZEL_INLINE Hits<T> andEqual(Hits<T> hits, Vec<T> a, Vec<T> b) {
    constexpr int kAOrBXorC = 0xF6;
    return {_mm512_ternarylogic_epi64(hits.miss, a.v, b.v, kAOrBXorC)};
}

/// Where a equals b and c equals d.
template <typename T>
ZEL_INLINE Mask<T> bothEqual(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T> d) {
    if constexpr (sizeof(T) == 1)
        return {_mm512_mask_cmpeq_epi8_mask(_mm512_cmpeq_epi8_mask(a.v, b.v), c.v, d.v)};
    else
        return {_mm512_mask_cmpeq_epi16_mask(_mm512_cmpeq_epi16_mask(a.v, b.v), c.v, d.v)};
}

/// Two vectors of units as one of bytes, groups of eight units of a and b taking turns: saturated
/// (units of 0x100 to 0x7FFF to 0xFF, those above to 0), the low bytes, the high bytes.
ZEL_INLINE Vec<Zel8u> packSaturated(Vec<Zel16u> a, Vec<Zel16u> b) {
    return {_mm512_packus_epi16(a.v, b.v)};
}
ZEL_INLINE Vec<Zel8u> packLow(Vec<Zel16u> a, Vec<Zel16u> b) {
    const Vec<Zel16u> low = Vec<Zel16u>::splat(0xFF);
    return packSaturated(a & low, b & low);
}
ZEL_INLINE Vec<Zel8u> packHigh(Vec<Zel16u> a, Vec<Zel16u> b) {
    return {_mm512_packus_epi16(_mm512_srli_epi16(a.v, 8), _mm512_srli_epi16(b.v, 8))};
}

/// A lane is not zero where two vectors differ.
template <typename T>
struct Differences {
    __m512i v;

    ZEL_INLINE Mask<T> mask() const {
        if constexpr (sizeof(T) == 1)
            return {_mm512_test_epi8_mask(v, v)};
        else
            return {_mm512_test_epi16_mask(v, v)};
    }
    ZEL_INLINE bool any() const { return _mm512_test_epi32_mask(v, v) != 0; }
    friend ZEL_INLINE Differences operator|(Differences a, Differences b) {
        return {_mm512_or_si512(a.v, b.v)};
    }
};

template <typename T>
ZEL_INLINE Differences<T> difference(Vec<T> a, Vec<T> b) {
    return {_mm512_xor_si512(a.v, b.v)};
}
/// The differences so far and those of a and b, in one instruction.
template <typename T>
ZEL_INLINE Differences<T> andDifference(Differences<T> soFar, Vec<T> a, Vec<T> b) {
    constexpr int kAOrBXorC = 0xF6;
    return {_mm512_ternarylogic_epi64(soFar.v, a.v, b.v, kAOrBXorC)};
}

/// The elements from low to low + count - 1.
template <typename T>
ZEL_INLINE Mask<T> rangeMask(Vec<T> v, T low, T count) {
    const __m512i limit = Vec<T>::splat(count).v;
    if constexpr (sizeof(T) == 1)
        return {_mm512_cmplt_epu8_mask(_mm512_sub_epi8(v.v, Vec<T>::splat(low).v), limit)};
    else
        return {_mm512_cmplt_epu16_mask(_mm512_sub_epi16(v.v, Vec<T>::splat(low).v), limit)};
}

/// v with those of `to` in the lanes of the mask.
template <typename T>
ZEL_INLINE Vec<T> blend(Mask<T> lanes, Vec<T> v, Vec<T> to) {
    if constexpr (sizeof(T) == 1)
        return {_mm512_mask_mov_epi8(v.v, lanes.bits, to.v)};
    else
        return {_mm512_mask_mov_epi16(v.v, static_cast<__mmask32>(lanes.bits), to.v)};
}

/// Where two vectors differ when A-Z and a-z are alike: the case bit of a difference does not count
/// where one of the two, and so the other, is a letter.
template <typename T>
ZEL_INLINE Differences<T> differenceIgnoringLatinCase(Vec<T> a, Vec<T> b) {
    const Vec<T> caseBit = Vec<T>::splat(0x20);
    const Mask<T> letters = rangeMask(a | caseBit, T{'a'}, T{26});
    const Vec<T> ignored = blend(letters, Vec<T>::zero(), caseBit);
    return {_mm512_andnot_si512(ignored.v, (a ^ b).v)};
}

/// The constants of differIgnoringLatinCaseFirst, a vector each.
template <typename T>
struct LatinSplats {
    alignas(64) T caseBit[Vec<T>::kLanes];
    alignas(64) T minusA[Vec<T>::kLanes];
    alignas(64) T letters[Vec<T>::kLanes];

    constexpr LatinSplats() : caseBit(), minusA(), letters() {
        for (int i = 0; i < Vec<T>::kLanes; ++i) {
            caseBit[i] = 0x20;
            minusA[i] = static_cast<T>(-'a');
            letters[i] = 26;
        }
    }
};
template <typename T>
inline constexpr LatinSplats<T> kLatinSplats;

/// differenceIgnoringLatinCase of the first n elements at a and b, for one call: where compilers
/// see constants they make them anew, which takes longer than to load them.
template <typename T>
ZEL_INLINE Mask<T> differIgnoringLatinCaseFirst(const T* a, const T* b, int n) {
    const LatinSplats<T>* splats = &kLatinSplats<T>;
    asm("" : "+r"(splats));
    const uint64_t first = lowBitsInShort(n);
    const Vec<T> va = loadInto(Vec<T>::zero(), first, a);
    const Vec<T> vb = loadInto(Vec<T>::zero(), first, b);
    const __m512i small = (va | Vec<T>::load(splats->caseBit)).v;
    const __m512i minusA = Vec<T>::load(splats->minusA).v;
    const __m512i letters = Vec<T>::load(splats->letters).v;
    Vec<T> ignored;
    if constexpr (sizeof(T) == 1) {
        const auto lanes = _mm512_cmplt_epu8_mask(_mm512_add_epi8(small, minusA), letters);
        ignored.v = _mm512_maskz_loadu_epi8(lanes, splats->caseBit);
    } else {
        const auto lanes = _mm512_cmplt_epu16_mask(_mm512_add_epi16(small, minusA), letters);
        ignored.v = _mm512_maskz_loadu_epi16(lanes, splats->caseBit);
    }
    return Differences<T>{_mm512_andnot_si512(ignored.v, (va ^ vb).v)}.mask();
}

/// The elements of v, in order, at the lanes of the mask; the others are zero.
template <typename T>
ZEL_INLINE Vec<T> expand(uint64_t mask, Vec<T> v) {
    if constexpr (sizeof(T) == 1)
        return {_mm512_maskz_expand_epi8(mask, v.v)};
    else
        return {_mm512_maskz_expand_epi16(static_cast<__mmask32>(mask), v.v)};
}
/// The elements at p, in order, at the lanes of the mask, of which as many are read; else v.
template <typename T>
ZEL_INLINE Vec<T> expandFrom(Vec<T> v, uint64_t mask, const T* p) {
    if constexpr (sizeof(T) == 1)
        return {_mm512_mask_expandloadu_epi8(v.v, mask, p)};
    else
        return {_mm512_mask_expandloadu_epi16(v.v, static_cast<__mmask32>(mask), p)};
}
/// The elements at the lanes of the mask, in order, from lane 0 on; the others are zero.
template <typename T>
ZEL_INLINE Vec<T> compress(uint64_t mask, Vec<T> v) {
    if constexpr (sizeof(T) == 1)
        return {_mm512_maskz_compress_epi8(mask, v.v)};
    else
        return {_mm512_maskz_compress_epi16(static_cast<__mmask32>(mask), v.v)};
}
/// The number of each lane of a vector of bytes.
ZEL_INLINE Vec<Zel8u> laneNumbers() {
    return {_mm512_set_epi8(63, 62, 61, 60, 59, 58, 57, 56, 55, 54, 53, 52, 51, 50, 49, 48, 47, 46,
                            45, 44, 43, 42, 41, 40, 39, 38, 37, 36, 35, 34, 33, 32, 31, 30, 29, 28,
                            27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10,
                            9, 8, 7, 6, 5, 4, 3, 2, 1, 0)};
}
/// p[i] in the lanes i of the mask, and only these are read; else v.
template <typename T>
ZEL_INLINE Vec<T> loadInto(Vec<T> v, uint64_t mask, const T* p) {
    if constexpr (sizeof(T) == 1)
        return {_mm512_mask_loadu_epi8(v.v, mask, p)};
    else
        return {_mm512_mask_loadu_epi16(v.v, static_cast<__mmask32>(mask), p)};
}

/// Adds delta to the elements from low to low + count - 1.
template <typename T>
ZEL_INLINE Vec<T> addInRange(Vec<T> v, T low, T count, T delta) {
    const Mask<T> lanes = rangeMask(v, low, count);
    const __m512i step = Vec<T>::splat(delta).v;
    if constexpr (sizeof(T) == 1)
        return {_mm512_mask_add_epi8(v.v, lanes.bits, v.v, step)};
    else
        return {_mm512_mask_add_epi16(v.v, static_cast<__mmask32>(lanes.bits), v.v, step)};
}

/// v with `to` where it equals `from`.
template <typename T>
ZEL_INLINE Vec<T> replaceEqual(Vec<T> v, Vec<T> from, Vec<T> to) {
    return blend(Mask<T>{equalBits(v, from)}, v, to);
}

/// Constants that are loaded. Compilers would rather make them of an integer, by the one port that
/// also permutes and compresses, and anew for every block.
template <uint64_t word>
static constexpr uint64_t kWordInMemory = word;
template <uint64_t word>
ZEL_INLINE __m512i splatWord() {
    __m512i splat;
    asm("vpbroadcastq %1, %0" : "=v"(splat) : "m"(kWordInMemory<word>));
    return splat;
}
template <Zel8u byte>
ZEL_INLINE __m512i splatByte() {
    return splatWord<byte * 0x0101010101010101u>();
}

/// What moves the bits of a byte so many places up, or down, and keeps those that are then among
/// `kept`: for each bit of the result, from the highest one on, a byte with the bit it comes from.
constexpr uint64_t bitMove(int up, unsigned kept) {
    uint64_t rows = 0;
    for (int to = 0; to < 8; ++to) {
        const int from = to - up;
        if ((kept >> to & 1) != 0 && from >= 0 && from < 8)
            rows |= uint64_t{1} << from << 8 * (7 - to);
    }
    return rows;
}
/// Moves bits within each byte; those of `marks` are inverted afterwards.
template <int up, Zel8u kept, Zel8u marks = 0>
ZEL_INLINE __m512i moveBits(__m512i v) {
    return _mm512_gf2p8affine_epi64_epi8(v, splatWord<bitMove(up, kept)>(), marks);
}

/// The bytes from 0x80 to 0xBF.
ZEL_INLINE Mask<Zel8u> continuations(Vec<Zel8u> v) {
    return {_mm512_cmplt_epi8_mask(v.v, _mm512_set1_epi8(-64))};
}

/// The four quarters.
ZEL_INLINE void splitIntoSixteens(Vec<Zel8u> v, __m128i (&piece)[4]) {
    piece[0] = _mm512_castsi512_si128(v.v);
    piece[1] = _mm512_extracti32x4_epi32(v.v, 1);
    piece[2] = _mm512_extracti32x4_epi32(v.v, 2);
    piece[3] = _mm512_extracti32x4_epi32(v.v, 3);
}

}  // namespace zel::ZEL_ISA
