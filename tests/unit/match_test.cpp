// The engine and the search driver: straight lines, budgets, look-around, first-match and find-all
// mode.
#include "regexp_support.h"

using namespace zeltest;

// ---- Budget -----------------------------------------------------------------------------------

TEST(Budget, EachExecutedNodeCostsOneStep) {
    EXPECT_EQ(steps("a", "a"), 1);
    EXPECT_EQ(steps("a", "xxa"), 3);
    EXPECT_EQ(steps("abc", "abc"), 1);  // one literal run
    EXPECT_EQ(steps("a.c", "abc"), 3);  // three nodes
    EXPECT_EQ(steps("^^^a", "a"), 4);   // assertions cost too
    EXPECT_EQ(steps("a|b", "b"), 2);    // a fails, b matches
    EXPECT_EQ(steps("a|b", "a"), 1);    // the bar's own step may be the one too many
    EXPECT_EQ(steps("(a)", "a"), 3);    // opening, letter, closing
}

TEST(Budget, EmptyProgramNeedsNoStep) {
    EXPECT_EQ(Pattern("").limit(0).spans(""), (Spans{{0, 0}}));
    EXPECT_EQ(Pattern("").limit(0).spans("abc"), (Spans{{0, 0}}));
}

TEST(Budget, ZeroLetsOneNodeRunBeforeEveryFurtherStepFails) {
    Pattern pattern("a|b");
    // The bar runs when no step is left and ends the match all the same.
    EXPECT_EQ(pattern.limit(1).spans("a"), (Spans{{0, 1}}));
    EXPECT_EQ(pattern.limit(0).find("a").status, zelStatusRegExpMatchLimitError);
    EXPECT_EQ(Pattern("^").limit(0).find("x").status, zelStatusRegExpMatchLimitError);
    EXPECT_EQ(Pattern("^").limit(1).find("x").status, zelStatusOk);
}

TEST(Budget, IsExactOnBothSides) {
    for (const auto& [pattern, text] :
         std::vector<std::pair<std::string, std::string>>{{"a*b", "aaac"},
                                                          {"(a|ab)(c|bcd)(d*)", "abcd"},
                                                          {"[a-z]+ing", "the singing"},
                                                          {"(?=a)a", "ba"},
                                                          {"(?<=b)a", "ba"},
                                                          {"(a+)+b", "aaaaac"},
                                                          {"x*?y", "xxxz"}}) {
        Pattern compiled(pattern);
        const int needed = compiled.stepsNeeded(text);
        EXPECT_GT(needed, 0);
        EXPECT_EQ(compiled.limit(needed).find(text).status, zelStatusOk) << pattern;
        EXPECT_EQ(compiled.limit(needed - 1).find(text).status, zelStatusRegExpMatchLimitError)
            << pattern;
    }
}

TEST(Budget, FirstMatchModeLeavesTheLoweredCapacityWhenItRunsOut) {
    Pattern pattern("(a)(b)(c).");
    const Outcome outcome = pattern.limit(2).find("abcabc", 10);
    EXPECT_EQ(outcome.status, zelStatusRegExpMatchLimitError);
    EXPECT_EQ(outcome.count, 4);
}

TEST(Budget, FindAllReportsWhatItWroteWhenItRunsOut) {
    Pattern pattern("a", "g");
    const Outcome outcome = pattern.limit(3).find("aaaaaa");
    EXPECT_EQ(outcome.status, zelStatusRegExpMatchLimitError);
    EXPECT_EQ(outcome.spans, (Spans{{0, 1}, {1, 1}, {2, 1}}));
}

TEST(Budget, IsSharedByAllStartPositions) {
    EXPECT_EQ(steps("ab", "xxxxxx"), 1);   // the trailing literal is absent: one attempt at 0
    EXPECT_EQ(steps("ab.", "xxxxxx"), 7);  // seven positions
}

// ---- Letters and literals -----------------------------------------------------------------------

TEST(Letters, IgnoreCaseFoldsAsciiLettersOnly) {
    EXPECT_EQ(whole("a", "A", "i"), (Span{0, 1}));
    EXPECT_EQ(whole("A", "a", "i"), (Span{0, 1}));
    EXPECT_EQ(whole("\\[", "{", "i"), kUnset);
    EXPECT_EQ(whole("\\{", "[", "i"), kUnset);
    EXPECT_EQ(whole("@", "`", "i"), kUnset);
    EXPECT_EQ(whole("\xC9", "\xE9", "i", 0), kUnset);
    EXPECT_EQ(whole("aBc", "xAbC", "i"), (Span{1, 3}));
    EXPECT_EQ(whole("a\\[c", "A{C", "i"), kUnset);
}

