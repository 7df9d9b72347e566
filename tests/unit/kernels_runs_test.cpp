// The searches that look at neighbouring bytes, in every instance, against loops over elements.
#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "regexp/match/plain_literals.h"
#include "string/kernels/instances.h"
#include "string/utf8.h"
#include "test_support.h"

namespace {

using zel::kernels::Gathered;
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
    constexpr int kLongest = 30000;  // more than a kernel looks at in one go
    test::GuardedPages pages(kLongest);
    ASSERT_TRUE(pages.available());
    for (int round = 0; round < 3000; ++round) {
        const unsigned most = round < 2950 ? 5000 : kLongest;
        const int length = round < 2000 ? round % 200 : static_cast<int>(random() % most);
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

/// Gathers from the start of a text to its end, and checks that all places are met and nothing that
/// cannot be one.
template <typename IsPlace, typename Gather, typename MayBePlace>
void checkGathered(int length, const IsPlace& isPlace, const Gather& gather,
                   const MayBePlace& mayBePlace) {
    std::vector<int> met;
    for (int at = 0; at < length;) {
        Gathered result;
        result.groups = 1 << (at % 5);
        gather(at, &result);
        ASSERT_GT(result.scanned, 0);
        ASSERT_LE(at + result.scanned, length);
        ASSERT_TRUE(result.filled != 0 || at + result.scanned == length);
        ASSERT_LE(result.blocks, Gathered::kGroup * result.groups);
        for (int i = 0; i < result.blocks; ++i) {
            ASSERT_EQ(result.bits[i] != 0, (result.filled >> i & 1) != 0);
            for (int k = 0; k < 64; ++k) {
                if ((result.bits[i] >> k & 1) == 0) continue;
                ASSERT_LT(result.begin + 64 * i + k, result.scanned);
                met.push_back(at + result.begin + 64 * i + k);
            }
        }
        at += result.scanned;
    }
    std::size_t next = 0;
    for (int i = 0; i < length; ++i) {
        const bool isMet = next < met.size() && met[next] == i;
        next += isMet;
        ASSERT_TRUE(isMet || !isPlace(i)) << i;
        ASSERT_TRUE(!isMet || mayBePlace(i)) << i;
    }
    ASSERT_EQ(next, met.size());
}

template <typename IsPlace, typename Gather>
void checkGathered(int length, const IsPlace& isPlace, const Gather& gather) {
    checkGathered(length, isPlace, gather, isPlace);
}

TEST(AsciiMasks, SayWhichBytesAreInWhichSets) {
    using zel::kernels::AsciiSets;
    using zel::kernels::TextMasks;
    onManyTexts([](std::mt19937& random, Zel8u* text, int fullLength) {
        const int length = std::min(fullLength, int{TextMasks::kMaxLength});
        text += fullLength - length;
        const bool isAscii = random() % 8 != 0 || length == 0;
        for (int i = 0; i < length; ++i) text[i] &= 0x7F;
        if (!isAscii) text[random() % static_cast<unsigned>(length)] |= 0x80;
        Zel8u sets[TextMasks::kMaxSets][16];
        for (Zel8u& row : sets[0]) row = static_cast<Zel8u>(random());
        for (int s = 1; s < TextMasks::kMaxSets; ++s) {
            for (int i = 0; i < 16; ++i)
                sets[s][i] = static_cast<Zel8u>(sets[s - 1][i] * 5 + static_cast<unsigned>(s));
        }
        const unsigned shared = random() % (1u << (TextMasks::kMaxSets - AsciiSets::kFirstShared));
        const AsciiSets asked = {sets[0],
                                 static_cast<int>(random() % (AsciiSets::kFirstShared + 1)),
                                 sets[AsciiSets::kFirstShared], shared};
        const auto isAsked = [&](int s) {
            const int other = s - AsciiSets::kFirstShared;
            return other < 0 ? s < asked.count : (shared >> other & 1) != 0;
        };
        FOR_EACH_INSTANCE({
            TextMasks masks;
            ASSERT_EQ((maskAscii)(text, length, &asked, &masks), isAscii);
            for (int s = 0; s < TextMasks::kMaxSets && isAscii; ++s) {
                if (!isAsked(s)) continue;
                for (int i = 0; i < length; ++i) {
                    const bool isMember = (sets[s][text[i] & 15] >> (text[i] >> 4) & 1) != 0;
                    ASSERT_EQ((masks.words[i / 64][s] >> (i % 64) & 1) != 0, isMember);
                }
                ASSERT_EQ(masks.words[length / 64][s] >> (length % 64), 0u);
            }
        });
    });
}

}  // namespace

TEST(GatherKernels, Pairs) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, 20);
        const Set b = someSet(random, 10);
        const auto isPlace = [&](int i) {
            return i + 1 < length && a.has(text[i]) && b.has(text[i + 1]);
        };
        FOR_EACH_INSTANCE(checkGathered(length, isPlace, [&](int at, Gathered* result) {
            (gatherPairsIn)(text + at, length - at, a.words, b.words, result);
        }));
    });
}

