// The plan for patterns that take bytes of one set, in whatever complicated way, up to a byte of
// another: a run of the first set with none of the second behind it holds no start of a match. What
// the engine would spend on such a run is known from its length (hopeless_run.h).
#include "regexp/match/hopeless_run.h"
#include "regexp/match/planner.h"

namespace zel {

namespace {

/// Where single runs are tried in vain the engine is quick; below this price for a run of 16 bytes
/// the other plans do better.
constexpr int64_t kWorthwhile = 150;

/// Reads nodes into the automaton, from the end of the program to its beginning.
class Builder {
public:
    Builder(const Node* nodes, HopelessRun& run, StackGuard& stack)
        : nodes_(nodes), run_(run), stack_(stack) {}

    bool failed() const { return failed_ || run_.failed(); }

    /// The state of the nodes from `index` to `end`, followed by `next`.
    int sequence(int index, int end, int next) {
        if (failed() || !stack_.hasRoom()) failed_ = true;
        if (index >= end || failed_) return next;
        const Node& node = nodes_[index];
        switch (node.kind) {
            case NodeLetter:
            case NodeString:
            case NodeLetterRange:
            case NodeCharacterClass:
                return atom(index, end, next);
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                return group(index, end, next);
            default:
                failed_ = true;
                return next;
        }
    }

private:
    const Node* quantifier(int index) const {
        return isQuantifier(nodes_[index]) ? &nodes_[index] : nullptr;
    }

    int atom(int index, int end, int next) {
        const bool isClass = nodes_[index].kind == NodeCharacterClass;
        const int behind = isClass ? index + 1 + nodes_[index].count : index + 1;
        const Node* repeat = behind < end ? quantifier(behind) : nullptr;
        const int rest = sequence(repeat != nullptr ? behind + 1 : behind, end, next);
        if (repeat == nullptr) return run_.addRun(rest, 1, 1);
        if (repeat->kind != NodeQuantifierMax) failed_ = true;
        return run_.addRun(rest, repeat->value, repeat->count);
    }

    /// The repetitions one after the other; the last of an unbounded group leads into itself.
    int group(int open, int end, int next) {
        const int close = open + 1 + nodes_[open].count;
        const Node* repeat = close + 1 < end ? quantifier(close + 1) : nullptr;
        const int rest = sequence(repeat != nullptr ? close + 2 : close + 1, end, next);
        if (nextBar(nodes_, open + 1, close, nodes_[open].value) != close) failed_ = true;
        if (repeat == nullptr) return run_.addStep(sequence(open + 1, close, run_.addStep(rest)));
        const bool unbounded = repeat->count == kUnbounded;
        const int count = unbounded ? (repeat->value > 1 ? repeat->value : 1) : repeat->count;
        if (repeat->kind != NodeQuantifierMax || count < 1 || count > HopelessRun::kMaxStates)
            failed_ = true;
        int body = -1;
        for (int number = count; number >= 1 && !failed(); --number) {
            const int closing = run_.addFork(body, number >= repeat->value ? rest : -1);
            body = sequence(open + 1, close, closing);
            if (number == count && unbounded) run_.setFirst(closing, body);
        }
        return run_.addFork(body, repeat->value == 0 ? rest : -1);
    }

    const Node* nodes_;
    HopelessRun& run_;
    StackGuard& stack_;
    bool failed_ = false;
};

}  // namespace

/// The bytes of an atom or literal, all of them ASCII.
bool Planner::addAsciiBytes(int index, Zel32u flags, ByteSet& bytes) const {
    const Node& node = nodes_[index];
    if (node.kind != NodeString) {
        ByteSet atom;
        if (!isAsciiRun(index, flags, atom)) return false;
        bytes.addAll(atom);
        return true;
    }
    for (int i = 0; i < node.count; ++i) {
        const Zel8u letter = static_cast<const Zel8u*>(node.data)[i];
        if (letter >= 0x80 || (flags & kOptionIgnoreCase) != 0) return false;
        bytes.add(letter);
    }
    return true;
}

/// Of the nodes in front of `end`. Not inlined, so that the room is not taken before anybody asks
/// for it.
[[gnu::noinline]] bool Planner::billHopelessRuns(
    int end, int64_t (&bills)[HopelessRun::kLongest + 1]) const {
    HopelessRun run;
    Builder builder(nodes_, run, stack_);
    const int first = builder.sequence(0, end, run.addEnd());
    return !builder.failed() && run.bill(first, bills);
}

bool Planner::planRequired(Zel32u flags, Plan& plan) const {
    ByteSet taken = {};
    ByteSet required = {};
    int index = 0;
    for (; index < count_; ++index) {
        const Node& node = nodes_[index];
        if (node.kind == NodeGroupingCapture || node.kind == NodeGroupingNoCapture) {
            const int close = closeOf(index);
            for (int i = index + 1; i < close; ++i) {
                if (isAtom(nodes_[i].kind) && !addAsciiBytes(i, flags, taken)) return false;
                i = behindAtom(i) - 1;
            }
            index = behindGroup(close) - 1;
            continue;
        }
        if (!isAtom(node.kind)) return false;
        const Node* repeat = quantifier(behindAtom(index));
        required = {};
        if (!isAsciiRun(index, flags, required) && node.kind != NodeString) return false;
        if (node.kind == NodeString) required = atomBytes(index, flags);
        if (index > 0 && disjoint(required, taken) && (repeat == nullptr || repeat->value > 0))
            break;
        if (!addAsciiBytes(index, flags, taken)) return false;
        index = repeat != nullptr ? behindAtom(index) : behindAtom(index) - 1;
    }
    constexpr int kMaxNodes = 64;
    if (index >= count_ || index > kMaxNodes || !stack_.hasRoom(sizeof(HopelessRun))) return false;
    if (!disjoint(required, plan.first)) return false;  // there need not be a run in front
    if (!billHopelessRuns(index, plan.bills)) return false;
    if (plan.bills[16] - plan.bills[15] < kWorthwhile) return false;
    plan.kind = Plan::kRequired;
    plan.first = taken;
    plan.behind = required;
    plan.price = static_cast<int>(plan.bills[1]);
    plan.exact = false;
    return true;
}

}  // namespace zel
