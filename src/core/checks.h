// Argument checks shared by every exported function. Each exported function is a thin shell: it
// makes these checks in the order its contract names them and then calls one inner function, which
// may assume valid arguments.
#pragma once

namespace zel {

/// True when any of the pointers is null. All pointers of a call are tested before anything else.
template <typename... Pointers>
constexpr bool anyNull(const Pointers*... pointers) {
    return (... || (pointers == nullptr));
}

/// True when any of the lengths is negative.
template <typename... Lengths>
constexpr bool anyNegative(Lengths... lengths) {
    return (... || (lengths < 0));
}

}  // namespace zel
