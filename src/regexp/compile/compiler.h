// The second pass of compilation: from a pattern whose structure has been checked to nodes. One
// scan from left to right, no syntax tree: each construct appends its nodes at once, and the few
// rewrites (splitting a literal run in front of a quantifier, folding repeated wildcards, merging
// stacked quantifiers, closing groups) change the last nodes or the group's opening node in place.
//
// This file holds the state of one compilation and the small operations that all constructs share.
// The constructs are in sources of their own:
//
//   compiler.cpp       the loop over the pattern, literal runs, wildcards, completion
//   quantifier.cpp     bounds, what may be repeated, merging
//   group.cpp          opening and closing groups, conditions, option changes, bars
//   look_behind.cpp    the fixed length of a look-behind body
//   char_class.cpp     bracket classes
//   escape.cpp         backslash escapes, inside and outside of classes
//   unicode_escape.cpp the property escapes
//
// Methods return a status; anything but zelStatusOk stops the compilation with `errorAt` set.
#pragma once

#include "regexp/compile/syntax.h"
#include "regexp/program.h"

namespace zel {

/// Values of the trailing literal besides a node index.
inline constexpr int kNoTrailingLiteral = -1;
inline constexpr int kTrailingLiteralBlocked = -2;  // behind a top-level bar

class Compiler {
public:
    /// `firstNode` nodes have been written already; `groupCount` is the number of capturing groups
    /// plus one.
    Compiler(const Zel8u* pattern, Zel32u flags, int groupCount, Node* nodes, int firstNode)
        : nodes_(nodes),
          nodeCount_(firstNode),
          p_(pattern),
          flags_(flags),
          groupCount_(groupCount),
          brackets_(pattern) {}

    /// Compiles the whole pattern.
    ZelStatus run();

    // The results of run().
    int nodeCount() const { return nodeCount_; }
    int trailingLiteral() const { return trailingLiteral_; }
    const Zel8u* errorAt() const { return errorAt_; }
    const Zel8u* patternEnd() const { return p_; }
    Zel8u* textEnd() const { return textEnd_; }  // of the literals' text
    bool hasTopLevelBar() const { return hasTopLevelBar_; }

private:
    /// A group whose ")" has not been reached.
    struct OpenGroup {
        int node;      // index of the opening node
        Zel32u flags;  // in force in front of the group
        int serial;
        int bars;  // at the group's own level
    };

    /// Bounds of one quantifier, and the byte behind it.
    struct Quantifier {
        long min;
        long max;
        const Zel8u* end;
    };

    ZelStatus fail(ZelStatus status, const Zel8u* at) {
        errorAt_ = at;
        return status;
    }

    void emit(Zel32u kind, int value = 0, int count = 0, int extra = 0,
              const void* data = nullptr) {
        nodes_[nodeCount_++] = {kind, value, count, extra, data};
    }

    // compiler.cpp
    void addLiterals(const Zel8u* text, long length);
    void emitRun(const Zel8u* text, long length);
    void flushRun() {
        if (runLength_ == 0) return;
        emitRun(runText_, runLength_);
        runLength_ = 0;
    }
    void noteLiteral(int node, Zel32u flags) {
        if (groupDepth_ != 0 || trailingLiteral_ == kTrailingLiteralBlocked) return;
        trailingLiteral_ = node;
        nodes_[node].extra = static_cast<int>(flags);
    }
    void emitCharacter(Zel32u value);
    bool isWildcard(int node, int letter) const;
    void wildcard(int letter);
    void quotedText();
    void complete();

    // quantifier.cpp
    static bool readQuantifier(const Zel8u* p, Quantifier& quantifier);
    ZelStatus quantifier();
    ZelStatus checkRepeatable() const;
    void noteRepeatedLetter(int node, long min);
    void mergeQuantifier(Node& node, long min, long max);

    // group.cpp
    ZelStatus openParenthesis();
    void openGroup(NodeKind kind, int extra, const Zel8u* body);
    ZelStatus openCondition();
    ZelStatus inlineOptions();
    ZelStatus closeGroup();
    void bar();

    // char_class.cpp
    ZelStatus characterClass();
    friend class ClassCompiler;

    // escape.cpp
    ZelStatus escape();
    ZelStatus digitEscape();
    ZelStatus readCharacterEscape(const Zel8u*& p, Zel32u& value);

    // unicode_escape.cpp
    ZelStatus readProperty(const Zel8u*& p, Node& node);

    Node* const nodes_;
    int nodeCount_;
    const Zel8u* p_;  // the next byte of the pattern
    const Zel8u* errorAt_ = nullptr;
    Zel8u* textEnd_ = nullptr;
    Zel32u flags_;

    // The pending literal run: one contiguous piece of the pattern that has no node yet. Bytes that
    // do not follow it directly begin another run.
    const Zel8u* runText_ = nullptr;
    long runLength_ = 0;
    Zel32u runFlags_ = 0;  // in force where the run stands

    int trailingLiteral_ = kNoTrailingLiteral;
    bool hasTopLevelBar_ = false;

    const Zel8u* quantifierEnd_ = nullptr;  // the byte behind the last quantifier
    int classEnd_ = -1;                     // node index behind the last class with members
    // A wildcard has been folded into the quantifier in front of this node index, whose bounds
    // would be foldMin_ and foldMax_ if a quantifier of the wildcard's own followed.
    int foldEnd_ = -1;
    int foldMin_ = 0;
    int foldMax_ = 0;

    const int groupCount_;
    int nextSerial_ = 1;
    int nextCapture_ = 1;
    int closedGroup_ = -1;  // opening node of the group that was closed last
    int groupDepth_ = 0;
    BracketFinder brackets_;
    OpenGroup groups_[kMaxGroups];
};

/// Length in characters of a look-behind body, the nodes [first, last), or -1 when it has none.
int measureLookBehind(const Node* nodes, int first, int last);

}  // namespace zel
