// One attempt of a pattern that can match in one way only: through its parts from left to right.
#include "regexp/match/one_way.h"

#include <string.h>

#include "regexp/match/positions.h"
#include "string/kernels/api.h"

namespace zel {

namespace {

/// Whether n bytes are the same; n is small.
[[gnu::noinline]] bool sameRest(const Zel8u* a, const Zel8u* b, int n) {
    const auto differ = [a, b](auto word, int at) {
        auto other = word;
        memcpy(&word, a + at, sizeof word);
        memcpy(&other, b + at, sizeof word);
        return word != other;
    };
    constexpr int kWord = 8;
    if (n >= kWord) {
        for (int at = 0; at < n - kWord; at += kWord) {
            if (differ(uint64_t{0}, at)) return false;
        }
        return !differ(uint64_t{0}, n - kWord);
    }
    if (n >= 4) return !differ(uint32_t{0}, 0) && !differ(uint32_t{0}, n - 4);
    for (int i = 0; i < n; ++i) {
        if (a[i] != b[i]) return false;
    }
    return true;
}

/// The same of at least one byte, which mostly decides.
inline bool sameBytes(const Zel8u* a, const Zel8u* b, int n) {
    return *a == *b && (n == 1 || sameRest(a, b, n));
}

bool sameBytesIgnoringCase(const Zel8u* text, const Zel8u* pattern, int n) {
    for (int i = 0; i < n; ++i) {
        if (!sameByte(text[i], pattern[i], true)) return false;
    }
    return true;
}

bool isWideAt(const Zel8u* position, const Zel8u* end) {
    return position < end && *position >= 0x80;
}

}  // namespace

class OneWay::Attempt {
public:
    Attempt(const Zel8u* start, const ByteRanges* ranges, RegExpMatchContext& context)
        : position(start),
          reached(start),
          ranges_(ranges),
          context_(context),
          end_(context.textEnd) {}

    Outcome run(const Part* part) {
        for (; part->kind != Part::kEnd; ++part) {
            const Outcome outcome = take(*part);
            if (outcome != kMatched) return outcome;
        }
        return kMatched;
    }

    const Zel8u* position;
    const Zel8u* reached;  // as far as a run went

private:
    Outcome fail() const { return isSure_ ? kFailed : kNotKnown; }
    Outcome passIf(bool passes) const { return passes ? kMatched : fail(); }
    ptrdiff_t left() const { return end_ - position; }

    Outcome take(const Part& part) {
        switch (part.kind) {
            case Part::kText:
                if (left() < part.length || !sameBytes(position, part.text, part.length))
                    return fail();
                position += part.length;
                return kMatched;
            case Part::kSameText:
                if (left() < part.length ||
                    !sameBytesIgnoringCase(position, part.text, part.length))
                    return fail();
                position += part.length;
                return kMatched;
            case Part::kRun:
                return takeRun(part);
            case Part::kRunToText:
                return takeRunToText(part);
            case Part::kUntilText:
                return takeUntilText(part);
            case Part::kOpen:
                context_.captures[part.number] = {position, 0};
                return kMatched;
            case Part::kClose: {
                CaptureRecord& record = context_.captures[part.number];
                record.length = static_cast<int>(position - record.text);
                return kMatched;
            }
            case Part::kLineStart:
                return passIf(position == context_.textStart ||
                              (left() != 0 && position[-1] == '\n'));
            case Part::kLineEnd:
                return passIf(left() == 0 || *position == '\n');
            case Part::kPosition:
                context_.flags = part.flags;
                return passIf(
                    positionHolds(part.number, position, static_cast<int>(left()), context_));
            case Part::kAhead: {
                const bool isThere =
                    left() >= part.length && sameBytes(position, part.text, part.length);
                return passIf(isThere != part.isNegative);
            }
            case Part::kBehind: {
                const bool isThere = position - context_.textStart >= part.length &&
                                     sameBytes(position - part.length, part.text, part.length);
                return passIf(isThere != part.isNegative);
            }
            case Part::kReference: {
                const CaptureRecord& record = context_.captures[part.number];
                if (left() == 0 || record.length < 0 || record.length > left()) return fail();
                if (record.length > 0 && !sameBytes(position, record.text, record.length))
                    return fail();
                position += record.length;
                return kMatched;
            }
            case Part::kEnd:
                break;
        }
        return kNotKnown;
    }

