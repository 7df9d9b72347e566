// Notes the triples of a text, sixteen at a time.
#include "regexp/match/text_triples.h"

#include <emmintrin.h>
#include <stdint.h>
#include <string.h>

#include <initializer_list>

namespace zel {

namespace {

constexpr int64_t kBeyondBudgets = int64_t{1} << 32;

/// tripleSlot for eight triples, whose first two bytes are words and the third is the first
/// byte of a word.
__m128i slotsOf(__m128i firsts, __m128i thirds) {
    const __m128i third = _mm_and_si128(thirds, _mm_set1_epi16(0xFF));
    const __m128i hashes = _mm_add_epi16(
        _mm_mullo_epi16(firsts, _mm_set1_epi16(static_cast<short>(kTripleFirstFactor))),
        _mm_mullo_epi16(third, _mm_set1_epi16(static_cast<short>(kTripleThirdFactor))));
    return _mm_srli_epi16(hashes, 16 - kTripleSlotBits);
}

}  // namespace

TextTriples::TextTriples(const Zel8u* text, int length, int patterns) {
    if (length > kLongestText || patterns < kFewestPatterns) {
        for (int64_t& power : powers_) power = kBeyondBudgets;
        return;
    }
    powers_[0] = 1;
    for (int i = 1; i <= RequiredText::kMostRuns; ++i) powers_[i] = powers_[i - 1] * (length + 1);
    memset(present_, 0, sizeof present_);

    constexpr int kAtATime = 16;
    constexpr int kRead = kAtATime + kTripleLength;
    const auto load = [&](int at) {
        return _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(text + at)),
                             _mm_set1_epi8(static_cast<char>(kTripleCaseMask)));
    };
    int i = 0;
    for (; i + kRead <= length; i += kAtATime) {
        const __m128i even = slotsOf(load(i), load(i + 2));
        const __m128i odd = slotsOf(load(i + 1), load(i + 3));
        for (const __m128i slots :
             {even, _mm_unpackhi_epi64(even, even), odd, _mm_unpackhi_epi64(odd, odd)}) {
            const auto four = static_cast<uint64_t>(_mm_cvtsi128_si64(slots));
            present_[four & 0xFFFF] = 1;
            present_[four >> 16 & 0xFFFF] = 1;
            present_[four >> 32 & 0xFFFF] = 1;
            present_[four >> 48] = 1;
        }
    }
    for (; i + kTripleLength <= length; ++i)
        present_[tripleSlot(text[i], text[i + 1], text[i + 2])] = 1;
}

}  // namespace zel
