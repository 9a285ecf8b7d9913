#include "core/search/UserCalendar.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

using test::EnvironmentVariable;

std::string localeWith(const char* all, const char* time, const char* language) {
    const EnvironmentVariable first("LC_ALL", all);
    const EnvironmentVariable second("LC_TIME", time);
    const EnvironmentVariable third("LANG", language);
    return UserCalendar::current().locale;
}

TEST(UserCalendar, FollowsTheLocaleOfTheEnvironment) {
    EXPECT_EQ(localeWith("de_DE.UTF-8", "fr_FR", "it_IT"), "de_DE");
    EXPECT_EQ(localeWith("", "fr_FR.utf8", "it_IT"), "fr_FR");
    EXPECT_EQ(localeWith("", "", "pt_BR"), "pt_BR");
    EXPECT_EQ(localeWith("", "C.UTF-8", "pt_BR"), "en_US_POSIX");
    EXPECT_EQ(localeWith("POSIX", "fr_FR", "pt_BR"), "en_US_POSIX");
    EXPECT_EQ(localeWith("", "", ""), "en_US_POSIX");
    EXPECT_EQ(localeWith("_US", "de_DE", "de_DE"), "en_US_POSIX");
}

std::string zoneWith(const char* zone) {
    const EnvironmentVariable variable("TZ", zone);
    return UserCalendar::current().timeZone;
}

TEST(UserCalendar, FollowsTheTimeZoneOfTheEnvironment) {
    EXPECT_EQ(zoneWith("Europe/Berlin"), "Europe/Berlin");
    EXPECT_EQ(zoneWith(":America/New_York"), "America/New_York");
    EXPECT_EQ(zoneWith("/usr/share/zoneinfo/posix/Africa/Cairo"), "Africa/Cairo");
    EXPECT_EQ(zoneWith(""), "UTC");
    EXPECT_FALSE(zoneWith("No/Such_Zone").empty());
}

} // namespace
} // namespace tovi
