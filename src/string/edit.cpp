// The exported editing, concatenation and splitting functions. Sums of indices and lengths are
// formed in 64 bits, and the entries of a list are checked only when the work reaches them.
#include "string/kernels/edit.h"
#include "core/checks.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <typename T>
ZEL_INLINE ZelStatus insert(const T* src, int len, const T* inserted, int lenInsert, T* dst,
                            int start) {
    if (anyNull(src, inserted, dst)) return zelStatusNullPointer;
    if (anyNegative(len, lenInsert, start) || start > len) return zelStatusLengthError;
    // An empty insertion leaves the destination alone; it does not even receive the source.
    if (lenInsert == 0) return zelStatusOk;
    return insertElements(src, len, inserted, lenInsert, dst, start);
}

template <typename T>
ZEL_INLINE ZelStatus insertInPlace(const T* inserted, int lenInsert, T* srcDst, int* srcDstLen,
                                   int start) {
    if (anyNull(inserted, srcDst, srcDstLen)) return zelStatusNullPointer;
    const int len = *srcDstLen;
    if (anyNegative(lenInsert, len, start) || start > len) return zelStatusLengthError;
    if (lenInsert == 0) return zelStatusOk;
    insertElements(srcDst, len, inserted, lenInsert, srcDst, start);
    *srcDstLen = static_cast<int>(static_cast<long>(len) + lenInsert);
    return zelStatusOk;
}

// True when the removed range lies inside a string of `len` elements, which may be negative.
constexpr bool isRange(int start, int lenRemove, int len) {
    return !anyNegative(lenRemove, start) && static_cast<long>(start) + lenRemove <= len;
}

template <typename T>
ZEL_INLINE ZelStatus remove(const T* src, int len, T* dst, int start, int lenRemove) {
    if (anyNull(src, dst)) return zelStatusNullPointer;
    if (!isRange(start, lenRemove, len)) return zelStatusLengthError;
    return removeElements(src, len, dst, start, lenRemove);
}

