// The property escapes "\p" and "\P": a general category, everything, a block or a script. Names
// are compared whole, except that a block is found by any beginning of its name.
#include <string.h>

#include "regexp/compile/compiler.h"
#include "regexp/unicode/unicode.h"

namespace zel {
namespace {

/// A major category and the letters of its minor ones, each with its own bit in this order.
struct MajorCategory {
    char letter;
    int value;
    const char* minors;
};

constexpr MajorCategory kMajorCategories[] = {
    {'L', 0x80, "lutmo"}, {'M', 0x100, "nce"},      {'Z', 0x200, "slp"},    {'S', 0x400, "mcko"},
    {'N', 0x800, "dlo"},  {'P', 0x1000, "dseifco"}, {'C', 0x2000, "cfosn"},
};

/// The value of the category of that name, or 0.
int findCategory(const char* name, size_t length) {
    if (length != 1 && length != 2) return 0;
    for (const MajorCategory& major : kMajorCategories) {
        if (major.letter != name[0]) continue;
        if (length == 1) return major.value;
        if (major.letter == 'L' && name[1] == '&') return 0x87;  // Ll, Lu and Lt
        const char* const minor = strchr(major.minors, name[1]);
        return minor != nullptr ? major.value | 1 << (minor - major.minors) : 0;
    }
    return 0;
}

/// The negation flag is in `count` for categories and scripts but in `extra` for ranges.
bool makeNode(const char* name, size_t length, int negated, Node& node) {
    if (const int category = findCategory(name, length)) {
        node = {NodeUnicodeCategory, category, negated, 0, nullptr};
        return true;
    }
    if (length == 3 && memcmp(name, "Any", 3) == 0) {
        node = {NodeUnicodeProperty, 0, 0x10FFFF, negated, nullptr};
        return true;
    }
    if (const UniBlock* block = name[0] == 'I' ? findUniBlock(name, length) : nullptr) {
        node = {NodeUnicodeProperty, static_cast<int>(block->first), static_cast<int>(block->last),
                negated, nullptr};
        return true;
    }
    if (const UniScript* script = findUniScript(name, length)) {
        node = {NodeUnicodeScript, 1, negated, script->pairCount, script->pairs};
        return true;
    }
    return false;
}

}  // namespace

/// Reads a property escape into a node; p is at its letter and ends behind it.
ZelStatus Compiler::readProperty(const Zel8u*& p, Node& node) {
    int negated = *p == 'P' ? 1 : 0;
    ++p;
    if (*p != '{') {
        const int category = findCategory(reinterpret_cast<const char*>(p), 1);
        if (category == 0) return fail(zelStatusRegExpEscapeError, p);
        node = {NodeUnicodeCategory, category, negated, 0, nullptr};
        ++p;
        return zelStatusOk;
    }
    ++p;
    if (*p == '^') {
        if (negated != 0) return fail(zelStatusRegExpEscapeError, p);
        negated = 1;
        ++p;
    }
    const char* const text = reinterpret_cast<const char*>(p);
    size_t length = 0;
    while (text[length] != '\0' && text[length] != '}') ++length;
    if (text[length] == '\0') return fail(zelStatusRegExpEscapeError, p + length);
    if (!makeNode(text, length, negated, node)) return fail(zelStatusRegExpEscapeError, p);
    p += length + 1;
    return zelStatusOk;
}

}  // namespace zel
