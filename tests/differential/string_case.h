// One case of the string differential test: a call of one string function with contents, placement,
// aliasing and, now and then, an argument that must be refused.
#pragma once

#include <string>
#include <vector>

#include "random.h"
#include "zelchmx.h"

namespace differential {

/// The functions in the order of their tables; the last three have one width only.
enum StringFunction {
    kFind,
    kFindRev,
    kFindC,
    kFindRevC,
    kFindCAny,
    kFindRevCAny,
    kFindZ,
    kFindCZ,
    kCompare,
    kCompareLatin,
    kCompareIgnoreCase,
    kEqual,
    kUpper,
    kLower,
    kUpperLatin,
    kLowerLatin,
    kUpperInPlace,
    kLowerInPlace,
    kUpperLatinInPlace,
    kLowerLatinInPlace,
    kInsert,
    kInsertInPlace,
    kRemove,
    kRemoveInPlace,
    kReplaceC,
    kConcat,
    kConcatList,
    kConcatCList,
    kSplitC,
    kTrimC,
    kTrimCInPlace,
    kTrimCAny,
    kTrimStartCAny,
    kTrimEndCAny,
    kHash,
    kHashSJ2,
    kHashMSCS,
    kCopy,
    kMove,
    kZero,
    kToUtf16,
    kToUtf8,
    kStringFunctionCount
};

struct StringCase {
    int function = 0;
    int width = 8;               // of an element of the source, 8 or 16 bits
    std::vector<Zel16u> source;  // elements
    std::vector<Zel16u> second;
    int sourceOffset = 0;  // of the first byte from a 64-byte boundary
    int secondOffset = 0;
    int targetOffset = 0;
    int placement = 0;  // 1: source ends, second begins at an inaccessible page; 2: the other way
    int alias = 0;      // 1: the destination is the source; moves: distance in elements is `start`
    int start = 0;      // index, or room of a conversion
    int amount = 0;     // to remove, entries of a list, swapBytes
    Zel16u value = 0;
    Zel16u newValue = 0;
    int nulls = 0;          // bits: source, second, target, output
    int badLength = 0;      // bits: length of the source, of the second, amount negative
    std::vector<int> list;  // lengths or capacities of the entries of a list
    int instance = 0;       // of the library, see librarySide
    int badEntry = -1;      // 2k: entry k is null; 2k + 1: its length is negative

    std::string text() const;
};

StringCase makeStringCase(Random& random);

/// Calls library and model on the same memory. Empty when they agree on status, outputs and every
/// byte of the memory, else what they disagree about.
std::string compare(const StringCase& testCase);

/// The smallest case found that still fails.
StringCase shrink(const StringCase& testCase);

}  // namespace differential
