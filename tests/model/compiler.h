// What the two passes of the model's compiler share: the pattern as bytes, the error that ends a
// compilation, and the few scanning rules that both passes apply.
#pragma once

#include <vector>

#include "model.h"
#include "regexp/program.h"

namespace model {

using zel::Node;

/// Thrown where a pattern turns out to be wrong: the status to return and the offset to report.
struct CompileError {
    ZelStatus status;
    int offset;
};

/// The pattern without its terminating zero; reading behind the end gives 0.
struct Pattern {
    const char* text;
    int length;

    int at(int i) const { return i < length ? static_cast<unsigned char>(text[i]) : 0; }
    bool startsWith(int i, const char* prefix) const;
    /// Index of the first occurrence of `what` at or behind `from`, or -1.
    int find(int from, const char* what) const;
};

/// For a "[" at `i` that opens a part such as "[:alpha:]": the index of the "]" that ends the part.
/// -1 when no such part stands there.
int classPartEnd(const Pattern& pattern, int i);

/// Reads inline option letters from `i` on. Returns the index of the first byte that is none, and
/// changes `flags` accordingly.
int readInlineFlags(const Pattern& pattern, int i, Zel32u& flags);

/// The first pass: balance, nesting depth and comments. Returns the number of capturing groups.
int checkStructure(const Pattern& pattern, Zel32u flags);

/// A single character or control escape that both the inside and the outside of a class know.
/// `end` is behind the escape.
struct Escape {
    Zel32u value;
    int end;
};
/// "\a \e \f \n \r \t \v \cX \xHH \x{H}" at the backslash `i`; false when it is another escape.
bool readCharacterEscape(const Pattern& pattern, int i, Escape& escape);
/// Up to `digits` octal digits from `i` on; the low 8 bits count.
Escape readOctal(const Pattern& pattern, int i, int digits);
/// "\p" or "\P" at the backslash `i`. `end` is set behind the escape.
Node readProperty(const Pattern& pattern, int i, int& end);

/// The members of a bracket class.
struct ClassContent {
    bool negated;
    std::vector<Node> members;
    int end;  // behind the "]"
};
/// The class whose "[" stands at `i`.
ClassContent readClass(const Pattern& pattern, int i);

/// The finished program: nodes whose string data still points into the pattern, and the index of
/// the trailing literal or a negative value.
struct Program {
    std::vector<Node> nodes;
    int trailingLiteral;
};

/// The second pass.
Program compileProgram(const Pattern& pattern, Zel32u options, int groupCount,
                       bool lineStartMarker);

}  // namespace model
