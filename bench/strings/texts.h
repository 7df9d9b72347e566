// Texts for the string rows: words of a language in a fixed pseudo-random order, so that a row sees
// the same text in every run, with the mixture of character lengths that the language has.
#pragma once

#include <zelchmx.h>

#include <cstdint>
#include <string>

namespace bench {

enum class Language { English, French, Russian, Chinese, Emoji };

const char* languageName(Language language);  // "ASCII", "Latin", "Cyrillic", "CJK", "emoji"

// A small generator with the same sequence everywhere.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint32_t next() {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return static_cast<std::uint32_t>(state_ >> 33);
    }
    int below(int bound) { return static_cast<int>(next() % static_cast<std::uint32_t>(bound)); }
    int between(int low, int high) { return low + below(high - low + 1); }

private:
    std::uint64_t state_;
};

// Fills the whole buffer with text, cutting the last character short when it does not fit: its
// place is taken by spaces.
void writeText(Zel8u* dst, int len, Language language, Random& random);   // UTF-8
void writeText(Zel16u* dst, int len, Language language, Random& random);  // UTF-16

}  // namespace bench
