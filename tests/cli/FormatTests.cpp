#include "cli/Format.h"

#include <gtest/gtest.h>

namespace tovi::cli {
namespace {

TEST(Format, WritesCountsAndSizes) {
    EXPECT_EQ(formatCount(0), "0");
    EXPECT_EQ(formatCount(999), "999");
    EXPECT_EQ(formatCount(1'000), "1,000");
    EXPECT_EQ(formatCount(1'234'567), "1,234,567");
    EXPECT_EQ(formatCount(1, "file"), "1 file");
    EXPECT_EQ(formatCount(0, "file"), "0 files");
    EXPECT_EQ(formatSize(999), "999 B");
    EXPECT_EQ(formatSize(1'500), "1.5 KB");
    EXPECT_EQ(formatSize(999'960), "1.0 MB");
    EXPECT_EQ(formatSize(9'223'372'036'854'775'807), "9.2 EB");
}

} // namespace
} // namespace tovi::cli
