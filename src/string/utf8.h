// The one UTF-8 decoding rule of the library, and its tables. Sequences have one to six bytes and
// carry values up to 0x7FFFFFFF; encoded surrogates are accepted; overlong forms and stray bytes
// are not sequences. Everybody who decodes, conversion, compiler and matcher alike, decodes through
// here.
#pragma once

#include "zelchmx.h"

namespace zel {

// All three are indexed by the number of continuation bytes, that is, by sequence length minus 1.

/// Largest value that a sequence can carry.
inline constexpr int UTF8_table1[6] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
/// Marker bits of the lead byte.
inline constexpr int UTF8_table2[6] = {0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
/// Mask of the value bits in the lead byte.
inline constexpr int UTF8_table3[6] = {0xFF, 0x1F, 0x0F, 0x07, 0x03, 0x01};

/// One decoded character. An ill-formed byte is a character of length 1 whose value is the byte.
struct Utf8Char {
    int value;
    int length;
    bool wellFormed;
};

/// Decodes the sequence of four bytes or more at p (*p >= 0xF0), as decodeUtf8Sequence does.
inline Utf8Char decodeLongUtf8Sequence(const Zel8u* p, long available) {
    const unsigned lead = *p;
    const Utf8Char illFormed = {static_cast<int>(lead), 1, false};
    const int continuation = __builtin_clz(~(lead << 24)) - 1;
    if (continuation > 5 || continuation >= available) return illFormed;
    int value = static_cast<int>(lead) & UTF8_table3[continuation];
    for (int i = 1; i <= continuation; ++i) {
        if ((p[i] & 0xC0) != 0x80) return illFormed;
        value = (value << 6) | (p[i] & 0x3F);
    }
    // Shortest form: the value must not fit a sequence that is one byte shorter.
    if (value <= UTF8_table1[continuation - 1]) return illFormed;
    return {value, continuation + 1, true};
}

/// Decodes the multi-byte sequence at p (*p >= 0x80). `available` (at least 1) is the number of
/// bytes that may be read from p on; a sequence that does not fit is ill-formed. Nothing is read
/// behind a byte that ends the sequence early: terminated text has no more.
inline Utf8Char decodeUtf8Sequence(const Zel8u* p, long available) {
    const int lead = *p;
    if (lead >= 0xF0) return decodeLongUtf8Sequence(p, available);
    if (lead < 0xE0) {
        if (lead < 0xC0 + 2 || available < 2) return {lead, 1, false};
        const int low = p[1] ^ 0x80;
        if (low > 0x3F) return {lead, 1, false};
        return {((lead & 0x1F) << 6) | low, 2, true};
    }
    if (available < 3) return {lead, 1, false};
    const int middle = p[1] ^ 0x80;
    if (middle > 0x3F) return {lead, 1, false};
    const int low = p[2] ^ 0x80;
    const int value = ((lead & 0x0F) << 12) | (middle << 6) | low;
    if (low > 0x3F || value <= UTF8_table1[1]) return {lead, 1, false};
    return {value, 3, true};
}

/// Decodes the character at p.
inline Utf8Char decodeUtf8(const Zel8u* p, long available) {
    if (*p < 0x80) return {*p, 1, true};
    return decodeUtf8Sequence(p, available);
}

/// Length in bytes of the character at p.
inline int utf8Length(const Zel8u* p, long available) {
    return *p < 0x80 ? 1 : decodeUtf8Sequence(p, available).length;
}

}  // namespace zel
