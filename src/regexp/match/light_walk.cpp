// The light walk. See light_walk.h for what it is; the rules that it follows are those of
// engine.cpp, greedy_runs.h, groups.h and lazy_runs.cpp.
#include "regexp/match/light_walk.h"

#include <string.h>

#include "regexp/match/positions.h"
#include "regexp/match/predicates.h"
#include "string/kernels/api.h"

namespace zel {

namespace {

constexpr bool holdsTheSame(const AsciiSet& set, const ByteSet& bytes) {
    for (unsigned c = 0; c < 0x80; ++c) {
        if (set.has(c) != bytes.has(static_cast<Zel8u>(c))) return false;
    }
    return true;
}
constexpr bool shorthandsHoldTheSame() {
    for (int i = 0; i < kShorthands; ++i) {
        if (!holdsTheSame(kShorthandSets[i], shorthandBytes(kShorthandLetters[i], 0))) return false;
    }
    return true;
}
static_assert(shorthandsHoldTheSame());
static_assert(LightProgram::kFirstShorthand == kernels::AsciiSets::kFirstShared);
static_assert(LightOperation::kNoLimit == kernels::TextMasks::kMaxLength);

// Whoever goes back more often is better served by the engine, which gives back with more care.
constexpr int kMostReturns = 100;

/// Which characters of the text are in which sets, as questions of the walk. Most texts take one
/// word of each set's mask.
template <bool kOneWord>
class Members {
public:
    explicit Members(const kernels::TextMasks& masks) : masks_(masks) {}

    bool has(int set, int position) const {
        return (word(set, position) >> (position & 63) & 1) != 0;
    }
    /// How many members stand in a row from `position` on; there is none at the end of the text.
    int runLength(int set, int position) const {
        uint64_t others = ~word(set, position) >> (position & 63);
        if (kOneWord || others != 0) return __builtin_ctzll(others);
        int end = position;
        do {
            end = (end | 63) + 1;
            others = ~word(set, end);
        } while (others == 0);
        return end + __builtin_ctzll(others) - position;
    }
    /// The first position of a member from `position` on, `limit` when there is none in front of
    /// it.
    int next(int set, int position, int limit) const {
        uint64_t members = word(set, position) >> (position & 63);
        while (members == 0) {
            position = (position | 63) + 1;
            if (position >= limit) return limit;
            members = word(set, position);
        }
        position += __builtin_ctzll(members);
        return position < limit ? position : limit;
    }
    /// The last position of a member from `limit` on and in front of `position`, -1 for none.
    int previous(int set, int position, int limit) const {
        while (--position >= limit) {
            const uint64_t members = word(set, position) << (63 - (position & 63));
            if (members != 0) {
                position -= __builtin_clzll(members);
                return position >= limit ? position : -1;
            }
            position &= ~63;
        }
        return -1;
    }

private:
    uint64_t word(int set, int position) const {
        return masks_.words[kOneWord ? 0 : position >> 6][set];
    }

    const kernels::TextMasks& masks_;
};

/// Where the walk stands: in front of an operation, at a position of the text.
struct Place {
    const LightOperation* operation;
    int position;
};

/// A place where the walk could have gone another way.
struct Choice {
    const LightOperation* operation;
    int position;  // where the rest has been tried last
    int start;     // of a run
};

template <bool kOneWord>
class LightWalk {
public:
    LightWalk(const LightProgram& program, const SearchRequest& request,
              const kernels::TextMasks& masks)
        : program_(program),
          request_(request),
          text_(request.text),
          length_(request.length),
          members_(masks),
          captures_(request.work.captures) {}

    LightOutcome run() {
        Place place = {program_.operations(), 0};
        for (;;) {
            const int end = takeLine(place);
            if (end >= 0) return affords() ? succeed(end) : LightOutcome::kNotKnown;
            do {
                if (top_ == 0) return affords() ? fail() : LightOutcome::kNotKnown;
                if (++returns_ > kMostReturns) return LightOutcome::kNotKnown;
            } while (!goBack(choices_[top_ - 1], place));
        }
    }

private:
    static constexpr int kFailed = -1;

