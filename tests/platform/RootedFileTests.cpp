#include "platform/RootedFile.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tovi::platform {
namespace {

using test::TemporaryTree;

RootedFile fileIn(const TemporaryTree& tree, const std::string& relative) {
    auto root = std::make_shared<const FileDescriptor>(
        ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return {root, tree.path(relative), tree.path().size() + 1};
}

TEST(RootedFile, OpensAFileBelowItsRoot) {
    const TemporaryTree tree;
    tree.write("a/b/c.txt", "text");
    const RootedFile file = fileIn(tree, "a/b/c.txt");
    char buffer[8] = {};
    EXPECT_EQ(::read(file.open().get(), buffer, sizeof buffer), 4);
    EXPECT_EQ(file.attributes().size, 4);
    EXPECT_EQ(file.name(), "c.txt");
    EXPECT_EQ(fileIn(tree, "a/b/c.txt").attributes().inode, file.attributes().inode);
}

TEST(RootedFile, NeverFollowsALinkAnywhere) {
    const TemporaryTree tree;
    tree.write("real/file", "secret");
    tree.link("folder", "real");
    tree.link("real/alias", "file");
    EXPECT_THROW(fileIn(tree, "folder/file").open(), std::system_error);
    EXPECT_THROW(fileIn(tree, "folder/file").attributes(), std::system_error);
    EXPECT_THROW(fileIn(tree, "real/alias").open(), std::system_error);
    EXPECT_EQ(fileIn(tree, "real/alias").attributes().type, FileType::symbolicLink);
}

TEST(RootedFile, OpensRegularFilesOnly) {
    const TemporaryTree tree;
    ASSERT_EQ(::mkfifo(tree.path("pipe").c_str(), 0600), 0);
    tree.makeDirectory("folder");
    for (const char* name : {"pipe", "folder", "missing"}) {
        EXPECT_THROW(fileIn(tree, name).open(), std::system_error) << name;
    }
}

} // namespace
} // namespace tovi::platform
