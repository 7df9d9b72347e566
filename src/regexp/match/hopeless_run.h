// What it costs to find out that nothing matches in a run of bytes: for patterns that repeat within
// repetitions, where each start tries every way of dividing the run before it fails.
//
// The nodes are read into a small automaton whose states are the engine's steps on any text: a step
// and a way on, two ways on, or a run to take and to give back. How many steps it makes until every
// way has failed depends on nothing but the number of bytes left, since a state is assumed to
// accept all of them; a real text accepts fewer and costs less. So the price of a state with n
// bytes left follows from those of other states with no more than n.
#pragma once

#include <stdint.h>

namespace zel {

class HopelessRun {
public:
    static constexpr int kLongest = 64;    // bytes in a run that has a price
    static constexpr int kMaxStates = 24;  // a pattern of more is not priced
    static constexpr int64_t kBeyondBudgets = int64_t{1} << 40;

    /// One step and the end of the program, as far as hopeless texts get.
    int addEnd() { return add({kStep, -1, -1, 0, 0}); }
    /// One step, and on to `next`.
    int addStep(int next) { return add({kStep, next, -1, 0, 0}); }
    /// One step, and on to one state after the other. The first may be set later.
    int addFork(int first, int second) { return add({kStep, first, second, 0, 0}); }
    void setFirst(int fork, int first) {
        if (!failed()) states_[fork].first = first;
    }
    /// One step, a run of min to max bytes, and on to `next` behind each.
    int addRun(int next, int min, int max) { return add({kRun, next, -1, min, max}); }

    /// Too many states.
    bool failed() const { return count_ > kMaxStates; }

    /// Fills bills[n], the price of all starts in a run of n bytes together when each begins with
    /// state `first`. False when a loop could go round without taking a byte.
    bool bill(int first, int64_t (&bills)[kLongest + 1]);

private:
    enum Kind { kStep, kRun };
    struct State {
        Kind kind;
        int first;  // -1 for none
        int second;
        int min;
        int max;
    };

    int add(const State& state) {
        if (count_ < kMaxStates) states_[count_] = state;
        return count_ < kMaxStates ? count_++ : (count_ = kMaxStates + 1, 0);
    }
    int64_t price(int state, int n);

    static constexpr int64_t kUnknown = -1;
    static constexpr int64_t kBeingComputed = -2;

    int count_ = 0;
    bool goesRound_ = false;
    State states_[kMaxStates];
    int64_t prices_[kLongest + 1][kMaxStates];
};

}  // namespace zel
