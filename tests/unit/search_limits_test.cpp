// What bounds a search: the machine stack, the subject's memory, and nothing else.
#include <limits.h>
#include <pthread.h>
#include <time.h>

#include <functional>
#include <thread>

#include "regexp_support.h"
#include "test_support.h"

using namespace zeltest;

namespace {

/// Runs `body` on a thread with a stack of its own size.
void onThread(size_t stackBytes, const std::function<void()>& body) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackBytes), 0);
    pthread_t thread;
    const auto entry = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    ASSERT_EQ(
        pthread_create(&thread, &attributes, entry, const_cast<std::function<void()>*>(&body)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

std::string repeated(const std::string& unit, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += unit;
    return text;
}

struct DeepCase {
    const char* pattern;
    const char* options;
    std::string text;
};

std::vector<DeepCase> deepCases() {
    const std::string as(1000000, 'a');
    return {{"([^A]|B)*", "", as},
            {"(?:\\s\\s)+", "", std::string(1000000, ' ')},
            {"(.|\\n)*", "", as},
            {"^(.)*$", "", as},
            {"X?(R||){3335}", "", "XRRRR"},
            {"(?>a)*", "", as},
            {"(?>(a))*b", "", as},
            {"(?:(?=(a))a)*b", "", as},
            {"(?:a|(?:b|c)+)*d", "", as + "d"},
            {"(?:a*?b?)*c", "", as},
            {"(a)(?:\\1)*", "", as},
            {"(?(?=a)a|b)*", "", as},
            {"(?i:a)*?b", "", as}};
}

}  // namespace

TEST(Stack, ClassRunOfTenMillionCharactersNeedsNone) {
    const std::string text(10000000, 'x');
    for (const char* pattern :
         {"[a-z]*", "[a-z]+y?", "[^a]*", "\\w+", ".*", "x+", "\\C*", "\\p{L}+", "\\X+"}) {
        onThread(256 * 1024, [&] {
            Pattern compiled(pattern);
            EXPECT_EQ(compiled.limit(INT_MAX).spans(text), (Spans{{0, 10000000}})) << pattern;
        });
    }
}

TEST(Stack, DeepSearchesEndLikeThoseWithoutBudget) {
    for (const size_t stack : {32u * 1024, 64u * 1024, 256u * 1024, 8192u * 1024}) {
        onThread(stack, [&] {
            for (const DeepCase& deep : deepCases()) {
                Pattern compiled(deep.pattern, deep.options);
                const ZelStatus status = compiled.limit(INT_MAX).find(deep.text).status;
                EXPECT_TRUE(status == zelStatusOk || status == zelStatusRegExpMatchLimitError)
                    << deep.pattern << " with a stack of " << stack;
            }
        });
    }
}

TEST(Stack, DeepSearchesOnTheMainThread) {
    for (const DeepCase& deep : deepCases()) {
        Pattern compiled(deep.pattern, deep.options);
        const ZelStatus status = compiled.limit(INT_MAX).find(deep.text).status;
        EXPECT_TRUE(status == zelStatusOk || status == zelStatusRegExpMatchLimitError)
            << deep.pattern;
    }
}

TEST(Stack, DefaultLimitFitsAnOrdinaryThread) {
    for (const DeepCase& deep : deepCases()) {
        Pattern compiled(deep.pattern, deep.options);
        const std::string text = deep.text.substr(0, 2000);
        onThread(8192 * 1024,
                 [&] { EXPECT_EQ(compiled.find(text).status, zelStatusOk) << deep.pattern; });
    }
}

TEST(Stack, ManyNestedGroups) {
    const std::string pattern = repeated("(", 999) + "a" + repeated(")", 999);
    Pattern compiled(pattern);
    EXPECT_EQ(compiled.spans("xa").size(), 64u);
    onThread(64 * 1024, [&] {
        const ZelStatus status = compiled.find("xa").status;
        EXPECT_TRUE(status == zelStatusOk || status == zelStatusRegExpMatchLimitError);
    });
}

// ---- Time ---------------------------------------------------------------------------------------

TEST(Time, LazyLoopsGiveUpWhenTheBudgetHasEnded) {
    // Thousands of loops are open when the budget ends; none may walk to the end of the text.
    const std::string letters(2000000, 'a');
    const std::string characters = repeated("\xC4\x81", 1000000);
    const auto expectQuick = [](const char* pattern, const std::string& text) {
        const clock_t start = clock();
        EXPECT_EQ(Pattern(pattern).find(text).status, zelStatusRegExpMatchLimitError) << pattern;
        EXPECT_LT(clock() - start, 5 * CLOCKS_PER_SEC) << pattern;
    };
    for (const char* pattern : {"(?:[^y]*?[a])*[yz]", "(?:.*?[a])*[yz]", "(?:a*?[a])*[yz]",
                                "(?:\\C*?[a])*[yz]", "([a])(?:\\1*?[a])*[yz]"}) {
        expectQuick(pattern, letters);
    }
    for (const char* pattern : {"(?:\\pL*?\\pL)*[yz]", "(?:\\X*?\\pL)*[yz]",
                                "(?:\\x{101}*?\\x{101})*[yz]", "(?:\\x{101}*?\\pL)*[yz]"}) {
        expectQuick(pattern, characters);
    }
}

// ---- Bounds -------------------------------------------------------------------------------------

namespace {

const char* const kPatterns[] = {"a",
                                 "abc",
                                 ".",
                                 "..",
                                 ".*",
                                 ".*?x",
                                 "\\w+",
                                 "\\w+?",
                                 "\\W*",
                                 "\\W+?",
                                 "\\b",
                                 "\\B",
                                 "a\\b",
                                 "$",
                                 "\\Z",
                                 "\\z",
                                 "[a-z]+",
                                 "[^a]+",
                                 "[^a]+?",
                                 "[\\x{100}-\\x{200}q]+",
                                 "\\C",
                                 "\\C*",
                                 "\\C+?",
                                 "\\X",
                                 "\\X*",
                                 "\\X+?",
                                 "\\X*?x",
                                 "\\p{L}",
                                 "\\p{L}+",
                                 "\\p{L}+?",
                                 "\\p{L}*?x",
                                 "\\P{L}*",
                                 "\\P{L}*?x",
                                 "\\p{Greek}*",
                                 "\\x{3B1}",
                                 "\\x{3B1}*",
                                 "\\x{3B1}*?",
                                 "\\x{3B1}*?x",
                                 "\\x{3B1}{2}",
                                 "(?<=a)b",
                                 "(?<!ab)c",
                                 "(?<=..)",
                                 "(?<!.)",
                                 "(?=.)",
                                 "(?!.)",
                                 "(.)\\1",
                                 "(.)\\1*",
                                 "(.)\\1*?x",
                                 "a*?b",
                                 "\\w*?b",
                                 "(?:a|\\xC3)+",
                                 "(?>.)*",
                                 ".{3}",
                                 "\\W{2,3}?",
                                 "^.",
                                 "(?:.\\n)*",
                                 "\\w*a(?:)",
                                 "\xC3\xA9",
                                 "[\xC3\xA9q]*",
                                 "\\xE2",
                                 "(?:\\W*)*x"};

const char* const kSubjects[] = {
    "",
    "a",
    "ab",
    "abc",
    "aaa",
    "x",
    "\n",
    "a\n",
    "\xC3\xA9",
    "\xC3",
    "a\xC3",
    "\xE2\x82",
    "\xE2\x82\xAC",
    "a\xE2\x82\xAC",
    "\xF0\x9F\x98\x80",
    "\xF0\x9F\x98",
    "\xCE\xB1\xCE\xB1",
    "\xCE\xB1\xCE",
    "e\xCC\x81",
    "e\xCC",
    "\xFF",
    "\x80\x80",
    "\xFC\x84\x80\x80\x80",
    "\xC0\x80",
    "abcabcabcabcabcabcabcabcabcabcabcabcabc",
    "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3"};

}  // namespace

TEST(Bounds, NothingOutsideTheSubjectIsReadButTheOneByteBehindIt) {
    test::GuardedPages pages(4096);
    ASSERT_TRUE(pages.available());
    for (const char* pattern : kPatterns) {
        for (const char* options : {"", "g", "i", "gims"}) {
            for (int format = 0; format <= 1; ++format) {
                Pattern compiled(pattern, options, format);
                for (const char* subject : kSubjects) {
                    const int length = static_cast<int>(strlen(subject));
                    // Ends one readable byte in front of an inaccessible page.
                    Zel8u* atEnd = reinterpret_cast<Zel8u*>(pages.end()) - 1 - length;
                    Zel8u* atStart = reinterpret_cast<Zel8u*>(pages.begin());
                    memcpy(atStart, subject, static_cast<size_t>(length));
                    atStart[length] = 'x';
                    const Outcome first = compiled.find(atStart, length);
                    memcpy(atEnd, subject, static_cast<size_t>(length));
                    atEnd[length] = 'x';
                    const Outcome second = compiled.find(atEnd, length);
                    EXPECT_EQ(first.status, second.status) << pattern << " in " << subject;
                    EXPECT_EQ(first.spans, second.spans) << pattern << " in " << subject;
                }
            }
        }
    }
}

TEST(Bounds, OnlyBoundariesAndHintsDependOnTheByteBehindTheSubject) {
    for (const char* pattern : kPatterns) {
        const std::string text = pattern;
        if (text.find("\\b") != std::string::npos || text.find("\\B") != std::string::npos)
            continue;
        for (const char* subject : kSubjects) {
            std::string first = subject;
            std::string second = subject;
            const int length = static_cast<int>(first.size());
            first += '\x80';
            second += 'a';
            Pattern compiled(pattern, "g");
            const auto* firstText = reinterpret_cast<const Zel8u*>(first.data());
            const auto* secondText = reinterpret_cast<const Zel8u*>(second.data());
            EXPECT_EQ(compiled.find(firstText, length).spans,
                      compiled.find(secondText, length).spans)
                << pattern << " in " << subject;
        }
    }
}
