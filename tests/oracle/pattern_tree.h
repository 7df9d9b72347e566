// Patterns as trees, and the enumeration of all patterns of a small world: everything that can be
// built from a few leaves, groups and quantifiers up to a given size. A leaf, a group, a quantifier
// and a bar each add one to the size; putting things behind one another adds nothing.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace worlds {

struct Tree {
    enum Kind {
        kEmpty,
        kLiteral,    // one byte, or the bytes of one character
        kShorthand,  // the dot, \w and so on: neighbours of the same letter are folded
        kClass,      // a bracket class
        kCodePoint,  // \x{...} of 0x100 or more
        kProperty,   // \p{...}
        kPosition,   // ^ $ \b and so on
        kReference,  // \1
        kOptions,    // (?i)
        kGroup,      // text + first + ")"
        kLook,       // likewise
        kOnGroup,    // (?(1) first | second ), second may be null
        kOnLook,     // (?( look first | second )
        kRepeat,     // first, then the quantifier `text`
        kSequence,   // first, then second
        kChoice,     // first | second
    };
    Kind kind = kEmpty;
    const char* text = "";  // of a leaf or quantifier, or the opening of a group
    const Tree* first = nullptr;
    const Tree* second = nullptr;
    const Tree* look = nullptr;

    bool is(const char* other) const { return std::string(other) == text; }
    bool isCapture() const { return kind == kGroup && is("("); }
    bool isAtomic() const { return kind == kGroup && is("(?>"); }
    bool isBehind() const { return kind == kLook && text[2] == '<'; }
    bool isNegative() const { return kind == kLook && text[isBehind() ? 3 : 2] == '!'; }
};

/// Bounds of a quantifier's text, or the sum of several with blanks between them.
struct Bounds {
    long min;
    long max;
    bool lazy;
    static constexpr long kUnbounded = 0x3FFFFFFF;
};
Bounds boundsOf(const Tree& repeat);
bool isStacked(const Tree& repeat);

/// What the patterns of a world are built from, and the texts that they are tried on.
struct World {
    struct Leaf {
        Tree::Kind kind;
        const char* text;
        bool repeatable = true;
    };
    std::vector<Leaf> leaves;
    std::vector<const char*> groups;
    std::vector<const char*> looks;
    std::vector<const char*> quantifiers;
    bool onGroup = false;  // (?(1)...)
    bool onLook = false;   // (?(?=...)...)
    int size = 0;          // of the largest patterns

    std::vector<const char*> letters;         // of the texts
    int textLength = 0;                       // of the longest texts
    std::vector<const char*> options = {""};  // option strings to compile with
    bool utf8 = false;
    char behind = '#';  // the byte behind every text
};

/// The pattern's text.
std::string textOf(const Tree& tree);

/// The items of a sequence; a single item is a sequence of its own, the empty tree has none.
std::vector<const Tree*> itemsOf(const Tree& sequence);

/// Calls `visit` for a tree and everything in it, in the order of the pattern's text.
void walk(const Tree& tree, const std::function<void(const Tree&)>& visit);

/// Whether a tree can match without consuming anything, as far as its shape tells.
bool canBeEmpty(const Tree& tree);

/// All patterns of a world.
class Patterns {
public:
    using Visit = std::function<void(const Tree&)>;

    explicit Patterns(const World& world) : world_(world) {}

    /// Calls `visit` for each pattern of the world once; the tree lives as long as the call.
    void forEach(const Visit& visit);

private:
    using Trees = std::vector<const Tree*>;

    // Each makes the trees of one size, out of the stored trees of smaller sizes.
    void makeItems(int size, const Visit& visit);
    void makeSequences(int size, const Visit& visit);
    void makeChoices(int size, const Visit& visit);
    void makeConditions(Tree tree, int size, const Visit& visit);
    void store(Trees& trees, const Tree& tree);

    const World& world_;
    std::deque<Tree> arena_;
    std::vector<Trees> items_;
    std::vector<Trees> sequences_;
    std::vector<Trees> choices_;
};

}  // namespace worlds
