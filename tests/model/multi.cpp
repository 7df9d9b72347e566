// Pattern sets: slots that hold a pattern and an identifier. The model searches them one after
// another, which gives every slot the same record as any division among threads.
#include "model.h"
#include "regexp/program.h"

struct ZelRegExpMultiState {
    int capacity;
    ZelRegExpState** patterns;
    Zel32u* identifiers;
};

namespace model {
namespace {

long long sizeFor(int maxPatterns) {
    return 12LL * maxPatterns + 24;
}

int findIdentifier(const ZelRegExpMultiState& set, Zel32u identifier) {
    for (int i = 0; i < set.capacity; ++i) {
        if (set.identifiers[i] == identifier) return i;
    }
    return -1;
}

}  // namespace

ZelStatus zelsRegExpMultiGetSize(int maxPatterns, int* pSize) {
    if (!pSize) return zelStatusNullPointer;
    if (maxPatterns == 0) return zelStatusSizeError;
    *pSize = static_cast<int>(sizeFor(maxPatterns));
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiInit(ZelRegExpMultiState* pState, int maxPatterns) {
    if (!pState) return zelStatusNullPointer;
    if (maxPatterns == 0) return zelStatusSizeError;
    pState->capacity = maxPatterns;
    pState->patterns = reinterpret_cast<ZelRegExpState**>(pState + 1);
    pState->identifiers = reinterpret_cast<Zel32u*>(pState->patterns + maxPatterns);
    for (int i = 0; i < maxPatterns; ++i) {
        pState->patterns[i] = nullptr;
        pState->identifiers[i] = 0;
    }
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiInitAlloc(ZelRegExpMultiState** ppState, int maxPatterns) {
    if (!ppState) return zelStatusNullPointer;
    if (maxPatterns == 0) return zelStatusSizeError;
    long long size = sizeFor(maxPatterns);
    if (size < 1 || size > 0x7FFFFFFF) return zelStatusNullPointer;
    *ppState = static_cast<ZelRegExpMultiState*>(model::zelsMalloc_8u(static_cast<int>(size)));
    if (!*ppState) return zelStatusNullPointer;
    return model::zelsRegExpMultiInit(*ppState, maxPatterns);
}

ZelStatus zelsRegExpMultiFree(ZelRegExpMultiState* pState) {
    model::zelsFree(pState);
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiAdd(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                             ZelRegExpMultiState* pState) {
    if (!pRegExpState || !pState) return zelStatusNullPointer;
    if (regexpID == 0) return zelStatusRegExpMultiIdError;
    for (int i = 0; i < pState->capacity; ++i) {
        if (pState->patterns[i]) continue;
        pState->patterns[i] = const_cast<ZelRegExpState*>(pRegExpState);
        pState->identifiers[i] = regexpID;
        return zelStatusOk;
    }
    return zelStatusRegExpMultiFullError;
}

ZelStatus zelsRegExpMultiDelete(Zel32u regexpID, ZelRegExpMultiState* pState) {
    if (!pState) return zelStatusNullPointer;
    if (regexpID == 0) return zelStatusRegExpMultiIdError;
    int slot = findIdentifier(*pState, regexpID);
    if (slot < 0) return zelStatusRegExpMultiNoIdError;
    pState->patterns[slot] = nullptr;
    pState->identifiers[slot] = 0;
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiModify(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                ZelRegExpMultiState* pState) {
    if (!pRegExpState || !pState) return zelStatusNullPointer;
    if (regexpID == 0) return zelStatusRegExpMultiIdError;
    int slot = findIdentifier(*pState, regexpID);
    if (slot < 0) return zelStatusRegExpMultiNoIdError;
    pState->patterns[slot] = const_cast<ZelRegExpState*>(pRegExpState);
    return zelStatusOk;
}

ZelStatus zelsRegExpMultiFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpMultiFind* pResult,
                                 const ZelRegExpMultiState* pState) {
    if (!pSrc || !pState || !pResult) return zelStatusNullPointer;
    if (srcLen < 1) return zelStatusSizeError;
    for (int i = 0; i < pState->capacity; ++i) {
        if (!pState->patterns[i]) continue;
        ZelRegExpMultiFind& record = pResult[i];
        record.status = model::zelsRegExpFind_8u(pSrc, srcLen, pState->patterns[i], record.pFind,
                                                 &record.numFind);
        record.identifier = pState->identifiers[i];
        record.searched = 1;
    }
    return zelStatusOk;
}

}  // namespace model
