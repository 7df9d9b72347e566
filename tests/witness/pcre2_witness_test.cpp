// The library beside PCRE2 on the part of the language that both share: generated patterns, and
// every small pattern over every short text. Where they differ on purpose stands in one table,
// ordinary.cpp.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <gtest/gtest.h>
#include <pcre2.h>

#include <memory>

#include "ordinary.h"

namespace witness {
namespace {

struct Compiled {
    explicit Compiled(const OrdinaryCase& test) {
        uint32_t options = 0;
        for (char letter : test.options) {
            if (letter == 'i') options |= PCRE2_CASELESS;
            if (letter == 'm') options |= PCRE2_MULTILINE;
            if (letter == 's') options |= PCRE2_DOTALL;
        }
        int error;
        PCRE2_SIZE offset;
        code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(test.pattern.c_str()),
                             test.pattern.size(), options, &error, &offset, nullptr);
        if (code) data = pcre2_match_data_create_from_pattern(code, nullptr);
    }
    Compiled(const Compiled&) = delete;
    ~Compiled() {
        pcre2_match_data_free(data);
        pcre2_code_free(code);
    }

    Spans match(const std::string& text) const {
        Spans spans;
        int result = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text.c_str()), text.size(), 0,
                                 0, data, nullptr);
        if (result < 0) return spans;
        const PCRE2_SIZE* offsets = pcre2_get_ovector_pointer(data);
        uint32_t count = pcre2_get_ovector_count(data);
        for (uint32_t i = 0; i < count; ++i) {
            bool unset = offsets[2 * i] == PCRE2_UNSET;
            spans.push_back(unset
                                ? std::pair(-1, -1)
                                : std::pair(static_cast<int>(offsets[2 * i]),
                                            static_cast<int>(offsets[2 * i + 1] - offsets[2 * i])));
        }
        return spans;
    }

    pcre2_code* code = nullptr;
    pcre2_match_data* data = nullptr;
};

TEST(Pcre2Witness, GeneratedPatternsMatchAlike) {
    constexpr uint64_t count = 100000;
    int compared = 0;
    int matched = 0;
    for (uint64_t i = 0; i < count; ++i) {
        differential::Random random(2026, i);
        OrdinaryCase test = makeOrdinaryCase(random);
        Answer ours = ask(test);
        Compiled theirs(test);
        ASSERT_TRUE(ours.compiles) << test.pattern;
        ASSERT_NE(theirs.code, nullptr) << test.pattern;
        if (!ours.comparable) continue;
        Spans expected = theirs.match(test.text);
        ++compared;
        if (!expected.empty()) ++matched;
        EXPECT_EQ(describe(ours.spans), describe(expected))
            << "case " << i << ": /" << test.pattern << "/" << test.options << " on \"" << test.text
            << "\"";
        if (HasFailure()) return;
    }
    // The generator must keep making meaningful cases.
    EXPECT_GT(compared, 60000);
    EXPECT_GT(matched, 25000);
}

std::vector<std::string> allTexts(const std::string& letters, size_t longest) {
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < longest; ++i) {
        for (char letter : letters) texts.push_back(texts[i] + letter);
    }
    return texts;
}

TEST(Pcre2Witness, EverySmallPatternMatchesAlikeOnEveryShortText) {
    const std::vector<std::string> patterns = allTexts("ab.*+?|()", 5);
    const std::vector<std::string> texts = allTexts("ab", 4);
    long long compared = 0;
    for (const std::string& pattern : patterns) {
        OrdinaryCase test{pattern, "", ""};
        Compiled theirs(test);
        if (!theirs.code) continue;
        for (const std::string& text : texts) {
            test.text = text;
            Answer ours = ask(test);
            // Possessive quantifiers are not part of the language.
            if (!ours.compiles || !ours.comparable) break;
            ++compared;
            ASSERT_EQ(describe(ours.spans), describe(theirs.match(text)))
                << "/" << pattern << "/ on \"" << text << "\"";
        }
    }
    EXPECT_GT(compared, 200000);
}

TEST(Pcre2Witness, DeliberateDifferencesAreAsTheTableSays) {
    for (const Difference& row : deliberateDifferences()) {
        OrdinaryCase test{row.pattern, row.options, row.text};
        EXPECT_EQ(describe(ask(test).spans), describe(row.library))
            << row.pattern << ": " << row.reason;
        Compiled theirs(test);
        if (!theirs.code) continue;
        EXPECT_EQ(describe(theirs.match(row.text)), describe(row.others)) << row.pattern;
    }
}

}  // namespace
}  // namespace witness
