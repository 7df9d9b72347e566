/*
 * zelchmx: string primitives and a backtracking regular-expression engine that live entirely in
 * memory their caller provides.
 *
 * This is the one public header, plain C99 and C++. It reads from top to bottom as the manual:
 * types and status values first, then memory, strings, and regular expressions.
 *
 * Rules that hold for every function:
 *   - Lengths, counts and indices are signed 32-bit and count elements, not bytes, unless an
 * argument says "bytes". A string is a (pointer, length) pair; length 0 is a valid empty string.
 *   - Arguments are checked before anything is written: null pointers first (-8), then negative
 *     lengths (-119), then counts that must be positive (-6), then values and object identity.
 *   - Nothing is allocated, except by zelsMalloc_8u and the ...InitAlloc functions.
 *   - Functions keep no state. Any number of threads may call them on different objects.
 */
#ifndef ZELCHMX_H
#define ZELCHMX_H

#if defined(__GNUC__)
#define ZEL_API __attribute__((visibility("default")))
#else
#define ZEL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Element types -------------------------------------------------------------------------- */

typedef unsigned char Zel8u;   /* a byte of an 8-bit string */
typedef unsigned short Zel16u; /* a code unit of a 16-bit string */
typedef short Zel16s;          /* a raw 16-bit element of the block primitives */
typedef unsigned int Zel32u;   /* a hash value or a pattern identifier */

/* ---- Status values -------------------------------------------------------------------------- */

/* The result of a call: 0 success, negative error, positive warning with a complete result. */
typedef int ZelStatus;

enum {
    zelStatusOk = 0,
    zelStatusRegExpMultiNoIdError = -2,   /* no slot of the pattern set holds the identifier */
    zelStatusRegExpMultiIdError = -5,     /* a pattern identifier is 0, which marks an empty slot */
    zelStatusSizeError = -6,              /* a count or size that must be at least 1 is less */
    zelStatusBadArgError = -7,            /* an argument has a value outside its allowed set */
    zelStatusNullPointer = -8,            /* a required pointer is null, or an allocation failed */
    zelStatusRegExpMultiFullError = -9,   /* every slot of the pattern set is occupied */
    zelStatusLengthError = -119,          /* a string length is negative */
    zelStatusRegExpEscapeError = -183,    /* malformed code-point or property escape */
    zelStatusRegExpCharClassError = -184, /* malformed bracket class */
    zelStatusRegExpBackRefError = -185,   /* reference to a group that does not exist */
    zelStatusRegExpGroupingError = -186,  /* malformed, unbalanced or too many parentheses */
    zelStatusRegExpQuantifierError = -187, /* quantifier with nothing to repeat, or bad bounds */
    zelStatusRegExpMatchLimitError = -188, /* the step budget ran out during the search */
    zelStatusContextMatchError = -189,     /* the state argument is not an object of its kind */
    zelStatusRegExpOptionsError = -190,    /* an option letter is not one of g i m s x */
    zelStatusSplitIncompleteWarning = 26,  /* all slots are filled and source text remains */
    zelStatusTruncatedWarning = 27         /* a token was cut to its slot's capacity */
};

/* ---- Version -------------------------------------------------------------------------------- */

typedef struct ZelLibraryVersion {
    int major;
    int minor;
    int buildNumber;
    int buildSerial;
    char cpuCode[4];         /* padded with zero bytes */
    const char* libraryName; /* the shared object's own file name */
    const char* versionText;
    const char* buildDate;
} ZelLibraryVersion;

ZEL_API const ZelLibraryVersion* zelchGetLibVersion(void);

/* ---- Memory and blocks ---------------------------------------------------------------------- */

ZEL_API void* zelsMalloc_8u(int len);
ZEL_API void zelsFree(void* ptr);
ZEL_API ZelStatus zelsCopy_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZEL_API ZelStatus zelsCopy_16s(const Zel16s* pSrc, Zel16s* pDst, int len);
ZEL_API ZelStatus zelsMove_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZEL_API ZelStatus zelsMove_16s(const Zel16s* pSrc, Zel16s* pDst, int len);
ZEL_API ZelStatus zelsZero_8u(Zel8u* pDst, int len);