TEST(Letters, AnyByteTakesNewlinesAndSingleBytes) {
    EXPECT_EQ(whole("\\C", "\n"), (Span{0, 1}));
    EXPECT_EQ(whole("\\C\\C", "\xC3\xA9"), (Span{0, 2}));
    EXPECT_EQ(whole("a\\C*b", "a\nxb"), (Span{0, 4}));
    EXPECT_EQ(whole("a\\C*?b", "a\nbxb"), (Span{0, 3}));
    EXPECT_EQ(whole("\\C{2,3}", "abcd"), (Span{0, 3}));
    EXPECT_EQ(whole("\\C{2,3}?", "abcd"), (Span{0, 2}));
    EXPECT_EQ(whole("\\C{5}", "abcd"), kUnset);
}

TEST(Letters, LazyAnyBytePutsTheLengthBack) {
    // The first alternative takes bytes and fails; the second one's length must not show them.
    EXPECT_EQ(whole("a\\C*?x|ab", "abcd"), (Span{0, 2}));
}

// ---- Shorthands of one character ----------------------------------------------------------------

TEST(Shorthands, TakeWholeSequencesInBothFormats) {
    EXPECT_EQ(whole(".", "\xC3\xA9", nullptr, 1), (Span{0, 2}));
    EXPECT_EQ(whole(".", "\xC3\xA9", nullptr, 0), (Span{0, 2}));
    EXPECT_EQ(whole("\\W", "\xC3\xA9"), (Span{0, 2}));
    EXPECT_EQ(whole("\\w", "\xC3\xA9"), kUnset);
    EXPECT_EQ(whole(".", "\xC3(", nullptr), (Span{0, 1}));
    EXPECT_EQ(whole(".", "\xC3", nullptr), (Span{0, 1}));  // does not fit in front of the end
}

// ---- Alternatives -------------------------------------------------------------------------------

TEST(Alternatives, FirstThatSucceedsWins) {
    EXPECT_EQ(whole("a|ab", "ab"), (Span{0, 1}));
    EXPECT_EQ(whole("ab|a", "ab"), (Span{0, 2}));
    EXPECT_EQ(whole("x|b|a", "ab"), (Span{0, 1}));
    EXPECT_EQ(whole("|a", "a"), (Span{0, 0}));
}

TEST(Alternatives, FlagsBehindATopLevelBarAreThoseInForceThere) {
    EXPECT_EQ(whole("x(?i)y|b", "B"), (Span{0, 1}));
    EXPECT_EQ(whole("(?i:x)|b", "B"), kUnset);
}

TEST(Alternatives, BlockedTrailingLiteralIsFreedByAQuantifiedLetter) {
    // The d becomes the trailing literal, so a text without d does not match at all.
    EXPECT_EQ(whole("a|bc*d", "a"), kUnset);
    EXPECT_EQ(whole("a|bc*d", "a d"), (Span{0, 1}));
    EXPECT_EQ(whole("a|bcd", "a"), (Span{0, 1}));
}

// ---- Look-around --------------------------------------------------------------------------------

TEST(LookAround, Ahead) {
    EXPECT_EQ(whole("a(?=b)", "acab"), (Span{2, 1}));
    EXPECT_EQ(whole("a(?!b)", "abac"), (Span{2, 1}));
    EXPECT_EQ(whole("(?=x|a)a", "a"), (Span{0, 1}));
    EXPECT_EQ(whole("(?!x|a)\\w", "axb"), (Span{2, 1}));
    EXPECT_EQ(match("(?=(a+))a", "aaa"), (Spans{{0, 1}, {0, 3}}));
}

TEST(LookAround, AheadBodyMayEndAnywhereWithABar) {
    EXPECT_EQ(whole("(?=a|b)b", "b"), (Span{0, 1}));
    EXPECT_EQ(whole("(?=(?:a|b)c|d).", "bc"), (Span{0, 1}));
}

TEST(LookAround, Behind) {
    EXPECT_EQ(whole("(?<=ab)c", "abc"), (Span{2, 1}));
    EXPECT_EQ(whole("(?<=ab)c", "c"), kUnset);
    EXPECT_EQ(whole("(?<!a)b", "abb"), (Span{2, 1}));
    EXPECT_EQ(whole("(?<!a)b", "b"), (Span{0, 1}));
    EXPECT_EQ(whole("(?<=ab|cd)x", "cdx"), (Span{2, 1}));
}

