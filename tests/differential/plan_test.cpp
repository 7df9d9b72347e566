// Searches that plan, against the model, which does not: for every kind of plan, patterns that lead
// to it and texts long enough for it to be drawn up, made of what the patterns look for and what
// comes close. The comparison covers the exact budget on both sides, and with it the exchange of
// the upper bound that a plan pays for the search that tries every position.
#include <gtest/gtest.h>
#include <limits.h>

#include <string>
#include <vector>

#include "random.h"
#include "regexp/match/enclosed_run.h"
#include "regexp/match/one_way.h"
#include "regexp/match/plain_literals.h"
#include "regexp/match/plan.h"
#include "regexp_case.h"
#include "report.h"

namespace differential {
namespace {

using zel::Plan;

struct PlannedPattern {
    const char* pattern;
    const char* options;
    Plan::Kind kind;
};

// In the order of the kinds; the last ones are those for which there is no plan.
const PlannedPattern kPlanned[] = {
    {"signal[a-z]", "", Plan::kLiteral},
    {"signal[a-z]", "i", Plan::kLiteral},
    {"(?<!un)signed\\b", "", Plan::kLiteral},
    {"((ab)c)\\w", "", Plan::kLiteral},
    {"error(?! message)", "", Plan::kLiteral},
    {"(?<==)\\w+", "", Plan::kBehind},
    {"(?<=ab)[^a]", "", Plan::kBehind},
    {".*ERROR.*", "", Plan::kLine},
    {".+b\\w", "", Plan::kLine},
    {"\"[^\"\\n]*\"", "", Plan::kSet},
    {"[xy]\\d", "", Plan::kSet},
    {"a?b[cd]", "", Plan::kSet},
    {"error|warning|signal|ab", "", Plan::kPrefix},
    {"(?:error|signal)\\w", "i", Plan::kPrefix},
    {"[A-Z][a-z]+ [A-Z]", "", Plan::kPrefix},
    {"\\d\\d\\d", "", Plan::kPrefix},
    {"\\d\\.\\d+\\.\\d", "", Plan::kShape},
    {"\\we=?[a-z]L", "i", Plan::kPrefix},
    {"\\wel", "i", Plan::kShape},
    {"[a-f]{2}\\w+?1", "", Plan::kPrefix},
    {"(\\w)\\1", "", Plan::kDoubled},
    {"(\\w+)=(\\w+)", "", Plan::kRun},
    {"[\\w.+-]+@[\\w-]+\\.[\\w.-]+", "", Plan::kRun},
    {"\\d{1,3}\\.\\d{1,3}", "", Plan::kRun},
    {"\\d{4}-\\d{2}", "", Plan::kShape},
    {"(\\d{3})[12](?!x)", "", Plan::kShape},
    {"[a-z]b[a-z]+?\\d", "", Plan::kShape},
    {"\\w+(?=\\()", "", Plan::kRun},
    {"\\b(\\w+) \\1\\b", "", Plan::kRun},
    {"(?:\\w+::)+\\w", "", Plan::kRunLiteral},
    {"(([a-z]+)-([a-z]+))", "", Plan::kRun},
    {"\\w{3,}=", "", Plan::kRun},
    {"[a-z]+ing\\b", "", Plan::kRunLiteral},
    {"\\w+ly\\b", "", Plan::kRunLiteral},
    {"\\w{2,}b\\w", "", Plan::kRunLiteral},
    {"[a-z]+=val", "", Plan::kRunLiteral},
    {"((?-i)[a-z]+)IG[a-z]", "i", Plan::kSet},
    {"\\w+\\s+ab\\w+", "", Plan::kRunLiteral},
    {"[a-z]+ +error[^a]", "", Plan::kRunLiteral},
    {"(?:[a-z]+-?){2}[0-9]", "", Plan::kRequired},
    {"(?:[a-z]+-?){2,3}[0-9]x", "", Plan::kRequired},
    {"(a+)+b", "", Plan::kRequired},
    {"((?:ab?)+c?)+[0-9]", "", Plan::kRequired},
    {"((?:ab?)+c?)*[0-9]", "", Plan::kSet},
    {"(?:s[a-z]*[a-z])+=[a-z]", "", Plan::kRequired},
    {"[a-z]+[a-z]*[a-z=]*\\d", "", Plan::kRequired},
    {"[a-z]*\\d", "", Plan::kSet},
    {"\\p{Lu}\\w", "", Plan::kSet},
    {"[\xC3\xA9q]*\\d", "", Plan::kSet},
    {"x*", "", Plan::kNone},
    {"(?:[a-z]?[a-z]?){3}[0-9]", "", Plan::kNone},
    {"(?=a|)b?", "", Plan::kNone},
    {"\\x{3B1}*?\\w", "", Plan::kNone},
};

// Where only starts of lines are tried.
const PlannedPattern kPlannedLines[] = {
    {"^error\\w*", "m", Plan::kLiteral}, {"^(\\w+): (.*)$", "m", Plan::kRun},
    {"^\\w+=", "m", Plan::kRun},         {"^[^=]+=", "m", Plan::kSet},
    {"^[A-Z]+.", "m", Plan::kSet},       {"^(?:error|signal)", "im", Plan::kSet},
};

// Only drawn up by the exact shape of the whole pattern.
const char* const kPlainRuns[] = {"\\w+", "\\s+", "[^a-m]+", "a+", ".+", "\\W+", "[a-z\xC3\xA9]+"};

struct OneWayPattern {
    const char* pattern;
    const char* options;
    bool isOneWay;
};

// Patterns that can match in one way only, each with a kind of part that others lack, and their
// neighbours that cannot.
const OneWayPattern kOneWay[] = {
    {"signal[a-z]", "", true},
    {"Signal\\w", "i", true},
    {"error|warning|signals?|ab", "", true},
    {"(error)|(\\w)b|(ab) ", "", true},
    {"(\\w+)=(\\w+)", "", true},
    {"\\d{1,3}\\.\\d{1,3}", "", true},
    {"^(\\w+): (.*)$", "m", true},
    {"^(\\S+ \\S+) (.*)\\b", "m", true},
    {"[a-z]+ing\\b", "", true},
    {"\\w{2,}b\\w", "", true},
    {"[^ ]+b ", "", true},
    {".+b\\w?", "", true},
    {"[a-y].+x", "", true},
    {"[^ ]+\\b", "", true},
    {"\".*?\"", "", true},
    {"\"(.+?\") ", "", true},
    {"x\\w*?1\\b", "", true},
    {"a[^b]+?b", "", true},
    {"\\w+(?=\\()", "", true},
    {"\\w+(?!\\()", "", true},
    {"(?<==)\\w+ ", "", true},
    {"(?<!un)signed\\b", "", true},
    {"(\\w)\\1", "", true},
    {"\\b(\\w+) \\1\\b", "", true},
    {"((a)-?(\\w))\\3", "", true},
    {"\\S{2}=", "", true},
    {"\\D{1,2}\\d", "", true},
    {"[\xC3\xA9x]+\\w", "", true},
    {"a(?i)b+\\d", "", true},
    {"\\w+?=", "", true},
    {"\"(.*?)\"", "", false},
    {"a\\w{2}?b", "", false},
    {"signal|\".*?\"", "", false},
    {"(?:ab|b)c", "", false},
    {"(?:ab)+", "", false},
    {"ab(?=\\w)", "", false},
    {"(\\w)\\1+", "", false},
    {"signal\\C", "", false},
};

// Characters in a row, collected without the engine in UTF-8 text.
const char* const kSequences[] = {"[\\x{3B1}-\\x{3C9}\xC3\xA9]+",
                                  "\\p{Lu}\\p{Ll}+",
                                  "\\p{Lu}\\p{Ll}*",
                                  "\\P{Lu}{2}\\p{L}",
                                  ".{4}",
                                  "\\W\\w{2,5}",
                                  "[^a-z\xC3\xA9]{3}",
                                  "\\x{3B1}.{0,2}",
                                  "\\p{InGreek}[^q]+",
                                  "(?i)[\xC3\x89-\xC3\xA9x]+",
                                  "[\\x{20AC}\\x{1F600}]+",
                                  "\\x{E9}{1}\\p{L}{0}[a-z]?",
                                  "\\p{L}{3,2}",
                                  "\\p{L&}+",
                                  "\\p{C}",
                                  "[a-\xC3\xA9]"};

// A run of bytes behind a literal, and perhaps one that ends it; the last ones are more than that,
// or such that longer characters may make a difference.
struct EnclosedCase {
    const char* pattern;
    const char* options;
    bool isRead;
};
const EnclosedCase kEnclosed[] = {
    {"signal[a-z]+", "", true},  {"ab[^b]*b", "", true},         {"ab\\w*", "", true},
    {"xx.*?b", "", true},        {"ab.+?a", "", true},           {"er.*", "", true},
    {"wo[a-z]+ wo", "", true},   {"\xC3\xA9[^ ]+ ", "", true},   {"ab[abc]*=", "", true},
    {"x[a-z1]+", "", true},      {"\"[^\"\\n]*\"", "", true},    {"\".*?\"", "", true},
    {"e[^b]*b", "", true},       {"\xC3[^x]+", "", true},        {"a.+?r", "", true},
    {"b\\W*", "", true},         {"\"\\w*\"", "", false},        {"\xA9[a-z]+", "", false},
    {"x[a-z1]+1", "", false},    {"x[a-z1]+", "i", false},       {"x{2}[a-z]+", "", false},
    {"(?:x)[a-z]+", "", false},  {"b(?=x)+", "", false},         {"a[^b]{0,9}b", "", false},
    {"^Key: .*$", "m", true},    {"^k[a-z]+", "m", true},        {"^ab.*?b", "m", true},
    {"x[a-z]+$", "m", true},     {"^(?:ab).*$", "m", false},     {"error.+$", "m", true},
    {"^[^b]*b", "m", false},     {"^Key: .*$", "", false},       {"x[^b]*$", "m", false},
    {"ab\\d*$", "m", false},     {"ab\\b[a-z]*", "m", false},    {"^*ab[a-z]*", "m", false},
    {"ab[a-z]*\\b", "m", false}, {"ab[a-z]*^", "m", false},      {"signal[a-z]+", "i", false},
    {"ab\\w{2,}", "", false},    {"ab\\w+?", "", false},         {"ab\\w+=", "", false},
    {"xx.*?ab", "", false},      {"ab[a-z]+b", "", false},       {"ab([a-z]+)", "", false},
    {"ab[a-z]+=\\d", "", false}, {"ab[a-z]+|signal", "", false}, {"ab[a-z\xC3\xA9]+", "", false},
};

const char* const kFragments[] = {"signal",
                                  "signals",
                                  "SIGNAL",
                                  "unsigned",
                                  "signed",
                                  "abc",
                                  "ab",
                                  "error",
                                  "error message",
                                  "errors ",
                                  "=",
                                  "key=value",
                                  " ",
                                  " ",
                                  "  ",
                                  "\n",
                                  "\n",
                                  "ERROR",
                                  "b",
                                  "\"x y\"",
                                  "\"",
                                  "x1",
                                  "xx",
                                  "y2",
                                  "warning",
                                  "The End",
                                  "Two Words",
                                  "123",
                                  "2024-11",
                                  "1.2.3",
                                  "12345",
                                  "abc1",
                                  "fe1",
                                  "letter",
                                  "word word ",
                                  "a::b::c",
                                  "f(x)",
                                  "run(",
                                  "me@x.org",
                                  "a-b",
                                  "going",
                                  "ingot",
                                  "really",
                                  "only ",
                                  "bly",
                                  "tab ab1",
                                  "\xC3\xA9",
                                  "\xC3\xA9t\xC3\xA9",
                                  "\xCE\xB1",
                                  "\xE2\x82\xAC",
                                  "\xF0\x9F\x98\x80",
                                  "\xC3",
                                  "\xFF",
                                  "\x80",
                                  "\xC3\x89x",
                                  "Key: value",
                                  "name: x\n",
                                  "q"};

std::string someText(Random& random) {
    std::string text;
    // Few different fragments make texts in which the same thing nearly happens again and again.
    std::vector<const char*> fragments;
    constexpr int kAll = static_cast<int>(std::size(kFragments));
    constexpr std::size_t kFew = 12;
    while (fragments.size() < kFew) fragments.push_back(kFragments[random.below(kAll)]);
    const auto length = static_cast<std::size_t>(random.between(30, 330));
    while (text.size() < length) text += fragments[static_cast<std::size_t>(random.below(kFew))];
    return text;
}

Plan::Kind planOf(const PlannedPattern& planned, int format, bool lines) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    EXPECT_EQ(zelsRegExpInitAlloc(planned.pattern, planned.options, &state, &offset), zelStatusOk);
    zelsRegExpSetFormat(format, state);
    Plan plan;
    zel::StackGuard stack;
    stack.start();
    zel::makePlan(*state, lines, stack, plan);
    const Plan::Kind kind = plan.kind;
    zelsRegExpFree(state);
    return kind;
}

void compareOnTexts(const char* pattern, const std::string& options, int texts) {
    Random random(1, options.size());
    for (int i = 0; i < texts; ++i) {
        for (const char* mode : {"", "g"}) {
            const RegexpCase testCase = {.pattern = pattern,
                                         .options = options + mode,
                                         .format = i % 2,
                                         .limit = i % 3 == 0 ? random.between(100, 3000) : INT_MAX,
                                         .subject = someText(random),
                                         .behind = 'a',
                                         .records = 400};
            ASSERT_EQ(compare(testCase), "") << testCase.text();
        }
    }
}

constexpr int kTexts = 60;

TEST(Plan, IsOfTheKindThatThePatternAllows) {
    for (const PlannedPattern& planned : kPlanned) {
        EXPECT_EQ(planOf(planned, zel::kFormatUtf8, false), planned.kind) << planned.pattern;
        EXPECT_EQ(planOf(planned, zel::kFormatBytes, false), planned.kind) << planned.pattern;
    }
    for (const PlannedPattern& planned : kPlannedLines) {
        EXPECT_EQ(planOf(planned, zel::kFormatUtf8, true), planned.kind) << planned.pattern;
    }
}

TEST(Plan, SearchesAgreeWithTheModelOnLongTexts) {
    onDeepStack([] {
        for (const PlannedPattern& planned : kPlanned) {
            compareOnTexts(planned.pattern, planned.options, kTexts);
        }
        for (const PlannedPattern& planned : kPlannedLines) {
            compareOnTexts(planned.pattern, planned.options, kTexts);
        }
    });
}

bool isEnclosedRun(const std::string& pattern, const std::string& options, int format) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    EXPECT_EQ(zelsRegExpInitAlloc(pattern.c_str(), options.c_str(), &state, &offset), zelStatusOk);
    zelsRegExpSetFormat(format, state);
    zel::StackGuard stack;
    stack.start();
    const bool isRead = zel::EnclosedRun().read(*state, stack);
    zelsRegExpFree(state);
    return isRead;
}

