#include "app/background/ThreadExecutor.h"
#include "app/monitor/FolderMonitor.h"
#include "tests/support/Environment.h"
#include "tests/support/FakeFolderEvents.h"
#include "tests/support/TemporaryTree.h"

#include <QTest>
#include <filesystem>

#include <gtest/gtest.h>

namespace tovi {
namespace {

using Kind = platform::FolderEvent::Kind;
using State = platform::FolderFreshness::State;

class FolderListenerTest : public testing::Test {
  protected:
    FolderListenerTest() {
        events.pass = [this](auto longest) { now += longest ? longest->count() : 1000; };
        listener.start({"/root"}, {});
    }
    /// Goes on until nothing is left to do; the time of the last call, if there was one.
    std::optional<double> settle() {
        last.reset();
        for (const double begin = now; now < begin + 1000;)
            listener.step({});
        return last;
    }

    double now = 0;
    int calls = 0;
    std::optional<double> last;
    std::vector<platform::FolderFreshness> freshness;
    test::FakeFolderEvents events;
    FolderListener listener{events,
                            {.uptime = [this] { return now; }},
                            {[this] {
                                 ++calls;
                                 last = now;
                             },
                             [this](const auto& roots) { freshness = roots; }}};
};

TEST_F(FolderListenerTest, CallsOnceTwoSecondsAfterABurst) {
    for (int n = 0; n < 5; ++n) {
        events.happen(Kind::changed, "/root/file");
        listener.step({});
        now += 0.1;
    }
    EXPECT_DOUBLE_EQ(settle().value_or(0), 2.0);
    EXPECT_EQ(calls, 1);
}

TEST_F(FolderListenerTest, ChangesWithoutAPauseAreStillTold) {
    for (; now < 60; now += 0.05) {
        events.happen(Kind::changed, "/root/growing");
        listener.step({});
    }
    EXPECT_GE(calls, 20);
    EXPECT_LE(calls, 60);
}

TEST_F(FolderListenerTest, AsksThePolicyAndForgetsWithTheFolders) {
    const struct {
        Kind kind;
        const char* path;
        bool isTold;
    } cases[] = {{Kind::changed, "/root/.hidden/file", false},
                 {Kind::changed, "/root/node_modules/file", false},
                 {Kind::changed, "/root/.gitignore", true},
                 {Kind::lost, "/root/.hidden", true},
                 {Kind::rootChanged, "/root", true},
                 {Kind::mountsChanged, "/root", true}};
    for (const auto& each : cases) {
        events.happen(each.kind, each.path);
        events.happen(Kind::changed, "/root/.other");
        listener.step({});
        EXPECT_EQ(settle().has_value(), each.isTold) << each.path;
    }
    events.happen(Kind::changed, "/root/file");
    listener.step({});
    listener.start({"/other"}, {});
    EXPECT_FALSE(settle());
    EXPECT_EQ(freshness.at(0).root, "/other");
    events.vanish("/other");
    EXPECT_TRUE(settle());
    EXPECT_EQ(freshness.at(0).state, State::stale);
}

TEST(FolderMonitor, LeavesOutTheProgramsOwnFolderTheTrashAndWhatIsNeverEntered) {
    test::TemporaryTree tree;
    const test::EnvironmentVariable home("XDG_DATA_HOME", tree.path("share"));
    for (const char* folder : {"bin", "share"})
        tree.makeDirectory(folder);
    std::filesystem::create_directory_symlink("../bin", tree.path("share/Trash"));
    const auto isUnwatched = unwatchedFolders(tree.path("share/own"));
    for (const char* path : {"share/own", "bin", "share/.git", "node_modules"})
        EXPECT_TRUE(isUnwatched(tree.path(path))) << path;
    for (const char* path : {"share", "own", "share/own2"})
        EXPECT_FALSE(isUnwatched(tree.path(path))) << path;
}

TEST(FolderMonitor, TellsTheMainThreadOfTheFoldersThatItWatchesNow) {
    test::TemporaryTree tree;
    tree.makeDirectory("one");
    tree.makeDirectory("two");
    ThreadExecutor executor;
    int calls = 0;
    std::vector<platform::FolderFreshness> freshness;
    auto monitor = std::make_unique<FolderMonitor>(
        executor,
        platform::watchFoldersOfTheSystem(
            {.isExcluded = [](auto) { return false; }, .maximumWatches = {}}),
        FolderListener::Handlers{[&] {
                                     EXPECT_TRUE(QThread::currentThread() == qApp->thread());
                                     ++calls;
                                 },
                                 [&](const auto& roots) { freshness = roots; }},
        FolderListener::Timing{.latency = 0, .debounce = 0, .uptime = {}});
    const auto isWatched = [&](const std::string& root) {
        return freshness.size() == 1 && freshness[0].root == root &&
               freshness[0].state == State::live;
    };
    for (const char* root : {"one", "two"}) {
        monitor->start({tree.path(root)});
        ASSERT_TRUE(QTest::qWaitFor([&] { return isWatched(tree.path(root)); }, 20'000));
        const int before = calls;
        tree.write(std::string(root) + "/file");
        EXPECT_TRUE(QTest::qWaitFor([&] { return calls > before; }, 20'000));
    }
    monitor->stop();
    ASSERT_TRUE(QTest::qWaitFor([&] { return freshness.empty(); }, 20'000));
    const int before = calls;
    monitor->start({tree.path("two")});
    tree.write("two/last");
    monitor.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, before) << "told after its end";
}

} // namespace
} // namespace tovi
