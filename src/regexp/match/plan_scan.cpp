// Following a plan: from one start position to the next that is worth a try, and the bill for those
// between.
#include "regexp/match/plan.h"

#include "regexp/match/predicates.h"

namespace zel {

namespace {

int distance(const Zel8u* from, const Zel8u* to) {
    return static_cast<int>(to - from);
}

/// The first byte of the run of set bytes that ends at `end`, no further back than `from`.
const Zel8u* runStart(const Zel8u* from, const Zel8u* end, const ByteSet& bytes) {
    while (end > from && bytes.has(end[-1])) --end;
    return end;
}

}  // namespace

void Plan::clear() {
    kind = kNone;
    lines = exact = ignoreCase = avoidsWide = triesAreCheap = hasSecond = wordStart = echoes =
        false;
    firstByteDecides = startsAtPlaces = isFlat = false;
    price = runPrice = matchLength = literalLength = alternatives = 0;
    min = max = 1;
    places_.clear();
    literal = wide_ = required_ = nullptr;
    first = behind = second = {};
}

void Plan::noteShortcuts() {
    isFlat = runPrice == 0 && kind != kRequired && kind != kLine;
    firstByteDecides = lines && kind != kLiteral && (kind != kRun || triesAreCheap);
    switch (kind) {
        case kLiteral:
        case kPrefix:
        case kShape:
        case kDoubled:
        case kSet:
            startsAtPlaces = !lines;
            break;
        default:
            startsAtPlaces = false;
            break;
    }
}

const Zel8u* Plan::nextLiteral(const Zel8u* from, const Zel8u* end) {
    return places_.next(from, end, [this](const Zel8u* p, int length, kernels::Gathered* places) {
        const auto gather = ignoreCase ? kernels::gatherBytesFolded : kernels::gatherBytes;
        gather(p, length, literal, literalLength, places);
    });
}

const Zel8u* Plan::findNext(const Zel8u* from, const Zel8u* start, const Zel8u* end) {
    using kernels::Gathered;
    if (lines) return nextStartOfLine(from, end);
    switch (kind) {
        case kNone:
            return from;
        case kLiteral:
            return nextLiteral(from, end);
        case kBehind: {
            const Zel8u* earliest = from - start < literalLength ? start : from - literalLength;
            const Zel8u* place = nextLiteral(earliest, end);
            return place == end ? end : place + literalLength;
        }
        case kLine:
            return nextLine(from, start, end);
        case kPrefix:
            return places_.next(from, end, [this](const Zel8u* p, int length, Gathered* places) {
                kernels::gatherPrefixes(p, length, &prefix, places);
            });
        case kShape:
            return places_.next(from, end, [this](const Zel8u* p, int length, Gathered* places) {
                kernels::gatherShapes(p, length, &shape, places);
            });
        case kDoubled:
            return places_.next(from, end, [this](const Zel8u* p, int length, Gathered* places) {
                kernels::gatherDoubled(p, length, first.words, places);
            });
        case kRun:
            return nextRun(from, start, end);
        case kRunLiteral:
            return nextRunLiteral(from, end);
        case kRequired:
            return nextRequired(from, end);
        case kSet:
            break;
    }
    return places_.next(from, end, [this](const Zel8u* p, int length, Gathered* places) {
        kernels::gatherBytesIn(p, length, first.words, places);
    });
}

/// Whether the plan has nothing against a position.
bool Plan::acceptsAt(const Zel8u* position, const Zel8u* end) const {
    if (position == end) return true;
    if (kind != kRun || triesAreCheap) return first.has(*position);
    const Zel8u* stop = end - position > max ? position + max : end;
    const Zel8u* run = position;
    while (run < stop && first.has(*run)) ++run;
    return run - position >= min && run < end && behind.has(*run);
}

/// `from` is the start of a line.
const Zel8u* Plan::nextStartOfLine(const Zel8u* from, const Zel8u* end) {
    if (kind == kLiteral) {
        for (const Zel8u* position = from; position < end;) {
            position = nextLiteral(position, end);
            if (position == from || position == end || position[-1] == '\n') return position;
            ++position;
        }
        return end;
    }
    while (!acceptsAt(from, end)) {
        from += kernels::findByte(from, distance(from, end), '\n');
        if (from == end) break;
        ++from;
    }
    return from;
}

const Zel8u* Plan::nextLine(const Zel8u* from, const Zel8u* start, const Zel8u* end) const {
    const bool atLineStart = from == start || from[-1] == '\n';
    const Zel8u* line =
        from;  // where the line of `position` begins, as far as it lies behind `from`
    for (const Zel8u* position = from; position < end;) {
        position += kernels::findBytes(position, distance(position, end), literal, literalLength);
        if (position == end) break;
        const int newline = kernels::findByteRev(line, distance(line, position), '\n');
        if (newline >= 0) line += newline + 1;
        if (position - line < min) {
            ++position;
        } else if (line > from || atLineStart) {
            return line;
        } else {  // in the line that `from` stands inside of
            position += kernels::findByte(position, distance(position, end), '\n');
        }
    }
    return end;
}

const Zel8u* Plan::nextRun(const Zel8u* from, const Zel8u* start, const Zel8u* end) {
    const auto gather = [this](const Zel8u* p, int length, kernels::Gathered* places) {
        kernels::gatherPairsIn(p, length, first.words, behind.words, places);
    };
    for (const Zel8u* position = from; position < end;) {
        const Zel8u* last = places_.next(position, end, gather);
        if (last == end) break;
        const Zel8u* earliest = last + 1 - from > max ? last + 1 - max : from;
        // A run of a fixed length is left to the attempt to look at.
        const bool isFixed = min == max && last + 1 - from >= min;
        const Zel8u* begin = isFixed ? last + 1 - min : runStart(earliest, last + 1, first);
        const bool inWord = wordStart && begin > start && kWordBytes.has(begin[-1]);
        const bool silent = echoes && last[1] < 0x80 && (end - last <= 2 || last[2] != *begin);
        if (last + 1 - begin >= min && !inWord && !silent) return begin;
        position = last + 1;
    }
    return end;
}

/// Where the run, or both, that end at `end` begin.
const Zel8u* Plan::runsStart(const Zel8u* from, const Zel8u* end) const {
    return runStart(from, hasSecond ? runStart(from, end, second) : end, first);
}

const Zel8u* Plan::nextRunLiteral(const Zel8u* from, const Zel8u* end) {
    constexpr ByteSet kWide = {{0, 0, 0, ~uint64_t{0}}};
    const Zel8u* position = from;
    while (end - position >= min) {
        if (avoidsWide && (wide_ == nullptr || wide_ < position)) {
            wide_ = position + kernels::findByteIn(position, distance(position, end), kWide.words);
        }
        const Zel8u* earliest = position + min;
        position = nextLiteral(earliest, end);
        if (avoidsWide && wide_ < position) {
            position = wide_ + 1;
            const Zel8u* begin = runsStart(from, wide_);
            if (begin < wide_) return begin;
            continue;
        }
        if (position == end) break;
        const Zel8u* firstEnd = hasSecond ? runStart(from, position, second) : position;
        const Zel8u* begin = runStart(from, firstEnd, first);
        if (firstEnd - begin >= min && (!hasSecond || firstEnd < position)) return begin;
        position -= min - 1;
    }
    return end;
}

const Zel8u* Plan::nextRequired(const Zel8u* from, const Zel8u* end) {
    if (required_ != nullptr && from < required_) return from;  // in the run last found
    for (const Zel8u* position = from; position < end; ++position) {
        position += kernels::findByteIn(position, distance(position, end), behind.words);
        if (position == end) break;
        const Zel8u* begin = runStart(from, position, first);
        required_ = position;
        if (begin < position) return begin;
    }
    return end;
}

/// The bytes between the runs, and the runs.
int64_t Plan::billForRuns(const Zel8u* from, const Zel8u* to) const {
    int64_t sum = 0;
    int run = 0;
    for (const Zel8u* p = from; p < to; ++p) {
        if (first.has(*p)) {
            if (++run > HopelessRun::kLongest) return HopelessRun::kBeyondBudgets;
        } else {
            sum += bills[run] + price;
            run = 0;
        }
    }
    return sum + bills[run];
}

int64_t Plan::sumUp(const Zel8u* from, const Zel8u* to, const Zel8u* end, int steps) const {
    const int64_t length = to - from;
    if (kind == kRequired) return billForRuns(from, to);
    if (lines) return length * (price + runPrice);
    int64_t sum = length * price;
    if (kind == kLine) sum += 4;
    if (runPrice == 0) return sum;
    // Each start has the second run behind its own to give back, too: of runs of m and n bytes
    // that makes m * n, which is no more than the sum of both runs'.
    const int64_t firstPrice = runPrice + hasSecond;
    // One run from end to end would be the worst. If the budget would allow that all over the text,
    // nobody has to look.
    constexpr int64_t kFar = 1 << 12;
    const int64_t worst = (length + 2) / 2 * (firstPrice + hasSecond);
    if (length < kFar && (price + worst) * (end - from) <= steps) return sum + length * worst;
    // Of long runs only that they exceed every budget counts.
    constexpr int64_t kBeyondBudgets = int64_t{1} << 32;
    const auto runs = [&](const ByteSet& set) {
        const int64_t bound = kernels::boundRuns(from, distance(from, to), set.words);
        return bound < kBeyondBudgets ? bound : kBeyondBudgets;
    };
    sum += runs(first) * firstPrice;
    return hasSecond ? sum + runs(second) : sum;
}

}  // namespace zel
