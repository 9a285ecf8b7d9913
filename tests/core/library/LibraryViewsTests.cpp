#include "core/library/Connections.h"
#include "core/library/LibraryOrder.h"
#include "core/library/Projects.h"
#include "core/library/Timeline.h"
#include "tests/support/TemporaryTree.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FileRecord makeFile(const std::string& path, double modified = 0, std::int64_t size = 0) {
    FileRecord file;
    file.path = path;
    file.name = path.substr(path.rfind('/') + 1);
    file.modifiedAt = {modified};
    file.size = size;
    file.rootPath = "/r";
    return file;
}

class LibraryViewsTest : public testing::Test {
  protected:
    void add(FileRecord file, const std::string& content = "") {
        file.content = content;
        store.upsert(file);
    }

    test::TemporaryTree tree;
    IndexStore store{tree.path("index.sqlite")};
};

TEST_F(LibraryViewsTest, OrdersAndSumsUp) {
    std::vector<FileRecord> files{makeFile("/r/Scan 10", 3, 5), makeFile("/r/scan 2", 3, 7),
                                  makeFile("/r/\u00e4pfel", 1, 5), makeFile("/r/b/folder", 9, 99)};
    files[2].kind = FileKind::pdf;
    files[3].kind = FileKind::folder;
    const struct {
        LibraryOrder order;
        std::vector<std::string> names;
    } cases[] = {
        {LibraryOrder::newest, {"folder", "Scan 10", "scan 2", "\u00e4pfel"}},
        {LibraryOrder::oldest, {"\u00e4pfel", "Scan 10", "scan 2", "folder"}},
        {LibraryOrder::name, {"\u00e4pfel", "folder", "scan 2", "Scan 10"}},
        {LibraryOrder::largest, {"folder", "scan 2", "Scan 10", "\u00e4pfel"}},
        {LibraryOrder::smallest, {"Scan 10", "\u00e4pfel", "scan 2", "folder"}},
        {LibraryOrder::kind, {"\u00e4pfel", "folder", "Scan 10", "scan 2"}},
    };
    for (const auto& [order, names] : cases) {
        sortFiles(files, order);
        std::vector<std::string> sorted;
        for (const FileRecord& file : files)
            sorted.push_back(file.name);
        EXPECT_EQ(sorted, names) << static_cast<int>(order);
    }
    const LibrarySummary summary = summarize(files);
    EXPECT_EQ(summary.total, (LibrarySummary::Count{4, 17}));
    EXPECT_EQ(summary.byKind.at(FileKind::other), (LibrarySummary::Count{2, 12}));
    EXPECT_EQ(summary.byKind.at(FileKind::folder), (LibrarySummary::Count{1, 0}));
}

TEST_F(LibraryViewsTest, CutsTheTimelineByTheUsersCalendar) {
    constexpr double sunday = 1'709'424'000; // 2024-03-03 00:00 UTC
    constexpr double day = 86'400;
    add(makeFile("/r/future", sunday + 400 * day, 1));
    add(makeFile("/r/monday", sunday + day, 2));
    add(makeFile("/r/sunday", sunday, 4));
    add(makeFile("/r/saturday", sunday - 1, 8));
    add(makeFile("/r/old", sunday - 40 * day, 16));
    add(makeFile("/r/impossible", 1e17, 32));
    const auto described = [&](const char* locale, CalendarUnit unit, double before,
                               std::size_t limit) {
        std::vector<std::int64_t> bytes;
        const CalendarPeriods calendar({locale, "UTC"});
        for (const auto& period : timeline(store, calendar, unit, Date{before}, limit)) {
            EXPECT_LT(period.start, period.end);
            bytes.push_back(period.summary.total.bytes);
        }
        return bytes;
    };
    const double end = sunday + 500 * day;
    EXPECT_THAT(described("en_US", CalendarUnit::day, 1e18, 9), ElementsAre(1, 2, 4, 8, 16));
    EXPECT_THAT(described("en_US", CalendarUnit::week, end, 9), ElementsAre(1, 6, 8, 16));
    EXPECT_THAT(described("de_DE", CalendarUnit::week, end, 9), ElementsAre(1, 2, 12, 16));
    EXPECT_THAT(described("en_US", CalendarUnit::month, end, 2), ElementsAre(1, 14));
    EXPECT_THAT(described("en_US", CalendarUnit::day, sunday, 9), ElementsAre(8, 16));
}

