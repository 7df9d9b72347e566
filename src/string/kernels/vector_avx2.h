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
template <typename T>
ZEL_INLINE Vec<T> operator+(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm256_add_epi8(a.v, b.v)};
    else
        return {_mm256_add_epi16(a.v, b.v)};
}
/// a where b has no bits.
template <typename T>
ZEL_INLINE Vec<T> andNot(Vec<T> a, Vec<T> b) {
    return {_mm256_andnot_si256(b.v, a.v)};
}

/// All ones in the lanes where a equals b, or is greater as a signed number.
template <typename T>
ZEL_INLINE Vec<T> equalLanes(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm256_cmpeq_epi8(a.v, b.v)};
    else
        return {_mm256_cmpeq_epi16(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> greaterLanes(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm256_cmpgt_epi8(a.v, b.v)};
    else
        return {_mm256_cmpgt_epi16(a.v, b.v)};
}

/// The top bits of all bytes.
template <typename T>
ZEL_INLINE uint32_t topBits(Vec<T> a) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(a.v));
}
template <typename T>
ZEL_INLINE bool isZero(Vec<T> a) {
    return _mm256_testz_si256(a.v, a.v) != 0;
}

}  // namespace zel::ZEL_ISA

#include "string/kernels/vector_narrow.h"

namespace zel::ZEL_ISA {

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

/// The two halves, and two pieces of nothing.
ZEL_INLINE void splitIntoSixteens(Vec<Zel8u> v, __m128i (&piece)[4]) {
    piece[0] = _mm256_castsi256_si128(v.v);
    piece[1] = _mm256_extracti128_si256(v.v, 1);
    piece[2] = piece[3] = _mm_setzero_si128();
}

}  // namespace zel::ZEL_ISA