TEST(EnclosedRun, IsReadWhereThePatternIsNothingElse) {
    for (const EnclosedCase& enclosed : kEnclosed) {
        EXPECT_EQ(isEnclosedRun(enclosed.pattern, enclosed.options, zel::kFormatUtf8),
                  enclosed.isRead)
            << enclosed.pattern;
    }
}

TEST(EnclosedRun, SearchesAgreeWithTheModelOnLongTexts) {
    onDeepStack([] {
        for (const EnclosedCase& enclosed : kEnclosed)
            compareOnTexts(enclosed.pattern, enclosed.options, kTexts);
    });
}

TEST(EnclosedRun, AnswersWithinTheBudgetWhereItIsDearest) {
    const std::string lines(300, '\n');
    const std::string run = "x" + std::string(300, 'a');
    const struct {
        const char* pattern;
        std::string subject;
    } cases[] = {{"^ab.+$", lines}, {"^ab.+$", lines + "ab"}, {"^ab.+$", lines + "abc\n"},
                 {"x[a-z]+$", run}, {"x[a-z]+$", run + "1"},  {"x[a-z]*1", run},
                 {"x[a-z]*?x", run}};
    onDeepStack([&cases] {
        for (const auto& dear : cases) {
            EXPECT_TRUE(isEnclosedRun(dear.pattern, "gm", zel::kFormatBytes));
            for (const int limit :
                 {301, 302, 400, 500, 599, 600, 601, 602, 603, 700, 900, INT_MAX}) {
                const RegexpCase testCase = {.pattern = dear.pattern,
                                             .options = "gm",
                                             .format = zel::kFormatBytes,
                                             .limit = limit,
                                             .subject = dear.subject,
                                             .behind = 'a',
                                             .records = 4};
                EXPECT_EQ(compare(testCase), "") << testCase.text();
            }
        }
    });
}

