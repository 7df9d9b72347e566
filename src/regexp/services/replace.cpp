// Replace: a template is parsed once into segments; a call searches, then writes the source with
// its matches replaced. Replacing one match and replacing all of them are two routines on purpose:
// they test the room differently and report the consumed source differently, and callers depend on
// each as it is (the table in zelchmx.h). A match is reported by position and length, and for some
// patterns the length leads behind the source or is negative, so every piece that is read is
// clipped to the source first.
#include "regexp/services/replace.h"

#include <limits.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>

#include "core/checks.h"
#include "core/memory.h"
#include "regexp/match/driver.h"
#include "regexp/program.h"

namespace zel {
namespace {

/// Digits of a group number count in this base: "$12" is group 13.
constexpr int64_t kGroupNumberBase = 11;
/// The answer of expand() when a piece does not fit.
constexpr ptrdiff_t kRefused = -1;

constexpr bool isDigit(Zel8u c) {
    return c >= '0' && c <= '9';
}

/// Writes segments behind a state. There is always room: a segment takes at least one template
/// byte.
class SegmentWriter {
public:
    explicit SegmentWriter(ReplaceSegment* first) : first_(first), next_(first) {}

    void text(const Zel8u* from, const Zel8u* to) {
        if (from < to) *next_++ = {kSegmentText, static_cast<int>(to - from), from};
    }
    void group(int number) { *next_++ = {kSegmentGroup, number, nullptr}; }
    int count() const { return static_cast<int>(next_ - first_); }

private:
    ReplaceSegment* first_;
    ReplaceSegment* next_;
};

/// Reads what follows a "$" and moves `at` behind it. False when it names no group; a number too
/// large to be stored names one that no pattern has.
bool parseGroupReference(const Zel8u*& at, int& number) {
    number = 0;
    if (*at == '&') {
        ++at;
        return true;
    }
    for (; isDigit(*at); ++at) {
        const int64_t longer = number * kGroupNumberBase + (*at - '0');
        number = static_cast<int>(std::min<int64_t>(longer, INT_MAX));
    }
    return number != 0;
}

ZelStatus parseTemplate(const Zel8u* text, ZelRegExpReplaceState* state) {
    SegmentWriter segments(state->segments);
    const Zel8u* run = text;  // the literal bytes from here to `at` are not written yet
    const Zel8u* at = text;
    while (*at != 0) {
        if (*at == '$') {
            segments.text(run, at++);
            int number;
            if (!parseGroupReference(at, number)) return zelStatusRegExpBackRefError;
            segments.group(number);
            run = at;
        } else if (*at == '\\') {
            // Dropped, and the byte behind it keeps its meaning: a backslash escapes nothing.
            segments.text(run, at);
            run = ++at;
        } else {
            ++at;
        }
    }
    segments.text(run, at);
    state->segmentCount = segments.count();
    return zelStatusOk;
}

/// Copies a first and a last part of N bytes each, which overlap when n is less than twice that.
template <size_t N>
void copyEnds(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    Zel8u first[N], last[N];
    memcpy(first, src, N);
    memcpy(last, src + n - N, N);
    memcpy(dst, first, N);
    memcpy(dst + n - N, last, N);
}

/// Copies a piece of the source or of the template, which are mostly a few bytes long.
void copyPiece(const Zel8u* src, Zel8u* dst, ptrdiff_t n) {
    if (n > 32) {
        ownsCopy_8u(src, dst, n);
    } else if (n >= 16) {
        copyEnds<16>(src, dst, n);
    } else if (n >= 8) {
        copyEnds<8>(src, dst, n);
    } else if (n >= 4) {
        copyEnds<4>(src, dst, n);
    } else {
        for (ptrdiff_t i = 0; i < n; ++i) dst[i] = src[i];
    }
}

/// The offset at which a match ends, inside the source whatever its record says.
ptrdiff_t matchEnd(const Replacement& job, const ZelRegExpFind& match) {
    const ptrdiff_t end = (match.pMatch - job.source) + match.lenMatch;
    return std::clamp<ptrdiff_t>(end, 0, job.sourceLength);
}

/// Appends what the template makes of one match. A piece must leave at least one byte of `room`
/// free, or the answer is kRefused; the pieces in front of it are written by then.
ptrdiff_t expand(const Replacement& job, const ZelRegExpFind* records, int recordCount, Zel8u* out,
                 ptrdiff_t room) {
    const Zel8u* const sourceEnd = job.source + job.sourceLength;
    const ReplaceSegment* const segments = job.replacement->segments;
    ptrdiff_t expanded = 0;
    for (int i = 0; i < job.replacement->segmentCount; ++i) {
        const Zel8u* piece = segments[i].text;
        ptrdiff_t length = segments[i].value;
        if (segments[i].kind == kSegmentGroup) {
            const int group = segments[i].value;
            if (group >= recordCount || records[group].lenMatch < 1) continue;
            piece = records[group].pMatch;
            length = std::min<ptrdiff_t>(records[group].lenMatch, sourceEnd - piece);
        }
        if (room <= expanded + length) return kRefused;
        copyPiece(piece, out + expanded, length);
        expanded += length;
    }
    return expanded;
}

}  // namespace

ReplaceLengths replaceFirst(const Replacement& job, const ZelRegExpFind* records, int recordCount) {
    const ptrdiff_t prefix = records[0].pMatch - job.source;
    if (prefix > 0) {
        if (prefix >= job.capacity) return {0, 0};
        ownsCopy_8u(job.source, job.destination, prefix);
    }
    const ptrdiff_t end = matchEnd(job, records[0]);
    const ptrdiff_t tail = job.sourceLength - end;
    Zel8u* const out = job.destination + prefix;
    if (job.replacement->segmentCount == 0) {
        // Neither checked against the capacity nor counted.
        ownsCopy_8u(job.source + end, out, tail);
        return {job.sourceLength, prefix};
    }
    // The pieces are held against the whole capacity, not against what the prefix left of it.
    const ptrdiff_t expanded = expand(job, records, recordCount, out, job.capacity);
    if (expanded == kRefused) return {prefix, prefix};
    if (tail >= job.capacity - prefix - expanded) return {end, prefix + expanded};
    ownsCopy_8u(job.source + end, out + expanded, tail);
    return {job.sourceLength, prefix + expanded + tail};
}

ReplaceLengths replaceAll(const Replacement& job, const ZelRegExpFind* records, int recordCount,
                          int groupCount) {
    ptrdiff_t current = 0;  // offset behind the last match replaced
    ptrdiff_t written = 0;
    for (int i = 0; i + groupCount <= recordCount; i += groupCount) {
        const ZelRegExpFind* const match = records + i;
        const ptrdiff_t start = match->pMatch - job.source;
        const ptrdiff_t gap = start - current;
        if (gap > 0) {
            if (gap >= job.capacity - written) return {current, written};
            copyPiece(job.source + current, job.destination + written, gap);
            written += gap;
        }
        const ptrdiff_t expanded =
            expand(job, match, groupCount, job.destination + written, job.capacity - written);
        if (expanded == kRefused) return {start, written};
        written += expanded;
        current = matchEnd(job, *match);
    }
    const ptrdiff_t tail = job.sourceLength - current;
    if (tail >= job.capacity - written) return {current, written};
    ownsCopy_8u(job.source + current, job.destination + written, tail);
    // After a complete replacement the offset holds the length of the tail.
    return {tail, written + tail};
}

}  // namespace zel

