// Argument checks shared by every exported function. Each exported function is a thin shell: it
// makes these checks in the order its contract names them and then calls one inner function, which
// may assume valid arguments.
#pragma once

namespace zel {

// Each test is a branch of its own that is never taken: left to themselves, compilers make numbers
// of the conditions and combine them, which takes longer.

/// True when any of the pointers is null. All pointers of a call are tested before anything else.
template <typename... Pointers>
constexpr bool anyNull(const Pointers*... pointers) {
    return (... || __builtin_expect(pointers == nullptr, false));
}

/// True when any of the lengths is negative.
template <typename... Lengths>
constexpr bool anyNegative(Lengths... lengths) {
    return (... || __builtin_expect(lengths < 0, false));
}

}  // namespace zel
