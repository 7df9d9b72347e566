// One interface over all regex engines. An engine compiles a pattern into a Matcher; a matcher does
// a whole job per call, so that the virtual call costs nothing beside it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "harness.h"

namespace bench {

struct Query {
    const char* pattern;
    bool ignoreCase = false;
    bool multiLine = false;
    bool utf8 = false;
    int groups = 0;  // capturing groups in the pattern
};

// What a search found. All contestants report the same: for patterns with groups the groups, for
// others the whole matches, as sums of offsets and lengths over everything reported.
struct Tally {
    std::int64_t matches = 0;
    std::int64_t offsets = 0;
    std::int64_t lengths = 0;

    void add(std::int64_t offset, std::int64_t length) {
        offsets += offset;
        lengths += length;
    }
    std::int64_t digest() const { return (matches * 1000003 + offsets) * 1000003 + lengths; }
};

class Matcher {
public:
    virtual ~Matcher() = default;

    // All matches in the text.
    virtual Tally findAll(std::string_view text) = 0;

    // The first match in each subject.
    virtual Tally findFirst(const std::vector<std::string_view>& subjects) = 0;

    // The text with every match replaced by the template, in which $1 to $9 are groups: the digest
    // of the result. Not every engine has such a service.
    virtual bool canReplace() const { return false; }
    virtual std::int64_t replaceAll(std::string_view, const char*) { return 0; }
};

class Engine {
public:
    virtual ~Engine() = default;
    virtual const char* name() const = 0;
    virtual Kind kind() const { return Kind::Package; }

    // Null when the engine has no such pattern.
    virtual std::unique_ptr<Matcher> compile(const Query& query) const = 0;

    // Compiles the pattern and throws the result away; whether it compiles.
    virtual bool compileOnly(const Query& query) const = 0;
};

// A set of patterns, searched in one line after another: which of them occur.
class SetMatcher {
public:
    virtual ~SetMatcher() = default;
    virtual std::int64_t countHits(const std::vector<std::string_view>& lines) = 0;
};

std::int64_t textDigest(std::string_view text);

using EngineList = std::vector<std::unique_ptr<Engine>>;

void addLibrary(EngineList& engines);
void addPcre2(EngineList& engines);  // the interpreter and the JIT
void addRe2(EngineList& engines);
void addOniguruma(EngineList& engines);
void addBoost(EngineList& engines);
void addStd(EngineList& engines);
void addHyperscan(EngineList& engines);

std::unique_ptr<SetMatcher> librarySet(const std::vector<Query>& patterns);
std::unique_ptr<SetMatcher> pcre2JitSet(const std::vector<Query>& patterns);
std::unique_ptr<SetMatcher> re2Set(const std::vector<Query>& patterns);
std::unique_ptr<SetMatcher> hyperscanSet(const std::vector<Query>& patterns);

}  // namespace bench
