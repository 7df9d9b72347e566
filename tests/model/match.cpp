// The engine: walks the node program from a given node and executes every node by its kind. Each
// choice is a level of recursion, and every node executed here costs one step.
#include "matcher.h"

namespace model {
namespace {

/// Whether the node at `node` is the quantifier of the atom in front.
bool quantifiedAt(const Context& c, int node) {
    return node < c.end && isQuantifier(c.nodes[node]);
}

int decodeLength(const Zel8u* text, const Zel8u* end) {
    return decodeUtf8(text, static_cast<int>(end - text)).length;
}

/// Where a look-behind of `characters` begins, or null when that many do not precede `text`.
const Zel8u* lookBehindStart(const Zel8u* text, const Zel8u* end, int characters,
                             const Context& c) {
    int count = 0;
    for (const Zel8u* p = c.textStart; p < text; p += decodeLength(p, end)) ++count;
    if (count < characters) return nullptr;
    const Zel8u* start = c.textStart;
    for (int i = 0; i < count - characters; ++i) start += decodeLength(start, end);
    return start;
}

/// A look-around at its opening node: true when the match goes on behind it.
bool lookAround(const Zel8u* text, int length, Context& c) {
    int open = c.node;
    const Node& node = c.nodes[open];
    int close = open + 1 + node.count;
    bool behind =
        node.kind == zel::NodeGroupingLookBehind || node.kind == zel::NodeGroupingLookBehindNot;
    bool negative =
        node.kind == zel::NodeGroupingLookBehindNot || node.kind == zel::NodeGroupingLookAheadNot;
    Zel32u flags = c.flags;
    int outerEnd = c.end;
    int consumed = c.consumed();
    const Zel8u* end = text + length;
    const Zel8u* from = text;
    if (behind) {
        from =
            text - c.textStart < node.extra ? nullptr : lookBehindStart(text, end, node.extra, c);
    }
    bool matched = false;
    int start = open + 1;
    while (from) {
        c.end = close;
        matched = runFrom(start, from, static_cast<int>(end - from), c) == 0;
        c.end = outerEnd;
        c.flags = flags;
        if (matched) break;
        int bar = findBar(c, node.value, start, close);
        if (bar < 0) break;
        c.flags = static_cast<Zel32u>(c.nodes[bar].count);
        start = bar + 1;
    }
    c.flags = flags;
    c.consumed() = consumed;
    c.node = close + 1;
    return matched != negative;
}

int letter(const Zel8u* text, int length, Context& c) {
    if (length < 1) return 1;
    if (!sameByte(text[0], c.nodes[c.node].value & 0xFF, c.ignoreCase())) return 1;
    c.consumed() += 1;
    if (runFrom(c.node + 1, text + 1, length - 1, c) == 0) return 0;
    c.consumed() -= 1;
    return 1;
}

int string(const Zel8u* text, int length, Context& c) {
    const Node& node = c.nodes[c.node];
    const auto* bytes = static_cast<const Zel8u*>(node.data);
    if (length < node.count || length == 0) return 1;
    for (int i = 0; i < node.count; ++i) {
        if (!sameByte(text[i], bytes[i], c.ignoreCase())) return 1;
    }
    c.consumed() += node.count;
    if (runFrom(c.node + 1, text + node.count, length - node.count, c) == 0) return 0;
    c.consumed() -= node.count;
    return 1;
}

int anyByte(const Zel8u* text, int length, Context& c) {
    if (length < 1) return 1;
    c.consumed() += 1;
    if (runFrom(c.node + 1, text + 1, length - 1, c) == 0) return 0;
    c.consumed() -= 1;
    return 1;
}

int characterClass(const Zel8u* text, int length, Context& c) {
    int behind = c.node + 1 + c.nodes[c.node].count;
    if (!quantifiedAt(c, behind)) return classMax(text, length, c, 1, 1);
    const Node& q = c.nodes[behind];
    if (q.kind == zel::NodeQuantifierMin) return classMin(text, length, c, q.value, q.count);
    return classMax(text, length, c, q.value, q.count);
}

/// An atom that its quantifier, if any, follows directly.
int atom(const Zel8u* text, int length, Context& c) {
    Zel32u kind = c.nodes[c.node].kind;
    bool quantified = quantifiedAt(c, c.node + 1);
    bool lazy = quantified && c.nodes[c.node + 1].kind == zel::NodeQuantifierMin;
    if (quantified && length < 1 && c.nodes[c.node + 1].value > 0) return 1;
    if (!quantified && length < 1) return 1;
    switch (kind) {
        case zel::NodeLetter:
            if (!quantified) return letter(text, length, c);
            return lazy ? letterMin(text, length, c) : letterMax(text, length, c);
        case zel::NodeBackReference:
            if (!quantified) return backReference(text, length, c);
            return lazy ? backReferenceMin(text, length, c) : backReferenceMax(text, length, c);
        case zel::NodeLetterRange:
            if (!quantified) return letterRange(text, length, c);
            return lazy ? letterRangeMin(text, length, c) : letterRangeMax(text, length, c);
        case zel::NodeAnyByte:
            if (!quantified) return anyByte(text, length, c);
            return lazy ? anyByteMin(text, length, c) : anyByteMax(text, length, c);
        case zel::NodeLetterUtf8:
            if (!quantified) return utf8Single(text, length, c);
            return lazy ? utf8LetterMin(text, length, c) : utf8Max(text, length, c);
        case zel::NodeCombLetter:
            if (!quantified) return utf8Single(text, length, c);
            return lazy ? combMin(text, length, c) : utf8Max(text, length, c);
        default:  // the three Unicode kinds
            if (!quantified) return utf8Single(text, length, c);
            return lazy ? unicodeMin(text, length, c) : utf8Max(text, length, c);
    }
}

int endOfProgram(const Zel8u* text, Context& c) {
    if (c.noEmpty != 0 && c.consumed() == 0) return 1;
    c.reached = text;
    return 0;
}

/// The bar behind an alternative that has matched.
int alternative(const Zel8u* text, int length, Context& c) {
    int serial = c.nodes[c.node].value;
    if (serial < 1) {
        c.reached = text;
        return 0;
    }
    int close = c.node;
    while (c.nodes[close].kind != zel::NodeGroupingClose || c.nodes[close].value != serial) ++close;
    c.node = close;
    if (close == c.end) return endOfProgram(text, c);
    return groupingClose(text, length, c);
}

int runProgram(const Zel8u* text, int length, Context& c) {
    if (c.steps < 0) return 1;
    if (length < 0 && c.node != c.end) return 1;
    for (;;) {
        if (c.node == c.end) return endOfProgram(text, c);
        c.steps -= 1;
        switch (c.nodes[c.node].kind) {
            case zel::NodeLetter:
            case zel::NodeBackReference:
            case zel::NodeLetterRange:
            case zel::NodeAnyByte:
            case zel::NodeLetterUtf8:
            case zel::NodeUnicodeCategory:
            case zel::NodeUnicodeProperty:
            case zel::NodeUnicodeScript:
            case zel::NodeCombLetter:
                return atom(text, length, c);
            case zel::NodeString:
                return string(text, length, c);
            case zel::NodeCharacterClass:
                return characterClass(text, length, c);
            case zel::NodeAlternative:
                return alternative(text, length, c);
            case zel::NodeGroupingOptions:
            case zel::NodeGroupingCondition:
            case zel::NodeGroupingCapture:
            case zel::NodeGroupingNoCapture:
                return grouping(text, length, c);
            case zel::NodeGroupingAtom:
                return groupingAtom(text, length, c);
            case zel::NodeGroupingClose:
                return groupingClose(text, length, c);
            case zel::NodePosition:
                if (position(text, length, c) != 0) return 1;
                break;
            case zel::NodeGroupingLookBehind:
            case zel::NodeGroupingLookBehindNot:
            case zel::NodeGroupingLookAhead:
            case zel::NodeGroupingLookAheadNot:
                if (!lookAround(text, length, c)) return 1;
                break;
            case zel::NodeOptions:
                c.flags = static_cast<Zel32u>(c.nodes[c.node].value);
                c.node += 1;
                break;
            default:
                return 1;
        }
        if (c.steps < 0) return 1;
    }
}

}  // namespace

int run(const Zel8u* text, int length, Context& c) {
    Snapshot before(c);
    Zel32u flags = c.flags;
    int result = runProgram(text, length, c);
    if (result != 0) {
        before.restore(c);
        c.flags = flags;
    }
    return result;
}

}  // namespace model
