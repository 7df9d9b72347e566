// Where the characters of UTF-8 text begin, and which of them are in a set, as masks of a few
// thousand bytes: searches for characters in a row then go from bit to bit. Only well-formed text
// is marked, and of a set only what its first two bytes tell.
#pragma once

#include "string/kernels/byte_runs.h"

namespace zel::ZEL_ISA {

/// The bytes from 64 * word + first to 64 * word + last.
ZEL_INLINE ByteClass bytesOfWord(int word, int first, int last) {
    uint64_t set[4] = {};
    set[word] = (~uint64_t{0} << first) & (~uint64_t{0} >> (63 - last));
    return ByteClass::fromWords(set);
}

/// The sequences of a block of 64 positions, `carry` being the continuations it has to begin with.
struct Sequences {
    uint64_t wide;          // all but ASCII
    uint64_t continuation;  // 0x80 to 0xBF
    uint64_t two;           // first bytes of sequences of two bytes,
    uint64_t longer;        // and of three or four
    uint64_t bad;           // where a sequence is not, or may not be, well-formed
    uint64_t carry;         // for the next block
};

struct SequenceFinder {
    ByteClass high;
    ByteClass continuation = bytesOfWord(2, 0, 63);
    ByteClass two = bytesOfWord(3, 2, 31);
    ByteClass three = bytesOfWord(3, 32, 47);
    ByteClass four = bytesOfWord(3, 48, 55);
    ByteClass e0 = bytesOfWord(3, 32, 32);
    ByteClass f0 = bytesOfWord(3, 48, 48);
    ByteClass below90 = bytesOfWord(2, 0, 15);
    ByteClass belowA0 = bytesOfWord(2, 0, 31);

    ZEL_INLINE SequenceFinder() {
        constexpr uint64_t kHigh[4] = {0, 0, ~uint64_t{0}, ~uint64_t{0}};
        high = ByteClass::fromWords(kHigh);
    }

    ZEL_INLINE Sequences find(const Zel8u* p, ptrdiff_t left, uint64_t carry) const {
        Sequences found = {};
        found.wide = memberBits(high, p, left);
        if ((found.wide | carry) == 0) return found;
        found.continuation = memberBits(continuation, p, left);
        found.two = memberBits(two, p, left);
        const uint64_t others = found.wide & ~found.continuation & ~found.two;
        uint64_t ofFour = 0;
        if (others != 0) {
            ofFour = memberBits(four, p, left);
            found.longer = memberBits(three, p, left) | ofFour;
            // What begins no sequence, and forms that would have fitted into fewer bytes.
            found.bad = others & ~found.longer;
            found.bad |= memberBits(e0, p, left) & memberBits(belowA0, p + 1, left - 1);
            found.bad |= memberBits(f0, p, left) & memberBits(below90, p + 1, left - 1);
        }
        const uint64_t leads = found.two | found.longer;
        const uint64_t wanted = carry | leads << 1 | found.longer << 2 | ofFour << 3;
        found.carry = leads >> 63 | found.longer >> 62 | ofFour >> 61;
        found.bad |= found.continuation ^ wanted;
        return found;
    }
};

/// The characters of two bytes in a set, of which those that are not known are added to `unknown`.
ZEL_INLINE uint64_t twoByteMembers(const kernels::CharacterSet& set, const Zel8u* p, ptrdiff_t left,
                                   uint64_t leads, uint64_t& unknown) {
    uint64_t members = 0;
    while (leads != 0) {
        const Zel8u lead = p[countTrailingZeros(leads)];
        const uint64_t same = leads & memberBits(EqualsAnyOf<Zel8u, 1>::of(&lead), p, left);
        const int number = lead & 0x1F;
        if (((set.known >> number) & 1) != 0) {
            const uint64_t accepted[4] = {0, 0, set.twoBytes[number], 0};
            members |= same & memberBits(ByteClass::fromWords(accepted), p + 1, left - 1);
        } else {
            unknown |= same;
        }
        leads &= ~same;
    }
    return members;
}

/// The highest of the positions below 64 * word + bit that is marked, 0 when there is none.
ZEL_INLINE int lastMarkBelow(const uint64_t* marks, int word, int bit) {
    uint64_t bits = marks[word] & lowBits(bit);
    while (bits == 0 && word > 0) bits = marks[--word];
    return bits == 0 ? 0 : kMaskBits * word + 63 - countLeadingZeros(bits);
}

/// Bit i & 63 of word i >> 6 says it of the character that begins with byte i.
struct CharacterMarks {
    static constexpr int kMaxSets = kernels::CharacterPattern::kMaxParts;
    static constexpr int kWords = 32;
    static constexpr int kMaxLength = kMaskBits * kWords;
    using Words = uint64_t[kWords + 2];
    Words starts;             // where one begins
    Words stops[kMaxSets];    // one that is not in the set, or is not known to be
    Words unknown[kMaxSets];  // one that is not known to be or not

