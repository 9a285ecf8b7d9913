#include "base/Cancelled.h"
#include "platform/DirectoryWalker.h"
#include "tests/support/TemporaryTree.h"

#include <functional>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi::platform {
namespace {

using test::TemporaryTree;
using testing::ElementsAre;
using testing::StartsWith;

struct Recorder final : WalkVisitor {
    std::size_t prefix;
    std::vector<std::string> seen; // "d dir", "f file", "l link", "< left"
    std::vector<std::string> failures;
    std::function<Step(WalkItem&)> decide = [](WalkItem&) { return Step::descend; };

    explicit Recorder(const std::string& root) : prefix(root.size()) {}

    void enter(const WalkDirectory&) override {}
    void leave() override { seen.push_back("<"); }
    Step visit(WalkItem& item) override {
        const Step step = decide(item);
        const char* letter = item.type() == FileType::directory ? "d "
                             : item.type() == FileType::regular ? "f "
                                                                : "l ";
        seen.push_back(letter + item.path().substr(prefix + 1));
        return step;
    }
    void failed(const std::string& path, const std::system_error& error) override {
        failures.push_back(path.substr(prefix) + ": " + error.code().message());
    }
};

TEST(DirectoryWalker, VisitsInByteOrderAndNeverFollowsLinks) {
    const TemporaryTree tree;
    tree.write("b/two", "22");
    tree.write("a.txt");
    tree.write("b.txt");
    tree.link("loop", tree.path());
    tree.link("b/up", "..");
    Recorder recorder(tree.path());
    walkDirectory(tree.path(), recorder, {});
    EXPECT_THAT(recorder.seen,
                ElementsAre("f a.txt", "d b", "f b/two", "l b/up", "<", "f b.txt", "l loop", "<"));
    EXPECT_TRUE(recorder.failures.empty());
}

TEST(DirectoryWalker, LeavesOutWhatTheVisitorSkips) {
    const TemporaryTree tree;
    tree.write("in/one");
    tree.write("out/two");
    Recorder recorder(tree.path());
    recorder.decide = [](WalkItem& item) {
        return item.name() == "out" ? WalkVisitor::Step::skip : WalkVisitor::Step::descend;
    };
    walkDirectory(tree.path(), recorder, {});
    EXPECT_THAT(recorder.seen, ElementsAre("d in", "f in/one", "<", "d out", "<"));
}

TEST(DirectoryWalker, MeetsEveryNameTheSystemAllows) {
    const TemporaryTree tree;
    const std::string longest(255, 'n');
    tree.write(longest, "x");
    tree.write("new\nline", "xx");
    tree.write("latin\xe9", "xxx");
    std::int64_t bytes = 0;
    Recorder recorder(tree.path());
    recorder.decide = [&](WalkItem& item) {
        bytes += item.attributes().size;
        return WalkVisitor::Step::skip;
    };
    walkDirectory(tree.path(), recorder, {});
    EXPECT_THAT(recorder.seen, ElementsAre("f latin\xe9", "f new\nline", "f " + longest, "<"));
    EXPECT_EQ(bytes, 6);
}

TEST(DirectoryWalker, ReportsAFolderThatVanishesOrIsReplacedByALink) {
    const TemporaryTree tree;
    tree.makeDirectory("gone");
    tree.makeDirectory("swapped");
    tree.write("elsewhere/private");
    tree.write("z");
    Recorder recorder(tree.path());
    recorder.decide = [&](WalkItem& item) {
        if (item.name() == "elsewhere") return WalkVisitor::Step::skip;
        if (item.name() == "gone") ::rmdir(item.path().c_str());
        if (item.name() == "swapped") {
            ::rmdir(item.path().c_str());
            tree.link("swapped", "elsewhere");
        }
        return WalkVisitor::Step::descend;
    };
    walkDirectory(tree.path(), recorder, {});
    EXPECT_THAT(recorder.seen, ElementsAre("d elsewhere", "d gone", "d swapped", "f z", "<"));
    EXPECT_THAT(recorder.failures,
                ElementsAre("/gone: No such file or directory", StartsWith("/swapped: ")));
}

TEST(DirectoryWalker, ReportsAFolderWithoutPermission) {
    const TemporaryTree tree;
    ::chmod(tree.makeDirectory("closed").c_str(), 0000);
    const test::WithoutPrivileges ordinaryUser(tree);
    Recorder recorder(tree.path());
    walkDirectory(tree.path(), recorder, {});
    EXPECT_THAT(recorder.failures, ElementsAre("/closed: Permission denied"));
}

TEST(DirectoryWalker, GoesDeeperThanPathsAndDescriptorsReach) {
    const TemporaryTree tree;
    constexpr int depth = 1500; // 1,500 x 5 bytes is beyond the longest path
    FileDescriptor directory(::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY));
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(directory.get(), "deep", 0700), 0);
        directory = FileDescriptor(::openat(directory.get(), "deep", O_RDONLY | O_DIRECTORY));
        ASSERT_TRUE(directory.isOpen());
    }
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{128, before.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &few);
    Recorder recorder(tree.path());
    walkDirectory(tree.path(), recorder, {});
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(recorder.failures.empty());
    EXPECT_EQ(recorder.seen.size(), 2U * depth + 1);
    // The standard library cannot remove a tree this deep.
    while (::unlinkat(directory.get(), "deep", AT_REMOVEDIR) == 0 || errno == ENOENT) {
        directory = FileDescriptor(::openat(directory.get(), "..", O_RDONLY | O_DIRECTORY));
        struct stat here {};
        struct stat root {};
        ::fstat(directory.get(), &here);
        ::stat(tree.path().c_str(), &root);
        if (here.st_ino == root.st_ino) break;
    }
    ::unlinkat(directory.get(), "deep", AT_REMOVEDIR);
}

TEST(DirectoryWalker, StopsBetweenTwoEntries) {
    const TemporaryTree tree;
    for (const char* name : {"1", "2", "3"})
        tree.write(name);
    std::stop_source source;
    Recorder recorder(tree.path());
    recorder.decide = [&](WalkItem&) {
        source.request_stop();
        return WalkVisitor::Step::skip;
    };
    EXPECT_THROW(walkDirectory(tree.path(), recorder, source.get_token()), Cancelled);
    EXPECT_THAT(recorder.seen, ElementsAre("f 1"));
}

TEST(DirectoryWalker, RefusesARootThatIsNoDirectory) {
    const TemporaryTree tree;
    Recorder recorder(tree.path());
    EXPECT_THROW(walkDirectory(tree.write("file"), recorder, {}), std::system_error);
    EXPECT_THROW(walkDirectory(tree.link("link", tree.path()), recorder, {}), std::system_error);
    EXPECT_THROW(walkDirectory(tree.path("none"), recorder, {}), std::system_error);
}

} // namespace
} // namespace tovi::platform
