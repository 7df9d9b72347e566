// The three hash formulas. Their values are part of the interface: callers store them, so no
// initial value, step or stopping rule may ever change. All arithmetic wraps modulo 2^32.
//
// Shift: the exclusive-or of the last 32 elements, each shifted by its place from the end.
//
// SJ2: a polynomial in 31, summed with a whole vector of elements at a time. The elements that do
// not fill a vector come first, with zeros in front of them, which add nothing. Four vectors a
// round, so that their multiplications overlap. A text of a few elements is multiplied with their
// weights at once.
//
// MSCS: the exclusive-or changes the low 8 bits of h alone. So these can be followed by themselves,
// as bytes, and once they are known, exclusive-or is addition of a known difference and the rest a
// polynomial in 33. See LowBytes for the former.
#pragma once

#include "string/kernels/find_element.h"
#include "string/kernels/prefix_xor.h"
#include "string/kernels/words.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

/// h = (h << 1) ^ c from 0.
template <typename T>
Zel32u hashShift(const T* src, int len) {
    constexpr int kCount = 32;
    const int n = len < kCount ? len : kCount;
    const T* const p = src + (len - n);
    alignas(64) static constexpr Zel32u kLane[16] = {0, 1, 2,  3,  4,  5,  6,  7,
                                                     8, 9, 10, 11, 12, 13, 14, 15};
    Words h = Words::zero();
    for (int i = 0; i < kCount; i += Words::kLanes) {
        const Words places = Words::splat(static_cast<Zel32u>(n - 1 - i)) - Words::load(kLane);
        h = h ^ widenFirst(p + i, n - i).shiftLeft(places);
    }
    return h.exclusiveOr();
}

/// What the elements of a text weigh that has at most a word for each: the last one stands in front
/// of the middle. Those behind it are multiplied with zeros.
template <Zel32u base>
struct ElementWeights {
    Zel32u of[2 * Words::kLanes] = {};
    constexpr ElementWeights() {
        for (int i = 0; i < Words::kLanes; ++i) of[i] = power(base, Words::kLanes - 1 - i);
    }
};
template <Zel32u base>
inline constexpr ElementWeights<base> kElementWeights;

/// hashSJ2 of at most Words::kLanes elements.
template <typename T>
ZEL_INLINE Zel32u hashSJ2Short(const T* src, int len) {
    const Words weights = Words::load(kElementWeights<31>.of + Words::kLanes - len);
    return (widenFirst(src, len) * weights).sum();
}

/// h = h * 31 + c from 0.
template <typename T>
ZEL_INLINE Zel32u hashSJ2(const T* src, int len) {
    constexpr Zel32u kBase = 31;
    constexpr int n = Vec<T>::kLanes;
    const auto next = [](const T* p) { return polynomials<kBase>(Vec<T>::load(p)); };

    const int head = len > n ? (len - 1) % n + 1 : len;
    Words h = polynomials<kBase>(loadLast(src, head));
    const T* p = src + head;
    const T* const end = src + len;
    if (end - p >= 4 * n) {
        Words a = Words::zero(), b = Words::zero(), c = Words::zero();
        do {
            a = advance<kBase, 4 * n>(a) + next(p);
            b = advance<kBase, 4 * n>(b) + next(p + n);
            c = advance<kBase, 4 * n>(c) + next(p + 2 * n);
            h = advance<kBase, 4 * n>(h) + next(p + 3 * n);
            p += 4 * n;
        } while (end - p >= 4 * n);
        h = h + advance<kBase, 1 * n>(c) + advance<kBase, 2 * n>(b) + advance<kBase, 3 * n>(a);
    }
    for (; p != end; p += n) h = advance<kBase, 1 * n>(h) + next(p);
    return (h * Words::load(kWordWeights<T, kBase>.of)).sum();
}

/// The low bytes of h after each step of HashMSCS, for several vectors of elements at a time.
///
/// A step is h' = (h * 33) ^ c, which is h ^ c but for the bits that h * 33 = h + (h << 5) changes,
/// and whether it changes a bit depends on lower bits only. So the low five bits before a step are
/// an exclusive-or over all elements in front; when these are known, so is what the multiplication
/// does to the next bit of every step, and a further running exclusive-or makes that bit known:
/// four rounds. Each round carries its own bits from vector to vector. A round is a long chain of
/// instructions, so the vectors go through it side by side: the processor would not look far enough
/// ahead to find the next one by itself.
class LowBytes {
public:
    explicit LowBytes(Zel32u h) {
        for (Vec<Zel8u>& carry : carry_) carry = Vec<Zel8u>::splat(static_cast<Zel8u>(h));
    }

