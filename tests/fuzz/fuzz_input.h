// How the fuzz entry points cut their input: a few leading bytes choose options, the rest is split
// at zero bytes into texts. Where library and model differ, the case is printed and the program
// stops.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {

class Input {
public:
    Input(const uint8_t* bytes, size_t size) : bytes_(bytes), size_(size) {}

    int byte() {
        if (size_ == 0) return 0;
        --size_;
        return *bytes_++;
    }
    /// Bytes up to the next zero byte, at most `longest` of them.
    std::string text(size_t longest) {
        std::string result;
        while (size_ > 0) {
            int c = byte();
            if (c == 0) break;
            if (result.size() < longest) result += static_cast<char>(c);
        }
        return result;
    }
    std::string rest(size_t longest) {
        std::string result(reinterpret_cast<const char*>(bytes_),
                           size_ < longest ? size_ : longest);
        size_ = 0;
        return result;
    }
    /// Option letters from the bits of one byte.
    std::string options() {
        static const char letters[] = "simxg";
        int bits = byte();
        std::string result;
        for (int i = 0; letters[i] != 0; ++i) {
            if (bits & (1 << i)) result += letters[i];
        }
        return result;
    }

private:
    const uint8_t* bytes_;
    size_t size_;
};

/// Stops the program when a comparison of library and model found a difference.
template <typename Case>
void check(const Case& testCase) {
    std::string difference = compare(testCase);
    if (difference.empty()) return;
    std::fprintf(stderr, "%s // %s\n", testCase.text().c_str(), difference.c_str());
    std::abort();
}

}  // namespace fuzz
