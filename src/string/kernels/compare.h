// Comparison of two runs of the same length: where they first differ, and whether they do.
//
// The scheme is that of scan.h, over two texts: up to four vectors overlap and share one question,
// longer runs go in rounds of four whose differences are combined before they are asked for. A fold
// says which elements differ that are not the same as they stand; it is only asked for vectors that
// have a difference, so equal text costs the same under every fold.
#pragma once

#include "string/kernels/convert_case.h"
#include "string/kernels/same.h"

namespace zel::ZEL_ISA {

/// Folds: where two vectors differ, or the first n elements of two texts, and by how much a pair
/// does. A small fold consists of a few instructions.
struct AsTheyStand {
    static constexpr bool kIsExact = true;
    template <typename T>
    ZEL_INLINE Differences<T> differences(Vec<T> a, Vec<T> b) {
        return difference(a, b);
    }
    template <typename T>
    ZEL_INLINE int minus(T a, T b) const {
        return a - b;
    }
};

struct IgnoringLatinCase {
    static constexpr bool kIsExact = false;
    static constexpr bool kIsSmall = true;
    template <typename T>
    ZEL_INLINE Mask<T> differFirst(const T* a, const T* b, int n) const {
        return differIgnoringLatinCaseFirst(a, b, n);
    }
    template <typename T>
    ZEL_INLINE Differences<T> differences(Vec<T> a, Vec<T> b) {
        return differenceIgnoringLatinCase(a, b);
    }
    template <typename T>
    ZEL_INLINE int minus(T a, T b) const {
        return ToLowerLatin{}(a)-ToLowerLatin{}(b);
    }
};

struct IgnoringTableCase {
    static constexpr bool kIsExact = false;
    static constexpr bool kIsSmall = false;
    ZEL_INLINE Mask<Zel16u> differFirst(const Zel16u* a, const Zel16u* b, int n) {
        using V = Vec<Zel16u>;
        return differences(V::loadFirst(a, n), V::loadFirst(b, n)).mask();
    }
    ZEL_INLINE Differences<Zel16u> differences(Vec<Zel16u> a, Vec<Zel16u> b) {
        return difference(toLower(a), toLower(b));
    }
    ZEL_INLINE int minus(Zel16u a, Zel16u b) const {
        return convertUnit<Case::Lower>(a) - convertUnit<Case::Lower>(b);
    }
    TableRule<Case::Lower> toLower;
};

/// The two texts, looked at by vectors.
template <typename T>
struct TextPair {
    using V = Vec<T>;
    const T* a;
    const T* b;

    template <typename Fold>
    ZEL_INLINE Differences<T> differencesAt(ptrdiff_t i, Fold& fold) const {
        return fold.differences(V::load(a + i), V::load(b + i));
    }
    /// Index of the first element of the vector at i that differs under the fold, or kNotFound.
    template <typename Fold>
    ZEL_INLINE ptrdiff_t firstAt(ptrdiff_t i, Fold& fold) const {
        const Mask<T> m = differencesAt(i, fold).mask();
        return m.any() ? i + m.first() : kNotFound;
    }
    /// The same for two vectors of which one has such an element.
    template <typename Fold>
    ZEL_INLINE ptrdiff_t firstInTwo(ptrdiff_t i, ptrdiff_t j, Fold& fold) const {
        Mask<T> differ = differencesAt(j, fold).mask();
        const Mask<T> first = differencesAt(i, fold).mask();
        if (first.any()) {
            differ = first;
            j = i;
        }
        return j + differ.first();
    }
    /// The index for four vectors, or kNotFound.
    template <typename Fold>
    ZEL_INLINE ptrdiff_t firstInFour(ptrdiff_t i, ptrdiff_t j, ptrdiff_t k, ptrdiff_t l,
                                     Fold& fold) const {
        AsTheyStand raw;
        const Differences<T> first =
            andDifference(differencesAt(i, raw), V::load(a + j), V::load(b + j));
        const Differences<T> second =
            andDifference(differencesAt(k, raw), V::load(a + l), V::load(b + l));
        if (!(first | second).any()) [[likely]]
            return kNotFound;
        if constexpr (Fold::kIsExact) {
            return first.any() ? firstInTwo(i, j, fold) : firstInTwo(k, l, fold);
        } else {
            const Differences<T> atI = differencesAt(i, fold);
            const Differences<T> atJ = differencesAt(j, fold);
            const Differences<T> atK = differencesAt(k, fold);
            const Differences<T> atL = differencesAt(l, fold);
            if (!((atI | atJ) | (atK | atL)).any()) return kNotFound;
            if (atI.any()) return i + atI.mask().first();
            if (atJ.any()) return j + atJ.mask().first();
            if (atK.any()) return k + atK.mask().first();
            return l + atL.mask().first();
        }
    }
};

/// For runs of more than one vector: index of the first element that differs, or kNotFound.
template <typename T, typename Fold>
ZEL_INLINE ptrdiff_t firstDifferenceLong(const T* a, const T* b, ptrdiff_t len, Fold& fold) {
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const TextPair<T> pair{a, b};
    if (len <= 2 * n) {
        if (const ptrdiff_t i = pair.firstAt(0, fold); i >= 0) return i;
        return pair.firstAt(len - n, fold);
    }
    if (len <= 4 * n) return pair.firstInFour(0, n, len - 2 * n, len - n, fold);

    if (const ptrdiff_t i = pair.firstInFour(0, n, 2 * n, 3 * n, fold); i >= 0) return i;
    for (ptrdiff_t at = 3 * n + toBoundary(a); len - at > 4 * n; at += 4 * n) {
        const ptrdiff_t i = pair.firstInFour(at, at + n, at + 2 * n, at + 3 * n, fold);
        if (i >= 0) return i;
    }
    return pair.firstInFour(len - 4 * n, len - 3 * n, len - 2 * n, len - n, fold);
}

/// For runs of more than one vector: the difference of the first pair that differs under the fold,
/// else 0.
template <typename Fold, typename T>
ZEL_INLINE int compareLong(const T* a, const T* b, int len) {
    Fold fold;
    const ptrdiff_t i = firstDifferenceLong(a, b, len, fold);
    return i < 0 ? 0 : fold.minus(a[i], b[i]);
}

/// True when all elements are equal: of runs of at most one vector, and of longer ones.
template <typename T>
ZEL_INLINE bool equalShort(const T* a, const T* b, int len) {
    return !differFirst(a, b, len).any();
}
template <typename T>
ZEL_INLINE bool equalLong(const T* a, const T* b, int len) {
    AsTheyStand fold;
    return firstDifferenceLong(a, b, len, fold) < 0;
}

}  // namespace zel::ZEL_ISA
