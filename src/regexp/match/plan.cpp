// Draws up the plan of a search from the first nodes of the program.
//
// `Beginning` is the heart: what the program from some node on can begin with, and what it costs at
// most to find out that a text begins otherwise. It is computed by walking the nodes as the engine
// would execute them on a text whose first byte nothing accepts. Whatever is not simple enough ends
// the walk without an answer, and the search then tries every position.
#include "regexp/match/plan.h"

#include "regexp/match/character.h"
#include "regexp/match/predicates.h"
#include "string/kernels/api.h"

namespace zel {

namespace {

constexpr int kMaxEffort = 200;  // nodes looked at
constexpr int kMaxPrice = 1000;

struct Beginning {
    ByteSet bytes = {};
    int price = 0;
    bool exact = true;
};

void addAll(ByteSet& set, const ByteSet& other) {
    for (int w = 0; w < 4; ++w) set.words[w] |= other.words[w];
}

int sizeOf(const ByteSet& set) {
    int count = 0;
    for (const uint64_t word : set.words) count += __builtin_popcountll(word);
    return count;
}

bool isQuantifier(const Node& node) {
    return node.kind - NodeQuantifierMin <= NodeQuantifierMax - NodeQuantifierMin;
}

/// The letters of a text position as the engine sees them: one node, one character.
bool isAtom(Zel32u kind) {
    switch (kind) {
        case NodeLetter:
        case NodeString:
        case NodeLetterRange:
        case NodeCharacterClass:
        case NodeLetterUtf8:
        case NodeUnicodeCategory:
        case NodeUnicodeProperty:
        case NodeUnicodeScript:
            return true;
        default:
            return false;
    }
}

class Planner {
public:
    explicit Planner(const ZelRegExpState& state)
        : nodes_(state.nodes()), count_(state.nodeCount), utf8_(state.format == kFormatUtf8) {}

    void make(Zel32u flags, Plan& plan);

private:
    /// First bytes of an atom's characters.
    ByteSet atomBytes(int index, Zel32u flags) const;
    const Node* quantifier(int index) const {
        return index < count_ && isQuantifier(nodes_[index]) ? &nodes_[index] : nullptr;
    }
    int behindAtom(int index) const {
        return nodes_[index].kind == NodeCharacterClass ? index + 1 + nodes_[index].count
                                                        : index + 1;
    }
    int closeOf(int open) const { return open + 1 + nodes_[open].count; }
    int behindGroup(int close) const {
        return quantifier(close + 1) != nullptr ? close + 2 : close + 1;
    }

    bool begin(int index, Zel32u flags, Beginning& result);
    bool beginBody(int open, Zel32u flags, Beginning& result);
    bool beginAtom(int index, Zel32u flags, Beginning& result);
    bool beginGroup(int open, Zel32u flags, Beginning& result);
    bool add(bool known, const Beginning& part, Beginning& result) const {
        addAll(result.bytes, part.bytes);
        result.price += part.price;
        result.exact = result.exact && part.exact;
        return known && result.price <= kMaxPrice;
    }

    bool planLiteral(Zel32u flags, Plan& plan) const;
    /// The first node behind openings of groups that neither repeat nor branch, and option changes.
    int skipOpenings(int index, Zel32u& flags) const;

