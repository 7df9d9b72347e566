// The light walk. See light_walk.h for what it is; the rules that it follows are those of
// engine.cpp, greedy_runs.h, groups.h and lazy_runs.cpp.
#include "regexp/match/light_walk.h"

#include <emmintrin.h>
#include <stdint.h>

#include <type_traits>

#include "regexp/match/character.h"
#include "regexp/match/positions.h"

namespace zel {

namespace {

// Whoever spends more is better served by the engine, which gives back with more care.
constexpr int kMostSteps = 2000;
constexpr int kMaxChoices = 16;

/// A place where the line could go another way.
struct Choice {
    enum Kind : int {
        kRun,    // a greedy run can be shorter: the rest from `node` on, down to `limit`
        kLazy,   // the lazy run of the atom `node` can be longer, up to `limit`
        kGroup,  // the group that opens at `node` can be passed over
    };
    Kind kind;
    const Node* node;
    const Zel8u* position;
    const Zel8u* limit;
    const Zel8u* start;  // of a lazy run
};

/// Sixteen bytes at a time, as far as the text goes. No byte outside of it is read.
class Chunks {
public:
    static constexpr int kSize = 16;

    Chunks(const Zel8u* text, const Zel8u* end) : text_(text), end_(end) {}

    struct Chunk {
        __m128i bytes;
        unsigned skipped;  // bytes in front of the position
    };
    /// The chunk that holds the byte at a position, and as many behind it as can be. Where the text
    /// is shorter it holds zeros.
    Chunk at(const Zel8u* position) const {
        if (end_ - text_ < kSize) {
            return {loadShort(text_, static_cast<unsigned>(end_ - text_)),
                    static_cast<unsigned>(position - text_)};
        }
        const Zel8u* first = end_ - position >= kSize ? position : end_ - kSize;
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(first)),
                static_cast<unsigned>(position - first)};
    }

private:
    template <typename Word>
    static uint64_t load(const Zel8u* at) {
        Word word;
        __builtin_memcpy(&word, at, sizeof word);
        return word;
    }
    static __m128i loadShort(const Zel8u* text, unsigned length) {
        uint64_t low = 0;
        uint64_t high = 0;
        if (length >= 8) {
            low = load<uint64_t>(text);
            const unsigned half = 4 * (kSize - length);  // two shifts, because 64 is one too many
            high = load<uint64_t>(text + length - 8) >> half >> half;
        } else if (length >= 4) {
            low = load<uint32_t>(text) | load<uint32_t>(text + length - 4) << (8 * (length - 4));
        } else if (length > 0) {
            low = load<Zel8u>(text) | load<Zel8u>(text + length / 2) << (8 * (length / 2)) |
                  load<Zel8u>(text + length - 1) << (8 * (length - 1));
        }
        return _mm_set_epi64x(static_cast<int64_t>(high), static_cast<int64_t>(low));
    }

    const Zel8u* const text_;
    const Zel8u* const end_;
};

/// For each ASCII byte, which shorthands accept it, one bit for each.
struct ShorthandTable {
    static constexpr Zel8u kAnyThing = 0x80;  // the dot that accepts newlines

    Zel8u masks[256] = {};  // of the shorthand letters
    Zel8u bytes[256] = {};

    constexpr ShorthandTable() {
        constexpr char kLetters[] = "dDsSwW.";
        for (unsigned i = 0; i < 7; ++i) {
            const Zel8u mask = static_cast<Zel8u>(1u << i);
            masks[static_cast<Zel8u>(kLetters[i])] = mask;
            for (unsigned c = 0; c < 0x80; ++c) {
                if (shorthandBytes(kLetters[i], 0).has(static_cast<Zel8u>(c))) bytes[c] |= mask;
            }
        }
        for (unsigned c = 0; c < 0x80; ++c) bytes[c] |= kAnyThing;
    }
    constexpr Zel8u maskOf(const Node& node, Zel32u flags) const {
        if (node.value == '.' && (flags & kOptionDotAll) != 0) return kAnyThing;
        return masks[static_cast<Zel8u>(node.value)];
    }
};
constexpr ShorthandTable kShorthands;

