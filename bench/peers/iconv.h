// iconv of the C library.
#pragma once

#include <iconv.h>

#include "strings/jobs.h"

namespace bench {

struct Iconv {
    static constexpr const char* name = "iconv";
    static constexpr Kind kind = Kind::Package;

    static std::int64_t run(ConvertUtf, const ConvertJob<Zel8u, Zel16u>& j) {
        static const iconv_t toUtf16 = iconv_open("UTF-16LE", "UTF-8");
        return convert(toUtf16, j);
    }
    static std::int64_t run(ConvertUtf, const ConvertJob<Zel16u, Zel8u>& j) {
        static const iconv_t toUtf8 = iconv_open("UTF-8", "UTF-16LE");
        return convert(toUtf8, j);
    }

private:
    template <class From, class To>
    static std::int64_t convert(iconv_t converter, const ConvertJob<From, To>& j) {
        char* in = const_cast<char*>(reinterpret_cast<const char*>(j.src));
        char* out = reinterpret_cast<char*>(j.dst);
        std::size_t inLeft = static_cast<std::size_t>(j.len) * sizeof(From);
        std::size_t outLeft = static_cast<std::size_t>(j.dstLen) * sizeof(To);
        iconv(converter, &in, &inLeft, &out, &outLeft);
        return reinterpret_cast<To*>(out) - j.dst;
    }
};

}  // namespace bench
