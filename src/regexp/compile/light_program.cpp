// From nodes to a light program. A first pass, forwards, makes an operation of each construct: a
// character with its quantifier, a capture that holds just a run, what opens and closes a group. It
// gives up at the first one that the light walk has no operation for. A second pass, backwards,
// works out what each place of the program can begin with, and from that where a choice need not be
// remembered: a run has nothing to give back when no member of it can begin what follows, and
// nothing when the rest cannot fail.
#include "regexp/compile/light_program.h"

#include <string.h>

#include "regexp/light_program.h"

namespace zel {

namespace {

constexpr AsciiSet kNothing = {};
constexpr AsciiSet kEverything = inverted(kNothing);

class LightCompiler {
public:
    /// A program may take `room` bytes.
    LightCompiler(const ZelRegExpState& state, size_t room)
        : room_(room),
          nodes_(state.nodes()),
          nodesEnd_(nodes_ + state.nodeCount),
          isMultiLine_((state.options & kOptionMultiLine) != 0),
          dotAll_((state.options & kOptionDotAll) != 0) {}

    /// False when the pattern is not one for the light walk.
    bool compile() {
        if (!translate() || size() > room_) return false;
        decide();
        return missPrice_ < kTooDear && choices_ <= LightProgram::kMaxChoices;
    }

    void write(Zel8u* to) const {
        const LightProgram program = {0, LightProgram::kMark, static_cast<Zel8u>(setCount_),
                                      static_cast<Zel8u>(shorthands_),
                                      static_cast<Zel8u>(missPrice_)};
        const size_t sets = static_cast<size_t>(setCount_) * sizeof(AsciiSet);
        memcpy(to, &program, sizeof program);
        memcpy(to + sizeof program, sets_, sets);
        to += sizeof program + sets;
        for (int i = 0; i < operationCount_; ++i) {
            const LightOperation& operation = operations_[i];
            const int size = LightOperation::sizeOf(operation.kind);
            if (size == LightOperation::kLargest) {
                memcpy(to, &operation, LightOperation::kLargest);
            } else {
                to[0] = operation.kind;
                if (size > 1) to[1] = operation.set;
                if (size > 2) to[2] = operation.rest;
            }
            to += size;
        }
    }

private:
    static constexpr int kMaxOperations = 64;
    static constexpr int kMaxDepth = 8;
    static constexpr int kMaxNodes = 255;
    static constexpr int kTooDear = 256;

    /// A character with its quantifier. `set` is its number in the program.
    struct Atom {
        int set;
        int min;
        int max;
        bool isLazy;
        const Node* behind;
    };

    struct OpenGroup {
        const Node* close;
        int serial;
        int slot;  // its capture, 0 for none
        // Operations, kNone for none: what may pass over the group, and over the alternative that
        // has been begun, and the end of the one in front of that.
        int optional;
        int alternative;
        int leave;
    };
    static constexpr int kNone = -1;

    /// What the program can begin with from an operation on.
    struct Beginning {
        AsciiSet set;
        int price;          // steps at most, to find out that it does not begin
        bool mayBeNothing;  // it may match without a character, at least at the end of the text
        bool cannotFail;
    };

    bool isQuantifierAt(const Node* node) const { return node != nodesEnd_ && isQuantifier(*node); }
    static bool isAtom(const Node& node) {
        return node.kind == NodeLetter || node.kind == NodeLetterRange ||
               node.kind == NodeCharacterClass;
    }

    LightOperation& emit(LightKind kind, int set = 0, int rest = LightOperation::kAnything,
                         int slot = 0, int min = 0, int max = 0) {
        operationBytes_ += LightOperation::sizeOf(kind);
        LightOperation& operation = operations_[operationCount_++];
        operation = {kind,
                     static_cast<Zel8u>(set),
                     static_cast<Zel8u>(rest),
                     static_cast<Zel8u>(slot),
                     static_cast<Zel8u>(min),
                     static_cast<Zel8u>(max)};
        return operation;
    }

    size_t size() const {
        return sizeof(LightProgram) + static_cast<size_t>(setCount_) * sizeof(AsciiSet) +
               static_cast<size_t>(operationBytes_);
    }

