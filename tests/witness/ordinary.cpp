#include "ordinary.h"

#include <climits>
#include <memory>

#include "regexp/program.h"
#include "zelchmx.h"

namespace witness {
namespace {

class OrdinarySource {
public:
    explicit OrdinarySource(differential::Random& random) : random_(random) {}

    std::string alternation(int depth, bool& mayBeEmpty) {
        std::string text = sequence(depth, mayBeEmpty);
        while (random_.chance(25)) {
            bool empty = true;
            text += "|" + sequence(depth, empty);
            mayBeEmpty = mayBeEmpty || empty;
        }
        return text;
    }

private:
    std::string sequence(int depth, bool& mayBeEmpty) {
        std::string text;
        mayBeEmpty = true;
        for (int count = random_.below(4); count >= 0; --count) {
            if (count == 0 && random_.chance(90)) break;
            bool empty = false;
            text += term(depth, empty);
            mayBeEmpty = mayBeEmpty && empty;
        }
        return text;
    }

    std::string term(int depth, bool& empty) {
        int kind = random_.below(depth < 3 ? 20 : 12);
        if (kind < 6) return quantified(random_.pick(letters_), false, empty);
        if (kind < 9) return quantified(random_.pick(classes_), true, empty);
        if (kind < 11) return quantified(random_.pick(shorthands_), false, empty);
        if (kind < 12) {
            empty = true;
            return random_.pick(anchors_);
        }
        if (kind < 17) return group(depth, empty);
        if (kind < 18 && !closed_.empty()) {
            std::string number = std::to_string(random_.pick(closed_));
            if (random_.chance(40)) {
                bool yes;
                bool no;
                empty = true;
                return "(?(" + number + ")" + sequence(depth + 1, yes) + "|" +
                       sequence(depth + 1, no) + ")";
            }
            return quantified("\\" + number, true, empty);
        }
        return lookAround(depth, empty);
    }

    std::string group(int depth, bool& empty) {
        bool bodyEmpty = false;
        std::string text;
        switch (random_.below(4)) {
            case 0:
            case 1: {
                int number = ++captures_;
                text = "(" + alternation(depth + 1, bodyEmpty) + ")";
                if (!bodyEmpty) closed_.push_back(number);
                break;
            }
            case 2:
                text = "(?:" + alternation(depth + 1, bodyEmpty) + ")";
                break;
            default:
                text = "(?>" + alternation(depth + 1, bodyEmpty) + ")";
                break;
        }
        empty = bodyEmpty;
        bool quantifiedEmpty = false;
        // Engines disagree on how often a bounded repeat takes a body that can be empty.
        if (!bodyEmpty) {
            text = quantified(text, true, quantifiedEmpty);
        } else if (random_.chance(50)) {
            text += random_.pick(unbounded_);
        }
        empty = empty || quantifiedEmpty;
        return text;
    }

    std::string lookAround(int depth, bool& empty) {
        empty = true;
        bool unused;
        switch (random_.below(4)) {
            case 0:
                return "(?=" + alternation(depth + 1, unused) + ")";
            case 1:
                return "(?!" + alternation(depth + 1, unused) + ")";
            case 2:
                return std::string("(?<=") + random_.pick(letters_) + random_.pick(classes_) + ")";
            default:
                return std::string("(?<!") + random_.pick(letters_) + ")";
        }
    }

    std::string quantified(const std::string& atom, bool mayBeLazy, bool& empty) {
        if (!random_.chance(45)) return atom;
        static const char* const quantifiers[] = {"*", "+", "?", "{2}", "{1,}", "{0,2}", "{1,3}"};
        int which = random_.below(7);
        empty = empty || which == 0 || which == 2 || which == 5;
        return atom + quantifiers[which] + (mayBeLazy && random_.chance(35) ? "?" : "");
    }

    static constexpr const char* letters_[] = {"a", "b", "c", "a", "b", "ab", "1"};
    static constexpr const char* classes_[] = {"[ab]", "[^a]", "[a-c]", "[^b\\n]", "[\\d ]"};
    static constexpr const char* shorthands_[] = {".", "\\w", "\\d", "\\s", "\\W", "\\S", "\\D"};
    static constexpr const char* unbounded_[] = {"*", "+", "*?", "+?", "?", "?\?"};
    static constexpr const char* anchors_[] = {"^", "$", "\\b", "\\B", "\\A", "\\z", "\\Z"};

