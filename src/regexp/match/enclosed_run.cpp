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
    const Node* const nodes = state.nodes();
    if (state.nodeCount < 3 || state.groupCount != 1 || !isLiteral(nodes[0])) return false;
    const int behind = nodes[1].kind == NodeCharacterClass ? 2 + nodes[1].count : 2;
    if (behind >= state.nodeCount || !isQuantifier(nodes[behind])) return false;
    const int rest = state.nodeCount - behind - 1;
    return rest == 0 || (rest == 1 && isLiteral(nodes[behind + 1]));
}

}  // namespace

bool EnclosedRun::readParts(const OneWay::Part* parts, bool utf8) {
    using Part = OneWay::Part;
    const Part& open = parts[0];
    const Part& run = parts[1];
    if (open.kind != Part::kText) return false;
    if (utf8 && (*open.text & 0xC0) == 0x80) return false;
    if (run.max != kUnbounded || run.min > 1 || run.stopsAtWide) return false;
    ByteSet set = run.set;
    const Part* close = nullptr;
    if (run.kind == Part::kUntilText) {
        // As many bytes as there are in front of its text are those that do not begin it.
        if (run.length != 1) return false;
        close = &run;
        set.words[*run.text >> 6] &= ~(uint64_t{1} << (*run.text & 63));
    } else if (run.kind == Part::kRun && parts[2].kind == Part::kText) {
        const bool endsAtWide = (~set.words[2] | ~set.words[3]) != 0;
        if (!run.isFinal || (run.mindsWide && endsAtWide)) return false;
        close = &parts[2];
    } else if (run.kind != Part::kRun || parts[2].kind != Part::kEnd) {
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
    if (!mayBeEnclosedRun(state) || !stack.hasRoom(sizeof(OneWay))) return false;
    OneWay oneWay;
    if (!makeOneWay(state, stack, oneWay) || oneWay.alternatives != 1) return false;
    run_.nodes = oneWay.nodes;
    run_.price = oneWay.price;
    return readParts(oneWay.parts, state.format == kFormatUtf8);
}

int EnclosedRun::collect(const Zel8u* start, const Zel8u* end, int steps, ZelRegExpFind* results,
                         int capacity) const {
    // Where the first literal is not, and at the end, an attempt costs one step.
    const int length = static_cast<int>(end - start);
    const int64_t budget = int64_t{steps} - length - 1;
    if (budget < 0) return -1;
    return kernels::collectEnclosedRuns(start, length, &run_, results, capacity, budget);
}

}  // namespace zel
