// UTF-16 to UTF-8, a block at a time, as long as there is room for all of a block.
//
// AVX-512 takes 32 units at a time and builds the bytes of each character in a lane of its own: a
// unit's lane where none needs more than two bytes, else a double word. One compression closes the
// gaps. The lane of a pair's second unit stays empty; one at the start of a block is remembered
// from the block before. No text is special here, lone surrogates neither.
//
// AVX2 does the same with 16 units and shuffles in place of the compression, but leaves a block
// with surrogates to the rule for one character. SSE2 narrows ASCII.
#pragma once

#include "string/kernels/utf_cursor.h"

namespace zel::ZEL_ISA {

using To8 = Cursor<Zel16u, Zel8u>;

#if defined(ZEL_ISA_AVX512)

template <bool swapBytes>
class Utf16BlockConverter {
public:
    explicit Utf16BlockConverter(To8 at) : at_(at) {}

    /// Answers where it ended.
    ZEL_INLINE To8 run() {
        narrow();
        // The unit behind a block decides whether its last one begins a pair.
        while (at_.room > 0 && at_.readable() > kUnits) {
            if (wasAscii_ && narrow()) continue;
            const auto next = [this] { return _mm512_loadu_si512(at_.src + 1); };
            if (!convert(inOrder(_mm512_loadu_si512(at_.src)), next, kUnits)) return end();
        }
        if (at_.remaining > 0 && at_.remaining <= kUnits && at_.readable() == at_.remaining) {
            const int n = static_cast<int>(at_.remaining);
            const auto next = [this, n] { return Vec<Zel16u>::loadFirst(at_.src + 1, n - 1).v; };
            convert(inOrder(Vec<Zel16u>::loadFirst(at_.src, n).v), next, n);
        }
        return end();
    }

private:
    static constexpr int kUnits = 32;

    /// Passes over the second unit of the last pair.
    ZEL_INLINE To8 end() {
        at_.advance(owed_, 0);
        return at_;
    }

    ZEL_INLINE static __m512i inOrder(__m512i v) {
        if constexpr (!swapBytes) return v;
        return _mm512_or_si512(_mm512_slli_epi16(v, 8), _mm512_srli_epi16(v, 8));
    }

    /// The units of one kind of surrogates, which agree in the upper six bits.
    ZEL_INLINE static uint32_t surrogates(__m512i units, int first) {
        const __m512i kind = _mm512_and_si512(units, _mm512_set1_epi16(static_cast<short>(0xFC00)));
        return _mm512_cmpeq_epi16_mask(kind, _mm512_set1_epi16(static_cast<short>(first)));
    }

    ZEL_INLINE static uint32_t above7Bits(__m512i units) {
        return _mm512_test_epi16_mask(units, _mm512_set1_epi16(-0x80));
    }

    /// Narrows two blocks at a time, while they are ASCII. Answers whether there were any.
    ZEL_INLINE bool narrow() {
        constexpr int kTwo = 2 * kUnits;
        // Packing takes eight units of each in turn.
        const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
        const Zel16u* const start = at_.src;
        while (at_.readable() >= kTwo && at_.room >= kTwo) {
            const __m512i a = inOrder(_mm512_loadu_si512(at_.src));
            const __m512i b = inOrder(_mm512_loadu_si512(at_.src + kUnits));
            if (above7Bits(_mm512_or_si512(a, b)) != 0) break;
            const __m512i packed = _mm512_packus_epi16(a, b);
            _mm512_storeu_si512(at_.dst, _mm512_permutexvar_epi64(order, packed));
            at_.advance(kTwo, kTwo);
        }
        return at_.src != start;
    }