using namespace zel;

extern "C" {

ZelStatus zelsRegExpReplaceGetSize(const Zel8u* pSrcReplacement, int* pSize) {
    if (anyNull(pSize)) return zelStatusNullPointer;
    const size_t length =
        anyNull(pSrcReplacement) ? 0 : strlen(reinterpret_cast<const char*>(pSrcReplacement));
    *pSize = static_cast<int>(length * sizeof(ReplaceSegment) + sizeof(ZelRegExpReplaceState));
    return zelStatusOk;
}

ZelStatus zelsRegExpReplaceInit(const Zel8u* pSrcReplacement,
                                ZelRegExpReplaceState* pReplaceState) {
    if (anyNull(pReplaceState)) return zelStatusNullPointer;
    if (anyNull(pSrcReplacement)) {
        *pReplaceState = {0, nullptr};
        return zelStatusOk;
    }
    pReplaceState->segments = reinterpret_cast<ReplaceSegment*>(pReplaceState + 1);
    return parseTemplate(pSrcReplacement, pReplaceState);
}

ZelStatus zelsRegExpReplace_8u(const Zel8u* pSrc, int* pSrcLenOffset, Zel8u* pDst, int* pDstLen,
                               ZelRegExpFind* pFind, int* pNumFind,
                               const ZelRegExpState* pRegExpState,
                               const ZelRegExpReplaceState* pReplaceState) {
    if (anyNull(pSrc, pSrcLenOffset, pDst, pDstLen, pFind, pNumFind, pRegExpState, pReplaceState)) {
        return zelStatusNullPointer;
    }
    if (*pSrcLenOffset < 1 || *pDstLen < 1) return zelStatusSizeError;

    // A search leaves the program alone and works in the object's scratch, hence the cast.
    ZelRegExpState* const pattern = const_cast<ZelRegExpState*>(pRegExpState);
    const bool all = (pattern->options & kOptionGlobal) != 0;
    const ZelStatus status =
        ownsRegExpFind_8u(pSrc, *pSrcLenOffset, pattern, pFind, pNumFind, all ? 1 : 0);
    if (status < 0) return status;

    const Replacement job = {pSrc, *pSrcLenOffset, pReplaceState, pDst, *pDstLen};
    ReplaceLengths lengths;
    if (*pNumFind < 1) {
        lengths.written = std::min(job.sourceLength, job.capacity);
        lengths.sourceOffset = lengths.written;
        ownsCopy_8u(pSrc, pDst, lengths.written);
    } else if (all) {
        lengths = replaceAll(job, pFind, *pNumFind, pattern->groupCount);
    } else {
        lengths = replaceFirst(job, pFind, *pNumFind);
    }
    *pSrcLenOffset = static_cast<int>(lengths.sourceOffset);
    *pDstLen = static_cast<int>(lengths.written);
    return zelStatusOk;
}

}  // extern "C"