TEST(EnclosedRun, AnyOfThemAgreesWithTheModel) {
    static const char* const literals[] = {"\"", "a", "b",  "x",  "e",        "=",    " ",
                                           "\n", "(", "xx", "ab", "\xC3\xA9", "\xC3", "error"};
    static const char* const atoms[] = {".",      "\\w",         "\\W",  "\\S",      "\\D",
                                        "[a-z]",  "[ab]",        "[^b]", "[^\"\\n]", "[^=x]",
                                        "[^a-z]", "[^\xC3\xA9]", "x",    "[^\\x80]"};
    static const char* const quantifiers[] = {"*", "+", "*?", "+?"};
    constexpr int kCases = 4000;
    int read = 0;
    onDeepStack([&read] {
        for (int i = 0; i < kCases; ++i) {
            Random random(2, static_cast<uint64_t>(i));
            const auto literal = [&random] {
                const std::string text = random.pick(literals);
                return text == "(" ? "\\(" : text;
            };
            const bool isMultiLine = random.chance(50);
            std::string pattern = isMultiLine && random.chance(50) ? "^" : "";
            pattern += literal();
            pattern += random.pick(atoms);
            pattern += random.pick(quantifiers);
            if (isMultiLine && random.chance(50))
                pattern += "$";
            else if (random.chance(80))
                pattern += literal();
            const RegexpCase testCase = {
                .pattern = pattern,
                .options =
                    std::string("g") + (random.chance(20) ? "s" : "") + (isMultiLine ? "m" : ""),
                .format = random.below(2),
                .limit = random.chance(50) ? random.between(200, 3000) : INT_MAX,
                .subject = someText(random),
                .behind = 'a',
                .records = random.chance(20) ? random.between(1, 9) : 400};
            ASSERT_EQ(compare(testCase), "") << testCase.text();
            read += isEnclosedRun(pattern, testCase.options, testCase.format);
        }
    });
    EXPECT_GT(read, kCases / 3);
}

