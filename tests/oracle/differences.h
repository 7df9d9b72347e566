// Where the library means to differ from ordinary backtracking, and how a comparison allows for it.
// Most differences are exact: the pattern is rewritten, or the text cut, so that PCRE2 must give
// the library's result. The others, at the end, make a comparison say less.
#pragma once

#include <bitset>
#include <optional>
#include <string>

#include "pattern_tree.h"

namespace worlds {

enum Difference {
    // The oracle gets another text.
    kTrailingLiteral,
    // The oracle gets another pattern.
    kReferenceAtTheEnd,
    kReferenceInItsOwnGroup,
    kConditionInItsOwnGroup,
    kConditionWithoutItsGroup,
    kRepeatedPosition,
    kRepeatedLook,
    kFoldedShorthands,
    kSummedQuantifiers,
    kVerticalTab,
    kLookBehindLength,
    kOptionalLineStart,
    kAnyRunAtLineStarts,
    kSearchStart,
    kBoundaryBehindTheText,
    kHint,
    kCapturesOfACondition,
    // The comparison says less.
    kRaisedLength,
    kEmptyRepetition,
    kEmptyRepetitionWithMemory,
    kReferenceInItsRepeatedGroup,
    kGiveBackByTheCharacterBehind,
    kLazyCodePoint,
    kRetryInsideASubprogram,
    kRetryAndABar,
    kDifferences,
};

struct DifferenceText {
    Difference difference;
    const char* what;
    const char* why;
};

/// The one table of all differences, in the order of the enumeration.
extern const DifferenceText kDifferenceTable[kDifferences];

using DifferenceSet = std::bitset<kDifferences>;

/// What the library should make of a pattern, in terms of the oracle.
struct Expectation {
    bool unknownGroup = false;  // a reference to a group that does not exist: an error
    bool unevenBehind = false;  // a look-behind whose branches differ in length: an error
    bool readsBehind = false;   // the byte behind the text may decide
    DifferenceSet differences;  // those that the pattern meets

    // The literal that the pattern ends in, whose last occurrence ends the text.
    std::optional<std::string> trailingLiteral;
    bool trailingIgnoresCase = false;
};

/// Fills in what is expected of a pattern, and returns the pattern for the oracle when the byte
/// `behind` stands behind the text.
std::string expect(const Tree& tree, const std::string& options, char behind,
                   Expectation& expectation);

/// Fills in the trailing literal.
void findTrailingLiteral(const Tree& tree, bool ignoreCase, Expectation& expectation);

/// Length of the text that a search looks at.
int effectiveLength(const Expectation& expectation, const std::string& text);

}  // namespace worlds
