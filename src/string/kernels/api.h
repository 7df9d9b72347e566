// The wide loops that other parts of the library use directly, the matcher above all. Every
// function takes a valid pointer and a length that may be 0, reads nothing outside the range and
// keeps no memory of earlier calls. Forward searches answer the length when there is nothing to
// find, so that the answer is always the length of the part passed over; backward searches answer
// -1.
//
// A call costs one indirect jump; what is behind it is chosen when the library is loaded. Callers
// whose runs are mostly a few bytes long do well to test the first of them before they call.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "zelchmx.h"

namespace zel::kernels {

/// The first byte equal to c.
int findByte(const Zel8u* p, int len, Zel8u c);
/// The last byte equal to c.
int findByteRev(const Zel8u* p, int len, Zel8u c);

/// The first byte equal to one of two, or of three.
int findByte2(const Zel8u* p, int len, Zel8u a, Zel8u b);
int findByte3(const Zel8u* p, int len, Zel8u a, Zel8u b, Zel8u c);

/// The first byte that is, or is not, in a set of bytes: four words, where bit c & 63 of
/// set[c >> 6] says whether c is a member.
int findByteIn(const Zel8u* p, int len, const uint64_t* set);
int findByteNotIn(const Zel8u* p, int len, const uint64_t* set);

/// Where a needle of at least one byte stands first.
int findBytes(const Zel8u* p, int len, const Zel8u* needle, int needleLen);
/// Where it stands last when the letters A-Z and a-z are alike, in text and needle.
int findBytesIgnoreCaseRev(const Zel8u* p, int len, const Zel8u* needle, int needleLen);

/// Places in a text: all those below `scanned`. There may be none only when all of the text was
/// scanned.
struct Gathered {
    static constexpr int kGroup = 4;    // blocks of 64 positions that are searched together
    static constexpr int kBlocks = 64;  // at most
    int groups = 1;  // to search from the first place on, at most: for the caller to set
    int scanned;
    int begin;               // the first position that a bit stands for
    int blocks;              // how many blocks of 64 positions have bits
    uint64_t filled;         // a bit for each block that holds a place
    uint64_t bits[kBlocks];  // a bit for each position that is a place
};

/// Places of a needle of at least one byte, and perhaps others that have some of its bytes.
/// `Folded` takes the letters A-Z and a-z for alike, in text and needle.
void gatherBytes(const Zel8u* p, int len, const Zel8u* needle, int needleLen, Gathered* result);
void gatherBytesFolded(const Zel8u* p, int len, const Zel8u* needle, int needleLen,
                       Gathered* result);
/// Places of bytes of a set.
void gatherBytesIn(const Zel8u* p, int len, const uint64_t* set, Gathered* result);
/// Where p[i] is in one set and p[i + 1] in another.
void gatherPairsIn(const Zel8u* p, int len, const uint64_t* first, const uint64_t* second,
                   Gathered* result);
/// Where p[i] equals p[i + 1] and is in a set.
void gatherDoubled(const Zel8u* p, int len, const uint64_t* set, Gathered* result);

/// A text of a fixed length of which some bytes are known to be in sets.
struct Shape {
    static constexpr int kMostProbes = 40;
    static constexpr int kSets = 4;
    struct Probe {
        Zel8u offset;
        Zel8u set;
    };
    int length;
    int probeCount;  // at least 2; the first two are best those that reject most
    Probe probes[kMostProbes];
    int setCount;
    uint64_t sets[kSets][4];
};
/// Where a text of the shape stands.
void gatherShapes(const Zel8u* p, int len, const Shape* shape, Gathered* result);

/// What several literals can begin with: bit b of tables[i][c] says that literal b, or one of those
/// that share the bit, may have byte c at position i. `low` and `high` say the same of the halves
/// of the bytes.
struct PrefixTables {
    static constexpr int kMaxDepth = 4;
    static constexpr int kBits = 8;
    int depth;  // positions in use: 2 to 4
    int bitsUsed;
    Zel8u tables[kMaxDepth][256];
    Zel8u low[kMaxDepth][16];
    Zel8u high[kMaxDepth][16];

