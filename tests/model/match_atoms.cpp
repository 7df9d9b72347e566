// Single characters and their quantifiers: bytes, class shorthands, UTF-8 letters, Unicode
// properties, combining sequences and bracket classes. The lazy routines for letters and shorthands
// never take back what they added to the length of the whole match; the greedy ones always do.
#include <algorithm>

#include "matcher.h"
#include "regexp/unicode/unicode.h"

namespace model {

bool sameByte(int textByte, int patternByte, bool ignoreCase) {
    bool letter = (textByte >= 'A' && textByte <= 'Z') || (textByte >= 'a' && textByte <= 'z');
    if (ignoreCase && letter) return textByte == patternByte || (textByte ^ patternByte) == 0x20;
    return textByte == patternByte;
}

bool isWordByte(int byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= 'a' && byte <= 'z') || byte == '_';
}

namespace {

int letterAt(const Context& c, int node) {
    return c.nodes[node].value & 0xFF;
}

/// The byte that the node behind a lazy pair needs, or -1 when nothing is known about it.
int nextByteHint(const Context& c, int atom) {
    if (atom + 2 >= c.end || c.nodes[atom + 2].kind != zel::NodeLetter || c.ignoreCase()) return -1;
    return letterAt(c, atom + 2);
}

/// A class shorthand on a byte, or on the first byte of a longer character.
bool inShorthand(int letter, int byte, bool dotAll) {
    bool digit = byte >= '0' && byte <= '9';
    bool space = byte == 0x09 || byte == 0x0A || byte == 0x0C || byte == 0x0D || byte == 0x20;
    switch (letter) {
        case 'd':
            return digit;
        case 'D':
            return !digit;
        case 's':
            return space;
        case 'S':
            return !space;
        case 'w':
            return isWordByte(byte);
        case 'W':
            return !isWordByte(byte);
        case '.':
            return dotAll || byte != 0x0A;
        default:
            return false;
    }
}

// ---- Unicode tests ----

const zel::UniRange* rangeOf(int codePoint) {
    for (const zel::UniRange& range : zel::UniRangeTbl) {
        if (codePoint >= static_cast<int>(range.first) &&
            codePoint <= static_cast<int>(range.last)) {
            return &range;
        }
    }
    return nullptr;
}

struct TableEntry {
    bool beyond;                 // behind the last entry of the table
    const zel::UniEntry* entry;  // null when the code point is not listed
};

/// The first entry that is not below the code point decides.
TableEntry tableEntry(int codePoint) {
    const zel::UniEntry* end = zel::UniTbl + zel::kUniTblSize;
    const zel::UniEntry* candidate = zel::UniTbl;
    if (codePoint > 0) {
        candidate = std::lower_bound(zel::UniTbl + 1, end, codePoint,
                                     [](const zel::UniEntry& entry, int value) {
                                         return static_cast<int>(entry.codePoint) < value;
                                     });
        if (candidate == end) return {true, nullptr};
    }
    bool present = static_cast<int>(candidate->codePoint) == codePoint;
    return {false, present ? candidate : nullptr};
}

int fold(int codePoint) {
    if (rangeOf(codePoint)) return codePoint;
    TableEntry found = tableEntry(codePoint);
    if (found.beyond) return 0;
    if (found.entry && found.entry->lower != 0) return static_cast<int>(found.entry->lower);
    return codePoint;
}

bool inCategory(int codePoint, Zel32u mask, bool negated) {
    for (const zel::UniRange& range : zel::UniRangeTbl) {
        if (codePoint < static_cast<int>(range.first) || codePoint > static_cast<int>(range.last)) {
            continue;
        }
        if (!negated && (range.category & mask) == mask) return true;
        if (negated && (mask & ~range.category) != 0) return true;
    }
    TableEntry found = tableEntry(codePoint);
    if (found.beyond) return false;
    if (!found.entry) return mask == 0x2010;
    constexpr Zel32u minor = 0x7F;
    Zel32u category = found.entry->category;
    bool sameMajor = (category & ~minor) == (mask & ~minor);
    bool wholeMajor = (mask & minor) == 0;
    bool sharesMinor = (category & mask & minor) != 0;
    if (!negated) return sameMajor && (wholeMajor || sharesMinor);
    if (!sameMajor) return true;
    return !wholeMajor && !sharesMinor;
}

bool inScript(const Node& node, int codePoint) {
    const auto* pairs = static_cast<const zel::UniPair*>(node.data);
    bool inside = false;
    for (int i = 0; i < node.extra; ++i) {
        if (codePoint >= static_cast<int>(pairs[i].first) &&
            codePoint <= static_cast<int>(pairs[i].last)) {
            inside = true;
        }
    }
    return inside != (node.count != 0);
}

constexpr Zel32u markBit = 0x100;

bool isBase(int codePoint) {
    if (const zel::UniRange* range = rangeOf(codePoint)) {
        if ((range->category & markBit) == 0) return true;
    }
    const zel::UniEntry* entry = tableEntry(codePoint).entry;
    return entry && (entry->category & 0xFFFFFF80) != markBit;
}

bool isMark(int codePoint) {
    if (const zel::UniRange* range = rangeOf(codePoint)) {
        if ((range->category & markBit) != 0) return true;
    }
    const zel::UniEntry* entry = tableEntry(codePoint).entry;
    return entry && (entry->category & 0xFFFFFF80) == markBit;
}

/// The combining-sequence rules read a malformed lead byte as a signed value.
int combCodePoint(const Utf8Character& character) {
    return character.valid ? character.value
                           : static_cast<int>(static_cast<signed char>(character.value));
}

/// Length of the character at `text` and of the marks behind it; `available` is at least 1.
int combLength(const Zel8u* text, int available) {
    int length = decodeUtf8(text, available).length;
    while (length < available) {
        Utf8Character next = decodeUtf8(text + length, available - length);
        if (!isMark(combCodePoint(next))) break;
        length += next.length;
    }
    return length;
}

/// Whether a decoded character passes a UTF-8 letter or Unicode property node.
bool passes(const Node& node, int codePoint, bool ignoreCase) {
    switch (node.kind) {
        case zel::NodeLetterUtf8:
            return ignoreCase ? fold(codePoint) == fold(node.value) : codePoint == node.value;
        case zel::NodeUnicodeCategory:
            return inCategory(codePoint, static_cast<Zel32u>(node.value), node.count != 0);
        case zel::NodeUnicodeProperty:
            return (codePoint >= node.value && codePoint <= node.count) != (node.extra != 0);
        case zel::NodeUnicodeScript:
            return inScript(node, codePoint);
        default:
            return false;
    }
}

/// The bytes that one repetition of a UTF-8 letter, Unicode or combining node takes at `text`, or 0
/// when it does not match there.
int repetition(const Node& node, const Zel8u* text, int available, bool ignoreCase) {
    if (available < 1) return 0;
    Utf8Character character = decodeUtf8(text, available);
    if (node.kind == zel::NodeCombLetter) {
        return isBase(combCodePoint(character)) ? combLength(text, available) : 0;
    }
    return passes(node, character.value, ignoreCase) ? character.length : 0;
}

}  // namespace

