#include "base/Cancelled.h"
#include "core/indexing/FileIndexer.h"
#include "core/records/IntelligenceError.h"
#include "tests/support/Environment.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>
#include <set>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tovi {
namespace {

using test::TemporaryTree;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Knows the placeholders it was told of.
struct FakeAvailability final : platform::Availability {
    std::set<std::string> placeholders;

    bool isAvailableLocally(const std::string& path,
                            const platform::ExtendedAttributes&) const override {
        return !placeholders.contains(path);
    }
};

/// Reads PDFs and pictures as a test wants; calls come from the reading threads one at a time.
struct FakeReader final : PdfReader, PictureTextReader {
    std::function<PdfText(const FileDescriptor&, const ReadOptions&, const std::stop_token&)> pdf =
        [](const auto&...) { return PdfText{.pageCount = 1, .pagesRead = 1, .text = "page"}; };
    std::string pictureText;

    PdfText readPdf(const FileDescriptor& file, int, std::size_t, const ReadOptions& options,
                    const std::stop_token& stop) override {
        return pdf(file, options, stop);
    }
    std::string readPictureText(const FileDescriptor&, int, std::size_t, const ReadOptions&,
                                const std::stop_token&) override {
        return pictureText;
    }
};

class FileIndexerTest : public testing::Test {
  protected:
    ScanReport scan(const std::string& folder = {}) {
        const ContentExtractor extractor(reader, reader);
        const FileIndexer indexer(
            availability, extractor,
            {.downloadsDirectory = std::nullopt, .readers = 2, .clock = [this] { return now; }});
        return indexer.scan(folder.empty() ? root : folder, store, exclusions, includeCode,
                            progress, stop.get_token());
    }

    std::string messageOfScan(const std::string& folder) {
        try {
            scan(folder);
        } catch (const IntelligenceError& error) {
            return error.what();
        }
        return "no error";
    }

    std::vector<std::string> indexed() {
        std::vector<std::string> names;
        for (const auto& record : store.scanRecords(root)) {
            names.push_back(record.path.substr(root.size() + 1));
        }
        return names;
    }

    std::string statusOf(const std::string& relative) {
        const auto record = store.record(tree.path(relative));
        return record ? record->contentStatus : "not indexed";
    }

