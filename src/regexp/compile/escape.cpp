// Backslash escapes outside of classes, and the characters that both sides of a bracket can write
// by an escape.
#include "regexp/compile/escape.h"

#include "regexp/compile/compiler.h"

namespace zel {
namespace {

/// Value of a hexadecimal digit, or -1.
int hexDigit(Zel8u c) {
    if (c >= '0' && c <= '9') return c - '0';
    const int letter = c | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

const Zel8u* readHex(const Zel8u* p, int maxDigits, Zel32u& value) {
    value = 0;
    for (; maxDigits > 0 && hexDigit(*p) >= 0; --maxDigits) {
        value = value << 4 | static_cast<Zel32u>(hexDigit(*p++));
    }
    return p;
}

/// "\c" and this byte.
Zel32u controlCharacter(Zel8u c) {
    int value = c < 0x20 || c > 0x3F ? c - 0x40 : c + 0x40;
    if (c >= 0x60 && c <= 0x7A) value -= 0x20;
    return static_cast<Zel32u>(value) & 0xFF;
}

}  // namespace

ZelStatus Compiler::escape() {
    const Zel8u letter = p_[1];
    switch (kEscapes.kind[letter]) {
        case kEscapeLiteral:
            addLiterals(p_ + 1, 1);
            break;
        case kEscapePosition:
            flushRun();
            emit(NodePosition, letter);
            break;
        case kEscapeShorthand:
            wildcard(letter);
            break;
        case kEscapeAnyByte:
            flushRun();
            emit(NodeAnyByte);
            break;
        case kEscapeCombining:
            flushRun();
            emit(NodeCombLetter);
            break;
        case kEscapeProperty: {
            const Zel8u* p = p_ + 1;
            Node node;
            const ZelStatus status = readProperty(p, node);
            if (status != zelStatusOk) return status;
            flushRun();
            nodes_[nodeCount_++] = node;
            p_ = p;
            return zelStatusOk;
        }
        case kEscapeCharacter: {
            const Zel8u* p = p_ + 1;
            Zel32u value;
            const ZelStatus status = readCharacterEscape(p, value);
            if (status != zelStatusOk) return status;
            emitCharacter(value);
            p_ = p;
            return zelStatusOk;
        }
        case kEscapeDigit:
            return digitEscape();
        case kEscapeQuote:
            quotedText();
            return zelStatusOk;
        case kEscapeQuoteEnd:
            break;
        case kEscapeNothing:
            return fail(zelStatusRegExpEscapeError, p_ + 1);
    }
    p_ += 2;
    return zelStatusOk;
}

/// "\0" is octal. Other digits, three at most, are a back-reference when there is such a group,
/// else one byte in octal, which takes all of the digits and ends its value at the first 8 or 9. A
/// single digit can only be a back-reference.
ZelStatus Compiler::digitEscape() {
    const Zel8u* const digits = p_ + 1;
    Zel32u octal;
    const Zel8u* end = readOctal(digits, 3, octal);
    if (*digits != '0') {
        int number = 0;
        for (end = digits; end - digits < 3 && *end >= '0' && *end <= '9'; ++end) {
            number = number * 10 + (*end - '0');
        }
        const bool isReference = number < groupCount_;
        if (!isReference && end - digits == 1) return fail(zelStatusRegExpBackRefError, p_);
        if (isReference) {
            flushRun();
            emit(NodeBackReference, number);
            p_ = end;
            return zelStatusOk;
        }
    }
    emitCharacter(octal);
    p_ = end;
    return zelStatusOk;
}

/// Reads an escape of kind kEscapeCharacter; p is at its letter and ends behind it.
ZelStatus Compiler::readCharacterEscape(const Zel8u*& p, Zel32u& value) {
    const Zel8u letter = *p++;
    switch (letter) {
        case 'a':
            value = 0x07;
            break;
        case 'e':
            value = 0x1B;
            break;
        case 'f':
            value = 0x0C;
            break;
        case 'n':
            value = 0x0A;
            break;
        case 'r':
            value = 0x0D;
            break;
        case 't':
            value = 0x09;
            break;
        case 'v':
            value = 0x0B;
            break;
        case 'c':
            if (*p == '\0') return fail(zelStatusRegExpEscapeError, p);
            value = controlCharacter(*p++);
            break;
        default:  // x
            if (*p != '{') {
                p = readHex(p, 2, value);
                break;
            }
            p = readHex(p + 1, 8, value);
            if (*p != '}') return fail(zelStatusRegExpEscapeError, p);
            ++p;
    }
    return zelStatusOk;
}

}  // namespace zel
