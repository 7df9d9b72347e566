// Pieces of pattern syntax that both passes must read alike: where comments, quotes and class parts
// end, and what inline flags say. All work on the NUL-terminated pattern and never look behind its
// NUL.
#pragma once

#include "regexp/program.h"

namespace zel {

/// Bytes at which a walk over the pattern stops. Everything else is passed over at full speed.
struct StopTable {
    /// Which bytes stop it anyway (bit 0), which ones in extended mode (bit 1).
    Zel8u at[256] = {};

    constexpr StopTable(const char* always, const char* extended) {
        at[0] = 1;
        for (; *always != '\0'; ++always) at[static_cast<unsigned char>(*always)] = 1;
        for (; *extended != '\0'; ++extended) at[static_cast<unsigned char>(*extended)] = 2;
    }

    /// The first stop at or behind p.
    const Zel8u* find(const Zel8u* p, Zel32u flags) const {
        const int mask = (flags & kOptionExtended) != 0 ? 3 : 1;
        while ((at[*p] & mask) == 0) ++p;
        return p;
    }
};

/// Behind the line that p is in, newline included; the NUL when it is the last line.
inline const Zel8u* skipLine(const Zel8u* p) {
    while (*p != '\0' && *p != '\n') ++p;
    return *p == '\0' ? p : p + 1;
}

/// The ")" that ends a comment group, or the NUL.
inline const Zel8u* findCommentEnd(const Zel8u* p) {
    while (*p != '\0' && *p != ')') ++p;
    return p;
}

/// The "\E" that ends a quotation, or the NUL.
inline const Zel8u* findQuoteEnd(const Zel8u* p) {
    while (*p != '\0' && !(p[0] == '\\' && p[1] == 'E')) ++p;
    return p;
}

/// Reads inline flags from p on and applies them to `flags`: letters behind a "-" clear. Returns
/// the first byte that is neither a flag nor "-".
inline const Zel8u* readInlineFlags(const Zel8u* p, Zel32u& flags) {
    Zel32u set = flags;
    bool clearing = false;
    for (;; ++p) {
        Zel32u flag = 0;
        switch (*p) {
            case 'i':
                flag = kOptionIgnoreCase;
                break;
            case 'm':
                flag = kOptionMultiLine;
                break;
            case 's':
                flag = kOptionDotAll;
                break;
            case 'x':
                flag = kOptionExtended;
                break;
            case '-':
                clearing = true;
                break;
            default:
                flags = set;
                return p;
        }
        set = clearing ? set & ~flag : set | flag;
    }
}

/// Finds the "]" that follows a position. It remembers the last one, so that asking again and again
/// from left to right costs one scan of the pattern altogether.
class BracketFinder {
public:
    explicit BracketFinder(const Zel8u* pattern) : next_(pattern) {}

    /// The first "]" at or behind p, or the NUL. p never goes back.
    const Zel8u* find(const Zel8u* p) {
        if (next_ < p) next_ = p;
        while (*next_ != '\0' && *next_ != ']') ++next_;
        return next_;
    }

private:
    const Zel8u* next_;
};

/// Whether a class part "[:name:]" begins at p, the byte "[" inside a class; the delimiter may also
/// be "." or "=". Then `end` becomes its "]". It is one only when the first "]" has the delimiter,
/// a second one, directly in front of it.
inline bool findClassPart(const Zel8u* p, BracketFinder& brackets, const Zel8u*& end) {
    if (p[1] != ':' && p[1] != '.' && p[1] != '=') return false;
    const Zel8u* close = brackets.find(p + 2);
    if (*close == '\0' || close == p + 2 || close[-1] != p[1]) return false;
    end = close;
    return true;
}

}  // namespace zel
