// The three hashes, both widths. Callers store these values: no expectation here may ever change.
#include <limits.h>

#include "test_support.h"

namespace {

using test::Arena;
using test::Placed;
using test::Random;

template <typename T>
using Member = ZelStatus (*)(const T*, int, Zel32u*);

template <typename T>
struct Api;

template <>
struct Api<Zel8u> {
    static constexpr Member<Zel8u> hash = zelsHash_8u32u, sj2 = zelsHashSJ2_8u32u;
    static constexpr Member<Zel8u> mscs = zelsHashMSCS_8u32u;
};

template <>
struct Api<Zel16u> {
    static constexpr Member<Zel16u> hash = zelsHash_16u32u, sj2 = zelsHashSJ2_16u32u;
    static constexpr Member<Zel16u> mscs = zelsHashMSCS_16u32u;
};

// The formulas, each element at its own weight instead of step by step where that is possible.

template <typename T>
Zel32u expectedHash(const std::vector<T>& text) {
    Zel32u h = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t places = text.size() - 1 - i;
        if (places < 32) h ^= static_cast<Zel32u>(text[i]) << places;
    }
    return h;
}

template <typename T>
Zel32u expectedSJ2(const std::vector<T>& text) {
    Zel32u h = 0, weight = 1;
    for (size_t i = text.size(); i-- > 0;) {
        h += text[i] * weight;
        weight *= 31;
    }
    return h;
}

template <typename T>
Zel32u expectedMSCS(const std::vector<T>& text) {
    Zel32u h = 5381;
    for (const T c : text) {
        if (c == 0) break;
        h = ((h << 5) + h) ^ c;
    }
    return h;
}

template <typename T>
class Hash : public testing::Test {
protected:
    static Zel32u call(Member<T> member, const std::vector<T>& text) {
        const T none = 0;
        Zel32u h = 77;
        EXPECT_EQ(member(text.empty() ? &none : text.data(), static_cast<int>(text.size()), &h),
                  zelStatusOk);
        return h;
    }

    Arena<T> arena{1 << 17};
    Random random{19};
};

using Widths = testing::Types<Zel8u, Zel16u>;
TYPED_TEST_SUITE(Hash, Widths);

TYPED_TEST(Hash, NullPointersComeBeforeNegativeLengthsAndNothingIsWritten) {
    using T = TypeParam;
    using A = Api<T>;
    const T s[] = {'a', 'b'};
    Zel32u h = 77;
    for (const Member<T> member : {A::hash, A::sj2, A::mscs}) {
        for (const int len : {2, 0, -1, INT_MIN}) {
            EXPECT_EQ(member(nullptr, len, &h), zelStatusNullPointer);
            EXPECT_EQ(member(s, len, nullptr), zelStatusNullPointer);
            EXPECT_EQ(member(nullptr, len, nullptr), zelStatusNullPointer);
        }
        for (const int len : {-1, INT_MIN}) EXPECT_EQ(member(s, len, &h), zelStatusLengthError);
    }
    EXPECT_EQ(h, 77u);
}

TYPED_TEST(Hash, EmptyStringsHaveTheInitialValue) {
    using A = Api<TypeParam>;
    EXPECT_EQ(this->call(A::hash, {}), 0u);
    EXPECT_EQ(this->call(A::sj2, {}), 0u);
    EXPECT_EQ(this->call(A::mscs, {}), 5381u);
}

TYPED_TEST(Hash, KnownValues) {
    using T = TypeParam;
    using A = Api<T>;
    EXPECT_EQ(this->call(A::hash, {1, 2, 3}), 3u);
    EXPECT_EQ(this->call(A::hash, test::text<T>("a")), 97u);
    EXPECT_EQ(this->call(A::sj2, test::text<T>("ab")), 3105u);
    EXPECT_EQ(this->call(A::mscs, test::text<T>("a")), 177604u);
    // Long enough to wrap.
    const auto text = test::text<T>("The quick brown fox jumps over the lazy dog");
    EXPECT_EQ(this->call(A::hash, text), expectedHash(text));
    EXPECT_EQ(this->call(A::sj2, text), expectedSJ2(text));
    EXPECT_EQ(this->call(A::mscs, text), expectedMSCS(text));
}

TYPED_TEST(Hash, ElementsEnterUnsigned) {
    using T = TypeParam;
    using A = Api<T>;
    const T max = static_cast<T>(~0);
    EXPECT_EQ(this->call(A::hash, {max}), max);
    EXPECT_EQ(this->call(A::sj2, {max}), max);
    EXPECT_EQ(this->call(A::mscs, {max}), (5381u * 33) ^ max);
}

TYPED_TEST(Hash, MSCS_EndsAtAZeroAndTheOthersDoNot) {
    using T = TypeParam;
    using A = Api<T>;
    const std::vector<T> text = {'a', 0, 'b'};
    EXPECT_EQ(this->call(A::mscs, text), 177604u);
    EXPECT_EQ(this->call(A::mscs, {0, 'a'}), 5381u);
    EXPECT_EQ(this->call(A::hash, text), (97u << 2) ^ 98u);
    EXPECT_EQ(this->call(A::sj2, text), 97u * 31 * 31 + 98u);
    // A zero changes what the others give.
    EXPECT_EQ(this->call(A::hash, {'a', 0}), 194u);
    EXPECT_EQ(this->call(A::sj2, {'a', 0}), 97u * 31);
}