TEST(GatherKernels, Doubled) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, 20);
        const auto isPlace = [&](int i) {
            return i + 1 < length && a.has(text[i]) && text[i] == text[i + 1];
        };
        FOR_EACH_INSTANCE(checkGathered(length, isPlace, [&](int at, Gathered* result) {
            (gatherDoubled)(text + at, length - at, a.words, result);
        }));
    });
}

TEST(GatherKernels, Shapes) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        using zel::kernels::Shape;
        Set sets[Shape::kSets];
        Shape shape = {};
        shape.length = 1 + static_cast<int>(random() % 20);
        shape.setCount = Shape::kSets;
        for (int i = 0; i < Shape::kSets; ++i) {
            sets[i] = someSet(random, 70);
            std::copy(std::begin(sets[i].words), std::end(sets[i].words), shape.sets[i]);
        }
        shape.probeCount = 2 + static_cast<int>(random() % 4);
        for (int i = 0; i < shape.probeCount; ++i) {
            const auto size = static_cast<unsigned>(shape.length);
            shape.probes[i] = {static_cast<Zel8u>(random() % size),
                               static_cast<Zel8u>(random() % Shape::kSets)};
        }
        const auto isPlace = [&](int i) {
            if (i + shape.length > length) return false;
            for (int k = 0; k < shape.probeCount; ++k) {
                if (!sets[shape.probes[k].set].has(text[i + shape.probes[k].offset])) return false;
            }
            return true;
        };
        FOR_EACH_INSTANCE(checkGathered(length, isPlace, [&](int at, Gathered* result) {
            (gatherShapes)(text + at, length - at, &shape, result);
        }));
    });
}

TEST(GatherKernels, BytesIn) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, random() % 2 != 0 ? 1 : 60);
        const auto isPlace = [&](int i) { return a.has(text[i]); };
        FOR_EACH_INSTANCE(checkGathered(length, isPlace, [&](int at, Gathered* result) {
            (gatherBytesIn)(text + at, length - at, a.words, result);
        }));
    });
}

TEST(GatherKernels, Prefixes) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        PrefixTables prefix = {};
        prefix.depth = 2 + static_cast<int>(random() % 3);
        const unsigned bytes = random() % 2 != 0 ? 256 : 128;
        for (int i = 0; i < prefix.depth; ++i) {
            for (unsigned c = 0; c < bytes; ++c) {
                if (random() % 4 == 0)
                    prefix.add(i, static_cast<Zel8u>(c), static_cast<Zel8u>(random()));
            }
        }
        const auto isPlace = [&](int i) {
            if (i + prefix.depth > length) return false;
            unsigned bits = 0xFF;
            for (int k = 0; k < prefix.depth; ++k) bits &= prefix.tables[k][text[i + k]];
            return bits != 0;
        };
        FOR_EACH_INSTANCE(checkGathered(length, isPlace, [&](int at, Gathered* result) {
            (gatherPrefixes)(text + at, length - at, &prefix, result);
        }));
    });
}

