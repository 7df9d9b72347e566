// Bracket classes, class shorthands, letters, code points and their quantifiers.
#include "regexp/match/predicates.h"
#include "regexp_support.h"

using namespace zeltest;

namespace {

/// The one-byte texts that a pattern matches, as characters.
std::string accepted(const std::string& pattern, const char* options = nullptr) {
    Pattern compiled(pattern, options, 0);
    std::string result;
    for (int c = 0; c < 256; ++c) {
        const std::string text(1, static_cast<char>(c));
        if (compiled.find(text).count == 1 && !compiled.spans(text).empty() &&
            compiled.spans(text)[0].length == 1) {
            result += text;
        }
    }
    return result;
}

std::string range(int first, int last) {
    std::string result;
    for (int c = first; c <= last; ++c) result += static_cast<char>(c);
    return result;
}

std::string without(const std::string& removed) {
    std::string result;
    for (int c = 0; c < 256; ++c) {
        if (removed.find(static_cast<char>(c)) == std::string::npos) result += static_cast<char>(c);
    }
    return result;
}

const std::string kWord = range('0', '9') + range('A', 'Z') + "_" + range('a', 'z');
const std::string kSpace = "\t\n\f\r ";

}  // namespace

TEST(Shorthand, AcceptExactlyTheirBytes) {
    EXPECT_EQ(accepted("\\d"), range('0', '9'));
    EXPECT_EQ(accepted("\\D"), without(range('0', '9')));
    EXPECT_EQ(accepted("\\s"), kSpace);  // no vertical tab
    EXPECT_EQ(accepted("\\S"), without(kSpace));
    EXPECT_EQ(accepted("\\w"), kWord);
    EXPECT_EQ(accepted("\\W"), without(kWord));
    EXPECT_EQ(accepted("."), without("\n"));
    EXPECT_EQ(accepted(".", "s"), range(0, 255));
}

TEST(Shorthand, UnknownLetterAcceptsNothing) {
    for (int c = 0; c < 256; ++c) {
        EXPECT_LT(zel::ownsNodeLetterRangeChange('q', false)(c), 0);
        EXPECT_FALSE(zel::shorthandBytes('q', 0).has(static_cast<Zel8u>(c)));
    }
}

TEST(Shorthand, WordCoversAsciiOnlyInUtf8Too) {
    EXPECT_EQ(whole("\\w", "\xC3\xA9"), kUnset);
    EXPECT_EQ(whole("\\W", "\xC3\xA9"), (Span{0, 2}));
}

TEST(Class, MembersRangesAndNegation) {
    EXPECT_EQ(accepted("[abc]"), "abc");
    EXPECT_EQ(accepted("[a-c]"), "abc");
    EXPECT_EQ(accepted("[^a-c]"), without("abc"));
    EXPECT_EQ(accepted("[]a]"), "]a");
    EXPECT_EQ(accepted("[a-]"), "-a");
    EXPECT_EQ(accepted("[\\d_]"), range('0', '9') + "_");
    EXPECT_EQ(accepted("[\\W\\d]"), without(range('A', 'Z') + "_" + range('a', 'z')));
    EXPECT_EQ(accepted("[^\\s\\w]"), without(kSpace + kWord));
}

TEST(Class, IgnoreCase) {
    EXPECT_EQ(accepted("[ac]", "i"), "ACac");
    EXPECT_EQ(accepted("[b-d]", "i"), "BCDbcd");
    EXPECT_EQ(accepted("[^a]", "i"), without("Aa"));
    EXPECT_EQ(accepted("[Z-b]", "i"), "ABZ[\\]^_`abz");
}

TEST(Class, PosixMembersAreInvertedOneByOne) {
    EXPECT_EQ(accepted("[[:digit:]]"), range('0', '9'));
    EXPECT_EQ(accepted("[[:^digit:]]"), without(range('0', '9')));
    EXPECT_EQ(accepted("[[:^alpha:]]"), range(0, 255));  // not a-z, or not A-Z: everything
    EXPECT_EQ(accepted("[[:punct:]]"),
              range(0x20, 0x2F) + range(0x3A, 0x40) + range(0x5B, 0x60) + range(0x7B, 0xFF));
    EXPECT_EQ(accepted("[[:graph:]]"), range(0x21, 0xFF));
    EXPECT_EQ(accepted("[[:space:]]"), range(9, 13) + " ");
}

