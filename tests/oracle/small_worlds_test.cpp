// Exhaustive small worlds: all patterns up to a small size over a few constructs, on all short
// texts, compared with PCRE2: the first match with all its groups, and for patterns without groups
// all matches. Where the library means to differ stands in the table of differences.h; any other
// mismatch is printed and fails the test.
#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>

#include <deque>

#include "differences.h"
#include "pattern_tree.h"
#include "pcre.h"
#include "regexp/program.h"
#include "zelchmx.h"

using namespace worlds;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool kSanitized = true;  // and several times slower: shorter texts will do
#else
constexpr bool kSanitized = false;
#endif

const World kEverything = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kLiteral, "b"},
               {Tree::kShorthand, "."},
               {Tree::kClass, "[ab]"},
               {Tree::kClass, "[^a]"},
               {Tree::kReference, "\\1"},
               {Tree::kPosition, "^"},
               {Tree::kPosition, "$"},
               {Tree::kPosition, "\\b"}},
    .groups = {"(", "(?:", "(?>"},
    .looks = {"(?=", "(?!", "(?<=", "(?<!"},
    .quantifiers = {"*", "+", "?", "{2}", "{1,2}", "*?", "+?", "??", "{2}?", "{1,2}?"},
    .onGroup = true,
    .onLook = true,
    .size = 3,
    .letters = {"a", "b", "\n"},
    .textLength = 3,
    .options = {"", "ms"},
};

const World kGroups = {
    .leaves = {{Tree::kLiteral, "a"}, {Tree::kLiteral, "b"}},
    .groups = {"(", "(?>"},
    .looks = {},
    .quantifiers = {"*", "?", "{2}", "{1,2}", "*?", "+?"},
    .size = 4,
    .letters = {"a", "b"},
    .textLength = 4,
};

const World kReferences = {
    .leaves = {{Tree::kClass, "[ab]"}, {Tree::kLiteral, "a"}, {Tree::kReference, "\\1"}},
    .groups = {"("},
    .looks = {},
    .quantifiers = {"*", "+?", "{2}"},
    .onGroup = true,
    .size = 4,
    .letters = {"a", "b"},
    .textLength = 4,
};

const World kNestedReferences = {
    .leaves = {{Tree::kLiteral, "a"}, {Tree::kReference, "\\1"}},
    .groups = {"(", "(?:"},
    .looks = {},
    .quantifiers = {"*", "{2}"},
    .size = 5,
    .letters = {"a", "b"},
    .textLength = 3,
};

const World kAssertions = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kShorthand, "."},
               {Tree::kPosition, "^"},
               {Tree::kPosition, "$"},
               {Tree::kPosition, "\\b"},
               {Tree::kPosition, "\\B"},
               {Tree::kPosition, "\\A"},
               {Tree::kPosition, "\\Z"},
               {Tree::kPosition, "\\z"},
               {Tree::kPosition, "\\G"}},
    .groups = {"(?:"},
    .looks = {"(?=", "(?<!"},
    .quantifiers = {"*", "+"},
    .size = 3,
    .letters = {"a", " ", "\n"},
    .textLength = 3,
    .options = {"", "m"},
    .behind = 'b',
};

const World kLookArounds = {
    .leaves = {{Tree::kLiteral, "a"}, {Tree::kReference, "\\1"}},
    .groups = {"("},
    .looks = {"(?=", "(?!", "(?<=", "(?<!"},
    .quantifiers = {"*"},
    .onLook = true,
    .size = 4,
    .letters = {"a", "b"},
    .textLength = 3,
};

const World kOptions = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kLiteral, "B"},
               {Tree::kClass, "[^a]"},
               {Tree::kReference, "\\1"},
               {Tree::kOptions, "(?i)"}},
    .groups = {"(", "(?i:"},
    .looks = {"(?<="},
    .quantifiers = {"*", "{2}", "+?"},
    .size = 3,
    .letters = {"a", "A", "b"},
    .textLength = 4,
    .options = {"", "i"},
};

