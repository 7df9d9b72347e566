// The planner: reads the first nodes of a program as the engine would execute them.
//
// `Beginning` is the heart: what the program from some node on can begin with, and what it costs at
// most to find out that a text begins otherwise. It is computed by walking the nodes as the engine
// would execute them on a text whose first byte nothing accepts. Whatever is not simple enough ends
// the walk without an answer, and the search then tries every position.
#pragma once

#include "regexp/match/byte_set.h"
#include "regexp/match/one_way.h"
#include "regexp/match/plan.h"
#include "regexp/match/stack_guard.h"
#include "regexp/program.h"

namespace zel {

struct Beginning {
    ByteSet bytes = {};
    int price = 0;
    bool exact = true;
};

inline bool disjoint(const ByteSet& a, const ByteSet& b) {
    uint64_t common = 0;
    for (int w = 0; w < 4; ++w) common |= a.words[w] & b.words[w];
    return common == 0;
}

inline int sizeOf(const ByteSet& set) {
    int count = 0;
    for (const uint64_t word : set.words) count += __builtin_popcountll(word);
    return count;
}

class Planner {
    static constexpr int kMaxEffort = 200;  // nodes looked at
    static constexpr int kMaxPrice = 1000;

public:
    Planner(const ZelRegExpState& state, StackGuard& stack)
        : nodes_(state.nodes()),
          count_(state.nodeCount),
          groups_(state.groupCount),
          utf8_(state.format == kFormatUtf8),
          stack_(stack) {}

    void make(Zel32u flags, Plan& plan);
    void makeForLines(Zel32u flags, Plan& plan);
    bool isPlainRun(Zel32u flags, ByteSet& bytes) const;
    bool describe(Zel32u flags, OneWay& oneWay);

private:
    /// First bytes of an atom's characters.
    ByteSet atomBytes(int index, Zel32u flags) const;
    const Node* quantifier(int index) const {
        return index < count_ && isQuantifier(nodes_[index]) ? &nodes_[index] : nullptr;
    }
    int behindAtom(int index) const {
        return nodes_[index].kind == NodeCharacterClass ? index + 1 + nodes_[index].count
                                                        : index + 1;
    }
    int closeOf(int open) const { return open + 1 + nodes_[open].count; }
    int behindGroup(int close) const {
        return quantifier(close + 1) != nullptr ? close + 2 : close + 1;
    }

    // beginning.cpp
    bool begin(int index, Zel32u flags, Beginning& result);
    bool beginBody(int open, Zel32u flags, Beginning& result);
    bool beginAtom(int index, Zel32u flags, Beginning& result);
    bool beginGroup(int open, Zel32u flags, Beginning& result);
    bool add(bool known, const Beginning& part, Beginning& result) const {
        result.bytes.addAll(part.bytes);
        result.price += part.price;
        result.exact = result.exact && part.exact;
        return known && result.price <= kMaxPrice;
    }

    /// A node that every match has to get past, behind nodes that take no text.
    struct Lead {
        int index = 0;
        Zel32u flags = 0;
        int price = 0;  // of the nodes in front
    };
    Lead leadFrom(int index, Zel32u flags) const;
    bool isStraightBody(int open) const;
    /// Whether the kind is one of those that take one character, or a literal run.
    static bool isAtom(Zel32u kind);
    bool isLiteral(int index, Zel32u flags) const;
    void setLiteral(int index, Plan& plan) const;
    bool isAsciiRun(int index, Zel32u flags, ByteSet& bytes) const;
    int openOf(int close) const;
    /// What a byte of a literal accepts.
    static ByteSet literalByte(Zel8u letter, Zel32u flags);

    // plan.cpp
    bool planLiteral(const Lead& lead, Plan& plan) const;
    bool planBehind(const Lead& lead, Plan& plan) const;
    bool planLine(Zel32u flags, Plan& plan) const;
    bool planDoubled(const Lead& lead, Plan& plan) const;
    bool planRun(const Lead& lead, Plan& plan);
    bool planTwoRuns(int index, const Lead& lead, const ByteSet& bytes, const Node& repeat,
                     Plan& plan) const;
    bool beginsWord(const Lead& lead, const ByteSet& bytes) const;
    bool echoesFirstByte(int behindRun, const Lead& lead) const;
    bool planPrefix(Zel32u flags, bool hasBars, Plan& plan) const;
    bool addPrefixes(int from, int to, int serial, Zel32u flags, Plan& plan) const;
    bool addPrefix(int index, Zel32u flags, Plan& plan) const;
    Zel8u prefixBucket(const Lead& lead, Plan& plan) const;

    // plan_shape.cpp
    bool planShape(const Lead& lead, Plan& plan) const;
    int readShape(const Lead& lead, ByteSet* sets, int room, int& nodes, bool& isWhole) const;
    void addProbe(int offset, const ByteSet& set, kernels::Shape& shape) const;

    // plan_required.cpp
    /// plan.first holds what a match can begin with.
    bool planRequired(Zel32u flags, Plan& plan) const;
    bool billHopelessRuns(int end, int64_t (&bills)[HopelessRun::kLongest + 1]) const;
    bool addAsciiBytes(int index, Zel32u flags, ByteSet& bytes) const;

    // one_way_plan.cpp
    bool describeBytes(int index, Zel32u flags, bool mayBeWide, OneWay::Part& part) const;
    bool describeText(int index, Zel32u flags, OneWay::Part& part) const;
    int describeRunAndText(int index, Zel32u flags, OneWay& oneWay, OneWay::Part& part);
    int describeRun(int index, Zel32u flags, OneWay& oneWay, OneWay::Part& part);
    bool describeLook(int open, Zel32u flags, OneWay::Part& part) const;
    void sortAlternatives(OneWay& oneWay) const;
    int describeNode(int index, Zel32u& flags, OneWay& oneWay, OneWay::Part& part, bool& isPart);

    const Node* nodes_;
    int count_;
    int groups_;  // capture slots
    bool utf8_;
    StackGuard& stack_;
    int effort_ = 0;
};

}  // namespace zel
