// See regexp_case.h. The step count of a search is compared by running both sides with exactly the
// budget that the model needed, and with one step less.
#include "regexp_case.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "guarded.h"
#include "model/model.h"
#include "pattern_source.h"
#include "regexp/program.h"
#include "report.h"
#include "shrink.h"

namespace differential {
namespace {

struct {
    long long compiled = 0;
    long long rejected = 0;
    long long searches = 0;
    long long matched = 0;
    long long boundaries = 0;  // searches whose step count was compared exactly
    long long steps = 0;
} totals;

constexpr Zel8u untouched = 0xCD;
constexpr size_t canarySize = 64;

/// Memory for one pattern object, with a canary behind its true size.
class ObjectMemory {
public:
    void prepare(size_t size) {
        size_ = size;
        if (bytes_.size() < size + canarySize) bytes_.resize(size + canarySize);
        std::memset(bytes_.data(), untouched, size + canarySize);
    }
    ZelRegExpState* state() { return reinterpret_cast<ZelRegExpState*>(bytes_.data()); }
    bool canaryIntact() const { return allUntouched(size_, size_ + canarySize); }
    bool allUntouched(size_t begin, size_t end) const {
        const Zel8u* first = bytes_.data() + begin;
        return *first == untouched && std::memcmp(first, first + 1, end - begin - 1) == 0;
    }

private:
    size_t size_ = 0;
    std::vector<Zel8u> bytes_;
};

std::string name(const char* what, long long library, long long model) {
    return std::string(what) + ": library " + std::to_string(library) + ", model " +
           std::to_string(model);
}

std::string describe(const zel::Node& node) {
    return "{" + std::to_string(node.kind - zel::NodeLetter) + " " + std::to_string(node.value) +
           " " + std::to_string(node.count) + " " + std::to_string(node.extra) + "}";
}

std::string describeNodes(const ZelRegExpState& state) {
    std::string text;
    for (int i = 0; i < state.nodeCount && i < 40; ++i) text += describe(state.nodes()[i]);
    return text;
}

/// The text of string nodes must lie behind the last node, run after run.
std::string compareNodes(const ZelRegExpState& library, const ZelRegExpState& model) {
    if (library.nodeCount != model.nodeCount) {
        return name("node count", library.nodeCount, model.nodeCount) + "; library " +
               describeNodes(library) + ", model " + describeNodes(model);
    }
    auto* text = reinterpret_cast<const char*>(library.nodes() + library.nodeCount);
    for (int i = 0; i < library.nodeCount; ++i) {
        const zel::Node& a = library.nodes()[i];
        const zel::Node& b = model.nodes()[i];
        bool same =
            a.kind == b.kind && a.value == b.value && a.count == b.count && a.extra == b.extra;
        if (same && a.kind == zel::NodeString) {
            if (a.data != text) return "text of node " + std::to_string(i) + " lies elsewhere";
            same = std::memcmp(a.data, b.data, static_cast<size_t>(a.count)) == 0;
            text += a.count;
        } else if (same) {
            same = a.data == b.data;
        }
        if (!same) {
            return "node " + std::to_string(i) + ": library " + describe(a) + ", model " +
                   describe(b) + "; library " + describeNodes(library) + ", model " +
                   describeNodes(model);
        }
    }
    return "";
}

std::string compareCompilation(const RegexpCase& test, ObjectMemory& library, ObjectMemory& model,
                               bool& compiled) {
    int librarySize = -1;
    int modelSize = -1;
    ::zelsRegExpGetSize(test.pattern.c_str(), &librarySize);
    model::zelsRegExpGetSize(test.pattern.c_str(), &modelSize);
    if (librarySize != modelSize) return name("size", librarySize, modelSize);
    library.prepare(static_cast<size_t>(modelSize));
    model.prepare(static_cast<size_t>(modelSize));
    int libraryOffset = -777;
    int modelOffset = -777;
    ZelStatus libraryStatus = ::zelsRegExpInit(test.pattern.c_str(), test.options.c_str(),
                                               library.state(), &libraryOffset);
    ZelStatus modelStatus = model::zelsRegExpInit(test.pattern.c_str(), test.options.c_str(),
                                                  model.state(), &modelOffset);
    compiled = modelStatus == zelStatusOk;
    if (libraryStatus != modelStatus) {
        return name("compile status", libraryStatus, modelStatus) + "; offsets " +
               std::to_string(libraryOffset) + ", " + std::to_string(modelOffset);
    }
    if (libraryOffset != modelOffset) return name("error offset", libraryOffset, modelOffset);
    if (!library.canaryIntact()) return "the library wrote behind the object";
    const ZelRegExpState& a = *library.state();
    const ZelRegExpState& b = *model.state();
    if (a.magic != b.magic) return name("first word", a.magic, b.magic);
    if (!compiled) return "";
    if (a.options != b.options) return name("options", a.options, b.options);
    if (a.groupCount != b.groupCount) return name("group count", a.groupCount, b.groupCount);
    if (a.matchLimit != b.matchLimit) return name("match limit", a.matchLimit, b.matchLimit);
    if (a.format != b.format) return name("format", a.format, b.format);
    std::string nodes = compareNodes(a, b);
    if (!nodes.empty()) return nodes;
    if (a.trailingLiteral != b.trailingLiteral) {
        return name("trailing literal", a.trailingLiteral, b.trailingLiteral);
    }
    if (!library.allUntouched(offsetof(ZelRegExpState, groups), sizeof(ZelRegExpState))) {
        return "the compiler touched the work areas";
    }
    return "";
}

struct Outcome {
    ZelStatus status = 0;
    int numFind = 0;
    std::vector<ZelRegExpFind> records;
};

bool sameRecords(const std::vector<ZelRegExpFind>& a, const std::vector<ZelRegExpFind>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) {
        return x.pMatch == y.pMatch && x.lenMatch == y.lenMatch;
    });
}

