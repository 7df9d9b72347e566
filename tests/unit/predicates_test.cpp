// The class predicates, called as functions for every byte, and the byte sets made of them.
#include "regexp/match/predicates.h"

#include "regexp/program.h"

#include <gtest/gtest.h>

#include <string>

namespace zel {
namespace {

bool isOneOf(int c, const std::string& bytes) {
    return bytes.find(static_cast<char>(c)) != std::string::npos;
}

bool isWord(int c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

bool belongs(int letter, bool dotAll, int c) {
    const std::string spaces = "\t\n\f\r ";
    switch (letter) {
        case 'd':
            return c >= '0' && c <= '9';
        case 'D':
            return !(c >= '0' && c <= '9');
        case 's':
            return isOneOf(c, spaces);
        case 'S':
            return !isOneOf(c, spaces);
        case 'w':
            return isWord(c);
        case 'W':
            return !isWord(c);
        case '.':
            return dotAll || c != '\n';
        default:
            return false;
    }
}

TEST(Predicates, EveryLetterAcceptsItsBytes) {
    for (int letter = 0; letter < 128; ++letter) {
        for (bool dotAll : {false, true}) {
            Predicate* predicate = ownsNodeLetterRangeChange(letter, dotAll);
            const ByteSet& bytes = shorthandBytes(letter, dotAll ? kOptionDotAll : 0u);
            for (int c = 0; c < 256; ++c) {
                EXPECT_EQ(predicate(c) >= 0, belongs(letter, dotAll, c)) << letter << " " << c;
                EXPECT_EQ(bytes.has(static_cast<Zel8u>(c)), belongs(letter, dotAll, c))
                    << letter << " " << c;
            }
        }
    }
}

TEST(Predicates, NegatedFormsAreTheBitwiseNot) {
    for (int c = 0; c < 256; ++c) {
        EXPECT_EQ(ownsIsItDigitNot(c), ~ownsIsItDigit(c));
        EXPECT_EQ(ownsIsItSpaceNot(c), ~ownsIsItSpace(c));
        EXPECT_EQ(ownsIsItWordNot(c), ~ownsIsItWord(c));
        EXPECT_EQ(ownsIsItAnyThing(c), 0);
        EXPECT_EQ(ownsIsItAnyThingNot(c), -1);
    }
}

TEST(Predicates, VerticalTabIsNoSpace) {
    EXPECT_LT(ownsIsItSpace(0x0B), 0);
}

}  // namespace
}  // namespace zel
