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
template <typename T>
ZEL_INLINE Vec<T> operator+(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm_add_epi8(a.v, b.v)};
    else
        return {_mm_add_epi16(a.v, b.v)};
}
/// a where b has no bits.
template <typename T>
ZEL_INLINE Vec<T> andNot(Vec<T> a, Vec<T> b) {
    return {_mm_andnot_si128(b.v, a.v)};
}

/// All ones in the lanes where a equals b, or is greater as a signed number.
template <typename T>
ZEL_INLINE Vec<T> equalLanes(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm_cmpeq_epi8(a.v, b.v)};
    else
        return {_mm_cmpeq_epi16(a.v, b.v)};
}
template <typename T>
ZEL_INLINE Vec<T> greaterLanes(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1)
        return {_mm_cmpgt_epi8(a.v, b.v)};
    else
        return {_mm_cmpgt_epi16(a.v, b.v)};
}

/// The top bits of all bytes.
template <typename T>
ZEL_INLINE uint32_t topBits(Vec<T> a) {
    return static_cast<uint32_t>(_mm_movemask_epi8(a.v));
}
template <typename T>
ZEL_INLINE bool isZero(Vec<T> a) {
    return topBits(equalLanes(a, Vec<T>::zero())) == 0xFFFF;
}

}  // namespace zel::ZEL_ISA

#include "string/kernels/vector_narrow.h"