    /// Converts the first n units, if there is room for their bytes. `next` loads the units one
    /// further on.
    template <typename Next>
    ZEL_INLINE bool convert(__m512i units, Next next, int n) {
        const uint32_t above7 = above7Bits(units);
        wasAscii_ = above7 == 0;
        const uint32_t above11 = _mm512_test_epi16_mask(units, _mm512_set1_epi16(-0x800));
        if (above11 == 0) {
            const int count = n + __builtin_popcount(above7);
            if (count > at_.room) return false;
            if (wasAscii_) {
                _mm256_mask_storeu_epi8(at_.dst, static_cast<__mmask32>(lowBits(n)),
                                        _mm512_cvtepi16_epi8(units));
            } else {
                storeShort(units, above7, n, count);
            }
            at_.advance(n, count);
            return true;
        }

        uint32_t pairs = 0;
        __m512i second = _mm512_setzero_si512();
        if (const uint32_t high = surrogates(units, 0xD800); high != 0) {
            second = inOrder(next());
            pairs = high & surrogates(second, 0xDC00);
        }
        const uint32_t kept = static_cast<uint32_t>(lowBits(n)) & ~(pairs << 1 | owed_);
        const Sizes sizes = {kept, above7 & kept, above11 & kept, pairs};
        const int count = sizes.sum();
        if (count > at_.room) return false;
        storeLong(_mm512_castsi512_si256(units), _mm512_castsi512_si256(second), sizes.lowerHalf());
        storeLong(_mm512_extracti64x4_epi64(units, 1), _mm512_extracti64x4_epi64(second, 1),
                  sizes.upperHalf());
        at_.src += n;
        at_.remaining -= n;
        owed_ = pairs >> 31;
        return true;
    }

    /// Stores units below 0x800, in a word each.
    ZEL_INLINE void storeShort(__m512i units, uint32_t above7, int n, int count) {
        const __m512i bits = choose(_mm512_set1_epi16(0x3F00), _mm512_slli_epi16(units, 8),
                                    _mm512_srli_epi16(units, 6));
        const __m512i two = _mm512_or_si512(bits, _mm512_set1_epi16(static_cast<short>(0x80C0)));
        const __m512i bytes = _mm512_mask_mov_epi16(units, above7, two);
        const uint64_t used = _mm512_movepi8_mask(bytes) | (0x5555555555555555 & lowBits(2 * n));
        _mm512_mask_storeu_epi8(at_.dst, lowBits(count), _mm512_maskz_compress_epi8(used, bytes));
    }

    /// Which of the units have a byte at all, and a second, third and fourth one.
    struct Sizes {
        uint32_t one, two, three, four;

        ZEL_INLINE int sum() const {
            return __builtin_popcount(one) + __builtin_popcount(two) + __builtin_popcount(three) +
                   __builtin_popcount(four);
        }
        ZEL_INLINE Sizes lowerHalf() const {
            return {one & 0xFFFF, two & 0xFFFF, three & 0xFFFF, four & 0xFFFF};
        }
        ZEL_INLINE Sizes upperHalf() const {
            return {one >> 16, two >> 16, three >> 16, four >> 16};
        }
    };

    /// Stores 16 units, in a double word each. The last byte of a character is that of its lane.
    ZEL_INLINE void storeLong(__m256i units, __m256i second, Sizes sizes) {
        const auto lanes = [](uint32_t bits) { return static_cast<__mmask16>(bits); };
        __m512i value = _mm512_cvtepu16_epi32(units);
        if (sizes.four != 0) {
            constexpr int kMarks = (0xD800 << 10) + 0xDC00 - 0x10000;
            const __m512i low =
                _mm512_sub_epi32(_mm512_cvtepu16_epi32(second), _mm512_set1_epi32(kMarks));
            const __m512i high = _mm512_slli_epi32(value, 10);
            value = _mm512_mask_add_epi32(value, lanes(sizes.four), high, low);
        }
        // Six bits a byte, the first one of each lane at the lower end.
        const __m512i sixes = _mm512_set1_epi64(0x20262C3200060C12);
        const __m512i continuationBits = _mm512_set1_epi32(0x3F3F3F07);
        const __m512i marks = _mm512_set1_epi32(static_cast<int>(0x808080F0));
        __m512i bytes = _mm512_multishift_epi64_epi8(sixes, value);
        bytes = _mm512_ternarylogic_epi32(bytes, continuationBits, marks, 0xEA);
        // Where the sequence begins later, its first byte becomes a lead byte.
        bytes = _mm512_mask_or_epi32(bytes, lanes(sizes.three & ~sizes.four), bytes,
                                     _mm512_set1_epi32(0x6000));
        bytes = _mm512_mask_or_epi32(bytes, lanes(sizes.two & ~sizes.three), bytes,
                                     _mm512_set1_epi32(0x400000));
        bytes = _mm512_mask_slli_epi32(bytes, lanes(~sizes.two), value, 24);

        const uint64_t used =
            _pdep_u64(sizes.one, 0x8888888888888888) | _pdep_u64(sizes.two, 0x4444444444444444) |
            _pdep_u64(sizes.three, 0x2222222222222222) | _pdep_u64(sizes.four, 0x1111111111111111);
        const int count = __builtin_popcountll(used);
        _mm512_mask_storeu_epi8(at_.dst, lowBits(count), _mm512_maskz_compress_epi8(used, bytes));
        at_.dst += count;
        at_.room -= count;
    }

