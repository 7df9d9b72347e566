// The search family against the plain definition of each member.
#include <gtest/gtest.h>

#include <string>

#include "zelchmx.h"

namespace {

const Zel8u* bytes(const char* text) {
    return reinterpret_cast<const Zel8u*>(text);
}

TEST(Search, FindGivesTheFirstPositionAndFindRevTheLast) {
    int index = 77;
    EXPECT_EQ(zelsFind_8u(bytes("xxabcabc"), 8, bytes("abc"), 3, &index), 0);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(zelsFindRev_8u(bytes("xxabcabc"), 8, bytes("abc"), 3, &index), 0);
    EXPECT_EQ(index, 5);
}

}  // namespace
