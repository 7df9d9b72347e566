// What a search can know about its pattern before it starts: what a match begins with, and what a
// start position costs that begins with something else. Made on the stack when a search has tried
// some positions in vain, never kept.
//
// A plan is a promise about the engine: an attempt at a start position that the plan rejects would
// fail, and would cost at most what the plan says. How the plan is drawn from the nodes is
// therefore bound to how the engine executes them; whoever changes the one has to look at the
// other. The differential tests hold both against a matcher without plans.
#pragma once

#include "regexp/match/byte_set.h"
#include "regexp/match/hopeless_run.h"
#include "regexp/match/places.h"
#include "regexp/match/stack_guard.h"
#include "regexp/program.h"
#include "string/kernels/api.h"

namespace zel {

struct Plan {
    enum Kind {
        kNone,     // every position has to be tried
        kLiteral,  // a match begins with `literal`
        kBehind,   // a match begins directly behind `literal`
        kLine,     // a match begins at the start of a line that holds `literal`
        kPrefix,   // a match begins as `prefix` says
        kShape,    // a match begins with bytes of known sets, as `shape` says
        kDoubled,  // a match begins with a byte of `first`, twice
        kRun,  // a match begins with a run of bytes of `first` and one of `behind` directly behind
               // it
        kRunLiteral,  // a match begins with bytes of `first` and `literal` directly behind them
        kRequired,    // a match takes bytes of `first` up to one of `behind`
        kSet,         // a match begins with a byte of `first`
    };
    Kind kind;
    bool lines;       // only starts of lines are tried anyway
    int price;        // what a rejected start position costs at most
    int matchLength;  // of the match at every place the plan does not reject; 0 when not known
    bool firstByteDecides;  // whether the plan rejects a start of a line
    bool startsAtPlaces;    // what is gathered are the positions that the plan does not reject
    bool isFlat;            // the bill is the price of each
    int runPrice;           // and, for runs, what each byte behind it in its run adds
    bool exact;             // whether it costs just that
    ByteSet first;
    ByteSet behind;
    ByteSet second;  // a run of other bytes between the first run and `literal`
    bool hasSecond;
    bool wordStart;      // the run begins where a word begins
    bool echoes;         // behind the run and one more byte stands the run's first byte again
    bool avoidsWide;     // a run in front of a longer character has to be tried
    bool triesAreCheap;  // no dearer than a look at more than the first byte
    int min;             // length of the run
    int max;
    const Zel8u* literal;
    int literalLength;
    bool ignoreCase;
    int alternatives;  // in `prefix`
    Zel8u letter;      // what `literal` points to when it is a letter of the program
    union {
        kernels::PrefixTables prefix;
        kernels::Shape shape;
        int64_t bills[HopelessRun::kLongest + 1];  // for kRequired: of a run of so many bytes
    };

    /// No plan yet. The rest of the members is for makePlan to fill: most searches never get that
    /// far.
    Plan() : kind(kNone), matchLength(0) {}
    void clear();

    /// The first position of [from, end) that the plan does not reject, `end` when there is none.
    /// `start` is where the subject begins.
    const Zel8u* next(const Zel8u* from, const Zel8u* start, const Zel8u* end) {
        if (firstByteDecides && from < end && first.has(*from)) return from;
        const Zel8u* place = startsAtPlaces ? places_.gatheredFrom(from) : nullptr;
        return place != nullptr ? place : findNext(from, start, end);
    }

    /// What the rejected positions of [from, to) cost at most. How exactly that is found out
    /// depends on how many steps there are for the text up to `end`.
    int64_t bill(const Zel8u* from, const Zel8u* to, const Zel8u* end, int steps) const {
        return isFlat ? (to - from) * price : sumUp(from, to, end, steps);
    }

    /// To be called when everything else is known.
    void noteShortcuts();
    /// Attempts have become cheap.
    void makeTriesCheap() {
        triesAreCheap = true;
        noteShortcuts();
    }

private:
    const Zel8u* findNext(const Zel8u* from, const Zel8u* start, const Zel8u* end);
    int64_t sumUp(const Zel8u* from, const Zel8u* to, const Zel8u* end, int steps) const;
    const Zel8u* nextLiteral(const Zel8u* from, const Zel8u* end);
    bool acceptsAt(const Zel8u* position, const Zel8u* end) const;
    const Zel8u* nextStartOfLine(const Zel8u* from, const Zel8u* end);
    const Zel8u* nextLine(const Zel8u* from, const Zel8u* start, const Zel8u* end) const;
    const Zel8u* nextRun(const Zel8u* from, const Zel8u* start, const Zel8u* end);
    const Zel8u* runsStart(const Zel8u* from, const Zel8u* end) const;
    const Zel8u* nextRunLiteral(const Zel8u* from, const Zel8u* end);
    const Zel8u* nextRequired(const Zel8u* from, const Zel8u* end);
    int64_t billForRuns(const Zel8u* from, const Zel8u* to) const;

    Places places_;
    const Zel8u* wide_;      // the first byte of a longer character, once looked for
    const Zel8u* required_;  // the byte of `behind` at the end of the run last found
};

/// Draws up a plan for the pattern, or none where the stack is too short for it. `lines` says that
/// it begins with ^ and that only starts of lines are tried.
void makePlan(const ZelRegExpState& state, bool lines, StackGuard& stack, Plan& plan);

/// Whether the pattern is one greedy run of at least one byte of a set, and nothing else, so that
/// its matches are the set's runs.
bool isPlainRun(const ZelRegExpState& state, StackGuard& stack, ByteSet& bytes);

}  // namespace zel
