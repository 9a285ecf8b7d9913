#include "platform/StandardLocations.h"
#include "tests/app/model/ModelFixture.h"
#include "tests/support/Environment.h"
#include "tests/support/MountNamespace.h"

#include <sys/mount.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class AppModelTest : public ModelFixture {
  protected:
    std::vector<std::string> found(const char* phrase) {
        model->search()->search(QString::fromUtf8(phrase));
        executor.settle();
        return names(model->search()->records());
    }
    std::vector<std::string> issues() const {
        std::vector<std::string> lines;
        for (const QString& line : model->scan()->scanIssues())
            lines.push_back(line.toStdString());
        return lines;
    }
    std::string connectionMessage() const {
        return model->folders()->connectionMessage().toStdString();
    }
    std::string freshnessOf(int root, const char* role = "freshness") const {
        const auto value = model->folders()->rootList()->value(root, QString::fromUtf8(role));
        return value.toString().toStdString();
    }
    bool isAvailable(std::size_t root = 0) const {
        return model->folders()->roots().at(root).available;
    }
};

TEST_F(AppModelTest, ConnectsScansSearchesAndRemembers) {
    tree.write("garden/roses.txt", "Prune the roses in March.");
    tree.write("garden/tools.txt", "A spade and a rake.");
    model = start();
    EXPECT_EQ(status(), "Choose a folder to build your private index");
    EXPECT_EQ(error(), "");

    connectTree();
    EXPECT_EQ(status(), "Connected folders are up to date.");
    EXPECT_THAT(watched, ElementsAre(tree.path()));
    EXPECT_EQ(model->scan()->indexedCount(), 2);
    EXPECT_THAT(names(model->library()->records()), UnorderedElementsAre("roses.txt", "tools.txt"));
    EXPECT_THAT(found("spade"), ElementsAre("tools.txt"));
    EXPECT_FALSE(model->search()->hasMoreSearchResults());
    for (const bool isDescending : {false, true}) {
        model->library()->sortBy(QStringLiteral("name"));
        executor.settle();
        EXPECT_EQ(model->library()->isSortDescending(), isDescending);
        EXPECT_EQ(names(model->library()->records()).front() == "tools.txt", isDescending);
    }

    settings.automaticallyScan = false;
    model = nullptr;
    model = start();
    EXPECT_EQ(status(), "2 files indexed locally");
    EXPECT_EQ(model->folders()->roots().front().path, tree.path());
    EXPECT_THAT(model->library()->records(), SizeIs(2));
    EXPECT_THAT(watched, IsEmpty());
}

TEST_F(AppModelTest, OneProcessWritesAtATime) {
    model = start();
    const auto second = start();
    EXPECT_THAT(second->notices()->errorMessage().toStdString(),
                StartsWith("Could not open the local library: Another Tovi program"));
    second->folders()->grantFolders({QString::fromStdString(tree.path())});
    second->settings()->setThemeChoice(QStringLiteral("midnight"));
    executor.settle();
    EXPECT_FALSE(fs::exists(data.path("preferences.json")));
    model.reset();
    second->prepare();
    executor.settle();
    EXPECT_TRUE(second->isLoaded());
}

TEST_F(AppModelTest, RunsWithoutAnIndexAndRebuildsIt) {
    data.write("index.sqlite", "not a database at all, but long enough to be read as one");
    tree.write("a.txt", "words");
    model = start();
    EXPECT_THAT(error(), StartsWith("Could not open the local library: Index database: "));
    connectTree();
    model->refresh();
    model->resetIndex();
    model->copyIndexedText();
    model->duplicates()->findDuplicates();
    model->search()->search(QStringLiteral("words"));
    executor.settle();
    EXPECT_FALSE(model->scan()->isIndexing());
    model->rebuildIndex();
    executor.settle();
    EXPECT_THAT(found("words"), ElementsAre("a.txt"));
}

TEST_F(AppModelTest, OffersTheHomeFolderOnce) {
    settings.isDataDirectoryGiven = false;
    const test::EnvironmentVariable home("HOME", tree.path());
    model = start();
    ASSERT_THAT(picker.requests, SizeIs(1));
    EXPECT_EQ(picker.requests[0].title, "Connect your personal files");
    EXPECT_EQ(picker.requests[0].directory, tree.path());
    model->folders()->presentFolderPicker();
    EXPECT_THAT(picker.requests, SizeIs(1)) << "one picker at a time";
    picker.pending(std::nullopt);
    model->folders()->presentFolderPicker();
    EXPECT_EQ(picker.requests[1].title, "Choose a folder for Tovi");
    picker.pending(tree.path());
    executor.settle();
    EXPECT_THAT(model->folders()->roots(), SizeIs(1));
    model = nullptr;
    model = start();
    EXPECT_THAT(picker.requests, SizeIs(2));
}

