#include "platform/AtomicFile.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tovi::platform {
namespace {

using test::TemporaryTree;

TEST(AtomicFile, ReplacesAPrivateFileAndLeavesNothingBesideIt) {
    const TemporaryTree tree;
    tree.write("d/log", "old");
    const auto entry = DirectoryEntry::open(tree.path("d/log"));
    const std::string bytes(300'000, 'x');
    replaceFile(entry, bytes);
    EXPECT_EQ(readFile(entry, bytes.size()), bytes);
    EXPECT_THROW(readFile(entry, bytes.size() - 1), std::system_error);
    struct stat status {};
    ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tree.path("d")), {}), 1);
}

TEST(AtomicFile, AFailureKeepsTheOldFile) {
    const TemporaryTree tree;
    tree.write("d/log/inside", "kept"); // a directory cannot be replaced by a file
    EXPECT_THROW(replaceFile(DirectoryEntry::open(tree.path("d/log")), "new"), std::system_error);
    EXPECT_EQ(test::readFile(tree.path("d/log/inside")), "kept");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tree.path("d")), {}), 1);
    EXPECT_EQ(readFile(DirectoryEntry::open(tree.path("d/none")), 1), std::nullopt);
}

TEST(DirectoryEntry, FollowsNoLinkAndNoOddPath) {
    const TemporaryTree tree;
    tree.write("real/file", "x");
    tree.link("linked", "real");
    tree.link("real/link", "file");
    const auto held = DirectoryEntry::open(tree.path("real/file"));
    EXPECT_NO_THROW(held.openRegularFile());
    for (const char* path : {"linked/file", "real/../real/file", "real//file", "real/."}) {
        EXPECT_THROW(DirectoryEntry::open(tree.path(path)), std::system_error) << path;
    }
    EXPECT_THROW(DirectoryEntry::open(tree.path("real/link")).openRegularFile(), std::system_error);

    // The directory is held: what takes its name later is not reached.
    std::filesystem::rename(tree.path("real"), tree.path("away"));
    tree.write("real/file", "another");
    EXPECT_EQ(held.attributes()->size, 1);
}

} // namespace
} // namespace tovi::platform