__m128i eachByte(int byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
}

/// All bits of the bytes from first to last.
__m128i inRange(__m128i bytes, int first, int last) {
    const __m128i distance = _mm_sub_epi8(bytes, eachByte(first));
    return _mm_cmpeq_epi8(_mm_min_epu8(distance, eachByte(last - first)), distance);
}

__m128i invert(__m128i bits) {
    return _mm_xor_si128(bits, eachByte(-1));
}

/// All bits of the bytes that a shorthand accepts as characters of their own.
__m128i acceptedByShorthand(int letter, Zel32u flags, __m128i bytes) {
    switch (letter) {
        case 'd':
            return inRange(bytes, '0', '9');
        case 'D':
            return invert(inRange(bytes, '0', '9'));
        case 's':
        case 'S': {
            const __m128i controls =
                _mm_andnot_si128(_mm_cmpeq_epi8(bytes, eachByte(0x0B)), inRange(bytes, 9, 13));
            const __m128i spaces = _mm_or_si128(controls, _mm_cmpeq_epi8(bytes, eachByte(' ')));
            return letter == 's' ? spaces : invert(spaces);
        }
        case 'w':
        case 'W': {
            const __m128i letters = inRange(_mm_or_si128(bytes, eachByte(0x20)), 'a', 'z');
            const __m128i others =
                _mm_or_si128(inRange(bytes, '0', '9'), _mm_cmpeq_epi8(bytes, eachByte('_')));
            const __m128i words = _mm_or_si128(letters, others);
            return letter == 'w' ? words : invert(words);
        }
        case '.':
            if ((flags & kOptionDotAll) != 0) return eachByte(-1);
            return invert(_mm_cmpeq_epi8(bytes, eachByte('\n')));
        default:
            return _mm_setzero_si128();
    }
}

// What an atom takes: `takes` says whether one byte, `accept` which of sixteen. `leaves` says of a
// byte that it may begin a longer character, which is for the engine. A run of up to kFew bytes is
// tested byte by byte first.

struct LetterAtom {
    const Node& node;
    static constexpr bool kRaises = true;  // a lazy run that fails
    static constexpr bool kHints = true;   // a lazy run looks at the letter behind it first
    static constexpr int kFew = 4;

    bool isKnown() const { return true; }
    bool takes(Zel8u byte) const { return byte == static_cast<Zel8u>(node.value); }
    bool leaves(Zel8u) const { return false; }
    bool accept(__m128i bytes, __m128i& accepted) const {
        accepted = _mm_cmpeq_epi8(bytes, eachByte(node.value));
        return true;
    }
};

struct ShorthandAtom {
    const Node& node;
    Zel32u flags;
    Zel8u mask;
    static constexpr bool kRaises = true;
    static constexpr bool kHints = true;
    static constexpr int kFew = 4;

    bool isKnown() const { return true; }
    bool takes(Zel8u byte) const { return (kShorthands.bytes[byte] & mask) != 0; }
    bool leaves(Zel8u byte) const { return byte >= 0x80; }
    bool accept(__m128i bytes, __m128i& accepted) const {
        const __m128i wide = _mm_cmplt_epi8(bytes, _mm_setzero_si128());
        accepted = _mm_andnot_si128(wide, acceptedByShorthand(node.value, flags, bytes));
        return true;
    }
};

/// The last character of a letter or range; the ends of ranges are unsigned.
unsigned lastOf(const Node& member) {
    return member.kind == NodeLetter ? static_cast<Zel8u>(member.value)
                                     : static_cast<unsigned>(member.count);
}

/// A class of one or two letters or ranges of bytes.
struct PairAtom {
    const Node& node;
    bool decodes;
    unsigned low[2] = {};
    unsigned size[2] = {};
    static constexpr bool kRaises = false;
    static constexpr bool kHints = false;
    static constexpr int kFew = 4;

    PairAtom(const Node& head, bool isUtf8) : node(head), decodes(isUtf8) {}
    /// Fills the ranges; false when it is another class.
    bool describe() { return node.count <= 2 && add(0) && (node.count < 2 || add(1)); }

