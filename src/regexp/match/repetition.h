// The two loops of quantified single characters. Greedy: take as many as the quantifier allows,
// then try the rest of the program behind the run and give back one at a time. Lazy: take the
// minimum, then try the rest before each further character. What a character is, and how long it
// is, comes from the caller.
#pragma once

#include "regexp/match/context.h"

namespace zel {

/// A run of characters taken so far. `matches(position)`, here and below, is the length of the
/// character at a position in front of the end of the text, 0 when it is not accepted.
struct Run {
    int count = 0;   // characters
    int offset = 0;  // bytes

    /// Takes characters until there are `limit`; false when it had to stop before.
    template <typename Matches>
    bool take(const Zel8u* text, int length, int limit, const Matches& matches) {
        while (count < limit) {
            if (offset >= length) return false;
            const int taken = matches(text + offset);
            if (taken == 0) return false;
            offset += taken;
            ++count;
        }
        return true;
    }
};

/// The greedy end: `run` has been taken; tries the rest from node `rest` on, giving back down to
/// `min` characters. `previous(position)` is the number of bytes that one step back takes off the
/// run's end. Puts the whole match's length back on failure.
template <typename Previous>
int giveBack(const Zel8u* text, int length, RegExpMatchContext& context, int rest, int count,
             int offset, int min, const Previous& previous) {
    CaptureRecord& whole = context.captures[0];
    whole.length = wrappingSum(whole.length, offset);
    while (count >= min) {
        if (runFrom(rest, text + offset, length - offset, context) == 0) return 0;
        if (context.steps < 0 || --count < min) break;  // without steps every further try fails
        const int back = previous(text + offset);
        if (text + offset - back < context.textStart) break;
        offset -= back;
        whole.length = wrappingDifference(whole.length, back);
    }
    whole.length = wrappingDifference(whole.length, offset);
    return 1;
}

/// The whole lazy repetition of the atom at `context.node`. `hint`, when not negative, is a byte
/// that the rest of the program begins with. The consumed length deliberately stays raised on
/// failure.
template <typename Matches>
int repeatLazy(const Zel8u* text, int length, RegExpMatchContext& context, const Matches& matches,
               int hint) {
    CaptureRecord& whole = context.captures[0];
    const int rest = context.node + 2;
    const Node& quantifier = context.nodes[context.node + 1];
    const int limit = quantifier.count < length ? quantifier.count : length;
    if (length < quantifier.value) return 1;
    Run run;
    if (!run.take(text, length, quantifier.value, matches)) return 1;
    whole.length = wrappingSum(whole.length, run.offset);
    while (run.count <= limit) {
        const Zel8u* position = text + run.offset;
        if (hint < 0 || *position == hint) {  // at the end, the byte behind the text decides
            if (runFrom(rest, position, length - run.offset, context) == 0) return 0;
            if (isHopeless(context)) return 1;
        }
        if (run.offset >= length) return 1;
        const int taken = matches(position);
        if (taken == 0) return 1;
        whole.length = wrappingSum(whole.length, taken);
        run.offset += taken;
        ++run.count;
    }
    return 1;
}

}  // namespace zel