const World kCharacters = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kLiteral, "\xC3\xA9", false},  // a quantifier would repeat the last byte
               {Tree::kCodePoint, "\\x{101}"},
               {Tree::kClass, "[a\xC3\xA9]"},
               {Tree::kClass, "[^a-\xC3\xA9]"},
               {Tree::kShorthand, "."},
               {Tree::kShorthand, "\\w"},
               {Tree::kShorthand, "\\W"},
               {Tree::kProperty, "\\pL"},
               {Tree::kProperty, "\\P{Lu}"}},
    .groups = {"(", "(?>"},
    .looks = {"(?<=", "(?<!", "(?="},
    .quantifiers = {"*", "{2}", "{1,2}?"},
    .size = 3,
    .letters = {"a", "\xC3\xA9", "\xC4\x81"},  // a, U+00E9, U+0101
    .textLength = 3,
    .utf8 = true,
};

const World kShorthands = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kShorthand, "."},
               {Tree::kShorthand, "\\s"},
               {Tree::kShorthand, "\\S"},
               {Tree::kShorthand, "\\w"},
               {Tree::kShorthand, "\\W"},
               {Tree::kShorthand, "\\d"},
               {Tree::kShorthand, "\\D"}},
    .groups = {"("},
    .looks = {"(?<="},
    .quantifiers = {"*", "{1,2}?", "{2}"},
    .size = 3,
    .letters = {"a", "1", "\v", "\n"},
    .textLength = 3,
    .options = {"", "s"},
};

const World kStackedQuantifiers = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kShorthand, "."},
               {Tree::kClass, "[ab]"},
               {Tree::kReference, "\\1"}},
    .groups = {"("},
    .looks = {"(?<="},
    .quantifiers = {"*", "* ?", "{2} {1,2}", "+? *?", "?? ? ?"},
    .size = 3,
    .letters = {"a", "b"},
    .textLength = 4,
    .options = {"x"},
};

const World kBytes = {
    .leaves = {{Tree::kLiteral, "a"},
               {Tree::kLiteral, "\xE9"},
               {Tree::kClass, "[^a]"},
               {Tree::kShorthand, "."},
               {Tree::kShorthand, "\\W"}},
    .groups = {"("},
    .looks = {"(?<=", "(?!"},
    .quantifiers = {"*", "+?", "{2}"},
    .size = 3,
    .letters = {"a", "\xE9", "\xFF"},
    .textLength = 3,
    .options = {"", "i"},
};

World larger(World world, int size, int textLength) {
    world.size = size;
    world.textLength = textLength;
    return world;
}

std::vector<std::string> textsOf(const World& world) {
    std::vector<std::string> texts = {""};
    size_t first = 0;
    for (int length = 1; length <= world.textLength; ++length) {
        const size_t last = texts.size();
        for (size_t i = first; i < last; ++i) {
            const std::string prefix = texts[i];
            for (const char* letter : world.letters) texts.push_back(prefix + letter);
        }
        first = last;
    }
    return texts;
}

std::string print(const std::string& text) {
    std::string result;
    for (const char c : text) result += c == '\n' ? std::string("\\n") : std::string(1, c);
    return "'" + result + "'";
}

std::string print(const Spans& spans) {
    std::string result;
    for (const Span& span : spans) {
        (result += ' ') += std::to_string(span.offset);
        (result += '+') += std::to_string(span.length);
    }
    return result.empty() ? " none" : result;
}

/// The library's side: a pattern object in memory that all patterns share.
class Library {
public:
    ZelStatus compile(const std::string& pattern, const std::string& options, bool utf8) {
        int size = 0;
        if (zelsRegExpGetSize(pattern.c_str(), &size) != zelStatusOk) return zelStatusSizeError;
        if (memory_.size() < static_cast<size_t>(size)) memory_.resize(static_cast<size_t>(size));
        int offset = 0;
        const ZelStatus status = zelsRegExpInit(pattern.c_str(), options.c_str(), state(), &offset);
        if (status != zelStatusOk) return status;
        zelsRegExpSetFormat(utf8 ? 1 : 0, state());
        zelsRegExpSetMatchLimit(kLimit, state());
        return status;
    }

