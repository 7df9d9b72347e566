// See replace_case.h. Both sides get objects of their own; opaque states are compared by content.
#include "replace_case.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "model/model.h"
#include "pattern_source.h"
#include "regexp/program.h"
#include "report.h"
#include "shrink.h"

namespace differential {
namespace {

constexpr Zel8u untouched = 0xCD;

/// What a template turns into: the block that zelsRegExpReplaceGetSize asks memory for.
struct Segment {
    Zel32u kind;
    int value;
    const Zel8u* text;
};
struct Template {
    int count;
    const Segment* segments;
};
constexpr Zel32u literalSegment = 0x10000001;

/// The functions of one side.
struct Replacer {
    ZelStatus (*init)(const char*, const char*, ZelRegExpState*, int*);
    ZelStatus (*templateSize)(const Zel8u*, int*);
    ZelStatus (*templateInit)(const Zel8u*, ZelRegExpReplaceState*);
    ZelStatus (*replace)(const Zel8u*, int*, Zel8u*, int*, ZelRegExpFind*, int*,
                         const ZelRegExpState*, const ZelRegExpReplaceState*);
};
const Replacer librarySide = {::zelsRegExpInit, ::zelsRegExpReplaceGetSize, ::zelsRegExpReplaceInit,
                              ::zelsRegExpReplace_8u};
const Replacer modelSide = {model::zelsRegExpInit, model::zelsRegExpReplaceGetSize,
                            model::zelsRegExpReplaceInit, model::zelsRegExpReplace_8u};

struct Result {
    bool compiles = false;
    int templateSize = -1;
    ZelStatus templateStatus = -777;
    std::vector<std::string> segments;
    ZelStatus status = -777;
    int consumed = -777;
    int written = -777;
    int numFind = -777;
    std::vector<std::pair<long long, int>> records;
    std::vector<Zel8u> output;  // the whole buffer

