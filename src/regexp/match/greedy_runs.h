// Greedy repetition of one character inside a walk: take as many as the quantifier allows, remember
// the run as a choice, and give back from its end when the rest of the program fails.
//
// How far one step back goes depends on the atom: a letter, \C and everything in ASCII text give
// back one byte; a shorthand gives back by the length of the character that stands behind the run,
// which is exact for one-byte text and decides the result on other text, where it can lead into or
// even in front of the run; all others give back their own characters.
#pragma once

#include "regexp/match/class_matcher.h"
#include "regexp/match/first_letter.h"
#include "regexp/match/repetition.h"
#include "regexp/match/walk.h"
#include "string/kernels/api.h"

namespace zel {

/// The bytes of a set that are characters of their own in every format.
inline ByteSet asciiPart(const ByteSet& bytes) {
    return {{bytes.words[0], bytes.words[1], 0, 0}};
}

/// First byte of [text, stop) that is not in the set.
inline const Zel8u* endOfRun(const Zel8u* text, const Zel8u* stop, const ByteSet& bytes) {
    constexpr int kShortRun = 16;
    const Zel8u* near = stop - text > kShortRun ? text + kShortRun : stop;
    while (text < near && bytes.has(*text)) ++text;
    if (text < near || text == stop) return text;
    return text + kernels::findByteNotIn(text, static_cast<int>(stop - text), bytes.words);
}

inline Walk::Step Walk::pushRun(Choice::Kind kind, int rest, int count, int offset, int min) {
    if (count < min) return kFailed;
    if (count > min) {
        const Zel8u* start = text;
        take(offset);
        const FirstLetter first = firstLetter(context, rest);
        push(kind, rest).run = {start, count, min, first.letter, first.price};
    } else {
        take(offset);  // nothing to give back
    }
    index = rest;
    return kGoOn;
}

inline Walk::Step Walk::runGreedy(const Node& node, const Node& quantifier, int rest) {
    const int min = quantifier.value;
    const int limit = quantifier.count < length() ? quantifier.count : length();
    const Zel8u* stop = text + (limit > min ? limit : min);
    if (min > length()) return kFailed;
    const Zel8u* end = context.textEnd;
    Run run;
    const auto takeAll = [&](const auto& matches) {
        if (run.take(text, length(), min, matches)) run.take(text, length(), limit, matches);
    };
    const auto takeBytes = [&](const ByteSet& bytes) {
        run.count = run.offset = static_cast<int>(endOfRun(text, stop, bytes) - text);
    };
    switch (node.kind) {
        case NodeLetter: {
            const Zel8u letter = static_cast<Zel8u>(node.value);
            ByteSet bytes = {};
            bytes.add(letter);
            if ((context.flags & kOptionIgnoreCase) != 0 && isAsciiLetter(letter))
                bytes.add(letter ^ 0x20u);
            takeBytes(bytes);
            return pushRun(Choice::kRunOfBytes, rest, run.count, run.offset, min);
        }
        case NodeAnyByte:
            return pushRun(Choice::kRunOfBytes, rest, static_cast<int>(stop - text),
                           static_cast<int>(stop - text), min);
        case NodeLetterRange: {
            const ByteSet& bytes = shorthandBytes(node.value, context.flags);
            takeBytes(asciiPart(bytes));
            if (text + run.offset == end || text[run.offset] < 0x80) {
                return pushRun(Choice::kRunOfBytes, rest, run.count, run.offset, min);
            }
            takeAll([&bytes, end](const Zel8u* at) { return matchShorthand(bytes, at, end); });
            return pushRun(Choice::kRunBehind, rest, run.count, run.offset, min);
        }
        case NodeCharacterClass: {
            const ClassMatcher matches(context, index);
            if (!matches.utf8) {
                takeBytes(matches.set.bytes);
                return pushRun(Choice::kRunOfBytes, rest, run.count, run.offset, min);
            }
            takeBytes(asciiPart(matches.set.bytes));
            if (text + run.offset == stop || text[run.offset] < 0x80) {
                return pushRun(Choice::kRunOfBytes, rest, run.count, run.offset, min);
            }
            takeAll(matches);
            return pushRun(Choice::kRunOfCharacters, rest, run.count, run.offset, min);
        }
        case NodeCombLetter:
            takeAll([end](const Zel8u* at) { return matchCombiningSequence(at, end); });
            return pushRun(Choice::kRunOfSequences, rest, run.count, run.offset, min);
        default:
            takeAll(CodePointMatcher(node, end, context.flags));
            return pushRun(Choice::kRunOfCharacters, rest, run.count, run.offset, min);
    }
}

/// Stands the line at the next shorter run that is worth a try; false when there is none.
inline bool Walk::giveBack(Choice& choice) {
    --top;  // spent, unless more can be given back afterwards
    const Zel8u* position = choice.text;
    const Zel8u* start = choice.run.start;
    bool more = false;
    if (choice.kind == Choice::kRunOfBytes) {
        const Zel8u* low = start + choice.run.min;
        --position;
        if (choice.run.letter >= 0) {
            const Zel8u* found = position;
            while (found >= low && *found != choice.run.letter) --found;
            if (!context.charge((position - found) * choice.run.price) || found < low) return false;
            position = found;
        }
        more = position > low;
    } else {
        int back = 0;
        if (choice.kind == Choice::kRunBehind) {
            back =
                position < context.textEnd ? utf8Length(position, context.textEnd - position) : 1;
            if (position - back < context.textStart) return false;
        } else if (choice.kind == Choice::kRunOfCharacters) {
            back = previousLength(position, start);
        } else {
            back = previousSequenceLength(position, start);
        }
        position -= back;
        more = --choice.run.count > choice.run.min;
    }
    choice.consumed += static_cast<int>(position - choice.text);
    choice.text = position;
    standAt(choice);
    index = choice.node;
    if (more) ++top;
    return true;
}

}  // namespace zel