std::string describe(const Outcome& outcome, const Zel8u* text) {
    std::string result = std::to_string(outcome.status) + " n=" + std::to_string(outcome.numFind);
    int shown = outcome.numFind < static_cast<int>(outcome.records.size()) && outcome.numFind < 20
                    ? outcome.numFind
                    : 0;
    for (int i = 0; i < shown; ++i) {
        const ZelRegExpFind& record = outcome.records[static_cast<size_t>(i)];
        result += record.pMatch ? " [" + std::to_string(record.pMatch - text) + "," +
                                      std::to_string(record.lenMatch) + "]"
                                : " [null," + std::to_string(record.lenMatch) + "]";
    }
    return result;
}

using Find = ZelStatus (*)(const Zel8u*, int, ZelRegExpState*, ZelRegExpFind*, int*);

Outcome search(Find find, ZelRegExpState* state, int limit, const Zel8u* text, int length,
               int records) {
    Outcome outcome;
    static Zel8u marker;
    outcome.records.assign(static_cast<size_t>(records), ZelRegExpFind{&marker, -777});
    outcome.numFind = records;
    state->matchLimit = limit;
    outcome.status = find(text, length, state, outcome.records.data(), &outcome.numFind);
    return outcome;
}

std::string compareSearch(const RegexpCase& test, int limit, ObjectMemory& library,
                          ObjectMemory& model, const Zel8u* text, int& stepsUsed) {
    int length = static_cast<int>(test.subject.size());
    Outcome a = search(::zelsRegExpFind_8u, library.state(), limit, text, length, test.records);
    Outcome b = search(model::zelsRegExpFind_8u, model.state(), limit, text, length, test.records);
    int left = model::stepsLeft();
    stepsUsed = left < 0 ? -1 : limit - left;
    ++totals.searches;
    if (b.status == 0 && b.numFind > 0) ++totals.matched;
    totals.steps += limit - left;
    if (a.status == b.status && a.numFind == b.numFind && sameRecords(a.records, b.records))
        return "";
    return "search with limit " + std::to_string(limit) + ": library " + describe(a, text) +
           ", model " + describe(b, text);
}

