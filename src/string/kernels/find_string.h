// Search for a string: a block of starts is filtered by the pattern's first and last element, what
// is left by a third element between them, and only what passes all three is compared. The third
// element is one that differs from the first where the pattern has such a one, so that neither runs
// of one element in the text nor a pattern made of few elements let every start through.
//
// A text of up to four blocks is filtered as a whole before anything is compared; a search that is
// not over with its first candidate goes on block by block. Between the first and the last four
// blocks of a longer text, the search begins with only one of the two probes, the one that is rarer
// in texts of all kinds, at the speed of a search for that element; where it turns out not to be
// rare, it goes on with both.
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
    ZEL_INLINE Mask<T> mask(const T* p) const {
        return bothEqual(V::load(p), first, V::load(p + len - 1), last);
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

/// The nearest of the starts of a block that a mask names and where the whole pattern stands, or
/// kNotFound.
template <From from, typename T>
ZEL_INLINE int nearestStart(const Pattern<T>& pattern, const T* block, Mask<T> mask) {
    for (; mask.any(); mask = Way<from>::withoutNearest(mask)) {
        const int i = Way<from>::nearest(mask);
        if (pattern.standsAt(block + i)) return i;
    }
    return kNotFound;
}

/// The third probe, for starts that have passed the first two.
template <typename T>
struct ThirdProbe {
    ptrdiff_t at;
    Vec<T> value;

    ZEL_INLINE explicit ThirdProbe(const Pattern<T>& pattern)
        : at(pattern.thirdProbe()), value(Vec<T>::splat(pattern.elements[at])) {}

    ZEL_INLINE Mask<T> refine(const T* block, Mask<T> mask) const {
        return mask & Mask<T>{equalBits(Vec<T>::load(block + at), value)};
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

/// Block by block from one of them on, whose last one overlaps the one before.
template <From from, typename T>
[[gnu::noinline]] int findStringByBlocks(const T* src, ptrdiff_t starts, const T* elements, int len,
                                         const T* block) {
    using W = Way<from>;
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const Pattern<T> pattern(elements, len);
    const ThirdProbe<T> third(pattern);
    const T* const last = W::blockBack(W::end(src, starts), n, 0);
    for (;;) {
        const Mask<T> mask = third.refine(block, pattern.mask(block));
        const int i = nearestStart<from>(pattern, block, mask);
        if (i >= 0) return static_cast<int>(block - src) + i;
        if (block == last) return kNotFound;
        block = W::distance(block, last) > n ? W::on(block, n) : last;
    }
}

/// The nearest start in a few blocks that overlap or touch, given in the order of the search. One
/// candidate is compared at once.
template <From from, typename T, int count>
ZEL_INLINE int findStringInBlocks(const Pattern<T>& pattern, const T* src, ptrdiff_t starts,
                                  const T* const (&blocks)[count]) {
    Mask<T> masks[count];
    for (int k = 0; k < count; ++k) masks[k] = pattern.mask(blocks[k]);
    const T* block = blocks[count - 1];
    Mask<T> mask = masks[count - 1];
    for (int k = count - 2; k >= 0; --k) {
        if (!masks[k].any()) continue;
        block = blocks[k];
        mask = masks[k];
    }
    if (!mask.any()) return kNotFound;
    const T* const start = block + mask.first();
    if (!mask.withoutFirst().any() && pattern.standsAt(start)) return static_cast<int>(start - src);
    return findStringByBlocks<from>(src, starts, pattern.elements, static_cast<int>(pattern.len),
                                    block);
}

/// More starts than one block has, but at most four, as two or four blocks that overlap.
template <From from, typename T>
ZEL_INLINE int findStringInFew(const T* src, ptrdiff_t starts, const Pattern<T>& pattern) {
    using W = Way<from>;
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const T* const begin = W::begin(src, starts);
    const T* const end = W::end(src, starts);
    const T* const first = W::block(begin, n, 0);
    const T* const last = W::blockBack(end, n, 0);
    if (starts <= 2 * n) return findStringInBlocks<from>(pattern, src, starts, {first, last});
    const T* const second = W::block(begin, n, 1);
    const T* const third = W::blockBack(end, n, 1);
    return findStringInBlocks<from>(pattern, src, starts, {first, second, third, last});
}

template <From from, typename T>
[[gnu::noinline]] int findStringMedium(const T* src, ptrdiff_t starts, const T* elements, int len) {
    return findStringInFew<from>(src, starts, Pattern<T>(elements, len));
}

/// For more starts than four blocks have. The first four and the last four blocks are looked at
/// with both probes, the latter repeating starts that were refused before.
template <From from, typename T>
[[gnu::noinline]] int findStringLong(const T* src, ptrdiff_t starts, const T* elements, int len) {
    using W = Way<from>;
    constexpr ptrdiff_t n = Vec<T>::kLanes;
    const Pattern<T> pattern(elements, len);
    const T* const begin = W::begin(src, starts);
    const T* const end = W::end(src, starts);
    const auto inFew = [&](const T* few) {
        const int i = findStringInFew<from>(few, 4 * n, pattern);
        return i >= 0 ? static_cast<int>(few - src) + i : kNotFound;
    };

    if (const int i = inFew(W::block(begin, 4 * n, 0)); i >= 0) return i;

    const SingleProbe<T> single(pattern);
    const ThirdProbe<T> third(pattern);
    const auto inBlock = [&](const T* block, Hits<T> hits) __attribute__((always_inline)) {
        const int i = nearestStart<from>(pattern, block, third.refine(block, hits.mask()));
        return i >= 0 ? static_cast<int>(block - src) + i : kNotFound;
    };
    // Back to where the single probe reads whole cache lines.
    const T* p = W::on(begin, 4 * n);
    p = W::on(p, W::toBoundary(p + single.at) - n);
    for (int patience = kSingleProbePatience; W::distance(p, end) > 4 * n && patience > 0;
         p = W::on(p, 4 * n)) {
        const Hits<T> a = single.hits(W::block(p, n, 0)) | single.hits(W::block(p, n, 1));
        const Hits<T> b = single.hits(W::block(p, n, 2)) | single.hits(W::block(p, n, 3));
        if (!(a | b).any()) [[likely]]
            continue;
        --patience;
        for (int k = 0; k < 4; ++k) {
            const T* const block = W::block(p, n, k);
            if (const int i = inBlock(block, pattern.hits(block)); i >= 0) return i;
        }
    }
    for (; W::distance(p, end) > 4 * n; p = W::on(p, 2 * n)) {
        const T* const first = W::block(p, n, 0);
        const T* const second = W::block(p, n, 1);
        const Hits<T> a = pattern.hits(first);
        const Hits<T> b = pattern.hits(second);
        if (!(a | b).any()) [[likely]]
            continue;
        if (const int i = inBlock(first, a); i >= 0) return i;
        if (const int i = inBlock(second, b); i >= 0) return i;
    }
    return inFew(W::blockBack(end, 4 * n, 0));
}

/// The position of the pattern that a search meets first, or kNotFound. An empty pattern is never
/// found.
template <From from = From::Start, typename T>
ZEL_INLINE int findString(const T* src, int len, const T* elements, int lenPattern) {
    if (lenPattern < 2)
        return lenPattern == 0 ? kNotFound : findElement<from>(src, len, elements[0]);
    if (lenPattern > len) return kNotFound;
    const int starts = len - lenPattern + 1;
    if (starts > 4 * Vec<T>::kLanes) return findStringLong<from>(src, starts, elements, lenPattern);
    if (starts > Vec<T>::kLanes) return findStringMedium<from>(src, starts, elements, lenPattern);
    const Pattern<T> pattern(elements, lenPattern);
    return nearestStart<from>(pattern, src, pattern.maskFirst(src, starts));
}

}  // namespace zel::ZEL_ISA
