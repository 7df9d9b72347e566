// The light walk. See light_walk.h for what it is; the rules that it follows are those of
// engine.cpp, greedy_runs.h, groups.h and lazy_runs.cpp.
#include "regexp/match/light_walk.h"

#include "regexp/match/character.h"
#include "regexp/match/positions.h"
#include "string/kernels/api.h"

namespace zel {

namespace {

// Whoever spends more is better served by the engine, which gives back with more care.
constexpr int kMostSteps = 2000;
constexpr int kMaxChoices = 16;

/// A place where the line could go another way.
struct Choice {
    enum Kind : int {
        kRun,    // a greedy run can be shorter: the rest from `node` on, down to `limit`
        kLazy,   // the lazy run of the atom `node` can be longer, up to `limit`
        kGroup,  // the group that opens at `node` can be passed over
    };
    Kind kind;
    int node;
    const Zel8u* position;
    const Zel8u* limit;
    const Zel8u* start;  // of a lazy run
};

/// The sets of the classes that a walk has met.
class ClassBytes {
public:
    const ByteSet& of(const ZelRegExpState& state, int index) {
        const unsigned slot = static_cast<unsigned>(index) % kSize;
        if (keys_[slot] != index) {
            keys_[slot] = index;
            sets_[slot] = bytesOfClass(state.nodes()[index], state.options);
            if (state.format == kFormatUtf8) sets_[slot].words[2] = sets_[slot].words[3] = 0;
        }
        return sets_[slot];
    }

private:
    static constexpr unsigned kSize = 8;
    int keys_[kSize] = {};  // 0 is never asked for: the first node is an assertion
    ByteSet sets_[kSize];
};

constexpr ByteSet asciiPart(const ByteSet& bytes) {
    return {{bytes.words[0], bytes.words[1], 0, 0}};
}

/// The ASCII part of a shorthand's set.
const ByteSet& shorthandAscii(int letter, Zel32u flags) {
    static constexpr ByteSet kDigitNot = asciiPart(kDigitNotBytes);
    static constexpr ByteSet kSpaceNot = asciiPart(kSpaceNotBytes);
    static constexpr ByteSet kWordNot = asciiPart(kWordNotBytes);
    static constexpr ByteSet kNewLineNot = asciiPart(kNewLineNotBytes);
    static constexpr ByteSet kAnyThing = asciiPart(kAnyThingBytes);
    switch (letter) {
        case 'D':
            return kDigitNot;
        case 'S':
            return kSpaceNot;
        case 'W':
            return kWordNot;
        case '.':
            return (flags & kOptionDotAll) != 0 ? kAnyThing : kNewLineNot;
        default:
            return shorthandBytes(letter, flags);
    }
}

struct LetterAtom {
    Zel8u letter;
    static constexpr bool kRaises = true;  // a lazy run that fails
    static constexpr bool kHints = true;   // a lazy run looks at the letter behind it first
    bool takes(Zel8u byte) const { return byte == letter; }
    /// Whether the byte may begin a longer character, which is for the engine.
    bool leaves(Zel8u) const { return false; }
};

struct ShorthandAtom {
    const ByteSet& ascii;
    static constexpr bool kRaises = true;
    static constexpr bool kHints = true;
    bool takes(Zel8u byte) const { return ascii.has(byte); }
    bool leaves(Zel8u byte) const { return byte >= 0x80; }
};

struct ClassAtom {
    const ByteSet& bytes;
    bool decodes;
    static constexpr bool kRaises = false;
    static constexpr bool kHints = false;
    bool takes(Zel8u byte) const { return bytes.has(byte); }
    bool leaves(Zel8u byte) const { return byte >= 0x80 && decodes; }
};

class LightWalk {
public:
    LightWalk(const ZelRegExpState& state, const Zel8u* text, int length, const WorkAreas& work,
              Choice* choices, ClassBytes& classes)
        : state_(state),
          nodes_(state.nodes()),
          text_(text),
          end_(text + length),
          work_(work),
          choices_(choices),
          classes_(classes),
          position_(text),
          steps_(state.matchLimit < kMostSteps ? state.matchLimit : kMostSteps) {}

