/*
 * zelchmx: string primitives and a backtracking regular-expression engine that live entirely in
 * memory their caller provides.
 *
 * This is the one public header, plain C99 and C++. It reads from top to bottom as the manual:
 * types and status values first, then memory, strings, and regular expressions.
 *
 * Rules that hold for every function:
 *   - Lengths, counts and indices are signed 32-bit and count elements, not bytes, unless an
 *     argument says "bytes". A string is a pointer and a length; length 0 is an empty string.
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

/* The values of a ZelStatus. */
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

/* Which library this is. */
typedef struct ZelLibraryVersion {
    int major;               /* first number of the version */
    int minor;               /* second number of the version */
    int buildNumber;         /* number of the build */
    int buildSerial;         /* a number of its own, not the second number of versionText */
    char cpuCode[4];         /* padded with zero bytes */
    const char* libraryName; /* the shared object's own file name */
    const char* versionText; /* version and build as one text */
    const char* buildDate;   /* month, day and year */
} ZelLibraryVersion;

/*
 * The library's version record: always the same pointer, never null. The record and its texts are
 * constants of the library.
 *
 *     printf("%s\n", zelchGetLibVersion()->versionText);
 */
ZEL_API const ZelLibraryVersion* zelchGetLibVersion(void);

/* ---- Memory and blocks ---------------------------------------------------------------------- */

/*
 * Allocation, and copying, moving and clearing of raw elements.
 *
 *     Zel8u* block = (Zel8u*)zelsMalloc_8u(16);
 *     zelsZero_8u(block, 16);
 *     zelsCopy_8u((const Zel8u*)"abcdef", block, 6);
 *     zelsMove_8u(block, block + 1, 6);
 *     zelsFree(block);
 *
 * leaves "aabcdef" in the block before it is freed. The library itself allocates nowhere else, and
 * it takes its memory from libzelcore, which can be replaced.
 */

/* Allocates `len` bytes, aligned for any type. Null when len is less than 1 or when memory is
 * exhausted. Release the block with zelsFree. */
ZEL_API void* zelsMalloc_8u(int len);

/* Releases a block from zelsMalloc_8u. Null is accepted and does nothing. */
ZEL_API void zelsFree(void* ptr);

/*
 * Copies elements one after the other, from the first to the last. A destination that begins below
 * its source gets an exact copy, however far the two overlap. In one that begins inside the source
 * the leading elements repeat: copying 9 bytes from p to p + 1 gives ten times *p. Use zelsMove_8u
 * and zelsMove_16s for ranges that overlap in any way.
 *
 *   pSrc  the source
 *   pDst  the destination
 *   len   number of elements, at least 1
 *
 *   zelStatusNullPointer (-8)  pSrc or pDst is null
 *   zelStatusSizeError (-6)    len is less than 1
 */
ZEL_API ZelStatus zelsCopy_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZEL_API ZelStatus zelsCopy_16s(const Zel16s* pSrc, Zel16s* pDst, int len);

/*
 * Copies elements between ranges that may overlap in any way: afterwards the destination holds what
 * the source held before.
 *
 *   pSrc  the source
 *   pDst  the destination
 *   len   number of elements, at least 1
 *
 *   zelStatusNullPointer (-8)  pSrc or pDst is null
 *   zelStatusSizeError (-6)    len is less than 1
 */
ZEL_API ZelStatus zelsMove_8u(const Zel8u* pSrc, Zel8u* pDst, int len);
ZEL_API ZelStatus zelsMove_16s(const Zel16s* pSrc, Zel16s* pDst, int len);

/*
 * Sets bytes to 0.
 *
 *   pDst  the first of them
 *   len   number of bytes, at least 1
 *
 *   zelStatusNullPointer (-8)  pDst is null
 *   zelStatusSizeError (-6)    len is less than 1
 */
ZEL_API ZelStatus zelsZero_8u(Zel8u* pDst, int len);

/* ---- Search ---------------------------------------------------------------------------------- */

/*
 * Where does a string, an element, or any element of a set stand in a source? Elements are compared
 * as unsigned numbers, with no folding of case and no normalisation.
 *
 *     int index;
 *     zelsFind_8u((const Zel8u*)"a cat, a hat", 12, (const Zel8u*)"at", 2, &index);     3
 *     zelsFindRev_8u((const Zel8u*)"a cat, a hat", 12, (const Zel8u*)"at", 2, &index);  10
 *     zelsFindC_8u((const Zel8u*)"a cat, a hat", 12, ',', &index);                      5
 *     zelsFindCAny_8u((const Zel8u*)"a cat, a hat", 12, (const Zel8u*)"hc", 2, &index); 2
 *     zelsFindC_Z_8u((const Zel8u*)"a cat, a hat", 'x', &index);                        -1
 *
 * All members answer in *pIndex: the index of the first element of the match, or -1 when there is
 * none. Finding nothing is no error. *pIndex is set to -1 before the search begins, so it must not
 * lie inside the strings; after an error it is as it was.
 *
 * No member reads outside the strings it is given. The members that take zero-terminated strings
 * read up to the terminator.
 */