TEST_F(AppModelTest, RefusesFoldersThatAreIncludedOrCannotBeConnected) {
    tree.makeDirectory("garden/beds");
    tree.makeDirectory(".hidden");
    tree.link("link", "garden");
    model = start();
    for (const auto& [folder, message] : std::vector<std::pair<std::string, std::string>>{
             {"garden", ""},
             {"garden", "garden is already included in garden"},
             {"garden/beds", "beds is already included in garden"},
             {"missing", "No such file or directory"},
             {"link", "Is a symbolic link"},
             {".hidden", "System, hidden, and cache folders cannot be indexed"}}) {
        model->folders()->grantFolders({at(folder)});
        executor.settle();
        EXPECT_THAT(connectionMessage(), HasSubstr(message));
        EXPECT_THAT(model->folders()->roots(), SizeIs(1)) << folder;
    }
    connectTree();
    EXPECT_THAT(model->folders()->roots(), SizeIs(2)) << "a parent is a root beside its child";
}

TEST_F(AppModelTest, KeepsTheRowsOfAFolderThatIsNotTheOneConnected) {
    tree.write("disk/a.txt", "words");
    model = start();
    model->folders()->grantFolders({at("disk")});
    executor.settle();
    fs::create_directory(data.path("elsewhere"));
    const std::string unavailable =
        "Unavailable folder: " + tree.path("disk") + ". Previous index retained.";
    fs::rename(tree.path("disk"), tree.path(".away"));
    for (const bool isReplaced : {false, true}) {
        if (isReplaced) tree.makeDirectory("disk");
        model->scan()->rescan();
        executor.settle();
        EXPECT_EQ(status(), unavailable);
        EXPECT_THAT(issues(), ElementsAre(unavailable));
        EXPECT_FALSE(isAvailable());
        EXPECT_THAT(found("words"), ElementsAre("a.txt"));
        EXPECT_THAT(watched, IsEmpty());
    }
    fs::remove(tree.path("disk"));
    fs::rename(tree.path(".away"), tree.path("disk"));
    executor.advance(30);
    EXPECT_TRUE(isAvailable()) << "it is found without being asked for";
    EXPECT_THAT(watched, ElementsAre(tree.path("disk")));
    EXPECT_THAT(issues(), IsEmpty());
}

TEST_F(AppModelTest, KeepsTheRowsOfADiskThatIsUnmounted) {
    const test::MountNamespace mounts;
    if (!mounts.isAvailable()) GTEST_SKIP() << "no mounts here";
    for (const std::string disk : {"idle", "scanned"}) {
        tree.makeDirectory(disk);
        mounts.mountMemory(tree.path(disk));
        tree.write(disk + "/deep/a.txt", "words of " + disk);
    }
    model = start();
    model->folders()->grantFolders({at("idle"), at("scanned")});
    executor.settle();
    EXPECT_EQ(::umount2(tree.path("idle").c_str(), 0), 0) << "the disk is kept busy";
    tree.write("scanned/b.txt");
    afterReading = [&] { ::umount2(tree.path("scanned").c_str(), MNT_DETACH); };
    model->scan()->rescan();
    executor.settle();
    EXPECT_FALSE(isAvailable(0));
    EXPECT_THAT(issues(), SizeIs(2)) << "the scan met the end of its folder";
    model->scan()->rescan();
    executor.settle();
    EXPECT_FALSE(isAvailable(1));
    EXPECT_THAT(found("words of"), UnorderedElementsAre("a.txt", "a.txt"));
}

TEST_F(AppModelTest, SaysHowSoonChangesAreNoticed) {
    using State = platform::FolderFreshness::State;
    const std::string disk = tree.makeDirectory("disk");
    const std::string home = tree.makeDirectory("home");
    model = start();
    const auto notice = [&] { return model->folders()->freshnessNotice().toStdString(); };
    model->folders()->grantFolders({at("disk"), at("home")});
    executor.settle();
    EXPECT_EQ(freshnessOf(0), "stale");
    EXPECT_EQ(notice(), "") << "it is only about to be watched";

    const Date since = executor.now() - 100;
    freshness({{disk, State::live, since, ""}, {home, State::periodic, since, "Too many."}});
    EXPECT_EQ(freshnessOf(0), "live");
    EXPECT_EQ(freshnessOf(1), "periodic");
    EXPECT_EQ(freshnessOf(1, "freshnessReason"), "Too many.");
    EXPECT_EQ(notice(), "Changes in home are not noticed at once. Too many.");

    fs::rename(disk, tree.path(".away"));
    tree.makeDirectory("disk"); // is watched as before, but it is another folder
    model->scan()->rescan();
    executor.settle();
    freshness({{disk, State::live, since, ""}, {home, State::periodic, since, "Too many."}});
    EXPECT_EQ(freshnessOf(0), "stale");
    EXPECT_EQ(freshnessOf(0, "freshnessReason"), "The folder is not there or cannot be read.");
    EXPECT_EQ(notice(), "Changes in 2 folders are not noticed at once.");
}

