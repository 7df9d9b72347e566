// The plain model: every exported function of the library a second time, under the same name in
// namespace `model`, written for obviousness and never for speed. Element loops, linear scans, and
// a matcher that recurses exactly as its rules read. The differential tests hold the library
// against it, so nothing here may be tuned to agree with a faster implementation: where the two
// differ, the documented behaviour decides.
//
// The model shares with the library only the layout of a pattern object (regexp/program.h) and the
// generated Unicode and case tables. A pattern compiled by one can be searched by the other.
#pragma once

#include "zelchmx.h"

namespace model {

const ZelLibraryVersion* zelchGetLibVersion();
void* zelsMalloc_8u(int len);
void zelsFree(void* ptr);
ZelStatus zelsCopy_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZelStatus zelsCopy_16s(const Zel16s* pSrc, Zel16s* pDst, int len);
ZelStatus zelsMove_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZelStatus zelsMove_16s(const Zel16s* pSrc, Zel16s* pDst, int len);
ZelStatus zelsZero_8u(Zel8u* pDst, int len);
ZelStatus zelsFind_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind, int* pIndex);
ZelStatus zelsFind_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind, int* pIndex);
ZelStatus zelsFindRev_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind, int* pIndex);
ZelStatus zelsFindRev_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                          int* pIndex);
ZelStatus zelsFindC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex);
ZelStatus zelsFindC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex);
ZelStatus zelsFindRevC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex);
ZelStatus zelsFindRevC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex);
ZelStatus zelsFindCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                          int* pIndex);
ZelStatus zelsFindCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                           int* pIndex);
ZelStatus zelsFindRevCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                             int* pIndex);
ZelStatus zelsFindRevCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                              int* pIndex);
ZelStatus zelsFind_Z_8u(const Zel8u* pSrcZ, const Zel8u* pFindZ, int* pIndex);
ZelStatus zelsFind_Z_16u(const Zel16u* pSrcZ, const Zel16u* pFindZ, int* pIndex);
ZelStatus zelsFindC_Z_8u(const Zel8u* pSrcZ, Zel8u valFind, int* pIndex);
ZelStatus zelsFindC_Z_16u(const Zel16u* pSrcZ, Zel16u valFind, int* pIndex);
ZelStatus zelsCompare_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult);
ZelStatus zelsCompare_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult);
ZelStatus zelsCompareIgnoreCaseLatin_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len,
                                        int* pResult);
ZelStatus zelsCompareIgnoreCaseLatin_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                         int* pResult);
ZelStatus zelsCompareIgnoreCase_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                    int* pResult);
ZelStatus zelsEqual_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult);
ZelStatus zelsEqual_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult);
ZelStatus zelsUppercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZelStatus zelsUppercase_16u_I(Zel16u* pSrcDst, int len);
ZelStatus zelsLowercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZelStatus zelsLowercase_16u_I(Zel16u* pSrcDst, int len);
ZelStatus zelsUppercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZelStatus zelsUppercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZelStatus zelsUppercaseLatin_8u_I(Zel8u* pSrcDst, int len);
ZelStatus zelsUppercaseLatin_16u_I(Zel16u* pSrcDst, int len);
ZelStatus zelsLowercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZelStatus zelsLowercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZelStatus zelsLowercaseLatin_8u_I(Zel8u* pSrcDst, int len);
ZelStatus zelsLowercaseLatin_16u_I(Zel16u* pSrcDst, int len);
ZelStatus zelsInsert_8u(const Zel8u* pSrc, int len, const Zel8u* pInsert, int lenInsert,
                        Zel8u* pDst, int startIndex);
ZelStatus zelsInsert_16u(const Zel16u* pSrc, int len, const Zel16u* pInsert, int lenInsert,
                         Zel16u* pDst, int startIndex);
ZelStatus zelsInsert_8u_I(const Zel8u* pInsert, int lenInsert, Zel8u* pSrcDst, int* pSrcDstLen,
                          int startIndex);
ZelStatus zelsInsert_16u_I(const Zel16u* pInsert, int lenInsert, Zel16u* pSrcDst, int* pSrcDstLen,
                           int startIndex);
ZelStatus zelsRemove_8u(const Zel8u* pSrc, int len, Zel8u* pDst, int startIndex, int lenRemove);
ZelStatus zelsRemove_16u(const Zel16u* pSrc, int len, Zel16u* pDst, int startIndex, int lenRemove);
ZelStatus zelsRemove_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove);
ZelStatus zelsRemove_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove);
ZelStatus zelsReplaceC_8u(const Zel8u* pSrc, Zel8u* pDst, int len, Zel8u valOld, Zel8u valNew);
ZelStatus zelsReplaceC_16u(const Zel16u* pSrc, Zel16u* pDst, int len, Zel16u valOld, Zel16u valNew);
ZelStatus zelsConcat_8u(const Zel8u* pSrc1, int len1, const Zel8u* pSrc2, int len2, Zel8u* pDst);
ZelStatus zelsConcat_16u(const Zel16u* pSrc1, int len1, const Zel16u* pSrc2, int len2,
                         Zel16u* pDst);
