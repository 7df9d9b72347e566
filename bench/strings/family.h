// A family of rows: one job, one kind of input, all sizes, all contestants.
#pragma once

#include <initializer_list>
#include <string>

#include "peers/glibc.h"
#include "peers/iconv.h"
#include "peers/icu.h"
#include "peers/library.h"
#include "peers/loops.h"
#include "peers/string_view.h"
#include "peers/xxhash.h"
#include "strings/inputs.h"

namespace bench {

// The first that can do a job says what its right answer is.
using Everyone = std::tuple<LoopPlain, LoopNative, Icu, IcuByCharacter, Glibc, GlibcByteTrick,
                            Iconv, StringView, Xxh3, Xxh32, Library>;

template <class T>
inline constexpr const char* kWidth = sizeof(T) == 1 ? " 8u" : " 16u";

struct Family {
    std::string name;
    std::string variant;
    Must must;
    int fromBytes = 0;  // the smallest size that makes sense; the mix counts as 8 bytes
    int toBytes = Must::kNoEnd;
};

// Runs the rows of a family; `make(Size)` makes the input of one.
template <class Tag, class Make>
void runFamily(Suite& suite, const Family& family, Tag tag, Make make) {
    for (const Size& size : kSizes) {
        const bool mix = size.bytes == Must::kMix;
        const int bytes = mix ? 8 : size.bytes;
        if (bytes < family.fromBytes || bytes > family.toBytes) continue;
        if (suite.quick() && !mix && size.bytes != 4096) continue;
        Row row{.family = family.name,
                .variant = family.variant,
                .size = size.name,
                .mustRatio = family.must.ratioAt(size.bytes),
                .mustNs = family.must.nanosecondsAt(size.bytes)};
        if (!suite.wants(row)) continue;
        const auto cases = make(size);
        row.bytes = meanBytes(cases);
        suite.run(row, cases, tag, Everyone{});
    }
}

void searchRows(Suite& suite);
void compareRows(Suite& suite);
void caseRows(Suite& suite);
void editRows(Suite& suite);
void trimRows(Suite& suite);
void hashRows(Suite& suite);
void utfRows(Suite& suite);
void blockRows(Suite& suite);

}  // namespace bench
