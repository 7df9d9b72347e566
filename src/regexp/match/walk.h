// A walk: one call of the engine, from a node to the end of the (sub)program. It follows a straight
// line through the nodes and remembers, in a small array of its own, every place where it could go
// another way. When the line fails it goes back to the newest of these choices. When the array is
// full, the rest of the program is a walk of its own, one level of recursion deeper; so the machine
// stack grows by one level for every kMaxChoices choices, and not at all on a straight line.
//
//   walk.text, walk.index   where the line stands in text and program
//   walk.consumed           bytes that the line has taken since the walk began. They count to the
//   whole
//                           match's length, but are only added to capture slot 0 when somebody
//                           looks at it: at the end, and around calls of node functions.
//   choices[0..top)         oldest first; each knows how to go on and what to put back when it is
//   spent
#pragma once

#include "regexp/match/context.h"

namespace zel {

/// What a group's frame holds that a choice has to put back.
struct FrameState {
    int minLeft;
    int maxLeft;
    int lengthAtEntry;
    int reentries;
};

struct Choice {
    enum Kind : int {
        kRunOfBytes,       // a greedy run that gives back byte by byte
        kRunBehind,        // a greedy run that gives back by the character behind it
        kRunOfCharacters,  // a greedy run that gives back its own characters
        kRunOfSequences,   // likewise, combining sequences
        kEnter,            // a lazy group that was passed over at first
        kBody,             // a group's first repetition: `node` opens it, `next` is its alternative
        kRepeat,   // a further repetition: `node` closes the one before, `next` is its alternative
        kLeft,     // a group that was left at `node`, its close, and may repeat instead
        kRestore,  // nothing to try, a group's frame and record to put back
    };
    Kind kind;
    int node;
    const Zel8u* text;  // where the line goes on; a run's end
    int consumed;       // at `text`
    Zel32u flags;
    union {
        struct {
            const Zel8u* start;
            int count;   // characters in the run
            int min;     // and how many have to stay
            int letter;  // byte that the rest begins with, -1 when unknown
            int price;   // of a try in front of another byte
        } run;
        struct {
            int next;
            bool repeats;  // only a group that can repeat has more in its frame than where it began
            FrameState frame;
            CaptureRecord record;
        } group;
    };
};

class Walk {
public:
    static constexpr int kMaxChoices = 12;

    Walk(const Zel8u* start, RegExpMatchContext& theContext)
        : context(theContext), whole(theContext.captures[0]), text(start), index(theContext.node) {}

    /// Walks to the end: 0 when it was reached, else 1.
    int run();

private:
    enum Step { kGoOn, kFailed, kDone };

    int length() const { return static_cast<int>(context.textEnd - text); }
    bool full() const { return top == kMaxChoices; }
    void take(int bytes) {
        text += bytes;
        consumed += bytes;
    }
    /// Calls a node function, or anything else that looks at the whole match's length.
    template <typename Function>
    auto withLength(const Function& function) {
        whole.length = wrappingSum(whole.length, consumed);
        const auto result = function();
        whole.length = wrappingDifference(whole.length, consumed);
        return result;
    }
    /// Hands the node, and everything behind it, to a node function.
    template <typename Function>
    Step handOver(const Function& function) {
        context.node = index;
        whole.length = wrappingSum(whole.length, consumed);
        if (function(text, length(), context) == 0) return kDone;
        whole.length = wrappingDifference(whole.length, consumed);
        return kFailed;
    }
    Choice& push(Choice::Kind kind, int node) {
        Choice& choice = choices[top++];
        choice.kind = kind;
        choice.node = node;
        choice.text = text;
        choice.consumed = consumed;
        choice.flags = context.flags;
        return choice;
    }
    /// Stands the line where it was when the choice was made.
    void standAt(const Choice& choice) {
        text = choice.text;
        consumed = choice.consumed;
        context.flags = choice.flags;
    }

    // engine.cpp
    Step execute(const Node& node);
    Step executeAtom(const Node& node);
    Step executeClass(const Node& node);
    Step finish();
    Step goBack();

    // straight_line.h
    Step followLine();

    // greedy_runs.h
    Step runGreedy(const Node& node, const Node& quantifier, int rest);
    Step pushRun(Choice::Kind kind, int rest, int count, int offset, int min);
    bool giveBack(Choice& choice);

    // groups.h
    Step ownsNodeGrouping(const Node& node);
    Step ownsNodeGroupingClose(int close);
    Step enterGroup(int open, const Node& node, const Node* quantifier);
    Step runBody(Choice& choice, int open);
    Step repeatGroup(Choice& choice, int close);
    Step leaveGroup(int close);
    Step resumeGroup(Choice& choice);
    bool tryNextAlternative(Choice& choice, int open);
    void putBack(const Choice& choice, int open);

    RegExpMatchContext& context;
    CaptureRecord& whole;
    const Zel8u* text;
    int index;
    int consumed = 0;
    int top = 0;
    Choice choices[kMaxChoices];
};

}  // namespace zel
