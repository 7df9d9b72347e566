// What the byte behind a backslash introduces. Both sides of a bracket read this table; where they
// differ (positions, for example, are plain letters in a class) they decide for themselves.
#pragma once

#include "zelchmx.h"

namespace zel {

enum EscapeKind : Zel8u {
    kEscapeLiteral,    // the byte itself
    kEscapePosition,   // A B G Z b z
    kEscapeShorthand,  // D S W d s w
    kEscapeAnyByte,    // C
    kEscapeCombining,  // X
    kEscapeProperty,   // P p
    kEscapeCharacter,  // a c e f n r t v x: a character that is written some other way
    kEscapeDigit,      // 0 to 9
    kEscapeQuote,      // Q
    kEscapeQuoteEnd,   // E
    kEscapeNothing,    // the pattern's NUL
};

struct EscapeTable {
    EscapeKind kind[256] = {};
    constexpr EscapeTable() {
        const auto set = [this](const char* letters, EscapeKind kindOfLetters) {
            for (; *letters != '\0'; ++letters) {
                kind[static_cast<unsigned char>(*letters)] = kindOfLetters;
            }
        };
        set("ABGZbz", kEscapePosition);
        set("DSWdsw", kEscapeShorthand);
        set("C", kEscapeAnyByte);
        set("X", kEscapeCombining);
        set("Pp", kEscapeProperty);
        set("acefnrtvx", kEscapeCharacter);
        set("0123456789", kEscapeDigit);
        set("Q", kEscapeQuote);
        set("E", kEscapeQuoteEnd);
        kind[0] = kEscapeNothing;
    }
};
inline constexpr EscapeTable kEscapes;

/// Reads up to `maxDigits` octal digits from p on; the low 8 bits count. Returns the byte behind.
inline const Zel8u* readOctal(const Zel8u* p, int maxDigits, Zel32u& value) {
    value = 0;
    for (; maxDigits > 0 && *p >= '0' && *p <= '7'; --maxDigits) {
        value = value * 8 + static_cast<Zel32u>(*p++ - '0');
    }
    value &= 0xFF;
    return p;
}

}  // namespace zel