    TemporaryTree tree;
    TemporaryTree data;
    std::string root = tree.path();
    IndexStore store{data.path("index.sqlite")};
    FakeAvailability availability;
    FakeReader reader;
    std::vector<std::string> exclusions;
    bool includeCode = true;
    Date now{1'800'000'000};
    FileIndexer::Progress progress;
    std::stop_source stop;
};

TEST_F(FileIndexerTest, RecordsWhatItReads) {
    tree.write("notes/plan.md", "the plan");
    tree.setModified("notes/plan.md", 1'700'000'000.25);
    const ScanReport report = scan();
    EXPECT_EQ(report.indexed, 1);
    EXPECT_EQ(report.skipped, 0);
    EXPECT_THAT(report.errors, IsEmpty());
    const auto record = store.record(tree.path("notes/plan.md"));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->name, "plan.md");
    EXPECT_EQ(record->kind, FileKind::document);
    EXPECT_EQ(record->size, 8);
    EXPECT_EQ(record->modifiedAt, Date{1'700'000'000.25});
    EXPECT_EQ(record->indexedAt, now);
    EXPECT_EQ(record->content, "the plan");
    EXPECT_EQ(record->contentStatus, "Text indexed");
    EXPECT_EQ(record->rootPath, root);
    EXPECT_FALSE(record->sha256);
}

TEST_F(FileIndexerTest, LeavesOutWhatTheRulesName) {
    for (const char* path :
         {"kept.txt", ".hidden.txt", ".git/config.txt", "node_modules/x.txt", "build", "server.pem",
          "Tool.app/inside.txt", "logs/a.log", "Projects/old/a.txt", "private/p.txt",
          "sub/ignored.tmp", "sub/deep/also.tmp", "sub/deep/kept.txt", "other.tmp"}) {
        tree.write(path, "x");
    }
    tree.link("link.txt", "kept.txt");
    tree.write("sub/.gitignore", "# comment\n*.tmp\n!ignored.tmp\n");
    exclusions = {"*.log", "Projects/old", tree.path("private"), ""};
    const ScanReport report = scan();
    EXPECT_THAT(indexed(), UnorderedElementsAre("kept.txt", "sub/deep/kept.txt", "other.tmp"));
    EXPECT_EQ(report.indexed, 3);
    // node_modules, build, server.pem, a.log, old, private and the two ignored files
    EXPECT_EQ(report.skipped, 8);
    EXPECT_THAT(report.errors, IsEmpty());
}

TEST_F(FileIndexerTest, ReadsIgnoreFilesOfASaneSizeOnly) {
    tree.write("a.tmp");
    tree.write(".gitignore", "*.tmp\n" + std::string(128'000 - 6, '\n'));
    scan();
    EXPECT_THAT(indexed(), ElementsAre("a.tmp"));
    tree.write(".gitignore", "*.tmp\n" + std::string(128'000 - 7, '\n'));
    scan();
    EXPECT_THAT(indexed(), IsEmpty());
    tree.write(".gitignore", "*.tmp\n\xff");
    scan();
    EXPECT_THAT(indexed(), ElementsAre("a.tmp"));
}

TEST_F(FileIndexerTest, ReadsAndWritesNothingForAnUnchangedFolder) {
    tree.write("a.pdf", "x");
    tree.write("b.txt", "x");
    int reads = 0;
    reader.pdf = [&](const auto&...) {
        ++reads;
        return PdfText{.pageCount = 1, .pagesRead = 1, .text = "page"};
    };
    scan();
    const std::uint64_t revision = store.changeRevision();
    const ScanReport report = scan();
    EXPECT_EQ(report.indexed, 0);
    EXPECT_EQ(report.skipped, 2);
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(store.changeRevision(), revision);
}

TEST_F(FileIndexerTest, FollowsChangesAndRemovals) {
    tree.write("grown.txt", "1");
    tree.write("touched.txt", "1");
    tree.write("gone.txt", "1");
    tree.write("later/excluded.txt", "1");
    scan();
    tree.write("grown.txt", "22");
    tree.setModified("touched.txt", 1'000);
    std::filesystem::remove(tree.path("gone.txt"));
    exclusions = {"later"};
    const ScanReport report = scan();
    EXPECT_EQ(report.indexed, 2);
    EXPECT_THAT(indexed(), UnorderedElementsAre("grown.txt", "touched.txt"));
    EXPECT_EQ(store.record(tree.path("grown.txt"))->content, "22");
}

TEST_F(FileIndexerTest, RefreshesDownloadMetadataWithoutReadingAgain) {
    const std::string path = tree.write("page.txt", "x");
    if (::setxattr(path.c_str(), "user.probe", "", 0, 0) != 0) GTEST_SKIP() << "no attributes here";
    scan();
    const std::string address = "https://example.org/page.txt";
    ASSERT_EQ(::setxattr(path.c_str(), "user.xdg.origin.url", address.data(), address.size(), 0),
              0);
    now = {1'900'000'000};
    EXPECT_EQ(scan().indexed, 0);
    EXPECT_EQ(store.record(path)->sourceURL, address);
    EXPECT_EQ(store.record(path)->indexedAt, Date{1'800'000'000});
    const std::uint64_t revision = store.changeRevision();
    scan();
    EXPECT_EQ(store.changeRevision(), revision);
}

TEST_F(FileIndexerTest, NeverReadsPlaceholdersAndTriesThemAgain) {
    availability.placeholders = {tree.write("cloud.txt", "stub")};
    scan();
    EXPECT_EQ(statusOf("cloud.txt"), "Unavailable locally — content not read");
    EXPECT_EQ(store.record(tree.path("cloud.txt"))->content, "");
    EXPECT_EQ(scan().indexed, 1);
    availability.placeholders.clear();
    scan();
    EXPECT_EQ(statusOf("cloud.txt"), "Text indexed");
}

TEST_F(FileIndexerTest, SwitchingCodeContentTakesEffectBothWays) {
    tree.write("main.c", "int main;");
    includeCode = false;
    scan();
    EXPECT_EQ(statusOf("main.c"), "Metadata only — source content disabled");
    EXPECT_EQ(scan().indexed, 0);
    includeCode = true;
    EXPECT_EQ(scan().indexed, 1);
    EXPECT_EQ(store.record(tree.path("main.c"))->content, "int main;");
    includeCode = false;
    EXPECT_EQ(scan().indexed, 1);
    EXPECT_EQ(store.record(tree.path("main.c"))->content, "");
}

TEST_F(FileIndexerTest, ReadsWhatFailedAgainLastAndWithLessPatience) {
    tree.write("a.pdf", "x");
    tree.write("b.txt", "x");
    double factor = 0;
    reader.pdf = [&](const auto&, const ReadOptions& options, const auto&) -> PdfText {
        factor = options.deadlineFactor;
        throw IntelligenceError::inaccessible("Invalid PDF");
    };
    EXPECT_THAT(scan().errors, IsEmpty());
    EXPECT_EQ(statusOf("a.pdf"), "Extraction failed: Folder is unavailable: Invalid PDF");
    EXPECT_EQ(factor, 1);
    tree.write("b.txt", "changed");
    std::vector<std::string> order;
    progress = [&](const ScanProgress& step) { order.emplace_back(step.item.substr(root.size())); };
    EXPECT_EQ(scan().indexed, 2);
    EXPECT_THAT(order, ElementsAre("/b.txt", "/a.pdf", ""));
    EXPECT_EQ(factor, 0.25);
    reader.pdf = [](const auto&...) -> PdfText { throw std::runtime_error(""); };
    scan();
    EXPECT_EQ(statusOf("a.pdf"), "Extraction failed");
    reader.pdf = FakeReader().pdf;
    scan();
    EXPECT_EQ(statusOf("a.pdf"), "PDF text indexed");
}

TEST_F(FileIndexerTest, ReportsAFileThatChangesWhileRead) {
    const std::string path = tree.write("live.pdf", "x");
    const std::string vanishing = tree.write("vanishing.pdf", "x");
    reader.pdf = [&](const FileDescriptor& file, const auto&...) {
        if (platform::attributesOf(file, "").inode == platform::attributesOf(path).inode) {
            tree.write("live.pdf", "grown");
        } else {
            std::filesystem::remove(vanishing);
        }
        return PdfText{.pageCount = 1, .pagesRead = 1, .text = "page"};
    };
    EXPECT_THAT(scan().errors, ElementsAre(path + ": changed during indexing; will retry",
                                           vanishing + ": changed during indexing; will retry"));
    EXPECT_THAT(indexed(), IsEmpty());
    reader.pdf = FakeReader().pdf;
    EXPECT_EQ(scan().indexed, 1);
}

TEST_F(FileIndexerTest, KeepsRowsBelowAFolderItCannotList) {
    tree.write("closed/kept.txt", "x");
    tree.write("closed/below/kept.txt", "x");
    tree.write("open/gone.txt", "x");
    scan();
    std::filesystem::remove(tree.path("open/gone.txt"));
    const test::WithoutPrivileges ordinaryUser(tree);
    ::chmod(tree.path("closed").c_str(), 0000);
    const ScanReport report = scan();
    EXPECT_THAT(report.errors, ElementsAre(tree.path("closed") + ": Permission denied"));
    EXPECT_THAT(indexed(), UnorderedElementsAre("closed/kept.txt", "closed/below/kept.txt"));
}

TEST_F(FileIndexerTest, RecordsAnUnreadableFileWithTheReason) {
    ::chmod(tree.write("closed.txt", "x").c_str(), 0000);
    const test::WithoutPrivileges ordinaryUser(tree);
    scan();
    EXPECT_EQ(statusOf("closed.txt"), "Extraction failed: Permission denied");
}

TEST_F(FileIndexerTest, NamesWhatCannotBeARecord) {
    tree.write("latin\xe9.txt", "x");
    tree.write("new\nline.txt", "x");
    tree.write(std::string(251, 'n') + ".txt", "x");
    const ScanReport report = scan();
    EXPECT_THAT(report.errors,
                ElementsAre(tree.path("latin\\xe9.txt") + ": the name is not valid UTF-8"));
    EXPECT_EQ(report.indexed, 2);
    EXPECT_EQ(statusOf("new\nline.txt"), "Text indexed");
}

TEST_F(FileIndexerTest, RefusesRootsBeforeAnyRowIsTouched) {
    tree.write("file.txt", "x");
    scan();
    const std::string refused =
        "Folder is unavailable: System, hidden, and cache folders cannot be indexed";
    EXPECT_EQ(messageOfScan("/"), refused);
    EXPECT_EQ(messageOfScan("/proc/self"), "Folder is unavailable: /proc/self: Is a symbolic link");
    EXPECT_EQ(messageOfScan("/proc"), refused);
    EXPECT_EQ(messageOfScan(tree.makeDirectory(".hidden/inside")), refused);
    EXPECT_THAT(messageOfScan(tree.path("file.txt")), HasSubstr("Not a directory"));
    EXPECT_THAT(messageOfScan(tree.path("missing")), HasSubstr("No such file or directory"));
    EXPECT_THAT(messageOfScan(tree.link("link", root) + "/"), HasSubstr("Is a symbolic link"));
    EXPECT_THAT(messageOfScan("bad\xff"), HasSubstr("not valid UTF-8"));
    availability.placeholders = {tree.makeDirectory("cloud")};
    EXPECT_THAT(messageOfScan(tree.path("cloud")), HasSubstr("Is not available locally"));
    EXPECT_THAT(indexed(), ElementsAre("file.txt"));
}

TEST_F(FileIndexerTest, StoresRootsWithTheirLinksResolved) {
    tree.write("real/inner/a.txt", "x");
    tree.link("alias", "real");
    scan(tree.path("alias/inner/"));
    EXPECT_THAT(store.roots(), ElementsAre(tree.path("real/inner")));
}

TEST_F(FileIndexerTest, LeavesAnInnerRootToItsOwnScan) {
    tree.write("outer.txt", "x");
    tree.write("inner/a.txt", "x");
    tree.write("inner/b.txt", "x");
    scan();
    const std::string inner = tree.path("inner");
    std::filesystem::remove(tree.path("inner/b.txt"));
    // Connecting it takes its rows over: nothing is read again and nothing is lost.
    const ScanReport taken = scan(inner);
    EXPECT_EQ(taken.indexed, 0);
    EXPECT_THAT(store.scanRecords(inner), testing::SizeIs(1));
    EXPECT_THAT(indexed(), ElementsAre("outer.txt"));
    tree.write("inner/c.txt", "x");
    EXPECT_EQ(scan().indexed, 0);
    EXPECT_THAT(store.scanRecords(inner), testing::SizeIs(1));
    store.removeRoot(inner);
    EXPECT_EQ(scan().indexed, 2);
}

TEST_F(FileIndexerTest, LeavesOutItsOwnFilesAndTheTrash) {
    const test::EnvironmentVariable home("XDG_DATA_HOME", tree.path("share"));
    tree.makeDirectory("share");
    std::filesystem::create_directory_symlink("../bin", tree.path("share/Trash"));
    for (const char* path : {"bin/files/gone.txt", "share/own/notes.txt", "share/kept.txt"})
        tree.write(path, "x");
    IndexStore own(tree.path("share/own/index.sqlite"));
    const ContentExtractor extractor(reader, reader);
    FileIndexer(availability, extractor, {}).scan(root, own, {}, false, {}, {});
    ASSERT_EQ(own.scanRecords(root).size(), 1U);
    EXPECT_EQ(own.scanRecords(root)[0].path, tree.path("share/kept.txt"));
}

TEST_F(FileIndexerTest, ReportsProgressInWalkOrder) {
    for (const char* name : {"c.txt", "a/1.pdf", "a/2.txt", "b.bin"})
        tree.write(name, "x");
    std::vector<std::string> steps;
    progress = [&](const ScanProgress& step) {
        EXPECT_EQ(step.root, root);
        steps.push_back(std::to_string(step.count) + std::string(step.item.substr(root.size())) +
                        " " + std::string(step.phase));
    };
    scan();
    EXPECT_THAT(steps, ElementsAre("1/a/1.pdf Scanning", "2/a/2.txt Scanning", "3/b.bin Scanning",
                                   "4/c.txt Scanning", "4 Finished"));
}

TEST_F(FileIndexerTest, StopsAReadInProgressAndKeepsWhatWasStored) {
    tree.write("a.txt", "x");
    tree.write("b.pdf", "x");
    tree.write("gone.txt", "x");
    scan();
    std::filesystem::remove(tree.path("gone.txt"));
    tree.write("a.txt", "new text");
    tree.write("b.pdf", "changed");
    progress = [&](const ScanProgress& step) {
        if (step.item.ends_with("a.txt")) stop.request_stop();
    };
    reader.pdf = [](const auto&, const auto&, const std::stop_token& token) -> PdfText {
        // A reader that only ends when it is told to.
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any().wait(lock, token, [] { return false; });
        throw Cancelled{};
    };
    EXPECT_THROW(scan(), Cancelled);
    EXPECT_EQ(store.record(tree.path("a.txt"))->content, "new text");
    EXPECT_EQ(statusOf("gone.txt"), "Text indexed");
}

TEST_F(FileIndexerTest, FinishesWhatAKilledScanBegan) {
    for (int n = 0; n < 30; ++n)
        tree.write("file" + std::to_string(n) + ".txt", "word");
    for (const std::int64_t killedAt : {1, 7, 29}) {
        const pid_t child = ::fork();
        if (child == 0) {
            IndexStore own(data.path("index.sqlite"));
            const ContentExtractor extractor(reader, reader);
            const FileIndexer indexer(availability, extractor, {});
            indexer.scan(root, own, {}, true,
                         [&](const ScanProgress& step) {
                             if (step.count == killedAt) ::raise(SIGKILL);
                         },
                         {});
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_GE(indexed().size(), static_cast<std::size_t>(killedAt));
    }
    scan();
    EXPECT_EQ(indexed().size(), 30U);
    EXPECT_EQ(scan().indexed, 0);
}

TEST_F(FileIndexerTest, EndsWithTheSentenceOfAFullDisk) {
    const std::string small = data.makeDirectory("small");
    if (::mount("tmpfs", small.c_str(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "only root can mount a small disk";
    }
    tree.write("a.txt", "word");
    for (int n = 0; n < 10; ++n) {
        tree.write("b" + std::to_string(n) + ".txt", std::string(150'000, 'x'));
    }
    {
        IndexStore full(small + "/index.sqlite");
        const ContentExtractor extractor(reader, reader);
        const FileIndexer indexer(availability, extractor, {});
        try {
            indexer.scan(root, full, {}, true, nullptr, {});
            ADD_FAILURE() << "the disk was not full";
        } catch (const IntelligenceError& error) {
            EXPECT_STREQ(error.what(), "Index database: database or disk is full");
        }
        EXPECT_TRUE(full.record(tree.path("a.txt")));
    }
    ::umount(small.c_str());
}

TEST_F(FileIndexerTest, EndsWithTheErrorOfTheStore) {
    tree.write("a.txt", "x");
    IndexStore reading(data.path("index.sqlite"), IndexStore::Access::readOnly);
    const ContentExtractor extractor(reader, reader);
    const FileIndexer indexer(availability, extractor, {});
    EXPECT_THROW(indexer.scan(root, reading, {}, true, nullptr, {}), IntelligenceError);
}

} // namespace
} // namespace tovi