// Nothing but a literal or several; the last ones begin inside of a character, or are more than
// that, or too short to choose from.
struct PlainLiteralCase {
    const char* pattern;
    const char* options;
    int format;
    bool isRead;
};
const PlainLiteralCase kPlainLiterals[] = {
    {"signal", "", zel::kFormatBytes, true},
    {"Signal", "i", zel::kFormatUtf8, true},
    {"error", "i", zel::kFormatBytes, true},
    {"b", "", zel::kFormatUtf8, true},
    {"B", "i", zel::kFormatBytes, true},
    {"xx", "", zel::kFormatBytes, true},
    {"ERROR", "", zel::kFormatBytes, true},
    {"\xC3\xA9t", "", zel::kFormatUtf8, true},
    {"\xA9t", "", zel::kFormatBytes, true},
    {"\xC3", "", zel::kFormatUtf8, true},
    {"error|signal", "", zel::kFormatBytes, true},
    {"ERR|err|error|sig", "i", zel::kFormatUtf8, true},
    {"xx|abb|xxx|bcc", "", zel::kFormatBytes, true},
    {"er|ERROR|\xC3\xA9t", "", zel::kFormatUtf8, true},
    {"\xA9t", "", zel::kFormatUtf8, false},
    {"(signal)", "", zel::kFormatBytes, false},
    {"signals?", "", zel::kFormatUtf8, false},
    {"error|", "", zel::kFormatBytes, false},
    {"error|\xA9t", "", zel::kFormatUtf8, false},
    {"|error", "", zel::kFormatBytes, false},
    {"error|e", "", zel::kFormatBytes, false},
    {"(error|signal)", "", zel::kFormatBytes, false},
    {"error|(?i)er", "", zel::kFormatBytes, false},
    {"aa|ab|ac|ad|ae|af|ag|ah|ai|aj|ak|al|am|an|ao|ap|aq|ar|as|at|au|av|aw|ax|ay|az|ba|bb|bc|bd|be|"
     "bf",
     "", zel::kFormatBytes, true},
    {"aa|ab|ac|ad|ae|af|ag|ah|ai|aj|ak|al|am|an|ao|ap|aq|ar|as|at|au|av|aw|ax|ay|az|ba|bb|bc|bd|be|"
     "bf|bg",
     "", zel::kFormatBytes, false},
};