    bool isKnown() const { return true; }
    bool holds(Zel8u byte) const { return byte - low[0] < size[0] || byte - low[1] < size[1]; }
    bool takes(Zel8u byte) const { return !leaves(byte) && holds(byte) == (node.value >= 0); }
    const Zel8u* takeFew(const Zel8u* run, const Zel8u* stop) const {
        if (node.value < 0) {
            while (run < stop && !holds(*run) && !leaves(*run)) ++run;
        } else {
            while (run < stop && holds(*run)) ++run;  // in text that is decoded all are ASCII
        }
        return run;
    }
    bool leaves(Zel8u byte) const { return decodes && byte >= 0x80; }
    bool accept(__m128i bytes, __m128i& accepted) const;

private:
    bool add(int i) {
        const Node& member = (&node)[i + 1];
        const bool isLetter = member.kind == NodeLetter;
        if (!isLetter && member.kind != NodeRange) return false;
        const unsigned last = lastOf(member);
        if (last > (decodes ? 0x7F : 0xFF)) return false;
        low[i] = static_cast<unsigned>(isLetter ? member.value & 0xFF : member.value);
        size[i] = isLetter ? 1 : static_cast<unsigned>(member.count - member.value + 1);
        return member.extra == 0;
    }
};

/// A class of letters, ranges of bytes and shorthands.
struct ClassAtom {
    const Node& node;
    Zel32u flags;
    bool decodes;
    static constexpr bool kRaises = false;
    static constexpr bool kHints = false;
    static constexpr int kFew = 1;

    bool isKnown() const {
        for (const Node* member = &node + 1; member <= &node + node.count; ++member) {
            const bool isPlain = member->kind == NodeLetter || member->kind == NodeLetterRange ||
                                 (member->kind == NodeRange && lastOf(*member) < 0x100);
            if (!isPlain || member->extra != 0) return false;
        }
        return true;
    }
    bool takes(Zel8u byte) const {
        bool found = false;
        if (leaves(byte)) return false;
        for (const Node* member = &node + 1; member <= &node + node.count && !found; ++member) {
            if (member->kind == NodeLetter) {
                found = byte == static_cast<Zel8u>(member->value);
            } else if (member->kind == NodeRange) {
                found = byte >= member->value && byte <= member->count;
            } else {
                found = shorthandBytes(member->value, flags).has(byte);
            }
        }
        return found != (node.value < 0);
    }
    bool leaves(Zel8u byte) const { return decodes && byte >= 0x80; }
    bool accept(__m128i bytes, __m128i& accepted) const {
        __m128i sum = _mm_setzero_si128();
        const Node* const end = &node + 1 + node.count;
        for (const Node* member = &node + 1; member != end; ++member) {
            __m128i bits;
            if (member->extra != 0) return false;
            if (member->kind == NodeLetter) {
                bits = _mm_cmpeq_epi8(bytes, eachByte(member->value));
            } else if (member->kind == NodeRange && lastOf(*member) < 0x100) {
                bits = inRange(bytes, member->value, member->count);
            } else if (member->kind == NodeLetterRange) {
                bits = acceptedByShorthand(member->value, flags, bytes);
            } else {
                return false;
            }
            sum = _mm_or_si128(sum, bits);
        }
        if (node.value < 0) sum = invert(sum);
        if (decodes) sum = _mm_andnot_si128(_mm_cmplt_epi8(bytes, _mm_setzero_si128()), sum);
        accepted = sum;
        return true;
    }
};

