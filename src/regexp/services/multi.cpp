// Pattern sets: slots that refer to compiled patterns, and one search of a subject with all of
// them. A set larger than the thread count is searched by a team that divides the slots once, in
// equal runs; every record is written by exactly one thread, so that nothing is gathered or locked.
// The same pattern may stand in two slots that two threads search, so a thread of the team never
// works in the pattern's own scratch areas but in areas on its stack.
#include "regexp/services/multi.h"

#include <emmintrin.h>
#include <limits.h>
#include <omp.h>

#include <algorithm>

#include "core/checks.h"
#include "core/memory.h"
#include "regexp/match/driver.h"
#include "regexp/match/text_triples.h"
#include "zelcore.h"

namespace zel {
namespace {

constexpr int kNoSlot = -1;

int findIdentifier(const ZelRegExpMultiState& set, Zel32u identifier) {
    for (int i = 0; i < set.capacity; ++i) {
        if (set.identifiers[i] == identifier) return i;
    }
    return kNoSlot;
}

struct MultiSearch {
    const Zel8u* source;
    int sourceLength;
    ZelRegExpMultiFind* results;
    const ZelRegExpMultiState* set;
    const TextTriples& triples;  // of the source
};

/// Searches a run of slots and fills their records; `workFor` has the work areas for a pattern.
/// Empty slots are passed over, their records are the caller's.
template <typename WorkFor>
void searchSlots(const MultiSearch& job, Division::Range slots, WorkFor workFor) {
    const PatternSlot* const patterns = job.set->patterns;
    const IdentifierSlot* const identifiers = job.set->identifiers;
    const TextTriples& triples = job.triples;
    ZelRegExpMultiFind* const results = job.results;
    for (int slot = slots.first; slot < slots.last; ++slot) {
        ZelRegExpState* const pattern = patterns[slot];
        if (pattern == nullptr) continue;
        ZelRegExpMultiFind& record = results[slot];
        const bool isAllowed =
            record.pFind != nullptr && record.numFind >= 1 && pattern->magic == kRegExpMagic;
        if (isAllowed && triples.surelyExclude(*pattern)) {
            record.status = zelStatusOk;
            record.numFind = 0;
        } else {
            record.status = searchWith(workFor(*pattern), job.source, job.sourceLength, pattern,
                                       record.pFind, &record.numFind, 0);
        }
        record.identifier = identifiers[slot];
        record.searched = 1;
    }
}

void searchSerially(const MultiSearch& job) {
    searchSlots(job, {0, job.set->capacity}, [](ZelRegExpState& pattern) {
        return WorkAreas{pattern.groups, pattern.captures};
    });
}

/// Searches a team member's slots with scratch of its own. Not inlined, so that the 48,000 bytes
/// are on the stack only while it searches.
[[gnu::noinline]] void searchRange(const MultiSearch& job, Division::Range slots) {
    GroupFrame groups[kMaxGroups];
    CaptureRecord captures[kMaxGroups];
    searchSlots(job, slots, [&](ZelRegExpState&) { return WorkAreas{groups, captures}; });
}

/// Where the runtime forms no team, as inside another parallel region, and where none is worth
/// forming, the same region runs as a team of one.
void searchInParallel(const MultiSearch& job, int threads) {
    const int capacity = job.set->capacity;
    if (!worthATeam(capacity, job.sourceLength)) {
        searchRange(job, {0, capacity});
        return;
    }
    Division division;  // written by the master, read behind the barrier
#pragma omp parallel num_threads(threads) default(none) shared(job, capacity, division)
    {
#pragma omp master
        division = Division(capacity, omp_get_num_threads());
#pragma omp barrier
        searchRange(job, division.rangeOf(omp_get_thread_num()));
    }
}

void searchAll(const MultiSearch& job) {
    const int threads = ownGetNumThreads();
    if (job.set->capacity <= threads) {
        searchSerially(job);
    } else {
        searchInParallel(job, threads);
    }
}

}  // namespace

int findEmptySlot(const PatternSlot* patterns, int capacity) {
    const uintptr_t address = reinterpret_cast<uintptr_t>(patterns);
    int i = 0;
    if (address % sizeof(void*) == 0) {
        // Two slots a step, once a step is a whole 16-byte block.
        if (address % 16 != 0 && capacity > 0) {
            if (patterns[0] == nullptr) return 0;
            i = 1;
        }
        for (; i + 2 <= capacity; i += 2) {
            const __m128i pair = _mm_load_si128(reinterpret_cast<const __m128i*>(patterns + i));
            const int zeroHalves =
                _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(pair, _mm_setzero_si128())));
            if ((zeroHalves & 0x3) == 0x3) return i;
            if ((zeroHalves & 0xC) == 0xC) return i + 1;
        }
    }
    for (; i < capacity; ++i) {
        if (patterns[i] == nullptr) return i;
    }
    return kNoSlot;
}

}  // namespace zel