TEST(PlainLiterals, AreReadWhereThePatternIsNothingElse) {
    for (const PlainLiteralCase& plain : kPlainLiterals) {
        ZelRegExpState* state = nullptr;
        int offset = 0;
        ASSERT_EQ(zelsRegExpInitAlloc(plain.pattern, plain.options, &state, &offset), zelStatusOk);
        zelsRegExpSetFormat(plain.format, state);
        zel::PlainLiterals literals;
        EXPECT_EQ(literals.read(*state), plain.isRead) << plain.pattern;
        zelsRegExpFree(state);
    }
}

TEST(PlainLiterals, SearchesAgreeWithTheModel) {
    onDeepStack([] {
        for (const PlainLiteralCase& plain : kPlainLiterals) {
            compareOnTexts(plain.pattern, plain.options, kTexts);
        }
    });
}

// What stands behind the last place of a literal costs no step, which shows at the limits that
// suffice up to there but not for the whole text.
TEST(PlainLiterals, EveryLimitUpToTheTextsLengthAgreesWithTheModel) {
    const std::string subject = "signal, Signal, sign and signal; nothing else";
    onDeepStack([&subject] {
        for (const char* options : {"", "g", "i", "gi"}) {
            for (const char* pattern : {"signal", "signal,", "absent", "error|signal"}) {
                for (int limit = 0; limit < static_cast<int>(subject.size()) + 4; ++limit) {
                    const RegexpCase testCase = {.pattern = pattern,
                                                 .options = options,
                                                 .format = zel::kFormatBytes,
                                                 .limit = limit,
                                                 .subject = subject,
                                                 .behind = 'a',
                                                 .records = 4};
                    ASSERT_EQ(compare(testCase), "") << testCase.text();
                }
            }
        }
    });
}

