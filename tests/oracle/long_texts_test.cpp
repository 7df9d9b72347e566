// The patterns of small worlds on texts long enough for a search to plan ahead: the library against
// the model, on results and on the exact number of steps. Each search is repeated with just the
// budget that the model needed, with one step less, and with half of it.
#include <gtest/gtest.h>
#include <stdio.h>

#include "model/model.h"
#include "pattern_tree.h"
#include "regexp/program.h"

using namespace worlds;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

const World kRuns = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kLiteral, "bc", false},
               {Tree::kClass, "[ab]"},
               {Tree::kClass, "[^a]"},
               {Tree::kShorthand, "."},
               {Tree::kShorthand, "\\w"}},
    .groups = {"("},
    .looks = {},
    .quantifiers = {"*", "+", "{2}", "{1,2}", "+?"},
    .size = 3,
    .letters = {},
    .options = {"", "g"},
};

const World kStarts = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kLiteral, "bc", false},
               {Tree::kClass, "[^b]"},
               {Tree::kPosition, "^"},
               {Tree::kPosition, "\\b"},
               {Tree::kPosition, "$"},
               {Tree::kOptions, "(?i)"}},
    .groups = {"(?:"},
    .looks = {"(?<=", "(?<!", "(?="},
    .quantifiers = {"+", "?"},
    .size = 3,
    .letters = {},
    .options = {"", "gm", "i"},
};

const World kCharacters = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kClass, "[a\xC3\xA9]"},
               {Tree::kClass, "[^a]"},
               {Tree::kShorthand, "\\W"},
               {Tree::kShorthand, "."},
               {Tree::kCodePoint, "\\x{101}"},
               {Tree::kProperty, "\\pL"}},
    .groups = {"(?>"},
    .looks = {},
    .quantifiers = {"*", "{2}", "+", "*?"},
    .size = 3,
    .letters = {},
    .options = {"", "g"},
    .utf8 = true,
};

World larger(World world) {
    ++world.size;
    return world;
}

/// Texts on which searches fail often, at line starts, in runs, in front of long characters.
std::vector<std::string> makeTexts() {
    std::vector<std::string> texts = {
        std::string(40, 'c'),
        std::string(20, 'c') + "abbc" + std::string(9, 'C'),
        std::string(24, 'a') + "b",
        "cab abc bca ccc aab\nbcc abcabc\n\ncba ab",
        "\n\nabc\nc\nbc\n" + std::string(12, '\n') + "aabb\ncabc",
        "Abc aBC bcbcbcbcbcbcbcbcbcb AAbbA",
        "c\xC3\xA9"
        "c bc\xC3\xA9 \xC4\x81\xC4\x81 a\xC3\xA9"
        "bc\xC3 ca\xC3\xA9\xC3\xA9\xC4\x81",
        "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"
        "a",
        "\xE2\x82\xAC\xE2\x82\xAC\xE2\x82 \x80\x80 bc\xF0\x9F\x98\x80 ab\xE2\x82\xAC\xC3",
    };
    unsigned state = 12345;
    for (const char* letters : {"abc", "ab \n", "abcc\xC3\xA9", "cccccccccccccab"}) {
        const std::string alphabet = letters;
        for (const size_t length : {17u, 33u, 70u}) {
            std::string text;
            while (text.size() < length) {
                state = state * 1664525 + 1013904223;
                text += alphabet[(state >> 16) % alphabet.size()];
            }
            texts.push_back(text);
        }
    }
    return texts;
}

class Comparison {
public:
    explicit Comparison(const World& world) : world_(world), texts_(makeTexts()) {}

    void run() {
        Patterns patterns(world_);
        patterns.forEach([&](const Tree& tree) {
            for (const char* options : world_.options) compare(textOf(tree), options);
        });
        printf("  %ld patterns, %ld searches, %ld of them with a budget that ends\n", patterns_,
               searches_, ended_);
        EXPECT_EQ(mismatches_, 0);
    }

private:
    // What takes more steps is compared up to here.
    static constexpr int kLimit = 2000;
    static constexpr int kRecords = 40;
    static constexpr int kMostShown = 20;

