// Escapes, Unicode properties and bracket classes. A class is read as a row of small tokens, so
// that the rules for "-" can be told about what stands on either side of it.
#include <cstring>
#include <string>

#include "compiler.h"
#include "regexp/unicode/unicode.h"
#include "utf8.h"

namespace model {
namespace {

bool isOctal(int c) {
    return c >= '0' && c <= '7';
}

int hexValue(int c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

int controlCharacter(int c) {
    int value = (c < 0x20 || c > 0x3F) ? c - 0x40 : c + 0x40;
    if (c >= 0x60 && c <= 0x7A) value -= 0x20;
    return value & 0xFF;
}

Escape readHex(const Pattern& pattern, int i) {
    Zel32u value = 0;
    if (pattern.at(i) == '{') {
        ++i;
        for (int digits = 0; digits < 8 && hexValue(pattern.at(i)) >= 0; ++digits, ++i) {
            value = value * 16 + static_cast<Zel32u>(hexValue(pattern.at(i)));
        }
        if (pattern.at(i) != '}') throw CompileError{zelStatusRegExpEscapeError, i};
        return {value, i + 1};
    }
    for (int digits = 0; digits < 2 && hexValue(pattern.at(i)) >= 0; ++digits, ++i) {
        value = value * 16 + static_cast<Zel32u>(hexValue(pattern.at(i)));
    }
    return {value, i};
}

}  // namespace

bool readCharacterEscape(const Pattern& pattern, int i, Escape& escape) {
    switch (pattern.at(i + 1)) {
        case 'a':
            escape = {7, i + 2};
            return true;
        case 'e':
            escape = {0x1B, i + 2};
            return true;
        case 'f':
            escape = {0x0C, i + 2};
            return true;
        case 'n':
            escape = {0x0A, i + 2};
            return true;
        case 'r':
            escape = {0x0D, i + 2};
            return true;
        case 't':
            escape = {0x09, i + 2};
            return true;
        case 'v':
            escape = {0x0B, i + 2};
            return true;
        case 'c':
            if (i + 2 >= pattern.length) {
                throw CompileError{zelStatusRegExpEscapeError, pattern.length};
            }
            escape = {static_cast<Zel32u>(controlCharacter(pattern.at(i + 2))), i + 3};
            return true;
        case 'x':
            escape = readHex(pattern, i + 2);
            return true;
        default:
            return false;
    }
}

Escape readOctal(const Pattern& pattern, int i, int digits) {
    Zel32u value = 0;
    for (; digits > 0 && isOctal(pattern.at(i)); --digits, ++i) {
        value = value * 8 + static_cast<Zel32u>(pattern.at(i) - '0');
    }
    return {value & 0xFF, i};
}

// ---- Properties ----

namespace {

struct CategoryName {
    const char* name;
    int value;
};

constexpr CategoryName categories[] = {
    {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Cn", 0x2010}, {"Co", 0x2004}, {"Cs", 0x2008},
    {"L", 0x80},    {"L&", 0x87},   {"Ll", 0x81},   {"Lm", 0x88},   {"Lo", 0x90},   {"Lt", 0x84},
    {"Lu", 0x82},   {"M", 0x100},   {"Mc", 0x102},  {"Me", 0x104},  {"Mn", 0x101},  {"N", 0x800},
    {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},  {"P", 0x1000},  {"Pc", 0x1020}, {"Pd", 0x1001},
    {"Pe", 0x1004}, {"Pf", 0x1010}, {"Pi", 0x1008}, {"Po", 0x1040}, {"Ps", 0x1002}, {"S", 0x400},
    {"Sc", 0x402},  {"Sk", 0x404},  {"Sm", 0x401},  {"So", 0x408},  {"Z", 0x200},   {"Zl", 0x202},
    {"Zp", 0x204},  {"Zs", 0x201},
};

Node makeNode(Zel32u kind, int value = 0, int count = 0, int extra = 0) {
    return Node{kind, value, count, extra, nullptr};
}

bool findCategory(const std::string& name, int& value) {
    for (const CategoryName& category : categories) {
        if (name == category.name) {
            value = category.value;
            return true;
        }
    }
    return false;
}

bool findProperty(const std::string& name, int negated, Node& node) {
    int category;
    if (findCategory(name, category)) {
        node = makeNode(zel::NodeUnicodeCategory, category, negated);
        return true;
    }
    if (name == "Any") {
        node = makeNode(zel::NodeUnicodeProperty, 0, 0x10FFFF, negated);
        return true;
    }
    if (!name.empty() && name[0] == 'I') {
        for (const zel::UniBlock& block : zel::UniBlockTbl) {
            if (std::strncmp(block.name, name.c_str(), name.size()) == 0) {
                node = makeNode(zel::NodeUnicodeProperty, static_cast<int>(block.first),
                                static_cast<int>(block.last), negated);
                return true;
            }
        }
    }
    for (const zel::UniScript& script : zel::UniScriptTbl) {
        if (name == script.name) {
            node = makeNode(zel::NodeUnicodeScript, 1, negated, script.pairCount);
            node.data = script.pairs;
            return true;
        }
    }
    return false;
}

}  // namespace

Node readProperty(const Pattern& pattern, int i, int& end) {
    int negated = pattern.at(i + 1) == 'P' ? 1 : 0;
    i += 2;
    int first = pattern.at(i);
    if (first != 0 && std::strchr("CLMNPSZ", first)) {
        int category = 0;
        findCategory(std::string(1, static_cast<char>(first)), category);
        end = i + 1;
        return makeNode(zel::NodeUnicodeCategory, category, negated);
    }
    if (first != '{') throw CompileError{zelStatusRegExpEscapeError, i};
    ++i;
    if (pattern.at(i) == '^') {
        if (negated) throw CompileError{zelStatusRegExpEscapeError, i};
        negated = 1;
        ++i;
    }
    int close = pattern.find(i, "}");
    if (close < 0) throw CompileError{zelStatusRegExpEscapeError, pattern.length};
    Node node;
    if (!findProperty(std::string(pattern.text + i, pattern.text + close), negated, node)) {
        throw CompileError{zelStatusRegExpEscapeError, i};
    }
    end = close + 1;
    return node;
}

// ---- Bracket classes ----

namespace {

struct PosixClass {
    const char* name;
    std::vector<Node> members;
};

Node range(int low, int high) {
    return makeNode(zel::NodeRange, low, high);
}
Node letter(int value) {
    return makeNode(zel::NodeLetter, value);
}

const std::vector<PosixClass>& posixClasses() {
    static const std::vector<PosixClass> classes = {
        {"alnum", {range('a', 'z'), range('A', 'Z'), range('0', '9')}},
        {"alpha", {range('a', 'z'), range('A', 'Z')}},
        {"ascii", {range(0x00, 0x7F)}},
        {"blank", {letter(' '), letter('\t')}},
        {"cntrl", {range(0x00, 0x1F)}},
        {"digit", {range('0', '9')}},
        {"graph", {range(0x21, 0xFF)}},
        {"lower", {range('a', 'z')}},
        {"print", {range(0x20, 0xFF)}},
        {"punct", {range(0x20, 0x2F), range(0x3A, 0x40), range(0x5B, 0x60), range(0x7B, 0xFF)}},
        {"space", {range(0x09, 0x0D), letter(' ')}},
        {"upper", {range('A', 'Z')}},
        {"xdigit", {range('a', 'f'), range('A', 'F'), range('0', '9')}},
    };
    return classes;
}

/// The members of the class part from the "[" at `i` to the "]" at `end`.
std::vector<Node> readClassPart(const Pattern& pattern, int i, int end) {
    CompileError bad{zelStatusRegExpCharClassError, i};
    int start = i + 2;
    bool negated = pattern.at(start) == '^';
    if (negated) ++start;
    if (start > end - 1) throw bad;
    std::string name(pattern.text + start, pattern.text + end - 1);
    if (name == "word") {
        return {negated ? makeNode(zel::NodeLetterRange, 'W', 0, -1)
                        : makeNode(zel::NodeLetterRange, 'w')};
    }
    for (const PosixClass& posix : posixClasses()) {
        if (name != posix.name) continue;
        std::vector<Node> members = posix.members;
        for (Node& member : members) member.extra = negated ? -1 : 0;
        return members;
    }
    throw bad;
}

struct ClassToken {
    enum Type { End, Character, Dash, Other } type;
    Zel32u value = 0;           // of a character
    int offset = 0;             // its first byte
    std::vector<Node> nodes{};  // of anything else
};

struct ClassReader {
    const Pattern& pattern;
    int i;
    bool first = true;    // directly behind "[" or "[^"
    bool quoted = false;  // between "\Q" and "\E"

