// The first pass of the compiler and the scanning rules that both passes share. The first pass only
// looks at what decides where groups open and close: escapes, quoting, classes, comments.
#include <cstring>
#include <vector>

#include "compiler.h"

namespace model {

bool Pattern::startsWith(int i, const char* prefix) const {
    for (int k = 0; prefix[k] != 0; ++k) {
        if (at(i + k) != static_cast<unsigned char>(prefix[k])) return false;
    }
    return true;
}

int Pattern::find(int from, const char* what) const {
    for (int i = from; i < length; ++i) {
        if (startsWith(i, what)) return i;
    }
    return -1;
}

int classPartEnd(const Pattern& pattern, int i) {
    int delimiter = pattern.at(i + 1);
    if (delimiter != ':' && delimiter != '.' && delimiter != '=') return -1;
    int end = pattern.find(i + 2, "]");
    bool reappears = end - 1 > i + 1 && pattern.at(end - 1) == delimiter;
    return reappears ? end : -1;
}

int readInlineFlags(const Pattern& pattern, int i, Zel32u& flags) {
    bool set = true;
    for (;; ++i) {
        Zel32u flag;
        switch (pattern.at(i)) {
            case 'i':
                flag = zel::kOptionIgnoreCase;
                break;
            case 'm':
                flag = zel::kOptionMultiLine;
                break;
            case 's':
                flag = zel::kOptionDotAll;
                break;
            case 'x':
                flag = zel::kOptionExtended;
                break;
            case '-':
                set = false;
                continue;
            default:
                return i;
        }
        flags = set ? flags | flag : flags & ~flag;
    }
}

namespace {

int behindQuote(const Pattern& pattern, int i) {
    int end = pattern.find(i + 2, "\\E");
    return end < 0 ? pattern.length : end + 2;
}

int behindEscape(const Pattern& pattern, int i) {
    if (pattern.at(i + 1) == 'Q') return behindQuote(pattern, i);
    return pattern.at(i + 1) == 'c' ? i + 3 : i + 2;
}

int behindClass(const Pattern& pattern, int i) {
    ++i;
    if (pattern.at(i) == '^') ++i;
    if (pattern.at(i) == ']') ++i;
    while (i < pattern.length && pattern.at(i) != ']') {
        if (pattern.at(i) == '\\') {
            i = behindEscape(pattern, i);
        } else if (pattern.at(i) == '[' && classPartEnd(pattern, i) >= 0) {
            i = classPartEnd(pattern, i) + 1;
        } else {
            ++i;
        }
    }
    return i + 1;
}

}  // namespace

int checkStructure(const Pattern& pattern, Zel32u flags) {
    constexpr int deepest = 999;
    constexpr int mostCaptures = 1000;
    std::vector<Zel32u> saved;
    int captures = 0;
    int condition = -1;  // index of a "(" that opens a condition
    int i = 0;
    while (i < pattern.length) {
        int c = pattern.at(i);
        if (c == '\\') {
            i = behindEscape(pattern, i);
        } else if (c == '[') {
            i = behindClass(pattern, i);
        } else if (c == '#' && (flags & zel::kOptionExtended)) {
            int newline = pattern.find(i, "\n");
            i = newline < 0 ? pattern.length : newline + 1;
        } else if (c == ')') {
            if (saved.empty()) throw CompileError{zelStatusRegExpGroupingError, i};
            flags = saved.back();
            saved.pop_back();
            ++i;
        } else if (c == '(') {
            if (saved.size() == deepest) throw CompileError{zelStatusRegExpGroupingError, i};
            saved.push_back(flags);
            if (pattern.at(i + 1) != '?') {
                if (i != condition && ++captures > mostCaptures) {
                    throw CompileError{zelStatusRegExpGroupingError, i};
                }
                ++i;
            } else if (pattern.at(i + 2) == '#') {
                int close = pattern.find(i, ")");
                if (close < 0) {
                    throw CompileError{zelStatusRegExpGroupingError, pattern.length};
                }
                saved.pop_back();
                i = close + 1;
            } else if (pattern.at(i + 2) == '(') {
                condition = i + 2;
                i += 2;
            } else {
                Zel32u changed = flags;
                i = readInlineFlags(pattern, i + 2, changed);
                if (pattern.at(i) == ')') {
                    // The change holds for the rest of the enclosing group.
                    saved.back() = changed;
                } else if (pattern.at(i) == ':') {
                    flags = changed;
                }
            }
        } else {
            ++i;
        }
    }
    if (!saved.empty()) throw CompileError{zelStatusRegExpGroupingError, pattern.length};
    return captures;
}

}  // namespace model