    LightOutcome run() {
        for (;;) {
            Step step = kGoOn;
            while (step == kGoOn) {
                if (node_ == state_.nodeCount) return finish();
                --steps_;
                step = execute(nodes_[node_]);
            }
            while (step == kFail) {
                if (steps_ < 0 || hasBars()) return LightOutcome::kNotKnown;
                if (top_ == 0) return LightOutcome::kFailed;
                step = goBack(choices_[top_ - 1]);
            }
            if (step == kUnknown) return LightOutcome::kNotKnown;
        }
    }

private:
    enum Step { kGoOn, kFail, kUnknown };

    bool isQuantifier(int index) const {
        return index < state_.nodeCount && nodes_[index].kind - NodeQuantifierMin <= 1u;
    }
    int left() const { return static_cast<int>(end_ - position_); }
    void push(const Choice& choice) { choices_[top_++] = choice; }

    LightOutcome finish() const {
        if (steps_ < 0) return LightOutcome::kNotKnown;
        work_.captures[0] = {text_, static_cast<int>(position_ - text_) + raised_};
        return LightOutcome::kMatched;
    }

    /// Bars give more choices, at top level and in groups. The walk meets them itself, and stops
    /// there, as long as nothing fails.
    bool hasBars() {
        if (!knowsBars_) {
            knowsBars_ = true;
            for (int i = 0; i < state_.nodeCount; ++i) {
                if (nodes_[i].kind == NodeAlternative) return true;
            }
        }
        return false;
    }

    Step execute(const Node& node) {
        switch (node.kind) {
            case NodeString:
                return takeString(node);
            case NodePosition:
                return check(node);
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                return enterGroup(node);
            case NodeGroupingClose:
                return leaveGroup(node);
            default:
                return withAtom(
                    node_, [this](const auto& atom, int behind) { return take(atom, behind); });
        }
    }

    /// Calls function(atom, node behind the atom).
    template <typename Function>
    Step withAtom(int index, const Function& function) {
        const Node& node = nodes_[index];
        switch (node.kind) {
            case NodeLetter:
                return function(LetterAtom{static_cast<Zel8u>(node.value)}, index + 1);
            case NodeLetterRange:
                return function(ShorthandAtom{shorthandAscii(node.value, state_.options)},
                                index + 1);
            case NodeCharacterClass:
                return function(ClassAtom{classes_.of(state_, index), state_.format == kFormatUtf8},
                                index + 1 + node.count);
            default:
                return kUnknown;
        }
    }

    Step takeString(const Node& node) {
        const Zel8u* literal = static_cast<const Zel8u*>(node.data);
        if (left() < node.count) return kFail;
        for (int i = 0; i < node.count; ++i) {
            if (position_[i] != literal[i]) return kFail;
        }
        position_ += node.count;
        ++node_;
        return kGoOn;
    }

    Step check(const Node& node) {
        if (isQuantifier(node_ + 1)) return kUnknown;
        if (!positionHolds(node.value, position_, left(), text_, state_.options)) return kFail;
        ++node_;
        return kGoOn;
    }

    template <typename Atom>
    Step take(const Atom& atom, int behind) {
        if (isQuantifier(behind)) {
            const Node& quantifier = nodes_[behind];
            if (quantifier.count < quantifier.value || top_ == kMaxChoices) return kUnknown;
            return quantifier.kind == NodeQuantifierMax ? takeRun(atom, quantifier, behind + 1)
                                                        : beginLazy(atom, quantifier, behind + 1);
        }
        if (position_ == end_) return kFail;
        if (atom.leaves(*position_)) return kUnknown;
        if (!atom.takes(*position_)) return kFail;
        ++position_;
        node_ = behind;
        return kGoOn;
    }

    template <typename Atom>
    Step takeRun(const Atom& atom, const Node& quantifier, int rest) {
        const Zel8u* stop = quantifier.count < left() ? position_ + quantifier.count : end_;
        const Zel8u* low = position_ + quantifier.value;
        const Zel8u* run = position_;
        while (run < stop && atom.takes(*run)) ++run;
        if (run < end_ && atom.leaves(*run)) return kUnknown;
        if (run < low) return kFail;
        if (run > low) push({Choice::kRun, rest, run, low, nullptr});
        position_ = run;
        node_ = rest;
        return kGoOn;
    }

    template <typename Atom>
    Step beginLazy(const Atom& atom, const Node& quantifier, int rest) {
        const Zel8u* start = position_;
        for (int i = 0; i < quantifier.value; ++i, ++position_) {
            if (position_ == end_) return kFail;
            if (atom.leaves(*position_)) return kUnknown;
            if (!atom.takes(*position_)) return kFail;
        }
        const int limit =
            quantifier.count < end_ - start ? quantifier.count : static_cast<int>(end_ - start);
        push({Choice::kLazy, node_, position_, start + limit, start});
        return goOnLazily(atom, choices_[top_ - 1], rest);
    }

