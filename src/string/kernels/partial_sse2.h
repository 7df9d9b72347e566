// Loads and stores of up to 16 bytes that touch no other byte, from overlapping smaller ones, and
// the bit scans of models without masks.
#pragma once

namespace zel::ZEL_ISA {

ZEL_INLINE uint64_t lowBits(int n) {
    return n >= 64 ? ~uint64_t{0} : (uint64_t{1} << n) - 1;
}
ZEL_INLINE int countTrailingZeros(uint64_t bits) {
    return bits == 0 ? 64 : __builtin_ctzll(bits);
}
ZEL_INLINE int64_t minusOne() {
    return -1;
}
ZEL_INLINE int countLeadingZeros(uint64_t bits) {
    return bits == 0 ? 64 : __builtin_clzll(bits);
}

}  // namespace zel::ZEL_ISA

#include "string/kernels/mask.h"

namespace zel::ZEL_ISA {

/// The first n bytes at p, 0 to 16 of them; the others are zero.
ZEL_INLINE __m128i loadUpTo16(const void* from, int n) {
    const char* const p = static_cast<const char*>(from);
    if (n >= 16) return _mm_loadu_si128(static_cast<const __m128i*>(from));
    if (n >= 8) {
        const auto low = loadWord<long long>(p);
        const auto top = loadWord<uint64_t>(p + n - 8);
        // The bytes of `top` that are not in `low`; two shifts, because n = 8 leaves none.
        return _mm_set_epi64x(static_cast<long long>(top >> 8 >> (8 * (15 - n))), low);
    }
    uint64_t low = 0;
    if (n >= 4) {
        low = loadWord<uint32_t>(p) | uint64_t{loadWord<uint32_t>(p + n - 4)} << (8 * (n - 4));
    } else if (n > 0) {
        const auto byte = [p](int i) { return uint64_t{static_cast<Zel8u>(p[i])} << (8 * i); };
        low = byte(0) | byte(n / 2) | byte(n - 1);
    }
    return _mm_cvtsi64_si128(static_cast<long long>(low));
}

/// Stores the first n bytes of v, 0 to 16 of them.
ZEL_INLINE void storeUpTo16(void* to, __m128i v, int n) {
    char* const p = static_cast<char*>(to);
    if (n >= 16) {
        _mm_storeu_si128(static_cast<__m128i*>(to), v);
        return;
    }
    const auto low = static_cast<uint64_t>(_mm_cvtsi128_si64(v));
    if (n >= 8) {
        const auto high = static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(v, v)));
        const int over = 8 * (n - 8);
        storeWord(p, low);
        storeWord(p + n - 8, low >> over | high << 1 << (63 - over));
    } else if (n >= 4) {
        storeWord(p, static_cast<uint32_t>(low));
        storeWord(p + n - 4, static_cast<uint32_t>(low >> (8 * (n - 4))));
    } else if (n > 0) {
        const auto put = [p, low](int i) { p[i] = static_cast<char>(low >> (8 * i)); };
        put(0);
        put(n / 2);
        put(n - 1);
    }
}

}  // namespace zel::ZEL_ISA
