// Atomic groups and their repetition. A repetition runs the body as a program of its own, so what
// was chosen inside is final once it has matched. Whole repetitions can be given back: each is one
// level of recursion, which puts the captures and the consumed length back when its continuation
// fails. A repetition that consumed nothing is the last.
#include "regexp/match/group_body.h"

namespace zel {

namespace {

struct AtomicGroup {
    RegExpMatchContext& context;
    int open;
    int close;
    int rest;
    int min;
    int max;
    bool lazy;
    Zel32u flags;  // in force where the group begins
    CaptureRange captures;

    AtomicGroup(RegExpMatchContext& theContext, int theMin, int theMax, bool isLazy)
        : context(theContext),
          open(context.node),
          close(closingNode(context, open)),
          rest(quantifierAt(context, close + 1) != nullptr ? close + 2 : close + 1),
          min(theMin),
          max(theMax),
          lazy(isLazy),
          flags(context.flags),
          captures(context, open, close) {}

    int runRest(const Zel8u* text, int length) {
        context.flags = static_cast<Zel32u>(context.nodes[close].count);
        if (runFrom(rest, text, length, context) == 0) return 0;
        context.flags = flags;
        return 1;
    }

    /// One more repetition and everything behind it.
    int repeat(const Zel8u* text, int length, int count) {
        if (!context.stack.hasRoom()) {
            context.steps = -1;
            return 1;
        }
        CaptureRecord& whole = context.captures[0];
        return keepingCaptures(captures, context, [&] {
            const int before = whole.length;
            if (!runSubprogram(open, text, length, context)) return 1;
            const int taken = wrappingDifference(whole.length, before);
            const Zel8u* reached = context.reached;
            const int left = length - static_cast<int>(reached - text);
            const int result =
                reached == text ? runRest(text, length) : run(reached, left, count + 1);
            if (result != 0) whole.length = wrappingDifference(whole.length, taken);
            return result;
        });
    }

    /// Everything behind `count` repetitions.
    int run(const Zel8u* text, int length, int count) {
        const bool enough = count >= min;
        if (lazy && enough && runRest(text, length) == 0) return 0;
        if (count < max && repeat(text, length, count) == 0) return 0;
        return !lazy && enough ? runRest(text, length) : 1;
    }
};

}  // namespace

int ownsNodeGroupingAtomQuantifierMax(const Zel8u* text, int length, RegExpMatchContext& context,
                                      int min, int max) {
    return AtomicGroup(context, min, max, false).run(text, length, 0);
}

int ownsNodeGroupingAtomQuantifierMin(const Zel8u* text, int length, RegExpMatchContext& context) {
    const int close = closingNode(context, context.node);
    const Node& quantifier = context.nodes[close + 1];
    return AtomicGroup(context, quantifier.value, quantifier.count, true).run(text, length, 0);
}

}  // namespace zel
