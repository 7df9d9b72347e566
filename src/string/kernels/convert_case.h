// Case conversion of runs of elements.
//
// The ASCII rule is arithmetic. The table rule is arithmetic too for a vector of ASCII and code
// units without case. Anything else goes by rows of 64 code units: on AVX-512 one two-register
// permute adds a row's differences to all units of that row at once, and since a text keeps to few
// rows, those of the two last ones stay in registers. Without that permute such a vector is looked
// up unit by unit.
#pragma once

#include "string/kernels/case_rows.h"
#include "string/kernels/map.h"

namespace zel::ZEL_ISA {

struct ToLowerLatin {
    static constexpr bool kIsSmall = true;

    template <typename T>
    ZEL_INLINE Vec<T> operator()(Vec<T> v) const {
        return addInRange(v, T{'A'}, T{26}, T{32});
    }
    template <typename T>
    ZEL_INLINE T operator()(T c) const {
        return c >= 'A' && c <= 'Z' ? static_cast<T>(c + 32) : c;
    }
};

struct ToUpperLatin {
    static constexpr bool kIsSmall = true;

    template <typename T>
    ZEL_INLINE Vec<T> operator()(Vec<T> v) const {
        return addInRange(v, T{'a'}, T{26}, static_cast<T>(-32));
    }
};

enum class Case { Lower, Upper };

template <Case to>
inline constexpr const Zel16u* kCaseDeltas =
    to == Case::Lower ? case_rows::kToLower : case_rows::kToUpper;

/// The table rule for one code unit.
template <Case to>
ZEL_INLINE Zel16u convertUnit(Zel16u c) {
    using namespace case_rows;
    const int row = kRowOf[c / kRowLength];
    return static_cast<Zel16u>(c + kCaseDeltas<to>[row * kRowLength + c % kRowLength]);
}

/// The ASCII rule in the direction of a table rule.
template <Case to>
ZEL_INLINE Vec<Zel16u> convertAscii(Vec<Zel16u> v) {
    if constexpr (to == Case::Lower)
        return ToLowerLatin{}(v);
    else
        return ToUpperLatin{}(v);
}

/// The units from first to last.
ZEL_INLINE Mask<Zel16u> unitsBetween(Vec<Zel16u> v, Zel16u first, Zel16u last) {
    return rangeMask(v, first, static_cast<Zel16u>(last - first + 1));
}

#if defined(ZEL_ISA_AVX512)

template <Case to>
class TableRule {
public:
    static constexpr bool kIsSmall = false;

    ZEL_INLINE TableRule() : a_(0xC0 / case_rows::kRowLength), b_(0x100 / case_rows::kRowLength) {}

    ZEL_INLINE Vec<Zel16u> operator()(Vec<Zel16u> text) {
        using namespace case_rows;
        const __m512i v = text.v;
        const Vec<Zel16u> ascii = convertAscii<to>(text);
        // No unit from 0x80 to 0xBF has a mapping.
        const Mask<Zel16u> unmapped =
            unitsBetween(text, 0, 0xBF) | unitsBetween(text, kCaselessHighFirst, kCaselessHighLast);
        const auto other = static_cast<__mmask32>((~unmapped).bits);
        if (other == 0) return ascii;

        const __m512i rows = _mm512_srli_epi16(v, 6);
        const __mmask32 inA = _mm512_mask_cmpeq_epi16_mask(other, rows, a_.row);
        const __m512i withA = a_.add(inA, ascii.v, v);
        // A text of a Western language has no other row.
        if (inA == other) return {withA};
        const __mmask32 inB = _mm512_mask_cmpeq_epi16_mask(other, rows, b_.row);
        const __m512i result = b_.add(inB, withA, v);
        const auto caseless =
            static_cast<__mmask32>(unitsBetween(text, kCaselessFirst, kCaselessLast).bits);
        const __mmask32 left = other & ~(inA | inB | caseless);
        if (left == 0) [[likely]]
            return {result};
        return {convertOtherRows(left, result, v, rows)};
    }

private:
    /// The differences of one row, and its number in every lane.
    struct Row {
        __m512i row;
        __m512i low;
        __m512i high;

        ZEL_INLINE explicit Row(int number) {
            const Zel16u* const deltas =
                kCaseDeltas<to> + case_rows::kRowOf[number] * case_rows::kRowLength;
            row = _mm512_set1_epi16(static_cast<short>(number));
            low = _mm512_loadu_si512(deltas);
            high = _mm512_loadu_si512(deltas + 32);
        }
        /// What `sum` becomes where a lane of the text is in this row. The permute reads the low 6
        /// bits of a unit, its place in the row.
        ZEL_INLINE __m512i add(__mmask32 lanes, __m512i sum, __m512i text) const {
            return _mm512_mask_add_epi16(sum, lanes, sum,
                                         _mm512_permutex2var_epi16(low, text, high));
        }
    };

    ZEL_INLINE __m512i convertOtherRows(__mmask32 left, __m512i result, __m512i v, __m512i rows) {
        do {
            const __m512i first = _mm512_maskz_compress_epi16(left, rows);
            const int number = _mm_extract_epi16(_mm512_castsi512_si128(first), 0);
            b_ = a_;
            a_ = Row(number);
            const __mmask32 here = _mm512_mask_cmpeq_epi16_mask(left, rows, a_.row);
            result = a_.add(here, result, v);
            left &= ~here;
        } while (left != 0);
        return result;
    }

    Row a_;
    Row b_;
};

#else

template <Case to>
struct TableRule {
    static constexpr bool kIsSmall = false;

    ZEL_INLINE Vec<Zel16u> operator()(Vec<Zel16u> text) const {
        if (areAsciiOrCaseless(text)) return convertAscii<to>(text);
        alignas(32) Zel16u units[Vec<Zel16u>::kLanes];
        text.store(units);
        for (Zel16u& c : units) c = convertUnit<to>(c);
        return Vec<Zel16u>::load(units);
    }

private:
    /// Whether each unit is below 0x80 or in the long range without case.
    ZEL_INLINE static bool areAsciiOrCaseless(Vec<Zel16u> v) {
        using namespace case_rows;
        const Mask<Zel16u> ascii = unitsBetween(v, 0, 0x7F);
        const Mask<Zel16u> caseless = unitsBetween(v, kCaselessHighFirst, kCaselessHighLast);
        return (ascii | caseless).isAll();
    }
};

#endif

}  // namespace zel::ZEL_ISA
