// Every instance of the searches against plain loops: at every alignment, at every length that a
// block, a round or a tail can have, with unreadable memory right before and right behind the text.
#include <algorithm>
#include <string>

#include "instances_support.h"

namespace zel::test {
namespace {

class SearchInstances : public EachInstance {};
ZEL_INSTANTIATE(SearchInstances);

template <typename T>
int naiveFindC(const T* p, int len, T c) {
    for (int i = 0; i < len; ++i) {
        if (p[i] == c) return i;
    }
    return -1;
}

template <typename T>
int naiveFindRevC(const T* p, int len, T c) {
    for (int i = len - 1; i >= 0; --i) {
        if (p[i] == c) return i;
    }
    return -1;
}

template <typename T>
int naiveFindAny(const T* p, int len, const std::vector<T>& set) {
    for (int i = 0; i < len; ++i) {
        if (std::count(set.begin(), set.end(), p[i]) != 0) return i;
    }
    return -1;
}

template <typename T>
int naiveFindRevAny(const T* p, int len, const std::vector<T>& set) {
    for (int i = len - 1; i >= 0; --i) {
        if (std::count(set.begin(), set.end(), p[i]) != 0) return i;
    }
    return -1;
}

template <typename T>
int naiveFind(const T* p, int len, const T* pattern, int lenPattern) {
    for (int i = 0; lenPattern > 0 && i + lenPattern <= len; ++i) {
        if (std::equal(pattern, pattern + lenPattern, p + i)) return i;
    }
    return -1;
}

template <typename T>
int naiveFindRev(const T* p, int len, const T* pattern, int lenPattern) {
    for (int i = len - lenPattern; lenPattern > 0 && i >= 0; --i) {
        if (std::equal(pattern, pattern + lenPattern, p + i)) return i;
    }
    return -1;
}

/// Calls a search and answers its index; the status has to be a success.
template <typename Function, typename... Arguments>
int indexOf(Function function, Arguments... arguments) {
    int index = 777;
    EXPECT_EQ(function(arguments..., &index), zelStatusOk);
    return index;
}

/// The memory around the text is full of `c`, the text has it at most where `put` says.
template <typename T>
void findsOneElement(const Instance& library, T c) {
    GuardedPages pages(6);
    Random random(1);
    for (const int len : lengthsToTry()) {
        const auto other = static_cast<T>(c ^ 1);
        const int place = random.below(len);
        const int second = random.below(len);
        forEachPlacement<T>(pages, static_cast<size_t>(len), [&](T* p) {
            std::fill(pages.atStart<T>(), pages.atStart<T>() + pages.size() / sizeof(T), c);
            std::fill(p, p + len, other);
            ASSERT_EQ(indexOf(library.FindC<T>(), p, len, c), -1) << len;
            ASSERT_EQ(indexOf(library.FindRevC<T>(), p, len, c), -1) << len;
            if (len == 0) return;
            p[place] = p[second] = c;
            ASSERT_EQ(indexOf(library.FindC<T>(), p, len, c), std::min(place, second)) << len;
            ASSERT_EQ(indexOf(library.FindRevC<T>(), p, len, c), std::max(place, second)) << len;
        });
    }
}

TEST_P(SearchInstances, FindC_FindsTheFirstAndTheLastAnywhere) {
    findsOneElement<Zel8u>(library(), 'x');
    findsOneElement<Zel8u>(library(), 0);
    findsOneElement<Zel16u>(library(), 0x2001);
    findsOneElement<Zel16u>(library(), 0);
}

TEST_P(SearchInstances, FindC_16u_ComparesBothHalvesOfAnElement) {
    std::vector<Zel16u> text(200, 0x4120);
    text[150] = 0x2041;
    EXPECT_EQ(indexOf(library().zelsFindC_16u, text.data(), 200, Zel16u{0x2041}), 150);
    EXPECT_EQ(indexOf(library().zelsFindC_16u, text.data(), 200, Zel16u{0x2020}), -1);
    EXPECT_EQ(indexOf(library().zelsFindRevC_16u, text.data(), 200, Zel16u{0x4141}), -1);
}

/// Members and strangers of a set of the given kind.
template <typename T>
struct SetKind {
    const char* name;
    std::vector<T> members;
    std::vector<T> strangers;
};

template <typename T>
std::vector<SetKind<T>> setKinds() {
    std::vector<SetKind<T>> kinds;
    Random random(2);
    const auto add = [&](const char* name, int count, auto makeMember) {
        SetKind<T> kind{name, {}, {}};
        for (int i = 0; i < count; ++i) kind.members.push_back(static_cast<T>(makeMember(i)));
        const auto isMember = [&](T x) {
            return std::count(kind.members.begin(), kind.members.end(), x) != 0;
        };
        for (const T member : kind.members) {
            // What a half, a nibble or a neighbouring row could be mistaken for.
            for (const int difference : {1, 8, 16, 64, 128, 256, 0x4000, 0x8000, 0x8080}) {
                const auto x = static_cast<T>(member ^ difference);
                if (!isMember(x)) kind.strangers.push_back(x);
            }
            const auto mixed = static_cast<T>((member & 0xFF00) | (kind.members[0] & 0xFF));
            if (!isMember(mixed)) kind.strangers.push_back(mixed);
        }
        for (const int x : {0, 0xFF, 0xFF00, 0xFFFF}) {
            if (!isMember(static_cast<T>(x))) kind.strangers.push_back(static_cast<T>(x));
        }
        for (int i = 0; i < 64; ++i) {
            const auto x = static_cast<T>(random.below(65536));
            if (!isMember(x)) kind.strangers.push_back(x);
        }
        kinds.push_back(kind);
    };
    for (const int count : {1, 2, 3, 4, 5, 16, 63})
        add("ascii", count, [](int i) { return '0' + i; });
    add("both halves", 40, [](int i) { return i * 6 + 3; });
    add("ends of words", 10, [](int i) { return (i / 2 * 64) ^ (i % 2 * 63); });
    add("nearly all", 250, [](int i) { return i; });
    add("with zero", 7, [](int i) { return i * 5; });
    add("with 0xFF", 7, [](int i) { return 0xFF - i * 5; });
    add("repeated", 9, [](int i) { return 'a' + i % 2; });
    if constexpr (sizeof(T) == 2) {
        add("one other row", 20, [](int i) { return 0x4E10 + i; });
        add("a high row", 20, [](int i) { return 0xFE21 + i; });
        add("eight rows", 60, [](int i) { return (i % 8) * 0x1300 + i; });
        add("many rows", 60, [](int i) { return i * 0x0401; });
        add("three rows", 3, [](int i) { return i * 0x2222; });
    } else {
        add("nearly all", 250, [](int i) { return i; });
    }
    return kinds;
}

template <typename T>
void findsAnyOfSet(const Instance& library) {
    GuardedPages pages(6);
    Random random(3);
    for (const SetKind<T>& kind : setKinds<T>()) {
        const T* const set = kind.members.data();
        const int lenSet = static_cast<int>(kind.members.size());
        SCOPED_TRACE(testing::Message() << kind.name << " of " << lenSet);
        for (int len = 0; len < 1200; len += len < 140 ? 1 : 97) {
            std::vector<T> text(static_cast<size_t>(len));
            for (T& x : text)
                x = kind.strangers[static_cast<size_t>(
                    random.below(static_cast<int>(kind.strangers.size())))];
            for (int members = 0; members < 3 && members <= len; ++members) {
                if (members > 0)
                    text[static_cast<size_t>(random.below(len))] =
                        kind.members[static_cast<size_t>(random.below(lenSet))];
                const int first = naiveFindAny(text.data(), len, kind.members);
                const int last = naiveFindRevAny(text.data(), len, kind.members);
                for (T* const p :
                     {pages.atStart<T>(), pages.atEnd<T>(text.size()),
                      pages.at<T>(static_cast<size_t>(random.below(64)) & ~(sizeof(T) - 1))}) {
                    std::fill(pages.atStart<T>(), pages.atStart<T>() + pages.size() / sizeof(T),
                              kind.members[0]);
                    std::copy(text.begin(), text.end(), p);
                    ASSERT_EQ(indexOf(library.FindCAny<T>(), p, len, set, lenSet), first) << len;
                    ASSERT_EQ(indexOf(library.FindRevCAny<T>(), p, len, set, lenSet), last) << len;
                }
            }
        }
    }
}

TEST_P(SearchInstances, FindCAny_8u_AgreesWithThePlainLoop) {
    findsAnyOfSet<Zel8u>(library());
}

TEST_P(SearchInstances, FindCAny_16u_AgreesWithThePlainLoop) {
    findsAnyOfSet<Zel16u>(library());
}

template <typename T>
void readsNothingBesideTheSet(const Instance& library) {
    GuardedPages pages(1);
    const std::vector<T> text(500, T{'.'});
    for (int lenSet = 0; lenSet < 200; ++lenSet) {
        for (T* const set : {pages.atStart<T>(), pages.atEnd<T>(static_cast<size_t>(lenSet))}) {
            std::fill(set, set + lenSet, T{'!'});
            for (const int len : {1, 8, 40, 500}) {
                ASSERT_EQ(indexOf(library.FindCAny<T>(), text.data(), len, set, lenSet), -1);
                ASSERT_EQ(indexOf(library.FindRevCAny<T>(), text.data(), len, set, lenSet), -1);
            }
        }
    }
}

TEST_P(SearchInstances, FindCAny_ReadsNothingBesideTheSet) {
    readsNothingBesideTheSet<Zel8u>(library());
    readsNothingBesideTheSet<Zel16u>(library());
}

template <typename T>
std::vector<T> randomText(Random& random, int len, int letters) {
    std::vector<T> text(static_cast<size_t>(len));
    for (T& x : text)
        x = static_cast<T>((sizeof(T) == 2 ? 0x4E00 : 0) + 'a' + random.below(letters));
    return text;
}

/// Texts of few letters, so that the probes of a search pass often and the comparison decides.
template <typename T>
void findsStrings(const Instance& library) {
    GuardedPages pages(6);
    GuardedPages patternPages(1);
    Random random(4);
    for (int round = 0; round < 4000; ++round) {
        const int len = random.oneIn(4) ? random.below(1500) : random.below(150);
        const int letters = 1 + random.below(4);
        const std::vector<T> text = randomText<T>(random, len, letters);
        const int lenPattern = random.oneIn(5) ? random.below(len + 3) : random.below(9);
        std::vector<T> pattern = randomText<T>(random, lenPattern, letters);
        if (lenPattern <= len && !random.oneIn(3)) {
            const auto from = text.begin() + random.below(len - lenPattern + 1);
            std::copy(from, from + lenPattern, pattern.begin());
            if (lenPattern > 0 && random.oneIn(4))
                pattern[static_cast<size_t>(random.below(lenPattern))] ^= 1;
        }
        T* const find =
            random.oneIn(2) ? patternPages.atStart<T>() : patternPages.atEnd<T>(pattern.size());
        std::copy(pattern.begin(), pattern.end(), find);
        const int first = naiveFind(text.data(), len, pattern.data(), lenPattern);
        const int last = naiveFindRev(text.data(), len, pattern.data(), lenPattern);
        for (T* const p : {pages.atStart<T>(), pages.atEnd<T>(text.size()),
                           pages.at<T>(static_cast<size_t>(random.below(64)) & ~(sizeof(T) - 1))}) {
            std::copy(text.begin(), text.end(), p);
            ASSERT_EQ(indexOf(library.Find<T>(), p, len, find, lenPattern), first)
                << len << ' ' << lenPattern;
            ASSERT_EQ(indexOf(library.FindRev<T>(), p, len, find, lenPattern), last)
                << len << ' ' << lenPattern;
        }
    }
}

TEST_P(SearchInstances, Find_8u_AgreesWithThePlainLoop) {
    findsStrings<Zel8u>(library());
}

TEST_P(SearchInstances, Find_16u_AgreesWithThePlainLoop) {
    findsStrings<Zel16u>(library());
}

TEST_P(SearchInstances, Find_HandlesEveryLengthOfTextAndPattern) {
    GuardedPages pages(1);
    for (int len = 0; len < 200; ++len) {
        Zel8u* const p = pages.atEnd<Zel8u>(static_cast<size_t>(len));
        for (int i = 0; i < len; ++i) p[i] = static_cast<Zel8u>(i + 1);
        for (int lenPattern = 0; lenPattern <= len + 1; ++lenPattern) {
            for (const int at : {0, (len - lenPattern) / 2, len - lenPattern}) {
                const bool fits = lenPattern > 0 && lenPattern <= len;
                const Zel8u* const pattern = fits ? p + at : pages.begin();
                ASSERT_EQ(indexOf(library().zelsFind_8u, p, len, pattern, lenPattern),
                          fits ? at : -1);
                ASSERT_EQ(indexOf(library().zelsFindRev_8u, p, len, pattern, lenPattern),
                          fits ? at : -1);
            }
        }
    }
}

TEST_P(SearchInstances, Kernels_AnswerTheLengthWhenThereIsNothing) {
    GuardedPages pages(3);
    const uint64_t digits[4] = {0x03FF000000000000, 0, 0, 0};
    for (const int len : lengthsToTry()) {
        Zel8u* const p = pages.atEnd<Zel8u>(static_cast<size_t>(len));
        std::fill(pages.begin(), pages.end(), Zel8u{'5'});
        std::fill(p, p + len, Zel8u{'q'});
        ASSERT_EQ(library().findByte(p, len, '5'), len);
        ASSERT_EQ(library().findByteRev(p, len, '5'), -1);
        ASSERT_EQ(library().findByte2(p, len, '5', '6'), len);
        ASSERT_EQ(library().findByte3(p, len, '4', '5', '6'), len);
        ASSERT_EQ(library().findByteIn(p, len, digits), len);
        ASSERT_EQ(library().findBytes(p, len, pages.begin(), len + 1), len);
        ASSERT_EQ(library().findBytesIgnoreCaseRev(p, len, pages.begin(), 3), -1);
        std::fill(p, p + len, Zel8u{'7'});
        ASSERT_EQ(library().findByteNotIn(p, len, digits), len);
    }
}

TEST_P(SearchInstances, Kernels_FindBytesInAndNotInRandomSets) {
    GuardedPages pages(3);
    Random random(5);
    for (int round = 0; round < 3000; ++round) {
        uint64_t set[4];
        for (uint64_t& word : set) {
            word = 0;
            for (int bit = 0; bit < 64; ++bit) word |= uint64_t{random.oneIn(8)} << bit;
        }
        const auto has = [&](Zel8u c) { return (set[c >> 6] >> (c & 63) & 1) != 0; };
        const int len = random.below(400);
        Zel8u* const p =
            random.oneIn(2) ? pages.atStart<Zel8u>() : pages.atEnd<Zel8u>(static_cast<size_t>(len));
        // Mostly of one kind, so that hits lie anywhere.
        const bool mostlyIn = random.oneIn(2);
        for (int i = 0; i < len; ++i) {
            do p[i] = static_cast<Zel8u>(random.below(256));
            while (has(p[i]) != mostlyIn && !random.oneIn(60));
        }
        int firstIn = len, firstNot = len;
        for (int i = 0; i < len; ++i) {
            int& first = has(p[i]) ? firstIn : firstNot;
            if (first == len) first = i;
        }
        ASSERT_EQ(library().findByteIn(p, len, set), firstIn);
        ASSERT_EQ(library().findByteNotIn(p, len, set), firstNot);
    }
}

TEST_P(SearchInstances, Kernels_FindOneOfThree) {
    GuardedPages pages(3);
    for (const int len : lengthsToTry()) {
        if (len == 0) continue;
        Zel8u* const p = pages.atEnd<Zel8u>(static_cast<size_t>(len));
        for (const int place : {0, len / 2, len - 1}) {
            std::fill(p, p + len, Zel8u{'q'});
            for (const Zel8u c : {'a', 'b', 'c'}) {
                p[place] = c;
                ASSERT_EQ(library().findByte(p, len, c), place);
                ASSERT_EQ(library().findByteRev(p, len, c), place);
                ASSERT_EQ(library().findByte2(p, len, 'a', 'b'), c == 'c' ? len : place);
                ASSERT_EQ(library().findByte3(p, len, 'a', 'b', 'c'), place);
            }
        }
    }
}

Zel8u lower(Zel8u c) {
    return c >= 'A' && c <= 'Z' ? static_cast<Zel8u>(c + 32) : c;
}

TEST_P(SearchInstances, Kernels_FindBytesIgnoringTheCaseOfLettersOnly) {
    GuardedPages pages(3);
    Random random(6);
    // Bytes that differ in bit 5 only, letters and others: [ and {, @ and `, 0xC1 and 0xE1.
    const std::string alphabet = "aAbB[{@`\xC1\xE1";
    for (int round = 0; round < 6000; ++round) {
        const int len = random.below(300);
        const int lenNeedle = 1 + random.below(random.oneIn(10) ? 100 : 5);
        const int letters = 2 + random.below(static_cast<int>(alphabet.size()) - 1);
        std::vector<Zel8u> needle(static_cast<size_t>(lenNeedle));
        const auto any = [&] {
            return static_cast<Zel8u>(alphabet[static_cast<size_t>(random.below(letters))]);
        };
        for (Zel8u& c : needle) c = any();
        Zel8u* const p =
            random.oneIn(2) ? pages.atStart<Zel8u>() : pages.atEnd<Zel8u>(static_cast<size_t>(len));
        for (int i = 0; i < len; ++i) p[i] = any();
        int first = -1;
        int last = -1;
        for (int i = 0; i + lenNeedle <= len; ++i) {
            if (!std::equal(needle.begin(), needle.end(), p + i,
                            [](Zel8u a, Zel8u b) { return lower(a) == lower(b); }))
                continue;
            if (first < 0) first = i;
            last = i;
        }
        ASSERT_EQ(library().findBytesIgnoreCaseRev(p, len, needle.data(), lenNeedle), last);
        kernels::LiteralSet set;
        set.count = 1;
        set.ignoreCase = true;
        set.literals[0] = {needle.data(), lenNeedle};
        ZelRegExpFind match;
        ASSERT_EQ(library().collectLiterals(p, len, &set, &match, 1), first < 0 ? 0 : 1);
        if (first >= 0) {
            ASSERT_EQ(match.pMatch, p + first);
            ASSERT_EQ(match.lenMatch, lenNeedle);
        }
    }
}

}  // namespace
}  // namespace zel::test
