// A compiled pattern of the command line, in the forms that zelgrep searches with.
#pragma once

#include <zelchmx.h>

#include <memory>
#include <string>
#include <vector>

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
    /// `options` are option letters of i m s x. When the pattern does not compile, `error` gets a
    /// message with a caret under the fault, and the object must not be used.
    Pattern(const std::string& text, const std::string& options, bool bytes, int limit,
            std::string& error);

    /// The number of capturing groups.
    int groups() const { return groups_; }

    /// The step budget of one line.
    int limit() const { return limit_; }

    /// Does the line match?
    Outcome findInLine(Span line);

    /// Adds what group `group` (0: the whole match) matched, for each match in the line.
    Outcome findAll(Span line, int group, std::vector<Span>& spans);

    /// Looks for the first match in a block of lines; `budget` is the step budget of this search.
    Outcome findInBlock(Span block, int budget, const Zel8u*& match);

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
    int groups_ = 0;
    Object first_;  // the first match of a line
    Object all_;    // all matches of a line
    Object block_;  // the first match of a block
    std::vector<ZelRegExpFind> found_;
    ZelRegExpReplaceState* nothing_;  // an empty template
    alignas(void*) unsigned char nothingMemory_[16];
};

}  // namespace zelgrep