    /// The first match with its groups, or all matches when the pattern has the option g.
    ZelStatus find(const std::string& text, Spans& spans) {
        ZelRegExpFind records[kRecords];
        int count = kRecords;
        const Zel8u* start = reinterpret_cast<const Zel8u*>(text.data());
        const ZelStatus status =
            zelsRegExpFind_8u(start, static_cast<int>(text.size()) - 1, state(), records, &count);
        spans.clear();
        if (status != zelStatusOk) return status;
        for (int i = 0; i < count; ++i) {
            Span span;
            if (records[i].pMatch != nullptr) {
                span = {static_cast<int>(records[i].pMatch - start), records[i].lenMatch};
            }
            spans.push_back(span);
        }
        return status;
    }

private:
    static constexpr int kLimit = 1 << 28;
    static constexpr int kRecords = 64;

    ZelRegExpState* state() { return reinterpret_cast<ZelRegExpState*>(memory_.data()); }

    std::vector<unsigned char> memory_;
};

/// Walks through a world and compares.
class Comparison {
public:
    explicit Comparison(const World& world) : world_(world), texts_(textsOf(world)) {
        for (std::string& text : texts_) text += world.behind;
    }

    void run() {
        Patterns patterns(world_);
        patterns.forEach([&](const Tree& tree) {
            for (const char* options : world_.options) compare(tree, options);
        });
        printf("  %ld patterns on %zu texts: %ld comparisons, %ld rejected patterns\n", patterns_,
               texts_.size(), comparisons_, rejected_);
        EXPECT_EQ(mismatches_, 0);
    }

    static const DifferenceSet& met() { return met_; }

private:
    static constexpr int kMostShown = 20;

    void compare(const Tree& tree, const std::string& options) {
        ++patterns_;
        pattern_ = textOf(tree);
        options_ = options;
        expectation_ = {};
        oracles_.clear();
        tree_ = &tree;
        const std::string expected = expect(tree, options, '#', expectation_);
        const ZelStatus status = library_.compile(pattern_, options, world_.utf8);
        if (expectation_.unknownGroup || expectation_.unevenBehind) {
            ++rejected_;
            if (!(expectation_.unknownGroup && status == zelStatusRegExpBackRefError) &&
                !(expectation_.unevenBehind && status == zelStatusRegExpGroupingError)) {
                mismatch("is accepted or fails otherwise: " + std::to_string(status));
            }
            return;
        }
        if (status != zelStatusOk) {
            mismatch("is rejected: " + std::to_string(status));
            return;
        }
        met_ |= expectation_.differences;
        if (!addOracle('#', expected)) return;
        for (const std::string& text : texts_) compareFirst(text);

        if (expectation_.differences[kRaisedLength]) return;
        bool hasGroups = false;
        hasBar_ = tree.kind == Tree::kChoice;
        hasEmptySubprogram_ = false;
        walk(tree, [&](const Tree& part) {
            hasGroups = hasGroups || part.isCapture();
            if (part.kind == Tree::kOnLook ||
                ((part.kind == Tree::kLook || part.isAtomic()) && canBeEmpty(*part.first))) {
                hasEmptySubprogram_ = true;
            }
        });
        if (hasGroups) return;
        library_.compile(pattern_, options + "g", world_.utf8);
        for (const std::string& text : texts_) compareAll(text);
    }

    bool addOracle(char behind, const std::string& pattern) {
        oracles_.push_back({behind, pattern, Pcre(pattern, options_, world_.utf8)});
        if (oracles_.back().pcre.compiled()) return true;
        mismatch("is rejected by the oracle: " + pattern);
        return false;
    }

