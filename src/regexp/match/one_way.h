// A pattern that can match in one way only, at any start position: literals, runs whose last byte
// is never wanted by what follows, groups that only capture, assertions. Most patterns that people
// write for finding things are of this kind. Such a pattern is kept as a list of parts, and matched
// by going through the list once, without choices to remember and without counting nodes.
//
// What the engine would have done at the same position follows from that: it finds the same match,
// or fails after giving back every run in vain, which costs at most so many steps a byte. Where a
// text makes the outcome depend on more (a run that could give back something useful, a longer
// character where the engine decodes), the answer is that it is not known, and the engine has to
// try.
#pragma once

#include "regexp/match/byte_ranges.h"
#include "regexp/match/context.h"

namespace zel {

struct OneWay {
    enum Outcome { kMatched, kFailed, kNotKnown };

    struct Part {
        enum Kind : Zel8u {
            kText,      // `text`
            kSameText,  // `text`, ignoring case
            kRun,  // min to max bytes of `set`, as many as there are: if `number` is not 0, they
                   // are the text of that capture
            kRunToText,  // the same, but only up to the last place where `text` follows
            kUntilText,  // as few bytes of `set` as there are in front of `text`
            kOpen,       // of the capture `number`
            kClose,
            kLineStart,
            kLineEnd,
            kPosition,   // the assertion `number`
            kAhead,      // `text` stands behind the position, or must not
            kBehind,     // in front of it
            kReference,  // the text of the capture `number`
            kEnd,        // of the alternative
        };
        Kind kind;
        bool isFinal;      // when the rest fails, no other length of the run helps
        bool isNegative;   // of the text that must not be there
        bool stopsAtWide;  // longer characters are not looked into
        bool mindsWide;    // a longer character behind the run changes how it gives back
        Zel8u chunks;  // of 16 bytes to compare with the set's ranges, before a kernel is called
        Zel8u ranges;  // which of the ranges these are
        Zel8u excludedCount;  // how many bytes are not in the set; 0 when more than three
        Zel8u excluded[3];
        Zel32u flags;
        int min;
        int max;
        int number;
        int length;  // of `text`
        const Zel8u* text;
        ByteSet set;
    };

    // Patterns with more parts are rare, but for those that list words.
    static constexpr int kMaxParts = 64;
    static constexpr int kMaxAlternatives = 32;
    static constexpr int kMaxRanges = 12;
    int count;
    int nodes;  // how many steps an attempt takes at most that gives back nothing
    int price;  // and what giving back adds for each byte
    int alternatives;
    int first[kMaxAlternatives];  // the part that each alternative begins with
    // When there are several alternatives: which of them may match in front of a byte, a bit for
    // each, and what those cost at most that may not.
    Zel32u beginning[256];
    Zel32u beginningAtEnd;
    int skipPrice;
    Part parts[kMaxParts];
    ByteRanges ranges[kMaxRanges];
    int rangesCount;

    /// Nothing is known of the pattern; making it known is what makeOneWay does.
    OneWay() : count(0) {}
    bool isKnown() const { return count != 0; }
    /// Whether no capture is left as it was by a match.
    bool setsAllCaptures() const { return isKnown() && alternatives == 1; }

    /// An attempt at a start position. On a match the captures are those of the match. Otherwise
    /// they are as they were, all unset. Charges an upper bound, unless the outcome is not known.
    Outcome tryAt(const Zel8u* position, RegExpMatchContext& context) const;

private:
    class Attempt;
};

/// Describes the pattern, if it is one that can match in one way only; false when it is not.
bool makeOneWay(const ZelRegExpState& state, StackGuard& stack, OneWay& oneWay);

}  // namespace zel
