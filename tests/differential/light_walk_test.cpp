// Searches that the light walk decides, against the model, which has none: generated patterns of
// the kind it knows and of the kinds next to it, on short texts that nearly match, at the exact
// budget and next to it.
#include "regexp/match/light_walk.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "pattern_source.h"
#include "random.h"
#include "regexp_case.h"
#include "report.h"

namespace differential {
namespace {

const char* const kAtoms[] = {"a",
                              "b",
                              "\\d",
                              "\\w",
                              "\\s",
                              "\\S",
                              ".",
                              "[ab]",
                              "[^a]",
                              "[a-c1]",
                              "[\\d.]",
                              "\\W",
                              "[^\\s]",
                              "=",
                              "\xC3\xA9",
                              "[\xC3\xA9x]",
                              "[b-]",
                              "[\\0-\\x{FFFFFFFF}]",
                              "[^\\sb-\\x{80000000}]"};
const char* const kQuantifiers[] = {"",      "",     "",      "",   "+",  "*",  "?",     "{2}",
                                    "{1,3}", "{2,}", "{0,2}", "+?", "*?", "??", "{1,2}?"};
const char* const kGroupQuantifiers[] = {"", "", "", "?", "?", "{1,1}", "*", "{0,2}", "??", "{0}"};
const char* const kLiterals[] = {"ab", "a1", "b=a", "  ", "\xC3\xA9t"};
const char* const kPositions[] = {"$", "\\b", "\\B", "\\Z", "\\z", "^", "\\A"};

// A comment takes no node, and so leaves room for the light program.
const char kRoom[] = "(?#as much room as any of the programs may take)";

class SimplePattern {
public:
    explicit SimplePattern(Random& random) : random_(random) {}

    std::string pattern() {
        static const char* const kStarts[] = {"^", "^", "^", "\\A", "\\G", "^?"};
        return pick(kStarts) + sequence(2) + (random_.chance(50) ? "$" : "") +
               (random_.chance(5) ? "|b" : "") + (random_.chance(70) ? kRoom : "");
    }

    std::string subject() {
        static const char* const kPieces[] = {"a",  "b",  "c",   "1",        " ",        "=",
                                              "ab", "a1", "b=a", ".",        "\n",       "aa",
                                              "11", "  ", "-",   "\xC3\xA9", "\xC3\xA9t"};
        std::string text;
        for (int left = random_.below(9); left > 0; --left) text += pick(kPieces);
        if (!text.empty() && random_.chance(10)) {
            const std::string once = text;
            while (random_.chance(90) && text.size() < 300) text += once;
            if (random_.chance(50)) text += pick(kPieces);
        }
        return text;
    }

private:
    template <std::size_t size>
    std::string pick(const char* const (&choices)[size]) {
        return choices[random_.below(static_cast<int>(size))];
    }

    std::string sequence(int depth) {
        std::string text;
        for (int left = random_.between(1, 4); left > 0; --left) text += term(depth);
        return text;
    }

    std::string alternatives(int depth) {
        std::string text;
        while (random_.chance(25)) text += "|" + (random_.chance(90) ? sequence(depth) : "");
        return text;
    }

    std::string term(int depth) {
        const int kind = random_.below(20);
        if (kind == 0) return pick(kPositions);
        if (kind < 3) return pick(kLiterals);
        if (kind < 8 && depth > 0) {
            return (random_.chance(70) ? "(" : "(?:") + sequence(depth - 1) +
                   alternatives(depth - 1) + ")" + pick(kGroupQuantifiers);
        }
        return pick(kAtoms) + pick(kQuantifiers);
    }

