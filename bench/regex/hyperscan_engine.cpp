// Hyperscan reports every end of every match, not the matches of a backtracking search. It takes
// part where the two are the same: literals that cannot overlap, and the question whether a pattern
// occurs at all.

#include "regex/engine.h"

#if BENCH_HAS_HYPERSCAN

#include <hs.h>

namespace bench {
namespace {

struct FreeDatabase {
    void operator()(hs_database_t* database) const { hs_free_database(database); }
};
struct FreeScratch {
    void operator()(hs_scratch_t* scratch) const { hs_free_scratch(scratch); }
};
using Database = std::unique_ptr<hs_database_t, FreeDatabase>;
using Scratch = std::unique_ptr<hs_scratch_t, FreeScratch>;

unsigned flagsOf(const Query& query) {
    unsigned flags = 0;
    if (query.ignoreCase) flags |= HS_FLAG_CASELESS;
    if (query.multiLine) flags |= HS_FLAG_MULTILINE;
    if (query.utf8) flags |= HS_FLAG_UTF8;
    return flags;
}

Database compileOne(const Query& query, unsigned flags) {
    hs_database_t* database = nullptr;
    hs_compile_error_t* error = nullptr;
    if (hs_compile(query.pattern, flagsOf(query) | flags, HS_MODE_BLOCK, nullptr, &database,
                   &error) != HS_SUCCESS) {
        hs_free_compile_error(error);
        return nullptr;
    }
    return Database(database);
}

Scratch scratchFor(const hs_database_t* database) {
    hs_scratch_t* scratch = nullptr;
    if (database != nullptr) hs_alloc_scratch(database, &scratch);
    return Scratch(scratch);
}

int addMatch(unsigned, unsigned long long from, unsigned long long to, unsigned, void* context) {
    Tally& tally = *static_cast<Tally*>(context);
    ++tally.matches;
    tally.add(static_cast<std::int64_t>(from), static_cast<std::int64_t>(to - from));
    return 0;
}

int countMatch(unsigned, unsigned long long, unsigned long long, unsigned, void* context) {
    ++*static_cast<std::int64_t*>(context);
    return 0;
}

class HyperscanMatcher : public Matcher {
public:
    explicit HyperscanMatcher(const Query& query)
        : all_(compileOne(query, HS_FLAG_SOM_LEFTMOST)), scratch_(scratchFor(all_.get())) {}

    bool ok() const { return scratch_ != nullptr; }

    Tally findAll(std::string_view text) override {
        Tally tally;
        hs_scan(all_.get(), text.data(), static_cast<unsigned>(text.size()), 0, scratch_.get(),
                addMatch, &tally);
        return tally;
    }

    Tally findFirst(const std::vector<std::string_view>& subjects) override {
        Tally tally;
        for (const std::string_view subject : subjects)
            hs_scan(all_.get(), subject.data(), static_cast<unsigned>(subject.size()), 0,
                    scratch_.get(), addMatch, &tally);
        return tally;
    }

private:
    Database all_;
    Scratch scratch_;
};

class HyperscanEngine : public Engine {
public:
    const char* name() const override { return "Hyperscan"; }
    std::unique_ptr<Matcher> compile(const Query& query) const override {
        auto matcher = std::make_unique<HyperscanMatcher>(query);
        if (!matcher->ok()) return nullptr;
        return matcher;
    }
    bool compileOnly(const Query& query) const override { return compileOne(query, 0) != nullptr; }
};

class HyperscanSet : public SetMatcher {
public:
    explicit HyperscanSet(const std::vector<Query>& queries) {
        std::vector<const char*> patterns;
        std::vector<unsigned> flags;
        std::vector<unsigned> ids;
        for (const Query& query : queries) {
            ids.push_back(static_cast<unsigned>(patterns.size()));
            patterns.push_back(query.pattern);
            flags.push_back(flagsOf(query) | HS_FLAG_SINGLEMATCH);
        }
        hs_database_t* database = nullptr;
        hs_compile_error_t* error = nullptr;
        if (hs_compile_multi(patterns.data(), flags.data(), ids.data(),
                             static_cast<unsigned>(patterns.size()), HS_MODE_BLOCK, nullptr,
                             &database, &error) != HS_SUCCESS)
            hs_free_compile_error(error);
        database_.reset(database);
        scratch_ = scratchFor(database);
    }
    bool ok() const { return scratch_ != nullptr; }

    std::int64_t countHits(const std::vector<std::string_view>& lines) override {
        std::int64_t hits = 0;
        for (const std::string_view line : lines)
            hs_scan(database_.get(), line.data(), static_cast<unsigned>(line.size()), 0,
                    scratch_.get(), countMatch, &hits);
        return hits;
    }

private:
    Database database_;
    Scratch scratch_;
};

}  // namespace

void addHyperscan(EngineList& engines) {
    engines.push_back(std::make_unique<HyperscanEngine>());
}

std::unique_ptr<SetMatcher> hyperscanSet(const std::vector<Query>& patterns) {
    auto set = std::make_unique<HyperscanSet>(patterns);
    if (!set->ok()) return nullptr;
    return set;
}

}  // namespace bench

#else

namespace bench {

void addHyperscan(EngineList&) {}
std::unique_ptr<SetMatcher> hyperscanSet(const std::vector<Query>&) {
    return nullptr;
}

}  // namespace bench

#endif
