// UTF-8 to UTF-16, a block at a time, as long as blocks are ordinary: whole sequences of up to four
// bytes in their shortest form, below U+100000, for whose units there is room. What is not ordinary
// is left to the rule for one character.
//
// AVX-512 takes 64 bytes at a time. Every byte that begins a character is made into the low and the
// high byte of its unit, at its own place, from itself and the two bytes behind it; of a pair of
// surrogates the second is made at the second byte. Two compressions then close the gaps. A
// character belongs to the block in which it begins; its bytes in the next block are checked there
// against what this one says, and skipped.
//
// The others widen ASCII, and take runs of sequences of two bytes or of three, eight or four at a
// time.
#pragma once

#include "string/kernels/utf_cursor.h"

namespace zel::ZEL_ISA {

using To16 = Cursor<Zel8u, Zel16u>;

#if defined(ZEL_ISA_AVX512)

/// 64 bytes of text, and those that are one to three bytes further on.
struct Utf8Block {
    __m512i byte[4];

    ZEL_INLINE static Utf8Block load(const Zel8u* p) {
        return {{_mm512_loadu_si512(p), _mm512_loadu_si512(p + 1), _mm512_loadu_si512(p + 2),
                 _mm512_loadu_si512(p + 3)}};
    }
    /// Of n bytes all that is there; zeros behind.
    ZEL_INLINE static Utf8Block loadFirst(const Zel8u* p, long n) {
        const auto part = [p, n](int at) {
            const long rest = n - at < 64 ? n - at : 64;
            return _mm512_maskz_loadu_epi8(lowBits(rest > 0 ? static_cast<int>(rest) : 0), p + at);
        };
        return {{part(0), part(1), part(2), part(3)}};
    }
};

class Utf8BlockConverter {
public:
    explicit Utf8BlockConverter(To16 at) : at_(at) {}

    /// Answers where it ended.
    ZEL_INLINE To16 run() {
        while (at_.remaining >= kWhole && at_.room >= 64) {
            const __m512i bytes = _mm512_loadu_si512(at_.src);
            if (_mm512_movepi8_mask(bytes) == 0) {
                widen(bytes);
            } else if (!convert(Utf8Block::load(at_.src), 64)) {
                return end();
            }
        }
        while (at_.remaining > 0 && at_.room > 0) {
            const int n = static_cast<int>(at_.remaining < 64 ? at_.remaining : 64);
            const __m512i bytes = Vec<Zel8u>::loadFirst(at_.src, n).v;
            if (_mm512_movepi8_mask(bytes) == 0) {
                widenFirst(bytes, static_cast<int>(at_.room < n ? at_.room : n));
            } else if (!convert(Utf8Block::loadFirst(at_.src, at_.remaining), n)) {
                break;
            }
        }
        return end();
    }

private:
    // A block and the bytes behind it that its last character may take.
    static constexpr int kWhole = 67;

    /// Passes over what the last character has taken of the next block.
    ZEL_INLINE To16 end() {
        at_.advance(__builtin_popcountll(owed_), 0);
        return at_;
    }

