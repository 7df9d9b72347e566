// The searches that look at neighbouring bytes, in every instance, against loops over elements.
#include <random>

#include "string/kernels/instances.h"
#include "test_support.h"

namespace {

using zel::kernels::PrefixTables;

struct Set {
    uint64_t words[4] = {};
    bool has(Zel8u c) const { return (words[c >> 6] >> (c & 63)) & 1; }
};

Set someSet(std::mt19937& random, int density) {
    Set set;
    for (unsigned c = 0; c < 256; ++c) {
        if (static_cast<int>(random() % 100) < density)
            set.words[c >> 6] |= uint64_t{1} << (c & 63);
    }
    return set;
}

template <typename Check>
void onManyTexts(const Check& check) {
    std::mt19937 random(20);
    test::GuardedPages pages(8192);
    ASSERT_TRUE(pages.available());
    for (int round = 0; round < 3000; ++round) {
        const int length = round < 2000 ? round % 200 : static_cast<int>(random() % 5000);
        // Directly before an inaccessible page, or directly behind one.
        Zel8u* text =
            reinterpret_cast<Zel8u*>(round % 2 != 0 ? pages.begin() : pages.end() - length);
        const unsigned alphabet = round % 3 == 0 ? 3 : 256;
        for (int i = 0; i < length; ++i) {
            const bool same = i > 0 && random() % 4 == 0;
            text[i] = same ? text[i - 1] : static_cast<Zel8u>('a' + random() % alphabet);
        }
        check(random, text, length);
    }
}

#define FOR_EACH_INSTANCE(body)                   \
    do {                                          \
        {                                         \
            using namespace zel::sse2;            \
            body;                                 \
        }                                         \
        if (zel::isSupported(zel::Isa::Avx2)) {   \
            using namespace zel::avx2;            \
            body;                                 \
        }                                         \
        if (zel::isSupported(zel::Isa::Avx512)) { \
            using namespace zel::avx512;          \
            body;                                 \
        }                                         \
    } while (false)

}  // namespace

TEST(RunKernels, FindPair) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, 20);
        const Set b = someSet(random, 10);
        int expected = length;
        for (int i = length - 2; i >= 0; --i) {
            if (a.has(text[i]) && b.has(text[i + 1])) expected = i;
        }
        FOR_EACH_INSTANCE(ASSERT_EQ(findPairIn(text, length, a.words, b.words), expected));
    });
}

TEST(RunKernels, FindDoubled) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, 20);
        int expected = length;
        for (int i = length - 2; i >= 0; --i) {
            if (a.has(text[i]) && text[i] == text[i + 1]) expected = i;
        }
        FOR_EACH_INSTANCE(ASSERT_EQ(findDoubled(text, length, a.words), expected));
    });
}

TEST(RunKernels, MarkBytes) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, 60);
        const size_t words = (static_cast<size_t>(length) + 63) / 64;
        std::vector<uint64_t> expected(words);
        for (int i = 0; i < length; ++i) {
            if (a.has(text[i])) expected[static_cast<size_t>(i) / 64] |= uint64_t{1} << (i % 64);
        }
        expected.push_back(7);
        std::vector<uint64_t> marks(words + 1, 7);
        FOR_EACH_INSTANCE({
            markBytesIn(text, length, a.words, marks.data());
            ASSERT_EQ(marks, expected);
        });
    });
}

TEST(RunKernels, FindPrefix) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        PrefixTables prefix = {};
        prefix.depth = 2 + static_cast<int>(random() % 2);
        for (auto& table : prefix.tables) {
            for (Zel8u& bits : table)
                bits = random() % 4 == 0 ? static_cast<Zel8u>(random()) : Zel8u{0};
        }
        int expected = length;
        for (int i = length - prefix.depth; i >= 0; --i) {
            unsigned bits = 0xFF;
            for (int k = 0; k < prefix.depth; ++k) bits &= prefix.tables[k][text[i + k]];
            if (bits != 0) expected = i;
        }
        FOR_EACH_INSTANCE(ASSERT_EQ((findPrefixIn)(text, length, &prefix), expected));
    });
}

TEST(RunKernels, SumRuns) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, random() % 2 != 0 ? 70 : 100);
        int64_t expected = 0;
        int64_t run = 0;
        for (int i = 0; i < length; ++i) {
            run = a.has(text[i]) ? run + 1 : 0;
            expected += run;
        }
        FOR_EACH_INSTANCE(ASSERT_EQ(sumRuns(text, length, a.words), expected));
    });
}

TEST(RunKernels, CollectRuns) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, random() % 2 != 0 ? 50 : 95);
        const int capacity = 1 + static_cast<int>(random() % 40);
        std::vector<std::pair<int, int>> expected;
        for (int i = 0; i < length && static_cast<int>(expected.size()) < capacity;) {
            const int start = i;
            while (i < length && a.has(text[i])) ++i;
            if (i > start) expected.emplace_back(start, i - start);
            if (i == start) ++i;
        }
        std::vector<ZelRegExpFind> runs(static_cast<size_t>(capacity) + 1, {nullptr, -7});
        int resume = -1;
        FOR_EACH_INSTANCE({
            ASSERT_EQ(collectRunsOf(text, length, a.words, runs.data(), capacity, &resume),
                      static_cast<int>(expected.size()));
            for (size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(runs[i].pMatch - text, expected[i].first);
                ASSERT_EQ(runs[i].lenMatch, expected[i].second);
            }
            ASSERT_EQ(runs[static_cast<size_t>(capacity)].lenMatch, -7);
            ASSERT_EQ(resume,
                      expected.empty() ? 0 : expected.back().first + expected.back().second);
        });
    });
}
