// The search driver: checks arguments, narrows the text with the pattern's trailing literal, walks
// the start positions and copies capture records into the caller's results.
//
// The budget is set once a call and shared by all start positions and all matches. Results are
// visible, and so is where the budget ends; everything else is free.
#include "regexp/match/driver.h"

#include <string.h>

#include <initializer_list>

#include "core/checks.h"
#include "regexp/match/character.h"
#include "regexp/match/character_sequence.h"
#include "regexp/match/context.h"
#include "regexp/match/enclosed_run.h"
#include "regexp/match/first_letter.h"
#include "regexp/match/light_walk.h"
#include "regexp/match/one_way.h"
#include "regexp/match/plain_literals.h"
#include "regexp/match/plan.h"
#include "regexp/match/predicates.h"
#include "string/kernels/api.h"
#include "string/utf8.h"

namespace zel {

namespace {

/// In a text up to this length the set-up of a search counts.
constexpr int kShortText = 512;

/// Where a search may begin.
enum class Anchor { kNone, kStart, kLineStart };

/// Length of the text up to the end of the last occurrence of the pattern's trailing literal: no
/// match can end behind it. 0 when it does not occur.
int lengthToTrailingLiteral(const Zel8u* text, int length, const ZelRegExpState& state) {
    const Node& node = state.nodes()[state.trailingLiteral];
    const Zel8u letter = static_cast<Zel8u>(node.value);
    const bool isString = node.kind == NodeString;
    const Zel8u* literal = isString ? static_cast<const Zel8u*>(node.data) : &letter;
    const int literalLength = isString ? node.count : 1;
    int position = -1;
    if ((static_cast<Zel32u>(node.extra) & kOptionIgnoreCase) != 0) {
        position = kernels::findBytesIgnoreCaseRev(text, length, literal, literalLength);
    } else if (isString) {
        zelsFindRev_8u(text, length, literal, literalLength, &position);
    } else {
        zelsFindRevC_8u(text, length, letter, &position);
    }
    return position < 0 ? 0 : position + literalLength;
}

/// Whether the search reads on for the literal that the pattern consists of, up to the end, and so
/// does by itself what narrowing would do for it. It costs one step a position. A literal that may
/// stand within a character is another matter: where narrowing cuts that character, it is found.
bool findsAllOfOneLiteral(const ZelRegExpState& state, int length) {
    kernels::Literal literal;
    return state.nodeCount == 1 && (state.options & kOptionGlobal) != 0 &&
           state.matchLimit > length && readLiteral(state.nodes()[0], state.format, literal);
}

int narrowedLength(const Zel8u* text, int length, const ZelRegExpState& state) {
    if (state.trailingLiteral < 0 || findsAllOfOneLiteral(state, length)) return length;
    return lengthToTrailingLiteral(text, length, state);
}

/// The first top-level bar from node `from` on, or the number of nodes.
int topLevelBar(const ZelRegExpState& state, int from) {
    return nextBar(state.nodes(), from, state.nodeCount, 0);
}

Anchor anchorOf(const ZelRegExpState& state, bool hasBars) {
    const Node* nodes = state.nodes();
    if (state.nodeCount == 0 || nodes[0].kind != NodePosition || hasBars) return Anchor::kNone;
    const int assertion = nodes[0].value;
    const bool multiLine = (state.options & kOptionMultiLine) != 0;
    if (assertion == '^' && multiLine) return Anchor::kLineStart;
    if (assertion != '^' && assertion != 'A' && assertion != 'G') return Anchor::kNone;
    const bool optional = state.nodeCount > 1 && nodes[1].value == 0 && isQuantifier(nodes[1]);
    return optional ? Anchor::kNone : Anchor::kStart;
}

/// Whether a literal run comes first, or right behind assertions.
bool beginsWithLiteral(const ZelRegExpState& state) {
    const Node* nodes = state.nodes();
    int i = 0;
    while (i < state.nodeCount && nodes[i].kind == NodePosition) ++i;
    return i < state.nodeCount && nodes[i].kind == NodeString;
}

/// How a search pays for start positions that it need not try. What it skips may be paid with an
/// upper bound: as long as the budget suffices, nobody can tell. When it does not, the whole call
/// is done over, trying every position.
enum class Pay { kUpperBound, kExactly };

/// One search. Its aids, the plan and the description as a pattern that matches in one way only,
/// are larger than the smallest stacks can bear. So each lies in the frame of a function of its
/// own, which is entered only when the search wants the aid and the stack has room for it; the
/// search goes on inside, from the start position that it has come to.
class Search {
public:
    Search(const SearchRequest& request, Pay pay)
        : request_(request),
          state_(request.state),
          pay_(pay),
          attemptsBeforePlanning_(pay == Pay::kUpperBound ? kAttemptsBeforePlanning : 0),
          position_(request.text) {
        const ZelRegExpState& state = request.state;
        context_.noEmpty = 0;
        context_.numCaptures = state.groupCount;
        context_.steps = state.matchLimit;
        context_.format = state.format;
        context_.nodeCount = state.nodeCount;
        context_.textStart = request.text;
        context_.textEnd = request.text + request.length;
        context_.nodes = state.nodes();
        context_.captures = request.work.captures;
        context_.groups = request.work.groups;
        context_.end = state.nodeCount;
        context_.lazyCodePoints = -1;
        context_.lazyRun.node = -1;
        context_.stack.start();
        context_.classes.clear();
    }

