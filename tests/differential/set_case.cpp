// Pattern sets: a random series of additions, deletions and changes on a set of each side, then a
// search. Statuses, the content of the set block and every record are compared.
#include <cstring>
#include <functional>
#include <vector>

#include "model/model.h"
#include "pattern_source.h"
#include "regexp/program.h"
#include "replace_case.h"
#include "report.h"

namespace differential {
namespace {

/// The functions of one side.
struct SetFunctions {
    ZelStatus (*compile)(const char*, const char*, ZelRegExpState**, int*);
    ZelStatus (*free)(ZelRegExpState*);
    ZelStatus (*getSize)(int, int*);
    ZelStatus (*init)(ZelRegExpMultiState*, int);
    ZelStatus (*initAlloc)(ZelRegExpMultiState**, int);
    ZelStatus (*freeSet)(ZelRegExpMultiState*);
    ZelStatus (*add)(const ZelRegExpState*, Zel32u, ZelRegExpMultiState*);
    ZelStatus (*remove)(Zel32u, ZelRegExpMultiState*);
    ZelStatus (*modify)(const ZelRegExpState*, Zel32u, ZelRegExpMultiState*);
    ZelStatus (*find)(const Zel8u*, int, ZelRegExpMultiFind*, const ZelRegExpMultiState*);
};
const SetFunctions librarySide = {::zelsRegExpInitAlloc,      ::zelsRegExpFree,
                                  ::zelsRegExpMultiGetSize,   ::zelsRegExpMultiInit,
                                  ::zelsRegExpMultiInitAlloc, ::zelsRegExpMultiFree,
                                  ::zelsRegExpMultiAdd,       ::zelsRegExpMultiDelete,
                                  ::zelsRegExpMultiModify,    ::zelsRegExpMultiFind_8u};
const SetFunctions modelSide = {model::zelsRegExpInitAlloc,      model::zelsRegExpFree,
                                model::zelsRegExpMultiGetSize,   model::zelsRegExpMultiInit,
                                model::zelsRegExpMultiInitAlloc, model::zelsRegExpMultiFree,
                                model::zelsRegExpMultiAdd,       model::zelsRegExpMultiDelete,
                                model::zelsRegExpMultiModify,    model::zelsRegExpMultiFind_8u};

/// What a set's block holds.
struct SetBlock {
    int capacity;
    ZelRegExpState* const* patterns;
    const Zel32u* identifiers;
};

constexpr int recordsPerSlot = 6;

/// Everything that a side shows, one line per observation.
std::vector<std::string> run(uint64_t number, const SetFunctions& side) {
    Random random(number, 1);
    std::vector<std::string> log;
    auto note = [&](const std::string& what, long long value) {
        log.push_back(what + " " + std::to_string(value));
    };
    PatternSource source(random);
    std::vector<ZelRegExpState*> patterns;
    int wanted = random.between(1, 4);
    for (int i = 0; i < wanted; ++i) {
        ZelRegExpState* pattern = nullptr;
        int offset = -1;
        std::string text = source.pattern();
        std::string options = source.options();
        note("pattern " + quoted(text) + " " + quoted(options) + ":",
             side.compile(text.c_str(), options.c_str(), &pattern, &offset));
        note("offset", offset);
        if (!pattern) continue;
        pattern->matchLimit = random.chance(20) ? random.below(50) : 1500;
        patterns.push_back(pattern);
    }
    std::string subject = source.subject();
    note("pattern's subject " + quoted(subject), static_cast<long long>(subject.size()));
    auto indexOf = [&](const ZelRegExpState* pattern) {
        for (size_t i = 0; i < patterns.size(); ++i) {
            if (patterns[i] == pattern) return static_cast<int>(i);
        }
        return -1;
    };
    auto anyPattern = [&]() -> ZelRegExpState* {
        return patterns.empty() || random.chance(3) ? nullptr : random.pick(patterns);
    };

    int capacity = random.between(1, 9);
    int size = -1;
    note("size status", side.getSize(capacity, &size));
    note("size", size);
    ZelRegExpMultiState* set = nullptr;
    std::vector<Zel8u> own(static_cast<size_t>(size) + 16, 0xCD);
    bool allocated = random.chance(30);
    if (allocated) {
        note("alloc", side.initAlloc(&set, capacity));
    } else {
        set = reinterpret_cast<ZelRegExpMultiState*>(own.data());
        note("init", side.init(set, capacity));
    }
    int operations = random.below(20);
    for (int i = 0; i < operations; ++i) {
        Zel32u identifier = static_cast<Zel32u>(random.below(6));
        switch (random.below(5)) {
            case 0:
                note("delete", side.remove(identifier, set));
                break;
            case 1:
                note("modify", side.modify(anyPattern(), identifier, set));
                break;
            default:
                note("add", side.add(anyPattern(), identifier, set));
                break;
        }
    }
    SetBlock block;
    std::memcpy(&block, set, sizeof block);
    auto* base = reinterpret_cast<const char*>(set);
    note("capacity", block.capacity);
    note("patterns at", reinterpret_cast<const char*>(block.patterns) - base);
    note("identifiers at", reinterpret_cast<const char*>(block.identifiers) - base);
    for (int i = 0; i < capacity; ++i) {
        note("slot", block.patterns[i] ? indexOf(block.patterns[i]) : -2);
        note("identifier", block.identifiers[i]);
    }

    subject += '\0';
    auto* text = reinterpret_cast<const Zel8u*>(subject.data());
    Zel8u marker = 0;
    std::vector<ZelRegExpFind> find(static_cast<size_t>(capacity) * recordsPerSlot,
                                    ZelRegExpFind{&marker, -777});
    std::vector<ZelRegExpMultiFind> records(static_cast<size_t>(capacity));
    for (int i = 0; i < capacity; ++i) {
        records[static_cast<size_t>(i)] = {-77, 77, random.below(recordsPerSlot + 1), -777,
                                           &find[static_cast<size_t>(i) * recordsPerSlot]};
        if (random.chance(3)) records[static_cast<size_t>(i)].pFind = nullptr;
    }
    int length = static_cast<int>(subject.size()) - 1;
    note("find", side.find(text, length, records.data(), set));
    for (const ZelRegExpMultiFind& record : records) {
        note("searched", record.searched);
        note("identifier", record.identifier);
        note("count", record.numFind);
        note("status", record.status);
    }
    for (const ZelRegExpFind& record : find) {
        bool inText = record.pMatch && record.pMatch != &marker;
        note("match at", inText ? record.pMatch - text : record.pMatch ? -2 : -1);
        note("length", record.lenMatch);
    }
    if (allocated) {
        note("free", side.freeSet(set));
    } else {
        for (size_t i = static_cast<size_t>(size); i < own.size(); ++i) {
            if (own[i] != 0xCD) note("written behind the set", static_cast<long long>(i));
        }
    }
    for (ZelRegExpState* pattern : patterns) note("free", side.free(pattern));
    return log;
}

}  // namespace

std::string SetCase::text() const {
    return "{" + std::to_string(number) + "u}";
}

SetCase makeSetCase(Random& random) {
    return {random.next()};
}

std::string compare(const SetCase& testCase) {
    std::function<std::string()> describeCase = [&] { return testCase.text(); };
    CrashReporter::running(&describeCase);
    std::vector<std::string> library = run(testCase.number, librarySide);
    std::vector<std::string> model = run(testCase.number, modelSide);
    CrashReporter::running(nullptr);
    for (size_t i = 0; i < library.size() && i < model.size(); ++i) {
        if (library[i] == model[i]) continue;
        std::string patterns;
        for (const std::string& line : model) {
            if (line.compare(0, 7, "pattern") == 0) patterns += "; " + line;
        }
        return "observation " + std::to_string(i) + ": library " + library[i] + ", model " +
               model[i] + patterns;
    }
    return library.size() == model.size() ? "" : "different number of observations";
}

SetCase shrink(const SetCase& testCase) {
    return testCase;
}

}  // namespace differential