    differential::Random& random_;
    int captures_ = 0;
    std::vector<int> closed_;  // groups that cannot be empty
};

/// Whether one of the deliberate differences can show in a pattern.
bool mayDiffer(const ZelRegExpState& state, const std::string& pattern) {
    // A lazy quantifier of a shorthand may have been merged into a greedy one.
    for (const char* lazy : {".*?", ".+?", ".?\?"}) {
        if (pattern.find(lazy) != std::string::npos) return true;
    }
    bool topLevelBar = false;
    bool seesBehind = false;  // what follows the trailing literal can change the match
    for (int i = 0; i < state.nodeCount; ++i) {
        const zel::Node& node = state.nodes()[i];
        bool more = i + 1 < state.nodeCount;
        if (node.kind == zel::NodeAlternative && node.value == 0) topLevelBar = true;
        if (node.kind == zel::NodeGroupingLookAhead || node.kind == zel::NodeGroupingLookAheadNot) {
            seesBehind = true;
        }
        if (node.kind == zel::NodeGroupingAtom) seesBehind = true;
        bool raises = node.kind == zel::NodeLetter || node.kind == zel::NodeLetterRange;
        if (raises && more && state.nodes()[i + 1].kind == zel::NodeQuantifierMin) return true;
        if (node.kind == zel::NodePosition && more && isQuantifier(state.nodes()[i + 1]))
            return true;
    }
    return state.trailingLiteral >= 0 && (topLevelBar || seesBehind);
}

}  // namespace

std::string describe(const Spans& spans) {
    if (spans.empty()) return "no match";
    std::string text;
    for (const auto& [start, length] : spans) {
        text += "[" + std::to_string(start) + "," + std::to_string(length) + "]";
    }
    return text;
}

OrdinaryCase makeOrdinaryCase(differential::Random& random) {
    OrdinaryCase test;
    bool unused;
    OrdinarySource source(random);
    test.pattern = source.alternation(0, unused);
    for (char option : {'i', 'm', 's'}) {
        if (random.chance(15)) test.options += option;
    }
    static const char letters[] = "aaabbbcAB1 \n";
    for (int count = random.below(12); count > 0; --count) test.text += letters[random.below(12)];
    return test;
}

Answer ask(const OrdinaryCase& test) {
    Answer answer;
    ZelRegExpState* state = nullptr;
    int offset;
    if (zelsRegExpInitAlloc(test.pattern.c_str(), test.options.c_str(), &state, &offset) != 0) {
        return answer;
    }
    std::unique_ptr<ZelRegExpState, ZelStatus (*)(ZelRegExpState*)> owner(state, zelsRegExpFree);
    answer.compiles = true;
    answer.comparable = !mayDiffer(*state, test.pattern);
    zelsRegExpSetFormat(0, state);
    zelsRegExpSetMatchLimit(INT_MAX, state);
    std::vector<ZelRegExpFind> records(static_cast<size_t>(state->groupCount));
    int count = state->groupCount;
    auto* text = reinterpret_cast<const Zel8u*>(test.text.c_str());
    zelsRegExpFind_8u(text, static_cast<int>(test.text.size()), state, records.data(), &count);
    for (int i = 0; i < count; ++i) {
        const ZelRegExpFind& record = records[static_cast<size_t>(i)];
        int start = record.pMatch ? static_cast<int>(record.pMatch - text) : -1;
        answer.spans.push_back({start, record.lenMatch});
    }
    return answer;
}

const std::vector<Difference>& deliberateDifferences() {
    static const std::vector<Difference> table = {
        {"a|bc*d",
         "",
         "a",
         {},
         {{0, 1}},
         "a quantified letter behind a top-level bar lets the literal at the pattern's end count "
         "as "
         "required for every alternative"},
        {"(?=ab)a",
         "",
         "ab",
         {},
         {{0, 1}},
         "the text ends for the search behind the last occurrence of the literal that ends the "
         "pattern, so a look-ahead sees nothing behind it"},
        {"(?>.*1|)c",
         "",
         "c1",
         {{0, 1}},
         {},
         "the same for an atomic group, which does not see what it would take"},
        {"(?:b*?a|)b",
         "",
         "bb",
         {{0, 3}},
         {{0, 1}},
         "a lazy letter or shorthand that failed leaves the length of the whole match raised"},
        {"(b*)\\1",
         "",
         "",
         {},
         {{0, 0}, {0, 0}},
         "a back-reference without a quantifier fails at the end of the text, even to an empty "
         "group"},
        {"(|a){2}b",
         "",
         "ab",
         {{0, 2}, {1, 0}},
         {{0, 2}, {0, 1}},
         "a repetition that took nothing ends the loop of a group, also below its minimum"},
        {"..*?",
         "",
         "aa",
         {{0, 2}},
         {{0, 1}},
         "repeated dots and shorthands fold into one, and what is merged becomes greedy"},
        {"$+",
         "",
         "",
         {},
         {{0, 0}},
         "a quantified assertion of minimum above 0 is tested, then its quantifier, reached by "
         "itself, fails"},
        {"\\s", "", "\v", {}, {{0, 1}}, "the vertical tab is no space"},
        {"a{,2}", "", "aa", {{0, 2}}, {}, "a missing minimum is 0 (literal text to some others)"},
        {"(?(12)a|b)()()()()()()()()()()()()",
         "",
         "b",
         {{0, 1},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0}},
         {{0, 1},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0},
          {1, 0}},
         "a condition's number is read in base 11: 12 names group 13"},
        {"[[:punct:]]", "", " ", {{0, 1}}, {}, "the punct class is wider: blanks belong to it"},
        {"[[:graph:]]", "", "\xE9", {{0, 1}}, {}, "graph reaches up to 0xFF"},
        {"(?<=a{1,2})b",
         "",
         "aab",
         {{2, 1}},
         {{2, 1}},
         "a look-behind takes the minimum of a quantifier as its length (an error to others)"},
    };
    return table;
}

}  // namespace witness