    /// Bits of `a` where the mask's bits are set, bits of b elsewhere.
    ZEL_INLINE static __m512i choose(__m512i mask, __m512i a, __m512i b) {
        return _mm512_ternarylogic_epi64(mask, a, b, 0xCA);
    }

    To8 at_;
    uint32_t owed_ = 0;  // 1 when the next unit belongs to the last pair
    bool wasAscii_ = false;
};

/// Converts as much as there surely is room for and answers where it ended.
template <bool swapBytes>
ZEL_INLINE To8 convertBlocks(To8 at) {
    return Utf16BlockConverter<swapBytes>(at).run();
}

#elif defined(ZEL_ISA_AVX2)

/// Which bytes of eight words are used, where the bits say which of the words hold two.
struct WordShuffles {
    alignas(16) Zel8u of[256][16] = {};
    constexpr WordShuffles() {
        for (int bits = 0; bits < 256; ++bits) {
            int at = 0;
            for (int i = 0; i < 8; ++i) {
                of[bits][at++] = static_cast<Zel8u>(2 * i);
                if ((bits >> i & 1) != 0) of[bits][at++] = static_cast<Zel8u>(2 * i + 1);
            }
        }
    }
};
inline constexpr WordShuffles kWordShuffles;

/// Which bytes of four double words are used: always the last one, where bit 4 + i is set also the
/// one in front of it, where bit i is set the one in front of that.
struct DoubleWordShuffles {
    alignas(16) Zel8u of[256][16] = {};
    constexpr DoubleWordShuffles() {
        for (int bits = 0; bits < 256; ++bits) {
            int at = 0;
            for (int i = 0; i < 4; ++i) {
                if ((bits >> i & 1) != 0) of[bits][at++] = static_cast<Zel8u>(4 * i + 1);
                if ((bits >> (4 + i) & 1) != 0) of[bits][at++] = static_cast<Zel8u>(4 * i + 2);
                of[bits][at++] = static_cast<Zel8u>(4 * i + 3);
            }
        }
    }
};
inline constexpr DoubleWordShuffles kDoubleWordShuffles;

template <bool swapBytes>
class Utf16BlockConverter {
public:
    explicit Utf16BlockConverter(To8 at) : at_(at) {}

    /// Answers where it ended.
    ZEL_INLINE To8 run() {
        while (at_.readable() >= kUnits && at_.room >= kUnits) {
            const __m256i units = inOrder(Vec<Zel16u>::load(at_.src).v);
            const __m256i above7 = beyond(units, 0xFF80);
            if (bitsOf(above7) == 0)
                narrow(units);
            else if (at_.remaining < kUnits + kBehind || at_.room < 3 * kUnits + kSpill + 3 ||
                     !convert(units, above7))
                break;
        }
        return at_;
    }

private:
    static constexpr int kUnits = 16;
    // The last store may write this many bytes more than there are. They are written over later,
    // because at least so many will come of the units that must stand behind the block, or fit
    // into the room, of which a character that does not fit may leave three bytes.
    static constexpr int kSpill = 12;
    static constexpr int kBehind = kSpill;

    ZEL_INLINE static __m256i inOrder(__m256i v) {
        if constexpr (!swapBytes) return v;
        return _mm256_or_si256(_mm256_slli_epi16(v, 8), _mm256_srli_epi16(v, 8));
    }
    ZEL_INLINE static __m256i splat(int unit) {
        return _mm256_set1_epi16(static_cast<short>(unit));
    }
    ZEL_INLINE static uint32_t bitsOf(__m256i v) {
        return static_cast<uint32_t>(_mm256_movemask_epi8(v));
    }
    /// The units that have one of the bits.
    ZEL_INLINE static __m256i beyond(__m256i units, int bits) {
        const __m256i within =
            _mm256_cmpeq_epi16(_mm256_and_si256(units, splat(bits)), _mm256_setzero_si256());
        return _mm256_xor_si256(within, splat(-1));
    }

    /// Narrows a block of ASCII.
    ZEL_INLINE void narrow(__m256i units) {
        _mm_storeu_si128(
            reinterpret_cast<__m128i*>(at_.dst),
            _mm_packus_epi16(_mm256_castsi256_si128(units), _mm256_extracti128_si256(units, 1)));
        at_.advance(kUnits, kUnits);
    }