    /// Fills the results of the request, and says how many there are.
    ZelStatus run() { return isGlobal() ? findAll() : findFirst(); }
    /// Whether the budget ended, but might not have if everything had been paid exactly.
    bool endedTooEarly() const { return outOfBudget() && guessed_; }

private:
    enum class Aid { kNone, kPlan, kOneWay };

    // A plan costs as much as some attempts, and pays when there are many. The plan for a literal
    // costs next to nothing.
    static constexpr int kAttemptsBeforePlanning = 8;
    static constexpr int kCandidatesBeforeOneWay = 3;
    static constexpr ptrdiff_t kLongText = 200;  // reading a pattern costs as much as some attempts

    bool isGlobal() const { return (state_.options & kOptionGlobal) != 0; }
    bool outOfBudget() const { return context_.steps < 0; }

    ZelStatus findFirst() {
        const int slots = state_.groupCount;
        const int capacity = *request_.count < slots ? *request_.count : slots;
        goOn();
        if (found_) {
            copyRecords(context_.captures, capacity, request_.results);
            *request_.count = capacity;
            return zelStatusOk;
        }
        *request_.count = outOfBudget() ? capacity : 0;
        return outOfBudget() ? zelStatusRegExpMatchLimitError : zelStatusOk;
    }

    ZelStatus findAll() {
        if (recordsPerMatch() == 1 && collectAll()) return zelStatusOk;
        goOn();
        *request_.count = written_;
        return outOfBudget() ? zelStatusRegExpMatchLimitError : zelStatusOk;
    }

    /// Searches to the end, with all the aids that are wanted on the way.
    void goOn() {
        for (;;) {
            wanted_ = Aid::kNone;
            if (isGlobal()) {
                findMatches();
            } else {
                found_ = findFrom(position_);
            }
            if (wanted_ == Aid::kNone) return;
            if (wanted_ == Aid::kPlan) {
                if (context_.stack.hasRoom(sizeof(Plan)) && goOnWithPlan()) return;
            } else {
                if (context_.stack.hasRoom(sizeof(OneWay)) && goOnWithOneWay()) return;
            }
        }
    }

    /// False when there is no plan for the pattern; then the search has not gone on.
    [[gnu::noinline]] bool goOnWithPlan() {
        Plan plan;
        makePlan(state_, anchor_ == Anchor::kLineStart, context_.stack, plan);
        if (plan.kind == Plan::kNone) return false;
        plan_ = &plan;
        goOn();
        plan_ = nullptr;
        return true;
    }

