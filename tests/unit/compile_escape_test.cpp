// Escapes outside of classes, one row each, back-references against octal bytes, and the property
// escapes with every category, block and script.
#include "compile_support.h"
#include "regexp/unicode/unicode.h"

namespace zel {
namespace {

constexpr int kInf = 0x3FFFFFFF;

TEST(CompileEscape, CharactersHaveANodeOfTheirOwn) {
    const struct {
        const char* escape;
        int value;
    } rows[] = {
        {"\\a", 0x07},
        {"\\e", 0x1B},
        {"\\f", 0x0C},
        {"\\n", 0x0A},
        {"\\r", 0x0D},
        {"\\t", 0x09},
        {"\\v", 0x0B},
        // Control characters: 0x40 less, or more for 0x20 to 0x3F; 0x60 to 0x7A lose 0x20 too.
        {"\\cA", 0x01},
        {"\\ca", 0x01},
        {"\\cZ", 0x1A},
        {"\\cz", 0x1A},
        {"\\c@", 0x00},
        {"\\c[", 0x1B},
        {"\\c_", 0x1F},
        {"\\c`", 0x00},
        {"\\c{", 0x3B},
        {"\\c\x7F", 0x3F},
        {"\\c ", 0x60},
        {"\\c?", 0x7F},
        {"\\c(", 0x68},
        {"\\c*", 0x6A},
        {"\\c\x1F", 0xDF},
        {"\\c\x01", 0xC1},
        {"\\c\x80", 0x40},
        {"\\c\xFF", 0xBF},
        {"\\c\\", 0x1C},
        // Hexadecimal, one or two digits, either case; none is byte 0.
        {"\\x4", 0x04},
        {"\\x41", 0x41},
        {"\\xff", 0xFF},
        {"\\xFF", 0xFF},
        {"\\xaB", 0xAB},
        {"\\x", 0x00},
        {"\\x{41}", 0x41},
        {"\\x{}", 0x00},
        {"\\x{ff}", 0xFF},
        {"\\x{000000ff}", 0xFF},
        // Octal.
        {"\\0", 0x00},
        {"\\01", 0x01},
        {"\\012", 0x0A},
        {"\\077", 0x3F},
    };
    for (const auto& row : rows) {
        const std::string escape = row.escape;
        EXPECT_EQ(nodesOf(escape), (Nodes{letter(row.value)})) << escape;
        EXPECT_EQ(nodesOf("ab" + escape), (Nodes{run("ab"), letter(row.value)})) << escape;
        EXPECT_EQ(nodesOf(escape + "*"), (Nodes{letter(row.value), greedy(0, kInf)})) << escape;
    }
}

TEST(CompileEscape, DigitsThatDoNotBelongToTheEscapeAreLiteral) {
    EXPECT_EQ(nodesOf("\\x414"), (Nodes{letter('A'), letter('4')}));
    EXPECT_EQ(nodesOf("\\xg"), (Nodes{letter(0), letter('g')}));
    EXPECT_EQ(nodesOf("\\x4g"), (Nodes{letter(4), letter('g')}));
    EXPECT_EQ(nodesOf("\\0123"), (Nodes{letter(0x0A), letter('3')}));
    EXPECT_EQ(nodesOf("\\08"), (Nodes{letter(0), letter('8')}));
    EXPECT_EQ(nodesOf("\\1234"), (Nodes{letter(0x53), letter('4')}));
}

TEST(CompileEscape, LargeHexadecimalIsAWideCharacter) {
    EXPECT_EQ(nodesOf("\\x{100}"), (Nodes{wide(0x100)}));
    EXPECT_EQ(nodesOf("\\x{10FFFF}"), (Nodes{wide(0x10FFFF)}));
    EXPECT_EQ(nodesOf("\\x{0001F600}"), (Nodes{wide(0x1F600)}));
    EXPECT_EQ(nodesOf("\\x{7fffffff}"), (Nodes{wide(INT32_MAX)}));
    EXPECT_EQ(nodesOf("\\x{FFFFFFFF}"), (Nodes{wide(-1)}));
    EXPECT_EQ(nodesOf("a\\x{100}b"), (Nodes{letter('a'), wide(0x100), letter('b')}));
}

TEST(CompileEscape, EveryOtherByteIsItself) {
    const std::string meaning = "ABCDEGPQSWXZabcdefnprstvwxz0123456789";
    for (int c = 1; c < 256; ++c) {
        const char byte = static_cast<char>(c);
        if (meaning.find(byte) != std::string::npos) continue;
        EXPECT_EQ(nodesOf(std::string("\\") + byte), (Nodes{letter(c)})) << c;
        EXPECT_EQ(nodesOf(std::string("\\") + byte + "yz", "x"),
                  (Nodes{run(std::string(1, byte) + "yz", 8)}))
            << c;
    }
}

TEST(CompileEscape, OneDigitIsABackReference) {
    EXPECT_EQ(nodesOf("()\\1")[2], reference(1));
    EXPECT_EQ(nodesOf("()()()()()()()()()\\9")[18], reference(9));
    EXPECT_EQ(nodesOf("()\\1a")[3], letter('a'));
}

std::string groups(int count) {
    std::string pattern;
    for (int i = 0; i < count; ++i) pattern += "()";
    return pattern;
}

TEST(CompileEscape, MoreDigitsAreABackReferenceWhenThereIsSuchAGroup) {
    EXPECT_EQ(nodesOf(groups(12) + "\\12").back(), reference(12));
    EXPECT_EQ(nodesOf(groups(123) + "\\123").back(), reference(123));
    EXPECT_EQ(nodesOf(groups(998) + "\\998").back(), reference(998));
    EXPECT_EQ(nodesOf("()\\01").back(), letter(1));  // "\0" is always octal
    EXPECT_EQ(nodesOf(groups(12) + "\\123").back(), letter(0x53));
    EXPECT_EQ(nodesOf("\\12" + groups(12)).front(), reference(12));
}

TEST(CompileEscape, MoreDigitsAreOneByteOtherwise) {
    EXPECT_EQ(nodesOf("\\12"), (Nodes{letter(0x0A)}));
    EXPECT_EQ(nodesOf(groups(11) + "\\12").back(), letter(0x0A));
    // The value ends at the first 8 or 9, but all digits are consumed.
    EXPECT_EQ(nodesOf("\\18"), (Nodes{letter(1)}));
    EXPECT_EQ(nodesOf("\\189"), (Nodes{letter(1)}));
    EXPECT_EQ(nodesOf("\\81"), (Nodes{letter(0)}));
    EXPECT_EQ(nodesOf("\\999"), (Nodes{letter(0)}));
    EXPECT_EQ(nodesOf("\\1289"), (Nodes{letter(0x0A), letter('9')}));
    // The low 8 bits count.
    EXPECT_EQ(nodesOf("\\377"), (Nodes{letter(0xFF)}));
    EXPECT_EQ(nodesOf("\\400"), (Nodes{letter(0)}));
    EXPECT_EQ(nodesOf("\\777"), (Nodes{letter(0xFF)}));
}

// ---- Properties
// ----------------------------------------------------------------------------------

struct CategoryRow {
    const char* name;
    int value;
};
constexpr CategoryRow kCategories[] = {
    {"L", 0x80},    {"Ll", 0x81},   {"Lu", 0x82},   {"Lt", 0x84},   {"Lm", 0x88},   {"Lo", 0x90},
    {"L&", 0x87},   {"M", 0x100},   {"Mn", 0x101},  {"Mc", 0x102},  {"Me", 0x104},  {"Z", 0x200},
    {"Zs", 0x201},  {"Zl", 0x202},  {"Zp", 0x204},  {"S", 0x400},   {"Sm", 0x401},  {"Sc", 0x402},
    {"Sk", 0x404},  {"So", 0x408},  {"N", 0x800},   {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},
    {"P", 0x1000},  {"Pd", 0x1001}, {"Ps", 0x1002}, {"Pe", 0x1004}, {"Pi", 0x1008}, {"Pf", 0x1010},
    {"Pc", 0x1020}, {"Po", 0x1040}, {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Co", 0x2004},
    {"Cs", 0x2008}, {"Cn", 0x2010},
};

/// All four spellings of a property in braces: plain, and the three that could negate it.
void expectProperty(const std::string& name, const TestNode& plain, const TestNode& negated) {
    EXPECT_EQ(nodesOf("\\p{" + name + "}"), (Nodes{plain})) << name;
    EXPECT_EQ(nodesOf("\\P{" + name + "}"), (Nodes{negated})) << name;
    EXPECT_EQ(nodesOf("\\p{^" + name + "}"), (Nodes{negated})) << name;
    EXPECT_EQ(nodesOf("ab\\p{" + name + "}cd"), (Nodes{run("ab"), plain, run("cd")})) << name;
    const Compiled twice = compile("\\P{^" + name + "}");
    EXPECT_EQ(twice.status, zelStatusRegExpEscapeError) << name;
    EXPECT_EQ(twice.errOffset, 3) << name;
}

TEST(CompileProperty, CategoriesHaveTheirValues) {
    for (const auto& row : kCategories) {
        expectProperty(row.name, node(NodeUnicodeCategory, row.value, 0),
                       node(NodeUnicodeCategory, row.value, 1));
        if (row.name[1] != '\0') continue;
        const std::string name = row.name;
        EXPECT_EQ(nodesOf("\\p" + name), (Nodes{node(NodeUnicodeCategory, row.value, 0)})) << name;
        EXPECT_EQ(nodesOf("\\P" + name), (Nodes{node(NodeUnicodeCategory, row.value, 1)})) << name;
    }
}

TEST(CompileProperty, OneLetterFormTakesOneLetter) {
    EXPECT_EQ(nodesOf("\\pLu"), (Nodes{node(NodeUnicodeCategory, 0x80), letter('u')}));
    EXPECT_EQ(nodesOf("\\pL&"), (Nodes{node(NodeUnicodeCategory, 0x80), letter('&')}));
    EXPECT_EQ(nodesOf("\\pL{2}"), (Nodes{node(NodeUnicodeCategory, 0x80), greedy(2, 2)}));
}

TEST(CompileProperty, AnyIsTheWholeRange) {
    expectProperty("Any", node(NodeUnicodeProperty, 0, 0x10FFFF, 0),
                   node(NodeUnicodeProperty, 0, 0x10FFFF, 1));
}

TEST(CompileProperty, BlocksAreRanges) {
    for (const UniBlock& block : UniBlockTbl) {
        // A name that begins a longer one still finds itself: the first of the two stands earlier.
        const UniBlock* expected = UniBlockTbl;
        while (strncmp(expected->name, block.name, strlen(block.name)) != 0) ++expected;
        const int first = static_cast<int>(expected->first);
        const int last = static_cast<int>(expected->last);
        expectProperty(block.name, node(NodeUnicodeProperty, first, last, 0),
                       node(NodeUnicodeProperty, first, last, 1));
    }
}

TEST(CompileProperty, BeginningOfABlockNameFindsTheFirstSuchBlock) {
    const TestNode latin = node(NodeUnicodeProperty, 0, 0x7F);
    EXPECT_EQ(nodesOf("\\p{InBasicLatin}"), (Nodes{latin}));
    EXPECT_EQ(nodesOf("\\p{InBasic}"), (Nodes{latin}));
    EXPECT_EQ(nodesOf("\\p{In}"), (Nodes{latin}));
    EXPECT_EQ(nodesOf("\\p{I}"), (Nodes{latin}));
    EXPECT_EQ(nodesOf("\\p{InCyrillicS}"), (Nodes{node(NodeUnicodeProperty, 0x500, 0x52F)}));
    EXPECT_EQ(nodesOf("\\p{InCombining}"), (Nodes{node(NodeUnicodeProperty, 0x300, 0x36F)}));
    EXPECT_EQ(compile("\\p{InBasicLatinX}").status, zelStatusRegExpEscapeError);
    EXPECT_EQ(compile("\\p{Inx}").status, zelStatusRegExpEscapeError);
}

TEST(CompileProperty, ScriptsPointAtTheirPairs) {
    for (const UniScript& script : UniScriptTbl) {
        TestNode plain = node(NodeUnicodeScript, 1, 0, script.pairCount);
        TestNode negated = node(NodeUnicodeScript, 1, 1, script.pairCount);
        plain.data = negated.data = script.pairs;
        expectProperty(script.name, plain, negated);
    }
}

TEST(CompileProperty, ScriptsOfEveryDispatchAreReached) {
    // First letters that categories, "Any" and blocks share with scripts.
    for (const char* name : {"Arabic", "Common", "Latin", "Mongolian", "Nko", "Phags_Pa", "Syriac",
                             "Inherited", "Greek"}) {
        EXPECT_EQ(nodesOf(std::string("\\p{") + name + "}")[0].kind, NodeUnicodeScript) << name;
    }
}

}  // namespace
}  // namespace zel
