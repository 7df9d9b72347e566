#include <gtest/gtest.h>
#include <string.h>

#include "zelchmx.h"

TEST(Version, RecordReadsAsPublished) {
    const ZelLibraryVersion* version = zelchGetLibVersion();
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(version, zelchGetLibVersion());
    EXPECT_EQ(version->major, 6);
    EXPECT_EQ(version->minor, 1);
    EXPECT_EQ(version->buildNumber, 137);
    EXPECT_EQ(version->buildSerial, 778);
    EXPECT_EQ(memcmp(version->cpuCode, "mx\0\0", 4), 0);
    EXPECT_STREQ(version->libraryName, "libzelchmx.so.6.1");
    EXPECT_STREQ(version->versionText, "6.1 build 137.56");
    EXPECT_STREQ(version->buildDate, "Mar 17 2010");
}