    /// False when the pattern can match in more ways than one; then the search has not gone on.
    [[gnu::noinline]] bool goOnWithOneWay() {
        OneWay oneWay;
        if (!makeOneWay(state_, context_.stack, oneWay)) return false;
        plan_->makeTriesCheap();
        oneWay_ = &oneWay;
        goOn();
        oneWay_ = nullptr;
        return true;
    }

    /// Ends a stretch of the search, which goes on from the position when there is the aid or it
    /// cannot be had. Answers that nothing was found.
    bool wantAt(const Zel8u* position, Aid aid) {
        position_ = position;
        wanted_ = aid;
        return false;
    }

    /// In find-all mode the records of groups stand for a match that has some.
    int firstSlot() const { return !request_.wholeMatchToo && state_.groupCount > 1 ? 1 : 0; }
    int recordsPerMatch() const { return state_.groupCount - firstSlot(); }

    /// Writes matches from `position_` on, as many as there is room for.
    void findMatches() {
        const int slot = firstSlot();
        const int records = recordsPerMatch();
        const int lastFit = *request_.count - records;
        while (written_ <= lastFit) {
            bool found;
            if (retryAt_ != nullptr) {
                found = findNonEmptyAt(retryAt_);
                if (!found) position_ = advance(retryAt_);
                retryAt_ = nullptr;
                if (!found && !outOfBudget()) continue;
            } else {
                found = findFrom(position_);
            }
            if (!found) break;
            copyRecords(context_.captures + slot, records, request_.results + written_);
            written_ += records;
            if (outOfBudget()) break;
            const CaptureRecord& whole = context_.captures[0];
            position_ = whole.text + whole.length;
            if (whole.length <= 0) {
                position_ = whole.text;
                if (position_ < context_.textEnd) {
                    retryAt_ = position_;
                } else {
                    position_ = advance(position_);
                }
            }
        }
    }

    /// Tries start positions from `start` on.
    bool findFrom(const Zel8u* start) {
        if (oneWay_ == nullptr || !oneWay_->setsAllCaptures()) clearCaptures();
        return plan_ != nullptr ? findPlanned(startAt(start)) : findWithoutPlan(start);
    }

    /// Tries the start position again, for a match that is not empty.
    bool findNonEmptyAt(const Zel8u* start) {
        clearCaptures();
        context_.noEmpty = 1;
        const bool found = attempt(start) && context_.captures[0].length > 0;
        context_.noEmpty = 0;
        return found;
    }

    /// The position one character further.
    const Zel8u* advance(const Zel8u* position) const {
        if (context_.format != kFormatUtf8 || position >= context_.textEnd) return position + 1;
        return position + utf8Length(position, context_.textEnd - position);
    }

    /// Tries start positions, and wants a plan when there have been some in vain.
    [[gnu::noinline]] bool findWithoutPlan(const Zel8u* start) {
        if (start == context_.textStart) {
            // The beginning is tried whatever the anchor; many a search ends here.
            if (attempt(start)) return true;
            start = advance(start);
        }
        lookAtPattern();
        if (anchor_ == Anchor::kStart) return false;
        for (const Zel8u* position = startAt(start); position != nullptr;
             position = after(position)) {
            if (outOfBudget()) return false;  // every further attempt fails at once
            if (attemptsBeforePlanning_ > 0 && --attemptsBeforePlanning_ == 0)
                return wantAt(position, Aid::kPlan);
            if (attempt(position)) return true;
        }
        return false;
    }

    /// Tries the start positions that the plan does not reject.
    bool findPlanned(const Zel8u* position) {
        for (; position != nullptr; position = after(position)) {
            if (outOfBudget()) return false;
            position = skipFrom(position);
            if (position == nullptr) return false;
            if (oneWay_ == nullptr && plan_->matchLength <= 0 &&
                ++candidates_ == kCandidatesBeforeOneWay)
                return wantAt(position, Aid::kOneWay);
            if (attemptPlanned(position)) return true;
        }
        return false;
    }