// Other places than the literal's may be gathered, but each has its first and last byte.
TEST(GatherKernels, Literals) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        Zel8u literal[12];
        const int size = 1 + static_cast<int>(random() % 12);
        for (Zel8u& byte : literal) byte = static_cast<Zel8u>('a' + random() % 3);
        const auto fold = [](Zel8u c) { return c >= 'A' && c <= 'Z' ? c + 0x20 : int{c}; };
        for (const bool ignoreCase : {false, true}) {
            const auto same = [&](int i, int k) {
                return ignoreCase ? fold(text[i + k]) == fold(literal[k])
                                  : text[i + k] == literal[k];
            };
            const auto isPlace = [&](int i) {
                if (i + size > length) return false;
                for (int k = 0; k < size; ++k) {
                    if (!same(i, k)) return false;
                }
                return true;
            };
            const auto mayBePlace = [&](int i) {
                return i + size <= length && same(i, 0) && same(i, size - 1);
            };
            FOR_EACH_INSTANCE(checkGathered(
                length, isPlace,
                [&](int at, Gathered* result) {
                    if (ignoreCase)
                        (gatherBytesFolded)(text + at, length - at, literal, size, result);
                    else
                        (gatherBytes)(text + at, length - at, literal, size, result);
                },
                mayBePlace));
        }
    });
}

TEST(RunKernels, BoundRuns) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const Set a = someSet(random, random() % 2 != 0 ? 70 : 100);
        int64_t expected = 0;
        int64_t run = 0;
        for (int i = 0; i < length; ++i) {
            run = a.has(text[i]) ? run + 1 : 0;
            expected += run;
        }
        FOR_EACH_INSTANCE({
            ASSERT_GE(boundRuns(text, length, a.words), expected);
            ASSERT_LE(boundRuns(text, length, a.words), 2 * expected);
        });
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

