// Where a string may begin: positions at which two of its bytes are right, the rarest by the look
// of it; a third one refines what these let through. A probe is a test of scan.h that accepts one
// byte of the string, in one form or in both cases.
#pragma once

#include "string/kernels/byte_runs.h"
#include "string/kernels/commonness.h"

namespace zel::ZEL_ISA {

/// Blocks of 64 positions that are passed over together while nothing is found.
inline constexpr int kGroupBlocks = 4;

template <typename Probe>
struct Probes {
    ptrdiff_t firstAt;
    ptrdiff_t secondAt;
    ptrdiff_t thirdAt;
    Probe first;
    Probe second;
    Probe third;

    template <typename MakeProbe>
    ZEL_INLINE Probes(const Zel8u* literal, const RarePlaces& rare, const MakeProbe& probeOf)
        : firstAt(rare.first),
          secondAt(rare.second),
          thirdAt(rare.third),
          first(probeOf(literal[firstAt])),
          second(probeOf(literal[secondAt])),
          third(probeOf(literal[thirdAt])) {}

    /// The starts of a vector that the first two let through.
    ZEL_INLINE auto hits(const Zel8u* p) const {
        return first.hits(p + firstAt) & second.hits(p + secondAt);
    }
    template <typename Hits>
    ZEL_INLINE auto refine(const Zel8u* p, Hits found) const {
        return (found & third.hits(p + thirdAt)).mask();
    }
    ZEL_INLINE auto maskFirst(const Zel8u* p, int n) const {
        return first.maskFirst(p + firstAt, n) & second.maskFirst(p + secondAt, n);
    }
    /// Whether the first two let through any start in the kGroupBlocks blocks of 64 at p.
    ZEL_INLINE bool mayHave(const Zel8u* p) const {
        auto found = hits(p);
        for (int at = Probe::kLanes; at < kMaskBits * kGroupBlocks; at += Probe::kLanes)
            found = found | hits(p + at);
        return found.any();
    }
    /// Which of the first 64 of `left` positions the first two let through.
    ZEL_INLINE uint64_t likely(const Zel8u* p, ptrdiff_t left) const {
        return memberBits(first, p + firstAt, left) & memberBits(second, p + secondAt, left);
    }
    /// Which of these the third does.
    ZEL_INLINE uint64_t refine(const Zel8u* p, ptrdiff_t left, uint64_t bits) const {
        return bits & memberBits(third, p + thirdAt, left);
    }
};

}  // namespace zel::ZEL_ISA
