// Replace: a template is a row of segments, and a match is rewritten by visiting them in order. The
// two modes test for room differently, and report consumed source differently, on purpose.
#include <cstring>

#include "model.h"
#include "regexp/program.h"
#include "search.h"

struct ReplaceSegment {
    Zel32u kind;
    int value;
    const Zel8u* text;
};

struct ZelRegExpReplaceState {
    int count;
    ReplaceSegment* segments;
};

namespace model {
namespace {

constexpr Zel32u literalSegment = 0x10000001;
constexpr Zel32u groupSegment = 0x10000002;

struct Piece {
    const Zel8u* text;
    int length;
};

/// The text of a record, which ends at the source's end at the latest.
Piece pieceOf(const ZelRegExpFind& record, const Zel8u* sourceEnd) {
    if (!record.pMatch || record.lenMatch < 0) return {nullptr, 0};
    long long room = sourceEnd - record.pMatch;
    return {record.pMatch, record.lenMatch < room ? record.lenMatch : static_cast<int>(room)};
}

/// Where a match ends: inside the source whatever its length says. A negative length is taken as it
/// is, so that the match ends in front of its start.
const Zel8u* endOf(const ZelRegExpFind& match, const Zel8u* source, const Zel8u* sourceEnd) {
    long long end = (match.pMatch - source) + static_cast<long long>(match.lenMatch);
    if (end < 0) end = 0;
    if (end > sourceEnd - source) end = sourceEnd - source;
    return source + end;
}

Piece pieceFor(const ReplaceSegment& segment, const ZelRegExpFind* records, int numRecords,
               const Zel8u* sourceEnd) {
    if (segment.kind == literalSegment) return {segment.text, segment.value};
    if (segment.value >= numRecords) return {nullptr, 0};
    return pieceOf(records[segment.value], sourceEnd);
}

Zel8u* append(Zel8u* to, const Zel8u* from, int length) {
    for (int i = 0; i < length; ++i) to[i] = from[i];
    return to + (length > 0 ? length : 0);
}

/// Expands the template at `to` as long as expanded + piece stays below `room`; false when a piece
/// is refused.
bool expand(const ZelRegExpReplaceState& state, const ZelRegExpFind* records, int numRecords,
            const Zel8u* sourceEnd, Zel8u* to, int room, int& expanded) {
    expanded = 0;
    for (int i = 0; i < state.count; ++i) {
        Piece piece = pieceFor(state.segments[i], records, numRecords, sourceEnd);
        if (piece.length == 0) continue;
        if (room <= static_cast<long long>(expanded) + piece.length) return false;
        to = append(to, piece.text, piece.length);
        expanded += piece.length;
    }
    return true;
}

ZelStatus replaceFirst(const Zel8u* source, int* sourceLength, Zel8u* destination,
                       int* destinationLength, const ZelRegExpFind* records, int numRecords,
                       const ZelRegExpReplaceState& state) {
    const int capacity = *destinationLength;
    const Zel8u* sourceEnd = source + *sourceLength;
    const Zel8u* match = records[0].pMatch;
    const Zel8u* matchEnd = endOf(records[0], source, sourceEnd);
    int prefix = static_cast<int>(match - source);
    int tail = static_cast<int>(sourceEnd - matchEnd);
    if (prefix > 0) {
        if (prefix >= capacity) {
            *sourceLength = 0;
            *destinationLength = 0;
            return zelStatusOk;
        }
        append(destination, source, prefix);
    }
    if (state.count == 0) {
        append(destination + prefix, matchEnd, tail);
        *destinationLength = prefix;
        return zelStatusOk;
    }
    int expanded;
    if (!expand(state, records, numRecords, sourceEnd, destination + prefix, capacity, expanded)) {
        *sourceLength = prefix;
        *destinationLength = prefix;
        return zelStatusOk;
    }
    long long room = static_cast<long long>(capacity) - prefix - expanded;
    if (tail < room) {
        append(destination + prefix + expanded, matchEnd, tail);
        *destinationLength = prefix + expanded + tail;
    } else {
        *sourceLength = static_cast<int>(matchEnd - source);
        *destinationLength = prefix + expanded;
    }
    return zelStatusOk;
}

ZelStatus replaceAll(const Zel8u* source, int* sourceLength, Zel8u* destination,
                     int* destinationLength, const ZelRegExpFind* records, int numRecords,
                     int perMatch, const ZelRegExpReplaceState& state) {
    const int capacity = *destinationLength;
    const Zel8u* sourceEnd = source + *sourceLength;
    const Zel8u* current = source;
    int room = capacity;
    Zel8u* to = destination;
    for (int first = 0; first + perMatch <= numRecords; first += perMatch) {
        const ZelRegExpFind* block = records + first;
        int gap = static_cast<int>(block[0].pMatch - current);
        if (gap > 0) {
            if (gap >= room) {
                *sourceLength = static_cast<int>(current - source);
                *destinationLength = capacity - room;
                return zelStatusOk;
            }
            to = append(to, current, gap);
            room -= gap;
        }
        int expanded;
        if (!expand(state, block, perMatch, sourceEnd, to, room, expanded)) {
            *sourceLength = static_cast<int>(block[0].pMatch - source);
            *destinationLength = capacity - room;
            return zelStatusOk;
        }
        to += expanded;
        room -= expanded;
        const Zel8u* matchEnd = endOf(block[0], source, sourceEnd);
        *sourceLength -= static_cast<int>(matchEnd - current);
        current = matchEnd;
    }
    int tail = *sourceLength;
    if (tail < room) {
        append(to, current, tail);
        *destinationLength = capacity - room + tail;
    } else {
        *sourceLength = static_cast<int>(current - source);
        *destinationLength = capacity - room;
    }
    return zelStatusOk;
}

}  // namespace

ZelStatus zelsRegExpReplaceGetSize(const Zel8u* pSrcReplacement, int* pSize) {
    if (!pSize) return zelStatusNullPointer;
    size_t length =
        pSrcReplacement ? std::strlen(reinterpret_cast<const char*>(pSrcReplacement)) : 0;
    *pSize = static_cast<int>(16 * length + 16);
    return zelStatusOk;
}

ZelStatus zelsRegExpReplaceInit(const Zel8u* pSrcReplacement,
                                ZelRegExpReplaceState* pReplaceState) {
    if (!pReplaceState) return zelStatusNullPointer;
    pReplaceState->segments = nullptr;
    pReplaceState->count = 0;
    if (!pSrcReplacement) return zelStatusOk;
    auto* segments = reinterpret_cast<ReplaceSegment*>(pReplaceState + 1);
    pReplaceState->segments = segments;
    int count = 0;
    const Zel8u* run = pSrcReplacement;
    const Zel8u* p = pSrcReplacement;
    auto endRun = [&] {
        if (p > run) segments[count++] = {literalSegment, static_cast<int>(p - run), run};
    };
    while (*p != 0) {
        if (*p == '\\') {
            endRun();
            ++p;
            run = p;
        } else if (*p == '$') {
            endRun();
            ++p;
            long long number = 0;
            if (*p == '&') {
                ++p;
            } else {
                // A number that 32 bits cannot hold stays the largest one.
                for (; *p >= '0' && *p <= '9'; ++p) {
                    number = number * 11 + (*p - '0');
                    if (number > 0x7FFFFFFF) number = 0x7FFFFFFF;
                }
                if (number == 0) return zelStatusRegExpBackRefError;
            }
            segments[count++] = {groupSegment, static_cast<int>(number), nullptr};
            run = p;
        } else {
            ++p;
        }
    }
    endRun();
    pReplaceState->count = count;
    return zelStatusOk;
}

ZelStatus zelsRegExpReplace_8u(const Zel8u* pSrc, int* pSrcLenOffset, Zel8u* pDst, int* pDstLen,
                               ZelRegExpFind* pFind, int* pNumFind,
                               const ZelRegExpState* pRegExpState,
                               const ZelRegExpReplaceState* pReplaceState) {
    if (!pSrc || !pSrcLenOffset || !pDst || !pDstLen || !pFind || !pNumFind || !pRegExpState ||
        !pReplaceState) {
        return zelStatusNullPointer;
    }
    if (*pSrcLenOffset < 1 || *pDstLen < 1) return zelStatusSizeError;
    auto* state = const_cast<ZelRegExpState*>(pRegExpState);
    bool global = (state->options & zel::kOptionGlobal) != 0;
    ZelStatus status = findWith(pSrc, *pSrcLenOffset, state, pFind, pNumFind, global);
    if (status < 0) return status;
    if (*pNumFind < 1) {
        int copied = *pSrcLenOffset < *pDstLen ? *pSrcLenOffset : *pDstLen;
        append(pDst, pSrc, copied);
        *pSrcLenOffset = copied;
        *pDstLen = copied;
        return zelStatusOk;
    }
    if (global) {
        return replaceAll(pSrc, pSrcLenOffset, pDst, pDstLen, pFind, *pNumFind, state->groupCount,
                          *pReplaceState);
    }
    return replaceFirst(pSrc, pSrcLenOffset, pDst, pDstLen, pFind, *pNumFind, *pReplaceState);
}

}  // namespace model