    /// Whether something that is passed over leads to what will be emitted next.
    bool endsGroup() const { return (isTarget_ >> operationCount_ & 1) != 0; }

    const AsciiSet& setOf(int number) const {
        const int shorthand = number - LightProgram::kFirstShorthand;
        return shorthand < 0 ? sets_[number] : kShorthandSets[shorthand];
    }

    /// The number of a set in the program; -1 when there are too many.
    int numberOf(const AsciiSet& set) {
        for (int i = 0; i < setCount_; ++i) {
            if (sets_[i] == set) return i;
        }
        if (setCount_ == LightProgram::kFirstShorthand) return -1;
        sets_[setCount_] = set;
        return setCount_++;
    }

    int numberOfShorthand(int letter) {
        if (letter == '.' && dotAll_) return numberOf(kEverything);
        const int shorthand = shorthandOf(letter);
        shorthands_ |= 1u << shorthand;
        return LightProgram::kFirstShorthand + shorthand;
    }

    static int shorthandOf(int letter) {
        int i = 0;
        while (kShorthandLetters[i] != letter) ++i;
        return i;
    }

    // The first pass. The functions that translate nodes answer what is behind those, null when the
    // walk has no operation for them.

    bool translate() {
        if (isQuantifierAt(nodes_ + 1) || nodesEnd_ - nodes_ > kMaxNodes) return false;
        for (const Node* node = nodes_ + 1; node != nodesEnd_;) {
            if (operationCount_ + 4 > kMaxOperations) return false;
            node = translateNode(node);
            if (node == nullptr) return false;
        }
        // What a group that is passed over leads to is there, if it is only the match.
        if (operationCount_ != 0 && !endsGroup() &&
            operations_[operationCount_ - 1].kind == kLightEnd) {
            operations_[operationCount_ - 1].kind = kLightEndMatch;
        } else {
            emit(kLightMatch);
        }
        return true;
    }

    const Node* translateNode(const Node* node) {
        switch (node->kind) {
            case NodeLetter:
                if (isQuantifierAt(node + 1)) return translateAtom(node);
                translateLetter(node->value & 0xFF);
                return node + 1;
            case NodeLetterRange:
            case NodeCharacterClass:
                return translateAtom(node);
            case NodeString:
                return translateText(node);
            case NodePosition:
                return translatePosition(node);
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                return openGroup(node);
            case NodeGroupingClose:
                return closeGroup(node);
            case NodeAlternative:
                return passBar(node);
            default:
                return nullptr;
        }
    }

    /// A letter right behind a run that cannot hold it goes with the run.
    void translateLetter(int letter) {
        LightOperation* const last = operations_ + operationCount_ - 1;
        if (operationCount_ != 0 && !endsGroup() && last->kind == kLightRun && letter < 0x80 &&
            !setOf(last->set).has(static_cast<unsigned>(letter))) {
            last->kind = kLightRunLetter;
            last->rest = static_cast<Zel8u>(letter);
            return;
        }
        emit(kLightLetter, letter);
    }

    const Node* translateText(const Node* node) {
        const ptrdiff_t offset =
            static_cast<const char*>(node->data) - reinterpret_cast<const char*>(nodesEnd_);
        if (offset > 0xFF || node->count > 0xFF) return nullptr;
        emit(kLightText, static_cast<int>(offset), node->count);
        return node + 1;
    }

    const Node* translatePosition(const Node* node) {
        if (isQuantifierAt(node + 1)) return nullptr;
        switch (node->value) {
            case '$':
                emit(isMultiLine_ ? kLightLineEnd : kLightEnd);
                return node + 1;
            case 'Z':
                emit(kLightEnd);
                return node + 1;
            case 'z':
                emit(kLightVeryEnd);
                return node + 1;
            case 'b':
                emit(kLightBoundary);
                return node + 1;
            case 'B':
                emit(kLightInside);
                return node + 1;
            default:
                return nullptr;
        }
    }

    const Node* translateAtom(const Node* node) {
        Atom atom;
        if (!readAtom(node, atom)) return nullptr;
        emitAtom(*node, atom, 0);
        return atom.behind;
    }

