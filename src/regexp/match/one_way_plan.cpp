// Finds out whether a pattern can match in one way only, and describes it as a list of parts.
//
// A run is final when no byte of its set can begin what follows: then the engine, giving it back,
// fails at once wherever it stands. Runs that are not final are allowed where nothing can fail
// behind them; whether that holds is seen in the text.
#include "regexp/match/character.h"
#include "regexp/match/one_way.h"
#include "regexp/match/planner.h"
#include "regexp/match/predicates.h"

namespace zel {

namespace {

constexpr uint64_t kAll = ~uint64_t{0};

bool hasWide(const ByteSet& bytes) {
    return (bytes.words[2] | bytes.words[3]) != 0;
}

void findExcluded(OneWay::Part& part) {
    const int members = sizeOf(part.set);
    part.excludedCount = 0;
    if (members == 256 || members < 256 - static_cast<int>(sizeof part.excluded)) return;
    for (int w = 0; w < 4; ++w) {
        for (uint64_t others = ~part.set.words[w]; others != 0; others &= others - 1) {
            part.excluded[part.excludedCount++] =
                static_cast<Zel8u>(64 * w + __builtin_ctzll(others));
        }
    }
}

OneWay::Part::Kind positionKind(int assertion, Zel32u flags) {
    const bool multiLine = (flags & kOptionMultiLine) != 0;
    if (multiLine && assertion == '^') return OneWay::Part::kLineStart;
    if (multiLine && assertion == '$') return OneWay::Part::kLineEnd;
    return OneWay::Part::kPosition;
}

/// Makes one part of the last three of those from `first` to `end`, where they are a run and the
/// capture around it. Answers the new end.
OneWay::Part* foldCapturedRun(OneWay::Part* first, OneWay::Part* end) {
    if (end - first < 3) return end;
    OneWay::Part& open = end[-3];
    const OneWay::Part& run = end[-2];
    const OneWay::Part& close = end[-1];
    if (open.kind != OneWay::Part::kOpen || run.kind != OneWay::Part::kRun || run.number != 0 ||
        close.kind != OneWay::Part::kClose) {
        return end;
    }
    open = run;
    open.number = close.number;
    return end - 2;
}

/// Most runs are short; but not those that a few bytes end.
void findRanges(OneWay& oneWay, OneWay::Part& part) {
    constexpr int kChunks = 2;
    part.chunks = 0;
    if (part.excludedCount != 0) return;
    if (oneWay.rangesCount == OneWay::kMaxRanges) return;
    if (!oneWay.ranges[oneWay.rangesCount].describe(part.set)) return;
    part.ranges = static_cast<Zel8u>(oneWay.rangesCount++);
    part.chunks = kChunks;
}

}  // namespace

/// The bytes of an atom, and what longer characters mean for it. `mayBeWide`: it is a run in which
/// it makes no difference how many bytes form a character, provided all of them are members.
bool Planner::describeBytes(int index, Zel32u flags, bool mayBeWide, OneWay::Part& part) const {
    const Node& node = nodes_[index];
    part.stopsAtWide = part.mindsWide = false;
    if (node.kind == NodeLetter) {
        part.set = atomBytes(index, flags);
        return true;
    }
    bool wideIsAlike = false;
    if (node.kind == NodeLetterRange) {
        part.set = shorthandBytes(node.value, flags);
        part.mindsWide = true;
        wideIsAlike = (part.set.words[2] & part.set.words[3]) == kAll;
        if (!hasWide(part.set)) return true;
    } else if (node.kind == NodeCharacterClass) {
        ClassSet set;
        buildClassSet(node, flags, set);
        part.set = set.bytes;
        if (!utf8_ || (set.wide == ClassSet::kNoWide && !hasWide(set.bytes))) return true;
        wideIsAlike =
            set.wide == ClassSet::kAllWide && (set.bytes.words[2] & set.bytes.words[3]) == kAll;
    } else {
        return false;
    }
    part.stopsAtWide = !mayBeWide || !wideIsAlike;
    if (part.stopsAtWide) part.set.words[2] = part.set.words[3] = 0;
    return true;
}

/// Sets the part's text, when the node is a literal with the flags given.
bool Planner::describeText(int index, Zel32u flags, OneWay::Part& part) const {
    if (!isLiteral(index, flags & ~kOptionIgnoreCase)) return false;
    const Node& node = nodes_[index];
    if (node.kind == NodeLetter) {
        // The number's first byte in memory is its lowest.
        part.text = reinterpret_cast<const Zel8u*>(&node.value);
        part.length = 1;
    } else {
        part.text = static_cast<const Zel8u*>(node.data);
        part.length = node.count;
    }
    return true;
}

/// The number of nodes that the atom at `index` and what was drawn into its part take; 0 when it
/// has to be left to the engine.
int Planner::describeRunAndText(int index, Zel32u flags, OneWay& oneWay, OneWay::Part& part) {
    int next = behindAtom(index);
    const Node* repeat = quantifier(next);
    part.min = repeat == nullptr ? 1 : repeat->value;
    part.max = repeat == nullptr ? 1 : repeat->count;
    if (repeat != nullptr) ++next;
    if (part.min > part.max || part.min < 0) return 0;
    const bool mayBeWide = part.max == kUnbounded && part.min <= 1;
    if (!describeBytes(index, flags, mayBeWide, part)) return 0;

    Beginning rest;
    const bool isKnown = begin(next, flags, rest);
    part.isFinal = isKnown && disjoint(part.set, rest.bytes);
    if (isKnown && rest.price > oneWay.price) oneWay.price = rest.price;
    part.kind = OneWay::Part::kRun;
    part.number = 0;
    const bool isLazy = repeat != nullptr && repeat->kind == NodeQuantifierMin;
    if (!isLazy && (part.isFinal || part.min == part.max)) return next - index;

    // What follows may begin inside the run: all right if it is a literal.
    int literal = next;
    while (literal < count_ && nodes_[literal].kind == NodeGroupingClose) ++literal;
    const bool hasText = isKnown && literal < count_ && (flags & kOptionIgnoreCase) == 0 &&
                         describeText(literal, flags, part) && *part.text < 0x80;
    if (isLazy) {
        // Closing a group would have to happen in front of the text.
        if (!hasText || literal != next || part.max != kUnbounded || part.min > 1) return 0;
        part.kind = OneWay::Part::kUntilText;
        return next + 1 - index;
    }
    if (hasText && literal == next) {
        if (nodes_[index].kind == NodeLetterRange && hasWide(part.set) &&
            !describeBytes(index, flags, false, part))
            return 0;
        part.kind = OneWay::Part::kRunToText;
        return next + 1 - index;
    }
    return next - index;
}

int Planner::describeRun(int index, Zel32u flags, OneWay& oneWay, OneWay::Part& part) {
    const int nodes = describeRunAndText(index, flags, oneWay, part);
    if (nodes == 0) return 0;
    findExcluded(part);
    findRanges(oneWay, part);
    return nodes;
}

/// A look-around whose body is a literal.
bool Planner::describeLook(int open, Zel32u flags, OneWay::Part& part) const {
    const Node& node = nodes_[open];
    if (node.count != 1 || !isLiteral(open + 1, flags) || !describeText(open + 1, flags, part))
        return false;
    if (quantifier(closeOf(open) + 1) != nullptr) return false;
    const bool isBehind =
        node.kind == NodeGroupingLookBehind || node.kind == NodeGroupingLookBehindNot;
    // Each byte is to be a character, so that looking back by characters leads to the same place.
    for (int i = 0; isBehind && i < part.length; ++i) {
        if (part.text[i] >= 0x80) return false;
    }
    part.kind = isBehind ? OneWay::Part::kBehind : OneWay::Part::kAhead;
    part.isNegative =
        node.kind == NodeGroupingLookBehindNot || node.kind == NodeGroupingLookAheadNot;
    return true;
}

/// One node, or a run with its quantifier: how many nodes, 0 when it is not for us. `isPart` says
/// whether there is something to do for it.
int Planner::describeNode(int index, Zel32u& flags, OneWay& oneWay, OneWay::Part& part,
                          bool& isPart) {
    const Node& node = nodes_[index];
    isPart = true;
    switch (node.kind) {
        case NodeString:
            part.kind =
                (flags & kOptionIgnoreCase) != 0 ? OneWay::Part::kSameText : OneWay::Part::kText;
            return describeText(index, flags, part) ? 1 : 0;
        case NodeLetter:
            if ((flags & kOptionIgnoreCase) == 0 && quantifier(index + 1) == nullptr) {
                part.kind = OneWay::Part::kText;
                return describeText(index, flags, part) ? 1 : 0;
            }
            return describeRun(index, flags, oneWay, part);
        case NodeLetterRange:
        case NodeCharacterClass:
            return describeRun(index, flags, oneWay, part);
        case NodePosition:
            part.kind = positionKind(node.value, flags);
            part.number = node.value;
            return quantifier(index + 1) == nullptr ? 1 : 0;
        case NodeOptions:
            isPart = false;
            flags = static_cast<Zel32u>(node.value);
            return 1;
        case NodeGroupingCapture:
        case NodeGroupingNoCapture:
            isPart = node.kind == NodeGroupingCapture;
            part.kind = OneWay::Part::kOpen;
            part.number = node.extra;
            return quantifier(closeOf(index) + 1) == nullptr ? 1 : 0;
        case NodeGroupingClose: {
            const int open = openOf(index);
            if (open < 0) return 0;
            isPart = nodes_[open].kind == NodeGroupingCapture;
            part.kind = OneWay::Part::kClose;
            part.number = nodes_[open].extra;
            flags = static_cast<Zel32u>(node.count);
            return 1;
        }
        case NodeGroupingLookAhead:
        case NodeGroupingLookAheadNot:
        case NodeGroupingLookBehind:
        case NodeGroupingLookBehindNot:
            return describeLook(index, flags, part) ? node.count + 2 : 0;
        case NodeBackReference:
            part.kind = OneWay::Part::kReference;
            part.number = node.value;
            if (node.value < 1 || node.value >= groups_ || quantifier(index + 1) != nullptr)
                return 0;
            return (flags & kOptionIgnoreCase) == 0 ? 1 : 0;
        default:
            return 0;
    }
}

/// Sorts the alternatives by the bytes that they can begin with.
void Planner::sortAlternatives(OneWay& oneWay) const {
    oneWay.skipPrice = oneWay.nodes;
    oneWay.beginningAtEnd = 0;
    for (Zel32u& alternatives : oneWay.beginning) alternatives = 0;
    for (int i = 0; i < oneWay.alternatives; ++i) {
        const Zel32u bit = Zel32u{1} << i;
        const OneWay::Part& part = oneWay.parts[oneWay.first[i]];
        if (part.kind == OneWay::Part::kText) {
            oneWay.beginning[*part.text] |= bit;
            continue;
        }
        for (Zel32u& alternatives : oneWay.beginning) alternatives |= bit;
        oneWay.beginningAtEnd |= bit;
    }
}

bool Planner::describe(Zel32u flags, OneWay& oneWay) {
    oneWay.nodes = count_;
    oneWay.price = 0;
    oneWay.alternatives = oneWay.rangesCount = 0;
    int parts = 0;
    bool isLazy = false;
    for (int index = 0; index <= count_; ++index) {
        if (oneWay.alternatives == OneWay::kMaxAlternatives) return false;
        oneWay.first[oneWay.alternatives++] = parts;
        while (index < count_ && nodes_[index].kind != NodeAlternative) {
            if (parts + 1 == OneWay::kMaxParts) return false;
            OneWay::Part& part = oneWay.parts[parts];
            bool isPart = false;
            const int nodes = describeNode(index, flags, oneWay, part, isPart);
            if (nodes == 0) return false;
            index += nodes;
            if (!isPart) continue;
            part.flags = flags;
            isLazy = isLazy || part.kind == OneWay::Part::kUntilText;
            OneWay::Part* const first = oneWay.parts + oneWay.first[oneWay.alternatives - 1];
            parts = static_cast<int>(foldCapturedRun(first, &part + 1) - oneWay.parts);
        }
        if (index < count_ && nodes_[index].value != 0) return false;  // of a group
        if (index < count_) flags = static_cast<Zel32u>(nodes_[index].count);
        if (parts == OneWay::kMaxParts) return false;
        oneWay.parts[parts++].kind = OneWay::Part::kEnd;
    }
    // A lazy run that fails leaves the whole match longer than it is, for the next alternative.
    if (oneWay.alternatives > 1 && isLazy) return false;
    if (oneWay.alternatives > 1) sortAlternatives(oneWay);
    oneWay.count = parts;
    return true;
}

bool makeOneWay(const ZelRegExpState& state, StackGuard& stack, OneWay& oneWay) {
    if (!Planner(state, stack).describe(state.options, oneWay)) oneWay.count = 0;
    return oneWay.isKnown();
}

}  // namespace zel