    /// Converts a block without surrogates.
    ZEL_INLINE bool convert(__m256i units, __m256i above7) {
        const __m256i above11 = beyond(units, 0xF800);
        const __m256i kind = _mm256_and_si256(units, splat(0xF800));
        if (bitsOf(_mm256_cmpeq_epi16(kind, splat(0xD800))) != 0) return false;
        const __m256i last = _mm256_and_si256(_mm256_slli_epi16(units, 8), splat(0x3F00));
        const __m256i down6 = _mm256_srli_epi16(units, 6);
        if (bitsOf(above11) == 0) {
            const __m256i two = _mm256_or_si256(_mm256_or_si256(last, down6), splat(0x80C0));
            const __m256i words = _mm256_blendv_epi8(units, two, above7);
            const uint32_t sizes = bitsOf(_mm256_packs_epi16(above7, _mm256_setzero_si256()));
            putWords(_mm256_castsi256_si128(words), sizes & 0xFF);
            putWords(_mm256_extracti128_si256(words, 1), sizes >> 16);
        } else {
            // The last two bytes of a sequence of two or three, and the one in front of them.
            const __m256i marks = _mm256_blendv_epi8(splat(0x80C0), splat(0x8080), above11);
            const __m256i middle =
                _mm256_blendv_epi8(down6, _mm256_and_si256(down6, splat(0x3F)), above11);
            const __m256i multi = _mm256_or_si256(_mm256_or_si256(last, middle), marks);
            const __m256i lastTwo = _mm256_blendv_epi8(_mm256_slli_epi16(units, 8), multi, above7);
            const __m256i top = _mm256_and_si256(_mm256_srli_epi16(units, 4), splat(0x0F00));
            const __m256i first = _mm256_or_si256(top, splat(0xE000));
            const __m256i evenGroups = _mm256_unpacklo_epi16(first, lastTwo);
            const __m256i oddGroups = _mm256_unpackhi_epi16(first, lastTwo);
            // Of each half eight bits for the units of three bytes, then eight for those of two.
            const uint32_t sizes = bitsOf(_mm256_packs_epi16(above11, above7));
            putDoubleWords(_mm256_castsi256_si128(evenGroups), sizes);
            putDoubleWords(_mm256_castsi256_si128(oddGroups), sizes >> 4);
            putDoubleWords(_mm256_extracti128_si256(evenGroups, 1), sizes >> 16);
            putDoubleWords(_mm256_extracti128_si256(oddGroups, 1), sizes >> 20);
        }
        at_.src += kUnits;
        at_.remaining -= kUnits;
        return true;
    }

    ZEL_INLINE void putWords(__m128i words, uint32_t twos) {
        put(words, kWordShuffles.of[twos], 8 + __builtin_popcount(twos));
    }
    ZEL_INLINE void putDoubleWords(__m128i words, uint32_t sizes) {
        const uint32_t bits = (sizes & 0x0F) | (sizes >> 4 & 0xF0);
        put(words, kDoubleWordShuffles.of[bits], 4 + __builtin_popcount(bits));
    }
    ZEL_INLINE void put(__m128i bytes, const Zel8u* shuffle, int count) {
        const __m128i order = _mm_load_si128(reinterpret_cast<const __m128i*>(shuffle));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at_.dst), _mm_shuffle_epi8(bytes, order));
        at_.dst += count;
        at_.room -= count;
    }

    To8 at_;
};

template <bool swapBytes>
ZEL_INLINE To8 convertBlocks(To8 at) {
    return Utf16BlockConverter<swapBytes>(at).run();
}

#else

/// Narrows ASCII.
template <bool swapBytes>
ZEL_INLINE To8 convertBlocks(To8 at) {
    const auto load = [&at](int offset) {
        const __m128i v = Vec<Zel16u>::load(at.src + offset).v;
        if constexpr (!swapBytes) return v;
        return _mm_or_si128(_mm_slli_epi16(v, 8), _mm_srli_epi16(v, 8));
    };
    while (at.readable() >= 16 && at.room >= 16) {
        const __m128i first = load(0), second = load(8);
        const __m128i above7 = _mm_and_si128(_mm_or_si128(first, second), _mm_set1_epi16(-0x80));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(above7, _mm_setzero_si128())) != 0xFFFF) break;
        Vec<Zel8u>{_mm_packus_epi16(first, second)}.store(at.dst);
        at.advance(16, 16);
    }
    return at;
}

#endif

}  // namespace zel::ZEL_ISA