/// What the program from a node on has to find in front of the end of the text, and what it costs
/// to find out that it does not: it goes through assertions, closes and what takes nothing.
class Beginning {
public:
    /// Reads on from the node; nothing is known of programs that go on in other ways.
    [[gnu::noinline]] void read(const Node* node, const Node* nodesEnd,
                                const ZelRegExpState& state) {
        from_ = node;
        mask_ = 0;
        letters_ = 0;
        class_ = nullptr;
        price_ = 0;
        known_ = false;
        flags_ = state.options;
        while (node < nodesEnd && !known_) {
            ++price_;
            const Node* next = node + 1;
            switch (node->kind) {
                case NodeGroupingClose:
                    if (isQuantifier(next, nodesEnd)) return;
                    node = next;
                    continue;
                case NodeGroupingCapture:
                case NodeGroupingNoCapture:
                    if (isQuantifier(next + node->count + 1, nodesEnd)) return;
                    node = next;
                    continue;
                case NodePosition:
                    if (isQuantifier(next, nodesEnd) || (node->value != '$' && node->value != 'Z'))
                        return;
                    known_ = addLetter('\n');
                    return;
                case NodeLetter:
                    if (!addLetter(static_cast<Zel8u>(node->value))) return;
                    break;
                case NodeString:
                    known_ = addLetter(*static_cast<const Zel8u*>(node->data));
                    return;
                case NodeLetterRange:
                    mask_ |= kShorthands.maskOf(*node, flags_);
                    break;
                case NodeCharacterClass:
                    if (class_ != nullptr || !ClassAtom{*node, flags_, false}.isKnown()) return;
                    class_ = node;
                    next += node->count;
                    break;
                default:
                    return;
            }
            known_ = !isQuantifier(next, nodesEnd) || next->value > 0;
            if (next->kind == NodeQuantifierMin) return;
            node = next + 1;
        }
    }

    const Node* from() const { return from_; }
    bool isKnown() const { return known_; }
    int price() const { return price_; }
    bool mayBegin(Zel8u byte) const {
        if (byte >= 0x80 || (kShorthands.bytes[byte] & mask_) != 0) return true;
        for (int i = 0; i < letters_; ++i) {
            if (byte == letter_[i]) return true;
        }
        return class_ != nullptr && ClassAtom{*class_, flags_, false}.takes(byte);
    }

private:
    static bool isQuantifier(const Node* node, const Node* nodesEnd) {
        return node < nodesEnd && node->kind - NodeQuantifierMin <= 1u;
    }
    bool addLetter(Zel8u letter) {
        if (letters_ == kMaxLetters) return false;
        letter_[letters_++] = letter;
        return true;
    }

    static constexpr int kMaxLetters = 3;
    const Node* from_ = nullptr;
    const Node* class_;
    Zel32u flags_;
    int price_;
    int letters_;
    Zel8u letter_[kMaxLetters];
    Zel8u mask_;
    bool known_;
};

bool PairAtom::accept(__m128i bytes, __m128i& accepted) const {
    return ClassAtom{node, 0, decodes}.accept(bytes, accepted);
}

/// The first byte of [run, stop) that the atom does not take, a few bytes further.
template <typename Atom>
const Zel8u* takeFew(const Atom& atom, const Zel8u* run, const Zel8u* stop) {
    if constexpr (std::is_same_v<Atom, PairAtom>) {
        return atom.takeFew(run, stop);
    } else {
        while (run < stop && atom.takes(*run)) ++run;
        return run;
    }
}

struct Taken {
    enum End { kHere, kFurther, kNotAsked };
    End end;
    const Zel8u* run;
};

/// The first byte of [run, stop) that the atom does not take, or the end of the chunk.
template <typename Atom>
Taken takeChunk(const Chunks chunks, const Atom& atom, const Zel8u* stop, const Zel8u* run) {
    const Chunks::Chunk chunk = chunks.at(run);
    __m128i accepted = _mm_setzero_si128();
    if (!atom.accept(chunk.bytes, accepted)) return {Taken::kNotAsked, run};
    const unsigned rejected =
        (~static_cast<unsigned>(_mm_movemask_epi8(accepted)) & 0xFFFF) >> chunk.skipped;
    run += rejected != 0 ? static_cast<unsigned>(__builtin_ctz(rejected))
                         : Chunks::kSize - chunk.skipped;
    if (rejected == 0 && run < stop) return {Taken::kFurther, run};
    return {Taken::kHere, run < stop ? run : stop};
}

template <typename Atom>
[[gnu::noinline]] Taken takeChunks(const Chunks chunks, const Atom atom, const Zel8u* stop,
                                   const Zel8u* run) {
    Taken taken = {Taken::kFurther, run};
    while (taken.end == Taken::kFurther) taken = takeChunk(chunks, atom, stop, taken.run);
    return taken;
}

