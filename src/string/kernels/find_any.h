// Searches for any element of a set, on valid arguments: the index, or kNotFound.
//
// Few members are compared one by one. A text of one vector is kept in a register and compared with
// each member, or each of its elements with a vector of members, whichever are fewer, so that no
// table is made for it. A longer text is worth a classifier.
#pragma once

#include "string/kernels/byte_class.h"
#include "string/kernels/find_element.h"
#if !defined(ZEL_ISA_SSE2)
#include "string/kernels/unit_class.h"
#endif

namespace zel::ZEL_ISA {

/// The direction of a search.
enum class From { Start, End };

template <From from, typename T, typename Test>
ZEL_INLINE int findHit(const T* src, int len, const Test& test) {
    return from == From::Start ? firstHit(src, len, test) : lastHit(src, len, test);
}

/// A text of at most one vector.
template <From from, typename T>
ZEL_INLINE int findAnyOfShort(const T* src, int len, const T* set, int lenSet) {
    const Vec<T> text = Vec<T>::loadFirst(src, len);
    Mask<T> found{0};
    for (int i = 0; i < lenSet; ++i)
        found = found | Mask<T>{equalBits(text, Vec<T>::splat(set[i]))};
    found = found & Mask<T>::firstN(len);
    return from == From::Start ? found.firstOrNotFound() : found.lastOrNotFound();
}

/// A text that is shorter than the set, which fits one vector.
template <From from, typename T>
ZEL_INLINE int findAnyOfLongerSet(const T* src, int len, const T* set, int lenSet) {
    const Vec<T> members = Vec<T>::loadFirst(set, lenSet);
    const Mask<T> inSet = Mask<T>::firstN(lenSet);
    const auto isMember = [&](T element) {
        return (Mask<T>{equalBits(members, Vec<T>::splat(element))} & inSet).any();
    };
    if constexpr (from == From::Start) {
        for (int i = 0; i < len; ++i) {
            if (isMember(src[i])) return i;
        }
    } else {
        for (int i = len - 1; i >= 0; --i) {
            if (isMember(src[i])) return i;
        }
    }
    return kNotFound;
}

template <From from>
ZEL_INLINE int findMember(const Zel8u* src, int len, const Zel8u* set, int lenSet) {
    return findHit<from>(src, len, byteClassOf(set, lenSet));
}

#if defined(ZEL_ISA_SSE2)

/// One bit for each low byte that occurs in the set, checked member by member where it is there.
template <From from>
ZEL_INLINE int findMember(const Zel16u* src, int len, const Zel16u* set, int lenSet) {
    const ByteClass lows = byteClassOf(set, lenSet);
    const auto isMember = [&](Zel16u unit) {
        return lows.has(static_cast<Zel8u>(unit)) && findElement(set, lenSet, unit) != kNotFound;
    };
    if constexpr (from == From::Start) {
        for (int i = 0; i < len; ++i) {
            if (isMember(src[i])) return i;
        }
    } else {
        for (int i = len - 1; i >= 0; --i) {
            if (isMember(src[i])) return i;
        }
    }
    return kNotFound;
}

#else

template <From from>
ZEL_INLINE int findMember(const Zel16u* src, int len, const Zel16u* set, int lenSet) {
    if (RowClass::fits(set, lenSet)) return findHit<from>(src, len, RowClass::of(set, lenSet));
    const UnitClass units = UnitClass::of(set, lenSet);
    int begin = 0;
    int end = len;
    for (;;) {
        const int i = findHit<from>(src + begin, end - begin, units);
        if (i == kNotFound) return kNotFound;
        const int at = begin + i;
        if (units.isExact || findElement(set, lenSet, src[at]) != kNotFound) return at;
        if constexpr (from == From::Start)
            begin = at + 1;
        else
            end = at;
    }
}

#endif

template <From from, typename T>
[[gnu::noinline]] int findAnyOfLong(const T* src, int len, const T* set, int lenSet) {
    switch (lenSet) {
        case 0:
            return kNotFound;
        case 1:
            return findHit<from>(src, len, EqualsAnyOf<T, 1>::of(set));
        case 2:
            return findHit<from>(src, len, EqualsAnyOf<T, 2>::of(set));
        case 3:
            return findHit<from>(src, len, EqualsAnyOf<T, 3>::of(set));
        case 4:
            return findHit<from>(src, len, EqualsAnyOf<T, 4>::of(set));
        default:
            return findMember<from>(src, len, set, lenSet);
    }
}

template <From from, typename T>
ZEL_INLINE int findAnyOfEitherWay(const T* src, int len, const T* set, int lenSet) {
    constexpr int n = Vec<T>::kLanes;
    if (len > n) return findAnyOfLong<from>(src, len, set, lenSet);
    if (lenSet > len && lenSet <= n) return findAnyOfLongerSet<from>(src, len, set, lenSet);
    return findAnyOfShort<from>(src, len, set, lenSet);
}

template <typename T>
ZEL_INLINE int findAnyOf(const T* src, int len, const T* set, int lenSet) {
    return findAnyOfEitherWay<From::Start>(src, len, set, lenSet);
}

template <typename T>
ZEL_INLINE int findAnyOfRev(const T* src, int len, const T* set, int lenSet) {
    return findAnyOfEitherWay<From::End>(src, len, set, lenSet);
}

}  // namespace zel::ZEL_ISA
