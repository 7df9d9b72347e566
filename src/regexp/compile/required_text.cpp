// The literals that a pattern cannot do without: the runs outside of groups, and in groups that are
// passed just once, in front of anything that branches; and the trailing literal, because a search
// narrows the text with it first. What the engine spends in front of a literal that is not there is
// bounded on the way: every start position, every choice of run lengths, and each node on the way
// once for each. When it is the trailing literal that is missing, there is one start position with
// no text behind it.
#include "regexp/compile/required_text.h"

#include <string.h>

#include "regexp/required_text.h"

namespace zel {

namespace {

class RequiredTextFinder {
public:
    explicit RequiredTextFinder(const ZelRegExpState& state)
        : nodes_(state.nodes()),
          count_(state.nodeCount),
          trailing_(state.trailingLiteral),
          preferTrailing_(trailing_ >= 0 && nodes_[trailing_].kind == NodeString &&
                          nodes_[trailing_].count >= kTripleLength),
          mayIgnoreCase_((state.options & kOptionIgnoreCase) != 0) {}

    /// False when nothing is known.
    bool find(RequiredText& required) {
        int i = 0;
        while (i < count_ && tripleCount_ < kMostTriples && affords()) {
            const int next = walkNode(i);
            if (next == i) break;
            i = next;
        }
        if (i <= trailing_ && preferTrailing_ && stepsToText_ != 0) takeTrailing();
        if (tripleCount_ == 0) return false;
        required.zero = 0;
        required.mark = RequiredText::kMark;
        required.runs = static_cast<Zel8u>(billedRuns_);
        required.steps = static_cast<Zel8u>(billedSteps_);
        required.literal = required.literalLength = 0;
        if (literal_ != nullptr) noteLiteral(*literal_, required);
        for (int k = 0; k < RequiredText::kSlots; ++k) {  // spread over all there are
            const Zel32u bytes = triples_[k * (tripleCount_ - 1) / (RequiredText::kSlots - 1)];
            const Zel16u slot = tripleSlot(bytes >> 16 & 0xFF, bytes >> 8 & 0xFF, bytes & 0xFF);
            memcpy(required.slots[k], &slot, sizeof slot);
        }
        return true;
    }

private:
    static constexpr int kMostTriples = 8;
    static constexpr int kEnoughTriples = 2;  // to look no further than to the next quantifier
    static constexpr int kMostChoices = 16;   // of a run with an end, else it counts as one without
    static constexpr int kMostSteps = 255;
    // A further literal makes a miss likelier, but also dearer.
    static constexpr int kCheapRuns = 1;
    static constexpr int kCheapSteps = 32;

    /// What is behind the node and its quantifier; the node, when it is not a simple one.
    int walkNode(int i) {
        const Node& node = nodes_[i];
        ++passed_;
        switch (node.kind) {
            case NodeString:
                noteText();
                if (i == trailing_ && !isCheap()) {
                    takeTrailing();
                } else if (takeText(static_cast<const Zel8u*>(node.data), node.count) &&
                           i != trailing_ &&
                           (literal_ == nullptr || literal_->count < node.count)) {
                    literal_ = &node;
                }
                return i + 1;
            case NodeLetter:
            case NodeLetterRange:
            case NodeAnyByte:
            case NodeCharacterClass:
                return walkAtom(i);
            case NodeOptions:
                mayIgnoreCase_ = true;
                return i + 1;
            case NodePosition:
            case NodeGroupingClose:
                return i + 1;
            case NodeGroupingOptions:
                mayIgnoreCase_ = true;
                return isPassedOnce(i) ? i + 1 : i;
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                return isPassedOnce(i) ? i + 1 : i;
            default:
                return i;
        }
    }