/* ---- Search ---------------------------------------------------------------------------------- */

ZEL_API ZelStatus zelsFind_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind,
                              int* pIndex);
ZEL_API ZelStatus zelsFind_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                               int* pIndex);
ZEL_API ZelStatus zelsFindRev_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind,
                                 int* pIndex);
ZEL_API ZelStatus zelsFindRev_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                                  int* pIndex);
ZEL_API ZelStatus zelsFindC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindRevC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindRevC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                                  int* pIndex);
ZEL_API ZelStatus zelsFindCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                                   int* pIndex);
ZEL_API ZelStatus zelsFindRevCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                                     int* pIndex);
ZEL_API ZelStatus zelsFindRevCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf,
                                      int lenAnyOf, int* pIndex);
ZEL_API ZelStatus zelsFind_Z_8u(const Zel8u* pSrcZ, const Zel8u* pFindZ, int* pIndex);
ZEL_API ZelStatus zelsFind_Z_16u(const Zel16u* pSrcZ, const Zel16u* pFindZ, int* pIndex);
ZEL_API ZelStatus zelsFindC_Z_8u(const Zel8u* pSrcZ, Zel8u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindC_Z_16u(const Zel16u* pSrcZ, Zel16u valFind, int* pIndex);

/* ---- Comparison ------------------------------------------------------------------------------ */

ZEL_API ZelStatus zelsCompare_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult);
ZEL_API ZelStatus zelsCompare_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult);
ZEL_API ZelStatus zelsCompareIgnoreCaseLatin_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len,
                                                int* pResult);
ZEL_API ZelStatus zelsCompareIgnoreCaseLatin_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                                 int* pResult);
ZEL_API ZelStatus zelsCompareIgnoreCase_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                            int* pResult);
ZEL_API ZelStatus zelsEqual_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult);
ZEL_API ZelStatus zelsEqual_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult);

/* ---- Case conversion ------------------------------------------------------------------------- */

ZEL_API ZelStatus zelsUppercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZEL_API ZelStatus zelsUppercase_16u_I(Zel16u* pSrcDst, int len);
ZEL_API ZelStatus zelsLowercase_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZEL_API ZelStatus zelsLowercase_16u_I(Zel16u* pSrcDst, int len);
ZEL_API ZelStatus zelsUppercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZEL_API ZelStatus zelsUppercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZEL_API ZelStatus zelsUppercaseLatin_8u_I(Zel8u* pSrcDst, int len);
ZEL_API ZelStatus zelsUppercaseLatin_16u_I(Zel16u* pSrcDst, int len);
ZEL_API ZelStatus zelsLowercaseLatin_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZEL_API ZelStatus zelsLowercaseLatin_16u(const Zel16u* pSrc, Zel16u* pDst, int len);
ZEL_API ZelStatus zelsLowercaseLatin_8u_I(Zel8u* pSrcDst, int len);
ZEL_API ZelStatus zelsLowercaseLatin_16u_I(Zel16u* pSrcDst, int len);

/* ---- Editing and concatenation --------------------------------------------------------------- */

ZEL_API ZelStatus zelsInsert_8u(const Zel8u* pSrc, int len, const Zel8u* pInsert, int lenInsert,
                                Zel8u* pDst, int startIndex);
ZEL_API ZelStatus zelsInsert_16u(const Zel16u* pSrc, int len, const Zel16u* pInsert, int lenInsert,
                                 Zel16u* pDst, int startIndex);
ZEL_API ZelStatus zelsInsert_8u_I(const Zel8u* pInsert, int lenInsert, Zel8u* pSrcDst,
                                  int* pSrcDstLen, int startIndex);
ZEL_API ZelStatus zelsInsert_16u_I(const Zel16u* pInsert, int lenInsert, Zel16u* pSrcDst,
                                   int* pSrcDstLen, int startIndex);
