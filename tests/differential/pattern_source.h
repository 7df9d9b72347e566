// Generated patterns over the whole language, together with texts that are likely to match them.
#pragma once

#include <string>
#include <vector>

#include "random.h"

namespace differential {

class PatternSource {
public:
    explicit PatternSource(Random& random);

    /// A pattern; most are valid, some were damaged afterwards, a few are noise.
    std::string pattern();
    /// Option letters.
    std::string options();
    /// A subject for the last pattern.
    std::string subject();
    /// A replacement template.
    std::string replacement();

private:
    struct Part {
        std::string text;    // of the pattern
        std::string sample;  // a text that it may match
    };

    Part alternation(int depth);
    Part sequence(int depth);
    Part term(int depth);
    Part atom(int depth);
    Part literals();
    Part group(int depth);
    Part lookAround(int depth);
    Part conditional(int depth);
    Part bracketClass();
    Part classMember();
    Part property();
    Part escape();
    Part unwritten();
    std::string quantifier(int& repeats);
    std::string character();
    std::string noise(int maxCharacters);
    std::string inlineFlags();
    void damage(std::string& text, const char* alphabet, int alphabetSize);

    Random& random_;
    std::vector<std::string> alphabet_;
    std::string sample_;
    int captures_ = 0;
};

}  // namespace differential
