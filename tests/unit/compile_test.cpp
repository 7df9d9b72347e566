// What a pattern compiles to: the nodes of literals, wildcards, quantifiers, groups, conditions and
// option changes, and the rewrites made on the way. Classes, escapes, the trailing literal and
// faulty patterns have files of their own.
#include "compile_support.h"

namespace zel {
namespace {

constexpr int kInf = 0x3FFFFFFF;
constexpr int kS = 1, kM = 2, kI = 4, kX = 8, kG = 16;

// ---- Literals
// ------------------------------------------------------------------------------------

TEST(CompileLiterals, RunOfBytesIsOneString) {
    EXPECT_EQ(nodesOf("abc"), (Nodes{run("abc")}));
    EXPECT_EQ(nodesOf("ab"), (Nodes{run("ab")}));
    EXPECT_EQ(nodesOf("a"), (Nodes{letter('a')}));
}

TEST(CompileLiterals, BytesWithoutMeaningAreLiteral) {
    EXPECT_EQ(nodesOf("]}-,:=!<>#& \t\n\v\x01\x7F"), (Nodes{run("]}-,:=!<>#& \t\n\v\x01\x7F")}));
}

TEST(CompileLiterals, BytesAboveAsciiStandForThemselves) {
    EXPECT_EQ(nodesOf("\xC3\xA9"), (Nodes{run("\xC3\xA9")}));
    EXPECT_EQ(nodesOf("\xFF"), (Nodes{letter(0xFF)}));
    // A quantifier repeats the last byte, not the character.
    EXPECT_EQ(nodesOf("\xC3\xA9*"), (Nodes{letter(0xC3), letter(0xA9), greedy(0, kInf)}));
}

TEST(CompileLiterals, EveryConstructEndsTheRun) {
    EXPECT_EQ(nodesOf("ab^cd"), (Nodes{run("ab"), position('^'), run("cd")}));
    EXPECT_EQ(nodesOf("ab$"), (Nodes{run("ab"), position('$')}));
    EXPECT_EQ(nodesOf("ab.cd"), (Nodes{run("ab"), shorthand('.'), run("cd")}));
    EXPECT_EQ(nodesOf("ab|cd"), (Nodes{run("ab"), bar(0), run("cd")}));
    EXPECT_EQ(nodesOf("ab(cd)ef"),
              (Nodes{run("ab"), capture(1, 1, 1), run("cd"), close(1), run("ef")}));
    EXPECT_EQ(nodesOf("ab[cd]ef"),
              (Nodes{run("ab"), classOf(2), letter('c'), letter('d'), run("ef")}));
    EXPECT_EQ(nodesOf("ab\\ncd"), (Nodes{run("ab"), letter('\n'), run("cd")}));
    EXPECT_EQ(nodesOf("ab(?i)cd"), (Nodes{run("ab"), node(NodeOptions, kI), run("cd", kI)}));
}

TEST(CompileLiterals, EscapedByteBeginsARunThatPlainBytesExtend) {
    EXPECT_EQ(nodesOf("ab\\*cd"), (Nodes{run("ab"), run("*cd")}));
    EXPECT_EQ(nodesOf("\\*\\*"), (Nodes{letter('*'), letter('*')}));
    EXPECT_EQ(nodesOf("a\\.*"), (Nodes{letter('a'), letter('.'), greedy(0, kInf)}));
}

TEST(CompileLiterals, QuotationIsARunOfItsOwn) {
    EXPECT_EQ(nodesOf("\\Qa.b*\\E"), (Nodes{run("a.b*")}));
    EXPECT_EQ(nodesOf("x\\Qa.b\\Ey"), (Nodes{letter('x'), run("a.b"), letter('y')}));
    EXPECT_EQ(nodesOf("\\Q(\\E"), (Nodes{letter('(')}));
    EXPECT_EQ(nodesOf("\\Q[a\\\\E"), (Nodes{run("[a\\")}));
    EXPECT_EQ(nodesOf("\\Qabc"), (Nodes{run("abc")}));
    EXPECT_EQ(nodesOf("\\Q"), (Nodes{}));
    EXPECT_EQ(nodesOf("\\Q\\E"), (Nodes{}));
    EXPECT_EQ(nodesOf("\\Q a # b\\E", "x"), (Nodes{run(" a # b", kX)}));
}

TEST(CompileLiterals, QuantifierBehindAQuotationTakesItsLastByte) {
    EXPECT_EQ(nodesOf("\\Qabc\\E*"), (Nodes{run("ab"), letter('c'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("abc\\Q\\E*"), (Nodes{run("ab"), letter('c'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("ab\\Qc\\E*"), (Nodes{run("ab"), letter('c'), greedy(0, kInf)}));
}

TEST(CompileLiterals, QuoteEndAloneIsIgnoredButEndsTheRun) {
    EXPECT_EQ(nodesOf("\\E"), (Nodes{}));
    EXPECT_EQ(nodesOf("ab\\Ecd"), (Nodes{run("ab"), run("cd")}));
    EXPECT_EQ(nodesOf("ab\\E*"), (Nodes{letter('a'), letter('b'), greedy(0, kInf)}));
}

TEST(CompileLiterals, CommentEndsTheRun) {
    EXPECT_EQ(nodesOf("ab(?#c)de"), (Nodes{run("ab"), run("de")}));
    EXPECT_EQ(nodesOf("abc(?#c)+"), (Nodes{run("ab"), letter('c'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("(?#)"), (Nodes{}));
}

TEST(CompileLiterals, RunTextsFollowTheNodesInOrder) {
    // compile() checks the positions; here only that several runs come out right.
    EXPECT_EQ(nodesOf("abc.defg(hij|kl)"),
              (Nodes{run("abc"), shorthand('.'), run("defg"), capture(1, 3, 1), run("hij"), bar(1),
                     run("kl"), close(1)}));
}

// ---- Simple atoms
// --------------------------------------------------------------------------------

TEST(CompileAtoms, PositionsNameTheirLetter) {
    EXPECT_EQ(nodesOf("^$\\A\\B\\G\\Z\\b\\z"),
              (Nodes{position('^'), position('$'), position('A'), position('B'), position('G'),
                     position('Z'), position('b'), position('z')}));
}

TEST(CompileAtoms, WildcardsNameTheirLetter) {
    EXPECT_EQ(nodesOf(".\\d\\D\\s\\S\\w\\W"),
              (Nodes{shorthand('.'), shorthand('d'), shorthand('D'), shorthand('s'), shorthand('S'),
                     shorthand('w'), shorthand('W')}));
}

TEST(CompileAtoms, AnyByteAndCombiningSequence) {
    EXPECT_EQ(nodesOf("\\C\\X\\C\\X"), (Nodes{node(NodeAnyByte), node(NodeCombLetter),
                                              node(NodeAnyByte), node(NodeCombLetter)}));
}

// ---- The marker in front of a leading any-run
// ----------------------------------------------------

TEST(CompileMarker, LeadingAnyRunIsMarked) {
    const TestNode marker = position(0x80);
    EXPECT_EQ(nodesOf(".*"), (Nodes{marker, shorthand('.'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf(".+"), (Nodes{marker, shorthand('.'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf(".*a"), (Nodes{marker, shorthand('.'), greedy(0, kInf), letter('a')}));
    EXPECT_EQ(nodesOf(".*|a"),
              (Nodes{marker, shorthand('.'), greedy(0, kInf), bar(0), letter('a')}));
    EXPECT_EQ(nodesOf("(?:.*)ab"), (Nodes{marker, node(NodeGroupingNoCapture, 1, 2), shorthand('.'),
                                          greedy(0, kInf), close(1), run("ab")}));
    EXPECT_EQ(nodesOf("(?:.+)")[0], marker);
    EXPECT_EQ(nodesOf("(?:.*)?")[0], marker);
}

TEST(CompileMarker, OtherBeginningsAreNot) {
    EXPECT_EQ(nodesOf(".*?"), (Nodes{shorthand('.'), lazy(0, kInf)}));
    EXPECT_EQ(nodesOf(".+?a"), (Nodes{shorthand('.'), lazy(1, kInf), letter('a')}));
    EXPECT_EQ(nodesOf("."), (Nodes{shorthand('.')}));
    EXPECT_EQ(nodesOf("..*")[0], shorthand('.'));
    EXPECT_EQ(nodesOf("(.*)")[0], capture(1, 2, 1));
    EXPECT_EQ(nodesOf("(?:.*?)")[0], node(NodeGroupingNoCapture, 1, 2));
    EXPECT_EQ(nodesOf("(?:.*a)")[0], node(NodeGroupingNoCapture, 1, 3));
    EXPECT_EQ(nodesOf("a.*")[0], letter('a'));
    EXPECT_EQ(nodesOf(" .*", "x")[0], shorthand('.'));
}

// ---- Quantifiers
// ---------------------------------------------------------------------------------

TEST(CompileQuantifiers, EveryFormHasItsBounds) {
    const struct {
        const char* text;
        int min, max;
    } rows[] = {
        {"*", 0, kInf},
        {"+", 1, kInf},
        {"?", 0, 1},
        {"{3}", 3, 3},
        {"{3,}", 3, kInf},
        {"{3,7}", 3, 7},
        {"{,7}", 0, 7},
        {"{0}", 0, 0},
        {"{0,0}", 0, 0},
        {"{0,}", 0, kInf},
        {"{007}", 7, 7},
        {"{65535}", 65535, 65535},
        {"{5,65535}", 5, 65535},
        {"{65535,}", 65535, kInf},
    };
    for (const auto& row : rows) {
        const std::string pattern = std::string("a") + row.text;
        EXPECT_EQ(nodesOf(pattern), (Nodes{letter('a'), greedy(row.min, row.max)})) << pattern;
        EXPECT_EQ(nodesOf(pattern + "?"), (Nodes{letter('a'), lazy(row.min, row.max)})) << pattern;
    }
}

TEST(CompileQuantifiers, BraceWithoutBoundsIsLiteral) {
    for (const char* text : {"{", "{}", "{,}", "{a}", "{1", "{1,", "{1,2", "{1,2,3}", "{ 1}",
                             "{1 }", "{-1}", "{1,a}", "{,", "{,a}"}) {
        const std::string pattern = std::string("x") + text;
        EXPECT_EQ(nodesOf(pattern), (Nodes{run(pattern)})) << pattern;
    }
    EXPECT_EQ(nodesOf("{"), (Nodes{letter('{')}));
    EXPECT_EQ(nodesOf("a{,}*"), (Nodes{run("a{,"), letter('}'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("a*{,}"), (Nodes{letter('a'), greedy(0, kInf), run("{,}")}));
}

TEST(CompileQuantifiers, FollowEveryKindOfAtom) {
    const TestNode star = greedy(0, kInf);
    EXPECT_EQ(nodesOf("\\x{100}*"), (Nodes{wide(0x100), star}));
    EXPECT_EQ(nodesOf("\\p{Lu}*"), (Nodes{node(NodeUnicodeCategory, 0x82), star}));
    EXPECT_EQ(nodesOf("\\X*"), (Nodes{node(NodeCombLetter), star}));
    EXPECT_EQ(nodesOf("\\C*"), (Nodes{node(NodeAnyByte), star}));
    EXPECT_EQ(nodesOf("\\d*"), (Nodes{shorthand('d'), star}));
    EXPECT_EQ(nodesOf("^*"), (Nodes{position('^'), star}));
    EXPECT_EQ(nodesOf("\\b*"), (Nodes{position('b'), star}));
    EXPECT_EQ(nodesOf("(a)\\1*"),
              (Nodes{capture(1, 1, 1), letter('a'), close(1), reference(1), star}));
    EXPECT_EQ(nodesOf("[ab]*"), (Nodes{classOf(2), letter('a'), letter('b'), star}));
    EXPECT_EQ(nodesOf("[a]*"), (Nodes{letter('a'), star}));
    EXPECT_EQ(nodesOf("(a)*"), (Nodes{capture(1, 1, 1), letter('a'), close(1), star}));
    EXPECT_EQ(nodesOf("(?=a)*"),
              (Nodes{node(NodeGroupingLookAhead, 1, 1), letter('a'), close(1), star}));
    EXPECT_EQ(nodesOf("(?(1)a)*"), (Nodes{node(NodeGroupingCondition, 1, 2), reference(1),
                                          letter('a'), close(1), star}));
}

TEST(CompileQuantifiers, MayFollowLiteralQuantifierBytes) {
    EXPECT_EQ(nodesOf("\\**"), (Nodes{letter('*'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("\\?+"), (Nodes{letter('?'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("x}+"), (Nodes{letter('x'), letter('}'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("\\Q*\\E*"), (Nodes{letter('*'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("[+]+"), (Nodes{letter('+'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("\\x{41}{2}"), (Nodes{letter('A'), greedy(2, 2)}));
    EXPECT_EQ(nodesOf("\\p{L}?"), (Nodes{node(NodeUnicodeCategory, 0x80), greedy(0, 1)}));
    EXPECT_EQ(nodesOf("\\c**"), (Nodes{letter('*' + 0x40), greedy(0, kInf)}));
}

// ---- Folding of repeated wildcards
// ---------------------------------------------------------------

TEST(CompileFolding, RepeatedWildcardsCountUp) {
    EXPECT_EQ(nodesOf(".."), (Nodes{shorthand('.'), greedy(2, 2)}));
    EXPECT_EQ(nodesOf("..."), (Nodes{shorthand('.'), greedy(3, 3)}));
    EXPECT_EQ(nodesOf("......"), (Nodes{shorthand('.'), greedy(6, 6)}));
    for (const char c : {'d', 'D', 's', 'S', 'w', 'W'}) {
        const std::string one = {'\\', c};
        EXPECT_EQ(nodesOf(one + one), (Nodes{shorthand(c), greedy(2, 2)})) << one;
        EXPECT_EQ(nodesOf(one + one + one + "a"), (Nodes{shorthand(c), greedy(3, 3), letter('a')}))
            << one;
        EXPECT_EQ(nodesOf(one + one + "*"), (Nodes{shorthand(c), greedy(1, kInf)})) << one;
    }
}

TEST(CompileFolding, DifferentWildcardsDoNotFold) {
    EXPECT_EQ(nodesOf("\\d\\w\\d"), (Nodes{shorthand('d'), shorthand('w'), shorthand('d')}));
    EXPECT_EQ(nodesOf("\\d\\D"), (Nodes{shorthand('d'), shorthand('D')}));
    EXPECT_EQ(nodesOf(".\\d\\d."),
              (Nodes{shorthand('.'), shorthand('d'), greedy(2, 2), shorthand('.')}));
    EXPECT_EQ(nodesOf("\\X\\X"), (Nodes{node(NodeCombLetter), node(NodeCombLetter)}));
}

TEST(CompileFolding, LastWildcardKeepsItsOwnQuantifier) {
    EXPECT_EQ(nodesOf("..*"), (Nodes{shorthand('.'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("...*"), (Nodes{shorthand('.'), greedy(2, kInf)}));
    EXPECT_EQ(nodesOf("..?"), (Nodes{shorthand('.'), greedy(1, 2)}));
    EXPECT_EQ(nodesOf("...{2,4}"), (Nodes{shorthand('.'), greedy(4, 6)}));
    EXPECT_EQ(nodesOf("..*?"), (Nodes{shorthand('.'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("..{"), (Nodes{shorthand('.'), greedy(2, 2), letter('{')}));
}

TEST(CompileFolding, WrittenQuantifiersCountToo) {
    EXPECT_EQ(nodesOf("a.*."), (Nodes{letter('a'), shorthand('.'), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf(".{2}."), (Nodes{shorthand('.'), greedy(3, 3)}));
    EXPECT_EQ(nodesOf(".?.."), (Nodes{shorthand('.'), greedy(2, 3)}));
    EXPECT_EQ(nodesOf(".{2}.{3}"), (Nodes{shorthand('.'), greedy(5, 5)}));
    EXPECT_EQ(nodesOf("a.*.*"), (Nodes{letter('a'), shorthand('.'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("\\d+\\d"), (Nodes{shorthand('d'), greedy(2, kInf)}));
}

TEST(CompileFolding, LazyPairStaysLazyOnlyWhenItGainsOne) {
    EXPECT_EQ(nodesOf(".*?."), (Nodes{shorthand('.'), lazy(1, kInf)}));
    EXPECT_EQ(nodesOf(".+?.."), (Nodes{shorthand('.'), lazy(3, kInf)}));
    EXPECT_EQ(nodesOf(".*?.*?"), (Nodes{shorthand('.'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf(".{1,2}?.{3}"), (Nodes{shorthand('.'), greedy(4, 5)}));
}

TEST(CompileFolding, LooksPastWhatLeavesNoNode) {
    const Nodes three = {shorthand('.'), greedy(3, 3)};
    EXPECT_EQ(nodesOf(". . .", "x"), three);
    EXPECT_EQ(nodesOf(".(?#c).\\E."), three);
    EXPECT_EQ(nodesOf(".(?x). .(?-x)"), three);
    EXPECT_EQ(nodesOf(".\\Q\\E.."), three);
    EXPECT_EQ(nodesOf(".#\n.\n.", "x"), three);
    // So does the question whether a quantifier follows.
    const Nodes plus = {shorthand('.'), greedy(1, kInf)};
    EXPECT_EQ(nodesOf(". . *", "x"), plus);
    EXPECT_EQ(nodesOf("..(?#c)*"), plus);
    EXPECT_EQ(nodesOf("..\\E*"), plus);
    EXPECT_EQ(nodesOf("..(?x)*"), plus);
    EXPECT_EQ(nodesOf("..(?x) *"), plus);
    EXPECT_EQ(nodesOf(".. # c\n *", "x"), plus);
}

TEST(CompileFolding, NodesInBetweenPreventIt) {
    EXPECT_EQ(nodesOf(".(?s)."), (Nodes{shorthand('.'), node(NodeOptions, kS), shorthand('.')}));
    EXPECT_EQ(nodesOf("(.)."), (Nodes{capture(1, 1, 1), shorthand('.'), close(1), shorthand('.')}));
    EXPECT_EQ(nodesOf(".|."), (Nodes{shorthand('.'), bar(0), shorthand('.')}));
    EXPECT_EQ(nodesOf("(.*).")[3], close(1));
    EXPECT_EQ(nodesOf("(.*).")[4], shorthand('.'));
}

TEST(CompileFolding, ClassMembersAreNoAtomsToFoldOnto) {
    EXPECT_EQ(nodesOf("[a\\d]\\d"),
              (Nodes{classOf(2), letter('a'), shorthand('d'), shorthand('d')}));
    EXPECT_EQ(nodesOf("[a\\d]{2}\\d"),
              (Nodes{classOf(2), letter('a'), shorthand('d'), greedy(2, 2), shorthand('d')}));
    EXPECT_EQ(nodesOf("[^\\d]\\d"), (Nodes{classNot(1), shorthand('d'), shorthand('d')}));
}

TEST(CompileFolding, FoldsOntoAReducedClassButNotTheClassItself) {
    EXPECT_EQ(nodesOf("[\\d]\\d"), (Nodes{shorthand('d'), greedy(2, 2)}));
    EXPECT_EQ(nodesOf("\\d[\\d]"), (Nodes{shorthand('d'), shorthand('d')}));
}

TEST(CompileFolding, BoundsStopAtUnbounded) {
    EXPECT_EQ(nodesOf("a.+."), (Nodes{letter('a'), shorthand('.'), greedy(2, kInf)}));
    EXPECT_EQ(nodesOf("a.*..*"), (Nodes{letter('a'), shorthand('.'), greedy(1, kInf)}));
}

// ---- Stacked quantifiers
// -------------------------------------------------------------------------

TEST(CompileStacking, BoundsAddUpAndTheSumIsGreedy) {
    EXPECT_EQ(nodesOf("a* +", "x"), (Nodes{letter('a', kX), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("a{2} {3,4}", "x"), (Nodes{letter('a', kX), greedy(5, 6)}));
    EXPECT_EQ(nodesOf("a{2}(?#c){3}"), (Nodes{letter('a'), greedy(5, 5)}));
    EXPECT_EQ(nodesOf("a+?(?#c)+?"), (Nodes{letter('a'), greedy(2, kInf)}));
    EXPECT_EQ(nodesOf("a?\\E??"), (Nodes{letter('a'), greedy(0, 2)}));
    EXPECT_EQ(nodesOf("a*(?x)*"), (Nodes{letter('a'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("(a){2}(?#c){3}"),
              (Nodes{capture(1, 1, 1), letter('a'), close(1), greedy(5, 5)}));
    EXPECT_EQ(nodesOf("[ab]{2} {3}", "x"),
              (Nodes{classOf(2), letter('a'), letter('b'), greedy(5, 5)}));
}

TEST(CompileStacking, QuestionMarkBehindABlankIsAQuantifierOfItsOwn) {
    EXPECT_EQ(nodesOf("a* ?", "x"), (Nodes{letter('a', kX), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("a{2} ?", "x"), (Nodes{letter('a', kX), greedy(2, 3)}));
}

TEST(CompileStacking, SumsStopAtUnbounded) {
    std::string pattern = "a";
    for (int i = 0; i < 20000; ++i) pattern += "{65535} ";
    EXPECT_EQ(nodesOf(pattern, "x"), (Nodes{letter('a', kX), greedy(kInf, kInf)}));
}

// ---- Extended mode
// -------------------------------------------------------------------------------

TEST(CompileExtended, WhiteSpaceVanishesButTheVerticalTabStays) {
    EXPECT_EQ(nodesOf("a b", "x"), (Nodes{letter('a', kX), letter('b', kX)}));
    EXPECT_EQ(nodesOf("a \t\n\f\rb", "x"), (Nodes{letter('a', kX), letter('b', kX)}));
    EXPECT_EQ(nodesOf("a\vb", "x"), (Nodes{run("a\vb", kX)}));
    EXPECT_EQ(nodesOf("a b"), (Nodes{run("a b")}));
}

TEST(CompileExtended, CommentRunsToTheNewline) {
    EXPECT_EQ(nodesOf("a#(b\nc", "x"), (Nodes{letter('a', kX), letter('c', kX)}));
    EXPECT_EQ(nodesOf("a#b\rc", "x"), (Nodes{letter('a', kX)}));
    EXPECT_EQ(nodesOf("a#", "x"), (Nodes{letter('a', kX)}));
    EXPECT_EQ(nodesOf("(a#)\n)", "x"), (Nodes{capture(1, 1, 1), letter('a'), close(1, kX)}));
    EXPECT_EQ(nodesOf("a#b"), (Nodes{run("a#b")}));
}

TEST(CompileExtended, EscapedAndBracketedBlanksStay) {
    EXPECT_EQ(nodesOf("\\ \\#", "x"), (Nodes{letter(' ', kX), letter('#', kX)}));
    EXPECT_EQ(nodesOf("[ ]", "x"), (Nodes{letter(' ', kX)}));
    EXPECT_EQ(nodesOf("[ #]", "x"), (Nodes{classOf(2), letter(' '), letter('#')}));
    EXPECT_EQ(nodesOf("[#\n)]", "x"), (Nodes{classOf(3), letter('#'), letter('\n'), letter(')')}));
}

TEST(CompileExtended, QuantifierBehindABlankTakesTheLastByte) {
    EXPECT_EQ(nodesOf("abc *", "x"), (Nodes{run("ab", kX), letter('c', kX), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("ab c *", "x"), (Nodes{run("ab", kX), letter('c', kX), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("ab # x\n*", "x"),
              (Nodes{letter('a', kX), letter('b', kX), greedy(0, kInf)}));
}

TEST(CompileExtended, InlineChangeLastsToTheEndOfItsGroup) {
    EXPECT_EQ(nodesOf("(?x)a b"), (Nodes{letter('a', kX), letter('b', kX)}));
    EXPECT_EQ(nodesOf("a b(?-x) c", "x"), (Nodes{letter('a', kX), letter('b', kX), run(" c")}));
    EXPECT_EQ(nodesOf("((?x)a b) c"),
              (Nodes{capture(1, 2, 1), letter('a'), letter('b'), close(1), run(" c")}));
    EXPECT_EQ(nodesOf("(?x:a b) c"), (Nodes{node(NodeGroupingOptions, 1, 2, kX), letter('a'),
                                            letter('b'), close(1), run(" c")}));
    EXPECT_EQ(nodesOf("(?x)(#)\n) #)"), (Nodes{capture(2, 0, 1), close(2, kX)}));
    EXPECT_EQ(nodesOf("(?:(?x)#)\n)#"),
              (Nodes{node(NodeGroupingNoCapture, 1, 0), close(1), letter('#')}));
}

TEST(CompileExtended, LiteralKeepsTheFlagsOfItsPlace) {
    // The run ends in front of the option change, although its node is written behind it.
    EXPECT_EQ(nodesOf("ab(?x)"), (Nodes{run("ab")}));
    EXPECT_EQ(nodesOf("ab(?x)cd"), (Nodes{run("ab"), run("cd", kX)}));
}

// ---- Option changes
// ------------------------------------------------------------------------------

TEST(CompileOptions, ChangeIsANodeWithTheNewFlags) {
    EXPECT_EQ(nodesOf("(?i)"), (Nodes{node(NodeOptions, kI)}));
    EXPECT_EQ(nodesOf("(?ims)"), (Nodes{node(NodeOptions, kI | kM | kS)}));
    EXPECT_EQ(nodesOf("(?i-m)", "gms"), (Nodes{node(NodeOptions, kG | kI | kS)}));
    EXPECT_EQ(nodesOf("(?-ims)", "ims"), (Nodes{node(NodeOptions, 0)}));
    EXPECT_EQ(nodesOf("(?i-i)"), (Nodes{node(NodeOptions, 0)}));
    EXPECT_EQ(nodesOf("(?i--m-s)", "ms"), (Nodes{node(NodeOptions, kI)}));
    EXPECT_EQ(nodesOf("(?xx)"), (Nodes{node(NodeOptions, kX)}));
    EXPECT_EQ(nodesOf("(?ix)"), (Nodes{node(NodeOptions, kI | kX)}));
    EXPECT_EQ(nodesOf("(?x-)"), (Nodes{node(NodeOptions, kX)}));
}

TEST(CompileOptions, EmptyChangeKeepsTheFlags) {
    EXPECT_EQ(nodesOf("(?)", "im"), (Nodes{node(NodeOptions, kI | kM)}));
    EXPECT_EQ(nodesOf("(?-)", "s"), (Nodes{node(NodeOptions, kS)}));
    EXPECT_EQ(nodesOf("(?-:a)", "s"),
              (Nodes{node(NodeGroupingOptions, 1, 1, kS), letter('a'), close(1, kS)}));
}

TEST(CompileOptions, ExactlyTheTwoExtendedChangesLeaveNoNode) {
    EXPECT_EQ(nodesOf("(?x)"), (Nodes{}));
    EXPECT_EQ(nodesOf("(?-x)"), (Nodes{}));
}

TEST(CompileOptions, EndWithTheirGroup) {
    EXPECT_EQ(nodesOf("(a(?i)b)c"), (Nodes{capture(1, 3, 1), letter('a'), node(NodeOptions, kI),
                                           letter('b'), close(1, 0), letter('c', 0)}));
    EXPECT_EQ(nodesOf("(?i)(?:(?-i)a)b"),
              (Nodes{node(NodeOptions, kI), node(NodeGroupingNoCapture, 2, 2), node(NodeOptions, 0),
                     letter('a'), close(2, kI), letter('b', kI)}));
}

TEST(CompileOptions, GroupKnowsTheFlagsInsideAndBehind) {
    EXPECT_EQ(nodesOf("(?i:a)", "m"),
              (Nodes{node(NodeGroupingOptions, 1, 1, kI | kM), letter('a'), close(1, kM)}));
    EXPECT_EQ(nodesOf("(?i-m:a|b)", "mg"),
              (Nodes{node(NodeGroupingOptions, 1, 3, kI | kG), letter('a'), bar(1, kI | kG),
                     letter('b'), close(1, kM | kG)}));
}

TEST(CompileOptions, ChangeStaysInForceBehindABar) {
    EXPECT_EQ(nodesOf("a(?i)b|c"), (Nodes{letter('a'), node(NodeOptions, kI), letter('b', kI),
                                          bar(0, kI), letter('c')}));
    EXPECT_EQ(nodesOf("((?i)a|b)|c"),
              (Nodes{capture(1, 4, 1), node(NodeOptions, kI), letter('a'), bar(1, kI), letter('b'),
                     close(1, 0), bar(0, 0), letter('c')}));
}

// ---- Groups
// --------------------------------------------------------------------------------------

TEST(CompileGroups, EveryOpeningHasItsKind) {
    const struct {
        const char* opening;
        TestNode expected;
    } rows[] = {
        {"(", capture(1, 1, 1)},
        {"(?:", node(NodeGroupingNoCapture, 1, 1)},
        {"(?>", node(NodeGroupingAtom, 1, 1)},
        {"(?=", node(NodeGroupingLookAhead, 1, 1)},
        {"(?!", node(NodeGroupingLookAheadNot, 1, 1)},
        {"(?<=", node(NodeGroupingLookBehind, 1, 1, 1)},
        {"(?<!", node(NodeGroupingLookBehindNot, 1, 1, 1)},
        {"(?i:", node(NodeGroupingOptions, 1, 1, kI)},
        {"(?x:", node(NodeGroupingOptions, 1, 1, kX)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(nodesOf(std::string(row.opening) + "a)"),
                  (Nodes{row.expected, letter('a'), close(1)}))
            << row.opening;
    }
}

TEST(CompileGroups, SerialsCountEveryParenthesis) {
    EXPECT_EQ(nodesOf("(?#c)(?i)(?x)(?:(a))"),
              (Nodes{node(NodeOptions, kI), node(NodeGroupingNoCapture, 4, 3), capture(5, 1, 1),
                     letter('a'), close(5, kI | kX), close(4, kI | kX)}));
}

TEST(CompileGroups, CapturesCountInOrderOfTheirParentheses) {
    const Compiled compiled = compile("((a)(?:b)(c))");
    EXPECT_EQ(compiled.groupCount, 4);
    EXPECT_EQ(compiled.nodes, (Nodes{capture(1, 9, 1), capture(2, 1, 2), letter('a'), close(2),
                                     node(NodeGroupingNoCapture, 3, 1), letter('b'), close(3),
                                     capture(4, 1, 3), letter('c'), close(4), close(1)}));
}

TEST(CompileGroups, OnlyRealCapturesCount) {
    EXPECT_EQ(compile("(?:a)(?=b)(?<=c)(?>d)(?i:e)(?i)(?#f)[(]\\(\\Q(\\E").groupCount, 1);
    EXPECT_EQ(compile("(?(1)a)").groupCount, 1);
    EXPECT_EQ(compile("(?(?=a)(b))").groupCount, 2);
    EXPECT_EQ(compile("\\c((a)").groupCount, 2);
    EXPECT_EQ(compile("#(\n(a)", "x").groupCount, 2);
    EXPECT_EQ(compile("[[:alpha:](](a)").groupCount, 2);
    EXPECT_EQ(compile("[](](a)").groupCount, 2);
    EXPECT_EQ(compile("[^](](a)").groupCount, 2);
    EXPECT_EQ(compile("[\\](](a)").groupCount, 2);
    EXPECT_EQ(compile("[\\c](](a)").groupCount, 2);
    EXPECT_EQ(compile("[\\Q](\\E](a)").groupCount, 2);
}

TEST(CompileGroups, EmptyOnesAndEmptyBranches) {
    EXPECT_EQ(nodesOf("()"), (Nodes{capture(1, 0, 1), close(1)}));
    EXPECT_EQ(nodesOf("(|)"), (Nodes{capture(1, 1, 1), bar(1), close(1)}));
    EXPECT_EQ(nodesOf("|"), (Nodes{bar(0)}));
    EXPECT_EQ(nodesOf("(?=)"), (Nodes{node(NodeGroupingLookAhead, 1, 0), close(1)}));
}

TEST(CompileGroups, BarsNameTheirGroup) {
    EXPECT_EQ(nodesOf("a|(b|(?:c|d)|e)|f"),
              (Nodes{letter('a'), bar(0), capture(1, 9, 1), letter('b'), bar(1),
                     node(NodeGroupingNoCapture, 2, 3), letter('c'), bar(2), letter('d'), close(2),
                     bar(1), letter('e'), close(1), bar(0), letter('f')}));
}

TEST(CompileGroups, BackReferencesNameTheirGroup) {
    EXPECT_EQ(nodesOf("\\1(a)\\1"),
              (Nodes{reference(1), capture(1, 1, 1), letter('a'), close(1), reference(1)}));
}

// ---- Conditions
// ----------------------------------------------------------------------------------

TEST(CompileConditions, NumberIsABackReferenceNode) {
    EXPECT_EQ(nodesOf("(a)(?(1)b|c)"),
              (Nodes{capture(1, 1, 1), letter('a'), close(1), node(NodeGroupingCondition, 2, 4),
                     reference(1), letter('b'), bar(2), letter('c'), close(2)}));
    EXPECT_EQ(nodesOf("(?(1))"),
              (Nodes{node(NodeGroupingCondition, 1, 1), reference(1), close(1)}));
}

TEST(CompileConditions, DigitsWeighEleven) {
    EXPECT_EQ(nodesOf("(?(12)a)")[1], reference(13));
    EXPECT_EQ(nodesOf("(?(10)a)")[1], reference(11));
    EXPECT_EQ(nodesOf("(?(123)a)")[1], reference((1 * 11 + 2) * 11 + 3));
    EXPECT_EQ(nodesOf("(?(999)a)")[1], reference((9 * 11 + 9) * 11 + 9));
    EXPECT_EQ(nodesOf("(?(01)a)")[1], reference(1));
}

TEST(CompileConditions, NumberTakesNoSerialAndNoCapture) {
    EXPECT_EQ(nodesOf("(?(1)(a))(b)"),
              (Nodes{node(NodeGroupingCondition, 1, 4), reference(1), capture(2, 1, 1), letter('a'),
                     close(2), close(1), capture(3, 1, 2), letter('b'), close(3)}));
}

TEST(CompileConditions, LookAroundsAreGroupsOfTheirOwn) {
    const struct {
        const char* opening;
        TestNode expected;
    } rows[] = {
        {"?=", node(NodeGroupingLookAhead, 2, 1)},
        {"?!", node(NodeGroupingLookAheadNot, 2, 1)},
        {"?<=", node(NodeGroupingLookBehind, 2, 1, 1)},
        {"?<!", node(NodeGroupingLookBehindNot, 2, 1, 1)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(nodesOf(std::string("(?(") + row.opening + "a)b|c)"),
                  (Nodes{node(NodeGroupingCondition, 1, 6), row.expected, letter('a'), close(2),
                         letter('b'), bar(1), letter('c'), close(1)}))
            << row.opening;
    }
}

TEST(CompileConditions, BarsOfInnerGroupsDoNotCount) {
    EXPECT_EQ(compile("(?(1)(a|b|c)|(?:d|e|f))").status, zelStatusOk);
    EXPECT_EQ(compile("(?(?=a|b|c)d|e)").status, zelStatusOk);
    EXPECT_EQ(compile("(?(1)|)").status, zelStatusOk);
}

// ---- Look-behind
// ---------------------------------------------------------------------------------

int lookBehindLength(const std::string& body) {
    const Compiled compiled = compile("(?<=" + body + ")");
    if (compiled.status != zelStatusOk) {
        EXPECT_EQ(compiled.status, zelStatusRegExpGroupingError) << body;
        EXPECT_EQ(compiled.errOffset, static_cast<int>(4 + body.size())) << body;
        return -1;
    }
    return compiled.nodes.at(0).extra;
}

TEST(CompileLookBehind, AtomsAddOneAndRunsTheirBytes) {
    EXPECT_EQ(lookBehindLength(""), 0);
    EXPECT_EQ(lookBehindLength("a"), 1);
    EXPECT_EQ(lookBehindLength("abc"), 3);
    EXPECT_EQ(lookBehindLength("."), 1);
    EXPECT_EQ(lookBehindLength("..."), 3);
    EXPECT_EQ(lookBehindLength("\\w"), 1);
    EXPECT_EQ(lookBehindLength("\\x{100}"), 1);
    EXPECT_EQ(lookBehindLength("\\p{Lu}\\p{Greek}\\p{Any}"), 3);
    EXPECT_EQ(lookBehindLength("\\X"), 1);
    EXPECT_EQ(lookBehindLength("[abc]"), 1);
    EXPECT_EQ(lookBehindLength("[abc]d"), 2);
    EXPECT_EQ(lookBehindLength("\xC3\xA9"), 2);  // two literal bytes
}

TEST(CompileLookBehind, OnlyTheMinimumOfAQuantifierCounts) {
    EXPECT_EQ(lookBehindLength("x{2,5}"), 2);
    EXPECT_EQ(lookBehindLength("x{7}"), 7);
    EXPECT_EQ(lookBehindLength("x+"), 1);
    EXPECT_EQ(lookBehindLength("x*"), 1);  // a minimum of 0 takes nothing off
    EXPECT_EQ(lookBehindLength("x?y{3}?"), 4);
    EXPECT_EQ(lookBehindLength("abc{3}"), 5);
    EXPECT_EQ(lookBehindLength("[ab]{4}"), 4);
    EXPECT_EQ(lookBehindLength("(ab){3}"), 6);
    EXPECT_EQ(lookBehindLength("(?:a(?>bc){2}){3}"), 15);
}

TEST(CompileLookBehind, NestedGroupsAreMeasured) {
    EXPECT_EQ(lookBehindLength("(ab)"), 2);
    EXPECT_EQ(lookBehindLength("a(?:bc)d"), 4);
    EXPECT_EQ(lookBehindLength("(?>a(b(c)))"), 3);
    EXPECT_EQ(lookBehindLength("(a|b)c"), 2);
    EXPECT_EQ(lookBehindLength("(ab|c)"), -1);
    EXPECT_EQ(lookBehindLength("(?:a|bc)|d"), -1);
    EXPECT_EQ(lookBehindLength("(?:ab|cd)|ef"), 2);
}

TEST(CompileLookBehind, AllBranchesMustBeEquallyLong) {
    EXPECT_EQ(lookBehindLength("ab|cd"), 2);
    EXPECT_EQ(lookBehindLength("a|bc"), -1);
    EXPECT_EQ(lookBehindLength("ab|cd|e"), -1);
    EXPECT_EQ(lookBehindLength("ab|c|de"), -1);
    EXPECT_EQ(lookBehindLength("|"), 0);
    EXPECT_EQ(lookBehindLength("a|"), -1);
    EXPECT_EQ(lookBehindLength("|a"), -1);
    EXPECT_EQ(lookBehindLength("a{2}|bc|d+e"), 2);
}

TEST(CompileLookBehind, NestedLookAroundsAreZeroWide) {
    EXPECT_EQ(lookBehindLength("a(?=bcd)"), 1);
    EXPECT_EQ(lookBehindLength("(?<=abc)d"), 1);
    EXPECT_EQ(lookBehindLength("(?!a|bc)d"), 1);
    EXPECT_EQ(lookBehindLength("(?<!(?:ab))cd"), 2);
}

TEST(CompileLookBehind, OtherKindsAddNothingAndAreWalkedThrough) {
    EXPECT_EQ(lookBehindLength("^a$\\b"), 1);
    EXPECT_EQ(lookBehindLength("\\C"), 0);
    EXPECT_EQ(lookBehindLength("(?i)a"), 1);
    EXPECT_EQ(lookBehindLength("(?i:ab)c"), 3);
    EXPECT_EQ(lookBehindLength("(?i:a|b)"), 1);
    // The bar inside the option group ends a branch of the body itself.
    EXPECT_EQ(lookBehindLength("x(?i:a|b)"), -1);
    EXPECT_EQ(lookBehindLength("x(?i:a|bc)"), 2);
    // A quantifier behind such a kind repeats the last atom that was measured.
    EXPECT_EQ(lookBehindLength("a\\C{3}"), 3);
    EXPECT_EQ(lookBehindLength("ab\\C{3}"), 2);
    EXPECT_EQ(lookBehindLength("a|\\C{3}b"), 1);  // in its own branch
    EXPECT_EQ(lookBehindLength("(?(1)a|b)"), 1);
    const Compiled compiled = compile("(a)(?<=\\1b)");
    EXPECT_EQ(compiled.nodes.at(3), node(NodeGroupingLookBehind, 2, 2, 1));
}

TEST(CompileLookBehind, NegativeKindIsMeasuredAlike) {
    EXPECT_EQ(nodesOf("(?<!abc)")[0], node(NodeGroupingLookBehindNot, 1, 1, 3));
    EXPECT_EQ(compile("(?<!a|bc)").status, zelStatusRegExpGroupingError);
    EXPECT_EQ(compile("(?<!a|bc)").errOffset, 8);
}

TEST(CompileLookBehind, LengthBeyondAllTextsStaysPositive) {
    EXPECT_EQ(lookBehindLength("(?:(?:a{65535}){65535}){65535}"), INT32_MAX);
}

TEST(CompileLookBehind, DeepNestingIsMeasured) {
    std::string body = "a";
    for (int i = 0; i < 998; ++i) body = "(" + body + ")";
    EXPECT_EQ(lookBehindLength(body), 1);
}

}  // namespace
}  // namespace zel
