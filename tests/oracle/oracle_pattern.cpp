// How shorthands fold, what a look-behind measures, and the pattern that follows from all that.
#include "oracle_pattern.h"

#include <ctype.h>

#include <algorithm>

namespace worlds {

namespace {

bool isShorthandRun(const Tree& item) {
    return item.kind == Tree::kShorthand ||
           (item.kind == Tree::kRepeat && item.first->kind == Tree::kShorthand);
}

std::string shorthandOf(const Tree& item) {
    return item.kind == Tree::kRepeat ? item.first->text : item.text;
}

/// Neighbouring shorthands of one letter, folded: how often the letter is repeated.
struct Folded {
    std::string shorthand;
    Bounds bounds = {1, 1, false};
    bool folded = false;  // more than one item
};

/// Folds items[from...] and moves `from` behind them.
Folded fold(const std::vector<const Tree*>& items, size_t& from) {
    Folded result;
    result.shorthand = shorthandOf(*items[from]);
    bool quantified = items[from]->kind == Tree::kRepeat;
    if (quantified) result.bounds = boundsOf(*items[from]);
    for (++from; from < items.size(); ++from) {
        const Tree& next = *items[from];
        if (!isShorthandRun(next) || shorthandOf(next) != result.shorthand) break;
        Bounds more = {1, 1, false};
        if (next.kind == Tree::kRepeat) more = boundsOf(next);
        if (next.kind == Tree::kRepeat || !quantified) result.bounds.lazy = false;
        result.bounds.min += more.min;
        result.bounds.max = std::min(result.bounds.max + more.max, Bounds::kUnbounded);
        result.folded = quantified = true;
    }
    return result;
}

std::string quantifierText(const Bounds& bounds) {
    std::string text = "{";
    text += std::to_string(bounds.min);
    if (bounds.max != bounds.min) {
        text += ",";
        if (bounds.max != Bounds::kUnbounded) text += std::to_string(bounds.max);
    }
    return text + (bounds.lazy ? "}?" : "}");
}

// ---- Length of a look-behind
// ----------------------------------------------------------------------

/// Measures a look-behind body by the library's rules.
class Measure {
public:
    /// The length, or nothing when the branches differ.
    static std::optional<long> of(const Tree& body) {
        Measure level;
        level.add(body);
        level.endBranch();
        if (level.uneven_) return std::nullopt;
        return level.length_;
    }

private:
    void add(const Tree& tree) {
        switch (tree.kind) {
            case Tree::kChoice:
                add(*tree.first);
                bar();
                add(*tree.second);
                return;
            case Tree::kGroup:
                if (tree.is("(?i:")) {
                    add(*tree.first);  // as if its parentheses were not there
                } else {
                    const std::optional<long> inner = of(*tree.first);
                    if (!inner) uneven_ = true;
                    lastAtom_ = inner.value_or(0);
                    length_ += lastAtom_;
                }
                return;
            case Tree::kOnGroup:
            case Tree::kOnLook:
                add(*tree.first);
                if (tree.second == nullptr) return;
                bar();
                add(*tree.second);
                return;
            default:
                addSequence(tree);
        }
    }

    void addSequence(const Tree& sequence) {
        const std::vector<const Tree*> items = itemsOf(sequence);
        for (size_t i = 0; i < items.size();) {
            const Tree& item = *items[i];
            if (isShorthandRun(item)) {
                const Folded run = fold(items, i);
                addAtom();
                addQuantifier(run.bounds);
                continue;
            }
            if (item.kind == Tree::kLiteral) {
                // A run of several letters leaves the last atom as it was.
                long letters = 0;
                for (; i < items.size() && items[i]->kind == Tree::kLiteral; ++i) {
                    letters += static_cast<long>(std::string(items[i]->text).size());
                }
                length_ += letters;
                if (letters == 1) lastAtom_ = 1;
                continue;
            }
            ++i;
            if (item.kind == Tree::kRepeat) {
                addItem(*item.first);
                addQuantifier(boundsOf(item));
            } else {
                addItem(item);
            }
        }
    }

