// The exported hashes.
#include "string/hash.h"

#include "core/checks.h"
#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

namespace {

// The two families that go on over zero elements store 0 before they start.
template <auto formula, typename T>
ZEL_INLINE ZelStatus hash(const T* src, int len, Zel32u* hashVal) {
    if (anyNull(src, hashVal)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *hashVal = 0;
    *hashVal = formula(src, len);
    return zelStatusOk;
}

template <typename T>
[[gnu::noinline]] ZelStatus hashSJ2Otherwise(const T* src, int len, Zel32u* hashVal) {
    return hash<hashSJ2<T>>(src, len, hashVal);
}

template <typename T>
ZEL_INLINE ZelStatus hashSJ2OfAny(const T* src, int len, Zel32u* hashVal) {
    if (!isShortCall(Words::kLanes, len, src, hashVal)) [[unlikely]]
        return hashSJ2Otherwise(src, len, hashVal);
    *hashVal = 0;
    *hashVal = hashSJ2Short(src, len);
    return zelStatusOk;
}

template <auto formula, typename T>
ZelStatus hashUpToZero(const T* src, int len, Zel32u* hashVal) {
    if (anyNull(src, hashVal)) return zelStatusNullPointer;
    if (anyNegative(len)) return zelStatusLengthError;
    *hashVal = formula(src, len);
    return zelStatusOk;
}

}  // namespace

ZelStatus zelsHash_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal) {
    return hash<hashShift<Zel8u>>(pSrc, len, pHashVal);
}

ZelStatus zelsHash_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal) {
    return hash<hashShift<Zel16u>>(pSrc, len, pHashVal);
}

ZelStatus zelsHashSJ2_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal) {
    return hashSJ2OfAny(pSrc, len, pHashVal);
}

ZelStatus zelsHashSJ2_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal) {
    return hashSJ2OfAny(pSrc, len, pHashVal);
}

ZelStatus zelsHashMSCS_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal) {
    return hashUpToZero<hashMSCS<Zel8u>>(pSrc, len, pHashVal);
}

ZelStatus zelsHashMSCS_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal) {
    return hashUpToZero<hashMSCS<Zel16u>>(pSrc, len, pHashVal);
}

}  // namespace zel::ZEL_ISA
