// The straight line: the nodes that most of a search is made of, executed in one loop that keeps
// position, node and budget at hand. These are literals, assertions, and ASCII letters, shorthands
// and classes, once or greedily repeated. Everything else, lazy repetition, other text, ignored
// case in letters, is left to the general way, which executes the same nodes by the same rules.
#pragma once

#include <string.h>

#include "regexp/match/class_matcher.h"
#include "regexp/match/greedy_runs.h"
#include "regexp/match/positions.h"
#include "regexp/match/walk.h"

namespace zel {

/// Goes on as far as the line is straight: kGoOn at a node for the general way, which has not been
/// counted.
inline Walk::Step Walk::followLine() {
    const Node* const nodes = context.nodes;
    const Zel8u* const end = context.textEnd;
    const Zel8u* position = text;
    int node = index;
    int steps = context.steps;
    const auto leave = [&](Step step) {
        context.steps = steps;
        index = node;
        take(static_cast<int>(position - text));
        return step;
    };
    enum class Taken { kYes, kNo, kGeneralWay };

    /// An atom whose characters are the bytes for which `accepts` holds, up to the first wide one.
    const auto takeAtom = [&](int behind, bool wideIsText, const auto& accepts) {
        const auto isWide = [&](const Zel8u* at) { return at < end && *at >= 0x80 && !wideIsText; };
        const Node* quantifier = quantifierAt(context, behind);
        if (quantifier == nullptr) {
            if (isWide(position)) return Taken::kGeneralWay;
            --steps;
            if (position == end || !accepts(*position)) return Taken::kNo;
            ++position;
            node = behind;
            return Taken::kYes;
        }
        if (quantifier->kind == NodeQuantifierMin || full()) return Taken::kGeneralWay;
        const ptrdiff_t left = end - position;
        const int min = quantifier->value;
        const Zel8u* stop = quantifier->count < left ? position + quantifier->count : end;
        constexpr ptrdiff_t kShortRun = 24;
        const Zel8u* near = stop - position > kShortRun ? position + kShortRun : stop;
        const Zel8u* run = position;
        while (run < near && (wideIsText || *run < 0x80) && accepts(*run)) ++run;
        // A long run is for the kernels, wide characters are not for this loop.
        if ((run == near && near != stop) || isWide(run)) return Taken::kGeneralWay;
        --steps;
        if (run - position < min) return Taken::kNo;
        const int count = static_cast<int>(run - position);
        if (count > min) {
            const Zel8u* start = position;
            position = run;
            take(static_cast<int>(position - text));
            const FirstLetter first = firstLetter(context, behind + 1);
            push(Choice::kRunOfBytes, behind + 1).run = {start, count, min, first.letter,
                                                         first.price};
        }
        position = run;
        node = behind + 1;
        return Taken::kYes;
    };

    while (steps >= 0 && node != context.end) {
        const Node& current = nodes[node];
        Taken taken = Taken::kGeneralWay;
        switch (current.kind) {
            case NodeLetter: {
                const Zel8u letter = static_cast<Zel8u>(current.value);
                if ((context.flags & kOptionIgnoreCase) != 0) break;
                taken = takeAtom(node + 1, true, [letter](Zel8u byte) { return byte == letter; });
                break;
            }
            case NodeLetterRange: {
                const ByteSet& bytes = shorthandBytes(current.value, context.flags);
                taken = takeAtom(node + 1, false, [&bytes](Zel8u byte) { return bytes.has(byte); });
                break;
            }
            case NodeCharacterClass: {
                const ByteSet& bytes = classSet(context, node).bytes;
                taken = takeAtom(node + 1 + current.count, context.format != kFormatUtf8,
                                 [&bytes](Zel8u byte) { return bytes.has(byte); });
                break;
            }
            case NodeString: {
                const Zel8u* literal = static_cast<const Zel8u*>(current.data);
                if ((context.flags & kOptionIgnoreCase) != 0) break;
                --steps;
                taken = Taken::kNo;
                if (end - position >= current.count && *position == *literal &&
                    memcmp(position, literal, static_cast<size_t>(current.count)) == 0) {
                    position += current.count;
                    ++node;
                    taken = Taken::kYes;
                }
                break;
            }
            case NodePosition:
                if (quantifierAt(context, node + 1) != nullptr) break;
                --steps;
                taken = Taken::kNo;
                if (positionHolds(current.value, position, static_cast<int>(end - position),
                                  context)) {
                    ++node;
                    taken = Taken::kYes;
                }
                break;
            default:
                break;
        }
        if (taken == Taken::kGeneralWay) return leave(kGoOn);
        if (taken == Taken::kNo) return leave(kFailed);
    }
    return leave(steps < 0 ? kFailed : kGoOn);
}

}  // namespace zel
