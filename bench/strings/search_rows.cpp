// Searches: what is looked for stands at the far end of the text, so that all of it is read.

#include <algorithm>
#include <string_view>

#include "strings/family.h"

namespace bench {
namespace {

constexpr Language kText = Language::English;  // lower-case letters and spaces

template <class T>
void findCRows(Suite& suite, Must forward, Must backward) {
    constexpr T kValue = sizeof(T) == 1 ? '#' : 0x20AC;
    runFamily(suite, {std::string("FindC") + kWidth<T>, "", forward}, FindC{}, [](Size size) {
        return makeCases<T>(size, {}, [](Draft<T>& draft, Random& random) {
            writeText(draft.src, draft.len, kText, random);
            draft.src[draft.len - 1] = draft.job->value = kValue;
        });
    });
    runFamily(suite, {std::string("FindRevC") + kWidth<T>, "", backward}, FindRevC{},
              [](Size size) {
                  return makeCases<T>(size, {}, [](Draft<T>& draft, Random& random) {
                      writeText(draft.src, draft.len, kText, random);
                      draft.src[0] = draft.job->value = kValue;
                  });
              });
}

struct Set {
    const char* name;
    std::u16string_view members;  // none of them occurs in the text
};
constexpr Set kSets[] = {
    {"2 members", u"#%"},
    {"4 members", u"#%\r\n"},
    {"16 members", u"#%\r\n!\"$&'()*+,-."},
    {"63 members", u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ!\"#$%&'()*+,-./:;<=>?@[]^_\r"},
};
constexpr Set kManyScripts = {
    "63 members, many scripts",
    u"0123456789ABCDEFGHIJÀÁÂÃÄÅÆÇÈÉАБВГДЕЖЗИЙαβγδεζηθικ一二三四五六七八九十カキク"};

template <class T>
void findCAnyRows(Suite& suite, const Set& set, Must must) {
    const auto cases = [set](Size size, bool backward) {
        const int count = static_cast<int>(set.members.size());
        return makeCases<T>(size, {.argLen = count}, [&](Draft<T>& draft, Random& random) {
            writeText(draft.src, draft.len, kText, random);
            std::copy(set.members.begin(), set.members.end(), draft.arg);
            draft.src[backward ? 0 : draft.len - 1] = draft.arg[count - 1];
        });
    };
    runFamily(suite, {std::string("FindCAny") + kWidth<T>, set.name, must}, FindCAny{},
              [&](Size size) { return cases(size, false); });
    runFamily(suite, {std::string("FindRevCAny") + kWidth<T>, set.name, must}, FindRevCAny{},
              [&](Size size) { return cases(size, true); });
}

// A needle and the text it is hard or easy to find in: words, words with many `decoy`s, or one
// letter repeated.
struct Needle {
    const char* name;
    std::string_view text;
    std::string_view decoy;
    bool oneLetter;
    int fromBytes;
    int toBytes;
};
constexpr Needle kNeedles[] = {
    {"rare needle", "Zq#", "", false, 8, Must::kNoEnd},
    {"common needle", "senation", "", false, 32, Must::kNoEnd},
    {"two frequent letters", "nh", "", false, 256, 1 << 20},
    {"near-miss", "interasting", "interesting", false, 256, 1 << 20},
    {"aaab", "aaaaaaaaaaaaaaab", "", true, 256, 1 << 20},
    {"baaa", "baaaaaaaaaaaaaaa", "", true, 256, 1 << 20},
    {"aba", "aaaaaaabaaaaaaaa", "", true, 256, 1 << 20},
};

template <class T>
void findRows(Suite& suite, const Needle& needle, Must forward, Must backward) {
    const auto cases = [needle](Size size, bool backwards) {
        const int count = static_cast<int>(needle.text.size());
        return makeCases<T>(size, {.argLen = count}, [&](Draft<T>& draft, Random& random) {
            writeText(draft.src, draft.len, kText, random);
            if (needle.oneLetter) std::fill_n(draft.src, draft.len, T{'a'});
            const int decoy = static_cast<int>(needle.decoy.size());
            for (int at = 0; decoy != 0 && at + decoy <= draft.len; at += random.between(20, 80))
                std::copy(needle.decoy.begin(), needle.decoy.end(), draft.src + at);
            std::copy(needle.text.begin(), needle.text.end(), draft.arg);
            if (draft.len >= count) {
                const int at = backwards ? 0 : draft.len - count;
                std::copy(needle.text.begin(), needle.text.end(), draft.src + at);
            }
        });
    };
    const auto family = [&](const char* name, Must must) {
        return Family{name + std::string(kWidth<T>), needle.name, must, needle.fromBytes,
                      needle.toBytes};
    };
    runFamily(suite, family("Find", forward), Find{},
              [&](Size size) { return cases(size, false); });
    runFamily(suite, family("FindRev", backward), FindRev{},
              [&](Size size) { return cases(size, true); });
}

}  // namespace

void searchRows(Suite& suite) {
    findCRows<Zel8u>(suite, Must::sizes(1.0, 0.95, 0.97, 0.97), Must::sizes(1.0, 0.95, 0.97, 0.97));
    findCRows<Zel16u>(suite, Must::sizes(1.5, 0.95, 0.95, 0.95), Must::sizes(1.5, 10, 10));

    const double bytes[] = {0.9, 1.6, 1.6, 1.7};
    const double units[] = {15, 40, 40, 150};
    for (std::size_t i = 0; i < std::size(kSets); ++i) {
        Must must = Must::beyondShort(bytes[i]);
        if (kSets[i].members.size() > 16) must.ratio(2, 32, 32);
        findCAnyRows<Zel8u>(suite, kSets[i], must);
        findCAnyRows<Zel16u>(suite, kSets[i], Must::beyondShort(units[i]));
    }
    findCAnyRows<Zel16u>(suite, kManyScripts, Must::beyondShort(150));

    for (const Needle& needle : kNeedles) {
        findRows<Zel8u>(suite, needle, Must::beyondShort(0.7), Must::beyondShort(1.3));
        findRows<Zel16u>(suite, needle, Must::beyondShort(4), Must::beyondShort(4));
    }
}

}  // namespace bench
