#include "app/browser/FolderBrowserModel.h"
#include "app/lists/QtConversions.h"
#include "tests/support/Environment.h"
#include "tests/support/ManualExecutor.h"
#include "tests/support/TemporaryTree.h"

#include <QSignalSpy>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tovi {
namespace {

class FolderBrowser : public testing::Test {
  protected:
    FolderBrowser() {
        for (const char* folder : {"b/inside", "A", "b 10", "b 9", ".hidden", "closed"})
            tree_.makeDirectory(folder);
        tree_.write("b/ä.txt", "12345");
        tree_.write("c.txt");
        tree_.write(".secret");
        tree_.link("link to A", "A");
        tree_.link("a loop", "a loop");
        tree_.link("nowhere", "none");
        ::mkfifo(tree_.path("pipe").c_str(), 0600);
    }

    /// The row to begin with, or -1 where the folder was not opened.
    int open(const std::string& path, bool withFiles = false) {
        QSignalSpy opened(&model_, &FolderBrowserModel::opened);
        model_.open(toQt(path), withFiles);
        executor_.settle();
        return opened.empty() ? -1 : opened.front().front().toInt();
    }

    std::string names() { return fromQt(model_.entries()->texts(toQt("name")).join(u'|')); }

    std::string folder() const { return fromQt(model_.folder()); }

    test::TemporaryTree tree_;
    test::ManualExecutor executor_;
    FolderBrowserModel model_{executor_};
};

TEST_F(FolderBrowser, ShowsFoldersAndFilesAsPeopleSortThem) {
    EXPECT_EQ(open(tree_.path()), 0);
    EXPECT_EQ(names(), "A|b|b 9|b 10|closed|link to A");
    EXPECT_EQ(open(tree_.path() + "/", true), 0);
    EXPECT_EQ(names(), "A|b|b 9|b 10|closed|link to A|c.txt");
    EXPECT_EQ(open("b", true), 0);
    EXPECT_EQ(names(), "inside|ä.txt");
    EXPECT_EQ(model_.entries()->value(1, toQt("size")).toInt(), 5);
    EXPECT_EQ(open("inside"), 0);
    EXPECT_EQ(names(), "");
}

TEST_F(FolderBrowser, FindsItsWay) {
    const test::EnvironmentVariable home("HOME", tree_.path());
    open("~");
    EXPECT_EQ(folder(), tree_.path());
    open("~/b/../b 9/");
    EXPECT_EQ(folder(), tree_.path("b 9"));
    EXPECT_EQ(open(".."), 2) << "the folder that was left";
    EXPECT_EQ(folder(), tree_.path());
    EXPECT_EQ(open("c.txt", true), 6) << "the file itself";
    EXPECT_EQ(folder(), tree_.path());
    open("/");
    open("..");
    EXPECT_EQ(folder(), "/");
}

TEST_F(FolderBrowser, StaysWhereAnotherFolderCannotBeOpened) {
    ::chmod(tree_.path("closed").c_str(), 0);
    const test::WithoutPrivileges asNobody(tree_);
    open(tree_.path());
    struct {
        const char* path;
        const char* reason;
    } const refused[] = {{"closed", "Permission denied"},
                         {"none", "No such file or directory"},
                         {"c.txt", "Not a directory"},
                         {"a loop", "Too many levels of symbolic links"}};
    for (const auto& [path, reason] : refused) {
        EXPECT_EQ(open(path), -1);
        EXPECT_EQ(fromQt(model_.error()),
                  "“" + tree_.path(path) + "” cannot be opened: " + reason + ".");
        EXPECT_EQ(folder(), tree_.path());
        EXPECT_EQ(names(), "A|b|b 9|b 10|closed|link to A");
    }
    open("b");
    EXPECT_TRUE(model_.error().isEmpty());
}

TEST_F(FolderBrowser, ShowsTheFolderAskedForLast) {
    model_.open(toQt(tree_.path("b")), true);
    model_.open(toQt(tree_.path("A")), true);
    EXPECT_TRUE(model_.isLoading());
    executor_.work(1);
    executor_.settle();
    EXPECT_EQ(folder(), tree_.path("A"));
    EXPECT_FALSE(model_.isLoading());
}

TEST_F(FolderBrowser, SeeksByTheBeginningOfNames) {
    open(tree_.path());
    EXPECT_FALSE(model_.isCut());
    struct {
        const char* text;
        int from;
        int row;
    } const sought[] = {{"b", 0, 1},    {"B", 2, 2},  {"b", 4, 1}, {"b 1", 0, 3},
                        {"LINK", 7, 5}, {"x", 0, -1}, {"a", -1, 0}};
    for (const auto& [text, from, row] : sought)
        EXPECT_EQ(model_.rowBeginningWith(toQt(text), from), row) << text << from;
    open("b/inside");
    EXPECT_EQ(model_.rowBeginningWith(toQt("b"), 0), -1);
}

TEST_F(FolderBrowser, ShowsTheFirstOfTooMany) {
    FolderBrowserModel model(executor_, 3);
    QSignalSpy opened(&model, &FolderBrowserModel::opened);
    for (const char* folder : {"closed", "closed/.."}) {
        model.open(toQt(tree_.path(folder)), false);
        executor_.settle();
    }
    EXPECT_TRUE(model.isCut());
    EXPECT_EQ(model.entries()->texts(toQt("name")).join(u'|'), toQt("A|b|b 9"));
    EXPECT_EQ(opened.back().front(), 0) << "the folder that was left is not among them";
}

} // namespace
} // namespace tovi
