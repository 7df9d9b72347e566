// Replacement templates and replacing. Three layers: what a template is parsed into, what records
// made by hand do to a source (with every capacity, against an oracle that thinks in whole
// strings), and whole calls with compiled patterns.
#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "regexp/program.h"
#include "regexp/services/replace.h"
#include "zelchmx.h"

namespace {

using namespace zel;

constexpr Zel8u kCanary = 0xA5;

const Zel8u* bytes(const std::string& s) {
    return reinterpret_cast<const Zel8u*>(s.c_str());
}

/// A template and its state, in a block of exactly the size asked for with a canary behind it.
class Template {
public:
    explicit Template(std::string text) : text_(std::move(text)) { parse(bytes(text_)); }
    explicit Template(std::nullptr_t) { parse(nullptr); }

    ZelStatus status() const { return status_; }
    int size() const { return size_; }
    const ZelRegExpReplaceState* state() const {
        return reinterpret_cast<const ZelRegExpReplaceState*>(block_.get());
    }
    bool canaryIntact() const {
        return std::all_of(block_.get() + size_, block_.get() + size_ + 16,
                           [](Zel8u b) { return b == kCanary; });
    }
    /// The segments as text: literals in quotes, groups as numbers.
    std::string describe() const {
        if (status_ != zelStatusOk) return std::to_string(status_);
        std::string result;
        for (int i = 0; i < state()->segmentCount; ++i) {
            const ReplaceSegment& segment = state()->segments[i];
            if (i > 0) result += ' ';
            if (segment.kind == kSegmentText) {
                result += '\'';
                result.append(reinterpret_cast<const char*>(segment.text),
                              static_cast<size_t>(segment.value));
                result += '\'';
            } else {
                EXPECT_EQ(segment.kind, kSegmentGroup);
                result += std::to_string(segment.value);
            }
        }
        return result;
    }

private:
    void parse(const Zel8u* text) {
        EXPECT_EQ(zelsRegExpReplaceGetSize(text, &size_), zelStatusOk);
        block_ = std::make_unique<Zel8u[]>(static_cast<size_t>(size_) + 16);
        memset(block_.get(), kCanary, static_cast<size_t>(size_) + 16);
        status_ =
            zelsRegExpReplaceInit(text, reinterpret_cast<ZelRegExpReplaceState*>(block_.get()));
    }

