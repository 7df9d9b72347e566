// Allocation and the exported block primitives. Allocation belongs to libzelcore; nothing else in
// the library allocates or releases.
#include "core/memory.h"

#include "core/checks.h"
#include "zelchmx.h"
#include "zelcore.h"

namespace {

using namespace zel;

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

extern "C" {

void* zelsMalloc_8u(int len) {
    return len < 1 ? nullptr : zelMalloc(len);
}

void zelsFree(void* ptr) {
    zelFree(ptr);
}

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
    ownsZero_8u(pDst, len);
    return zelStatusOk;
}

}  // extern "C"