// ---- One byte ----

int letterMax(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int letter = letterAt(c, n);
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool ignoreCase = c.ignoreCase();
    int count = 0;
    if (min != 0) {
        if (min > length) return 1;
        for (; count < min; ++count) {
            if (!sameByte(text[count], letter, ignoreCase)) return 1;
        }
    }
    int limit = smaller(max, length);
    while (count < limit && sameByte(text[count], letter, ignoreCase)) ++count;
    c.consumed() += count;
    while (count >= min) {
        if (runFrom(n + 2, text + count, length - count, c) == 0) return 0;
        c.consumed() -= 1;
        count -= 1;
    }
    c.consumed() -= count;
    return 1;
}

int letterMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int letter = letterAt(c, n);
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool ignoreCase = c.ignoreCase();
    int hint = nextByteHint(c, n);
    int count = 0;
    if (min != 0) {
        if (length < min) return 1;
        for (; count < min; ++count) {
            if (!sameByte(text[count], letter, ignoreCase)) return 1;
        }
        c.consumed() += min;
    }
    if (count > smaller(max, length)) return 1;
    for (;;) {
        if (hint < 0 || text[count] == hint) {
            if (runFrom(n + 2, text + count, length - count, c) == 0) return 0;
        }
        if (count == length || !sameByte(text[count], letter, ignoreCase)) return 1;
        c.consumed() += 1;
        count += 1;
        if (count > smaller(max, length)) return 1;
    }
}

