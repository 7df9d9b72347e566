#include <regex>

#include "regex/iterator_engine.h"

namespace bench {
namespace {

struct StdTraits {
    static constexpr const char* kName = "std::regex";
    using Regex = std::regex;
    using Match = std::cmatch;
    using Iterator = std::cregex_iterator;

    static bool has(const Query& query) { return !query.utf8; }

    static Regex::flag_type options(const Query& query) {
        Regex::flag_type options = Regex::ECMAScript | Regex::optimize;
        if (query.multiLine) options |= Regex::multiline;
        if (query.ignoreCase) options |= Regex::icase;
        return options;
    }
    static bool search(std::string_view text, Match& match, const Regex& regex) {
        return std::regex_search(text.data(), text.data() + text.size(), match, regex);
    }
    static void replace(std::string& output, std::string_view text, const Regex& regex,
                        const char* replacement) {
        std::regex_replace(std::back_inserter(output), text.data(), text.data() + text.size(),
                           regex, replacement);
    }
};

}  // namespace

void addStd(EngineList& engines) {
    engines.push_back(std::make_unique<IteratorEngine<StdTraits>>());
}

}  // namespace bench
