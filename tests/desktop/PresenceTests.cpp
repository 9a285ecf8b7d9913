#include "tests/support/ManualExecutor.h"
#include "ui/desktop/Presence.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(Presence, LeavesNothingRunningThatNobodyCanReach) {
    test::ManualExecutor executor;
    Presence::Shown shown;
    Presence presence(executor, [&] { return shown; });
    int ends = 0;
    int windows = 0;
    QObject::connect(&presence, &Presence::ended, [&] { ++ends; });
    QObject::connect(&presence, &Presence::windowWanted, [&] { ++windows; });

    for (const auto part :
         {&Presence::Shown::window, &Presence::Shown::panel, &Presence::Shown::tray}) {
        presence.answer();
        executor.advance(Presence::unusedTime - 1);
        presence.answer(); // and begins to wait anew
        executor.advance(Presence::unusedTime - 1);
        shown.*part = true;
        presence.leavePanel();
        executor.advance(Presence::unusedTime);
        shown.*part = false;
    }
    presence.answer();
    presence.loseTray();
    executor.advance(Presence::unusedTime);
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(windows, 1);
    presence.leavePanel();
    executor.advance(Presence::openingTime);
    EXPECT_EQ(ends, 1);
}

} // namespace
} // namespace tovi