    /// The 64 marks from a position on.
    ZEL_INLINE static uint64_t from(const uint64_t* words, unsigned at) {
        const uint64_t* const word = words + at / kMaskBits;
        return word[0] >> at % kMaskBits | word[1] << 1 << (kMaskBits - 1 - at % kMaskBits);
    }
};

/// Marks the characters of UTF-8 text, as far as it is sure to be well-formed, for up to
/// CharacterMarks::kMaxLength bytes of it. Answers how far; there, too, are a start and stops.
ZEL_INLINE int markWellFormed(const Zel8u* p, int len, const kernels::CharacterSet* sets, int count,
                              CharacterMarks& marks) {
    const SequenceFinder finder;
    ByteClass bytes[CharacterMarks::kMaxSets];
    for (int k = 0; k < count; ++k) bytes[k] = ByteClass::fromWords(sets[k].bytes);
    int size = len < CharacterMarks::kMaxLength ? len : CharacterMarks::kMaxLength;
    uint64_t carry = 0;
    for (int at = 0; at < size; at += kMaskBits) {
        const int word = at / kMaskBits;
        const ptrdiff_t left = size - at;
        const uint64_t present = left < kMaskBits ? lowBits(static_cast<int>(left)) : ~uint64_t{0};
        const Sequences found = finder.find(p + at, left, carry);
        const uint64_t starts = present & ~found.continuation;
        marks.starts[word] = starts;
        for (int k = 0; k < count; ++k) {
            const uint64_t likely = memberBits(bytes[k], p + at, left);
            uint64_t members = likely & ~found.wide;
            uint64_t unknown = 0;
            if (!sets[k].isTested) {
                if (sets[k].elsewhere) members |= found.two | found.longer;
            } else if ((likely & found.wide) != 0) {
                unknown = likely & found.longer;
                members |= twoByteMembers(sets[k], p + at, left, likely & found.two, unknown);
            }
            marks.stops[k][word] = starts & ~members;
            marks.unknown[k][word] = unknown;
        }
        carry = found.carry;
        const bool isCutOff = carry != 0 && left == kMaskBits;
        if (found.bad != 0 || isCutOff) {
            size = lastMarkBelow(marks.starts, word, countTrailingZeros(found.bad));
            break;
        }
    }
    // The end stops every run, and is where the last character ends.
    const uint64_t end = uint64_t{1} << size % kMaskBits;
    const auto setEnd = [&](uint64_t* words) {
        words[0] = size % kMaskBits != 0 ? words[0] | end : end;
        words[1] = 0;
    };
    setEnd(marks.starts + size / kMaskBits);
    for (int k = 0; k < count; ++k) {
        setEnd(marks.stops[k] + size / kMaskBits);
        if (size % kMaskBits == 0) marks.unknown[k][size / kMaskBits] = 0;
    }
    return size;
}

/// The bits but for the n lowest ones.
ZEL_INLINE uint64_t withoutLowest(uint64_t bits, int n) {
#if defined(__BMI2__)
    return n < kMaskBits ? _pdep_u64(~uint64_t{0} << n, bits) : 0;
#else
    for (; n > 0 && bits != 0; --n) bits &= bits - 1;
    return bits;
#endif
}

/// Attempts at marked positions. What the marks do not know is asked when it is met, and noted.
struct MarkedSearch {
    enum Outcome { kFailed, kMatched, kCutOff };
    const Zel8u* text;
    const kernels::CharacterPattern& pattern;
    CharacterMarks marks;
    CharacterMarks::Words candidates;  // where a match may begin
    unsigned size;
    bool isWhole;  // the text ends where the marks do

    ZEL_INLINE MarkedSearch(const Zel8u* p, int len, const kernels::CharacterPattern& thePattern)
        : text(p), pattern(thePattern) {
        if (pattern.count < 1) __builtin_unreachable();  // there is a character
        size = static_cast<unsigned>(markWellFormed(p, len, pattern.sets, pattern.count, marks));
        isWhole = size == static_cast<unsigned>(len);
        for (unsigned word = 0; kMaskBits * word < size; ++word) candidates[word] = mayBe(0, word);
        if (pattern.count > 1 && pattern.max[0] == 1 && pattern.min[1] > 0) keepFollowed();
    }

    /// The characters of a word that are in a part's set or not known.
    ZEL_INLINE uint64_t mayBe(int part, unsigned word) const {
        return (marks.starts[word] & ~marks.stops[part][word]) | marks.unknown[part][word];
    }

