// The second pass of the compiler: reads the pattern once from left to right and appends a node per
// construct. What looks ahead or behind says so.
#include <vector>

#include "compiler.h"

namespace model {
namespace {

bool isBlank(int c) {
    return c == 0x20 || c == 0x09 || c == 0x0A || c == 0x0C || c == 0x0D;
}
bool isDigit(int c) {
    return c >= '0' && c <= '9';
}

bool isLookBehind(const Node& node) {
    return node.kind == zel::NodeGroupingLookBehind || node.kind == zel::NodeGroupingLookBehindNot;
}
bool isLookAround(const Node& node) {
    return isLookBehind(node) || node.kind == zel::NodeGroupingLookAhead ||
           node.kind == zel::NodeGroupingLookAheadNot;
}
bool isOpening(const Node& node) {
    return node.kind >= zel::NodeGroupingLookBehind && node.kind <= zel::NodeGroupingAtom;
}

int capped(long long bound) {
    return bound > zel::kUnbounded ? zel::kUnbounded : static_cast<int>(bound);
}

struct Quantifier {
    int min;
    int max;
    bool lazy;
    bool badBounds;
    int end;
};

/// A number of any length; beyond the largest bound the exact value no longer matters.
int readBound(const Pattern& pattern, int& i) {
    int value = 0;
    for (; isDigit(pattern.at(i)); ++i) {
        if (value <= 0xFFFF) value = value * 10 + (pattern.at(i) - '0');
    }
    return value;
}

/// Whether a quantifier stands at `i`.
bool readQuantifier(const Pattern& pattern, int i, Quantifier& q) {
    constexpr int largestBound = 0xFFFF;
    q = {0, zel::kUnbounded, false, false, i + 1};
    int c = pattern.at(i);
    if (c == '+') {
        q.min = 1;
    } else if (c == '?') {
        q.max = 1;
    } else if (c == '{') {
        int k = i + 1;
        bool hasMin = isDigit(pattern.at(k));
        bool hasMax = hasMin;
        q.min = readBound(pattern, k);
        q.badBounds = q.min > largestBound;
        q.max = q.min;
        if (pattern.at(k) == ',') {
            ++k;
            hasMax = isDigit(pattern.at(k));
            q.max = hasMax ? readBound(pattern, k) : zel::kUnbounded;
            if (hasMax && (q.max > largestBound || q.max < q.min)) q.badBounds = true;
        }
        if (pattern.at(k) != '}' || (!hasMin && !hasMax)) return false;
        q.end = k + 1;
    } else if (c != '*') {
        return false;
    }
    if (pattern.at(q.end) == '?') {
        q.lazy = true;
        ++q.end;
    }
    return true;
}

class Compiler {
public:
    Compiler(const Pattern& pattern, Zel32u options, int groupCount)
        : pattern_(pattern), flags_(options), groupCount_(groupCount) {}

    void compile(bool lineStartMarker);

    const std::vector<Node>& nodes() const { return nodes_; }
    int trailingLiteral() const { return trailing_; }

private:
    struct OpenGroup {
        int node;
        int serial;
        Zel32u outerFlags;
    };

    [[noreturn]] static void fail(ZelStatus status, int offset) {
        throw CompileError{status, offset};
    }
    bool extended() const { return (flags_ & zel::kOptionExtended) != 0; }
    int depth() const { return static_cast<int>(groups_.size()); }
    int count() const { return static_cast<int>(nodes_.size()); }
    Node& fromEnd(int k) { return nodes_[nodes_.size() - static_cast<size_t>(k)]; }
    bool memberAt(int k) const { return isMember_[isMember_.size() - static_cast<size_t>(k)]; }

    void append(Zel32u kind, int value = 0, int count = 0, int extra = 0,
                const void* data = nullptr) {
        append(Node{kind, value, count, extra, data}, false);
    }
    void append(const Node& node, bool member) {
        nodes_.push_back(node);
        isMember_.push_back(member);
    }

    // The pending literal run.
    void literalByte(int i, bool startsNewRun);
    void endRun() { runEnded_ = true; }
    void flush();
    void flushForQuantifier();
    void writeRun(int start, int length);
    void writeLiteral(const Node& node, Zel32u flags);

    // Constructs; each returns the index behind itself.
    int step(int i);
    int escape(int i);
    int quote(int i);
    int reference(int i);
    int shorthand(int letter, int end);
    int quantifier(int i, const Quantifier& q);
    int bracketClass(int i);
    int open(int i);
    int openCondition(int i);
    int openOptions(int i, Zel32u outerFlags);
    int openGroup(Zel32u kind, int end, Zel32u outerFlags);
    int close(int i);
    int bar(int i);
    void position(int value);
    void character(Zel32u value);

