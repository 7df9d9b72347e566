// What a program can begin with, and past which nodes every match has to get first.
#include "regexp/match/character.h"
#include "regexp/match/planner.h"
#include "regexp/match/predicates.h"

namespace zel {

bool Planner::isAtom(Zel32u kind) {
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

ByteSet Planner::literalByte(Zel8u letter, Zel32u flags) {
    ByteSet bytes = {};
    bytes.add(letter);
    if ((flags & kOptionIgnoreCase) != 0 && isAsciiLetter(letter)) bytes.add(letter ^ 0x20u);
    return bytes;
}

ByteSet Planner::atomBytes(int index, Zel32u flags) const {
    const Node& node = nodes_[index];
    switch (node.kind) {
        case NodeLetter:
            return literalByte(static_cast<Zel8u>(node.value), flags);
        case NodeString:
            return literalByte(*static_cast<const Zel8u*>(node.data), flags);
        default:
            return firstBytes(node, flags, utf8_);
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
        const int bar = nextBar(nodes_, first, close, nodes_[open].value);
        effort_ += bar - first;
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
    if (++effort_ > kMaxEffort || index >= count_ || !stack_.hasRoom()) return false;
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
        case NodeGroupingClose: {
            // Behind a group that neither repeats nor ends a program of its own.
            if (openOf(index) < 0 || quantifier(index + 1) != nullptr) return false;
            const Zel32u flagsBehind = static_cast<Zel32u>(node.count);
            return add(begin(index + 1, flagsBehind, rest), rest, result);
        }
        default:
            return false;  // an end of the program or of a body: empty text is possible
    }
}

/// The opening node of a capturing, non-capturing or option group, -1 for any other.
int Planner::openOf(int close) const {
    for (int i = close - 1; i >= 0; --i) {
        const Node& node = nodes_[i];
        const bool plain = node.kind == NodeGroupingCapture || node.kind == NodeGroupingNoCapture ||
                           node.kind == NodeGroupingOptions;
        if (plain && node.value == nodes_[close].value) return i;
    }
    return -1;
}

/// Whether a body executes each of its nodes at most once.
bool Planner::isStraightBody(int open) const {
    const int close = closeOf(open);
    for (int i = open + 1; i < close; ++i) {
        const Zel32u kind = nodes_[i].kind;
        const bool plain = isAtom(kind) || kind == NodeRange || kind == NodeAnyByte ||
                           kind == NodePosition || kind == NodeAlternative;
        if (!plain) return false;
    }
    return true;
}

/// Walks past openings of groups that do not branch, option changes and assertions.
Planner::Lead Planner::leadFrom(int index, Zel32u flags) const {
    Lead lead = {.index = index, .flags = flags, .price = 0};
    for (; lead.index < count_; ++lead.index, ++lead.price) {
        const Node& node = nodes_[lead.index];
        switch (node.kind) {
            case NodeOptions:
                lead.flags = static_cast<Zel32u>(node.value);
                break;
            case NodePosition:
                if (quantifier(lead.index + 1) != nullptr) return lead;
                break;
            case NodeGroupingCapture:
            case NodeGroupingNoCapture: {
                const int close = closeOf(lead.index);
                const Node* repeat = quantifier(close + 1);
                if (repeat != nullptr && repeat->value < 1) return lead;
                if (nextBar(nodes_, lead.index + 1, close, node.value) != close) return lead;
                break;
            }
            case NodeGroupingLookBehindNot:
            case NodeGroupingLookAheadNot: {
                const int close = closeOf(lead.index);
                if (!isStraightBody(lead.index) || quantifier(close + 1) != nullptr) return lead;
                lead.price += node.count;
                lead.index = close;
                break;
            }
            default:
                return lead;
        }
    }
    return lead;
}

/// Whether the node is a letter or literal run that stands for itself, once.
bool Planner::isLiteral(int index, Zel32u flags) const {
    if (index >= count_ || (flags & kOptionIgnoreCase) != 0) return false;
    if (nodes_[index].kind == NodeString) return true;
    return nodes_[index].kind == NodeLetter && quantifier(index + 1) == nullptr;
}

void Planner::setLiteral(int index, Plan& plan) const {
    const Node& node = nodes_[index];
    if (node.kind == NodeString) {
        plan.literal = static_cast<const Zel8u*>(node.data);
        plan.literalLength = node.count;
    } else {
        plan.letter = static_cast<Zel8u>(node.value);
        plan.literal = &plan.letter;
        plan.literalLength = 1;
    }
}

}  // namespace zel
