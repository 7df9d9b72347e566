// The atoms of the light walk: what one byte at a time, or sixteen, a letter, a shorthand or a
// class takes. A class is not turned into a set first, as the engine does it: for a text of some
// ten bytes that takes longer than to ask each member.
#pragma once

#include <emmintrin.h>
#include <stdint.h>

#include <type_traits>

#include "regexp/match/predicates.h"
#include "regexp/program.h"

namespace zel::light {

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
inline constexpr ShorthandTable kShorthands;

inline __m128i eachByte(int byte) {
    return _mm_set1_epi8(static_cast<char>(byte));
}

/// All bits of the bytes from first to last.
inline __m128i inRange(__m128i bytes, int first, int last) {
    const __m128i distance = _mm_sub_epi8(bytes, eachByte(first));
    return _mm_cmpeq_epi8(_mm_min_epu8(distance, eachByte(last - first)), distance);
}

inline __m128i invert(__m128i bits) {
    return _mm_xor_si128(bits, eachByte(-1));
}

/// All bits of the bytes that a shorthand accepts as characters of their own.
inline __m128i acceptedByShorthand(int letter, Zel32u flags, __m128i bytes) {
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
// tested byte by byte; where kFewFirst says so, that many bytes of longer runs are, too.

struct LetterAtom {
    const Node& node;
    static constexpr bool kRaises = true;  // a lazy run that fails
    static constexpr bool kHints = true;   // a lazy run looks at the letter behind it first
    static constexpr int kFew = 4;
    static constexpr bool kFewFirst = true;

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
    static constexpr bool kFewFirst = true;

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
inline unsigned lastOf(const Node& member) {
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
    static constexpr bool kFewFirst = false;

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
    static constexpr bool kFewFirst = false;

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

inline bool PairAtom::accept(__m128i bytes, __m128i& accepted) const {
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

}  // namespace zel::light