    /// The length of the text that counts, and the oracle for it. `text` has one byte behind it.
    Pcre& oracleFor(const std::string& text, int& length) {
        length = effectiveLength(expectation_, text.substr(0, text.size() - 1));
        if (length + 1 < static_cast<int>(text.size())) met_.set(kTrailingLiteral);
        oracle_ = &oracles_[0];
        if (!expectation_.readsBehind) return oracle_->pcre;
        const char behind = text[static_cast<size_t>(length)];
        for (Oracle& oracle : oracles_) {
            if (oracle.behind == behind) oracle_ = &oracle;
        }
        if (oracle_->behind != behind) {
            if (addOracle(behind, expect(*tree_, options_, behind, expectation_))) {
                oracle_ = &oracles_.back();
            }
            met_ |= expectation_.differences;
        }
        return oracle_->pcre;
    }

    /// Whether nothing can be said about a text.
    bool skip(const std::string& text) {
        if (expectation_.differences[kReferenceInItsRepeatedGroup]) return true;
        if (expectation_.differences[kEmptyRepetitionWithMemory]) return true;
        if (expectation_.differences[kLazyCodePoint]) return true;
        if (!expectation_.differences[kGiveBackByTheCharacterBehind]) return false;
        for (const char c : text) {
            if (static_cast<unsigned char>(c) >= 0x80) return true;
        }
        return false;
    }

    void compareFirst(const std::string& text) {
        if (skip(text)) return;
        ++comparisons_;
        int length;
        Pcre& oracle = oracleFor(text, length);
        Spans expected;
        Spans found;
        if (!oracle.match(text.data(), length, 0, 0, expected)) {
            mismatch("breaks off in the oracle on " + print(text));
            return;
        }
        const ZelStatus status = library_.find(text, found);
        if (status != zelStatusOk) {
            mismatch("fails on " + print(text) + ": " + std::to_string(status));
            return;
        }
        if (found == expected) return;
        const Spans full = found;
        const Spans fullExpected = expected;
        if (expectation_.differences[kRaisedLength] && !found.empty() && !expected.empty() &&
            found[0].length > expected[0].length) {
            found[0].length = expected[0].length;
        }
        if (expectation_.differences[kEmptyRepetition] && !found.empty() && !expected.empty()) {
            found.resize(1);
            expected.resize(1);
        }
        if (found != expected) mismatch("on " + print(text), full, fullExpected);
    }

    void compareAll(const std::string& text) {
        if (skip(text)) return;
        ++comparisons_;
        int length;
        Pcre& oracle = oracleFor(text, length);
        Spans expected;
        Spans match;
        bool brokenOff = false;
        for (int start = 0; start <= length;) {
            oracle.match(text.data(), length, start, 0, match);
            if (match.empty()) break;
            expected.push_back(match[0]);
            start = match[0].offset + match[0].length;
            if (match[0].length > 0 || start >= length) {
                if (match[0].length == 0) break;
                continue;
            }
            if (hasBar_ || hasEmptySubprogram_) {
                met_.set(hasBar_ ? kRetryAndABar : kRetryInsideASubprogram);
                brokenOff = true;
                break;
            }
            oracle.match(text.data(), length, start, PCRE2_ANCHORED | PCRE2_NOTEMPTY_ATSTART,
                         match);
            if (!match.empty()) {
                expected.push_back(match[0]);
                start += match[0].length;
                continue;
            }
            do {
                ++start;
            } while (world_.utf8 && start < length &&
                     (text[static_cast<size_t>(start)] & 0xC0) == 0x80);
        }
        Spans found;
        const ZelStatus status = library_.find(text, found);
        if (status != zelStatusOk) {
            mismatch("fails with g on " + print(text) + ": " + std::to_string(status));
            return;
        }
        if (brokenOff && found.size() > expected.size()) found.resize(expected.size());
        if (found != expected) mismatch("with g on " + print(text), found, expected);
    }

