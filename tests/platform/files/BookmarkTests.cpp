#include "platform/Bookmark.h"
#include "tests/support/FileMoveFakes.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <unistd.h>

namespace tovi::platform {
namespace {

using test::TemporaryTree;

template <typename Type>
class BookmarksContract : public testing::Test {
  public:
    std::string mark(const char* path) {
        return bookmarks.create(DirectoryEntry::open(tree.path(path)));
    }
    void rename(const char* from, const char* to) {
        std::filesystem::rename(tree.path(from), tree.path(to));
    }

    TemporaryTree tree;
    Type bookmarks;
};
using Implementations = testing::Types<SystemBookmarks, test::FakeBookmarks>;
TYPED_TEST_SUITE(BookmarksContract, Implementations);

TYPED_TEST(BookmarksContract, FindsAFileInPlaceBesideItAndWhereItIsLikely) {
    this->tree.write("a/one", "1");
    this->tree.makeDirectory("b");
    const std::string bookmark = this->mark("a/one");
    const std::string likely = this->tree.path("b/one");
    const auto expect = [&](const char* path, bool stale) {
        const auto found = this->bookmarks.locate(bookmark, likely);
        ASSERT_TRUE(found) << path;
        EXPECT_EQ(found->path, this->tree.path(path));
        EXPECT_EQ(found->stale, stale);
    };
    expect("a/one", false);
    this->rename("a/one", "a/renamed");
    this->tree.write("a/one", "an impostor");
    expect("a/renamed", true);
    this->rename("a/renamed", "b/renamed again");
    expect("b/renamed again", true);
}

TYPED_TEST(BookmarksContract, FindsNothingOnceTheFileIsGone) {
    this->tree.write("a/one", "1");
    this->tree.write("a/two", "1");
    const std::string bookmark = this->mark("a/one");
    std::filesystem::remove(this->tree.path("a/one"));
    EXPECT_FALSE(this->bookmarks.locate(bookmark, this->tree.path("a/one")));
    EXPECT_FALSE(this->bookmarks.locate("not a bookmark", this->tree.path("a/two")));
    EXPECT_FALSE(this->bookmarks.locate("", this->tree.path("a/two")));
}

TEST(Bookmarks, NeverTakeAnotherHardLinkForTheFile) {
    const TemporaryTree tree;
    SystemBookmarks bookmarks;
    tree.write("one", "1");
    std::filesystem::create_hard_link(tree.path("one"), tree.path("two"));
    const std::string bookmark = bookmarks.create(DirectoryEntry::open(tree.path("one")));
    EXPECT_EQ(bookmarks.locate(bookmark, tree.path("x"))->path, tree.path("one"));
    std::filesystem::remove(tree.path("one"));
    EXPECT_FALSE(bookmarks.locate(bookmark, tree.path("x")));
}

TEST(Bookmarks, FindAFileAnywhereOnItsFileSystemWhereTheSystemAllowsIt) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs the right to open files by handle";
    const TemporaryTree tree;
    SystemBookmarks bookmarks;
    tree.write("a/one", "1");
    tree.makeDirectory("far/away");
    const std::string bookmark = bookmarks.create(DirectoryEntry::open(tree.path("a/one")));
    std::filesystem::rename(tree.path("a/one"), tree.path("far/away/one"));
    std::filesystem::remove(tree.path("a"));
    const auto found = bookmarks.locate(bookmark, tree.path("a/one"));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, tree.path("far/away/one"));
}

} // namespace
} // namespace tovi::platform
