// Groups and their repetition, conditions, atomic groups, back-references and position assertions.
#include "regexp_support.h"

using namespace zeltest;

// ---- Positions ----------------------------------------------------------------------------------

TEST(Positions, CaretAndDollar) {
    EXPECT_EQ(whole("^", "x"), (Span{0, 0}));
    EXPECT_EQ(match("^", "a\n", "gm"),
              (Spans{{0, 0}}));  // not at the very end, even behind a newline
    EXPECT_EQ(whole("a$", "a\n"), (Span{0, 1}));
    EXPECT_EQ(whole("a$", "a\n\n"), kUnset);
    EXPECT_EQ(whole("a$", "a\n\n", "m"), (Span{0, 1}));
    EXPECT_EQ(whole("a\\Z", "a\n"), (Span{0, 1}));
    EXPECT_EQ(whole("a\\z", "a\n"), kUnset);
    EXPECT_EQ(whole("a\\z", "a"), (Span{0, 1}));
    EXPECT_EQ(whole("x\\A", "x"), kUnset);
    EXPECT_EQ(whole("x\\G", "x"), kUnset);
    EXPECT_EQ(whole("(?:x|\\A)\\Gy", "y"), (Span{0, 1}));
}

TEST(Positions, WordBoundaryLooksAtTheByteBehindTheText) {
    const Zel8u text[] = "abc def";
    EXPECT_EQ(Pattern("c\\b").find(text, 3).spans, (Spans{{2, 1}}));
    EXPECT_EQ(Pattern("b\\b").find(text, 2).count, 0);  // the c behind it is a word byte
    EXPECT_EQ(Pattern("b\\B").find(text, 2).spans, (Spans{{1, 1}}));
    EXPECT_EQ(whole("\\ba", "a"), (Span{0, 1}));
    EXPECT_EQ(whole("\\Ba", "a"), kUnset);
}

TEST(Positions, QuantifiedWithMinimumZeroIsPassedOver) {
    EXPECT_EQ(whole("a\\b*b", "ab"), (Span{0, 2}));
    EXPECT_EQ(whole("a$?b", "ab"), (Span{0, 2}));
}

TEST(Positions, QuantifiedWithAMinimumFailsAtTheQuantifier) {
    EXPECT_EQ(whole("^+a", "a"), kUnset);
    EXPECT_EQ(whole("a\\b{1}", "a"), kUnset);
}

TEST(Positions, LineStartMarkerOfALeadingAnyRun) {
    EXPECT_EQ(match(".*b", "ab\ncb\n", "g"), (Spans{{0, 2}, {3, 2}}));
    EXPECT_EQ(whole(".+x", "ab\ncx"), (Span{3, 2}));
    EXPECT_EQ(steps(".*x", "aaaa\nbbbb"), 3);  // narrowed to nothing: marker, run and x, at 0 alone
    EXPECT_EQ(steps(".*[xy]", "aa\nbb"), 5 + 1 + 1 + 5 + 1 + 1);  // inside a line the marker alone
}

// ---- Captures -----------------------------------------------------------------------------------

TEST(Groups, CaptureTheLastRepetition) {
    EXPECT_EQ(match("(a|b)*c", "abac"), (Spans{{0, 4}, {2, 1}}));
    EXPECT_EQ(match("(\\w)+", "abc"), (Spans{{0, 3}, {2, 1}}));
    EXPECT_EQ(match("(a)|(b)", "b"), (Spans{{0, 1}, kUnset, {0, 1}}));
    EXPECT_EQ(match("((a)(b)?)*", "aba"), (Spans{{0, 3}, {2, 1}, {2, 1}, {1, 1}}));
}

TEST(Groups, GiveBackRestoresCaptures) {
    EXPECT_EQ(match("(a)*ab", "aaab"), (Spans{{0, 4}, {1, 1}}));
    EXPECT_EQ(match("(?:(a)x|(a)y)", "ay"), (Spans{{0, 2}, kUnset, {0, 1}}));
    EXPECT_EQ(match("(a|ab)(c|bcd)(d*)", "abcd"), (Spans{{0, 4}, {0, 1}, {1, 3}, {4, 0}}));
    EXPECT_EQ(match("(a*)(a|b)*?c", "aac"), (Spans{{0, 3}, {0, 2}, kUnset}));
}

