// Finds the lines of a block that one pattern matches, in their order.
#pragma once

#include <functional>
#include <vector>

#include "block_plan.h"
#include "pattern.h"

namespace zelgrep {

class LineFinder {
public:
    /// Called with each line whose search ran out of steps.
    using OnLimit = std::function<void(Span line)>;

    LineFinder(Pattern& pattern, BlockPlan plan, char separator, OnLimit onLimit);

    /// Begins with a new block. It ends behind a separator or at the end of the file, and the byte
    /// behind it can be read.
    void start(Span block);

    /// The first matching line that begins at `from` or behind. At the block's end: an empty line
    /// there.
    Span next(const Zel8u* from);

private:
    Span lineFrom(const Zel8u* begin) const;
    bool nextInPiece(const Zel8u* from, const Zel8u* end);
    Outcome moreMatches(const Zel8u* from, const Zel8u* end);
    bool nextLineByLine(const Zel8u* from, const Zel8u* end);
    bool matches(Span line);
    void slower();

    Pattern& pattern_;
    BlockPlan plan_;
    char separator_;
    OnLimit onLimit_;
    Span block_{};
    Span line_{};  // the last answer, good until a line behind it is asked for
    bool known_ = false;
    int pieceLength_;                    // how much of a block is searched at once
    const Zel8u* pieceEnd_{};            // where the piece being searched ends
    bool pieceByLine_ = false;           // it has to be searched line by line
    std::vector<const Zel8u*> matches_;  // where matches in it begin
    std::size_t nextMatch_ = 0;          // the first of them that was not looked at
    bool allMatches_ = false;            // it has no further ones
};

}  // namespace zelgrep
