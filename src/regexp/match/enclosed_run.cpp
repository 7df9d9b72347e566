// Reading the pattern, by way of its description as one that matches in one way only.
#include "regexp/match/enclosed_run.h"

#include <string.h>

#include "regexp/match/byte_set.h"

namespace zel {

namespace {

bool isLiteral(const Node& node) {
    return node.kind == NodeString || node.kind == NodeLetter;
}

/// Whether the nodes may be of this kind, without a look into the class.
bool mayBeEnclosedRun(const ZelRegExpState& state) {
    const Node* node = state.nodes();
    const Node* const end = node + state.nodeCount;
    if (state.groupCount != 1) return false;
    if (node < end && node->kind == NodePosition) ++node;
    if (end - node < 3 || !isLiteral(*node)) return false;
    ++node;
    node += node->kind == NodeCharacterClass ? 1 + node->count : 1;
    if (node >= end || !isQuantifier(*node)) return false;
    ++node;
    return node == end || (node + 1 == end && (isLiteral(*node) || node->kind == NodePosition));
}

}  // namespace

bool EnclosedRun::readParts(const OneWay::Part* parts, bool utf8) {
    using Part = OneWay::Part;
    run_.atLineStart = parts->kind == Part::kLineStart;
    if (run_.atLineStart) ++parts;
    const Part& open = parts[0];
    const Part& run = parts[1];
    const Part& behind = parts[2];
    if (open.kind != Part::kText) return false;
    if (utf8 && (*open.text & 0xC0) == 0x80) return false;
    if (run.max != kUnbounded || run.min > 1 || run.stopsAtWide) return false;
    ByteSet set = run.set;
    const Part* close = nullptr;
    run_.toLineEnd = false;
    if (run.kind == Part::kUntilText) {
        // As many bytes as there are in front of its text are those that do not begin it.
        if (run.length != 1) return false;
        close = &run;
        set.words[*run.text >> 6] &= ~(uint64_t{1} << (*run.text & 63));
    } else if (run.kind == Part::kRun && behind.kind != Part::kEnd) {
        const bool endsAtWide = (~set.words[2] | ~set.words[3]) != 0;
        if (run.mindsWide && endsAtWide) return false;
        if (behind.kind == Part::kText && run.isFinal)
            close = &behind;
        else if (behind.kind == Part::kLineEnd && !set.has('\n'))
            run_.toLineEnd = true;
        else
            return false;
    } else if (run.kind != Part::kRun) {
        return false;
    }
    run_.open = open.text;
    run_.openLength = open.length;
    run_.min = run.min;
    memcpy(run_.first, run.set.words, sizeof run_.first);
    memcpy(run_.set, set.words, sizeof run_.set);
    run_.close = close == nullptr ? nullptr : close->text;
    run_.closeLength = close == nullptr ? 0 : close->length;
    return true;
}

bool EnclosedRun::read(const ZelRegExpState& state, StackGuard& stack) {
    return mayBeEnclosedRun(state) && stack.hasRoom(sizeof(OneWay)) && describe(state, stack);
}

/// Not inlined, so that the room is not taken before anybody asks for it.
[[gnu::noinline]] bool EnclosedRun::describe(const ZelRegExpState& state, StackGuard& stack) {
    OneWay oneWay;
    if (!makeOneWay(state, stack, oneWay) || oneWay.alternatives != 1) return false;
    run_.nodes = oneWay.nodes;
    // A line's end that is not there is looked for once for each byte that the run gives back.
    run_.price = oneWay.price > 0 ? oneWay.price : 1;
    return readParts(oneWay.parts, state.format == kFormatUtf8);
}

int EnclosedRun::collect(const Zel8u* start, const Zel8u* end, int steps, ZelRegExpFind* results,
                         int capacity) const {
    // Where the first literal is not, and at the end, an attempt costs a step, or one more for ^.
    const int length = static_cast<int>(end - start);
    const int64_t missPrice = run_.atLineStart ? 2 : 1;
    const int64_t budget = steps - missPrice * (int64_t{length} + 1);
    if (budget < 0) return -1;
    return kernels::collectEnclosedRuns(start, length, &run_, results, capacity, budget);
}

}  // namespace zel