/*
 * The first position at which the whole of a string occurs.
 *
 *   pSrc     the source
 *   len      its length
 *   pFind    the string to find. An empty one is found nowhere, not even in an empty source
 *   lenFind  its length
 *   pIndex   receives the index, or -1
 *
 *   zelStatusNullPointer (-8)    pSrc, pFind or pIndex is null
 *   zelStatusLengthError (-119)  len or lenFind is negative
 */
ZEL_API ZelStatus zelsFind_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind,
                              int* pIndex);
ZEL_API ZelStatus zelsFind_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                               int* pIndex);

/* The last such position; everything else as zelsFind_8u. Occurrences may overlap: "aa" is found in
 * "aaaa" at 2. */
ZEL_API ZelStatus zelsFindRev_8u(const Zel8u* pSrc, int len, const Zel8u* pFind, int lenFind,
                                 int* pIndex);
ZEL_API ZelStatus zelsFindRev_16u(const Zel16u* pSrc, int len, const Zel16u* pFind, int lenFind,
                                  int* pIndex);

/*
 * The first element that equals a given one.
 *
 *   pSrc     the source
 *   len      its length
 *   valFind  the element to find
 *   pIndex   receives the index, or -1
 *
 *   zelStatusNullPointer (-8)    pSrc or pIndex is null
 *   zelStatusLengthError (-119)  len is negative
 */
ZEL_API ZelStatus zelsFindC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex);

/* The last such element; everything else as zelsFindC_8u. */
ZEL_API ZelStatus zelsFindRevC_8u(const Zel8u* pSrc, int len, Zel8u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindRevC_16u(const Zel16u* pSrc, int len, Zel16u valFind, int* pIndex);

/*
 * The first element that equals any element of a set.
 *
 *   pSrc      the source
 *   len       its length
 *   pAnyOf    the set, in any order, with or without repetitions. An empty one matches nothing
 *   lenAnyOf  number of elements in it
 *   pIndex    receives the index, or -1
 *
 *   zelStatusNullPointer (-8)    pSrc, pAnyOf or pIndex is null
 *   zelStatusLengthError (-119)  len or lenAnyOf is negative
 */
ZEL_API ZelStatus zelsFindCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                                  int* pIndex);
ZEL_API ZelStatus zelsFindCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf, int lenAnyOf,
                                   int* pIndex);

/* The last such element; everything else as zelsFindCAny_8u. */
ZEL_API ZelStatus zelsFindRevCAny_8u(const Zel8u* pSrc, int len, const Zel8u* pAnyOf, int lenAnyOf,
                                     int* pIndex);
ZEL_API ZelStatus zelsFindRevCAny_16u(const Zel16u* pSrc, int len, const Zel16u* pAnyOf,
                                      int lenAnyOf, int* pIndex);

/*
 * As zelsFind_8u, on zero-terminated strings. The terminators belong to neither string.
 *
 *   pSrcZ   the source
 *   pFindZ  the string to find
 *   pIndex  receives the index, or -1
 *
 *   zelStatusNullPointer (-8)    a pointer is null
 *   zelStatusLengthError (-119)  a string has more than 2^31 - 1 elements
 */
ZEL_API ZelStatus zelsFind_Z_8u(const Zel8u* pSrcZ, const Zel8u* pFindZ, int* pIndex);
ZEL_API ZelStatus zelsFind_Z_16u(const Zel16u* pSrcZ, const Zel16u* pFindZ, int* pIndex);

/* As zelsFindC_8u, on a zero-terminated string. The terminator itself is not found. Statuses as of
 * zelsFind_Z_8u. */
ZEL_API ZelStatus zelsFindC_Z_8u(const Zel8u* pSrcZ, Zel8u valFind, int* pIndex);
ZEL_API ZelStatus zelsFindC_Z_16u(const Zel16u* pSrcZ, Zel16u valFind, int* pIndex);

/* ---- Comparison ------------------------------------------------------------------------------ */

/*
 * Comparison of two strings of the same length.
 *
 *     int result;
 *     zelsCompare_8u((const Zel8u*)"cat", (const Zel8u*)"cut", 3, &result);                  -20
 *     zelsCompareIgnoreCaseLatin_8u((const Zel8u*)"Cat", (const Zel8u*)"cAT", 3, &result);   0
 *     zelsEqual_8u((const Zel8u*)"cat", (const Zel8u*)"cut", 3, &result);                    0
 *
 * The comparing members give the difference of the first pair of elements that differ, first minus
 * second, so its sign orders the strings; 0 when none differs, as for empty strings. The two
 * strings may be the same memory or overlap. Nothing outside them is read, and after an error
 * *pResult is as it was.
 *
 *   pSrc1, pSrc2  the two strings
 *   len           the length of each
 *   pResult       receives the result
 *
 *   zelStatusNullPointer (-8)    pSrc1, pSrc2 or pResult is null
 *   zelStatusLengthError (-119)  len is negative
 */

/* Exact comparison. The result lies in -255..255 for bytes, in -65535..65535 for code units. */
ZEL_API ZelStatus zelsCompare_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult);
ZEL_API ZelStatus zelsCompare_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult);

/* The letters A to Z count as a to z, and the result is the difference of what they count as. No
 * other element is folded: 0xC9 and 0xE9 differ. */
ZEL_API ZelStatus zelsCompareIgnoreCaseLatin_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len,
                                                int* pResult);