    /// Whether the budget suffices for all that the engine may have spent: for each line that was
    /// taken, the nodes on it with the groups that could have been passed over, what its runs give
    /// back in vain, and what was passed over where it began.
    bool affords() const {
        const int nodes = request_.state.nodeCount;
        const int line = nodes + (nodes + 2 * (length_ + 1)) * program_.missPrice;
        return (returns_ + 1) * line <= request_.state.matchLimit;
    }
    LightOutcome succeed(int end) const {
        captures_[0] = {text_, end + raised_};
        const int groups = request_.state.groupCount;
        const int count = *request_.count < groups ? *request_.count : groups;
        copyRecords(captures_, count, request_.results);
        *request_.count = count;
        return LightOutcome::kMatched;
    }
    LightOutcome fail() const {
        *request_.count = 0;
        return LightOutcome::kFailed;
    }
    void push(const LightOperation& operation, int position, int start) {
        choices_[top_++] = {&operation, position, start};
    }
    void capture(int slot, int start, int end) {
        if (slot != 0) captures_[slot] = {text_ + start, end - start};
    }

    bool isEnd(int position) const {
        return position == length_ || (position + 1 == length_ && text_[position] == '\n');
    }

    /// The length of a run, as long as it can be.
    int takeRun(const LightOperation& operation, int start) {
        const int length = members_.runLength(operation.set, start);
        const int taken = length < operation.max ? length : operation.max;
        capture(operation.slot, start, start + taken);
        return taken;
    }

    int takeLine(Place place);
    bool goBack(Choice& choice, Place& place);
    bool giveBack(Choice& choice, Place& place);
    bool stretch(Choice& choice, Place& place);
    const LightOperation* passOver(const LightOperation& passed);
    bool holds(const LightOperation& operation, int position) const;
    bool isText(const LightOperation& operation, int position) const;

