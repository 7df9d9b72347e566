// zelgrep may search whole blocks of lines only where that finds exactly the lines that searching
// each of them finds. Random patterns over random text hold it to that; the plan of each kind of
// pattern is pinned beside it, so that the comparison cannot pass by never searching a block.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "block_plan.h"
#include "line_finder.h"
#include "pattern.h"

namespace zelgrep {
namespace {

class Generator {
public:
    explicit Generator(unsigned seed) : random_(seed) {}

    std::string pattern() { return alternatives(2); }

    std::string text(std::size_t size) {
        static const char* const kPieces[] = {"a", "b",    "a", "b",  " ",    "\n", "\n", "1",
                                              "_", "\xC3", "é", "日", "\x80", ".",  "ab", "B"};
        const bool ascii = below(3) == 0;
        std::string text;
        while (text.size() < size) {
            const std::string piece = kPieces[below(16)];
            if (!ascii || static_cast<unsigned char>(piece[0]) < 0x80) text += piece;
        }
        return text;
    }

    unsigned below(unsigned n) { return static_cast<unsigned>(random_()) % n; }

private:
    std::string alternatives(int depth) {
        std::string result = sequence(depth);
        while (below(6) == 0) {
            result += '|';
            result += sequence(depth);
        }
        return result;
    }

    std::string sequence(int depth) {
        std::string result;
        for (unsigned n = 1 + below(4); n > 0; --n) result += piece(depth);
        return result;
    }

    std::string piece(int depth) {
        static const char* const kAtoms[] = {
            "a",        "b",     "a",      "b",   "é",    ".",       ".",           "\\w",  "\\d",
            "\\s",      "\\S",   "\\W",    "\\b", "\\B",  "^",       "$",           "[ab]", "[^a]",
            "[^ab\\d]", "[a-é]", "[\\w1]", "1",   "\\pL", "\\p{Lu}", "[[:space:]]", "\\."};
        static const char* const kQuantifiers[] = {"*",    "+",  "?",  "{2}", "{1,3}",
                                                   "{0,}", "*?", "+?", "??"};
        std::string result;
        if (depth > 0 && below(5) == 0)
            result.append(below(2) == 0 ? "(" : "(?:").append(alternatives(depth - 1)).append(")");
        else
            result = kAtoms[below(26)];
        if (below(3) == 0) result += kQuantifiers[below(9)];
        return result;
    }

    std::mt19937 random_;
};

struct Found {
    std::vector<std::string> lines;
    std::vector<std::ptrdiff_t> limits;

    bool operator==(const Found&) const = default;
};

Found findAll(Pattern& pattern, BlockPlan plan, const std::string& text) {
    Found found;
    const auto* begin = reinterpret_cast<const Zel8u*>(text.data());
    const Span block{begin, begin + text.size()};
    LineFinder finder(pattern, plan, '\n',
                      [&](Span line) { found.limits.push_back(line.begin - begin); });
    finder.start(block);
    const Zel8u* from = block.begin;
    while (from < block.end) {
        const Span line = finder.next(from);
        if (line.begin >= block.end) break;
        found.lines.push_back(std::to_string(line.begin - begin) + ": " +
                              std::string(line.begin, line.end));
        from = line.end + 1;
    }
    return found;
}

TEST(LineFinder, FindsTheSameLinesInBlocksAsLineByLine) {
    const int seed = testing::UnitTest::GetInstance()->random_seed();  // 0 unless asked for
    Generator generator(static_cast<unsigned>(seed));
    int compared = 0;
    for (int i = 0; i < 1000; ++i) {
        const std::string text = generator.pattern();
        const BlockPlan plan = planFor(text, "");
        if (!plan.possible) continue;
        static const int kLimits[] = {33000, 100000, 10000000};
        const char* options = generator.below(4) == 0 ? "i" : "";
        std::string error;
        Pattern pattern(text, options, generator.below(5) == 0, kLimits[generator.below(3)], plan,
                        error);
        if (!error.empty()) continue;
        const std::string subject = generator.text(9000);
        ++compared;
        ASSERT_EQ(findAll(pattern, plan, subject), findAll(pattern, BlockPlan{}, subject))
            << "pattern " << text << " options " << options << " seed " << seed;
    }
    EXPECT_GT(compared, 300);
}

TEST(BlockPlan, PatternsThatStayInTheirLineAreSearchedInBlocks) {
    for (const char* pattern :
         {"word", "^Package: ", "\\bfree(dom|ly)\\b", "cat|dog", "a.*b$", "\\w+@\\w+\\.org",
          "\\p{Lu}\\p{Ll}+", "[a-z]{2,}", "x{2", "\\(\\d+\\)"}) {
        const BlockPlan plan = planFor(pattern, "i");
        EXPECT_TRUE(plan.possible) << pattern;
        EXPECT_FALSE(plan.confirm) << pattern;
    }
}

TEST(BlockPlan, LinesOfPatternsThatCanMatchANewlineAreConfirmed) {
    for (const char* pattern : {"a\\s+b", "\"[^\"]*\"", "\\D", "[\\s,]", "[[:space:]]x"}) {
        const BlockPlan plan = planFor(pattern, "");
        EXPECT_TRUE(plan.possible) << pattern;
        EXPECT_TRUE(plan.confirm) << pattern;
    }
}

TEST(BlockPlan, RunsOfShorthandsNeedAsciiText) {
    EXPECT_TRUE(planFor("a.*b", "").asciiOnly);
    EXPECT_TRUE(planFor("\\s?x", "").asciiOnly);
    EXPECT_TRUE(planFor("[\\w]+", "").asciiOnly);
    EXPECT_FALSE(planFor("\\d{4}-\\d\\d", "").asciiOnly);
    EXPECT_FALSE(planFor("a[bc]*d", "").asciiOnly);
}

TEST(BlockPlan, EverythingElseIsSearchedLineByLine) {
    for (const char* pattern :
         {"(?=a)b", "(a)\\1", "(?>a)", "\\Aa", "a\\z", "\\x41", "\\n", "\\p{Lu}+?x", "a|bc*d",
          "\\P{L}", "\\p{Greek}", "[\\x41]", "^?a", "\\Qa\\E", "a\\"})
        EXPECT_FALSE(planFor(pattern, "").possible) << pattern;
    EXPECT_FALSE(planFor("a", "s").possible);
    EXPECT_FALSE(planFor("a", "x").possible);
}

}  // namespace
}  // namespace zelgrep
