#include "base/Date.h"

#include <limits>

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(Date, WritesIso8601) {
    EXPECT_EQ(iso8601({0}), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(iso8601({1'709'251'199.9996}), "2024-03-01T00:00:00.000Z");
    EXPECT_EQ(iso8601({-0.25}), "1969-12-31T23:59:59.750Z");
    EXPECT_EQ(iso8601({1e300}), "9999-12-31T23:59:59.000Z");
    EXPECT_EQ(iso8601({std::numeric_limits<double>::quiet_NaN()}), "1970-01-01T00:00:00.000Z");
}

TEST(Date, KeepsTheReferenceForm) {
    EXPECT_EQ(Date::fromReferenceSeconds(0).seconds, 978'307'200);
    EXPECT_EQ(Date{978'307'201.5}.referenceSeconds(), 1.5);
}

TEST(Date, TellsFileDatesApartByAMicrosecond) {
    EXPECT_TRUE(isSameFileDate({1'700'000'000.0}, {1'700'000'000.0000005}));
    EXPECT_FALSE(isSameFileDate({1'700'000'000.0}, {1'700'000'000.000002}));
    EXPECT_FALSE(isSameFileDate({std::numeric_limits<double>::quiet_NaN()}, {0}));
}

} // namespace
} // namespace tovi
