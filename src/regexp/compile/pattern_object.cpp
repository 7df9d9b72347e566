// The life cycle of pattern objects: size, compilation, allocation, release and the two setters.
#include <string.h>

#include "core/checks.h"
#include "regexp/compile/compile.h"

using namespace zel;

namespace {

/// Size of the object for a pattern: one node for each byte, one for the marker in front.
unsigned long objectSize(const char* pattern) {
    return (strlen(pattern) + 1) * sizeof(Node) + sizeof(ZelRegExpState);
}
static_assert(sizeof(Node) + sizeof(ZelRegExpState) == 48056);

}  // namespace

extern "C" {

ZelStatus zelsRegExpGetSize(const char* pSrc, int* pSize) {
    if (anyNull(pSrc, pSize)) return zelStatusNullPointer;
    *pSize = static_cast<int>(static_cast<Zel32u>(objectSize(pSrc)));
    return zelStatusOk;
}

ZelStatus zelsRegExpInit(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                         int* pErrOffset) {
    if (anyNull(pSrc, pState, pErrOffset)) return zelStatusNullPointer;
    return compilePattern(pSrc, pOptions, pState, pErrOffset);
}

ZelStatus zelsRegExpInitAlloc(const char* pSrc, const char* pOptions, ZelRegExpState** ppState,
                              int* pErrOffset) {
    if (anyNull(ppState) || anyNull(pSrc)) return zelStatusNullPointer;
    const unsigned long size = objectSize(pSrc);
    void* const block = size <= __INT_MAX__ ? zelsMalloc_8u(static_cast<int>(size)) : nullptr;
    *ppState = static_cast<ZelRegExpState*>(block);
    if (block == nullptr) return zelStatusNullPointer;
    const ZelStatus status = zelsRegExpInit(pSrc, pOptions, *ppState, pErrOffset);
    if (status != zelStatusOk) {
        zelsFree(block);
        *ppState = nullptr;
    }
    return status;
}

ZelStatus zelsRegExpFree(ZelRegExpState* pState) {
    zelsFree(pState);
    return zelStatusOk;
}

ZelStatus zelsRegExpSetFormat(int fmt, ZelRegExpState* pState) {
    if (anyNull(pState)) return zelStatusNullPointer;
    if (fmt != kFormatBytes && fmt != kFormatUtf8) return zelStatusBadArgError;
    pState->format = fmt;
    return zelStatusOk;
}

ZelStatus zelsRegExpSetMatchLimit(int limit, ZelRegExpState* pState) {
    if (anyNull(pState)) return zelStatusNullPointer;
    if (anyNegative(limit)) return zelStatusLengthError;
    pState->matchLimit = limit;
    return zelStatusOk;
}

}  // extern "C"
