// Bracket classes: members, ranges, escapes and quotations inside, POSIX classes, UTF-8, and the
// classes that are reduced to their only member.
#include "compile_support.h"

namespace zel {
namespace {

constexpr int kInf = 0x3FFFFFFF;

/// The members of a class that is not reduced.
Nodes membersOf(const std::string& pattern) {
    Nodes nodes = nodesOf(pattern);
    if (nodes.empty() || nodes[0].kind != NodeCharacterClass) {
        ADD_FAILURE() << pattern << " is no class";
        return {};
    }
    EXPECT_EQ(nodes[0].count, static_cast<int>(nodes.size()) - 1) << pattern;
    EXPECT_EQ(nodes[0].extra, 0);
    nodes.erase(nodes.begin());
    return nodes;
}

TEST(CompileClass, HeadCountsItsMembersAndKnowsNegation) {
    EXPECT_EQ(nodesOf("[ab]"), (Nodes{classOf(2), letter('a'), letter('b')}));
    EXPECT_EQ(nodesOf("[^ab]"), (Nodes{classNot(2), letter('a'), letter('b')}));
    EXPECT_EQ(nodesOf("x[ab]y"),
              (Nodes{letter('x'), classOf(2), letter('a'), letter('b'), letter('y')}));
}

TEST(CompileClass, SingleMemberReplacesTheClass) {
    EXPECT_EQ(nodesOf("[q]"), (Nodes{letter('q')}));
    EXPECT_EQ(nodesOf("[\\d]"), (Nodes{shorthand('d')}));
    EXPECT_EQ(nodesOf("[\\W]"), (Nodes{shorthand('W')}));
    EXPECT_EQ(nodesOf("[\\X]"), (Nodes{node(NodeCombLetter)}));
    EXPECT_EQ(nodesOf("[.]"), (Nodes{letter('.')}));
    EXPECT_EQ(nodesOf("[\\n]"), (Nodes{letter('\n')}));
    EXPECT_EQ(nodesOf("[-]"), (Nodes{letter('-')}));
    EXPECT_EQ(nodesOf("[]]"), (Nodes{letter(']')}));
    EXPECT_EQ(nodesOf("[\xC3\xA9]"), (Nodes{letter(0xE9)}));
    EXPECT_EQ(nodesOf("[a]*b"), (Nodes{letter('a'), greedy(0, kInf), letter('b')}));
}

TEST(CompileClass, OtherSingleMembersAndNegatedClassesStay) {
    EXPECT_EQ(nodesOf("[^q]"), (Nodes{classNot(1), letter('q')}));
    EXPECT_EQ(nodesOf("[^\\d]"), (Nodes{classNot(1), shorthand('d')}));
    EXPECT_EQ(nodesOf("[^^]"), (Nodes{classNot(1), letter('^')}));
    EXPECT_EQ(nodesOf("[a-c]"), (Nodes{classOf(1), range('a', 'c')}));
    EXPECT_EQ(nodesOf("[\\x{100}]"), (Nodes{classOf(1), wide(0x100)}));
    EXPECT_EQ(nodesOf("[\\p{Lu}]"), (Nodes{classOf(1), node(NodeUnicodeCategory, 0x82)}));
    EXPECT_EQ(nodesOf("[[:digit:]]"), (Nodes{classOf(1), range('0', '9')}));
}

TEST(CompileClass, ClosingBracketIsLiteralOnlyAtTheStart) {
    EXPECT_EQ(membersOf("[]a]"), (Nodes{letter(']'), letter('a')}));
    EXPECT_EQ(membersOf("[^]a]"), (Nodes{letter(']'), letter('a')}));
    EXPECT_EQ(nodesOf("[a]b]"), (Nodes{letter('a'), run("b]")}));
    EXPECT_EQ(membersOf("[]-a]"), (Nodes{range(']', 'a')}));
    EXPECT_EQ(membersOf("[\\]a]"), (Nodes{letter(']'), letter('a')}));
    EXPECT_EQ(membersOf("[\\Q]a\\E]"), (Nodes{letter(']'), letter('a')}));
}

TEST(CompileClass, RangesJoinTwoCharacters) {
    EXPECT_EQ(membersOf("[a-cx-z]"), (Nodes{range('a', 'c'), range('x', 'z')}));
    EXPECT_EQ(membersOf("[xa-c]"), (Nodes{letter('x'), range('a', 'c')}));
    EXPECT_EQ(membersOf("[a-a]"), (Nodes{range('a', 'a')}));
    EXPECT_EQ(membersOf("[\\x41-\\132]"), (Nodes{range('A', 'Z')}));
    EXPECT_EQ(membersOf("[\\t-\\r]"), (Nodes{range('\t', '\r')}));
    EXPECT_EQ(membersOf("[\\.-\\/]"), (Nodes{range('.', '/')}));
    EXPECT_EQ(membersOf("[\\0-\\b]"), (Nodes{range(0, 8)}));
    EXPECT_EQ(membersOf("[a-\\x{3B1}]"), (Nodes{range('a', 0x3B1)}));
    EXPECT_EQ(membersOf("[\xCE\xB1-\xCF\x89]"), (Nodes{range(0x3B1, 0x3C9)}));
    EXPECT_EQ(membersOf("[+--]"), (Nodes{range('+', '-')}));
    EXPECT_EQ(nodesOf("[!-]]"), (Nodes{classOf(2), letter('!'), letter('-'), letter(']')}));
}

TEST(CompileClass, DashElsewhereIsLiteral) {
    EXPECT_EQ(membersOf("[-a]"), (Nodes{letter('-'), letter('a')}));
    EXPECT_EQ(membersOf("[^-a]"), (Nodes{letter('-'), letter('a')}));
    EXPECT_EQ(membersOf("[a-]"), (Nodes{letter('a'), letter('-')}));
    EXPECT_EQ(membersOf("[a-c-]"), (Nodes{range('a', 'c'), letter('-')}));
    EXPECT_EQ(membersOf("[a-c-x]"), (Nodes{range('a', 'c'), letter('-'), letter('x')}));
    EXPECT_EQ(membersOf("[\\d-x]"), (Nodes{shorthand('d'), letter('-'), letter('x')}));
    EXPECT_EQ(membersOf("[a-\\d]"), (Nodes{letter('a'), letter('-'), shorthand('d')}));
    EXPECT_EQ(membersOf("[a-\\X]"), (Nodes{letter('a'), letter('-'), node(NodeCombLetter)}));
    EXPECT_EQ(membersOf("[a-\\pL]"),
              (Nodes{letter('a'), letter('-'), node(NodeUnicodeCategory, 0x80)}));
    EXPECT_EQ(membersOf("[\\pL-a]"),
              (Nodes{node(NodeUnicodeCategory, 0x80), letter('-'), letter('a')}));
    EXPECT_EQ(membersOf("[a-[:digit:]]"), (Nodes{letter('a'), letter('-'), range('0', '9')}));
    EXPECT_EQ(membersOf("[[:blank:]-a]"),
              (Nodes{letter(' '), letter('\t'), letter('-'), letter('a')}));
    EXPECT_EQ(membersOf("[a\\-z]"), (Nodes{letter('a'), letter('-'), letter('z')}));
    EXPECT_EQ(membersOf("[a\\Q-\\Ez]"), (Nodes{letter('a'), letter('-'), letter('z')}));
}

TEST(CompileClass, LiteralDashMayBeginARange) {
    EXPECT_EQ(membersOf("[a-c--e]"), (Nodes{range('a', 'c'), range('-', 'e')}));
    EXPECT_EQ(membersOf("[--a]"), (Nodes{range('-', 'a')}));
    EXPECT_EQ(membersOf("[---]"), (Nodes{range('-', '-')}));
    EXPECT_EQ(membersOf("[----]"), (Nodes{range('-', '-'), letter('-')}));
    EXPECT_EQ(membersOf("[\\d--a]"), (Nodes{shorthand('d'), range('-', 'a')}));
}

TEST(CompileClass, QuotationsHoldLiterals) {
    EXPECT_EQ(membersOf("[\\Qa-c\\E]"), (Nodes{letter('a'), letter('-'), letter('c')}));
    EXPECT_EQ(membersOf("[\\Q\\d[:x:]\\E]"),
              (Nodes{letter('\\'), letter('d'), letter('['), letter(':'), letter('x'), letter(':'),
                     letter(']')}));
    EXPECT_EQ(membersOf("[\\Qa\\E-c]"), (Nodes{range('a', 'c')}));
    EXPECT_EQ(membersOf("[a-\\Qc\\E]"), (Nodes{range('a', 'c')}));
    EXPECT_EQ(membersOf("[a-\\E]"), (Nodes{letter('a'), letter('-')}));
    EXPECT_EQ(membersOf("[a\\E-c]"), (Nodes{range('a', 'c')}));
    EXPECT_EQ(membersOf("[a-\\Ec]"), (Nodes{range('a', 'c')}));
    EXPECT_EQ(membersOf("[a\\Eb]"), (Nodes{letter('a'), letter('b')}));
    EXPECT_EQ(membersOf("[\\Q\xCE\xB1\\Ea]"), (Nodes{wide(0x3B1), letter('a')}));
}

TEST(CompileClass, EscapesOfOneCharacter) {
    const struct {
        const char* escape;
        int value;
    } rows[] = {
        {"\\a", 0x07},
        {"\\b", 0x08},
        {"\\e", 0x1B},
        {"\\f", 0x0C},
        {"\\n", 0x0A},
        {"\\r", 0x0D},
        {"\\t", 0x09},
        {"\\v", 0x0B},
        {"\\cA", 0x01},
        {"\\cz", 0x1A},
        {"\\c]", 0x1D},
        {"\\c\\", 0x1C},
        {"\\x41", 0x41},
        {"\\x4", 0x04},
        {"\\x", 0x00},
        {"\\x{7F}", 0x7F},
        {"\\x{}", 0x00},
        {"\\0", 0x00},
        {"\\7", 0x07},
        {"\\12", 0x0A},
        {"\\101", 0x41},
        {"\\377", 0xFF},
        {"\\777", 0xFF},
        {"\\400", 0x00},
        // Without a meaning in a class, a letter is itself.
        {"\\A", 'A'},
        {"\\B", 'B'},
        {"\\G", 'G'},
        {"\\Z", 'Z'},
        {"\\z", 'z'},
        {"\\C", 'C'},
        {"\\8", '8'},
        {"\\9", '9'},
        {"\\q", 'q'},
        {"\\[", '['},
        {"\\-", '-'},
        {"\\\\", '\\'},
        {"\\ ", ' '},
        {"\\\xC3\xA9", 0xE9},
    };
    for (const auto& row : rows) {
        const std::string pattern = std::string("[!") + row.escape + "]";
        EXPECT_EQ(membersOf(pattern), (Nodes{letter('!'), letter(row.value)})) << pattern;
    }
}

TEST(CompileClass, OctalEndsAfterThreeDigitsOrAtTheFirstOther) {
    EXPECT_EQ(membersOf("[\\1019]"), (Nodes{letter('A'), letter('9')}));
    EXPECT_EQ(membersOf("[\\18]"), (Nodes{letter(1), letter('8')}));
    EXPECT_EQ(membersOf("[\\0101]"), (Nodes{letter(8), letter('1')}));
}

TEST(CompileClass, ShorthandsAndProperties) {
    EXPECT_EQ(membersOf("[\\d\\D\\s\\S\\w\\W]"),
              (Nodes{shorthand('d'), shorthand('D'), shorthand('s'), shorthand('S'), shorthand('w'),
                     shorthand('W')}));
    EXPECT_EQ(membersOf("[\\d\\d]"), (Nodes{shorthand('d'), shorthand('d')}));
    EXPECT_EQ(membersOf("[\\p{Lu}\\P{InBasicLatin}]"),
              (Nodes{node(NodeUnicodeCategory, 0x82), node(NodeUnicodeProperty, 0, 0x7F, 1)}));
    EXPECT_EQ(membersOf("[\\X\\X]"), (Nodes{node(NodeCombLetter), node(NodeCombLetter)}));
}

TEST(CompileClass, SpecialBytesOfTheOutsideAreLiteral) {
    EXPECT_EQ(membersOf("[.*+?{}()|$^# ]").size(), 13u);
    for (const TestNode& member : membersOf("[.*+?{}()|$^# ]")) {
        EXPECT_EQ(member.kind, NodeLetter);
    }
    EXPECT_EQ(membersOf("[a^]"), (Nodes{letter('a'), letter('^')}));
    EXPECT_EQ(membersOf("[\\^a]"), (Nodes{letter('^'), letter('a')}));
}

// ---- POSIX classes
// -------------------------------------------------------------------------------

TEST(CompileClass, PosixNamesHaveTheirMembers) {
    const struct {
        const char* name;
        Nodes members;
    } rows[] = {
        {"alnum", {range('a', 'z'), range('A', 'Z'), range('0', '9')}},
        {"alpha", {range('a', 'z'), range('A', 'Z')}},
        {"ascii", {range(0, 0x7F)}},
        {"blank", {letter(' '), letter('\t')}},
        {"cntrl", {range(0, 0x1F)}},
        {"digit", {range('0', '9')}},
        {"graph", {range(0x21, 0xFF)}},
        {"lower", {range('a', 'z')}},
        {"print", {range(0x20, 0xFF)}},
        {"punct", {range(0x20, 0x2F), range(0x3A, 0x40), range(0x5B, 0x60), range(0x7B, 0xFF)}},
        {"space", {range(0x09, 0x0D), letter(' ')}},
        {"upper", {range('A', 'Z')}},
        {"xdigit", {range('a', 'f'), range('A', 'F'), range('0', '9')}},
        {"word", {shorthand('w')}},
    };
    for (const auto& row : rows) {
        for (const char delimiter : {':', '.', '='}) {
            const std::string part = std::string("[") + delimiter + row.name + delimiter + "]";
            Nodes expected = row.members;
            expected.push_back(letter('!'));
            EXPECT_EQ(membersOf("[" + part + "!]"), expected) << part;

            const std::string inverted =
                std::string("[") + delimiter + "^" + row.name + delimiter + "]";
            for (TestNode& member : expected) {
                if (member == letter('!')) continue;
                member.extra = -1;
                if (member.kind == NodeLetterRange) member.value = 'W';
            }
            EXPECT_EQ(membersOf("[" + inverted + "!]"), expected) << inverted;
        }
    }
}

TEST(CompileClass, LoneWordClassIsReduced) {
    EXPECT_EQ(nodesOf("[[:word:]]"), (Nodes{shorthand('w')}));
    EXPECT_EQ(nodesOf("[[:^word:]]"), (Nodes{node(NodeLetterRange, 'W', 0, -1)}));
    EXPECT_EQ(nodesOf("[^[:word:]]"), (Nodes{classNot(1), shorthand('w')}));
}

TEST(CompileClass, PosixClassNeedsItsClosingDelimiter) {
    // The first "]" decides, and the delimiter in front of it must be a second one.
    EXPECT_EQ(membersOf("[[:alpha]"), (Nodes{letter('['), letter(':'), letter('a'), letter('l'),
                                             letter('p'), letter('h'), letter('a')}));
    EXPECT_EQ(nodesOf("[[:a]:]"),
              (Nodes{classOf(3), letter('['), letter(':'), letter('a'), run(":]")}));
    EXPECT_EQ(membersOf("[[:]"), (Nodes{letter('['), letter(':')}));
    EXPECT_EQ(membersOf("[[:.]"), (Nodes{letter('['), letter(':'), letter('.')}));
    EXPECT_EQ(nodesOf("[[:alpha.]]"),
              (Nodes{classOf(8), letter('['), letter(':'), letter('a'), letter('l'), letter('p'),
                     letter('h'), letter('a'), letter('.'), letter(']')}));
    EXPECT_EQ(membersOf("[[a:]"), (Nodes{letter('['), letter('a'), letter(':')}));
    EXPECT_EQ(membersOf("[:alpha:]"), (Nodes{letter(':'), letter('a'), letter('l'), letter('p'),
                                             letter('h'), letter('a'), letter(':')}));
}

// ---- UTF-8
// ---------------------------------------------------------------------------------------

TEST(CompileClass, SequencesAreOneMemberEach) {
    const struct {
        const char* bytes;
        int codePoint;
    } rows[] = {
        {"\xC2\x80", 0x80},
        {"\xC3\xBF", 0xFF},
        {"\xC4\x80", 0x100},
        {"\xDF\xBF", 0x7FF},
        {"\xE0\xA0\x80", 0x800},
        {"\xED\xA0\x80", 0xD800},  // encoded surrogates are accepted
        {"\xEF\xBF\xBF", 0xFFFF},
        {"\xF0\x90\x80\x80", 0x10000},
        {"\xF4\x90\x80\x80", 0x110000},
        {"\xF7\xBF\xBF\xBF", 0x1FFFFF},
        {"\xF8\x88\x80\x80\x80", 0x200000},
        {"\xFC\x84\x80\x80\x80\x80", 0x4000000},
        {"\xFD\xBF\xBF\xBF\xBF\xBF", 0x7FFFFFFF},
    };
    for (const auto& row : rows) {
        const TestNode member = row.codePoint < 0x100 ? letter(row.codePoint) : wide(row.codePoint);
        EXPECT_EQ(membersOf(std::string("[a") + row.bytes + "]"), (Nodes{letter('a'), member}))
            << std::hex << row.codePoint;
        EXPECT_EQ(membersOf(std::string("[!-") + row.bytes + "]"),
                  (Nodes{range('!', row.codePoint)}))
            << std::hex << row.codePoint;
    }
}

TEST(CompileClass, RangeEndsCompareAsUnsigned) {
    EXPECT_EQ(membersOf("[a-\\x{FFFFFFFF}]"), (Nodes{range('a', -1)}));
    EXPECT_EQ(membersOf("[\\x{7FFFFFFF}-\\x{80000000}]"), (Nodes{range(INT32_MAX, INT32_MIN)}));
    EXPECT_EQ(compile("[\\x{FFFFFFFF}-a]").status, zelStatusRegExpCharClassError);
}

}  // namespace
}  // namespace zel
