#include "regex/iterator_engine.h"

#if BENCH_HAS_BOOST

#include <boost/regex.hpp>

namespace bench {
namespace {

struct BoostTraits {
    static constexpr const char* kName = "Boost.Regex";
    using Regex = boost::regex;
    using Match = boost::cmatch;
    using Iterator = boost::cregex_iterator;

    static bool has(const Query& query) { return !query.utf8; }

    static Regex::flag_type options(const Query& query) {
        Regex::flag_type options = Regex::perl | Regex::no_mod_s | Regex::optimize;
        if (!query.multiLine) options |= Regex::no_mod_m;
        if (query.ignoreCase) options |= Regex::icase;
        return options;
    }
    static bool search(std::string_view text, Match& match, const Regex& regex) {
        return boost::regex_search(text.data(), text.data() + text.size(), match, regex);
    }
    static void replace(std::string& output, std::string_view text, const Regex& regex,
                        const char* replacement) {
        boost::regex_replace(std::back_inserter(output), text.data(), text.data() + text.size(),
                             regex, replacement);
    }
};

}  // namespace

void addBoost(EngineList& engines) {
    engines.push_back(std::make_unique<IteratorEngine<BoostTraits>>());
}

}  // namespace bench

#else

namespace bench {

void addBoost(EngineList&) {}

}  // namespace bench

#endif
