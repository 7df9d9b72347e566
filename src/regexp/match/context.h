// The match context that travels with a search, and the shape that every node function has.
//
// A node function receives the current text position, the number of bytes from there to the end of
// the (narrowed) text, and the context, whose `node` names the node to execute. It returns 0 when
// that node and everything behind it up to `end` matched, 1 when they did not. On success the
// context stays as the successful path left it. On failure `node` may have changed, but flags,
// group frames and capture records are as they were on entry. The one exception is the length in
// capture slot 0, which counts the bytes that the attempt consumed: everybody takes off what he
// added, except the lazy routines of letters and shorthands, which never do.
#pragma once

#include "regexp/match/byte_set.h"
#include "regexp/match/stack_guard.h"
#include "regexp/program.h"

namespace zel {

struct RegExpMatchContext {
    int node;         // next node to execute
    int end;          // one past the last node of the (sub)program being run
    Zel32u flags;     // option flags in force
    int noEmpty;      // non-zero: reaching the end with a whole match of length 0 is a failure
    int numCaptures;  // capture slots, slot 0 included
    int steps;        // remaining budget; below zero everything fails
    int format;       // Format of the text
    int nodeCount;    // nodes of the whole program
    const Zel8u* textStart;
    const Zel8u* textEnd;  // text position + remaining length, the same everywhere in one search
    const Node* nodes;
    CaptureRecord* captures;
    GroupFrame* groups;
    const Zel8u* reached;  // where the last (sub)program that succeeded ended
    int lazyCodePoints;    // whether the program has some: 0, 1, or -1 when nobody has asked yet
    struct {
        int node;  // -1 for none
        const Zel8u* start;
        const Zel8u* end;
    } lazyRun;  // the last run of a lazy code point that was measured after the budget's end
    StackGuard stack;
    ClassCache classes;

    /// Pays for `count` nodes that would each be executed and fail; false when the budget ends
    /// before.
    bool charge(ptrdiff_t count) {
        if (count > steps) {
            steps = -1;
            return false;
        }
        steps -= static_cast<int>(count);
        return true;
    }
};

/// Sum and difference for the whole match's length, which counts modulo 2^32: every lazy loop that
/// fails may leave it raised, and there may be more of that than a text can hold.
constexpr int wrappingSum(int a, int b) {
    return static_cast<int>(static_cast<Zel32u>(a) + static_cast<Zel32u>(b));
}
constexpr int wrappingDifference(int a, int b) {
    return static_cast<int>(static_cast<Zel32u>(a) - static_cast<Zel32u>(b));
}

using NodeFunction = int(const Zel8u* text, int length, RegExpMatchContext& context);

// engine.cpp
/// Runs the program from `context.node` up to `context.end`.
NodeFunction ownsRunFuncRegExp;

// positions.cpp
NodeFunction ownsNodePosition;

// back_references.cpp
NodeFunction ownsNodeBackReference;
NodeFunction ownsNodeBackReferenceQuantifierMin;
NodeFunction ownsNodeBackReferenceQuantifierMax;

// atomic_groups.cpp
int ownsNodeGroupingAtomQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context,
                                      int min, int max);
NodeFunction ownsNodeGroupingAtomQuantifierMin;

// conditions.cpp
/// The body of the conditional group that opens at `context.node`, and everything behind it.
NodeFunction runChosenBranch;

// look_around.cpp
/// Whether the look-around at `context.node` passes; leaves `node` unspecified, all else as it was,
/// but for captures set inside a positive one.
bool lookAroundPasses(const Zel8u* text, int length, RegExpMatchContext& context);
/// For a look-around with captures inside: the test, then the rest of the program behind it; puts
/// the captures back when either fails.
NodeFunction runLookAroundWithCaptures;

// lazy_runs.cpp
NodeFunction ownsNodeLetterQuantifierMin;
NodeFunction ownsNodeLetterRangeQuantifierMin;
NodeFunction ownsNodeCharacterClassQuantifierMin;
NodeFunction ownsNodeAnyByteQuantifierMin;

// lazy_runs_utf8.cpp
NodeFunction ownsNodeLetterQuantifierMinUtf8;
NodeFunction ownsNodeLetterQuantifierMinUnicodeBlock;
NodeFunction ownsNodeLetterQuantifierMinCombLetter;

/// Whether nothing can succeed any more: the budget has ended, and no lazy code point waits that
/// would report success all the same. A loop that goes on trying must ask, or it would walk through
/// the rest of the text for nothing.
bool isHopeless(RegExpMatchContext& context);

/// The quantifier node right behind node `index`, or null.
inline const Node* quantifierAt(const RegExpMatchContext& context, int index) {
    if (index >= context.nodeCount) return nullptr;
    const Node* node = &context.nodes[index];
    return isQuantifier(*node) ? node : nullptr;
}

/// Runs the program from node `node` on.
inline int runFrom(int node, const Zel8u* text, int length, RegExpMatchContext& context) {
    context.node = node;
    return ownsRunFuncRegExp(text, length, context);
}

}  // namespace zel