    /// The end of the run that begins at the position, as far as it may go.
    const Zel8u* runEnd(const Part& part) const {
        const Zel8u* stop = part.max < left() ? position + part.max : end_;
        const Zel8u* run = position;
        for (int i = 0; i < part.chunks && end_ - run >= ByteRanges::kWidth; ++i) {
            const unsigned outside = ranges_[part.ranges].outside(run);
            run += outside != 0 ? __builtin_ctz(outside) : ByteRanges::kWidth;
            if (run >= stop) return stop;
            if (outside != 0) return run;
        }
        const Zel8u* out = part.excluded;
        const int length = static_cast<int>(stop - run);
        switch (part.excludedCount) {
            case 1:
                return run + kernels::findByte(run, length, out[0]);
            case 2:
                return run + kernels::findByte2(run, length, out[0], out[1]);
            case 3:
                return run + kernels::findByte3(run, length, out[0], out[1], out[2]);
            default:
                return run + kernels::findByteNotIn(run, length, part.set.words);
        }
    }

    Outcome takeRun(const Part& part) {
        const Zel8u* run = runEnd(part);
        const ptrdiff_t length = run - position;
        if (length < part.max && part.stopsAtWide && isWideAt(run, end_)) return kNotKnown;
        reached = run > reached ? run : reached;
        if (length < part.min) return fail();
        if (length > part.min && (!part.isFinal || (part.mindsWide && isWideAt(run, end_))))
            isSure_ = false;
        if (part.number != 0) context_.captures[part.number] = {position, static_cast<int>(length)};
        position = run;
        return kMatched;
    }

    /// The text may begin inside the run and end outside.
    Outcome takeRunToText(const Part& part) {
        const Zel8u* run = runEnd(part);
        if (isWideAt(run, end_) && (part.stopsAtWide || part.mindsWide)) return kNotKnown;
        reached = run > reached ? run : reached;
        const Zel8u* low = position + part.min;
        for (const Zel8u* at = run; at >= low; --at) {
            if (end_ - at < part.length || !sameBytes(at, part.text, part.length)) continue;
            if (at > low) isSure_ = false;
            position = at + part.length;
            return kMatched;
        }
        return fail();
    }

    /// The first byte that the text begins with, or that is not in the set.
    const Zel8u* endOfUninteresting(const Part& part, const Zel8u* run) const {
        const int length = static_cast<int>(end_ - run);
        const Zel8u* out = part.excluded;
        switch (part.excludedCount) {
            case 1:
                return run + kernels::findByte2(run, length, *part.text, out[0]);
            case 2:
                return run + kernels::findByte3(run, length, *part.text, out[0], out[1]);
            default:
                while (run < end_ && *run != *part.text && part.set.has(*run)) ++run;
                return run;
        }
    }

    Outcome takeUntilText(const Part& part) {
        if (left() < part.min) return fail();
        const Zel8u* run = position;
        for (int i = 0; i < part.min; ++i, ++run) {
            if (!part.set.has(*run)) return stopAt(part, run);
        }
        for (;; ++run) {
            run = endOfUninteresting(part, run);
            if (run == end_) break;
            if (end_ - run >= part.length && sameBytes(run, part.text, part.length)) {
                if (part.set.has(*run)) isSure_ = false;
                position = run + part.length;
                return kMatched;
            }
            if (!part.set.has(*run)) break;
        }
        return stopAt(part, run);
    }

    Outcome stopAt(const Part& part, const Zel8u* run) {
        if (part.stopsAtWide && isWideAt(run, end_)) return kNotKnown;
        reached = run > reached ? run : reached;
        return fail();
    }

    const ByteRanges* const ranges_;
    RegExpMatchContext& context_;
    const Zel8u* const end_;
    bool isSure_ = true;  // whether a failure now is the failure of the attempt
};

OneWay::Outcome OneWay::tryAt(const Zel8u* position, RegExpMatchContext& context) const {
    const auto unset = [&context] {
        for (int i = 1; i < context.numCaptures; ++i) context.captures[i] = {nullptr, -1};
    };
    const int before = context.steps;
    Zel32u left = 1;
    if (alternatives > 1) {
        left = position == context.textEnd ? beginningAtEnd : beginning[*position];
        if (!context.charge(skipPrice)) return kFailed;
    }
    for (; left != 0; left &= left - 1) {
        Attempt attempt(position, ranges, context);
        const Outcome outcome = attempt.run(parts + first[__builtin_ctz(left)]);
        const Zel8u* reached =
            attempt.position > attempt.reached ? attempt.position : attempt.reached;
        if (outcome == kNotKnown || (outcome == kMatched && attempt.position == position)) {
            unset();
            context.steps = before;
            return kNotKnown;
        }
        const bool isPaid = context.charge(nodes + (reached - position) * price);
        if (outcome == kMatched && isPaid) {
            context.captures[0] = {position, static_cast<int>(attempt.position - position)};
            return kMatched;
        }
        unset();
        if (!isPaid) return kFailed;
    }
    return kFailed;
}

}  // namespace zel
