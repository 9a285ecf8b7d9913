#include "platform/FolderEvents.h"
#include "tests/support/FakeFolderEvents.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/TemporaryTree.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

namespace tovi {
namespace {

using platform::FolderEvent;
using platform::FolderEvents;
using State = platform::FolderFreshness::State;
using Kind = FolderEvent::Kind;
using Paths = std::set<std::string>;

namespace fs = std::filesystem;

constexpr FolderEvents::Duration patience{20}; // for what must come

enum class Service { fake, inotify, fanotify };

class FolderEventsTest : public testing::TestWithParam<Service> {
  protected:
    std::unique_ptr<FolderEvents> make(std::optional<std::size_t> maximumWatches = {},
                                       FolderEvents::Duration period = patience) {
        if (GetParam() == Service::fake) {
            auto made = std::make_unique<test::FakeFolderEvents>();
            fake = made.get();
            return made;
        }
        return platform::watchFoldersOfTheSystem(
            {[](const std::string& path) { return path.ends_with("/excluded"); },
             GetParam() == Service::fanotify, maximumWatches, period});
    }
    void watch(const std::vector<std::string>& roots) { events->watch(roots, {}); }

    void write(const std::string& relative) {
        tree.write(relative);
        if (fake) fake->happen(Kind::changed, tree.path(relative));
    }
    void removeRoot(const std::string& relative) {
        fs::remove_all(tree.path(relative));
        if (fake) fake->vanish(tree.path(relative));
    }

    /// The paths below the tree of the events up to the first of this kind and place.
    Paths heardUntil(Kind kind, const std::string& relative) {
        Paths heard;
        const auto end = std::chrono::steady_clock::now() + patience;
        while (std::chrono::steady_clock::now() < end) {
            bool isThere = false;
            for (const FolderEvent& event : events->wait(patience, {})) {
                heard.insert(fs::relative(event.path, tree.path()).string());
                isThere = isThere || event == FolderEvent{kind, tree.path(relative)};
            }
            if (isThere) return heard;
        }
        ADD_FAILURE() << "no event for " << relative;
        return heard;
    }
    void expectHeard(const std::string& relative) {
        write(relative);
        heardUntil(Kind::changed, relative);
    }

