// Compilation, replacement and pattern sets.

#include <omp.h>
#include <zelchmx.h>

#include <cstring>
#include <iterator>

#include "regex/rows.h"

namespace bench {
namespace {

struct Compile {
    const char* variant;
    Query query;
};
constexpr Compile kCompile[] = {
    {"one literal", {"catalog descriptor"}},
    {"\\w+", {"\\w+"}},
    {"date", {"\\d{4}-\\d{2}-\\d{2}"}},
    {"e-mail", {"[\\w.+-]+@[\\w-]+\\.[\\w.-]+"}},
    {"URL with captures", {"^(https?)://([^/:]+)(:\\d+)?(/[^?#]*)?"}},
    {"log line", {"^(\\S+) (\\S+) ([A-Z]+) \\[([^\\]]+)\\] (.*)$"}},
    {"12 literals",
     {"socket|signal|thread|process|memory|buffer|kernel|device|message|permission|network|timer"}},
    {"nested groups", {"((?:[a-z]+-)*([a-z]+))(?:\\s+(\\d+(?:\\.\\d+)*))?"}},
    {"look-around", {"(?<=\\()\\w+(?=\\))"}},
};

struct Replace {
    const char* variant;
    const char* text;
    Query query;
    const char* replacement;
};
constexpr Replace kReplace[] = {
    {"literal", "prose", {"file"}, "document"},
    {"white space", "prose", {"\\s+"}, " "},
    {"key=value", "log", {"(\\w+)=(\\w+)", false, false, false, 2}, "$2=$1"},
    {"e-mail", "log", {"[\\w.+-]+@[\\w-]+\\.[\\w.-]+"}, "someone"},
};

// Patterns as a set is made of: half literals, the others with something around a literal.
std::vector<std::string> setPatterns(std::size_t count) {
    static const char* const kWords[] = {
        "socket",  "signal",  "thread",  "process", "memory",   "buffer",  "kernel",   "device",
        "message", "permit",  "network", "timer",   "catalog",  "locale",  "terminal", "password",
        "symbol",  "library", "version", "pointer", "argument", "address", "integer",  "function",
        "stream",  "mutex",   "barrier", "segment", "resource", "limit",   "clock",    "mount"};
    std::vector<std::string> patterns;
    for (std::size_t i = 0; patterns.size() < count; ++i) {
        const std::string word = kWords[i % std::size(kWords)];
        switch (i / std::size(kWords) * 8 + i % 8) {
            case 0:
                patterns.push_back(word + "=\\d+");
                break;
            case 2:
                patterns.push_back("\\b" + word + "s?\\b");
                break;
            case 4:
                patterns.push_back("[a-z]+_" + word);
                break;
            case 6:
                patterns.push_back(word + "\\s+(?:is|was|has)\\b");
                break;
            case 8:
                patterns.push_back("https?://\\S*" + word);
                break;
            case 10:
                patterns.push_back(word + "\\[[^\\]]+\\]");
                break;
            case 12:
                patterns.push_back("\"[^\"]*" + word + "[^\"]*\"");
                break;
            case 14:
                patterns.push_back(word + "(?: \\w+){1,3} " + kWords[(i + 5) % std::size(kWords)]);
                break;
            default:
                patterns.push_back(i < std::size(kWords) ? word : "no " + word);
                break;
        }
    }
    return patterns;
}

// A large text searched by the set in one call, with teams of different sizes.
class LargeSetSearch {
public:
    explicit LargeSetSearch(const std::vector<std::string>& patterns)
        : finds_(patterns.size()), records_(patterns.size(), std::vector<ZelRegExpFind>(100000)) {
        zelsRegExpMultiInitAlloc(&set_, static_cast<int>(patterns.size()));
        for (std::size_t i = 0; i < patterns.size(); ++i) {
            ZelRegExpState* state = nullptr;
            int errorOffset = 0;
            zelsRegExpInitAlloc(patterns[i].c_str(), "g", &state, &errorOffset);
            zelsRegExpSetFormat(0, state);
            zelsRegExpSetMatchLimit(INT32_MAX, state);
            zelsRegExpMultiAdd(state, static_cast<Zel32u>(i + 1), set_);
            states_.push_back(state);
            finds_[i].pFind = records_[i].data();
        }
    }
    ~LargeSetSearch() {
        for (ZelRegExpState* const state : states_) zelsRegExpFree(state);
        zelsRegExpMultiFree(set_);
    }