class LightWalk {
public:
    LightWalk(const ZelRegExpState& state, const Zel8u* text, int length, const WorkAreas& work,
              Choice* choices, Beginning& beginning)
        : state_(state),
          nodes_(state.nodes()),
          nodesEnd_(nodes_ + state.nodeCount),
          text_(text),
          end_(text + length),
          captures_(work.captures),
          groups_(work.groups),
          choices_(choices),
          beginning_(beginning),
          position_(text),
          node_(nodes_),
          steps_(state.matchLimit < kMostSteps ? state.matchLimit : kMostSteps) {}

    LightOutcome run() {
        if (isQuantifier(nodes_ + 1)) return LightOutcome::kNotKnown;
        ++node_;  // the assertion that this is the start of the text
        --steps_;
        for (;;) {
            Step step = kGoOn;
            while (step == kGoOn) {
                if (node_ == nodesEnd_) return finish();
                --steps_;
                step = execute(*node_);
            }
            while (step == kFail) {
                if (steps_ < 0 || hasBars()) return LightOutcome::kNotKnown;
                if (top_ == 0) return LightOutcome::kFailed;
                step = goBack(choices_[top_ - 1]);
            }
            if (step == kUnknown) return LightOutcome::kNotKnown;
        }
    }

private:
    enum Step { kGoOn, kFail, kUnknown };

    bool isQuantifier(const Node* node) const {
        return node < nodesEnd_ && node->kind - NodeQuantifierMin <= 1u;
    }
    int left() const { return static_cast<int>(end_ - position_); }
    Step push(const Choice& choice) {
        if (top_ == kMaxChoices) return kUnknown;
        choices_[top_++] = choice;
        return kGoOn;
    }

    LightOutcome finish() const {
        if (steps_ < 0) return LightOutcome::kNotKnown;
        captures_[0] = {text_, static_cast<int>(position_ - text_) + raised_};
        return LightOutcome::kMatched;
    }

    /// Bars give more choices, at top level and in groups. The walk meets them itself, and stops
    /// there, as long as nothing fails.
    bool hasBars() {
        if (knowsBars_) return false;
        knowsBars_ = true;
        const Node* node = nodes_;
        for (; nodesEnd_ - node >= 4; node += 4) {
            if (isBar(node[0]) || isBar(node[1]) || isBar(node[2]) || isBar(node[3])) return true;
        }
        for (; node != nodesEnd_; ++node) {
            if (isBar(*node)) return true;
        }
        return false;
    }
    static bool isBar(const Node& node) { return node.kind == NodeAlternative; }

    Step execute(const Node& node) {
        switch (node.kind) {
            case NodeLetter:
                return take(letterAtom(node), &node + 1);
            case NodeLetterRange:
                return take(shorthandAtom(node), &node + 1);
            case NodeCharacterClass:
                return withClass(
                    node, [&](const auto& atom) { return take(atom, &node + 1 + node.count); });
            case NodeString:
                return takeString(node);
            case NodePosition:
                return check(node);
            case NodeGroupingCapture:
            case NodeGroupingNoCapture:
                return enterGroup(node);
            case NodeGroupingClose:
                return leaveGroup(node);
            default:
                return kUnknown;
        }
    }

    LetterAtom letterAtom(const Node& node) const { return {node}; }
    ShorthandAtom shorthandAtom(const Node& node) const {
        return {node, state_.options, kShorthands.maskOf(node, state_.options)};
    }
    template <typename Function>
    Step withClass(const Node& head, const Function& function) const {
        PairAtom pair(head, state_.format == kFormatUtf8);
        if (pair.describe()) return function(pair);
        return function(ClassAtom{head, state_.options, pair.decodes});
    }

    Step takeString(const Node& node) {
        const Zel8u* literal = static_cast<const Zel8u*>(node.data);
        if (left() < node.count) return kFail;
        for (int i = 0; i < node.count; ++i) {
            if (position_[i] != literal[i]) return kFail;
        }
        position_ += node.count;
        ++node_;
        return kGoOn;
    }

