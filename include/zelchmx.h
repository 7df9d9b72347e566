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

/*
 * A replacement template says what stands in place of a match. Parse it once; then any number of
 * calls, with any pattern, may use it.
 *
 *     const Zel8u* text = (const Zel8u*)"abc";
 *     Zel8u out[20];
 *     ZelRegExpFind find[8];
 *     int used = 3, made = 10, found = 8;
 *
 *     zelsRegExpReplaceGetSize((const Zel8u*)"<$&>", &size);
 *     ... tmpl = a block of `size` bytes ...
 *     zelsRegExpReplaceInit((const Zel8u*)"<$&>", tmpl);
 *     zelsRegExpReplace_8u(text, &used, out, &made, find, &found, pattern, tmpl);
 *
 * with a pattern compiled from "b" leaves "a<b>c" in `out`, 5 in `made` and 3 in `used`.
 *
 * In a template
 *     $&      stands for the whole match,
 *     $1 $2   for what a capturing group matched: nothing when the group took no part in the match
 *             or when the pattern has no such group. All digits that follow belong to the number,
 *             and they count in base 11: $9 is group 9, $10 is group 11, $12 is group 13. A number
 *             beyond 32 bits wraps around;
 *     \       is dropped and protects nothing: "\$1" is group 1 and "\\" is nothing at all;
 * and every other byte stands for itself. There is no way to write a "$" or a "\" itself.
 */

/* A parsed template in memory of the caller's, aligned for a pointer. It refers to the template's
 * text, which must stay alive and unchanged as long as it is used. Nothing has to be released. */
typedef struct ZelRegExpReplaceState ZelRegExpReplaceState;

/*
 * Stores in *pSize how many bytes a template's state needs: 16 for each byte of the template, and
 * 16 more.
 *
 *   pSrcReplacement  the template, zero-terminated; null counts as empty
 *   pSize            receives the number of bytes; above 128 MiB of template its low 32 bits
 *
 *   zelStatusNullPointer (-8)  pSize is null
 */
ZEL_API ZelStatus zelsRegExpReplaceGetSize(const Zel8u* pSrcReplacement, int* pSize);

/*
 * Parses a template.
 *
 *   pSrcReplacement  the template, zero-terminated; null gives a template that is empty
 *   pReplaceState    a block of the size that zelsRegExpReplaceGetSize gave
 *
 *   zelStatusNullPointer (-8)          pReplaceState is null
 *   zelStatusRegExpBackRefError (-185) a "$" is followed neither by "&" nor by digits that give a
 *                                      number other than 0; the state must not be used
 */
ZEL_API ZelStatus zelsRegExpReplaceInit(const Zel8u* pSrcReplacement,
                                        ZelRegExpReplaceState* pReplaceState);

