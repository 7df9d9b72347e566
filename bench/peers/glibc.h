// What the C library offers for a job, alone or a call or two combined as a user would.
#pragma once

#include <strings.h>
#include <cctype>
#include <cstring>

#include "strings/jobs.h"

namespace bench {

struct Glibc {
    static constexpr const char* name = "glibc";
    static constexpr Kind kind = Kind::Package;

    using J8 = Job<Zel8u>;

    static std::int64_t run(FindC, const J8& j) {
        return position(j, std::memchr(j.src, j.value, size(j.len)));
    }
    static std::int64_t run(FindRevC, const J8& j) {
        return position(j, memrchr(j.src, j.value, size(j.len)));
    }
    static std::int64_t run(FindCAny, const J8& j) {
        const std::size_t at = std::strcspn(chars(j.src), chars(j.arg));
        return at == size(j.len) ? -1 : static_cast<std::int64_t>(at);
    }
    static std::int64_t run(Find, const J8& j) {
        return position(j, memmem(j.src, size(j.len), j.arg, size(j.argLen)));
    }
    static int run(Compare, const J8& j) { return std::memcmp(j.src, j.arg, size(j.len)); }
    static int run(Equal, const J8& j) { return std::memcmp(j.src, j.arg, size(j.len)) == 0; }
    static int run(Equal, const Job<Zel16u>& j) {
        return std::memcmp(j.src, j.arg, size(j.len) * 2) == 0;
    }
    static int run(CompareIgnoreCaseLatin, const J8& j) {
        return strncasecmp(chars(j.src), chars(j.arg), size(j.len));
    }
    static int run(UppercaseLatin, const J8& j) {
        for (int i = 0; i < j.len; ++i) j.dst[i] = static_cast<Zel8u>(std::toupper(j.src[i]));
        return 0;
    }
    static int run(LowercaseLatin, const J8& j) {
        for (int i = 0; i < j.len; ++i) j.dst[i] = static_cast<Zel8u>(std::tolower(j.src[i]));
        return 0;
    }

    template <class T>
    static int run(Insert, const Job<T>& j) {
        T* const gap = put(j.dst, j.src, j.at);
        put(put(gap, j.arg, j.argLen), j.src + j.at, j.len - j.at);
        return 0;
    }
    template <class T>
    static int run(Remove, const Job<T>& j) {
        const int tail = j.at + j.count;
        put(put(j.dst, j.src, j.at), j.src + tail, j.len - tail);
        return 0;
    }
    template <class T>
    static int run(Concat, const Job<T>& j) {
        put(put(j.dst, j.src, j.len), j.arg, j.argLen);
        return 0;
    }
    template <class T>
    static int run(ConcatList, const ListJob<T>& j) {
        T* end = j.dst;
        for (int i = 0; i < j.count; ++i) end = put(end, j.pieces[i], j.lengths[i]);
        return 0;
    }
    template <class T>
    static int run(ConcatCList, const ListJob<T>& j) {
        T* end = j.dst;
        for (int i = 0; i < j.count; ++i) {
            if (i != 0) *end++ = j.value;
            end = put(end, j.pieces[i], j.lengths[i]);
        }
        return 0;
    }
    static int run(SplitC, const SplitJob<Zel8u>& j) {
        const Zel8u* from = j.src;
        const Zel8u* const end = j.src + j.len;
        int count = 0;
        for (; from < end; ++count) {
            const void* hit = std::memchr(from, j.value, static_cast<std::size_t>(end - from));
            const Zel8u* const stop = hit != nullptr ? static_cast<const Zel8u*>(hit) : end;
            j.slotLengths[count] = static_cast<int>(stop - from);
            std::memcpy(j.slots[count], from, static_cast<std::size_t>(stop - from));
            from = stop + 1;
        }
        return count;
    }

    static int run(Copy, const J8& j) {
        std::memcpy(j.dst, j.src, size(j.len));
        return 0;
    }
    static int run(Move, const J8& j) {
        std::memmove(j.dst, j.src, size(j.len));
        return 0;
    }
    static int run(Zero, const J8& j) {
        std::memset(j.dst, 0, size(j.len));
        return 0;
    }

private:
    static std::size_t size(int length) { return static_cast<std::size_t>(length); }
    static const char* chars(const Zel8u* text) { return reinterpret_cast<const char*>(text); }
    static std::int64_t position(const J8& j, const void* hit) {
        return hit != nullptr ? static_cast<const Zel8u*>(hit) - j.src : -1;
    }
    template <class T>
    static T* put(T* dst, const T* src, int length) {
        std::memcpy(dst, src, size(length) * sizeof(T));
        return dst + length;
    }
};

// The well-known way to find a 16-bit element with the C library: search for its rarer byte.
struct GlibcByteTrick {
    static constexpr const char* name = "memchr on bytes";
    static constexpr Kind kind = Kind::Loop;

    static std::int64_t run(FindC, const Job<Zel16u>& j) {
        const Zel8u* const bytes = reinterpret_cast<const Zel8u*>(j.src);
        const Zel8u* const end = bytes + 2 * static_cast<std::size_t>(j.len);
        const Zel8u* from = bytes;
        while (from < end) {
            const void* const hit =
                std::memchr(from, j.value & 0xFF, static_cast<std::size_t>(end - from));
            if (hit == nullptr) return -1;
            const std::int64_t at = static_cast<const Zel8u*>(hit) - bytes;
            if (at % 2 == 0 && j.src[at / 2] == j.value) return at / 2;
            from = bytes + at + 1;
        }
        return -1;
    }
};

}  // namespace bench
