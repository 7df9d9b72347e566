// Unicode categories as bits: which groups of code points a category node accepts. The rules are
// written out as they stand, with their asymmetries: a range that holds the code point without
// matching does not decide, code points beyond the table are in no category, and those absent from
// it are in the unassigned one alone.
#pragma once

#include <stdint.h>

#include "regexp/unicode/unicode.h"

namespace zel {

constexpr Zel32u kMajorCategory = 0xFFFFFF80;
constexpr Zel32u kMinorCategory = 0x7F;
constexpr Zel32u kMark = 0x100;
constexpr Zel32u kUnassigned = 0x2010;

constexpr bool inCategory(const UniGroup& group, Zel32u mask, bool negated) {
    const Zel32u category = group.category;
    if (group.place == UniGroup::kUniform || group.place == UniGroup::kUniformBeyond) {
        if (negated ? (mask & ~category) != 0 : (category & mask) == mask) return true;
    }
    if (group.place == UniGroup::kUniformBeyond || group.place == UniGroup::kBeyond) return false;
    if (group.place != UniGroup::kListed) return mask == kUnassigned;
    const bool sameMajor = (category & kMajorCategory) == (mask & kMajorCategory);
    const bool wholeMajor = (mask & kMinorCategory) == 0;
    const bool sharesMinor = (category & mask & kMinorCategory) != 0;
    return (sameMajor && (wholeMajor || sharesMinor)) != negated;
}

/// Marks join the base in front of them.
constexpr bool isMark(const UniGroup& group) {
    return (group.category & kMark) != 0;
}

/// What has a category, and is no mark, can begin a combining sequence.
constexpr bool isBase(const UniGroup& group) {
    return group.category != 0 && !isMark(group);
}

/// One bit per row of UniGroupTbl.
using UniGroups = uint64_t;
static_assert(kUniGroupCount <= 64);

template <typename Test>
constexpr UniGroups groupsThat(const Test& test) {
    UniGroups groups = 0;
    for (int i = 0; i < kUniGroupCount; ++i) {
        if (test(UniGroupTbl[i])) groups |= UniGroups{1} << i;
    }
    return groups;
}

inline constexpr UniGroups kMarks = groupsThat(isMark);
inline constexpr UniGroups kBases = groupsThat(isBase);

inline bool inGroups(UniGroups groups, int codePoint) {
    return ((groups >> findUniGroup(codePoint)) & 1) != 0;
}

/// The groups that each mask accepts. A mask is one bit for the major category and, below 0x80,
/// nothing, one bit, or the three of cased letters.
struct CategoryTable {
    static constexpr int kMajors = 7;
    static constexpr int kMinors = 9;
    UniGroups groups[2][kMajors][kMinors];

    static constexpr int row(Zel32u mask) { return __builtin_ctz(mask >> 7); }
    static constexpr int column(Zel32u mask) {
        const Zel32u minor = mask & kMinorCategory;
        if (minor == 0) return 0;
        return (minor & (minor - 1)) != 0 ? kMinors - 1 : __builtin_ctz(minor) + 1;
    }

    constexpr CategoryTable() : groups() {
        for (int row = 0; row < kMajors; ++row) {
            for (int column = 0; column < kMinors; ++column) {
                Zel32u mask = 0x80u << row;
                if (column == kMinors - 1) {
                    mask |= 0x07;
                } else if (column > 0) {
                    mask |= 1u << (column - 1);
                }
                for (int negated = 0; negated < 2; ++negated) {
                    groups[negated][row][column] = groupsThat([=](const UniGroup& group) {
                        return inCategory(group, mask, negated != 0);
                    });
                }
            }
        }
    }
};
inline constexpr CategoryTable kCategoryTable;

/// The groups that a category mask, as the compiler writes them, accepts.
constexpr UniGroups groupsInCategory(Zel32u mask, bool negated) {
    return kCategoryTable.groups[negated][CategoryTable::row(mask)][CategoryTable::column(mask)];
}

}  // namespace zel