std::string compareAll(const RegexpCase& test) {
    static ObjectMemory library;
    static ObjectMemory model;
    static GuardedArea area(1 << 16);
    bool compiled = false;
    std::string difference = compareCompilation(test, library, model, compiled);
    ++(compiled ? totals.compiled : totals.rejected);
    if (!difference.empty() || !compiled) return difference;
    ::zelsRegExpSetFormat(test.format, library.state());
    model::zelsRegExpSetFormat(test.format, model.state());

    // The subject between inaccessible pages, at either end: one byte behind it may be read, none
    // in front of it.
    for (bool atHighEnd : {true, false}) {
        const Zel8u* text =
            area.place(test.subject + std::string(1, static_cast<char>(test.behind)), atHighEnd);
        int used;
        difference = compareSearch(test, test.limit, library, model, text, used);
        if (difference.empty() && used >= 0 && atHighEnd) {
            ++totals.boundaries;
            int unused;
            difference = compareSearch(test, used, library, model, text, unused);
            if (difference.empty() && used > 0) {
                difference = compareSearch(test, used - 1, library, model, text, unused);
            }
            if (difference.empty() && used > 2) {
                difference = compareSearch(test, used / 2, library, model, text, unused);
            }
        }
        if (!difference.empty()) return difference;
        if (!library.canaryIntact()) return "the search wrote behind the object";
    }
    return "";
}

}  // namespace

std::string RegexpCase::text() const {
    return "{" + quoted(pattern) + ", " + quoted(options) + ", " + std::to_string(format) + ", " +
           std::to_string(limit) + ", " + quoted(subject) + ", " + std::to_string(behind) + ", " +
           std::to_string(records) + "}";
}

RegexpCase makeRegexpCase(Random& random) {
    PatternSource source(random);
    RegexpCase test;
    test.pattern = source.pattern();
    test.options = source.options();
    test.subject = source.subject();
    test.format = random.chance(75) ? 1 : 0;
    int kind = random.below(10);
    test.limit = kind == 0 ? 10000 : kind < 3 ? random.below(60) : 1500;
    static const int behind[] = {0, 0, 'a', 'b', '\n', ' ', 0xA9, 0x80};
    test.behind = random.pick(behind);
    if (random.below(1500) == 1) {
        // Now and then a text long enough for the widest loops, and a budget to walk it.
        for (int round = 0; round < 12; ++round) test.subject += source.subject();
        while (!test.subject.empty() && test.subject.size() < 3000) test.subject += test.subject;
        test.limit = random.chance(50) ? 100000 : random.below(10000);
    }
    static const int records[] = {1, 2, 3, 5, 16, 16, 64};
    test.records = random.pick(records);
    return test;
}

std::string compare(const RegexpCase& testCase) {
    std::function<std::string()> describeCase = [&] { return testCase.text(); };
    CrashReporter::running(&describeCase);
    std::string difference = compareAll(testCase);
    CrashReporter::running(nullptr);
    return difference;
}

RegexpCase shrink(const RegexpCase& testCase) {
    RegexpCase test = testCase;
    for (int round = 0; round < 8; ++round) {
        bool changed = false;
        changed |= shorten(test, &RegexpCase::subject);
        changed |= shorten(test, &RegexpCase::pattern);
        changed |= shorten(test, &RegexpCase::options);
        changed |= simplify(test, &RegexpCase::limit, 10000);
        changed |= simplify(test, &RegexpCase::format, 1);
        changed |= simplify(test, &RegexpCase::behind, 0);
        changed |= simplify(test, &RegexpCase::records, 16);
        changed |= simplifyBytes(test, &RegexpCase::pattern);
        changed |= simplifyBytes(test, &RegexpCase::subject);
        if (!changed) break;
    }
    return test;
}

std::string regexpTotals() {
    return std::to_string(totals.compiled) + " compiled, " + std::to_string(totals.rejected) +
           " rejected, " + std::to_string(totals.searches) + " searches, " +
           std::to_string(totals.matched) + " matched, " + std::to_string(totals.boundaries) +
           " step counts, " + std::to_string(totals.steps) + " steps";
}

}  // namespace differential
