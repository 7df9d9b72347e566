// The light walk. See light_walk.h for what it is; the rules that it follows are those of
// engine.cpp, greedy_runs.h, groups.h and lazy_runs.cpp.
#include "regexp/match/light_walk.h"

#include "regexp/match/light_atoms.h"
#include "regexp/match/positions.h"

namespace zel {

namespace {

using namespace light;

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
    const Node* node;
    const Zel8u* position;
    const Zel8u* limit;
    const Zel8u* start;  // of a lazy run
};

/// What the program from a node on has to find in front of the end of the text, and what it costs
/// to find out that it does not: it goes through assertions, closes and what takes nothing.
class Beginning {
public:
    /// Reads on from the node; nothing is known of programs that go on in other ways.
    [[gnu::noinline]] void read(const Node* node, const Node* nodesEnd,
                                const ZelRegExpState& state) {
        from_ = node;
        mask_ = 0;
        letters_ = 0;
        class_ = nullptr;
        price_ = 0;
        known_ = false;
        flags_ = state.options;
        while (node < nodesEnd && !known_) {
            ++price_;
            const Node* next = node + 1;
            switch (node->kind) {
                case NodeGroupingClose:
                    if (isQuantifier(next, nodesEnd)) return;
                    node = next;
                    continue;
                case NodeGroupingCapture:
                case NodeGroupingNoCapture:
                    if (isQuantifier(next + node->count + 1, nodesEnd)) return;
                    node = next;
                    continue;
                case NodePosition:
                    if (isQuantifier(next, nodesEnd) || (node->value != '$' && node->value != 'Z'))
                        return;
                    known_ = addLetter('\n');
                    return;
                case NodeLetter:
                    if (!addLetter(static_cast<Zel8u>(node->value))) return;
                    break;
                case NodeString:
                    known_ = addLetter(*static_cast<const Zel8u*>(node->data));
                    return;
                case NodeLetterRange:
                    mask_ |= kShorthands.maskOf(*node, flags_);
                    break;
                case NodeCharacterClass:
                    if (class_ != nullptr || !ClassAtom{*node, flags_, false}.isKnown()) return;
                    class_ = node;
                    next += node->count;
                    break;
                default:
                    return;
            }
            known_ = !isQuantifier(next, nodesEnd) || next->value > 0;
            if (next->kind == NodeQuantifierMin) return;
            node = next + 1;
        }
    }

    const Node* from() const { return from_; }
    bool isKnown() const { return known_; }
    int price() const { return price_; }
    bool mayBegin(Zel8u byte) const {
        if (byte >= 0x80 || (kShorthands.bytes[byte] & mask_) != 0) return true;
        for (int i = 0; i < letters_; ++i) {
            if (byte == letter_[i]) return true;
        }
        return class_ != nullptr && ClassAtom{*class_, flags_, false}.takes(byte);
    }

private:
    static bool isQuantifier(const Node* node, const Node* nodesEnd) {
        return node < nodesEnd && node->kind - NodeQuantifierMin <= 1u;
    }
    bool addLetter(Zel8u letter) {
        if (letters_ == kMaxLetters) return false;
        letter_[letters_++] = letter;
        return true;
    }

    static constexpr int kMaxLetters = 3;
    const Node* from_ = nullptr;
    const Node* class_;
    Zel32u flags_;
    int price_;
    int letters_;
    Zel8u letter_[kMaxLetters];
    Zel8u mask_;
    bool known_;
};

class LightWalk {
public:
    LightWalk(const ZelRegExpState& state, const Zel8u* text, int length, const WorkAreas& work,
              Choice* choices, Beginning& beginning)
        : state_(state),
          nodes_(state.nodes()),
          nodesEnd_(nodes_ + state.nodeCount),
          text_(text),
          end_(text + length),
          captures_(work.captures),
          groups_(work.groups),
          choices_(choices),
          beginning_(beginning),
          position_(text),
          node_(nodes_),
          steps_(state.matchLimit < kMostSteps ? state.matchLimit : kMostSteps) {}

