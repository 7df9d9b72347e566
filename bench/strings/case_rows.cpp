// Case conversion and replacement of one element: element in, element out.

#include "strings/family.h"

namespace bench {
namespace {

template <class T, class Tag>
void rows(Suite& suite, Tag tag, const char* name, const char* variant, Must must,
          Language language) {
    runFamily(suite, {name + std::string(kWidth<T>), variant, must}, tag, [language](Size size) {
        return makeCases<T>(size, {.dstPerElement = 1}, [&](Draft<T>& draft, Random& random) {
            writeText(draft.src, draft.len, language, random);
            // Capitals among the small letters, as the English words have none.
            for (int i = 0; language == Language::English && i < draft.len; i += 5) {
                if (draft.src[i] != ' ') draft.src[i] = static_cast<T>(draft.src[i] - 32);
            }
            draft.job->value = ' ';
            draft.job->newValue = '_';
        });
    });
}

template <class T>
void latinRows(Suite& suite, double mix) {
    const Must must = Must::sizes(0, 1.0, 1.0).mix(mix);
    rows<T>(suite, UppercaseLatin{}, "UppercaseLatin", "", must, Language::English);
    rows<T>(suite, LowercaseLatin{}, "LowercaseLatin", "", must, Language::English);
    rows<T>(suite, ReplaceC{}, "ReplaceC", "", must, Language::English);
}

}  // namespace

void caseRows(Suite& suite) {
    latinRows<Zel8u>(suite, 2.5);
    latinRows<Zel16u>(suite, 2.5);

    struct Text {
        Language language;
        double must;
    };
    for (const Text& text : {Text{Language::English, 12}, Text{Language::French, 5},
                             Text{Language::Russian, 4}, Text{Language::Chinese, 10}}) {
        const char* const name = languageName(text.language);
        const Must must = Must::beyondShort(text.must);
        rows<Zel16u>(suite, Uppercase{}, "Uppercase", name, must, text.language);
        rows<Zel16u>(suite, Lowercase{}, "Lowercase", name, must, text.language);
    }
}

}  // namespace bench
