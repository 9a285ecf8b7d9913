#include "core/cleanup/CleanupTrashService.h"
#include "tests/core/cleanup/CleanupFixture.h"
#include "tests/support/FileMoveFakes.h"

#include <fstream>

#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;
using test::readFile;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
namespace fs = std::filesystem;

class FakePrograms final : public platform::RunningPrograms {
  public:
    bool use(const std::string& directory) const override { return used == directory; }
    std::string used;
};

class CleanupTrashServiceTest : public CleanupFixture {
  protected:
    void SetUp() override {
        for (const char* name : {"a.dmg", "b.dmg", "c.dmg"})
            writeAged(name, 100, name);
    }
    CleanupTrashService makeService() {
        return CleanupTrashService(
            journal(), request().folders, request().excludedPaths,
            {trash, move, bookmarks, availability, programs, metadata, [this] { return now; }});
    }
    std::string journal() const { return data.path("private/cleanup-actions.json"); }

    std::vector<CleanupCandidate> candidates() const { return scan(request()).candidates; }
    CleanupPlan prepare() { return service.prepare(candidates(), roots); }
    CleanupReceipt execute(const CleanupPlan& plan) {
        return service.execute(plan, plan.id, roots);
    }
    template <typename Work>
    static std::string refusal(Work work) {
        try {
            work();
        } catch (const CleanupActionError& error) {
            return error.what();
        }
        return "";
    }

    std::vector<std::string> roots{tree.path()};
    test::FakeTrash trash{data.path("trash")};
    test::FakeExclusiveMove move;
    test::FakeBookmarks bookmarks;
    FakePrograms programs;
    CleanupTrashService service = makeService();
};