    ClassToken readCharacter() {
        int c = pattern.at(i);
        int start = i;
        if (c < 0x80) {
            ++i;
            return {ClassToken::Character, static_cast<Zel32u>(c), start};
        }
        const Zel8u* bytes = reinterpret_cast<const Zel8u*>(pattern.text) + i;
        Utf8Character decoded = decodeUtf8(bytes, pattern.length - i);
        if (!decoded.valid) throw CompileError{zelStatusRegExpCharClassError, i};
        i += decoded.length;
        return {ClassToken::Character, static_cast<Zel32u>(decoded.value), start};
    }

    ClassToken readEscape() {
        int start = i;
        int c = pattern.at(i + 1);
        Escape escape;
        if (readCharacterEscape(pattern, i, escape)) {
            i = escape.end;
            return {ClassToken::Character, escape.value, start};
        }
        if (isOctal(c)) {
            escape = readOctal(pattern, i + 1, 3);
            i = escape.end;
            return {ClassToken::Character, escape.value, start};
        }
        switch (c) {
            case 'b':
                i += 2;
                return {ClassToken::Character, 8, start};
            case 'd':
            case 'D':
            case 's':
            case 'S':
            case 'w':
            case 'W':
                i += 2;
                return {ClassToken::Other, 0, start, {makeNode(zel::NodeLetterRange, c)}};
            case 'X':
                i += 2;
                return {ClassToken::Other, 0, start, {makeNode(zel::NodeCombLetter)}};
            case 'p':
            case 'P': {
                Node node = readProperty(pattern, i, i);
                return {ClassToken::Other, 0, start, {node}};
            }
            default: {
                ++i;
                ClassToken token = readCharacter();
                token.offset = start;
                return token;
            }
        }
    }

