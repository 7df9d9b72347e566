// PCRE2, interpreted and compiled to machine code. The texts are known to be well-formed, so its
// check of every subject is off, and the JIT is entered by its fast path.

#include "regex/engine.h"

#if BENCH_HAS_PCRE2

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace bench {
namespace {

PCRE2_SPTR units(const char* text) {
    return reinterpret_cast<PCRE2_SPTR>(text);
}

struct FreeCode {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
};
using Code = std::unique_ptr<pcre2_code, FreeCode>;

Code compileCode(const Query& query, bool jit) {
    std::uint32_t options = 0;
    if (query.ignoreCase) options |= PCRE2_CASELESS;
    if (query.multiLine) options |= PCRE2_MULTILINE;
    if (query.utf8) options |= PCRE2_UTF;
    int error = 0;
    PCRE2_SIZE offset = 0;
    Code code(pcre2_compile(units(query.pattern), PCRE2_ZERO_TERMINATED, options, &error, &offset,
                            nullptr));
    if (code != nullptr && jit && pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE) != 0)
        return nullptr;
    return code;
}

class Pcre2Matcher : public Matcher {
public:
    Pcre2Matcher(const Query& query, bool jit, Code code)
        : groups_(query.groups),
          jit_(jit),
          code_(std::move(code)),
          data_(pcre2_match_data_create_from_pattern(code_.get(), nullptr)),
          context_(pcre2_match_context_create(nullptr)),
          ovector_(pcre2_get_ovector_pointer(data_)) {
        // The limits exist to stop a search; here every contestant is to finish.
        pcre2_set_match_limit(context_, UINT32_MAX);
        pcre2_set_depth_limit(context_, UINT32_MAX);
    }
    ~Pcre2Matcher() override {
        pcre2_match_context_free(context_);
        pcre2_match_data_free(data_);
    }

    Tally findAll(std::string_view text) override {
        Tally tally;
        for (std::size_t at = 0; search(text, at); at = ovector_[1]) report(tally);
        return tally;
    }

    Tally findFirst(const std::vector<std::string_view>& subjects) override {
        Tally tally;
        for (const std::string_view subject : subjects) {
            if (search(subject, 0)) report(tally);
        }
        return tally;
    }

    bool canReplace() const override { return true; }
    std::int64_t replaceAll(std::string_view text, const char* replacement) override {
        if (output_.empty()) output_.resize(text.size() * 2 + 4096);
        PCRE2_SIZE length = output_.size();
        pcre2_substitute(code_.get(), units(text.data()), text.size(), 0,
                         PCRE2_SUBSTITUTE_GLOBAL | PCRE2_NO_UTF_CHECK |
                             (jit_ ? 0u : std::uint32_t{PCRE2_NO_JIT}),
                         data_, context_, units(replacement), PCRE2_ZERO_TERMINATED,
                         reinterpret_cast<PCRE2_UCHAR*>(output_.data()), &length);
        return textDigest({output_.data(), length});
    }

    bool search(std::string_view text, std::size_t from) {
        const int result = jit_ ? pcre2_jit_match(code_.get(), units(text.data()), text.size(),
                                                  from, 0, data_, context_)
                                : pcre2_match(code_.get(), units(text.data()), text.size(), from,
                                              PCRE2_NO_UTF_CHECK, data_, context_);
        return result > 0;
    }

private:
    void report(Tally& tally) const {
        ++tally.matches;
        for (int group = groups_ == 0 ? 0 : 1; group <= groups_; ++group) {
            const PCRE2_SIZE start = ovector_[2 * group];
            if (start == PCRE2_UNSET) continue;
            tally.add(static_cast<std::int64_t>(start),
                      static_cast<std::int64_t>(ovector_[2 * group + 1] - start));
        }
    }

    int groups_;
    bool jit_;
    Code code_;
    pcre2_match_data* data_;
    pcre2_match_context* context_;
    PCRE2_SIZE* ovector_;
    std::string output_;
};

class Pcre2Engine : public Engine {
public:
    explicit Pcre2Engine(bool jit) : jit_(jit) {}
    const char* name() const override { return jit_ ? "PCRE2 JIT" : "PCRE2"; }

    std::unique_ptr<Matcher> compile(const Query& query) const override {
        Code code = compileCode(query, jit_);
        if (code == nullptr) return nullptr;
        return std::make_unique<Pcre2Matcher>(query, jit_, std::move(code));
    }
    bool compileOnly(const Query& query) const override {
        return compileCode(query, jit_) != nullptr;
    }

private:
    bool jit_;
};

class Pcre2Set : public SetMatcher {
public:
    explicit Pcre2Set(const std::vector<Query>& queries) {
        for (const Query& query : queries)
            matchers_.push_back(
                std::make_unique<Pcre2Matcher>(query, true, compileCode(query, true)));
    }
    std::int64_t countHits(const std::vector<std::string_view>& lines) override {
        std::int64_t hits = 0;
        for (const std::string_view line : lines) {
            for (const auto& matcher : matchers_) hits += matcher->search(line, 0);
        }
        return hits;
    }

private:
    std::vector<std::unique_ptr<Pcre2Matcher>> matchers_;
};

}  // namespace

void addPcre2(EngineList& engines) {
    engines.push_back(std::make_unique<Pcre2Engine>(false));
    engines.push_back(std::make_unique<Pcre2Engine>(true));
}

std::unique_ptr<SetMatcher> pcre2JitSet(const std::vector<Query>& patterns) {
    return std::make_unique<Pcre2Set>(patterns);
}

}  // namespace bench

#else

namespace bench {

void addPcre2(EngineList&) {}
std::unique_ptr<SetMatcher> pcre2JitSet(const std::vector<Query>&) {
    return nullptr;
}

}  // namespace bench

#endif