ZEL_API ZelStatus zelsCompareIgnoreCaseLatin_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                                 int* pResult);

/* Every code unit counts as what zelsLowercase_16u makes of it, and the result is the difference of
 * what the two count as. */
ZEL_API ZelStatus zelsCompareIgnoreCase_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len,
                                            int* pResult);

/* 1 when all elements are equal, as for empty strings; else 0. */
ZEL_API ZelStatus zelsEqual_8u(const Zel8u* pSrc1, const Zel8u* pSrc2, int len, int* pResult);
ZEL_API ZelStatus zelsEqual_16u(const Zel16u* pSrc1, const Zel16u* pSrc2, int len, int* pResult);

/* ---- Case conversion ------------------------------------------------------------------------- */

/*
 * Upper and lower case. Every element becomes exactly one element, so a string keeps its length.
 *
 *     Zel8u text[] = "Caf\xE9 No. 7";
 *     zelsUppercaseLatin_8u_I(text, 10);                          "CAF\xE9 NO. 7"
 *
 *     Zel16u name[] = {0x0395, 0x03BB, 0x03BB, 0x03AC, 0x03C2};
 *     zelsUppercase_16u_I(name, 5);                               0395 039B 039B 0386 03C2
 *
 * The Latin members change the 26 letters of ASCII and nothing else. The others, for 16-bit
 * strings, follow the one-to-one case pairs of Unicode 2.0 whose two code units are at most 512
 * apart. So sharp s and final sigma stay as they are, a titlecase digraph such as U+01C5 goes to
 * either side, and letters that are younger, or that lie outside the first 65536 code points, do
 * not change; neither do surrogates.
 *
 *   pSrc     the source
 *   pDst     the destination, of the same length: every element of it is written. It may be pSrc
 *            itself, but must not overlap it in another way
 *   pSrcDst  of the members in place (_I): the string to convert where it lies
 *   len      the length
 *
 *   zelStatusNullPointer (-8)    pSrc, pDst or pSrcDst is null
 *   zelStatusLengthError (-119)  len is negative
 */
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

/*
 * Insertion, removal, replacement, joining and splitting. The caller provides every destination
 * with enough room; nothing is allocated, and no destination is terminated with a zero.
 *
 *     Zel8u text[32] = "one three";
 *     int len = 9;
 *     zelsInsert_8u_I((const Zel8u*)"two ", 4, text, &len, 4);    "one two three", len 13
 *     zelsRemove_8u_I(text, &len, 0, 4);                          "two three", len 9
 *     zelsReplaceC_8u(text, text, len, 't', 'T');                 "Two Three"
 *
 *     Zel8u a[8], b[8];
 *     Zel8u* const slots[] = {a, b};
 *     int lens[] = {8, 8}, count = 2;
 *     zelsSplitC_8u_D2L(text, len, ' ', slots, lens, &count);     a "Two", b "Three", lens {3, 5}
 *
 *     const Zel8u* const pieces[] = {a, b};
 *     zelsConcatC_8u_D2L(pieces, lens, count, '/', text);         "Two/Three"
 */

/*
 * Writes a string with another one inserted: pSrc[0..startIndex), the piece, pSrc[startIndex..len).
 *
 *   pSrc        the string
 *   len         its length
 *   pInsert     the piece. It must not overlap the destination
 *   lenInsert   its length
 *   pDst        the destination, room for len + lenInsert elements. It may be pSrc itself, but must
 *               not overlap it in another way
 *   startIndex  where the piece goes: 0 in front, len at the end
 *
 *   zelStatusNullPointer (-8)    a pointer is null
 *   zelStatusLengthError (-119)  len, lenInsert or startIndex is negative, or startIndex is greater
 *                                than len
 *
 * When lenInsert is 0, nothing at all is written: the destination does not receive the string.
 */
ZEL_API ZelStatus zelsInsert_8u(const Zel8u* pSrc, int len, const Zel8u* pInsert, int lenInsert,
                                Zel8u* pDst, int startIndex);
ZEL_API ZelStatus zelsInsert_16u(const Zel16u* pSrc, int len, const Zel16u* pInsert, int lenInsert,
                                 Zel16u* pDst, int startIndex);

/*
 * The same in place.
 *
 *   pInsert     the piece. It must not overlap the buffer
 *   lenInsert   its length
 *   pSrcDst     the buffer that holds the string, room for *pSrcDstLen + lenInsert elements
 *   pSrcDstLen  in: length of the string; out: its new length. The sum must fit an int
 *   startIndex  where the piece goes
 *
 *   zelStatusNullPointer (-8)    a pointer is null
 *   zelStatusLengthError (-119)  lenInsert, *pSrcDstLen or startIndex is negative, or startIndex is
 *                                greater than *pSrcDstLen
 */
ZEL_API ZelStatus zelsInsert_8u_I(const Zel8u* pInsert, int lenInsert, Zel8u* pSrcDst,
                                  int* pSrcDstLen, int startIndex);
ZEL_API ZelStatus zelsInsert_16u_I(const Zel16u* pInsert, int lenInsert, Zel16u* pSrcDst,
                                   int* pSrcDstLen, int startIndex);

