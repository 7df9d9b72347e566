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

/// The characters that a shorthand accepts.
AsciiSet shorthandSet(int letter, bool dotAll) {
    AsciiSet set = {};
    switch (letter) {
        case 'w':
        case 'W':
            set = kAsciiWords;
            break;
        case 'd':
        case 'D':
            set = kAsciiDigits;
            break;
        case 's':
        case 'S':
            set = kAsciiSpaces;
            break;
        default:  // the dot
            if (!dotAll) set.add('\n');
            set.invert();
            return set;
    }
    if (letter < 'a') set.invert();
    return set;
}

class LightCompiler {
public:
    /// A program may take `room` bytes.
    LightCompiler(const ZelRegExpState& state, size_t room)
        : room_(room),
          nodes_(state.nodes()),
          count_(state.nodeCount),
          text_(reinterpret_cast<const char*>(nodes_ + count_)),
          isMultiLine_((state.options & kOptionMultiLine) != 0),
          dotAll_((state.options & kOptionDotAll) != 0) {}

    /// False when the pattern is not one for the light walk.
    bool compile() {
        if (!translate() || size() > room_) return false;
        decide();
        return missPrice_ < kTooDear && choices_ <= LightProgram::kMaxChoices;
    }
    void write(char* to) const {
        const int path = count_ + optionals_ * missPrice_;
        const LightProgram program = {LightProgram::kMark, static_cast<Zel8u>(setCount_),
                                      static_cast<Zel8u>(missPrice_), static_cast<Zel16u>(path)};
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

    /// What the program can begin with from an operation on.
    struct Beginning {
        AsciiSet set;
        bool mayBeNothing;  // it may match without a character, at least at the end of the text
        bool cannotFail;
        int price;  // steps at most, to find out that it does not begin
    };

    struct OpenGroup {
        int close;     // its closing node
        int optional;  // its operation kLightOptional, -1 for none
        int slot;      // its capture, 0 for none
    };

    const Node* quantifier(int index) const {
        return index < count_ && isQuantifier(nodes_[index]) ? &nodes_[index] : nullptr;
    }

    LightOperation* emit(LightKind kind, int set = 0, int slot = 0) {
        LightOperation& operation = operations_[operationCount_++];
        operation = {
            kind, static_cast<Zel8u>(set), LightOperation::kAnything, static_cast<Zel8u>(slot), 0,
            0};
        return &operation;
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

    bool translate() {
        if (quantifier(1) != nullptr || count_ > kMaxNodes) return false;
        for (int i = 1; i < count_;) {
            if (operationCount_ + 3 > kMaxOperations) return false;
            const int nodes = translateNode(i);
            if (nodes == 0) return false;
            i += nodes;
        }
        if (operationCount_ != 0 && operations_[operationCount_ - 1].kind == kLightEnd &&
            lastTarget_ != operationCount_) {
            operations_[operationCount_ - 1].kind = kLightEndMatch;
        } else {
            emit(kLightMatch);
        }
        return true;
    }

    /// How many nodes became operations, 0 when there is none for this one.
    int translateNode(int index) {
        const Node& node = nodes_[index];
        switch (node.kind) {
            case NodeLetter:
            case NodeLetterRange:
            case NodeCharacterClass:
                return translateAtom(index, 0);
            case NodeString: {
                LightOperation& operation = *emit(kLightText);
                const ptrdiff_t offset = static_cast<const char*>(node.data) - text_;
                if (offset > 0xFFFF || node.count > 0xFFFF) return 0;
                operation.min = static_cast<Zel16u>(offset);
                operation.max = static_cast<Zel16u>(node.count);
                return 1;
            }
            case NodePosition:
                return translatePosition(index);
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                return openGroup(index);
            case NodeGroupingClose:
                return closeGroup(index);
            default:
                return 0;
        }
    }

    int translatePosition(int index) {
        if (quantifier(index + 1) != nullptr) return 0;
        switch (nodes_[index].value) {
            case '$':
                emit(isMultiLine_ ? kLightLineEnd : kLightEnd);
                return 1;
            case 'Z':
                emit(kLightEnd);
                return 1;
            case 'z':
                emit(kLightVeryEnd);
                return 1;
            case 'b':
                emit(kLightBoundary);
                return 1;
            case 'B':
                emit(kLightInside);
                return 1;
            default:
                return 0;
        }
    }

    /// The set of a letter, shorthand or class.
    bool readSet(int index, AsciiSet& set) const {
        const Node& node = nodes_[index];
        set = {};
        if (node.kind != NodeCharacterClass) return addMember(node, set);
        for (const Node* member = &node + 1; member <= &node + node.count; ++member) {
            if (member->extra != 0 || !addMember(*member, set)) return false;
        }
        if (node.value < 0) set.invert();
        return true;
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

    /// A character with its quantifier, all there is in the capture `slot` when that is not 0.
    int translateAtom(int index, int slot) {
        const Node& node = nodes_[index];
        const int behind = index + 1 + (node.kind == NodeCharacterClass ? node.count : 0);
        const Node* const repeat = quantifier(behind);
        if (node.kind == NodeLetter && repeat == nullptr && slot == 0) {
            emit(kLightLetter, node.value & 0xFF);
            return 1;
        }
        AsciiSet members;
        if (!readSet(index, members)) return 0;
        const int set = numberOf(members);
        if (set < 0) return 0;
        if (repeat == nullptr && slot == 0) {
            emit(kLightOne, set);
            return behind - index;
        }
        const bool isLazy = repeat != nullptr && repeat->kind == NodeQuantifierMin;
        const int min = repeat == nullptr ? 1 : repeat->value;
        const int max = repeat == nullptr ? 1 : repeat->count;
        if (min < 0 || max < min || min >= LightOperation::kNoLimit) return 0;
        if (isLazy && mayMissWhatFollows(index, behind + 1)) return 0;
        const LightKind lazy = node.kind == NodeCharacterClass ? kLightLazy : kLightRaising;
        LightOperation& operation = *emit(isLazy ? lazy : kLightRun, set, slot);
        operation.min = static_cast<Zel16u>(min);
        operation.max =
            max < LightOperation::kNoLimit ? static_cast<Zel16u>(max) : LightOperation::kNoLimit;
        return behind + (repeat != nullptr) - index;
    }

    /// Whether the lazy run of a character is not tried to be ended where it could be: it looks out
    /// for a letter behind it, even when that may be missing.
    bool mayMissWhatFollows(int index, int next) const {
        return nodes_[index].kind != NodeCharacterClass && next < count_ &&
               nodes_[next].kind == NodeLetter && quantifier(next + 1) != nullptr &&
               nodes_[next + 1].value == 0;
    }

    /// Whether the group's body is one character with or without a quantifier.
    bool holdsOneAtom(int open) const {
        const Node& node = nodes_[open + 1];
        const int close = open + 1 + nodes_[open].count;
        if (node.kind != NodeLetter && node.kind != NodeLetterRange &&
            node.kind != NodeCharacterClass)
            return false;
        const int behind = open + 2 + (node.kind == NodeCharacterClass ? node.count : 0);
        return behind == close || (behind + 1 == close && quantifier(behind) != nullptr);
    }

    int openGroup(int index) {
        const Node& node = nodes_[index];
        const int close = index + 1 + node.count;
        const Node* const repeat = quantifier(close + 1);
        const int slot = node.kind == NodeGroupingCapture ? node.extra : 0;
        if (slot > 0xFF || depth_ == kMaxDepth) return 0;
        OpenGroup& group = groups_[depth_++];
        group = {close, -1, slot};
        if (repeat != nullptr) {
            if (repeat->kind != NodeQuantifierMax || repeat->count != 1) return 0;
            if (repeat->value == 0) {
                group.optional = operationCount_;
                ++optionals_;
                if (!noteCaptures(index, close, *emit(kLightOptional))) return 0;
            }
        }
        if (slot == 0) return 1;
        if (holdsOneAtom(index)) {
            group.slot = 0;  // the run takes care of it
            const int nodes = translateAtom(index + 1, slot);
            return nodes == 0 ? 0 : 1 + nodes;
        }
        emit(kLightOpen, 0, slot);
        return 1;
    }

    /// Which captures are unset when the group is passed over: their numbers follow each other.
    bool noteCaptures(int open, int close, LightOperation& operation) const {
        int captures = 0;
        for (int i = open; i < close; ++i) {
            if (nodes_[i].kind != NodeGroupingCapture) continue;
            if (nodes_[i].extra > 0xFF) return false;
            if (captures++ == 0) operation.slot = static_cast<Zel8u>(nodes_[i].extra);
        }
        operation.set = static_cast<Zel8u>(captures);
        return true;
    }

    int closeGroup(int index) {
        if (depth_ == 0 || groups_[depth_ - 1].close != index) return 0;
        const OpenGroup& group = groups_[--depth_];
        if (group.slot != 0) emit(kLightClose, 0, group.slot);
        if (group.optional >= 0) {
            operations_[group.optional].min = static_cast<Zel16u>(operationCount_);
            lastTarget_ = operationCount_;
        }
        return quantifier(index + 1) != nullptr ? 2 : 1;
    }

    // The second pass.

    void decide() {
        Beginning beginnings[kMaxOperations + 1];
        for (int i = operationCount_ - 1; i >= 0; --i) {
            Beginning& here = beginnings[i];
            const Beginning& next = beginnings[i + 1];
            LightOperation& operation = operations_[i];
            switch (operation.kind) {
                case kLightLetter:
                    here = {};
                    if (operation.set < 0x80) here.set.add(operation.set);
                    here.price = 1;
                    break;
                case kLightText: {
                    const auto first = static_cast<Zel8u>(text_[operation.min]);
                    here = {};
                    if (first < 0x80) here.set.add(first);
                    here.price = 1;
                    break;
                }
                case kLightOne:
                    here = {sets_[operation.set], false, false, 1};
                    break;
                case kLightRun:
                case kLightLazy:
                case kLightRaising:
                    decideRun(operation, next, here);
                    break;
                case kLightOptional:
                    decideOptional(operation, next, beginnings[operation.min], here);
                    break;
                case kLightEnd:
                case kLightEndMatch:
                case kLightLineEnd:
                case kLightVeryEnd:
                    here = {{}, true, false, 1};
                    if (operation.kind != kLightVeryEnd) here.set.add('\n');
                    break;
                case kLightMatch:
                    here = {everything(), true, true, 0};
                    break;
                case kLightBoundary:
                case kLightInside:
                    here = next;
                    here.cannotFail = false;
                    ++here.price;
                    break;
                default:  // captures
                    here = next;
                    ++here.price;
            }
        }
    }

    static AsciiSet everything() { return {{~uint64_t{0}, ~uint64_t{0}}}; }

    void decideRun(LightOperation& operation, const Beginning& next, Beginning& here) {
        const AsciiSet members = sets_[operation.set];
        const bool isGreedy = operation.kind == kLightRun;
        here = {members, false, false, operation.slot == 0 ? 1 : 3};
        if (operation.min == 0) {
            here.set.addAll(next.set);
            here.mayBeNothing = next.mayBeNothing;
            here.cannotFail = next.cannotFail;
            here.price += next.price;
        }
        note(next.price + 1);
        if (isGreedy &&
            (operation.min == operation.max || next.cannotFail || disjoint(members, next.set)))
            return;
        if (isGreedy) operation.kind = kLightGiving;
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
        if (operation.rest != LightOperation::kAnything && disjoint(body.set, behind.set)) return;
        operation.kind = kLightTrying;
        ++choices_;
    }

    /// The number of the set that something can begin with, when that is of any use and there is
    /// room for it.
    Zel8u beginningOf(const Beginning& beginning) {
        if (beginning.set == everything() || size() + sizeof(AsciiSet) > room_)
            return LightOperation::kAnything;
        const int number = numberOf(beginning.set);
        return number < 0 ? LightOperation::kAnything : static_cast<Zel8u>(number);
    }

    void note(int price) {
        if (price > missPrice_) missPrice_ = price;
    }

    const size_t room_;
    const Node* const nodes_;
    const int count_;
    const char* const text_;
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
