// Which bytes of a short text are in which sets, for those who ask about the same text more than
// once. A set takes a byte of its 16 by the low half of a character, by a shuffle, and of that the
// bit that the high half stands for; this bit does not depend on the set. SSE2 has no byte shuffle
// and looks up one byte at a time.
#pragma once

#include "string/kernels/vector.h"

namespace zel::ZEL_ISA {

#if defined(ZEL_ISA_AVX512)

struct AsciiText {
    __m512i bytes;
    __m512i bits;

    ZEL_INLINE AsciiText(const Zel8u* p, int n) {
        const __m512i bitOf = _mm512_set1_epi64(static_cast<long long>(0x8040201008040201));
        bytes = Vec<Zel8u>::loadFirst(p, n).v;
        bits = _mm512_shuffle_epi8(
            bitOf, _mm512_and_si512(_mm512_srli_epi16(bytes, 4), _mm512_set1_epi8(0x0F)));
    }
    ZEL_INLINE bool isAscii() const { return _mm512_movepi8_mask(bytes) == 0; }
    ZEL_INLINE uint64_t membersOf(const Zel8u* set) const {
        const __m512i rows =
            _mm512_broadcast_i32x4(_mm_loadu_si128(reinterpret_cast<const __m128i*>(set)));
        return _mm512_test_epi8_mask(_mm512_shuffle_epi8(rows, bytes), bits);
    }
};

#elif defined(ZEL_ISA_AVX2)

struct AsciiText {
    __m256i bytes[2];
    __m256i bits[2];

    ZEL_INLINE AsciiText(const Zel8u* p, int n) {
        const __m256i bitOf = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201));
        bytes[0] = Vec<Zel8u>::loadFirst(p, n < 32 ? n : 32).v;
        bytes[1] = n > 32 ? Vec<Zel8u>::loadFirst(p + 32, n - 32).v : _mm256_setzero_si256();
        for (int i = 0; i < 2; ++i) {
            bits[i] = _mm256_shuffle_epi8(
                bitOf, _mm256_and_si256(_mm256_srli_epi16(bytes[i], 4), _mm256_set1_epi8(0x0F)));
        }
    }
    ZEL_INLINE bool isAscii() const {
        return _mm256_movemask_epi8(_mm256_or_si256(bytes[0], bytes[1])) == 0;
    }
    ZEL_INLINE uint64_t membersOf(const Zel8u* set) const {
        const __m256i rows =
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(set)));
        const auto half = [&](int i) {
            const __m256i found = _mm256_and_si256(_mm256_shuffle_epi8(rows, bytes[i]), bits[i]);
            return uint64_t{
                static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(found, bits[i])))};
        };
        return half(0) | half(1) << 32;
    }
};

#else

struct AsciiText {
    const Zel8u* text;
    int length;

    AsciiText(const Zel8u* p, int n) : text(p), length(n) {}
    bool isAscii() const {
        Zel8u all = 0;
        for (int i = 0; i < length; ++i) all = static_cast<Zel8u>(all | text[i]);
        return all < 0x80;
    }
    uint64_t membersOf(const Zel8u* set) const {
        uint64_t members = 0;
        for (int i = 0; i < length; ++i)
            members |= uint64_t{(set[text[i] & 15] >> (text[i] >> 4)) & 1u} << i;
        return members;
    }
};

#endif

ZEL_INLINE bool maskAsciiSets(const Zel8u* p, int len, const kernels::AsciiSets& sets,
                              kernels::TextMasks& masks) {
    uint64_t(*words)[kernels::TextMasks::kMaxSets] = masks.words;
    for (;; p += 64, len -= 64, ++words) {
        const int n = len < 64 ? len : 64;
        const AsciiText text(p, n);
        if (!text.isAscii()) return false;
        const uint64_t inText = lowBits(n);
        for (int i = 0; i < sets.count; ++i)
            (*words)[i] = text.membersOf(sets.own + 16 * i) & inText;
        for (unsigned left = sets.which; left != 0; left &= left - 1) {
            const int i = countTrailingZeros(left);
            (*words)[kernels::AsciiSets::kFirstShared + i] =
                text.membersOf(sets.shared + 16 * i) & inText;
        }
        if (len < 64) return true;
    }
}

}  // namespace zel::ZEL_ISA
