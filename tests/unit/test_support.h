// What the tests of the string and memory functions share: buffers between inaccessible pages, with
// canaries around them, and random text.
//
// An Arena places a run of elements at any of kPlacements positions: at 64 successive element
// offsets, directly before an inaccessible page, and directly behind one. What lies around the run
// is filled with a value of the test's choice; intact() says whether it still stands.
#pragma once

#include <gtest/gtest.h>
#include <stddef.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <vector>

#include "zelchmx.h"

namespace test {

inline constexpr int kOffsets = 64;
inline constexpr int kBeforeGuard = kOffsets;      // ends where an inaccessible page begins
inline constexpr int kBehindGuard = kOffsets + 1;  // begins where an inaccessible page ends
inline constexpr int kPlacements = kOffsets + 2;

// Lengths that the exhaustive tests go through.
inline constexpr int kMaxLen = 300;

/// Memory with an inaccessible page directly before and directly behind it.
class GuardedPages {
public:
    explicit GuardedPages(size_t bytes) {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        const size_t inner = (bytes + page - 1) / page * page;
        size_ = inner + 2 * page;
        base_ = static_cast<char*>(mmap(nullptr, size_, PROT_READ | PROT_WRITE,
                                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        if (base_ == MAP_FAILED) {
            base_ = nullptr;
            return;
        }
        begin_ = base_ + page;
        end_ = begin_ + inner;
        mprotect(base_, page, PROT_NONE);
        mprotect(end_, page, PROT_NONE);
    }
    ~GuardedPages() {
        if (base_ != nullptr) munmap(base_, size_);
    }
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    bool available() const { return base_ != nullptr; }
    char* begin() const { return begin_; }
    char* end() const { return end_; }

private:
    char* base_ = nullptr;
    char* begin_ = nullptr;
    char* end_ = nullptr;
    size_t size_ = 0;
};

/// A placed run: `len` elements at `data`, and the canaries between `low` and `high` around it.
template <typename T>
struct Placed {
    T* data;
    int len;
    T* low;
    T* high;
    T around;

    T* begin() const { return data; }
    T* end() const { return data + len; }
    T& operator[](int i) const { return data[i]; }
    operator T*() const { return data; }

    bool intact() const { return intactFrom(len); }
    /// The same when only the first `used` elements of the run may have changed; it was filled with
    /// the surrounding value.
    bool intactFrom(int used) const {
        const auto isCanary = [this](T value) { return value == around; };
        return std::all_of(low, data, isCanary) && std::all_of(data + used, high, isCanary);
    }
};

template <typename T>
class Arena {
public:
    explicit Arena(int maxLen)
        : pages_(static_cast<size_t>(maxLen + kOffsets + 2 * kCanaries) * sizeof(T)) {}

    /// The run and the canaries around it are filled with `around`.
    Placed<T> place(int len, int placement, T around = T(0xA5A5)) const {
        T* const begin = reinterpret_cast<T*>(pages_.begin());
        T* const end = reinterpret_cast<T*>(pages_.end());
        T* data = begin + kCanaries + placement;
        if (placement == kBeforeGuard) data = end - len;
        if (placement == kBehindGuard) data = begin;
        T* const low = std::max(begin, data - kCanaries);
        T* const high = std::min(end, data + len + kCanaries);
        std::fill(low, high, around);
        return {data, len, low, high, around};
    }

    Placed<T> place(const std::vector<T>& content, int placement, T around = T(0xA5A5)) const {
        const Placed<T> run = place(static_cast<int>(content.size()), placement, around);
        std::copy(content.begin(), content.end(), run.data);
        return run;
    }

private:
    // Wider than any vector register.
    static constexpr int kCanaries = 128;
    GuardedPages pages_;
};

/// Calls f(len, placement) for every length of 0..kMaxLen in every placement.
template <typename F>
void forEachPlacement(F f) {
    for (int len = 0; len <= kMaxLen; ++len) {
        for (int placement = 0; placement < kPlacements; ++placement) {
            f(len, placement);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

/// Random numbers that are the same in every run.
class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    /// 0..n-1.
    int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }

    template <typename T>
    T pick(const std::vector<T>& from) {
        return from[static_cast<size_t>(below(static_cast<int>(from.size())))];
    }

    template <typename T>
    std::vector<T> text(int len, const std::vector<T>& alphabet) {
        std::vector<T> result(static_cast<size_t>(len));
        for (T& element : result) element = pick(alphabet);
        return result;
    }

    /// Elements of any value.
    template <typename T>
    std::vector<T> text(int len) {
        std::vector<T> result(static_cast<size_t>(len));
        for (T& element : result) element = static_cast<T>(engine_() >> 8);
        return result;
    }

private:
    std::minstd_rand engine_;
};

/// A few elements that are easily mistaken for each other: by their sign, by one of their bytes, or
/// by a carry from one byte to the next.
template <typename T>
std::vector<T> trickyAlphabet() {
    if constexpr (sizeof(T) == 1) {
        return {'a', 'b', 0x00, 0x7F, 0x80, 0xFF, 0xE1, 'A', '@', '[', '`', '{', 'Z', 'z'};
    } else {
        return {'a',    'b',    0x0000, 0x6161, 0x6100, 0x0161, 0x7FFF, 0x8000,
                0xFFFF, 0xFF61, 0x00FF, 0xFF00, 'A',    '@',    '[',    '`',
                '{',    'Z',    'z',    0x0100, 0x4141, 0x017A, 0x015A};
    }
}

/// The elements of a literal.
template <typename T>
std::vector<T> text(const char* literal) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(literal);
    return std::vector<T>(bytes, bytes + strlen(literal));
}

}  // namespace test
