// xxHash computes other hashes: a ceiling for what a hash of a text can cost, not a peer.
#pragma once

#if BENCH_HAS_XXHASH

#include <xxhash.h>

#include "strings/jobs.h"

namespace bench {

struct Xxh3 {
    static constexpr const char* name = "XXH3";
    static constexpr Kind kind = Kind::Ceiling;

    template <class Tag, class T>
    requires std::same_as<Tag, Hash> || std::same_as<Tag, HashSJ2> || std::same_as<Tag, HashMSCS>
    static std::int64_t run(Tag, const Job<T>& j) {
        return static_cast<std::int64_t>(
            XXH3_64bits(j.src, static_cast<std::size_t>(j.len) * sizeof(T)));
    }
};

struct Xxh32 {
    static constexpr const char* name = "XXH32";
    static constexpr Kind kind = Kind::Ceiling;

    template <class Tag, class T>
    requires std::same_as<Tag, Hash> || std::same_as<Tag, HashSJ2> || std::same_as<Tag, HashMSCS>
    static std::int64_t run(Tag, const Job<T>& j) {
        return XXH32(j.src, static_cast<std::size_t>(j.len) * sizeof(T), 0);
    }
};

}  // namespace bench

#else

namespace bench {

struct Xxh3 {};
struct Xxh32 {};

}  // namespace bench

#endif
