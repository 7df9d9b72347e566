// Unicode data and its lookups: constant tables made by tools/ from the Unicode 5.1 character
// database. The compiler finds blocks and scripts by name here, the matcher asks for categories and
// case mappings.
#pragma once

#include <stddef.h>

#include "zelchmx.h"

namespace zel {

/// One listed code point. A mapping of 0 means none.
struct UniEntry {
    Zel32u codePoint;
    Zel32u category;
    Zel32u upper;
    Zel32u lower;
};

/// A large uniform range, whose code points are not listed one by one.
struct UniRange {
    Zel32u first;
    Zel32u last;
    Zel32u category;
};

/// A named block.
struct UniBlock {
    char name[128];
    Zel32u first;
    Zel32u last;
};

/// One range of a script, both ends inclusive.
struct UniPair {
    Zel32u first;
    Zel32u last;
};

/// A script: its name and its ascending ranges.
struct UniScript {
    const char* name;
    const UniPair* pairs;
    int pairCount;
};

inline constexpr int kUniTblSize = 19316;
inline constexpr int kUniRangeTblSize = 10;
inline constexpr int kUniBlockTblSize = 171;
inline constexpr int kUniScriptCount = 77;
/// Last code point of UniTbl; what lies above is "beyond the table".
inline constexpr int kUniTblLast = 0xE01EF;

extern const UniEntry UniTbl[kUniTblSize];
extern const UniRange UniRangeTbl[kUniRangeTblSize];
extern const UniBlock UniBlockTbl[kUniBlockTblSize];
/// In the order in which names are tried.
extern const UniScript UniScriptTbl[kUniScriptCount];

/// The UniTbl entry of a code point, or null when it has none. Constant time, any value accepted;
/// a negative value has no entry.
const UniEntry* findUniEntry(int codePoint);

/// The UniRangeTbl range that holds a code point, or null. Constant time.
const UniRange* findUniRange(int codePoint);

/// The first block, in table order, whose name begins with the text, or null. The text begins with
/// "I" or is empty.
const UniBlock* findUniBlock(const char* text, size_t length);

/// The script of exactly that name, or null.
const UniScript* findUniScript(const char* name, size_t length);

/// Whether a code point lies in one of the ascending pairs; logarithmic time.
bool inUniPairs(const UniPair* pairs, int pairCount, int codePoint);

}  // namespace zel
