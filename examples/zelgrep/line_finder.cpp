// Where the plan allows it, a block is searched in large pieces, each with a budget of some steps
// per byte and never more than one line may spend: so no line of a piece in which the budget lasted
// can have run out of its own. A piece where it did not last is searched line by line, and the
// pieces become smaller, until searching them is given up as hopeless.
#include "line_finder.h"

#include <algorithm>
#include <utility>

namespace zelgrep {
namespace {

constexpr int kStepsPerByte = 64;
constexpr int kLargestPiece = 1 << 20;
constexpr int kSmallestPiece = 1 << 12;

bool isAscii(Span text) {
    unsigned char seen = 0;
    for (const Zel8u* p = text.begin; p < text.end; ++p)
        seen = static_cast<unsigned char>(seen | *p);
    return seen < 0x80;
}

}  // namespace

LineFinder::LineFinder(Pattern& pattern, BlockPlan plan, char separator, OnLimit onLimit)
    : pattern_(pattern),
      plan_(plan),
      separator_(separator),
      onLimit_(std::move(onLimit)),
      pieceLength_(std::min(pattern.limit() / kStepsPerByte, kLargestPiece)) {
    if (separator_ != '\n' || pieceLength_ < kSmallestPiece) plan_.possible = false;
}

void LineFinder::start(Span block) {
    block_ = block;
    known_ = false;
    pieceEnd_ = block.begin;
}

Span LineFinder::lineFrom(const Zel8u* begin) const {
    int index = -1;
    zelsFindC_8u(begin, static_cast<int>(block_.end - begin), static_cast<Zel8u>(separator_),
                 &index);
    return {begin, index < 0 ? block_.end : begin + index};
}

Span LineFinder::next(const Zel8u* from) {
    if (known_ && line_.begin >= from) return line_;
    known_ = true;
    while (from < block_.end) {
        if (from >= pieceEnd_) {
            pieceEnd_ = plan_.possible && block_.end - from > pieceLength_
                            ? std::min(lineFrom(from + pieceLength_).end + 1, block_.end)
                            : block_.end;
            pieceByLine_ = !plan_.possible || (plan_.asciiOnly && !isAscii({from, pieceEnd_}));
            matches_.clear();
            nextMatch_ = 0;
            allMatches_ = false;
        }
        if (pieceByLine_ ? nextLineByLine(from, pieceEnd_) : nextInPiece(from, pieceEnd_))
            return line_;
        from = pieceEnd_;
    }
    line_ = {block_.end, block_.end};
    return line_;
}

bool LineFinder::nextLineByLine(const Zel8u* from, const Zel8u* end) {
    while (from < end) {
        line_ = lineFrom(from);
        if (matches(line_)) return true;
        from = line_.end + 1;
    }
    return false;
}

bool LineFinder::nextInPiece(const Zel8u* from, const Zel8u* end) {
    while (from < end) {
        while (nextMatch_ < matches_.size() && matches_[nextMatch_] < from) ++nextMatch_;
        if (nextMatch_ == matches_.size()) {
            if (allMatches_) return false;
            switch (moreMatches(from, end)) {
                case Outcome::kNone:
                    return false;
                case Outcome::kLimit:
                    slower();
                    return nextLineByLine(from, end);
                case Outcome::kFound:
                    break;
            }
        }
        const Zel8u* match = matches_[nextMatch_];
        // A match behind the last separator belongs to no line of this piece.
        if (match == end && end[-1] == static_cast<Zel8u>(separator_)) return false;
        int index = -1;
        zelsFindRevC_8u(from, static_cast<int>(match - from), static_cast<Zel8u>(separator_),
                        &index);
        line_ = lineFrom(from + index + 1);
        if (!plan_.confirm || matches(line_)) return true;
        from = line_.end + 1;
    }
    return false;
}

Outcome LineFinder::moreMatches(const Zel8u* from, const Zel8u* end) {
    const int length = static_cast<int>(end - from);
    const int budget = std::min(pattern_.limit(), kStepsPerByte * std::max(length, kSmallestPiece));
    const Outcome outcome = pattern_.findInBlock({from, end}, budget, matches_);
    nextMatch_ = 0;
    allMatches_ = plan_.many && matches_.size() < Pattern::kManyMatches;
    if (outcome == Outcome::kNone)
        pieceLength_ =
            std::min({pieceLength_ * 2, pattern_.limit() / kStepsPerByte, kLargestPiece});
    return outcome;
}

void LineFinder::slower() {
    pieceByLine_ = true;
    pieceLength_ /= 4;
    if (pieceLength_ < kSmallestPiece) plan_.possible = false;
}

bool LineFinder::matches(Span line) {
    const Outcome outcome = pattern_.findInLine(line);
    if (outcome == Outcome::kLimit) onLimit_(line);
    return outcome == Outcome::kFound;
}

}  // namespace zelgrep
