// Replacement templates and what they do to a source, given the records of a search. The exported
// functions in replace.cpp search first and then come here; the tests come here with records made
// by hand, because a search reports some of them only for odd patterns.
#pragma once

#include <stddef.h>

#include "zelchmx.h"

namespace zel {

enum SegmentKind : Zel32u {
    kSegmentText = 0x10000001,   // `value` bytes at `text`
    kSegmentGroup = 0x10000002,  // what group `value` captured; 0 is the whole match
};

/// One piece of a template. Text is not copied: it stays in the caller's template string.
struct ReplaceSegment {
    Zel32u kind;
    int value;
    const Zel8u* text;
};
static_assert(sizeof(ReplaceSegment) == 16);

}  // namespace zel

/// A parsed template. The segments follow in the same block; a null template has none and a null
/// table.
struct ZelRegExpReplaceState {
    int segmentCount;
    zel::ReplaceSegment* segments;
};
static_assert(sizeof(ZelRegExpReplaceState) == 16);

namespace zel {

/// What is replaced, by what, and where the result goes.
struct Replacement {
    const Zel8u* source;
    ptrdiff_t sourceLength;
    const ZelRegExpReplaceState* replacement;
    Zel8u* destination;
    ptrdiff_t capacity;
};

/// The two lengths of a call as its caller sees them.
struct ReplaceLengths {
    ptrdiff_t sourceOffset;
    ptrdiff_t written;
};

/// Replaces the one match whose records (the whole match, then its groups) are given.
ReplaceLengths replaceFirst(const Replacement& job, const ZelRegExpFind* records, int recordCount);

/// Replaces every match; each has `groupCount` consecutive records.
ReplaceLengths replaceAll(const Replacement& job, const ZelRegExpFind* records, int recordCount,
                          int groupCount);

}  // namespace zel