    void addItem(const Tree& item) {
        switch (item.kind) {
            case Tree::kLiteral:
            case Tree::kShorthand:
            case Tree::kClass:
            case Tree::kCodePoint:
            case Tree::kProperty:
                addAtom();
                break;
            case Tree::kGroup:
            case Tree::kOnGroup:
            case Tree::kOnLook:
                add(item);
                break;
            default:
                break;  // without length
        }
    }

    void addAtom() {
        ++length_;
        lastAtom_ = 1;
    }
    void addQuantifier(const Bounds& bounds) {
        if (bounds.min > 0) length_ += (bounds.min - 1) * lastAtom_;
    }
    void bar() {
        endBranch();
        length_ = lastAtom_ = 0;
    }
    void endBranch() {
        if (firstBranch_ < 0) firstBranch_ = length_;
        if (length_ != firstBranch_) uneven_ = true;
    }

    long length_ = 0;
    long lastAtom_ = 0;
    long firstBranch_ = -1;
    bool uneven_ = false;
};

/// Whether the body surely consumes exactly what it measures, so that PCRE2 can take it as it is.
bool hasPlainLength(const Tree& body) {
    bool plain = true;
    walk(body, [&](const Tree& tree) {
        if (tree.kind == Tree::kReference || tree.kind == Tree::kOnGroup ||
            tree.kind == Tree::kOnLook || tree.is("(?i:") ||
            (tree.kind == Tree::kLiteral && tree.text[1] != '\0')) {
            plain = false;
        }
        if (tree.kind == Tree::kRepeat) {
            const Bounds bounds = boundsOf(tree);
            if (bounds.min != bounds.max || tree.first->kind == Tree::kPosition ||
                tree.first->kind == Tree::kLook) {
                plain = false;
            }
        }
    });
    return plain;
}

/// Whether what a body matches may depend on more than the text at its position.
bool hasMemory(const Tree& tree) {
    bool found = false;
    walk(tree, [&](const Tree& part) {
        found = found || part.kind == Tree::kOnGroup || part.kind == Tree::kOnLook ||
                part.kind == Tree::kReference;
    });
    return found;
}

// ---- The oracle's pattern
// -------------------------------------------------------------------------

class Rewriter {
public:
    Rewriter(const Tree& tree, bool ignoreCase, char behind, Expectation& expectation)
        : expectation_(expectation), behind_(behind), ignoreCase_(ignoreCase) {
        walk(tree, [&](const Tree& part) { hasGroup_ = hasGroup_ || part.isCapture(); });
    }

    std::string rewrite(const Tree& tree) {
        switch (tree.kind) {
            case Tree::kGroup:
                return group(tree);
            case Tree::kLook:
                return look(tree);
            case Tree::kOnGroup:
                return onGroup(tree);
            case Tree::kOnLook:
                return onLook(tree);
            case Tree::kOptions:
                ignoreCase_ = true;
                return tree.text;
            case Tree::kReference:
                return reference(true, "");
            case Tree::kPosition:
                return position(tree);
            case Tree::kRepeat:
                return repeat(tree);
            case Tree::kShorthand:
            case Tree::kSequence:
                return sequence(tree);
            case Tree::kChoice: {
                const std::string first = rewrite(*tree.first);
                return first + "|" + rewrite(*tree.second);
            }
            default:
                return tree.text;
        }
    }

private:
    void met(Difference difference) { expectation_.differences.set(difference); }

    std::string branches(const Tree& tree) {
        std::string text = rewrite(*tree.first);
        if (tree.second != nullptr) (text += '|') += rewrite(*tree.second);
        return text;
    }

    std::string quantifier(const Tree& repeat) {
        if (!isStacked(repeat)) return repeat.text;
        met(kSummedQuantifiers);
        return quantifierText(boundsOf(repeat));
    }