    bool readAtom(const Node* node, Atom& atom) {
        atom = {-1, 1, 1, false, node + 1};
        if (node->kind == NodeLetterRange) {
            atom.set = numberOfShorthand(node->value);
        } else {
            AsciiSet set = {};
            if (node->kind == NodeLetter) {
                addMember(*node, set);
            } else if (!readClass(*node, set)) {
                return false;
            } else {
                atom.behind += node->count;
            }
            atom.set = numberOf(set);
        }
        if (isQuantifierAt(atom.behind)) {
            const Node& repeat = *atom.behind++;
            atom.min = repeat.value;
            atom.max =
                repeat.count < LightOperation::kNoLimit ? repeat.count : LightOperation::kNoLimit;
            atom.isLazy = repeat.kind == NodeQuantifierMin;
            if (atom.min < 0 || atom.max < atom.min) return false;
            if (atom.isLazy && mayMissWhatFollows(*node, atom.behind)) return false;
        }
        return atom.set >= 0;
    }

    bool readClass(const Node& head, AsciiSet& set) const {
        for (const Node* member = &head + 1; member <= &head + head.count; ++member) {
            if (member->extra != 0 || !addMember(*member, set)) return false;
        }
        if (head.value < 0) set.invert();
        return true;
    }

    bool addMember(const Node& node, AsciiSet& set) const {
        switch (node.kind) {
            case NodeLetter:
                if ((node.value & 0x80) == 0) set.add(static_cast<Zel8u>(node.value));
                return true;
            case NodeLetterRange:
                set.addAll(kShorthandSets[shorthandOf(node.value)]);
                return node.value != '.';
            case NodeRange:  // the ends are unsigned
                set.addRange(static_cast<unsigned>(node.value), static_cast<unsigned>(node.count));
                return static_cast<unsigned>(node.count) < 0x100;
            default:
                return false;
        }
    }

    /// Whether the lazy run of a character is not tried to be ended where it could be: it looks out
    /// for a letter behind it, even when that may be missing.
    bool mayMissWhatFollows(const Node& node, const Node* next) const {
        return node.kind != NodeCharacterClass && next != nodesEnd_ && next->kind == NodeLetter &&
               isQuantifierAt(next + 1) && next[1].value == 0;
    }

    /// `slot`, when it is not 0, is the capture that the atom is all there is in.
    void emitAtom(const Node& node, const Atom& atom, int slot) {
        const bool isOne = atom.min == 1 && atom.max == 1 && slot == 0;
        const LightKind lazy = node.kind == NodeCharacterClass ? kLightLazy : kLightRaising;
        const LightKind kind = atom.isLazy ? lazy : isOne ? kLightOne : kLightRun;
        emit(kind, atom.set, LightOperation::kAnything, slot, atom.min, atom.max);
    }

    const Node* openGroup(const Node* node) {
        const Node* const close = node + 1 + node->count;
        const int slot = node->kind == NodeGroupingCapture ? node->extra : 0;
        if (slot > 0xFF || depth_ == kMaxDepth) return nullptr;
        OpenGroup& group = groups_[depth_++];
        group = {close, node->value, slot, kNone, kNone, kNone};
        if (isQuantifierAt(close + 1)) {
            const Node& repeat = close[1];
            if (repeat.kind != NodeQuantifierMax || repeat.count != 1) return nullptr;
            if (repeat.value == 0) {
                group.optional = operationCount_;
                if (!emitPassing(kLightOptional, node, close)) return nullptr;
            }
        }
        if (slot != 0 && isAtom(node[1])) {
            Atom atom;
            if (!readAtom(node + 1, atom)) return nullptr;
            if (atom.behind == close) {
                group.slot = 0;  // the run takes care of it
                emitAtom(node[1], atom, slot);
                return close;
            }
        }
        if (slot != 0) emit(kLightOpen, slot);
        return beginAlternative(node, group) ? node + 1 : nullptr;
    }