TEST(Class, CharactersOfSeveralBytes) {
    EXPECT_EQ(whole("[\xC3\xA9q]", "x\xC3\xA9"), (Span{1, 2}));
    EXPECT_EQ(whole("[\xC3\xA0-\xC3\xBF]", "\xC3\xA9"), (Span{0, 2}));
    EXPECT_EQ(whole("[^a]", "\xC3\xA9"), (Span{0, 2}));
    EXPECT_EQ(whole("[^a]", "\xC3\xA9", nullptr, 0), (Span{0, 1}));
    EXPECT_EQ(whole("[\\x{100}-\\x{17F}]", "\xC4\x81"), (Span{0, 2}));
    EXPECT_EQ(whole("[\\x{3B1}x]", "\xCE\xB1"), (Span{0, 2}));
    EXPECT_EQ(whole("[\\x{3B1}x]", "\xCE\x91"), kUnset);
    EXPECT_EQ(whole("[\\x{3B1}x]", "\xCE\x91", "i"), (Span{0, 2}));
    EXPECT_EQ(whole("[\\x{391}-\\x{3A9}]", "\xCE\xB1", "i"), (Span{0, 2}));
    EXPECT_EQ(whole("[\\x{391}-\\x{3A9}]", "\xCE\xB1"), kUnset);
    EXPECT_EQ(whole("[\\w\\p{Lu}]+", "a\xC3\x89"), (Span{0, 3}));
    EXPECT_EQ(whole("[\\P{Lu}]", "\xC3\x89"), kUnset);
    EXPECT_EQ(whole("[\\p{Greek}q]+", "q\xCE\xB1"), (Span{0, 3}));
    EXPECT_EQ(whole("[\\p{InGreekandCoptic}]", "\xCE\xB1"), (Span{0, 2}));
    EXPECT_EQ(whole("[\\Xq]", "e"), (Span{0, 1}));
}

TEST(Class, RangeIgnoringCaseHoldsWideCharactersThatMapIntoIt) {
    const std::string kelvin = "\xE2\x84\xAA";  // U+212A, lower case k
    const std::string longS = "\xC5\xBF";       // U+017F, upper case S
    EXPECT_EQ(whole("[a-z]", kelvin, "i"), (Span{0, 3}));
    EXPECT_EQ(whole("[A-Z]", longS, "i"), (Span{0, 2}));
    EXPECT_EQ(whole("[^a-z]", kelvin, "i"), kUnset);
    EXPECT_EQ(whole("[a-z]", kelvin), kUnset);
    EXPECT_EQ(whole("[a-j]", kelvin, "i"), kUnset);
    EXPECT_EQ(whole("[k\\d]", kelvin, "i"), kUnset);  // a letter folds in ASCII only
}

TEST(Class, IllFormedBytesAreCharactersOfOneByte) {
    EXPECT_EQ(whole("[^a]", "\xC3z"), (Span{0, 1}));
    EXPECT_EQ(whole("[^a]", "\xC3"), (Span{0, 1}));
    EXPECT_EQ(whole("[\xC3\x83]", "\xC3z"), (Span{0, 1}));  // the byte C3 as code point C3
}

TEST(ClassQuantifier, GivesBackOneCharacterAtATime) {
    EXPECT_EQ(whole("[ab]*b", "abab"), (Span{0, 4}));
    EXPECT_EQ(whole("[a\xC3\xA9]*\xC3\xA9", "a\xC3\xA9\xC3\xA9"), (Span{0, 5}));
    EXPECT_EQ(whole("[a-z]{2,3}d", "abcd"), (Span{0, 4}));
    EXPECT_EQ(whole("[a-z]{3}", "ab"), kUnset);
    EXPECT_EQ(steps("[a-z]*1", "abc1"), 2);
    EXPECT_EQ(steps("[a-z]*2.", "abc1"),
              5 + 4 + 3 + 2 + 2);  // every start: the class and each give-back
}

TEST(ClassQuantifier, LazyTriesTheRestFirst) {
    EXPECT_EQ(whole("[a-z]*?c", "abcc"), (Span{0, 3}));
    EXPECT_EQ(whole("[a-z]{2,}?", "abcc"), (Span{0, 2}));
    EXPECT_EQ(whole("[a-z]+?$", "abc"), (Span{0, 3}));
    EXPECT_EQ(whole("[a-z]{1,2}?d", "abcd"), (Span{1, 3}));
}