TEST_F(CleanupTrashServiceTest, MovesWhatWasReviewedAndTakesItBack) {
    const std::string app = writeApp("Old.app", infoList("org.example.old"));
    const CleanupPlan plan = prepare();
    EXPECT_EQ(plan.title, "Move 4 items to Trash");
    const CleanupReceipt receipt = execute(plan);
    EXPECT_FALSE(receipt.error) << *receipt.error;
    ASSERT_EQ(receipt.entries.size(), 4U);
    EXPECT_TRUE(fs::is_empty(tree.path()));
    const Json written = Json::parse(readFile(journal()))[0];
    EXPECT_EQ(written, toJson(receipt));
    EXPECT_EQ(toJson(cleanupReceiptFromJson(written)), written);
    EXPECT_EQ(fs::status(journal()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(refusal([&] { execute(plan); }),
              "This cleanup plan has already been attempted. Review a fresh plan.");

    tree.write("b.dmg", "in the way");
    EXPECT_THAT(refusal([&] { service.undo(plan.id); }), EndsWith("b.dmg already exists."));
    fs::remove(tree.path("b.dmg"));
    EXPECT_TRUE(service.undo(plan.id).undone);
    for (const char* name : {"a.dmg", "b.dmg", "c.dmg"})
        EXPECT_EQ(readFile(tree.path(name)), name);
    EXPECT_EQ(readFile(app + "/Contents/MacOS/run"), "1234567890");
    EXPECT_FALSE(fs::exists(journal() + ".intent"));
    EXPECT_TRUE(makeService().history().at(0).undone);
}

TEST_F(CleanupTrashServiceTest, RefusesWhatWasNotReviewedExactlySo) {
    const auto all = candidates();
    EXPECT_EQ(refusal([&] { service.prepare({}, roots); }),
              "Select between 1 and 200 items for each cleanup review.");
    EXPECT_NE(refusal([&] { service.prepare(std::vector(201, all[0]), roots); }), "");
    EXPECT_EQ(service.prepare(std::vector(200, all[0]), roots).title, "Move 1 item to Trash");
    EXPECT_EQ(refusal([&] { service.prepare(all, {tree.path("gone")}); }),
              "Reconnect an approved folder before reviewing cleanup.");
    const std::string ineligible = "A selected file changed or is no longer eligible. Scan again: ";
    EXPECT_EQ(refusal([&] { service.prepare(all, {data.path()}); }), ineligible + all[0].path);
    auto forged = all;
    tree.write("plain.txt", "1");
    forged[0].path = tree.path("plain.txt");
    forged[0].identity = CleanupFileIdentity::read(forged[0].path);
    EXPECT_EQ(refusal([&] { service.prepare(forged, roots); }), ineligible + forged[0].path);

    const std::string unconfirmed =
        "Review and confirm this exact cleanup plan before moving files.";
    CleanupPlan plan = prepare();
    EXPECT_EQ(refusal([&] { service.execute(plan, Uuid::random(), roots); }), unconfirmed);
    CleanupPlan altered = plan;
    altered.items.pop_back();
    EXPECT_EQ(refusal([&] { execute(altered); }), unconfirmed);
    prepare();
    EXPECT_EQ(refusal([&] { execute(plan); }), unconfirmed) << "another plan is under review";
    for (const double wait : {900.0, -0.5}) {
        plan = prepare();
        now = now + wait;
        EXPECT_EQ(refusal([&] { execute(plan); }),
                  "The cleanup review expired. Review a fresh plan.");
    }
    plan = prepare();
    EXPECT_EQ(refusal([&] {
                  service.execute(plan, plan.id, {tree.path(), data.path()});
              }),
              "The authorized scan locations changed. Review a fresh cleanup plan.");
    EXPECT_TRUE(service.history().empty());
    EXPECT_EQ(candidates().size(), 3U);
}

TEST_F(CleanupTrashServiceTest, StopsAtTheFirstItemThatChanged) {
    const auto errorAfter = [&](const std::function<void()>& change) {
        const CleanupPlan plan = prepare();
        change();
        const CleanupReceipt receipt = execute(plan);
        EXPECT_TRUE(receipt.entries.empty());
        trash.before = [](auto&) {};
        return receipt.error.value_or("");
    };
    EXPECT_EQ(errorAfter([&] { writeAged("a.dmg", 100, "A.dmg"); }),
              "A selected file changed or is no longer eligible. No further files will be moved: " +
                  tree.path("a.dmg"));
    EXPECT_THAT(errorAfter([&] {
                    fs::remove(tree.path("a.dmg"));
                    tree.link("a.dmg", tree.path("b.dmg"));
                }),
                HasSubstr("no longer eligible"));
    fs::remove(tree.path("a.dmg"));
    EXPECT_EQ(errorAfter([&] {
                  trash.before = [&](const std::string& path) {
                      fs::rename(path, tree.path("aside"));
                      tree.write("b.dmg", "another");
                  };
              }),
              "A selected file changed before it could be moved: " + tree.path("b.dmg"));
    EXPECT_EQ(readFile(tree.path("b.dmg")), "another") << "it went back";
    fs::remove(tree.path("b.dmg"));

    const std::string app = writeApp("C.app", infoList("org.example.c"));
    const std::string added = app + "/Contents/MacOS/added";
    EXPECT_EQ(errorAfter([&] { std::ofstream(added) << "1"; }),
              "The app changed during review. Refresh and try again.");
    EXPECT_EQ(errorAfter([&] { programs.used = app; }),
              "This app is running or changed since review. Nothing else will be moved.");
    EXPECT_EQ(errorAfter([&] { fs::create_symlink("x", app + "/Contents/link"); }).substr(0, 37),
              "This app contains linked components. ");
    fs::remove_all(app);
    writeAged("d.dmg", 100, "d");
    CleanupPlan plan = prepare();
    trash.before = [&](const std::string& path) {
        if (path == tree.path("d.dmg")) throw platform::TrashError("No room.");
    };
    const CleanupReceipt receipt = execute(plan);
    EXPECT_EQ(receipt.entries.size(), 1U) << "the larger one comes first";
    EXPECT_EQ(receipt.error, "No room. Use Finder Trash to restore moved files.");
    EXPECT_EQ(service.history()[0].error, receipt.error);
}

TEST_F(CleanupTrashServiceTest, MovesNothingWithoutAWholeHistory) {
    const CleanupPlan plan = prepare();
    for (const char* damaged : {"[{", "{}", "[{\"id\":1}]"}) {
        std::ofstream(journal()) << damaged;
        CleanupTrashService other = makeService();
        for (const std::string& told :
             {refusal([&] { execute(plan); }), refusal([&] { other.history(); })}) {
            EXPECT_EQ(told, "The cleanup history is unavailable. No files were changed.");
        }
        EXPECT_EQ(readFile(journal()), damaged);
    }
    const std::string storageLimit = "Cleanup history could not be saved. Nothing was moved: "
                                     "Cleanup history has reached its storage limit. Preserve the "
                                     "history before starting another cleanup.";
    CleanupReceipt old{Uuid::random(), std::string(33'554'432, 'x'), now, "/", {}, {}, false, {}};
    std::ofstream(journal()) << Json::array({toJson(old)}).dump();
    EXPECT_EQ(refusal([&] { execute(plan); }), storageLimit);
    old.title.resize(33'550'000); // room for the empty receipt, not for what the run would add
    std::ofstream(journal()) << Json::array({toJson(old)}).dump();
    EXPECT_EQ(refusal([&] { execute(plan); }), storageLimit);
    fs::remove(journal());
    fs::create_directories(journal() + "/in the way");
    EXPECT_NE(refusal([&] { execute(plan); }), "");
    EXPECT_EQ(candidates().size(), 3U);
}

TEST_F(CleanupTrashServiceTest, CompletesAReceiptThatACrashCutOff) {
    struct Crash {};
    const CleanupPlan plan = prepare();
    trash.before = [&](const std::string& path) {
        if (path != tree.path("b.dmg")) return;
        fs::rename(path, data.path("trash/2-b.dmg"));
        fs::copy(data.path("private"), data.path("kept"));
        throw Crash{};
    };
    EXPECT_THROW(execute(plan), Crash);
    fs::remove_all(data.path("private"));
    fs::rename(data.path("kept"), data.path("private"));
    const CleanupReceipt receipt = makeService().history().at(0);
    ASSERT_EQ(receipt.entries.size(), 2U);
    EXPECT_THAT(*receipt.error, StartsWith("The program was interrupted."));
    EXPECT_TRUE(makeService().undo(plan.id).undone);
    EXPECT_EQ(candidates().size(), 3U);
}

TEST(RunningProgramsTest, SeeFilesInUseBelowAFolder) {
    const test::TemporaryTree tree;
    const platform::SystemRunningPrograms programs;
    EXPECT_FALSE(programs.use(tree.path()));
    const std::string folder = fs::canonical(tree.makeDirectory("A.app/MacOS"));
    // The shell says that it stands there by making a file, and waits for its end.
    FILE* shell = ::popen(("cd '" + folder + "' && exec cat > out").c_str(), "w");
    ASSERT_NE(shell, nullptr);
    while (!fs::exists(folder + "/out")) {
    }
    EXPECT_TRUE(programs.use(fs::canonical(tree.path("A.app"))));
    EXPECT_FALSE(programs.use(fs::canonical(tree.path("A.app")).string() + "/Mac"));
    ::pclose(shell);
    EXPECT_FALSE(programs.use(fs::canonical(tree.path("A.app"))));
}

} // namespace
} // namespace tovi
