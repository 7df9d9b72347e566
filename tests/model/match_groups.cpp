// Groups, back-references and positions. What a repetition, an alternative or a continuation
// changed in captures and group frames is put back by `run` when it fails; the functions here put
// back what they changed themselves.
#include "matcher.h"

namespace model {
namespace {

/// A group as its opening node and what follows its closing node describe it.
struct Group {
    int open;
    int close;
    int next;  // behind the closing node and its quantifier
    int serial;
    int min = 1;
    int max = 1;
    bool lazy = false;

    Group(const Context& c, int openNode)
        : open(openNode),
          close(openNode + 1 + c.nodes[openNode].count),
          next(close + 1),
          serial(c.nodes[openNode].value) {
        if (next < c.end && isQuantifier(c.nodes[next])) {
            min = c.nodes[next].value;
            max = c.nodes[next].count;
            lazy = c.nodes[next].kind == zel::NodeQuantifierMin;
            ++next;
        }
    }
};

/// The flags in force behind a group.
Zel32u flagsBehind(const Context& c, const Group& group) {
    return static_cast<Zel32u>(c.nodes[group.close].count);
}

/// The flags with which every repetition of a group starts.
Zel32u flagsInside(const Context& c, const Group& group) {
    const Node& open = c.nodes[group.open];
    return open.kind == zel::NodeGroupingOptions ? static_cast<Zel32u>(open.extra)
                                                 : flagsBehind(c, group);
}

int leave(const Zel8u* text, int length, Context& c, const Group& group) {
    c.flags = flagsBehind(c, group);
    return runFrom(group.next, text, length, c);
}

/// Where the branch that a conditional's condition chooses begins. A missing second branch begins,
/// and ends, at the closing node.
int chosenBranch(const Zel8u* text, int length, Context& c, const Group& group) {
    int condition = group.open + 1;
    int firstBranch;
    bool holds;
    if (c.nodes[condition].kind == zel::NodeBackReference) {
        int number = c.nodes[condition].value;
        holds = number < c.numCaptures && c.captures[number].length >= 0;
        firstBranch = condition + 1;
    } else {
        int outerEnd = c.end;
        Zel32u flags = c.flags;
        firstBranch = condition + c.nodes[condition].count + 2;
        c.end = firstBranch;
        holds = runFrom(condition, text, length, c) == 0;
        c.end = outerEnd;
        c.flags = flags;
    }
    if (holds) return firstBranch;
    int bar = findBar(c, group.serial, firstBranch, group.close);
    if (bar < 0) return group.close;
    c.flags = static_cast<Zel32u>(c.nodes[bar].count);
    return bar + 1;
}

}  // namespace

int findBar(const Context& c, int serial, int from, int to) {
    for (int k = from; k < to; ++k) {
        if (c.nodes[k].kind == zel::NodeCharacterClass) {
            k += c.nodes[k].count;
        } else if (c.nodes[k].kind == zel::NodeAlternative && c.nodes[k].value == serial) {
            return k;
        }
    }
    return -1;
}

// ---- Groups ----

int grouping(const Zel8u* text, int length, Context& c) {
    Group group(c, c.node);
    const Node& open = c.nodes[group.open];
    Zel32u outerFlags = c.flags;
    auto failed = [&] {
        c.flags = outerFlags;
        return 1;
    };
    if (group.min == 0 && group.max == 0) {
        return leave(text, length, c, group) == 0 ? 0 : failed();
    }
    if (group.lazy && group.min == 0) {
        if (leave(text, length, c, group) == 0) return 0;
    }
    if (open.kind == zel::NodeGroupingOptions) {
        c.flags = static_cast<Zel32u>(open.extra);
    } else {
        c.flags = outerFlags;
    }

    Snapshot before(c);
    c.groups[group.serial] = {group.min - 1, group.max - 1, group.open, length, 0, 0, 0, 0};
    if (open.kind == zel::NodeGroupingCapture) {
        c.groups[group.serial].captureSlot = open.extra;
        c.captures[open.extra] = {text, 0};
    }
    if (open.kind == zel::NodeGroupingCondition) {
        int branch = chosenBranch(text, length, c, group);
        if (runFrom(branch, text, length, c) == 0) return 0;
    } else {
        int start = group.open + 1;
        for (;;) {
            if (runFrom(start, text, length, c) == 0) return 0;
            int bar = findBar(c, group.serial, start, group.close);
            if (bar < 0) break;
            c.flags = static_cast<Zel32u>(c.nodes[bar].count);
            start = bar + 1;
        }
    }
    before.restore(c);
    if (!group.lazy && group.min == 0) {
        if (leave(text, length, c, group) == 0) return 0;
    }
    return failed();
}

int groupingClose(const Zel8u* text, int length, Context& c) {
    GroupFrame& frame = c.groups[c.nodes[c.node].value];
    Group group(c, frame.openNode);
    Zel32u oldFlags = c.flags;
    Snapshot before(c);
    auto failed = [&] {
        before.restore(c);
        c.flags = oldFlags;
        return 1;
    };

    int thisRepetition = frame.lengthAtEntry - length;
    frame.iterationLength += thisRepetition;
    frame.lengthAtEntry = length;
    if (frame.reentries != 0) {
        frame.reentries -= 1;
        frame.minLeft -= 1;
        frame.maxLeft -= 1;
        frame.iterationLength = thisRepetition;
    }
    if (c.nodes[group.open].kind == zel::NodeGroupingCapture) {
        c.captures[frame.captureSlot] = {text - frame.iterationLength, frame.iterationLength};
    }
    if ((frame.maxLeft < 1 && !group.lazy) || frame.iterationLength == 0) {
        return leave(text, length, c, group) == 0 ? 0 : failed();
    }
    if (group.lazy && frame.minLeft < 1) {
        if (leave(text, length, c, group) == 0) return 0;
    }
    if (frame.maxLeft < 1) return failed();

    // One more repetition. The opening node is not executed again.
    Snapshot repetition(c);
    if (c.nodes[group.open].kind == zel::NodeGroupingCondition) {
        c.flags = flagsInside(c, group);
        int branch = chosenBranch(text, length, c, group);
        frame.reentries = 1;
        if (runFrom(branch, text, length, c) == 0) return 0;
    } else {
        c.flags = flagsInside(c, group);
        int start = group.open + 1;
        for (;;) {
            frame.reentries = 1;
            if (runFrom(start, text, length, c) == 0) return 0;
            int bar = findBar(c, group.serial, start, group.close);
            if (bar < 0) break;
            // Only in front of a further alternative is the length of the whole match set anew.
            frame.reentries = 0;
            c.captures[0].length = static_cast<int>(text - c.captures[0].text);
            frame.lengthAtEntry = length;
            c.flags = static_cast<Zel32u>(c.nodes[bar].count);
            start = bar + 1;
        }
    }
    repetition.restore(c);
    if (frame.minLeft > 0 || group.lazy) return failed();
    return leave(text, length, c, group) == 0 ? 0 : failed();
}

namespace {

/// The body of an atomic group alone, from `text`. On success `c.reached` is where it ended.
bool runBody(const Zel8u* text, int length, Context& c, const Group& group) {
    int outerEnd = c.end;
    int start = group.open + 1;
    Zel32u flags = flagsBehind(c, group);
    bool matched = false;
    c.flags = flags;
    for (;;) {
        c.end = group.close;
        matched = runFrom(start, text, length, c) == 0;
        c.end = outerEnd;
        c.flags = flags;
        if (matched) break;
        int bar = findBar(c, group.serial, start, group.close);
        if (bar < 0) break;
        c.flags = static_cast<Zel32u>(c.nodes[bar].count);
        start = bar + 1;
    }
    c.flags = flags;
    return matched;
}

/// Everything behind the `count` repetitions that have been taken; an empty one ends the loop.
int atomRest(const Zel8u* text, int length, Context& c, const Group& group, int count,
             bool lastWasEmpty) {
    bool enough = count >= group.min || lastWasEmpty;
    bool mayRepeat = count < group.max && !lastWasEmpty;
    if (group.lazy && enough) {
        if (leave(text, length, c, group) == 0) return 0;
    }
    if (mayRepeat) {
        Snapshot before(c);
        int consumedBefore = c.consumed();
        if (runBody(text, length, c, group)) {
            int added = c.consumed() - consumedBefore;
            int taken = static_cast<int>(c.reached - text);
            if (atomRest(text + taken, length - taken, c, group, count + 1, taken == 0) == 0) {
                return 0;
            }
            c.consumed() -= added;
            before.restore(c);
        }
    }
    if (group.lazy || !enough) return 1;
    return leave(text, length, c, group);
}

}  // namespace

int groupingAtom(const Zel8u* text, int length, Context& c) {
    Group group(c, c.node);
    return atomRest(text, length, c, group, 0, false);
}

// ---- Back-references ----

namespace {

/// Whether the captured text stands at `text`.
bool copyAt(const Zel8u* text, int length, const CaptureRecord& capture, bool ignoreCase) {
    if (capture.length < 0 || capture.length > length) return false;
    for (int i = 0; i < capture.length; ++i) {
        if (!sameByte(text[i], capture.text[i], ignoreCase)) return false;
    }
    return true;
}

}  // namespace

int backReference(const Zel8u* text, int length, Context& c) {
    const CaptureRecord capture = c.captures[c.nodes[c.node].value];
    if (!copyAt(text, length, capture, c.ignoreCase())) return 1;
    c.consumed() += capture.length;
    if (runFrom(c.node + 1, text + capture.length, length - capture.length, c) == 0) return 0;
    c.consumed() -= capture.length;
    return 1;
}

int backReferenceMax(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool ignoreCase = c.ignoreCase();
    const CaptureRecord capture = c.captures[c.nodes[n].value];
    int count = 0;
    int offset = 0;
    auto copyFits = [&] { return copyAt(text + offset, length - offset, capture, ignoreCase); };
    for (; count < min; ++count) {
        if (!copyFits()) return 1;
        offset += capture.length;
    }
    while (count < smaller(length, max) && copyFits()) {
        offset += capture.length;
        ++count;
    }
    c.consumed() += offset;
    for (;; --count) {
        if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        if (count == min) break;
        offset -= capture.length;
        c.consumed() -= capture.length;
    }
    c.consumed() -= offset;
    return 1;
}

int backReferenceMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool ignoreCase = c.ignoreCase();
    const CaptureRecord capture = c.captures[c.nodes[n].value];
    int count = 0;
    int offset = 0;
    auto copyFits = [&] { return copyAt(text + offset, length - offset, capture, ignoreCase); };
    for (; count < min; ++count) {
        if (!copyFits()) return 1;
        offset += capture.length;
    }
    c.consumed() += offset;
    for (;; ++count) {
        if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        // A further empty copy would change nothing: it ends the loop.
        if (count >= max || capture.length == 0 || !copyFits()) break;
        offset += capture.length;
        c.consumed() += capture.length;
    }
    c.consumed() -= offset;
    return 1;
}

