// Finding the ranges of a set.
#include "regexp/match/byte_ranges.h"

namespace zel {

namespace {

int64_t eightTimes(int byte) {
    return static_cast<int64_t>(uint64_t{0x0101010101010101} * static_cast<unsigned>(byte));
}

}  // namespace

bool ByteRanges::addRanges(const ByteSet& set) {
    count_ = 0;
    for (int c = 0; c < 256; ++c) {
        if (!set.has(static_cast<Zel8u>(c))) continue;
        if (count_ == kMost) return false;
        const int first = c;
        while (c < 256 && set.has(static_cast<Zel8u>(c))) ++c;
        first_[count_] = eightTimes(first);
        span_[count_++] = eightTimes(c - 1 - first);
    }
    return true;
}

bool ByteRanges::describe(const ByteSet& set) {
    ByteSet others = set;
    others.invert();
    const bool holdsZero = set.has(0);  // then the others have no more ranges than the set
    ifMembers_ = holdsZero ? 0 : (1u << kWidth) - 1;
    return addRanges(holdsZero ? others : set);
}

}  // namespace zel
