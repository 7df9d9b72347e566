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
constexpr AsciiSet kDigitNot = inverted(kAsciiDigits);
constexpr AsciiSet kWordNot = inverted(kAsciiWords);
constexpr AsciiSet kSpaceNot = inverted(kAsciiSpaces);
constexpr AsciiSet kNewLineNot = inverted(kAsciiNewLine);

/// The characters that a shorthand accepts.
const AsciiSet& shorthandSet(int letter, bool dotAll) {
    switch (letter) {
        case 'd':
            return kAsciiDigits;
        case 'D':
            return kDigitNot;
        case 's':
            return kAsciiSpaces;
        case 'S':
            return kSpaceNot;
        case 'w':
            return kAsciiWords;
        case 'W':
            return kWordNot;
        case '.':
            return dotAll ? kEverything : kNewLineNot;
        default:
            return kNothing;
    }
}

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

    void write(char* to) const {
        const auto nodes = static_cast<int>(nodesEnd_ - nodes_);
        const LightProgram program = {LightProgram::kMark, static_cast<Zel8u>(setCount_),
                                      static_cast<Zel8u>(missPrice_),
                                      static_cast<Zel16u>(nodes + optionals_ * missPrice_)};
        const size_t sets = static_cast<size_t>(setCount_) * sizeof(AsciiSet);
        memcpy(to, &program, sizeof program);
        memcpy(to + sizeof program, sets_, sets);
        memcpy(to + sizeof program + sets, operations_,
               static_cast<size_t>(operationCount_) * sizeof(LightOperation));
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
        int optional;  // its operation kLightOptional, -1 for none
        int slot;      // its capture, 0 for none
    };

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

    LightOperation& emit(LightKind kind, int set = 0, int slot = 0, int min = 0, int max = 0) {
        LightOperation& operation = operations_[operationCount_++];
        operation = {kind,
                     static_cast<Zel8u>(set),
                     LightOperation::kAnything,
                     static_cast<Zel8u>(slot),
                     static_cast<Zel16u>(min),
                     static_cast<Zel16u>(max)};
        return operation;
    }

    size_t size() const {
        return sizeof(LightProgram) + static_cast<size_t>(setCount_) * sizeof(AsciiSet) +
               static_cast<size_t>(operationCount_) * sizeof(LightOperation);
    }

    /// The number of a set in the program; -1 when there are too many.
    int numberOf(const AsciiSet& set) {
        for (int i = 0; i < setCount_; ++i) {
            if (sets_[i] == set) return i;
        }
        if (setCount_ == LightProgram::kMaxSets) return -1;
        sets_[setCount_] = set;
        return setCount_++;
    }

    // The first pass. The functions that translate nodes answer what is behind those, null when the
    // walk has no operation for them.

    bool translate() {
        if (isQuantifierAt(nodes_ + 1) || nodesEnd_ - nodes_ > kMaxNodes) return false;
        for (const Node* node = nodes_ + 1; node != nodesEnd_;) {
            if (operationCount_ + 3 > kMaxOperations) return false;
            node = translateNode(node);
            if (node == nullptr) return false;
        }
        // What a group that is passed over leads to is there, if it is only the match.
        if (operationCount_ != 0 && lastTarget_ != operationCount_ &&
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
            default:
                return nullptr;
        }
    }

    /// A letter right behind a run that cannot hold it goes with the run.
    void translateLetter(int letter) {
        LightOperation* const last = operations_ + operationCount_ - 1;
        if (operationCount_ != 0 && lastTarget_ != operationCount_ && last->kind == kLightRun &&
            letter < 0x80 && !sets_[last->set].has(static_cast<unsigned>(letter))) {
            last->kind = kLightRunLetter;
            last->rest = static_cast<Zel8u>(letter);
            return;
        }
        emit(kLightLetter, letter);
    }

    const Node* translateText(const Node* node) {
        const ptrdiff_t offset =
            static_cast<const char*>(node->data) - reinterpret_cast<const char*>(nodesEnd_);
        if (offset > 0xFFFF || node->count > 0xFFFF) return nullptr;
        emit(kLightText, 0, 0, static_cast<int>(offset), node->count);
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
        AsciiSet set = {};
        const Node* behind = node + 1;
        if (node->kind != NodeCharacterClass) {
            addMember(*node, set);
        } else {
            for (const Node* const end = behind + node->count; behind != end; ++behind) {
                if (behind->extra != 0 || !addMember(*behind, set)) return false;
            }
            if (node->value < 0) set.invert();
        }
        atom = {numberOf(set), 1, 1, false, behind};
        if (isQuantifierAt(behind)) {
            atom = {atom.set, behind->value, behind->count, behind->kind == NodeQuantifierMin,
                    behind + 1};
            if (atom.min < 0 || atom.max < atom.min || atom.min >= LightOperation::kNoLimit)
                return false;
            if (atom.max > LightOperation::kNoLimit) atom.max = LightOperation::kNoLimit;
            if (atom.isLazy && mayMissWhatFollows(*node, atom.behind)) return false;
        }
        return atom.set >= 0;
    }

    bool addMember(const Node& node, AsciiSet& set) const {
        switch (node.kind) {
            case NodeLetter:
                if ((node.value & 0x80) == 0) set.add(static_cast<Zel8u>(node.value));
                return true;
            case NodeLetterRange:
                set.addAll(shorthandSet(node.value, dotAll_));
                return true;
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
        emit(kind, atom.set, slot, atom.min, atom.max);
    }

    const Node* openGroup(const Node* node) {
        const Node* const close = node + 1 + node->count;
        const int slot = node->kind == NodeGroupingCapture ? node->extra : 0;
        if (slot > 0xFF || depth_ == kMaxDepth) return nullptr;
        OpenGroup& group = groups_[depth_++];
        group = {close, -1, slot};
        if (isQuantifierAt(close + 1)) {
            const Node& repeat = close[1];
            if (repeat.kind != NodeQuantifierMax || repeat.count != 1) return nullptr;
            if (repeat.value == 0) {
                group.optional = operationCount_;
                ++optionals_;
                if (!noteCaptures(node, close, emit(kLightOptional))) return nullptr;
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
        if (slot != 0) emit(kLightOpen, 0, slot);
        return node + 1;
    }

    /// Which captures are unset when the group is passed over: their numbers follow each other.
    static bool noteCaptures(const Node* open, const Node* close, LightOperation& operation) {
        int captures = 0;
        for (const Node* node = open; node != close; ++node) {
            if (node->kind != NodeGroupingCapture) continue;
            if (node->extra > 0xFF) return false;
            if (captures++ == 0) operation.slot = static_cast<Zel8u>(node->extra);
        }
        operation.set = static_cast<Zel8u>(captures);
        return true;
    }

    const Node* closeGroup(const Node* node) {
        if (depth_ == 0 || groups_[depth_ - 1].close != node) return nullptr;
        const OpenGroup& group = groups_[--depth_];
        if (group.slot != 0) emit(kLightClose, 0, group.slot);
        if (group.optional >= 0) {
            operations_[group.optional].min = static_cast<Zel16u>(operationCount_);
            lastTarget_ = operationCount_;
        }
        return isQuantifierAt(node + 1) ? node + 2 : node + 1;
    }

    // The second pass.

    void decide() {
        Beginning beginnings[kMaxOperations];
        for (int i = operationCount_ - 1; i >= 0; --i) {
            const Beginning* const next = &beginnings[i + 1];
            LightOperation& operation = operations_[i];
            Beginning& here = beginnings[i];
            switch (operation.kind) {
                case kLightLetter:
                    here = beginningWith(operation.set);
                    break;
                case kLightText:
                    here = beginningWith(reinterpret_cast<const Zel8u*>(nodesEnd_)[operation.min]);
                    break;
                case kLightOne:
                    here = {sets_[operation.set], 1, false, false};
                    break;
                case kLightRunLetter:
                    beginRun(operation, beginningWith(operation.rest), here);
                    break;
                case kLightRun:
                case kLightLazy:
                case kLightRaising:
                    beginRun(operation, *next, here);
                    decideRun(operation, *next);
                    break;
                case kLightOptional:
                    decideOptional(operation, *next, beginnings[operation.min], here);
                    break;
                case kLightEnd:
                case kLightEndMatch:
                case kLightLineEnd:
                    here = {kAsciiNewLine, 1, true, false};
                    break;
                case kLightVeryEnd:
                    here = {kNothing, 1, true, false};
                    break;
                case kLightMatch:
                    here = {kEverything, 0, true, true};
                    break;
                case kLightBoundary:
                case kLightInside:
                    here = {next->set, next->price + 1, next->mayBeNothing, false};
                    break;
                default:  // captures
                    here = *next;
                    ++here.price;
            }
        }
    }

    static Beginning beginningWith(int letter) {
        Beginning beginning = {kNothing, 1, false, false};
        if (letter < 0x80) beginning.set.add(static_cast<unsigned>(letter));
        return beginning;
    }

    void beginRun(const LightOperation& operation, const Beginning& next, Beginning& here) {
        note(next.price + 1);
        here = {sets_[operation.set], operation.slot == 0 ? 1 : 3, false, false};
        if (operation.min != 0) return;
        here.set.addAll(next.set);
        here.price += next.price;
        here.mayBeNothing = next.mayBeNothing;
        here.cannotFail = next.cannotFail;
    }

    void decideRun(LightOperation& operation, const Beginning& next) {
        if (operation.kind == kLightRun) {
            if (operation.min == operation.max || next.cannotFail ||
                disjoint(sets_[operation.set], next.set))
                return;
            operation.kind = kLightGiving;
        }
        ++choices_;
        operation.rest = beginningOf(next);
    }

    void decideOptional(LightOperation& operation, const Beginning& body, const Beginning& behind,
                        Beginning& here) {
        here = behind;
        here.set.addAll(body.set);
        here.mayBeNothing = here.mayBeNothing || body.mayBeNothing;
        here.price += body.price + 1;
        if (here.price > kTooDear) here.price = kTooDear;  // groups in groups would double it
        note(here.price);
        if (!body.mayBeNothing) operation.rest = beginningOf(body);
        const LightOperation& first = (&operation)[1];
        const bool isTested = operation.rest != LightOperation::kAnything;
        operation.max = isTested && (first.kind == kLightLetter || first.kind == kLightOne);
        if (isTested && disjoint(body.set, behind.set)) return;
        operation.kind = kLightTrying;
        ++choices_;
    }

    /// The number of the set that something can begin with, when that is of any use and there is
    /// room for it.
    Zel8u beginningOf(const Beginning& beginning) {
        if (beginning.set == kEverything || size() + sizeof(AsciiSet) > room_)
            return LightOperation::kAnything;
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
    int setCount_ = 0;
    int depth_ = 0;
    int optionals_ = 0;
    int lastTarget_ = -1;  // the last operation that a group passed over leads to
    int missPrice_ = 0;
    int choices_ = 0;
    OpenGroup groups_[kMaxDepth];
    AsciiSet sets_[LightProgram::kMaxSets];
    LightOperation operations_[kMaxOperations];
};

}  // namespace

void addLightProgram(ZelRegExpState& state, char* textEnd, long nodeRoom) {
    if (!mayHaveLightProgram(state)) return;
    char* const nodesStart = reinterpret_cast<char*>(state.nodes());
    const size_t used = static_cast<size_t>(textEnd - nodesStart);
    const size_t start = (used + 7) / 8 * 8;
    const size_t end = static_cast<size_t>(nodeRoom) * sizeof(Node);
    memset(textEnd, 0, start + sizeof(LightProgram) - used);
    const Node& first = state.nodes()[0];
    const bool isAnchored = first.value == 'A' || first.value == 'G' ||
                            (first.value == '^' && (state.options & kOptionMultiLine) == 0);
    if (!isAnchored || (state.options & (kOptionIgnoreCase | kOptionGlobal)) != 0) return;
    LightCompiler compiler(state, end - start);
    if (compiler.compile()) compiler.write(nodesStart + start);
}

}  // namespace zel