/*
 * Writes a string without the range [startIndex..startIndex + lenRemove).
 *
 *   pSrc        the string
 *   len         its length
 *   pDst        the destination, room for len - lenRemove elements. It may be pSrc itself, but must
 *               not overlap it in another way
 *   startIndex  where the range begins
 *   lenRemove   its length
 *
 *   zelStatusNullPointer (-8)    pSrc or pDst is null
 *   zelStatusLengthError (-119)  startIndex or lenRemove is negative, or startIndex + lenRemove is
 *                                greater than len
 */
ZEL_API ZelStatus zelsRemove_8u(const Zel8u* pSrc, int len, Zel8u* pDst, int startIndex,
                                int lenRemove);
ZEL_API ZelStatus zelsRemove_16u(const Zel16u* pSrc, int len, Zel16u* pDst, int startIndex,
                                 int lenRemove);

/*
 * The same in place. What lies behind the new end stays as it was.
 *
 *   pSrcDst     the buffer that holds the string
 *   pSrcDstLen  in: length of the string; out: its new length
 *   startIndex  where the range begins
 *   lenRemove   its length
 *
 *   zelStatusNullPointer (-8)    pSrcDst or pSrcDstLen is null
 *   zelStatusLengthError (-119)  *pSrcDstLen, startIndex or lenRemove is negative, or startIndex +
 *                                lenRemove is greater than *pSrcDstLen
 */
ZEL_API ZelStatus zelsRemove_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove);
ZEL_API ZelStatus zelsRemove_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, int startIndex, int lenRemove);

/*
 * Writes a string with every valOld replaced by valNew.
 *
 *   pSrc    the string
 *   pDst    the destination, of the same length: every element of it is written. It may be pSrc
 *           itself, but must not overlap it in another way
 *   len     the length
 *   valOld  the element to replace
 *   valNew  what replaces it
 *
 *   zelStatusNullPointer (-8)    pSrc or pDst is null
 *   zelStatusLengthError (-119)  len is negative
 */
ZEL_API ZelStatus zelsReplaceC_8u(const Zel8u* pSrc, Zel8u* pDst, int len, Zel8u valOld,
                                  Zel8u valNew);
ZEL_API ZelStatus zelsReplaceC_16u(const Zel16u* pSrc, Zel16u* pDst, int len, Zel16u valOld,
                                   Zel16u valNew);

/*
 * Writes one string behind another.
 *
 *   pSrc1, len1  the first string and its length
 *   pSrc2, len2  the second string and its length
 *   pDst         the destination, room for len1 + len2 elements. It must not overlap the strings
 *
 *   zelStatusNullPointer (-8)    a pointer is null
 *   zelStatusLengthError (-119)  len1 or len2 is negative
 */
ZEL_API ZelStatus zelsConcat_8u(const Zel8u* pSrc1, int len1, const Zel8u* pSrc2, int len2,
                                Zel8u* pDst);
ZEL_API ZelStatus zelsConcat_16u(const Zel16u* pSrc1, int len1, const Zel16u* pSrc2, int len2,
                                 Zel16u* pDst);

/*
 * Writes the strings of a list one behind the other.
 *
 *   pSrcList     pointers to the strings
 *   pSrcLenList  their lengths
 *   numSrc       number of strings, at least 1
 *   pDst         the destination, room for the sum of the lengths. It must not overlap the strings
 *
 *   zelStatusNullPointer (-8)    pSrcList, pSrcLenList or pDst is null, or a pointer in the list is
 *   zelStatusLengthError (-119)  a length in the list is negative
 *   zelStatusSizeError (-6)      numSrc is less than 1
 *
 * An entry of the list is checked when its turn comes: after an error in one of them the strings in
 * front of it have been written.
 */
ZEL_API ZelStatus zelsConcat_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList,
                                    int numSrc, Zel8u* pDst);
ZEL_API ZelStatus zelsConcat_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList,
                                     int numSrc, Zel16u* pDst);

/*
 * The same with a delimiter between every two strings, empty ones included, so that numSrc - 1 of
 * them are written in all. The delimiter in front of a faulty entry is not.
 *
 *   valDelim  the delimiter
 *   pDst      the destination, room for the sum of the lengths and numSrc - 1 delimiters
 */
ZEL_API ZelStatus zelsConcatC_8u_D2L(const Zel8u* const* pSrcList, const int* pSrcLenList,
                                     int numSrc, Zel8u valDelim, Zel8u* pDst);
ZEL_API ZelStatus zelsConcatC_16u_D2L(const Zel16u* const* pSrcList, const int* pSrcLenList,
                                      int numSrc, Zel16u valDelim, Zel16u* pDst);

/*
 * Splits a string at every delimiter and copies the tokens to slots, in order.
 *
 *   pSrc         the string
 *   len          its length
 *   valDelim     the delimiter; it is not copied
 *   pDstList     pointers to the slots. They must not overlap the string or each other
 *   pDstLenList  in: capacity of each slot; out: length of the token in it
 *   pNumDst      in: number of slots, at least 1; out: number of tokens
 *
 *   zelStatusNullPointer (-8)             pSrc, pDstList, pDstLenList or pNumDst is null, or the
 *                                         pointer of a slot that is needed is
 *   zelStatusLengthError (-119)           len is negative, or the capacity of a slot that is needed
 *   zelStatusSizeError (-6)               *pNumDst is less than 1
 *   zelStatusSplitIncompleteWarning (26)  all slots are filled and there is text left
 *   zelStatusTruncatedWarning (27)        a token is longer than its slot. The slot is filled with
 *                                         its beginning. When both warnings apply, it is 26
 *
 * A delimiter at the beginning, or two in a row, make an empty token; one at the end makes none,
 * and an empty string has no tokens. Slots behind the last token are not looked at, and their
 * capacities stay. A slot is checked when its turn comes: after an error in one of them those in
 * front of it have been filled, and *pNumDst is as it was.
 */
