// Searches on the smallest stack that a thread can have. Each runs on a stack of its own, with an
// inaccessible page below it: stacks that the thread library keeps and gives out again may be
// larger than what was asked for.
//
// Patterns that people write must lead to the same results as on any stack. Those that make the
// engine go deep may end with an error instead.
#include <limits.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <functional>

#include "regexp_support.h"

using namespace zeltest;

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr size_t kSmallestStack = 64 * 1024;  // the frames of instrumented code are larger
#else
const size_t kSmallestStack = static_cast<size_t>(PTHREAD_STACK_MIN);
#endif

/// Calls `body` on a new thread with a new stack; false when there could be none.
bool onFreshStack(size_t bytes, const std::function<void()>& body) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t size = (bytes + page - 1) / page * page;
    void* const pages = mmap(nullptr, page + size, PROT_READ | PROT_WRITE,
                             MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (pages == MAP_FAILED) return false;
    mprotect(pages, page, PROT_NONE);
    char* const stack = static_cast<char*>(pages) + page;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack, size);
    const auto entry = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_t thread;
    const bool isThere =
        pthread_create(&thread, &attributes, entry, const_cast<std::function<void()>*>(&body)) == 0;
    if (isThere) pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    munmap(pages, page + size);
    return isThere;
}

std::string repeated(const std::string& unit, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += unit;
    return text;
}

const Zel8u* bytes(const std::string& text) {
    return reinterpret_cast<const Zel8u*>(text.c_str());
}

constexpr int kRecords = 64;

struct Result {
    ZelStatus status = 1;
    int count = kRecords;
    ZelRegExpFind records[kRecords] = {};

    bool operator==(const Result& other) const {
        if (status != other.status || count != other.count) return false;
        for (int i = 0; i < count; ++i) {
            if (records[i].pMatch != other.records[i].pMatch ||
                records[i].lenMatch != other.records[i].lenMatch)
                return false;
        }
        return true;
    }
};

void search(Pattern& pattern, const std::string& text, Result& result) {
    result.status = zelsRegExpFind_8u(bytes(text), static_cast<int>(text.size()), pattern.state(),
                                      result.records, &result.count);
}

void searchAsSet(ZelRegExpMultiState* set, const std::string& text, Result& result) {
    ZelRegExpMultiFind found = {};
    found.pFind = result.records;
    found.numFind = result.count;
    zelsRegExpMultiFind_8u(bytes(text), static_cast<int>(text.size()), &found, set);
    result.status = found.status;
    result.count = found.numFind;
}

struct Case {
    const char* way;
    std::string pattern;
    std::string text;
};

std::string lines(const std::string& line, int count) {
    return repeated(line + "\n", count);
}

/// A pattern and a text for each way that a search may take.
std::vector<Case> cases() {
    const std::string prose = repeated("the quick brown fox jumps over 12 lazy dogs, ", 20);
    const std::string log = lines("12:30:59 error: disk \"sda1\" is full, tom@example.com", 20);
    const std::string cyrillic = repeated(
        "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82, \xD0\xBC\xD0\xB8\xD1\x80. ", 30);
    return {
        {"light walk", "(\\d+)-(\\d+)", "2024-11"},
        {"light walk, long", "([a-z ]+)(\\d+)?.*", prose.substr(0, 200)},
        {"bytes in a row", "[a-z]+", prose},
        {"a literal", "lazy", prose},
        {"a literal ignoring case", "(?i)LAZY", prose},
        {"literals", "fox|dogs|quick|error", prose + log},
        {"literals that share bits", "abc|bcd|cde|def|efg|fgh|ghi|hij|ijk|jkl|over", prose},
        {"enclosed run", "\"[^\"]*\"", log},
        {"enclosed run to the line's end", "error: .*", log},
        {"characters", "[\xD0\xB0-\xD1\x8F]+", cyrillic},
        {"characters by property", "\\p{Lu}\\p{Ll}+", cyrillic},
        {"one way", "(\\d+):(\\d+):(\\d+) error", log},
        {"one way with alternatives", "(quick|lazy) [a-z]+|fox [a-z]+", prose},
        {"one way of many parts", "[j]u[m]p[s] [o]ver (\\d+) l[a]z[y] [d]ogs", prose},
        {"plan: behind a literal", "(?<=brown )[a-z]+", prose},
        {"plan: lines", "(?m)^\\d+.*full", log},
        {"plan: prefixes", "(?:quick|brown|lazy) ([a-z])[a-z]*\\b", prose},
        {"plan: shape", "\\d\\d:\\d\\d:\\d\\d", log},
        {"plan: doubled", "([a-z])\\1", log},
        {"plan: run", "[a-z]+@[a-z]+\\.com", log},
        {"plan: run and literal", "\\w+@example", log},
        {"plan: required", "(?:[a-z]+,?)+!", lines(prose.substr(0, 40), 10)},
        {"plan: set", "[qlz][aeiou]\\w*?[xyz]\\b", prose},
        {"words", "\\b\\w+\\b", prose},
        {"groups", "([a-z])([a-z]*) (?:(fox)|(\\d+))", prose},
        {"look-around", "(?<![a-z])(?=[a-z]{5} )(\\w+)", prose},
        {"atomic groups", "(?>[a-z]+|\\d+)(?> )(?:fox|lazy)", prose},
        {"back reference", "(\\w)\\w*\\1", prose},
        {"condition", "(\\d)?(?(1)\\d| fox)", prose},
        {"lazy runs", "q.*?x", prose},
        {"many classes", "[a-f][e-z]+[ ][^x][r-t]?[o-w]*[n][^\\d]", prose},
        {"empty matches", "x*?", prose.substr(0, 50)},
        {"trailing literal", "[a-z]+ [^f]*full", log},
        {"trailing literal ignoring case", "(?i)[a-z]+ [^f]*FULL", log},
    };
}

}  // namespace