    struct Outcome {
        ZelStatus status;
        int count;
        ZelRegExpFind records[kRecords];

        bool sameAs(const Outcome& other) const {
            if (status != other.status || count != other.count) return false;
            for (int i = 0; i < kRecords; ++i) {
                if (records[i].pMatch != other.records[i].pMatch ||
                    records[i].lenMatch != other.records[i].lenMatch) {
                    return false;
                }
            }
            return true;
        }
    };

    template <typename Find>
    Outcome search(Find find, const std::string& text, int limit) {
        Outcome outcome = {.status = 0, .count = kRecords, .records = {}};
        state()->matchLimit = limit;
        outcome.status =
            find(reinterpret_cast<const Zel8u*>(text.data()), static_cast<int>(text.size()),
                 state(), outcome.records, &outcome.count);
        ++searches_;
        if (outcome.status == zelStatusRegExpMatchLimitError) ++ended_;
        return outcome;
    }

    void compare(const std::string& pattern, const char* options) {
        int size = 0;
        zelsRegExpGetSize(pattern.c_str(), &size);
        if (memory_.size() < static_cast<size_t>(size)) memory_.resize(static_cast<size_t>(size));
        int offset = 0;
        if (zelsRegExpInit(pattern.c_str(), options, state(), &offset) != zelStatusOk) return;
        ++patterns_;
        state()->format = world_.utf8 ? 1 : 0;
        for (const std::string& text : texts_) {
            const Outcome expected = search(model::zelsRegExpFind_8u, text, kLimit);
            const int needed = kLimit - model::stepsLeft();
            compareAt(pattern, options, text, kLimit, expected);
            if (expected.status != zelStatusOk) continue;
            for (const int limit : {needed, needed - 1, needed / 2}) {
                if (limit < 1) continue;
                compareAt(pattern, options, text, limit,
                          search(model::zelsRegExpFind_8u, text, limit));
            }
        }
    }

    void compareAt(const std::string& pattern, const char* options, const std::string& text,
                   int limit, const Outcome& expected) {
        const Outcome found = search(zelsRegExpFind_8u, text, limit);
        if (found.sameAs(expected) || ++mismatches_ > kMostShown) return;
        printf("MISMATCH: %s, options '%s', limit %d, on '%s'\n", pattern.c_str(), options, limit,
               text.c_str());
        show("library", found, text);
        show("model", expected, text);
    }

    static void show(const char* who, const Outcome& outcome, const std::string& text) {
        printf("    %s: status %d, %d records", who, outcome.status, outcome.count);
        for (int i = 0; i < outcome.count && i < 8 && outcome.status == zelStatusOk; ++i) {
            const ZelRegExpFind& record = outcome.records[i];
            printf(
                " %d+%d",
                record.pMatch == nullptr
                    ? -1
                    : static_cast<int>(reinterpret_cast<const char*>(record.pMatch) - text.data()),
                record.lenMatch);
        }
        printf("\n");
    }

    ZelRegExpState* state() { return reinterpret_cast<ZelRegExpState*>(memory_.data()); }

    const World& world_;
    const std::vector<std::string> texts_;
    std::vector<unsigned char> memory_;
    long patterns_ = 0;
    long searches_ = 0;
    long ended_ = 0;
    int mismatches_ = 0;
};

void compareWorld(World world) {
    if (kSanitized) --world.size;
    Comparison(world).run();
}

}  // namespace

TEST(LongTexts, Runs) {
    compareWorld(kRuns);
}
TEST(LongTexts, Starts) {
    compareWorld(kStarts);
}
TEST(LongTexts, Characters) {
    compareWorld(kCharacters);
}

TEST(LargerLongTexts, Runs) {
    compareWorld(larger(kRuns));
}
TEST(LargerLongTexts, Starts) {
    World world = larger(kStarts);
    world.options = {"gm"};
    compareWorld(world);
}
TEST(LargerLongTexts, Characters) {
    compareWorld(larger(kCharacters));
}