ZelStatus zelsConcat_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList, int numSrc,
                            Zel8u* pDst);
ZelStatus zelsConcat_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList, int numSrc,
                             Zel16u* pDst);
ZelStatus zelsConcatC_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList, int numSrc,
                             Zel8u valDelim, Zel8u* pDst);
ZelStatus zelsConcatC_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList, int numSrc,
                              Zel16u valDelim, Zel16u* pDst);
ZelStatus zelsSplitC_8u_D2L(const Zel8u* pSrc, int len, Zel8u valDelim, Zel8u* const* pDstList,
                            int* pDstLenList, int* pNumDst);
ZelStatus zelsSplitC_16u_D2L(const Zel16u* pSrc, int len, Zel16u valDelim, Zel16u* const* pDstList,
                             int* pDstLenList, int* pNumDst);
ZelStatus zelsTrimC_8u(const Zel8u* pSrc, int len, Zel8u valTrim, Zel8u* pDst, int* pDstLen);
ZelStatus zelsTrimC_16u(const Zel16u* pSrc, int len, Zel16u valTrim, Zel16u* pDst, int* pDstLen);
ZelStatus zelsTrimC_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, Zel8u valTrim);
ZelStatus zelsTrimC_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, Zel16u valTrim);
ZelStatus zelsTrimCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim, Zel8u* pDst,
                          int* pDstLen);
ZelStatus zelsTrimCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                           Zel16u* pDst, int* pDstLen);
ZelStatus zelsTrimStartCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                               Zel8u* pDst, int* pDstLen);
ZelStatus zelsTrimStartCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                                Zel16u* pDst, int* pDstLen);
ZelStatus zelsTrimEndCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                             Zel8u* pDst, int* pDstLen);
ZelStatus zelsTrimEndCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                              Zel16u* pDst, int* pDstLen);
ZelStatus zelsHash_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZelStatus zelsHash_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);
ZelStatus zelsHashSJ2_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZelStatus zelsHashSJ2_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);
ZelStatus zelsHashMSCS_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZelStatus zelsHashMSCS_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);
ZelStatus zelsConvertUTF_8u16u(const Zel8u* pSrc, int* pSrcLen, Zel16u* pDst, int* pDstLen,
                               int swapBytes);
ZelStatus zelsConvertUTF_16u8u(const Zel16u* pSrc, int* pSrcLen, Zel8u* pDst, int* pDstLen,
                               int swapBytes);
ZelStatus zelsRegExpGetSize(const char* pSrc, int* pSize);
ZelStatus zelsRegExpInit(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                         int* pErrOffset);
ZelStatus zelsRegExpInitAlloc(const char* pSrc, const char* pOptions, ZelRegExpState** ppState,
                              int* pErrOffset);
ZelStatus zelsRegExpFree(ZelRegExpState* pState);
ZelStatus zelsRegExpSetFormat(int fmt, ZelRegExpState* pState);
ZelStatus zelsRegExpSetMatchLimit(int limit, ZelRegExpState* pState);
ZelStatus zelsRegExpFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                            ZelRegExpFind* pResult, int* pNumFind);
ZelStatus zelsRegExpReplaceGetSize(const Zel8u* pSrcReplacement, int* pSize);
ZelStatus zelsRegExpReplaceInit(const Zel8u* pSrcReplacement, ZelRegExpReplaceState* pReplaceState);
ZelStatus zelsRegExpReplace_8u(const Zel8u* pSrc, int* pSrcLenOffset, Zel8u* pDst, int* pDstLen,
                               ZelRegExpFind* pFind, int* pNumFind,
                               const ZelRegExpState* pRegExpState,
                               const ZelRegExpReplaceState* pReplaceState);
ZelStatus zelsRegExpMultiGetSize(int maxPatterns, int* pSize);
ZelStatus zelsRegExpMultiInit(ZelRegExpMultiState* pState, int maxPatterns);
ZelStatus zelsRegExpMultiInitAlloc(ZelRegExpMultiState** ppState, int maxPatterns);
ZelStatus zelsRegExpMultiFree(ZelRegExpMultiState* pState);
ZelStatus zelsRegExpMultiAdd(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                             ZelRegExpMultiState* pState);
ZelStatus zelsRegExpMultiDelete(Zel32u regexpID, ZelRegExpMultiState* pState);
ZelStatus zelsRegExpMultiModify(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                ZelRegExpMultiState* pState);
ZelStatus zelsRegExpMultiFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpMultiFind* pResult,
                                 const ZelRegExpMultiState* pState);

/// The step budget that the last search of this thread left over; negative when it ran out.
int stepsLeft();

}  // namespace model
