#include "platform/ExclusiveMove.h"
#include "platform/linux/MoveWithoutReplacing.h"
#include "tests/support/FileMoveFakes.h"
#include "tests/support/MountNamespace.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gtest/gtest.h>

namespace tovi::platform {
namespace {

using test::readFile;
using test::TemporaryTree;

/// The way taken on file systems without RENAME_NOREPLACE.
class LinkingMove final : public ExclusiveMove {
  public:
    std::error_code move(const DirectoryEntry& from, const DirectoryEntry& to) override {
        moveByLinking(from, to);
        return {};
    }
    void finish(const DirectoryEntry& from, const DirectoryEntry& to) override {
        removeLinkedName(from, to);
    }
};

template <typename Move>
class ExclusiveMoveContract : public testing::Test {
  public:
    void expectRefused(std::errc code, const std::string& from, const std::string& to) {
        try {
            move.move(DirectoryEntry::open(tree.path(from)), DirectoryEntry::open(tree.path(to)));
            ADD_FAILURE() << from << " was moved to " << to;
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), code);
        }
    }

    TemporaryTree tree;
    Move move;
};
using Moves = testing::Types<SystemExclusiveMove, LinkingMove, test::FakeExclusiveMove>;
TYPED_TEST_SUITE(ExclusiveMoveContract, Moves);

TYPED_TEST(ExclusiveMoveContract, MovesAFileToAFreeName) {
    this->tree.write("a/old", "bytes");
    this->tree.makeDirectory("b");
    const auto from = DirectoryEntry::open(this->tree.path("a/old"));
    const auto to = DirectoryEntry::open(this->tree.path("b/new"));
    const auto inode = from.attributes()->inode;
    EXPECT_FALSE(this->move.move(from, to));
    EXPECT_FALSE(from.attributes());
    EXPECT_EQ(to.attributes()->inode, inode);
    EXPECT_EQ(readFile(to.path()), "bytes");
}

TYPED_TEST(ExclusiveMoveContract, ReplacesNothing) {
    this->tree.write("old", "bytes");
    this->tree.write("file", "kept");
    this->tree.makeDirectory("directory");
    this->tree.link("dangling", "nowhere");
    std::filesystem::create_hard_link(this->tree.path("old"), this->tree.path("twin"));
    for (const char* taken : {"file", "directory", "dangling", "twin"}) {
        this->expectRefused(std::errc::file_exists, "old", taken);
    }
    EXPECT_EQ(readFile(this->tree.path("old")), "bytes");
    EXPECT_EQ(readFile(this->tree.path("file")), "kept");
    EXPECT_TRUE(std::filesystem::is_directory(this->tree.path("directory")));
    EXPECT_TRUE(std::filesystem::is_symlink(this->tree.path("dangling")));
}

TYPED_TEST(ExclusiveMoveContract, FinishesOnlyAMoveOfOneFile) {
    this->tree.write("old", "bytes");
    this->tree.write("other", "kept");
    const auto from = DirectoryEntry::open(this->tree.path("old"));
    this->move.finish(from, DirectoryEntry::open(this->tree.path("other")));
    EXPECT_EQ(readFile(from.path()), "bytes");
    std::filesystem::create_hard_link(from.path(), this->tree.path("new"));
    this->move.finish(from, DirectoryEntry::open(this->tree.path("new")));
    EXPECT_FALSE(from.attributes());
    EXPECT_EQ(readFile(this->tree.path("new")), "bytes");
}

TEST(ExclusiveMove, RefusesAnotherFileSystemAndLinkingADirectory) {
    const TemporaryTree tree;
    tree.write("directory/file", "bytes");
    tree.makeDirectory("mount");
    const auto code = [&](auto move, const char* from, const char* to) {
        try {
            move(DirectoryEntry::open(tree.path(from)), DirectoryEntry::open(tree.path(to)));
        } catch (const std::system_error& error) {
            return error.code();
        }
        return std::error_code();
    };
    EXPECT_EQ(code(moveByLinking, "directory", "elsewhere"), std::errc::not_supported);
    const test::MountNamespace mounts;
    if (!mounts.isAvailable()) GTEST_SKIP() << "no mounts here";
    mounts.mountMemory(tree.path("mount"));
    EXPECT_EQ(code(moveWithoutReplacing, "directory/file", "mount/file"),
              std::errc::cross_device_link);
    EXPECT_EQ(readFile(tree.path("directory/file")), "bytes");
}

} // namespace
} // namespace tovi::platform