template <typename T>
ZEL_INLINE ZelStatus removeInPlace(T* srcDst, int* srcDstLen, int start, int lenRemove) {
    if (anyNull(srcDst, srcDstLen)) return zelStatusNullPointer;
    const int len = *srcDstLen;
    if (!isRange(start, lenRemove, len)) return zelStatusLengthError;
    removeElements(srcDst, len, srcDst, start, lenRemove);
    *srcDstLen = len - lenRemove;
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus replaceC(const T* src, T* dst, int len, T valOld, T valNew) {
    if (anyNull(src, dst)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    mapElements(src, dst, len, Replacement<T>(valOld, valNew));
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus concat(const T* src1, int len1, const T* src2, int len2, T* dst) {
    if (anyNull(src1, src2, dst)) return zelStatusNullPointer;
    if (anyNegative(len1, len2)) return zelStatusLengthError;
    copyElements(src1, dst, len1);
    return copyElements(src2, dst + len1, len2);
}

template <typename T>
ZEL_INLINE ZelStatus concatList(const T* const* srcs, const int* lens, int numSrc, T* dst) {
    if (anyNull(srcs, lens, dst)) return zelStatusNullPointer;
    if (numSrc < 1) return zelStatusSizeError;
    for (int i = 0; i < numSrc; ++i) {
        if (anyNull(srcs[i])) return zelStatusNullPointer;
        if (anyNegative(lens[i])) return zelStatusLengthError;
        expectMoreAfter(dst, lens[i]);
        copyElements(srcs[i], dst, lens[i]);
        dst += lens[i];
    }
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus concatListC(const T* const* srcs, const int* lens, int numSrc, T delim,
                                 T* dst) {
    if (anyNull(srcs, lens, dst)) return zelStatusNullPointer;
    if (numSrc < 1) return zelStatusSizeError;
    const Vec<T> delims = Vec<T>::splat(delim);
    for (int i = 0; i < numSrc; ++i) {
        if (anyNull(srcs[i])) return zelStatusNullPointer;
        if (anyNegative(lens[i])) return zelStatusLengthError;
        if (i == 0) {
            copyElements(srcs[i], dst, lens[i]);
            dst += lens[i];
        } else {
            dst = joinElements(delims, delim, srcs[i], lens[i], dst);
        }
    }
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus splitC(const T* src, int len, T delim, T* const* slots, int* slotLens,
                            int* numSlots) {
    if (anyNull(src, slots, slotLens, numSlots)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    if (*numSlots < 1) return zelStatusSizeError;
    return splitElements(src, len, delim, slots, slotLens, numSlots);
}

}  // namespace

ZelStatus zelsInsert_8u(const Zel8u* pSrc, int len, const Zel8u* pInsert, int lenInsert,
                        Zel8u* pDst, int startIndex) {
    return insert(pSrc, len, pInsert, lenInsert, pDst, startIndex);
}

ZelStatus zelsInsert_16u(const Zel16u* pSrc, int len, const Zel16u* pInsert, int lenInsert,
                         Zel16u* pDst, int startIndex) {
    return insert(pSrc, len, pInsert, lenInsert, pDst, startIndex);
}

ZelStatus zelsInsert_8u_I(const Zel8u* pInsert, int lenInsert, Zel8u* pSrcDst, int* pSrcDstLen,
                          int startIndex) {
    return insertInPlace(pInsert, lenInsert, pSrcDst, pSrcDstLen, startIndex);
}

ZelStatus zelsInsert_16u_I(const Zel16u* pInsert, int lenInsert, Zel16u* pSrcDst, int* pSrcDstLen,
                           int startIndex) {
    return insertInPlace(pInsert, lenInsert, pSrcDst, pSrcDstLen, startIndex);
}

ZelStatus zelsRemove_8u(const Zel8u* pSrc, int len, Zel8u* pDst, int startIndex, int lenRemove) {
    return remove(pSrc, len, pDst, startIndex, lenRemove);
}

ZelStatus zelsRemove_16u(const Zel16u* pSrc, int len, Zel16u* pDst, int startIndex, int lenRemove) {
    return remove(pSrc, len, pDst, startIndex, lenRemove);
}

ZelStatus zelsRemove_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove) {
    return removeInPlace(pSrcDst, pSrcDstLen, startIndex, lenRemove);
}

ZelStatus zelsRemove_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove) {
    return removeInPlace(pSrcDst, pSrcDstLen, startIndex, lenRemove);
}

ZelStatus zelsReplaceC_8u(const Zel8u* pSrc, Zel8u* pDst, int len, Zel8u valOld, Zel8u valNew) {
    return replaceC(pSrc, pDst, len, valOld, valNew);
}

ZelStatus zelsReplaceC_16u(const Zel16u* pSrc, Zel16u* pDst, int len, Zel16u valOld,
                           Zel16u valNew) {
    return replaceC(pSrc, pDst, len, valOld, valNew);
}

ZelStatus zelsConcat_8u(const Zel8u* pSrc1, int len1, const Zel8u* pSrc2, int len2, Zel8u* pDst) {
    return concat(pSrc1, len1, pSrc2, len2, pDst);
}

ZelStatus zelsConcat_16u(const Zel16u* pSrc1, int len1, const Zel16u* pSrc2, int len2,
                         Zel16u* pDst) {
    return concat(pSrc1, len1, pSrc2, len2, pDst);
}

ZelStatus zelsConcat_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList, int numSrc,
                            Zel8u* pDst) {
    return concatList(pSrcList, pSrcLenList, numSrc, pDst);
}

ZelStatus zelsConcat_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList, int numSrc,
                             Zel16u* pDst) {
    return concatList(pSrcList, pSrcLenList, numSrc, pDst);
}

ZelStatus zelsConcatC_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList, int numSrc,
                             Zel8u valDelim, Zel8u* pDst) {
    return concatListC(pSrcList, pSrcLenList, numSrc, valDelim, pDst);
}

ZelStatus zelsConcatC_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList, int numSrc,
                              Zel16u valDelim, Zel16u* pDst) {
    return concatListC(pSrcList, pSrcLenList, numSrc, valDelim, pDst);
}

ZelStatus zelsSplitC_8u_D2L(const Zel8u* pSrc, int len, Zel8u valDelim, Zel8u* const* pDstList,
                            int* pDstLenList, int* pNumDst) {
    return splitC(pSrc, len, valDelim, pDstList, pDstLenList, pNumDst);
}

ZelStatus zelsSplitC_16u_D2L(const Zel16u* pSrc, int len, Zel16u valDelim, Zel16u* const* pDstList,
                             int* pDstLenList, int* pNumDst) {
    return splitC(pSrc, len, valDelim, pDstList, pDstLenList, pNumDst);
}

}  // namespace zel::ZEL_ISA
