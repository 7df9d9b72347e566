// Quantifiers. One repeats the node or group in front of it; of a literal run that is only the last
// byte, which is split off. Where a quantifier stands already (behind a folded wildcard, or with a
// blank or a comment between the two) the bounds are added up.
#include "regexp/compile/compiler.h"

namespace zel {
namespace {

/// Largest bound that can be written.
constexpr long kMaxBound = 65535;

/// Reads decimal digits. A value that is too large stays too large, and far below kUnbounded.
const Zel8u* readBound(const Zel8u* p, long& value) {
    value = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        if (value <= kMaxBound) value = value * 10 + (*p - '0');
    }
    return p;
}

int addBounds(long a, long b) {
    return static_cast<int>(a + b < kUnbounded ? a + b : kUnbounded);
}

}  // namespace

/// Reads "*", "+", "?" or the braces at p; false when a "{" there is only a literal.
bool Compiler::readQuantifier(const Zel8u* p, Quantifier& quantifier) {
    switch (*p) {
        case '*':
            quantifier = {0, kUnbounded, p + 1};
            return true;
        case '+':
            quantifier = {1, kUnbounded, p + 1};
            return true;
        case '?':
            quantifier = {0, 1, p + 1};
            return true;
        default:
            break;
    }
    long min = 0;
    const Zel8u* const minEnd = readBound(p + 1, min);
    const bool hasMin = minEnd != p + 1;
    if (*minEnd == '}') {
        quantifier = {min, min, minEnd + 1};
        return hasMin;
    }
    if (*minEnd != ',') return false;
    long max = 0;
    const Zel8u* const maxEnd = readBound(minEnd + 1, max);
    const bool hasMax = maxEnd != minEnd + 1;
    if (*maxEnd != '}') return false;
    quantifier = {min, hasMax ? max : kUnbounded, maxEnd + 1};
    return hasMin || hasMax;
}

ZelStatus Compiler::quantifier() {
    Quantifier bounds;
    if (!readQuantifier(p_, bounds)) {
        addLiterals(p_, 1);
        ++p_;
        return zelStatusOk;
    }
    const bool tooLarge =
        bounds.min > kMaxBound || (bounds.max > kMaxBound && bounds.max != kUnbounded);
    if (p_ == quantifierEnd_ || tooLarge || bounds.max < bounds.min) {
        return fail(zelStatusRegExpQuantifierError, p_);
    }

    if (runLength_ > 1) emitRun(runText_, runLength_ - 1);
    if (runLength_ > 0) emitRun(runText_ + runLength_ - 1, 1);
    runLength_ = 0;

    const ZelStatus status = checkRepeatable();
    if (status != zelStatusOk) return fail(status, p_);

    const bool lazy = *bounds.end == '?';
    p_ = quantifierEnd_ = bounds.end + (lazy ? 1 : 0);

    Node& atom = nodes_[nodeCount_ - 1];
    if (isQuantifier(atom)) {
        mergeQuantifier(atom, bounds.min, bounds.max);
        return zelStatusOk;
    }
    if (classEnd_ != nodeCount_ && (atom.kind == NodeLetter || atom.kind == NodeLetterUtf8)) {
        noteRepeatedLetter(nodeCount_ - 1, bounds.min);
    }
    emit(lazy ? NodeQuantifierMin : NodeQuantifierMax, static_cast<int>(bounds.min),
         static_cast<int>(bounds.max));
    return zelStatusOk;
}

/// Whether the last node can be repeated.
ZelStatus Compiler::checkRepeatable() const {
    if (nodeCount_ == 0) return zelStatusRegExpQuantifierError;
    if (classEnd_ == nodeCount_) return zelStatusOk;
    const Zel32u kind = nodes_[nodeCount_ - 1].kind;
    if ((kind >= NodeGroupingLookBehind && kind <= NodeGroupingAtom) || kind == NodeAlternative ||
        kind == NodeOptions) {
        return zelStatusRegExpQuantifierError;
    }
    // The condition of a conditional group: its first node, or the look-around that stands first.
    int first = -1;
    if (kind == NodeBackReference) first = nodeCount_ - 1;
    if (kind == NodeGroupingClose) first = closedGroup_;
    if (first > 0 && nodes_[first - 1].kind == NodeGroupingCondition) {
        return zelStatusRegExpGroupingError;
    }
    return zelStatusOk;
}

/// What a quantifier behind a letter means for the trailing literal.
void Compiler::noteRepeatedLetter(int node, long min) {
    if (trailingLiteral_ == kTrailingLiteralBlocked) {
        // By design at any depth and with any minimum, so that a literal further on counts again.
        trailingLiteral_ = kNoTrailingLiteral;
    } else if (trailingLiteral_ == node) {
        if (min >= 1) {
            nodes_[node].extra = static_cast<int>(flags_);
        } else {
            trailingLiteral_ = kNoTrailingLiteral;
        }
    }
}

/// Adds bounds to a quantifier that stands already; the sum is greedy whatever the two were.
void Compiler::mergeQuantifier(Node& node, long min, long max) {
    if (foldEnd_ == nodeCount_) {
        // The wildcard that was folded last has this quantifier, and so does not count itself.
        node.value = foldMin_;
        node.count = foldMax_;
        foldEnd_ = -1;
    }
    node.kind = NodeQuantifierMax;
    node.value = addBounds(node.value, min);
    node.count = addBounds(node.count, max);
}

}  // namespace zel
