// Patterns that do not compile: the status and the byte offset of every fault, row by row.
#include "compile_support.h"

namespace zel {
namespace {

struct Fault {
    std::string pattern;
    ZelStatus status;
    int offset;
    const char* options = nullptr;
};

void expectFaults(const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) {
        const Compiled compiled = compile(fault.pattern, fault.options);
        EXPECT_EQ(compiled.status, fault.status) << fault.pattern;
        EXPECT_EQ(compiled.errOffset, fault.offset) << fault.pattern;
    }
}

std::string repeat(const std::string& text, int count) {
    std::string result;
    for (int i = 0; i < count; ++i) result += text;
    return result;
}

constexpr ZelStatus kEscape = zelStatusRegExpEscapeError;          // -183
constexpr ZelStatus kClass = zelStatusRegExpCharClassError;        // -184
constexpr ZelStatus kReference = zelStatusRegExpBackRefError;      // -185
constexpr ZelStatus kGrouping = zelStatusRegExpGroupingError;      // -186
constexpr ZelStatus kQuantifier = zelStatusRegExpQuantifierError;  // -187
constexpr ZelStatus kOptions = zelStatusRegExpOptionsError;        // -190

TEST(CompileErrors, StatusesHaveTheirValues) {
    EXPECT_EQ(kEscape, -183);
    EXPECT_EQ(kClass, -184);
    EXPECT_EQ(kReference, -185);
    EXPECT_EQ(kGrouping, -186);
    EXPECT_EQ(kQuantifier, -187);
    EXPECT_EQ(kOptions, -190);
}

// ---- Options
// -------------------------------------------------------------------------------------

TEST(CompileErrors, OptionsOtherThanTheFiveLetters) {
    for (int c = 1; c < 256; ++c) {
        const char options[] = {'i', static_cast<char>(c), '\0'};
        const bool known = strchr("gimsx", c) != nullptr;
        const Compiled compiled = compile("abc", options);
        EXPECT_EQ(compiled.status, known ? zelStatusOk : kOptions) << c;
        EXPECT_EQ(compiled.errOffset, known ? Compiled::kUntouched : 0) << c;
    }
    expectFaults({{"a", kOptions, 0, "gimsx "}, {"a", kOptions, 0, " "}, {"a", kOptions, 0, "I"}});
}

TEST(CompileErrors, OptionsAreCheckedBeforeThePattern) {
    expectFaults({{"ab)", kOptions, 0, "q"}, {"ab**", kOptions, 0, "q"}});
}

// ---- Quantifiers
// ---------------------------------------------------------------------------------

TEST(CompileErrors, QuantifierAtTheStart) {
    expectFaults({
        {"*", kQuantifier, 0},
        {"+a", kQuantifier, 0},
        {"?", kQuantifier, 0},
        {"{2}", kQuantifier, 0},
        {"{,2}a", kQuantifier, 0},
        {"  *", kQuantifier, 2, "x"},
        {"#c\n*", kQuantifier, 3, "x"},
        {"(?#c)*", kQuantifier, 5},
        {"(?x)*", kQuantifier, 4},
        {"(?-x)*", kQuantifier, 5},
        {"\\E*", kQuantifier, 2},
        {"\\Q\\E*", kQuantifier, 4},
    });
}

TEST(CompileErrors, QuantifierBehindWhatCannotBeRepeated) {
    expectFaults({
        {"a|*", kQuantifier, 2},
        {"a| *", kQuantifier, 3, "x"},
        {"(*a)", kQuantifier, 1},
        {"( ?:a)", kQuantifier, 2, "x"},
        {"(?:*a)", kQuantifier, 3},
        {"(?>+a)", kQuantifier, 3},
        {"(?=?)", kQuantifier, 3},
        {"(?!*)", kQuantifier, 3},
        {"(?<=*)", kQuantifier, 4},
        {"(?<!{2})", kQuantifier, 4},
        {"(?i:*)", kQuantifier, 4},
        {"a(?i)*", kQuantifier, 5},
        {"(?)*", kQuantifier, 3},
        {"(a|*)", kQuantifier, 3},
        {"((?#c)*)", kQuantifier, 6},
        {"(?(?=*)a)", kQuantifier, 5},
    });
}

TEST(CompileErrors, QuantifierDirectlyBehindAQuantifier) {
    expectFaults({
        {"a**", kQuantifier, 2},
        {"a++", kQuantifier, 2},
        {"a*+", kQuantifier, 2},
        {"a?+", kQuantifier, 2},
        {"a+?+", kQuantifier, 3},
        {"a??\?", kQuantifier, 3},
        {"a*{2}", kQuantifier, 2},
        {"a{2}{3}", kQuantifier, 4},
        {"a{2}*", kQuantifier, 4},
        {"a{2}??", kQuantifier, 5},
        {"(a)**", kQuantifier, 4},
        {"[ab]**", kQuantifier, 5},
        {"...**", kQuantifier, 4},
        {"a b**", kQuantifier, 4, "x"},
    });
}

TEST(CompileErrors, BoundsOutOfOrderOrTooLarge) {
    EXPECT_EQ(compile("a{65535}").status, zelStatusOk);
    EXPECT_EQ(compile("a{65535,65535}").status, zelStatusOk);
    expectFaults({
        {"a{65536}", kQuantifier, 1},
        {"ab{65536,}", kQuantifier, 2},
        {"a{1,65536}", kQuantifier, 1},
        {"a{,65536}", kQuantifier, 1},
        {"a{1073741823}", kQuantifier, 1},
        {"a{0,1073741823}", kQuantifier, 1},
        {"a{4294967297}", kQuantifier, 1},
        {"a{18446744073709551617}", kQuantifier, 1},
        {"a{3,2}", kQuantifier, 1},
        {"a{1,0}", kQuantifier, 1},
        {"a{99999999999999999999999999,1}", kQuantifier, 1},
    });
}

// ---- Parentheses
// ---------------------------------------------------------------------------------

TEST(CompileErrors, UnbalancedParentheses) {
    expectFaults({
        {"(", kGrouping, 1},
        {"(a", kGrouping, 2},
        {"((a)", kGrouping, 4},
        {")", kGrouping, 0},
        {"a)", kGrouping, 1},
        {"(a))b", kGrouping, 3},
        {"(?:a", kGrouping, 4},
        {"(?=", kGrouping, 3},
        {"(?", kGrouping, 2},
        {"(?i", kGrouping, 3},
        {"(?i:", kGrouping, 4},
        {"(?(1)a", kGrouping, 6},
        {"(?(1", kGrouping, 4},
        {"(?(", kGrouping, 3},
        {"(\\)", kGrouping, 3},
        {"([)]", kGrouping, 4},
        {"(\\Q)\\E", kGrouping, 6},
        {"(\\Q)", kGrouping, 4},
        {"(\\c)", kGrouping, 4},
        {"(#)\n", kGrouping, 4, "x"},
        {"(#)", kGrouping, 3, "x"},
        {"(?x)(#)", kGrouping, 7},
        {"((?x)#)\n", kGrouping, 8},
        {"(?x:#)\n", kGrouping, 7},
        {"(?-x)(#))", kGrouping, 8, "x"},
        {"(?x:a)(#))", kGrouping, 9},
        {"((?x)a)(#))", kGrouping, 10},
    });
}

TEST(CompileErrors, UnfinishedComment) {
    expectFaults({
        {"(?#", kGrouping, 3},
        {"(?#abc", kGrouping, 6},
        {"a(b)(?#c", kGrouping, 8},
    });
    EXPECT_EQ(compile("(?#a\\)").status, zelStatusOk);  // no escape there
    EXPECT_EQ(compile("(?#(?#)").status, zelStatusOk);  // no nesting either
}

TEST(CompileErrors, StructureIsCheckedBeforeEverythingElse) {
    expectFaults({
        {"a**(", kGrouping, 4},
        {"\\x{zz})", kGrouping, 6},
        {"([a", kGrouping, 3},
        {"(a\\", kGrouping, 3},
        {"(?q", kGrouping, 3},
    });
}

TEST(CompileErrors, NestingDeeperThanAllowed) {
    EXPECT_EQ(compile(repeat("(", 999) + repeat(")", 999)).status, zelStatusOk);
    EXPECT_EQ(compile(repeat("(?:", 999) + repeat(")", 999)).status, zelStatusOk);
    expectFaults({
        {repeat("(", 1000) + repeat(")", 1000), kGrouping, 999},
        {repeat("(?:", 1000) + repeat(")", 1000), kGrouping, 999 * 3},
        // A comment and a condition count for the depth.
        {repeat("(", 999) + "(?#c)" + repeat(")", 999), kGrouping, 999},
        {repeat("(?:", 998) + "(?(1)a)" + repeat(")", 998), kGrouping, 998 * 3 + 2},
        {repeat("(?:", 998) + "(?(?=a)b)" + repeat(")", 998), kGrouping, 998 * 3 + 2},
    });
    EXPECT_EQ(compile(repeat("(?:", 997) + "(?(1)a)" + repeat(")", 997)).status, zelStatusOk);
    EXPECT_EQ(compile(repeat("(?:", 997) + "(?(?=a)b)" + repeat(")", 997)).status, zelStatusOk);
}

TEST(CompileErrors, TooManyParentheses) {
    EXPECT_EQ(compile(repeat("()", 999)).status, zelStatusOk);
    EXPECT_EQ(compile(repeat("()", 999)).groupCount, 1000);
    EXPECT_EQ(compile(repeat("(?#)", 999)).status, zelStatusOk);
    expectFaults({
        {repeat("()", 1000), kGrouping, 999 * 2},
        {repeat("(?:)", 1000), kGrouping, 999 * 4},
        {repeat("(?=)", 1000), kGrouping, 999 * 4},
        {repeat("(?#)", 1000), kGrouping, 999 * 4},
        {repeat("(?i)", 1000), kGrouping, 999 * 4},
        {repeat("(?x)", 1000), kGrouping, 999 * 4},
        {repeat("(?#)", 999) + "()", kGrouping, 999 * 4},
        {repeat("(?#)", 999) + "(?(1))", kGrouping, 999 * 4},
        {repeat("(?#)", 998) + "(?(?=))", kGrouping, 998 * 4 + 2},
        // Between the two limits the second pass stops; it may find another fault before.
        {"**" + repeat("()", 1000), kQuantifier, 0},
    });
    // A group number as condition is no parenthesis of its own.
    EXPECT_EQ(compile(repeat("(?(1))", 999)).status, zelStatusOk);
}

TEST(CompileErrors, TooManyCapturingGroups) {
    expectFaults({
        // The first pass lets 1000 capturing groups through and stops at the next, before the
        // second
        // pass could find anything.
        {"**" + repeat("()", 1001), kGrouping, 2 + 1000 * 2},
        {repeat("()", 1500), kGrouping, 1000 * 2},
        {repeat("(?:)", 1001), kGrouping, 999 * 4},
    });
}

TEST(CompileErrors, UnknownGroupConstructs) {
    expectFaults({
        {"(?q)", kGrouping, 2},
        {"(?P<n>a)", kGrouping, 2},
        {"(?|a)", kGrouping, 2},
        {"a(? :b)", kGrouping, 3},
        {"(?g)", kGrouping, 2},
        {"(?<a)", kGrouping, 3},
        {"(?<)", kGrouping, 3},
        {"(?<n>a)", kGrouping, 3},
        {"(?i<=a)", kGrouping, 3},
        {"(?ig)", kGrouping, 3},
        {"(?i-q)", kGrouping, 4},
        {"(?i-m=a)", kGrouping, 5},
        {"(?-(a))", kGrouping, 3},
    });
}

TEST(CompileErrors, BadConditions) {
    expectFaults({
        {"(?(a)b)", kGrouping, 3},
        {"(?(1a)b)", kGrouping, 3},
        {"(?(1234)b)", kGrouping, 3},
        {"(?(0001)b)", kGrouping, 3},
        {"(?( 1)b)", kGrouping, 3, "x"},
        {"(?(-1)b)", kGrouping, 3},
        {"(?(?:a)b)", kGrouping, 3},
        {"(?(?#c)b)", kGrouping, 3},
        {"(?(?i)b)", kGrouping, 3},
        {"(?(?>a)b)", kGrouping, 3},
        {"(?(?<a)b)", kGrouping, 3},
        {"(?((a))b)", kGrouping, 3},
        {"(?()b)", kReference, 3},
        {"(?(0)b)", kReference, 3},
        {"(?(000)b)", kReference, 3},
        {"abc(?(0)b)", kReference, 6},
    });
}

TEST(CompileErrors, ConditionalWithMoreThanTwoBranches) {
    expectFaults({
        {"(?(1)a|b|c)", kGrouping, 10},
        {"(?(1)||)d", kGrouping, 7},
        {"(?(?=a)b|c|d|e)", kGrouping, 14},
    });
}

TEST(CompileErrors, QuantifiedCondition) {
    expectFaults({
        {"(?(1)*a)", kGrouping, 5},
        {"(?(1){2}a)", kGrouping, 5},
        {"(?(1) *a)", kGrouping, 6, "x"},
        {"(?(?=a)*b)", kGrouping, 7},
        {"(?(?<!a)?b)", kGrouping, 8},
        {"(?(?=(a))+b)", kGrouping, 9},
    });
    // What merely stands in a conditional may be repeated.
    EXPECT_EQ(compile("(?(1)a*)").status, zelStatusOk);
    EXPECT_EQ(compile("()(?(1)\\1*)").status, zelStatusOk);
    EXPECT_EQ(compile("(?(1)(?=a)*)").status, zelStatusOk);
    EXPECT_EQ(compile("(?(?=a)(?=b)*)").status, zelStatusOk);
    EXPECT_EQ(compile("(?(?=(a)*)b)").status, zelStatusOk);
}

TEST(CompileErrors, LookBehindWithoutAFixedLength) {
    expectFaults({
        {"(?<=a|bc)", kGrouping, 8},
        {"(?<!a|bc)d", kGrouping, 8},
        {"a(?<=(b|cd)e)", kGrouping, 12},
        {"(?<=a|)", kGrouping, 6},
    });
}

// ---- Back-references
// -----------------------------------------------------------------------------

TEST(CompileErrors, BackReferenceToAGroupThatIsNotThere) {
    expectFaults({
        {"\\1", kReference, 0},
        {"a\\9", kReference, 1},
        {"(a)\\2", kReference, 3},
        {"(?:a)\\1", kReference, 5},
        {"()\\1\\2a", kReference, 4},
    });
}

// ---- Classes
// -------------------------------------------------------------------------------------

TEST(CompileErrors, UnfinishedClass) {
    for (const char* pattern :
         {"[",        "[^",   "[]",   "[^]",      "[a",        "[a-",        "[a-z",  "[]a",
          "[[",       "[[:",  "[[:a", "[[:alpha", "[[:alpha:", "[[:alpha:]", "[\\Q",  "[\\Qa]",
          "[\\Q]\\E", "[\\E", "[\\d", "[\\]",     "[a\\x41",   "ab[cd",      "[\\c]", "[a#"}) {
        expectFaults({{pattern, kClass, static_cast<int>(strlen(pattern))}});
    }
}

TEST(CompileErrors, ReversedRange) {
    expectFaults({
        {"[z-a]", kClass, 3},
        {"x[bz-a]", kClass, 5},
        {"[a--]", kClass, 3},
        {"[b-\\x61]", kClass, 3},
        {"[b-\\141]", kClass, 3},
        {"[b-\\n]", kClass, 3},
        {"[b-\\\\]", kClass, 3},
        {"[b-\\Qa\\E]", kClass, 5},
        {"[b-\\Ea]", kClass, 5},
        {"[a-[b]", kClass, 3},
        {"[\\x{100}-a]", kClass, 9},
        {"[\xCE\xB1-\xC3\xA9]", kClass, 4},
        {"[\\x{80000000}-\\x{7FFFFFFF}]", kClass, 14},
    });
}

TEST(CompileErrors, UnknownPosixClass) {
    expectFaults({
        {"[[:foo:]]", kClass, 1},
        {"[a[:Alpha:]]", kClass, 2},
        {"[[:alphax:]]", kClass, 1},
        {"[[:alph:]]", kClass, 1},
        {"[[:alpha :]]", kClass, 1},
        {"[[::]]", kClass, 1},
        {"[[:^:]]", kClass, 1},
        {"[[:^^digit:]]", kClass, 1},
        {"[[.x.]]", kClass, 1},
        {"[[=a=]]", kClass, 1},
        {"[a-[.x.]]", kClass, 3},
        {"[\\d[:Digit:]]", kClass, 3},
    });
}

TEST(CompileErrors, MalformedUtf8InAClass) {
    const std::vector<std::string> malformed = {
        "\x80",
        "\xBF",  // continuation bytes alone
        "\xC3",
        "\xE2\x82",
        "\xF0\x9F\x98",  // cut short
        "\xC3(",
        "\xE2\x82(",
        "\xF0\x9F(\x80",  // continued by something else
        "\xC0\x80",
        "\xC1\xBF",  // overlong
        "\xE0\x80\x80",
        "\xE0\x9F\xBF",  //
        "\xF0\x80\x80\x80",
        "\xF0\x8F\xBF\xBF",  //
        "\xF8\x80\x80\x80\x80",
        "\xF8\x87\xBF\xBF\xBF",  //
        "\xFC\x80\x80\x80\x80\x80",
        "\xFC\x83\xBF\xBF\xBF\xBF",  //
        "\xFE",
        "\xFF",
        "\xFE\x80\x80\x80\x80\x80\x80",  // no lead bytes
    };
    for (const std::string& bytes : malformed) {
        expectFaults({
            {"[a" + bytes + "]", kClass, 2},
            {"[a" + bytes, kClass, 2},
            {"[a-" + bytes + "]", kClass, 3},
            {"[\\Qa" + bytes + "\\E]", kClass, 4},
            {"[a\\" + bytes + "]", kClass, 3},
        });
        // Outside of a class these are literal bytes.
        if (bytes.find('(') == std::string::npos) {
            EXPECT_EQ(compile(bytes).status, zelStatusOk);
        }
    }
}

TEST(CompileErrors, EmptyClassOrOnlyACircumflex) {
    expectFaults({
        {"[\\E]", kGrouping, 3},
        {"[\\Q\\E]", kGrouping, 5},
        {"[^\\E]", kGrouping, 4},
        {"[\\^]", kGrouping, 3},
        {"a[\\^]b", kGrouping, 4},
        {"[\\x5E]", kGrouping, 5},
        {"[\\136]", kGrouping, 5},
        {"[\\Q^\\E]", kGrouping, 6},
    });
    EXPECT_EQ(compile("[^^]").status, zelStatusOk);
    EXPECT_EQ(compile("[\\^\\^]").status, zelStatusOk);
    EXPECT_EQ(compile("[\\^-\\^]").status, zelStatusOk);
}

// ---- Escapes
// -------------------------------------------------------------------------------------

TEST(CompileErrors, BackslashAtTheEnd) {
    expectFaults({
        {"\\", kEscape, 1},
        {"ab\\", kEscape, 3},
        {"\\\\\\", kEscape, 3},
        {"\\c", kEscape, 2},
        {"a\\c", kEscape, 3},
        {"[\\", kEscape, 2},
        {"[a-\\", kEscape, 4},
        {"[\\c", kEscape, 3},
    });
}

TEST(CompileErrors, MalformedBracedHexadecimal) {
    expectFaults({
        {"\\x{", kEscape, 3},
        {"\\x{4", kEscape, 4},
        {"\\x{41", kEscape, 5},
        {"\\x{4g}", kEscape, 4},
        {"\\x{ 41}", kEscape, 3},
        {"\\x{123456789}", kEscape, 11},
        {"\\x{12345678", kEscape, 11},
        {"\\x{000000041}", kEscape, 11},
        {"a[\\x{4]", kEscape, 6},
    });
}

TEST(CompileErrors, MalformedProperties) {
    expectFaults({
        {"\\p", kEscape, 2},
        {"\\P", kEscape, 2},
        {"\\pQ", kEscape, 2},
        {"\\pl", kEscape, 2},
        {"\\P1", kEscape, 2},
        {"\\p^L", kEscape, 2},
        {"\\p{", kEscape, 3},
        {"\\p{L", kEscape, 4},
        {"\\p{Lu", kEscape, 5},
        {"\\p{^", kEscape, 4},
        {"\\p{^Lu", kEscape, 6},
        {"\\P{^Lu}", kEscape, 3},
        {"\\P{^", kEscape, 3},
        {"\\p{}", kEscape, 3},
        {"\\p{^}", kEscape, 4},
        {"\\p{^^Lu}", kEscape, 4},
        {"\\p{Foo}", kEscape, 3},
        {"\\p{^Foo}", kEscape, 4},
        {"\\P{Foo}", kEscape, 3},
        {"a\\p{Lx}", kEscape, 4},
        {"\\p{lu}", kEscape, 3},
        {"\\p{Luu}", kEscape, 3},
        {"\\p{L }", kEscape, 3},
        {"\\p{any}", kEscape, 3},
        {"\\p{An}", kEscape, 3},
        {"\\p{Anyone}", kEscape, 3},
        {"\\p{greek}", kEscape, 3},
        {"\\p{Gree}", kEscape, 3},
        {"\\p{Greeks}", kEscape, 3},
        {"\\p{InNowhere}", kEscape, 3},
        {"\\p{Inheritedx}", kEscape, 3},
        {"\\p{&}", kEscape, 3},
        {"[a\\p{Foo}]", kEscape, 5},
        {"[\\p{Lu]", kEscape, 7},
        {"[\\pQ]", kEscape, 3},
    });
}

}  // namespace
}  // namespace zel
