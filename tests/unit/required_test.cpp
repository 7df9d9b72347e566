// The reject of pattern sets by a literal that the subject does not hold: it must say what a search
// would say, at every match limit, and it must say something at all.
#include "regexp/match/required.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "regexp_support.h"

namespace {

using namespace zel;
using zeltest::Pattern;

const Zel8u* bytes(const std::string& text) {
    return reinterpret_cast<const Zel8u*>(text.data());
}

bool isRejected(Pattern& pattern, const std::string& text) {
    const TextPairs pairs(bytes(text), static_cast<int>(text.size()));
    return surelyFindsNothing(*pattern.state(), pairs);
}

struct SetResult {
    ZelStatus status;
    int count;
    bool operator==(const SetResult&) const = default;
};

SetResult searchAsSet(Pattern& pattern, const std::string& text) {
    std::vector<Zel8u> block(64);
    auto* set = reinterpret_cast<ZelRegExpMultiState*>(block.data());
    EXPECT_EQ(zelsRegExpMultiInit(set, 1), zelStatusOk);
    EXPECT_EQ(zelsRegExpMultiAdd(pattern.state(), 1, set), zelStatusOk);
    ZelRegExpFind records[8];
    ZelRegExpMultiFind found = {};
    found.numFind = 8;
    found.pFind = records;
    EXPECT_EQ(zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()), &found, set),
              zelStatusOk);
    return {found.status, found.numFind};
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
};

TEST(Required, ASetSaysWhatASearchSaysAtEveryMatchLimit) {
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

TEST(Required, ATextWithoutTheLiteralIsRejected) {
    for (const char* expression :
         {"needle", "\\bneedle\\b", "\\d+needle", "[a-z]+needle", "(needle) (\\d+)", "x*needle"}) {
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

TEST(Required, APatternThatDoesWithoutTheLiteralIsNotRejected) {
    for (const char* expression : {"(?:needle)?", "needle|hay", "(hay|needle)", "(?i)needle",
                                   "(?!needle)", "(?:needle){0,2}", "hay|needle"}) {
        Pattern pattern(expression, "", 0);
        EXPECT_FALSE(isRejected(pattern, "hay")) << expression;
    }
}

TEST(Required, ABudgetThatMayNotSufficeIsNotJudged) {
    Pattern pattern("\\w+needle", "", 0);
    pattern.limit(20);
    EXPECT_FALSE(isRejected(pattern, "hayhayhayhay"));
    pattern.limit(10000);
    EXPECT_TRUE(isRejected(pattern, "hayhayhayhay"));
}

TEST(Required, ALiteralIsFoundWhereverItStands) {
    for (int length = 3; length < 20; ++length) {
        const std::string literal =
            std::string("abcdefghijklmnopqrst").substr(0, static_cast<size_t>(length));
        for (size_t before = 0; before < 40; ++before) {
            for (size_t behind = 0; behind < 20; ++behind) {
                const std::string text =
                    std::string(before, '.') + literal + std::string(behind, '-');
                const TextPairs pairs(bytes(text), static_cast<int>(text.size()));
                ASSERT_TRUE(pairs.mayHold(bytes(literal), length)) << text;
            }
        }
    }
}

}  // namespace
