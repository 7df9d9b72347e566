// Lane masks, on top of a model's bit operations lowBits, countTrailingZeros and
// countLeadingZeros, of which the latter two answer 64 for no bits, and minusOne.
#pragma once

namespace zel::ZEL_ISA {

/// kNotFound for functions that make it without a branch.
ZEL_INLINE int notFound() {
    return static_cast<int>(minusOne());
}

/// One bit per lane, kStep (1 or 2) bits apart; the bits between are zero.
template <typename T>
struct Mask {
    static constexpr int kStep = Vec<T>::kMaskStep;
    uint64_t bits;

    /// The lanes below n, where n may be kLanes.
    ZEL_INLINE static Mask firstN(int n) { return {lowBits(n * kStep) & kLaneBits}; }
    ZEL_INLINE static Mask all() { return firstN(Vec<T>::kLanes); }

    ZEL_INLINE bool any() const { return bits != 0; }
    ZEL_INLINE bool isAll() const { return bits == all().bits; }
    /// Index of the lowest and of the highest lane of a mask that has one.
    ZEL_INLINE int first() const { return __builtin_ctzll(bits) / kStep; }
    ZEL_INLINE int last() const { return (63 ^ __builtin_clzll(bits)) / kStep; }
    /// Without a branch: the index, or kNotFound when there is none.
    ZEL_INLINE int firstBelow(int n) const {
        const int index = countTrailingZeros(bits) / kStep;
        return index < n ? index : notFound();
    }
    ZEL_INLINE int lastOrNotFound() const {
        return (notFound() + 64 - countLeadingZeros(bits)) >> (kStep - 1);
    }
    ZEL_INLINE int count() const { return __builtin_popcountll(bits); }
    ZEL_INLINE Mask withoutFirst() const { return {bits & (bits - 1)}; }
    ZEL_INLINE Mask without(int lane) const { return {bits & ~(uint64_t{1} << lane * kStep)}; }

    friend ZEL_INLINE Mask operator&(Mask a, Mask b) { return {a.bits & b.bits}; }
    friend ZEL_INLINE Mask operator|(Mask a, Mask b) { return {a.bits | b.bits}; }
    friend ZEL_INLINE Mask operator~(Mask a) { return {a.bits ^ all().bits}; }

private:
    static constexpr uint64_t kLaneBits = kStep == 1 ? ~uint64_t{0} : 0x5555555555555555;
};

/// Hits of a test that comes as a mask in the first place.
template <typename T>
struct MaskHits {
    Mask<T> lanes;

    ZEL_INLINE Mask<T> mask() const { return lanes; }
    ZEL_INLINE bool any() const { return lanes.any(); }
    friend ZEL_INLINE MaskHits operator|(MaskHits a, MaskHits b) { return {a.lanes | b.lanes}; }
};

/// Elements from p up to the next vector boundary: at least one and at most a vector, for a p that
/// is aligned to its own size.
template <typename T>
ZEL_INLINE ptrdiff_t toBoundary(const T* p) {
    constexpr size_t kBytes = Vec<T>::kBytes;
    return static_cast<ptrdiff_t>((kBytes - reinterpret_cast<uintptr_t>(p) % kBytes) / sizeof(T));
}

/// Elements from the vector boundary before p up to p, as toBoundary.
template <typename T>
ZEL_INLINE ptrdiff_t fromBoundary(const T* p) {
    constexpr size_t kBytes = Vec<T>::kBytes;
    return static_cast<ptrdiff_t>(((reinterpret_cast<uintptr_t>(p) - 1) % kBytes + 1) / sizeof(T));
}

}  // namespace zel::ZEL_ISA
