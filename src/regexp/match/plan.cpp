// Draws up the plan of a search: tries the kinds of plan, the most selective first.
#include "regexp/match/plan.h"

#include "regexp/match/character.h"
#include "regexp/match/planner.h"
#include "regexp/match/predicates.h"
#include "string/kernels/api.h"

namespace zel {

bool Planner::planLiteral(const Lead& lead, Plan& plan) const {
    if (lead.index >= count_ || nodes_[lead.index].kind != NodeString) return false;
    plan.kind = Plan::kLiteral;
    plan.price = lead.price + 1;
    plan.exact = lead.price == 0;
    plan.ignoreCase = (lead.flags & kOptionIgnoreCase) != 0;
    setLiteral(lead.index, plan);
    return true;
}

/// `(?<=literal)`, of ASCII letters so that each is one character.
bool Planner::planBehind(const Lead& lead, Plan& plan) const {
    if (lead.index >= count_ || nodes_[lead.index].kind != NodeGroupingLookBehind) return false;
    if (nodes_[lead.index].count != 1 || !isLiteral(lead.index + 1, lead.flags)) return false;
    setLiteral(lead.index + 1, plan);
    for (int i = 0; i < plan.literalLength; ++i) {
        if (plan.literal[i] >= 0x80) return false;
    }
    plan.kind = Plan::kBehind;
    plan.price = lead.price + 2;
    return true;
}

/// `.*literal` or `.+literal`, where the dot stops at newlines.
bool Planner::planLine(Zel32u flags, Plan& plan) const {
    if (count_ < 4 || nodes_[0].kind != NodePosition || nodes_[0].value != kLineStartMarker)
        return false;
    if (nodes_[1].kind != NodeLetterRange || (flags & kOptionDotAll) != 0) return false;
    const Node* repeat = quantifier(2);
    if (repeat == nullptr || repeat->kind != NodeQuantifierMax || repeat->count != kUnbounded)
        return false;
    if (repeat->value > 1 || !isLiteral(3, flags)) return false;
    setLiteral(3, plan);
    for (int i = 0; i < plan.literalLength; ++i) {
        if (plan.literal[i] == '\n') return false;
    }
    plan.kind = Plan::kLine;
    plan.min = repeat->value;
    plan.price = 4;
    return true;
}

/// `(x)\1`, where x is one ASCII character of a set.
bool Planner::planDoubled(const Lead& lead, Plan& plan) const {
    if (lead.index == 0 || lead.index >= count_) return false;
    const Node& opening = nodes_[lead.index - 1];
    if (opening.kind != NodeGroupingCapture || (lead.flags & kOptionIgnoreCase) != 0) return false;
    const int close = behindAtom(lead.index);
    if (close != closeOf(lead.index - 1) || !isAsciiRun(lead.index, lead.flags, plan.first))
        return false;
    if (close + 1 >= count_ || nodes_[close + 1].kind != NodeBackReference) return false;
    if (nodes_[close + 1].value != opening.extra || quantifier(close + 2) != nullptr) return false;
    plan.kind = Plan::kDoubled;
    plan.exact = false;
    plan.price = lead.price + 3;
    return true;
}

/// Whether the atom accepts single ASCII bytes only, so that runs of it are runs of bytes.
bool Planner::isAsciiRun(int index, Zel32u flags, ByteSet& bytes) const {
    const Zel32u kind = nodes_[index].kind;
    if (kind != NodeLetter && kind != NodeLetterRange && kind != NodeCharacterClass) return false;
    bytes = atomBytes(index, flags);
    return (bytes.words[2] | bytes.words[3]) == 0;
}

/// Whether \b in front of the run holds only where no byte of a word stands before it.
bool Planner::beginsWord(const Lead& lead, const ByteSet& bytes) const {
    for (int w = 0; w < 4; ++w) {
        if ((bytes.words[w] & ~kWordBytes.words[w]) != 0) return false;
    }
    for (int i = 0; i < lead.index; ++i) {
        if (nodes_[i].kind == NodePosition && nodes_[i].value == 'b') return true;
    }
    return false;
}

/// `(run)x\1`: the close, a letter and a reference to the group that the run stands in.
bool Planner::echoesFirstByte(int behindRun, const Lead& lead) const {
    if (lead.index == 0 || behindRun + 2 >= count_ || (lead.flags & kOptionIgnoreCase) != 0)
        return false;
    const Node& opening = nodes_[lead.index - 1];
    const Node& reference = nodes_[behindRun + 2];
    return opening.kind == NodeGroupingCapture && behindRun == closeOf(lead.index - 1) &&
           quantifier(behindRun + 1) == nullptr && isLiteral(behindRun + 1, lead.flags) &&
           nodes_[behindRun + 1].kind == NodeLetter && reference.kind == NodeBackReference &&
           reference.value == opening.extra && quantifier(behindRun + 3) == nullptr;
}

/// Two runs of sets that share no byte, and a literal behind them.
bool Planner::planTwoRuns(int index, const Lead& lead, const ByteSet& bytes, const Node& repeat,
                          Plan& plan) const {
    if (repeat.count != kUnbounded || !isAtom(nodes_[index].kind)) return false;
    const int next = behindAtom(index);
    const Node* secondRepeat = quantifier(next);
    if (secondRepeat == nullptr || secondRepeat->kind != NodeQuantifierMax) return false;
    if (secondRepeat->value != 1 || secondRepeat->count != kUnbounded) return false;
    if (!isAsciiRun(index, lead.flags, plan.second) || !disjoint(bytes, plan.second)) return false;
    if (!isLiteral(next + 1, lead.flags) || nodes_[next + 1].kind != NodeString) return false;
    setLiteral(next + 1, plan);
    if (plan.second.has(*plan.literal)) return false;
    plan.kind = Plan::kRunLiteral;
    plan.hasSecond = true;
    plan.avoidsWide = true;
    plan.first = bytes;
    plan.min = repeat.value;
    plan.price = lead.price + 3;
    plan.runPrice = 1;
    plan.exact = false;
    return true;
}

/// A run of a set's bytes and what comes behind it: something outside the set, or a literal.
bool Planner::planRun(const Lead& lead, Plan& plan) {
    ByteSet bytes;
    if (lead.index >= count_ || !isAtom(nodes_[lead.index].kind)) return false;
    const int next = behindAtom(lead.index);
    const Node* repeat = quantifier(next);
    if (repeat == nullptr || repeat->kind != NodeQuantifierMax || repeat->value < 1) return false;
    const bool bounded = repeat->count != kUnbounded;
    if (bounded && repeat->count > 64) return false;
    if (!isAsciiRun(lead.index, lead.flags, bytes)) return false;
    Beginning rest;
    if (!begin(next + 1, lead.flags, rest)) return false;
    const bool shorthand = nodes_[lead.index].kind == NodeLetterRange;
    int behind = next + 1;
    Zel32u flagsBehind = lead.flags;
    for (; behind < count_ && nodes_[behind].kind == NodeGroupingClose; ++behind) {
        flagsBehind = static_cast<Zel32u>(nodes_[behind].count);
    }
    const bool hasLiteral = !bounded && isLiteral(behind, flagsBehind);
    // Several bytes that have to follow are rarer than a byte that ends the run.
    const bool isRare = hasLiteral && nodes_[behind].kind == NodeString && !plan.lines;
    if (disjoint(bytes, rest.bytes) && !isRare) {
        if (planTwoRuns(next + 1, lead, bytes, *repeat, plan)) return true;
        plan.kind = Plan::kRun;
        plan.behind = rest.bytes;
        plan.wordStart = beginsWord(lead, bytes);
        plan.echoes = plan.wordStart && echoesFirstByte(next + 1, lead);
        // A shorthand in front of a longer character gives back more than one byte: to be tried.
        if (shorthand) plan.behind.addRange(0xC0, 0xFF);
    } else {
        if (!hasLiteral) return false;
        plan.kind = Plan::kRunLiteral;
        plan.avoidsWide = shorthand;
        setLiteral(behind, plan);
    }
    plan.first = bytes;
    plan.min = repeat->value;
    plan.max = repeat->count;
    plan.price = lead.price + 1 + (bounded ? repeat->count * rest.price : 0);
    plan.runPrice = bounded ? 0 : rest.price;
    plan.exact = false;
    return true;
}

/// The bit for an alternative in the tables.
Zel8u Planner::prefixBucket(const Lead& lead, Plan& plan) const {
    ++plan.alternatives;
    const bool isText = lead.index < count_ && nodes_[lead.index].kind == NodeString;
    const int bit = isText ? plan.prefix.bitFor(*static_cast<const Zel8u*>(nodes_[lead.index].data))
                           : plan.prefix.bitForAny();
    return static_cast<Zel8u>(1u << bit);
}

/// Adds what the alternative at node `index` can begin with to a bucket.
bool Planner::addPrefix(int index, Zel32u flags, Plan& plan) const {
    const Lead lead = leadFrom(index, flags);
    kernels::PrefixTables& prefix = plan.prefix;
    const Zel8u bucket = prefixBucket(lead, plan);
    int depth = 0;
    const auto addPosition = [&](const ByteSet& bytes) {
        for (int c = 0; c < 256; ++c) {
            if (bytes.has(static_cast<Zel8u>(c))) prefix.add(depth, static_cast<Zel8u>(c), bucket);
        }
        ++depth;
    };
    for (int i = lead.index; i < count_ && depth < prefix.depth; i = behindAtom(i)) {
        const Node& node = nodes_[i];
        if (node.kind == NodeString) {
            const Zel8u* text = static_cast<const Zel8u*>(node.data);
            for (int k = 0; k < node.count && depth < prefix.depth; ++k) {
                addPosition(literalByte(text[k], lead.flags));
            }
            continue;
        }
        ByteSet bytes;
        if (!isAtom(node.kind) || !isAsciiRun(i, lead.flags, bytes)) break;
        const Node* repeat = quantifier(behindAtom(i));
        const int sure = repeat == nullptr ? 1 : repeat->value;
        for (int k = 0; k < sure && depth < prefix.depth; ++k) addPosition(bytes);
        if (repeat != nullptr) break;  // how it goes on depends
    }
    prefix.depth = depth;
    return depth >= 2;
}

bool Planner::addPrefixes(int from, int to, int serial, Zel32u flags, Plan& plan) const {
    for (;;) {
        if (!addPrefix(from, flags, plan)) return false;
        from = nextBar(nodes_, from, to, serial);
        if (from == to) return true;
        flags = static_cast<Zel32u>(nodes_[from].count);
        ++from;
    }
}

/// What the first two to four characters of every alternative are, at top level or in a group that
/// comes first.
bool Planner::planPrefix(Zel32u flags, bool hasBars, Plan& plan) const {
    plan.prefix = {};
    plan.prefix.depth = kernels::PrefixTables::kMaxDepth;
    plan.alternatives = 0;
    bool known = false;
    const Lead lead = leadFrom(0, flags);
    const bool group = !hasBars && lead.index < count_ &&
                       (nodes_[lead.index].kind == NodeGroupingCapture ||
                        nodes_[lead.index].kind == NodeGroupingNoCapture);
    if (group) {
        const Node* repeat = quantifier(closeOf(lead.index) + 1);
        if (repeat != nullptr && repeat->value < 1) return false;
        known = addPrefixes(lead.index + 1, closeOf(lead.index), nodes_[lead.index].value,
                            lead.flags, plan);
    } else {
        known = addPrefixes(0, count_, 0, flags, plan);
    }
    if (!known) return false;
    plan.kind = Plan::kPrefix;
    // An alternative of single characters can get as far as the positions looked at.
    plan.price += plan.alternatives * kernels::PrefixTables::kMaxDepth;
    plan.exact = false;
    return true;
}

void Planner::make(Zel32u flags, Plan& plan) {
    const int bar = nextBar(nodes_, 0, count_, 0);
    const Lead lead = leadFrom(0, flags);
    if (bar == count_) {
        if (planLiteral(lead, plan) || planBehind(lead, plan) || planLine(flags, plan)) return;
    }

    Beginning all;
    Zel32u alternativeFlags = flags;
    for (int first = 0;;) {
        Beginning part;
        if (!add(begin(first, alternativeFlags, part), part, all)) return;
        first = nextBar(nodes_, first, count_, 0);
        if (first == count_) break;
        alternativeFlags = static_cast<Zel32u>(nodes_[first].count);
        ++first;
    }
    plan.price = all.price;
    plan.exact = all.exact;
    plan.first = all.bytes;
    const int size = sizeOf(all.bytes);
    const bool fewBytes = size <= 3;
    if (bar == count_ && !fewBytes) {
        if (planDoubled(lead, plan) || planShape(lead, plan) || planRun(lead, plan)) return;
    }
    plan.first = all.bytes;
    if (bar == count_ && planRequired(flags, plan)) return;
    if (planPrefix(flags, bar != count_, plan) && (plan.alternatives > 1 || !fewBytes)) return;
    plan.price = all.price;
    plan.exact = all.exact;
    if (size != 0 && size != 256) plan.kind = Plan::kSet;
}

/// At the start of a line the ^ holds, and what follows it decides.
void Planner::makeForLines(Zel32u flags, Plan& plan) {
    plan.lines = true;
    const Lead lead = leadFrom(0, flags);
    if (planLiteral(lead, plan) && !plan.ignoreCase) return;
    Beginning all;
    if (!begin(0, flags, all)) {
        plan.kind = Plan::kNone;
        return;
    }
    // A run must end with its line, or its price would not be the line's.
    if (planRun(lead, plan) && plan.kind == Plan::kRun && !plan.first.has('\n')) return;
    plan.kind = Plan::kSet;
    plan.first = all.bytes;
    plan.price = all.price;
    plan.runPrice = 0;
}

/// The bytes from 0x80 on must be alike: then it makes no difference how many of them form a
/// character.
bool Planner::isPlainRun(Zel32u flags, ByteSet& bytes) const {
    if (count_ < 2) return false;
    const Zel32u kind = nodes_[0].kind;
    if (kind != NodeLetter && kind != NodeLetterRange && kind != NodeCharacterClass) return false;
    const Node* repeat = quantifier(behindAtom(0));
    if (repeat == nullptr || behindAtom(0) + 1 != count_) return false;
    if (repeat->kind != NodeQuantifierMax || repeat->value != 1 || repeat->count != kUnbounded)
        return false;
    bytes = atomBytes(0, flags);
    if (kind == NodeCharacterClass && !utf8_) return true;
    if (kind == NodeCharacterClass) {
        ClassSet set;
        buildClassSet(nodes_[0], flags, set);
        if (set.wide == ClassSet::kTestWide) return false;
        const uint64_t high = set.wide == ClassSet::kAllWide ? ~uint64_t{0} : 0;
        return set.bytes.words[2] == high && set.bytes.words[3] == high;
    }
    return bytes.words[2] == bytes.words[3] &&
           (bytes.words[2] == 0 || bytes.words[2] == ~uint64_t{0});
}

void makePlan(const ZelRegExpState& state, bool lines, StackGuard& stack, Plan& plan) {
    plan.clear();
    Planner planner(state, stack);
    if (lines) {
        planner.makeForLines(state.options, plan);
    } else {
        planner.make(state.options, plan);
    }
    plan.noteShortcuts();
}

bool isPlainRun(const ZelRegExpState& state, StackGuard& stack, ByteSet& bytes) {
    return Planner(state, stack).isPlainRun(state.options, bytes);
}

}  // namespace zel
