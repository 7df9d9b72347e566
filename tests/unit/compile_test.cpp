// What a pattern compiles to: header fields and nodes, construct by construct.
#include "compile_support.h"

namespace zel {
namespace {

constexpr int kInf = 0x3FFFFFFF;

TEST(Compile, EmptyPatternHasNoNodes) {
    const Compiled compiled = compile("");
    EXPECT_EQ(compiled.status, zelStatusOk);
    EXPECT_EQ(compiled.nodeCount, 0);
    EXPECT_EQ(compiled.groupCount, 1);
    EXPECT_EQ(compiled.trailingLiteral, -1);
}

TEST(Compile, LiteralRunIsOneString) {
    EXPECT_EQ(nodesOf("abc"), (Nodes{run("abc")}));
    EXPECT_EQ(compile("abc").trailingLiteral, 0);
    EXPECT_EQ(nodesOf("a"), (Nodes{letter('a')}));
}

TEST(Compile, QuantifierTakesTheLastByteOfARun) {
    EXPECT_EQ(nodesOf("abc*"), (Nodes{run("ab"), letter('c'), greedy(0, kInf)}));
    EXPECT_EQ(nodesOf("ab+?"), (Nodes{letter('a'), letter('b'), lazy(1, kInf)}));
    EXPECT_EQ(nodesOf("a?"), (Nodes{letter('a'), greedy(0, 1)}));
}

TEST(Compile, RepeatedDotsFold) {
    EXPECT_EQ(nodesOf("..."), (Nodes{shorthand('.'), greedy(3, 3)}));
    EXPECT_EQ(nodesOf("..*"), (Nodes{shorthand('.'), greedy(1, kInf)}));
}

TEST(Compile, GroupsKnowTheirBodies) {
    EXPECT_EQ(nodesOf("(a|(b))c"), (Nodes{capture(1, 5, 1), letter('a'), bar(1), capture(2, 1, 2),
                                          letter('b'), close(2), close(1), letter('c')}));
}

TEST(Compile, LookBehindIsMeasured) {
    EXPECT_EQ(nodesOf("(?<=ab|cd)")[0], node(NodeGroupingLookBehind, 1, 3, 2));
    EXPECT_EQ(nodesOf("(?<=x{2,5})")[0], node(NodeGroupingLookBehind, 1, 2, 2));
    EXPECT_EQ(compile("(?<=a|bc)").status, zelStatusRegExpGroupingError);
}

TEST(Compile, ClassesHoldTheirMembers) {
    EXPECT_EQ(nodesOf("[q]"), (Nodes{letter('q')}));
    EXPECT_EQ(nodesOf("[^a-c\\d-]"),
              (Nodes{classNot(3), range('a', 'c'), shorthand('d'), letter('-')}));
}

}  // namespace
}  // namespace zel
