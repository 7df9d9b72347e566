// The prices of an automaton of steps, for growing runs.
#include "regexp/match/hopeless_run.h"

namespace zel {

/// Recursion ends: with fewer bytes everything is known, and with as many the way is no longer than
/// the automaton, or it goes round.
int64_t HopelessRun::price(int state, int n) {
    if (state < 0) return 0;
    int64_t& known = prices_[n][state];
    if (known == kBeingComputed) goesRound_ = true;
    if (known != kUnknown) return known;
    known = kBeingComputed;
    const State& at = states_[state];
    int64_t sum = 1;
    if (at.kind == kStep) {
        sum += price(at.first, n) + price(at.second, n);
    } else {
        for (int taken = at.min; taken <= at.max && taken <= n; ++taken) {
            sum += price(at.first, n - taken);
        }
    }
    known = sum < kBeyondBudgets ? sum : kBeyondBudgets;
    return known;
}

bool HopelessRun::bill(int first, int64_t (&bills)[kLongest + 1]) {
    for (auto& ofLength : prices_) {
        for (int64_t& known : ofLength) known = kUnknown;
    }
    bills[0] = 0;
    int64_t sum = 0;
    for (int n = 0; n <= kLongest && !goesRound_; ++n) {
        const int64_t one = price(first, n);
        if (n > 0) sum = sum + one < kBeyondBudgets ? sum + one : kBeyondBudgets;
        bills[n] = sum;
    }
    return !goesRound_;
}

}  // namespace zel