TEST(Groups, QuantifiedZeroTimesIsPassedOver) {
    EXPECT_EQ(match("(a){0}b", "ab"), (Spans{{1, 1}, kUnset}));
    EXPECT_EQ(match("(?:a){0,0}?b", "b"), (Spans{{0, 1}}));
}

TEST(Groups, Bounds) {
    EXPECT_EQ(whole("(?:ab){2}", "ababab"), (Span{0, 4}));
    EXPECT_EQ(whole("(?:ab){2,}", "ababab"), (Span{0, 6}));
    EXPECT_EQ(whole("(?:ab){1,2}", "ababab"), (Span{0, 4}));
    EXPECT_EQ(whole("(?:ab){1,2}?", "ababab"), (Span{0, 2}));
    EXPECT_EQ(whole("(?:ab){4}", "ababab"), kUnset);
    EXPECT_EQ(whole("(?:ab){2,3}?c", "abababc"), (Span{0, 7}));
    EXPECT_EQ(whole("(?:a|bc)+?c", "abcbcc"), (Span{0, 6}));
}

TEST(Groups, EmptyRepetitionEndsTheLoop) {
    EXPECT_EQ(match("(a*)*", "aab"), (Spans{{0, 2}, {2, 0}}));
    EXPECT_EQ(match("(a*)+", "b"), (Spans{{0, 0}, {0, 0}}));
    EXPECT_EQ(whole("(?:|a)*b", "aab"), (Span{0, 3}));
    EXPECT_EQ(whole("(?:){5}x", "x"), (Span{0, 1}));
    EXPECT_EQ(whole("(?:a?){3}x", "ax"), (Span{0, 2}));
}

TEST(Groups, GreedyWithMinimumZeroRunsTheRestWhenTheFirstRepetitionFails) {
    EXPECT_EQ(match("(b)?a", "a"), (Spans{{0, 1}, kUnset}));
    EXPECT_EQ(match("(?:(x)|(a)b)*a", "a"), (Spans{{0, 1}, kUnset, kUnset}));
}

TEST(Groups, LazyTriesTheRestFirst) {
    EXPECT_EQ(match("(a)??a", "aa"), (Spans{{0, 1}, kUnset}));
    EXPECT_EQ(match("(a)*?b", "aab"), (Spans{{0, 3}, {1, 1}}));
    EXPECT_EQ(match("(a){1,}?", "aa"), (Spans{{0, 1}, {0, 1}}));
    // The continuation sees the repetition just finished.
    EXPECT_EQ(match("(?:(a)|(b))+?\\2", "abb"), (Spans{{0, 3}, {0, 1}, {1, 1}}));
}

TEST(Groups, OptionsHoldInsideAndNotBehind) {
    EXPECT_EQ(whole("(?i:a)b", "Ab"), (Span{0, 2}));
    EXPECT_EQ(whole("(?i:a)b", "AB"), kUnset);
    EXPECT_EQ(whole("(?i:a){2}b", "aAb"), (Span{0, 3}));
    EXPECT_EQ(whole("(a(?i)b)c", "aBc"), (Span{0, 3}));
    EXPECT_EQ(whole("(a(?i)b)c", "aBC"), kUnset);
    EXPECT_EQ(whole("(?i)a(?-i)b", "Ab"), (Span{0, 2}));
    EXPECT_EQ(whole("(?i)a(?-i)b", "AB"), kUnset);
    EXPECT_EQ(whole("(?:(?i)a|b)c", "Bc"), (Span{0, 2}));  // stays in force behind the bar
    EXPECT_EQ(whole("(?:x(?i)a)+b", "xAXAb"), kUnset);     // every repetition starts afresh
    EXPECT_EQ(whole("(?s:.)x", "\nx"), (Span{0, 2}));
}

