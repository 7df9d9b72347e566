// UTF-16 to UTF-8, a block at a time, as long as there is room for all of a block.
//
// AVX-512 takes 32 units at a time and builds the bytes of each character in a lane of its own: a
// unit's lane where none needs more than two bytes, else a double word, whose number of leading
// zeros says which marks its bytes bear. Compressions close the gaps. The lane of a pair's second
// unit is left out; one at the start of a block is remembered from the block before. No text is
// special here, lone surrogates neither.
//
// AVX2 does the same with 16 units and shuffles in place of the compression, but leaves a block
// with surrogates to the rule for one character. SSE2 narrows ASCII.
#pragma once

#include "string/kernels/utf_cursor.h"

namespace zel::ZEL_ISA {

using To8 = Cursor<Zel16u, Zel8u>;

#if defined(ZEL_ISA_AVX512)

/// 32 units of text, and those that are one further on.
template <bool swapBytes>
struct Utf16Block {
    const Zel16u* p;

    ZEL_INLINE __m512i from(int at) const { return inOrder(_mm512_loadu_si512(p + at)); }
    ZEL_INLINE static __m512i inOrder(__m512i v) {
        if constexpr (!swapBytes) return v;
        return _mm512_or_si512(_mm512_slli_epi16(v, 8), _mm512_srli_epi16(v, 8));
    }
};

/// The same at the end of a text, of which n units are left, at most 32; zeros behind.
template <bool swapBytes>
struct LastUtf16Block {
    const Zel16u* p;
    int n;

    ZEL_INLINE __m512i from(int at) const {
        return Utf16Block<swapBytes>::inOrder(Vec<Zel16u>::loadFirst(p + at, n - at).v);
    }
};

/// What is looked up for the units of a block that has longer sequences than those of two bytes.
struct Utf16Tables {
    /// By the number of leading zeros of a value, which are 32 if it is zero, what marks its bytes:
    /// also the seventh bit of a byte alone, where only that many bits are left.
    alignas(64) Zel32u marks[32] = {};
    /// Each unit of the lower and of the upper half of a block, and the one behind it. The upper
    /// half is taken from the block that is one unit further on.
    alignas(64) Zel16u lower[32] = {}, upper[32] = {};

    constexpr Utf16Tables() {
        for (int zeros = 11; zeros < 25; ++zeros)
            marks[zeros] = zeros < 16 ? 0x808080F0 : zeros < 21 ? 0x8080E000 : 0x80C00000;
        marks[25] = 0x40000000;
        for (int i = 0; i < 32; ++i) {
            lower[i] = static_cast<Zel16u>((i + 1) / 2);
            upper[i] = static_cast<Zel16u>((i + 1) / 2 + 15);
        }
    }
};
inline constexpr Utf16Tables kUtf16Tables;

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
            if (!convert(Utf16Block<swapBytes>{at_.src}, kUnits)) return end();
        }
        if (at_.remaining > 0 && at_.remaining <= kUnits && at_.readable() == at_.remaining)
            runShort();
        return end();
    }

    /// Converts a text of at most 32 units, if it fits. Answers how much room is left, or less than
    /// nothing.
    ZEL_INLINE long runShort() {
        const int n = static_cast<int>(at_.remaining);
        return convert(LastUtf16Block<swapBytes>{at_.src, n}, n) ? at_.room : -1;
    }