    void add(int position, Zel8u byte, Zel8u bits) {
        tables[position][byte] |= bits;
        low[position][byte & 0x0F] |= bits;
        high[position][byte >> 4] |= bits;
    }
    /// The number of the bit for one more literal. When there are more of them than bits, some
    /// share one.
    int bitForAny() { return bitsUsed++ % kBits; }
    /// Those that begin with the same byte have little else that could be mixed up.
    int bitFor(Zel8u first) {
        const unsigned sharing = tables[0][first];
        return sharing != 0 ? __builtin_ctz(sharing) : bitForAny();
    }
};
/// Where depth bytes stand that one of the literals can begin with.
void gatherPrefixes(const Zel8u* p, int len, const PrefixTables* prefix, Gathered* result);

struct Literal {
    const Zel8u* text;
    int length;  // at least 1
};
/// Literals to choose from; where several match, the first of them does.
struct LiteralSet {
    static constexpr int kMax = 32;
    int count;
    bool ignoreCase;  // takes the letters A-Z and a-z for alike
    Literal literals[kMax];
    // For more than one literal, all of them at least prefix.depth long: the first four bytes of
    // each as a number. A text may begin with it when the text's, with the bits of `ignored` set,
    // are the same.
    PrefixTables prefix;
    Zel32u heads[kMax];
    Zel32u ignored[kMax];
};
/// Writes the matches, from left to right and without overlaps, until there are `capacity` (at
/// least 1) of them; answers how many.
int collectLiterals(const Zel8u* p, int len, const LiteralSet* set, ZelRegExpFind* matches,
                    int capacity);

/// A literal, the run of bytes of a set that begins behind it, and behind that another literal or
/// the end of a line.
struct EnclosedRun {
    const Zel8u* open;
    int openLength;    // at least 1
    bool atLineStart;  // only there
    int min;           // 1 when the run's first byte has to be there, and one of `first`; or 0
    uint64_t first[4];
    uint64_t set[4];
    const Zel8u* close;
    int closeLength;  // may be 0
    bool toLineEnd;   // or to that of the text: then there is no other literal
    int nodes;        // what an attempt behind the opening literal costs
    int price;        // and each byte that it looks at
};
/// Writes the matches, from left to right and without overlaps, until there are `capacity` (at
/// least 1) of them; answers how many, or -1 when the attempts would cost more than the budget.
int collectEnclosedRuns(const Zel8u* p, int len, const EnclosedRun* run, ZelRegExpFind* matches,
                        int capacity, int64_t budget);

/// At least the sum of n * (n + 1) / 2 over the lengths n of the runs of a set's bytes, at most
/// twice as much.
int64_t boundRuns(const Zel8u* p, int len, const uint64_t* set);
/// Writes the runs of a set's bytes, in order, until there are `capacity` (at least 1) of them.
/// Answers how many; *resume is the end of the last.
int collectRunsOf(const Zel8u* p, int len, const uint64_t* set, ZelRegExpFind* runs, int capacity,
                  int* resume);

/// A set of characters of UTF-8 text.
struct CharacterSet {
    uint64_t bytes[4];  // the ASCII characters, and the bytes that others can begin with
    bool isTested;      // else the others are all in the set or none, as `elsewhere` says
    bool elsewhere;
    // For a tested set: of the 32 first bytes of two-byte sequences which second bytes, 0x80 to
    // 0xBF, go with those that are `known`.
    Zel32u known;
    uint64_t twoBytes[32];
};
/// A few characters in a row, each repeated as often as it can be.
struct CharacterPattern {
    static constexpr int kMaxParts = 3;
    static constexpr int kUnbounded = 0x3FFFFFFF;
    int count;
    int min[kMaxParts];
    int max[kMaxParts];
    CharacterSet sets[kMaxParts];
    /// Whether a character that the set does not tell is in it.
    bool (*accepts)(const void* context, int part, const Zel8u* text);
    const void* context;
};
/// Writes matches of the pattern, in order and without overlaps, until there are `capacity` of them
/// or the text, which begins with a character, is not sure to be well-formed; not all of a long
/// text is looked at. Answers how many. *resume is how far matches have been looked for.
int collectCharacters(const Zel8u* p, int len, const CharacterPattern* pattern,
                      ZelRegExpFind* matches, int capacity, int* resume);

/// Sets of ASCII characters, 16 bytes each: bit c >> 4 of byte c & 15 says whether c is a member.
/// Those at `own` have the numbers from 0 on. Of those at `shared`, whose numbers begin with
/// kFirstShared, only the ones in the bits of `which` are used.
struct AsciiSets {
    static constexpr int kFirstShared = 9;
    const Zel8u* own;
    int count;  // of one's own
    const Zel8u* shared;
    unsigned which;
};
/// Which bytes of a short text are in which sets: bit i & 63 of words[i >> 6][s] for byte i and
/// set s. The bit behind the last byte is zero.
struct TextMasks {
    static constexpr int kWords = 4;
    static constexpr int kMaxLength = 64 * kWords - 1;
    static constexpr int kMaxSets = 16;
    uint64_t words[kWords][kMaxSets];
};
/// Writes the masks of a text of up to kMaxLength bytes. False when they are not all ASCII.
bool maskAscii(const Zel8u* p, int len, const AsciiSets* sets, TextMasks* masks);

/// The work of ownsCopy_8u and ownsZero_8u of core/memory.h, which say what it is.
void copyBytes(const Zel8u* src, Zel8u* dst, ptrdiff_t n);
void zeroBytes(Zel8u* dst, ptrdiff_t n);

}  // namespace zel::kernels

/// The functions of this page, as a list to expand.
// clang-format off
#define ZEL_KERNELS(X)                                                                            \
    X(findByte) X(findByteRev) X(findByte2) X(findByte3) X(findByteIn) X(findByteNotIn)           \
    X(findBytes) X(findBytesIgnoreCaseRev) X(gatherBytes) X(gatherBytesFolded) X(gatherBytesIn)   \
    X(gatherShapes) X(gatherPairsIn) X(gatherDoubled) X(gatherPrefixes) X(boundRuns)              \
    X(collectRunsOf) X(collectLiterals) X(collectEnclosedRuns) X(collectCharacters) X(maskAscii)  \
    X(copyBytes) X(zeroBytes)
// clang-format on
