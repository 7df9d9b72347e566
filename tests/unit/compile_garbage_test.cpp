// Whatever bytes a pattern is made of, compiling it reads nothing behind its NUL (it ends right in
// front of an inaccessible page), writes nothing outside of the announced size (canaries), and
// gives either a fault inside the pattern or a program that is sound throughout.
#include <sys/mman.h>
#include <unistd.h>

#include <random>

#include "compile_support.h"

namespace zel {
namespace {

/// Memory whose last byte lies in front of an inaccessible page.
class EndOfPage {
public:
    EndOfPage() : pageSize_(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
        base_ = static_cast<char*>(mmap(nullptr, kPages * pageSize_, PROT_READ | PROT_WRITE,
                                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        EXPECT_NE(base_, MAP_FAILED);
        EXPECT_EQ(mprotect(base_ + (kPages - 1) * pageSize_, pageSize_, PROT_NONE), 0);
    }
    ~EndOfPage() { munmap(base_, kPages * pageSize_); }
    EndOfPage(const EndOfPage&) = delete;
    EndOfPage& operator=(const EndOfPage&) = delete;

    /// A copy of the text whose NUL is the last accessible byte.
    const char* place(const std::string& text) {
        char* const at = base_ + (kPages - 1) * pageSize_ - text.size() - 1;
        EXPECT_GE(at, base_);
        memcpy(at, text.c_str(), text.size() + 1);
        return at;
    }

private:
    static constexpr size_t kPages = 4;
    size_t pageSize_;
    char* base_;
};

bool isOpening(const Node& node) {
    return node.kind >= NodeGroupingLookBehind && node.kind <= NodeGroupingAtom;
}

/// A reason why a program is not sound, or an empty text.
std::string unsoundness(const ZelRegExpState& state, size_t size) {
    const Node* const nodes = state.nodes();
    const int count = state.nodeCount;
    if (count < 0) return "negative node count";
    const char* text = reinterpret_cast<const char*>(nodes + count);
    const char* const end = reinterpret_cast<const char*>(&state) + size;
    if (text > end) return "more nodes than fit";
    std::vector<int> open;
    int captures = 0;
    int lastSerial = 0;
    for (int i = 0; i < count; ++i) {
        const Node& node = nodes[i];
        if (isOpening(node)) {
            if (node.value <= lastSerial || node.value >= kMaxGroups) return "serials out of order";
            lastSerial = node.value;
            if (node.kind == NodeGroupingCapture && node.extra != ++captures) return "capture slot";
            const int closing = i + 1 + node.count;
            if (closing >= count || nodes[closing].kind != NodeGroupingClose) return "body length";
            open.push_back(i);
            continue;
        }
        switch (node.kind) {
            case NodeGroupingClose:
                if (open.empty()) return "close without a group";
                if (open.back() + 1 + nodes[open.back()].count != i) return "wrong close";
                if (node.value != nodes[open.back()].value) return "serial of a close";
                open.pop_back();
                break;
            case NodeAlternative:
                if (node.value != (open.empty() ? 0 : nodes[open.back()].value)) return "bar";
                break;
            case NodeString:
                if (node.count < 2) return "short run";
                if (node.data != text) return "text out of place";
                text += node.count;
                if (text > end) return "text outside of the object";
                break;
            case NodeCharacterClass:
                if (node.count < 1 || i + node.count >= count) return "class members";
                for (int m = i + 1; m <= i + node.count; ++m) {
                    const Zel32u kind = nodes[m].kind;
                    if (kind != NodeLetter && kind != NodeRange && kind != NodeLetterRange &&
                        kind != NodeLetterUtf8 && kind != NodeCombLetter &&
                        (kind < NodeUnicodeCategory || kind > NodeUnicodeScript)) {
                        return "class member of a strange kind";
                    }
                    if (kind == NodeRange &&
                        static_cast<Zel32u>(nodes[m].value) > static_cast<Zel32u>(nodes[m].count)) {
                        return "reversed range";
                    }
                }
                i += node.count;
                break;
            case NodeQuantifierMin:
            case NodeQuantifierMax:
                if (i == 0 || isQuantifier(nodes[i - 1]) || isOpening(nodes[i - 1]) ||
                    nodes[i - 1].kind == NodeAlternative || nodes[i - 1].kind == NodeOptions) {
                    return "quantifier without an atom";
                }
                if (node.value < 0 || node.count < node.value || node.count > kUnbounded) {
                    return "bounds";
                }
                break;
            case NodeBackReference:
                if (node.value < 1) return "group number";
                if (i > 0 && nodes[i - 1].kind == NodeGroupingCondition) break;
                if (node.value >= state.groupCount) return "reference to a missing group";
                break;
            case NodeLetter:
                if (node.value < 0 || node.value > 0xFF) return "letter";
                break;
            case NodePosition:
            case NodeLetterRange:
            case NodeOptions:
            case NodeAnyByte:
            case NodeLetterUtf8:
            case NodeUnicodeCategory:
            case NodeUnicodeProperty:
            case NodeUnicodeScript:
            case NodeCombLetter:
                break;
            default:
                return "strange kind";
        }
    }
    if (!open.empty()) return "open group";
    if (captures + 1 != state.groupCount) return "group count";
    if (state.trailingLiteral >= 0) {
        if (state.trailingLiteral >= count) return "trailing literal";
        const Zel32u kind = nodes[state.trailingLiteral].kind;
        if (kind != NodeLetter && kind != NodeString) return "trailing literal is no literal";
        for (int i = state.trailingLiteral + 1; i < count; ++i) {
            if (!isQuantifier(nodes[i])) return "trailing literal is not last";
        }
    }
    return {};
}

/// Compiles one pattern under all precautions. Returns the status.
ZelStatus tryPattern(EndOfPage& page, const std::string& pattern, const char* options = nullptr) {
    GuardedBlock block(pattern, false);
    const char* const placed = page.place(pattern);
    int errOffset = Compiled::kUntouched;
    const ZelStatus status = zelsRegExpInit(placed, options, block.state(), &errOffset);
    EXPECT_TRUE(block.canariesHold()) << testing::PrintToString(pattern);
    if (status == zelStatusOk) {
        EXPECT_EQ(errOffset, Compiled::kUntouched);
        EXPECT_EQ(unsoundness(*block.state(), block.size()), "") << testing::PrintToString(pattern);
    } else {
        EXPECT_LE(status, zelStatusRegExpEscapeError) << testing::PrintToString(pattern);
        EXPECT_GE(status, zelStatusRegExpQuantifierError) << testing::PrintToString(pattern);
        EXPECT_GE(errOffset, 0) << testing::PrintToString(pattern);
        EXPECT_LE(errOffset, static_cast<int>(pattern.size())) << testing::PrintToString(pattern);
    }
    return status;
}

const char* const kRichPatterns[] = {
    "(?:a|b)*?c{2,3}(?<=x|y)(?<!ab)(?=d(?!e))(?>f+)\\1(g)",
    "^(?i)(\\w+)\\s*=\\s*(?:\"([^\"\\\\]|\\\\.)*\"|'[^']*')\\s*$(?-i:End)",
    "(?(1)yes|no)(?(?=a)b|c)(?(?<!d)e)(?(123)x)",
    "[]\\]a-z\\d\\x{100}-\\x{200}[:alpha:][.digit.][=^space=]\\Q]-[\\E--\\c]\\p{Lu}\\P{^}",
    "[[:alnum:][:^punct:][:word:]-[:xdigit:]\\b\\0\\17\\177\xC3\xA9-\xF0\x9F\x98\x80]+?",
    "\\p{Greek}\\p{^InBasicLatin}\\P{L&}\\pN\\X\\C\\x{10FFFF}\\x41\\x\\cA\\c\\\\0\\012\\81\\999",
    "(?#comment)(?x) a # line\n b (?-x) c(?s-m:.*)\\Qq*(\\E\\E\\Qopen",
    ".*?..\\d\\d\\d+\\w{2}\\w{3}...{1,65535}a{,3}b{,}c{5,}?",
    "((((((((((a)))))))))\\10\\12)\\(\\[\\)\\]",
    "(?:.*)[\xE2\x82\xAC\xC2\xA9](?i:\xC3\x84)\xFF\xFE\x80{2}",
};

TEST(CompileGarbage, EveryPrefixOfRichPatterns) {
    EndOfPage page;
    for (const std::string pattern : kRichPatterns) {
        for (size_t length = 0; length <= pattern.size(); ++length) {
            tryPattern(page, pattern.substr(0, length));
            tryPattern(page, pattern.substr(0, length), "xi");
        }
    }
}

TEST(CompileGarbage, EverySuffixOfRichPatterns) {
    EndOfPage page;
    for (const std::string pattern : kRichPatterns) {
        for (size_t from = 0; from <= pattern.size(); ++from) {
            tryPattern(page, pattern.substr(from));
            tryPattern(page, pattern.substr(from), "x");
        }
    }
}

TEST(CompileGarbage, RichPatternsWithAnyByteReplaced) {
    EndOfPage page;
    const std::string bytes = "()[]{}\\?*+|^$.-:,<=!#QEpx1a\xC3\x80 ";
    for (const std::string pattern : kRichPatterns) {
        for (size_t at = 0; at < pattern.size(); ++at) {
            std::string changed = pattern;
            for (const char byte : bytes) {
                changed[at] = byte;
                tryPattern(page, changed);
            }
            changed = pattern;
            changed.erase(at, 1);
            tryPattern(page, changed);
        }
    }
}

TEST(CompileGarbage, AllShortPatternsOverTheSpecialBytes) {
    EndOfPage page;
    const std::string bytes = "a()[]?*{}\\1^-:|";
    int compiled = 0;
    std::string pattern;
    for (const char a : bytes) {
        for (const char b : bytes) {
            for (const char c : bytes) {
                for (const char d : bytes) {
                    pattern = {a, b, c, d};
                    compiled += tryPattern(page, pattern) == zelStatusOk ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(compiled, 1000);
}

TEST(CompileGarbage, RandomBytesOfEveryLength) {
    EndOfPage page;
    std::mt19937 random(20100317);
    const std::string special = "()()[]{}\\\\?*+|^$.-:,<=>!#Q\\Epx0123456789abimsx \n\xC3\xA9\xFF";
    for (int round = 0; round < 30; ++round) {
        for (size_t length = 0; length <= 300; ++length) {
            std::string any, likely;
            for (size_t i = 0; i < length; ++i) {
                any += static_cast<char>(1 + random() % 255);
                likely += special[random() % special.size()];
            }
            tryPattern(page, any);
            tryPattern(page, likely);
            tryPattern(page, likely, "x");
        }
    }
}

TEST(CompileGarbage, RandomSequencesOfWholeConstructs) {
    // Most of these compile, so that the program's soundness and its room are really tested.
    const char* const pieces[] = {
        "a",    "bc",          "def",        ".",     "..",        "\\d",     "\\w",
        "*",    "+?",          "{2,3}",      "|",     "(",         "(?:",     "(?=",
        "(?<=", "(?>",         ")",          ")",     ")",         "[ab]",    "[^c-e\\d]",
        "[q]",  "[[:punct:]]", "\\x{100}",   "\\n",   "\\p{Lu}",   "\\X",     "\\C",
        "(?i)", "(?x)",        "(?-x)",      "(?#c)", "(?(1)",     "(?(?=a)", "\\1",
        "\\12", "^",           "$",          "\\b",   "\\Qx*y\\E", "\\E",     " ",
        "#c\n", "\xC3\xA9",    "[\xC3\xA9]", "(?s:",  "{",         "\\*",     "[[:word:]]",
    };
    constexpr size_t kPieces = sizeof pieces / sizeof pieces[0];
    EndOfPage page;
    std::mt19937 random(778);
    int compiled = 0;
    for (int round = 0; round < 50000; ++round) {
        std::string pattern;
        const size_t length = 1 + random() % 24;
        for (size_t i = 0; i < length; ++i) pattern += pieces[random() % kPieces];
        compiled += tryPattern(page, pattern, round % 3 == 0 ? "x" : nullptr) == 0 ? 1 : 0;
    }
    EXPECT_GT(compiled, 500);
}

TEST(CompileGarbage, FullestUseOfTheObject) {
    // One node for each byte, and the marker in front.
    EndOfPage page;
    for (const std::string unit :
         {"^", "|", ".|", "a.", "ab*", "abc*", "[a-b]", "[ab]", "()", "\\d."}) {
        std::string pattern;
        for (int i = 0; i < 600; ++i) {
            pattern += unit;
            if (i % 50 == 0 || i < 8) {
                EXPECT_EQ(tryPattern(page, pattern), zelStatusOk) << unit << " x " << i;
                EXPECT_EQ(tryPattern(page, ".*" + pattern), zelStatusOk) << unit << " x " << i;
            }
        }
    }
}

TEST(CompileGarbage, LongPatternsCostTimeInProportion) {
    // Constructs that look ahead must not look ahead over the whole rest again and again: each of
    // these would take half a minute if they did.
    const size_t length = 1 << 18;
    for (const std::string unit :
         {"[:", "[[:", "{1", "{1,", "\\p{", "(?#", "\\Q", ".", "a{1}", "#"}) {
        for (const char* const front : {"", "["}) {
            std::string pattern = front;
            while (pattern.size() < length) pattern += unit;
            compile(pattern);
            compile(pattern, "x");
        }
    }
}

}  // namespace
}  // namespace zel