TEST(Groups, NestedRepetitionSavesTheWholeFrame) {
    EXPECT_EQ(match("((a|b)+c)+", "abcbac"), (Spans{{0, 6}, {3, 3}, {4, 1}}));
    EXPECT_EQ(match("(?:(?:a|ab)(?:c|bcd)){2}", "acabcd"), (Spans{{0, 6}}));
    EXPECT_EQ(whole("(?:(?:ab)*c)*d", "ababccabcd"), (Span{0, 10}));
    EXPECT_EQ(whole("(?:(?:ab){2}c){2}", "ababcababc"), (Span{0, 10}));
    EXPECT_EQ(whole("(?:(?:ab){2}c){2}", "ababcabc"), kUnset);
}

TEST(Groups, LengthIsSetRightOnlyBeforeTheNextAlternativeOfARepetition) {
    // A failed lazy letter leaves the length raised. Behind the last alternative nothing mends it.
    EXPECT_EQ(whole("(?:\\w+?,)*\\w+", "ab,cd"), (Span{0, 7}));
    EXPECT_EQ(whole("(?:\\w+?,|\\d;)*\\w+", "ab,cd"), (Span{0, 5}));
}

// ---- Conditions ---------------------------------------------------------------------------------

TEST(Conditions, OnAGroup) {
    EXPECT_EQ(whole("(a)?(?(1)b|c)", "ab"), (Span{0, 2}));
    EXPECT_EQ(whole("(a)?(?(1)b|c)", "c"), (Span{0, 1}));
    EXPECT_EQ(whole("^(a)?(?(1)b|c)$", "ac"), kUnset);
    EXPECT_EQ(whole("^(a)?(?(1)b)$", "ab"), (Span{0, 2}));
    EXPECT_EQ(whole("^(a)?(?(1)b)x", "x"), (Span{0, 1}));
    EXPECT_EQ(whole("(?(99)b|c)", "c"), (Span{0, 1}));  // a group that does not exist is not set
}

TEST(Conditions, TwoDigitsNameAnotherGroup) {
    // 1 x 11 + 2: group 13.
    EXPECT_EQ(whole("(?:(a)|b)()()()()()()()()()()()(c)?(?(12)x|y)", "acx"), (Span{0, 3}));
    EXPECT_EQ(whole("(?:(a)|b)()()()()()()()()()()()(c)?(?(12)x|y)", "ay"), (Span{0, 2}));
}

TEST(Conditions, OnALookAround) {
    EXPECT_EQ(whole("(?(?=a)ab|cd)", "cdab"), (Span{0, 2}));
    EXPECT_EQ(whole("(?(?=a)ab|cd)", "abcd"), (Span{0, 2}));
    EXPECT_EQ(whole("(?(?!a)b|a)", "ca"), (Span{1, 1}));
    EXPECT_EQ(whole("x(?(?<=x)a|b)", "xa"), (Span{0, 2}));
    EXPECT_EQ(match("(?(?=(a))ab|cd)", "ab"), (Spans{{0, 2}, {0, 1}}));
    EXPECT_EQ(match("(?:(?(?=(a))ax|cd)|ab)", "ab"), (Spans{{0, 2}, kUnset}));
}

TEST(Conditions, OnlyTheChosenBranchIsTried) {
    EXPECT_EQ(whole("^(?(?=a)ab|ac)", "ac"), kUnset);
    EXPECT_EQ(whole("^(?:(a)|b)(?(1)x|y)", "ay"), kUnset);
}

TEST(Conditions, AreTestedAnewInEveryRepetition) {
    EXPECT_EQ(whole("^(?:(?(?=a)ab|cd))+$", "abcdab"), (Span{0, 6}));
    EXPECT_EQ(whole("^(?(?=a)ab|cd)+$", "abcdab"), (Span{0, 6}));
    EXPECT_EQ(whole("^(?(?=a)ab|cd)+$", "abcdad"), kUnset);
}

// ---- Atomic groups ------------------------------------------------------------------------------