bool isOneWay(const OneWayPattern& pattern) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    EXPECT_EQ(zelsRegExpInitAlloc(pattern.pattern, pattern.options, &state, &offset), zelStatusOk);
    zel::StackGuard stack;
    stack.start();
    zel::OneWay oneWay;
    zel::makeOneWay(*state, stack, oneWay);
    zelsRegExpFree(state);
    return oneWay.isKnown();
}

TEST(OneWay, IsKnownWhereNothingCanBeMatchedInTwoWays) {
    for (const OneWayPattern& pattern : kOneWay) {
        EXPECT_EQ(isOneWay(pattern), pattern.isOneWay) << pattern.pattern;
    }
}

TEST(OneWay, SearchesAgreeWithTheModel) {
    onDeepStack([] {
        for (const OneWayPattern& pattern : kOneWay) {
            compareOnTexts(pattern.pattern, pattern.options, kTexts);
        }
    });
}

TEST(Plan, RunsAndSequencesAgreeWithTheModel) {
    onDeepStack([] {
        for (const char* pattern : kPlainRuns) compareOnTexts(pattern, "", kTexts);
        for (const char* pattern : kSequences) {
            compareOnTexts(pattern, "", kTexts);
            compareOnTexts(pattern, "i", kTexts);
        }
    });
}

}  // namespace
}  // namespace differential
