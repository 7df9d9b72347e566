// What a compiled pattern is: the object that callers provide memory for, and the node program
// inside it. This file and notes.h are the whole contract between the compiler, which
// writes an object, and the matcher, which reads it; neither includes anything else of the other.
// The layout is visible to callers (sizes, and the steps a search takes), so no field may move and
// no node may be added or left out.
//
//   byte     0  header: magic, options, counts, trailing literal, match limit, format
//   byte    32  group frames      1000 x 32 bytes   scratch of one search
//   byte 32032  capture records   1000 x 16 bytes   scratch of one search
//   byte 48032  nodes             24 bytes each, then the text of all literal runs, and notes
#pragma once

#include <stddef.h>

#include "zelchmx.h"

namespace zel {

/// First word of a pattern object: the bytes "rgEx".
inline constexpr Zel32u kRegExpMagic = 0x78456772;

/// Option flags; the same bits in the object, in option nodes and in the match context.
enum OptionFlag : Zel32u {
    kOptionDotAll = 0x1,      // s
    kOptionMultiLine = 0x2,   // m
    kOptionIgnoreCase = 0x4,  // i
    kOptionExtended = 0x8,    // x
    kOptionGlobal = 0x10,     // g
};

/// Character formats of a subject.
enum Format : int { kFormatBytes = 0, kFormatUtf8 = 1 };

inline constexpr int kDefaultMatchLimit = 10000;
/// An unbounded maximum of a quantifier.
inline constexpr int kUnbounded = 0x3FFFFFFF;
/// Groups of any kind and capture records have serials below this.
inline constexpr int kMaxGroups = 1000;

/// Kinds of nodes. `v`, `c`, `e` and `d` below are the node's value, count, extra and data.
enum NodeKind : Zel32u {
    NodeLetter = 0x10000000,    // one byte v
    NodeString,                 // c bytes at d
    NodeBackReference,          // text of group v
    NodeCharacterClass,         // bracket class; c member nodes follow; v is -1 when negated
    NodeLetterRange,            // \d \D \s \S \w \W or the dot: v is that letter
    NodePosition,               // assertion ^ $ A G Z z b B, or kLineStartMarker
    NodeAlternative,            // the bar; v is the enclosing group's serial, c flags behind it
    NodeRange,                  // class member: v to c
    NodeQuantifierMin,          // lazy quantifier of the atom in front: v to c times
    NodeQuantifierMax,          // greedy quantifier
    NodeGroupingLookBehind,     // (?<=   v serial, c body length in nodes, e length in characters
    NodeGroupingLookBehindNot,  // (?<!   likewise
    NodeGroupingLookAhead,      // (?=    v serial, c body length in nodes
    NodeGroupingLookAheadNot,   // (?!    likewise
    NodeGroupingOptions,        // (?i:   e flags inside
    NodeGroupingCondition,      // (?(    the condition is the body's first node or look-around
    NodeGroupingCapture,        // (      e capture slot
    NodeGroupingNoCapture,      // (?:
    NodeGroupingAtom,           // (?>
    NodeGroupingClose,          // )      v serial of the group, c flags behind it
    NodeOptions,                // (?i)   v new flags
    NodeAnyByte,                // \C
    NodeLetterUtf8,             // code point v, 0x100 or more
    NodeUnicodeCategory,        // \p{Lu} v category, c negation
    NodeUnicodeProperty,        // \p{In} v to c, e negation
    NodeUnicodeScript,          // c negation, e pairs at d
    NodeCombLetter,             // \X
};

/// NodePosition value of the marker in front of a pattern that begins with an any-run.
inline constexpr int kLineStartMarker = 0x80;

/// One node of a program.
struct Node {
    Zel32u kind;
    int value;
    int count;
    int extra;
    const void* data;
};
static_assert(sizeof(Node) == 24);

/// Whether the node repeats the atom or group in front of it.
inline bool isQuantifier(const Node& node) {
    return node.kind == NodeQuantifierMin || node.kind == NodeQuantifierMax;
}

/// The first bar of group `serial`, 0 for the top level, among the nodes from `from` up to `to`, or
/// `to`.
inline int nextBar(const Node* nodes, int from, int to, int serial) {
    while (from < to && !(nodes[from].kind == NodeAlternative && nodes[from].value == serial))
        ++from;
    return from;
}

/// One capture: slot 0 is the whole match. A slot that has not taken part holds (null, -1).
struct CaptureRecord {
    const Zel8u* text;
    int length;
};
static_assert(sizeof(CaptureRecord) == 16);

/// The state of one group while it repeats; indexed by the group's serial.
struct GroupFrame {
    int minLeft;          // repetitions still required after the one now running
    int maxLeft;          // repetitions still allowed after the one now running
    int openNode;         // index of the group's opening node
    int lengthAtEntry;    // remaining text length when the current repetition began
    int captureSlot;      // slot of a capturing group
    int reentries;        // 1 while a further repetition runs and has not reached its close
    int undoPending;      // part of the layout
    int iterationLength;  // bytes that the current repetition consumed
};
static_assert(sizeof(GroupFrame) == 32);

}  // namespace zel

/// The pattern object. Its nodes begin right behind the struct.
struct ZelRegExpState {
    Zel32u magic;
    Zel32u options;
    int nodeCount;
    int groupCount;       // capturing groups plus one
    int trailingLiteral;  // node index, or negative
    int matchLimit;
    int format;
    int reserved;
    zel::GroupFrame groups[zel::kMaxGroups];
    zel::CaptureRecord captures[zel::kMaxGroups];

    zel::Node* nodes() { return reinterpret_cast<zel::Node*>(this + 1); }
    const zel::Node* nodes() const { return reinterpret_cast<const zel::Node*>(this + 1); }
};
static_assert(offsetof(ZelRegExpState, groups) == 32);
static_assert(offsetof(ZelRegExpState, captures) == 32032);
static_assert(sizeof(ZelRegExpState) == 48032);
