// Bracket classes. The class node is followed by one node for each member; a class of one letter or
// shorthand is replaced by that member at its end. A "-" waits until the next member shows whether
// it joins two characters to a range or is a literal itself.
#include <string.h>

#include "regexp/compile/compiler.h"
#include "regexp/compile/escape.h"
#include "string/utf8.h"

namespace zel {
namespace {

/// A named class: its byte ranges in the order of its members. A range of one byte is a letter.
struct PosixClass {
    const char* name;
    int rangeCount;
    struct {
        int low;
        int high;
    } ranges[4];
};

/// "word" is not in the list: it is the shorthand of that name.
constexpr PosixClass kPosixClasses[] = {
    {"alnum", 3, {{'a', 'z'}, {'A', 'Z'}, {'0', '9'}}},
    {"alpha", 2, {{'a', 'z'}, {'A', 'Z'}}},
    {"ascii", 1, {{0x00, 0x7F}}},
    {"blank", 2, {{' ', ' '}, {'\t', '\t'}}},
    {"cntrl", 1, {{0x00, 0x1F}}},
    {"digit", 1, {{'0', '9'}}},
    {"graph", 1, {{0x21, 0xFF}}},
    {"lower", 1, {{'a', 'z'}}},
    {"print", 1, {{0x20, 0xFF}}},
    {"punct", 4, {{0x20, 0x2F}, {0x3A, 0x40}, {0x5B, 0x60}, {0x7B, 0xFF}}},
    {"space", 2, {{0x09, 0x0D}, {' ', ' '}}},
    {"upper", 1, {{'A', 'Z'}}},
    {"xdigit", 3, {{'a', 'f'}, {'A', 'F'}, {'0', '9'}}},
};

bool equals(const char* name, const Zel8u* text, size_t length) {
    return strlen(name) == length && memcmp(name, text, length) == 0;
}

}  // namespace

/// One class: the members between the brackets.
class ClassCompiler {
public:
    explicit ClassCompiler(Compiler& compiler) : c_(compiler), p_(compiler.p_) {}

    ZelStatus run();

private:
    ZelStatus member();
    ZelStatus escape();
    ZelStatus quoted();
    ZelStatus literal(const Zel8u* at);
    ZelStatus character(Zel32u value, const Zel8u* at);
    ZelStatus classPart(const Zel8u* end);
    ZelStatus close();

    /// Writes the waiting "-" as a member: what follows is no character.
    void settleDash() {
        if (dash_) c_.emit(NodeLetter, '-');
        dash_ = false;
        single_ = false;
    }

