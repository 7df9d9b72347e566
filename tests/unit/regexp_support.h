// Patterns in tests: compile, search and read results in one line.
#pragma once

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "regexp/program.h"
#include "zelchmx.h"

namespace zeltest {

/// A span of the subject: offset and length; (-1, -1) for a group that did not take part.
struct Span {
    int offset;
    int length;
    bool operator==(const Span&) const = default;
};

inline void PrintTo(const Span& span, std::ostream* out) {
    *out << "{" << span.offset << "," << span.length << "}";
}

using Spans = std::vector<Span>;
inline const Span kUnset = {-1, -1};

/// What a search returned.
struct Outcome {
    ZelStatus status = 0;
    int count = 0;
    Spans spans;
};

/// A compiled pattern in memory of exactly the size that the library asks for.
class Pattern {
public:
    explicit Pattern(const std::string& text, const char* options = nullptr, int format = 1) {
        int size = 0;
        EXPECT_EQ(zelsRegExpGetSize(text.c_str(), &size), zelStatusOk);
        memory_ = std::make_unique<unsigned char[]>(static_cast<size_t>(size));
        memset(memory_.get(), 0xAA, static_cast<size_t>(size));
        int offset = -1;
        const ZelStatus status = zelsRegExpInit(text.c_str(), options, state(), &offset);
        EXPECT_EQ(status, zelStatusOk) << "pattern " << text << " at " << offset;
        zelsRegExpSetFormat(format, state());
    }

    ZelRegExpState* state() { return reinterpret_cast<ZelRegExpState*>(memory_.get()); }
    Pattern& limit(int steps) {
        EXPECT_EQ(zelsRegExpSetMatchLimit(steps, state()), zelStatusOk);
        return *this;
    }

    /// Searches text[0..length); the byte behind it is readable.
    Outcome find(const Zel8u* text, int length, int capacity = 64) {
        std::vector<ZelRegExpFind> records(static_cast<size_t>(capacity), {nullptr, -777});
        Outcome outcome;
        outcome.count = capacity;
        outcome.status = zelsRegExpFind_8u(text, length, state(), records.data(), &outcome.count);
        if (outcome.status == zelStatusOk || (state()->options & zel::kOptionGlobal) != 0) {
            for (int i = 0; i < outcome.count; ++i) {
                const ZelRegExpFind& record = records[static_cast<size_t>(i)];
                outcome.spans.push_back(
                    record.pMatch == nullptr
                        ? Span{-1, record.lenMatch}
                        : Span{static_cast<int>(record.pMatch - text), record.lenMatch});
            }
        }
        return outcome;
    }
    Outcome find(const std::string& text, int capacity = 64) {
        return find(reinterpret_cast<const Zel8u*>(text.c_str()), static_cast<int>(text.size()),
                    capacity);
    }

    /// The spans of the first match, or of all with "g"; empty when there is none.
    Spans spans(const std::string& text) {
        const Outcome outcome = find(text);
        EXPECT_EQ(outcome.status, zelStatusOk);
        return outcome.spans;
    }

    /// The least match limit at which the search does not run out of steps.
    int stepsNeeded(const std::string& text) {
        int low = -1;
        int high = 1 << 20;
        while (high - low > 1) {
            const int middle = low + (high - low) / 2;
            limit(middle);
            (find(text).status == zelStatusRegExpMatchLimitError ? low : high) = middle;
        }
        limit(zel::kDefaultMatchLimit);
        return high;
    }

private:
    std::unique_ptr<unsigned char[]> memory_;
};

/// The spans of the first match of a pattern in a text.
inline Spans match(const std::string& pattern, const std::string& text,
                   const char* options = nullptr, int format = 1) {
    return Pattern(pattern, options, format).spans(text);
}

/// Offset and length of the whole first match; (-1, -1) when there is none.
inline Span whole(const std::string& pattern, const std::string& text,
                  const char* options = nullptr, int format = 1) {
    const Spans spans = match(pattern, text, options, format);
    return spans.empty() ? kUnset : spans[0];
}

inline int steps(const std::string& pattern, const std::string& text, const char* options = nullptr,
                 int format = 1) {
    return Pattern(pattern, options, format).stepsNeeded(text);
}

}  // namespace zeltest