ZEL_API ZelStatus zelsRemove_8u(const Zel8u* pSrc, int len, Zel8u* pDst, int startIndex,
                                int lenRemove);
ZEL_API ZelStatus zelsRemove_16u(const Zel16u* pSrc, int len, Zel16u* pDst, int startIndex,
                                 int lenRemove);
ZEL_API ZelStatus zelsRemove_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove);
ZEL_API ZelStatus zelsRemove_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove);
ZEL_API ZelStatus zelsReplaceC_8u(const Zel8u* pSrc, Zel8u* pDst, int len, Zel8u valOld,
                                  Zel8u valNew);
ZEL_API ZelStatus zelsReplaceC_16u(const Zel16u* pSrc, Zel16u* pDst, int len, Zel16u valOld,
                                   Zel16u valNew);
ZEL_API ZelStatus zelsConcat_8u(const Zel8u* pSrc1, int len1, const Zel8u* pSrc2, int len2,
                                Zel8u* pDst);
ZEL_API ZelStatus zelsConcat_16u(const Zel16u* pSrc1, int len1, const Zel16u* pSrc2, int len2,
                                 Zel16u* pDst);
ZEL_API ZelStatus zelsConcat_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList,
                                    int numSrc, Zel8u* pDst);
ZEL_API ZelStatus zelsConcat_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList,
                                     int numSrc, Zel16u* pDst);
ZEL_API ZelStatus zelsConcatC_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList,
                                     int numSrc, Zel8u valDelim, Zel8u* pDst);
ZEL_API ZelStatus zelsConcatC_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList,
                                      int numSrc, Zel16u valDelim, Zel16u* pDst);
ZEL_API ZelStatus zelsSplitC_8u_D2L(const Zel8u* pSrc, int len, Zel8u valDelim,
                                    Zel8u* const* pDstList, int* pDstLenList, int* pNumDst);
ZEL_API ZelStatus zelsSplitC_16u_D2L(const Zel16u* pSrc, int len, Zel16u valDelim,
                                     Zel16u* const* pDstList, int* pDstLenList, int* pNumDst);

/* ---- Trimming -------------------------------------------------------------------------------- */

ZEL_API ZelStatus zelsTrimC_8u(const Zel8u* pSrc, int len, Zel8u valTrim, Zel8u* pDst,
                               int* pDstLen);
ZEL_API ZelStatus zelsTrimC_16u(const Zel16u* pSrc, int len, Zel16u valTrim, Zel16u* pDst,
                                int* pDstLen);
ZEL_API ZelStatus zelsTrimC_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, Zel8u valTrim);
ZEL_API ZelStatus zelsTrimC_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, Zel16u valTrim);
ZEL_API ZelStatus zelsTrimCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                                  Zel8u* pDst, int* pDstLen);
ZEL_API ZelStatus zelsTrimCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                                   Zel16u* pDst, int* pDstLen);
ZEL_API ZelStatus zelsTrimStartCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                                       Zel8u* pDst, int* pDstLen);
ZEL_API ZelStatus zelsTrimStartCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim,
                                        int lenTrim, Zel16u* pDst, int* pDstLen);
ZEL_API ZelStatus zelsTrimEndCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pTrim, int lenTrim,
                                     Zel8u* pDst, int* pDstLen);
ZEL_API ZelStatus zelsTrimEndCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pTrim, int lenTrim,
                                      Zel16u* pDst, int* pDstLen);

/* ---- Hashing --------------------------------------------------------------------------------- */

ZEL_API ZelStatus zelsHash_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHash_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHashSJ2_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHashSJ2_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHashMSCS_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHashMSCS_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);

/* ---- UTF conversion -------------------------------------------------------------------------- */

ZEL_API ZelStatus zelsConvertUTF_8u16u(const Zel8u* pSrc, int* pSrcLen, Zel16u* pDst, int* pDstLen,
                                       int swapBytes);
ZEL_API ZelStatus zelsConvertUTF_16u8u(const Zel16u* pSrc, int* pSrcLen, Zel8u* pDst, int* pDstLen,
                                       int swapBytes);

