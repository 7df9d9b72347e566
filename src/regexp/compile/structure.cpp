// The first pass: walks over the pattern, looking only at what can hide or be a parenthesis. It
// counts the capturing groups, which the second pass must know before it meets the first
// back-reference, and it follows the option changes only as far as extended mode is concerned,
// because there a "#" hides the rest of its line.
#include "regexp/compile/structure.h"

#include "regexp/compile/syntax.h"

namespace zel {
namespace {

/// Deepest nesting of parentheses, and the number of capturing groups that this pass lets through.
constexpr int kMaxDepth = 999;
constexpr int kMaxCaptures = 1000;

constexpr StopTable kStops("\\[()", "#");

class StructureWalk {
public:
    StructureWalk(const Zel8u* pattern, Zel32u flags)
        : p_(pattern), flags_(flags), brackets_(pattern) {}

    Structure run() {
        for (;;) {
            p_ = kStops.find(p_, flags_);
            switch (*p_) {
                case '\0':
                    if (depth_ != 0) return fail(p_);
                    return {zelStatusOk, nullptr, captures_ + 1};
                case '#':
                    p_ = skipLine(p_);
                    break;
                case '\\':
                    p_ = skipEscape(p_);
                    break;
                case '[':
                    skipClass();
                    break;
                case '(':
                    if (const Zel8u* bad = openParenthesis()) return fail(bad);
                    break;
                default:
                    if (depth_ == 0) return fail(p_);
                    flags_ = outerFlags_[--depth_];
                    ++p_;
            }
        }
    }

private:
    static Structure fail(const Zel8u* at) { return {zelStatusRegExpGroupingError, at, 0}; }

    /// Over the escape at p; a quotation is passed over whole.
    static const Zel8u* skipEscape(const Zel8u* p) {
        if (p[1] == '\0') return p + 1;
        if (p[1] == 'Q') return findQuoteEnd(p + 2);
        if (p[1] == 'c' && p[2] != '\0') return p + 3;
        return p + 2;
    }

    void skipClass() {
        ++p_;
        if (*p_ == '^') ++p_;
        if (*p_ == ']') ++p_;  // the first one is a member
        for (;;) {
            switch (*p_) {
                case '\0':
                    return;
                case ']':
                    ++p_;
                    return;
                case '\\':
                    p_ = skipEscape(p_);
                    break;
                case '[':
                    findClassPart(p_, brackets_, p_);
                    ++p_;
                    break;
                default:
                    ++p_;
            }
        }
    }

    /// Enters a parenthesis. Returns the offending byte, or null.
    const Zel8u* openParenthesis() {
        if (depth_ == kMaxDepth) return p_;
        if (p_[1] != '?') {
            if (++captures_ > kMaxCaptures) return p_;
            return enter(p_ + 1);
        }
        if (p_[2] == '#') {
            p_ = findCommentEnd(p_ + 3);
            if (*p_ == '\0') return p_;
            ++p_;
            return nullptr;
        }
        if (p_[2] == '(') {
            enter(p_ + 2);
            if (p_[1] == '?') return nullptr;  // a look-around as condition is a group of its own
            if (depth_ == kMaxDepth) return p_;
            return enter(p_ + 1);  // a group number: no capturing group
        }
        Zel32u flags = flags_;
        const Zel8u* end = readInlineFlags(p_ + 2, flags);
        if (*end == ')') {
            flags_ = flags;
            p_ = end + 1;
            return nullptr;
        }
        enter(p_ + 2);
        if (*end == ':') flags_ = flags;
        return nullptr;
    }

    const Zel8u* enter(const Zel8u* body) {
        outerFlags_[depth_++] = flags_;
        p_ = body;
        return nullptr;
    }

    const Zel8u* p_;
    Zel32u flags_;
    int depth_ = 0;
    int captures_ = 0;
    BracketFinder brackets_;
    Zel32u outerFlags_[kMaxDepth];  // in force in front of each open parenthesis
};

}  // namespace

Structure checkStructure(const Zel8u* pattern, Zel32u flags) {
    return StructureWalk(pattern, flags).run();
}

}  // namespace zel