TEST(ClassQuantifier, LazyPutsTheLengthBack) {
    EXPECT_EQ(whole("[a-z]+?1|\\w", "abc"), (Span{0, 1}));
}

// ---- Letters ------------------------------------------------------------------------------------

TEST(LetterQuantifier, GreedyTriesTheLongestFirst) {
    EXPECT_EQ(whole("a{0,3}", "aaab"), (Span{0, 3}));
    EXPECT_EQ(whole("a{0,3}", ""), (Span{0, 0}));
    EXPECT_EQ(steps("a{0,3}c.", "aaab"), 5 + 4 + 3 + 2 + 2);
    EXPECT_EQ(whole("a{2}b", "aaab"), (Span{1, 3}));
    EXPECT_EQ(whole("k+", "kKk", "i"), (Span{0, 3}));
    EXPECT_EQ(whole("\xE9+", "\xC9", "i", 0), kUnset);
}

TEST(LetterQuantifier, LazyNeedsItsMinimum) {
    EXPECT_EQ(whole("a{2,}?", "a"), kUnset);
    EXPECT_EQ(whole("a{2,}?", "aaa"), (Span{0, 2}));
    EXPECT_EQ(whole("a*?b", "aab"), (Span{0, 3}));
    EXPECT_EQ(whole("xa{1,2}?b", "xaab"), (Span{0, 4}));
    EXPECT_EQ(whole("xa{1,2}?b", "xaaab"), kUnset);
}

TEST(LetterQuantifier, HintSkipsContinuationsWithoutAStep) {
    EXPECT_EQ(steps("xa*?b", "xaaab"), 3);       // x, the run, and b where it stands
    EXPECT_EQ(steps("xa*?[b]c?", "xaaab"), 4);   // a class of one letter is a letter
    EXPECT_EQ(steps("xa*?[bc]", "xaaab"), 6);    // no hint: every position costs the class
    EXPECT_EQ(steps("xa*?b", "xaaab", "i"), 6);  // nor when case is ignored
}

TEST(LetterQuantifier, HintLooksAtTheByteBehindTheText) {
    // One byte behind the end is compared with the hint, and costs a step when it is equal.
    const auto stepsWith = [](const char* text) {
        Pattern pattern("(?>xa*?b)");
        int limit = 0;
        while (pattern.limit(limit).find(reinterpret_cast<const Zel8u*>(text), 2).status !=
               zelStatusOk) {
            ++limit;
        }
        return limit;
    };
    EXPECT_EQ(stepsWith("xab"), stepsWith("xac") + 1);
}

TEST(LetterQuantifier, LazyLeavesTheLengthRaised) {
    EXPECT_EQ(whole("a*?c|ab", "aab"), (Span{1, 3}));
    EXPECT_EQ(whole("a*c|aab", "aab"), (Span{0, 3}));
    EXPECT_EQ(whole("\\w+?;|\\w", "abc"), (Span{0, 4}));
}

TEST(ShorthandQuantifier, CountsCharacters) {
    EXPECT_EQ(whole(".{2}", "\xC3\xA9\xC3\xA9x"), (Span{0, 4}));
    EXPECT_EQ(whole(".{3}", "\xC3\xA9\xC3\xA9"), kUnset);
    EXPECT_EQ(whole(".{2}", "\xC3\xA9\xC3\xA9", nullptr, 0), (Span{0, 4}));
    EXPECT_EQ(whole("\\W{1,3}",
                    "\xC3\xA9\xC3\xA9"
                    "a"),
              (Span{0, 4}));
}

TEST(ShorthandQuantifier, GivesBackByTheCharacterBehindTheRun) {
    // Behind the run of two letters stands a character of two bytes: one step back takes both.
    EXPECT_EQ(whole("\\w*a(?:)", "aa\xC3\xA9"), (Span{0, 1}));
    EXPECT_EQ(whole("\\w*b.", "ab\xC3\xA9"), kUnset);
    // At the very end of the text it gives back one byte.
    EXPECT_EQ(whole("\\w*b", "ab"), (Span{0, 2}));
    EXPECT_EQ(whole(".*\\C", "a\xC3\xA9"), (Span{0, 3}));
    // It may lead in front of the run, but not in front of the text.
    EXPECT_EQ(whole("a\\w*x(?:)", "1xab\xE2\x82\xAC"), (Span{2, 0}));
    EXPECT_EQ(whole("a\\w*x(?:)", "xab\xE2\x82\xAC"), (Span{1, 0}));
    EXPECT_EQ(whole("a\\w*x(?:)", "ab\xE2\x82\xAC x"), kUnset);
}