    int walkAtom(int i) {
        const Node& node = nodes_[i];
        const int behind = node.kind == NodeCharacterClass ? i + 1 + node.count : i + 1;
        const Node* repeat =
            behind < count_ && isQuantifier(nodes_[behind]) ? &nodes_[behind] : nullptr;
        if (repeat != nullptr && tripleCount_ >= kEnoughTriples) return i;
        const bool isSure = repeat == nullptr || repeat->value > 0;
        if (isSure) noteText();
        if (isSure && node.kind == NodeLetter) {
            const auto letter = static_cast<Zel8u>(node.value);
            takeText(&letter, 1);
        } else {
            endRow();
        }
        if (repeat == nullptr) return behind;
        endRow();
        ++passed_;
        const int choices = repeat->count - repeat->value + 1;
        if (choices > kMostChoices) {
            ++runs_;
        } else {
            choices_ *= choices;
        }
        return behind + 1;
    }

    /// Whether each way through the group takes its body once, in order.
    bool isPassedOnce(int open) const {
        const int close = open + 1 + nodes_[open].count;
        return (close + 1 >= count_ || !isQuantifier(nodes_[close + 1])) &&
               nextBar(nodes_, open + 1, close, nodes_[open].value) == close;
    }

    int steps() const { return passed_ * choices_; }
    bool affords() const { return runs_ <= RequiredText::kMostRuns && steps() < kMostSteps; }
    bool isCheap() const { return runs_ <= kCheapRuns && steps() <= kCheapSteps; }

    /// Where there is no text, a search gets no further than this node.
    void noteText() {
        if (stepsToText_ == 0) stepsToText_ = passed_;
    }

    /// Text that stands in each match, behind what was taken before unless that row has ended.
    /// Whether it made triples.
    bool takeText(const Zel8u* text, int length) {
        const bool isWelcome = isCheap() || (tripleCount_ == 0 && !preferTrailing_);
        if (!isWelcome || !affords()) {
            endRow();
            return false;
        }
        const int before = tripleCount_;
        takeTriples(text, length);
        if (tripleCount_ == before) return false;
        billedRuns_ = runs_;
        billedSteps_ = steps();
        return true;
    }

    /// The trailing literal need not be noted, since a search looks for it anyway.
    void noteLiteral(const Node& node, RequiredText& required) const {
        const auto* text = static_cast<const Zel8u*>(node.data);
        const ptrdiff_t offset = text - reinterpret_cast<const Zel8u*>(nodes_ + count_);
        if (mayIgnoreCase_ || offset > 0xFF || node.count > 0xFF) return;
        required.literal = static_cast<Zel8u>(offset);
        required.literalLength = static_cast<Zel8u>(node.count);
    }

    void takeTrailing() {
        if (tripleCount_ == 0) {
            billedRuns_ = 0;
            billedSteps_ = stepsToText_;
        }
        endRow();
        takeTriples(static_cast<const Zel8u*>(nodes_[trailing_].data), nodes_[trailing_].count);
    }

    void takeTriples(const Zel8u* text, int length) {
        Zel32u row = row_;
        int inRow = inRow_;
        for (int k = 0; k < length && tripleCount_ < kMostTriples; ++k) {
            row = row << 8 | text[k];
            if (++inRow >= kTripleLength) triples_[tripleCount_++] = row;
        }
        row_ = row;
        inRow_ = inRow;
    }
    void endRow() { inRow_ = 0; }

    const Node* const nodes_;
    const int count_;
    const int trailing_;
    const bool preferTrailing_;
    bool mayIgnoreCase_;

    int runs_ = 1;  // factors of the text's length: the start positions, and each run
    int choices_ = 1;
    int passed_ = 0;       // nodes up to and with this one
    int stepsToText_ = 0;  // nodes up to the first that takes text; 0 in front of it
    int billedRuns_ = 0;
    int billedSteps_ = 0;
    int inRow_ = 0;                  // bytes that follow each other
    Zel32u row_ = 0;                 // the last of them
    const Node* literal_ = nullptr;  // the longest, but for the trailing one
    int tripleCount_ = 0;
    Zel32u triples_[kMostTriples];  // the last byte is the lowest
};

}  // namespace

Zel8u* addRequiredText(const ZelRegExpState& state, Zel8u* textEnd) {
    RequiredText required;
    if (!RequiredTextFinder(state).find(required)) return textEnd;
    memcpy(textEnd, &required, sizeof required);
    return textEnd + sizeof required;
}

}  // namespace zel
