// The header's trailing literal: which literal node a match must end with, if any, and the flags
// that this node carries.
#include "compile_support.h"

namespace zel {
namespace {

constexpr int kInf = 0x3FFFFFFF;

int trailing(const std::string& pattern, const char* options = nullptr) {
    const Compiled compiled = compile(pattern, options);
    EXPECT_EQ(compiled.status, zelStatusOk) << pattern;
    return compiled.trailingLiteral;
}

TEST(CompileTrailing, PatternThatEndsInALiteralHasIt) {
    EXPECT_EQ(trailing("abc"), 0);
    EXPECT_EQ(trailing("a"), 0);
    EXPECT_EQ(trailing("a.b"), 2);
    EXPECT_EQ(trailing("(a)bc"), 3);
    EXPECT_EQ(trailing(".*abc"), 3);  // the marker is node 0
    EXPECT_EQ(trailing("a\\n"), 1);
    EXPECT_EQ(trailing("a\\x41"), 1);
    EXPECT_EQ(trailing("a\\12"), 1);
    EXPECT_EQ(trailing("a\\cA"), 1);
    EXPECT_EQ(trailing("ab\\Qcd\\E"), 1);
    EXPECT_EQ(trailing("a\\*b"), 1);
    EXPECT_EQ(trailing("ab(?#c)(?x) # end"), 0);
}

TEST(CompileTrailing, PatternThatEndsOtherwiseHasNone) {
    for (const char* pattern :
         {"", "a.", "a\\d", "a$", "a\\b", "a(b)", "a(?:b)", "a(?=b)", "a[bc]", "a[^b]", "(a)\\1",
          "a(?i)", "a\\X", "a\\C", "a\\p{L}", "a\\x{100}", "\\x{100}", "(?(1)a)"}) {
        EXPECT_EQ(trailing(pattern), -1) << pattern;
    }
}

TEST(CompileTrailing, QuantifierKeepsItOnlyWithAMinimum) {
    EXPECT_EQ(trailing("a+"), 0);
    EXPECT_EQ(trailing("ab+"), 1);
    EXPECT_EQ(trailing("abc{2,3}?"), 1);
    EXPECT_EQ(trailing("a*"), -1);
    EXPECT_EQ(trailing("abc*"), -1);
    EXPECT_EQ(trailing("abc?"), -1);
    EXPECT_EQ(trailing("abc{0,3}"), -1);
    EXPECT_EQ(trailing("a*b"), 2);
}

TEST(CompileTrailing, StackedQuantifierDoesNotBringItBack) {
    EXPECT_EQ(trailing("a* +", "x"), -1);
    EXPECT_EQ(trailing("a+ *", "x"), 0);
}

TEST(CompileTrailing, LiteralInsideAGroupNeitherBecomesNorChangesIt) {
    EXPECT_EQ(trailing("(a)"), -1);
    EXPECT_EQ(trailing("(a)*"), -1);
    EXPECT_EQ(trailing("a(?#x)"), 0);
    // Only the node order decides: the group behind the literal drops it.
    EXPECT_EQ(trailing("a(b*)"), -1);
}

TEST(CompileTrailing, WideCharacterNeverBecomesIt) {
    EXPECT_EQ(trailing("\\x{100}+"), -1);
    EXPECT_EQ(trailing("a\\x{100}"), -1);
    EXPECT_EQ(trailing("\\x{100}a"), 1);
}

TEST(CompileTrailing, ReducedClassCountsAsALiteral) {
    EXPECT_EQ(trailing("[q]"), 0);
    EXPECT_EQ(trailing("a[q]+"), 1);
    EXPECT_EQ(trailing("a[q]*"), -1);
    EXPECT_EQ(nodesOf("[q]", "i"), (Nodes{letter('q', 4)}));
    EXPECT_EQ(trailing("[\\x{100}]"), -1);
    EXPECT_EQ(trailing("[ab]+"), -1);
}

TEST(CompileTrailing, TopLevelBarBlocksIt) {
    EXPECT_EQ(trailing("a|b"), -2);
    EXPECT_EQ(trailing("abc|def|ghi"), -2);
    EXPECT_EQ(trailing("|"), -2);
    EXPECT_EQ(trailing("a|b(c)d"), -2);
    EXPECT_EQ(trailing("a|.*b"), -2);
    EXPECT_EQ(trailing("(a|b)c"), 5);  // a bar inside a group does not
}

TEST(CompileTrailing, QuantifiedLetterBehindABarUnblocksIt) {
    const Compiled compiled = compile("a|bc*d");
    EXPECT_EQ(compiled.nodes,
              (Nodes{letter('a'), bar(0), letter('b'), letter('c'), greedy(0, kInf), letter('d')}));
    EXPECT_EQ(compiled.trailingLiteral, 5);
    EXPECT_EQ(trailing("a|bc*"), -1);
    EXPECT_EQ(trailing("a|bc+"), -1);
    EXPECT_EQ(trailing("a|bc+d"), 5);
    EXPECT_EQ(trailing("a|\\x{100}*d"), 4);
    EXPECT_EQ(trailing("a|(b*)"), -1);
    EXPECT_EQ(trailing("a|(b*)c"), 6);
    EXPECT_EQ(trailing("a|(?:b{0})c"), 6);
    EXPECT_EQ(trailing("a|[b]*c"), 4);
    EXPECT_EQ(trailing("a|b*c|d"), -2);
}

TEST(CompileTrailing, OtherQuantifiersDoNotUnblockIt) {
    EXPECT_EQ(trailing("a|.*b"), -2);
    EXPECT_EQ(trailing("a|(b)*c"), -2);
    EXPECT_EQ(trailing("a|[bc]*d"), -2);
    EXPECT_EQ(trailing("a|\\d+d"), -2);
    EXPECT_EQ(trailing("a|\\p{L}+d"), -2);
    EXPECT_EQ(trailing("a|\\C*d"), -2);
}

TEST(CompileTrailing, FlagsStandOnlyOnNodesThatBecameIt) {
    EXPECT_EQ(nodesOf("abc", "i"), (Nodes{run("abc", 4)}));
    EXPECT_EQ(nodesOf("ab.c", "ims"), (Nodes{run("ab", 7), shorthand('.'), letter('c', 7)}));
    EXPECT_EQ(nodesOf("(a)b", "i"),
              (Nodes{capture(1, 1, 1), letter('a', 0), close(1, 4), letter('b', 4)}));
    EXPECT_EQ(nodesOf("a|b", "i"), (Nodes{letter('a', 4), bar(0, 4), letter('b', 0)}));
    EXPECT_EQ(nodesOf("a|b*c", "i"),
              (Nodes{letter('a', 4), bar(0, 4), letter('b', 0), greedy(0, kInf), letter('c', 4)}));
    EXPECT_EQ(nodesOf("\\x{100}\\n", "i"), (Nodes{wide(0x100), letter('\n', 4)}));
    // A node that lost the role again keeps what it got.
    EXPECT_EQ(nodesOf("a*", "i"), (Nodes{letter('a', 4), greedy(0, kInf)}));
}

TEST(CompileTrailing, QuantifierStoresTheFlagsInForceThere) {
    EXPECT_EQ(nodesOf("a(?x)+"), (Nodes{letter('a', 8), greedy(1, kInf)}));
    EXPECT_EQ(nodesOf("a(?x)*"), (Nodes{letter('a', 0), greedy(0, kInf)}));
}

}  // namespace
}  // namespace zel