    Random& random_;
};

void compareOne(Random& random, const std::string& pattern, const std::string& subject) {
    static const char* const kOptions[] = {"", "", "", "s", "m", "i", "g", "x"};
    static const int kBehind[] = {0, 'a', 'b', '=', '\n', 0xA9};
    const RegexpCase testCase = {.pattern = pattern,
                                 .options = kOptions[random.below(8)],
                                 .format = random.below(2),
                                 .limit = random.chance(80) ? 1500 : random.below(40),
                                 .subject = subject,
                                 .behind = kBehind[random.below(6)],
                                 .records = random.between(1, 8)};
    ASSERT_EQ(compare(testCase), "") << testCase.text();
}

TEST(LightWalk, AgreesWithTheModelOnSimplePatterns) {
    onDeepStack([] {
        for (uint64_t number = 0; number < 40000 && !testing::Test::HasFatalFailure(); ++number) {
            Random random(1, number);
            SimplePattern source(random);
            const std::string pattern = source.pattern();
            for (int i = 0; i < 3; ++i) compareOne(random, pattern, source.subject());
        }
    });
}

TEST(LightWalk, AgreesWithTheModelOnAnchoredPatternsOfAllKinds) {
    onDeepStack([] {
        for (uint64_t number = 0; number < 20000 && !testing::Test::HasFatalFailure(); ++number) {
            Random random(2, number);
            PatternSource source(random);
            const std::string pattern = "^" + source.pattern() + (random.chance(50) ? kRoom : "");
            compareOne(random, pattern, source.subject());
        }
    });
}

struct Decided {
    const char* pattern;
    const char* subject;
    zel::LightOutcome outcome;
};

// Most of what the walk decides, and what it must not decide.
const Decided kDecided[] = {
    {"^\\d{4}-\\d{2}-\\d{2}$", "2026-11-21", zel::LightOutcome::kMatched},
    {"^\\d{4}-\\d{2}-\\d{2}$", "2026-1-21", zel::LightOutcome::kFailed},
    {"^[+-]?\\d+(?:\\.\\d+)?(?:[eE][+-]?\\d+)?$", "6.022e23", zel::LightOutcome::kMatched},
    {"^[+-]?\\d+(?:\\.\\d+)?(?:[eE][+-]?\\d+)?$", "6.022e", zel::LightOutcome::kFailed},
    {"^\\s*(\\w+)\\s*=\\s*(.*?)\\s*$", "path = /usr/bin ", zel::LightOutcome::kMatched},
    {"^\\s*(\\w+)\\s*=\\s*(.*?)\\s*$", "no equals sign", zel::LightOutcome::kFailed},
    {"^(https?)://([^/:]+)(:\\d+)?(/[^?#]*)?", "http://a.b:80/", zel::LightOutcome::kMatched},
    {"^(.*)=(.*)$", "width=640", zel::LightOutcome::kMatched},  // the least room that there can be
    {"^.*$", "", zel::LightOutcome::kMatched},
    {"^\\w+$", "\xC3\xA9t\xC3\xA9", zel::LightOutcome::kNotKnown},
    {"^(a|b)$(?#xx)", "b", zel::LightOutcome::kMatched},
    {"^(?:GET|POST|(PUT)) (\\S+)$", "POST /", zel::LightOutcome::kMatched},
    {"^(?:GET|POST|(PUT)) (\\S+)$", "PATCH /", zel::LightOutcome::kFailed},
    {"^a|b", "b", zel::LightOutcome::kNotKnown},
    {"^(?:ab)+$", "abab", zel::LightOutcome::kNotKnown},
    {"^(a)\\1$", "aa", zel::LightOutcome::kNotKnown},
    {"^\\w*b$", "aaaaaaaaaa", zel::LightOutcome::kFailed},
};

zel::LightOutcome walk(ZelRegExpState& state, const std::string& subject) {
    const zel::LightProgram* program = zel::findLightProgram(state);
    if (program == nullptr) return zel::LightOutcome::kNotKnown;
    ZelRegExpFind results[8];
    int count = 8;
    const zel::SearchRequest request = {{state.groups, state.captures},
                                        reinterpret_cast<const Zel8u*>(subject.c_str()),
                                        static_cast<int>(subject.size()),
                                        state,
                                        results,
                                        &count,
                                        false};
    return zel::walkLightly(*program, request);
}

TEST(LightWalk, DecidesWhatItIsMadeFor) {
    for (const Decided& decided : kDecided) {
        ZelRegExpState* state = nullptr;
        int offset = 0;
        ASSERT_EQ(zelsRegExpInitAlloc(decided.pattern, "", &state, &offset), zelStatusOk);
        EXPECT_EQ(walk(*state, decided.subject), decided.outcome) << decided.pattern;
        // Not even one step too few is for the walk to decide.
        zelsRegExpSetMatchLimit(3, state);
        EXPECT_EQ(walk(*state, decided.subject), zel::LightOutcome::kNotKnown) << decided.pattern;
        zelsRegExpFree(state);
    }
}

TEST(LightWalk, LeavesLongTextsToTheEngine) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    ASSERT_EQ(zelsRegExpInitAlloc("^\\w+$", "", &state, &offset), zelStatusOk);
    EXPECT_EQ(walk(*state, std::string(255, 'a')), zel::LightOutcome::kMatched);
    EXPECT_EQ(walk(*state, std::string(256, 'a')), zel::LightOutcome::kNotKnown);
    zelsRegExpFree(state);
}

TEST(LightWalk, NeedsNothingOfWhereTheObjectStoodBefore) {
    const char* const pattern = "^(ab)?c=\\d{2,}cd";
    ZelRegExpState* state = nullptr;
    int size = 0;
    int offset = 0;
    ASSERT_EQ(zelsRegExpGetSize(pattern, &size), zelStatusOk);
    ASSERT_EQ(zelsRegExpInitAlloc(pattern, "", &state, &offset), zelStatusOk);
    auto* const copy = static_cast<ZelRegExpState*>(malloc(static_cast<size_t>(size)));
    memcpy(copy, state, static_cast<size_t>(size));
    memset(state, 0xAA, static_cast<size_t>(size));
    EXPECT_EQ(walk(*copy, "abc=123cd"), zel::LightOutcome::kMatched);
    EXPECT_EQ(walk(*copy, "abc=1cd"), zel::LightOutcome::kFailed);
    free(copy);
    zelsRegExpFree(state);
}

TEST(LightWalk, TakesNoProgramThatAnotherPatternLeftBehind) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    for (const char* pattern : {"^a|b$(?#xxxx)", "^?\\w+$(?#xxx)", "^\\w+?b*$(?#x)"}) {
        ASSERT_EQ(zelsRegExpInitAlloc("^\\w+$(?#xxxxxxx)", "", &state, &offset), zelStatusOk);
        ASSERT_NE(zel::findLightProgram(*state), nullptr);
        ASSERT_EQ(zelsRegExpInit(pattern, "", state, &offset), zelStatusOk);
        EXPECT_EQ(zel::findLightProgram(*state), nullptr) << pattern;
        zelsRegExpFree(state);
    }
}

}  // namespace
}  // namespace differential
