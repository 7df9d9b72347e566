// The layout of a pattern set, and the one decision of its search that is neither plain nor visible
// in the results: whether a search is worth a team of threads.
//
//   byte  0              capacity, pointers to the two tables
//   byte 24              pattern table      capacity x 8 bytes; null marks an empty slot
//   byte 24 + 8 x cap    identifier table   capacity x 4 bytes; 0 in an empty slot
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "regexp/program.h"
#include "zelchmx.h"

namespace zel {

// The caller's block may lie at any address.
typedef ZelRegExpState* PatternSlot __attribute__((aligned(1)));
typedef Zel32u IdentifierSlot __attribute__((aligned(1)));

/// The size of a set's block. It may not fit 32 bits.
constexpr int64_t multiSize(int maxPatterns) {
    return int64_t{12} * maxPatterns + 24;
}

/// Index of the lowest null pointer of a table, or -1.
int findEmptySlot(const PatternSlot* patterns, int capacity);

/// How the slots of a set are shared out: every member of a team takes an equal run of them, the
/// last one the remainder as well.
struct Division {
    struct Range {
        int first;
        int last;  // behind the last slot
    };

    int members = 1;
    int chunk = 0;
    int extra = 0;

    constexpr Division() = default;
    constexpr Division(int capacity, int team)
        : members(team), chunk(capacity / team), extra(capacity % team) {}

    constexpr Range rangeOf(int member) const {
        const int first = member * chunk;
        return {first, first + chunk + (member == members - 1 ? extra : 0)};
    }
};

/// Below this many bytes (slots times subject length) waking a team takes longer than searching.
inline constexpr int64_t kTeamMinimumWork = 64 * 1024;

constexpr bool worthATeam(int capacity, int srcLen) {
    return int64_t{capacity} * srcLen >= kTeamMinimumWork;
}

}  // namespace zel

struct __attribute__((packed)) ZelRegExpMultiState {
    int capacity;
    int reserved;
    zel::PatternSlot* patterns;
    zel::IdentifierSlot* identifiers;
};
static_assert(sizeof(ZelRegExpMultiState) == 24);
static_assert(sizeof(ZelRegExpMultiFind) == 24);
