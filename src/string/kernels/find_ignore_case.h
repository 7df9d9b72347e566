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

/// The first verified start among those of a block that a mask names, or kNotFound.
ZEL_INLINE int firstFolded(const Zel8u* block, Mask<Zel8u> mask, const Zel8u* needle, int len) {
    for (; mask.any(); mask = mask.withoutFirst()) {
        if (isSameFolded(block + mask.first(), needle, len)) return mask.first();
    }
    return kNotFound;
}

ZEL_INLINE Probes<FoldedByte> foldedProbes(const Zel8u* needle, int len) {
    return {needle, RarePlaces(needle, len), [](Zel8u c) { return FoldedByte(c); }};
}

[[gnu::noinline]] inline int findStringIgnoreCaseLong(const Zel8u* src, ptrdiff_t starts,
                                                      const Zel8u* needle, int len) {
    constexpr ptrdiff_t n = Vec<Zel8u>::kLanes;
    const Probes<FoldedByte> pattern = foldedProbes(needle, len);
    const Zel8u* const end = src + starts;
    const Zel8u* p = src;
    const auto firstIn = [&](const Zel8u* block, Hits<Zel8u> found) {
        const int i = firstFolded(block, pattern.refine(block, found), needle, len);
        return i == kNotFound ? kNotFound : static_cast<int>(block - src) + i;
    };
    for (; end - p >= 2 * n; p += 2 * n) {
        const Hits<Zel8u> a = pattern.hits(p);
        const Hits<Zel8u> b = pattern.hits(p + n);
        if (!(a | b).any()) [[likely]]
            continue;
        if (const int i = firstIn(p, a); i >= 0) return i;
        if (const int i = firstIn(p + n, b); i >= 0) return i;
    }
    // The last block or two repeat starts that were refused before.
    const Zel8u* const block = end - p > n ? p : end - n;
    if (const int i = firstIn(block, pattern.hits(block)); i >= 0) return i;
    return firstIn(end - n, pattern.hits(end - n));
}

/// First position of the needle, which has at least one byte, or kNotFound.
ZEL_INLINE int findStringIgnoreCase(const Zel8u* src, int len, const Zel8u* needle, int lenNeedle) {
    if (lenNeedle > len) return kNotFound;
    if (lenNeedle == 1) return firstHit(src, len, FoldedByte(needle[0]));
    const int starts = len - lenNeedle + 1;
    if (starts > Vec<Zel8u>::kLanes)
        return findStringIgnoreCaseLong(src, starts, needle, lenNeedle);
    const Probes<FoldedByte> pattern = foldedProbes(needle, lenNeedle);
    const Mask<Zel8u> found = pattern.maskFirst(src, starts) & Mask<Zel8u>::firstN(starts);
    return firstFolded(src, found, needle, lenNeedle);
}

/// Number of UTF-8 continuation bytes.
ZEL_INLINE int countContinuations(const Zel8u* p, int len) {
    using V = Vec<Zel8u>;
    int count = 0;
    for (; len > V::kLanes; p += V::kLanes, len -= V::kLanes)
        count += continuations(V::load(p)).count();
    return count + (continuations(V::loadFirst(p, len)) & Mask<Zel8u>::firstN(len)).count();
}

}  // namespace zel::ZEL_ISA
