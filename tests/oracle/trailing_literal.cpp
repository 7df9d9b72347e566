// Which literal a pattern ends in, by the rules of the compiler: the last run of literal bytes
// outside of all groups, or the one letter that a quantifier has split off it, when nothing
// follows. A top-level bar blocks it, until a quantified letter lifts the block.
#include <ctype.h>
#include <string.h>

#include "differences.h"

namespace worlds {

namespace {

/// The minimum of a quantifier, of the first one if several are stacked.
long firstMinimum(Tree repeat) {
    const std::string first(repeat.text, strcspn(repeat.text, " "));
    repeat.text = first.c_str();
    return boundsOf(repeat).min;
}

class Scan {
public:
    explicit Scan(Expectation& expectation)
        : literal_(expectation.trailingLiteral), ignoresCase_(expectation.trailingIgnoresCase) {
        literal_.reset();
    }

    void choice(const Tree& tree, int depth, bool& ignoreCase) {
        const Tree* rest = &tree;
        for (; rest->kind == Tree::kChoice; rest = rest->second) {
            sequence(*rest->first, depth, ignoreCase);
            bar(depth);
        }
        sequence(*rest, depth, ignoreCase);
    }

private:
    void sequence(const Tree& tree, int depth, bool& ignoreCase) {
        std::string run;
        for (const Tree* item : itemsOf(tree)) {
            if (item->kind == Tree::kLiteral) {
                run += item->text;
                continue;
            }
            candidate(run, depth, ignoreCase);
            run.clear();
            if (item->kind == Tree::kRepeat && item->first->kind == Tree::kLiteral) {
                candidate(item->first->text, depth, ignoreCase);
            } else {
                other(item->kind == Tree::kRepeat ? *item->first : *item, depth, ignoreCase);
            }
            if (item->kind != Tree::kRepeat) continue;
            const Tree::Kind atom = item->first->kind;
            if (atom != Tree::kLiteral && atom != Tree::kCodePoint) continue;
            if (blocked_) {
                blocked_ = false;
            } else if (atom == Tree::kLiteral && depth == 0 && firstMinimum(*item) == 0) {
                literal_.reset();
            }
        }
        candidate(run, depth, ignoreCase);
    }

    void other(const Tree& item, int depth, bool& ignoreCase) {
        literal_.reset();
        if (item.kind == Tree::kOptions) ignoreCase = true;
        bool inside = ignoreCase || item.is("(?i:");
        if (item.look != nullptr) choice(*item.look->first, depth + 1, inside);
        if (item.first != nullptr) choice(*item.first, depth + 1, inside);
        if (item.second != nullptr) choice(*item.second, depth + 1, inside);
    }

    void candidate(const std::string& run, int depth, bool ignoreCase) {
        if (run.empty()) return;
        if (depth > 0 || blocked_) {
            literal_.reset();
            return;
        }
        literal_ = run;
        ignoresCase_ = ignoreCase;
    }

    void bar(int depth) {
        literal_.reset();
        if (depth == 0) blocked_ = true;
    }

    std::optional<std::string>& literal_;
    bool& ignoresCase_;
    bool blocked_ = false;
};

std::string folded(std::string text, bool ignoreCase) {
    if (ignoreCase) {
        for (char& c : text) c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    }
    return text;
}

}  // namespace

void findTrailingLiteral(const Tree& tree, bool ignoreCase, Expectation& expectation) {
    Scan(expectation).choice(tree, 0, ignoreCase);
}

int effectiveLength(const Expectation& expectation, const std::string& text) {
    if (!expectation.trailingLiteral) return static_cast<int>(text.size());
    const bool ignoreCase = expectation.trailingIgnoresCase;
    const std::string literal = folded(*expectation.trailingLiteral, ignoreCase);
    const size_t at = folded(text, ignoreCase).rfind(literal);
    return at == std::string::npos ? 0 : static_cast<int>(at + literal.size());
}

}  // namespace worlds