int anyByteMax(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int min = c.nodes[n + 1].value;
    if (length < min) return 1;
    int count = smaller(c.nodes[n + 1].count, length);
    c.consumed() += count;
    for (; count >= min; --count) {
        if (runFrom(n + 2, text + count, length - count, c) == 0) return 0;
        c.consumed() -= 1;
    }
    c.consumed() -= count;
    return 1;
}

int anyByteMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int min = c.nodes[n + 1].value;
    if (length < min) return 1;
    int hint = nextByteHint(c, n);
    int added = min;
    c.consumed() += min;
    for (int count = min; count <= smaller(c.nodes[n + 1].count, length); ++count) {
        if (hint < 0 || text[count] == hint) {
            if (runFrom(n + 2, text + count, length - count, c) == 0) return 0;
        }
        c.consumed() += 1;
        added += 1;
    }
    c.consumed() -= added;
    return 1;
}

// ---- Class shorthands ----

int letterRange(const Zel8u* text, int length, Context& c) {
    if (length < 1) return 1;
    Utf8Character character = decodeUtf8(text, length);
    if (!inShorthand(c.nodes[c.node].value, text[0], c.dotAll())) return 1;
    c.consumed() += character.length;
    if (runFrom(c.node + 1, text + character.length, length - character.length, c) == 0) return 0;
    c.consumed() -= character.length;
    return 1;
}

int letterRangeMax(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int letter = c.nodes[n].value;
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool dotAll = c.dotAll();
    int count = 0;
    int offset = 0;
    if (min > length) return 1;
    for (; count < min; ++count) {
        if (offset >= length || !inShorthand(letter, text[offset], dotAll)) return 1;
        offset += decodeUtf8(text + offset, length - offset).length;
    }
    while (count < smaller(max, length) && offset < length &&
           inShorthand(letter, text[offset], dotAll)) {
        offset += decodeUtf8(text + offset, length - offset).length;
        ++count;
    }
    c.consumed() += offset;
    while (count >= min) {
        if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        // What is given back is the length of the character behind the run, not of its last one.
        int back = offset < length ? decodeUtf8(text + offset, length - offset).length : 1;
        c.consumed() -= back;
        offset -= back;
        count -= 1;
        if (text + offset < c.textStart) break;
    }
    c.consumed() -= offset;
    return 1;
}

int letterRangeMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int letter = c.nodes[n].value;
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool dotAll = c.dotAll();
    int hint = nextByteHint(c, n);
    int count = 0;
    int offset = 0;
    if (min != 0) {
        if (length < min) return 1;
        for (; count < min; ++count) {
            if (offset >= length || !inShorthand(letter, text[offset], dotAll)) return 1;
            offset += decodeUtf8(text + offset, length - offset).length;
        }
        c.consumed() += offset;
    }
    if (count > smaller(max, length)) return 1;
    for (;;) {
        if (hint < 0 || text[offset] == hint) {
            if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        }
        if (offset >= length || !inShorthand(letter, text[offset], dotAll)) return 1;
        int taken = decodeUtf8(text + offset, length - offset).length;
        c.consumed() += taken;
        offset += taken;
        count += 1;
        if (count > smaller(max, length)) return 1;
    }
}

// ---- UTF-8 letters, Unicode properties, combining sequences ----

