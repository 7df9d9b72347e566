// UTF-8 to UTF-16, a block at a time, as long as blocks are ordinary: whole sequences of up to four
// bytes in their shortest form, below U+100000, for whose units there is room. What is not ordinary
// is left to the rule for one character.
//
// AVX-512 takes 64 bytes at a time. Every byte that begins a character is made into the low and the
// high byte of its unit, at its own place, from itself and the two bytes behind it; of a pair of
// surrogates the second is made at the second byte. Two compressions then close the gaps. A
// character belongs to the block in which it begins; its bytes in the next block are checked there
// against what this one says, and skipped, but for a second byte that is owed a unit. Where no such
// block follows, the character is taken back. A block whose longest sequences have two bytes, or
// three, takes a shorter way, and a text of less than a block one without loops.
//
// AVX2 does the same with 32 bytes, sequences of up to three, and a shuffle for every eight bytes
// in place of the compressions. SSE2 widens ASCII.
#pragma once

#include "string/kernels/utf_cursor.h"

namespace zel::ZEL_ISA {

using To16 = Cursor<Zel8u, Zel16u>;

#if defined(ZEL_ISA_AVX512)

/// 64 bytes of text, and those that are a byte or two further on.
struct Utf8Block {
    const Zel8u* p;

    ZEL_INLINE __m512i from(int at) const { return _mm512_loadu_si512(p + at); }
};

/// The same at the end of a text, of which n bytes are left, at most 255; zeros behind.
struct LastUtf8Block {
    const Zel8u* p;
    int n;

    ZEL_INLINE __m512i from(int at) const {
        return Vec<Zel8u>::loadFirst(p + at, n > at ? n - at : 0).v;
    }
};

/// The numbers of the lanes of a vector of bytes, and of those a little further on.
struct Utf8Lanes {
    Zel8u number[66] = {};

    constexpr Utf8Lanes() {
        for (int i = 0; i < 66; ++i) number[i] = static_cast<Zel8u>(i);
    }
};
inline constexpr Utf8Lanes kUtf8Lanes;

/// The same of a whole text of n bytes, at least 1 and less than 64, which is loaded once.
struct ShortUtf8Block {
    __m512i bytes;

    ZEL_INLINE ShortUtf8Block(const Zel8u* p, int n) : bytes(Vec<Zel8u>::loadFirst(p, n).v) {}
    ZEL_INLINE __m512i from(int at) const {
        if (at == 0) return bytes;
        return _mm512_permutexvar_epi8(_mm512_loadu_si512(kUtf8Lanes.number + at), bytes);
    }
};

class Utf8BlockConverter {
public:
    explicit Utf8BlockConverter(To16 at) : at_(at) {}

    /// Answers where it ended.
    ZEL_INLINE To16 run() {
        while (isWhole()) {
            const Utf8Block block = {at_.src};
            const Lanes high = _mm512_movepi8_mask(block.from(0));
            if (high.bits == 0) {
                if (begun() != 0) return end();
                last_ = {0, 0, 0};
                widenBlocks();
            } else if (!convert(block, 64, high)) {
                return end();
            }
        }
        while (at_.remaining > 0 && at_.room > 0) {
            // Where the text goes on behind what may be read, no character of a block may.
            const long readable = at_.readable();
            const bool isCut = readable < at_.remaining && readable > 63;
            const int available = isCut ? 63 : static_cast<int>(readable);
            const int n = available < 64 ? available : 64;
            const LastUtf8Block block = {at_.src, available};
            const __m512i bytes = block.from(0);
            const Lanes high = _mm512_movepi8_mask(bytes);
            if (high.bits == 0) {
                if (begun() != 0) break;
                last_ = {0, 0, 0};
                widenFirst(bytes, static_cast<int>(at_.room < n ? at_.room : n));
            } else if (!convert(block, n, high)) {
                break;
            }
        }
        return end();
    }

    /// Converts a text of less than 64 bytes, if it is ordinary. Answers how much room is left, or
    /// less than nothing.
    ZEL_INLINE long runShort() {
        const int n = static_cast<int>(at_.remaining);
        const ShortUtf8Block block(at_.src, n);
        const bool isOrdinary = convert(block, n, _mm512_movepi8_mask(block.from(0)));
        return isOrdinary ? at_.room : -1;
    }

private:
    // A block and the bytes behind it that are loaded with it.
    static constexpr int kWhole = 66;
    // What is left of a text when its units no longer fit into any core's own caches, and how much
    // ASCII there has been when more can be hoped for.
    static constexpr long kWorthStreaming = 16 << 20;
    static constexpr int kAsciiBeforeStream = 64;