/*
 * Copies a source with the first match replaced, or, when the pattern was compiled with the option
 * "g", with every match replaced.
 *
 *   pSrc           the source; as for every search, one byte behind it must be readable
 *   pSrcLenOffset  in: length of the source in bytes, at least 1; out: see the table
 *   pDst           the destination; it must not overlap the source
 *   pDstLen        in: capacity of the destination in bytes, at least 1; out: bytes written
 *   pFind          room for the records of the matches
 *   pNumFind       in: number of records there is room for; out: number of records filled. A match
 *                  takes one record for itself and one for each capturing group. With "g", matches
 *                  whose records do not fit are not replaced: the text from there on counts as
 *                  tail. Without it, groups whose records do not fit expand to nothing.
 *   pRegExpState   the pattern. The search works in the object's scratch memory, so one pattern
 *                  serves one call at a time.
 *   pReplaceState  the template
 *
 *   zelStatusNullPointer (-8)              one of the eight pointers is null
 *   zelStatusSizeError (-6)                *pSrcLenOffset, *pDstLen or *pNumFind is less than 1
 *   zelStatusContextMatchError (-189)      pRegExpState is not a compiled pattern
 *   zelStatusRegExpMatchLimitError (-188)  the step budget ran out during the search
 *
 * After an error the destination, *pSrcLenOffset and *pDstLen are as they were. Output that does
 * not fit is no error: the status is 0, and the two lengths tell how far the call came.
 *
 * How the two lengths come back. n is the length of the source and C the capacity; a match reaches
 * from offset S to offset E of the source, and the n - E bytes behind it are its tail; `out` counts
 * the bytes that the replacement produced up to the point named.
 *
 *   What happened                            *pSrcLenOffset       *pDstLen
 *   ---------------------------------------  -------------------  ---------------------------------
 *   no match: the source was copied as far   smaller of n and C   smaller of n and C
 *   as it fits
 *
 *   First match only (no option "g")
 *   everything was written                   n                    out, the tail included
 *   the tail did not fit                     E                    out up to E
 *   a piece of the template did not fit      S                    S; the prefix is there
 *   the prefix, the S bytes in front of the  0                    0; nothing is there
 *   match, did not fit
 *   the template is empty                    n                    S; the tail stands behind the
 *                                                                 prefix and is not counted
 *
 *   Every match (option "g")
 *   everything was written                   n - E, the length    out, the tail included
 *                                            of the last tail
 *   the tail of the last match did not fit   E of the last match  out up to E
 *   a piece of the template did not fit      S of that match      out up to S
 *   the gap between two matches, or in       E of the match in    out up to that E
 *   front of the first, did not fit          front of it, or 0
 *
 * "Fits" always leaves one byte over: a part that would fill the destination to its last byte does
 * not fit (only a source without a match may fill it). An expansion is written piece by piece, so
 * behind the counted bytes the destination may hold pieces of one that did not fit. Where a record
 * reaches behind the source, the source's end counts as its end.
 *
 * How much room the destination really needs. With "g" nothing is written behind the capacity.
 * Without it each piece of the expansion is held against the whole capacity, not against what the
 * prefix left of it, and the tail of an empty template is not checked at all. So up to C - 1 bytes
 * of prefix are followed by up to C - 1 bytes of expansion, or by the whole tail, and *pDstLen can
 * come back larger than C. A destination of
 *
 *     C + the larger of C and n
 *
 * bytes is enough for every pattern and template. And with a capacity above the length of prefix,
 * expansion and tail together, nothing is written behind it in any case.
 *
 * Whether everything was written. Without "g", what is left to write is always the source from
 * *pSrcLenOffset on. With "g" the two lengths do not always tell a complete result from a cut one:
 * an offset in the middle may be a length of a tail or the end of a match. A capacity that is large
 * enough in any case settles it, and the records say what is enough. This loop writes a whole text
 * with every match replaced, in as much memory as one round of records needs:
 *
 *     int at = 0;  // everything in front of text[at] is written
 *     while (at < length) {
 *         int used = length - at, made = capacity, found = room;
 *         status = zelsRegExpReplace_8u(text + at, &used, out, &made, find, &found, pattern, tmpl);
 *         if (status < 0) return status;
 *
 *         long long enough = (long long)(length - at) + 1;
 *         for (int i = 0; i < found; ++i) {
 *             enough += templateLength;
 *             if (find[i].lenMatch > 0) enough += (long long)dollars * find[i].lenMatch;
 *         }
 *         if (capacity < enough) {  // perhaps cut: once more, with room for all of it
 *             out = grow(out, capacity = enough);
 *         } else if (found + recordsPerMatch <= room) {  // there is no further match
 *             write(out, made);
 *             at = length;
 *         } else if (used == 0 || find[found - recordsPerMatch].lenMatch < 1) {
 *             // No call can resume at the very end, where an empty match may follow, and a search
 *             // that resumes behind an empty match finds it again: the same place once more.
 *             find = grow(find, room *= 2);
 *         } else {  // the records are used up: write all but the tail, resume where it begins
 *             write(out, made - used);
 *             at = length - used;
 *         }
 *     }
 *
 * where `dollars` is the number of "$" in the template and recordsPerMatch is 1 and the number of
 * capturing groups (`room` starts at no less). A search that resumes in the middle does not see the
 * text in front of it: for a pattern with ^, \A, \G, \b, \B or look-behind grow `find` in the last
 * case too and call again from the same place.
 */
