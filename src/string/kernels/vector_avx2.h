// The vector model of AVX2: 32 bytes.
#pragma once

#include "string/kernels/partial_sse2.h"

namespace zel::ZEL_ISA {

// Sixteen bytes from index 16 - k on shift a vector up by k, from 16 + k on down by k, as indices
// of a byte shuffle; the bytes shifted in are zero.
alignas(16) inline constexpr signed char kByteShift[48] = {
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,  //
    0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15,  //
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};

ZEL_INLINE __m128i shiftBytesDown(__m128i v, int k) {
    return _mm_shuffle_epi8(v,
                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(kByteShift + 16 + k)));
}
ZEL_INLINE __m128i shiftBytesUp(__m128i v, int k) {
    return _mm_shuffle_epi8(v,
                            _mm_loadu_si128(reinterpret_cast<const __m128i*>(kByteShift + 16 - k)));
}

ZEL_INLINE __m256i loadUpTo32(const void* from, int n) {
    if (n <= 16) return _mm256_zextsi128_si256(loadUpTo16(from, n));
    const char* const p = static_cast<const char*>(from);
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i top = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + n - 16));
    return _mm256_set_m128i(shiftBytesDown(top, 32 - n), low);
}

ZEL_INLINE void storeUpTo32(void* to, __m256i v, int n) {
    const __m128i low = _mm256_castsi256_si128(v);
    if (n <= 16) {
        storeUpTo16(to, low, n);
        return;
    }
    const __m128i high = _mm256_extracti128_si256(v, 1);
    const __m128i top = _mm_or_si128(shiftBytesDown(low, n - 16), shiftBytesUp(high, 32 - n));
    char* const p = static_cast<char*>(to);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + n - 16), top);
}

template <typename T>
struct Vec {
    static constexpr int kBytes = 32;
    static constexpr int kLanes = kBytes / static_cast<int>(sizeof(T));
    static constexpr int kMaskStep = static_cast<int>(sizeof(T));
    __m256i v;

    ZEL_INLINE static Vec zero() { return {_mm256_setzero_si256()}; }
    ZEL_INLINE static Vec splat(T x) {
        if constexpr (sizeof(T) == 1)
            return {_mm256_set1_epi8(static_cast<char>(x))};
        else
            return {_mm256_set1_epi16(static_cast<short>(x))};
    }
    ZEL_INLINE static Vec load(const T* p) {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))};
    }
    ZEL_INLINE static Vec loadFirst(const T* p, int n) {
        return {loadUpTo32(p, n * static_cast<int>(sizeof(T)))};
    }
    ZEL_INLINE void store(T* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    ZEL_INLINE void storeFirst(T* p, int n) const {
        storeUpTo32(p, v, n * static_cast<int>(sizeof(T)));
    }
};