int utf8Single(const Zel8u* text, int length, Context& c) {
    int taken = repetition(c.nodes[c.node], text, length, c.ignoreCase());
    if (taken == 0) return 1;
    c.consumed() += taken;
    if (runFrom(c.node + 1, text + taken, length - taken, c) == 0) return 0;
    c.consumed() -= taken;
    return 1;
}

int utf8Max(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    const Node& node = c.nodes[n];
    int min = c.nodes[n + 1].value;
    int max = c.nodes[n + 1].count;
    bool ignoreCase = c.ignoreCase();
    std::vector<int> ends = {0};  // offsets behind 0, 1, 2 ... repetitions
    auto takeOne = [&] {
        int taken = repetition(node, text + ends.back(), length - ends.back(), ignoreCase);
        if (taken > 0) ends.push_back(ends.back() + taken);
        return taken > 0;
    };
    auto count = [&] { return static_cast<int>(ends.size()) - 1; };
    while (count() < min) {
        if (!takeOne()) return 1;
    }
    while (count() < smaller(max, length) && takeOne()) continue;
    c.consumed() += ends.back();
    for (;;) {
        if (runFrom(n + 2, text + ends.back(), length - ends.back(), c) == 0) return 0;
        if (count() == min) break;
        c.consumed() -= ends[ends.size() - 1] - ends[ends.size() - 2];
        ends.pop_back();
    }
    c.consumed() -= ends.back();
    return 1;
}

namespace {

/// The mandatory repetitions of a lazy routine; false when one is missing.
bool takeMandatory(const Zel8u* text, int length, Context& c, int n, int& offset) {
    int min = c.nodes[n + 1].value;
    for (int count = 0; count < min; ++count) {
        int taken = repetition(c.nodes[n], text + offset, length - offset, c.ignoreCase());
        if (taken == 0) return false;
        offset += taken;
    }
    if (min > 0) c.consumed() += offset;
    return true;
}

}  // namespace

int utf8LetterMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    const Node& node = c.nodes[n];
    int max = c.nodes[n + 1].count;
    bool ignoreCase = c.ignoreCase();
    bool hint = false;
    if (n + 2 < c.end && !ignoreCase) {
        Zel32u next = c.nodes[n + 2].kind;
        hint = next == zel::NodeLetter || next == zel::NodeLetterUtf8 ||
               next == zel::NodeUnicodeCategory || next == zel::NodeUnicodeProperty ||
               next == zel::NodeUnicodeScript;
    }
    int offset = 0;
    if (!takeMandatory(text, length, c, n, offset)) return 1;
    int count = c.nodes[n + 1].value;
    if (count > smaller(max, length)) return 1;
    for (;;) {
        if (offset >= length) return 1;
        Utf8Character character = decodeUtf8(text + offset, length - offset);
        // The hint compares with the quantified letter itself.
        if (!hint || character.value == node.value) {
            if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        }
        if (!passes(node, character.value, ignoreCase)) {
            // A character that is not the letter counts as success of the whole program.
            c.reached = text + offset;
            return 0;
        }
        c.consumed() += character.length;
        offset += character.length;
        count += 1;
        if (count > smaller(max, length)) return 1;
    }
}

int unicodeMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int max = c.nodes[n + 1].count;
    int offset = 0;
    if (!takeMandatory(text, length, c, n, offset)) return 1;
    int count = c.nodes[n + 1].value;
    if (count > smaller(max, length)) return 1;
    for (;;) {
        if (offset >= length) return 1;
        Utf8Character character = decodeUtf8(text + offset, length - offset);
        if (passes(c.nodes[n], character.value, c.ignoreCase())) {
            if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        }
        // A character that fails the test is stepped over.
        c.consumed() += character.length;
        offset += character.length;
        count += 1;
        if (count > smaller(max, length)) return 1;
    }
}