    int skipExtended(int i) const;
    int skipUnwritten(int i) const;
    bool followedByQuantifier(int i) const;
    bool measure(int begin, int end, int& length) const;

    const Pattern& pattern_;
    Zel32u flags_;
    int groupCount_;
    std::vector<Node> nodes_;
    std::vector<bool> isMember_;  // of a bracket class
    std::vector<OpenGroup> groups_;
    int nextSerial_ = 1;
    int serialOfGroup_ = 0;  // of the group being opened
    int nextCapture_ = 1;
    int runStart_ = 0;
    int runLength_ = 0;
    Zel32u runFlags_ = 0;
    bool runEnded_ = false;
    int quantifierEnd_ = -1;  // index behind the last quantifier
    int trailing_ = -1;
};

// ---- Literals ----

void Compiler::literalByte(int i, bool startsNewRun) {
    if (startsNewRun || runEnded_ || runLength_ == 0) {
        flush();
        runStart_ = i;
        runFlags_ = flags_;
    }
    ++runLength_;
}

void Compiler::writeLiteral(const Node& node, Zel32u flags) {
    append(node, false);
    if (depth() == 0 && trailing_ != -2) {
        trailing_ = count() - 1;
        fromEnd(1).extra = static_cast<int>(flags);
    }
}

void Compiler::writeRun(int start, int length) {
    if (length == 1) {
        writeLiteral({zel::NodeLetter, pattern_.at(start), 0, 0, nullptr}, runFlags_);
    } else if (length > 1) {
        writeLiteral({zel::NodeString, 0, length, 0, pattern_.text + start}, runFlags_);
    }
}

void Compiler::flush() {
    writeRun(runStart_, runLength_);
    runLength_ = 0;
    runEnded_ = false;
}

void Compiler::flushForQuantifier() {
    if (runLength_ > 1) {
        writeRun(runStart_, runLength_ - 1);
        runStart_ += runLength_ - 1;
        runLength_ = 1;
    }
    flush();
}

// ---- What leaves no node ----

/// Behind one blank or comment of extended mode at `i`, or `i` itself.
int Compiler::skipExtended(int i) const {
    if (i < pattern_.length && isBlank(pattern_.at(i))) return i + 1;
    if (pattern_.at(i) == '#') {
        int newline = pattern_.find(i, "\n");
        return newline < 0 ? pattern_.length : newline + 1;
    }
    return i;
}

/// Behind everything from `i` on that leaves no node and changes nothing but extended mode.
int Compiler::skipUnwritten(int i) const {
    bool extendedHere = extended();
    for (;;) {
        int next = i;
        if (extendedHere) next = skipExtended(i);
        if (pattern_.startsWith(i, "(?#")) next = pattern_.find(i, ")") + 1;
        if (pattern_.startsWith(i, "\\E")) next = i + 2;
        if (pattern_.startsWith(i, "\\Q\\E")) next = i + 4;
        if (pattern_.startsWith(i, "(?x)")) {
            extendedHere = true;
            next = i + 4;
        }
        if (pattern_.startsWith(i, "(?-x)")) {
            extendedHere = false;
            next = i + 5;
        }
        if (next == i) return i;
        i = next;
    }
}

bool Compiler::followedByQuantifier(int i) const {
    Quantifier q;
    return readQuantifier(pattern_, skipUnwritten(i), q);
}

// ---- Single constructs ----

void Compiler::position(int value) {
    flush();
    append(zel::NodePosition, value);
}

void Compiler::character(Zel32u value) {
    flush();
    if (value < 0x100) {
        writeLiteral({zel::NodeLetter, static_cast<int>(value), 0, 0, nullptr}, flags_);
    } else {
        append(zel::NodeLetterUtf8, static_cast<int>(value));
    }
}

int Compiler::quote(int i) {
    endRun();
    for (i += 2; i < pattern_.length && !pattern_.startsWith(i, "\\E"); ++i) literalByte(i, false);
    endRun();
    return i < pattern_.length ? i + 2 : i;
}

int Compiler::reference(int i) {
    int digits = 1;
    while (digits < 3 && isDigit(pattern_.at(i + 1 + digits))) ++digits;
    int number = 0;
    for (int k = 0; k < digits; ++k) number = number * 10 + (pattern_.at(i + 1 + k) - '0');
    if (number < groupCount_) {
        flush();
        append(zel::NodeBackReference, number);
    } else if (digits == 1) {
        fail(zelStatusRegExpBackRefError, i);
    } else {
        character(readOctal(pattern_, i + 1, digits).value);
    }
    return i + 1 + digits;
}

int Compiler::escape(int i) {
    if (i + 1 >= pattern_.length) fail(zelStatusRegExpEscapeError, pattern_.length);
    int c = pattern_.at(i + 1);
    Escape read;
    if (readCharacterEscape(pattern_, i, read)) {
        character(read.value);
        return read.end;
    }
    switch (c) {
        case 'Q':
            return quote(i);
        case 'E':
            endRun();
            return i + 2;
        case 'A':
        case 'B':
        case 'G':
        case 'Z':
        case 'b':
        case 'z':
            position(c);
            return i + 2;
        case 'd':
        case 'D':
        case 's':
        case 'S':
        case 'w':
        case 'W':
            return shorthand(c, i + 2);
        case 'C':
        case 'X':
            flush();
            append(c == 'C' ? zel::NodeAnyByte : zel::NodeCombLetter);
            return i + 2;
        case 'p':
        case 'P': {
            int end;
            Node node = readProperty(pattern_, i, end);
            flush();
            append(node, false);
            return end;
        }
        case '0':
            read = readOctal(pattern_, i + 1, 3);
            character(read.value);
            return read.end;
        case '1':
        case '2':
        case '3':
        case '4':
        case '5':
        case '6':
        case '7':
        case '8':
        case '9':
            return reference(i);
        default:
            literalByte(i + 1, true);
            return i + 2;
    }
}

/// The dot and the class shorthands. Repeats of the same one fold into a quantifier.
int Compiler::shorthand(int letter, int end) {
    flush();
    auto isSame = [&](int k) {
        return count() >= k && !memberAt(k) && fromEnd(k).kind == zel::NodeLetterRange &&
               fromEnd(k).value == letter;
    };
    bool quantified = followedByQuantifier(end);
    if (isSame(1)) {
        int repeats = quantified ? 1 : 2;
        append(zel::NodeQuantifierMax, repeats, repeats);
    } else if (isSame(2) && !memberAt(1) && isQuantifier(fromEnd(1))) {
        if (!quantified) {
            Node& q = fromEnd(1);
            q.value = capped(q.value + 1LL);
            q.count = capped(q.count + 1LL);
        }
    } else {
        append(zel::NodeLetterRange, letter);
    }
    return end;
}

int Compiler::bracketClass(int i) {
    flush();
    ClassContent content = readClass(pattern_, i);
    const Node& first = content.members[0];
    if (!content.negated && content.members.size() == 1 &&
        (first.kind == zel::NodeLetter || first.kind == zel::NodeLetterRange ||
         first.kind == zel::NodeCombLetter)) {
        if (first.kind == zel::NodeLetter) {
            writeLiteral(first, flags_);
        } else {
            append(first, false);
        }
        return content.end;
    }
    append(zel::NodeCharacterClass, content.negated ? -1 : 0,
           static_cast<int>(content.members.size()));
    for (const Node& member : content.members) append(member, true);
    return content.end;
}

int Compiler::quantifier(int i, const Quantifier& q) {
    if (q.badBounds || i == quantifierEnd_) fail(zelStatusRegExpQuantifierError, i);
    flushForQuantifier();
    if (count() == 0) fail(zelStatusRegExpQuantifierError, i);
    Node& previous = fromEnd(1);
    bool member = memberAt(1);
    if (isOpening(previous) || previous.kind == zel::NodeAlternative ||
        previous.kind == zel::NodeOptions) {
        fail(zelStatusRegExpQuantifierError, i);
    }
    if (depth() > 0) {
        int opening = groups_.back().node;
        auto node = [&](int k) -> Node& { return nodes_[static_cast<size_t>(k)]; };
        if (node(opening).kind == zel::NodeGroupingCondition) {
            int conditionEnd = opening + 1;
            if (isLookAround(node(opening + 1))) conditionEnd += node(opening + 1).count + 1;
            if (conditionEnd == count() - 1) fail(zelStatusRegExpGroupingError, i);
        }
    }
    quantifierEnd_ = q.end;
    if (!member && isQuantifier(previous)) {
        previous.kind = zel::NodeQuantifierMax;
        previous.value = capped(static_cast<long long>(previous.value) + q.min);
        previous.count = capped(static_cast<long long>(previous.count) + q.max);
        return q.end;
    }
    if (!member && (previous.kind == zel::NodeLetter || previous.kind == zel::NodeLetterUtf8)) {
        if (trailing_ == -2) {
            trailing_ = -1;
        } else if (trailing_ == count() - 1) {
            if (q.min >= 1) {
                previous.extra = static_cast<int>(flags_);
            } else {
                trailing_ = -1;
            }
        }
    }
    append(q.lazy ? zel::NodeQuantifierMin : zel::NodeQuantifierMax, q.min, q.max);
    return q.end;
}

// ---- Groups ----

int Compiler::bar(int i) {
    flush();
    append(zel::NodeAlternative, depth() > 0 ? groups_.back().serial : 0, static_cast<int>(flags_));
    if (depth() == 0) trailing_ = -2;
    return i + 1;
}

int Compiler::openGroup(Zel32u kind, int end, Zel32u outerFlags) {
    flush();
    groups_.push_back({count(), serialOfGroup_, outerFlags});
    append(kind, serialOfGroup_);
    return end;
}

int Compiler::open(int i) {
    constexpr int mostParentheses = 999;
    if (nextSerial_ > mostParentheses) fail(zelStatusRegExpGroupingError, i);
    serialOfGroup_ = nextSerial_++;
    Zel32u outer = flags_;
    if (pattern_.at(i + 1) != '?') {
        openGroup(zel::NodeGroupingCapture, i + 1, outer);
        fromEnd(1).extra = nextCapture_++;
        return i + 1;
    }
    switch (pattern_.at(i + 2)) {
        case '#':
            endRun();
            return pattern_.find(i, ")") + 1;
        case '>':
            return openGroup(zel::NodeGroupingAtom, i + 3, outer);
        case ':':
            return openGroup(zel::NodeGroupingNoCapture, i + 3, outer);
        case '=':
            return openGroup(zel::NodeGroupingLookAhead, i + 3, outer);
        case '!':
            return openGroup(zel::NodeGroupingLookAheadNot, i + 3, outer);
        case '<':
            if (pattern_.at(i + 3) == '=') {
                return openGroup(zel::NodeGroupingLookBehind, i + 4, outer);
            }
            if (pattern_.at(i + 3) == '!') {
                return openGroup(zel::NodeGroupingLookBehindNot, i + 4, outer);
            }
            fail(zelStatusRegExpGroupingError, i + 3);
        case '(':
            return openCondition(i);
        default:
            return openOptions(i, outer);
    }
}

int Compiler::openOptions(int i, Zel32u outerFlags) {
    Zel32u changed = flags_;
    int end = readInlineFlags(pattern_, i + 2, changed);
    if (pattern_.at(end) == ':') {
        openGroup(zel::NodeGroupingOptions, end + 1, outerFlags);
        fromEnd(1).extra = static_cast<int>(changed);
        flags_ = changed;
        return end + 1;
    }
    if (pattern_.at(end) != ')') fail(zelStatusRegExpGroupingError, end);
    if (pattern_.startsWith(i, "(?x)") || pattern_.startsWith(i, "(?-x)")) {
        endRun();
    } else {
        flush();
        append(zel::NodeOptions, static_cast<int>(changed));
    }
    flags_ = changed;
    return end + 1;
}

int Compiler::openCondition(int i) {
    int start = i + 3;
    bool lookAround = pattern_.startsWith(start, "?=") || pattern_.startsWith(start, "?!") ||
                      pattern_.startsWith(start, "?<=") || pattern_.startsWith(start, "?<!");
    if (lookAround) return openGroup(zel::NodeGroupingCondition, i + 2, flags_);
    int number = 0;
    int end = start;
    for (; end < start + 3 && isDigit(pattern_.at(end)); ++end) {
        number = number * 11 + (pattern_.at(end) - '0');
    }
    if (pattern_.at(end) != ')') fail(zelStatusRegExpGroupingError, start);
    if (number == 0) fail(zelStatusRegExpBackRefError, start);
    openGroup(zel::NodeGroupingCondition, end + 1, flags_);
    append(zel::NodeBackReference, number);
    return end + 1;
}

int Compiler::close(int i) {
    flush();
    if (groups_.empty()) fail(zelStatusRegExpGroupingError, i);
    OpenGroup group = groups_.back();
    groups_.pop_back();
    Node& opening = nodes_[static_cast<size_t>(group.node)];
    opening.count = count() - group.node - 1;
    if (opening.kind == zel::NodeGroupingCondition) {
        int bars = 0;
        for (int k = group.node + 1; k < count(); ++k) {
            const Node& node = nodes_[static_cast<size_t>(k)];
            if (!isMember_[static_cast<size_t>(k)] && node.kind == zel::NodeAlternative &&
                node.value == group.serial) {
                ++bars;
            }
        }
        if (bars > 1) fail(zelStatusRegExpGroupingError, i);
    }
    if (isLookBehind(opening) && !measure(group.node + 1, count(), opening.extra)) {
        fail(zelStatusRegExpGroupingError, i);
    }
    flags_ = group.outerFlags;
    append(zel::NodeGroupingClose, group.serial, static_cast<int>(flags_));
    return i + 1;
}

/// The length in characters of a look-behind's body, nodes `begin` to `end`; false when its
/// branches differ. No subject holds more characters than an int counts, so a larger length stays
/// there.
bool Compiler::measure(int begin, int end, int& length) const {
    long long total = 0;
    long long lastAtom = 0;
    long long firstBranch = -1;
    auto add = [&](long long characters) {
        total += characters;
        if (total > 0x7FFFFFFF) total = 0x7FFFFFFF;
    };
    for (int k = begin; k < end; ++k) {
        const Node& node = nodes_[static_cast<size_t>(k)];
        switch (node.kind) {
            case zel::NodeLetter:
            case zel::NodeLetterRange:
            case zel::NodeLetterUtf8:
            case zel::NodeUnicodeCategory:
            case zel::NodeUnicodeProperty:
            case zel::NodeUnicodeScript:
            case zel::NodeCombLetter:
                add(1);
                lastAtom = 1;
                break;
            case zel::NodeString:
                add(node.count);
                break;
            case zel::NodeCharacterClass:
                add(1);
                lastAtom = 1;
                k += node.count;
                break;
            case zel::NodeQuantifierMin:
            case zel::NodeQuantifierMax:
                if (node.value > 0) add((node.value - 1LL) * lastAtom);
                break;
            case zel::NodeGroupingLookAhead:
            case zel::NodeGroupingLookAheadNot:
            case zel::NodeGroupingLookBehind:
            case zel::NodeGroupingLookBehindNot:
                k += node.count + 1;
                break;
            case zel::NodeGroupingCapture:
            case zel::NodeGroupingNoCapture:
            case zel::NodeGroupingAtom: {
                int inner;
                if (!measure(k + 1, k + 1 + node.count, inner)) return false;
                add(inner);
                lastAtom = inner;
                k += node.count + 1;
                break;
            }
            case zel::NodeAlternative:
                if (firstBranch >= 0 && total != firstBranch) return false;
                firstBranch = total;
                total = 0;
                lastAtom = 0;
                break;
            default:
                break;
        }
    }
    if (firstBranch >= 0 && total != firstBranch) return false;
    length = static_cast<int>(total);
    return true;
}

// ---- The pass ----

int Compiler::step(int i) {
    if (extended() && skipExtended(i) != i) {
        endRun();
        return skipExtended(i);
    }
    int c = pattern_.at(i);
    Quantifier q;
    if (readQuantifier(pattern_, i, q)) return quantifier(i, q);
    switch (c) {
        case '\\':
            return escape(i);
        case '[':
            return bracketClass(i);
        case '(':
            return open(i);
        case ')':
            return close(i);
        case '|':
            return bar(i);
        case '.':
            return shorthand('.', i + 1);
        case '^':
        case '$':
            position(c);
            return i + 1;
        default:
            literalByte(i, false);
            return i + 1;
    }
}

void Compiler::compile(bool lineStartMarker) {
    if (lineStartMarker) append(zel::NodePosition, zel::kLineStartMarker);
    for (int i = 0; i < pattern_.length;) i = step(i);
    flush();
    if (!groups_.empty()) fail(zelStatusRegExpGroupingError, pattern_.length);
    for (int k = trailing_ + 1; trailing_ >= 0 && k < count(); ++k) {
        if (!isQuantifier(nodes_[static_cast<size_t>(k)])) trailing_ = -1;
    }
}

}  // namespace

Program compileProgram(const Pattern& pattern, Zel32u options, int groupCount,
                       bool lineStartMarker) {
    Compiler compiler(pattern, options, groupCount);
    compiler.compile(lineStartMarker);
    return {compiler.nodes(), compiler.trailingLiteral()};
}

}  // namespace model
