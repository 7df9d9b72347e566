// Running exclusive-or over the bytes of a vector.
//
// AVX-512 transposes the bytes into eight planes of 64 bits, multiplies each plane without carries
// by all ones, which is the running exclusive-or of its bits, and transposes back. The others
// double the distance four times.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

#if defined(ZEL_ISA_AVX512)

/// Each byte becomes the exclusive-or of all bytes in front of it.
ZEL_INLINE Vec<Zel8u> exclusiveOrBefore(Vec<Zel8u> v) {
    // The product of a matrix with the unit vectors is its transposition. It comes with the first
    // row in the highest bits, so the first bytes go to the high end of the planes as well, and a
    // plane's running exclusive-or from there on is the upper half of its product.
    const __m512i units = _mm512_set1_epi64(static_cast<long long>(0x8040201008040201));
    const __m512i unitsReversed = _mm512_set1_epi64(0x0102040810204080);
    const __m512i byPlane = _mm512_set_epi8(
        7, 15, 23, 31, 39, 47, 55, 63, 6, 14, 22, 30, 38, 46, 54, 62, 5, 13, 21, 29, 37, 45, 53, 61,
        4, 12, 20, 28, 36, 44, 52, 60, 3, 11, 19, 27, 35, 43, 51, 59, 2, 10, 18, 26, 34, 42, 50, 58,
        1, 9, 17, 25, 33, 41, 49, 57, 0, 8, 16, 24, 32, 40, 48, 56);
    // The inverse: of each group of eight bytes the planes, in descending order.
    const __m512i byGroup = _mm512_set_epi8(
        0, 8, 16, 24, 32, 40, 48, 56, 1, 9, 17, 25, 33, 41, 49, 57, 2, 10, 18, 26, 34, 42, 50, 58,
        3, 11, 19, 27, 35, 43, 51, 59, 4, 12, 20, 28, 36, 44, 52, 60, 5, 13, 21, 29, 37, 45, 53, 61,
        6, 14, 22, 30, 38, 46, 54, 62, 7, 15, 23, 31, 39, 47, 55, 63);
    const __m512i ones = _mm512_set1_epi64(-1);
    const __m512i planes =
        _mm512_permutexvar_epi8(byPlane, _mm512_gf2p8affine_epi64_epi8(units, v.v, 0));
    const __m512i even = _mm512_clmulepi64_epi128(planes, ones, 0x00);
    const __m512i odd = _mm512_clmulepi64_epi128(planes, ones, 0x01);
    const __m512i before = _mm512_unpackhi_epi64(even, odd);
    return {
        _mm512_gf2p8affine_epi64_epi8(unitsReversed, _mm512_permutexvar_epi8(byGroup, before), 0)};
}

/// The last byte in every lane.
ZEL_INLINE Vec<Zel8u> splatLast(Vec<Zel8u> v) {
    return {_mm512_permutexvar_epi8(_mm512_set1_epi8(63), v.v)};
}

/// Each byte times 33.
ZEL_INLINE Vec<Zel8u> times33(Vec<Zel8u> v) {
    const __m512i high = _mm512_and_si512(_mm512_slli_epi16(v.v, 5), _mm512_set1_epi8(-0x20));
    return {_mm512_add_epi8(v.v, high)};
}

#elif defined(ZEL_ISA_AVX2)

ZEL_INLINE Vec<Zel8u> exclusiveOrBefore(Vec<Zel8u> v) {
    // Both halves by themselves, then all of the first one into the second.
    const __m256i lowHalfUp = _mm256_permute2x128_si256(v.v, v.v, 0x08);
    __m256i x = _mm256_alignr_epi8(v.v, lowHalfUp, 15);
    x = _mm256_xor_si256(x, _mm256_slli_si256(x, 1));
    x = _mm256_xor_si256(x, _mm256_slli_si256(x, 2));
    x = _mm256_xor_si256(x, _mm256_slli_si256(x, 4));
    x = _mm256_xor_si256(x, _mm256_slli_si256(x, 8));
    const __m256i last = _mm256_shuffle_epi8(x, _mm256_set1_epi8(15));
    return {_mm256_xor_si256(x, _mm256_permute2x128_si256(last, last, 0x08))};
}

ZEL_INLINE Vec<Zel8u> splatLast(Vec<Zel8u> v) {
    const __m256i highHalf = _mm256_permute4x64_epi64(v.v, 0xEE);
    return {_mm256_shuffle_epi8(highHalf, _mm256_set1_epi8(15))};
}

ZEL_INLINE Vec<Zel8u> times33(Vec<Zel8u> v) {
    const __m256i high = _mm256_and_si256(_mm256_slli_epi16(v.v, 5), _mm256_set1_epi8(-0x20));
    return {_mm256_add_epi8(v.v, high)};
}

#else

ZEL_INLINE Vec<Zel8u> exclusiveOrBefore(Vec<Zel8u> v) {
    __m128i x = _mm_slli_si128(v.v, 1);
    x = _mm_xor_si128(x, _mm_slli_si128(x, 1));
    x = _mm_xor_si128(x, _mm_slli_si128(x, 2));
    x = _mm_xor_si128(x, _mm_slli_si128(x, 4));
    return {_mm_xor_si128(x, _mm_slli_si128(x, 8))};
}

ZEL_INLINE Vec<Zel8u> splatLast(Vec<Zel8u> v) {
    const __m128i twice = _mm_unpackhi_epi8(v.v, v.v);
    return {_mm_shuffle_epi32(_mm_shufflehi_epi16(twice, 0xFF), 0xFF)};
}

ZEL_INLINE Vec<Zel8u> times33(Vec<Zel8u> v) {
    const __m128i high = _mm_and_si128(_mm_slli_epi16(v.v, 5), _mm_set1_epi8(-0x20));
    return {_mm_add_epi8(v.v, high)};
}

#endif

}  // namespace zel::ZEL_ISA