    /// Goes on behind the lazy run, or behind a longer one when the next letter is not there.
    template <typename Atom>
    Step goOnLazily(const Atom& atom, Choice& choice, int rest) {
        const bool hints =
            Atom::kHints && rest < state_.nodeCount && nodes_[rest].kind == NodeLetter;
        // At the end of the text the byte behind it decides.
        if (hints && *choice.position != static_cast<Zel8u>(nodes_[rest].value))
            return stretch(atom, choice, rest);
        position_ = choice.position;
        node_ = rest;
        return kGoOn;
    }

    /// Makes the lazy run longer by the next characters, until it is worth going on behind it.
    template <typename Atom>
    Step stretch(const Atom& atom, Choice& choice, int rest) {
        const bool hints =
            Atom::kHints && rest < state_.nodeCount && nodes_[rest].kind == NodeLetter;
        const Zel8u* run = choice.position;
        do {
            if (run < end_ && atom.leaves(*run)) return kUnknown;
            if (run == end_ || !atom.takes(*run)) return endLazy<Atom>(choice, run);
            if (++run > choice.limit) return endLazy<Atom>(choice, run);
        } while (hints && *run != static_cast<Zel8u>(nodes_[rest].value));
        choice.position = position_ = run;
        node_ = rest;
        return kGoOn;
    }

    template <typename Atom>
    Step endLazy(const Choice& choice, const Zel8u* run) {
        if (Atom::kRaises) raised_ += static_cast<int>(run - choice.start);
        --top_;
        return kFail;
    }

    Step enterGroup(const Node& node) {
        const int close = node_ + 1 + node.count;
        if (isQuantifier(close + 1)) {
            const Node& quantifier = nodes_[close + 1];
            if (quantifier.kind != NodeQuantifierMax || quantifier.count != 1 ||
                quantifier.value < 0 || top_ == kMaxChoices)
                return kUnknown;
            if (quantifier.value == 0) push({Choice::kGroup, node_, position_, nullptr, nullptr});
        }
        work_.groups[node.value].openNode = node_;
        if (node.kind == NodeGroupingCapture) work_.captures[node.extra] = {position_, 0};
        ++node_;
        return kGoOn;
    }

    Step leaveGroup(const Node& node) {
        const Node& opening = nodes_[work_.groups[node.value].openNode];
        if (opening.kind == NodeGroupingCapture) {
            CaptureRecord& record = work_.captures[opening.extra];
            record.length = static_cast<int>(position_ - record.text);
        }
        node_ += isQuantifier(node_ + 1) ? 2 : 1;
        return kGoOn;
    }

    Step passOverGroup(const Choice& choice) {
        const int close = choice.node + 1 + nodes_[choice.node].count;
        for (int i = choice.node; i < close; ++i) {
            if (nodes_[i].kind == NodeGroupingCapture)
                work_.captures[nodes_[i].extra] = {nullptr, -1};
        }
        position_ = choice.position;
        node_ = close + 2;
        --top_;
        return kGoOn;
    }

    Step goBack(Choice& choice) {
        switch (choice.kind) {
            case Choice::kRun:
                position_ = --choice.position;
                node_ = choice.node;
                if (position_ == choice.limit) --top_;
                return kGoOn;
            case Choice::kLazy:
                return withAtom(choice.node, [this, &choice](const auto& atom, int behind) {
                    return stretch(atom, choice, behind + 1);
                });
            case Choice::kGroup:
                return passOverGroup(choice);
        }
        return kUnknown;
    }

    const ZelRegExpState& state_;
    const Node* const nodes_;
    const Zel8u* const text_;
    const Zel8u* const end_;
    const WorkAreas work_;
    Choice* const choices_;
    ClassBytes& classes_;
    const Zel8u* position_;
    int node_ = 0;
    int steps_;
    int top_ = 0;
    int raised_ = 0;  // what lazy runs that failed have left in the whole match's length
    bool knowsBars_ = false;
};

}  // namespace

LightOutcome walkLightly(const ZelRegExpState& state, const Zel8u* text, int length,
                         const WorkAreas& work) {
    Choice choices[kMaxChoices];
    ClassBytes classes;
    return LightWalk(state, text, length, work, choices, classes).run();
}

}  // namespace zel