    std::int64_t countMatches(std::string_view text, int threads) {
        omp_set_num_threads(threads);
        for (std::size_t i = 0; i < finds_.size(); ++i)
            finds_[i].numFind = static_cast<int>(records_[i].size());
        zelsRegExpMultiFind_8u(reinterpret_cast<const Zel8u*>(text.data()),
                               static_cast<int>(text.size()), finds_.data(), set_);
        omp_set_num_threads(omp_get_num_procs());
        std::int64_t matches = 0;
        for (const ZelRegExpMultiFind& find : finds_)
            matches += find.status == zelStatusOk ? find.numFind : find.status;
        return matches;
    }

private:
    ZelRegExpMultiState* set_ = nullptr;
    std::vector<ZelRegExpState*> states_;
    std::vector<ZelRegExpMultiFind> finds_;
    std::vector<std::vector<ZelRegExpFind>> records_;
};

void lineSetRows(Suite& suite, Corpus& corpus) {
    struct Size {
        std::size_t patterns;
        double must;
    };
    for (const Size& size : {Size{4, 0.9}, Size{16, 1.0}, Size{64, 1.5}}) {
        const std::vector<std::string_view> lines = corpus.lines("lines");
        Row row{.family = "pattern sets",
                .variant = std::to_string(size.patterns) + " patterns",
                .size = "180-byte lines",
                .bytes = 180.0,
                .mustRatio = size.must,
                .mustPeer = "PCRE2 JIT, one by one"};
        if (!suite.wants(row)) continue;
        const std::vector<std::string> patterns = setPatterns(size.patterns);
        std::vector<Query> queries;
        for (const std::string& pattern : patterns) queries.push_back({pattern.c_str()});
        struct Contestant {
            const char* name;
            Kind kind;
            std::unique_ptr<SetMatcher> set;
        };
        Contestant contestants[] = {
            {"PCRE2 JIT, one by one", Kind::Package, pcre2JitSet(queries)},
            {"RE2::Set", Kind::Package, re2Set(queries)},
            {"Hyperscan", Kind::Package, hyperscanSet(queries)},
            {"zelchmx", Kind::Library, librarySet(queries)},
        };
        std::vector<Suite::Runner> runners;
        for (const Contestant& contestant : contestants) {
            if (contestant.set == nullptr) continue;
            runners.push_back(
                {contestant.name, contestant.kind,
                 [set = contestant.set.get(), &lines] { return set->countHits(lines); }});
        }
        suite.run(row, runners, lines.size());
    }
}

// A team of two searches the first half of the slots and the second. The patterns are as many as
// there are words, so that both halves are the same mixture.
void threadRows(Suite& suite, Corpus& corpus) {
    const std::string_view text = corpus.text("prose");
    Row row{.family = "pattern sets",
            .variant = "32 patterns, find-all, 2 threads",
            .size = "large text",
            .bytes = static_cast<double>(text.size()),
            .mustRatio = 1.8,
            .mustPeer = "zelchmx, 1 thread",
            .wallTime = true};
    if (!suite.wants(row) || omp_get_num_procs() < 2) return;
    LargeSetSearch search(setPatterns(32));
    suite.run(row, {{"zelchmx, 1 thread", Kind::Loop,
                     [&search, text] { return search.countMatches(text, 1); }},
                    {"zelchmx", Kind::Library,
                     [&search, text] { return search.countMatches(text, 2); }}});
}

}  // namespace

void compileRows(Suite& suite) {
    const EngineList engines = allEngines();
    for (const Compile& compile : kCompile) {
        Row row{.family = "compile",
                .variant = compile.variant,
                .size = "",
                .mustRatio = 2,
                .mustPeer = "PCRE2"};
        if (!suite.wants(row)) continue;
        std::vector<Suite::Runner> runners;
        for (const auto& engine : engines) {
            if (!engine->compileOnly(compile.query)) continue;
            runners.push_back({engine->name(), engine->kind(), [&engine, &compile] {
                                   return engine->compileOnly(compile.query) ? 1 : 0;
                               }});
        }
        suite.run(row, runners);
    }
}

void replaceRows(Suite& suite, Corpus& corpus) {
    const EngineList engines = allEngines();
    for (const Replace& replace : kReplace) {
        const std::string_view text = corpus.text(replace.text);
        Row row{.family = "replace-all",
                .variant = replace.variant,
                .size = replace.text,
                .bytes = static_cast<double>(text.size()),
                .mustRatio = 1.2};
        if (!suite.wants(row)) continue;
        std::vector<std::unique_ptr<Matcher>> matchers;
        std::vector<Suite::Runner> runners;
        for (const auto& engine : engines) {
            if (std::strcmp(engine->name(), "std::regex") == 0) continue;
            matchers.push_back(engine->compile(replace.query));
            if (matchers.back() == nullptr || !matchers.back()->canReplace()) continue;
            runners.push_back(
                {engine->name(), engine->kind(), [matcher = matchers.back().get(), text, &replace] {
                     return matcher->replaceAll(text, replace.replacement);
                 }});
        }
        suite.run(row, runners);
    }
}

void setRows(Suite& suite, Corpus& corpus) {
    lineSetRows(suite, corpus);
    threadRows(suite, corpus);
}

}  // namespace bench
