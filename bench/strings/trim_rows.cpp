// Trimming: a quarter of the text goes at each end.

#include <algorithm>
#include <string_view>

#include "strings/family.h"

namespace bench {
namespace {

constexpr std::string_view kSet = " \t\r\n";

template <class T, class Tag>
void rows(Suite& suite, Tag tag, const char* name, const char* variant, Must must, int setSize) {
    runFamily(suite, {name + std::string(kWidth<T>), variant, must}, tag, [setSize](Size size) {
        return makeCases<T>(size, {.argLen = setSize, .dstPerElement = 1},
                            [&](Draft<T>& draft, Random& random) {
                                writeText(draft.src, draft.len, Language::English, random);
                                std::copy_n(kSet.begin(), setSize, draft.arg);
                                draft.job->value = draft.arg[0];
                                const int quarter = draft.len / 4;
                                for (int i = 0; i < quarter; ++i) {
                                    draft.src[i] = draft.arg[random.below(setSize)];
                                    draft.src[draft.len - 1 - i] = draft.arg[random.below(setSize)];
                                }
                                draft.src[quarter] = draft.src[draft.len - 1 - quarter] = 'x';
                            });
    });
}

}  // namespace

void trimRows(Suite& suite) {
    rows<Zel8u>(suite, TrimC{}, "TrimC", "", Must::beyondShort(3), 1);
    rows<Zel16u>(suite, TrimC{}, "TrimC", "", Must::beyondShort(2), 1);
    rows<Zel8u>(suite, TrimCAny{}, "TrimCAny", "4 members", Must::beyondShort(8), 4);
    rows<Zel16u>(suite, TrimCAny{}, "TrimCAny", "4 members", Must::beyondShort(5), 4);
}

}  // namespace bench