    std::string text_;
    std::unique_ptr<Zel8u[]> block_;
    int size_ = 0;
    ZelStatus status_ = 1;
};

std::string parsed(const std::string& text) {
    return Template(text).describe();
}

// ---- Templates ----------------------------------------------------------------------------------

TEST(ReplaceGetSize, AsksSixteenBytesForEachTemplateByteAndSixteenMore) {
    EXPECT_EQ(Template(nullptr).size(), 16);
    EXPECT_EQ(Template("").size(), 16);
    EXPECT_EQ(Template("a").size(), 32);
    EXPECT_EQ(Template("<$&>").size(), 80);
}

TEST(ReplaceGetSize, RefusesANullSize) {
    EXPECT_EQ(zelsRegExpReplaceGetSize(bytes("a"), nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpReplaceGetSize(nullptr, nullptr), zelStatusNullPointer);
}

TEST(ReplaceInit, RefusesANullState) {
    EXPECT_EQ(zelsRegExpReplaceInit(bytes("a"), nullptr), zelStatusNullPointer);
    EXPECT_EQ(zelsRegExpReplaceInit(nullptr, nullptr), zelStatusNullPointer);
}

TEST(ReplaceInit, NullTemplateHasNoSegmentsAndANullTable) {
    const Template null(nullptr);
    EXPECT_EQ(null.status(), zelStatusOk);
    EXPECT_EQ(null.state()->segmentCount, 0);
    EXPECT_EQ(null.state()->segments, nullptr);
}

TEST(ReplaceInit, EmptyTemplateHasNoSegmentsAndATableBehindTheState) {
    const Template empty("");
    EXPECT_EQ(empty.status(), zelStatusOk);
    EXPECT_EQ(empty.state()->segmentCount, 0);
    EXPECT_EQ(static_cast<const void*>(empty.state()->segments), empty.state() + 1);
}

TEST(ReplaceInit, LiteralSegmentsPointIntoTheTemplate) {
    const std::string text = "ab$1cd";
    alignas(8) Zel8u block[16 * 6 + 16];
    auto* state = reinterpret_cast<ZelRegExpReplaceState*>(block);
    ASSERT_EQ(zelsRegExpReplaceInit(bytes(text), state), zelStatusOk);
    ASSERT_EQ(state->segmentCount, 3);
    EXPECT_EQ(state->segments[0].kind, 0x10000001u);
    EXPECT_EQ(state->segments[0].text, bytes(text));
    EXPECT_EQ(state->segments[0].value, 2);
    EXPECT_EQ(state->segments[1].kind, 0x10000002u);
    EXPECT_EQ(state->segments[1].value, 1);
    EXPECT_EQ(state->segments[2].text, bytes(text) + 4);
    EXPECT_EQ(state->segments[2].value, 2);
}

TEST(ReplaceInit, GroupNumbersCountInBaseEleven) {
    EXPECT_EQ(parsed("$&"), "0");
    EXPECT_EQ(parsed("$1"), "1");
    EXPECT_EQ(parsed("$9"), "9");
    EXPECT_EQ(parsed("$10"), "11");
    EXPECT_EQ(parsed("$12"), "13");
    EXPECT_EQ(parsed("$01"), "1");
    EXPECT_EQ(parsed("$100"), "121");
    EXPECT_EQ(parsed("$99"), "108");
}

TEST(ReplaceInit, AGroupNumberTakesAllDigitsAndNothingElse) {
    EXPECT_EQ(parsed("$1a"), "1 'a'");
    EXPECT_EQ(parsed("$1$2"), "1 2");
    EXPECT_EQ(parsed("$12&"), "13 '&'");
    EXPECT_EQ(parsed("$&1"), "0 '1'");
    EXPECT_EQ(parsed("$1/"), "1 '/'");
    EXPECT_EQ(parsed("$1:"), "1 ':'");
}

TEST(ReplaceInit, ANumberTooLargeForAnyGroupStaysTooLarge) {
    EXPECT_EQ(parsed("$999999999"), "2122152921");
    EXPECT_EQ(parsed("$1111111111"), "2147483647");
    EXPECT_EQ(parsed("$9999999999"), "2147483647");
    for (size_t digits = 10; digits < 60; ++digits) {
        for (char digit = '1'; digit <= '9'; ++digit) {
            std::string text = "$";
            text.append(digits, digit);
            EXPECT_EQ(parsed(text), "2147483647");
        }
    }
}

TEST(ReplaceInit, ADollarThatNamesNoGroupIsAnError) {
    for (const char* text : {"$", "$0", "$00", "$x", "$$", "$\\", "$ 1", "$-1", "a$", "$1$", "\\$",
                             "$&$0", "$/", "$:", "$(1)"}) {
        EXPECT_EQ(parsed(text), "-185") << text;
    }
}

TEST(ReplaceInit, ABackslashIsDroppedAndEscapesNothing) {
    EXPECT_EQ(parsed("\\$1"), "1");
    EXPECT_EQ(parsed("\\\\"), "");
    EXPECT_EQ(parsed("\\"), "");
    EXPECT_EQ(parsed("a\\"), "'a'");
    EXPECT_EQ(parsed("a\\b"), "'a' 'b'");
    EXPECT_EQ(parsed("a\\\\b"), "'a' 'b'");
    EXPECT_EQ(parsed("$1\\2"), "1 '2'");
    EXPECT_EQ(parsed("$\\1"), "-185");
    EXPECT_EQ(parsed("\\n"), "'n'");
}

TEST(ReplaceInit, EveryOtherByteIsLiteral) {
    std::string text;
    for (int c = 1; c < 256; ++c) {
        if (c != '$' && c != '\\') text += static_cast<char>(c);
    }
    EXPECT_EQ(parsed(text), "'" + text + "'");
}

TEST(ReplaceInit, ATemplateCutAtEveryByte) {
    const std::string text = "ab$12\\$&\\\\c$7d";
    const char* const expected[] = {
        "",                     // nothing
        "'a'",                  // a
        "'ab'",                 // ab
        "-185",                 // ab$
        "'ab' 1",               // ab$1
        "'ab' 13",              // ab$12
        "'ab' 13",              // ab$12\ .
        "-185",                 // ab$12\$
        "'ab' 13 0",            // ab$12\$&
        "'ab' 13 0",            // ab$12\$&\ .
        "'ab' 13 0",            // ab$12\$&\\ .
        "'ab' 13 0 'c'",        // ab$12\$&\\c
        "-185",                 // ab$12\$&\\c$
        "'ab' 13 0 'c' 7",      // ab$12\$&\\c$7
        "'ab' 13 0 'c' 7 'd'",  // ab$12\$&\\c$7d
    };
    ASSERT_EQ(std::size(expected), text.size() + 1);
    for (size_t n = 0; n <= text.size(); ++n) {
        EXPECT_EQ(parsed(text.substr(0, n)), expected[n]) << text.substr(0, n);
    }
}

/// The same rules, thought of backwards: strip backslashes by cutting the template at them, but
/// only where none stands directly behind a dollar.
std::string describeByCutting(const std::string& text) {
    std::string result;
    const auto add = [&](const std::string& part) { result += (result.empty() ? "" : " ") + part; };
    size_t at = 0;
    while (at < text.size()) {
        const size_t special = std::min(text.find_first_of("$\\", at), text.size());
        if (special > at) {
            std::string quoted = "'";
            quoted.append(text, at, special - at);
            add(quoted += '\'');
        }
        if (special == text.size()) break;
        at = special + 1;
        if (text[special] == '\\') continue;
        const size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
        if (at < text.size() && text[at] == '&') {
            add("0");
            at += 1;
            continue;
        }
        long long number = 0;
        for (; at < end; ++at) number = number * 11 + (text[at] - '0');
        if (number == 0) return "-185";
        add(std::to_string(number));
    }
    return result;
}

TEST(ReplaceInit, AllShortTemplatesParseByTheRulesAndStayInsideTheirBlock) {
    const std::string alphabet = "a&\\$01";
    std::vector<std::string> world = {""};
    for (size_t i = 0; i < world.size(); ++i) {
        const std::string text = world[i];
        const Template parsedText(text);
        ASSERT_EQ(parsedText.describe(), describeByCutting(text)) << text;
        ASSERT_TRUE(parsedText.canaryIntact()) << text;
        if (text.size() < 5) {
            for (char c : alphabet) world.push_back(text + c);
        }
    }
    EXPECT_EQ(world.size(), 1u + 6 + 36 + 216 + 1296 + 7776);
}

// ---- Records made by hand -----------------------------------------------------------------------

struct Span {
    int start;
    int length;  // -1: took no part
};
using Match = std::vector<Span>;  // the whole match, then its groups

/// What a call must leave behind. `touched` ends the bytes it may write.
struct Expected {
    long sourceOffset;
    long written;
    std::string content;  // the counted bytes
    long touched;
};

std::string textOf(const std::string& source, const Span& span) {
    if (span.length < 1) return "";
    return source.substr(static_cast<size_t>(span.start), static_cast<size_t>(span.length));
}

long endOf(const std::string& source, const Match& match) {
    return std::clamp<long>(long{match[0].start} + match[0].length, 0,
                            static_cast<long>(source.size()));
}

std::vector<std::string> piecesOf(const std::string& source, const Match& match,
                                  const ZelRegExpReplaceState* state) {
    std::vector<std::string> pieces;
    for (int i = 0; i < state->segmentCount; ++i) {
        const ReplaceSegment& segment = state->segments[i];
        if (segment.kind == kSegmentText) {
            pieces.emplace_back(reinterpret_cast<const char*>(segment.text),
                                static_cast<size_t>(segment.value));
        } else if (segment.value >= 0 && segment.value < static_cast<int>(match.size())) {
            pieces.push_back(textOf(source, match[static_cast<size_t>(segment.value)]));
        } else {
            pieces.emplace_back();
        }
    }
    return pieces;
}

long length(const std::string& s) {
    return static_cast<long>(s.size());
}

Expected expectFirst(const std::string& source, const Match& match,
                     const ZelRegExpReplaceState* state, long capacity) {
    const std::string prefix = source.substr(0, static_cast<size_t>(match[0].start));
    const long end = endOf(source, match);
    const std::string tail = source.substr(static_cast<size_t>(end));
    if (!prefix.empty() && length(prefix) >= capacity) return {0, 0, "", 0};
    if (state->segmentCount == 0) {
        return {length(source), length(prefix), prefix, length(prefix + tail)};
    }
    std::string expansion;
    for (const std::string& piece : piecesOf(source, match, state)) {
        if (length(expansion + piece) >= capacity) {
            return {length(prefix), length(prefix), prefix, length(prefix + expansion)};
        }
        expansion += piece;
    }
    const std::string whole = prefix + expansion + tail;
    if (length(whole) < capacity) return {length(source), length(whole), whole, length(whole)};
    return {end, length(prefix + expansion), prefix + expansion, length(prefix + expansion)};
}

Expected expectAll(const std::string& source, const std::vector<Match>& matches,
                   const ZelRegExpReplaceState* state, long capacity) {
    std::string out;
    long current = 0;
    for (const Match& match : matches) {
        const long start = match[0].start;
        const std::string gap =
            start > current
                ? source.substr(static_cast<size_t>(current), static_cast<size_t>(start - current))
                : "";
        if (!gap.empty() && length(out + gap) >= capacity) {
            return {current, length(out), out, length(out)};
        }
        out += gap;
        std::string expanded = out;
        for (const std::string& piece : piecesOf(source, match, state)) {
            if (length(expanded + piece) >= capacity) {
                return {start, length(out), out, length(expanded)};
            }
            expanded += piece;
        }
        out = expanded;
        current = endOf(source, match);
    }
    const std::string tail = source.substr(static_cast<size_t>(current));
    if (length(out + tail) >= capacity) return {current, length(out), out, length(out)};
    return {length(tail), length(out + tail), out + tail, length(out + tail)};
}

std::vector<ZelRegExpFind> recordsOf(const std::vector<Zel8u>& source,
                                     const std::vector<Match>& matches) {
    std::vector<ZelRegExpFind> records;
    for (const Match& match : matches) {
        for (const Span& span : match) {
            Zel8u* const text = const_cast<Zel8u*>(source.data()) + span.start;
            records.push_back({span.length == -1 ? nullptr : text, span.length});
        }
    }
    return records;
}

bool allCanary(std::vector<Zel8u>::const_iterator from, std::vector<Zel8u>::const_iterator to) {
    return std::all_of(from, to, [](Zel8u b) { return b == kCanary; });
}

void checkAgainst(const Expected& expected, const ReplaceLengths& actual,
                  const std::vector<Zel8u>& destination, const std::string& what) {
    EXPECT_EQ(actual.sourceOffset, expected.sourceOffset) << what;
    ASSERT_EQ(actual.written, expected.written) << what;
    EXPECT_EQ(std::string(destination.begin(), destination.begin() + actual.written),
              expected.content)
        << what;
    EXPECT_TRUE(allCanary(destination.begin() + expected.touched, destination.end()))
        << what << ": touched behind byte " << expected.touched;
}

/// All capacities from 1 to two more than the output needs. The source lies in a heap block of
/// exactly its size, so that the address sanitizer sees a read behind its end.
void checkFirst(const std::string& source, const Match& match, const std::string& text) {
    const Template parsedText(text);
    const std::vector<Zel8u> exact(source.begin(), source.end());
    const std::vector<ZelRegExpFind> records = recordsOf(exact, {match});
    const long full = expectFirst(source, match, parsedText.state(), LONG_MAX / 2).touched;
    for (long capacity = 1; capacity <= full + 2; ++capacity) {
        std::vector<Zel8u> destination(static_cast<size_t>(2 * capacity + 2 * length(source) + 16),
                                       kCanary);
        const Replacement job = {exact.data(), length(source), parsedText.state(),
                                 destination.data(), capacity};
        checkAgainst(
            expectFirst(source, match, parsedText.state(), capacity),
            replaceFirst(job, records.data(), static_cast<int>(records.size())), destination,
            "first of '" + source + "' by '" + text + "' into " + std::to_string(capacity));
    }
}

void checkAll(const std::string& source, const std::vector<Match>& matches,
              const std::string& text) {
    const Template parsedText(text);
    const std::vector<Zel8u> exact(source.begin(), source.end());
    const std::vector<ZelRegExpFind> records = recordsOf(exact, matches);
    const int groupCount = static_cast<int>(matches.at(0).size());
    const long full = expectAll(source, matches, parsedText.state(), LONG_MAX / 2).written;
    for (long capacity = 1; capacity <= full + 2; ++capacity) {
        std::vector<Zel8u> destination(static_cast<size_t>(capacity + 32), kCanary);
        const Replacement job = {exact.data(), length(source), parsedText.state(),
                                 destination.data(), capacity};
        checkAgainst(expectAll(source, matches, parsedText.state(), capacity),
                     replaceAll(job, records.data(), static_cast<int>(records.size()), groupCount),
                     destination,
                     "all of '" + source + "' by '" + text + "' into " + std::to_string(capacity));
        EXPECT_TRUE(allCanary(destination.begin() + capacity, destination.end()));
    }
}

const char* const kTemplates[] = {
    "", "x", "<$&>", "$1", "$2$1", "$&$&", "[$1|$2|$9]", "long text here", "$&-$1-$&-$2-$&"};

TEST(ReplaceFirst, EveryCapacityGivesTheLengthsOfTheTable) {
    for (const char* text : kTemplates) {
        checkFirst("abc", {{1, 1}}, text);
        checkFirst("abc", {{0, 3}}, text);
        checkFirst("abc", {{0, 0}}, text);
        checkFirst("abc", {{3, 0}}, text);
        checkFirst("abc", {{2, 1}, {2, 1}}, text);
        checkFirst("key = value;", {{0, 11}, {0, 3}, {6, 5}}, text);
        checkFirst("key = value;", {{4, 1}, {0, -1}, {4, 1}}, text);
        checkFirst("key = value;", {{6, 5}, {8, 0}, {0, -1}}, text);
    }
}

TEST(ReplaceAll, EveryCapacityGivesTheLengthsOfTheTable) {
    for (const char* text : kTemplates) {
        checkAll("abc", {{{1, 1}}}, text);
        checkAll("abc", {{{0, 3}}}, text);
        checkAll("abc", {{{0, 0}}, {{1, 0}}, {{2, 0}}, {{3, 0}}}, text);
        checkAll("aXbXc", {{{1, 1}}, {{3, 1}}}, text);
        checkAll("XX", {{{0, 1}}, {{1, 1}}}, text);
        checkAll("k=v, kk=vv, kkk=vvv",
                 {{{0, 3}, {0, 1}, {2, 1}}, {{5, 5}, {5, 2}, {8, 2}}, {{12, 7}, {12, 3}, {16, 3}}},
                 text);
        checkAll("a1b", {{{0, 1}, {0, 1}, {0, -1}}, {{1, 1}, {0, -1}, {1, 1}}}, text);
    }
}

TEST(Replace, GapsTextsAndReferencesOfEveryLengthAreCopied) {
    std::string letters;
    for (int i = 0; i < 40; ++i) letters += static_cast<char>('0' + i);
    for (int n = 0; n <= 40; ++n) {
        const std::string piece = letters.substr(0, static_cast<size_t>(n));
        const std::string source = piece + "<" + piece + ">";
        checkAll(source, {{{n, 1}, {n + 1, n}}}, piece + "$1");
        checkFirst(source, {{n, 1}, {n + 1, n}}, piece + "$1");
    }
}

// A lazy quantifier may report a length that leads behind the source.
TEST(Replace, AMatchNeverReadsBehindTheSource) {
    for (const char* text : kTemplates) {
        checkFirst("abc", {{1, 9}}, text);
        checkFirst("abc", {{3, 1}}, text);
        checkFirst("abc", {{0, INT_MAX}, {2, 2}, {3, INT_MAX}}, text);
        checkAll("abc", {{{1, 9}}}, text);
        checkAll("abc", {{{0, 1}}, {{2, INT_MAX}}}, text);
        checkAll("abcd", {{{0, 1}, {0, 9}, {3, 2}}, {{3, 4}, {3, 4}, {4, 1}}}, text);
    }
}

TEST(Replace, ANegativeLengthReadsNothingInFrontOfTheSource) {
    for (const char* text : kTemplates) {
        checkFirst("abcdef", {{4, -2}}, text);
        checkFirst("abcdef", {{2, -5}, {2, -5}, {0, -1}}, text);
        checkAll("abcdef", {{{4, -2}}}, text);
        checkAll("abcdef", {{{1, INT_MIN}}, {{5, 1}}}, text);
    }
}

// ---- Whole calls --------------------------------------------------------------------------------

/// A compiled pattern of its own.
class Pattern {
public:
    explicit Pattern(const std::string& text, const char* options = "") {
        int errorOffset = 0;
        EXPECT_EQ(zelsRegExpInitAlloc(text.c_str(), options, &object_, &errorOffset), zelStatusOk)
            << text;
    }
    ~Pattern() { zelsRegExpFree(object_); }
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;
    ZelRegExpState* get() const { return object_; }

private:
    ZelRegExpState* object_ = nullptr;
};

/// One call and all it left behind.
struct Call {
    ZelStatus status;
    int used;
    int made;
    int found;
    std::vector<Zel8u> destination;

    std::string text() const {
        return std::string(destination.begin(), destination.begin() + made);
    }
    std::string bytesTo(int end) const {
        return std::string(destination.begin(), destination.begin() + end);
    }
    bool untouchedFrom(int from) const {
        return allCanary(destination.begin() + from, destination.end());
    }
};

Call replace(const std::string& source, const Pattern& pattern, const Template& replacement,
             int capacity, int records = 64) {
    Call call{1, static_cast<int>(source.size()), capacity, records, {}};
    call.destination.assign(2 * static_cast<size_t>(std::max(capacity, 0)) + source.size() + 64,
                            kCanary);
    std::vector<ZelRegExpFind> find(static_cast<size_t>(std::max(records, 1)));
    call.status =
        zelsRegExpReplace_8u(bytes(source), &call.used, call.destination.data(), &call.made,
                             find.data(), &call.found, pattern.get(), replacement.state());
    return call;
}

Call replace(const std::string& source, const char* pattern, const char* options,
             const char* replacement, int capacity, int records = 64) {
    return replace(source, Pattern(pattern, options), Template(replacement), capacity, records);
}

TEST(Replace, PutsTheExpandedTemplateInPlaceOfTheMatch) {
    const Call call = replace("abc", "b", "", "<$&>", 10);
    EXPECT_EQ(call.status, zelStatusOk);
    EXPECT_EQ(call.text(), "a<b>c");
    EXPECT_EQ(call.made, 5);
    EXPECT_EQ(call.used, 3);
    EXPECT_EQ(call.found, 1);
    EXPECT_TRUE(call.untouchedFrom(5));
}

TEST(Replace, AReferenceToAGroupThePatternDoesNotHaveIsEmpty) {
    EXPECT_EQ(replace("abc", "(b)", "", "[$12]", 10).text(), "a[]c");
    EXPECT_EQ(replace("abc", "(b)", "g", "[$12]", 10).text(), "a[]c");
    EXPECT_EQ(replace("abc", "(b)", "", "[$2]", 10).text(), "a[]c");
    EXPECT_EQ(replace("abc", "(b)", "g", "[$2]", 10).text(), "a[]c");
    EXPECT_EQ(replace("abc", "(b)", "", "[$99999999999]", 10).text(), "a[]c");
    EXPECT_EQ(replace("abc", "(b)", "g", "[$99999999999]", 10).text(), "a[]c");
}

TEST(Replace, GroupThirteenIsReachedByTwelve) {
    const char* pattern = "(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)(l)(m)";
    EXPECT_EQ(replace("abcdefghijklm", pattern, "", "$12$10$9", 40).text(), "mki");
    EXPECT_EQ(replace("abcdefghijklm", pattern, "g", "$12$10$9", 40).text(), "mki");
}

TEST(Replace, AGroupThatTookNoPartContributesNothing) {
    EXPECT_EQ(replace("xb", "(a)|(b)", "", "[$1|$2]", 20).text(), "x[|b]");
    EXPECT_EQ(replace("ab", "(a)|(b)", "g", "[$1|$2]", 20).text(), "[a|][|b]");
}

TEST(Replace, WithoutAMatchTheSourceIsCopiedAsFarAsItFits) {
    for (const char* options : {"", "g"}) {
        for (int capacity = 1; capacity <= 8; ++capacity) {
            const Call call = replace("abcdef", "x", options, "<$&>", capacity);
            const int copied = std::min(6, capacity);
            EXPECT_EQ(call.status, zelStatusOk);
            EXPECT_EQ(call.used, copied);
            EXPECT_EQ(call.made, copied);
            EXPECT_EQ(call.found, 0);
            EXPECT_EQ(call.text(), std::string("abcdef").substr(0, static_cast<size_t>(copied)));
            EXPECT_TRUE(call.untouchedFrom(copied));
        }
    }
}

TEST(Replace, AnEmptyTemplateCopiesTheTailOfTheFirstMatchUncheckedAndUncounted) {
    for (const Template& empty : {Template(""), Template(nullptr), Template("\\")}) {
        const Call call = replace("abcdef", Pattern("b"), empty, 2);
        EXPECT_EQ(call.status, zelStatusOk);
        EXPECT_EQ(call.made, 1);
        EXPECT_EQ(call.used, 6);
        EXPECT_EQ(call.bytesTo(5), "acdef");
        EXPECT_TRUE(call.untouchedFrom(5));
    }
}

TEST(Replace, AnEmptyTemplateRemovesEveryMatchWithinTheCapacity) {
    const Call call = replace("abcabc", "b", "g", "", 10);
    EXPECT_EQ(call.text(), "acac");
    EXPECT_EQ(call.used, 1);
    const Call cut = replace("abcabc", "b", "g", "", 4);
    EXPECT_EQ(cut.text(), "aca");
    EXPECT_EQ(cut.used, 5);
    EXPECT_TRUE(cut.untouchedFrom(3));
}

TEST(Replace, ThePiecesOfTheFirstMatchAreHeldAgainstTheWholeCapacity) {
    // Four bytes of prefix and four of expansion into a capacity of five.
    const Call call = replace("aaaabcc", "b", "", "wxyz", 5);
    EXPECT_EQ(call.status, zelStatusOk);
    EXPECT_EQ(call.made, 8);
    EXPECT_EQ(call.used, 5);
    EXPECT_EQ(call.bytesTo(8), "aaaawxyz");
    EXPECT_TRUE(call.untouchedFrom(8));
}

TEST(Replace, ATailThatWouldFillTheRoomExactlyIsNotCopied) {
    // "a-c-e" is five bytes; the last of them is the tail.
    const Call exact = replace("abcbe", "b", "g", "-", 5);
    EXPECT_EQ(exact.text(), "a-c-");
    EXPECT_EQ(exact.used, 4);
    EXPECT_TRUE(exact.untouchedFrom(4));
    const Call fits = replace("abcbe", "b", "g", "-", 6);
    EXPECT_EQ(fits.text(), "a-c-e");
    EXPECT_EQ(fits.used, 1);
    EXPECT_TRUE(fits.untouchedFrom(5));

    const Call first = replace("abe", "b", "", "-", 3);
    EXPECT_EQ(first.text(), "a-");
    EXPECT_EQ(first.used, 2);
    EXPECT_TRUE(first.untouchedFrom(2));
}

TEST(Replace, MatchesWhoseRecordsDoNotFitCountAsTail) {
    EXPECT_EQ(replace("abab", "b", "g", "-", 10, 1).text(), "a-ab");
    EXPECT_EQ(replace("abab", "b", "g", "-", 10, 1).used, 2);
    EXPECT_EQ(replace("abab", "(a)(b)", "g", "$2$1", 10, 3).text(), "baab");
    EXPECT_EQ(replace("abab", "(a)(b)", "g", "$2$1", 10, 5).text(), "baab");
    EXPECT_EQ(replace("abab", "(a)(b)", "g", "$2$1", 10, 6).text(), "baba");
    // Not even one match fits: as if there were none.
    const Call none = replace("abab", "(a)(b)", "g", "$2$1", 10, 2);
    EXPECT_EQ(none.text(), "abab");
    EXPECT_EQ(none.used, 4);
    EXPECT_EQ(none.found, 0);
}

TEST(Replace, GroupsOfTheFirstMatchWhoseRecordsDoNotFitAreEmpty) {
    EXPECT_EQ(replace("xaby", "(a)(b)", "", "[$&$1$2]", 20, 3).text(), "x[abab]y");
    EXPECT_EQ(replace("xaby", "(a)(b)", "", "[$&$1$2]", 20, 2).text(), "x[aba]y");
    EXPECT_EQ(replace("xaby", "(a)(b)", "", "[$&$1$2]", 20, 1).text(), "x[ab]y");
}

TEST(Replace, ReplacesEmptyMatches) {
    EXPECT_EQ(replace("abc", "x*", "", "-", 20).text(), "-abc");
    EXPECT_EQ(replace("abc", "x*", "g", "-", 20).text(), "-a-b-c-");
    EXPECT_EQ(replace("abc", "$", "g", "!", 20).text(), "abc!");
}

// What a lazy repetition consumed before it failed stays in the length that is reported: here 5.
TEST(Replace, AMatchReportedLongerThanTheSourceEndsWithIt) {
    for (const char* options : {"", "g"}) {
        const Call call = replace("xaac", "a+?b|aac", options, "[$&]", 20);
        EXPECT_EQ(call.text(), "x[aac]") << options;
        EXPECT_EQ(call.used, *options == 'g' ? 0 : 4);
    }
}

// A class run gives back by the character behind it, here four bytes for one, and so the match from
// offset 1 ends at offset 0 and everything behind that is its tail.
TEST(Replace, TheTailOfAMatchThatEndsInFrontOfItsStartBeginsAtItsEnd) {
    const std::string source = "-abc\xF0\x9F\x98\x80";
    for (const char* options : {"", "g"}) {
        const Call call = replace(source, "\\w{2,}(?=-)", options, "X$&", 20);
        EXPECT_EQ(call.text(), "-X" + source) << options;
        EXPECT_EQ(call.used, 8);
    }
}

// Every row of the two tables in the header, by name.
TEST(Replace, FirstMatchRowsOfTheTable) {
    const auto row = [](const char* replacement, int capacity) {
        const Call call = replace("abcde", "c", "", replacement, capacity);
        return std::pair(call.used, call.made);
    };
    EXPECT_EQ(row("xyz", 8), std::pair(5, 7));  // everything was written
    EXPECT_EQ(row("xyz", 7), std::pair(3, 5));  // the tail did not fit
    EXPECT_EQ(row("xyz", 3), std::pair(2, 2));  // a piece did not fit
    EXPECT_EQ(row("xyz", 2), std::pair(0, 0));  // the prefix did not fit
    EXPECT_EQ(row("", 3), std::pair(5, 2));     // the template is empty
}

TEST(Replace, EveryMatchRowsOfTheTable) {
    const auto row = [](int capacity) {
        const Call call = replace("abcdecfg", "c", "g", "xyz", capacity);
        return std::pair(call.used, call.made);
    };
    EXPECT_EQ(row(13), std::pair(2, 12));  // everything was written: "abxyzdexyzfg"
    EXPECT_EQ(row(12), std::pair(6, 10));  // the tail of the last match did not fit
    EXPECT_EQ(row(10), std::pair(5, 7));   // a piece of the second match did not fit
    EXPECT_EQ(row(7), std::pair(3, 5));    // the gap in front of the second match did not fit
    EXPECT_EQ(row(5), std::pair(2, 2));    // a piece of the first match did not fit
    EXPECT_EQ(row(2), std::pair(0, 0));    // the gap in front of the first match did not fit
}

// ---- Arguments ----------------------------------------------------------------------------------

TEST(Replace, RefusesEachNullPointerBeforeAnyLength) {
    const Pattern pattern("b");
    const Template replacement("x");
    Zel8u destination[8] = {};
    ZelRegExpFind find[4];
    for (int length : {3, 0, -1}) {
        for (int missing = 0; missing < 8; ++missing) {
            int used = length, made = length == 3 ? 8 : length, found = 4;
            const auto at = [&](int i, auto* p) { return i == missing ? nullptr : p; };
            EXPECT_EQ(zelsRegExpReplace_8u(at(0, bytes("abc")), at(1, &used), at(2, destination),
                                           at(3, &made), at(4, find), at(5, &found),
                                           at(6, pattern.get()), at(7, replacement.state())),
                      zelStatusNullPointer)
                << missing;
            EXPECT_EQ(used, length);
            EXPECT_EQ(destination[0], 0);
        }
    }
}

TEST(Replace, RefusesLengthsBelowOne) {
    const Pattern pattern("b");
    const Template replacement("x");
    for (int bad : {0, -1, INT_MIN}) {
        Zel8u destination[8] = {};
        ZelRegExpFind find[4];
        int used = bad, made = 8, found = 4;
        EXPECT_EQ(zelsRegExpReplace_8u(bytes("abc"), &used, destination, &made, find, &found,
                                       pattern.get(), replacement.state()),
                  zelStatusSizeError);
        EXPECT_EQ(used, bad);
        EXPECT_EQ(made, 8);
        used = 3, made = bad;
        EXPECT_EQ(zelsRegExpReplace_8u(bytes("abc"), &used, destination, &made, find, &found,
                                       pattern.get(), replacement.state()),
                  zelStatusSizeError);
        EXPECT_EQ(used, 3);
        EXPECT_EQ(made, bad);
        EXPECT_EQ(found, 4);
        EXPECT_EQ(destination[0], 0);
    }
}

TEST(Replace, PassesAFailingSearchOnAndWritesNothing) {
    const auto untouched = [](const Call& call, int used, int made) {
        return call.used == used && call.made == made && call.untouchedFrom(0);
    };
    for (const char* options : {"", "g"}) {
        const Call noRecords = replace("abc", "b", options, "x", 10, 0);
        EXPECT_EQ(noRecords.status, zelStatusSizeError);
        EXPECT_TRUE(untouched(noRecords, 3, 10));

        const Pattern starved("x|y", options);
        ASSERT_EQ(zelsRegExpSetMatchLimit(0, starved.get()), zelStatusOk);
        const Call limit = replace("abc", starved, Template("x"), 10);
        EXPECT_EQ(limit.status, zelStatusRegExpMatchLimitError);
        EXPECT_TRUE(untouched(limit, 3, 10));

        const Pattern broken("b", options);
        broken.get()->magic ^= 1;
        const Call foreign = replace("abc", broken, Template("x"), 10);
        EXPECT_EQ(foreign.status, zelStatusContextMatchError);
        EXPECT_TRUE(untouched(foreign, 3, 10));
    }
}

TEST(Replace, OneStateServesManyPatterns) {
    const Template replacement("<$&>");
    EXPECT_EQ(replace("abc", Pattern("a"), replacement, 10).text(), "<a>bc");
    EXPECT_EQ(replace("abc", Pattern("[bc]", "g"), replacement, 10).text(), "a<b><c>");
}

// ---- The loop of the header ---------------------------------------------------------------------

/// As the header shows it.
std::string replaceWithTheLoop(const std::string& text, const Pattern& pattern,
                               const std::string& templateText, int recordsPerMatch, int room,
                               int capacity) {
    const Template replacement(templateText);
    const auto dollars = std::count(templateText.begin(), templateText.end(), '$');
    std::vector<ZelRegExpFind> find(static_cast<size_t>(room));
    std::vector<Zel8u> out(static_cast<size_t>(capacity));
    std::string result;
    const int length = static_cast<int>(text.size());
    int at = 0;
    while (at < length) {
        int used = length - at, made = capacity, found = room;
        const ZelStatus status =
            zelsRegExpReplace_8u(bytes(text) + at, &used, out.data(), &made, find.data(), &found,
                                 pattern.get(), replacement.state());
        EXPECT_EQ(status, zelStatusOk);
        if (status < 0) return result;

        long long enough = static_cast<long long>(length - at) + 1;
        for (int i = 0; i < found; ++i) {
            enough += static_cast<long long>(templateText.size());
            const int lenMatch = find[static_cast<size_t>(i)].lenMatch;
            if (lenMatch > 0) enough += static_cast<long long>(dollars) * lenMatch;
        }
        if (capacity < enough) {
            capacity = static_cast<int>(enough);
            out.resize(static_cast<size_t>(capacity));
        } else if (found + recordsPerMatch <= room) {
            result.append(out.begin(), out.begin() + made);
            at = length;
        } else if (used == 0 || find[static_cast<size_t>(found - recordsPerMatch)].lenMatch < 1) {
            room *= 2;
            find.resize(static_cast<size_t>(room));
        } else {
            result.append(out.begin(), out.begin() + (made - used));
            at = length - used;
        }
    }
    return result;
}

TEST(Replace, TheLoopOfTheHeaderReplacesEverythingWhateverItStartsWith) {
    struct Case {
        const char* pattern;
        int recordsPerMatch;
        const char* replacement;
    };
    const Case cases[] = {
        {"b", 1, "<$&>"},
        {"b", 1, ""},
        {"(a)(b)?", 3, "$2$1$1"},
        {"x*", 1, "-"},
        {"(a|b)+c*", 2, "$1."},
        {"c|", 1, "($&)"},
        {"[abc]{3}", 1, "a much longer replacement"},
    };
    std::mt19937 random(20240);
    for (const Case& c : cases) {
        const Pattern pattern(c.pattern, "g");
        ASSERT_EQ(zelsRegExpSetMatchLimit(INT_MAX, pattern.get()), zelStatusOk);
        for (int round = 0; round < 40; ++round) {
            std::string text;
            for (size_t n = 1 + random() % 40; text.size() < n;) text += "abcx"[random() % 4];
            const Call whole = replace(text, pattern, Template(c.replacement), 4000, 4000);
            ASSERT_EQ(whole.status, zelStatusOk);
            for (int room : {c.recordsPerMatch, c.recordsPerMatch + 1, 5 * c.recordsPerMatch}) {
                const int capacity = 1 + static_cast<int>(random() % 20);
                EXPECT_EQ(replaceWithTheLoop(text, pattern, c.replacement, c.recordsPerMatch, room,
                                             capacity),
                          whole.text())
                    << c.pattern << " on " << text;
            }
        }
    }
}

/// Without "g" what is left to write always begins at the returned offset.
TEST(Replace, AFirstMatchCutAnywhereIsContinuedFromTheReturnedOffset) {
    const std::string source = "one two three";
    for (int capacity = 1; capacity <= 24; ++capacity) {
        const Call call = replace(source, "two", "", "[$&$&]", capacity);
        const std::string rest = source.substr(static_cast<size_t>(call.used));
        if (call.used > 4) {
            EXPECT_EQ(call.text() + rest, "one [twotwo] three") << capacity;
        } else {
            EXPECT_EQ(call.text() + rest, source) << capacity;
        }
    }
}

}  // namespace
