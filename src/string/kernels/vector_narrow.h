// What the models of SSE2 and AVX2 have in common: processors without lane masks, whose comparisons
// give vectors of all-ones lanes, and compare signed numbers only. Written over the few operations
// that a model gives in front of it: ^ & | + of two vectors, andNot, equalLanes, greaterLanes,
// topBits and isZero.
#pragma once

namespace zel::ZEL_ISA {

/// A lane is all ones where it hits.
template <typename T>
struct Hits {
    Vec<T> hit;

    ZEL_INLINE Mask<T> mask() const {
        const uint32_t bits = topBits(hit);
        return {sizeof(T) == 1 ? bits : bits & Mask<T>::all().bits};
    }
    ZEL_INLINE bool any() const { return topBits(hit) != 0; }
    friend ZEL_INLINE Hits operator|(Hits a, Hits b) { return {a.hit | b.hit}; }
    friend ZEL_INLINE Hits operator&(Hits a, Hits b) { return {a.hit & b.hit}; }
};

template <typename T>
ZEL_INLINE Hits<T> equal(Vec<T> a, Vec<T> b) {
    return {equalLanes(a, b)};
}
template <typename T>
ZEL_INLINE Hits<T> equalWithBits(Vec<T> a, Vec<T> bits, Vec<T> b) {
    return equal(a | bits, b);
}
template <typename T>
ZEL_INLINE Hits<T> andEqual(Hits<T> hits, Vec<T> a, Vec<T> b) {
    return hits & equal(a, b);
}
/// Where a equals b and c equals d.
template <typename T>
ZEL_INLINE Mask<T> bothEqual(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T> d) {
    return andEqual(equal(a, b), c, d).mask();
}
template <typename T>
ZEL_INLINE uint64_t equalBits(Vec<T> a, Vec<T> b) {
    return equal(a, b).mask().bits;
}

/// The first n elements at p, at most kLanes, that equal the value. No others are read.
template <typename T>
ZEL_INLINE Mask<T> equalFirst(const T* p, int n, T value) {
    return Mask<T>{equalBits(Vec<T>::loadFirst(p, n), Vec<T>::splat(value))} & Mask<T>::firstN(n);
}
/// Where the first n elements of two texts differ, at most kLanes. No others are read.
template <typename T>
ZEL_INLINE Mask<T> differFirst(const T* a, const T* b, int n) {
    return ~Mask<T>{equalBits(Vec<T>::loadFirst(a, n), Vec<T>::loadFirst(b, n))};
}

/// A lane is not zero where two vectors differ.
template <typename T>
struct Differences {
    Vec<T> v;

    ZEL_INLINE Mask<T> mask() const { return ~equal(v, Vec<T>::zero()).mask(); }
    ZEL_INLINE bool any() const { return !isZero(v); }
    friend ZEL_INLINE Differences operator|(Differences a, Differences b) { return {a.v | b.v}; }
};

template <typename T>
ZEL_INLINE Differences<T> difference(Vec<T> a, Vec<T> b) {
    return {a ^ b};
}
/// The differences so far and those of a and b.
template <typename T>
ZEL_INLINE Differences<T> andDifference(Differences<T> soFar, Vec<T> a, Vec<T> b) {
    return soFar | difference(a, b);
}

/// All ones in the elements from low to low + count - 1, which are moved to the lowest signed
/// numbers and compared there.
template <typename T>
ZEL_INLINE Vec<T> lanesInRange(Vec<T> v, T low, T count) {
    constexpr int kLowest = sizeof(T) == 1 ? 0x80 : 0x8000;
    const Vec<T> limit = Vec<T>::splat(static_cast<T>(kLowest + count));
    const Vec<T> shift = Vec<T>::splat(static_cast<T>(kLowest - low));
    return greaterLanes(limit, v + shift);
}
/// The elements from low to low + count - 1.
template <typename T>
ZEL_INLINE Mask<T> rangeMask(Vec<T> v, T low, T count) {
    return Hits<T>{lanesInRange(v, low, count)}.mask();
}

/// Where two vectors differ when A-Z and a-z are alike: the case bit of a difference does not count
/// where one of the two, and so the other, is a letter.
template <typename T>
ZEL_INLINE Differences<T> differenceIgnoringLatinCase(Vec<T> a, Vec<T> b) {
    const Vec<T> caseBit = Vec<T>::splat(0x20);
    const Vec<T> isLetter = lanesInRange(a | caseBit, T{'a'}, T{26});
    return {andNot(a ^ b, isLetter & caseBit)};
}

/// The same for the first n elements at a and b.
template <typename T>
ZEL_INLINE Mask<T> differIgnoringLatinCaseFirst(const T* a, const T* b, int n) {
    return differenceIgnoringLatinCase(Vec<T>::loadFirst(a, n), Vec<T>::loadFirst(b, n)).mask();
}

/// Adds delta to the elements from low to low + count - 1.
template <typename T>
ZEL_INLINE Vec<T> addInRange(Vec<T> v, T low, T count, T delta) {
    return v + (lanesInRange(v, low, count) & Vec<T>::splat(delta));
}

/// v with `to` where it equals `from`.
template <typename T>
ZEL_INLINE Vec<T> replaceEqual(Vec<T> v, Vec<T> from, Vec<T> to) {
    const Vec<T> hit = equalLanes(v, from);
    return (hit & to) | andNot(v, hit);
}

/// The bytes from 0x80 to 0xBF.
ZEL_INLINE Mask<Zel8u> continuations(Vec<Zel8u> v) {
    return Hits<Zel8u>{greaterLanes(Vec<Zel8u>::splat(0xC0), v)}.mask();
}

}  // namespace zel::ZEL_ISA
