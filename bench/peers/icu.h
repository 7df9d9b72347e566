// ICU, for the jobs on 16-bit text and the UTF conversions.
#pragma once

#if BENCH_HAS_ICU

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include "strings/jobs.h"

namespace bench {

struct Icu {
    static constexpr const char* name = "ICU";
    static constexpr Kind kind = Kind::Package;

    using J16 = Job<Zel16u>;

    static std::int64_t run(FindC, const J16& j) {
        return position(j, u_memchr(text(j.src), j.value, j.len));
    }
    static std::int64_t run(FindRevC, const J16& j) {
        return position(j, u_memrchr(text(j.src), j.value, j.len));
    }
    static std::int64_t run(FindCAny, const J16& j) {
        const int at = u_strcspn(text(j.src), text(j.arg));
        return at == j.len ? -1 : at;
    }
    static std::int64_t run(Find, const J16& j) {
        return position(j, u_strFindFirst(text(j.src), j.len, text(j.arg), j.argLen));
    }
    static std::int64_t run(FindRev, const J16& j) {
        return position(j, u_strFindLast(text(j.src), j.len, text(j.arg), j.argLen));
    }
    static int run(Compare, const J16& j) { return u_memcmp(text(j.src), text(j.arg), j.len); }
    static int run(Equal, const J16& j) { return u_memcmp(text(j.src), text(j.arg), j.len) == 0; }
    static int run(CompareIgnoreCaseLatin, const J16& j) { return compareFolded(j); }
    static int run(CompareIgnoreCase, const J16& j) { return compareFolded(j); }
    static int run(UppercaseLatin, const J16& j) { return toUpper(j); }
    static int run(LowercaseLatin, const J16& j) { return toLower(j); }
    static int run(Uppercase, const J16& j) { return toUpper(j); }
    static int run(Lowercase, const J16& j) { return toLower(j); }

    // Given more room than the result takes, ICU adds a zero.
    static int run(ConvertUtf, const ConvertJob<Zel8u, Zel16u>& j) {
        int written = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8(reinterpret_cast<UChar*>(j.dst), j.resultLen, &written,
                      reinterpret_cast<const char*>(j.src), j.len, &status);
        return written;
    }
    static int run(ConvertUtf, const ConvertJob<Zel16u, Zel8u>& j) {
        int written = 0;
        UErrorCode status = U_ZERO_ERROR;
        u_strToUTF8(reinterpret_cast<char*>(j.dst), j.resultLen, &written, text(j.src), j.len,
                    &status);
        return written;
    }

private:
    static const UChar* text(const Zel16u* units) { return reinterpret_cast<const UChar*>(units); }
    static std::int64_t position(const J16& j, const UChar* hit) {
        return hit != nullptr ? hit - text(j.src) : -1;
    }
    static int compareFolded(const J16& j) {
        return u_memcasecmp(text(j.src), text(j.arg), j.len, U_FOLD_CASE_DEFAULT);
    }
    static int toUpper(const J16& j) {
        UErrorCode status = U_ZERO_ERROR;
        u_strToUpper(reinterpret_cast<UChar*>(j.dst), j.len, text(j.src), j.len, "", &status);
        return 0;
    }
    static int toLower(const J16& j) {
        UErrorCode status = U_ZERO_ERROR;
        u_strToLower(reinterpret_cast<UChar*>(j.dst), j.len, text(j.src), j.len, "", &status);
        return 0;
    }
};

// A loop over ICU's function for one character.
struct IcuByCharacter {
    static constexpr const char* name = "ICU a character";
    static constexpr Kind kind = Kind::Package;

    static int run(Uppercase, const Job<Zel16u>& j) {
        for (int i = 0; i < j.len; ++i) j.dst[i] = static_cast<Zel16u>(u_toupper(j.src[i]));
        return 0;
    }
    static int run(Lowercase, const Job<Zel16u>& j) {
        for (int i = 0; i < j.len; ++i) j.dst[i] = static_cast<Zel16u>(u_tolower(j.src[i]));
        return 0;
    }
    static int run(CompareIgnoreCase, const Job<Zel16u>& j) {
        for (int i = 0; i < j.len; ++i) {
            const int difference = u_tolower(j.src[i]) - u_tolower(j.arg[i]);
            if (difference != 0) return difference;
        }
        return 0;
    }
};

}  // namespace bench

#else

namespace bench {

struct Icu {};
struct IcuByCharacter {};

}  // namespace bench

#endif
