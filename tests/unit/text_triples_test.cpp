// The reject of pattern sets by a literal that the subject does not hold: it must say what a search
// would say, at every match limit, and it must say something at all.
#include "regexp/match/text_triples.h"

#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <vector>

#include "regexp_support.h"
#include "test_support.h"

namespace {

using namespace zel;
using zeltest::Pattern;

const Zel8u* bytes(const std::string& text) {
    return reinterpret_cast<const Zel8u*>(text.data());
}

constexpr int kMany = TextTriples::kFewestPatterns;

bool isRejected(Pattern& pattern, const std::string& text) {
    const TextTriples triples(bytes(text), static_cast<int>(text.size()), kMany);
    return triples.surelyExclude(*pattern.state());
}

struct SetResult {
    ZelStatus status;
    int count;
    bool operator==(const SetResult&) const = default;
};

SetResult searchAsSet(Pattern& pattern, const std::string& text) {
    std::vector<Zel8u> block(24 + 12 * kMany);
    auto* set = reinterpret_cast<ZelRegExpMultiState*>(block.data());
    EXPECT_EQ(zelsRegExpMultiInit(set, kMany), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiAdd(pattern.state(), 1, set), zelStatusOk);
    ZelRegExpFind records[8];
    ZelRegExpMultiFind found[kMany] = {};
    found[0].numFind = 8;
    found[0].pFind = records;
    EXPECT_EQ(zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()), found, set),
              zelStatusOk);
    return {found[0].status, found[0].numFind};
}

SetResult searchAlone(Pattern& pattern, const std::string& text) {
    ZelRegExpFind records[8];
    int count = 8;
    const ZelStatus status = zelsRegExpFind_8u(bytes(text), static_cast<int>(text.size()),
                                               pattern.state(), records, &count);
    return {status, count};
}

const std::vector<std::string> kPatterns = {
    "needle",
    "need",
    "nee",
    "\\bneedle\\b",
    "needle=\\d+",
    "\\d+ needle",
    "[a-z]+_needle",
    "\"[^\"]*needle[^\"]*\"",
    "([a-z]+) ([a-z]+) needle",
    "(needle)|hay",
    "hay|needle",
    "(hay|needle)",
    "(?:needle)?hay",
    "(?i)needle",
    "(?i:x)needle",
    "(?=hay)needle",
    "a|bc*needle",
    "\\w{2,5}needle",
    "\\w+?needle",
    ".*needle",
    "(?:ab)+needle",
    "x*y*z*needle",
    "ne(?#between)edle",
    "hay+needle",
    "x?(needl)e",
    "needle\\[[^\\]]+\\]",
    "(?:hay)+_needle",
    "(?:hay)*needle",
    "(?:a|b)?_needle",
    "\\w+ing \\w+ed needle",
    "(a*)*needle",
    "needle (?:hay ){1,3}needl",
    "^needle (\\d+) hay$",
    "\\w{1,9}\\w{1,9}\\w{1,9}needle\\d",
    "\\w{2,5}needle\\d",
    "\\w{1,3}\\w{1,3}needle\\d",
    ".*needle\\d",
    ".+needle|hay",
    "\\p{Ll}+needle",
    "needle\\p{Lu}+?",
};

const std::vector<std::string> kTexts = {
    "hay",
    "hay hay hay hay hay hay hay hay",
    "one needle in here",
    "xone needle in here",
    "abc_needle=12 needle",
    "12 NEEDLE and \"a needle\" 12 needle",
    "neeedle eedle needl nedle",
    "aaa bbb needle",
    "bc needlE bcneedle",
    "\xC3\xA9 needl\xC3\xA9 \xC3\xA9needle",
    "xyz xxyyzz",
    "n",
    std::string(150, 'a') + "needl",
};

