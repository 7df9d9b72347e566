// What is left of a string when elements of a set are taken from its ends.
#pragma once

#include "string/kernels/find_any.h"

namespace zel::ZEL_ISA {

/// Which ends are trimmed.
enum Ends { kStart = 1, kEnd = 2, kBothEnds = kStart | kEnd };

struct Kept {
    int first;
    int count;
};

/// Accepts what another test does not.
template <typename T, typename Test>
struct Not {
    static constexpr int kLanes = Test::kLanes;
    Test test;

    ZEL_INLINE static Mask<T> inverted(Mask<T> mask) {
        return {mask.bits ^ Mask<T>::firstN(kLanes).bits};
    }
    ZEL_INLINE MaskHits<T> hits(const T* p) const { return {inverted(test.hits(p).mask())}; }
    ZEL_INLINE Mask<T> maskFirst(const T* p, int n) const { return inverted(test.maskFirst(p, n)); }
};

/// What is left between the first and the last of the elements in a mask of the whole text.
template <Ends ends, typename T>
ZEL_INLINE Kept keptInMask(Mask<T> kept, int len) {
    if (!kept.any()) [[unlikely]]
        return {0, 0};
    const int first = ends & kStart ? kept.first() : 0;
    const int last = ends & kEnd ? kept.last() : len - 1;
    return {first, last - first + 1};
}

/// What is left when the elements that a test does not accept are trimmed from a text that is
/// longer than its block.
template <Ends ends, typename T, typename Test>
ZEL_INLINE Kept keptInLong(const T* src, int len, const Test& kept) {
    const int first = ends & kStart ? findHitLong<From::Start>(src, len, kept) : 0;
    if (first < 0) return {0, 0};
    const int last = ends & kEnd ? findHitLong<From::End>(src, len, kept) : len - 1;
    return {first, last - first + 1};
}

/// What is left when the elements that a test accepts are trimmed.
template <Ends ends, typename T, typename Test>
ZEL_INLINE Kept keptWithout(const T* src, int len, const Test& test) {
    const Not<T, Test> kept{test};
    if (len > Test::kLanes) return keptInLong<ends>(src, len, kept);
    return keptInMask<ends>(kept.maskFirst(src, len) & Mask<T>::firstN(len), len);
}

/// The same for any set, element by element.
template <Ends ends, typename T>
Kept keptWithoutMembers(const T* src, int len, const T* set, int lenSet) {
    const auto isMember = [&](T element) { return findElement(set, lenSet, element) != kNotFound; };
    int first = 0;
    int end = len;
    while (ends & kStart && first < end && isMember(src[first])) ++first;
    while (ends & kEnd && first < end && isMember(src[end - 1])) --end;
    return {first, end - first};
}

/// More members than are compared one by one.
template <Ends ends>
ZEL_INLINE Kept keptWithoutMany(const Zel8u* src, int len, const Zel8u* set, int lenSet) {
    return keptWithout<ends>(src, len, byteClassOf(set, lenSet));
}

#if defined(ZEL_ISA_SSE2)

template <Ends ends>
ZEL_INLINE Kept keptWithoutMany(const Zel16u* src, int len, const Zel16u* set, int lenSet) {
    return keptWithoutMembers<ends>(src, len, set, lenSet);
}

#else

template <Ends ends>
ZEL_INLINE Kept keptWithoutMany(const Zel16u* src, int len, const Zel16u* set, int lenSet) {
    if (RowClass::fits(set, lenSet)) return keptWithout<ends>(src, len, RowClass::of(set, lenSet));
    const UnitClass units = UnitClass::of(set, lenSet);
    // A class that takes others for members would trim them too.
    return units.isExact ? keptWithout<ends>(src, len, units)
                         : keptWithoutMembers<ends>(src, len, set, lenSet);
}

#endif

template <Ends ends, typename T>
[[gnu::noinline]] Kept keptInLongText(const T* src, int len, const T* set, int lenSet) {
    switch (lenSet) {
        case 1:
            return keptInLong<ends>(src, len, Differs<T>::from(set[0]));
        case 2:
            return keptWithout<ends>(src, len, EqualsAnyOf<T, 2>::of(set));
        case 3:
            return keptWithout<ends>(src, len, EqualsAnyOf<T, 3>::of(set));
        case 4:
            return keptWithout<ends>(src, len, EqualsAnyOf<T, 4>::of(set));
        default:
            return keptWithoutMany<ends>(src, len, set, lenSet);
    }
}

/// What is left when the members of a set are trimmed. A text of one vector is compared with each.
template <Ends ends, typename T>
ZEL_INLINE Kept keptWithoutAnyOf(const T* src, int len, const T* set, int lenSet) {
    if (lenSet == 0) return {0, len};
    if (len > Vec<T>::kLanes) return keptInLongText<ends>(src, len, set, lenSet);
    const Vec<T> text = Vec<T>::loadFirst(src, len);
    Hits<T> members = equal(text, Vec<T>::splat(set[0]));
    for (int i = 1; i < lenSet; ++i) members = members | equal(text, Vec<T>::splat(set[i]));
    return keptInMask<ends>(~members.mask() & Mask<T>::firstN(len), len);
}

}  // namespace zel::ZEL_ISA