    Compiler& c_;
    const Zel8u* p_;
    int head_ = 0;         // index of the class node
    bool quoted_ = false;  // between "\Q" and "\E"
    bool single_ = false;  // the last member is a character that may begin a range
    bool dash_ = false;    // a "-" waits behind such a character
};

ZelStatus ClassCompiler::run() {
    head_ = c_.nodeCount_;
    ++p_;
    const bool negated = *p_ == '^';
    if (negated) ++p_;
    c_.emit(NodeCharacterClass, negated ? -1 : 0);
    ZelStatus status = zelStatusOk;
    if (*p_ == ']') status = literal(p_);  // the first one is a member
    while (status == zelStatusOk && (quoted_ || *p_ != ']')) {
        status = quoted_ ? quoted() : member();
    }
    return status == zelStatusOk ? close() : status;
}

ZelStatus ClassCompiler::member() {
    switch (*p_) {
        case '\0':
            return c_.fail(zelStatusRegExpCharClassError, p_);
        case '\\':
            return escape();
        case '-':
            if (!single_ || dash_) return literal(p_);
            dash_ = true;
            ++p_;
            return zelStatusOk;
        case '[':
            if (const Zel8u* end = nullptr; findClassPart(p_, c_.brackets_, end)) {
                return classPart(end);
            }
            return literal(p_);
        default:
            return literal(p_);
    }
}

ZelStatus ClassCompiler::quoted() {
    if (*p_ == '\0') return c_.fail(zelStatusRegExpCharClassError, p_);
    if (p_[0] == '\\' && p_[1] == 'E') {
        quoted_ = false;
        p_ += 2;
        return zelStatusOk;
    }
    return literal(p_);
}

/// The byte or UTF-8 sequence at p_; `at` is where the member begins, a backslash perhaps.
ZelStatus ClassCompiler::literal(const Zel8u* at) {
    if (*p_ < 0x80) return character(*p_++, at);
    // No sequence is longer than six bytes, and none goes beyond the NUL.
    const Utf8Char decoded = decodeUtf8Sequence(p_, 6);
    if (!decoded.wellFormed) return c_.fail(zelStatusRegExpCharClassError, p_);
    p_ += decoded.length;
    return character(static_cast<Zel32u>(decoded.value), at);
}

ZelStatus ClassCompiler::character(Zel32u value, const Zel8u* at) {
    if (!dash_) {
        c_.emit(value < 0x100 ? NodeLetter : NodeLetterUtf8, static_cast<int>(value));
        single_ = true;
        return zelStatusOk;
    }
    Node& low = c_.nodes_[c_.nodeCount_ - 1];
    if (value < static_cast<Zel32u>(low.value)) {
        return c_.fail(zelStatusRegExpCharClassError, at);
    }
    low.kind = NodeRange;
    low.count = static_cast<int>(value);
    dash_ = false;
    single_ = false;
    return zelStatusOk;
}

ZelStatus ClassCompiler::escape() {
    const Zel8u* const at = p_;
    const Zel8u letter = *++p_;
    switch (kEscapes.kind[letter]) {
        case kEscapePosition:
            ++p_;
            return character(letter == 'b' ? 0x08 : letter, at);
        case kEscapeLiteral:
        case kEscapeAnyByte:
            return literal(at);
        case kEscapeShorthand:
            settleDash();
            c_.emit(NodeLetterRange, letter);
            break;
        case kEscapeCombining:
            settleDash();
            c_.emit(NodeCombLetter);
            break;
        case kEscapeProperty: {
            Node node;
            const ZelStatus status = c_.readProperty(p_, node);
            if (status != zelStatusOk) return status;
            settleDash();
            c_.nodes_[c_.nodeCount_++] = node;
            return zelStatusOk;
        }
        case kEscapeCharacter: {
            Zel32u value;
            const ZelStatus status = c_.readCharacterEscape(p_, value);
            return status == zelStatusOk ? character(value, at) : status;
        }
        case kEscapeDigit: {
            if (letter > '7') return literal(at);
            Zel32u value;
            p_ = readOctal(p_, 3, value);
            return character(value, at);
        }
        case kEscapeQuote:
            quoted_ = true;
            break;
        case kEscapeQuoteEnd:
            break;
        case kEscapeNothing:
            return c_.fail(zelStatusRegExpEscapeError, p_);
    }
    ++p_;
    return zelStatusOk;
}

/// "[:name:]" or "[:^name:]" at p_; negation inverts each member by itself.
ZelStatus ClassCompiler::classPart(const Zel8u* end) {
    const Zel8u* name = p_ + 2;
    const bool negated = *name == '^';
    if (negated) ++name;
    const int invert = negated ? -1 : 0;
    // The delimiter in front of the "]" ends the name; "[:^:]" leaves none.
    const size_t length = static_cast<size_t>(end - 1 - name);
    if (equals("word", name, length)) {
        settleDash();
        c_.emit(NodeLetterRange, negated ? 'W' : 'w', 0, invert);
        p_ = end + 1;
        return zelStatusOk;
    }
    for (const PosixClass& posix : kPosixClasses) {
        if (!equals(posix.name, name, length)) continue;
        settleDash();
        for (int i = 0; i < posix.rangeCount; ++i) {
            const auto& range = posix.ranges[i];
            if (range.low == range.high) {
                c_.emit(NodeLetter, range.low, 0, invert);
            } else {
                c_.emit(NodeRange, range.low, range.high, invert);
            }
        }
        p_ = end + 1;
        return zelStatusOk;
    }
    return c_.fail(zelStatusRegExpCharClassError, p_);
}

/// At the "]".
ZelStatus ClassCompiler::close() {
    settleDash();
    Node& head = c_.nodes_[head_];
    const Node& member = c_.nodes_[head_ + 1];
    head.count = c_.nodeCount_ - head_ - 1;
    if (head.count == 0) return c_.fail(zelStatusRegExpGroupingError, p_);
    c_.p_ = p_ + 1;
    const bool reducible = member.kind == NodeLetter || member.kind == NodeLetterRange ||
                           member.kind == NodeCombLetter;
    if (head.count != 1 || head.value != 0 || !reducible) {
        c_.classEnd_ = c_.nodeCount_;
        return zelStatusOk;
    }
    if (member.kind == NodeLetter && member.value == '^') {
        return c_.fail(zelStatusRegExpGroupingError, p_);
    }
    head = member;
    --c_.nodeCount_;
    if (head.kind == NodeLetter) c_.noteLiteral(head_, c_.flags_);
    return zelStatusOk;
}

ZelStatus Compiler::characterClass() {
    flushRun();
    return ClassCompiler(*this).run();
}

}  // namespace zel
