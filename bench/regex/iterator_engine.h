// Boost.Regex and std::regex have the same interface; this is the engine over either. `Traits`
// names the namespace's types and says which options a pattern is compiled with.
#pragma once

#include <exception>

#include "regex/engine.h"

namespace bench {

template <class Traits>
class IteratorMatcher : public Matcher {
public:
    explicit IteratorMatcher(const Query& query)
        : groups_(query.groups), regex_(query.pattern, Traits::options(query)) {}

    Tally findAll(std::string_view text) override {
        Tally tally;
        typename Traits::Iterator at(text.data(), text.data() + text.size(), regex_);
        for (const typename Traits::Iterator end; at != end; ++at) report(tally, *at, text);
        return tally;
    }

    Tally findFirst(const std::vector<std::string_view>& subjects) override {
        Tally tally;
        for (const std::string_view subject : subjects) {
            if (Traits::search(subject, found_, regex_)) report(tally, found_, subject);
        }
        return tally;
    }

    bool canReplace() const override { return true; }
    std::int64_t replaceAll(std::string_view text, const char* replacement) override {
        std::string output;
        output.reserve(text.size() * 2);
        Traits::replace(output, text, regex_, replacement);
        return textDigest(output);
    }

private:
    void report(Tally& tally, const typename Traits::Match& match, std::string_view text) const {
        ++tally.matches;
        for (int group = groups_ == 0 ? 0 : 1; group <= groups_; ++group) {
            const auto& sub = match[group];
            if (sub.matched) tally.add(sub.first - text.data(), sub.second - sub.first);
        }
    }

    int groups_;
    typename Traits::Regex regex_;
    typename Traits::Match found_;
};

template <class Traits>
class IteratorEngine : public Engine {
public:
    const char* name() const override { return Traits::kName; }
    std::unique_ptr<Matcher> compile(const Query& query) const override {
        if (!Traits::has(query)) return nullptr;
        try {
            return std::make_unique<IteratorMatcher<Traits>>(query);
        } catch (const std::exception&) {
            return nullptr;
        }
    }
    bool compileOnly(const Query& query) const override {
        try {
            const typename Traits::Regex regex(query.pattern, Traits::options(query));
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }
};

}  // namespace bench
