// Regular expressions beside what else does their job. See scripts/bench.

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

#include "regex/rows.h"

namespace bench {

std::string_view Corpus::text(const std::string& name) {
    const auto known = texts_.find(name);
    if (known != texts_.end()) return known->second;
    std::ifstream file(directory_ + "/" + name + ".txt", std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.empty()) {
        std::cerr << "no text " << name << " in " << directory_ << "; run corpus.py\n";
        std::exit(2);
    }
    return texts_[name] = std::move(text);
}

std::vector<std::string_view> Corpus::lines(const std::string& name) {
    std::vector<std::string_view> lines;
    for (std::string_view rest = text(name); !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        lines.push_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return lines;
}

EngineList allEngines() {
    EngineList engines;
    addPcre2(engines);
    addRe2(engines);
    addOniguruma(engines);
    addBoost(engines);
    addStd(engines);
    addHyperscan(engines);
    addLibrary(engines);
    return engines;
}

std::int64_t textDigest(std::string_view text) {
    // Cheap beside any replacement, and the same for all; never negative.
    std::uint64_t hash = text.size();
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, 8);
        hash = (hash ^ word) * 1099511628211u;
    }
    for (; i < text.size(); ++i) hash = (hash ^ static_cast<unsigned char>(text[i])) * 31;
    return static_cast<std::int64_t>(hash >> 1);
}

}  // namespace bench

int main(int argc, char** argv) {
    std::string directory;
    std::vector<char*> arguments;
    for (int i = 0; i < argc; ++i) {
        if (std::strncmp(argv[i], "--corpus=", 9) == 0)
            directory = argv[i] + 9;
        else
            arguments.push_back(argv[i]);
    }
    bench::Suite suite("regex", static_cast<int>(arguments.size()), arguments.data());
    bench::Corpus corpus(directory);
    bench::findAllRows(suite, corpus);
    bench::findFirstRows(suite);
    bench::compileRows(suite);
    bench::replaceRows(suite, corpus);
    bench::setRows(suite, corpus);
    return suite.finish();
}
