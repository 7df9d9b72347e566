// The property escapes "\p" and "\P": a general category, everything, a block or a script. Names
// are compared whole, except that a block is found by any beginning of its name.
#include <string.h>

#include "regexp/compile/compiler.h"
#include "regexp/unicode/unicode.h"

namespace zel {
namespace {

struct Category {
    char name[3];
    int value;
};

/// In the order in which names are tried.
constexpr Category kCategories[] = {
    {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Cn", 0x2010}, {"Co", 0x2004}, {"Cs", 0x2008},
    {"L", 0x80},    {"L&", 0x87},   {"Ll", 0x81},   {"Lm", 0x88},   {"Lo", 0x90},   {"Lt", 0x84},
    {"Lu", 0x82},   {"M", 0x100},   {"Mc", 0x102},  {"Me", 0x104},  {"Mn", 0x101},  {"N", 0x800},
    {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},  {"P", 0x1000},  {"Pc", 0x1020}, {"Pd", 0x1001},
    {"Pe", 0x1004}, {"Pf", 0x1010}, {"Pi", 0x1008}, {"Po", 0x1040}, {"Ps", 0x1002}, {"S", 0x400},
    {"Sc", 0x402},  {"Sk", 0x404},  {"Sm", 0x401},  {"So", 0x408},  {"Z", 0x200},   {"Zl", 0x202},
    {"Zp", 0x204},  {"Zs", 0x201},
};

/// A name in the pattern; not terminated.
struct Name {
    const char* text;
    size_t length;

    bool equals(const char* other) const {
        return strncmp(text, other, length) == 0 && other[length] == '\0';
    }
    bool begins(const char* other) const { return strncmp(text, other, length) == 0; }
};

const Category* findCategory(const Name& name) {
    if (name.length > 2) return nullptr;
    for (const Category& category : kCategories) {
        if (name.equals(category.name)) return &category;
    }
    return nullptr;
}

const UniBlock* findBlock(const Name& name) {
    if (name.text[0] != 'I') return nullptr;
    for (const UniBlock& block : UniBlockTbl) {
        if (name.begins(block.name)) return &block;
    }
    return nullptr;
}

const UniScript* findScript(const Name& name) {
    for (const UniScript& script : UniScriptTbl) {
        if (name.equals(script.name)) return &script;
    }
    return nullptr;
}

/// The negation flag is in `count` for categories and scripts but in `extra` for ranges.
bool makeNode(const Name& name, int negated, Node& node) {
    if (const Category* category = findCategory(name)) {
        node = {NodeUnicodeCategory, category->value, negated, 0, nullptr};
        return true;
    }
    if (name.equals("Any")) {
        node = {NodeUnicodeProperty, 0, 0x10FFFF, negated, nullptr};
        return true;
    }
    if (const UniBlock* block = findBlock(name)) {
        node = {NodeUnicodeProperty, static_cast<int>(block->first), static_cast<int>(block->last),
                negated, nullptr};
        return true;
    }
    if (const UniScript* script = findScript(name)) {
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
        const char letter[2] = {static_cast<char>(*p), '\0'};
        const Category* category = *p != '\0' ? findCategory({letter, 1}) : nullptr;
        if (category == nullptr) return fail(zelStatusRegExpEscapeError, p);
        node = {NodeUnicodeCategory, category->value, negated, 0, nullptr};
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
    const size_t length = strcspn(text, "}");
    if (text[length] == '\0') return fail(zelStatusRegExpEscapeError, p + length);
    if (length == 0 || !makeNode({text, length}, negated, node)) {
        return fail(zelStatusRegExpEscapeError, p);
    }
    p += length + 1;
    return zelStatusOk;
}

}  // namespace zel
