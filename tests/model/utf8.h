// The one decoding rule for UTF-8 that conversion and matcher share: sequences of up to six bytes,
// shortest form only. Anything else is malformed and stands for its lead byte alone.
#pragma once

#include "zelchmx.h"

namespace model {

/// By number of continuation bytes: largest value, marker bits and value mask of the lead byte.
inline constexpr int utf8Largest[6] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
inline constexpr int utf8Marker[6] = {0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
inline constexpr int utf8Mask[6] = {0xFF, 0x1F, 0x0F, 0x07, 0x03, 0x01};

struct Utf8Character {
    int value;   // the code point, or the lead byte of a malformed sequence
    int length;  // bytes; 1 when malformed
    bool valid;
};

/// Decodes the character at `text`, of which `available` bytes (at least 1) may be read. A sequence
/// that does not fit is malformed.
inline Utf8Character decodeUtf8(const Zel8u* text, int available) {
    int lead = text[0];
    Utf8Character malformed{lead, 1, false};
    if (lead < 0x80) return {lead, 1, true};
    int ones = 0;
    while (ones < 7 && (lead & (0x80 >> ones))) ++ones;
    int k = ones - 1;
    if (k == 0 || k == 6) return malformed;
    if (k + 1 > available) return malformed;
    int value = (lead & utf8Mask[k]) << (6 * k);
    for (int i = 1; i <= k; ++i) {
        if ((text[i] & 0xC0) != 0x80) return malformed;
        value |= (text[i] & 0x3F) << (6 * (k - i));
    }
    int shortest = 0;
    while (shortest < 6 && value > utf8Largest[shortest]) ++shortest;
    if (shortest != k) return malformed;
    return {value, k + 1, true};
}

}  // namespace model