TEST_F(AppModelTest, FollowsAFolderThatWasRenamed) {
    tree.write("old/a.txt", "words");
    model = start();
    model->folders()->grantFolders({at("old")});
    model->spaces()->createSpace(QStringLiteral("Mine"), {at("old/a.txt")});
    executor.settle();
    model.reset();
    fs::rename(tree.path("old"), tree.path("new"));
    settings.automaticallyScan = false;
    model = start();
    EXPECT_EQ(model->folders()->roots().front().path, tree.path("new"));
    EXPECT_THAT(preferences(), HasSubstr(tree.path("new")));
    EXPECT_THAT(model->spaces()->spaces().front().paths, ElementsAre(tree.path("new/a.txt")));
    EXPECT_THAT(found("words"), ElementsAre("a.txt"));
    EXPECT_EQ(model->search()->records().front().path, tree.path("new/a.txt"));
}

TEST_F(AppModelTest, PausesInTheMiddleAndKeepsWhatIsIndexed) {
    for (int n = 0; n < 20; ++n)
        tree.write(std::to_string(n) + ".txt", "words");
    model = start();
    int files = 0;
    afterReading = [&] {
        if (++files == 5) model->scan()->pauseIndexing();
    };
    connectTree();
    EXPECT_EQ(status(), "Indexing paused · existing results remain searchable");
    EXPECT_FALSE(model->scan()->isIndexing());
    EXPECT_EQ(found("words").size(), static_cast<std::size_t>(files));
    EXPECT_LT(files, 20);
    filesChange();
    model->scan()->rescan();
    executor.advance(60);
    EXPECT_FALSE(model->scan()->isIndexing());
    model->scan()->pauseIndexing();
    executor.settle();
    EXPECT_THAT(found("words"), SizeIs(20));
    EXPECT_EQ(status(), "Connected folders are up to date.");
}

TEST_F(AppModelTest, PublishesProgressInMeasure) {
    for (int n = 0; n < 12; ++n)
        tree.write(std::to_string(n) + ".txt", "words");
    model = start();
    int published = 0;
    int reloads = 0;
    QObject::connect(model->scan(), &ScanModel::indexedCountChanged, [&] { ++published; });
    QObject::connect(model->scan(), &ScanModel::libraryFilled, [&] { ++reloads; });
    afterReading = [&] {
        executor.deliver();
        executor.pass(0.3);
    };
    connectTree();
    // Twelve files in 3.6 seconds: a step every other file, the last one, and one reload.
    EXPECT_GE(published, 5);
    EXPECT_LE(published, 8);
    EXPECT_EQ(reloads, 1);
    EXPECT_EQ(model->scan()->indexedCount(), 12);
}

TEST_F(AppModelTest, ScansByItselfNoMoreThanOnceAnInterval) {
    model = start();
    connectTree();
    int scans = 0;
    QObject::connect(model->scan(), &ScanModel::scanEnded, [&] { ++scans; });
    for (int second = 0; second < 60; ++second) {
        filesChange();
        executor.advance(1);
    }
    EXPECT_EQ(scans, 4); // 15 seconds apart
    executor.advance(60);
    EXPECT_EQ(scans, 4) << "none without a change";
}

TEST_F(AppModelTest, ReadsCodeAgainWhenItsTextIsWanted) {
    tree.write("main.py", "# watering schedule");
    model = start();
    connectTree();
    EXPECT_THAT(found("watering"), IsEmpty());
    model->settings()->setDeveloperMode(true);
    executor.settle();
    EXPECT_THAT(found("watering"), ElementsAre("main.py"));
    model->settings()->setExclusions(QStringLiteral("*.py\n"));
    executor.settle();
    EXPECT_THAT(found("watering"), IsEmpty());
}

