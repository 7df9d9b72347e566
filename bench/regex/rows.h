// The rows of the regex suite.
#pragma once

#include <map>
#include <string>

#include "regex/engine.h"

namespace bench {

// The texts that corpus.py made, read when first asked for.
class Corpus {
public:
    explicit Corpus(std::string directory) : directory_(std::move(directory)) {}
    std::string_view text(const std::string& name);
    std::vector<std::string_view> lines(const std::string& name);

private:
    std::string directory_;
    std::map<std::string, std::string> texts_;
};

// Every engine that is installed, in a fixed order; the first one that takes part in a row says
// what its right answer is.
EngineList allEngines();

void findAllRows(Suite& suite, Corpus& corpus);
void findFirstRows(Suite& suite);
void compileRows(Suite& suite);
void replaceRows(Suite& suite, Corpus& corpus);
void setRows(Suite& suite, Corpus& corpus);

}  // namespace bench
