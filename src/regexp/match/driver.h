// The search driver: from a subject and a pattern object to result records. Exported search,
// replace and pattern sets all come through here.
#pragma once

#include "regexp/program.h"

namespace zel {

/// The scratch memory of one search: a pattern object's own, or a thread's when several threads may
/// search the same object. Both have kMaxGroups entries; neither needs to be initialised.
struct WorkAreas {
    GroupFrame* groups;
    CaptureRecord* captures;
};

/// A search that is allowed, of a text or of what a match can need of it.
struct SearchRequest {
    WorkAreas work;
    const Zel8u* text;
    int length;
    const ZelRegExpState& state;
    ZelRegExpFind* results;
    int* count;  // of records: room for them, then how many have been written
    bool wholeMatchToo;
};

/// Copies `count` capture records.
inline void copyRecords(const CaptureRecord* captures, int count, ZelRegExpFind* results) {
    for (int i = 0; i < count; ++i) {
        const CaptureRecord& record = captures[i];
        results[i] = {const_cast<Zel8u*>(record.text), record.length};
    }
}

/// Searches with the given work areas. Checks its arguments; see zelsRegExpFind_8u for the
/// contract. `wholeMatchToo` makes find-all mode report the whole match in front of its groups.
ZelStatus searchWith(const WorkAreas& work, const Zel8u* pSrc, int srcLen,
                     const ZelRegExpState* pRegExpState, ZelRegExpFind* pResult, int* pNumFind,
                     int wholeMatchToo);

/// Searches with the pattern object's own work areas.
ZelStatus ownsRegExpFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                            ZelRegExpFind* pResult, int* pNumFind, int wholeMatchToo);

}  // namespace zel