using namespace zel;

extern "C" {

ZelStatus zelsRegExpMultiGetSize(int maxPatterns, int* pSize) {
    if (anyNull(pSize)) return zelStatusNullPointer;
    if (maxPatterns == 0) return zelStatusSizeError;
    *pSize = static_cast<int>(multiSize(maxPatterns));
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiInit(ZelRegExpMultiState* pState, int maxPatterns) {
    if (anyNull(pState)) return zelStatusNullPointer;
    if (maxPatterns == 0) return zelStatusSizeError;
    // A negative capacity is stored as it is and makes a set that has no slots.
    const ptrdiff_t slots = std::max(maxPatterns, 0);
    Zel8u* const tables = reinterpret_cast<Zel8u*>(pState + 1);
    pState->patterns = reinterpret_cast<PatternSlot*>(tables);
    pState->identifiers =
        reinterpret_cast<IdentifierSlot*>(tables + slots * ptrdiff_t{sizeof(PatternSlot)});
    ownsZero_8u(tables, slots * ptrdiff_t{sizeof(PatternSlot) + sizeof(IdentifierSlot)});
    pState->capacity = maxPatterns;
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiInitAlloc(ZelRegExpMultiState** ppState, int maxPatterns) {
    if (anyNull(ppState)) return zelStatusNullPointer;
    if (maxPatterns == 0) return zelStatusSizeError;
    *ppState = nullptr;
    const int64_t size = multiSize(maxPatterns);
    if (size < 1 || size > INT_MAX) return zelStatusNullPointer;
    // The size for a capacity of -1 is less than the header that Init writes.
    const int64_t block = std::max(size, int64_t{sizeof(ZelRegExpMultiState)});
    *ppState = static_cast<ZelRegExpMultiState*>(zelsMalloc_8u(static_cast<int>(block)));
    if (*ppState == nullptr) return zelStatusNullPointer;
    return zelsRegExpMultiInit(*ppState, maxPatterns);
}

ZelStatus zelsRegExpMultiFree(ZelRegExpMultiState* pState) {
    zelsFree(pState);
    return zelStatusOk;
}

// A set takes patterns as const, since adding one does not change it, and keeps them as what a
// serial search needs: objects whose scratch it may use.
ZelStatus zelsRegExpMultiAdd(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                             ZelRegExpMultiState* pState) {
    if (anyNull(pRegExpState, pState)) return zelStatusNullPointer;
    if (regexpID == 0) return zelStatusRegExpMultiIdError;
    const int slot = findEmptySlot(pState->patterns, pState->capacity);
    if (slot == kNoSlot) return zelStatusRegExpMultiFullError;
    pState->patterns[slot] = const_cast<ZelRegExpState*>(pRegExpState);
    pState->identifiers[slot] = regexpID;
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiDelete(Zel32u regexpID, ZelRegExpMultiState* pState) {
    if (anyNull(pState)) return zelStatusNullPointer;
    if (regexpID == 0) return zelStatusRegExpMultiIdError;
    const int slot = findIdentifier(*pState, regexpID);
    if (slot == kNoSlot) return zelStatusRegExpMultiNoIdError;
    pState->patterns[slot] = nullptr;
    pState->identifiers[slot] = 0;
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiModify(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                ZelRegExpMultiState* pState) {
    if (anyNull(pRegExpState, pState)) return zelStatusNullPointer;
    if (regexpID == 0) return zelStatusRegExpMultiIdError;
    const int slot = findIdentifier(*pState, regexpID);
    if (slot == kNoSlot) return zelStatusRegExpMultiNoIdError;
    pState->patterns[slot] = const_cast<ZelRegExpState*>(pRegExpState);
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpMultiFind* pResult,
                                 const ZelRegExpMultiState* pState) {
    if (anyNull(pSrc, pState, pResult)) return zelStatusNullPointer;
    if (srcLen < 1) return zelStatusSizeError;
    const TextTriples triples(pSrc, srcLen, pState->capacity);
    searchAll({pSrc, srcLen, pResult, pState, triples});
    return zelStatusOk;
}

}  // extern "C"
