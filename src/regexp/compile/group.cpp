// Parentheses: groups of every kind, conditions, option changes, comments, and the bar. The opening
// node gets its body length when the ")" arrives; until then the group is on the stack of open
// groups, which also knows the flags to restore. Every "(" counts for the serials, comments and
// option changes too, except that of a group number as condition.
#include "regexp/compile/compiler.h"

namespace zel {

ZelStatus Compiler::openParenthesis() {
    if (nextSerial_ == kMaxGroups) return fail(zelStatusRegExpGroupingError, p_);
    if (p_[1] != '?') {
        openGroup(NodeGroupingCapture, nextCapture_, p_ + 1);
        ++nextCapture_;
        return zelStatusOk;
    }
    switch (p_[2]) {
        case ':':
            openGroup(NodeGroupingNoCapture, 0, p_ + 3);
            return zelStatusOk;
        case '>':
            openGroup(NodeGroupingAtom, 0, p_ + 3);
            return zelStatusOk;
        case '=':
            openGroup(NodeGroupingLookAhead, 0, p_ + 3);
            return zelStatusOk;
        case '!':
            openGroup(NodeGroupingLookAheadNot, 0, p_ + 3);
            return zelStatusOk;
        case '<':
            if (p_[3] != '=' && p_[3] != '!') break;
            openGroup(p_[3] == '=' ? NodeGroupingLookBehind : NodeGroupingLookBehindNot, 0, p_ + 4);
            return zelStatusOk;
        case '(':
            return openCondition();
        case '#':
            ++nextSerial_;
            p_ = findCommentEnd(p_ + 3) + 1;
            return zelStatusOk;
        default:
            return inlineOptions();
    }
    return fail(zelStatusRegExpGroupingError, p_ + 3);
}

void Compiler::openGroup(NodeKind kind, int extra, const Zel8u* body) {
    flushRun();
    groups_[groupDepth_++] = {nodeCount_, flags_, nextSerial_, 0};
    emit(kind, nextSerial_, 0, extra);
    ++nextSerial_;
    p_ = body;
}

/// "(?(": the condition is a group number, written here as a back-reference, or a look-around,
/// which is compiled like any other group.
ZelStatus Compiler::openCondition() {
    const Zel8u* const condition = p_ + 3;
    if (*condition == '?') {
        const Zel8u* const look = condition + (condition[1] == '<' ? 2 : 1);
        if (*look != '=' && *look != '!') return fail(zelStatusRegExpGroupingError, condition);
        openGroup(NodeGroupingCondition, 0, p_ + 2);
        return zelStatusOk;
    }
    int number = 0;
    const Zel8u* p = condition;
    while (p - condition < 3 && *p >= '0' && *p <= '9') {
        number = number * 11 + (*p++ - '0');  // by design not 10: "12" names group 13
    }
    if (*p != ')') return fail(zelStatusRegExpGroupingError, condition);
    if (number == 0) return fail(zelStatusRegExpBackRefError, condition);
    openGroup(NodeGroupingCondition, 0, p + 1);
    emit(NodeBackReference, number);
    return zelStatusOk;
}

/// "(?flags)" and "(?flags:".
ZelStatus Compiler::inlineOptions() {
    Zel32u flags = flags_;
    const Zel8u* const end = readInlineFlags(p_ + 2, flags);
    if (*end == ':') {
        openGroup(NodeGroupingOptions, static_cast<int>(flags), end + 1);
        flags_ = flags;
        return zelStatusOk;
    }
    if (*end != ')') return fail(zelStatusRegExpGroupingError, end);
    ++nextSerial_;
    // Exactly "(?x)" and "(?-x)" concern nobody but the compiler.
    const bool extendedOnly = end[-1] == 'x' && (end == p_ + 3 || (end == p_ + 4 && p_[2] == '-'));
    if (!extendedOnly) {
        flushRun();
        emit(NodeOptions, static_cast<int>(flags));
    }
    flags_ = flags;
    p_ = end + 1;
    return zelStatusOk;
}

ZelStatus Compiler::closeGroup() {
    flushRun();
    if (groupDepth_ == 0) return fail(zelStatusRegExpGroupingError, p_);
    const OpenGroup& group = groups_[--groupDepth_];
    Node& open = nodes_[group.node];
    if (open.kind == NodeGroupingCondition && group.bars > 1) {
        return fail(zelStatusRegExpGroupingError, p_);
    }
    open.count = nodeCount_ - group.node - 1;
    if (open.kind == NodeGroupingLookBehind || open.kind == NodeGroupingLookBehindNot) {
        open.extra = measureLookBehind(nodes_, group.node + 1, nodeCount_);
        if (open.extra < 0) return fail(zelStatusRegExpGroupingError, p_);
    }
    flags_ = group.flags;
    emit(NodeGroupingClose, group.serial, static_cast<int>(flags_));
    closedGroup_ = group.node;
    ++p_;
    return zelStatusOk;
}

void Compiler::bar() {
    flushRun();
    int serial = 0;
    if (groupDepth_ == 0) {
        trailingLiteral_ = kTrailingLiteralBlocked;
        hasTopLevelBar_ = true;
    } else {
        OpenGroup& group = groups_[groupDepth_ - 1];
        serial = group.serial;
        ++group.bars;
    }
    emit(NodeAlternative, serial, static_cast<int>(flags_));
    ++p_;
}

}  // namespace zel