ZEL_API ZelStatus zelsSplitC_8u_D2L(const Zel8u* pSrc, int len, Zel8u valDelim,
                                    Zel8u* const* pDstList, int* pDstLenList, int* pNumDst);
ZEL_API ZelStatus zelsSplitC_16u_D2L(const Zel16u* pSrc, int len, Zel16u valDelim,
                                     Zel16u* const* pDstList, int* pDstLenList, int* pNumDst);

/* ---- Trimming -------------------------------------------------------------------------------- */

/*
 * Cuts a given element, or all elements of a set, off the ends of a string.
 *
 *     Zel8u out[16];
 *     int len;
 *     zelsTrimC_8u((const Zel8u*)"..one.two..", 11, '.', out, &len);                 "one.two", 7
 *     zelsTrimStartCAny_8u((const Zel8u*)" \t x ", 5, (const Zel8u*)" \t", 2, out, &len);  "x ", 2
 *
 * The part that is kept goes to the start of the destination and its length to *pDstLen. When
 * nothing is kept, the length is 0 and the destination is not touched; nor is it ever touched
 * behind the kept part.
 *
 *   pSrc     the string
 *   len      its length
 *   pDst     the destination, room for what is kept: len elements always suffice. It may be pSrc
 *            itself, but must not overlap it in another way
 *   pDstLen  receives the length of what is kept
 */

/*
 * Cuts one element off both ends.
 *
 *   valTrim  the element
 *
 *   zelStatusNullPointer (-8)    pSrc, pDst or pDstLen is null
 *   zelStatusLengthError (-119)  len is negative
 */
ZEL_API ZelStatus zelsTrimC_8u(const Zel8u* pSrc, int len, Zel8u valTrim, Zel8u* pDst,
                               int* pDstLen);
ZEL_API ZelStatus zelsTrimC_16u(const Zel16u* pSrc, int len, Zel16u valTrim, Zel16u* pDst,
                                int* pDstLen);

/*
 * The same in place. What lies behind the new end stays as it was.
 *
 *   pSrcDst     the buffer that holds the string
 *   pSrcDstLen  in: length of the string; out: its new length
 *   valTrim     the element
 *
 *   zelStatusNullPointer (-8)    pSrcDst or pSrcDstLen is null
 *   zelStatusLengthError (-119)  *pSrcDstLen is negative
 */
ZEL_API ZelStatus zelsTrimC_8u_I(Zel8u* pSrcDst, int* pSrcDstLen, Zel8u valTrim);
ZEL_API ZelStatus zelsTrimC_16u_I(Zel16u* pSrcDst, int* pSrcDstLen, Zel16u valTrim);

/*
 * Cuts every element of a set off both ends, off the start, or off the end.
 *
 *   pTrim    the set, in any order, with or without repetitions. An empty one cuts nothing: the
 *            whole string is copied. It must not overlap the destination
 *   lenTrim  number of elements in it
 *
 *   zelStatusNullPointer (-8)    pSrc, pTrim, pDst or pDstLen is null
 *   zelStatusLengthError (-119)  len or lenTrim is negative
 */
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

/*
 * Three fixed 32-bit hashes for tables keyed by strings. They are no defence against an adversary
 * who chooses the keys. Their values never change, in any version, so they may be stored.
 *
 *     Zel32u h;
 *     zelsHashSJ2_8u32u((const Zel8u*)"ab", 2, &h);     97 * 31 + 98 = 3105
 *
 *   pSrc      the string
 *   len       its length
 *   pHashVal  receives the hash; after an error it is as it was
 *
 *   zelStatusNullPointer (-8)    pSrc or pHashVal is null
 *   zelStatusLengthError (-119)  len is negative
 *
 * All arithmetic is modulo 2^32, elements enter as unsigned numbers, and strings of the same
 * element values have the same hash in both widths.
 */

/* h = (h << 1) ^ c for each element c, from 0. Elements more than 31 places in front of the end
 * have no effect. */
ZEL_API ZelStatus zelsHash_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHash_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);

/* h = h * 31 + c for each element c, from 0. */
ZEL_API ZelStatus zelsHashSJ2_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHashSJ2_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);

/* h = (h * 33) ^ c for each element c, from 5381, up to the first element that is 0 if there is
 * one; the other two hash a zero like any other element. */
ZEL_API ZelStatus zelsHashMSCS_8u32u(const Zel8u* pSrc, int len, Zel32u* pHashVal);
ZEL_API ZelStatus zelsHashMSCS_16u32u(const Zel16u* pSrc, int len, Zel32u* pHashVal);

/* ---- UTF conversion -------------------------------------------------------------------------- */

