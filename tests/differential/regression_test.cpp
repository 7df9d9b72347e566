// Cases on which library and model once disagreed, as the differential programs printed them,
// shrunk. Both sides must agree on every one of them for good.
#include <gtest/gtest.h>

#include "regexp_case.h"
#include "replace_case.h"
#include "report.h"

namespace differential {
namespace {

const RegexpCase regexpCases[] = {
    // A range whose upper end has its highest bit set.
    {"[\\0-\\x{FFFFFFFF}]+", "", 1, 1500, "xx", 0, 16},
    // A quotation that holds nothing stands between an atom and its quantifier.
    {".{5}.\\Q\\E*", "", 1, 10000, "", 0, 16},
    // The pattern ends inside what might have become a class part.
    {"[[::", "", 1, 10000, "", 0, 16},
    // An ASCII range and a wide character whose case mapping lies in it.
    {"[a-k]", "i", 1, 10000, "\342\204\252", 0, 16},
    {"a[a-}]", "i", 1, 10000, "a\342\204\252", 0, 16},
    // What lazy routines left raised inside an atomic group stays raised when its body fails.
    {"(?>(e\?\?a))|", "", 1, 10000, "e", 0, 16},
    {"(?>a+?a)*", "", 1, 10000, "a", 0, 16},
    {"[a](?>\\D{3}?(a))*", "", 1, 10000, "aaaa", 0, 16},
    {"(?>\\PC+?)*\\x{10400}[\\1]", "", 1, 10000, "\360\220\220\200\001", 0, 16},
    {"((?>\\p{Z}*?)|){4}", "", 1, 10000, "a", 0, 16},
    // A lazy \C takes back its own bytes, not what a lazy routine behind it left raised.
    {"\\C\?\?(\\P{Any}*?)|", "", 1, 10000, "a", 0, 16},
    {"(\\C+?)+a+?a", "", 1, 10000, "aaa", 0, 16},
    // A shorthand's run steps over a literal when it gives back a longer character behind it, also
    // where the search has been at it for some lines and no longer asks the engine.
    {"x.+b\\d?", "", 0, 10000, "xq\nxq\nxq\nxq\nxq\nxq\nxq\nxq\nxq\nxq\nxq\nxq\nxqb\303\251q\n", 0,
     16},
    // The text that is narrowed to the last place of the literal ends within a character.
    {"\204", "g", 1, 10000, "\342\204\252", 0, 16},
    {"\204\252", "gi", 1, 10000, "a\360\237\204\252\200", 0, 16},
};

const ReplaceCase replaceCases[] = {
    // A give-back in front of its run leaves a match of negative length: it ends where it says.
    {"a|a?(?:(\\D?)a)", "g", 10000, "aab\345\255\227", false, "", 100, 16},
    // Records of a match whose length a lazy \C must not put back.
    {"\\C*?[\\w]{1}?a|", "", 10000, "a", false, "", 100, 16},
    // A group number that does not fit 32 bits.
    {"a", "", 10000, "a", false, "$166666666666-$2", 100, 16},
    // A run that gives back more bytes than it took: the match ends in front of its start.
    {".?^", "g", 10000, "aa\314\201", false, "", 100, 16},
    {".?(\303)", "", 10000, "\303\251aa\360\230\200\251", false, "", 100, 16},
    {"(?:\\141)\\S? ", "", 10000, " aaaaa\375\277\277\277\277\277 ", false, "", 100, 16},
    {"a\\s?[\\PL]", "", 10000, "\237aa\014\360\237\230\200", false, "", 100, 16},
    {"a*.?(^|(a(a)a))", "g", 10000, "aa\303\251", false, "", 100, 16},
};

TEST(Regression, ReplaceCasesAgree) {
    onDeepStack([] {
        for (const ReplaceCase& testCase : replaceCases) {
            EXPECT_EQ(compare(testCase), "") << testCase.text();
        }
    });
}

TEST(Regression, RegexpCasesAgree) {
    onDeepStack([] {
        for (const RegexpCase& testCase : regexpCases) {
            EXPECT_EQ(compare(testCase), "") << testCase.text();
        }
    });
}

}  // namespace
}  // namespace differential