ZEL_API ZelStatus zelsRegExpReplace_8u(const Zel8u* pSrc, int* pSrcLenOffset, Zel8u* pDst,
                                       int* pDstLen, ZelRegExpFind* pFind, int* pNumFind,
                                       const ZelRegExpState* pRegExpState,
                                       const ZelRegExpReplaceState* pReplaceState);

/* ---- Regular expressions: pattern sets ------------------------------------------------------- */

/*
 * A pattern set searches one subject with several patterns in one call, and in several threads when
 * it has more slots than there are threads to use. It has a fixed number of slots; each is empty or
 * refers to a compiled pattern under an identifier of the caller's, any number but 0.
 *
 *     ZelRegExpMultiState* set;
 *     ZelRegExpMultiFind result[2];
 *     ZelRegExpFind find[2][4];
 *
 *     zelsRegExpMultiInitAlloc(&set, 2);
 *     zelsRegExpMultiAdd(numberPattern, 1, set);
 *     zelsRegExpMultiAdd(namePattern, 2, set);
 *     for (int i = 0; i < 2; ++i) {
 *         result[i].pFind = find[i];
 *         result[i].numFind = 4;
 *     }
 *     zelsRegExpMultiFind_8u(text, length, result, set);
 *     for (int i = 0; i < 2; ++i) {
 *         if (result[i].status == 0 && result[i].numFind > 0) report(result[i].identifier);
 *     }
 *     zelsRegExpMultiFree(set);
 *
 * The set refers to its patterns and neither copies nor frees them: they must live as long as they
 * are in it. A set must not be changed while it is searched.
 */

/* A set in memory of the caller's, at any address. */
typedef struct ZelRegExpMultiState ZelRegExpMultiState;

/* The result of one slot. The caller fills numFind and pFind before a search. */
typedef struct ZelRegExpMultiFind {
    int searched;         /* 1 when the slot held a pattern and was searched */
    Zel32u identifier;    /* the slot's identifier */
    int numFind;          /* in: records that pFind can hold; out: records written */
    ZelStatus status;     /* status of the slot's search, as of zelsRegExpFind_8u */
    ZelRegExpFind* pFind; /* the caller's records for this slot */
} ZelRegExpMultiFind;

/*
 * Stores in *pSize how many bytes a set of `maxPatterns` slots needs: 12 * maxPatterns + 24.
 *
 *   maxPatterns  number of slots. Only 0 is refused. A negative number makes a set without slots,
 *                whose block needs 24 bytes whatever the formula says.
 *   pSize        receives the number of bytes; above 178,956,968 slots its low 32 bits
 *
 *   zelStatusNullPointer (-8)  pSize is null
 *   zelStatusSizeError (-6)    maxPatterns is 0
 */
ZEL_API ZelStatus zelsRegExpMultiGetSize(int maxPatterns, int* pSize);

/*
 * Makes a block an empty set.
 *
 *   pState       a block of the size that zelsRegExpMultiGetSize gave
 *   maxPatterns  number of slots, the same as there
 *
 *   zelStatusNullPointer (-8)  pState is null
 *   zelStatusSizeError (-6)    maxPatterns is 0
 */
ZEL_API ZelStatus zelsRegExpMultiInit(ZelRegExpMultiState* pState, int maxPatterns);

