// The exported block primitives, copy, move and clear, and the workers behind ownsCopy_8u and
// ownsZero_8u.
#include "string/kernels/block.h"

#include "core/checks.h"
#include "string/kernels/instances.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

// A function that calls another with vectors at hand sets up an aligned stack frame, which is felt
// in a copy of a few bytes. What is not short goes on to a function of its own, whose status is
// passed on as it is.

[[gnu::noinline]] ZelStatus copyOtherwise(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    copyForward(src, dst, n);
    return zelStatusOk;
}

[[gnu::noinline]] ZelStatus moveOtherwise(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    moveRange(src, dst, n);
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus copy(const T* from, T* to, int len) {
    if (anyNull(from, to)) return zelStatusNullPointer;
    if (len < 1) return zelStatusSizeError;
    const auto* const src = reinterpret_cast<const Zel8u*>(from);
    auto* const dst = reinterpret_cast<Zel8u*>(to);
    const auto n = len * static_cast<ptrdiff_t>(sizeof(T));
    const bool isApart = static_cast<size_t>(dst - src) >= static_cast<size_t>(n);
    if (n > kShortBlock || !isApart) return copyOtherwise(src, dst, n);
    moveShort(src, dst, n);
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus move(const T* from, T* to, int len) {
    if (anyNull(from, to)) return zelStatusNullPointer;
    if (len < 1) return zelStatusSizeError;
    const auto* const src = reinterpret_cast<const Zel8u*>(from);
    auto* const dst = reinterpret_cast<Zel8u*>(to);
    const auto n = len * static_cast<ptrdiff_t>(sizeof(T));
    if (n > kShortBlock) return moveOtherwise(src, dst, n);
    moveShort(src, dst, n);
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
