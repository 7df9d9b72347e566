// The vector model of SSE2, the baseline of the platform: 16 bytes.
#pragma once

#include "string/kernels/partial_sse2.h"

namespace zel::ZEL_ISA {

template <typename T>
struct Vec {
    static constexpr int kBytes = 16;
    static constexpr int kLanes = kBytes / static_cast<int>(sizeof(T));
    static constexpr int kMaskStep = static_cast<int>(sizeof(T));
    __m128i v;

    ZEL_INLINE static Vec zero() { return {_mm_setzero_si128()}; }
    ZEL_INLINE static Vec splat(T x) {
        if constexpr (sizeof(T) == 1)
            return {_mm_set1_epi8(static_cast<char>(x))};
        else
            return {_mm_set1_epi16(static_cast<short>(x))};
    }
    ZEL_INLINE static Vec load(const T* p) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    ZEL_INLINE static Vec loadFirst(const T* p, int n) {
        return {loadUpTo16(p, n * static_cast<int>(sizeof(T)))};
    }
    ZEL_INLINE void store(T* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    ZEL_INLINE void storeFirst(T* p, int n) const {
        storeUpTo16(p, v, n * static_cast<int>(sizeof(T)));
    }
};

template <typename T>
ZEL_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) {
    return {_mm_xor_si128(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return {_mm_and_si128(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) {
    return {_mm_or_si128(a.v, b.v)};
}

/// A lane is all ones where it hits.
template <typename T>
struct Hits {
    __m128i hit;

    ZEL_INLINE Mask<T> mask() const {
        const auto bits = static_cast<unsigned>(_mm_movemask_epi8(hit));
        return {sizeof(T) == 1 ? bits : bits & 0x5555};
    }
    ZEL_INLINE bool any() const { return _mm_movemask_epi8(hit) != 0; }
    friend ZEL_INLINE Hits operator|(Hits a, Hits b) { return {_mm_or_si128(a.hit, b.hit)}; }
    friend ZEL_INLINE Hits operator&(Hits a, Hits b) { return {_mm_and_si128(a.hit, b.hit)}; }
};

template <typename T>
ZEL_INLINE Hits<T> equal(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm_cmpeq_epi8(a.v, b.v)};
    else
        return {_mm_cmpeq_epi16(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Hits<T> andEqual(Hits<T> hits, Vec<T> a, Vec<T> b) {
    return hits & equal(a, b);
}
template <typename T>
ZEL_INLINE uint64_t equalBits(Vec<T> a, Vec<T> b) {
    return equal(a, b).mask().bits;
}

/// A lane is not zero where two vectors differ.
template <typename T>
struct Differences {
    __m128i v;

    ZEL_INLINE Mask<T> mask() const { return ~equal(Vec<T>{v}, Vec<T>::zero()).mask(); }
    ZEL_INLINE bool any() const { return mask().any(); }
    friend ZEL_INLINE Differences operator|(Differences a, Differences b) {
        return {_mm_or_si128(a.v, b.v)};
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
        isLetter.v = _mm_cmpgt_epi8(limit, _mm_add_epi8(small.v, shift));
    else
        isLetter.v = _mm_cmpgt_epi16(limit, _mm_add_epi16(small.v, shift));
    return {_mm_andnot_si128((isLetter & caseBit).v, (a ^ b).v)};
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
        const auto inside = _mm_cmpgt_epi8(limit, _mm_add_epi8(v.v, shift));
        return {_mm_add_epi8(v.v, _mm_and_si128(inside, step))};
    } else {
        const auto inside = _mm_cmpgt_epi16(limit, _mm_add_epi16(v.v, shift));
        return {_mm_add_epi16(v.v, _mm_and_si128(inside, step))};
    }
}

/// v with `to` where it equals `from`.
template <typename T>
ZEL_INLINE Vec<T> replaceEqual(Vec<T> v, Vec<T> from, Vec<T> to) {
    const Vec<T> hit{equal(v, from).hit};
    return (hit & to) | Vec<T>{_mm_andnot_si128(hit.v, v.v)};
}

/// The units from low to low + count - 1.
ZEL_INLINE Mask<Zel16u> rangeMask(Vec<Zel16u> v, Zel16u low, Zel16u count) {
    const auto limit = Vec<Zel16u>::splat(static_cast<Zel16u>(0x8000 + count)).v;
    const auto shift = Vec<Zel16u>::splat(static_cast<Zel16u>(0x8000 - low)).v;
    return Hits<Zel16u>{_mm_cmpgt_epi16(limit, _mm_add_epi16(v.v, shift))}.mask();
}

/// The bytes from 0x80 to 0xBF.
ZEL_INLINE Mask<Zel8u> continuations(Vec<Zel8u> v) {
    return Hits<Zel8u>{_mm_cmpgt_epi8(_mm_set1_epi8(-64), v.v)}.mask();
}

}  // namespace zel::ZEL_ISA