TEST(SmallStack, EveryWayLeadsToTheOrdinaryResults) {
    for (const Case& tried : cases()) {
        for (const char* options : {"", "g"}) {
            for (const int format : {0, 1}) {
                Pattern pattern(tried.pattern, options, format);
                Result expected;
                search(pattern, tried.text, expected);
                EXPECT_EQ(expected.status, zelStatusOk) << tried.way;
                Result result;
                ASSERT_TRUE(
                    onFreshStack(kSmallestStack, [&] { search(pattern, tried.text, result); }));
                EXPECT_EQ(result, expected) << tried.way << " with options \"" << options << "\"";
            }
        }
    }
}

TEST(SmallStack, SetsOfOnePatternLeadToTheOrdinaryResults) {
    for (const Case& tried : cases()) {
        Pattern pattern(tried.pattern, "g");
        Result expected;
        search(pattern, tried.text, expected);
        ZelRegExpMultiState* set = nullptr;
        ASSERT_EQ(zelsRegExpMultiInitAlloc(&set, 1), zelStatusOk);
        ASSERT_EQ(zelsRegExpMultiAdd(pattern.state(), 1, set), zelStatusOk);
        Result result;
        ASSERT_TRUE(onFreshStack(kSmallestStack, [&] { searchAsSet(set, tried.text, result); }));
        EXPECT_EQ(result, expected) << tried.way;
        zelsRegExpMultiFree(set);
    }
}

TEST(SmallStack, ReplacesAsOnAnyThread) {
    for (const Case& tried : cases()) {
        for (const char* options : {"", "g"}) {
            Pattern pattern(tried.pattern, options);
            const auto* replacement = reinterpret_cast<const Zel8u*>("<$&>");
            int size = 0;
            ASSERT_EQ(zelsRegExpReplaceGetSize(replacement, &size), zelStatusOk);
            std::vector<uint64_t> memory(static_cast<size_t>(size) / sizeof(uint64_t) + 1);
            auto* state = reinterpret_cast<ZelRegExpReplaceState*>(memory.data());
            ASSERT_EQ(zelsRegExpReplaceInit(replacement, state), zelStatusOk);
            const auto replace = [&](std::string& written) {
                Result found;
                int used = static_cast<int>(tried.text.size());
                int length = static_cast<int>(written.size());
                found.status = zelsRegExpReplace_8u(
                    bytes(tried.text), &used, reinterpret_cast<Zel8u*>(written.data()), &length,
                    found.records, &found.count, pattern.state(), state);
                return found.status == zelStatusOk;
            };
            std::string expected(8192, ' ');
            std::string written(8192, ' ');
            bool succeeds = false;
            EXPECT_TRUE(replace(expected)) << tried.way;
            ASSERT_TRUE(onFreshStack(kSmallestStack, [&] { succeeds = replace(written); }));
            EXPECT_TRUE(succeeds && written == expected) << tried.way;
        }
    }
}

TEST(SmallStack, DeepSearchesSucceedOrGiveUp) {
    const std::string patterns[] = {
        // Deep in the search itself.
        repeated("[ab]*?", 66) + "[qz]", repeated("()", 998) + "a*[qz]",
        "(?=(" + repeated("()", 900) + "a))*[qz]", repeated("(?=", 400) + "a" + repeated(")", 400),
        "(?>(a)|b)*?[qz]", "(?:(?>(?=(a))a)+?)*[qz]", "(?:(\\w)(\\w)\\w*?)+?[qz]", "a.*?a.*?a",
        // Deep in what is worked out ahead of it.
        repeated("a*", 195) + "[qz]", repeated("(", 190) + "a*" + repeated(")", 190) + "[qz]",
        repeated("(?:x|", 95) + "b" + repeated(")", 95) + "[qz]",
        repeated("a", 60) + repeated("(?:b[cd]?)", 30) + "[qz]"};
    const std::string texts[] = {repeated("a", 3000), repeated(" ", 3000),
                                 repeated("\xC3\xA9", 1500)};
    for (size_t stack = kSmallestStack; stack <= 128 * 1024; stack += stack / 2) {
        for (const std::string& source : patterns) {
            for (const char* options : {"", "g"}) {
                Pattern pattern(source, options);
                for (const std::string& text : texts) {
                    Result result;
                    ASSERT_TRUE(onFreshStack(stack, [&] { search(pattern, text, result); }));
                    EXPECT_TRUE(result.status == zelStatusOk ||
                                result.status == zelStatusRegExpMatchLimitError)
                        << source << " with a stack of " << stack;
                }
            }
        }
    }
}
