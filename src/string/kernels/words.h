// Vectors of 32-bit words, which the hashes compute in: the arithmetic of one model for all three
// instruction sets, and the ways from elements to words.
//
// Vec<T>::kLanes elements become Words::kLanes words in two ways: one element a word (widenFirst),
// or kPerWord neighbours a word, already combined as a polynomial (polynomials). In the latter the
// last element of a word has weight 1, the one in front of it `base`, and so on.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

/// Elements that one word of polynomials() takes up.
template <typename T>
inline constexpr int kPerWord = 4 / static_cast<int>(sizeof(T));

constexpr Zel32u power(Zel32u base, int exponent) {
    Zel32u result = 1;
    for (int i = 0; i < exponent; ++i) result *= base;
    return result;
}

/// All words of a vector combined to one, half with half. (The compiler's own sum of all lanes is
/// one of signed integers, which may not overflow.)
struct Sum {
    ZEL_INLINE static __m128i of(__m128i a, __m128i b) { return _mm_add_epi32(a, b); }
#if !defined(ZEL_ISA_SSE2)
    ZEL_INLINE static __m256i of(__m256i a, __m256i b) {
        return _mm256_add_epi32(a, b);
    }
#endif
};
struct ExclusiveOr {
    ZEL_INLINE static __m128i of(__m128i a, __m128i b) { return _mm_xor_si128(a, b); }
#if !defined(ZEL_ISA_SSE2)
    ZEL_INLINE static __m256i of(__m256i a, __m256i b) {
        return _mm256_xor_si256(a, b);
    }
#endif
};
template <typename Combine>
ZEL_INLINE Zel32u combineWords(__m128i v) {
    v = Combine::of(v, _mm_srli_si128(v, 8));
    v = Combine::of(v, _mm_srli_si128(v, 4));
    return static_cast<Zel32u>(_mm_cvtsi128_si32(v));
}

#if !defined(ZEL_ISA_SSE2)
template <typename Combine>
ZEL_INLINE Zel32u combineWords(__m256i v) {
    return combineWords<Combine>(
        Combine::of(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1)));
}
#endif

#if defined(ZEL_ISA_AVX512)

template <typename Combine>
ZEL_INLINE Zel32u combineWords(__m512i v) {
    return combineWords<Combine>(
        Combine::of(_mm512_castsi512_si256(v), _mm512_extracti64x4_epi64(v, 1)));
}

struct Words {
    static constexpr int kLanes = 16;
    __m512i v;

    ZEL_INLINE static Words zero() { return {_mm512_setzero_si512()}; }
    /// x in the last lane, zeros in front of it.
    ZEL_INLINE static Words last(Zel32u x) {
        return {_mm512_maskz_set1_epi32(0x8000, static_cast<int>(x))};
    }
    ZEL_INLINE static Words splat(Zel32u x) { return {_mm512_set1_epi32(static_cast<int>(x))}; }
    ZEL_INLINE static Words load(const Zel32u* p) { return {_mm512_loadu_si512(p)}; }
    ZEL_INLINE Words shiftLeft(Words by) const { return {_mm512_sllv_epi32(v, by.v)}; }
    ZEL_INLINE Zel32u sum() const { return combineWords<Sum>(v); }
    ZEL_INLINE Zel32u exclusiveOr() const { return combineWords<ExclusiveOr>(v); }

    friend ZEL_INLINE Words operator+(Words a, Words b) { return {_mm512_add_epi32(a.v, b.v)}; }
    friend ZEL_INLINE Words operator-(Words a, Words b) { return {_mm512_sub_epi32(a.v, b.v)}; }
    friend ZEL_INLINE Words operator^(Words a, Words b) { return {_mm512_xor_si512(a.v, b.v)}; }
    friend ZEL_INLINE Words operator*(Words a, Words b) { return {_mm512_mullo_epi32(a.v, b.v)}; }
};

/// The first n elements at p, at most Words::kLanes and possibly less than none, a word each; the
/// other words are zero.
template <typename T>
ZEL_INLINE Words widenFirst(const T* p, int n) {
    const auto lanes = static_cast<__mmask16>(lowBits(n > 0 ? n : 0));
    if constexpr (sizeof(T) == 1)
        return {_mm512_cvtepu8_epi32(_mm_maskz_loadu_epi8(lanes, p))};
    else
        return {_mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(lanes, p))};
}