// ---- Positions ----

int position(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    if (n + 1 < c.end && isQuantifier(c.nodes[n + 1]) && c.nodes[n + 1].value == 0) {
        c.node += 2;
        return 0;
    }
    bool atStart = text == c.textStart;
    bool multiLine = (c.flags & zel::kOptionMultiLine) != 0;
    bool behindNewline = !atStart && text[-1] == 0x0A;
    bool passes = false;
    switch (c.nodes[n].value) {
        case '^':
            passes = atStart || (multiLine && length != 0 && behindNewline);
            break;
        case '$':
            passes = length == 0 || ((multiLine || length == 1) && text[0] == 0x0A);
            break;
        case 'A':
        case 'G':
            passes = atStart;
            break;
        case 'Z':
            passes = length == 0 || (length == 1 && text[0] == 0x0A);
            break;
        case 'z':
            passes = length == 0;
            break;
        case 'b':
        case 'B': {
            bool before = isWordByte(atStart ? 0x20 : text[-1]);
            bool here = isWordByte(text[0]);  // read even when no text is left
            passes = (before != here) == (c.nodes[n].value == 'b');
            break;
        }
        case zel::kLineStartMarker:
            passes = atStart || behindNewline;
            break;
        default:
            break;
    }
    if (!passes) return 1;
    c.node += 1;
    return 0;
}

}  // namespace model
