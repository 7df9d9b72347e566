// The exported block primitives, copy, move and clear, and the workers behind ownsCopy_8u and
// ownsZero_8u.
#include "string/kernels/block.h"

#include "core/checks.h"
#include "string/kernels/instances.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <typename T>
ZelStatus copy(const T* src, T* dst, int len) {
    if (anyNull(src, dst)) return zelStatusNullPointer;
    if (len < 1) return zelStatusSizeError;
    copyElements(src, dst, len);
    return zelStatusOk;
}

template <typename T>
ZelStatus move(const T* src, T* dst, int len) {
    if (anyNull(src, dst)) return zelStatusNullPointer;
    if (len < 1) return zelStatusSizeError;
    moveElements(src, dst, len);
    return zelStatusOk;
}

}  // namespace

ZelStatus zelsCopy_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return copy(pSrc, pDst, len);
}

ZelStatus zelsCopy_16s(const Zel16s* pSrc, Zel16s* pDst, int len) {
    return copy(pSrc, pDst, len);
}

ZelStatus zelsMove_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return move(pSrc, pDst, len);
}

ZelStatus zelsMove_16s(const Zel16s* pSrc, Zel16s* pDst, int len) {
    return move(pSrc, pDst, len);
}

ZelStatus zelsZero_8u(Zel8u* pDst, int len) {
    if (anyNull(pDst)) return zelStatusNullPointer;
    if (len < 1) return zelStatusSizeError;
    clearRange(pDst, len);
    return zelStatusOk;
}

void copyBytes(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    copyForward(src, dst, n);
}

void zeroBytes(Zel8u* dst, ptrdiff_t n) {
    clearRange(dst, n);
}

}  // namespace zel::ZEL_ISA