TEST_F(AppModelTest, RemovesAFolderOnceWhateverRuns) {
    tree.write("inner/a.txt", "words");
    tree.write("b.txt", "words");
    model = start();
    model->folders()->grantFolders({at("inner")});
    executor.settle();
    bool isDone = false;
    afterReading = [&] {
        if (std::exchange(isDone, true)) return;
        model->removeRoot(at("inner"));
        model->removeRoot(at("inner"));
        model->search()->search(QStringLiteral("words"));
        EXPECT_EQ(status(), "Removing folder access and cached content…");
    };
    std::string removed;
    QObject::connect(model->notices(), &Notices::statusMessageChanged, [&] {
        if (status().starts_with("Folder access removed")) removed = status();
    });
    connectTree();
    EXPECT_THAT(removed, testing::MatchesRegex("Folder access removed · [0-9]+ files remain "
                                               "indexed"));
    EXPECT_THAT(model->folders()->roots(), SizeIs(1));
    EXPECT_THAT(names(model->search()->records()), UnorderedElementsAre("a.txt", "b.txt"))
        << "the folder above takes the file over, and the search was not lost";
    model->removeRoot(QString::fromStdString(tree.path()));
    executor.settle();
    EXPECT_EQ(status(), "Folder access removed · 0 files remain indexed");
    EXPECT_THAT(model->library()->records(), IsEmpty());
}

TEST_F(AppModelTest, ClearsTheIndexAndWaitsToBeResumed) {
    tree.write("a.txt", "words");
    model = start();
    connectTree();
    found("words");
    model->selection()->setSelectedIDs({at("a.txt")});
    model->resetIndex();
    executor.settle();
    EXPECT_EQ(status(), "Index cleared · resume to rebuild");
    EXPECT_THAT(model->library()->records(), IsEmpty());
    EXPECT_THAT(model->search()->records(), IsEmpty());
    EXPECT_THAT(model->selection()->selectedIDs(), IsEmpty());
    EXPECT_TRUE(model->scan()->isPaused());
    model->scan()->pauseIndexing();
    executor.settle();
    EXPECT_THAT(found("words"), SizeIs(1));
}

TEST_F(AppModelTest, DefersScansAndSearchesDuringMaintenance) {
    tree.write("a.txt", "words");
    model = start();
    connectTree();
    int scans = 0;
    QObject::connect(model->scan(), &ScanModel::scanEnded, [&] { ++scans; });
    ASSERT_TRUE(model->beginCleanupMaintenance());
    EXPECT_FALSE(model->beginCleanupMaintenance());
    EXPECT_EQ(error(), "Another file operation is still finishing. Try cleanup again in a moment.");
    model->scan()->rescan();
    model->scan()->rescan();
    EXPECT_THAT(found("words"), IsEmpty());
    model->folders()->presentFolderPicker();
    EXPECT_THAT(picker.requests, IsEmpty());
    EXPECT_EQ(scans, 0);
    model->finishCleanupMaintenance(true);
    executor.settle();
    EXPECT_EQ(scans, 1);
    EXPECT_THAT(names(model->search()->records()), ElementsAre("a.txt"));
}

TEST_F(AppModelTest, DropsTheResultsOfASearchThatWasReplaced) {
    for (int n = 0; n < 1001; ++n)
        tree.write(std::to_string(n) + ".txt", n == 7 ? "seven words" : "words");
    model = start();
    connectTree();
    model->search()->search(QStringLiteral("words"));
    model->search()->search(QStringLiteral("seven"));
    executor.work(1);
    executor.settle();
    EXPECT_THAT(names(model->search()->records()), ElementsAre("7.txt"));
    EXPECT_EQ(model->search()->activeSearchText().toStdString(), "seven");

    found("words");
    EXPECT_THAT(model->search()->records(), SizeIs(1000));
    EXPECT_TRUE(model->search()->hasMoreSearchResults());
    model->search()->loadMoreSearchResults();
    model->search()->loadMoreSearchResults();
    EXPECT_TRUE(model->search()->isLoadingMoreSearchResults());
    executor.settle();
    EXPECT_THAT(model->search()->records(), SizeIs(1001));
    EXPECT_FALSE(model->search()->hasMoreSearchResults());
    std::vector<FileRecord> quick;
    model->search()->quickSearch(QStringLiteral("words"), 15,
                                 [&](const auto& outcome) { quick = *outcome.value; });
    executor.settle();
    EXPECT_THAT(quick, SizeIs(15));
}

TEST_F(AppModelTest, ShowsWhatAnotherProcessWrote) {
    model = start();
    executor.advance(3);
    FileRecord record;
    record.path = "/elsewhere/note.txt";
    record.name = "note.txt";
    IndexStore(data.path("index.sqlite")).upsert(record);
    executor.advance(3);
    EXPECT_THAT(names(model->library()->records()), ElementsAre("note.txt"));
}

} // namespace
} // namespace tovi