TEST(Atomic, KeepsWhatItTook) {
    EXPECT_EQ(whole("(?>a+)b", "aaab"), (Span{0, 4}));
    EXPECT_EQ(whole("(?>a+)ab", "aaab"), kUnset);
    EXPECT_EQ(whole("(?>a|ab)c", "abc"), kUnset);
    EXPECT_EQ(whole("(?>ab|a)c", "abc"), (Span{0, 3}));
    EXPECT_EQ(match("(?>(a+))b", "aab"), (Spans{{0, 3}, {0, 2}}));
}

TEST(Atomic, GivesBackWholeRepetitions) {
    EXPECT_EQ(whole("(?>ab)*ab", "ababab"), (Span{0, 6}));
    EXPECT_EQ(whole("(?>a|b)+b", "abb"), (Span{0, 3}));
    EXPECT_EQ(whole("(?>ab){2}c", "ababc"), (Span{0, 5}));
    EXPECT_EQ(whole("(?>ab){3,}", "abab"), kUnset);
    EXPECT_EQ(match("(?>(a)|(b))*b", "abb"), (Spans{{0, 3}, {0, 1}, {1, 1}}));
    EXPECT_EQ(whole("(?>ab)*?c", "ababc"), (Span{0, 5}));
    EXPECT_EQ(whole("(?>ab){1,}?", "abab"), (Span{0, 2}));
    EXPECT_EQ(whole("(?>a*)*b", "aab"), (Span{0, 3}));
    EXPECT_EQ(whole("(?>ab){0}c", "abc"), (Span{2, 1}));
}

TEST(Atomic, CapturesOfAGivenUpRepetitionArePutBack) {
    EXPECT_EQ(match("(?>(a)|(b))*?c|ab", "ab"), (Spans{{0, 2}, kUnset, kUnset}));
}

// ---- Back-references ----------------------------------------------------------------------------

TEST(BackReferences, RepeatTheCapturedText) {
    EXPECT_EQ(whole("(\\w+) \\1", "hey hey"), (Span{0, 7}));
    EXPECT_EQ(whole("(a)\\1{2}", "aaaa"), (Span{0, 3}));
    EXPECT_EQ(whole("(ab)\\1*", "ababab"), (Span{0, 6}));
    EXPECT_EQ(whole("(ab)\\1*?c", "abababc"), (Span{0, 7}));
    EXPECT_EQ(whole("(ab)\\1{1,2}?", "abababab"), (Span{0, 4}));
    EXPECT_EQ(whole("(ab)\\1*ab", "ababab"), (Span{0, 6}));
    EXPECT_EQ(whole("(ab)\\1", "abAB", "i"), (Span{0, 4}));
    EXPECT_EQ(whole("(ab)\\1", "abAB"), kUnset);
}

TEST(BackReferences, ToAGroupThatDidNotTakePart) {
    EXPECT_EQ(whole("(?:(a)|b)\\1", "bb"), kUnset);
    EXPECT_EQ(whole("(?:(a)|b)\\1+", "bb"), kUnset);
    EXPECT_EQ(whole("(?:(a)|b)\\1*", "bb"), (Span{0, 1}));
    EXPECT_EQ(whole("(?:(a)|b)\\1*?b", "bb"), (Span{0, 2}));
}

TEST(BackReferences, ToEmptyText) {
    EXPECT_EQ(whole("()\\1x", "x"), (Span{0, 1}));
    EXPECT_EQ(whole("a()\\1", "a"), kUnset);  // at the end of the text it fails even so
    EXPECT_EQ(whole("()\\1*x", "x"), (Span{0, 1}));
    EXPECT_EQ(whole("()\\1*?x", "x"), (Span{0, 1}));
    EXPECT_EQ(whole("()\\1{3,}x", "x"), (Span{0, 1}));
}

TEST(BackReferences, InsideTheirOwnGroupSeeAnEmptyText) {
    EXPECT_EQ(match("(a\\1b)", "ab"), (Spans{{0, 2}, {0, 2}}));
}