// ---- Code points and Unicode kinds --------------------------------------------------------------

TEST(CodePoint, MatchesItsSequence) {
    EXPECT_EQ(whole("\\x{E9}", "\xC3\xA9"), kUnset);  // below 0x100 it is a byte
    EXPECT_EQ(whole("\\x{3B1}", "\xCE\xB1"), (Span{0, 2}));
    EXPECT_EQ(whole("\\x{3B1}", "\xCE\x91", "i"), (Span{0, 2}));
    EXPECT_EQ(whole("\\x{391}+", "\xCE\xB1\xCE\x91", "i"), (Span{0, 4}));
    EXPECT_EQ(whole("\\x{1F600}{2}", "\xF0\x9F\x98\x80\xF0\x9F\x98\x80"), (Span{0, 8}));
}

TEST(CodePoint, BeyondTheTableAllFoldToTheSame) {
    EXPECT_EQ(whole("\\x{E0FFF}", "\xF3\xA0\xBF\xBE", "i"), (Span{0, 4}));
    EXPECT_EQ(whole("\\x{E0FFF}", "\xF3\xA0\xBF\xBE"), kUnset);
}

TEST(CodePoint, GreedyGivesBackCharacters) {
    EXPECT_EQ(whole("\\x{3B1}*\\x{3B1}x", "\xCE\xB1\xCE\xB1x"), (Span{0, 5}));
    EXPECT_EQ(whole("\\p{L}+\xC3\xA9",
                    "\xC3\xA9"
                    "a\xC3\xA9"),
              (Span{0, 5}));
}

TEST(CodePoint, LazyReportsSuccessAtAnotherCharacter) {
    EXPECT_EQ(whole("\\x{3B1}*?x", "\xC3\xBCx"), (Span{0, 0}));
    EXPECT_EQ(whole("\\x{3B1}*?x", "\xCE\xB1x"),
              (Span{0, 2}));  // x itself is never tried: it ends the run
}

TEST(CodePoint, LazyWithoutAHintTriesTheRest) {
    EXPECT_EQ(whole("\\x{3B1}*?(?:x)", "\xCE\xB1x"), (Span{0, 3}));
    EXPECT_EQ(whole("\\x{3B1}*?(?:y)", "\xCE\xB1x"), (Span{0, 2}));
}

TEST(CodePoint, LazyNeverTriesTheRestAtTheEnd) {
    EXPECT_EQ(whole("x\\x{3B1}*?", "x"), kUnset);
    EXPECT_EQ(whole("x\\x{3B1}*?", "x\xCE\xB1"), (Span{0, 1}));
}

TEST(Unicode, Categories) {
    EXPECT_EQ(whole("\\p{Lu}", "a\xC3\x89"), (Span{1, 2}));
    EXPECT_EQ(whole("\\p{L}+", "1a\xC3\x89\xE4\xB8\xAD"), (Span{1, 6}));
    EXPECT_EQ(whole("\\P{L}", "a1"), (Span{1, 1}));
    EXPECT_EQ(whole("\\p{L&}",
                    "\xE4\xB8\xAD"
                    "a"),
              (Span{3, 1}));
    EXPECT_EQ(whole("\\p{Nd}{2}", "x12"), (Span{1, 2}));
}

TEST(Unicode, NegatedCategoryOfAnUnlistedCodePointDoesNotMatch) {
    EXPECT_EQ(whole("\\P{Lu}", "\xCD\xB8"), kUnset);  // U+0378 is unassigned
    EXPECT_EQ(whole("\\p{Cn}", "\xCD\xB8"), (Span{0, 2}));
    EXPECT_EQ(whole("\\P{Cn}", "\xCD\xB8"), (Span{0, 2}));
}

