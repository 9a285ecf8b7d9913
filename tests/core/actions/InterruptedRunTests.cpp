#include "core/actions/ActionLog.h"
#include "tests/core/actions/ServiceFixture.h"

namespace tovi {
namespace {

namespace fs = std::filesystem;
using test::readFile;

/// Ends an operation as a crash would: neither an error nor anything the service handles.
struct Crash {};

class InterruptedRunTest : public ServiceFixture {
  protected:
    void SetUp() override {
        for (const char* name : {"a", "b", "c"})
            tree.write(name, name);
    }

    /// Leaves the log and the note of the step as they are when the process dies in `crash`.
    template <typename Operation>
    void die(Operation operation) {
        // The copy is what the disk holds at that moment; the service's own ending is undone.
        EXPECT_THROW(operation(), Crash);
        fs::copy_file(data.path("log"), journal(), fs::copy_options::overwrite_existing);
        fs::copy_file(data.path("intent"), journal() + ".intent",
                      fs::copy_options::overwrite_existing);
    }
    void keepDisk() const {
        fs::copy_file(journal(), data.path("log"), fs::copy_options::overwrite_existing);
        fs::copy_file(journal() + ".intent", data.path("intent"),
                      fs::copy_options::overwrite_existing);
    }
    ActionReceipt recovered() { return makeService().history().at(0); }
};

TEST_F(InterruptedRunTest, AStepThatWasNotMadeIsNotRecorded) {
    trash.before = [&](const std::string& path) {
        if (path != tree.path("b")) return;
        keepDisk();
        throw Crash{};
    };
    die([&] { execute(planTrash({"a", "b", "c"})); });
    const ActionReceipt receipt = recovered();
    EXPECT_EQ(receipt.entries.size(), 1U);
    EXPECT_EQ(receipt.error,
              "Stopped after 1 completed file actions: The program was interrupted.");
    EXPECT_FALSE(fs::exists(journal() + ".intent"));
    EXPECT_TRUE(service.undo(receipt.id, roots).undone);
}

TEST_F(InterruptedRunTest, AStepThatWasMadeIsRecordedAndCanBeUndone) {
    trash.before = [&](const std::string& path) {
        if (path != tree.path("c")) return;
        keepDisk();
        fs::rename(path, data.path("trash/3-c"));
        throw Crash{};
    };
    die([&] { execute(planTrash({"a", "b", "c"})); });
    const ActionReceipt receipt = recovered();
    ASSERT_EQ(receipt.entries.size(), 3U);
    EXPECT_FALSE(receipt.error) << "nothing was left to do";
    EXPECT_EQ(receipt.entries[2].currentPath, data.path("trash/3-c"));
    EXPECT_TRUE(service.undo(receipt.id, roots).undone);
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(readFile(tree.path(name)), name);
}

TEST_F(InterruptedRunTest, AFileLeftWithBothNamesKeepsTheNewOne) {
    move.before = [&](const std::string& from, const std::string& to) {
        keepDisk();
        fs::create_hard_link(from, to);
        throw Crash{};
    };
    die([&] { execute(planRename("a", "renamed")); });
    EXPECT_EQ(recovered().entries.size(), 1U);
    EXPECT_FALSE(fs::exists(tree.path("a")));
    EXPECT_EQ(readFile(tree.path("renamed")), "a");
}

TEST_F(InterruptedRunTest, AFileFoundNowhereIsSaid) {
    trash.before = [&](const std::string& path) {
        keepDisk();
        fs::rename(path, tree.path("taken away"));
        throw Crash{};
    };
    die([&] { execute(planTrash({"a"})); });
    const ActionReceipt receipt = recovered();
    EXPECT_TRUE(receipt.entries.empty());
    EXPECT_THAT(receipt.error.value_or(""), testing::HasSubstr("The file is neither at "));
}

TEST_F(InterruptedRunTest, ARestoredFileIsMarked) {
    const Uuid id = execute(planTrash({"a", "b"})).id;
    move.before = [&](const std::string& from, const std::string& to) {
        keepDisk();
        fs::rename(from, to);
        throw Crash{};
    };
    die([&] { service.undo(id, roots); });
    const ActionReceipt receipt = recovered();
    EXPECT_TRUE(receipt.entries[1].restored);
    EXPECT_FALSE(receipt.entries[0].restored || receipt.undone);
    EXPECT_FALSE(trash.hasNote(receipt.entries[1].currentPath));
    move.before = [](auto&, auto&) {};
    EXPECT_TRUE(service.undo(id, roots).undone);
}

} // namespace
} // namespace tovi
