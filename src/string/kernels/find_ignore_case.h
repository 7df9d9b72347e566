// Search for a string of bytes in which the letters A-Z and a-z are alike. The filter of
// find_string.h with probes that fold: a letter is looked for in its small form among the text's
// bytes with bit 5 set, which no other byte than its two forms can produce.
#pragma once

#include "string/kernels/convert_case.h"
#include "string/kernels/find_element.h"
#include "string/kernels/probes.h"

namespace zel::ZEL_ISA {

/// One byte to look for, in either case.
struct FoldedByte {
    static constexpr int kLanes = Vec<Zel8u>::kLanes;
    Vec<Zel8u> caseBit;
    Vec<Zel8u> value;

    ZEL_INLINE explicit FoldedByte(Zel8u c) {
        const Zel8u bit = isLatinLetter(c) ? 0x20 : 0;
        caseBit = Vec<Zel8u>::splat(bit);
        value = Vec<Zel8u>::splat(c | bit);
    }
    ZEL_INLINE Hits<Zel8u> hits(Vec<Zel8u> v) const { return equalWithBits(v, caseBit, value); }
    ZEL_INLINE Hits<Zel8u> hits(const Zel8u* p) const { return hits(Vec<Zel8u>::load(p)); }
    ZEL_INLINE Mask<Zel8u> maskOf(Vec<Zel8u> v) const { return hits(v).mask(); }
    ZEL_INLINE Mask<Zel8u> maskFirst(const Zel8u* p, int n) const {
        return hits(Vec<Zel8u>::loadFirst(p, n)).mask();
    }
};

ZEL_INLINE bool isSameFolded(const Zel8u* a, const Zel8u* b, ptrdiff_t len) {
    using V = Vec<Zel8u>;
    const ToLowerLatin toLower;
    constexpr ptrdiff_t n = V::kLanes;
    for (; len > n; a += n, b += n, len -= n) {
        const uint64_t same = equalBits(toLower(V::load(a)), toLower(V::load(b)));
        if (same != Mask<Zel8u>::all().bits) return false;
    }
    const int rest = static_cast<int>(len);
    const uint64_t same = equalBits(toLower(V::loadFirst(a, rest)), toLower(V::loadFirst(b, rest)));
    return (~Mask<Zel8u>{same} & Mask<Zel8u>::firstN(rest)).bits == 0;
}

/// The nearest verified start among those of a block that a mask names, or kNotFound.
template <From from>
ZEL_INLINE int nearestFolded(const Zel8u* block, Mask<Zel8u> mask, const Zel8u* needle, int len) {
    for (; mask.any(); mask = Way<from>::withoutNearest(mask)) {
        const int i = Way<from>::nearest(mask);
        if (isSameFolded(block + i, needle, len)) return i;
    }
    return kNotFound;
}

ZEL_INLINE Probes<FoldedByte> foldedProbes(const Zel8u* needle, int len) {
    return {needle, RarePlaces(needle, len), [](Zel8u c) { return FoldedByte(c); }};
}

template <From from>
[[gnu::noinline]] int findStringIgnoreCaseLong(const Zel8u* src, ptrdiff_t starts,
                                               const Zel8u* needle, int len) {
    using W = Way<from>;
    constexpr ptrdiff_t n = Vec<Zel8u>::kLanes;
    const Probes<FoldedByte> pattern = foldedProbes(needle, len);
    const auto nearestIn = [&](const Zel8u* block, Hits<Zel8u> found) {
        const int i = nearestFolded<from>(block, pattern.refine(block, found), needle, len);
        return i == kNotFound ? kNotFound : static_cast<int>(block - src) + i;
    };
    const Zel8u* const end = W::end(src, starts);
    const Zel8u* p = W::begin(src, starts);
    for (; W::distance(p, end) >= 2 * n; p = W::on(p, 2 * n)) {
        const Zel8u* const first = W::block(p, n, 0);
        const Zel8u* const second = W::block(p, n, 1);
        const Hits<Zel8u> a = pattern.hits(first);
        const Hits<Zel8u> b = pattern.hits(second);
        if (!(a | b).any()) [[likely]]
            continue;
        if (const int i = nearestIn(first, a); i >= 0) return i;
        if (const int i = nearestIn(second, b); i >= 0) return i;
    }
    // The last block or two repeat starts that were refused before.
    const Zel8u* const last = W::blockBack(end, n, 0);
    const Zel8u* const block = W::distance(p, end) > n ? W::block(p, n, 0) : last;
    if (const int i = nearestIn(block, pattern.hits(block)); i >= 0) return i;
    return nearestIn(last, pattern.hits(last));
}

/// The position of the needle, which has at least one byte, that the search meets first, or
/// kNotFound.
template <From from = From::Start>
ZEL_INLINE int findStringIgnoreCase(const Zel8u* src, int len, const Zel8u* needle, int lenNeedle) {
    if (lenNeedle > len) return kNotFound;
    if (lenNeedle == 1) return findHit<from>(src, len, FoldedByte(needle[0]));
    const int starts = len - lenNeedle + 1;
    if (starts > Vec<Zel8u>::kLanes)
        return findStringIgnoreCaseLong<from>(src, starts, needle, lenNeedle);
    const Probes<FoldedByte> pattern = foldedProbes(needle, lenNeedle);
    const Mask<Zel8u> found = pattern.maskFirst(src, starts) & Mask<Zel8u>::firstN(starts);
    return nearestFolded<from>(src, found, needle, lenNeedle);
}

}  // namespace zel::ZEL_ISA