    const LightProgram& program_;
    const SearchRequest& request_;
    const Zel8u* const text_;
    const int length_;
    const Members<kOneWord> members_;
    CaptureRecord* const captures_;
    int top_ = 0;
    int returns_ = 0;
    int raised_ = 0;  // what lazy runs that failed have left in the whole match's length
    Choice choices_[LightProgram::kMaxChoices];
};

/// From a place to the end of the program: the end of the match, kFailed when there is none.
template <bool kOneWord>
int LightWalk<kOneWord>::takeLine(Place place) {
    int position = place.position;
    for (const LightOperation* next = place.operation;;) {
        const LightOperation& operation = *next;
        switch (operation.kind) {
            case kLightLetter:
                if (position == length_ || text_[position] != operation.set) return kFailed;
                ++position;
                next = operation.behind<kLightLetter>();
                break;
            case kLightText:
                if (!isText(operation, position)) return kFailed;
                position += operation.rest;
                next = operation.behind<kLightText>();
                break;
            case kLightOne:
                if (!members_.has(operation.set, position)) return kFailed;
                ++position;
                next = operation.behind<kLightOne>();
                break;
            case kLightRun: {
                const int length = takeRun(operation, position);
                if (length < operation.min) return kFailed;
                position += length;
                next = operation.behind<kLightRun>();
                break;
            }
            case kLightRunLetter: {
                const int length = takeRun(operation, position);
                if (length < operation.min) return kFailed;
                position += length;
                if (position == length_ || text_[position] != operation.rest) return kFailed;
                ++position;
                next = operation.behind<kLightRunLetter>();
                break;
            }
            case kLightGiving: {
                const int length = takeRun(operation, position);
                if (length < operation.min) return kFailed;
                if (length > operation.min) push(operation, position + length, position);
                position += length;
                next = operation.behind<kLightGiving>();
                break;
            }
            case kLightLazy:
            case kLightRaising: {
                const int start = position;
                if (members_.runLength(operation.set, start) < operation.min) return kFailed;
                position += operation.min;
                push(operation, position, start);
                if (operation.rest != LightOperation::kAnything && position != length_ &&
                    !members_.has(operation.rest, position))
                    return kFailed;
                capture(operation.slot, start, position);
                next = operation.behind<kLightLazy>();
                break;
            }
            case kLightOptional:
            case kLightTrying:
                if (operation.rest != LightOperation::kAnything &&
                    !members_.has(operation.rest, position)) {
                    next = passOver(operation);
                    break;
                }
                if (operation.kind == kLightTrying) push(operation, position, position);
                next = operation.behind<kLightOptional>();
                if (operation.max != 0) {
                    ++position;
                    next = next->further(operation.max);
                }
                break;
            case kLightLeave:
                next = passOver(operation);
                break;
            case kLightOpen:
                captures_[operation.set].text = text_ + position;
                next = operation.behind<kLightOpen>();
                break;
            case kLightClose: {
                CaptureRecord& record = captures_[operation.set];
                record.length = static_cast<int>(text_ + position - record.text);
                next = operation.behind<kLightClose>();
                break;
            }
            case kLightEndMatch:
                return isEnd(position) ? position : kFailed;
            case kLightMatch:
                return position;
            case kLightEnd:
            case kLightVeryEnd:
            case kLightLineEnd:
            case kLightBoundary:
            case kLightInside:
                if (!holds(operation, position)) return kFailed;
                next = operation.behind<kLightEnd>();
                break;
            default:
                __builtin_unreachable();
        }
    }
}

/// Whether an assertion holds.
template <bool kOneWord>
bool LightWalk<kOneWord>::holds(const LightOperation& operation, int position) const {
    switch (operation.kind) {
        case kLightVeryEnd:
            return position == length_;
        case kLightLineEnd:
            return position == length_ || text_[position] == '\n';
        case kLightEnd:
            return isEnd(position);
        case kLightBoundary:
            return atWordBoundary(text_ + position, text_);
        default:
            return !atWordBoundary(text_ + position, text_);
    }
}

template <bool kOneWord>
bool LightWalk<kOneWord>::isText(const LightOperation& operation, int position) const {
    const ZelRegExpState& state = request_.state;
    const auto* literal =
        reinterpret_cast<const Zel8u*>(state.nodes() + state.nodeCount) + operation.set;
    const int left = length_ - position;
    const Zel8u* text = text_ + position;
    if (left < operation.rest) return false;
    if (left >= 8 && operation.rest <= 8) {  // there are so many bytes behind all literals, too
        uint64_t a;
        uint64_t b;
        __builtin_memcpy(&a, text, sizeof a);
        __builtin_memcpy(&b, literal, sizeof b);
        return (a ^ b) << (64 - 8 * operation.rest) == 0;
    }
    return memcmp(text, literal, operation.rest) == 0;
}

/// Finds the place from which to go on another way; false when there is none left, and the choice
/// is gone.
template <bool kOneWord>
bool LightWalk<kOneWord>::goBack(Choice& choice, Place& place) {
    switch (choice.operation->kind) {
        case kLightGiving:
            return giveBack(choice, place);
        case kLightLazy:
        case kLightRaising:
            return stretch(choice, place);
        default:
            place = {passOver(*choice.operation), choice.position};
            --top_;
            return true;
    }
}

/// Behind a shorter run.
template <bool kOneWord>
bool LightWalk<kOneWord>::giveBack(Choice& choice, Place& place) {
    const LightOperation& operation = *choice.operation;
    const int low = choice.start + operation.min;
    const int position = operation.rest == LightOperation::kAnything
                             ? choice.position - 1
                             : members_.previous(operation.rest, choice.position, low);
    if (position <= low) --top_;
    if (position < low) return false;
    choice.position = position;
    capture(operation.slot, choice.start, position);
    place = {operation.behind<kLightGiving>(), position};
    return true;
}

/// Behind a longer lazy run.
template <bool kOneWord>
bool LightWalk<kOneWord>::stretch(Choice& choice, Place& place) {
    const LightOperation& operation = *choice.operation;
    const int length = members_.runLength(operation.set, choice.start);
    const int most = length < operation.max ? length : operation.max;
    const int last = choice.start + most;
    int position = choice.position + 1;
    if (position > last) {
        if (operation.kind == kLightRaising) raised_ += length > most ? most + 1 : most;
        --top_;
        return false;
    }
    if (operation.rest != LightOperation::kAnything)
        position = members_.next(operation.rest, position, last);
    choice.position = position;
    capture(operation.slot, choice.start, position);
    place = {operation.behind<kLightLazy>(), position};
    return true;
}

/// Unsets the captures of what is passed over; the operation behind it.
template <bool kOneWord>
const LightOperation* LightWalk<kOneWord>::passOver(const LightOperation& passed) {
    for (int i = 0; i < passed.set; ++i) captures_[passed.slot + i] = {nullptr, -1};
    return passed.further(passed.min);
}

}  // namespace

/// Aligned, as its only caller of note is, because such a search takes so few cycles that it
/// matters where their code lies in its cache lines.
[[gnu::aligned(64)]] LightOutcome walkLightly(const LightProgram& program,
                                              const SearchRequest& request) {
    const kernels::AsciiSets sets = {program.sets(), program.setCount,
                                     reinterpret_cast<const Zel8u*>(kShorthandSets),
                                     program.shorthands};
    kernels::TextMasks masks;
    if (request.length > kernels::TextMasks::kMaxLength ||
        !kernels::maskAscii(request.text, request.length, &sets, &masks))
        return LightOutcome::kNotKnown;
    if (request.length < 64) return LightWalk<true>(program, request, masks).run();
    return LightWalk<false>(program, request, masks).run();
}

}  // namespace zel
