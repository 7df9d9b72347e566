// Unicode data and its lookups: constant tables made by tools/ from the Unicode 5.1 character
// database. The compiler finds blocks and scripts by name here, the matcher asks for categories and
// case mappings.
#pragma once

#include <stddef.h>
#include <stdint.h>

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

/// Code points that every category test answers alike form a group: where they stand, and the
/// category they stand there with.
struct UniGroup {
    enum Place : int {
        kListed,         // in UniTbl
        kUniform,        // in UniRangeTbl
        kUniformBeyond,  // in UniRangeTbl, and beyond the table
        kAbsent,         // in neither
        kBeyond,         // in neither, and beyond the table
    };
    Place place;
    Zel32u category;
    uint64_t leads;  // bit b: a character of several bytes may begin with byte 0xC0 + b
};

#include "regexp/unicode/groups_tables.inc"

inline constexpr int kUniGroupCount = sizeof UniGroupTbl / sizeof UniGroupTbl[0];
inline constexpr int kUniGroupPageBits = 7;
inline constexpr Zel32u kLastCodePoint = 0x10FFFF;
extern const Zel8u UniGroupPageOf[(kLastCodePoint >> kUniGroupPageBits) + 1];
extern const Zel8u UniGroupOf[][1 << kUniGroupPageBits];

/// The UniGroupTbl row of a code point. Constant time, any value accepted: what is no code point is
/// beyond the table.
inline int findUniGroup(int codePoint) {
    const Zel32u c = static_cast<Zel32u>(codePoint);
    if (c > kLastCodePoint) return kUniGroupCount - 1;
    return UniGroupOf[UniGroupPageOf[c >> kUniGroupPageBits]][c & ((1u << kUniGroupPageBits) - 1)];
}

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