int combMin(const Zel8u* text, int length, Context& c) {
    int n = c.node;
    int max = c.nodes[n + 1].count;
    int offset = 0;
    if (!takeMandatory(text, length, c, n, offset)) return 1;
    int count = c.nodes[n + 1].value;
    if (count > smaller(max, length)) return 1;
    for (;;) {
        if (runFrom(n + 2, text + offset, length - offset, c) == 0) return 0;
        if (offset >= length) return 1;
        int taken = combLength(text + offset, length - offset);
        c.consumed() += taken;
        offset += taken;
        count += 1;
        if (count > smaller(max, length)) return 1;
    }
}

// ---- Bracket classes ----

namespace {

bool inRange(const Node& member, const Utf8Character& character, bool ignoreCase) {
    Zel32u low = static_cast<Zel32u>(member.value);
    Zel32u high = static_cast<Zel32u>(member.count);
    auto inside = [&](Zel32u value) { return value >= low && value <= high; };
    Zel32u value = static_cast<Zel32u>(character.value);
    if (inside(value)) return true;
    if (!ignoreCase) return false;
    if (low < 0x100 && high < 0x100 && character.length == 1) {
        bool letter = (value >= 'A' && value <= 'Z') || (value >= 'a' && value <= 'z');
        return letter && inside(value ^ 0x20);
    }
    const zel::UniEntry* entry = tableEntry(character.value).entry;
    if (!entry) return false;
    return (entry->upper != 0 && inside(entry->upper)) ||
           (entry->lower != 0 && inside(entry->lower));
}

bool isMember(const Node& member, const Utf8Character& character, int firstByte, const Context& c) {
    switch (member.kind) {
        case zel::NodeLetter:
            return sameByte(character.value, member.value, c.ignoreCase());
        case zel::NodeRange:
            return inRange(member, character, c.ignoreCase());
        case zel::NodeLetterRange:
            return inShorthand(member.value, firstByte, c.dotAll());
        case zel::NodeCombLetter:
            return isBase(combCodePoint(character));
        default:
            return passes(member, character.value, c.ignoreCase());
    }
}

/// The bytes of the character at `text` when it is in the class `node`, else 0.
int inClass(int node, const Zel8u* text, int length, const Context& c) {
    // In byte format the character is one byte, whatever follows it.
    Utf8Character character = decodeUtf8(text, c.format == zel::kFormatUtf8 ? length : 1);
    const Node& head = c.nodes[node];
    int accumulator = -1;
    for (int k = node + 1; k <= node + head.count && accumulator < 0; ++k) {
        int result = isMember(c.nodes[k], character, text[0], c) ? 0 : -1;
        // A property member holds its own negation in `extra`; only all bits set inverts here.
        accumulator &= result ^ c.nodes[k].extra;
    }
    return (accumulator ^ head.value) >= 0 ? character.length : 0;
}

int behindClass(int node, const Context& c) {
    return node + 1 + c.nodes[node].count;
}

}  // namespace

int classMax(const Zel8u* text, int length, Context& c, int minLeft, int maxLeft) {
    int n = c.node;
    if (minLeft > 0 && length < 1) return 1;
    if (maxLeft > 0 && length > 0) {
        int taken = inClass(n, text, length, c);
        if (taken > 0) {
            c.consumed() += taken;
            if (classMax(text + taken, length - taken, c, minLeft - 1, maxLeft - 1) == 0) return 0;
            c.consumed() -= taken;
            if (minLeft - 1 >= 0) return 1;
        } else if (minLeft > 0) {
            return 1;
        }
    }
    int next = behindClass(n, c);
    if (next < c.end && c.nodes[next].kind == zel::NodeQuantifierMax) ++next;
    return runFrom(next, text, length, c);
}

int classMin(const Zel8u* text, int length, Context& c, int min, int max) {
    int n = c.node;
    int rest = behindClass(n, c) + 1;
    int offset = 0;
    for (int count = 0;; ++count) {
        if (count >= min && runFrom(rest, text + offset, length - offset, c) == 0) return 0;
        int taken = 0;
        if (count < max && offset < length) taken = inClass(n, text + offset, length - offset, c);
        if (taken == 0) break;
        c.consumed() += taken;
        offset += taken;
    }
    c.consumed() -= offset;
    return 1;
}

}  // namespace model