    /// Of a single character and a second part: drops the candidates that are followed by one that
    /// the second part does not accept.
    ZEL_INLINE void keepFollowed() {
        constexpr int kLongest = 4;
        CharacterMarks::Words second;
        const unsigned last = size / kMaskBits;
        for (unsigned word = 0; word <= last; ++word) second[word] = mayBe(1, word);
        second[last] |= uint64_t{1} << size % kMaskBits;  // what comes there is not known
        second[last + 1] = 0;
        for (unsigned word = 0; kMaskBits * word < size; ++word) {
            // Bit i: whether the next character behind byte i may be in the set.
            uint64_t followed = 0;
            for (unsigned i = kLongest; i > 0; --i) {
                const unsigned at = kMaskBits * word + i;
                followed &= ~CharacterMarks::from(marks.starts, at);
                followed |= CharacterMarks::from(second, at);
            }
            candidates[word] &= followed;
        }
    }

    /// The end of the run of a part's characters that `count` of have been taken from by now, in
    /// front of `at`: at most as many as the part takes. Counts them.
    ZEL_INLINE unsigned take(int part, unsigned at, int& count) const {
        const int most = pattern.max[part];
        for (;;) {
            const uint64_t stops = CharacterMarks::from(marks.stops[part], at);
            const uint64_t starts = CharacterMarks::from(marks.starts, at);
            uint64_t run = starts & ((stops & -stops) - 1);
            if (most != kernels::CharacterPattern::kUnbounded) {
                const uint64_t rest = withoutLowest(run, most - count);
                if (rest != 0) [[likely]] {
                    count = most;
                    return at + static_cast<unsigned>(countTrailingZeros(rest));
                }
            }
            int end = countTrailingZeros(stops);
            if (stops == 0) {  // where the last of these characters ends is not known yet
                if (starts == 0) __builtin_unreachable();  // one begins right here
                end = kMaskBits - 1 - countLeadingZeros(starts);
                run ^= uint64_t{1} << end;
            }
            count += __builtin_popcountll(run);
            at += static_cast<unsigned>(end);
            if (stops != 0 || count == most) return at;
        }
    }

    /// Whether a character that stopped a run, not being known, is in the set after all.
    ZEL_INLINE bool learn(int part, unsigned at) {
        const uint64_t bit = uint64_t{1} << at % kMaskBits;
        uint64_t& unknown = marks.unknown[part][at / kMaskBits];
        if ((unknown & bit) == 0) return false;
        unknown ^= bit;
        if (!pattern.accepts(pattern.context, part, text + at)) return false;
        marks.stops[part][at / kMaskBits] ^= bit;
        return true;
    }

    /// An attempt at `at`, which it moves to the match's end, or to where the next attempt is worth
    /// while.
    ZEL_INLINE Outcome matchAt(unsigned& at) {
        const unsigned start = at;
        for (int part = 0; part < pattern.count; ++part) {
            int count = 0;
            do {
                at = take(part, at, count);
                if (count == pattern.max[part]) break;
                if (at == size && !isWhole) return kCutOff;
            } while (learn(part, at));
            if (count >= pattern.min[part]) continue;
            // What begins further on in a first run that is too short is so as well.
            if (part > 0 || at == start) at = start + 1;
            return kFailed;
        }
        return kMatched;
    }

    /// The first position from `at` on where a match may begin, `size` or more when there is none.
    ZEL_INLINE unsigned nextCandidate(unsigned at) const {
        uint64_t mask = ~uint64_t{0} << at % kMaskBits;
        for (unsigned word = at / kMaskBits; kMaskBits * word < size; ++word) {
            const uint64_t left = candidates[word] & mask;
            if (left != 0)
                return kMaskBits * word + static_cast<unsigned>(countTrailingZeros(left));
            mask = ~uint64_t{0};
        }
        return size;
    }
};

ZEL_INLINE int collectMarked(const Zel8u* p, int len, const kernels::CharacterPattern& pattern,
                             ZelRegExpFind* matches, int capacity, int* resume) {
    MarkedSearch search(p, len, pattern);
    int written = 0;
    unsigned at = search.nextCandidate(0);
    while (at < search.size && written < capacity) {
        const unsigned start = at;
        const MarkedSearch::Outcome outcome = search.matchAt(at);
        if (outcome == MarkedSearch::kCutOff) {
            at = start;
            break;
        }
        if (outcome == MarkedSearch::kMatched) {
            // Often the next match begins right here.
            matches[written++] = {const_cast<Zel8u*>(p + start), static_cast<int>(at - start)};
        } else {
            at = search.nextCandidate(at);
        }
    }
    *resume = static_cast<int>(at < search.size ? at : search.size);
    return written;
}

}  // namespace zel::ZEL_ISA
