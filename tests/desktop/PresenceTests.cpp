#include "tests/support/ManualExecutor.h"
#include "ui/desktop/Presence.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

class PresenceTest : public testing::Test {
  protected:
    test::ManualExecutor executor;
    Presence::Shown shown;
    Presence presence{executor, [this] { return shown; }};
    int ends = 0;
    int windows = 0;

    PresenceTest() {
        QObject::connect(&presence, &Presence::ended, [this] { ++ends; });
        QObject::connect(&presence, &Presence::windowWanted, [this] { ++windows; });
    }
};

TEST_F(PresenceTest, EndsOnceNothingIsShownAndNobodyAsks) {
    presence.answer();
    executor.advance(Presence::unusedTime - 1);
    presence.answer();
    executor.advance(Presence::unusedTime - 1);
    EXPECT_EQ(ends, 0);
    for (const auto shows :
         {&Presence::Shown::window, &Presence::Shown::panel, &Presence::Shown::tray}) {
        shown.*shows = true;
        executor.advance(Presence::unusedTime);
        EXPECT_EQ(ends, 0);
        presence.leavePanel();
        executor.advance(Presence::openingTime);
        EXPECT_EQ(ends, 0);
        shown.*shows = false;
        presence.answer();
    }
    presence.leavePanel();
    executor.advance(Presence::openingTime);
    EXPECT_EQ(ends, 1);
}

TEST_F(PresenceTest, ShowsTheWindowWhereTheTrayStaysAway) {
    presence.answer();
    executor.advance(Presence::unusedTime - 1);
    presence.loseTray();
    shown.tray = true;
    executor.advance(Presence::trayPatience);
    EXPECT_EQ(windows, 0);
    shown.tray = false;
    presence.loseTray();
    executor.advance(Presence::trayPatience);
    EXPECT_EQ(windows, 1);
    EXPECT_EQ(ends, 0);
}

} // namespace
} // namespace tovi