    const Node* closeGroup(const Node* node) {
        if (depth_ == 0 || groups_[depth_ - 1].close != node) return nullptr;
        const OpenGroup& group = groups_[--depth_];
        for (int leave = group.leave; leave != kNone;) {
            const int before = targets_[leave];
            if (!leadsHere(leave)) return nullptr;
            leave = before;
        }
        if (group.slot != 0) emit(kLightClose, group.slot);
        if (group.optional != kNone && !leadsHere(group.optional)) return nullptr;
        return isQuantifierAt(node + 1) ? node + 2 : node + 1;
    }

    /// Between two alternatives of a group.
    const Node* passBar(const Node* node) {
        if (depth_ == 0) return nullptr;
        OpenGroup& group = groups_[depth_ - 1];
        targets_[operationCount_] = group.leave;  // until it is known where they lead to
        group.leave = operationCount_;
        if (!emitPassing(kLightLeave, node, group.close) || !leadsHere(group.alternative))
            return nullptr;
        return beginAlternative(node, group) ? node + 1 : nullptr;
    }

    /// The alternative behind a node, which may be passed over when it is not the last.
    bool beginAlternative(const Node* node, OpenGroup& group) {
        const auto first = static_cast<int>(node + 1 - nodes_);
        const auto close = static_cast<int>(group.close - nodes_);
        const Node* const bar = nodes_ + nextBar(nodes_, first, close, group.serial);
        if (bar == group.close) return true;
        group.alternative = operationCount_;
        return emitPassing(kLightOptional, node + 1, bar);
    }

    /// An operation that may pass over some nodes. The captures among them, which then are unset,
    /// have numbers that follow each other.
    bool emitPassing(LightKind kind, const Node* from, const Node* to) {
        offsets_[operationCount_] = operationBytes_;
        LightOperation& operation = emit(kind);
        int captures = 0;
        for (const Node* node = from; node != to; ++node) {
            if (node->kind != NodeGroupingCapture) continue;
            if (node->extra > 0xFF) return false;
            if (captures++ == 0) operation.slot = static_cast<Zel8u>(node->extra);
        }
        operation.set = static_cast<Zel8u>(captures);
        return true;
    }

    /// Has an operation that passes over something lead to what is emitted next; false when that is
    /// too far away.
    bool leadsHere(int passing) {
        const int distance = operationBytes_ - offsets_[passing];
        operations_[passing].min = static_cast<Zel8u>(distance);
        targets_[passing] = operationCount_;
        isTarget_ |= uint64_t{1} << operationCount_;
        return distance <= 0xFF;
    }

    // The second pass.

    void decide() {
        Beginning beginnings[kMaxOperations];  // of those that others lead to
        Beginning here = {kEverything, 0, true, true};
        for (int i = operationCount_ - 1; i >= 0; --i) {
            LightOperation& operation = operations_[i];
            switch (operation.kind) {
                case kLightLetter:
                    here = beginningWith(operation.set);
                    break;
                case kLightText:
                    here = beginningWith(reinterpret_cast<const Zel8u*>(nodesEnd_)[operation.set]);
                    break;
                case kLightOne:
                    here = {setOf(operation.set), 1, false, false};
                    break;
                case kLightRunLetter:
                    here = beginningOfRun(operation, beginningWith(operation.rest));
                    break;
                case kLightRun:
                case kLightLazy:
                case kLightRaising:
                    decideRun(operation, here);
                    here = beginningOfRun(operation, here);
                    break;
                case kLightOptional:
                    here = decideOptional(operation, here, beginnings[targets_[i]]);
                    break;
                case kLightLeave:
                    here = beginnings[targets_[i]];
                    ++here.price;
                    break;
                case kLightEnd:
                case kLightEndMatch:
                case kLightLineEnd:
                    here = {kAsciiNewLine, 1, true, false};
                    break;
                case kLightVeryEnd:
                    here = {kNothing, 1, true, false};
                    break;
                case kLightBoundary:
                case kLightInside:
                    here.cannotFail = false;
                    ++here.price;
                    break;
                case kLightMatch:
                    break;
                default:  // captures
                    ++here.price;
            }
            if ((isTarget_ >> i & 1) != 0) beginnings[i] = here;
        }
    }

