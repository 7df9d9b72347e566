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

/// True when the pointers and the length are in order and the length is at most `most`. Functions
/// in which a call of a few cycles matters do such calls themselves and leave all others, those to
/// be refused among them, to a function of its own: then the way of a short call is short.
template <typename... Pointers>
constexpr bool isShortCall(int most, int len, const Pointers*... pointers) {
    return (... && (pointers != nullptr)) &&
           static_cast<unsigned>(len) <= static_cast<unsigned>(most);
}

}  // namespace zel