TEST(TextTriples, ASetSaysWhatASearchSaysAtEveryMatchLimit) {
    for (const std::string& text : kTexts) {
        for (const std::string& expression : kPatterns) {
            for (const char* options : {"", "g", "i"}) {
                for (int format : {0, 1}) {
                    Pattern pattern(expression, options, format);
                    for (int limit = 0; limit < 2000; limit += limit < 200 ? 1 : 97) {
                        pattern.limit(limit);
                        ASSERT_EQ(searchAsSet(pattern, text), searchAlone(pattern, text))
                            << expression << " on " << text << " with " << limit;
                    }
                }
            }
        }
    }
}

TEST(TextTriples, ATextWithoutTheLiteralIsRejected) {
    for (const char* expression :
         {"needle", "\\bneedle\\b", "\\d+needle", "[a-z]+needle", "(needle)(\\d+)", "x*needle",
          "(?i)needle", "(?i:needle)", ".*needle", "\\d+(?:a|b)*needle", "^needle$", "needles?"}) {
        Pattern pattern(expression, "", 0);
        for (const std::string& text : kTexts) {
            if (text.find("needle") != std::string::npos) {
                EXPECT_FALSE(isRejected(pattern, text)) << expression << " on " << text;
            } else if (text.find("nee") == std::string::npos) {
                EXPECT_TRUE(isRejected(pattern, text)) << expression << " on " << text;
            }
        }
    }
}

TEST(TextTriples, APatternThatDoesWithoutTheLiteralIsNotRejected) {
    for (const char* expression :
         {"(?:needle)?", "needle|hay", "(hay|needle)", "(?!needle)", "(?:needle){0,2}",
          "hay|needle", "ne?ed?le?", "(?=needle)?", "(?>needle)", "ne?ed?le*"}) {
        Pattern pattern(expression, "", 0);
        EXPECT_FALSE(isRejected(pattern, "hay ne")) << expression;
    }
}

TEST(TextTriples, EachOfSeveralLiteralsIsMissed) {
    for (const char* expression : {"needle(?: \\w+){1,3} stack", "needle\\d? stack",
                                   "(needle) (stack)", "needle\\d+stack"}) {
        Pattern pattern(expression, "", 0);
        EXPECT_TRUE(isRejected(pattern, "a needle in the hay")) << expression;
        EXPECT_TRUE(isRejected(pattern, "the stack of hay")) << expression;
        EXPECT_FALSE(isRejected(pattern, "needle 12 stack needle stack")) << expression;
    }
}

TEST(TextTriples, LiteralsThatFollowEachOtherAreOne) {
    Pattern pattern("need(le)\\[(\\w+)", "", 0);
    EXPECT_TRUE(isRejected(pattern, "need of le[s]"));
    EXPECT_FALSE(isRejected(pattern, "a needle[s]"));
}

TEST(TextTriples, IgnoringCaseMakesNoDifference) {
    Pattern pattern("Needle=", "i", 0);
    EXPECT_FALSE(isRejected(pattern, "a nEEDLe="));
    EXPECT_TRUE(isRejected(pattern, "a nEEDs"));
}

TEST(TextTriples, ABudgetThatMayNotSufficeIsNotJudged) {
    Pattern pattern("\\w+needle\\d", "", 0);  // 13 starts, 13 lengths, three nodes
    pattern.limit(13 * 13 * 3 - 1);
    EXPECT_FALSE(isRejected(pattern, "hayhayhayhay"));
    pattern.limit(13 * 13 * 3);
    EXPECT_TRUE(isRejected(pattern, "hayhayhayhay"));
}

TEST(TextTriples, WithoutTheTrailingLiteralThereIsNoTextToSpendABudgetOn) {
    Pattern pattern("\\w+needle", "", 0);
    pattern.limit(1);
    EXPECT_TRUE(isRejected(pattern, "hayhayhayhay"));
    pattern.limit(0);
    EXPECT_FALSE(isRejected(pattern, "hayhayhayhay"));
}

