// Searches for any element of a set, on valid arguments: the index, or kNotFound.
//
// Few members are compared one by one. A text of one vector is kept in a register and compared with
// each member, or sixteen bytes of both at a time by the string instruction of SSE4.2 where neither
// has a zero, so that no table is made for it. A longer text is worth a classifier.
#pragma once

#include "string/kernels/byte_class.h"
#include "string/kernels/find_element.h"
#if !defined(ZEL_ISA_SSE2)
#include "string/kernels/unit_class.h"
#endif

namespace zel::ZEL_ISA {

/// A text of at most one vector.
template <From from, typename T>
ZEL_INLINE int findAnyOfShort(const T* src, int len, const T* set, int lenSet) {
    if (lenSet == 0) return kNotFound;
    const Vec<T> text = Vec<T>::loadFirst(src, len);
    Hits<T> hits = equal(text, Vec<T>::splat(set[0]));
    for (int i = 1; i < lenSet; ++i) hits = hits | equal(text, Vec<T>::splat(set[i]));
    return Way<from>::nearestOf(hits.mask(), len);
}

/// One element after the other.
template <From from, typename T, typename Predicate>
ZEL_INLINE int findElementIf(const T* src, int len, const Predicate& accepts) {
    for (int k = 0; k < len; ++k) {
        const T* const p = Way<from>::block(Way<from>::begin(src, len), 1, k);
        if (accepts(*p)) return static_cast<int>(p - src);
    }
    return kNotFound;
}

/// A text that is shorter than the set, which fits one vector.
template <From from, typename T>
ZEL_INLINE int findAnyOfLongerSet(const T* src, int len, const T* set, int lenSet) {
    const Vec<T> members = Vec<T>::loadFirst(set, lenSet);
    const Mask<T> inSet = Mask<T>::firstN(lenSet);
    const auto isMember = [&](T element) {
        return (Mask<T>{equalBits(members, Vec<T>::splat(element))} & inSet).any();
    };
    return findElementIf<from>(src, len, isMember);
}

#if !defined(ZEL_ISA_SSE2)

/// Sixteen bytes of set and text at a time, by the string instruction, for which both end at their
/// first zero. The text is in a register, at most kPieces times sixteen bytes of it count, and it
/// has no zero; a set with a zero is refused. Answers whether it did, and the members' places.
template <int kPieces>
ZEL_INLINE bool findAnyBySixteens(Vec<Zel8u> text, const Zel8u* set, int lenSet,
                                  Mask<Zel8u>& result) {
    constexpr int kAnyByteAsMask = _SIDD_UBYTE_OPS | _SIDD_CMP_EQUAL_ANY | _SIDD_BIT_MASK;
    __m128i piece[4];
    splitIntoSixteens(text, piece);
    uint64_t found = 0;
    for (;;) {
        const __m128i members = loadUpTo16(set, lenSet);
        const auto zeros =
            static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(members, _mm_setzero_si128())));
        if (countTrailingZeros(zeros) < lenSet && zeros != 0) [[unlikely]]
            return false;
        __m128i places[4] = {};
#pragma GCC unroll 4
        for (int i = 0; i < kPieces; ++i)
            places[i] = _mm_cmpistrm(members, piece[i], kAnyByteAsMask);
        const __m128i low = _mm_unpacklo_epi16(places[0], places[1]);
        const __m128i high = _mm_unpacklo_epi16(places[2], places[3]);
        found |= static_cast<uint64_t>(_mm_cvtsi128_si64(_mm_unpacklo_epi32(low, high)));
        if (lenSet <= 16) break;
        set += 16;
        lenSet -= 16;
    }
    result.bits = found;
    return true;
}

/// A text of at most one vector, and more than a few members. Two pieces or four are looked at,
/// filled or not, so that there is only one branch on the length.
template <From from>
ZEL_INLINE bool findAnyInPieces(const Zel8u* src, int len, const Zel8u* set, int lenSet,
                                int& index) {
    const Vec<Zel8u> text = Vec<Zel8u>::loadFirst(src, len);
    const Mask<Zel8u> inText = Mask<Zel8u>::firstN(len);
    if ((Mask<Zel8u>{equalBits(text, Vec<Zel8u>::zero())} & inText).any()) return false;
    Mask<Zel8u> found;
    const bool isDone = len <= 32 ? findAnyBySixteens<2>(text, set, lenSet, found)
                                  : findAnyBySixteens<4>(text, set, lenSet, found);
    if (!isDone) [[unlikely]]
        return false;
    index = Way<from>::nearestOf(found, len);
    return true;
}

#else

template <From from>
ZEL_INLINE bool findAnyInPieces(const Zel8u*, int, const Zel8u*, int, int&) {
    return false;
}

#endif

#if defined(ZEL_ISA_AVX512)

template <From from>
ZEL_INLINE int findMember(const Zel8u* src, int len, const Zel8u* set, int lenSet) {
    constexpr int kSmallSet = 24;    // a larger one is unlikely to have a slot for everyone
    constexpr int kShortText = 512;  // a longer one pays for a table
    if (lenSet <= 8 && len <= kShortText)
        return findHit<from>(src, len, HalvesClass::of(set, lenSet));
    if (lenSet <= kSmallSet && len > kShortText) {
        const SlotClass slots = SlotClass::of(set, lenSet);
        if (slots.isExact) return findHit<from>(src, len, slots);
    }
    return findHit<from>(src, len, byteClassOf(set, lenSet));
}

#else

template <From from>
ZEL_INLINE int findMember(const Zel8u* src, int len, const Zel8u* set, int lenSet) {
    return findHit<from>(src, len, byteClassOf(set, lenSet));
}

#endif

#if defined(ZEL_ISA_SSE2)

/// One bit for each low byte that occurs in the set, checked member by member where it is there.
template <From from>
ZEL_INLINE int findMember(const Zel16u* src, int len, const Zel16u* set, int lenSet) {
    const ByteClass lows = byteClassOf(set, lenSet);
    const auto isMember = [&](Zel16u unit) {
        return lows.has(static_cast<Zel8u>(unit)) && findElement(set, lenSet, unit) != kNotFound;
    };
    return findElementIf<from>(src, len, isMember);
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
            // Bytes have a class that takes no longer.
            if constexpr (sizeof(T) > 1) return findHit<from>(src, len, EqualsAnyOf<T, 4>::of(set));
            [[fallthrough]];
        default:
            return findMember<from>(src, len, set, lenSet);
    }
}

/// A text of at most one vector, and more than a few members.
template <From from, typename T>
ZEL_INLINE int findAnyOfShortMany(const T* src, int len, const T* set, int lenSet) {
    if constexpr (sizeof(T) == 1) {
        int index;
        if (findAnyInPieces<from>(src, len, set, lenSet, index)) return index;
    }
    if (lenSet > len && lenSet <= Vec<T>::kLanes)
        return findAnyOfLongerSet<from>(src, len, set, lenSet);
    return findAnyOfShort<from>(src, len, set, lenSet);
}

/// Up to this many members are compared one by one even where the string instruction exists.
inline constexpr int kFewMembers = 8;

template <From from, typename T>
ZEL_INLINE int findAnyOf(const T* src, int len, const T* set, int lenSet) {
    constexpr int n = Vec<T>::kLanes;
    if (len > n) return findAnyOfLong<from>(src, len, set, lenSet);
    if (lenSet <= kFewMembers) return findAnyOfShort<from>(src, len, set, lenSet);
    return findAnyOfShortMany<from>(src, len, set, lenSet);
}

}  // namespace zel::ZEL_ISA