// A long search skips what no match can begin with; a short one tries every position.
TEST(Unicode, LongSearchesFindTheCharactersThatShortOnesFind) {
    std::vector<std::string> characters;
    for (int byte = 0x80; byte < 0x100; ++byte) characters.emplace_back(1, static_cast<char>(byte));
    for (unsigned c = 0x80; c < 0x800; ++c) {
        characters.push_back(
            {static_cast<char>(0xC0 | c >> 6), static_cast<char>(0x80 | (c & 63))});
    }
    for (unsigned c = 0x800; c < 0x10000; c += 97) {
        characters.push_back({static_cast<char>(0xE0 | c >> 12),
                              static_cast<char>(0x80 | (c >> 6 & 63)),
                              static_cast<char>(0x80 | (c & 63))});
    }
    for (unsigned c = 0x10000; c < 0x200000; c += 997) {
        characters.push_back(
            {static_cast<char>(0xF0 | c >> 18), static_cast<char>(0x80 | (c >> 12 & 63)),
             static_cast<char>(0x80 | (c >> 6 & 63)), static_cast<char>(0x80 | (c & 63))});
    }
    characters.push_back("\xF8\x88\x80\x80\x80");
    characters.push_back("\xFD\xBF\xBF\xBF\xBF\xBF");
    const std::string filler(40, '\x01');
    for (const char* source :
         {"[а-яё]", "[äöü]", "é", "(?i)[à-ö]", "(?i)é", "[^\\x01]", "[\\p{Lo}x]", "\\p{Lu}",
          "\\p{M}", "\\p{Cn}", "\\p{Co}", "\\p{Greek}", "\\p{Han}", "\\p{InCyrillic}",
          "[^\\x01а-я]", "[\\x{100}-\\x{FFFF}]", "[[:^cntrl:]]"}) {
        Pattern pattern(source, nullptr, 1);
        for (const std::string& character : characters) {
            Spans expected = pattern.spans(character);
            for (Span& span : expected) span.offset += static_cast<int>(filler.size());
            ASSERT_EQ(pattern.spans(filler + character), expected)
                << source << ' ' << testing::PrintToString(character);
        }
    }
}

TEST(Unicode, ScriptsAndBlocksCountCharacters) {
    EXPECT_EQ(whole("\\p{Linear_B}{2}", "\xF0\x90\x80\x80\xF0\x90\x80\x80"), (Span{0, 8}));
    EXPECT_EQ(whole("\\p{Greek}+", "a\xCE\xB1\xCE\xB2z"), (Span{1, 4}));
    EXPECT_EQ(whole("\\P{Greek}+",
                    "\xCE\xB1"
                    "az"),
              (Span{2, 2}));
    EXPECT_EQ(whole("\\p{InBasic}+",
                    "\xC3\xA9"
                    "ab"),
              (Span{2, 2}));
    EXPECT_EQ(whole("\\p{Any}+",
                    "\xC3\xA9"
                    "ab"),
              (Span{0, 4}));
}

TEST(Unicode, LazyStepsOverWhatItDoesNotAccept) {
    // The rest is tried only in front of an accepted character.
    EXPECT_EQ(whole("\\p{Lu}*?\\w", "1A"), (Span{0, 2}));
    EXPECT_EQ(whole("\\p{Lu}*?1", "1A"), kUnset);
}

TEST(CombiningSequence, BaseAndMarks) {
    EXPECT_EQ(whole("\\X", "e\xCC\x81x"), (Span{0, 3}));
    EXPECT_EQ(whole("\\X",
                    "\xCC\x81"
                    "e"),
              (Span{2, 1}));  // no base: no sequence
    EXPECT_EQ(whole("\\X{2}", "e\xCC\x81\xCC\x80o\xCC\x88"), (Span{0, 8}));
    EXPECT_EQ(whole("\\X*x", "e\xCC\x81x"), (Span{0, 4}));
    EXPECT_EQ(whole("\\X+?x", "e\xCC\x81x"), (Span{0, 4}));
    EXPECT_EQ(whole("\\X", "\xC3("), (Span{1, 1}));  // an ill-formed byte is no base
}

TEST(CombiningSequence, LazyTakesALeadingMarkBehindTheMinimum) {
    EXPECT_EQ(whole("a\\X*?x", "a\xCC\x81x"), (Span{0, 4}));
    EXPECT_EQ(whole("a\\X*x", "a\xCC\x81x"), kUnset);
}
