// The exported comparisons.
#include "string/kernels/compare.h"
#include "core/checks.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <typename Fold, typename T>
[[gnu::noinline]] ZelStatus compareOtherwise(const T* src1, const T* src2, int len, int* result) {
    if (anyNull(src1, src2, result)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *result = compareLong<Fold>(src1, src2, len);
    return zelStatusOk;
}

template <typename Fold, typename T>
[[gnu::noinline]] ZelStatus answerDifference(const T* src1, const T* src2, int* result) {
    *result = Fold{}.minus(*src1, *src2);
    return zelStatusOk;
}

template <typename Fold, typename T>
ZEL_INLINE ZelStatus compareFolded(const T* src1, const T* src2, int len, int* result) {
    const Mask<T> differ = Fold{}.differFirst(src1, src2, len);
    if (differ.any())
        return answerDifference<Fold>(src1 + differ.first(), src2 + differ.first(), result);
    *result = 0;
    return zelStatusOk;
}

template <typename Fold, typename T>
[[gnu::noinline]] ZelStatus compareFoldedApart(const T* src1, const T* src2, int len, int* result) {
    return compareFolded<Fold>(src1, src2, len, result);
}

template <typename Fold, typename T>
ZEL_INLINE ZelStatus compare(const T* src1, const T* src2, int len, int* result) {
    if (!isShortCall(Vec<T>::kLanes, len, src1, src2, result)) [[unlikely]]
        return compareOtherwise<Fold>(src1, src2, len, result);
    const Mask<T> differ = differFirst(src1, src2, len);
    if constexpr (Fold::kIsExact) {
        *result = differ.any() ? src1[differ.first()] - src2[differ.first()] : 0;
        return zelStatusOk;
    } else {
        if (!differ.any()) [[likely]] {
            *result = 0;
            return zelStatusOk;
        }
        if constexpr (Fold::kIsSmall)
            return compareFolded<Fold>(src1, src2, len, result);
        else
            return compareFoldedApart<Fold>(src1, src2, len, result);
    }
}

template <typename T>
[[gnu::noinline]] ZelStatus equalOtherwise(const T* src1, const T* src2, int len, int* result) {
    if (anyNull(src1, src2, result)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *result = equalLong(src1, src2, len) ? 1 : 0;
    return zelStatusOk;
}

template <typename T>
ZEL_INLINE ZelStatus equal(const T* src1, const T* src2, int len, int* result) {
    if (!isShortCall(Vec<T>::kLanes, len, src1, src2, result)) [[unlikely]]
        return equalOtherwise(src1, src2, len, result);
    *result = equalShort(src1, src2, len) ? 1 : 0;
    return zelStatusOk;
}

}  // namespace

ZelStatus zelsCompare_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult) {
    return compare<AsTheyStand>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompare_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult) {
    return compare<AsTheyStand>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompareIgnoreCaseLatin_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len,
                                        int* pResult) {
    return compare<IgnoringLatinCase>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompareIgnoreCaseLatin_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                         int* pResult) {
    return compare<IgnoringLatinCase>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsCompareIgnoreCase_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                    int* pResult) {
    return compare<IgnoringTableCase>(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsEqual_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult) {
    return equal(pSrc1, pSrc2, len, pResult);
}

ZelStatus zelsEqual_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult) {
    return equal(pSrc1, pSrc2, len, pResult);
}

}  // namespace zel::ZEL_ISA