/*
 * Allocates an empty set.
 *
 *   ppState      receives the set, or null when the allocation failed
 *   maxPatterns  number of slots
 *
 *   zelStatusNullPointer (-8)  ppState is null, or the allocation failed, or the size of the set
 *                              does not fit a positive 32-bit number
 *   zelStatusSizeError (-6)    maxPatterns is 0
 */
ZEL_API ZelStatus zelsRegExpMultiInitAlloc(ZelRegExpMultiState** ppState, int maxPatterns);

/* Releases a set that zelsRegExpMultiInitAlloc allocated, not its patterns. Null is accepted.
 * Always zelStatusOk. */
ZEL_API ZelStatus zelsRegExpMultiFree(ZelRegExpMultiState* pState);

/*
 * Puts a pattern into the lowest empty slot. The identifier and the pattern may be in the set
 * already; nothing checks that.
 *
 *   pRegExpState  a compiled pattern
 *   regexpID      its identifier, not 0
 *   pState        the set
 *
 *   zelStatusNullPointer (-8)           a pointer is null
 *   zelStatusRegExpMultiIdError (-5)    regexpID is 0
 *   zelStatusRegExpMultiFullError (-9)  no slot is empty
 */
ZEL_API ZelStatus zelsRegExpMultiAdd(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                     ZelRegExpMultiState* pState);

/*
 * Empties the lowest slot with the given identifier. The pattern itself stays as it is.
 *
 *   zelStatusNullPointer (-8)           pState is null
 *   zelStatusRegExpMultiIdError (-5)    regexpID is 0
 *   zelStatusRegExpMultiNoIdError (-2)  no slot has the identifier
 */
ZEL_API ZelStatus zelsRegExpMultiDelete(Zel32u regexpID, ZelRegExpMultiState* pState);

/*
 * Puts another pattern into the lowest slot with the given identifier, which stays.
 *
 *   zelStatusNullPointer (-8)           a pointer is null
 *   zelStatusRegExpMultiIdError (-5)    regexpID is 0
 *   zelStatusRegExpMultiNoIdError (-2)  no slot has the identifier
 */
ZEL_API ZelStatus zelsRegExpMultiModify(const ZelRegExpState* pRegExpState, Zel32u regexpID,
                                        ZelRegExpMultiState* pState);

/*
 * Searches a subject with every pattern of the set.
 *
 *   pSrc     the subject; as for every search, one byte behind it must be readable
 *   srcLen   its length in bytes, at least 1
 *   pResult  one record for each slot of the set. Record i belongs to slot i: the search of that
 *            slot fills find[0..numFind) and numFind as zelsRegExpFind_8u does and stores its
 *            status, the slot's identifier and searched = 1. The records of empty slots are not
 *            touched, so clear `searched` beforehand if the set has any.
 *   pState   the set
 *
 *   zelStatusNullPointer (-8)  a pointer is null
 *   zelStatusSizeError (-6)    srcLen is less than 1
 *
 * A search that fails (a null pFind, no room for records, the step budget spent) is reported in its
 * slot's record only; the call returns zelStatusOk.
 *
 * Threads. Let T be ownGetNumThreads() of libzelcore, which is the OpenMP default: the number of
 * processors, or OMP_NUM_THREADS. A set of at most T slots, empty ones included, is searched slot
 * by slot on the calling thread, in the patterns' own scratch memory. A larger set is divided once:
 * each of N threads takes capacity / N consecutive slots and the last one the remainder too, so put
 * costly patterns far apart. Where OpenMP allows no further threads, as inside a parallel region of
 * the caller's, and where the subject is so short that waking threads would take longer than the
 * search, the calling thread does all of it. The results are the same in every case.
 *
 * A larger set is searched with 48,000 bytes of scratch memory on each thread's stack, so the same
 * pattern may stand in several slots, and in sets of other threads.
 */
ZEL_API ZelStatus zelsRegExpMultiFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpMultiFind* pResult,
                                         const ZelRegExpMultiState* pState);

#ifdef __cplusplus
}
#endif

#endif /* ZELCHMX_H */
