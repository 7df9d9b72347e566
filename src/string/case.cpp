// The exported case conversions: a table rule for 16-bit strings, an ASCII rule for both widths.
// The in-place members are the others with the source as destination.
#include "core/checks.h"
#include "string/kernels/convert_case.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

template <typename Rule, typename T>
[[gnu::noinline]] ZelStatus convertOtherwise(const T* src, T* dst, int len) {
    if (anyNull(src, dst)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    mapLong(src, dst, len, Rule{});
    return zelStatusOk;
}

template <typename Rule, typename T>
ZEL_INLINE ZelStatus convert(const T* src, T* dst, int len) {
    if (!isShortCall(Vec<T>::kLanes, len, src, dst)) [[unlikely]]
        return convertOtherwise<Rule>(src, dst, len);
    mapShort(src, dst, len, Rule{});
    return zelStatusOk;
}

}  // namespace

ZelStatus zelsUppercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert<TableRule<Case::Upper>>(pSrc, pDst, len);
}

ZelStatus zelsUppercase_16u_I(Zel16u* pSrcDst, int len) {
    return convert<TableRule<Case::Upper>>(pSrcDst, pSrcDst, len);
}

ZelStatus zelsLowercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert<TableRule<Case::Lower>>(pSrc, pDst, len);
}

ZelStatus zelsLowercase_16u_I(Zel16u* pSrcDst, int len) {
    return convert<TableRule<Case::Lower>>(pSrcDst, pSrcDst, len);
}

ZelStatus zelsUppercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return convert<ToUpperLatin>(pSrc, pDst, len);
}

ZelStatus zelsUppercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert<ToUpperLatin>(pSrc, pDst, len);
}

ZelStatus zelsUppercaseLatin_8u_I(Zel8u* pSrcDst, int len) {
    return convert<ToUpperLatin>(pSrcDst, pSrcDst, len);
}

ZelStatus zelsUppercaseLatin_16u_I(Zel16u* pSrcDst, int len) {
    return convert<ToUpperLatin>(pSrcDst, pSrcDst, len);
}

ZelStatus zelsLowercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len) {
    return convert<ToLowerLatin>(pSrc, pDst, len);
}

ZelStatus zelsLowercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len) {
    return convert<ToLowerLatin>(pSrc, pDst, len);
}

ZelStatus zelsLowercaseLatin_8u_I(Zel8u* pSrcDst, int len) {
    return convert<ToLowerLatin>(pSrcDst, pSrcDst, len);
}

ZelStatus zelsLowercaseLatin_16u_I(Zel16u* pSrcDst, int len) {
    return convert<ToLowerLatin>(pSrcDst, pSrcDst, len);
}

}  // namespace zel::ZEL_ISA