/* ---- Regular expressions: pattern objects ---------------------------------------------------- */

/* A compiled pattern in memory of the caller's: zelsRegExpGetSize says how much. */
typedef struct ZelRegExpState ZelRegExpState;

ZEL_API ZelStatus zelsRegExpGetSize(const char* pSrc, int* pSize);
ZEL_API ZelStatus zelsRegExpInit(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                                 int* pErrOffset);
ZEL_API ZelStatus zelsRegExpInitAlloc(const char* pSrc, const char* pOptions,
                                      ZelRegExpState** ppState, int* pErrOffset);
ZEL_API ZelStatus zelsRegExpFree(ZelRegExpState* pState);
ZEL_API ZelStatus zelsRegExpSetFormat(int fmt, ZelRegExpState* pState);
ZEL_API ZelStatus zelsRegExpSetMatchLimit(int limit, ZelRegExpState* pState);

/* ---- Regular expressions: search ------------------------------------------------------------- */

/* One result: the whole match or one capture group. */
typedef struct ZelRegExpFind {
    Zel8u*
        pMatch; /* first matched byte in the caller's text; null when the group did not take part */
    int lenMatch; /* length in bytes; -1 when the group did not take part */
} ZelRegExpFind;

ZEL_API ZelStatus zelsRegExpFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                                    ZelRegExpFind* pResult, int* pNumFind);

/* ---- Regular expressions: replace ------------------------------------------------------------ */

/* A parsed replacement template in memory of the caller's; it refers to the template's text. */
typedef struct ZelRegExpReplaceState ZelRegExpReplaceState;

ZEL_API ZelStatus zelsRegExpReplaceGetSize(const Zel8u* pSrcReplacement, int* pSize);
ZEL_API ZelStatus zelsRegExpReplaceInit(const Zel8u* pSrcReplacement,
                                        ZelRegExpReplaceState* pReplaceState);
ZEL_API ZelStatus zelsRegExpReplace_8u(const Zel8u* pSrc, int* pSrcLenOffset, Zel8u* pDst,
                                       int* pDstLen, ZelRegExpFind* pFind, int* pNumFind,
                                       const ZelRegExpState* pRegExpState,
                                       const ZelRegExpReplaceState* pReplaceState);

/* ---- Regular expressions: pattern sets ------------------------------------------------------- */

/* A set of references to compiled patterns in memory of the caller's. */
typedef struct ZelRegExpMultiState ZelRegExpMultiState;

/* The result of one slot of a set. */
typedef struct ZelRegExpMultiFind {
    int searched;         /* 1 when the slot held a pattern and was searched */
    Zel32u identifier;    /* the slot's identifier */
    int numFind;          /* in: records that pFind can hold; out: records written */
    ZelStatus status;     /* status of the slot's search */
    ZelRegExpFind* pFind; /* the caller's records for this slot */
} ZelRegExpMultiFind;

ZEL_API ZelStatus zelsRegExpMultiGetSize(int maxPatterns, int* pSize);
ZEL_API ZelStatus zelsRegExpMultiInit(ZelRegExpMultiState* pState, int maxPatterns);
ZEL_API ZelStatus zelsRegExpMultiInitAlloc(ZelRegExpMultiState** ppState, int maxPatterns);
ZEL_API ZelStatus zelsRegExpMultiFree(ZelRegExpMultiState* pState);
ZEL_API ZelStatus zelsRegExpMultiAdd(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                     ZelRegExpMultiState* pState);
ZEL_API ZelStatus zelsRegExpMultiDelete(Zel32u regexpID, ZelRegExpMultiState* pState);
ZEL_API ZelStatus zelsRegExpMultiModify(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                        ZelRegExpMultiState* pState);
ZEL_API ZelStatus zelsRegExpMultiFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpMultiFind* pResult,
                                         const ZelRegExpMultiState* pState);

#ifdef __cplusplus
}
#endif

#endif /* ZELCHMX_H */
