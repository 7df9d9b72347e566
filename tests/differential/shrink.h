// Steps that every shrinking of a failing case is made of. Each keeps a simpler case as long as it
// still fails.
#pragma once

#include <string>

namespace differential {

/// Drops ever smaller pieces of a text or list.
template <typename Case, typename Sequence>
bool shorten(Case& test, Sequence Case::*member) {
    bool changed = false;
    for (size_t size = (test.*member).size(); size >= 1; size /= 2) {
        for (size_t at = 0; at + size <= (test.*member).size();) {
            Case smaller = test;
            auto begin = (smaller.*member).begin() + static_cast<std::ptrdiff_t>(at);
            (smaller.*member).erase(begin, begin + static_cast<std::ptrdiff_t>(size));
            if (compare(smaller).empty()) {
                ++at;
            } else {
                test = smaller;
                changed = true;
            }
        }
    }
    return changed;
}

/// Sets a member to a plain value.
template <typename Case, typename T>
bool simplify(Case& test, T Case::*member, T value) {
    if (test.*member == value) return false;
    Case simpler = test;
    simpler.*member = value;
    if (compare(simpler).empty()) return false;
    test = simpler;
    return true;
}

/// Turns bytes into plain letters.
template <typename Case>
bool simplifyBytes(Case& test, std::string Case::*member) {
    bool changed = false;
    for (size_t i = 0; i < (test.*member).size(); ++i) {
        for (char plain : {'a', 'b'}) {
            if ((test.*member)[i] == plain) break;
            Case simpler = test;
            (simpler.*member)[i] = plain;
            if (compare(simpler).empty()) continue;
            test = simpler;
            changed = true;
            break;
        }
    }
    return changed;
}

}  // namespace differential
