#include "tests/core/actions/ServiceFixture.h"

namespace tovi {
namespace {

namespace fs = std::filesystem;
using test::readFile;

class UndoTest : public ServiceFixture {
  protected:
    Uuid trashed(std::initializer_list<const char*> names) {
        for (const char* name : names)
            tree.write(name, name);
        return execute(planTrash(names)).id;
    }
    std::string place(std::size_t entry) { return service.history()[0].entries[entry].currentPath; }
};

TEST_F(UndoTest, RestoresEveryFileAndItsName) {
    const Uuid id = trashed({"a", "d/b"});
    const std::string first = place(0);
    EXPECT_TRUE(trash.hasNote(first));
    std::vector<std::string> order;
    move.before = [&](const std::string&, const std::string& to) { order.push_back(to); };
    const ActionReceipt receipt = service.undo(id, roots);
    EXPECT_TRUE(receipt.undone);
    EXPECT_THAT(order, testing::ElementsAre(tree.path("d/b"), tree.path("a")));
    EXPECT_EQ(readFile(tree.path("a")), "a");
    EXPECT_EQ(readFile(tree.path("d/b")), "d/b");
    EXPECT_FALSE(trash.hasNote(first));
    EXPECT_TRUE(makeService().history()[0].undone);
    EXPECT_EQ(refusal([&] { service.undo(id, roots); }),
              "This action has no completed files to restore.");
    EXPECT_EQ(refusal([&] { service.undo(Uuid::random(), roots); }),
              "No restorable action was found.");

    execute(planRename("a", "renamed"));
    service.undo(service.history()[0].id, roots);
    EXPECT_EQ(readFile(tree.path("a")), "a");
}

TEST_F(UndoTest, StopsAtATakenNameAndKeepsWhatIsRestored) {
    const Uuid id = trashed({"a", "b", "c"});
    tree.write("b", "new");
    const std::string taken = "Restore stopped: " + tree.path("b") + " already exists.";
    EXPECT_EQ(refusal([&] { service.undo(id, roots); }), taken);
    const ActionReceipt receipt = makeService().history()[0];
    EXPECT_FALSE(receipt.undone);
    EXPECT_TRUE(receipt.entries[2].restored);
    EXPECT_FALSE(receipt.entries[1].restored || receipt.entries[0].restored);
    EXPECT_EQ(readFile(tree.path("b")), "new");
    fs::remove(tree.path("b"));
    EXPECT_TRUE(service.undo(id, roots).undone);
}

TEST_F(UndoTest, FindsARenamedFileAndRefusesAChangedOne) {
    const Uuid id = trashed({"a"});
    constexpr const char* changed =
        "The moved file changed or is no longer available. Review it in Finder.";
    const std::string moved = data.path("trash/renamed");
    fs::rename(place(0), moved);
    const auto time = fs::last_write_time(moved);
    fs::last_write_time(moved, time + std::chrono::seconds(2));
    EXPECT_EQ(refusal([&] { service.undo(id, roots); }), changed);
    fs::last_write_time(moved, time);
    EXPECT_TRUE(service.undo(id, roots).undone);
    EXPECT_EQ(readFile(tree.path("a")), "a");
}

TEST_F(UndoTest, RefusesOtherFoldersAndLinksOnTheWay) {
    const Uuid id = trashed({"d/a"});
    constexpr const char* outside = "Only files inside currently authorized folders can be "
                                    "changed. Symbolic links are excluded.";
    EXPECT_EQ(refusal([&] { service.undo(id, {data.path()}); }), outside);
    fs::remove(tree.path("d"));
    tree.makeDirectory("elsewhere");
    tree.link("d", "elsewhere");
    EXPECT_EQ(refusal([&] { service.undo(id, roots); }), outside);
    EXPECT_TRUE(fs::is_empty(tree.path("elsewhere")));
    fs::remove(place(0));
    fs::remove(tree.path("d"));
    tree.makeDirectory("d");
    EXPECT_EQ(refusal([&] { service.undo(id, roots); }),
              "The moved file changed or is no longer available. Review it in Finder.");
}

} // namespace
} // namespace tovi