    /// Writes all matches, for patterns that need no attempts. False when this search has to go the
    /// ordinary way. Each kind is read in a frame of its own, because these are large.
    bool collectAll() {
        if (pay_ != Pay::kUpperBound) return false;
        StackGuard& stack = context_.stack;
        const bool isLong = request_.length >= kLongText;
        return collectPlainRuns() || (stack.hasRoom(sizeof(PlainLiterals)) && collectLiterals()) ||
               (isLong && collectEnclosed()) ||
               (isLong && stack.hasRoom(sizeof(CharacterSequence)) && collectSequences());
    }

    /// The matches of a pattern that is a run of a set's bytes.
    [[gnu::noinline]] bool collectPlainRuns() {
        // Each byte outside the runs, each run and the end of the text cost a step.
        ByteSet bytes;
        if (context_.steps <= request_.length || !isPlainRun(state_, context_.stack, bytes))
            return false;
        int end = 0;
        *request_.count = kernels::collectRunsOf(request_.text, request_.length, bytes.words,
                                                 request_.results, *request_.count, &end);
        return true;
    }

    /// Of a pattern that is a literal, or several to choose from.
    [[gnu::noinline]] bool collectLiterals() {
        PlainLiterals literals;
        if (!literals.read(state_) || context_.steps / literals.price() <= request_.length)
            return false;
        *request_.count =
            literals.collect(request_.text, context_.textEnd, request_.results, *request_.count);
        return true;
    }

    /// Of a pattern that is a run of bytes between literals.
    [[gnu::noinline]] bool collectEnclosed() {
        EnclosedRun run;
        if (!run.read(state_, context_.stack)) return false;
        const int count = run.collect(request_.text, context_.textEnd, context_.steps,
                                      request_.results, *request_.count);
        if (count < 0) return false;
        *request_.count = count;
        return true;
    }

    /// Of a pattern that is a few characters in a row.
    [[gnu::noinline]] bool collectSequences() {
        CharacterSequence sequence;
        if (!sequence.read(state_) || context_.steps / sequence.price() < request_.length + 2)
            return false;
        *request_.count =
            sequence.collect(request_.text, context_.textEnd, request_.results, *request_.count);
        return true;
    }

    /// The first allowed start position at or behind `start`, null when there is none.
    const Zel8u* startAt(const Zel8u* start) const {
        if (start > context_.textEnd || start < context_.textStart) return nullptr;
        if (anchor_ != Anchor::kLineStart || start == context_.textStart || start[-1] == '\n') {
            return start;
        }
        if (start < context_.textEnd && *start == '\n') return start + 1;  // behind most matches
        const auto* newline = static_cast<const Zel8u*>(
            memchr(start, '\n', static_cast<size_t>(context_.textEnd - start)));
        return newline == nullptr ? nullptr : newline + 1;
    }

    const Zel8u* after(const Zel8u* position) const { return startAt(advance(position)); }

    /// The first position from `start` on that the plan does not reject; the very end is never
    /// rejected. Pays for those in front of it; null when the budget does not suffice.
    const Zel8u* skipFrom(const Zel8u* start) {
        const Zel8u* end = context_.textEnd;
        const Zel8u* position = start;
        for (;;) {
            position = plan_->next(position, context_.textStart, end);
            if (context_.format != kFormatUtf8 || position >= end ||
                characterBoundary(position, start, end) == position) {
                break;
            }
            ++position;  // inside a character: no start position
        }
        if (position == start) return position;
        if (!plan_->exact || context_.format == kFormatUtf8) guessed_ = true;
        return context_.charge(plan_->bill(start, position, end, context_.steps)) ? position
                                                                                  : nullptr;
    }

    /// A failed attempt leaves the captures as it found them, so once a search suffices.
    void clearCaptures() {
        for (int i = 1; i < context_.numCaptures; ++i) context_.captures[i] = {nullptr, -1};
    }

