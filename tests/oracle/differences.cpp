// The table, and the differences that lie in where a search begins.
#include "differences.h"

#include <string.h>

#include "oracle_pattern.h"

namespace worlds {

const DifferenceText kDifferenceTable[kDifferences] = {
    {kTrailingLiteral, "The text ends behind the last occurrence of the pattern's trailing literal",
     "Any match of a pattern that ends in a literal must end there, so that the rest need not be "
     "searched; look-ahead and $ see the narrowed text. A quantified letter behind a top-level bar "
     "lets a literal count although the other alternatives do without it."},
    {kReferenceAtTheEnd, "A back-reference that must match fails at the end of the text",
     "No atom without a quantifier, or with a minimum, is tried where no text remains, whatever "
     "the group captured."},
    {kReferenceInItsOwnGroup, "A back-reference inside its own group refers to empty text at first",
     "Entering a capturing group sets its record to the position with length 0."},
    {kConditionInItsOwnGroup, "A condition on a group holds inside that group",
     "Entering the group sets it, as above."},
    {kConditionWithoutItsGroup, "A condition on a group that does not exist never holds",
     "Its number is not checked against the groups of the pattern."},
    {kRepeatedPosition, "A quantified assertion is passed over or fails",
     "With minimum 0 it is passed over. Otherwise the quantifier is reached by itself when the "
     "assertion has passed, and no quantifier matches by itself."},
    {kRepeatedLook, "A quantified look-around fails",
     "The quantifier behind it is reached by itself, as above, with minimum 0 too."},
    {kFoldedShorthands, "Neighbouring dots, or equal shorthands, share one quantifier",
     "Their bounds are added; the sum of two quantifiers is greedy, whatever they were."},
    {kSummedQuantifiers, "A quantifier behind a quantifier is added to it",
     "Blanks of extended mode may separate the two; the sum is greedy."},
    {kVerticalTab, "A vertical tab is not white space", "\\s is the other five."},
    {kLookBehindLength, "A look-behind begins as many characters back as its body measures",
     "A quantifier counts with its minimum, but never less than once; references, conditions and "
     "option groups have rules of their own. The body may end in front of or behind the position."},
    {kOptionalLineStart, "A pattern that begins with ^? or ^* is tried at line starts only, with m",
     "The first node decides where a search may begin; only without m does the quantifier lift "
     "that."},
    {kAnyRunAtLineStarts, "A pattern that begins with .* or .+ is tried at line starts only",
     "Behind one it could only find what it would have found there; find-all mode, which begins "
     "again behind a match, shows the difference."},
    {kSearchStart, "\\G is the start of the text, as \\A",
     "Also where find-all mode begins again."},
    {kBoundaryBehindTheText, "\\b at the end of the text looks at the byte behind it",
     "A caller keeps one readable byte there."},
    {kHint,
     "A lazy letter or shorthand in front of a letter tries the rest only where that letter is",
     "The hint does not look at the quantifier of the letter, which may ask for none. At the "
     "end of the text the byte behind it decides."},
    {kCapturesOfACondition, "A negative look-around that fails as a condition captures nothing",
     "Whatever fails puts back the captures that it has changed; PCRE2 keeps these."},
    {kRaisedLength, "A lazy letter or shorthand may leave the whole match too long",
     "It never takes off what it added to the consumed length when it fails. Offset and groups "
     "are compared; the length may not be less."},
    {kEmptyRepetition, "An empty repetition ends the loop although the minimum is not reached",
     "The oracle writes counted repetitions out one by one and goes on behind an empty one. "
     "Only the whole match is compared: other repetitions can have been captured last."},
    {kEmptyRepetitionWithMemory,
     "As above, with a condition or a back-reference in the repeated body",
     "The next repetition could match something else than the first. Not compared."},
    {kReferenceInItsRepeatedGroup,
     "A reference inside its own group that is repeated inside another repetition",
     "No pattern of the oracle forgets a capture when the outer repetition begins again. Not "
     "compared."},
    {kGiveBackByTheCharacterBehind,
     "A greedy shorthand gives back the length of the character behind its run",
     "Exact as long as all characters are of one length; other texts are not compared."},
    {kLazyCodePoint, "Lazy code points and properties have orders of their own",
     "They succeed at other characters, never try the end, or step over characters. Not compared."},
    {kRetryInsideASubprogram,
     "After an empty match, a body that has consumed nothing fails in the retry",
     "The rule that the retry's match must not be empty holds at the end of every look-around, "
     "atomic group and condition. From the empty match on, find-all is not compared."},
    {kRetryAndABar, "After an empty match, a top-level bar ends the retry",
     "An alternative that ends at a bar matches without the test for an empty match; the retry "
     "then counts as failed. From the empty match on, find-all is not compared."},
};

std::string expect(const Tree& tree, const std::string& options, char behind,
                   Expectation& expectation) {
    const bool ignoreCase = options.find('i') != std::string::npos;
    findTrailingLiteral(tree, ignoreCase, expectation);
    std::string pattern = oraclePattern(tree, ignoreCase, behind, expectation);

    const std::string lineStart = "(?:\\A|(?<=\\n))";
    const std::string text = textOf(tree);
    for (const char* run : {".*", ".+", "(?:.*)", "(?:.+)"}) {
        const size_t length = strlen(run);
        if (text.compare(0, length, run) == 0 && (length > 2 || text[length] != '?')) {
            expectation.differences.set(kAnyRunAtLineStarts);
            pattern = lineStart + pattern;
        }
    }
    const std::vector<const Tree*> items =
        tree.kind == Tree::kChoice ? std::vector<const Tree*>{} : itemsOf(tree);
    if (!items.empty() && items[0]->kind == Tree::kRepeat && items[0]->first->is("^") &&
        boundsOf(*items[0]).min == 0 && options.find('m') != std::string::npos) {
        expectation.differences.set(kOptionalLineStart);
        pattern = lineStart + pattern;
    }
    return pattern;
}

}  // namespace worlds
