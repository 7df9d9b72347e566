// Comparisons of texts that are the same to their last element, or all through.

#include <algorithm>

#include "strings/family.h"

namespace bench {
namespace {

enum class Second { Same, LastDiffers, OtherCase };

// The case of every third letter is turned over; the texts' letters are such that one step
// suffices.
template <class T>
T otherCase(T element) {
    if (element >= 'a' && element <= 'z') return static_cast<T>(element - 32);
    if (element >= 'A' && element <= 'Z') return static_cast<T>(element + 32);
    if constexpr (sizeof(T) == 2) {
        if (element >= 0x0430 && element <= 0x044F) return static_cast<T>(element - 32);
        if (element >= 0x0410 && element <= 0x042F) return static_cast<T>(element + 32);
    }
    return element;
}

template <class T, class Tag>
void rows(Suite& suite, Tag tag, const char* name, const char* variant, Must must,
          Language language, Second second) {
    runFamily(suite, {name + std::string(kWidth<T>), variant, must}, tag, [&](Size size) {
        return makeCases<T>(size, {.argAsLong = true}, [&](Draft<T>& draft, Random& random) {
            writeText(draft.src, draft.len, language, random);
            std::copy_n(draft.src, draft.len, draft.arg);
            if (second == Second::LastDiffers) ++draft.arg[draft.len - 1];
            for (int i = 0; second == Second::OtherCase && i < draft.len; i += 3)
                draft.arg[i] = otherCase(draft.arg[i]);
        });
    });
}

}  // namespace

void compareRows(Suite& suite) {
    constexpr Language kEnglish = Language::English;
    const Must compareBytes = Must::sizes(1.0, 0.95, 0.95);
    rows<Zel8u>(suite, Compare{}, "Compare", "", compareBytes, kEnglish, Second::LastDiffers);
    rows<Zel8u>(suite, Equal{}, "Equal", "", compareBytes, kEnglish, Second::Same);
    rows<Zel16u>(suite, Compare{}, "Compare", "", Must::beyondShort(6), kEnglish,
                 Second::LastDiffers);
    rows<Zel16u>(suite, Equal{}, "Equal", "", Must::beyondShort(0.95), kEnglish, Second::Same);

    const Must latinBytes = Must::sizes(1.2, 1.0, 1.0);
    const Must latinUnits = Must::beyondShort(8);
    const char* const latin = "CompareIgnoreCaseLatin";
    rows<Zel8u>(suite, CompareIgnoreCaseLatin{}, latin, "same case", latinBytes, kEnglish,
                Second::Same);
    rows<Zel8u>(suite, CompareIgnoreCaseLatin{}, latin, "other case", latinBytes, kEnglish,
                Second::OtherCase);
    rows<Zel16u>(suite, CompareIgnoreCaseLatin{}, latin, "same case", latinUnits, kEnglish,
                 Second::Same);
    rows<Zel16u>(suite, CompareIgnoreCaseLatin{}, latin, "other case", latinUnits, kEnglish,
                 Second::OtherCase);

    const Must tables = Must::beyondShort(12);
    const char* const any = "CompareIgnoreCase";
    rows<Zel16u>(suite, CompareIgnoreCase{}, any, "ASCII, same case", tables, kEnglish,
                 Second::Same);
    rows<Zel16u>(suite, CompareIgnoreCase{}, any, "ASCII, other case", tables, kEnglish,
                 Second::OtherCase);
    rows<Zel16u>(suite, CompareIgnoreCase{}, any, "Cyrillic, other case", tables, Language::Russian,
                 Second::OtherCase);
}

}  // namespace bench