TEST(LookAround, BehindCountsCharacters) {
    EXPECT_EQ(whole("(?<=.)x", "\xC3\xA9x"), (Span{2, 1}));
    EXPECT_EQ(whole("(?<=..)x", "\xC3\xA9x"), kUnset);
    EXPECT_EQ(whole("(?<=..)x", "\xC3\xC3x"), (Span{2, 1}));  // ill-formed bytes count one each
    EXPECT_EQ(whole("(?<=\\C)x", "\xC3\xA9x"), (Span{2, 1}));
}

TEST(LookAround, BehindMayReachPastThePosition) {
    // The body is as long as its minimum says; nothing makes it end at the position.
    EXPECT_EQ(whole("(?<=a{1,2})a", "xaa"), (Span{2, 1}));
    EXPECT_EQ(whole("(?<=a{2,5})b", "aaab"), (Span{3, 1}));
}

TEST(LookAround, CapturesOfAFailedContinuationArePutBack) {
    EXPECT_EQ(match("(?:(?=(a))b|a)c?", "ac"), (Spans{{0, 2}, kUnset}));
    EXPECT_EQ(match("(?!(a)x)a", "ab"), (Spans{{0, 1}, kUnset}));
}

TEST(LookAround, NegativeKeepsNoCapture) {
    EXPECT_EQ(match("(?!(b))a", "a"), (Spans{{0, 1}, kUnset}));
}

// ---- First-match mode ---------------------------------------------------------------------------

TEST(FirstMatch, EmptyTextWithAnEmptyMatch) {
    const Outcome outcome = Pattern("a*").find("");
    EXPECT_EQ(outcome.status, zelStatusOk);
    EXPECT_EQ(outcome.spans, (Spans{{0, 0}}));
}

TEST(FirstMatch, CapacityIsLoweredToTheSlots) {
    Outcome outcome = Pattern("(a)(b)?").find("a", 10);
    EXPECT_EQ(outcome.count, 3);
    EXPECT_EQ(outcome.spans, (Spans{{0, 1}, {0, 1}, kUnset}));
    outcome = Pattern("(a)(b)").find("ab", 2);
    EXPECT_EQ(outcome.spans, (Spans{{0, 2}, {0, 1}}));
}

TEST(FirstMatch, NoMatchGivesZeroRecords) {
    const Outcome outcome = Pattern("(a)").find("xyz", 10);
    EXPECT_EQ(outcome.status, zelStatusOk);
    EXPECT_EQ(outcome.count, 0);
}

TEST(FirstMatch, EmptyMatchAtTheVeryEnd) {
    EXPECT_EQ(whole("$", "abc"), (Span{3, 0}));
    EXPECT_EQ(whole("x*$", "abc"), (Span{3, 0}));
}

TEST(FirstMatch, ArgumentChecksComeInOrder) {
    Pattern pattern("a");
    const Zel8u text[] = "a";
    ZelRegExpFind record;
    int count = 1;
    EXPECT_EQ(zelsRegExpFind_8u(nullptr, -1, pattern.state(), &record, &count),
              zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpFind_8u(text, -1, nullptr, &record, &count), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpFind_8u(text, -1, pattern.state(), nullptr, &count), zelStatusNullPointer);
    count = 0;
    EXPECT_EQ(zelsRegExpFind_8u(text, -1, pattern.state(), &record, &count), zelStatusLengthError);
    EXPECT_EQ(zelsRegExpFind_8u(text, 1, pattern.state(), &record, &count), zelStatusSizeError);
    EXPECT_EQ(count, 0);
    count = 1;
    pattern.state()->magic = 0;
    EXPECT_EQ(zelsRegExpFind_8u(text, 1, pattern.state(), &record, &count),
              zelStatusContextMatchError);
    EXPECT_EQ(count, 1);
}

TEST(FirstMatch, TrailingLiteralNarrowsTheText) {
    EXPECT_EQ(whole("\\w+x", "abxcdx ab"), (Span{0, 6}));
    EXPECT_EQ(whole("a*$x*", "aaa"), (Span{0, 3}));
    EXPECT_EQ(whole("b$x", "ab"), kUnset);
    // The end of the narrowed text is the end for every assertion.
    EXPECT_EQ(whole("a(?!b)\\w*c", "abacb", nullptr), (Span{2, 2}));
    EXPECT_EQ(whole("(?=.*c\\z)c", "acb"), (Span{1, 1}));
}