    std::string text() const {
        std::string result =
            "template " + std::to_string(templateStatus) + " size " + std::to_string(templateSize);
        for (const std::string& segment : segments) result += " " + segment;
        result += "; status " + std::to_string(status) + " consumed " + std::to_string(consumed) +
                  " written " + std::to_string(written) + " n=" + std::to_string(numFind);
        if (written >= 0) result += " " + quoted(reported());
        return result;
    }
    std::string reported() const {
        size_t size = std::min(output.size(), static_cast<size_t>(std::max(written, 0)));
        return std::string(output.begin(), output.begin() + static_cast<std::ptrdiff_t>(size));
    }
    /// Behind the last byte that the call wrote.
    size_t extent() const {
        size_t end = output.size();
        while (end > 0 && output[end - 1] == untouched) --end;
        return end;
    }
};

Result run(const ReplaceCase& test, const Replacer& side) {
    Result result;
    static std::vector<Zel8u> object;
    object.resize(48056 + 24 * test.pattern.size());
    auto* state = reinterpret_cast<ZelRegExpState*>(object.data());
    int offset;
    result.compiles =
        side.init(test.pattern.c_str(), test.options.c_str(), state, &offset) == zelStatusOk;
    if (!result.compiles) return result;
    state->matchLimit = test.limit;

    const Zel8u* source = nullptr;
    if (!test.noTemplate) source = reinterpret_cast<const Zel8u*>(test.replacement.c_str());
    side.templateSize(source, &result.templateSize);
    std::vector<Zel8u> block(16 + 16 * test.replacement.size());
    auto* parsed = reinterpret_cast<ZelRegExpReplaceState*>(block.data());
    result.templateStatus = side.templateInit(source, parsed);
    if (result.templateStatus != zelStatusOk) return result;
    Template content;
    std::memcpy(&content, block.data(), sizeof content);
    result.segments.push_back(content.segments ? "table" : "no table");
    for (int i = 0; i < content.count; ++i) {
        const Segment& segment = content.segments[i];
        bool literal = segment.kind == literalSegment;
        result.segments.push_back(std::to_string(segment.kind & 0xF) + ":" +
                                  std::to_string(segment.value) +
                                  (literal ? "@" + std::to_string(segment.text - source) : ""));
    }

    // Room for what single-match mode may write beyond the capacity.
    result.output.assign(static_cast<size_t>(test.capacity) + 2 * test.subject.size() + 4096,
                         untouched);
    static Zel8u marker;
    std::vector<ZelRegExpFind> find(static_cast<size_t>(test.records),
                                    ZelRegExpFind{&marker, -777});
    std::string subject = test.subject + '\0';
    auto* text = reinterpret_cast<const Zel8u*>(subject.data());
    result.consumed = static_cast<int>(test.subject.size());
    result.written = test.capacity;
    result.numFind = test.records;
    result.status = side.replace(text, &result.consumed, result.output.data(), &result.written,
                                 find.data(), &result.numFind, state, parsed);
    for (const ZelRegExpFind& record : find) {
        bool inText = record.pMatch && record.pMatch != &marker;
        result.records.push_back({inText          ? record.pMatch - text
                                  : record.pMatch ? -2
                                                  : -1,
                                  record.lenMatch});
    }
    return result;
}

std::string compareAll(const ReplaceCase& test) {
    Result library = run(test, librarySide);
    Result model = run(test, modelSide);
    std::string difference = "library " + library.text() + "; model " + model.text();
    if (library.compiles != model.compiles) return "compilation; " + difference;
    if (library.templateSize != model.templateSize) return difference;
    if (library.templateStatus != model.templateStatus) return difference;
    if (library.segments != model.segments || library.status != model.status) return difference;
    if (library.consumed != model.consumed || library.written != model.written) return difference;
    if (library.numFind != model.numFind || library.records != model.records) return difference;
    if (library.status != zelStatusOk) {
        return library.extent() == 0 ? "" : "written in spite of an error; " + difference;
    }
    if (library.reported() != model.reported()) return difference;
    bool single = test.options.find('g') == std::string::npos;
    size_t allowed = static_cast<size_t>(test.capacity);
    if (single) {
        allowed = std::max(allowed, model.extent());
        // An empty template lets the text behind the match follow, uncounted.
        bool empty = model.segments.size() == 1 && model.numFind > 0;
        if (empty && !std::equal(library.output.begin(),
                                 library.output.begin() + static_cast<std::ptrdiff_t>(allowed),
                                 model.output.begin())) {
            return "text behind the match; " + difference;
        }
    }
    if (library.extent() > allowed) {
        return "written up to " + std::to_string(library.extent()) + "; " + difference;
    }
    return "";
}

}  // namespace

std::string ReplaceCase::text() const {
    return "{" + quoted(pattern) + ", " + quoted(options) + ", " + std::to_string(limit) + ", " +
           quoted(subject) + ", " + (noTemplate ? "true" : "false") + ", " + quoted(replacement) +
           ", " + std::to_string(capacity) + ", " + std::to_string(records) + "}";
}

ReplaceCase makeReplaceCase(Random& random) {
    PatternSource source(random);
    ReplaceCase test;
    test.pattern = source.pattern();
    test.options = source.options();
    if (random.chance(25)) test.options += 'g';
    test.subject = source.subject();
    test.replacement = source.replacement();
    test.noTemplate = random.chance(4);
    test.limit = random.chance(10) ? random.below(60) : 1500;
    int length = static_cast<int>(test.subject.size());
    test.capacity = random.chance(30) ? 3000 : random.below(length + 12);
    if (random.chance(20)) test.capacity = random.between(length - 2, length + 2);
    if (test.capacity < -1) test.capacity = -1;
    static const int records[] = {1, 2, 3, 5, 16, 64};
    test.records = random.pick(records);
    return test;
}

std::string compare(const ReplaceCase& testCase) {
    // A buffer for a negative capacity does not exist; the call must refuse it.
    ReplaceCase test = testCase;
    std::function<std::string()> describeCase = [&] { return testCase.text(); };
    CrashReporter::running(&describeCase);
    std::string difference = compareAll(test);
    CrashReporter::running(nullptr);
    return difference;
}

ReplaceCase shrink(const ReplaceCase& testCase) {
    ReplaceCase test = testCase;
    for (int round = 0; round < 8; ++round) {
        bool changed = shorten(test, &ReplaceCase::subject);
        changed |= shorten(test, &ReplaceCase::pattern);
        changed |= shorten(test, &ReplaceCase::replacement);
        changed |= shorten(test, &ReplaceCase::options);
        changed |= simplify(test, &ReplaceCase::limit, 10000);
        changed |= simplify(test, &ReplaceCase::capacity, 100);
        changed |= simplify(test, &ReplaceCase::records, 16);
        changed |= simplifyBytes(test, &ReplaceCase::pattern);
        changed |= simplifyBytes(test, &ReplaceCase::subject);
        if (!changed) break;
    }
    return test;
}

}  // namespace differential