    LightOutcome run() {
        if (isQuantifier(nodes_ + 1)) return LightOutcome::kNotKnown;
        ++node_;  // the assertion that this is the start of the text
        --steps_;
        for (;;) {
            Step step = kGoOn;
            while (step == kGoOn) {
                if (node_ == nodesEnd_) return finish();
                --steps_;
                step = execute(*node_);
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

    bool isQuantifier(const Node* node) const {
        return node < nodesEnd_ && node->kind - NodeQuantifierMin <= 1u;
    }
    int left() const { return static_cast<int>(end_ - position_); }
    Step push(const Choice& choice) {
        if (top_ == kMaxChoices) return kUnknown;
        choices_[top_++] = choice;
        return kGoOn;
    }

    LightOutcome finish() const {
        if (steps_ < 0) return LightOutcome::kNotKnown;
        captures_[0] = {text_, static_cast<int>(position_ - text_) + raised_};
        return LightOutcome::kMatched;
    }

    /// Bars give more choices, at top level and in groups. The walk meets them itself, and stops
    /// there, as long as nothing fails.
    bool hasBars() {
        if (knowsBars_) return false;
        knowsBars_ = true;
        const Node* node = nodes_;
        for (; nodesEnd_ - node >= 4; node += 4) {
            if (isBar(node[0]) || isBar(node[1]) || isBar(node[2]) || isBar(node[3])) return true;
        }
        for (; node != nodesEnd_; ++node) {
            if (isBar(*node)) return true;
        }
        return false;
    }
    static bool isBar(const Node& node) { return node.kind == NodeAlternative; }

    Step execute(const Node& node) {
        switch (node.kind) {
            case NodeLetter:
                return take(letterAtom(node), &node + 1);
            case NodeLetterRange:
                return take(shorthandAtom(node), &node + 1);
            case NodeCharacterClass:
                return withClass(
                    node, [&](const auto& atom) { return take(atom, &node + 1 + node.count); });
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
                return kUnknown;
        }
    }

    LetterAtom letterAtom(const Node& node) const { return {node}; }
    ShorthandAtom shorthandAtom(const Node& node) const {
        return {node, state_.options, kShorthands.maskOf(node, state_.options)};
    }
    template <typename Function>
    Step withClass(const Node& head, const Function& function) const {
        PairAtom pair(head, state_.format == kFormatUtf8);
        if (pair.describe()) return function(pair);
        return function(ClassAtom{head, state_.options, pair.decodes});
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
        if (isQuantifier(&node + 1)) return kUnknown;
        if (!positionHolds(node.value, position_, left(), text_, state_.options)) return kFail;
        ++node_;
        return kGoOn;
    }

    template <typename Atom>
    Step take(const Atom& atom, const Node* behind) {
        if (isQuantifier(behind)) {
            return behind->kind == NodeQuantifierMax ? takeRun(atom, *behind)
                                                     : beginLazy(atom, *behind);
        }
        if (position_ == end_) return kFail;
        if (!atom.isKnown() || atom.leaves(*position_)) return kUnknown;
        if (!atom.takes(*position_)) return kFail;
        ++position_;
        node_ = behind;
        return kGoOn;
    }

    /// The first byte of [run, stop) that the atom does not take.
    template <typename Atom>
    Taken takeAll(const Atom& atom, const Zel8u* stop) const {
        const Zel8u* run = position_;
        const bool isFew = stop - run <= Atom::kFew;
        if (isFew || Atom::kFewFirst) {
            if (!atom.isKnown()) return {Taken::kNotAsked, run};
            const Zel8u* near = isFew ? stop : run + Atom::kFew;
            run = takeFew(atom, run, near);
            if (run < near || isFew) return {Taken::kHere, run};
        }
        Taken taken = takeChunk(Chunks(text_, end_), atom, stop, run);
        if (taken.end == Taken::kFurther)
            taken = takeChunks(Chunks(text_, end_), atom, stop, taken.run);
        return taken;
    }

    template <typename Atom>
    Step takeRun(const Atom& atom, const Node& quantifier) {
        const Zel8u* stop = quantifier.count < left() ? position_ + quantifier.count : end_;
        const Zel8u* low = position_ + quantifier.value;
        const Taken taken = takeAll(atom, stop);
        const Zel8u* run = taken.run;
        if (taken.end == Taken::kNotAsked || (run < end_ && atom.leaves(*run))) return kUnknown;
        position_ = run;
        node_ = &quantifier + 1;
        if (run > low) return push({Choice::kRun, node_, run, low, nullptr});
        if (run == low) return kGoOn;
        return quantifier.count < quantifier.value ? kUnknown : kFail;
    }

    template <typename Atom>
    Step beginLazy(const Atom& atom, const Node& quantifier) {
        if (quantifier.count < quantifier.value || top_ == kMaxChoices || !atom.isKnown())
            return kUnknown;
        const Zel8u* start = position_;
        const Zel8u* limit = quantifier.count < left() ? position_ + quantifier.count : end_;
        for (int i = 0; i < quantifier.value; ++i, ++position_) {
            if (position_ == end_) return kFail;
            if (atom.leaves(*position_)) return kUnknown;
            if (!atom.takes(*position_)) return kFail;
        }
        const Zel8u* run = position_;
        const Node* rest = &quantifier + 1;
        Choice& choice = choices_[top_++];
        choice = {Choice::kLazy, node_, run, limit, start};
        node_ = rest;
        // At the end of the text the byte behind it decides.
        if (Atom::kHints && isElsewhere(*rest, run)) return stretch(atom, choice, rest);
        return kGoOn;
    }

    /// Whether a letter that a lazy run looks out for does not stand at the position.
    bool isElsewhere(const Node& rest, const Zel8u* position) const {
        return &rest != nodesEnd_ && rest.kind == NodeLetter &&
               *position != static_cast<Zel8u>(rest.value);
    }

    /// Makes the lazy run longer by the next characters, until it is worth going on behind it.
    template <typename Atom>
    Step stretch(const Atom& atom, Choice& choice, const Node* rest) {
        const Zel8u* run = choice.position;
        do {
            if (run < end_ && atom.leaves(*run)) return kUnknown;
            if (run == end_ || !atom.takes(*run)) return endLazy<Atom>(choice, run);
            if (++run > choice.limit) return endLazy<Atom>(choice, run);
        } while ((Atom::kHints && isElsewhere(*rest, run)) || cannotBegin(rest, run));
        choice.position = position_ = run;
        node_ = rest;
        return kGoOn;
    }

    /// Whether the rest cannot begin at the position, which has then been paid for.
    bool cannotBegin(const Node* rest, const Zel8u* position) {
        if (position == end_ || !isKnownBeginning(rest) || beginning_.mayBegin(*position))
            return false;
        steps_ -= beginning_.price();
        return true;
    }

    template <typename Atom>
    Step endLazy(const Choice& choice, const Zel8u* run) {
        if (Atom::kRaises) raised_ += static_cast<int>(run - choice.start);
        --top_;
        return kFail;
    }

    Step enterGroup(const Node& node) {
        const Node* close = &node + 1 + node.count;
        groups_[node.value].openNode = static_cast<int>(&node - nodes_);
        if (node.kind == NodeGroupingCapture) captures_[node.extra] = {position_, 0};
        node_ = &node + 1;
        if (!isQuantifier(close + 1)) return kGoOn;
        const Node& quantifier = close[1];
        if (quantifier.kind != NodeQuantifierMax || quantifier.count != 1) return kUnknown;
        if (quantifier.value != 0) return quantifier.value == 1 ? kGoOn : kUnknown;
        return push({Choice::kGroup, &node, position_, nullptr, nullptr});
    }

    Step leaveGroup(const Node& node) {
        const Node& opening = nodes_[groups_[node.value].openNode];
        if (opening.kind == NodeGroupingCapture) {
            CaptureRecord& record = captures_[opening.extra];
            record.length = static_cast<int>(position_ - record.text);
        }
        node_ = isQuantifier(&node + 1) ? &node + 2 : &node + 1;
        return kGoOn;
    }

    Step passOverGroup(const Choice& choice) {
        const Node* close = choice.node + 1 + choice.node->count;
        for (const Node* node = choice.node; node != close; ++node) {
            if (node->kind == NodeGroupingCapture) captures_[node->extra] = {nullptr, -1};
        }
        position_ = choice.position;
        node_ = close + 2;
        --top_;
        return kGoOn;
    }

    /// The rest behind a shorter run; where it cannot begin, for its price.
    Step giveBack(Choice& choice) {
        const Zel8u* run = choice.position - 1;
        if (run > choice.limit && isKnownBeginning(choice.node)) {
            while (run >= choice.limit && !beginning_.mayBegin(*run)) {
                steps_ -= beginning_.price();
                --run;
            }
        }
        choice.position = position_ = run;
        node_ = choice.node;
        if (run <= choice.limit) --top_;
        return run >= choice.limit ? kGoOn : kFail;
    }

    bool isKnownBeginning(const Node* node) {
        if (beginning_.from() != node) beginning_.read(node, nodesEnd_, state_);
        return beginning_.isKnown();
    }

    Step goBack(Choice& choice) {
        switch (choice.kind) {
            case Choice::kRun:
                return giveBack(choice);
            case Choice::kLazy: {
                const Node& node = *choice.node;
                if (node.kind == NodeLetter) return stretch(letterAtom(node), choice, &node + 2);
                if (node.kind == NodeLetterRange)
                    return stretch(shorthandAtom(node), choice, &node + 2);
                return withClass(node, [&](const auto& atom) {
                    return stretch(atom, choice, &node + 2 + node.count);
                });
            }
            case Choice::kGroup:
                return passOverGroup(choice);
        }
        return kUnknown;
    }

    const ZelRegExpState& state_;
    const Node* const nodes_;
    const Node* const nodesEnd_;
    const Zel8u* const text_;
    const Zel8u* const end_;
    CaptureRecord* const captures_;
    GroupFrame* const groups_;
    Choice* const choices_;
    Beginning& beginning_;
    const Zel8u* position_;
    const Node* node_;
    int steps_;
    int top_ = 0;
    int raised_ = 0;  // what lazy runs that failed have left in the whole match's length
    bool knowsBars_ = false;
};

}  // namespace

LightOutcome walkLightly(const ZelRegExpState& state, const Zel8u* text, int length,
                         WorkAreas work) {
    Choice choices[kMaxChoices];
    Beginning beginning;
    return LightWalk(state, text, length, work, choices, beginning).run();
}

}  // namespace zel