    void mismatch(const std::string& what) {
        if (++mismatches_ > kMostShown) return;
        printf("MISMATCH: %s, options '%s', %s\n", print(pattern_).c_str(), options_.c_str(),
               what.c_str());
    }

    void mismatch(const std::string& where, const Spans& found, const Spans& expected) {
        mismatch(where + "\n    library:" + print(found) + "\n    oracle: " + print(expected) +
                 "  for " + print(oracle_->pattern));
    }

    const World& world_;
    std::vector<std::string> texts_;
    Library library_;
    std::string pattern_;
    std::string options_;
    Expectation expectation_;
    struct Oracle {
        char behind;
        std::string pattern;
        Pcre pcre;
    };
    std::deque<Oracle> oracles_;  // one, or one for each byte that stands behind a text
    Oracle* oracle_ = nullptr;    // the one in use
    const Tree* tree_ = nullptr;
    bool hasBar_ = false;
    bool hasEmptySubprogram_ = false;
    long patterns_ = 0;
    long rejected_ = 0;
    long comparisons_ = 0;
    int mismatches_ = 0;
    inline static DifferenceSet met_;
};

void compareWorld(World world) {
    if (kSanitized) --world.textLength;
    Comparison(world).run();
}

}  // namespace

TEST(SmallWorlds, Everything) {
    compareWorld(kEverything);
}
TEST(SmallWorlds, Groups) {
    compareWorld(kGroups);
}
TEST(SmallWorlds, References) {
    compareWorld(kReferences);
}
TEST(SmallWorlds, NestedReferences) {
    compareWorld(kNestedReferences);
}
TEST(SmallWorlds, Assertions) {
    compareWorld(kAssertions);
}
TEST(SmallWorlds, LookArounds) {
    compareWorld(kLookArounds);
}
TEST(SmallWorlds, Options) {
    compareWorld(kOptions);
}
TEST(SmallWorlds, Characters) {
    compareWorld(kCharacters);
}

TEST(SmallWorlds, Shorthands) {
    compareWorld(kShorthands);
}
TEST(SmallWorlds, StackedQuantifiers) {
    compareWorld(kStackedQuantifiers);
}
TEST(SmallWorlds, Bytes) {
    compareWorld(kBytes);
}

TEST(SmallWorlds, EveryDifferenceIsMet) {
    for (const DifferenceText& text : kDifferenceTable) {
        EXPECT_TRUE(Comparison::met()[text.difference]) << text.what;
    }
}

TEST(LargerWorlds, Everything) {
    World world = larger(kEverything, 4, 2);
    world.options = {""};
    compareWorld(world);
}
TEST(LargerWorlds, Groups) {
    compareWorld(larger(kGroups, 5, 5));
}
TEST(LargerWorlds, References) {
    compareWorld(larger(kReferences, 5, 5));
}
TEST(LargerWorlds, NestedReferences) {
    compareWorld(larger(kNestedReferences, 6, 4));
}
TEST(LargerWorlds, Assertions) {
    compareWorld(larger(kAssertions, 4, 3));
}
TEST(LargerWorlds, LookArounds) {
    World world = larger(kLookArounds, 5, 2);
    world.looks = {"(?=", "(?<!"};
    compareWorld(world);
}
TEST(LargerWorlds, Options) {
    compareWorld(larger(kOptions, 4, 4));
}
TEST(LargerWorlds, Characters) {
    compareWorld(larger(kCharacters, 4, 3));
}
TEST(LargerWorlds, Shorthands) {
    compareWorld(larger(kShorthands, 4, 2));
}
TEST(LargerWorlds, StackedQuantifiers) {
    compareWorld(larger(kStackedQuantifiers, 4, 4));
}
TEST(LargerWorlds, Bytes) {
    compareWorld(larger(kBytes, 4, 3));
}
