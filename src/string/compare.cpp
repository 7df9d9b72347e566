// The exported comparisons.
#include "string/compare.h"

#include "core/checks.h"
#include "string/case.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <typename T>
ZelStatus compare(const T* src1, const T* src2, int len, int* result) {
    if (anyNull(src1, src2, result)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *result = compareExact(src1, src2, len);
    return zelStatusOk;
}

template <typename Fold, typename T>
ZelStatus compareIgnoreCase(const T* src1, const T* src2, int len, int* result) {
    if (anyNull(src1, src2, result)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *result = compareFolded(src1, src2, len, Fold{});
    return zelStatusOk;
}

template <typename T>
ZelStatus equal(const T* src1, const T* src2, int len, int* result) {
    if (anyNull(src1, src2, result)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *result = equalElements(src1, src2, len) ? 1 : 0;
    return zelStatusOk;
}

}  // namespace

ZelStatus zelsCompare_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompare_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult) {
    return compare(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompareIgnoreCaseLatin_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len,
                                        int* pResult) {
    return compareIgnoreCase<ToLowerLatin>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompareIgnoreCaseLatin_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                         int* pResult) {
    return compareIgnoreCase<ToLowerLatin>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompareIgnoreCase_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                    int* pResult) {
    return compareIgnoreCase<ToLowerByTable>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsEqual_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult) {
    return equal(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsEqual_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult) {
    return equal(pSrc1, pSrc2, len, pResult);
}

}  // namespace zel::ZEL_ISA
