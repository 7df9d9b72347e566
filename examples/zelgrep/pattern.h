// A compiled pattern of the command line, in the forms that zelgrep searches with.
#pragma once

#include <zelchmx.h>

#include <memory>
#include <string>
#include <vector>

#include "block_plan.h"

namespace zelgrep {

/// A piece of text: a line without its newline, or a part of one.
struct Span {
    const Zel8u* begin;
    const Zel8u* end;

    int length() const { return static_cast<int>(end - begin); }
};

enum class Outcome { kNone, kFound, kLimit };

class Pattern {
public:
    /// `options` are option letters of i m s x; `plan` is that of the same text and options. When
    /// the pattern does not compile, `error` gets a message with a caret under the fault, and the
    /// object must not be used.
    Pattern(const std::string& text, const std::string& options, bool bytes, int limit,
            const BlockPlan& plan, std::string& error);

    /// The number of capturing groups.
    int groups() const { return groups_; }

    /// The step budget of one line.
    int limit() const { return limit_; }

    /// Does the line match?
    Outcome findInLine(Span line);

    /// Adds what group `group` (0: the whole match) matched, for each match in the line.
    Outcome findAll(Span line, int group, std::vector<Span>& spans);

    /// Looks for matches in a block of lines, with `budget` steps: the first one or, if the plan
    /// allows, the first `kManyMatches`. `matches` gets the places where they begin.
    Outcome findInBlock(Span block, int budget, std::vector<const Zel8u*>& matches);

    static constexpr int kManyMatches = 64;

private:
    struct Release {
        void operator()(ZelRegExpState* state) const { zelsRegExpFree(state); }
    };
    using Object = std::unique_ptr<ZelRegExpState, Release>;

    bool compile(Object& object, const std::string& text, const std::string& options,
                 std::string& error) const;
    void collect(Span line, int records, int perMatch, int group, std::vector<Span>& spans) const;

    bool bytes_;
    int limit_;
    int atOnce_;  // matches that one search of a block reports
    int groups_ = 0;
    Object first_;  // the first match of a line
    Object all_;    // all matches of a line
    Object block_;  // matches in a block
    std::vector<ZelRegExpFind> found_;
    ZelRegExpReplaceState* nothing_;  // an empty template
    alignas(void*) unsigned char nothingMemory_[16];
};

}  // namespace zelgrep