    /// Finds out what only searches need that go on behind their first attempt.
    void lookAtPattern() {
        if (firstBar_ >= 0) return;
        firstBar_ = topLevelBar(state_, 0);
        anchor_ = anchorOf(state_, firstBar_ != state_.nodeCount);
        if (attemptsBeforePlanning_ > 1 && beginsWithLiteral(state_)) attemptsBeforePlanning_ = 1;
    }

    /// Whether the alternative begins with a literal whose first byte is not there: one step, and
    /// it fails.
    bool failsAtOnce(int node, const Zel8u* position) const {
        const int letter = firstLetterOfNode(context_, node, context_.flags);
        return letter >= 0 && (position == context_.textEnd || *position != letter);
    }

    /// One attempt, without the engine where the pattern allows it.
    bool attemptPlanned(const Zel8u* position) {
        if (plan_->matchLength > 0 && position < context_.textEnd) {
            context_.captures[0] = {position, plan_->matchLength};
            guessed_ = true;
            return context_.charge(state_.nodeCount);
        }
        if (oneWay_ != nullptr) {
            const OneWay::Outcome outcome = oneWay_->tryAt(position, context_);
            guessed_ = true;
            if (outcome != OneWay::kNotKnown) return outcome == OneWay::kMatched;
        }
        return attempt(position);
    }

    /// One attempt: the top-level alternatives in order.
    bool attempt(const Zel8u* position) {
        context_.captures[0] = {position, 0};
        context_.flags = state_.options;
        const int length = static_cast<int>(context_.textEnd - position);
        if (runFrom(0, position, length, context_) == 0) return true;
        lookAtPattern();
        for (int bar = firstBar_; bar != state_.nodeCount; bar = topLevelBar(state_, bar + 1)) {
            context_.flags = static_cast<Zel32u>(context_.nodes[bar].count);
            if (failsAtOnce(bar + 1, position)) {
                if (!context_.charge(1)) return false;
            } else if (runFrom(bar + 1, position, length, context_) == 0) {
                return true;
            }
        }
        return false;
    }