// Beyond the near caches a literal is looked for in another way up to its first place.
TEST(LiteralKernels, CollectLiterals_OfTextBeyondTheNearCaches) {
    std::mt19937 random(17);
    std::vector<Zel8u> text(600'000);
    const std::string literal = "needle";
    for (int round = 0; round < 8; ++round) {
        // A good many places where its rarest bytes stand, and some, or no, where all of it does.
        for (Zel8u& c : text) c = static_cast<Zel8u>("ndelxy "[random() % 7]);
        std::vector<int> expected;
        for (size_t at = random() % 5000; round % 2 != 0 && at + 6 < text.size();
             at += 6 + random() % 5000) {
            std::copy(literal.begin(), literal.end(), text.begin() + static_cast<long>(at));
            text[at] ^= static_cast<Zel8u>(round % 4 == 3 ? 0x20 : 0);
            expected.push_back(static_cast<int>(at));
        }
        zel::kernels::LiteralSet set;
        set.count = 1;
        set.ignoreCase = round % 4 == 3;
        set.literals[0] = {reinterpret_cast<const Zel8u*>(literal.data()), 6};
        const auto length = static_cast<int>(text.size());
        for (int i = 0; i + 6 <= length; ++i) {
            if (!std::equal(literal.begin(), literal.end(), text.begin() + i)) continue;
            if (!std::binary_search(expected.begin(), expected.end(), i))
                text[static_cast<size_t>(i)] = 'q';
        }
        std::vector<ZelRegExpFind> found(expected.size() + 1);
        FOR_EACH_INSTANCE({
            ASSERT_EQ((collectLiterals)(text.data(), length, &set, found.data(),
                                        static_cast<int>(found.size())),
                      static_cast<int>(expected.size()));
            for (size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(found[i].pMatch - text.data(), expected[i]);
                ASSERT_EQ(found[i].lenMatch, 6);
            }
        });
    }
}

// After a stretch without any place to look at, text is passed over in another way.
TEST(LiteralKernels, CollectLiterals_BehindQuietText) {
    const std::string literal = "needle";
    zel::kernels::LiteralSet set;
    set.count = 1;
    set.literals[0] = {reinterpret_cast<const Zel8u*>(literal.data()), 6};
    for (int gap = 4000; gap < 13'000; gap += 1 + gap % 3) {
        // The last one stands at the very end, or one byte of it behind that.
        std::string subject = literal + std::string(static_cast<size_t>(gap), '.') + literal;
        subject += std::string(static_cast<size_t>(gap % 300), '.') + literal;
        set.ignoreCase = gap % 2 != 0;
        if (set.ignoreCase) subject[6 + static_cast<size_t>(gap)] = 'N';
        const std::vector<Zel8u> exact(subject.begin(), subject.end() - gap % 5 / 4);
        FOR_EACH_INSTANCE({
            ZelRegExpFind found[4];
            const int count =
                (collectLiterals)(exact.data(), static_cast<int>(exact.size()), &set, found, 4);
            ASSERT_EQ(count, gap % 5 == 4 ? 2 : 3) << gap;
            ASSERT_EQ(found[0].pMatch - exact.data(), 0);
            ASSERT_EQ(found[1].pMatch - exact.data(), gap + 6);
            if (count == 3) {
                ASSERT_EQ(found[2].pMatch - exact.data(), gap + 12 + gap % 300);
            }
        });
    }
}

// In far text the search begins with text that may be quiet from the start; its first stretch ends
// with a cache line, wherever that is, and matches lie across that end.
TEST(LiteralKernels, CollectLiterals_BehindAQuietBeginning) {
    const std::string literal = "xbbbbbbbbbbbbbbq";  // its rarest bytes are far apart
    zel::kernels::LiteralSet set;
    set.count = 1;
    set.ignoreCase = false;
    set.literals[0] = {reinterpret_cast<const Zel8u*>(literal.data()),
                       static_cast<int>(literal.size())};
    std::vector<Zel8u> text(600'000, '.');
    for (int alignment = 0; alignment < 64; alignment += 13) {
        const Zel8u* const p = text.data() + alignment;
        const auto length = static_cast<int>(text.size()) - alignment;
        for (int at = 4000; at < 4200; ++at) {
            Zel8u* const place = text.data() + alignment + at;
            std::copy(literal.begin(), literal.end(), place);
            FOR_EACH_INSTANCE({
                ZelRegExpFind found[2];
                ASSERT_EQ((collectLiterals)(p, length, &set, found, 2), 1) << at;
                ASSERT_EQ(found[0].pMatch - p, at);
            });
            std::fill_n(place, literal.size(), static_cast<Zel8u>('.'));
        }
    }
}

// What a literal begins with is compared apart from the rest of it.
TEST(LiteralKernels, CollectLiterals_EachByteOfALongLiteralCounts) {
    std::mt19937 random(18);
    for (const int size : {15, 16, 17, 31, 32, 33, 63, 64, 65, 66, 127, 128, 129}) {
        std::string literal;
        while (static_cast<int>(literal.size()) < size)
            literal.push_back(static_cast<char>('a' + random() % 26));
        for (const bool ignoreCase : {false, true}) {
            std::string again = literal;
            if (ignoreCase) again[random() % again.size()] ^= 0x20;
            zel::kernels::LiteralSet set;
            set.count = 1;
            set.ignoreCase = ignoreCase;
            set.literals[0] = {reinterpret_cast<const Zel8u*>(literal.data()), size};
            for (int wrong = 0; wrong < size; ++wrong) {
                std::string other = literal;
                other[static_cast<size_t>(wrong)] = '#';
                const std::string subject = other + literal + other + again + other;
                const auto* const text = reinterpret_cast<const Zel8u*>(subject.data());
                FOR_EACH_INSTANCE({
                    ZelRegExpFind found[5];
                    ASSERT_EQ((collectLiterals)(text, 5 * size, &set, found, 5), 2)
                        << size << " but for " << wrong;
                    ASSERT_EQ(found[0].pMatch - text, size);
                    ASSERT_EQ(found[1].pMatch - text, 3 * size);
                });
            }
        }
    }
}

// Literals of the texts' letters, so that they overlap and begin alike, and a long one now and
// then.
std::vector<std::string> someLiterals(std::mt19937& random) {
    std::vector<std::string> literals(1 + random() % 2 * (random() % 12));
    const unsigned shortest = literals.size() > 1 ? 2 : 1;
    for (std::string& literal : literals) {
        const size_t length = shortest + random() % (random() % 50 == 0 ? 150 : 5);
        for (size_t i = 0; i < length; ++i)
            literal.push_back(static_cast<char>((random() % 4 == 0 ? 'A' : 'a') + random() % 3));
    }
    return literals;
}

char folded(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
}

TEST(LiteralKernels, CollectLiterals) {
    onManyTexts([](std::mt19937& random, const Zel8u* text, int length) {
        const std::vector<std::string> literals = someLiterals(random);
        const bool ignoreCase = random() % 2 != 0;
        std::string pattern;
        for (const std::string& literal : literals)
            pattern += (pattern.empty() ? "" : "|") + literal;
        ZelRegExpState* state = nullptr;
        int offset = 0;
        ASSERT_EQ(zelsRegExpInitAlloc(pattern.c_str(), ignoreCase ? "i" : "", &state, &offset),
                  zelStatusOk);
        zel::PlainLiterals plain;
        ASSERT_TRUE(plain.read(*state)) << pattern;

        const auto lengthAt = [&](int at) {
            for (const std::string& literal : literals) {
                const auto size = static_cast<int>(literal.size());
                int i = 0;
                while (i < size && at + i < length) {
                    const char a = static_cast<char>(text[at + i]);
                    const char b = literal[static_cast<size_t>(i)];
                    if (ignoreCase ? folded(a) != folded(b) : a != b) break;
                    ++i;
                }
                if (i == size) return size;
            }
            return 0;
        };
        const int capacity = 1 + static_cast<int>(random() % (random() % 2 != 0 ? 10 : 5000));
        std::vector<std::pair<int, int>> expected;
        for (int at = 0; at < length && static_cast<int>(expected.size()) < capacity;) {
            const int size = lengthAt(at);
            if (size > 0) expected.emplace_back(at, size);
            at += size > 0 ? size : 1;
        }
        std::vector<ZelRegExpFind> found(static_cast<size_t>(capacity) + 1);
        FOR_EACH_INSTANCE({
            found.assign(found.size(), {nullptr, -7});
            ASSERT_EQ((collectLiterals)(text, length, &plain.set(), found.data(), capacity),
                      static_cast<int>(expected.size()));
            for (size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(found[i].pMatch - text, expected[i].first);
                ASSERT_EQ(found[i].lenMatch, expected[i].second);
            }
            // What is not filled is not touched.
            for (size_t i = expected.size(); i < found.size(); ++i)
                ASSERT_EQ(found[i].lenMatch, -7);
        });
        zelsRegExpFree(state);
    });
}

TEST(LiteralKernels, CollectEnclosedRuns) {
    onManyTexts([](std::mt19937& random, Zel8u* text, int length) {
        const Set first = someSet(random, 60);
        const Set set = someSet(random, random() % 2 != 0 ? 60 : 98);
        Zel8u literals[2][3];
        for (auto& literal : literals) {
            for (Zel8u& byte : literal) byte = static_cast<Zel8u>('a' + random() % 3);
        }
        zel::kernels::EnclosedRun run = {};
        run.open = literals[0];
        run.openLength = 1 + static_cast<int>(random() % 3);
        run.min = static_cast<int>(random() % 2);
        std::copy(std::begin(first.words), std::end(first.words), run.first);
        std::copy(std::begin(set.words), std::end(set.words), run.set);
        run.close = literals[1];
        run.closeLength = static_cast<int>(random() % 4);
        run.nodes = 3;
        run.price = 2;
        run.atLineStart = random() % 4 == 0;
        run.toLineEnd = random() % 4 == 0;
        if (run.toLineEnd) run.closeLength = 0;
        for (int i = 0; i < length; ++i) {
            if (text[i] == 'c' && random() % 2 == 0) text[i] = '\n';
        }

        const auto standsAt = [&](int at, const Zel8u* literal, int size) {
            return at + size <= length && std::equal(literal, literal + size, text + at);
        };
        const int capacity = 1 + static_cast<int>(random() % (random() % 2 != 0 ? 10 : 5000));
        std::vector<std::pair<int, int>> expected;
        int64_t price = 0;
        for (int at = 0; at < length && static_cast<int>(expected.size()) < capacity; ++at) {
            if (!standsAt(at, run.open, run.openLength)) continue;
            if (run.atLineStart && at > 0 && text[at - 1] != '\n') continue;
            int stop = at + run.openLength;
            const bool fails = run.min > 0 && (stop == length || !first.has(text[stop]));
            if (!fails) stop += run.min;
            while (!fails && stop < length && set.has(text[stop])) ++stop;
            const int size = stop + run.closeLength - at;
            price += run.nodes + int64_t{run.price} * size;
            if (fails || !standsAt(stop, run.close, run.closeLength)) continue;
            if (run.toLineEnd && stop < length && text[stop] != '\n') continue;
            expected.emplace_back(at, size);
            at += size - 1;
        }
        std::vector<ZelRegExpFind> found(static_cast<size_t>(capacity) + 1);
        FOR_EACH_INSTANCE({
            found.assign(found.size(), {nullptr, -7});
            const int count =
                (collectEnclosedRuns)(text, length, &run, found.data(), capacity, price);
            ASSERT_EQ(count, static_cast<int>(expected.size()));
            for (size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(found[i].pMatch - text, expected[i].first);
                ASSERT_EQ(found[i].lenMatch, expected[i].second);
            }
            for (size_t i = expected.size(); i < found.size(); ++i)
                ASSERT_EQ(found[i].lenMatch, -7);
            const int early =
                (collectEnclosedRuns)(text, length, &run, found.data(), capacity, price - 1);
            ASSERT_TRUE(early == -1 || price == 0);
        });
    });
}

// Sets that a number decides about, so that texts have runs of all lengths.
struct SomeCharacters {
    zel::kernels::CharacterPattern pattern = {};
    unsigned seed = 0;
    const Zel8u* end = nullptr;

    bool has(int part, const Zel8u* text) const {
        const zel::kernels::CharacterSet& set = pattern.sets[part];
        const bool mayBe = (set.bytes[*text >> 6] >> (*text & 63)) & 1;
        const zel::Utf8Char character = zel::decodeUtf8(text, end - text);
        if (!character.wellFormed) return false;
        if (character.length == 1 || !mayBe) return mayBe && (set.isTested || *text < 0x80);
        if (!set.isTested) return set.elsewhere;
        return isMember(part, character.value);
    }
    bool isMember(int part, int value) const {
        return (static_cast<unsigned>(value) * 2654435761u +
                seed * static_cast<unsigned>(part + 1)) %
                   7 <
               5;
    }
    static bool accepts(const void* context, int part, const Zel8u* text) {
        return static_cast<const SomeCharacters*>(context)->has(part, text);
    }

    explicit SomeCharacters(std::mt19937& random) : seed(static_cast<unsigned>(random())) {
        pattern.count = 1 + static_cast<int>(random() % 3);
        pattern.accepts = accepts;
        for (int part = 0; part < pattern.count; ++part) {
            zel::kernels::CharacterSet& set = pattern.sets[part];
            const Set bytes = someSet(random, random() % 2 != 0 ? 60 : 95);
            std::copy(bytes.words, bytes.words + 4, set.bytes);
            set.isTested = random() % 3 != 0;
            set.elsewhere = random() % 2 != 0;
            if (!set.isTested) set.bytes[2] = set.bytes[3] = ~uint64_t{0};
            set.known = static_cast<Zel32u>(random());
            for (int value = 0x80; set.isTested && value < 0x800; ++value) {
                if (isMember(part, value)) set.twoBytes[value >> 6] |= uint64_t{1} << (value & 63);
            }
            const bool isLast = part == pattern.count - 1;
            pattern.min[part] = static_cast<int>(random() % 4) + (isLast && part > 0 ? 0 : 1);
            pattern.max[part] = pattern.min[part];
            if (isLast && random() % 2 != 0)
                pattern.max[part] = zel::kernels::CharacterPattern::kUnbounded;
            else if (isLast)
                pattern.max[part] += static_cast<int>(random() % 100);
            if (pattern.max[part] == 0) pattern.max[part] = 1;
        }
    }
    const Zel8u* matchAt(const Zel8u* text) const {
        for (int part = 0; part < pattern.count; ++part) {
            int count = 0;
            for (; count < pattern.max[part] && text < end && has(part, text); ++count)
                text += zel::utf8Length(text, end - text);
            if (count < pattern.min[part]) return nullptr;
        }
        return text;
    }
};

std::string someUtf8(std::mt19937& random) {
    static const char* const kCharacters[] = {"a",
                                              "b",
                                              "\n",
                                              "~",
                                              "\xC3\xA9",
                                              "\xD0\xB6",
                                              "\xDF\xBF",
                                              "\xE0\xA4\x85",
                                              "\xE2\x82\xAC",
                                              "\xEF\xBF\xBF",
                                              "\xF0\x9F\x98\x80",
                                              "\xF4\x80\x80\x80"};
    static const char* const kOdd[] = {"\x80",
                                       "\xC3",
                                       "\xC0\x80",
                                       "\xE0\x9F\xBF",
                                       "\xE2\x82",
                                       "\xF0\x8F\xBF\xBF",
                                       "\xF8\x88\x80\x80\x80",
                                       "\xFF"};
    const size_t length = random() % (random() % 2 != 0 ? 150 : 5000);
    const unsigned kinds = random() % 2 != 0 ? 4 : std::size(kCharacters);
    const bool mayBeOdd = random() % 2 != 0;
    std::string text;
    while (text.size() < length) {
        if (mayBeOdd && random() % 100 == 0)
            text += kOdd[random() % std::size(kOdd)];
        else
            text += kCharacters[random() % kinds];
    }
    return text;
}

TEST(CharacterKernels, CollectCharacters) {
    std::mt19937 random(21);
    test::GuardedPages pages(8192);
    ASSERT_TRUE(pages.available());
    for (int round = 0; round < 3000; ++round) {
        const std::string source = someUtf8(random);
        const auto length = static_cast<int>(source.size());
        Zel8u* const text = reinterpret_cast<Zel8u*>(pages.end() - length);
        std::copy(source.begin(), source.end(), text);
        SomeCharacters characters(random);
        characters.end = text + length;
        characters.pattern.context = &characters;
        const int capacity = 1 + static_cast<int>(random() % (random() % 2 != 0 ? 10 : 5000));

        // The kernel leaves sequences of five bytes and more to others.
        bool isOrderly = true;
        for (const Zel8u* at = text; at < characters.end;) {
            const zel::Utf8Char character = zel::decodeUtf8(at, characters.end - at);
            isOrderly = isOrderly && character.wellFormed && character.length <= 4;
            at += character.length;
        }
        std::vector<std::pair<int, int>> all;
        for (const Zel8u* at = text; at < characters.end;) {
            const Zel8u* const end = characters.matchAt(at);
            if (end == nullptr) {
                at += zel::utf8Length(at, characters.end - at);
                continue;
            }
            all.emplace_back(at - text, end - at);
            at = end;
        }
        std::vector<ZelRegExpFind> found(static_cast<size_t>(capacity) + 1);
        FOR_EACH_INSTANCE({
            found.assign(found.size(), {nullptr, -7});
            int resume = -1;
            const int count = (collectCharacters)(text, length, &characters.pattern, found.data(),
                                                  capacity, &resume);
            ASSERT_LE(count, capacity);
            ASSERT_GE(resume, 0);
            for (int i = 0; i < count; ++i) {
                ASSERT_LT(static_cast<size_t>(i), all.size());
                ASSERT_EQ(found[static_cast<size_t>(i)].pMatch - text,
                          all[static_cast<size_t>(i)].first);
                ASSERT_EQ(found[static_cast<size_t>(i)].lenMatch,
                          all[static_cast<size_t>(i)].second);
            }
            ASSERT_EQ(found[static_cast<size_t>(count)].lenMatch, -7);
            if (count < capacity) {
                // None in front of the end was left out, and only a good reason ended the search.
                if (static_cast<size_t>(count) < all.size()) {
                    ASSERT_GE(all[static_cast<size_t>(count)].first, resume);
                }
                if (isOrderly && length <= 2048) {
                    ASSERT_EQ(resume, length);
                }
            }
        });
    }
}