    /// Writes the bytes after each step; exclusive-or with the elements gives those of h * 33.
    template <int count>
    ZEL_INLINE void step(const Vec<Zel8u> (&elements)[count], Vec<Zel8u> (&after)[count]) {
        Vec<Zel8u> changes[count], before[count];
        for (int i = 0; i < count; ++i) changes[i] = elements[i];
        for (Vec<Zel8u>& carry : carry_) {
            for (int i = 0; i < count; ++i) before[i] = exclusiveOrBefore(changes[i]);
            for (int i = 0; i < count; ++i) {
                before[i] = before[i] ^ carry;
                after[i] = before[i] ^ changes[i];
                carry = splatLast(after[i]);
            }
            for (int i = 0; i < count; ++i) {
                changes[i] = elements[i] ^ before[i] ^ times33(before[i]);
            }
        }
    }

private:
    Vec<Zel8u> carry_[4];
};

/// HashMSCS of whole vectors, on from some h.
class MscsOfVectors {
public:
    static constexpr int kLanes = Vec<Zel8u>::kLanes;

    explicit MscsOfVectors(Zel32u h) : lowBytes_(h), h_(Words::last(h)) {}

    /// Takes `count` vectors at a time, as long as they are whole and without a zero; p goes behind
    /// them.
    template <int count>
    ZEL_INLINE void take(const Zel8u*& p, const Zel8u* end) {
        for (; end - p >= count * kLanes; p += count * kLanes) {
            if (endsInPage(p, count * kLanes)) break;
            Vec<Zel8u> elements[count], after[count];
            Hits<Zel8u> zeros;
            for (int i = 0; i < count; ++i) {
                elements[i] = Vec<Zel8u>::load(p + i * kLanes);
                const Hits<Zel8u> here = equal(elements[i], Vec<Zel8u>::zero());
                zeros = i == 0 ? here : zeros | here;
            }
            if (zeros.any()) break;
            lowBytes_.step(elements, after);
            for (int i = 0; i < count; ++i) {
                const Words differences =
                    polynomials<kBase>(after[i]) - polynomials<kBase>(after[i] ^ elements[i]);
                h_ = advance<kBase, kLanes>(h_) + differences;
            }
        }
    }

    ZEL_INLINE Zel32u value() const {
        return (h_ * Words::load(kWordWeights<Zel8u, kBase>.of)).sum();
    }

private:
    static constexpr Zel32u kBase = 33;

    /// Whether there is a zero in front of a page that the next n bytes reach into. A text may be
    /// said to be longer than it is and end with a zero; what is behind it may not be there.
    ZEL_INLINE static bool endsInPage(const Zel8u* p, int n) {
        constexpr int kPage = 4096;
        const int rest = kPage - static_cast<int>(reinterpret_cast<uintptr_t>(p) % kPage);
        return rest < n && findElement(p, rest, Zel8u{0}) != kNotFound;
    }

    LowBytes lowBytes_;
    Words h_;
};

/// The step for the elements from p to the end or the first zero. Short texts are bound by the
/// number of instructions, hence four elements for one test of the end.
template <typename T>
ZEL_INLINE Zel32u mscsOneByOne(Zel32u h, const T* p, const T* end) {
    for (; end - p >= 4; p += 4) {
        for (int i = 0; i < 4; ++i) {
            if (p[i] == 0) return h;
            h = (h * 33) ^ p[i];
        }
    }
    for (; p != end && *p != 0; ++p) h = (h * 33) ^ *p;
    return h;
}

// Apart from hashMSCS, which is quicker for short texts without the registers that this needs.
inline __attribute__((noinline)) Zel32u mscsOfLongText(Zel32u h, const Zel8u* p, const Zel8u* end) {
    MscsOfVectors hash(h);
    hash.take<4>(p, end);
    if constexpr (MscsOfVectors::kLanes == 64) hash.take<1>(p, end);
    return mscsOneByOne(hash.value(), p, end);
}

/// h = (h * 33) ^ c from 5381, up to the first zero element.
template <typename T>
ZEL_INLINE Zel32u hashMSCS(const T* src, int len) {
    constexpr Zel32u kStart = 5381;
    if constexpr (sizeof(T) == 1) {
        // Narrower vectors do little better than the loop, one by one they do worse.
        constexpr int kWorthVectors = Vec<T>::kLanes == 64 ? 64 : Vec<T>::kLanes == 32 ? 256 : 1024;
        if (len >= kWorthVectors) return mscsOfLongText(kStart, src, src + len);
    }
    return mscsOneByOne(kStart, src, src + len);
}

}  // namespace zel::ZEL_ISA