    ClassToken next() {
        bool atFirst = first;
        first = false;
        for (;;) {
            if (i >= pattern.length) {
                throw CompileError{zelStatusRegExpCharClassError, pattern.length};
            }
            if (pattern.startsWith(i, "\\E")) {
                quoted = false;
                i += 2;
                atFirst = false;
                continue;
            }
            if (quoted) return readCharacter();
            int c = pattern.at(i);
            if (c == '\\') {
                if (i + 1 >= pattern.length) {
                    throw CompileError{zelStatusRegExpEscapeError, pattern.length};
                }
                if (pattern.at(i + 1) != 'Q') return readEscape();
                quoted = true;
                i += 2;
                atFirst = false;
                continue;
            }
            if (c == ']' && !atFirst) return {ClassToken::End, 0, i};
            if (c == '-') {
                ++i;
                return {ClassToken::Dash, '-', i - 1};
            }
            int partEnd = c == '[' ? classPartEnd(pattern, i) : -1;
            if (partEnd >= 0) {
                ClassToken token{ClassToken::Other, 0, i, readClassPart(pattern, i, partEnd)};
                i = partEnd + 1;
                return token;
            }
            return readCharacter();
        }
    }
};

Node characterNode(Zel32u value) {
    return makeNode(value < 0x100 ? zel::NodeLetter : zel::NodeLetterUtf8, static_cast<int>(value));
}

}  // namespace

ClassContent readClass(const Pattern& pattern, int i) {
    ClassContent content{};
    ++i;
    if (pattern.at(i) == '^') {
        content.negated = true;
        ++i;
    }
    ClassReader reader{pattern, i};
    std::vector<Node>& members = content.members;
    bool afterSingle = false;  // the last member is a single character
    for (;;) {
        ClassToken token = reader.next();
        if (token.type == ClassToken::End) break;
        if (token.type == ClassToken::Other) {
            members.insert(members.end(), token.nodes.begin(), token.nodes.end());
            afterSingle = false;
            continue;
        }
        if (token.type == ClassToken::Dash && afterSingle) {
            ClassReader behind = reader;
            ClassToken upper = behind.next();
            if (upper.type == ClassToken::Character || upper.type == ClassToken::Dash) {
                Zel32u low = static_cast<Zel32u>(members.back().value);
                if (upper.value < low) {
                    throw CompileError{zelStatusRegExpCharClassError, upper.offset};
                }
                members.back() = range(static_cast<int>(low), static_cast<int>(upper.value));
                afterSingle = false;
                reader.i = behind.i;
                reader.quoted = behind.quoted;
                continue;
            }
        }
        members.push_back(characterNode(token.value));
        afterSingle = true;
    }
    bool onlyCaret = !content.negated && members.size() == 1 &&
                     members[0].kind == zel::NodeLetter && members[0].value == '^';
    if (members.empty() || onlyCaret) {
        throw CompileError{zelStatusRegExpGroupingError, reader.i};
    }
    content.end = reader.i + 1;
    return content;
}

}  // namespace model
