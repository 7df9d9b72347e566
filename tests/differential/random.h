// Random choices for generated cases: from a seed, or from the bytes of a fuzzer, which then steers
// every choice itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace differential {

class Random {
public:
    /// Case `number` of the series `seed`; every case can be made again alone.
    Random(uint64_t seed, uint64_t number) : state_(seed * 0x9E3779B97F4A7C15 + number) {
        next();
        state_ ^= number << 32;
    }
    /// Choices from given bytes, then always the first choice.
    Random(const uint8_t* bytes, size_t size) : bytes_(bytes), size_(size), fromBytes_(true) {}

    uint64_t next() {
        if (fromBytes_) return nextByte();
        state_ += 0x9E3779B97F4A7C15;
        uint64_t z = state_;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

    /// A number from 0 to n - 1.
    int below(int n) {
        if (n <= 1) return 0;
        if (!fromBytes_) return static_cast<int>(next() % static_cast<uint64_t>(n));
        uint64_t value = nextByte();
        if (n > 256) value = value << 8 | nextByte();
        return static_cast<int>(value % static_cast<uint64_t>(n));
    }
    /// A number from low to high.
    int between(int low, int high) { return low + below(high - low + 1); }
    /// True in `percent` of all cases.
    bool chance(int percent) { return below(100) < percent; }

    template <typename T, size_t N>
    const T& pick(const T (&values)[N]) {
        return values[below(static_cast<int>(N))];
    }
    template <typename T>
    const T& pick(const std::vector<T>& values) {
        return values[static_cast<size_t>(below(static_cast<int>(values.size())))];
    }

private:
    uint64_t nextByte() {
        if (size_ == 0) return 0;
        --size_;
        return *bytes_++;
    }

    uint64_t state_ = 0;
    const uint8_t* bytes_ = nullptr;
    size_t size_ = 0;
    bool fromBytes_ = false;
};

}  // namespace differential
