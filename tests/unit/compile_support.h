// Compiling patterns in tests: the object's memory is read byte by byte at the offsets that callers
// see, not through the library's own structs, and a canary behind exactly the announced size shows
// every write outside of it.
#pragma once

#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "regexp/program.h"
#include "zelchmx.h"

namespace zel {

/// One node as it stands in the object; `text` is what `data` points at for a literal run.
struct TestNode {
    Zel32u kind = 0;
    int value = 0;
    int count = 0;
    int extra = 0;
    std::string text;
    const void* data = nullptr;  // compared for scripts, null for everything but literal runs

    bool operator==(const TestNode&) const = default;
};

using Nodes = std::vector<TestNode>;

inline const char* kindName(Zel32u kind) {
    static const char* const names[] = {
        "Letter",      "String",       "BackReference", "CharacterClass",
        "LetterRange", "Position",     "Alternative",   "Range",
        "Min",         "Max",          "LookBehind",    "LookBehindNot",
        "LookAhead",   "LookAheadNot", "GroupOptions",  "Condition",
        "Capture",     "NoCapture",    "Atom",          "Close",
        "Options",     "AnyByte",      "LetterUtf8",    "Category",
        "Property",    "Script",       "CombLetter",
    };
    return kind - NodeLetter < 27 ? names[kind - NodeLetter] : "?";
}

inline void PrintTo(const TestNode& node, std::ostream* out) {
    *out << kindName(node.kind) << "(" << node.value << "," << node.count << "," << node.extra;
    if (!node.text.empty()) *out << ",'" << node.text << "'";
    if (node.data != nullptr) *out << "," << node.data;
    *out << ")";
}

// Nodes as a test writes them.
inline TestNode node(Zel32u kind, int value = 0, int count = 0, int extra = 0) {
    return {kind, value, count, extra, {}, nullptr};
}
inline TestNode letter(int byte, int extra = 0) {
    return node(NodeLetter, byte, 0, extra);
}
inline TestNode wide(int codePoint) {
    return node(NodeLetterUtf8, codePoint);
}
inline TestNode run(const std::string& text, int extra = 0) {
    return {NodeString, 0, static_cast<int>(text.size()), extra, text, nullptr};
}
inline TestNode shorthand(int letter) {
    return node(NodeLetterRange, letter);
}
inline TestNode position(int letter) {
    return node(NodePosition, letter);
}
inline TestNode greedy(int min, int max) {
    return node(NodeQuantifierMax, min, max);
}
inline TestNode lazy(int min, int max) {
    return node(NodeQuantifierMin, min, max);
}
inline TestNode bar(int serial, int flags = 0) {
    return node(NodeAlternative, serial, flags);
}
inline TestNode capture(int serial, int body, int slot) {
    return node(NodeGroupingCapture, serial, body, slot);
}
inline TestNode close(int serial, int flags = 0) {
    return node(NodeGroupingClose, serial, flags);
}
inline TestNode reference(int group) {
    return node(NodeBackReference, group);
}
inline TestNode classOf(int members) {
    return node(NodeCharacterClass, 0, members);
}
inline TestNode classNot(int members) {
    return node(NodeCharacterClass, -1, members);
}
inline TestNode range(int low, int high, int extra = 0) {
    return node(NodeRange, low, high, extra);
}

/// Outcome of one compilation.
struct Compiled {
    ZelStatus status = 0;
    int errOffset = kUntouched;
    Zel32u magic = 0;
    Zel32u options = 0;
    int nodeCount = 0;
    int groupCount = 0;
    int trailingLiteral = 0;
    int matchLimit = 0;
    int format = 0;
    Nodes nodes;

    static constexpr int kUntouched = -77;
};

/// A block of the size that the library asks for, with a canary on both sides. Its contents are
/// canary bytes too, unless that is not worth the time.
class GuardedBlock {
public:
    explicit GuardedBlock(const std::string& pattern, bool fill = true) {
        int size = 0;
        EXPECT_EQ(zelsRegExpGetSize(pattern.c_str(), &size), zelStatusOk);
        size_ = static_cast<size_t>(size);
        memory_.reset(new unsigned char[size_ + 2 * kCanary]);
        if (fill) memset(state(), 0xA5, size_);
        memset(memory_.get(), 0xA5, kCanary);
        memset(memory_.get() + kCanary + size_, 0xA5, kCanary);
    }

    ZelRegExpState* state() { return reinterpret_cast<ZelRegExpState*>(memory_.get() + kCanary); }
    const unsigned char* bytes() const { return memory_.get() + kCanary; }
    size_t size() const { return size_; }

    bool canariesHold() const {
        for (size_t i = 0; i < kCanary; ++i) {
            if (memory_[i] != 0xA5 || memory_[kCanary + size_ + i] != 0xA5) return false;
        }
        return true;
    }

    template <typename T>
    T read(size_t offset) const {
        T value;
        memcpy(&value, bytes() + offset, sizeof value);
        return value;
    }

private:
    static constexpr size_t kCanary = 256;
    size_t size_;
    std::unique_ptr<unsigned char[]> memory_;
};

/// Compiles and reads the object back. The pattern's own memory is gone before the object is read.
inline Compiled compile(const std::string& pattern, const char* options = nullptr) {
    GuardedBlock block(pattern);
    Compiled result;
    {
        const auto copy = std::make_unique<char[]>(pattern.size() + 1);
        memcpy(copy.get(), pattern.c_str(), pattern.size() + 1);
        result.status = zelsRegExpInit(copy.get(), options, block.state(), &result.errOffset);
        memset(copy.get(), '#', pattern.size() + 1);
    }
    EXPECT_TRUE(block.canariesHold()) << pattern;
    if (result.status != zelStatusOk) return result;
    EXPECT_EQ(result.errOffset, Compiled::kUntouched) << "written although the pattern compiles";

    result.magic = block.read<Zel32u>(0);
    result.options = block.read<Zel32u>(4);
    result.nodeCount = block.read<int>(8);
    result.groupCount = block.read<int>(12);
    result.trailingLiteral = block.read<int>(16);
    result.matchLimit = block.read<int>(20);
    result.format = block.read<int>(24);
    const unsigned char* text = block.bytes() + 48032 + static_cast<size_t>(result.nodeCount) * 24;
    for (int i = 0; i < result.nodeCount; ++i) {
        const size_t at = 48032 + static_cast<size_t>(i) * 24;
        TestNode node{block.read<Zel32u>(at),
                      block.read<int>(at + 4),
                      block.read<int>(at + 8),
                      block.read<int>(at + 12),
                      {},
                      block.read<const void*>(at + 16)};
        if (node.kind == NodeString) {
            // The texts of all runs follow the last node without a gap, in their order.
            EXPECT_EQ(node.data, text) << pattern;
            node.text.assign(reinterpret_cast<const char*>(text), static_cast<size_t>(node.count));
            text += node.count;
            node.data = nullptr;
        }
        result.nodes.push_back(node);
    }
    EXPECT_LE(text, block.bytes() + block.size()) << pattern;
    return result;
}

inline Nodes nodesOf(const std::string& pattern, const char* options = nullptr) {
    const Compiled compiled = compile(pattern, options);
    EXPECT_EQ(compiled.status, zelStatusOk) << pattern << " fails at " << compiled.errOffset;
    return compiled.nodes;
}

}  // namespace zel