private:
    static constexpr int kUnits = 32;

    /// Passes over the second unit of the last pair.
    ZEL_INLINE To8 end() {
        at_.advance(owed_, 0);
        return at_;
    }

    ZEL_INLINE static uint32_t above7Bits(__m512i units) {
        return _mm512_test_epi16_mask(units, splatWord<0xFF80FF80FF80FF80>());
    }

    /// Narrows two blocks at a time, while they are ASCII. Answers whether there were any.
    ZEL_INLINE bool narrow() {
        constexpr int kTwo = 2 * kUnits;
        // Packing takes eight units of each in turn.
        const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
        const Zel16u* const start = at_.src;
        while (at_.readable() >= kTwo && at_.room >= kTwo) {
            const Utf16Block<swapBytes> block = {at_.src};
            const __m512i a = block.from(0), b = block.from(kUnits);
            if (above7Bits(_mm512_or_si512(a, b)) != 0) break;
            const __m512i packed = _mm512_packus_epi16(a, b);
            _mm512_storeu_si512(at_.dst, _mm512_permutexvar_epi64(order, packed));
            at_.advance(kTwo, kTwo);
        }
        return at_.src != start;
    }

    /// Converts the first n units, if there is room for their bytes.
    template <typename Block>
    ZEL_INLINE bool convert(const Block& block, int n) {
        const __m512i units = block.from(0);
        const uint32_t above7 = above7Bits(units);
        wasAscii_ = above7 == 0;
        if (_mm512_test_epi16_mask(units, splatWord<0xF800F800F800F800>()) == 0) {
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
        const __m512i kind = _mm512_and_si512(units, splatWord<0xF800F800F800F800>());
        if (_mm512_cmpeq_epi16_mask(kind, splatWord<0xD800D800D800D800>()) == 0)
            return convertUnits(units, n);
        return convertPairs(block, n);
    }

    /// Stores units below 0x800, in a word each.
    ZEL_INLINE void storeShort(__m512i units, uint32_t above7, int n, int count) {
        const __m512i bits =
            _mm512_ternarylogic_epi64(splatWord<0x3F003F003F003F00>(), _mm512_slli_epi16(units, 8),
                                      _mm512_srli_epi16(units, 6), kChoose);
        const __m512i two = _mm512_or_si512(bits, splatWord<0x80C080C080C080C0>());
        const __m512i bytes = _mm512_mask_mov_epi16(units, above7, two);
        const uint64_t used = _mm512_movepi8_mask(bytes) | (0x5555555555555555 & lowBits(2 * n));
        _mm512_mask_storeu_epi8(at_.dst, lowBits(count), _mm512_maskz_compress_epi8(used, bytes));
    }

    /// The characters of 16 lanes, their bytes at the upper ends, and which bytes are in use.
    struct Half {
        __m512i bytes;
        uint64_t used;
    };
    ZEL_INLINE static Half encode(__m512i values) {
        const __m512i marks = _mm512_permutex2var_epi32(_mm512_load_si512(kUtf16Tables.marks),
                                                        _mm512_lzcnt_epi32(values),
                                                        _mm512_load_si512(kUtf16Tables.marks + 16));
        // Six bits a byte, the first one of each lane at the lower end.
        const __m512i sixes = splatWord<0x20262C3200060C12>();
        const __m512i bits = _mm512_multishift_epi64_epi8(sixes, values);
        const __m512i bytes =
            _mm512_ternarylogic_epi64(splatWord<0x3F3F3F073F3F3F07>(), bits, marks, kMaskAndOr);
        return {bytes, _mm512_movepi8_mask(bytes) | 0x8888888888888888};
    }

    /// Converts units of which none is a surrogate.
    ZEL_INLINE bool convertUnits(__m512i units, int n) {
        const auto half = [](__m256i of) { return encode(_mm512_cvtepu16_epi32(of)); };
        const Half lower = half(_mm512_castsi512_si256(units));
        return store(lower, n > 16 ? half(_mm512_extracti64x4_epi64(units, 1)) : nothing(), 0, n);
    }

    /// Converts units among which there are surrogates.
    template <typename Block>
    ZEL_INLINE bool convertPairs(const Block& block, int n) {
        uint32_t pairs = 0;
        const auto half = [&](__m512i units, const Zel16u* which, int at) {
            const __m512i both = _mm512_permutexvar_epi16(_mm512_load_si512(which), units);
            const __m512i kinds = _mm512_and_si512(both, splatWord<0xFC00FC00FC00FC00>());
            const __mmask16 isPair =
                _mm512_cmpeq_epi32_mask(kinds, splatWord<0xDC00D800DC00D800>());
            pairs |= static_cast<uint32_t>(isPair) << at;
            // Both are multiplied as signed numbers, and then the marks are taken off.
            constexpr int kMarks = (0xD800 << 10) + 0xDC00 - (1 << 26) - (1 << 16) - 0x10000;
            const __m512i value = _mm512_madd_epi16(both, splatWord<0x0001040000010400>());
            return encode(_mm512_mask_sub_epi32(
                _mm512_and_si512(both, splatWord<0x0000FFFF0000FFFF>()), isPair, value,
                splatWord<static_cast<uint32_t>(kMarks) * 0x0000000100000001u>()));
        };
        const Half lower = half(block.from(0), kUtf16Tables.lower, 0);
        const Half upper = n > 16 ? half(block.from(1), kUtf16Tables.upper, 16) : nothing();
        if (!store(lower, upper, pairs << 1 | owed_, n)) return false;
        owed_ = pairs >> 31;
        return true;
    }

    ZEL_INLINE static Half nothing() { return {_mm512_setzero_si512(), 0}; }

    /// Stores the bytes of n units but for those that are left out, if they fit.
    ZEL_INLINE bool store(const Half& lower, const Half& upper, uint32_t leftOut, int n) {
        const auto lanes = [](uint32_t units) {
            return _pdep_u64(units, 0x1111111111111111) * 0xF;
        };
        const uint64_t lowerUsed = lower.used & ~lanes(leftOut & 0xFFFF) & lowBits(4 * n);
        const uint64_t upperUsed =
            n > 16 ? upper.used & ~lanes(leftOut >> 16) & lowBits(4 * n - 64) : 0;
        const int lowerCount = __builtin_popcountll(lowerUsed);
        const int count = lowerCount + __builtin_popcountll(upperUsed);
        if (count > at_.room) return false;
        // What is too much of the lower half is written over.
        Vec<Zel8u>{_mm512_maskz_compress_epi8(lowerUsed, lower.bytes)}.storeFirst(at_.dst, count);
        if (n > 16) {
            Vec<Zel8u>{_mm512_maskz_compress_epi8(upperUsed, upper.bytes)}.storeFirst(
                at_.dst + lowerCount, count - lowerCount);
        }
        at_.advance(n, count);
        return true;
    }

    // Of three vectors: the second where the first one's bits are set, and elsewhere the third, or
    // the third in either case.
    static constexpr int kChoose = 0xCA, kMaskAndOr = 0xEA;

    To8 at_;
    uint32_t owed_ = 0;  // 1 when the next unit belongs to the last pair
    bool wasAscii_ = false;
};

/// Converts as much as there surely is room for and answers where it ended.
template <bool swapBytes>
ZEL_INLINE To8 convertBlocks(To8 at) {
    return Utf16BlockConverter<swapBytes>(at).run();
}

/// What is converted in one piece.
constexpr int kShortUtf16 = 32;

/// Converts a text of at most so many units, if it fits. Answers whether it did.
ZEL_INLINE bool convertShort(const Zel16u* src, int srcLen, Zel8u* dst, int* dstLen) {
    if (srcLen <= 0 || srcLen > *dstLen) return false;
    const long left = Utf16BlockConverter<false>({src, srcLen, dst, *dstLen}).runShort();
    if (left < 0) return false;
    *dstLen -= static_cast<int>(left);
    return true;
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

#if !defined(ZEL_ISA_AVX512)

// One character after the other is as good.
constexpr int kShortUtf16 = 0;
ZEL_INLINE bool convertShort(const Zel16u*, int, Zel8u*, int*) {
    return false;
}

#endif

}  // namespace zel::ZEL_ISA