    test::TemporaryTree tree;
    test::FakeFolderEvents* fake = nullptr;
    std::unique_ptr<FolderEvents> events = make();
};

class SystemFolderEventsTest : public FolderEventsTest {};

TEST_P(FolderEventsTest, TellsOfWatchedFoldersOnlyAndWhichOfThemAreGone) {
    for (const char* folder : {"one/below", "two", "three"})
        tree.makeDirectory(folder);
    watch({tree.path("two"), tree.path("one")});
    expectHeard("one/below/first");
    expectHeard("two/second");

    watch({tree.path("one"), tree.path("three")});
    write("two/unheard");
    write("three/third");
    write("one/last");
    const Paths heard = heardUntil(Kind::changed, "one/last");
    EXPECT_TRUE(heard.contains("three/third"));
    EXPECT_FALSE(heard.contains("two/unheard"));

    removeRoot("three");
    heardUntil(Kind::rootChanged, "three");
    const auto freshness = events->freshness();
    ASSERT_EQ(freshness.size(), 2U);
    EXPECT_EQ(freshness[0].root, tree.path("one"));
    EXPECT_EQ(freshness[0].state, State::live);
    EXPECT_EQ(freshness[1].state, State::stale);
    EXPECT_FALSE(freshness[1].reason.empty());

    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(events->watch({tree.path()}, stop.get_token()), Cancelled);
    events->interrupt();
    EXPECT_NO_THROW(events->wait(patience, {}));
}

TEST_P(SystemFolderEventsTest, FollowsFoldersThatComeGoAndAreRenamed) {
    tree.makeDirectory("root/old/deep");
    tree.makeDirectory("outside");
    tree.makeDirectory("root/excluded");
    watch({tree.path("root")});

    const std::string odd = "root/new\nline \xff/" + std::string(255, 'n');
    tree.makeDirectory(odd);
    heardUntil(Kind::changed, "root/new\nline \xff");
    expectHeard(odd + "/file");

    fs::rename(tree.path("root/old"), tree.path("root/renamed"));
    heardUntil(Kind::changed, "root/renamed");
    expectHeard("root/renamed/deep/file");

    fs::rename(tree.path("root/renamed"), tree.path("outside/moved"));
    heardUntil(Kind::changed, "root/renamed");
    write("outside/moved/deep/unheard");
    write("root/excluded/unheard");
    tree.makeDirectory("root/excluded/below");
    write("root/last");
    EXPECT_THAT(heardUntil(Kind::changed, "root/last"), testing::ElementsAre("root/last"));
}

TEST_P(SystemFolderEventsTest, FindsARootAgainThatWasAway) {
    tree.makeDirectory("above/root/folder");
    events = make({}, FolderEvents::Duration(0));
    watch({tree.path("above/root")});
    fs::rename(tree.path("above"), tree.path("elsewhere"));
    heardUntil(Kind::rootChanged, "above/root");
    EXPECT_EQ(events->freshness().at(0).state, State::stale);
    fs::rename(tree.path("elsewhere"), tree.path("above"));
    heardUntil(Kind::rootChanged, "above/root");
    EXPECT_EQ(events->freshness().at(0).state, State::live);
    expectHeard("above/root/folder/file");
}

TEST_P(SystemFolderEventsTest, AsksForTimedScansPastItsBudget) {
    for (int n = 0; n < 150; ++n)
        tree.makeDirectory("root/" + std::to_string(n));
    tree.makeDirectory("small");
    events = make(100, FolderEvents::Duration(0));
    watch({tree.path("small"), tree.path("root")});
    EXPECT_EQ(events->freshness().at(0).state, State::live);
    EXPECT_EQ(events->freshness().at(1).state,
              GetParam() == Service::inotify ? State::periodic : State::live)
        << "with both services there is room for 200";
    watch({tree.path("small")});
    for (int n = 150; n < 400; ++n)
        tree.makeDirectory("root/" + std::to_string(n));
    watch({tree.path("root"), tree.path("small")});
    EXPECT_EQ(events->freshness().at(0).state, State::periodic);
    EXPECT_THAT(events->freshness().at(0).reason, testing::HasSubstr("100"));
    heardUntil(Kind::lost, "root");
    expectHeard("root/directly");
}

/// The user's limits of the system, for this process from now on; false where none may be set.
bool setLimit(const char* name, int number) {
    std::ofstream file(std::string("/proc/sys/user/") + name);
    return static_cast<bool>(file << number << std::flush);
}

TEST_P(SystemFolderEventsTest, NamesTheLimitThatWasMet) {
    for (int n = 0; n < 100; ++n)
        tree.makeDirectory("root/" + std::to_string(n));
    const auto reason = [&] {
        if (::unshare(CLONE_NEWUSER) != 0 || !setLimit("max_inotify_watches", 50) ||
            !setLimit("max_fanotify_marks", 50)) {
            ::_exit(0); // not to be had here
        }
        events = make(1000);
        watch({tree.path("root")});
        const auto fresh = events->freshness().at(0);
        std::fputs(fresh.reason.c_str(), stderr);
        ::_exit(fresh.state == State::periodic ? 1 : 2);
    };
    EXPECT_EXIT(
        reason(), [](int status) { return WEXITSTATUS(status) < 2; },
        "^$|user.max_inotify_watches is 50");
}

TEST_P(SystemFolderEventsTest, AsksForAScanAfterAnOverflowAndGoesOn) {
    tree.makeDirectory("root");
    events = make({}, FolderEvents::Duration(0));
    watch({tree.path("root")});
    for (int n = 0; n < 20'000; ++n) // the queue holds 16,384
        fs::remove(tree.write("root/" + std::to_string(n)));
    tree.makeDirectory("root/unnoticed");
    heardUntil(Kind::lost, "root");
    EXPECT_EQ(events->freshness().at(0).state, State::live);
    expectHeard("root/unnoticed/file");
}

TEST_P(SystemFolderEventsTest, HearsOfMounts) {
    tree.makeDirectory("root/disk");
    const test::MountNamespace mounts;
    if (!mounts.isAvailable()) GTEST_SKIP() << "no mounts here";
    events = make();
    watch({tree.path("root")});
    mounts.mountMemory(tree.path("root/disk"));
    heardUntil(Kind::mountsChanged, "root");
    expectHeard("root/disk/file");
}

std::string nameOf(const testing::TestParamInfo<Service>& service) {
    return std::array{"fake", "inotify", "fanotify"}.at(static_cast<std::size_t>(service.param));
}
INSTANTIATE_TEST_SUITE_P(All, FolderEventsTest,
                         testing::Values(Service::fake, Service::inotify, Service::fanotify),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(All, SystemFolderEventsTest,
                         testing::Values(Service::inotify, Service::fanotify), nameOf);

} // namespace
} // namespace tovi