    const Node* nodes_;
    int count_;
    bool utf8_;
    int effort_ = 0;
};

ByteSet Planner::atomBytes(int index, Zel32u flags) const {
    const Node& node = nodes_[index];
    const bool ignoreCase = (flags & kOptionIgnoreCase) != 0;
    ByteSet bytes = {};
    switch (node.kind) {
        case NodeLetter:
        case NodeString: {
            const Zel8u letter = node.kind == NodeLetter ? static_cast<Zel8u>(node.value)
                                                         : *static_cast<const Zel8u*>(node.data);
            bytes.add(letter);
            if (ignoreCase && isAsciiLetter(letter)) bytes.add(letter ^ 0x20u);
            return bytes;
        }
        case NodeLetterRange:
            return shorthandBytes(node.value, flags);
        case NodeCharacterClass: {
            ClassSet set;
            buildClassSet(node, flags, set);
            bytes = set.bytes;
            if (utf8_ && set.wide != ClassSet::kNoWide) bytes.addRange(0xC0, 0xFF);
            return bytes;
        }
        default:  // code points: ASCII one by one, everything else together
            for (int c = 0; c < 0x80; ++c) {
                if (acceptsCodePoint(node, c, flags)) bytes.add(static_cast<unsigned>(c));
            }
            bytes.addRange(0x80, 0xFF);
            return bytes;
    }
}

bool Planner::beginAtom(int index, Zel32u flags, Beginning& result) {
    result.bytes = atomBytes(index, flags);
    result.price = 1;
    const int next = behindAtom(index);
    const Node* repeat = quantifier(next);
    if (repeat == nullptr || repeat->value > 0) return true;
    if (repeat->kind == NodeQuantifierMin && nodes_[index].kind != NodeLetter &&
        nodes_[index].kind != NodeLetterRange && nodes_[index].kind != NodeCharacterClass) {
        return false;  // the lazy forms of code points have an order of their own
    }
    if (repeat->kind == NodeQuantifierMin) result.exact = false;  // a hint may save the rest
    Beginning rest;
    return add(begin(next + 1, flags, rest), rest, result);
}

bool Planner::beginBody(int open, Zel32u flags, Beginning& result) {
    const int close = closeOf(open);
    for (int first = open + 1;;) {
        Beginning part;
        if (!add(begin(first, flags, part), part, result)) return false;
        int bar = first;
        while (bar < close &&
               !(nodes_[bar].kind == NodeAlternative && nodes_[bar].value == nodes_[open].value)) {
            ++bar;
            ++effort_;
        }
        if (bar == close) return true;
        flags = static_cast<Zel32u>(nodes_[bar].count);
        first = bar + 1;
    }
}

bool Planner::beginGroup(int open, Zel32u flags, Beginning& result) {
    const Node& node = nodes_[open];
    const int close = closeOf(open);
    const Node* repeat = quantifier(close + 1);
    result.price = 1;
    if (repeat != nullptr && repeat->count < 1) return false;
    if (node.kind == NodeGroupingOptions) flags = static_cast<Zel32u>(node.extra);
    if (!beginBody(open, flags, result)) return false;
    if (repeat == nullptr || repeat->value > 0) return true;
    Beginning rest;
    const Zel32u flagsBehind = static_cast<Zel32u>(nodes_[close].count);
    return add(begin(behindGroup(close), flagsBehind, rest), rest, result);
}

bool Planner::begin(int index, Zel32u flags, Beginning& result) {
    if (++effort_ > kMaxEffort || index >= count_) return false;
    const Node& node = nodes_[index];
    if (isAtom(node.kind)) return beginAtom(index, flags, result);
    Beginning rest;
    result.price = 1;
    switch (node.kind) {
        case NodePosition:
            if (quantifier(index + 1) != nullptr) return false;
            result.exact = false;
            return add(begin(index + 1, flags, rest), rest, result);
        case NodeOptions:
            return add(begin(index + 1, static_cast<Zel32u>(node.value), rest), rest, result);
        case NodeGroupingCapture:
        case NodeGroupingNoCapture:
        case NodeGroupingOptions:
            return beginGroup(index, flags, result);
        case NodeGroupingLookAhead:
            return beginBody(index, flags, result);
        default:
            return false;  // an end of the program or of a body: empty text is possible
    }
}

int Planner::skipOpenings(int index, Zel32u& flags) const {
    while (index < count_) {
        const Node& node = nodes_[index];
        if (node.kind == NodeOptions) {
            flags = static_cast<Zel32u>(node.value);
        } else if (node.kind == NodeGroupingCapture || node.kind == NodeGroupingNoCapture) {
            const int close = closeOf(index);
            if (quantifier(close + 1) != nullptr) return index;
            for (int i = index + 1; i < close; ++i) {
                if (nodes_[i].kind == NodeAlternative && nodes_[i].value == node.value)
                    return index;
            }
        } else {
            return index;
        }
        ++index;
    }
    return index;
}

bool Planner::planLiteral(Zel32u flags, Plan& plan) const {
    const int index = skipOpenings(0, flags);
    if (index >= count_ || nodes_[index].kind != NodeString) return false;
    plan.kind = Plan::kLiteral;
    plan.literal = static_cast<const Zel8u*>(nodes_[index].data);
    plan.literalLength = nodes_[index].count;
    plan.ignoreCase = (flags & kOptionIgnoreCase) != 0;
    return true;
}

void Planner::make(Zel32u flags, Plan& plan) {
    plan.kind = Plan::kNone;
    Beginning all;
    Zel32u alternativeFlags = flags;
    int alternatives = 0;
    for (int first = 0;;) {
        Beginning part;
        if (!add(begin(first, alternativeFlags, part), part, all)) return;
        ++alternatives;
        int bar = first;
        while (bar < count_ && !(nodes_[bar].kind == NodeAlternative && nodes_[bar].value == 0))
            ++bar;
        if (bar == count_) break;
        alternativeFlags = static_cast<Zel32u>(nodes_[bar].count);
        first = bar + 1;
    }
    plan.price = all.price;
    plan.exact = all.exact;
    plan.first = all.bytes;
    if (alternatives == 1 && planLiteral(flags, plan)) return;
    const int size = sizeOf(all.bytes);
    if (size > 0 && size <= 3) {
        plan.kind = Plan::kBytes;
        plan.byteCount = 0;
        for (int c = 0; c < 256; ++c) {
            if (all.bytes.has(static_cast<Zel8u>(c)))
                plan.bytes[plan.byteCount++] = static_cast<Zel8u>(c);
        }
        return;
    }
    if (size < 256) plan.kind = Plan::kSet;
}

}  // namespace

int Plan::next(const Zel8u* text, int length) const {
    switch (kind) {
        case kNone:
            return 0;
        case kLiteral:
            return ignoreCase ? kernels::findBytesIgnoreCase(text, length, literal, literalLength)
                              : kernels::findBytes(text, length, literal, literalLength);
        case kBytes:
            if (byteCount == 1) return kernels::findByte(text, length, bytes[0]);
            if (byteCount == 2) return kernels::findByte2(text, length, bytes[0], bytes[1]);
            return kernels::findByte3(text, length, bytes[0], bytes[1], bytes[2]);
        case kSet:
            break;
    }
    return kernels::findByteIn(text, length, first.words);
}

void makePlan(const ZelRegExpState& state, Plan& plan) {
    Planner(state).make(state.options, plan);
}

}  // namespace zel