    Step check(const Node& node) {
        if (isQuantifier(&node + 1)) return kUnknown;
        if (!positionHolds(node.value, position_, left(), text_, state_.options)) return kFail;
        ++node_;
        return kGoOn;
    }

    template <typename Atom>
    Step take(const Atom& atom, const Node* behind) {
        if (isQuantifier(behind)) {
            return behind->kind == NodeQuantifierMax ? takeRun(atom, *behind)
                                                     : beginLazy(atom, *behind);
        }
        if (position_ == end_) return kFail;
        if (!atom.isKnown() || atom.leaves(*position_)) return kUnknown;
        if (!atom.takes(*position_)) return kFail;
        ++position_;
        node_ = behind;
        return kGoOn;
    }

    /// The first byte of [run, stop) that the atom does not take.
    template <typename Atom>
    Taken takeAll(const Atom& atom, const Zel8u* stop) const {
        const Zel8u* run = position_;
        const bool isFew = stop - run <= Atom::kFew;
        if (isFew || !std::is_same_v<Atom, ClassAtom>) {
            if (!atom.isKnown()) return {Taken::kNotAsked, run};
            const Zel8u* near = isFew ? stop : run + Atom::kFew;
            run = takeFew(atom, run, near);
            if (run < near || isFew) return {Taken::kHere, run};
        }
        Taken taken = takeChunk(Chunks(text_, end_), atom, stop, run);
        if (taken.end == Taken::kFurther)
            taken = takeChunks(Chunks(text_, end_), atom, stop, taken.run);
        return taken;
    }

    template <typename Atom>
    Step takeRun(const Atom& atom, const Node& quantifier) {
        const Zel8u* stop = quantifier.count < left() ? position_ + quantifier.count : end_;
        const Zel8u* low = position_ + quantifier.value;
        const Taken taken = takeAll(atom, stop);
        const Zel8u* run = taken.run;
        if (taken.end == Taken::kNotAsked || (run < end_ && atom.leaves(*run))) return kUnknown;
        position_ = run;
        node_ = &quantifier + 1;
        if (run > low) return push({Choice::kRun, node_, run, low, nullptr});
        if (run == low) return kGoOn;
        return quantifier.count < quantifier.value ? kUnknown : kFail;
    }

    template <typename Atom>
    Step beginLazy(const Atom& atom, const Node& quantifier) {
        if (quantifier.count < quantifier.value || top_ == kMaxChoices || !atom.isKnown())
            return kUnknown;
        const Zel8u* start = position_;
        const Zel8u* limit = quantifier.count < left() ? position_ + quantifier.count : end_;
        for (int i = 0; i < quantifier.value; ++i, ++position_) {
            if (position_ == end_) return kFail;
            if (atom.leaves(*position_)) return kUnknown;
            if (!atom.takes(*position_)) return kFail;
        }
        const Zel8u* run = position_;
        const Node* rest = &quantifier + 1;
        Choice& choice = choices_[top_++];
        choice = {Choice::kLazy, node_, run, limit, start};
        node_ = rest;
        // At the end of the text the byte behind it decides.
        if (Atom::kHints && isElsewhere(*rest, run)) return stretch(atom, choice, rest);
        return kGoOn;
    }

    /// Whether a letter that a lazy run looks out for does not stand at the position.
    bool isElsewhere(const Node& rest, const Zel8u* position) const {
        return &rest != nodesEnd_ && rest.kind == NodeLetter &&
               *position != static_cast<Zel8u>(rest.value);
    }

    /// Makes the lazy run longer by the next characters, until it is worth going on behind it.
    template <typename Atom>
    Step stretch(const Atom& atom, Choice& choice, const Node* rest) {
        const Zel8u* run = choice.position;
        do {
            if (run < end_ && atom.leaves(*run)) return kUnknown;
            if (run == end_ || !atom.takes(*run)) return endLazy<Atom>(choice, run);
            if (++run > choice.limit) return endLazy<Atom>(choice, run);
        } while ((Atom::kHints && isElsewhere(*rest, run)) || cannotBegin(rest, run));
        choice.position = position_ = run;
        node_ = rest;
        return kGoOn;
    }

