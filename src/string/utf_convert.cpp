// UTF-8 to UTF-16 and back. Blocks of ordinary text are converted as such; everything else follows
// the decode rule of utf8.h one character at a time, for a while. The way the loops end, with a
// test for exactly zero, is part of the interface.
#include "core/checks.h"
#include "string/kernels/short_ascii.h"
#include "string/kernels/utf16_to_8.h"
#include "string/kernels/utf8_to_16.h"
#include "string/utf8.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

// A sequence is read as long as it says it is, not only up to the end of the source.
constexpr long kUnboundedSequence = 6;

// Elements that are converted one character at a time before the next try with blocks.
constexpr int kStretch = Vec<Zel8u>::kBytes;

constexpr bool isHighSurrogate(int unit) {
    return (unit & 0xFC00) == 0xD800;
}
constexpr bool isLowSurrogate(int unit) {
    return (unit & 0xFC00) == 0xDC00;
}

// Writes one value as one or two units and returns their number. With swapBytes a single unit loses
// its high byte and a pair changes its order instead of its bytes; callers depend on both.
int putUtf16(int value, Zel16u* dst, bool swapBytes) {
    if (value <= 0xFFFF) {
        dst[0] = static_cast<Zel16u>(swapBytes ? value << 8 : value);
        return 1;
    }
    const int offset = value - 0x10000;
    const Zel16u high = static_cast<Zel16u>(0xD800 | ((offset >> 10) & 0x3FF));
    const Zel16u low = static_cast<Zel16u>(0xDC00 | (offset & 0x3FF));
    dst[0] = swapBytes ? low : high;
    dst[1] = swapBytes ? high : low;
    return 2;
}

template <bool swapBytes>
int readUnit(const Zel16u* p) {
    return swapBytes ? __builtin_bswap16(*p) : *p;
}

// Writes a value as a sequence of so many bytes, or nothing where it does not fit.
template <int size>
ZEL_INLINE bool putUtf8(To8& at, int value, int units) {
    if (at.room < size) return false;
    at.dst[0] = static_cast<Zel8u>(value >> (6 * (size - 1)) | UTF8_table2[size - 1]);
    for (int i = 1; i < size; ++i) {
        at.dst[i] = static_cast<Zel8u>(0x80 | (value >> (6 * (size - 1 - i)) & 0x3F));
    }
    at.advance(units, size);
    return true;
}

// Converts one character, if it fits.
template <bool swapBytes>
ZEL_INLINE bool convertCharacter(To8& at) {
    const int unit = readUnit<swapBytes>(at.src);
    if (unit <= UTF8_table1[0]) return putUtf8<1>(at, unit, 1);
    if (unit <= UTF8_table1[1]) return putUtf8<2>(at, unit, 1);
    if (isHighSurrogate(unit) && at.remaining != 1) {
        const int next = readUnit<swapBytes>(at.src + 1);
        const int value = (((unit & 0x3FF) << 10) | (next & 0x3FF)) + 0x10000;
        if (isLowSurrogate(next)) return putUtf8<4>(at, value, 2);
    }
    return putUtf8<3>(at, unit, 1);
}

// What is not over at once has functions of its own, so that the exported ones need no stack.

// Ends when the source or the room is exactly used up; nothing else stops it. A pair that is
// written into one unit of room, or a sequence that is longer than the rest of the source, passes
// over that end, and the conversion then runs on to the other one.
template <bool swapBytes>
[[gnu::noinline]] ZelStatus convertTo16(const Zel8u* src, int* srcLen, Zel16u* dst, int* dstLen) {
    To16 at = {src, *srcLen, dst, *dstLen};
    while (!at.isAtEnd()) {
        // Swapped units are no ordinary text.
        if (!swapBytes) at = convertBlocks(at);
        const Zel8u* const resume = at.src + kStretch;
        while (!at.isAtEnd() && at.src < resume) {
            const Utf8Char c = decodeUtf8(at.src, kUnboundedSequence);
            at.advance(c.length, putUtf16(c.value, at.dst, swapBytes));
        }
    }
    *srcLen = static_cast<int>(*srcLen - at.remaining);
    *dstLen = static_cast<int>(*dstLen - at.room);
    return zelStatusOk;
}

// Converts a text that may be short and ordinary, as most short texts are.
[[gnu::noinline]] ZelStatus convertShortTo16(const Zel8u* src, int* srcLen, Zel16u* dst,
                                             int* dstLen) {
    if (convertShort(src, *srcLen, dst, dstLen)) return zelStatusOk;
    return convertTo16<false>(src, srcLen, dst, dstLen);
}

// Converts one character after the other for a while. Answers whether all of them did fit. A
// function of its own, which leaves the registers to the blocks.
template <bool swapBytes>
[[gnu::noinline]] bool convertStretch(To8& at) {
    const Zel16u* const resume = at.src + kStretch;
    while (!at.isAtEnd() && at.src < resume) {
        if (!convertCharacter<swapBytes>(at)) return false;
    }
    return true;
}

// Ends when the source is used up or the next character does not fit.
template <bool swapBytes>
[[gnu::noinline]] ZelStatus convertTo8(const Zel16u* src, int* srcLen, Zel8u* dst, int* dstLen) {
    To8 at = {src, *srcLen, dst, *dstLen};
    while (!at.isAtEnd()) {
        at = convertBlocks<swapBytes>(at);
        if (!at.isAtEnd() && !convertStretch<swapBytes>(at)) break;
    }
    *srcLen = static_cast<int>(*srcLen - at.remaining);
    *dstLen = static_cast<int>(*dstLen - at.room);
    return zelStatusOk;
}

// Converts a text that may be short and fit, as most short texts do.
[[gnu::noinline]] ZelStatus convertShortTo8(const Zel16u* src, int* srcLen, Zel8u* dst,
                                            int* dstLen) {
    if (convertShort(src, *srcLen, dst, dstLen)) return zelStatusOk;
    return convertTo8<false>(src, srcLen, dst, dstLen);
}

}  // namespace

ZelStatus zelsConvertUTF_8u16u(const Zel8u* pSrc, int* pSrcLen, Zel16u* pDst, int* pDstLen,
                               int swapBytes) {
    if (anyNull(pSrc, pSrcLen, pDst, pDstLen)) return zelStatusNullPointer;
    if (swapBytes != 0) return convertTo16<true>(pSrc, pSrcLen, pDst, pDstLen);
    if (convertShortAscii(pSrc, *pSrcLen, pDst, *pDstLen)) {
        *pDstLen = *pSrcLen;
        return zelStatusOk;
    }
    if (*pSrcLen <= kShortUtf8) return convertShortTo16(pSrc, pSrcLen, pDst, pDstLen);
    return convertTo16<false>(pSrc, pSrcLen, pDst, pDstLen);
}

ZelStatus zelsConvertUTF_16u8u(const Zel16u* pSrc, int* pSrcLen, Zel8u* pDst, int* pDstLen,
                               int swapBytes) {
    if (anyNull(pSrc, pSrcLen, pDst, pDstLen)) return zelStatusNullPointer;
    if (swapBytes != 0) return convertTo8<true>(pSrc, pSrcLen, pDst, pDstLen);
    if (convertShortAscii(pSrc, *pSrcLen, pDst, *pDstLen)) {
        *pDstLen = *pSrcLen;
        return zelStatusOk;
    }
    if (*pSrcLen <= kShortUtf16) return convertShortTo8(pSrc, pSrcLen, pDst, pDstLen);
    return convertTo8<false>(pSrc, pSrcLen, pDst, pDstLen);
}

}  // namespace zel::ZEL_ISA