/*
 * Conversion between UTF-8 and UTF-16. Malformed text is no error: it passes through by fixed
 * rules. Both functions convert as much as fits and report how far they came, so that a long text
 * can be converted piece by piece.
 *
 *     const Zel8u text[] = "caf\xC3\xA9";
 *     Zel16u units[5];
 *     int srcLen = 5, dstLen = 5;
 *     zelsConvertUTF_8u16u(text, &srcLen, units, &dstLen, 0);     srcLen 5, dstLen 4
 *
 * The destination must not overlap the source. What lies behind the reported count stays as it was.
 * Lengths are not checked for sign.
 *
 *   zelStatusNullPointer (-8)  a pointer is null; there is no other status but 0
 */

/*
 * UTF-8 to UTF-16.
 *
 *   pSrc       the source. It ends with a whole character, or a byte that continues no sequence
 *              (outside 0x80..0xBF) stands behind it: a sequence is read as far as it goes
 *   pSrcLen    in: bytes of source; out: bytes consumed
 *   pDst       the destination
 *   pDstLen    in: room in code units; out: code units written. Give at least as much room as the
 *              source has bytes: no character yields more units than it has bytes
 *   swapBytes  0 for units in the machine's own byte order. Otherwise a single unit is written as
 *              its low byte shifted up: below U+0100 that is a byte swap, from there on the high
 *              byte is lost. A surrogate pair is written low unit first, not byte-swapped
 *
 * Sequences of up to six bytes and values up to 0x7FFFFFFF are taken, encoded surrogates too; of a
 * value above 0x10FFFF the surrogate pair keeps the low 20 bits of its offset from 0x10000. A byte
 * that begins no sequence in its shortest form becomes the unit of the same value, 0x80 to 0xFF.
 *
 * A smaller room works as long as it is used up exactly. The conversion ends when the room, or the
 * source, comes to exactly nothing: a pair that is written into the last unit of room passes over
 * that end, and everything up to the end of the source is written behind it; a sequence that goes
 * on behind the end of the source passes over that end, and the conversion goes on to the end of
 * the room.
 */
ZEL_API ZelStatus zelsConvertUTF_8u16u(const Zel8u* pSrc, int* pSrcLen, Zel16u* pDst, int* pDstLen,
                                       int swapBytes);

/*
 * UTF-16 to UTF-8. The conversion ends in front of the first character that does not fit; call
 * again for the rest. Three bytes of room for each code unit always suffice.
 *
 *   pSrc       the source
 *   pSrcLen    in: code units of source; out: code units consumed
 *   pDst       the destination
 *   pDstLen    in: room in bytes; out: bytes written
 *   swapBytes  0 for units in the machine's own byte order; otherwise the bytes of each unit are
 *              swapped first
 *
 * A surrogate without its partner becomes a sequence of three bytes. A high surrogate at the end of
 * the source has no partner: when a text comes in pieces, keep it back for the next one.
 */
ZEL_API ZelStatus zelsConvertUTF_16u8u(const Zel16u* pSrc, int* pSrcLen, Zel8u* pDst, int* pDstLen,
                                       int swapBytes);

/* ---- Regular expressions: pattern objects ---------------------------------------------------- */

