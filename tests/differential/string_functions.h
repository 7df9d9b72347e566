// The string functions of one side, library or model, as a table for each element width. The block
// primitives of the 16-bit table count signed elements.
#pragma once

#include "zelchmx.h"

namespace differential {

template <typename T, typename Raw>
struct StringFunctions {
    ZelStatus (*find)(const T*, int, const T*, int, int*);
    ZelStatus (*findRev)(const T*, int, const T*, int, int*);
    ZelStatus (*findC)(const T*, int, T, int*);
    ZelStatus (*findRevC)(const T*, int, T, int*);
    ZelStatus (*findCAny)(const T*, int, const T*, int, int*);
    ZelStatus (*findRevCAny)(const T*, int, const T*, int, int*);
    ZelStatus (*findZ)(const T*, const T*, int*);
    ZelStatus (*findCZ)(const T*, T, int*);
    ZelStatus (*compare)(const T*, const T*, int, int*);
    ZelStatus (*compareLatin)(const T*, const T*, int, int*);
    ZelStatus (*compareIgnoreCase)(const T*, const T*, int, int*);
    ZelStatus (*equal)(const T*, const T*, int, int*);
    ZelStatus (*upper)(const T*, T*, int);
    ZelStatus (*lower)(const T*, T*, int);
    ZelStatus (*upperLatin)(const T*, T*, int);
    ZelStatus (*lowerLatin)(const T*, T*, int);
    ZelStatus (*upperInPlace)(T*, int);
    ZelStatus (*lowerInPlace)(T*, int);
    ZelStatus (*upperLatinInPlace)(T*, int);
    ZelStatus (*lowerLatinInPlace)(T*, int);
    ZelStatus (*insert)(const T*, int, const T*, int, T*, int);
    ZelStatus (*insertInPlace)(const T*, int, T*, int*, int);
    ZelStatus (*remove)(const T*, int, T*, int, int);
    ZelStatus (*removeInPlace)(T*, int*, int, int);
    ZelStatus (*replaceC)(const T*, T*, int, T, T);
    ZelStatus (*concat)(const T*, int, const T*, int, T*);
    ZelStatus (*concatList)(const T* const*, const int*, int, T*);
    ZelStatus (*concatCList)(const T* const*, const int*, int, T, T*);
    ZelStatus (*splitC)(const T*, int, T, T* const*, int*, int*);
    ZelStatus (*trimC)(const T*, int, T, T*, int*);
    ZelStatus (*trimCInPlace)(T*, int*, T);
    ZelStatus (*trimCAny)(const T*, int, const T*, int, T*, int*);
    ZelStatus (*trimStartCAny)(const T*, int, const T*, int, T*, int*);
    ZelStatus (*trimEndCAny)(const T*, int, const T*, int, T*, int*);
    ZelStatus (*hash)(const T*, int, Zel32u*);
    ZelStatus (*hashSJ2)(const T*, int, Zel32u*);
    ZelStatus (*hashMSCS)(const T*, int, Zel32u*);
    ZelStatus (*copy)(const Raw*, Raw*, int);
    ZelStatus (*move)(const Raw*, Raw*, int);
};

using StringFunctions8 = StringFunctions<Zel8u, Zel8u>;
using StringFunctions16 = StringFunctions<Zel16u, Zel16s>;

/// What has one width only.
struct OtherFunctions {
    ZelStatus (*zero)(Zel8u*, int);
    ZelStatus (*toUtf16)(const Zel8u*, int*, Zel16u*, int*, int);
    ZelStatus (*toUtf8)(const Zel16u*, int*, Zel8u*, int*, int);
};

struct Side {
    StringFunctions8 narrow;
    StringFunctions16 wide;
    OtherFunctions other;
};

/// The library as exported (0), or its instance for SSE2, AVX2 or AVX-512 (1 to 3); null when the
/// processor cannot run it.
const Side* librarySide(int instance);
extern const Side modelSide;

}  // namespace differential
