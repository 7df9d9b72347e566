// What all groups have in common: walking the alternatives of a body, running a body as a program
// of its own, and keeping capture records while something is tried that may have to be undone.
#pragma once

#include "regexp/match/context.h"

namespace zel {

/// Index of the closing node of the group that opens at node `open`.
inline int closingNode(const RegExpMatchContext& context, int open) {
    return open + 1 + context.nodes[open].count;
}

/// Runs the body of the look-around or atomic group that opens at node `open` as a program of its
/// own: its alternatives in order, each up to the closing node. True when one succeeded; the text
/// position that it reached is in `context.reached`. Flags and `end` are as before.
bool runSubprogram(int open, const Zel8u* text, int length, RegExpMatchContext& context);

/// The capture slots that a stretch of nodes can change: those of its capturing groups, which are
/// numbered in order.
struct CaptureRange {
    int first = 0;
    int count = 0;

    /// The groups from node `from` up to, not including, node `to`.
    CaptureRange(const RegExpMatchContext& context, int from, int to) {
        for (int i = from; i < to; ++i) {
            if (context.nodes[i].kind != NodeGroupingCapture) continue;
            if (count == 0) first = context.nodes[i].extra;
            ++count;
        }
    }

    size_t bytes() const { return static_cast<size_t>(count) * sizeof(CaptureRecord); }
};

/// Calls `tries()` and puts the captures of `range` back when it fails. The copy lies
/// on the machine stack.
template <typename Tries>
[[gnu::noinline]] int keepingCaptures(const CaptureRange& range, RegExpMatchContext& context,
                                      Tries tries) {
    if (!context.stack.hasRoom(range.bytes())) {
        context.steps = -1;
        return 1;
    }
    auto* copy = static_cast<CaptureRecord*>(__builtin_alloca(range.bytes()));
    __builtin_memcpy(copy, context.captures + range.first, range.bytes());
    if (tries() == 0) return 0;
    __builtin_memcpy(context.captures + range.first, copy, range.bytes());
    return 1;
}

}  // namespace zel
