// Search for a string: a block of starts is filtered by the pattern's first and last element, what
// is left by a third element between them, and only what passes all three is compared. The third
// element is one that differs from the first where the pattern has such a one, so that neither runs
// of one element in the text nor a pattern made of few elements let every start through.
//
// Up to four blocks overlap and share one question. Between the first and the last four blocks of a
// longer text, the search begins with only one of the two probes, the one that is rarer in texts of
// all kinds, at the speed of a search for that element; where it turns out not to be rare, it goes
// on with both.
//
// Positions are those of the pattern's first element; a block of starts reads its first elements
// and, the pattern's length further on, its last ones, both inside the text.
#pragma once

#include "string/kernels/commonness.h"
#include "string/kernels/find_element.h"
#include "string/kernels/same.h"

namespace zel::ZEL_ISA {

template <typename T>
struct Pattern {
    using V = Vec<T>;
    const T* elements;
    ptrdiff_t len;  // at least 2
    V first;
    V last;

    ZEL_INLINE Pattern(const T* p, int n)
        : elements(p), len(n), first(V::splat(p[0])), last(V::splat(p[n - 1])) {}

    /// The starts of the block at p that have the right first and last element.
    ZEL_INLINE Hits<T> hits(const T* p) const {
        return andEqual(equal(V::load(p), first), V::load(p + len - 1), last);
    }
    /// The same among the first n starts.
    ZEL_INLINE Mask<T> maskFirst(const T* p, int n) const {
        const uint64_t bits =
            equalBits(V::loadFirst(p, n), first) & equalBits(V::loadFirst(p + len - 1, n), last);
        return Mask<T>{bits} & Mask<T>::firstN(n);
    }
    ZEL_INLINE bool standsAt(const T* p) const { return isSame(p + 1, elements + 1, len - 2); }

    /// Where the third probe looks.
    ptrdiff_t thirdProbe() const {
        const ptrdiff_t middle = len / 2;
        if (elements[middle] != elements[0]) return middle;
        for (ptrdiff_t i = 1; i < len - 1; ++i) {
            if (elements[i] != elements[0]) return i;
        }
        return middle;
    }
};

/// The starts that pass the first two probes, checked further.
template <typename T>
struct Candidates {
    using V = Vec<T>;
    const Pattern<T>& pattern;
    ptrdiff_t probeAt;
    V probe;

    ZEL_INLINE explicit Candidates(const Pattern<T>& p)
        : pattern(p), probeAt(p.thirdProbe()), probe(V::splat(p.elements[probeAt])) {}

    ZEL_INLINE int first(const T* block, Mask<T> mask) const {
        mask = mask & Mask<T>{equalBits(V::load(block + probeAt), probe)};
        for (; mask.any(); mask = mask.withoutFirst()) {
            if (pattern.standsAt(block + mask.first())) return mask.first();
        }
        return kNotFound;
    }
    ZEL_INLINE int last(const T* block, Mask<T> mask) const {
        mask = mask & Mask<T>{equalBits(V::load(block + probeAt), probe)};
        for (; mask.any(); mask = mask.without(mask.last())) {
            if (pattern.standsAt(block + mask.last())) return mask.last();
        }
        return kNotFound;
    }
};

/// Where one probe alone looks: the first or the last element, whichever is the rarer by rank.
template <typename T>
struct SingleProbe {
    Vec<T> value;
    ptrdiff_t at;