/// The first n elements at p, 0 to all, in the last n lanes; the others are zero.
template <typename T>
ZEL_INLINE Vec<T> loadLast(const T* p, int n) {
    if constexpr (sizeof(T) == 1) {
        // Lane numbers are modulo 64, so that the lanes in front wrap into the empty ones.
        const __m512i from =
            _mm512_add_epi8(laneNumbers().v, _mm512_set1_epi8(static_cast<char>(n)));
        return {_mm512_permutexvar_epi8(from, Vec<T>::loadFirst(p, n).v)};
    } else {
        const __m512i lane =
            _mm512_set_epi16(31, 30, 29, 28, 27, 26, 25, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15, 14,
                             13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
        const __m512i from = _mm512_add_epi16(lane, _mm512_set1_epi16(static_cast<short>(n)));
        return {_mm512_permutexvar_epi16(from, Vec<T>::loadFirst(p, n).v)};
    }
}

/// base is less than 128.
template <Zel32u base>
ZEL_INLINE Words polynomials(Vec<Zel8u> v) {
    const __m512i pairs = _mm512_maddubs_epi16(v.v, _mm512_set1_epi16(0x0100 | base));
    return {_mm512_madd_epi16(pairs, _mm512_set1_epi32(0x10000 | base * base))};
}
template <Zel32u base>
ZEL_INLINE Words polynomials(Vec<Zel16u> v) {
    // The product takes signed factors: 0x8000 less here is made good behind it.
    const __m512i moved = _mm512_xor_si512(v.v, _mm512_set1_epi16(-0x8000));
    const __m512i pairs = _mm512_madd_epi16(moved, _mm512_set1_epi32(0x10000 | base));
    return {_mm512_add_epi32(pairs, _mm512_set1_epi32(0x8000 * (base + 1)))};
}

#elif defined(ZEL_ISA_AVX2)

struct Words {
    static constexpr int kLanes = 8;
    __m256i v;

    ZEL_INLINE static Words zero() { return {_mm256_setzero_si256()}; }
    ZEL_INLINE static Words last(Zel32u x) {
        return {_mm256_set_epi32(static_cast<int>(x), 0, 0, 0, 0, 0, 0, 0)};
    }
    ZEL_INLINE static Words splat(Zel32u x) { return {_mm256_set1_epi32(static_cast<int>(x))}; }
    ZEL_INLINE static Words load(const Zel32u* p) {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))};
    }
    ZEL_INLINE Words shiftLeft(Words by) const { return {_mm256_sllv_epi32(v, by.v)}; }
    ZEL_INLINE Zel32u sum() const { return combineWords<Sum>(v); }
    ZEL_INLINE Zel32u exclusiveOr() const { return combineWords<ExclusiveOr>(v); }

    friend ZEL_INLINE Words operator+(Words a, Words b) { return {_mm256_add_epi32(a.v, b.v)}; }
    friend ZEL_INLINE Words operator-(Words a, Words b) { return {_mm256_sub_epi32(a.v, b.v)}; }
    friend ZEL_INLINE Words operator^(Words a, Words b) { return {_mm256_xor_si256(a.v, b.v)}; }
    friend ZEL_INLINE Words operator*(Words a, Words b) { return {_mm256_mullo_epi32(a.v, b.v)}; }
};

template <typename T>
ZEL_INLINE Words widenFirst(const T* p, int n) {
    if (n <= 0) return Words::zero();
    const int bytes = (n < Words::kLanes ? n : Words::kLanes) * static_cast<int>(sizeof(T));
    if constexpr (sizeof(T) == 1)
        return {_mm256_cvtepu8_epi32(loadUpTo16(p, bytes))};
    else
        return {_mm256_cvtepu16_epi32(loadUpTo16(p, bytes))};
}

template <typename T>
ZEL_INLINE Vec<T> loadLast(const T* from, int n) {
    const char* const p = reinterpret_cast<const char*>(from);
    const int bytes = n * static_cast<int>(sizeof(T));
    if (bytes == 32) return Vec<T>::load(from);
    if (bytes < 16) {
        return {_mm256_inserti128_si256(_mm256_setzero_si256(),
                                        shiftBytesUp(loadUpTo16(p, bytes), 16 - bytes), 1)};
    }
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i top = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + bytes - 16));
    return {_mm256_set_m128i(top, shiftBytesUp(low, 32 - bytes))};
}

template <Zel32u base>
ZEL_INLINE Words polynomials(Vec<Zel8u> v) {
    const __m256i pairs = _mm256_maddubs_epi16(v.v, _mm256_set1_epi16(0x0100 | base));
    return {_mm256_madd_epi16(pairs, _mm256_set1_epi32(0x10000 | base * base))};
}
template <Zel32u base>
ZEL_INLINE Words polynomials(Vec<Zel16u> v) {
    const __m256i moved = _mm256_xor_si256(v.v, _mm256_set1_epi16(-0x8000));
    const __m256i pairs = _mm256_madd_epi16(moved, _mm256_set1_epi32(0x10000 | base));
    return {_mm256_add_epi32(pairs, _mm256_set1_epi32(0x8000 * (base + 1)))};
}

