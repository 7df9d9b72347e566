// The exported trims. The kept part is found from both ends, its length stored, and the part copied
// forward to a destination that may be the source itself: the copy never goes to a higher address.
#include "string/kernels/trim.h"
#include "core/checks.h"
#include "string/kernels/block.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <typename T>
ZEL_INLINE ZelStatus finish(const T* src, Kept kept, T* dst, int* dstLen) {
    *dstLen = kept.count;
    return copyElements(src + kept.first, dst, kept.count);
}

template <typename T>
[[gnu::noinline]] ZelStatus trimCLong(const T* src, int len, T val, T* dst, int* dstLen) {
    return finish(src, keptInLong<kBothEnds>(src, len, Differs<T>::from(val)), dst, dstLen);
}

template <typename T>
ZEL_INLINE ZelStatus trimC(const T* src, int len, T val, T* dst, int* dstLen) {
    if (anyNull(src, dst, dstLen)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    if (len > Vec<T>::kLanes) [[unlikely]]
        return trimCLong(src, len, val, dst, dstLen);
    const Mask<T> kept{Mask<T>::firstN(len).bits ^ equalFirst(src, len, val).bits};
    return finish(src, keptInMask<kBothEnds>(kept, len), dst, dstLen);
}

template <typename T>
ZEL_INLINE ZelStatus trimCInPlace(T* srcDst, int* srcDstLen, T val) {
    if (anyNull(srcDst, srcDstLen)) return zelStatusNullPointer;
    return trimC(srcDst, *srcDstLen, val, srcDst, srcDstLen);
}

template <Ends ends, typename T>
ZEL_INLINE ZelStatus trimCAny(const T* src, int len, const T* set, int lenSet, T* dst,
                              int* dstLen) {
    if (anyNull(src, dst, set, dstLen)) return zelStatusNullPointer;
    if (anyNegative(len, lenSet)) return zelStatusLengthError;
    return finish(src, keptWithoutAnyOf<ends>(src, len, set, lenSet), dst, dstLen);
}

}  // namespace

ZelStatus zelsTrimC_8u(const Zel8u* pSrc, int len, Zel8u valTrim, Zel8u* pDst, int* pDstLen) {
    return trimC(pSrc, len, valTrim, pDst, pDstLen);
}

ZelStatus zelsTrimC_16u(const Zel16u* pSrc, int len, Zel16u valTrim, Zel16u* pDst, int* pDstLen) {
    return trimC(pSrc, len, valTrim, pDst, pDstLen);
}

ZelStatus zelsTrimC_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, Zel8u valTrim) {
    return trimCInPlace(pSrcDst, pSrcDstLen, valTrim);
}

ZelStatus zelsTrimC_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, Zel16u valTrim) {
    return trimCInPlace(pSrcDst, pSrcDstLen, valTrim);
}

ZelStatus zelsTrimCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim, Zel8u* pDst,
                          int* pDstLen) {
    return trimCAny<kBothEnds>(pSrc, len, pTrim, lenTrim, pDst, pDstLen);
}

ZelStatus zelsTrimCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                           Zel16u* pDst, int* pDstLen) {
    return trimCAny<kBothEnds>(pSrc, len, pTrim, lenTrim, pDst, pDstLen);
}

ZelStatus zelsTrimStartCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                               Zel8u* pDst, int* pDstLen) {
    return trimCAny<kStart>(pSrc, len, pTrim, lenTrim, pDst, pDstLen);
}

ZelStatus zelsTrimStartCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                                Zel16u* pDst, int* pDstLen) {
    return trimCAny<kStart>(pSrc, len, pTrim, lenTrim, pDst, pDstLen);
}

ZelStatus zelsTrimEndCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                             Zel8u* pDst, int* pDstLen) {
    return trimCAny<kEnd>(pSrc, len, pTrim, lenTrim, pDst, pDstLen);
}

ZelStatus zelsTrimEndCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                              Zel16u* pDst, int* pDstLen) {
    return trimCAny<kEnd>(pSrc, len, pTrim, lenTrim, pDst, pDstLen);
}

}  // namespace zel::ZEL_ISA
