// The exported search functions. Every member checks its pointers, then its lengths, then stores
// -1, so that a successful call always leaves a defined index; finding nothing is a success.
#include "core/checks.h"
#include "string/kernels/find_any.h"
#include "string/kernels/find_string.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <From from, typename T>
ZEL_INLINE ZelStatus find(const T* src, int len, const T* pattern, int lenPattern, int* index) {
    if (anyNull(src, pattern, index)) return zelStatusNullPointer;
    if (anyNegative(len, lenPattern)) return zelStatusLengthError;
    *index = kNotFound;
    *index = findString<from>(src, len, pattern, lenPattern);
    return zelStatusOk;
}

template <From from, typename T>
[[gnu::noinline]] ZelStatus findCOtherwise(const T* src, int len, T val, int* index) {
    if (anyNull(src, index)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *index = kNotFound;
    *index = findElementLong<from>(src, len, val);
    return zelStatusOk;
}

template <From from, typename T>
ZEL_INLINE ZelStatus findC(const T* src, int len, const T& val, int* index) {
    if (!isShortCall(Vec<T>::kLanes, len, src, index)) [[unlikely]]
        return findCOtherwise<from>(src, len, val, index);
    *index = notFound();
    *index = Way<from>::nearestAmong(equalFirst(src, len, val), len);
    return zelStatusOk;
}

template <From from, typename T>
ZEL_INLINE ZelStatus findCAny(const T* src, int len, const T* set, int lenSet, int* index) {
    if (anyNull(src, set, index)) return zelStatusNullPointer;
    if (anyNegative(len, lenSet)) return zelStatusLengthError;
    *index = kNotFound;
    *index = findAnyOf<from>(src, len, set, lenSet);
    return zelStatusOk;
}

/// Number of elements before the terminating zero; -1 when a length cannot express it, which the
/// member called with it then reports.
template <typename T>
ZEL_INLINE int measure(const T* srcZ) {
    const T* end = srcZ;
    while (*end != 0) ++end;
    const auto len = end - srcZ;
    return len <= 0x7FFFFFFF ? static_cast<int>(len) : -1;
}

template <typename T>
ZEL_INLINE ZelStatus findZ(const T* srcZ, const T* patternZ, int* index) {
    if (anyNull(srcZ, patternZ)) return zelStatusNullPointer;
    return find<From::Start>(srcZ, measure(srcZ), patternZ, measure(patternZ), index);
}

template <typename T>
ZEL_INLINE ZelStatus findCZ(const T* srcZ, T val, int* index) {
    if (anyNull(srcZ)) return zelStatusNullPointer;
    return findC<From::Start>(srcZ, measure(srcZ), val, index);
}

}  // namespace

ZelStatus zelsFind_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind, int* pIndex) {
    return find<From::Start>(pSrc, len, pFind, lenFind, pIndex);
}

ZelStatus zelsFind_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind, int* pIndex) {
    return find<From::Start>(pSrc, len, pFind, lenFind, pIndex);
}

ZelStatus zelsFindRev_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind, int* pIndex) {
    return find<From::End>(pSrc, len, pFind, lenFind, pIndex);
}

ZelStatus zelsFindRev_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                          int* pIndex) {
    return find<From::End>(pSrc, len, pFind, lenFind, pIndex);
}

ZelStatus zelsFindC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex) {
    return findC<From::Start>(pSrc, len, valFind, pIndex);
}

ZelStatus zelsFindC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex) {
    return findC<From::Start>(pSrc, len, valFind, pIndex);
}

ZelStatus zelsFindRevC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex) {
    return findC<From::End>(pSrc, len, valFind, pIndex);
}

ZelStatus zelsFindRevC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex) {
    return findC<From::End>(pSrc, len, valFind, pIndex);
}

ZelStatus zelsFindCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                          int* pIndex) {
    return findCAny<From::Start>(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}

ZelStatus zelsFindCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                           int* pIndex) {
    return findCAny<From::Start>(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}

ZelStatus zelsFindRevCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                             int* pIndex) {
    return findCAny<From::End>(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}

ZelStatus zelsFindRevCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                              int* pIndex) {
    return findCAny<From::End>(pSrc, len, pAnyOf, lenAnyOf, pIndex);
}

ZelStatus zelsFind_Z_8u(const Zel8u* pSrcZ, const Zel8u* pFindZ, int* pIndex) {
    return findZ(pSrcZ, pFindZ, pIndex);
}

ZelStatus zelsFind_Z_16u(const Zel16u* pSrcZ, const Zel16u* pFindZ, int* pIndex) {
    return findZ(pSrcZ, pFindZ, pIndex);
}

ZelStatus zelsFindC_Z_8u(const Zel8u* pSrcZ, Zel8u valFind, int* pIndex) {
    return findCZ(pSrcZ, valFind, pIndex);
}

ZelStatus zelsFindC_Z_16u(const Zel16u* pSrcZ, Zel16u valFind, int* pIndex) {
    return findCZ(pSrcZ, valFind, pIndex);
}

}  // namespace zel::ZEL_ISA
