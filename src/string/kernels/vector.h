// The vector concept that the kernels are written over, and the choice of its model.
//
// Vec<T> holds kLanes elements of T (Zel8u or Zel16u). loadFirst and storeFirst touch the first n
// elements only: on AVX-512 that is one masked instruction, elsewhere a few overlapping ones.
// Comparisons come in two forms:
//   Hits<T>  the cheapest form to combine: a search ORs the hits of several vectors and asks once
//            whether there is any (AVX-512: zero lanes, combined by minimum; else: all-ones lanes).
//   Mask<T>  one bit per lane in a general register, to locate hits.
// Algorithms use nothing else of a model unless they say for which one they are written.
#pragma once

#include <immintrin.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "string/kernels/isa.h"
#include "zelchmx.h"

// The coverage build has a definition of its own: in copies, a branch would count once for each.
#ifndef ZEL_INLINE
#define ZEL_INLINE inline __attribute__((always_inline))
#endif

namespace zel::ZEL_ISA {

inline constexpr int kNotFound = -1;

template <typename T>
struct Vec;
template <typename T>
struct Hits;
template <typename T>
struct Mask;

/// An unaligned load or store of any trivial type.
template <typename Word>
ZEL_INLINE Word loadWord(const void* p) {
    Word word;
    memcpy(&word, p, sizeof word);
    return word;
}
template <typename Word>
ZEL_INLINE void storeWord(void* p, Word word) {
    memcpy(p, &word, sizeof word);
}

/// A mask that is shifted next. With 512 bits, compilers would do that where it takes four times as
/// long.
ZEL_INLINE uint64_t inGeneralRegister(uint64_t mask) {
    asm("" : "+r"(mask));
    return mask;
}

}  // namespace zel::ZEL_ISA

#if defined(ZEL_ISA_AVX512)
#include "string/kernels/vector_avx512.h"
#elif defined(ZEL_ISA_AVX2)
#include "string/kernels/vector_avx2.h"
#else
#include "string/kernels/vector_sse2.h"
#endif