    ZEL_INLINE explicit SingleProbe(const Pattern<T>& p) {
        const T last = p.elements[p.len - 1];
        const T first = p.elements[0];
        const bool lastIsRarer = commonness(last) < commonness(first);
        value = Vec<T>::splat(lastIsRarer ? last : first);
        at = lastIsRarer ? p.len - 1 : 0;
    }
    ZEL_INLINE Hits<T> hits(const T* p) const { return equal(Vec<T>::load(p + at), value); }
};

/// How many rounds a single probe may let through in vain before it is not rare.
inline constexpr int kSingleProbePatience = 4;

/// The first of the starts in a block that have passed the first two probes, or kNotFound. A single
/// one is compared at once.
template <typename T>
ZEL_INLINE int firstMatch(const Pattern<T>& pattern, const T* block, Hits<T> hits) {
    const Mask<T> mask = hits.mask();
    if (!mask.any()) return kNotFound;
    if (mask.withoutFirst().any()) return Candidates<T>(pattern).first(block, mask);
    return pattern.standsAt(block + mask.first()) ? mask.first() : kNotFound;
}
template <typename T>
ZEL_INLINE int lastMatch(const Pattern<T>& pattern, const T* block, Hits<T> hits) {
    const Mask<T> mask = hits.mask();
    if (!mask.any()) return kNotFound;
    if (mask.withoutFirst().any()) return Candidates<T>(pattern).last(block, mask);
    return pattern.standsAt(block + mask.last()) ? mask.last() : kNotFound;
}

/// More starts than one block has, but at most four, as two or four blocks that overlap and share
/// one question.
template <typename T>
ZEL_INLINE int findStringInFew(const T* src, ptrdiff_t starts, const Pattern<T>& pattern) {
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const T* const last = src + starts - n;
    const auto found = [&](const T* block, Hits<T> hits, int& index)
        __attribute__((always_inline)) {
        const int i = firstMatch(pattern, block, hits);
        index = static_cast<int>(block - src) + i;
        return i >= 0;
    };
    const Hits<T> a = pattern.hits(src);
    const Hits<T> d = pattern.hits(last);
    int index;
    if (starts <= 2 * n) {
        if (!(a | d).any()) [[likely]]
            return kNotFound;
        if (found(src, a, index) || found(last, d, index)) return index;
        return kNotFound;
    }
    const Hits<T> b = pattern.hits(src + n);
    const Hits<T> c = pattern.hits(last - n);
    if (!((a | b) | (c | d)).any()) [[likely]]
        return kNotFound;
    if (found(src, a, index) || found(src + n, b, index) || found(last - n, c, index) ||
        found(last, d, index))
        return index;
    return kNotFound;
}

template <typename T>
ZEL_INLINE int findStringRevInFew(const T* src, ptrdiff_t starts, const Pattern<T>& pattern) {
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const T* const last = src + starts - n;
    const auto found = [&](const T* block, Hits<T> hits, int& index)
        __attribute__((always_inline)) {
        const int i = lastMatch(pattern, block, hits);
        index = static_cast<int>(block - src) + i;
        return i >= 0;
    };
    const Hits<T> a = pattern.hits(src);
    const Hits<T> d = pattern.hits(last);
    int index;
    if (starts <= 2 * n) {
        if (!(a | d).any()) [[likely]]
            return kNotFound;
        if (found(last, d, index) || found(src, a, index)) return index;
        return kNotFound;
    }
    const Hits<T> b = pattern.hits(src + n);
    const Hits<T> c = pattern.hits(last - n);
    if (!((a | b) | (c | d)).any()) [[likely]]
        return kNotFound;
    if (found(last, d, index) || found(last - n, c, index) || found(src + n, b, index) ||
        found(src, a, index))
        return index;
    return kNotFound;
}

template <typename T>
[[gnu::noinline]] int findStringMedium(const T* src, ptrdiff_t starts, const T* elements, int len) {
    return findStringInFew(src, starts, Pattern<T>(elements, len));
}
template <typename T>
[[gnu::noinline]] int findStringRevMedium(const T* src, ptrdiff_t starts, const T* elements,
                                          int len) {
    return findStringRevInFew(src, starts, Pattern<T>(elements, len));
}

/// For more starts than four blocks have. The first four and the last four blocks are looked at
/// with both probes, the latter repeating starts that were refused before.
template <typename T>
[[gnu::noinline]] int findStringLong(const T* src, ptrdiff_t starts, const T* elements, int len) {
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const Pattern<T> pattern(elements, len);
    const T* const end = src + starts;
    const auto at = [src](const T* block, int i) { return static_cast<int>(block - src) + i; };

    if (const int i = findStringInFew(src, 4 * n, pattern); i >= 0) return i;

    const SingleProbe<T> single(pattern);
    const Candidates<T> candidates(pattern);
    // Back to where the single probe reads whole cache lines.
    const T* p = src + 4 * n;
    p -= n - toBoundary(p + single.at);
    for (int patience = kSingleProbePatience; end - p > 4 * n && patience > 0; p += 4 * n) {
        const Hits<T> a = single.hits(p) | single.hits(p + n);
        const Hits<T> b = single.hits(p + 2 * n) | single.hits(p + 3 * n);
        if (!(a | b).any()) [[likely]]
            continue;
        --patience;
        for (int k = 0; k < 4; ++k) {
            const T* const block = p + k * n;
            const int i = candidates.first(block, pattern.hits(block).mask());
            if (i >= 0) return at(block, i);
        }
    }
    for (; end - p > 4 * n; p += 2 * n) {
        const Hits<T> a = pattern.hits(p);
        const Hits<T> b = pattern.hits(p + n);
        if (!(a | b).any()) [[likely]]
            continue;
        if (const int i = candidates.first(p, a.mask()); i >= 0) return at(p, i);
        if (const int i = candidates.first(p + n, b.mask()); i >= 0) return at(p + n, i);
    }
    const int i = findStringInFew(end - 4 * n, 4 * n, pattern);
    return i >= 0 ? at(end - 4 * n, i) : kNotFound;
}

template <typename T>
[[gnu::noinline]] int findStringRevLong(const T* src, ptrdiff_t starts, const T* elements,
                                        int len) {
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const Pattern<T> pattern(elements, len);
    const T* const end = src + starts;
    const auto at = [src](const T* block, int i) { return static_cast<int>(block - src) + i; };

    if (const int i = findStringRevInFew(end - 4 * n, 4 * n, pattern); i >= 0)
        return at(end - 4 * n, i);

    const SingleProbe<T> single(pattern);
    const Candidates<T> candidates(pattern);
    const T* p = end - 4 * n;
    p += n - fromBoundary(p + single.at);
    for (int patience = kSingleProbePatience; p - src > 4 * n && patience > 0; p -= 4 * n) {
        const Hits<T> a = single.hits(p - n) | single.hits(p - 2 * n);
        const Hits<T> b = single.hits(p - 3 * n) | single.hits(p - 4 * n);
        if (!(a | b).any()) [[likely]]
            continue;
        --patience;
        for (int k = 1; k <= 4; ++k) {
            const T* const block = p - k * n;
            const int i = candidates.last(block, pattern.hits(block).mask());
            if (i >= 0) return at(block, i);
        }
    }
    for (; p - src > 4 * n; p -= 2 * n) {
        const Hits<T> a = pattern.hits(p - n);
        const Hits<T> b = pattern.hits(p - 2 * n);
        if (!(a | b).any()) [[likely]]
            continue;
        if (const int i = candidates.last(p - n, a.mask()); i >= 0) return at(p - n, i);
        if (const int i = candidates.last(p - 2 * n, b.mask()); i >= 0) return at(p - 2 * n, i);
    }
    return findStringRevInFew(src, 4 * n, pattern);
}

/// First position of the pattern, or kNotFound. An empty pattern is never found.
template <typename T>
ZEL_INLINE int findString(const T* src, int len, const T* elements, int lenPattern) {
    if (lenPattern < 2) return lenPattern == 0 ? kNotFound : findElement(src, len, elements[0]);
    if (lenPattern > len) return kNotFound;
    const int starts = len - lenPattern + 1;
    if (starts > 4 * Vec<T>::kLanes) return findStringLong(src, starts, elements, lenPattern);
    if (starts > Vec<T>::kLanes) return findStringMedium(src, starts, elements, lenPattern);
    const Pattern<T> pattern(elements, lenPattern);
    for (Mask<T> m = pattern.maskFirst(src, starts); m.any(); m = m.withoutFirst()) {
        if (pattern.standsAt(src + m.first())) return m.first();
    }
    return kNotFound;
}

/// Last position of the pattern, or kNotFound. An empty pattern is never found.
template <typename T>
ZEL_INLINE int findStringRev(const T* src, int len, const T* elements, int lenPattern) {
    if (lenPattern < 2) return lenPattern == 0 ? kNotFound : findElementRev(src, len, elements[0]);
    if (lenPattern > len) return kNotFound;
    const int starts = len - lenPattern + 1;
    if (starts > 4 * Vec<T>::kLanes) return findStringRevLong(src, starts, elements, lenPattern);
    if (starts > Vec<T>::kLanes) return findStringRevMedium(src, starts, elements, lenPattern);
    const Pattern<T> pattern(elements, lenPattern);
    for (Mask<T> m = pattern.maskFirst(src, starts); m.any(); m = m.without(m.last())) {
        if (pattern.standsAt(src + m.last())) return m.last();
    }
    return kNotFound;
}

}  // namespace zel::ZEL_ISA