#else

struct Words {
    static constexpr int kLanes = 4;
    __m128i v;

    ZEL_INLINE static Words zero() { return {_mm_setzero_si128()}; }
    ZEL_INLINE static Words last(Zel32u x) { return {_mm_set_epi32(static_cast<int>(x), 0, 0, 0)}; }
    ZEL_INLINE static Words splat(Zel32u x) { return {_mm_set1_epi32(static_cast<int>(x))}; }
    ZEL_INLINE static Words load(const Zel32u* p) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    /// A multiplication by powers of two, made as the exponents of floating-point numbers, of which
    /// the 32nd comes out as 0x80000000 too.
    ZEL_INLINE Words shiftLeft(Words by) const {
        const __m128i exponent = _mm_slli_epi32(_mm_add_epi32(by.v, _mm_set1_epi32(127)), 23);
        return *this * Words{_mm_cvttps_epi32(_mm_castsi128_ps(exponent))};
    }
    ZEL_INLINE Zel32u sum() const { return combineWords<Sum>(v); }
    ZEL_INLINE Zel32u exclusiveOr() const { return combineWords<ExclusiveOr>(v); }

    friend ZEL_INLINE Words operator+(Words a, Words b) { return {_mm_add_epi32(a.v, b.v)}; }
    friend ZEL_INLINE Words operator-(Words a, Words b) { return {_mm_sub_epi32(a.v, b.v)}; }
    friend ZEL_INLINE Words operator^(Words a, Words b) { return {_mm_xor_si128(a.v, b.v)}; }
    friend ZEL_INLINE Words operator*(Words a, Words b) {
        const __m128i even = _mm_mul_epu32(a.v, b.v);
        const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(a.v, 32), _mm_srli_epi64(b.v, 32));
        return {_mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                                   _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)))};
    }
};

template <typename T>
ZEL_INLINE Words widenFirst(const T* p, int n) {
    if (n <= 0) return Words::zero();
    const __m128i zero = _mm_setzero_si128();
    const int bytes = (n < Words::kLanes ? n : Words::kLanes) * static_cast<int>(sizeof(T));
    const __m128i v = loadUpTo16(p, bytes);
    if constexpr (sizeof(T) == 1)
        return {_mm_unpacklo_epi16(_mm_unpacklo_epi8(v, zero), zero)};
    else
        return {_mm_unpacklo_epi16(v, zero)};
}

template <typename T>
ZEL_INLINE Vec<T> loadLast(const T* p, int n) {
    const int bytes = n * static_cast<int>(sizeof(T));
    if (bytes == 16) return Vec<T>::load(p);
    Zel8u padded[32];
    _mm_storeu_si128(reinterpret_cast<__m128i*>(padded), _mm_setzero_si128());
    _mm_storeu_si128(reinterpret_cast<__m128i*>(padded + 16), loadUpTo16(p, bytes));
    return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(padded + bytes))};
}

template <Zel32u base>
ZEL_INLINE Words polynomials(Vec<Zel8u> v) {
    const __m128i first = _mm_and_si128(v.v, _mm_set1_epi16(0xFF));
    const __m128i second = _mm_srli_epi16(v.v, 8);
    const __m128i pairs = _mm_add_epi16(_mm_mullo_epi16(first, _mm_set1_epi16(base)), second);
    return {_mm_madd_epi16(pairs, _mm_set1_epi32(0x10000 | base * base))};
}
template <Zel32u base>
ZEL_INLINE Words polynomials(Vec<Zel16u> v) {
    const __m128i moved = _mm_xor_si128(v.v, _mm_set1_epi16(-0x8000));
    const __m128i pairs = _mm_madd_epi16(moved, _mm_set1_epi32(0x10000 | base));
    return {_mm_add_epi32(pairs, _mm_set1_epi32(0x8000 * (base + 1)))};
}

#endif

/// Polynomials whose last element moves `places` to the front.
template <Zel32u base, int places>
ZEL_INLINE Words advance(Words h) {
    constexpr Zel32u kWeight = power(base, places);
    return h * Words::splat(kWeight);
}

/// What the words of a vector of T weigh in a polynomial: the last one 1, each other one what its
/// place before the end makes of the base.
template <typename T, Zel32u base>
struct WordWeights {
    alignas(64) Zel32u of[Words::kLanes] = {};
    constexpr WordWeights() {
        for (int i = 0; i < Words::kLanes; ++i) {
            of[i] = power(base, kPerWord<T> * (Words::kLanes - 1 - i));
        }
    }
};
template <typename T, Zel32u base>
inline constexpr WordWeights<T, base> kWordWeights;

}  // namespace zel::ZEL_ISA
