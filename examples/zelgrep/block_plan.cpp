// One pass over the pattern's text, which is known to compile. Each construct is either listed
// here, with what it means for a block, or makes the plan impossible.
//
// The reasons behind the rules:
//   - The block is searched in multi-line mode, so "^" and "$" mean the same as on a single line.
//   - Something that can match a newline (a negated class, \s) can only make the block find more
//     than the lines would; then each line found is searched again by itself.
//   - A run of "." or \w gives back by the length of the character behind it. In text with
//   multi-byte
//     characters that may pass over positions, depending on where the run ended, or lead in front
//     of the run and so out of the line. Patterns with such runs are left to blocks of ASCII text.
//   - Behind a top-level bar a literal narrows the text only when a quantified letter stands in
//     between; then a line without that literal matches nothing, whatever its block holds.
//   - A leading "^" with a quantifier still ties a search in multi-line mode to the starts of
//   lines.
//   - Nothing here refers to a group, so the groups of a block's pattern need not capture. Without
//   a
//     lazy repetition, which may make a match look longer than it is, and without parts that match
//     a newline, a search for all matches then reports one in each line that has any.
//   - Lazy repetitions of \p pass over characters that do not fit, newlines included.
#include "block_plan.h"

#include <cstddef>
#include <utility>

namespace zelgrep {
namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isAlnum(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isControl(char c) {
    return static_cast<unsigned char>(c) < 0x20;
}

constexpr bool oneOf(char c, std::string_view set) {
    return set.find(c) != std::string_view::npos;
}

class Planner {
public:
    Planner(std::string_view pattern, std::string_view options)
        : pattern_(pattern), possible_(options.find_first_of("sx") == std::string_view::npos) {}

    BlockPlan run() {
        while (possible_ && at_ < pattern_.size()) step();
        withoutCapturing_.append(pattern_.substr(copied_));
        if ((lazy_ && property_) || (topBar_ && letterRepeated_)) possible_ = false;
        BlockPlan plan;
        plan.possible = possible_;
        plan.confirm = newline_;
        plan.asciiOnly = shorthandRepeated_;
        plan.many = !newline_ && !lazy_;
        plan.pattern = std::move(withoutCapturing_);
        return plan;
    }

private:
    enum class Atom { kNone, kLiteral, kShorthand, kClass, kPosition, kOther };

    bool more(std::size_t ahead = 0) const { return at_ + ahead < pattern_.size(); }

    void atom(Atom kind, std::size_t length) {
        last_ = kind;
        at_ += length;
    }

    void step() {
        const char c = pattern_[at_];
        switch (c) {
            case '\\':
                escape();
                break;
            case '[':
                bracketClass();
                break;
            case '(':
                group();
                break;
            case ')':
                --depth_;
                atom(Atom::kOther, 1);
                break;
            case '|':
                topBar_ = topBar_ || depth_ == 0;
                atom(Atom::kNone, 1);
                break;
            case '.':
                atom(Atom::kShorthand, 1);
                break;
            case '^':
            case '$':
                atom(Atom::kPosition, 1);
                break;
            case '*':
            case '+':
            case '?':
                quantifier(1, false);
                break;
            case '{':
                brace();
                break;
            default:
                possible_ = !isControl(c);
                atom(Atom::kLiteral, 1);
        }
    }

    void escape() {
        possible_ = more(1);
        if (!possible_) return;
        const char c = pattern_[at_ + 1];
        if (oneOf(c, "dwS")) {
            atom(Atom::kShorthand, 2);
        } else if (oneOf(c, "DWs")) {
            newline_ = true;
            atom(Atom::kShorthand, 2);
        } else if (oneOf(c, "bB")) {
            atom(Atom::kPosition, 2);
        } else if (c == 'p') {
            property();
        } else if (oneOf(c, "aefrtv") || (!isAlnum(c) && !isControl(c))) {
            atom(Atom::kLiteral, 2);
        } else {
            possible_ = false;
        }
    }

    // \pL, \p{L} and \p{Lu}, of the categories that hold no newline.
    void property() {
        property_ = true;
        const bool braced = more(2) && pattern_[at_ + 2] == '{';
        const std::size_t nameAt = at_ + (braced ? 3 : 2);
        possible_ = nameAt < pattern_.size() && oneOf(pattern_[nameAt], "LMNPSZ");
        const std::size_t end = braced ? pattern_.find('}', nameAt) : nameAt;
        possible_ = possible_ && end != std::string_view::npos && end - nameAt <= 2;
        if (possible_) atom(Atom::kOther, end + 1 - at_);
    }

    void group() {
        if (more(1) && pattern_[at_ + 1] == '?') {
            possible_ = more(2) && pattern_[at_ + 2] == ':';
            at_ += 3;
        } else {
            withoutCapturing_.append(pattern_.substr(copied_, at_ - copied_)).append("(?:");
            copied_ = ++at_;
        }
        ++depth_;
        last_ = Atom::kNone;
    }

    void bracketClass() {
        std::size_t i = at_ + 1;
        if (i < pattern_.size() && pattern_[i] == '^') {
            newline_ = true;
            ++i;
        }
        bool escaped = false;
        bool range = false;
        shorthandInClass_ = false;
        for (const std::size_t first = i; i < pattern_.size(); ++i) {
            const char c = pattern_[i];
            if (c == ']' && i != first) {
                newline_ = newline_ || (escaped && range);
                atom(Atom::kClass, i + 1 - at_);
                return;
            }
            range = range || c == '-';
            if (c == '[' && i + 1 < pattern_.size() && oneOf(pattern_[i + 1], ":.=")) {
                const std::size_t end = pattern_.find(":]", i + 2);
                if (pattern_[i + 1] != ':' || end == std::string_view::npos) break;
                newline_ = true;  // some of the POSIX classes hold it
                i = end + 1;
            } else if (c == '\\') {
                escaped = true;
                if (++i == pattern_.size() || !escapeInClass(pattern_[i])) break;
            } else if (isControl(c)) {
                break;
            }
        }
        possible_ = false;
    }

    bool escapeInClass(char c) {
        if (oneOf(c, "dwSDWs")) {
            shorthandInClass_ = true;
            newline_ = newline_ || oneOf(c, "DWs");
            return true;
        }
        return oneOf(c, "aefrtv") || (!isAlnum(c) && !isControl(c));
    }

    // A "{" that begins no well-formed bounds is a literal.
    void brace() {
        std::size_t i = at_ + 1;
        bool digits = false;
        bool comma = false;
        for (; i < pattern_.size() && (isDigit(pattern_[i]) || (pattern_[i] == ',' && !comma));
             ++i) {
            digits = digits || isDigit(pattern_[i]);
            comma = comma || pattern_[i] == ',';
        }
        if (digits && i < pattern_.size() && pattern_[i] == '}')
            quantifier(i + 1 - at_, !comma);
        else
            atom(Atom::kLiteral, 1);
    }

    void quantifier(std::size_t length, bool exact) {
        possible_ = last_ != Atom::kPosition;
        at_ += length;
        if (more() && pattern_[at_] == '?') {
            lazy_ = true;
            ++at_;
        }
        // A class of one member is compiled as that member.
        letterRepeated_ = letterRepeated_ || last_ == Atom::kLiteral || last_ == Atom::kClass;
        // Nothing is ever given back of an exact number; a lazy run may be merged into a greedy
        // one.
        shorthandRepeated_ =
            shorthandRepeated_ ||
            (!exact && (last_ == Atom::kShorthand || (last_ == Atom::kClass && shorthandInClass_)));
    }

    std::string_view pattern_;
    std::size_t at_ = 0;
    std::string withoutCapturing_;
    std::size_t copied_ = 0;  // the pattern up to here is in it
    int depth_ = 0;
    Atom last_ = Atom::kNone;
    bool possible_;
    bool newline_ = false;  // some part can match a newline
    bool lazy_ = false;
    bool property_ = false;
    bool topBar_ = false;
    bool letterRepeated_ = false;
    bool shorthandRepeated_ = false;
    bool shorthandInClass_ = false;
};

}  // namespace

BlockPlan planFor(std::string_view pattern, std::string_view options) {
    return Planner(pattern, options).run();
}

}  // namespace zelgrep