/*
 * A pattern is compiled once into an object and then searched for any number of times.
 *
 *     const char* pattern = "(\\w+)=(\\d+)";
 *     ZelRegExpState* state;
 *     int at;
 *     ZelStatus status = zelsRegExpInitAlloc(pattern, "i", &state, &at);
 *     if (status != zelStatusOk) {
 *         if (status != zelStatusNullPointer) fprintf(stderr, "%s\n%*s^\n", pattern, at, "");
 *         return;
 *     }
 *     ... zelsRegExpFind_8u(text, length, state, ...) ...
 *     zelsRegExpFree(state);
 *
 * The same without any allocation by the library:
 *
 *     int size;
 *     zelsRegExpGetSize(pattern, &size);
 *     ... state = a block of `size` bytes ...
 *     zelsRegExpInit(pattern, "i", state, &at);
 *
 * The object holds all it needs: the pattern may go away after compilation. It also holds the
 * scratch memory of a search, 48000 bytes in every object, so that searching allocates nothing;
 * therefore one object serves one search at a time. Different objects are independent of each
 * other.
 *
 * What a pattern is made of
 *
 *   abc           literal bytes; everything without a meaning of its own is literal
 *   .             any character but newline; with option s, any character
 *   a|b           one or the other, tried from left to right
 *   ^ $           start of the text, and its end or the place in front of a final newline; with
 *                 option m, start and end of every line
 *   [a-z_]        a character of the class; [^a-z_] one that is not in it. A "]" directly behind
 *                 the opening is a member, and so is a "-" that cannot join two characters
 *   [[:digit:]]   inside a class: alnum alpha ascii blank cntrl digit graph lower print punct space
 *                 upper word xdigit. [:^digit:] inverts. "graph", "print" and "punct" are wider
 *                 than those of the C library: they go up to 0xFF, and "punct" has the space
 *   (a)           capturing group, numbered by its "(" from 1
 *   (?:a) (?>a)   group that captures nothing; the same, never giving back once it has matched
 *   (?=a) (?!a)   what follows matches a, or does not
 *   (?<=a) (?<!a) what precedes matches a, or does not. All branches of a must have the same
 *                 length; a quantifier counts with its minimum, so that (?<=x{2,5}) looks back 2
 *                 characters
 *   (?(1)a|b)     a when group 1 has taken part in the match, else b. The number's digits count in
 *                 base 11: (?(12)a) asks for group 13. Any of the four look-arounds may stand in
 *                 place of the number: (?(?=a)b|c)
 *   (?i-m) (?i:a) options i m s x switched on and, behind a "-", off: from here to the end of the
 *                 enclosing group, or for a
 *   (?#text)      comment
 *   a* a+ a? a{n} a{n,} a{n,m} a{,m}
 *                 repetition, as often as possible; a "?" behind it makes it as seldom as possible.
 *                 A bound is 65535 at most. It applies to the last byte of a literal text, also of
 *                 one in UTF-8: write (?:...) around a character to repeat it
 *   \1 to \9      what the group matched. Two or three digits are a group's number in decimal when
 *                 there is such a group, else one byte in octal
 *   \d \s \w      digit, white space, word byte (ASCII only); \D \S \W their opposites
 *   \A \z \Z \G   start of the text, end of the text, end or in front of a final newline, start
 *   \b \B         between a word byte and another byte; anywhere else
 *   \C \X         any single byte; a character with the combining marks that follow it
 *   \p{..} \P{..} a Unicode property, or not that property: a general category (L, Lu, L& and so
 *                 on; one letter needs no braces), Any, a script as in \p{Greek}, or a block as in
 *                 \p{InBasicLatin}, whose name may be cut short. \p{^..} is \P{..}. Unicode 5.1
 *   \a \e \f \n \r \t \v \0oo \xhh \x{h..} \cX
 *                 one character by name, in octal, in hexadecimal, or a control character
 *   \Q..\E        everything in between is literal
 *
 * A backslash takes the meaning from every other byte.
 *
 * A pattern that ends in a literal outside of groups is searched only up to the last place where
 * that literal stands in the text. By design this holds behind a bar too, once a repeated letter
 * stands between bar and literal: a|bc*d finds nothing in a text without a d.
 *
 * Options: g finds all matches instead of the first, i ignores case, m and s as said above, x skips
 * white space (blank, tab, newline, form feed, carriage return) and comments from "#" to the end of
 * the line, outside of classes.
 */

/* A compiled pattern, in memory aligned for a pointer. */
typedef struct ZelRegExpState ZelRegExpState;

/*
 * Stores in *pSize how many bytes the object of a pattern needs: 24 for each byte of the pattern,
 * and 48056 more. The pattern is only measured; it need not be a correct one.
 *
 *   pSrc   the pattern, zero-terminated
 *   pSize  receives the number of bytes; of a pattern longer than 89476482 bytes, whose object does
 *          not fit the type, the low 32 bits, which are of no use
 *
 *   zelStatusNullPointer (-8)  pSrc or pSize is null
 */
ZEL_API ZelStatus zelsRegExpGetSize(const char* pSrc, int* pSize);

/*
 * Compiles a pattern into a block of the caller's. The new object takes texts in UTF-8 and has a
 * match limit of 10000. A block may be used again for another pattern that it has room for.
 *
 *   pSrc        the pattern, zero-terminated
 *   pOptions    any of the letters g i m s x, in any order, zero-terminated; null for none
 *   pState      a block of at least the size that zelsRegExpGetSize gives, aligned for a pointer.
 *               It need not be cleared. After a failure it must not be searched
 *   pErrOffset  receives the offset in bytes of the fault in the pattern, from 0 to the pattern's
 *               length; 0 for a faulty option. Not written on success, nor with -8
 *
 *   zelStatusNullPointer (-8)              pSrc, pState or pErrOffset is null
 *   zelStatusRegExpEscapeError (-183)      a backslash at the end; \x{ without its brace; an
 *                                          unknown or unfinished property
 *   zelStatusRegExpCharClassError (-184)   an unfinished class; a range whose ends are reversed; an
 *                                          unknown [:name:]; bytes that are no UTF-8 in a class
 *   zelStatusRegExpBackRefError (-185)     \1 to \9 without such a group; a condition on group 0
 *   zelStatusRegExpGroupingError (-186)    parentheses that do not match, or more than 999 of them;
 *                                          an unknown (? construct; a bad or repeated condition; a
 *                                          third branch; a look-behind without a fixed length; a
 *                                          class that is empty or has ^ as its only member
 *   zelStatusRegExpQuantifierError (-187)  a quantifier with nothing in front that it could repeat,
 *                                          directly behind another one, or with bad bounds
 *   zelStatusRegExpOptionsError (-190)     a byte of pOptions is no option
 */
ZEL_API ZelStatus zelsRegExpInit(const char* pSrc, const char* pOptions, ZelRegExpState* pState,
                                 int* pErrOffset);

/*
 * Allocates an object with zelsMalloc_8u and compiles a pattern into it. Release it with
 * zelsRegExpFree.
 *
 *   pSrc        the pattern, zero-terminated
 *   pOptions    as for zelsRegExpInit
 *   ppState     receives the object; null when the allocation or the compilation fails
 *   pErrOffset  as for zelsRegExpInit
 *
 *   zelStatusNullPointer (-8)  pSrc, ppState or pErrOffset is null, or the object cannot be
 *                              allocated, be it for want of memory or because its size does not fit
 *                              32 bits. With a null pSrc or ppState nothing is written
 *   otherwise                  as for zelsRegExpInit
 */