TYPED_TEST(Hash, Hash_ElementsFarFromTheEndAreShiftedOut) {
    using T = TypeParam;
    auto text = this->random.template text<T>(40);
    const Zel32u h = this->call(Api<T>::hash, text);
    for (size_t i = 0; i < 8; ++i) text[i] = static_cast<T>(~text[i]);
    EXPECT_EQ(this->call(Api<T>::hash, text), h);
    text[8] ^= 1;
    EXPECT_EQ(this->call(Api<T>::hash, text), h ^ 0x80000000u);
}

TYPED_TEST(Hash, AllFamiliesAgreeWithTheirFormulaEverywhere) {
    using T = TypeParam;
    using A = Api<T>;
    const auto check = [&](int len, int placement) {
        auto text = this->random.template text<T>(len);
        // A zero somewhere, nowhere, or several.
        if ((len + placement) % 3 == 0) std::replace(text.begin(), text.end(), T(0), T(1));
        if ((len + placement) % 3 == 1 && len > 0)
            text[static_cast<size_t>(this->random.below(len))] = 0;
        const Placed<T> src = this->arena.place(text, placement, 'x');
        Zel32u h = 77;
        ASSERT_EQ(A::hash(src, len, &h), zelStatusOk);
        ASSERT_EQ(h, expectedHash(text)) << len << " at " << placement;
        ASSERT_EQ(A::sj2(src, len, &h), zelStatusOk);
        ASSERT_EQ(h, expectedSJ2(text)) << len << " at " << placement;
        ASSERT_EQ(A::mscs(src, len, &h), zelStatusOk);
        ASSERT_EQ(h, expectedMSCS(text)) << len << " at " << placement;
    };
    test::forEachPlacement(check);
    for (const int len : {511, 512, 513, 1023, 1024, 1025, 1030, 4095, 4096, 4097, 65537, 100003}) {
        for (const int placement : {0, 3, 7, test::kBeforeGuard, test::kBehindGuard}) {
            check(len, placement);
        }
    }
}

TYPED_TEST(Hash, MSCS_NothingIsReadBehindTheZero) {
    using T = TypeParam;
    for (int len = 0; len <= 1200; ++len) {
        auto text = this->random.template text<T>(len);
        std::replace(text.begin(), text.end(), T(0), T(1));
        text.push_back(0);
        const Placed<T> src = this->arena.place(text, test::kBeforeGuard);
        Zel32u h = 77;
        ASSERT_EQ(Api<T>::mscs(src, INT_MAX, &h), zelStatusOk);
        ASSERT_EQ(h, expectedMSCS(text)) << len;
    }
}

// Two of the three store 0 as soon as the arguments are in order, which shows in a text that holds
// the result. Of bytes only, because elements of 16 bits cannot be part of a number of 32.
TEST(HashInItsText, HashAndSJ2ReadTheZeroThatTheyStored) {
    Random random(29);
    for (int len = 4; len <= 300; ++len) {
        const auto bytes = random.text<Zel8u>(len);
        auto zeroed = bytes;
        std::fill_n(zeroed.begin(), sizeof(Zel32u), Zel8u{0});
        std::vector<Zel32u> words(static_cast<size_t>(len) / sizeof(Zel32u) + 1);
        auto* const src = reinterpret_cast<Zel8u*>(words.data());
        const auto inItsText = [&](Member<Zel8u> member) {
            std::copy(bytes.begin(), bytes.end(), src);
            EXPECT_EQ(member(src, len, words.data()), zelStatusOk);
            return words[0];
        };
        ASSERT_EQ(inItsText(zelsHash_8u32u), expectedHash(zeroed)) << len;
        ASSERT_EQ(inItsText(zelsHashSJ2_8u32u), expectedSJ2(zeroed)) << len;
        ASSERT_EQ(inItsText(zelsHashMSCS_8u32u), expectedMSCS(bytes)) << len;
    }
}

TEST(HashWidths, BothWidthsGiveTheSameForTheSameValues) {
    Random random(23);
    for (int len = 0; len < 200; ++len) {
        const auto bytes = random.text<Zel8u>(len);
        const std::vector<Zel16u> units(bytes.begin(), bytes.end());
        Zel32u h8 = 1, h16 = 2;
        const Zel8u none8 = 0;
        const Zel16u none16 = 0;
        const Zel8u* const p8 = len > 0 ? bytes.data() : &none8;
        const Zel16u* const p16 = len > 0 ? units.data() : &none16;
        const std::pair<Member<Zel8u>, Member<Zel16u>> pairs[] = {
            {zelsHash_8u32u, zelsHash_16u32u},
            {zelsHashSJ2_8u32u, zelsHashSJ2_16u32u},
            {zelsHashMSCS_8u32u, zelsHashMSCS_16u32u}};
        for (const auto& [member8, member16] : pairs) {
            ASSERT_EQ(member8(p8, len, &h8), zelStatusOk);
            ASSERT_EQ(member16(p16, len, &h16), zelStatusOk);
            ASSERT_EQ(h8, h16);
        }
    }
}

}  // namespace
