// The Unicode tables and their lookups. UniTbl is sorted by code point, but nobody searches it: a
// two-stage index leads from any code point to its entry with two loads. The first stage maps pages
// of 128 code points to distinct rows of entry numbers, most pages sharing the empty row; the page
// size is chosen so that a page touches at most one uniform range, which makes finding a range one
// load and one comparison. The pairs of a script are few; a binary search is enough there.
//
// The data files are generated: see tools/make_unicode_tables.py.
#include "regexp/unicode/unicode.h"

namespace zel {

#include "regexp/unicode/blocks_tables.inc"
#include "regexp/unicode/characters_tables.inc"

namespace {

#include "regexp/unicode/pages_tables.inc"
#include "regexp/unicode/scripts_tables.inc"

constexpr Zel32u kLastCodePoint = 0x10FFFF;
static_assert(sizeof kPageOf == (kLastCodePoint >> kPageBits) + 1);
static_assert(sizeof kRangeOf == sizeof kPageOf);
static_assert(UniTbl[kUniTblSize - 1].codePoint == kUniTblLast);

}  // namespace

#include "regexp/unicode/script_names_tables.inc"

const UniEntry* findUniEntry(int codePoint) {
    const Zel32u c = static_cast<Zel32u>(codePoint);
    if (c > kLastCodePoint) return nullptr;
    const int entry = kEntryOf[kPageOf[c >> kPageBits]][c & ((1u << kPageBits) - 1)];
    return entry < kUniTblSize ? &UniTbl[entry] : nullptr;
}

const UniRange* findUniRange(int codePoint) {
    const Zel32u c = static_cast<Zel32u>(codePoint);
    if (c > kLastCodePoint) return nullptr;
    const int number = kRangeOf[c >> kPageBits];
    if (number == kUniRangeTblSize) return nullptr;
    const UniRange* range = &UniRangeTbl[number];
    return c >= range->first && c <= range->last ? range : nullptr;
}

bool inUniPairs(const UniPair* pairs, int pairCount, int codePoint) {
    const Zel32u c = static_cast<Zel32u>(codePoint);
    // The last pair that begins at or before c, if any, lies in [low, low + count).
    const UniPair* low = pairs;
    int count = pairCount;
    while (count > 1) {
        const int half = count / 2;
        low += low[half].first <= c ? half : 0;
        count -= half;
    }
    return count == 1 && c >= low->first && c <= low->last;
}

}  // namespace zel
