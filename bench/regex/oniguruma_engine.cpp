#include "regex/engine.h"

#if BENCH_HAS_ONIGURUMA

#include <oniguruma.h>

#include <cstring>

namespace bench {
namespace {

const OnigUChar* units(const char* text) {
    return reinterpret_cast<const OnigUChar*>(text);
}

regex_t* compileRegex(const Query& query) {
    static const bool ready = [] {
        OnigEncoding encodings[] = {ONIG_ENCODING_ASCII, ONIG_ENCODING_UTF8};
        return onig_initialize(encodings, 2) == ONIG_NORMAL;
    }();
    // Named for Perl, and in its syntax ^ stands at every line; what differs is the end of lines.
    OnigOptionType options = ONIG_OPTION_CAPTURE_GROUP;
    if (query.ignoreCase) options |= ONIG_OPTION_IGNORECASE;
    if (query.multiLine) options |= ONIG_OPTION_NEGATE_SINGLELINE;
    if (query.utf8)
        options |=
            ONIG_OPTION_WORD_IS_ASCII | ONIG_OPTION_DIGIT_IS_ASCII | ONIG_OPTION_SPACE_IS_ASCII;
    regex_t* regex = nullptr;
    OnigErrorInfo info;
    const int result = onig_new(
        &regex, units(query.pattern), units(query.pattern) + std::strlen(query.pattern), options,
        query.utf8 ? ONIG_ENCODING_UTF8 : ONIG_ENCODING_ASCII, ONIG_SYNTAX_PERL, &info);
    return ready && result == ONIG_NORMAL ? regex : nullptr;
}

class OnigurumaMatcher : public Matcher {
public:
    OnigurumaMatcher(const Query& query, regex_t* regex)
        : groups_(query.groups), regex_(regex), region_(onig_region_new()) {}
    ~OnigurumaMatcher() override {
        onig_region_free(region_, 1);
        onig_free(regex_);
    }

    Tally findAll(std::string_view text) override {
        Tally tally;
        for (int at = 0; search(text, at); at = region_->end[0]) report(tally);
        return tally;
    }

    Tally findFirst(const std::vector<std::string_view>& subjects) override {
        Tally tally;
        for (const std::string_view subject : subjects) {
            if (search(subject, 0)) report(tally);
        }
        return tally;
    }

private:
    bool search(std::string_view text, int from) {
        const OnigUChar* const start = units(text.data());
        const OnigUChar* const end = start + text.size();
        return onig_search(regex_, start, end, start + from, end, region_, ONIG_OPTION_NONE) >= 0;
    }

    void report(Tally& tally) const {
        ++tally.matches;
        for (int group = groups_ == 0 ? 0 : 1; group <= groups_; ++group) {
            const int start = region_->beg[group];
            if (start != ONIG_REGION_NOTPOS) tally.add(start, region_->end[group] - start);
        }
    }

    int groups_;
    regex_t* regex_;
    OnigRegion* region_;
};

class OnigurumaEngine : public Engine {
public:
    const char* name() const override { return "Oniguruma"; }
    std::unique_ptr<Matcher> compile(const Query& query) const override {
        regex_t* const regex = compileRegex(query);
        if (regex == nullptr) return nullptr;
        return std::make_unique<OnigurumaMatcher>(query, regex);
    }
    bool compileOnly(const Query& query) const override {
        regex_t* const regex = compileRegex(query);
        if (regex == nullptr) return false;
        onig_free(regex);
        return true;
    }
};

}  // namespace

void addOniguruma(EngineList& engines) {
    engines.push_back(std::make_unique<OnigurumaEngine>());
}

}  // namespace bench

#else

namespace bench {

void addOniguruma(EngineList&) {}

}  // namespace bench

#endif