    /// Whether the rest cannot begin at the position, which has then been paid for.
    bool cannotBegin(const Node* rest, const Zel8u* position) {
        if (position == end_ || !isKnownBeginning(rest) || beginning_.mayBegin(*position))
            return false;
        steps_ -= beginning_.price();
        return true;
    }

    template <typename Atom>
    Step endLazy(const Choice& choice, const Zel8u* run) {
        if (Atom::kRaises) raised_ += static_cast<int>(run - choice.start);
        --top_;
        return kFail;
    }

    Step enterGroup(const Node& node) {
        const Node* close = &node + 1 + node.count;
        groups_[node.value].openNode = static_cast<int>(&node - nodes_);
        if (node.kind == NodeGroupingCapture) captures_[node.extra] = {position_, 0};
        node_ = &node + 1;
        if (!isQuantifier(close + 1)) return kGoOn;
        const Node& quantifier = close[1];
        if (quantifier.kind != NodeQuantifierMax || quantifier.count != 1) return kUnknown;
        if (quantifier.value != 0) return quantifier.value == 1 ? kGoOn : kUnknown;
        return push({Choice::kGroup, &node, position_, nullptr, nullptr});
    }

    Step leaveGroup(const Node& node) {
        const Node& opening = nodes_[groups_[node.value].openNode];
        if (opening.kind == NodeGroupingCapture) {
            CaptureRecord& record = captures_[opening.extra];
            record.length = static_cast<int>(position_ - record.text);
        }
        node_ = isQuantifier(&node + 1) ? &node + 2 : &node + 1;
        return kGoOn;
    }

    Step passOverGroup(const Choice& choice) {
        const Node* close = choice.node + 1 + choice.node->count;
        for (const Node* node = choice.node; node != close; ++node) {
            if (node->kind == NodeGroupingCapture) captures_[node->extra] = {nullptr, -1};
        }
        position_ = choice.position;
        node_ = close + 2;
        --top_;
        return kGoOn;
    }

    /// The rest behind a shorter run; where it cannot begin, for its price.
    Step giveBack(Choice& choice) {
        const Zel8u* run = choice.position - 1;
        if (run > choice.limit && isKnownBeginning(choice.node)) {
            while (run >= choice.limit && !beginning_.mayBegin(*run)) {
                steps_ -= beginning_.price();
                --run;
            }
        }
        choice.position = position_ = run;
        node_ = choice.node;
        if (run <= choice.limit) --top_;
        return run >= choice.limit ? kGoOn : kFail;
    }

    bool isKnownBeginning(const Node* node) {
        if (beginning_.from() != node) beginning_.read(node, nodesEnd_, state_);
        return beginning_.isKnown();
    }

    Step goBack(Choice& choice) {
        switch (choice.kind) {
            case Choice::kRun:
                return giveBack(choice);
            case Choice::kLazy: {
                const Node& node = *choice.node;
                if (node.kind == NodeLetter) return stretch(letterAtom(node), choice, &node + 2);
                if (node.kind == NodeLetterRange)
                    return stretch(shorthandAtom(node), choice, &node + 2);
                return withClass(node, [&](const auto& atom) {
                    return stretch(atom, choice, &node + 2 + node.count);
                });
            }
            case Choice::kGroup:
                return passOverGroup(choice);
        }
        return kUnknown;
    }

    const ZelRegExpState& state_;
    const Node* const nodes_;
    const Node* const nodesEnd_;
    const Zel8u* const text_;
    const Zel8u* const end_;
    CaptureRecord* const captures_;
    GroupFrame* const groups_;
    Choice* const choices_;
    Beginning& beginning_;
    const Zel8u* position_;
    const Node* node_;
    int steps_;
    int top_ = 0;
    int raised_ = 0;  // what lazy runs that failed have left in the whole match's length
    bool knowsBars_ = false;
};

}  // namespace

LightOutcome walkLightly(const ZelRegExpState& state, const Zel8u* text, int length,
                         WorkAreas work) {
    Choice choices[kMaxChoices];
    Beginning beginning;
    return LightWalk(state, text, length, work, choices, beginning).run();
}

}  // namespace zel