    ZEL_INLINE bool isWhole() const { return at_.remaining >= kWhole && at_.room >= kWhole; }

    /// How many bytes of the last block belong to a character that goes on behind it: 1, 2 or 3 at
    /// the bit of as many less one.
    ZEL_INLINE uint64_t begun() const {
        return last_.any >> 63 | (last_.three >> 61 & 2) | (last_.four >> 59 & 4);
    }
    /// Takes back such a character, as nobody has looked at the rest of it.
    ZEL_INLINE To16 end() {
        if (const uint64_t bit = begun(); bit != 0) {
            const bool isPair = (last_.four >> 61 & 3) != 0;
            at_.advance(-(64 - __builtin_clzll(bit)), isPair ? -2 : -1);
        }
        return at_;
    }

    /// Widens blocks of ASCII, of which there is one at least.
    ZEL_INLINE void widenBlocks() {
        int blocks = 0;
        do {
            const __m512i bytes = _mm512_loadu_si512(at_.src);
            if (_mm512_movepi8_mask(bytes) != 0) break;
            widen(bytes);
            if (++blocks >= kAsciiBeforeStream && at_.remaining >= kWorthStreaming) {
                stream();
                blocks = 0;
            }
        } while (isWhole());
    }
    /// Widens 64 bytes of ASCII.
    ZEL_INLINE void widen(__m512i bytes) {
        const __m256i upper = _mm512_extracti64x4_epi64(bytes, 1);
        _mm512_storeu_si512(at_.dst, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes)));
        _mm512_storeu_si512(at_.dst + 32, _mm512_cvtepu8_epi16(upper));
        at_.advance(64, 64);
    }
    /// Widens the ASCII that comes next, and sends the units past the caches, which have no use for
    /// so much.
    ZEL_INLINE void stream() {
        const auto misaligned = reinterpret_cast<uintptr_t>(at_.dst) % 64;
        if (misaligned % sizeof(Zel16u) != 0 || at_.room < 64) return;
        const __m512i first = _mm512_loadu_si512(at_.src);
        if (_mm512_movepi8_mask(first) != 0) return;
        widenFirst(first, static_cast<int>((64 - misaligned) / sizeof(Zel16u)));
        while (at_.remaining >= kWhole && at_.room >= 64) {
            const __m512i bytes = _mm512_loadu_si512(at_.src);
            if (_mm512_movepi8_mask(bytes) != 0) break;
            const __m256i upper = _mm512_extracti64x4_epi64(bytes, 1);
            auto* const line = reinterpret_cast<__m512i*>(at_.dst);
            _mm512_stream_si512(line, _mm512_cvtepu8_epi16(_mm512_castsi512_si256(bytes)));
            _mm512_stream_si512(line + 1, _mm512_cvtepu8_epi16(upper));
            at_.advance(64, 64);
        }
        _mm_sfence();
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

    /// A mask of lanes that is counted with as well. Compilers would move it to and fro.
    struct Lanes {
        __mmask64 mask;
        uint64_t bits;

        ZEL_INLINE Lanes(__mmask64 lanes) : mask(lanes), bits(inGeneralRegister(lanes)) {}
    };

    /// Which bytes of a block begin a sequence, one of three bytes or more, one of four.
    struct Leads {
        uint64_t any, three, four;
    };

    /// Converts the first n bytes, at most 64, if the characters that begin there are ordinary and
    /// fit. Those of 0x80 or more are known.
    template <typename Block>
    ZEL_INLINE bool convert(const Block& block, int n, const Lanes& high) {
        const __m512i v0 = block.from(0);
        const Lanes three = _mm512_cmpge_epu8_mask(v0, splatByte<0xE0>());
        if ((three.bits | last_.three) == 0) return convertTwos(block, n, high);
        const Lanes four = _mm512_cmpge_epu8_mask(v0, splatByte<0xF0>());
        if ((four.bits | last_.four) == 0) return convertLong<false>(block, n, high, three, four);
        return convertLong<true>(block, n, high, three, four);
    }

    /// A block of ASCII and sequences of two.
    template <typename Block>
    ZEL_INLINE bool convertTwos(const Block& block, int n, const Lanes& high) {
        const __m512i v0 = block.from(0), v1 = block.from(1);
        const uint64_t continuation = continuationsOf(v0);
        const uint64_t lead = high.bits & ~continuation;
        const __m512i pairOfLeads = _mm512_and_si512(v0, splatByte<0xFE>());
        const uint64_t overlong = _mm512_cmpeq_epi8_mask(pairOfLeads, splatByte<0xC0>());
        const uint64_t wrong = shifted<1>(lead, last_.any) ^ continuation;
        if ((wrong | overlong) != 0) return false;

        // The mark of the last byte, 0x80, takes back that of the first one's bits.
        const __m512i low = _mm512_mask_add_epi8(v0, high.mask, moveBits<6, 0xC0, 0x80>(v0), v1);
        const __m512i top = _mm512_maskz_mov_epi8(high.mask, moveBits<-2, 0x07>(v0));
        if (!store(~continuation & lowBits(n), low, top, n)) return false;
        last_ = {lead, 0, 0};
        return true;
    }

    /// A block with longer sequences; of four only if it says so.
    template <bool hasPairs, typename Block>
    ZEL_INLINE bool convertLong(const Block& block, int n, const Lanes& high, const Lanes& three,
                                const Lanes& four) {
        const __m512i v0 = block.from(0), v1 = block.from(1), v2 = block.from(2);
        const uint64_t continuation = continuationsOf(v0);
        const uint64_t lead = high.bits & ~continuation;
        const uint64_t small = inGeneralRegister(
            _mm512_cmplt_epu8_mask(v1, _mm512_permutexvar_epi8(v0, leastSecond())));
        uint64_t expected = shifted<1>(lead, last_.any) | shifted<2>(three.bits, last_.three);
        if (hasPairs) expected |= shifted<3>(four.bits, last_.four);
        if (((expected ^ continuation) | (small & lead)) != 0) return false;

        // The last two bytes of a sequence of two or three, or of the second unit of a pair.
        const uint64_t secondOfPair = hasPairs ? shifted<1>(four.bits, last_.four) : 0;
        const __mmask64 lastOfThree = hasPairs ? three.bits | secondOfPair : three.mask;
        const __m512i secondLast = _mm512_mask_mov_epi8(v0, lastOfThree, v1);
        const __m512i last = _mm512_mask_mov_epi8(v1, lastOfThree, v2);
        // The mark of the last byte, 0x80, takes back that of the bits in front of it.
        __m512i low =
            _mm512_mask_add_epi8(v0, high.mask, moveBits<6, 0xC0, 0x80>(secondLast), last);
        __m512i top =
            _mm512_maskz_add_epi8(high.mask, moveBits<-2, 0x0F>(secondLast),
                                  _mm512_maskz_mov_epi8(three.mask, moveBits<4, 0xF0>(v0)));
        if constexpr (hasPairs) {
            // The first unit is 0xD7C0 + the value's bits from the tenth on.
            const __m512i carry = _mm512_min_epu8(moveBits<-4, 0x03>(v1), splatByte<0x01>());
            low = _mm512_mask_add_epi8(low, four.mask, moveBits<2, 0xFC>(v1),
                                       moveBits<-4, 0x03, 0xC0>(v2));
            top = _mm512_mask_add_epi8(top, four.mask, carry,
                                       _mm512_sub_epi8(v0, splatByte<0xF0 - 0xD7>()));
            top = _mm512_mask_mov_epi8(top, secondOfPair, moveBits<-2, 0x03, 0xDC>(secondLast));
        }
        if (!store((~continuation & lowBits(n)) | secondOfPair, low, top, n)) return false;
        last_ = {lead, three.bits, four.bits};
        return true;
    }

    /// Which bytes are so many behind those that the mask says, of this block and the one before.
    template <int n>
    ZEL_INLINE static uint64_t shifted(uint64_t mask, uint64_t before) {
        return mask << n | before >> (64 - n);
    }

    /// Stores the units whose bits are set, which n bytes have become, if they fit.
    ZEL_INLINE bool store(uint64_t units, __m512i low, __m512i top, int n) {
        const int count = __builtin_popcountll(units);
        if (count > at_.room) return false;
        // Unpacking takes the eight bytes at the start, or the end, of every 16.
        const __m512i order = _mm512_set_epi64(7, 3, 6, 2, 5, 1, 4, 0);
        low = _mm512_permutexvar_epi64(order, _mm512_maskz_compress_epi8(units, low));
        top = _mm512_permutexvar_epi64(order, _mm512_maskz_compress_epi8(units, top));
        const __m512i lower = _mm512_unpacklo_epi8(low, top);
        if (count <= 32) {
            Vec<Zel16u>{lower}.storeFirst(at_.dst, count);
        } else {
            Vec<Zel16u>{lower}.store(at_.dst);
            Vec<Zel16u>{_mm512_unpackhi_epi8(low, top)}.storeFirst(at_.dst + 32, count - 32);
        }
        at_.advance(n, count);
        return true;
    }

    ZEL_INLINE static uint64_t continuationsOf(__m512i v) {
        return inGeneralRegister(_mm512_cmplt_epi8_mask(v, splatByte<0xC0>()));
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
    Leads last_ = {0, 0, 0};  // of the last block
};

/// Converts as many blocks as are ordinary and answers where it ended.
ZEL_INLINE To16 convertBlocks(To16 at) {
    return Utf8BlockConverter(at).run();
}

/// What is converted in one piece, as its last character has no room to go on behind it.
constexpr int kShortUtf8 = 63;

/// Converts a text of at most so many bytes, if it is ordinary and fits. Answers whether it was.
ZEL_INLINE bool convertShort(const Zel8u* src, int srcLen, Zel16u* dst, int* dstLen) {
    if (srcLen <= 0 || srcLen > *dstLen) return false;
    // No byte makes more than one unit: there is room, which need not be looked at.
    constexpr long kAmple = 64;
    const long left = Utf8BlockConverter({src, srcLen, dst, kAmple}).runShort();
    if (left < 0) return false;
    *dstLen = static_cast<int>(kAmple - left);
    return true;
}

#elif defined(ZEL_ISA_AVX2)

/// Which bytes of a group of eight characters' low bytes, and the eight top bytes behind them, make
/// the units whose bits are set.
struct UnitShuffles {
    alignas(16) Zel8u of[256][16] = {};
    constexpr UnitShuffles() {
        for (int bits = 0; bits < 256; ++bits) {
            int at = 0;
            for (int i = 0; i < 8; ++i) {
                if ((bits >> i & 1) == 0) continue;
                of[bits][at++] = static_cast<Zel8u>(i);
                of[bits][at++] = static_cast<Zel8u>(i + 8);
            }
        }
    }
};
inline constexpr UnitShuffles kUnitShuffles;

class Utf8BlockConverter {
public:
    explicit Utf8BlockConverter(To16 at) : at_(at) {}

    /// Answers where it ended.
    ZEL_INLINE To16 run() {
        while (at_.remaining >= kBytes && at_.room >= kBytes) {
            const __m256i bytes = loadAt(0);
            if (_mm256_movemask_epi8(bytes) == 0)
                widen(bytes);
            else if (at_.remaining < kBytes + kBehind || at_.room < kBytes + kSpill ||
                     !convert(bytes))
                break;
        }
        at_.advance(__builtin_popcount(owed_), 0);
        return at_;
    }

private:
    static constexpr int kBytes = 32;
    // The last store may write this many units more than there are. They are written over later,
    // because at least so many will come of the bytes that must stand behind the block: three bytes
    // make one unit, or more.
    static constexpr int kSpill = 8;
    static constexpr int kBehind = 3 * kSpill;

    ZEL_INLINE __m256i loadAt(int offset) const {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at_.src + offset));
    }
    ZEL_INLINE static __m256i splat(int byte) { return _mm256_set1_epi8(static_cast<char>(byte)); }
    ZEL_INLINE static uint32_t bitsOf(__m256i v) {
        return static_cast<uint32_t>(_mm256_movemask_epi8(v));
    }
    ZEL_INLINE static __m256i atLeast(__m256i v, int byte) {
        return _mm256_cmpeq_epi8(_mm256_max_epu8(v, splat(byte)), v);
    }

    /// Widens a block of ASCII.
    ZEL_INLINE void widen(__m256i bytes) {
        const auto put = [this](int at, __m128i half) {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(at_.dst + at),
                                _mm256_cvtepu8_epi16(half));
        };
        put(0, _mm256_castsi256_si128(bytes));
        put(16, _mm256_extracti128_si256(bytes, 1));
        at_.advance(kBytes, kBytes);
    }

    /// Converts the characters that begin in a block, if they have up to three bytes and are in
    /// their shortest form.
    ZEL_INLINE bool convert(__m256i v0) {
        const __m256i v1 = loadAt(1), v2 = loadAt(2);
        const __m256i three = atLeast(v0, 0xE0);
        const uint64_t continuation = continuations(Vec<Zel8u>{v0}).bits;
        const uint64_t next = continuations(Vec<Zel8u>{v2}).bits >> (kBytes - 2);
        const uint64_t lead = bitsOf(v0) & ~continuation;
        const uint64_t expected = lead << 1 | uint64_t{bitsOf(three)} << 2 | owed_;
        const uint64_t owed = expected >> kBytes;
        const __m256i long4 = atLeast(v0, 0xF0);
        const __m256i overlong2 = _mm256_cmpeq_epi8(_mm256_and_si256(v0, splat(0xFE)), splat(0xC0));
        const __m256i overlong3 = _mm256_and_si256(_mm256_cmpeq_epi8(v0, splat(0xE0)),
                                                   _mm256_cmpgt_epi8(splat(0xA0), v1));
        const uint32_t bad = bitsOf(_mm256_or_si256(long4, _mm256_or_si256(overlong2, overlong3)));
        const bool isWellFormed = static_cast<uint32_t>(expected ^ continuation) == 0;
        if (!isWellFormed || bad != 0 || (owed & ~next) != 0) return false;

        // The last two bytes of a sequence.
        const __m256i secondLast = _mm256_blendv_epi8(v0, v1, three);
        const __m256i last = _mm256_blendv_epi8(v1, v2, three);
        const __m256i up6 = _mm256_and_si256(_mm256_slli_epi16(secondLast, 6), splat(0xC0));
        const __m256i down2 = _mm256_and_si256(_mm256_srli_epi16(secondLast, 2), splat(0x0F));
        const __m256i up4 = _mm256_and_si256(_mm256_slli_epi16(v0, 4), splat(0xF0));
        const __m256i multiLow = _mm256_or_si256(up6, _mm256_and_si256(last, splat(0x3F)));
        const __m256i multiTop = _mm256_or_si256(down2, _mm256_and_si256(up4, three));
        const __m256i low = _mm256_blendv_epi8(v0, multiLow, v0);
        const __m256i top = _mm256_blendv_epi8(_mm256_setzero_si256(), multiTop, v0);

        const __m256i evenGroups = _mm256_unpacklo_epi64(low, top);
        const __m256i oddGroups = _mm256_unpackhi_epi64(low, top);
        const uint32_t begins = ~static_cast<uint32_t>(continuation);
        put(_mm256_castsi256_si128(evenGroups), begins & 0xFF);
        put(_mm256_castsi256_si128(oddGroups), begins >> 8 & 0xFF);
        put(_mm256_extracti128_si256(evenGroups, 1), begins >> 16 & 0xFF);
        put(_mm256_extracti128_si256(oddGroups, 1), begins >> 24);
        at_.src += kBytes;
        at_.remaining -= kBytes;
        owed_ = static_cast<uint32_t>(owed);
        return true;
    }

    ZEL_INLINE void put(__m128i group, uint32_t begins) {
        const auto* const shuffle = reinterpret_cast<const __m128i*>(kUnitShuffles.of[begins]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at_.dst),
                         _mm_shuffle_epi8(group, _mm_load_si128(shuffle)));
        const int count = __builtin_popcount(begins);
        at_.dst += count;
        at_.room -= count;
    }

    To16 at_;
    uint32_t owed_ = 0;  // the first bytes of the next block that belong to a character of this one
};

ZEL_INLINE To16 convertBlocks(To16 at) {
    return Utf8BlockConverter(at).run();
}

#else

/// Widens ASCII.
ZEL_INLINE To16 convertBlocks(To16 at) {
    while (at.remaining >= 16 && at.room >= 16) {
        const __m128i bytes = Vec<Zel8u>::load(at.src).v;
        if (_mm_movemask_epi8(bytes) != 0) break;
        const __m128i zero = _mm_setzero_si128();
        Vec<Zel16u>{_mm_unpacklo_epi8(bytes, zero)}.store(at.dst);
        Vec<Zel16u>{_mm_unpackhi_epi8(bytes, zero)}.store(at.dst + 8);
        at.advance(16, 16);
    }
    return at;
}

#endif

#if !defined(ZEL_ISA_AVX512)

// One character after the other is as good.
constexpr int kShortUtf8 = 0;
ZEL_INLINE bool convertShort(const Zel8u*, int, Zel16u*, int*) {
    return false;
}

#endif

}  // namespace zel::ZEL_ISA