ZEL_API ZelStatus zelsRegExpInitAlloc(const char* pSrc, const char* pOptions,
                                      ZelRegExpState** ppState, int* pErrOffset);

/* Releases an object from zelsRegExpInitAlloc, and no other. Null is accepted and does nothing.
 * Always zelStatusOk. */
ZEL_API ZelStatus zelsRegExpFree(ZelRegExpState* pState);

/*
 * Says how an object is to read texts.
 *
 *   fmt     1 for UTF-8 (as after compilation): characters have one to six bytes, and a byte that
 *           is no part of one is a character by itself. 0 for single bytes. Patterns are compiled
 *           alike for both; the members of a class are always read as UTF-8
 *   pState  the object
 *
 *   zelStatusNullPointer (-8)  pState is null
 *   zelStatusBadArgError (-7)  fmt is neither 0 nor 1; nothing is stored
 */
ZEL_API ZelStatus zelsRegExpSetFormat(int fmt, ZelRegExpState* pState);

/*
 * Limits how many steps one search call may take before it gives up with
 * zelStatusRegExpMatchLimitError (-188). A step is one node of the compiled pattern, executed once.
 *
 *   limit   the number of steps; 10000 after compilation, 0 allows almost nothing
 *   pState  the object
 *
 *   zelStatusNullPointer (-8)    pState is null
 *   zelStatusLengthError (-119)  limit is negative; nothing is stored
 */
ZEL_API ZelStatus zelsRegExpSetMatchLimit(int limit, ZelRegExpState* pState);

/* ---- Regular expressions: search ------------------------------------------------------------- */

/*
 * A search takes a subject, a compiled pattern and an array of records, and tells where the pattern
 * matches: the leftmost match, the first one in the order in which alternatives and repetitions are
 * tried.
 *
 *     const char* text = "width=640 height=480";
 *     ZelRegExpFind found[3];
 *     int count = 3;
 *
 *     zelsRegExpInitAlloc("(\\w+)=(\\d+)", "", &pattern, &at);
 *     zelsRegExpFind_8u((const Zel8u*)text, 20, pattern, found, &count);
 *
 * leaves 3 in `count` and in `found` the records of "width=640", "width" and "640". With the option
 * "g" and room for 4 records, `found` gets "width", "640", "height" and "480".
 */

/* One result: the whole match or one capture group. */
typedef struct ZelRegExpFind {
    Zel8u* pMatch; /* first byte in the caller's text; null for a group that took no part */
    int lenMatch;  /* length in bytes; -1 for a group that took no part */
} ZelRegExpFind;

/*
 * Searches a subject for the first match or, when the pattern was compiled with the option "g", for
 * successive matches.
 *
 *   pSrc          the subject. One byte behind its end must be readable: \b, \B and a lazy
 *                 repetition in front of a literal look at it. It decides no more than that
 *   srcLen        its length in bytes
 *   pRegExpState  the pattern. The search works in the object's scratch memory, so one object
 *                 serves one search at a time; the program in it is not changed
 *   pResult       room for records. They point into the subject
 *   pNumFind      in: number of records that pResult has room for; out: number of records
 *                 written, 0 when there is no match. It must not be null; that is not checked
 *
 *   zelStatusNullPointer (-8)              pSrc, pRegExpState or pResult is null
 *   zelStatusLengthError (-119)            srcLen is negative
 *   zelStatusSizeError (-6)                *pNumFind is less than 1
 *   zelStatusContextMatchError (-189)      pRegExpState is not a compiled pattern
 *   zelStatusRegExpMatchLimitError (-188)  the step budget ran out, or the machine stack would have
 *
 * Finding nothing is no error. With -8, -119, -6 and -189 nothing is written.
 *
 * First match. The records are the whole match and then the capturing groups in the order of their
 * opening parentheses, as many of them as there is room for; room for one record is enough to learn
 * where the match is. After -188 no record is written, and *pNumFind is the smaller of the room and
 * the number of groups plus one.
 *
 * All matches (option "g"). A pattern without capturing groups gives one record for each match. A
 * pattern with groups gives the records of its groups alone, match after match, without the whole
 * match; parentheses around the whole pattern add it. The search ends when there is no room left
 * for all the records of one more match. Each match begins at the end of the one before; after an
 * empty match, one that is not empty is looked for in the same place first. After -188 the records
 * written so far, *pNumFind of them, are those of complete matches.
 *
 * The length of a whole match counts every byte that was consumed on the way, including what a lazy
 * repetition of a letter, a shorthand or a wide character took before it failed and another way was
 * found. Where a pattern allows that, a whole match's record may reach further than the match, even
 * behind the subject; the records of groups are always right.
 */
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
 *             and they count in base 11: $9 is group 9, $10 is group 11, $12 is group 13;
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
 * each of N threads takes capacity / N consecutive slots and the last one the remainder too. So
 * give a set a multiple of T slots, and put costly patterns far apart. Where OpenMP allows no
 * further threads, as inside a parallel region of the caller's, and where the subject is so short
 * that waking threads would take longer than the search, the calling thread does all of it. The
 * results are the same in every case.
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