    const SearchRequest& request_;
    const ZelRegExpState& state_;
    const Pay pay_;
    int firstBar_ = -1;  // node of the first top-level bar, -1 until looked for
    Anchor anchor_ = Anchor::kNone;
    bool guessed_ = false;
    int attemptsBeforePlanning_;      // 0: the plan has been made, or none is wanted
    int candidates_ = 0;              // start positions that the plan did not reject
    Aid wanted_ = Aid::kNone;         // why a stretch has ended in front of `position_`
    bool found_ = false;              // the first match
    int written_ = 0;                 // records of all matches
    const Zel8u* position_;           // where the search goes on
    const Zel8u* retryAt_ = nullptr;  // where an empty match was found and a longer one is wanted
    Plan* plan_ = nullptr;
    const OneWay* oneWay_ = nullptr;
    RegExpMatchContext context_;
};

/// The whole search, by the engine, of a narrowed text. Not inlined, because its frame is large.
[[gnu::noinline]] ZelStatus searchThrough(const SearchRequest& request) {
    const int capacity = *request.count;
    for (const Pay pay : {Pay::kUpperBound, Pay::kExactly}) {
        Search search(request, pay);
        *request.count = capacity;
        const ZelStatus status = search.run();
        if (!search.endedTooEarly()) return status;
    }
    return zelStatusRegExpMatchLimitError;
}

/// The first match of a pattern that is one literal, when the budget suffices for any text of the
/// length. False when this search has to go another way.
bool findLiteral(const SearchRequest& request) {
    const ZelRegExpState& state = request.state;
    const int length = request.length;
    kernels::Literal literal;
    if (state.nodeCount != 1 || (state.options & (kOptionGlobal | kOptionIgnoreCase)) != 0 ||
        state.matchLimit <= length || !readLiteral(state.nodes()[0], state.format, literal))
        return false;
    const int place = kernels::findBytes(request.text, length, literal.text, literal.length);
    *request.count = place < length ? 1 : 0;
    if (place < length)
        request.results[0] = {const_cast<Zel8u*>(request.text + place), literal.length};
    return true;
}

/// Whether a search of a short text must end without a match and within the budget, as can be seen
/// from a literal that every match holds and the text does not.
bool surelyFindsNothing(const SearchRequest& request) {
    const ZelRegExpState& state = request.state;
    const RequiredText* const required =
        request.length <= kShortText ? findRequiredText(state) : nullptr;
    if (required == nullptr) return false;
    int64_t steps = required->steps;
    for (int i = 0; i < required->runs; ++i) steps *= request.length + 1;
    if (steps > state.matchLimit) return false;
    if (request.length < kTripleLength) return true;
    const auto* literals = reinterpret_cast<const Zel8u*>(state.nodes() + state.nodeCount);
    return required->literalLength != 0 &&
           kernels::findBytes(request.text, request.length, literals + required->literal,
                              required->literalLength) == request.length;
}

/// All ways but the light walk. Not inlined, so that this one has little to save.
[[gnu::noinline]] ZelStatus searchOrdinarily(SearchRequest& request) {
    if (findLiteral(request)) return zelStatusOk;
    request.length = narrowedLength(request.text, request.length, request.state);
    if (surelyFindsNothing(request)) {
        *request.count = 0;
        return zelStatusOk;
    }
    return searchThrough(request);
}

/// The checks, and the light walk. Inlined, because on short texts a call counts.
[[gnu::always_inline]] inline ZelStatus searchShortly(const WorkAreas& work, const Zel8u* pSrc,
                                                      int srcLen,
                                                      const ZelRegExpState* pRegExpState,
                                                      ZelRegExpFind* pResult, int* pNumFind,
                                                      int wholeMatchToo) {
    if (anyNull(pSrc, pRegExpState, pResult)) return zelStatusNullPointer;
    if (anyNegative(srcLen)) return zelStatusLengthError;
    if (*pNumFind < 1) return zelStatusSizeError;
    if (pRegExpState->magic != kRegExpMagic) return zelStatusContextMatchError;
    SearchRequest request = {
        work, pSrc, srcLen, *pRegExpState, pResult, pNumFind, wholeMatchToo != 0};
    if (const LightProgram* const program = findLightProgram(*pRegExpState)) {
        request.length = narrowedLength(pSrc, srcLen, *pRegExpState);
        if (walkLightly(*program, request) != LightOutcome::kNotKnown) return zelStatusOk;
    }
    return searchOrdinarily(request);
}

}  // namespace

ZelStatus searchWith(const WorkAreas& work, const Zel8u* pSrc, int srcLen,
                     const ZelRegExpState* pRegExpState, ZelRegExpFind* pResult, int* pNumFind,
                     int wholeMatchToo) {
    return searchShortly(work, pSrc, srcLen, pRegExpState, pResult, pNumFind, wholeMatchToo);
}

ZelStatus ownsRegExpFind_8u(const Zel8u* pSrc, int srcLen, ZelRegExpState* pRegExpState,
                            ZelRegExpFind* pResult, int* pNumFind, int wholeMatchToo) {
    if (pRegExpState == nullptr) return zelStatusNullPointer;
    return searchShortly({pRegExpState->groups, pRegExpState->captures}, pSrc, srcLen, pRegExpState,
                         pResult, pNumFind, wholeMatchToo);
}

}  // namespace zel

extern "C" [[gnu::aligned(64)]] ZelStatus zelsRegExpFind_8u(const Zel8u* pSrc, int srcLen,
                                                            ZelRegExpState* pRegExpState,
                                                            ZelRegExpFind* pResult, int* pNumFind) {
    return zel::ownsRegExpFind_8u(pSrc, srcLen, pRegExpState, pResult, pNumFind, 0);
}
