#include "regex/engine.h"

#if BENCH_HAS_RE2

#include <re2/re2.h>
#include <re2/set.h>

namespace bench {
namespace {

RE2::Options optionsOf(const Query& query) {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_case_sensitive(!query.ignoreCase);
    options.set_encoding(query.utf8 ? RE2::Options::EncodingUTF8 : RE2::Options::EncodingLatin1);
    options.set_max_mem(int64_t{256} << 20);
    return options;
}

std::string patternOf(const Query& query) {
    return (query.multiLine ? "(?m)" : "") + std::string(query.pattern);
}

class Re2Matcher : public Matcher {
public:
    explicit Re2Matcher(const Query& query)
        : groups_(query.groups), re_(patternOf(query), optionsOf(query)) {}

    bool ok() const { return re_.ok(); }

    Tally findAll(std::string_view text) override {
        const re2::StringPiece piece(text.data(), text.size());
        Tally tally;
        for (std::size_t at = 0; search(piece, at);
             at = static_cast<std::size_t>(found_[0].data() - text.data()) + found_[0].size())
            report(tally, text);
        return tally;
    }

    Tally findFirst(const std::vector<std::string_view>& subjects) override {
        Tally tally;
        for (const std::string_view subject : subjects) {
            if (search({subject.data(), subject.size()}, 0)) report(tally, subject);
        }
        return tally;
    }

    bool canReplace() const override { return true; }
    std::int64_t replaceAll(std::string_view text, const char* replacement) override {
        std::string rewrite;
        for (const char* c = replacement; *c != 0; ++c) rewrite += *c == '$' ? '\\' : *c;
        std::string result(text);
        RE2::GlobalReplace(&result, re_, rewrite);
        return textDigest(result);
    }

private:
    bool search(re2::StringPiece text, std::size_t from) {
        return re_.Match(text, from, text.size(), RE2::UNANCHORED, found_, groups_ + 1);
    }

    void report(Tally& tally, std::string_view text) const {
        ++tally.matches;
        for (int group = groups_ == 0 ? 0 : 1; group <= groups_; ++group) {
            if (found_[group].data() == nullptr) continue;
            tally.add(found_[group].data() - text.data(),
                      static_cast<std::int64_t>(found_[group].size()));
        }
    }

    int groups_;
    RE2 re_;
    re2::StringPiece found_[16];
};

class Re2Engine : public Engine {
public:
    const char* name() const override { return "RE2"; }
    std::unique_ptr<Matcher> compile(const Query& query) const override {
        auto matcher = std::make_unique<Re2Matcher>(query);
        if (!matcher->ok()) return nullptr;
        return matcher;
    }
    bool compileOnly(const Query& query) const override {
        return RE2(patternOf(query), optionsOf(query)).ok();
    }
};

class Re2SetMatcher : public SetMatcher {
public:
    explicit Re2SetMatcher(const std::vector<Query>& queries)
        : set_(optionsOf(queries.front()), RE2::UNANCHORED) {
        for (const Query& query : queries) set_.Add(patternOf(query), nullptr);
        set_.Compile();
    }
    std::int64_t countHits(const std::vector<std::string_view>& lines) override {
        std::int64_t hits = 0;
        std::vector<int> which;
        for (const std::string_view line : lines) {
            if (set_.Match({line.data(), line.size()}, &which))
                hits += static_cast<std::int64_t>(which.size());
        }
        return hits;
    }

private:
    RE2::Set set_;
};

}  // namespace

void addRe2(EngineList& engines) {
    engines.push_back(std::make_unique<Re2Engine>());
}

std::unique_ptr<SetMatcher> re2Set(const std::vector<Query>& patterns) {
    return std::make_unique<Re2SetMatcher>(patterns);
}

}  // namespace bench

#else

namespace bench {

void addRe2(EngineList&) {}
std::unique_ptr<SetMatcher> re2Set(const std::vector<Query>&) {
    return nullptr;
}

}  // namespace bench

#endif