TEST_F(LibraryViewsTest, NamesEveryTieOfAFile) {
    FileRecord center = makeFile("/r/a/center", 1);
    center.sourceURL = "https://mail.google.com/1";
    add(center, "The inheritance of grandmother");
    FileRecord download = makeFile("/r/b/download", 2);
    download.sourceURL = "https://mail.google.com/2";
    add(download, "GRANDMOTHER wrote of an inheritance");
    add(makeFile("/r/a/neighbour", 3));
    add(makeFile("/r/a/below/not", 3));
    add(makeFile("/r/a0", 3));
    add(makeFile("/r/c/copy", 4));
    add(makeFile("/r/c/other", 5));
    const auto found =
        connections(store, "/r/a/center",
                    {{"Family", {"/r/a/center", "/r/c/copy", "/gone"}}, {"Else", {"/r/c/other"}}},
                    {{"/r/c/copy", "/r/a/center"}});
    ASSERT_TRUE(found);
    std::vector<std::string> paths;
    for (const ConnectedFile& file : *found)
        paths.push_back(file.file.path);
    ASSERT_THAT(paths, ElementsAre("/r/c/copy", "/r/b/download", "/r/a/neighbour"));
    EXPECT_THAT((*found)[0].ties,
                ElementsAre(Tie{TieKind::duplicate, ""}, Tie{TieKind::project, "Family"}));
    EXPECT_THAT((*found)[1].ties, ElementsAre(Tie{TieKind::words, "inheritance, grandmother"},
                                              Tie{TieKind::origin, "Gmail"}));
    EXPECT_THAT((*found)[2].ties, ElementsAre(Tie{TieKind::folder, "/r/a"}));
    EXPECT_FALSE(connections(store, "/gone", {}, {}));
}

TEST_F(LibraryViewsTest, BoundsTheConnectionsAndLeavesOutCommonWords) {
    NamedFiles projects[4];
    for (int n = 0; n < 400; ++n) {
        const std::string path = "/r/many/" + std::to_string(n);
        add(makeFile(path), "everywhere");
        projects[n / 100].paths.push_back(path);
    }
    for (NamedFiles& project : projects)
        project.paths.emplace_back("/r/center");
    add(makeFile("/r/center"), "everywhere");
    EXPECT_THAT(*connections(store, "/r/center", {}, {}), IsEmpty());
    const auto found =
        connections(store, "/r/center", {std::begin(projects), std::end(projects)}, {});
    EXPECT_EQ(found->size(), mostConnections);
}

TEST_F(LibraryViewsTest, SaysWhatOfAProjectIsThere) {
    add(makeFile("/r/1", 1, 10));
    add(makeFile("/r/2", 2, 20));
    const ProjectFiles project = projectFiles(store, {"/r/1", "/gone", "/r/2", "/r/1"});
    ASSERT_EQ(project.files.size(), 2U);
    EXPECT_EQ(project.files[0].path, "/r/2");
    EXPECT_THAT(project.missing, ElementsAre("/gone"));
    EXPECT_EQ(project.summary.total, (LibrarySummary::Count{2, 30}));
}

TEST_F(LibraryViewsTest, FindsTheFilesOfAFolderPastItsSubfolders) {
    for (const char* path : {"/r/a", "/r/b/1", "/r/b/2", "/r/b.txt", "/r/b0", "/r/c", "/r0", "/q"})
        add(makeFile(path));
    std::vector<std::string> names;
    for (const FileRecord& file : store.filesInFolder("/r", 9))
        names.push_back(file.name);
    EXPECT_THAT(names, ElementsAre("a", "b.txt", "b0", "c"));
    EXPECT_EQ(store.filesInFolder("/r", 2).size(), 2U);
    EXPECT_EQ(store.filesInFolder("/", 9).size(), 2U);
    EXPECT_THAT(store.filesInFolder("/r/a", 9), IsEmpty());
}

} // namespace
} // namespace tovi
