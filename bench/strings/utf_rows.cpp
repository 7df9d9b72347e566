// Conversion between UTF-8 and UTF-16 of well-formed text.

#include "strings/family.h"

namespace bench {
namespace {

template <class From, class To>
Cases<ConvertJob<From, To>> cases(Size size, Language language) {
    // Every element becomes at most three: bytes give at most as many units, units at most as many
    // bytes times three.
    const Cases<Job<From>> texts =
        makeCases<From>(size, {}, [&](Draft<From>& draft, Random& random) {
            writeText(draft.src, draft.len, language, random);
        });
    std::size_t bytes = 4096;
    for (const Job<From>& text : texts.jobs) bytes += static_cast<std::size_t>(text.len) * 3 + 32;
    Arena outputs(bytes);
    outputs.take<char>(2192, 0);
    Cases<ConvertJob<From, To>> result;
    for (const Job<From>& text : texts.jobs) {
        const int room = sizeof(From) == 1 ? text.len : text.len * 3;
        ConvertJob<From, To> job{text.src, text.len,
                                 outputs.take<To>(static_cast<std::size_t>(room), 0), room, 0};
        job.resultLen = LoopPlain::run(ConvertUtf{}, job);
        result.jobs.push_back(job);
    }
    result.storage = texts.storage;
    result.storage.push_back(outputs.block());
    result.output = outputs.output();
    result.outputBytes = outputs.outputBytes();
    return result;
}

template <class From, class To>
void rows(Suite& suite, const char* name) {
    for (const Language language : {Language::English, Language::French, Language::Russian,
                                    Language::Chinese, Language::Emoji}) {
        const double ratio = language == Language::English ? 10 : 3;
        runFamily(suite, {name, languageName(language), Must::beyondShort(ratio)}, ConvertUtf{},
                  [&](Size size) { return cases<From, To>(size, language); });
    }
}

}  // namespace

void utfRows(Suite& suite) {
    rows<Zel8u, Zel16u>(suite, "ConvertUTF 8u16u");
    rows<Zel16u, Zel8u>(suite, "ConvertUTF 16u8u");
}

}  // namespace bench
