// Where a string may begin: positions at which two of its bytes are right, the rarest by the look
// of it; a third one refines what these let through. A probe is a test of scan.h that accepts one
// byte of the string, in one form or in both cases.
#pragma once

#include "string/kernels/byte_runs.h"
#include "string/kernels/commonness.h"

namespace zel::ZEL_ISA {

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
};

}  // namespace zel::ZEL_ISA
