// The Unicode tables and their lookups. UniTbl is sorted by code point, but nobody searches it: a
// two-stage index leads from any code point to its entry with two loads. The first stage maps pages
// of 128 code points to distinct rows of entry numbers, most pages sharing the empty row; the page
// size is chosen so that a page touches at most one uniform range, which makes finding a range one
// load and one comparison. What the category tests want to know has an index of its own, of bytes.
// The pairs of a script are few; a binary search is enough there.
//
// Names of blocks and scripts are found as a scan in table order would find them, over only those
// rows that share a letter with the name.
//
// The data files are generated: see tools/make_unicode_tables.py.
#include "regexp/unicode/unicode.h"

#include <string.h>

namespace zel {

#include "regexp/unicode/blocks_tables.inc"
#include "regexp/unicode/characters_tables.inc"
#include "regexp/unicode/group_pages_tables.inc"

namespace {

#include "regexp/unicode/pages_tables.inc"
#include "regexp/unicode/scripts_tables.inc"

static_assert(sizeof kPageOf == (kLastCodePoint >> kPageBits) + 1);
static_assert(sizeof kRangeOf == sizeof kPageOf);
static_assert(UniTbl[kUniTblSize - 1].codePoint == kUniTblLast);
static_assert(UniGroupTbl[kUniGroupCount - 1].place == UniGroup::kBeyond);

}  // namespace

#include "regexp/unicode/script_names_tables.inc"

namespace {

constexpr int kNoRow = 0xFF;

/// The rows of a table in chains, one chain for all names that share the low bits of one letter.
/// Each chain keeps the order of the table.
template <int kRows>
struct LetterChains {
    static_assert(kRows <= kNoRow);
    Zel8u first[32];
    Zel8u next[kRows] = {};

    template <typename Row>
    constexpr LetterChains(const Row* rows, int letter) {
        for (Zel8u& row : first) row = kNoRow;
        for (int row = kRows - 1; row >= 0; --row) {
            Zel8u& head = first[rows[row].name[letter] & 31];
            next[row] = head;
            head = static_cast<Zel8u>(row);
        }
    }

    constexpr int head(char letter) const { return first[letter & 31]; }
};

// Every block's name begins with "In".
constexpr LetterChains<kUniBlockTblSize> kBlocksByLetter(UniBlockTbl, 2);
constexpr LetterChains<kUniScriptCount> kScriptsByLetter(UniScriptTbl, 0);

}  // namespace

const UniBlock* findUniBlock(const char* text, size_t length) {
    int row = length <= 2 ? 0 : kBlocksByLetter.head(text[2]);
    for (; row != kNoRow; row = kBlocksByLetter.next[row]) {
        if (strncmp(text, UniBlockTbl[row].name, length) == 0) return &UniBlockTbl[row];
    }
    return nullptr;
}

const UniScript* findUniScript(const char* name, size_t length) {
    int row = length == 0 ? kNoRow : kScriptsByLetter.head(name[0]);
    for (; row != kNoRow; row = kScriptsByLetter.next[row]) {
        const char* const other = UniScriptTbl[row].name;
        if (strncmp(name, other, length) == 0 && other[length] == '\0') return &UniScriptTbl[row];
    }
    return nullptr;
}

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