TEST(FirstMatch, TrailingLiteralIgnoringCase) {
    EXPECT_EQ(whole("a.*BC", "xaBcbCz", "i"), (Span{1, 5}));
    EXPECT_EQ(whole("a.*C", "xaBcz", "i"), (Span{1, 3}));
    EXPECT_EQ(whole("a.*C", "xabz", "i"), kUnset);
}

TEST(FirstMatch, Anchors) {
    EXPECT_EQ(whole("^b", "ab\nb"), kUnset);
    EXPECT_EQ(whole("^b", "ab\nb", "m"), (Span{3, 1}));
    EXPECT_EQ(whole("\\Ab", "ab"), kUnset);
    EXPECT_EQ(whole("\\Gb", "ab\nb", "m"), kUnset);
    EXPECT_EQ(whole("^*b", "ab"), (Span{1, 1}));    // an optional anchor anchors nothing
    EXPECT_EQ(whole("^b|c", "abc"), (Span{2, 1}));  // nor does one with alternatives
    EXPECT_EQ(whole("(?:^b)", "ab"), kUnset);
}

TEST(FirstMatch, StartPositionsNeverFallInsideAWellFormedSequence) {
    EXPECT_EQ(whole("\\C\\z", "\xC3\xA9", nullptr, 1), kUnset);
    EXPECT_EQ(whole("\\C\\z", "\xC3\xA9", nullptr, 0), (Span{1, 1}));
    EXPECT_EQ(whole("\\C\\z", "\xC3\xC3", nullptr, 1), (Span{1, 1}));
}

// ---- Find-all mode ------------------------------------------------------------------------------

TEST(FindAll, WholeMatchesWithoutGroups) {
    EXPECT_EQ(match("a.", "abacad", "g"), (Spans{{0, 2}, {2, 2}, {4, 2}}));
    EXPECT_EQ(match("x", "abc", "g"), (Spans{}));
}

TEST(FindAll, OnlyGroupsWhenThereAreGroups) {
    EXPECT_EQ(match("(a)(b)?", "abxa", "g"), (Spans{{0, 1}, {1, 1}, {3, 1}, kUnset}));
}

TEST(FindAll, StopsWhenAMatchDoesNotFit) {
    EXPECT_EQ(Pattern("a", "g").find("aaaa", 2).spans, (Spans{{0, 1}, {1, 1}}));
    EXPECT_EQ(Pattern("(a)(a)", "g").find("aaaaaa", 5).spans,
              (Spans{{0, 1}, {1, 1}, {2, 1}, {3, 1}}));
    const Outcome outcome = Pattern("(a)(a)", "g").find("aaaaaa", 1);
    EXPECT_EQ(outcome.status, zelStatusOk);
    EXPECT_EQ(outcome.count, 0);
}

TEST(FindAll, RetriesForANonEmptyMatchAfterAnEmptyOne) {
    EXPECT_EQ(match("|a", "aab", "g"), (Spans{{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
    EXPECT_EQ(match("(?:|a)", "aab", "g"), (Spans{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {3, 0}}));
    EXPECT_EQ(match("a*", "baac", "g"), (Spans{{0, 0}, {1, 2}, {3, 0}, {4, 0}}));
    EXPECT_EQ(match("a*?", "aa", "g"), (Spans{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}}));
}

TEST(FindAll, StepsOverOneCharacterAfterAnEmptyMatch) {
    EXPECT_EQ(match("x*", "\xC3\xA9", "g", 1), (Spans{{0, 0}, {2, 0}}));
    EXPECT_EQ(match("x*", "\xC3\xA9", "g", 0), (Spans{{0, 0}, {1, 0}, {2, 0}}));
}

TEST(FindAll, StartOnlyModeFindsAtTheStartAlone) {
    EXPECT_EQ(match("^a", "aaa", "g"), (Spans{{0, 1}}));
    EXPECT_EQ(match("\\Ga", "aaa", "g"), (Spans{{0, 1}}));
    EXPECT_EQ(match("^(?:|a)", "aa", "g"), (Spans{{0, 0}, {0, 1}}));
}

TEST(FindAll, LineStartMode) {
    EXPECT_EQ(match("^a", "aa\naa\nba\na", "gm"), (Spans{{0, 1}, {3, 1}, {9, 1}}));
    EXPECT_EQ(match("^", "a\nb\n", "gm"), (Spans{{0, 0}, {2, 0}}));
}
