// Conversion of short ASCII between UTF-8 and UTF-16, whose price is that of the call.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

#if defined(ZEL_ISA_AVX512)

/// A vector of bytes, or what its units are widened to. The first n elements are in use.
struct AsciiPiece {
    static constexpr int kLanes = 64;

    ZEL_INLINE static bool isAscii(const Zel8u* p, int n) {
        return _mm512_movepi8_mask(Vec<Zel8u>::loadFirst(p, n).v) == 0;
    }
    ZEL_INLINE static bool isAscii(const Zel16u* p, int n) {
        const __m512i both = _mm512_or_si512(lowHalf(p, n), highHalf(p, n));
        return _mm512_test_epi16_mask(both, _mm512_set1_epi16(-0x80)) == 0;
    }
    ZEL_INLINE static void convert(const Zel8u* src, Zel16u* dst, int n) {
        const __m512i bytes = Vec<Zel8u>::loadFirst(src, n).v;
        const Vec<Zel16u> low = {_mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes))};
        const Vec<Zel16u> high = {_mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(bytes, 1))};
        low.storeFirst(dst, n);
        if (n > kLanes / 2) high.storeFirst(dst + kLanes / 2, n - kLanes / 2);
    }
    ZEL_INLINE static void convert(const Zel16u* src, Zel8u* dst, int n) {
        // Packing takes eight units of each in turn.
        const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
        const __m512i packed = _mm512_packus_epi16(lowHalf(src, n), highHalf(src, n));
        Vec<Zel8u>{_mm512_permutexvar_epi64(order, packed)}.storeFirst(dst, n);
    }

private:
    ZEL_INLINE static __m512i lowHalf(const Zel16u* p, int n) {
        return _mm512_maskz_loadu_epi16(static_cast<__mmask32>(lowBits(n)), p);
    }
    ZEL_INLINE static __m512i highHalf(const Zel16u* p, int n) {
        return _mm512_maskz_loadu_epi16(static_cast<__mmask32>(lowBits(n) >> 32), p + kLanes / 2);
    }
};

/// Converts a text that is ASCII and short and fits. Does nothing, and says so, for any other.
template <typename From, typename To>
ZEL_INLINE bool convertShortAscii(const From* src, int srcLen, To* dst, int dstLen) {
    constexpr int n = AsciiPiece::kLanes;
    if (srcLen <= 0 || srcLen > 4 * n || srcLen > dstLen || src[0] >= 0x80) return false;
    int at = 0;
    for (; srcLen - at > n; at += n) {
        if (!AsciiPiece::isAscii(src + at, n)) return false;
    }
    if (!AsciiPiece::isAscii(src + at, srcLen - at)) return false;
    for (at = 0; srcLen - at > n; at += n) AsciiPiece::convert(src + at, dst + at, n);
    AsciiPiece::convert(src + at, dst + at, srcLen - at);
    return true;
}

#else

template <typename From, typename To>
ZEL_INLINE bool convertShortAscii(const From*, int, To*, int) {
    return false;
}

#endif

}  // namespace zel::ZEL_ISA
