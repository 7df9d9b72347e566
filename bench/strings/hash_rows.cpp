// The three hashes. Their formulas are their own, so the peers are loops; xxHash is the ceiling.

#include "strings/family.h"

namespace bench {
namespace {

template <class T, class Tag>
void rows(Suite& suite, Tag tag, const char* name, Must must) {
    runFamily(suite, {name + std::string(kWidth<T>), "", must}, tag, [](Size size) {
        return makeCases<T>(size, {}, [](Draft<T>& draft, Random& random) {
            writeText(draft.src, draft.len, Language::English, random);
        });
    });
}

}  // namespace

void hashRows(Suite& suite) {
    const Must anyLength = Must().nanoseconds(8, 32, Must::kNoEnd);
    rows<Zel8u>(suite, Hash{}, "Hash", anyLength);
    rows<Zel16u>(suite, Hash{}, "Hash", anyLength);
    rows<Zel8u>(suite, HashSJ2{}, "HashSJ2",
                Must().ratio(2.5, 32, 32).ratio(20, 256, 256).ratio(40, 4096, 1 << 20));
    rows<Zel16u>(suite, HashSJ2{}, "HashSJ2", Must().ratio(15, 4096, 1 << 20));
    rows<Zel8u>(suite, HashMSCS{}, "HashMSCS",
                Must::everywhere(1.0).ratio(3.5, 4096, Must::kNoEnd));
    rows<Zel16u>(suite, HashMSCS{}, "HashMSCS", {});
}

}  // namespace bench
