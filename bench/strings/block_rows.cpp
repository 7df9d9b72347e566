// The block primitives beside memcpy, memmove and memset.

#include "strings/family.h"

namespace bench {
namespace {

template <class Tag>
void rows(Suite& suite, Tag tag, const char* name) {
    const Must must = Must::sizes(1.0, 0.95, 0.95, 1.0);
    runFamily(suite, {name + std::string(kWidth<Zel8u>), "", must}, tag, [](Size size) {
        return makeCases<Zel8u>(size, {.dstPerElement = 1},
                                [](Draft<Zel8u>& draft, Random& random) {
                                    writeText(draft.src, draft.len, Language::English, random);
                                });
    });
}

}  // namespace

void blockRows(Suite& suite) {
    rows(suite, Copy{}, "Copy");
    rows(suite, Move{}, "Move");
    rows(suite, Zero{}, "Zero");
}

}  // namespace bench