    std::string shorthand(const std::string& text) {
        if (text != "\\s" && text != "\\S") return text;
        met(kVerticalTab);
        return text == "\\s" ? "[\\t\\n\\f\\r ]" : "[^\\t\\n\\f\\r ]";
    }

    std::string group(const Tree& tree) {
        const bool isFirst = tree.isCapture() && !groupSeen_;
        if (isFirst) {
            groupSeen_ = insideGroup_ = true;
            groupRepeated_ = repeatedHere_;
            groupRepeatedOutside_ = repeatedAround_ > (repeatedHere_ ? 1 : 0);
        }
        repeatedHere_ = false;
        const std::string body = inside(tree);
        if (isFirst) insideGroup_ = false;
        return tree.text + body + ")";
    }

    /// The body of a group, whose options end with it.
    std::string inside(const Tree& tree) {
        const bool ignoreCase = ignoreCase_;
        if (tree.is("(?i:")) ignoreCase_ = true;
        const std::string body = branches(tree);
        ignoreCase_ = ignoreCase;
        return body;
    }

    std::string look(const Tree& tree) {
        repeatedHere_ = false;
        const std::string body = inside(tree);
        if (!tree.isBehind()) return tree.text + body + ")";
        const std::optional<long> length = Measure::of(*tree.first);
        if (!length) {
            expectation_.unevenBehind = true;
            return "";
        }
        if (hasPlainLength(*tree.first)) return tree.text + body + ")";
        met(kLookBehindLength);
        const std::string sign = tree.isNegative() ? "!" : "=";
        if (*length == 0) return "(?" + sign + body + ")";
        return "(?<" + sign + "(?=" + body + ")[\\s\\S]{" + std::to_string(*length) + "})";
    }

    std::string onLook(const Tree& tree) {
        std::string condition = look(*tree.look);
        bool captures = false;
        walk(*tree.look, [&](const Tree& part) { captures = captures || part.isCapture(); });
        if (captures && tree.look->isNegative()) {
            met(kCapturesOfACondition);
            condition = "(?!(?!" + condition + "))";
        }
        return "(?" + condition + inside(tree) + ")";
    }

    std::string onGroup(const Tree& tree) {
        repeatedHere_ = false;
        const bool ignoreCase = ignoreCase_;
        const std::string yes = rewrite(*tree.first);
        const std::string no = tree.second == nullptr ? "" : rewrite(*tree.second);
        ignoreCase_ = ignoreCase;
        if (!hasGroup_) {
            met(kConditionWithoutItsGroup);
            return "(?:" + no + ")";
        }
        if (insideGroup_) {
            met(kConditionInItsOwnGroup);
            // The branch that is never taken keeps its groups, for their numbers' sake.
            return "(?:" + yes + "|(?!)" + no + ")";
        }
        return "(?(1)" + yes + (tree.second == nullptr ? "" : "|" + no) + ")";
    }

    std::string reference(bool needsText, const std::string& quantifier) {
        if (!hasGroup_) expectation_.unknownGroup = true;
        std::string text = "\\1" + quantifier;
        if (insideGroup_) {
            met(kReferenceInItsOwnGroup);
            if (groupRepeated_ && groupRepeatedOutside_) met(kReferenceInItsRepeatedGroup);
            // Only a repetition of the group finds what the one before has captured.
            text = groupRepeated_ ? "(?(1)\\1)" : "(?:)";
            if (!quantifier.empty()) text = "(?:" + text + ")" + quantifier;
        }
        if (!needsText) return text;
        met(kReferenceAtTheEnd);
        return "(?:(?!\\z)" + text + ")";
    }

    std::string position(const Tree& tree) {
        if (tree.is("\\G")) {
            met(kSearchStart);
            return "\\A";
        }
        const bool boundary = tree.is("\\b");
        if (!boundary && !tree.is("\\B")) return tree.text;
        expectation_.readsBehind = true;
        if (!isalnum(static_cast<unsigned char>(behind_))) return tree.text;
        met(kBoundaryBehindTheText);
        return std::string("(?:\\z(?<") + (boundary ? "!" : "=") + "\\w)|(?!\\z)" + tree.text + ")";
    }

