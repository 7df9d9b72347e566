// Each level of the grammar (choices of sequences of items) makes its trees of one size out of the
// stored trees of smaller sizes, so every pattern comes exactly once. The largest size, which is
// most of them, is never stored.
#include "pattern_tree.h"

#include <stdlib.h>
#include <string.h>

#include <algorithm>

namespace worlds {

namespace {

/// The bounds of the quantifier at `text`, which moves behind it.
Bounds readQuantifier(const char*& text) {
    Bounds bounds = {0, Bounds::kUnbounded, false};
    if (*text == '+') bounds.min = 1;
    if (*text == '?') bounds.max = 1;
    if (*text == '{') {
        char* end;
        bounds.min = bounds.max = strtol(text + 1, &end, 10);
        if (*end == ',') bounds.max = strtol(end + 1, &end, 10);
        text = end;
    }
    ++text;
    bounds.lazy = *text == '?';
    if (bounds.lazy) ++text;
    return bounds;
}

}  // namespace

bool isStacked(const Tree& repeat) {
    return strchr(repeat.text, ' ') != nullptr;
}

Bounds boundsOf(const Tree& repeat) {
    const char* text = repeat.text;
    Bounds sum = readQuantifier(text);
    while (*text == ' ') {
        const Bounds more = readQuantifier(++text);
        sum.min += more.min;
        sum.max = std::min(sum.max + more.max, Bounds::kUnbounded);
        sum.lazy = false;
    }
    return sum;
}

std::string textOf(const Tree& tree) {
    switch (tree.kind) {
        case Tree::kGroup:
        case Tree::kLook:
            return tree.text + textOf(*tree.first) + ")";
        case Tree::kOnGroup:
        case Tree::kOnLook: {
            std::string text = tree.kind == Tree::kOnGroup ? "(?(1)" : "(?" + textOf(*tree.look);
            text += textOf(*tree.first);
            if (tree.second != nullptr) (text += '|') += textOf(*tree.second);
            return text + ")";
        }
        case Tree::kRepeat:
            return textOf(*tree.first) + tree.text;
        case Tree::kSequence:
            return textOf(*tree.first) + textOf(*tree.second);
        case Tree::kChoice:
            return textOf(*tree.first) + "|" + textOf(*tree.second);
        default:
            return tree.text;
    }
}

std::vector<const Tree*> itemsOf(const Tree& sequence) {
    std::vector<const Tree*> items;
    const Tree* rest = &sequence;
    for (; rest->kind == Tree::kSequence; rest = rest->second) items.push_back(rest->first);
    if (rest->kind != Tree::kEmpty) items.push_back(rest);
    return items;
}

void walk(const Tree& tree, const std::function<void(const Tree&)>& visit) {
    visit(tree);
    for (const Tree* part : {tree.look, tree.first, tree.second}) {
        if (part != nullptr) walk(*part, visit);
    }
}

bool canBeEmpty(const Tree& tree) {
    switch (tree.kind) {
        case Tree::kLiteral:
        case Tree::kShorthand:
        case Tree::kClass:
        case Tree::kCodePoint:
        case Tree::kProperty:
            return false;
        case Tree::kGroup:
            return canBeEmpty(*tree.first);
        case Tree::kOnGroup:
        case Tree::kOnLook:
            return tree.second == nullptr || canBeEmpty(*tree.first) || canBeEmpty(*tree.second);
        case Tree::kRepeat:
            return boundsOf(tree).min == 0 || canBeEmpty(*tree.first);
        case Tree::kSequence:
            return canBeEmpty(*tree.first) && canBeEmpty(*tree.second);
        case Tree::kChoice:
            return canBeEmpty(*tree.first) || canBeEmpty(*tree.second);
        default:
            return true;
    }
}

void Patterns::forEach(const Visit& visit) {
    const size_t sizes = static_cast<size_t>(world_.size) + 1;
    items_.assign(sizes, {});
    sequences_.assign(sizes, {});
    choices_.assign(sizes, {});
    store(sequences_[0], Tree{});
    store(choices_[0], Tree{});
    for (int size = 1; size < world_.size; ++size) {
        const size_t s = static_cast<size_t>(size);
        makeItems(size, [&](const Tree& tree) { store(items_[s], tree); });
        makeSequences(size, [&](const Tree& tree) { store(sequences_[s], tree); });
        makeChoices(size, [&](const Tree& tree) { store(choices_[s], tree); });
        for (const Tree* tree : choices_[s]) visit(*tree);
    }
    makeChoices(world_.size, visit);
}

void Patterns::store(Trees& trees, const Tree& tree) {
    trees.push_back(&arena_.emplace_back(tree));
}

void Patterns::makeItems(int size, const Visit& visit) {
    const size_t inner = static_cast<size_t>(size) - 1;
    Tree tree;
    if (size == 1) {
        for (const World::Leaf& leaf : world_.leaves) {
            tree.kind = leaf.kind;
            tree.text = leaf.text;
            visit(tree);
        }
    }
    for (const bool isLook : {false, true}) {
        tree.kind = isLook ? Tree::kLook : Tree::kGroup;
        for (const char* opening : isLook ? world_.looks : world_.groups) {
            tree.text = opening;
            for (const Tree* body : choices_[inner]) {
                tree.first = body;
                visit(tree);
            }
        }
    }
    if (world_.onGroup) {
        tree = {};
        tree.kind = Tree::kOnGroup;
        makeConditions(tree, size - 1, visit);
    }
    if (world_.onLook) {
        for (int bodySize = 1; bodySize < size; ++bodySize) {
            for (const char* opening : world_.looks) {
                for (const Tree* body : choices_[static_cast<size_t>(bodySize)]) {
                    Tree look;
                    look.kind = Tree::kLook;
                    look.text = opening;
                    look.first = body;
                    tree = {};
                    tree.kind = Tree::kOnLook;
                    tree.look = size < world_.size ? &arena_.emplace_back(look) : &look;
                    makeConditions(tree, size - 1 - bodySize, visit);
                }
            }
        }
    }
    tree = {};
    tree.kind = Tree::kRepeat;
    for (const Tree* item : items_[inner]) {
        if (item->kind == Tree::kRepeat || item->kind == Tree::kOptions) continue;
        bool repeatable = true;
        for (const World::Leaf& leaf : world_.leaves) {
            if (leaf.text == item->text) repeatable = leaf.repeatable;
        }
        if (!repeatable) continue;
        tree.first = item;
        for (const char* quantifier : world_.quantifiers) {
            tree.text = quantifier;
            visit(tree);
        }
    }
}

/// The branches of a conditional group, together `size` large; the bar counts nothing.
void Patterns::makeConditions(Tree tree, int size, const Visit& visit) {
    for (int yes = 0; yes <= size; ++yes) {
        for (const Tree* branch : sequences_[static_cast<size_t>(yes)]) {
            tree.first = branch;
            for (const Tree* other : sequences_[static_cast<size_t>(size - yes)]) {
                tree.second = other;
                visit(tree);
            }
            if (yes == size) {
                tree.second = nullptr;
                visit(tree);
            }
        }
    }
}

void Patterns::makeSequences(int size, const Visit& visit) {
    if (size == world_.size) {
        makeItems(size, visit);
    } else {
        for (const Tree* item : items_[static_cast<size_t>(size)]) visit(*item);
    }
    Tree tree;
    tree.kind = Tree::kSequence;
    for (int first = 1; first < size; ++first) {
        for (const Tree* item : items_[static_cast<size_t>(first)]) {
            tree.first = item;
            for (const Tree* rest : sequences_[static_cast<size_t>(size - first)]) {
                tree.second = rest;
                visit(tree);
            }
        }
    }
}

void Patterns::makeChoices(int size, const Visit& visit) {
    if (size == world_.size) {
        makeSequences(size, visit);
    } else {
        for (const Tree* sequence : sequences_[static_cast<size_t>(size)]) visit(*sequence);
    }
    Tree tree;
    tree.kind = Tree::kChoice;
    for (int first = 0; first < size; ++first) {
        for (const Tree* sequence : sequences_[static_cast<size_t>(first)]) {
            tree.first = sequence;
            for (const Tree* rest : choices_[static_cast<size_t>(size - 1 - first)]) {
                tree.second = rest;
                visit(tree);
            }
        }
    }
}

}  // namespace worlds
