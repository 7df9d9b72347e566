// Find-all over real text, and the first match in short subjects. The patterns mean the same to all
// engines: the byte texts are ASCII, \w and \d have their ASCII meaning, no text has a vertical
// tab, nothing matches empty.

#include <cstring>
#include <iterator>

#include "regex/rows.h"

namespace bench {
namespace {

// The slow engine has its say on short subjects, compilation and the small text.
bool isSlow(const Engine& engine) {
    return std::strcmp(engine.name(), "std::regex") == 0;
}

bool isHyperscan(const Engine& engine) {
    return std::strcmp(engine.name(), "Hyperscan") == 0;
}

enum class Occurs { No, Also };  // whether Hyperscan's matches are those of the others

struct FindAll {
    const char* family;
    const char* variant;
    const char* text;
    Query query;
    double must;
    Occurs hyperscan = Occurs::No;
};

constexpr FindAll kFindAll[] = {
    {"one literal", "absent", "prose", {"Zanzibarine"}, 1.0, Occurs::Also},
    {"one literal", "rare", "prose", {"catalog descriptor"}, 1.0, Occurs::Also},
    {"one literal", "frequent", "prose", {"the"}, 1.5, Occurs::Also},
    {"one literal", "ignoring case", "prose", {"function", true}, 1.5, Occurs::Also},

    {"alternation of literals", "4", "prose", {"error|warning|failure|signal"}, 4, Occurs::Also},
    {"alternation of literals",
     "12",
     "prose",
     {"socket|signal|thread|process|memory|buffer|kernel|device|message|permission|network|timer"},
     4,
     Occurs::Also},

    {"class run then literal", "[a-z]+ing", "prose", {"[a-z]+ing"}, 3},
    {"class run then literal", "\\w+ly\\b", "prose", {"\\w+ly\\b"}, 3},

    {"plain runs", "\\w+", "prose", {"\\w+"}, 3},
    {"plain runs", "\\d+", "log", {"\\d+"}, 3},
    {"plain runs", "\\s+", "prose", {"\\s+"}, 2},

    {"class sequences", "two capitalised words", "prose", {"[A-Z][a-z]+ [A-Z][a-z]+"}, 1.5},
    {"class sequences", "versions", "packages", {"\\d+\\.\\d+\\.\\d+"}, 1.5},
    {"class sequences", "hexadecimal", "log", {"0x[0-9a-f]+"}, 1.5},

    {"fixed shapes", "date", "prose", {"\\d{4}-\\d{2}-\\d{2}"}, 1.5},
    {"fixed shapes", "date, every line", "log", {"\\d{4}-\\d{2}-\\d{2}"}, 1.5},
    {"fixed shapes", "IPv4", "log", {"\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}"}, 2},

    {"lines", "anchored", "packages", {"^Package: .*$", false, true}, 1.0},
    {"lines", "key: value", "packages", {"^([\\w-]+): (.*)$", false, true, false, 2}, 1.2},
    {"lines",
     "log line",
     "log",
     {"^(\\S+ \\S+) ([A-Z]+) \\[([^\\]]+)\\] (.*)$", false, true, false, 4},
     1.2},

    {"whole lines around a word", "prose", "prose", {".*descriptor.*"}, 2},
    {"whole lines around a word", "log", "log", {".*ERROR.*"}, 2},

    {"e-mail, key=value, URL", "e-mail", "log", {"[\\w.+-]+@[\\w-]+\\.[\\w.-]+"}, 3},
    {"e-mail, key=value, URL", "key=value", "log", {"(\\w+)=(\\w+)", false, false, false, 2}, 2},
    {"e-mail, key=value, URL", "URL", "log", {"https?://[^\\s\"<>]+"}, 1.0},

    {"quoted strings", "lazy", "log", {"\".*?\""}, 2},
    {"quoted strings", "class", "log", {"\"[^\"\\n]*\""}, 2},

    {"back-references", "doubled letter", "prose", {"(\\w)\\1", false, false, false, 1}, 1.5},
    {"back-references", "doubled word", "prose", {"\\b(\\w+) \\1\\b", false, false, false, 1}, 1.5},

    {"look-around", "ahead", "code", {"\\w+(?=\\()"}, 1.5},
    {"look-around", "behind", "log", {"(?<==)\\w+"}, 5},
    {"look-around", "not ahead", "prose", {"error(?! message)"}, 1.0},
    {"look-around", "not behind", "prose", {"(?<!un)signed"}, 1.0},

    {"nested groups", "captured", "prose", {"(([a-z]+)-([a-z]+))", false, false, false, 3}, 1.0},
    {"nested groups", "repeated", "code", {"(?:\\w+::)+\\w+"}, 1.0},

    {"hopeless", "trailing literal", "prose", {"[a-z]+\\s+[a-z]+@@@"}, 12},
    {"hopeless", "inner literal", "prose", {"\\w+\\s+ZZZ\\w+"}, 3},

    {"nested class repeats", "that fail", "words", {"(?:[a-z]+-?){2}[0-9]"}, 0.3},

    {"Unicode", "literal", "utf8", {"система", false, false, true}, 1.0, Occurs::Also},
    {"Unicode", "class", "utf8", {"[а-яё]+", false, false, true}, 1.0},
    {"Unicode", "\\p{Lu}\\p{Ll}+", "utf8", {"\\p{Lu}\\p{Ll}+", false, false, true}, 2},
    {"Unicode", "dot", "utf8", {".{8}", false, false, true}, 2},
};

// The same searches where std::regex can follow.
constexpr FindAll kFindAllSmall[] = {
    {"small text", "one literal", "prose", {"signal"}, 0, Occurs::Also},
    {"small text", "\\w+", "prose", {"\\w+"}, 0},
    {"small text", "e-mail", "log", {"[\\w.+-]+@[\\w-]+\\.[\\w.-]+"}, 0},
};
constexpr std::size_t kSmallText = 16384;

void runFindAll(Suite& suite, const FindAll& find, std::string_view text, const char* size,
                const EngineList& engines, bool slowToo) {
    Row row{.family = find.family,
            .variant = find.variant,
            .size = size,
            .bytes = static_cast<double>(text.size()),
            .mustRatio = find.must};
    if (!suite.wants(row)) return;
    std::vector<std::unique_ptr<Matcher>> matchers;
    std::vector<Suite::Runner> runners;
    for (const auto& engine : engines) {
        if (isSlow(*engine) && !slowToo) continue;
        if (isHyperscan(*engine) && find.hyperscan == Occurs::No) continue;
        matchers.push_back(engine->compile(find.query));
        if (matchers.back() == nullptr) continue;
        runners.push_back({engine->name(), engine->kind(), [matcher = matchers.back().get(), text] {
                               return matcher->findAll(text).digest();
                           }});
    }
    suite.run(row, runners);
}

struct FindFirst {
    const char* family;
    const char* variant;
    Query query;
    double must;
    Occurs hyperscan;
    std::vector<std::string_view> subjects;  // half of them should match
};

std::vector<FindFirst> findFirst() {
    return {
        {"validate",
         "e-mail",
         {"^[\\w.+-]+@[\\w-]+\\.[\\w.-]+$"},
         0.6,
         Occurs::Also,
         {"ada.lovelace@example.org", "no address here", "j+lists@mail.example.com", "a@b", "@b.c",
          "first.last@sub-domain.example.net", "x_y-z@host.example", "two@signs@example.org"}},
        {"validate",
         "date",
         {"^\\d{4}-\\d{2}-\\d{2}$"},
         0.6,
         Occurs::Also,
         {"2026-11-21", "2026-1-21", "1999-12-31", "31.12.1999", "2000-02-29", "20000229",
          "1970-01-01", "1970-01-01T00:00"}},
        {"validate",
         "IPv4",
         {"^\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}$"},
         0.6,
         Occurs::Also,
         {"192.168.0.1", "192.168.0", "10.0.0.255", "10.0.0.x", "8.8.8.8", "1234.5.6.7",
          "127.0.0.1", "::1"}},
        {"validate",
         "UUID",
         {"^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$"},
         0.6,
         Occurs::Also,
         {"123e4567-e89b-12d3-a456-426614174000", "123e4567-e89b-12d3-a456-42661417400",
          "00000000-0000-0000-0000-000000000000", "not a uuid at all",
          "f81d4fae-7dec-11d0-a765-00a0c91e6bf6", "F81D4FAE-7DEC-11D0-A765-00A0C91E6BF6",
          "6ba7b810-9dad-11d1-80b4-00c04fd430c8", "6ba7b8109dad11d180b400c04fd430c8"}},
        {"validate",
         "number",
         {"^[+-]?\\d+(?:\\.\\d+)?(?:[eE][+-]?\\d+)?$"},
         0.6,
         Occurs::Also,
         {"42", "forty-two", "-3.14159", "3.", "6.022e23", "6.022e", "+1e-9", "1,000"}},
        {"captures",
         "URL",
         {"^(https?)://([^/:]+)(:\\d+)?(/[^?#]*)?", false, false, false, 4},
         0.7,
         Occurs::No,
         {"https://www.example.org/a/path/of/some/length.html?query=1", "ftp://example.org/",
          "http://localhost:8080/index.html", "mailto:ada@example.org", "https://example.com",
          "just words", "http://10.0.0.1:80/", "https:/broken"}},
        {"captures",
         "key=value",
         {"^\\s*(\\w+)\\s*=\\s*(.*?)\\s*$", false, false, false, 2},
         0.7,
         Occurs::No,
         {"name = value", "# comment", "timeout=30", "no equals sign", "  path = /usr/local/bin  ",
          "[section]", "message = several words in a row", "= no key"}},
        {"captures",
         "log line",
         {"^(\\S+) (\\S+) ([A-Z]+) \\[([^\\]]+)\\] (.*)$", false, false, false, 5},
         0.7,
         Occurs::No,
         {"2026-11-21 06:14:05,123 INFO [worker-7] request served in 12 ms", "continued line",
          "2026-11-21 06:14:06,001 ERROR [db] connection reset by peer", "2026-11-21 nothing more",
          "2026-11-21 06:14:07,500 WARN [cache-2] 91 percent full", "    at some.stack.frame",
          "2026-11-21 06:14:08,042 DEBUG [http] GET /index.html 200", ""}},
    };
}

}  // namespace

void findAllRows(Suite& suite, Corpus& corpus) {
    const EngineList engines = allEngines();
    for (const FindAll& find : kFindAll)
        runFindAll(suite, find, corpus.text(find.text), "find-all", engines, false);
    for (const FindAll& find : kFindAllSmall)
        runFindAll(suite, find, corpus.text(find.text).substr(0, kSmallText), "16 KiB", engines,
                   true);
}

void findFirstRows(Suite& suite) {
    const EngineList engines = allEngines();
    for (const FindFirst& find : findFirst()) {
        Row row{.family = find.family,
                .variant = find.variant,
                .size = "first match",
                .mustRatio = find.must};
        if (!suite.wants(row)) continue;
        std::vector<std::unique_ptr<Matcher>> matchers;
        std::vector<Suite::Runner> runners;
        for (const auto& engine : engines) {
            if (isHyperscan(*engine) && find.hyperscan == Occurs::No) continue;
            matchers.push_back(engine->compile(find.query));
            if (matchers.back() == nullptr) continue;
            runners.push_back({engine->name(), engine->kind(),
                               [matcher = matchers.back().get(), &subjects = find.subjects] {
                                   return matcher->findFirst(subjects).digest();
                               }});
        }
        suite.run(row, runners, find.subjects.size());
    }
}

}  // namespace bench