    static Beginning beginningWith(int letter) {
        Beginning beginning = {kNothing, 1, false, false};
        if (letter < 0x80) beginning.set.add(static_cast<unsigned>(letter));
        return beginning;
    }

    Beginning beginningOfRun(const LightOperation& operation, const Beginning& next) {
        note(next.price + 1);
        Beginning here = {setOf(operation.set), operation.slot == 0 ? 1 : 3, false, false};
        if (operation.min != 0) return here;
        here.set.addAll(next.set);
        return {here.set, here.price + next.price, next.mayBeNothing, next.cannotFail};
    }

    void decideRun(LightOperation& operation, const Beginning& next) {
        if (operation.kind == kLightRun) {
            if (operation.min == operation.max || next.cannotFail ||
                disjoint(setOf(operation.set), next.set))
                return;
            operation.kind = kLightGiving;
        }
        ++choices_;
        operation.rest = numberOfBeginning(next);
    }

    Beginning decideOptional(LightOperation& operation, const Beginning& body,
                             const Beginning& behind) {
        Beginning here = {behind.set, body.price + behind.price + 1,
                          body.mayBeNothing || behind.mayBeNothing, behind.cannotFail};
        here.set.addAll(body.set);
        if (here.price > kTooDear) here.price = kTooDear;  // groups in groups would double it
        note(here.price);
        if (!body.mayBeNothing) operation.rest = numberOfBeginning(body);
        const LightOperation& first = (&operation)[1];
        const bool isTested = operation.rest != LightOperation::kAnything;
        if (isTested && (first.kind == kLightLetter || first.kind == kLightOne))
            operation.max = LightOperation::sizeOf(first.kind);
        if (isTested && disjoint(body.set, behind.set)) return here;
        operation.kind = kLightTrying;
        ++choices_;
        return here;
    }

    /// The number of the set that something can begin with, when that is of any use and there is
    /// room for it.
    Zel8u numberOfBeginning(const Beginning& beginning) {
        if (beginning.set == kEverything) return LightOperation::kAnything;
        for (unsigned left = shorthands_; left != 0; left &= left - 1) {
            const int i = __builtin_ctz(left);
            if (beginning.set == kShorthandSets[i])
                return static_cast<Zel8u>(LightProgram::kFirstShorthand + i);
        }
        if (size() + sizeof(AsciiSet) > room_) return LightOperation::kAnything;
        const int number = numberOf(beginning.set);
        return number < 0 ? LightOperation::kAnything : static_cast<Zel8u>(number);
    }

    void note(int price) {
        if (price > missPrice_) missPrice_ = price;
    }

    const size_t room_;
    const Node* const nodes_;
    const Node* const nodesEnd_;
    const bool isMultiLine_;
    const bool dotAll_;

    int operationCount_ = 0;
    int operationBytes_ = 0;  // what they take in the program
    int setCount_ = 0;
    unsigned shorthands_ = 0;
    int depth_ = 0;
    uint64_t isTarget_ = 0;  // operations that others lead to
    int missPrice_ = 0;
    int choices_ = 0;
    OpenGroup groups_[kMaxDepth];
    AsciiSet sets_[LightProgram::kFirstShorthand];
    LightOperation operations_[kMaxOperations];
    // Of those that pass over something: their offsets from the first operation, and the operations
    // that they lead to.
    int offsets_[kMaxOperations];
    int targets_[kMaxOperations];
};

}  // namespace

void addLightProgram(ZelRegExpState& state, Zel8u* place, long nodeRoom) {
    if (!mayHaveLightProgram(state)) return;
    const Node& first = state.nodes()[0];
    const bool isAnchored = first.value == 'A' || first.value == 'G' ||
                            (first.value == '^' && (state.options & kOptionMultiLine) == 0);
    if (!isAnchored || (state.options & (kOptionIgnoreCase | kOptionGlobal)) != 0) return;
    const auto* end = reinterpret_cast<const Zel8u*>(state.nodes() + nodeRoom);
    LightCompiler compiler(state, static_cast<size_t>(end - place));
    if (compiler.compile()) compiler.write(place);
}

}  // namespace zel