    /// Widens 64 bytes of ASCII.
    ZEL_INLINE void widen(__m512i bytes) {
        const __m256i upper = _mm512_extracti64x4_epi64(bytes, 1);
        _mm512_storeu_si512(at_.dst, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes)));
        _mm512_storeu_si512(at_.dst + 32, _mm512_cvtepu8_epi16(upper));
        at_.advance(64, 64);
    }
    /// Widens the first n.
    ZEL_INLINE void widenFirst(__m512i bytes, int n) {
        const __m512i low = _mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes));
        _mm512_mask_storeu_epi16(at_.dst, static_cast<__mmask32>(lowBits(n)), low);
        if (n > 32) {
            const __m512i high = _mm512_cvtepu8_epi16(_mm512_extracti64x4_epi64(bytes, 1));
            _mm512_mask_storeu_epi16(at_.dst + 32, static_cast<__mmask32>(lowBits(n - 32)), high);
        }
        at_.advance(n, n);
    }

    /// Converts the characters that begin in the first n bytes, at most 64, if they are ordinary
    /// and fit.
    ZEL_INLINE bool convert(const Utf8Block& block, int n) {
        const __m512i v0 = block.byte[0], v1 = block.byte[1], v2 = block.byte[2];
        const uint64_t high = _mm512_movepi8_mask(v0);
        const uint64_t continuation = continuationsOf(v0);
        const uint64_t notContinuation = ~continuation & lowBits(n);
        uint64_t lead = high & ~continuation;
        const uint64_t lead3 = _mm512_cmpge_epu8_mask(v0, _mm512_set1_epi8(kLead3));
        uint64_t lead4 = _mm512_cmpge_epu8_mask(v0, _mm512_set1_epi8(kLead4));
        uint64_t begins = notContinuation;
        const uint64_t bad =
            _mm512_mask_cmplt_epu8_mask(lead, v1, _mm512_permutexvar_epi8(v0, leastSecond()));
        if (lead4 >> 63 != 0) {
            // Its pair would not end in this block: it begins the next one.
            --n;
            lead ^= kLast;
            lead4 ^= kLast;
            begins ^= kLast;
        }
        const uint64_t expected = lead << 1 | (lead3 & lead) << 2 | lead4 << 3 | owed_;
        const uint64_t owed = lead >> 63 | (lead3 & lead) >> 62 | lead4 >> 61;
        const uint64_t next = continuationsOf(block.byte[3]) >> 61;
        if (((expected ^ continuation) | bad | (owed & ~next)) != 0) return false;

        const uint64_t secondOfPair = lead4 << 1;
        const uint64_t units = begins | secondOfPair;
        const int count = __builtin_popcountll(units);
        if (count > at_.room) return false;

        // The last two bytes of a sequence of two or three, or of the second unit of a pair.
        const uint64_t three = lead3 | secondOfPair;
        const __m512i secondLast = _mm512_mask_mov_epi8(v0, three, v1);
        const __m512i last = _mm512_mask_mov_epi8(v1, three, v2);
        const __m512i lowNibble = _mm512_set1_epi8(0x0F);
        const __m512i down2 = _mm512_srli_epi16(secondLast, 2);
        __m512i low = choose(_mm512_set1_epi8(0x3F), last, _mm512_slli_epi16(secondLast, 6));
        low = _mm512_mask_mov_epi8(v0, high, low);
        __m512i top = _mm512_maskz_mov_epi8(lead3, _mm512_slli_epi16(v0, 4));
        top = _mm512_maskz_mov_epi8(high, choose(lowNibble, down2, top));
        if (lead4 != 0) {
            // The first unit is 0xD7C0 + the value's bits from the tenth on.
            const __m512i bits =
                choose(_mm512_set1_epi8(~3), _mm512_slli_epi16(v1, 2), _mm512_srli_epi16(v2, 4));
            const __m512i sum = _mm512_sub_epi8(bits, _mm512_set1_epi8(0x40));
            const uint64_t carry = _mm512_cmpge_epu8_mask(bits, _mm512_set1_epi8(0x40));
            const __m512i first = _mm512_sub_epi8(v0, _mm512_set1_epi8(0xF0 - 0xD7));
            const __m512i one = _mm512_set1_epi8(1);
            const __m512i second = choose(_mm512_set1_epi8(3), down2, _mm512_set1_epi8(kLowTop));
            low = _mm512_mask_mov_epi8(low, lead4, sum);
            top = _mm512_mask_mov_epi8(top, lead4, _mm512_mask_add_epi8(first, carry, first, one));
            top = _mm512_mask_mov_epi8(top, secondOfPair, second);
        }
        store(units, low, top, count);
        owed_ = owed;
        at_.advance(n, count);
        return true;
    }

    /// Stores the units whose bits are set, `count` of them.
    ZEL_INLINE void store(uint64_t units, __m512i low, __m512i top, int count) {
        // Unpacking takes the eight bytes at the start, or the end, of every 16.
        const __m512i order = _mm512_set_epi64(7, 3, 6, 2, 5, 1, 4, 0);
        low = _mm512_permutexvar_epi64(order, _mm512_maskz_compress_epi8(units, low));
        top = _mm512_permutexvar_epi64(order, _mm512_maskz_compress_epi8(units, top));
        const uint64_t used = lowBits(count);
        _mm512_mask_storeu_epi16(at_.dst, static_cast<__mmask32>(used),
                                 _mm512_unpacklo_epi8(low, top));
        if (count > 32) {
            _mm512_mask_storeu_epi16(at_.dst + 32, static_cast<__mmask32>(used >> 32),
                                     _mm512_unpackhi_epi8(low, top));
        }
    }

    static constexpr char kLead3 = static_cast<char>(0xE0);
    static constexpr char kLead4 = static_cast<char>(0xF0);
    static constexpr char kLowTop = static_cast<char>(0xDC);
    static constexpr uint64_t kLast = uint64_t{1} << 63;

    ZEL_INLINE static uint64_t continuationsOf(__m512i v) {
        return continuations(Vec<Zel8u>{v}).bits;
    }
    /// Bits of `a` where the mask's bits are set, bits of b elsewhere.
    ZEL_INLINE static __m512i choose(__m512i mask, __m512i a, __m512i b) {
        return _mm512_ternarylogic_epi64(mask, a, b, 0xCA);
    }
    /// By the low 6 bits of a lead byte, what must follow it at least: more where the sequence
    /// would not be in its shortest form, 0xFF where it is none or not an ordinary one.
    ZEL_INLINE static __m512i leastSecond() {
        constexpr long long kAny = static_cast<long long>(0x8080808080808080);
        return _mm512_set_epi64(-1, static_cast<long long>(0xFFFFFFFF80808090), kAny,
                                static_cast<long long>(0x80808080808080A0), kAny, kAny, kAny,
                                static_cast<long long>(0x808080808080FFFF));
    }

    To16 at_;
    uint64_t owed_ = 0;  // the first bytes of the next block that belong to a character of this one
};

/// Converts as many blocks as are ordinary and answers where it ended.
ZEL_INLINE To16 convertBlocks(To16 at) {
    return Utf8BlockConverter(at).run();
}

#else

ZEL_INLINE To16 convertBlocks(To16 at) {
    return at;
}

#endif

}  // namespace zel::ZEL_ISA
