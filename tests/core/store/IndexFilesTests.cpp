#include "core/records/IntelligenceError.h"
#include "core/store/IndexFiles.h"
#include "core/store/IndexStore.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tovi {
namespace {

TEST(MoveIndexAside, KeepsTheOldIndexWholeUnderANameWithTheDate) {
    const test::TemporaryTree tree;
    const std::string path = tree.write("index.sqlite", "database");
    tree.write("index.sqlite-wal", "log");
    const std::string aside = moveIndexAside(path, {0});
    EXPECT_EQ(aside, tree.path("index-1970-01-01T00-00-00.000Z.sqlite"));
    EXPECT_EQ(test::readFile(aside), "database");
    EXPECT_EQ(test::readFile(aside + "-wal"), "log");
    EXPECT_FALSE(std::filesystem::exists(path));

    tree.write("index.sqlite", "second");
    EXPECT_THROW(moveIndexAside(path, {0}), IntelligenceError);
    EXPECT_EQ(test::readFile(aside), "database");
    EXPECT_EQ(test::readFile(path), "second");
}

TEST(MoveIndexAside, RefusesWhileAnotherProgramUsesTheIndex) {
    const test::TemporaryTree tree;
    const std::string path = tree.path("index.sqlite");
    { const IndexStore create(path); }
    int ready[2];
    int done[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(done), 0);
    const pid_t user = ::fork();
    if (user == 0) {
        IndexStore store(path);
        store.changeRevision();
        char byte = 0;
        ::close(done[1]);
        const bool told = ::write(ready[1], "", 1) == 1;
        ::_exit(told && ::read(done[0], &byte, 1) == 0 ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_THROW(moveIndexAside(path, {0}), IntelligenceError);
    for (const int end : {done[0], done[1], ready[0], ready[1]})
        ::close(end);
    int status = 0;
    ::waitpid(user, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_NO_THROW(moveIndexAside(path, {0}));
}

} // namespace
} // namespace tovi
