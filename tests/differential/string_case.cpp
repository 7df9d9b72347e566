// See string_case.h. All buffers of a case lie in one block between inaccessible pages. Library and
// model run on the same addresses with the same contents, and the whole block is compared.
#include "string_case.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>

#include "guarded.h"
#include "report.h"
#include "shrink.h"
#include "string_functions.h"

namespace differential {
namespace {

constexpr size_t blockSize = 4 * 4096;
constexpr size_t targetArea = 4096;  // offset of the area in the middle
constexpr int longest = 700;
// No continuation byte, so that a sequence cut short at the end of a source stays malformed.
constexpr Zel8u filler = 0x5A;

const char* const functionNames[kStringFunctionCount] = {"Find",
                                                         "FindRev",
                                                         "FindC",
                                                         "FindRevC",
                                                         "FindCAny",
                                                         "FindRevCAny",
                                                         "Find_Z",
                                                         "FindC_Z",
                                                         "Compare",
                                                         "CompareLatin",
                                                         "CompareIgnoreCase",
                                                         "Equal",
                                                         "Uppercase",
                                                         "Lowercase",
                                                         "UppercaseLatin",
                                                         "LowercaseLatin",
                                                         "Uppercase_I",
                                                         "Lowercase_I",
                                                         "UppercaseLatin_I",
                                                         "LowercaseLatin_I",
                                                         "Insert",
                                                         "Insert_I",
                                                         "Remove",
                                                         "Remove_I",
                                                         "ReplaceC",
                                                         "Concat",
                                                         "Concat_D2L",
                                                         "ConcatC_D2L",
                                                         "SplitC_D2L",
                                                         "TrimC",
                                                         "TrimC_I",
                                                         "TrimCAny",
                                                         "TrimStartCAny",
                                                         "TrimEndCAny",
                                                         "Hash",
                                                         "HashSJ2",
                                                         "HashMSCS",
                                                         "Copy",
                                                         "Move",
                                                         "Zero",
                                                         "ConvertUTF_8u16u",
                                                         "ConvertUTF_16u8u"};

struct Outputs {
    ZelStatus status = 0;
    int first = -777;
    int second = -777;
    std::vector<int> list;
};

bool operator==(const Outputs& a, const Outputs& b) {
    return a.status == b.status && a.first == b.first && a.second == b.second && a.list == b.list;
}

/// Where the buffers of a case lie.
template <typename T>
struct Memory {
    T* source;
    T* second;
    Zel8u* target;
};

template <typename T>
T* put(const std::vector<Zel16u>& elements, Zel8u* at) {
    T* target = reinterpret_cast<T*>(at);
    for (size_t i = 0; i < elements.size(); ++i) target[i] = static_cast<T>(elements[i]);
    return target;
}

bool zeroTerminated(int function) {
    return function == kFindZ || function == kFindCZ;
}
bool inPlace(int function) {
    return function == kUpperInPlace || function == kLowerInPlace ||
           function == kUpperLatinInPlace || function == kLowerLatinInPlace ||
           function == kInsertInPlace || function == kRemoveInPlace || function == kTrimCInPlace;
}

template <typename T>
Memory<T> prepare(const StringCase& test, GuardedArea& area) {
    std::memset(area.low(), filler, blockSize);
    std::vector<Zel16u> source = test.source;
    std::vector<Zel16u> second = test.second;
    if (zeroTerminated(test.function)) {
        source.push_back(0);
        second.push_back(0);
    }
    size_t sourceBytes = source.size() * sizeof(T);
    size_t secondBytes = second.size() * sizeof(T);
    Zel8u* low = area.low();
    Zel8u* high = low + blockSize;
    Zel8u* sourceAt = low + 3 * targetArea + test.sourceOffset;
    Zel8u* secondAt = low + test.secondOffset;
    if (test.placement == 1) {
        sourceAt = high - sourceBytes;
        secondAt = low;
    } else if (test.placement == 2) {
        sourceAt = low;
        secondAt = high - secondBytes;
    }
    Zel8u* target = low + targetArea + test.targetOffset;
    if (test.alias == 1 || inPlace(test.function)) sourceAt = target;
    return {put<T>(source, sourceAt), put<T>(second, secondAt), target};
}

template <typename T, typename Raw>
Outputs call(const StringCase& test, const StringFunctions<T, Raw>& f, const Memory<T>& memory) {
    Outputs out;
    bool noSource = (test.nulls & 1) != 0;
    T* source = noSource ? nullptr : memory.source;
    T* second = (test.nulls & 2) ? nullptr : memory.second;
    T* target = (test.nulls & 4) ? nullptr : reinterpret_cast<T*>(memory.target);
    int* output = (test.nulls & 8) ? nullptr : &out.first;
    Zel32u hash = 777;
    Zel32u* hashOutput = (test.nulls & 8) ? nullptr : &hash;
    int length = static_cast<int>(test.source.size());
    int secondLength = static_cast<int>(test.second.size());
    int amount = test.amount;
    if (test.badLength & 1) length = -1 - length;
    if (test.badLength & 2) secondLength = INT_MIN;
    if (test.badLength & 4) amount = -1;
    int sameLength = std::min(length, secondLength);
    T value = static_cast<T>(test.value);
    std::vector<const T*> sources;
    std::vector<T*> targets;
    out.list = test.list;
    if (test.function == kConcatList || test.function == kConcatCList) {
        const T* at = memory.source;
        for (int entry : test.list) {
            sources.push_back(at);
            at += entry;
        }
        if (test.badEntry >= 0 && test.badEntry / 2 < static_cast<int>(sources.size())) {
            size_t k = static_cast<size_t>(test.badEntry / 2);
            if (test.badEntry % 2) {
                out.list[k] = -1;
            } else {
                sources[k] = nullptr;
            }
        }
    }
    if (test.function == kSplitC) {
        T* at = reinterpret_cast<T*>(memory.target);
        for (int capacity : test.list) {
            targets.push_back(at);
            at += capacity + 1;
        }
        if (test.badEntry >= 0 && test.badEntry / 2 < static_cast<int>(targets.size())) {
            size_t k = static_cast<size_t>(test.badEntry / 2);
            if (test.badEntry % 2) {
                out.list[k] = -1;
            } else {
                targets[k] = nullptr;
            }
        }
    }
    const T* const* sourceList = noSource ? nullptr : sources.data();
    int* lengthList = (test.nulls & 2) ? nullptr : out.list.data();
    switch (test.function) {
        case kFind:
            out.status = f.find(source, length, second, secondLength, output);
            break;
        case kFindRev:
            out.status = f.findRev(source, length, second, secondLength, output);
            break;
        case kFindC:
            out.status = f.findC(source, length, value, output);
            break;
        case kFindRevC:
            out.status = f.findRevC(source, length, value, output);
            break;
        case kFindCAny:
            out.status = f.findCAny(source, length, second, secondLength, output);
            break;
        case kFindRevCAny:
            out.status = f.findRevCAny(source, length, second, secondLength, output);
            break;
        case kFindZ:
            out.status = f.findZ(source, second, output);
            break;
        case kFindCZ:
            out.status = f.findCZ(source, value, output);
            break;
        case kCompare:
            out.status = f.compare(source, second, sameLength, output);
            break;
        case kCompareLatin:
            out.status = f.compareLatin(source, second, sameLength, output);
            break;
        case kCompareIgnoreCase:
            out.status = f.compareIgnoreCase(source, second, sameLength, output);
            break;
        case kEqual:
            out.status = f.equal(source, second, sameLength, output);
            break;
        case kUpper:
            out.status = f.upper(source, target, length);
            break;
        case kLower:
            out.status = f.lower(source, target, length);
            break;
        case kUpperLatin:
            out.status = f.upperLatin(source, target, length);
            break;
        case kLowerLatin:
            out.status = f.lowerLatin(source, target, length);
            break;
        case kUpperInPlace:
            out.status = f.upperInPlace(source, length);
            break;
        case kLowerInPlace:
            out.status = f.lowerInPlace(source, length);
            break;
        case kUpperLatinInPlace:
            out.status = f.upperLatinInPlace(source, length);
            break;
        case kLowerLatinInPlace:
            out.status = f.lowerLatinInPlace(source, length);
            break;
        case kInsert:
            out.status = f.insert(source, length, second, secondLength, target, test.start);
            break;
        case kInsertInPlace:
            out.first = length;
            out.status = f.insertInPlace(second, secondLength, source, output, test.start);
            break;
        case kRemove:
            out.status = f.remove(source, length, target, test.start, amount);
            break;
        case kRemoveInPlace:
            out.first = length;
            out.status = f.removeInPlace(source, output, test.start, amount);
            break;
        case kReplaceC:
            out.status = f.replaceC(source, target, length, value, static_cast<T>(test.newValue));
            break;
        case kConcat:
            out.status = f.concat(source, length, second, secondLength, target);
            break;
        case kConcatList:
            out.status = f.concatList(sourceList, lengthList, amount, target);
            break;
        case kConcatCList:
            out.status = f.concatCList(sourceList, lengthList, amount, value, target);
            break;
        case kSplitC:
            out.first = amount;
            out.status = f.splitC(source, length, value,
                                  (test.nulls & 4) ? nullptr : targets.data(), lengthList, output);
            break;
        case kTrimC:
            out.status = f.trimC(source, length, value, target, output);
            break;
        case kTrimCInPlace:
            out.first = length;
            out.status = f.trimCInPlace(source, output, value);
            break;
        case kTrimCAny:
            out.status = f.trimCAny(source, length, second, secondLength, target, output);
            break;
        case kTrimStartCAny:
            out.status = f.trimStartCAny(source, length, second, secondLength, target, output);
            break;
        case kTrimEndCAny:
            out.status = f.trimEndCAny(source, length, second, secondLength, target, output);
            break;
        case kHash:
            out.status = f.hash(source, length, hashOutput);
            break;
        case kHashSJ2:
            out.status = f.hashSJ2(source, length, hashOutput);
            break;
        case kHashMSCS:
            out.status = f.hashMSCS(source, length, hashOutput);
            break;
        case kCopy:
            out.status = f.copy(reinterpret_cast<const Raw*>(source),
                                reinterpret_cast<Raw*>(target), length);
            break;
        case kMove: {
            // Within one buffer, `start` elements apart in either direction.
            T* moved = test.alias == 1 && target ? memory.source + test.start : target;
            out.status =
                f.move(reinterpret_cast<const Raw*>(source), reinterpret_cast<Raw*>(moved), length);
            break;
        }
        default:
            break;
    }
    out.second = static_cast<int>(hash);
    return out;
}

Outputs callOther(const StringCase& test, const OtherFunctions& f, const Memory<Zel8u>& narrow,
                  const Memory<Zel16u>& wide) {
    Outputs out;
    int length = static_cast<int>(test.source.size());
    Zel8u* target = (test.nulls & 4) ? nullptr : narrow.target;
    out.first = length;
    out.second = test.start;
    int* consumed = (test.nulls & 8) ? nullptr : &out.first;
    int* written = (test.nulls & 2) ? nullptr : &out.second;
    if (test.function == kZero) {
        out.status = f.zero(target, (test.badLength & 1) ? -1 - length : length);
    } else if (test.function == kToUtf16) {
        out.status = f.toUtf16((test.nulls & 1) ? nullptr : narrow.source, consumed,
                               reinterpret_cast<Zel16u*>(target), written, test.amount);
    } else {
        out.status = f.toUtf8((test.nulls & 1) ? nullptr : wide.source, consumed, target, written,
                              test.amount);
    }
    return out;
}

Outputs run(const StringCase& test, const Side& side, GuardedArea& area) {
    if (test.function >= kZero) {
        if (test.width == 8) {
            return callOther(test, side.other, prepare<Zel8u>(test, area), {});
        }
        Memory<Zel16u> memory = prepare<Zel16u>(test, area);
        return callOther(test, side.other, {nullptr, nullptr, memory.target}, memory);
    }
    if (test.width == 8) return call(test, side.narrow, prepare<Zel8u>(test, area));
    return call(test, side.wide, prepare<Zel16u>(test, area));
}

std::string describe(const Outputs& out) {
    std::string text = "status " + std::to_string(out.status) + ", outputs " +
                       std::to_string(out.first) + " " + std::to_string(out.second);
    for (int value : out.list) text += " " + std::to_string(value);
    return text;
}

std::string compareAll(const StringCase& test) {
    static GuardedArea area(blockSize);
    static std::vector<Zel8u> after(blockSize);
    const Side* side = librarySide(test.instance);
    if (!side) return "";
    Outputs library = run(test, *side, area);
    std::memcpy(after.data(), area.low(), blockSize);
    Outputs model = run(test, modelSide, area);
    if (!(library == model)) return "library " + describe(library) + "; model " + describe(model);
    if (std::memcmp(after.data(), area.low(), blockSize) == 0) return "";
    size_t at = 0;
    while (after[at] == area.low()[at]) ++at;
    return describe(library) + "; byte at block offset " + std::to_string(at) + ": library " +
           std::to_string(after[at]) + ", model " + std::to_string(area.low()[at]);
}

// ---- Generation ----

int pickLength(Random& random) {
    int kind = random.below(20);
    if (kind < 8) return random.below(18);
    if (kind < 14) return random.below(70);
    if (kind < 19) return random.below(300);
    return random.below(longest);
}

const std::vector<std::vector<Zel16u>> alphabets = {
    {'a', 'b'},
    {'a'},
    {' ', 'x'},
    {',', 'a', 'b', 'c', 'd', 'e', 'f', 'g'},
    {'A', 'a', 'Z', 'z', '@', '[', '`', '{'},
    {0, 1, 'a'},
    {0xFF, 0x00, 0x80, 0x7F},
    {0xC9, 0xE9, 0xFF, 'k', 'K'},
    {0x130, 'i', 0x131, 'I', 0x17F, 's', 0x212A, 'k', 0x1C4, 0x1C5, 0x1C6, 0x178},
    {0x3A3, 0x3C3, 0x3C2, 0x410, 0x430, 0xFF21, 0xFF41, 0x10A0, 0x10D0, 0x1E00, 0x1F80},
    {0xD800, 0xDC00, 0xDBFF, 0xDFFF, 0xD83D, 0xDE00, 'a', 0xFFFF, 0x7FF, 0x800, 0xE000},
    {0x4E2D, 0x6587, 0xFFFD, 0x3042},
};

std::vector<Zel16u> contents(Random& random, int length, int width) {
    std::vector<Zel16u> elements(static_cast<size_t>(length));
    int kind = random.below(10);
    const std::vector<Zel16u>& alphabet = random.pick(alphabets);
    Zel16u fill = random.pick(alphabet);
    for (Zel16u& element : elements) {
        if (kind == 0) {
            element = static_cast<Zel16u>(random.next());
        } else if (kind <= 3) {
            element = random.below(32) == 0 ? random.pick(alphabet) : fill;
        } else {
            element = random.pick(alphabet);
        }
        if (width == 8) element &= 0xFF;
    }
    return elements;
}

/// UTF-8 text of mixed sequence lengths, well-formed or damaged.
std::vector<Zel16u> utf8Text(Random& random, int length) {
    static const std::vector<std::vector<Zel16u>> characters = {
        {'a'},
        {'Z'},
        {0xC3, 0xA9},
        {0xD0, 0xB6},
        {0xE4, 0xB8, 0xAD},
        {0xF0, 0x9F, 0x98, 0x80},
        {0xED, 0xA0, 0x80},
        {0xF8, 0x88, 0x80, 0x80, 0x80},
        {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80},
        {0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF},
        {0xC0, 0x80},
        {0xE0, 0x80, 0x80},
        {0x80},
        {0xFF},
        {0xFE},
        {0xE4, 0xB8},
        {0xF4, 0x90, 0x80, 0x80},
        {0},
    };
    int variety = random.chance(50) ? 6 : static_cast<int>(characters.size());
    int only = random.chance(40) ? random.below(variety) : -1;
    std::vector<Zel16u> text;
    while (static_cast<int>(text.size()) < length) {
        int which = only >= 0 && !random.chance(4) ? only : random.below(variety);
        const auto& bytes = characters[static_cast<size_t>(which)];
        text.insert(text.end(), bytes.begin(), bytes.end());
    }
    if (random.chance(15) && !text.empty()) text.pop_back();
    return text;
}

}  // namespace

StringCase makeStringCase(Random& random) {
    StringCase test;
    test.function = random.below(kStringFunctionCount);
    test.width = random.chance(50) ? 8 : 16;
    if (test.function == kZero || test.function == kToUtf16) test.width = 8;
    bool wideOnly = test.function == kToUtf8 || test.function == kCompareIgnoreCase ||
                    test.function == kUpper || test.function == kLower ||
                    test.function == kUpperInPlace || test.function == kLowerInPlace;
    if (wideOnly) test.width = 16;
    int length = pickLength(random);
    test.source =
        test.function == kToUtf16 ? utf8Text(random, length) : contents(random, length, test.width);
    length = static_cast<int>(test.source.size());
    int odd = test.width == 8 ? 64 : 32;
    int unit = test.width / 8;
    test.sourceOffset = random.below(odd) * unit;
    test.secondOffset = random.below(odd) * unit;
    test.targetOffset =
        random.below(test.function == kToUtf16 ? 32 : odd) * (test.function == kToUtf16 ? 2 : unit);
    test.placement = random.below(3);
    test.value = length > 0 && random.chance(80) ? random.pick(test.source)
                                                 : random.pick(random.pick(alphabets));
    test.newValue = random.pick(random.pick(alphabets));
    switch (test.function) {
        case kFind:
        case kFindRev:
        case kFindZ: {
            // A piece of the source, whole or with its last or first element changed.
            int size = random.below(random.chance(80) ? 8 : 80);
            int at = random.below(length + 1);
            for (int i = 0; i < size && at + i < length; ++i) {
                test.second.push_back(test.source[static_cast<size_t>(at + i)]);
            }
            if (random.chance(30)) test.second = contents(random, size, test.width);
            if (random.chance(30) && !test.second.empty()) {
                (random.chance(50) ? test.second.back() : test.second.front()) ^= 1;
            }
            break;
        }
        case kCompare:
        case kCompareLatin:
        case kCompareIgnoreCase:
        case kEqual:
            test.second = test.source;
            if (random.chance(70) && length > 0) {
                Zel16u flip =
                    random.chance(60) ? Zel16u{0x20} : static_cast<Zel16u>(1 << random.below(8));
                Zel16u& changed = test.second[static_cast<size_t>(random.below(length))];
                changed = static_cast<Zel16u>(changed ^ flip);
            }
            if (random.chance(20)) test.second = contents(random, length, test.width);
            break;
        default:
            test.second = contents(random, random.below(random.chance(80) ? 6 : 70), test.width);
            if (length > 0 && !test.second.empty() && random.chance(50)) {
                test.second[0] = test.source[static_cast<size_t>(random.below(length))];
            }
            break;
    }
    test.start = random.below(length + 1);
    test.amount = random.below(length - test.start + 1);
    if (random.chance(4)) test.start = random.chance(50) ? length + 1 + random.below(3) : -1;
    if (random.chance(4)) test.amount = random.chance(50) ? INT_MAX : length + 1;
    bool aliasAllowed = test.function == kInsert || test.function == kRemove ||
                        test.function == kReplaceC || test.function == kMove ||
                        (test.function >= kUpper && test.function <= kLowerLatin) ||
                        (test.function >= kTrimC && test.function <= kTrimEndCAny);
    if (aliasAllowed && random.chance(40)) test.alias = 1;
    switch (test.function) {
        case kConcatList:
        case kConcatCList: {
            int left = length;
            int entries = random.below(8);
            for (int i = 0; i < entries; ++i) {
                test.list.push_back(random.chance(20) ? 0 : random.below(left + 1));
                left -= test.list.back();
            }
            test.amount = entries;
            if (random.chance(8)) test.badEntry = random.below(2 * entries + 1);
            break;
        }
        case kSplitC: {
            int entries = random.below(random.chance(50) ? 4 : 30);
            for (int i = 0; i < entries; ++i) test.list.push_back(random.below(40));
            test.amount = entries;
            if (random.chance(8)) test.badEntry = random.below(2 * entries + 1);
            break;
        }
        case kMove:
        case kCopy:
            test.start = random.chance(50) ? random.between(-3, 3) : random.between(-64, 64);
            break;
        case kToUtf16:
        case kToUtf8: {
            test.start = random.chance(60) ? 4 * length + 8 : random.below(length + 2);
            if (random.chance(2)) test.start = -1 - random.below(5);
            test.amount = random.chance(60) ? 0 : random.chance(80) ? 1 : 0x100;
            // A sequence that begins near the end may be read beyond it.
            for (int i = 1; i <= 5 && i <= length && test.function == kToUtf16; ++i) {
                if (test.source[static_cast<size_t>(length - i)] >= 0xC0) test.placement = 0;
            }
            break;
        }
        default:
            break;
    }
    test.instance = random.below(4);
    if (random.chance(3)) test.nulls = random.between(1, 15);
    if (random.chance(3)) test.badLength = random.between(1, 7);
    return test;
}

// ---- Reports ----

namespace {

std::string listed(const std::vector<Zel16u>& elements) {
    std::string text = "{";
    for (size_t i = 0; i < elements.size(); ++i) {
        text += (i ? "," : "") + std::to_string(elements[i]);
    }
    return text + "}";
}

}  // namespace

std::string StringCase::text() const {
    std::string entries;
    for (int entry : list) entries += (entries.empty() ? "" : ",") + std::to_string(entry);
    auto n = [](int number) { return std::to_string(number); };
    return "{k" + std::string(functionNames[function]) + ", " + n(width) + ", " + listed(source) +
           ", " + listed(second) + ", " + n(sourceOffset) + ", " + n(secondOffset) + ", " +
           n(targetOffset) + ", " + n(placement) + ", " + n(alias) + ", " + n(start) + ", " +
           n(amount) + ", " + n(value) + ", " + n(newValue) + ", " + n(nulls) + ", " +
           n(badLength) + ", {" + entries + "}, " + n(instance) + ", " + n(badEntry) + "}";
}

std::string compare(const StringCase& testCase) {
    std::function<std::string()> describeCase = [&] { return testCase.text(); };
    CrashReporter::running(&describeCase);
    std::string difference = compareAll(testCase);
    CrashReporter::running(nullptr);
    return difference;
}

StringCase shrink(const StringCase& testCase) {
    StringCase test = testCase;
    // Pieces of lists refer to the source's length, so list cases stay as they are.
    if (!test.list.empty()) return test;
    for (int round = 0; round < 4; ++round) {
        bool changed = shorten(test, &StringCase::source);
        changed |= shorten(test, &StringCase::second);
        changed |= simplify(test, &StringCase::sourceOffset, 0);
        changed |= simplify(test, &StringCase::secondOffset, 0);
        changed |= simplify(test, &StringCase::targetOffset, 0);
        changed |= simplify(test, &StringCase::placement, 0);
        changed |= simplify(test, &StringCase::start, 0);
        changed |= simplify(test, &StringCase::amount, 0);
        if (!changed) break;
    }
    return test;
}

}  // namespace differential
