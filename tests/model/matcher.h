// The model's matcher: a context, one function per rule, recursion for every "run the rest of the
// program". A function gets a text position and the bytes left behind it and answers 0 when the
// node at `node` and everything behind it matched, 1 when not.
#pragma once

#include <vector>

#include "model.h"
#include "regexp/program.h"
#include "utf8.h"

namespace model {

using zel::CaptureRecord;
using zel::GroupFrame;
using zel::Node;

struct Context {
    int node;
    int end;
    Zel32u flags;
    int noEmpty;
    int numCaptures;
    int steps;
    int format;
    const Zel8u* textStart;
    const Node* nodes;
    CaptureRecord* captures;
    GroupFrame* groups;
    int numGroups;         // group serials in use, plus one
    const Zel8u* reached;  // where the last successful run ended

    bool ignoreCase() const { return (flags & zel::kOptionIgnoreCase) != 0; }
    bool dotAll() const { return (flags & zel::kOptionDotAll) != 0; }
    int& consumed() { return captures[0].length; }
};

/// Captures (without the whole match) and group frames, to be put back where something failed.
class Snapshot {
public:
    explicit Snapshot(const Context& c)
        : captures_(c.captures + 1, c.captures + c.numCaptures),
          groups_(c.groups, c.groups + c.numGroups) {}

    void restore(Context& c) const {
        for (size_t i = 0; i < captures_.size(); ++i) c.captures[i + 1] = captures_[i];
        for (size_t i = 0; i < groups_.size(); ++i) c.groups[i] = groups_[i];
    }

private:
    std::vector<CaptureRecord> captures_;
    std::vector<GroupFrame> groups_;
};

inline int smaller(int a, int b) {
    return a < b ? a : b;
}

/// Runs the program from `node` up to `end`.
int run(const Zel8u* text, int length, Context& c);
/// The same from another node.
inline int runFrom(int node, const Zel8u* text, int length, Context& c) {
    c.node = node;
    return run(text, length, c);
}

// Atoms with their quantifiers; `node` names the atom.
int letterMax(const Zel8u* text, int length, Context& c);
int letterMin(const Zel8u* text, int length, Context& c);
int letterRange(const Zel8u* text, int length, Context& c);
int letterRangeMax(const Zel8u* text, int length, Context& c);
int letterRangeMin(const Zel8u* text, int length, Context& c);
int anyByteMax(const Zel8u* text, int length, Context& c);
int anyByteMin(const Zel8u* text, int length, Context& c);
int utf8Single(const Zel8u* text, int length, Context& c);
int utf8Max(const Zel8u* text, int length, Context& c);
int utf8LetterMin(const Zel8u* text, int length, Context& c);
int unicodeMin(const Zel8u* text, int length, Context& c);
int combMin(const Zel8u* text, int length, Context& c);
int classMax(const Zel8u* text, int length, Context& c, int minLeft, int maxLeft);
int classMin(const Zel8u* text, int length, Context& c, int min, int max);

/// Whether a text byte matches a pattern byte; only ASCII letters fold.
bool sameByte(int textByte, int patternByte, bool ignoreCase);
bool isWordByte(int byte);

// Groups, back-references and positions.
int position(const Zel8u* text, int length, Context& c);
int backReference(const Zel8u* text, int length, Context& c);
int backReferenceMax(const Zel8u* text, int length, Context& c);
int backReferenceMin(const Zel8u* text, int length, Context& c);
int grouping(const Zel8u* text, int length, Context& c);
int groupingClose(const Zel8u* text, int length, Context& c);
int groupingAtom(const Zel8u* text, int length, Context& c);

/// The first bar of the group `serial` among the nodes `from` to `to`, or -1.
int findBar(const Context& c, int serial, int from, int to);

}  // namespace model