template <typename T>
ZEL_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) {
    return {_mm256_xor_si256(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return {_mm256_and_si256(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) {
    return {_mm256_or_si256(a.v, b.v)};
}

/// A lane is all ones where it hits.
template <typename T>
struct Hits {
    __m256i hit;

    ZEL_INLINE Mask<T> mask() const {
        const auto bits = static_cast<unsigned>(_mm256_movemask_epi8(hit));
        return {sizeof(T) == 1 ? bits : bits & 0x55555555};
    }
    ZEL_INLINE bool any() const { return _mm256_movemask_epi8(hit) != 0; }
    friend ZEL_INLINE Hits operator|(Hits a, Hits b) { return {_mm256_or_si256(a.hit, b.hit)}; }
    friend ZEL_INLINE Hits operator&(Hits a, Hits b) { return {_mm256_and_si256(a.hit, b.hit)}; }
};

template <typename T>
ZEL_INLINE Hits<T> equal(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm256_cmpeq_epi8(a.v, b.v)};
    else
        return {_mm256_cmpeq_epi16(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Hits<T> andEqual(Hits<T> hits, Vec<T> a, Vec<T> b) {
    return hits & equal(a, b);
}
template <typename T>
ZEL_INLINE uint64_t equalBits(Vec<T> a, Vec<T> b) {
    return equal(a, b).mask().bits;
}

/// Two vectors of units as one of bytes, groups of eight units of a and b taking turns: saturated
/// (units of 0x100 to 0x7FFF to 0xFF, those above to 0), the low bytes, the high bytes.
ZEL_INLINE Vec<Zel8u> packSaturated(Vec<Zel16u> a, Vec<Zel16u> b) {
    return {_mm256_packus_epi16(a.v, b.v)};
}
ZEL_INLINE Vec<Zel8u> packLow(Vec<Zel16u> a, Vec<Zel16u> b) {
    const Vec<Zel16u> low = Vec<Zel16u>::splat(0xFF);
    return packSaturated(a & low, b & low);
}
ZEL_INLINE Vec<Zel8u> packHigh(Vec<Zel16u> a, Vec<Zel16u> b) {
    return {_mm256_packus_epi16(_mm256_srli_epi16(a.v, 8), _mm256_srli_epi16(b.v, 8))};
}

/// A lane is not zero where two vectors differ.
template <typename T>
struct Differences {
    __m256i v;

    ZEL_INLINE Mask<T> mask() const { return ~equal(Vec<T>{v}, Vec<T>::zero()).mask(); }
    ZEL_INLINE bool any() const { return _mm256_testz_si256(v, v) == 0; }
    friend ZEL_INLINE Differences operator|(Differences a, Differences b) {
        return {_mm256_or_si256(a.v, b.v)};
    }
};

template <typename T>
ZEL_INLINE Differences<T> difference(Vec<T> a, Vec<T> b) {
    return {(a ^ b).v};
}
/// The differences so far and those of a and b.
template <typename T>
ZEL_INLINE Differences<T> andDifference(Differences<T> soFar, Vec<T> a, Vec<T> b) {
    return soFar | difference(a, b);
}

/// Where two vectors differ when A-Z and a-z are alike: the case bit of a difference does not count
/// where one of the two, and so the other, is a letter.
template <typename T>
ZEL_INLINE Differences<T> differenceIgnoringLatinCase(Vec<T> a, Vec<T> b) {
    constexpr int kLowest = sizeof(T) == 1 ? 0x80 : 0x8000;
    const Vec<T> caseBit = Vec<T>::splat(0x20);
    const Vec<T> small = a | caseBit;
    const auto limit = Vec<T>::splat(static_cast<T>(kLowest + 26)).v;
    const auto shift = Vec<T>::splat(static_cast<T>(kLowest - 'a')).v;
    Vec<T> isLetter;
    if constexpr (sizeof(T) == 1)
        isLetter.v = _mm256_cmpgt_epi8(limit, _mm256_add_epi8(small.v, shift));
    else
        isLetter.v = _mm256_cmpgt_epi16(limit, _mm256_add_epi16(small.v, shift));
    return {_mm256_andnot_si256((isLetter & caseBit).v, (a ^ b).v)};
}

/// Adds delta to the elements from low to low + count - 1. The comparison is signed, so the range
/// is moved to the lowest signed values first.
template <typename T>
ZEL_INLINE Vec<T> addInRange(Vec<T> v, T low, T count, T delta) {
    constexpr int kLowest = sizeof(T) == 1 ? 0x80 : 0x8000;
    const auto limit = Vec<T>::splat(static_cast<T>(kLowest + count)).v;
    const auto shift = Vec<T>::splat(static_cast<T>(kLowest - low)).v;
    const auto step = Vec<T>::splat(delta).v;
    if constexpr (sizeof(T) == 1) {
        const auto inside = _mm256_cmpgt_epi8(limit, _mm256_add_epi8(v.v, shift));
        return {_mm256_add_epi8(v.v, _mm256_and_si256(inside, step))};
    } else {
        const auto inside = _mm256_cmpgt_epi16(limit, _mm256_add_epi16(v.v, shift));
        return {_mm256_add_epi16(v.v, _mm256_and_si256(inside, step))};
    }
}

/// v with `to` where it equals `from`.
template <typename T>
ZEL_INLINE Vec<T> replaceEqual(Vec<T> v, Vec<T> from, Vec<T> to) {
    const Vec<T> hit{equal(v, from).hit};
    return (hit & to) | Vec<T>{_mm256_andnot_si256(hit.v, v.v)};
}

/// The units from low to low + count - 1.
ZEL_INLINE Mask<Zel16u> rangeMask(Vec<Zel16u> v, Zel16u low, Zel16u count) {
    const auto limit = Vec<Zel16u>::splat(static_cast<Zel16u>(0x8000 + count)).v;
    const auto shift = Vec<Zel16u>::splat(static_cast<Zel16u>(0x8000 - low)).v;
    return Hits<Zel16u>{_mm256_cmpgt_epi16(limit, _mm256_add_epi16(v.v, shift))}.mask();
}

/// The bytes from 0x80 to 0xBF.
ZEL_INLINE Mask<Zel8u> continuations(Vec<Zel8u> v) {
    return Hits<Zel8u>{_mm256_cmpgt_epi8(_mm256_set1_epi8(-64), v.v)}.mask();
}

/// The two halves, and two pieces of nothing.
ZEL_INLINE void splitIntoSixteens(Vec<Zel8u> v, __m128i (&piece)[4]) {
    piece[0] = _mm256_castsi256_si128(v.v);
    piece[1] = _mm256_extracti128_si256(v.v, 1);
    piece[2] = piece[3] = _mm_setzero_si128();
}

}  // namespace zel::ZEL_ISA