TEST(TextTriples, ACopyOfAPatternIsRejectedAsWell) {
    int size = 0;
    ASSERT_EQ(zelsRegExpGetSize("^needle \\d+", &size), zelStatusOk);
    Pattern pattern("^needle \\d+", "", 0);
    std::vector<uint64_t> copy(static_cast<size_t>(size) / 8 + 1);
    memcpy(copy.data(), pattern.state(), static_cast<size_t>(size));
    const auto* state = reinterpret_cast<const ZelRegExpState*>(copy.data());
    const TextTriples triples(bytes("hay"), 3, kMany);
    EXPECT_TRUE(triples.surelyExclude(*state));
}

// As little room behind the literals as there can be: nothing behind the object is read.
TEST(TextTriples, ANoteIsLookedForWithinTheObject) {
    test::GuardedPages pages(1 << 16);
    ASSERT_TRUE(pages.available());
    for (const char* expression : {"",
                                   ".",
                                   "a",
                                   "ab",
                                   "abc",
                                   ".*",
                                   ".*a",
                                   ".*ab",
                                   ".*abc",
                                   ".+ab.",
                                   ".*ab[a]",
                                   ".*ab^$",
                                   "(?:.*)",
                                   "(?:.*)abc",
                                   "^",
                                   "^ab",
                                   "^abc",
                                   "^$^$^$",
                                   "^a.b.c",
                                   "a.b.c",
                                   "ab.cd",
                                   "abcdefghijklmno",
                                   "abcdefghijklmnop",
                                   "^abcdefghijklmno",
                                   ".*abcdefghijklmnop",
                                   "[abc]",
                                   "a|abc"}) {
        int size = 0;
        int offset = 0;
        ASSERT_EQ(zelsRegExpGetSize(expression, &size), zelStatusOk);
        auto* const state = reinterpret_cast<ZelRegExpState*>(pages.end() - size);
        // What lies behind the nodes before is not a note.
        for (int leftOver : {0, RequiredText::kMark + 0, 0xFF}) {
            memset(pages.end() - size, leftOver, static_cast<size_t>(size));
            ASSERT_EQ(zelsRegExpInit(expression, "", state, &offset), zelStatusOk);
            const RequiredText* const note = findRequiredText(*state);
            const std::string text = expression;
            EXPECT_EQ(note != nullptr, text.find("abc") != text.npos && text.back() != ']' &&
                                           text[0] != '(' && text[1] != '|')
                << expression;
            ZelRegExpFind match;
            int count = 1;
            EXPECT_EQ(zelsRegExpFind_8u(bytes("xyz"), 3, state, &match, &count), zelStatusOk);
        }
    }
}

TEST(TextTriples, NothingIsKnownOfALongText) {
    Pattern pattern("needle", "", 0);
    const std::string text(TextTriples::kLongestText, 'x');
    EXPECT_TRUE(isRejected(pattern, text));
    EXPECT_FALSE(isRejected(pattern, text + "x"));
}

TEST(TextTriples, NothingIsKnownForFewPatterns) {
    Pattern pattern("needle", "", 0);
    const TextTriples triples(bytes("hay"), 3, kMany - 1);
    EXPECT_FALSE(triples.surelyExclude(*pattern.state()));
}

TEST(TextTriples, ALiteralIsFoundWhereverItStands) {
    for (size_t length = 3; length < 20; ++length) {
        const std::string literal = std::string("abcdefghijklmnopqrst").substr(0, length);
        Pattern pattern(literal, "", 0);
        for (size_t before = 0; before < 40; ++before) {
            for (size_t behind = 0; behind < 20; ++behind) {
                const std::string text =
                    std::string(before, '.') + literal + std::string(behind, '-');
                ASSERT_FALSE(isRejected(pattern, text)) << text;
            }
            EXPECT_TRUE(isRejected(pattern, std::string(before, '.'))) << before;
        }
    }
}

}  // namespace
