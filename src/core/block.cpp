// The exported block primitives, copy, move and clear, and the workers behind ownsCopy_8u and
// ownsZero_8u.
#include "string/kernels/block.h"

#include "core/checks.h"
#include "string/kernels/instances.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

// The shortest calls are done at once; see isShortCall for the others.

ZEL_INLINE ZelStatus copyRange(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (repeats(src, dst, n)) [[unlikely]]
        return copyForward(src, dst, n);
    return moveRange(src, dst, n);
}

template <auto moveBytes>
[[gnu::noinline]] ZelStatus moveOtherwise(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (anyNull(src, dst)) return zelStatusNullPointer;
    if (n < 1) return zelStatusSizeError;
    return moveBytes(src, dst, n);
}

ZEL_INLINE bool isShortestMove(const Zel8u* src, const Zel8u* dst, ptrdiff_t n) {
    return !anyNull(src, dst) && static_cast<size_t>(n) - 1 < size_t{kShortestBlock};
}

template <typename T>
ZEL_INLINE ZelStatus copy(const T* from, T* to, int len) {
    const auto* const src = reinterpret_cast<const Zel8u*>(from);
    auto* const dst = reinterpret_cast<Zel8u*>(to);
    const auto n = len * static_cast<ptrdiff_t>(sizeof(T));
    if (!isShortestMove(src, dst, n) || repeats(src, dst, n)) [[unlikely]]
        return moveOtherwise<copyRange>(src, dst, n);
    moveShortest(src, dst, n);
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus move(const T* from, T* to, int len) {
    const auto* const src = reinterpret_cast<const Zel8u*>(from);
    auto* const dst = reinterpret_cast<Zel8u*>(to);
    const auto n = len * static_cast<ptrdiff_t>(sizeof(T));
    if (!isShortestMove(src, dst, n)) [[unlikely]]
        return moveOtherwise<moveRange>(src, dst, n);
    moveShortest(src, dst, n);
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