    /// What a lazy item adds in front of items[next].
    std::string hint(const std::vector<const Tree*>& items, size_t next) {
        if (next == items.size() || ignoreCase_) return "";
        const Tree& item = *items[next];
        if (item.kind != Tree::kRepeat || item.first->kind != Tree::kLiteral) return "";
        if (boundsOf(item).min > 0) return "";
        met(kHint);
        expectation_.readsBehind = true;
        const std::string letter = item.first->text;
        return "(?=" + letter + (letter[0] == behind_ ? "|\\z)" : ")");
    }

    std::string repeat(const Tree& tree) {
        const Bounds bounds = boundsOf(tree);
        const Tree& atom = *tree.first;
        switch (atom.kind) {
            case Tree::kPosition:
                met(kRepeatedPosition);
                return bounds.min == 0 ? "(?:)" : "(?!)";
            case Tree::kLook:
                met(kRepeatedLook);
                return "(?:(?!)" + look(atom) + ")";  // its groups keep their numbers
            case Tree::kReference:
                return reference(bounds.min > 0, quantifier(tree));
            case Tree::kShorthand:
                return sequence(tree);
            case Tree::kLiteral:
                if (bounds.lazy) met(kRaisedLength);
                break;
            case Tree::kCodePoint:
            case Tree::kProperty:
                if (bounds.lazy) met(kLazyCodePoint);
                break;
            default:
                if (atom.kind != Tree::kClass && canBeEmpty(atom) &&
                    bounds.max != Bounds::kUnbounded && bounds.max > 1) {
                    met(hasMemory(atom) ? kEmptyRepetitionWithMemory : kEmptyRepetition);
                }
        }
        const bool again = bounds.max > 1;
        if (again) ++repeatedAround_;
        repeatedHere_ = again;
        const std::string text = rewrite(atom) + quantifier(tree);
        repeatedHere_ = false;
        if (again) --repeatedAround_;
        return text;
    }

    std::string sequence(const Tree& tree) {
        std::string text;
        const std::vector<const Tree*> items = itemsOf(tree);
        for (size_t i = 0; i < items.size();) {
            const Tree& item = *items[i];
            if (!isShorthandRun(item)) {
                text += rewrite(item);
                ++i;
                if (item.kind == Tree::kRepeat && item.first->kind == Tree::kLiteral &&
                    boundsOf(item).lazy) {
                    text += hint(items, i);
                }
                continue;
            }
            const Folded run = fold(items, i);
            if (run.folded) met(kFoldedShorthands);
            text += shorthand(run.shorthand);
            if (run.bounds.min == 1 && run.bounds.max == 1) continue;
            text += quantifierText(run.bounds);
            if (run.bounds.lazy) {
                met(kRaisedLength);
                text += hint(items, i);
            } else if (run.bounds.min != run.bounds.max) {
                met(kGiveBackByTheCharacterBehind);
            }
        }
        return text;
    }

    Expectation& expectation_;
    const char behind_;
    bool ignoreCase_;
    bool hasGroup_ = false;              // the pattern has a group 1
    bool groupSeen_ = false;             // it has been opened
    bool insideGroup_ = false;           // and not closed yet
    bool groupRepeated_ = false;         // it may be repeated itself
    bool groupRepeatedOutside_ = false;  // a group around it may be repeated
    bool repeatedHere_ = false;          // the group that opens next is repeated
    int repeatedAround_ = 0;             // how many repetitions are open
};

}  // namespace

std::string oraclePattern(const Tree& tree, bool ignoreCase, char behind,
                          Expectation& expectation) {
    return Rewriter(tree, ignoreCase, behind, expectation).rewrite(tree);
}

}  // namespace worlds
