// The jobs of the string rows, and the record that carries one job's input to every contestant.
// A tag stands for "do this with the job's fields"; peers.h says who can do what.
#pragma once

#include <zelchmx.h>

#include "harness.h"

namespace bench {

// The fields a tag does not speak of are unused. Source texts are followed by one zero element, for
// contestants that take zero-terminated text; source, argument and destination never overlap.
template <class T>
struct Job {
    const T* src = nullptr;
    int len = 0;
    const T* arg = nullptr;  // needle, set, second text, inserted text
    int argLen = 0;
    T* dst = nullptr;
    int dstLen = 0;  // room in dst
    int at = 0;      // start index of an insertion or removal
    int count = 0;   // elements to remove
    T value = 0;     // element to find, trim, replace, split at
    T newValue = 0;
};

// A conversion between two element types.
template <class From, class To>
struct ConvertJob {
    const From* src = nullptr;
    int len = 0;
    To* dst = nullptr;
    int dstLen = 0;     // ample room
    int resultLen = 0;  // what the result takes
};

// A list of pieces and the text they make when joined with `value` between them.
template <class T>
struct ListJob {
    const T* const* pieces = nullptr;
    const int* lengths = nullptr;
    int count = 0;
    T value = 0;
    T* dst = nullptr;
};

// A text to split at `value`. On entry slotLengths holds each slot's room, afterwards its token's
// length; a repeated call finds the lengths of the call before, which are room enough.
template <class T>
struct SplitJob {
    const T* src = nullptr;
    int len = 0;
    T value = 0;
    T* const* slots = nullptr;
    int* slotLengths = nullptr;
    int slotCount = 0;
};

// Searches answer an index or -1.
struct FindC {};
struct FindRevC {};
struct FindCAny {};
struct FindRevCAny {};
struct Find {};
struct FindRev {};

// Comparisons answer a number with the right sign, Equal answers 1 or 0.
struct Compare {
    static constexpr bool signOnly = true;
};
struct Equal {};
struct CompareIgnoreCaseLatin {
    static constexpr bool signOnly = true;
};
struct CompareIgnoreCase {
    static constexpr bool signOnly = true;
};

// Everything below writes to dst. What has a length of its own answers it, the others answer 0.
struct UppercaseLatin {};
struct LowercaseLatin {};
struct Uppercase {};
struct Lowercase {};
struct ReplaceC {};
struct Insert {};
struct Remove {};
struct Concat {};
struct ConcatList {};
struct ConcatCList {};
struct SplitC {};
struct TrimC {};
struct TrimCAny {};
struct Copy {};
struct Move {};
struct Zero {};
struct ConvertUtf {};

// Hashes answer the hash.
struct Hash {};
struct HashSJ2 {};
struct HashMSCS {};

}  // namespace bench
