// The Unicode tables and their lookups: shapes, landmark rows, and for every code point that the
// fast lookup finds what a plain scan of the sorted table finds.
#include "regexp/unicode/unicode.h"

#include <gtest/gtest.h>
#include <string.h>

#include <map>
#include <set>
#include <string>

namespace zel {
namespace {

TEST(Unicode, EntriesAscendFromFirstToLastRow) {
    EXPECT_EQ(UniTbl[0].codePoint, 0u);
    EXPECT_EQ(UniTbl[0].category, 0x2001u);
    for (int i = 1; i < kUniTblSize; ++i) {
        ASSERT_LT(UniTbl[i - 1].codePoint, UniTbl[i].codePoint) << "row " << i;
    }
    EXPECT_EQ(UniTbl[kUniTblSize - 1].codePoint, 0xE01EFu);
    EXPECT_EQ(UniTbl[kUniTblSize - 1].category, 0x101u);
    EXPECT_EQ(kUniTblSize, 19316);
    EXPECT_EQ(sizeof(UniEntry), 16u);
}

TEST(Unicode, EntriesKnowTheirCaseMappings) {
    const UniEntry* upper = findUniEntry('A');
    ASSERT_NE(upper, nullptr);
    EXPECT_EQ(upper->category, 0x82u);
    EXPECT_EQ(upper->upper, 0u);
    EXPECT_EQ(upper->lower, 0x61u);
    const UniEntry* lower = findUniEntry('a');
    ASSERT_NE(lower, nullptr);
    EXPECT_EQ(lower->category, 0x81u);
    EXPECT_EQ(lower->upper, 0x41u);
    EXPECT_EQ(lower->lower, 0u);
    const UniEntry* title = findUniEntry(0x1C5);  // D with small z with caron: three cases
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title->category, 0x84u);
    EXPECT_EQ(title->upper, 0x1C4u);
    EXPECT_EQ(title->lower, 0x1C6u);
}

TEST(Unicode, EveryCategoryHasItsValueAndItsNumberOfEntries) {
    // Counted in the character database, uniform ranges left out; no entry is unassigned.
    const std::map<Zel32u, int> expected = {
        {0x81, 1748},  {0x82, 1421}, {0x84, 31},    {0x88, 187},  {0x90, 8671}, {0x101, 1032},
        {0x102, 236},  {0x104, 13},  {0x201, 18},   {0x202, 1},   {0x204, 1},   {0x401, 945},
        {0x402, 41},   {0x404, 99},  {0x408, 3225}, {0x801, 370}, {0x802, 214}, {0x804, 349},
        {0x1001, 20},  {0x1002, 72}, {0x1004, 71},  {0x1008, 12}, {0x1010, 10}, {0x1020, 10},
        {0x1040, 315}, {0x2001, 65}, {0x2002, 139},
    };
    std::map<Zel32u, int> found;
    for (const UniEntry& entry : UniTbl) ++found[entry.category];
    EXPECT_EQ(found, expected);
}

TEST(Unicode, EveryCategoryHoldsItsLandmark) {
    const struct {
        int codePoint;
        Zel32u category;
    } rows[] = {
        {'z', 0x81},     {'Z', 0x82},     {0x1F2, 0x84},   {0x2B0, 0x88}, {0x5D0, 0x90},
        {0x301, 0x101},  {0x903, 0x102},  {0x20DD, 0x104}, {' ', 0x201},  {0x2028, 0x202},
        {0x2029, 0x204}, {'+', 0x401},    {'$', 0x402},    {'^', 0x404},  {0xA6, 0x408},
        {'7', 0x801},    {0x2160, 0x802}, {0xBD, 0x804},   {'-', 0x1001}, {'(', 0x1002},
        {')', 0x1004},   {0xAB, 0x1008},  {0xBB, 0x1010},  {'_', 0x1020}, {'!', 0x1040},
        {0x7F, 0x2001},  {0xAD, 0x2002},
    };
    for (const auto& row : rows) {
        const UniEntry* entry = findUniEntry(row.codePoint);
        ASSERT_NE(entry, nullptr) << std::hex << row.codePoint;
        EXPECT_EQ(entry->category, row.category) << std::hex << row.codePoint;
    }
}

TEST(Unicode, UniformRangesAreTheTenKnownOnes) {
    const UniRange expected[] = {
        {0x3400, 0x4DB5, 0x90},       {0x4E00, 0x9FC3, 0x90},   {0xAC00, 0xD7A3, 0x90},
        {0xD800, 0xDB7F, 0x2008},     {0xDB80, 0xDBFF, 0x2008}, {0xDC00, 0xDFFF, 0x2008},
        {0xE000, 0xF8FF, 0x2004},     {0x20000, 0x2A6D6, 0x90}, {0xF0000, 0xFFFFD, 0x2004},
        {0x100000, 0x10FFFD, 0x2004},
    };
    static_assert(sizeof expected / sizeof expected[0] == kUniRangeTblSize);
    for (int i = 0; i < kUniRangeTblSize; ++i) {
        EXPECT_EQ(UniRangeTbl[i].first, expected[i].first);
        EXPECT_EQ(UniRangeTbl[i].last, expected[i].last);
        EXPECT_EQ(UniRangeTbl[i].category, expected[i].category);
    }
}

TEST(Unicode, LookupsAgreeWithAPlainScanForEveryCodePoint) {
    int row = 0;  // the first row whose code point is not below c: a scan that never goes back
    int range = 0;
    for (int c = 0; c <= static_cast<int>(kLastCodePoint); ++c) {
        const Zel32u u = static_cast<Zel32u>(c);
        while (row < kUniTblSize && UniTbl[row].codePoint < u) ++row;
        while (range < kUniRangeTblSize && UniRangeTbl[range].last < u) ++range;
        const UniEntry* entry =
            row < kUniTblSize && UniTbl[row].codePoint == u ? &UniTbl[row] : nullptr;
        const UniRange* uniform = range < kUniRangeTblSize && UniRangeTbl[range].first <= u
                                      ? &UniRangeTbl[range]
                                      : nullptr;
        ASSERT_EQ(findUniEntry(c), entry) << std::hex << c;
        ASSERT_EQ(findUniRange(c), uniform) << std::hex << c;
        ASSERT_FALSE(entry && uniform) << std::hex << c;
    }
}

TEST(Unicode, GroupsTellPlaceCategoryAndLeadBytesOfEveryCodePoint) {
    uint64_t leads[kUniGroupCount] = {};
    for (int c = 0; c <= static_cast<int>(kLastCodePoint); ++c) {
        const int number = findUniGroup(c);
        ASSERT_LT(number, kUniGroupCount) << std::hex << c;
        const UniGroup& group = UniGroupTbl[number];
        const UniEntry* entry = findUniEntry(c);
        const UniRange* uniform = findUniRange(c);
        const bool beyond = c > kUniTblLast;
        if (entry != nullptr) {
            ASSERT_EQ(group.place, UniGroup::kListed) << std::hex << c;
            ASSERT_EQ(group.category, entry->category) << std::hex << c;
        } else if (uniform != nullptr) {
            ASSERT_EQ(group.place, beyond ? UniGroup::kUniformBeyond : UniGroup::kUniform);
            ASSERT_EQ(group.category, uniform->category) << std::hex << c;
        } else {
            ASSERT_EQ(group.place, beyond ? UniGroup::kBeyond : UniGroup::kAbsent) << std::hex << c;
            ASSERT_EQ(group.category, 0u) << std::hex << c;
        }
        const int lead = c < 0x80      ? 0
                         : c < 0x800   ? 0xC0 | c >> 6
                         : c < 0x10000 ? 0xE0 | c >> 12
                                       : 0xF0 | c >> 18;
        if (lead != 0) leads[number] |= uint64_t{1} << (lead - 0xC0);
    }
    for (int lead = 0xF4; lead < 0xFE; ++lead) {
        leads[kUniGroupCount - 1] |= uint64_t{1} << (lead - 0xC0);  // of values above
    }
    for (int number = 0; number < kUniGroupCount; ++number) {
        EXPECT_EQ(UniGroupTbl[number].leads, leads[number]) << number;
    }
}

TEST(Unicode, LookupsAcceptAnyValue) {
    for (int c : {-1, -128, INT32_MIN, static_cast<int>(kLastCodePoint) + 1, INT32_MAX}) {
        EXPECT_EQ(UniGroupTbl[findUniGroup(c)].place, UniGroup::kBeyond) << c;
        EXPECT_EQ(findUniEntry(c), nullptr) << c;
        EXPECT_EQ(findUniRange(c), nullptr) << c;
    }
}

TEST(Unicode, BlocksAreNamedAsPublished) {
    // The 171 block names in table order, the common "In" left out.
    const char* const names[] = {
        "BasicLatin",
        "Latin1Supplement",
        "LatinExtendedA",
        "LatinExtendedB",
        "IPAExtensions",
        "SpacingModifierLetters",
        "CombiningDiacriticalMarks",
        "GreekandCoptic",
        "Cyrillic",
        "CyrillicSupplement",
        "Armenian",
        "Hebrew",
        "Arabic",
        "Syriac",
        "ArabicSupplement",
        "Thaana",
        "NKo",
        "Devanagari",
        "Bengali",
        "Gurmukhi",
        "Gujarati",
        "Oriya",
        "Tamil",
        "Telugu",
        "Kannada",
        "Malayalam",
        "Sinhala",
        "Thai",
        "Lao",
        "Tibetan",
        "Myanmar",
        "Georgian",
        "HangulJamo",
        "Ethiopic",
        "EthiopicSupplement",
        "Cherokee",
        "UnifiedCanadianAboriginalSyllabics",
        "Ogham",
        "Runic",
        "Tagalog",
        "Hanunoo",
        "Buhid",
        "Tagbanwa",
        "Khmer",
        "Mongolian",
        "Limbu",
        "TaiLe",
        "NewTaiLue",
        "KhmerSymbols",
        "Buginese",
        "Balinese",
        "Sundanese",
        "Lepcha",
        "OlChiki",
        "PhoneticExtensions",
        "PhoneticExtensionsSupplement",
        "CombiningDiacriticalMarksSupplement",
        "LatinExtendedAdditional",
        "GreekExtended",
        "GeneralPunctuation",
        "SuperscriptsandSubscripts",
        "CurrencySymbols",
        "CombiningDiacriticalMarksforSymbols",
        "LetterlikeSymbols",
        "NumberForms",
        "Arrows",
        "MathematicalOperators",
        "MiscellaneousTechnical",
        "ControlPictures",
        "OpticalCharacterRecognition",
        "EnclosedAlphanumerics",
        "BoxDrawing",
        "BlockElements",
        "GeometricShapes",
        "MiscellaneousSymbols",
        "Dingbats",
        "MiscellaneousMathematicalSymbolsA",
        "SupplementalArrowsA",
        "BraillePatterns",
        "SupplementalArrowsB",
        "MiscellaneousMathematicalSymbolsB",
        "SupplementalMathematicalOperators",
        "MiscellaneousSymbolsandArrows",
        "Glagolitic",
        "LatinExtendedC",
        "Coptic",
        "GeorgianSupplement",
        "Tifinagh",
        "EthiopicExtended",
        "CyrillicExtendedA",
        "SupplementalPunctuation",
        "CJKRadicalsSupplement",
        "KangxiRadicals",
        "IdeographicDescriptionCharacters",
        "CJKSymbolsandPunctuation",
        "Hiragana",
        "Katakana",
        "Bopomofo",
        "HangulCompatibilityJamo",
        "Kanbun",
        "BopomofoExtended",
        "CJKStrokes",
        "KatakanaPhoneticExtensions",
        "EnclosedCJKLettersandMonths",
        "CJKCompatibility",
        "CJKUnifiedIdeographsExtensionA",
        "YijingHexagramSymbols",
        "CJKUnifiedIdeographs",
        "YiSyllables",
        "YiRadicals",
        "Vai",
        "CyrillicExtendedB",
        "ModifierToneLetters",
        "LatinExtendedD",
        "SylotiNagri",
        "Phagspa",
        "Saurashtra",
        "KayahLi",
        "Rejang",
        "Cham",
        "HangulSyllables",
        "HighSurrogates",
        "HighPrivateUseSurrogates",
        "LowSurrogates",
        "PrivateUseArea",
        "CJKCompatibilityIdeographs",
        "AlphabeticPresentationForms",
        "ArabicPresentationFormsA",
        "VariationSelectors",
        "VerticalForms",
        "CombiningHalfMarks",
        "CJKCompatibilityForms",
        "SmallFormVariants",
        "ArabicPresentationFormsB",
        "HalfwidthandFullwidthForms",
        "Specials",
        "LinearBSyllabary",
        "LinearBIdeograms",
        "AegeanNumbers",
        "AncientGreekNumbers",
        "AncientSymbols",
        "PhaistosDisc",
        "Lycian",
        "Carian",
        "OldItalic",
        "Gothic",
        "Ugaritic",
        "OldPersian",
        "Deseret",
        "Shavian",
        "Osmanya",
        "CypriotSyllabary",
        "Phoenician",
        "Lydian",
        "Kharoshthi",
        "Cuneiform",
        "CuneiformNumbersandPunctuation",
        "ByzantineMusicalSymbols",
        "MusicalSymbols",
        "AncientGreekMusicalNotation",
        "TaiXuanJingSymbols",
        "CountingRodNumerals",
        "MathematicalAlphanumericSymbols",
        "MahjongTiles",
        "DominoTiles",
        "CJKUnifiedIdeographsExtensionB",
        "CJKCompatibilityIdeographsSupplement",
        "Tags",
        "VariationSelectorsSupplement",
        "SupplementaryPrivateUseAreaA",
        "SupplementaryPrivateUseAreaB",
    };
    static_assert(sizeof names / sizeof names[0] == 171 && kUniBlockTblSize == 171);
    static_assert(sizeof(UniBlock) == 136);
    for (int i = 0; i < kUniBlockTblSize; ++i) {
        EXPECT_EQ(UniBlockTbl[i].name, std::string("In") + names[i]) << "row " << i;
        // The name is padded with zero bytes to its field's end.
        for (size_t at = strlen(UniBlockTbl[i].name); at < sizeof UniBlockTbl[i].name; ++at) {
            ASSERT_EQ(UniBlockTbl[i].name[at], '\0');
        }
    }
}

TEST(Unicode, BlocksAscendAndBeginOnWholeColumns) {
    EXPECT_EQ(UniBlockTbl[0].first, 0u);
    EXPECT_EQ(UniBlockTbl[0].last, 0x7Fu);
    for (int i = 0; i < kUniBlockTblSize; ++i) {
        EXPECT_EQ(UniBlockTbl[i].first % 16, 0u) << UniBlockTbl[i].name;
        EXPECT_EQ(UniBlockTbl[i].last % 16, 15u) << UniBlockTbl[i].name;
        EXPECT_LT(UniBlockTbl[i].first, UniBlockTbl[i].last);
        if (i > 0) {
            EXPECT_LT(UniBlockTbl[i - 1].last, UniBlockTbl[i].first);
        }
    }
    EXPECT_EQ(UniBlockTbl[170].first, 0x100000u);
    EXPECT_EQ(UniBlockTbl[170].last, 0x10FFFFu);
}

struct ScriptRow {
    const char* name;
    int pairCount;
};

// Every script in the order in which names are tried.
constexpr ScriptRow kScripts[] = {
    {"Common", 530},    {"Latin", 42},      {"Greek", 51},        {"Cyrillic", 18},
    {"Armenian", 6},    {"Hebrew", 22},     {"Arabic", 36},       {"Syriac", 7},
    {"Thaana", 3},      {"Devanagari", 17}, {"Bengali", 25},      {"Gurmukhi", 21},
    {"Gujarati", 21},   {"Oriya", 25},      {"Tamil", 24},        {"Telugu", 18},
    {"Kannada", 20},    {"Malayalam", 18},  {"Sinhala", 13},      {"Thai", 10},
    {"Lao", 22},        {"Tibetan", 34},    {"Myanmar", 33},      {"Georgian", 4},
    {"Hangul", 12},     {"Ethiopic", 31},   {"Cherokee", 1},      {"Canadian_Aboriginal", 3},
    {"Ogham", 4},       {"Runic", 2},       {"Khmer", 17},        {"Mongolian", 13},
    {"Hiragana", 3},    {"Katakana", 8},    {"Bopomofo", 2},      {"Han", 15},
    {"Yi", 4},          {"Old_Italic", 2},  {"Gothic", 4},        {"Deseret", 1},
    {"Inherited", 22},  {"Tagalog", 3},     {"Hanunoo", 2},       {"Buhid", 2},
    {"Tagbanwa", 3},    {"Limbu", 12},      {"Tai_Le", 2},        {"Linear_B", 7},
    {"Ugaritic", 2},    {"Shavian", 1},     {"Osmanya", 2},       {"Cypriot", 6},
    {"Braille", 1},     {"Buginese", 4},    {"Coptic", 6},        {"New_Tai_Lue", 6},
    {"Glagolitic", 2},  {"Tifinagh", 2},    {"Syloti_Nagri", 11}, {"Old_Persian", 4},
    {"Kharoshthi", 11}, {"Balinese", 17},   {"Cuneiform", 3},     {"Phoenician", 3},
    {"Phags_Pa", 2},    {"Nko", 7},         {"Sundanese", 10},    {"Lepcha", 8},
    {"Ol_Chiki", 4},    {"Vai", 6},         {"Saurashtra", 6},    {"Kayah_Li", 4},
    {"Rejang", 4},      {"Lycian", 1},      {"Carian", 1},        {"Lydian", 2},
    {"Cham", 13},
};
static_assert(sizeof kScripts / sizeof kScripts[0] == kUniScriptCount && kUniScriptCount == 77);

TEST(Unicode, ScriptsStandInTheirOrderWithTheirPairCounts) {
    for (int i = 0; i < kUniScriptCount; ++i) {
        EXPECT_STREQ(UniScriptTbl[i].name, kScripts[i].name);
        EXPECT_EQ(UniScriptTbl[i].pairCount, kScripts[i].pairCount) << kScripts[i].name;
    }
}

TEST(Unicode, ScriptPairsAscendAndNoCodePointHasTwoScripts) {
    std::map<Zel32u, Zel32u> all;
    for (const UniScript& script : UniScriptTbl) {
        for (int i = 0; i < script.pairCount; ++i) {
            EXPECT_LE(script.pairs[i].first, script.pairs[i].last) << script.name;
            if (i > 0) {
                EXPECT_LT(script.pairs[i - 1].last, script.pairs[i].first) << script.name;
            }
            EXPECT_TRUE(all.emplace(script.pairs[i].first, script.pairs[i].last).second);
        }
    }
    Zel32u next = 0;
    for (const auto& [first, last] : all) {
        EXPECT_GE(first, next);
        next = last + 1;
    }
}

TEST(Unicode, NameSearchFindsWhatAScanInTableOrderFinds) {
    const auto scan = [](const std::string& text) -> const UniBlock* {
        for (const UniBlock& block : UniBlockTbl) {
            if (strncmp(text.c_str(), block.name, text.size()) == 0) return &block;
        }
        return nullptr;
    };
    for (const UniBlock& row : UniBlockTbl) {
        const std::string name = row.name;
        // Every beginning of every name, and the name with something wrong at its end.
        for (size_t length = 1; length <= name.size(); ++length) {
            const std::string text = name.substr(0, length);
            EXPECT_EQ(findUniBlock(text.c_str(), length), scan(text)) << text;
            const std::string other = text.substr(0, length - 1) + "~";
            if (length > 1) {
                EXPECT_EQ(findUniBlock(other.c_str(), length), nullptr) << other;
            }
        }
        EXPECT_EQ(findUniBlock((name + "x").c_str(), name.size() + 1), scan(name + "x")) << name;
    }
    const std::string longer = "In" + std::string(200, 'B');
    EXPECT_EQ(findUniBlock(longer.c_str(), longer.size()), nullptr);
    for (const UniScript& row : UniScriptTbl) {
        const std::string name = row.name;
        EXPECT_EQ(findUniScript(name.c_str(), name.size()), &row);
        EXPECT_EQ(findUniScript((name + "}").c_str(), name.size()), &row);
        EXPECT_EQ(findUniScript((name + "x").c_str(), name.size() + 1), nullptr);
        EXPECT_NE(findUniScript(name.c_str(), name.size() - 1), &row);
        EXPECT_EQ(findUniScript(("x" + name).c_str(), name.size() + 1), nullptr);
    }
    EXPECT_EQ(findUniScript("", 0), nullptr);
}

TEST(Unicode, PairSearchAgreesWithAPlainScan) {
    for (const UniScript& script : UniScriptTbl) {
        // Every edge of every pair of every script, and its neighbours.
        std::set<int> probes = {-1, 0, kLastCodePoint, INT32_MAX, INT32_MIN};
        for (int i = 0; i < script.pairCount; ++i) {
            for (int d = -1; d <= 1; ++d) {
                probes.insert(static_cast<int>(script.pairs[i].first) + d);
                probes.insert(static_cast<int>(script.pairs[i].last) + d);
            }
        }
        for (int c : probes) {
            bool expected = false;
            for (int i = 0; i < script.pairCount; ++i) {
                const Zel32u u = static_cast<Zel32u>(c);
                if (u >= script.pairs[i].first && u <= script.pairs[i].last) expected = true;
            }
            ASSERT_EQ(inUniPairs(script.pairs, script.pairCount, c), expected)
                << script.name << " " << std::hex << c;
        }
    }
    EXPECT_FALSE(inUniPairs(UniScriptTbl[0].pairs, 0, 0));
}

}  // namespace
}  // namespace zel
