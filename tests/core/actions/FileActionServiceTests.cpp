#include "tests/core/actions/ServiceFixture.h"

#include <fstream>

#include <sys/stat.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* outside =
    "Only files inside currently authorized folders can be changed. Symbolic links are excluded.";
constexpr const char* protectedPath =
    "System, application, hidden and Library paths are protected.";
constexpr const char* keptAndMoved = "A retained copy cannot also be moved to Trash.";

class PlanTest : public ServiceFixture {};

TEST_F(PlanTest, CountsItsFiles) {
    constexpr const char* count = "Select between 1 and 500 files to review.";
    EXPECT_EQ(refusal([&] { planTrash({}); }), count);
    tree.write("a", "1");
    const std::vector<FileRecord> many(501, record("a"));
    EXPECT_EQ(refusal([&] { service.plan(many, FileOperation::trash, {}, roots); }), count);
    EXPECT_EQ(refusal([&] {
                  service.plan(records({"a", "a"}), FileOperation::rename, "b", roots);
              }),
              "Rename one file at a time.");
    const ActionPlan plan = planTrash({"a", "a"});
    EXPECT_EQ(plan.items.size(), 1U);
    EXPECT_EQ(plan.title, "Move 1 file to Trash");
    EXPECT_EQ(plan.createdAt, now);
    tree.write("b", "2");
    EXPECT_EQ(planTrash({"b", "a", "b"}).title, "Move 2 files to Trash");
}

TEST_F(PlanTest, StaysInsideTheAuthorisedFoldersAndOutOfProtectedOnes) {
    test::TemporaryTree elsewhere;
    elsewhere.write("file", "1");
    tree.write("real/file", "1");
    tree.link("linked", "real");
    tree.link("link to file", "real/file");
    tree.link("out", elsewhere.path());
    tree.write(".hidden/file", "1");
    tree.write("a/.file", "1");
    tree.write("a/Library/file", "1");
    tree.makeDirectory("folder");
    struct Case {
        std::string path;
        const char* sentence;
    };
    const Case cases[] = {
        {elsewhere.path("file"), outside},
        {tree.path("out/file"), outside},
        {tree.path("../" + fs::path(elsewhere.path()).filename().string() + "/file"), outside},
        {tree.path("link to file"), outside},
        {tree.path() + "x/file", outside},
        {"relative", outside},
        {tree.path(".hidden/file"), protectedPath},
        {tree.path("a/.file"), protectedPath},
        {tree.path("a/Library/file"), protectedPath},
        {tree.path("folder"),
         "Only regular files can be changed. Folders and symlinks are protected."},
        {tree.path("missing"), "The file is unavailable or no longer a regular file."},
    };
    for (const Case& item : cases) {
        FileRecord file;
        file.path = item.path;
        EXPECT_EQ(refusal([&] {
                      service.plan({&file, 1}, FileOperation::trash, {}, roots);
                  }),
                  item.sentence)
            << item.path;
    }
    tree.write("bad\xff", "1");
    EXPECT_THAT(refusal([&] { planTrash({"bad\xff"}); }),
                StartsWith("The path is not valid UTF-8"));
    EXPECT_EQ(planTrash({"linked/file"}).items[0].sourcePath, tree.path("real/file"));
    EXPECT_EQ(planTrash({"linked/file", "real/file"}).items.size(), 1U);

    for (const char* root : {"/usr/", "/bin/"}) {
        FileRecord file;
        file.path = std::string(root) + "nothing";
        const std::string sentence = refusal([&] {
            service.plan({&file, 1}, FileOperation::trash, {}, {"/"});
        });
        EXPECT_EQ(sentence, protectedPath) << root;
    }
}

TEST_F(PlanTest, ReadsNothingThatIsNotLocal) {
    tree.write("cloud", "1");
    availability.away.insert(tree.path("cloud"));
    EXPECT_EQ(refusal([&] { planTrash({"cloud"}); }),
              "This file is not available locally. No content was read.");
}

TEST_F(PlanTest, ValidatesTheNewName) {
    tree.write("a", "1");
    tree.write("taken", "2");
    constexpr const char* invisible =
        "Use a visible filename without slashes, colons or control characters.";
    const std::pair<std::optional<std::string>, std::string> cases[] = {
        {std::nullopt, invisible},
        {" \n\t", invisible},
        {"a/b", invisible},
        {"a:b", invisible},
        {std::string("a\0b", 3), invisible},
        {".a", invisible},
        {"  .a", invisible},
        {std::string(256, 'a'), invisible},
        {"a\nb", "Filename contains a control character."},
        {"a\u202eb", "Filename contains a control character."},
        {"taken", "A file already exists at " + tree.path("taken") + ". Nothing was replaced."},
    };
    for (const auto& [name, sentence] : cases) {
        EXPECT_EQ(refusal([&] { planRename("a", name); }), sentence) << name.value_or("none");
    }
    const ActionPlan plan = planRename("a", "  new name.txt\n");
    EXPECT_EQ(plan.title, "Rename file");
    EXPECT_EQ(plan.items[0].destinationPath, tree.path("new name.txt"));
    EXPECT_EQ(planRename("a", std::string(255, 'a')).items.size(), 1U);
}

TEST_F(PlanTest, DemandsAVerifiedKeeperForEveryDuplicate) {
    tree.write("keep", "same");
    tree.write("copy", "same");
    tree.write("other", "different");
    FileRecord keeper = record("keep");
    EXPECT_EQ(refusal([&] {
                  planTrash({"copy"}, {&keeper, 1});
              }),
              "The copy chosen to keep changed since duplicate analysis. Scan again.");
    keeper.sha256 = planTrash({"keep"}).items[0].snapshot.digest;
    EXPECT_EQ(planTrash({"copy"}, {&keeper, 1}).retainedFiles.size(), 1U);
    EXPECT_EQ(refusal([&] { planTrash({"copy", "keep"}, {&keeper, 1}); }), keptAndMoved);
    EXPECT_EQ(refusal([&] {
                  planTrash({"other"}, {&keeper, 1});
              }),
              "No verified retained copy exists for this duplicate.");

    tree.link("alias", ".");
    EXPECT_EQ(refusal([&] { planTrash({"alias/keep"}, {&keeper, 1}); }), keptAndMoved);

    fs::create_hard_link(tree.path("keep"), tree.path("second name"));
    const ActionPlan linked = planTrash({"second name", "copy"}, {&keeper, 1});
    EXPECT_TRUE(freesNothing(linked.items[0], linked));
    EXPECT_FALSE(freesNothing(linked.items[1], linked));

    FileRecord stale = record("copy");
    stale.sha256 = std::string(64, '0');
    EXPECT_EQ(refusal([&] {
                  service.plan({&stale, 1}, FileOperation::trash, {}, roots);
              }),
              "This file changed since duplicate analysis. Scan again: " + stale.path);
}

TEST_F(PlanTest, HasOneReviewCodeForOneProposal) {
    tree.write("a", "1");
    tree.write("b", "2");
    const std::string code = reviewCode(planTrash({"a", "b"}));
    EXPECT_EQ(reviewCode(planTrash({"a", "b"})), code);
    EXPECT_NE(reviewCode(planTrash({"a"})), code);
    EXPECT_NE(reviewCode(planRename("a", "c")), reviewCode(planTrash({"a"})));
    tree.setModified("b", 1000);
    EXPECT_NE(reviewCode(planTrash({"a", "b"})), code);
}

class ExecuteTest : public ServiceFixture {};

TEST_F(ExecuteTest, MovesToTheTrashAndRenamesOnce) {
    tree.write("a", "first");
    tree.write("b", "second");
    const ActionPlan plan = planTrash({"b", "a"});
    EXPECT_EQ(refusal([&] { service.execute(plan, Uuid::random(), roots); }),
              "This exact plan must be confirmed before execution.");
    const ActionReceipt receipt = execute(plan);
    EXPECT_EQ(receipt.id, plan.id);
    EXPECT_FALSE(receipt.error);
    ASSERT_EQ(receipt.entries.size(), 2U);
    EXPECT_EQ(receipt.entries[0].originalPath, tree.path("b"));
    EXPECT_EQ(readFile(receipt.entries[0].currentPath), "second");
    EXPECT_TRUE(fs::is_empty(tree.path()));
    EXPECT_EQ(refusal([&] { execute(plan); }), "This plan has already been executed.");
    EXPECT_FALSE(fs::exists(journal() + ".intent"));

    tree.write("old", "third");
    execute(planRename("old", "new"));
    EXPECT_EQ(readFile(tree.path("new")), "third");
    const auto history = makeService().history();
    ASSERT_EQ(history.size(), 2U);
    EXPECT_EQ(history[0].title, "Rename file");
    EXPECT_EQ(history[1].entries.size(), 2U);
}

TEST_F(ExecuteTest, ExpiresAfterFifteenMinutes) {
    tree.write("a", "1");
    const ActionPlan plan = planTrash({"a"});
    for (const double age : {900.0, 5000.0, -1.0}) {
        now = plan.createdAt + age;
        EXPECT_EQ(refusal([&] { execute(plan); }), "The plan expired. Review a fresh plan.") << age;
    }
    now = plan.createdAt + 899.0;
    EXPECT_FALSE(execute(plan).error);
}

TEST_F(ExecuteTest, RefusesWhatChangedSinceTheReview) {
    const std::function<void()> changes[] = {
        [&] { tree.write("d/a", "longer"); },
        [&] { tree.write("d/a", "2"), tree.setModified("d/a", 1000); },
        [&] { tree.setModified("d/a", 2000); },
        [&] {
            fs::rename(tree.path("d/a"), tree.path("d/old"));
            tree.write("d/a", "1"), tree.setModified("d/a", 1000);
        },
    };
    for (const auto& change : changes) {
        tree.write("d/a", "1");
        tree.setModified("d/a", 1000);
        tree.write("first", "1");
        const ActionPlan plan = planTrash({"first", "d/a"});
        change();
        EXPECT_EQ(refusal([&] { execute(plan); }),
                  "File changed since review: " + tree.path("d/a") + ". Create a fresh plan.");
        EXPECT_TRUE(fs::exists(tree.path("first")))
            << "everything is checked before anything moves";
    }
    EXPECT_TRUE(service.history().empty());
}

TEST_F(ExecuteTest, RefusesAFolderSwappedForALinkAndATakenName) {
    tree.write("d/a", "1");
    const ActionPlan plan = planTrash({"d/a"});
    const ActionPlan rename = planRename("d/a", "b");
    tree.write("d/b", "taken");
    EXPECT_EQ(refusal([&] { execute(rename); }), "Rename destination changed or already exists.");
    fs::rename(tree.path("d"), tree.path("moved"));
    tree.link("d", "moved");
    EXPECT_EQ(refusal([&] { execute(plan); }), outside);
    EXPECT_EQ(readFile(tree.path("moved/a")), "1");
    EXPECT_EQ(readFile(tree.path("moved/b")), "taken");
    EXPECT_EQ(refusal([&] { service.execute(plan, plan.id, {}); }), outside);
}

TEST_F(ExecuteTest, StopsAtTheFirstFailureAndKeepsWhatIsDone) {
    for (const char* name : {"a", "b", "c", "d", "e"})
        tree.write(name, name);
    trash.before = [&](const std::string& path) {
        if (path == tree.path("c")) throw platform::TrashError("The Trash is full.");
    };
    const ActionReceipt receipt = execute(planTrash({"a", "b", "c", "d", "e"}));
    EXPECT_EQ(receipt.entries.size(), 2U);
    EXPECT_EQ(receipt.error, "Stopped after 2 completed file actions: The Trash is full.");
    for (const char* name : {"c", "d", "e"})
        EXPECT_EQ(readFile(tree.path(name)), name);
    EXPECT_EQ(service.history()[0].error, receipt.error);
}

TEST_F(ExecuteTest, WatchesTheKeepersDuringTheRun) {
    for (const char* name : {"keep", "copy 1", "copy 2"})
        tree.write(name, "same");
    tree.write("other keeper", "else");
    tree.write("other copy", "else");
    std::vector<FileRecord> keepers = records({"keep", "other keeper"});
    for (FileRecord& keeper : keepers) {
        keeper.sha256 =
            service.plan({&keeper, 1}, FileOperation::trash, {}, roots).items[0].snapshot.digest;
    }
    const auto touch = [&] {
        fs::last_write_time(tree.path("keep"), fs::file_time_type::clock::now());
    };
    // The date says nothing of this, and the next file is a copy of another keeper.
    const auto rewrite = [&] {
        const auto date = fs::last_write_time(tree.path("other keeper"));
        tree.write("other keeper", "EVIL");
        fs::last_write_time(tree.path("other keeper"), date);
    };
    for (const auto& damage : std::vector<std::function<void()>>{touch, rewrite}) {
        for (const char* name : {"copy 1", "copy 2"})
            tree.write(name, "same");
        const ActionPlan plan = planTrash({"copy 1", "copy 2", "other copy"}, keepers);
        trash.before = [&](const std::string&) { damage(); };
        const ActionReceipt receipt = execute(plan);
        EXPECT_EQ(receipt.error,
                  "Stopped after 1 completed file actions: The retained copy changed or "
                  "disappeared. No further duplicates will be moved.");
        EXPECT_EQ(readFile(tree.path("copy 2")), "same");
        EXPECT_TRUE(fs::exists(tree.path("keep")));
    }
}

TEST_F(ExecuteTest, PutsBackAFileThatTookTheReviewedOnesPlace) {
    tree.write("a", "reviewed");
    trash.before = [&](const std::string&) {
        fs::rename(tree.path("a"), tree.path("away"));
        tree.write("a", "an impostor");
    };
    const ActionReceipt receipt = execute(planTrash({"a"}));
    EXPECT_THAT(receipt.error.value_or(""),
                StartsWith("Stopped after 0 completed file actions: File changed since review: "));
    EXPECT_EQ(readFile(tree.path("a")), "an impostor");
    EXPECT_EQ(readFile(tree.path("away")), "reviewed");
}

TEST_F(ExecuteTest, NeverReplacesAFileThatAppearsInTheLastMoment) {
    tree.write("a", "1");
    move.before = [&](const std::string&, const std::string& to) {
        std::ofstream(to) << "appeared";
    };
    const ActionReceipt receipt = execute(planRename("a", "b"));
    EXPECT_EQ(receipt.error, "Stopped after 0 completed file actions: Rename destination changed "
                             "or already exists.");
    EXPECT_EQ(readFile(tree.path("a")), "1");
    EXPECT_EQ(readFile(tree.path("b")), "appeared");
}

TEST_F(ExecuteTest, RecordsAMoveThatCouldNotBeSynced) {
    tree.write("a", "1");
    tree.write("b", "2");
    trash.syncError = std::make_error_code(std::errc::io_error);
    const ActionReceipt receipt = execute(planTrash({"a", "b"}));
    EXPECT_EQ(receipt.entries.size(), 1U);
    EXPECT_THAT(receipt.error.value_or(""), HasSubstr("could not be written to the disk"));
    EXPECT_TRUE(fs::exists(tree.path("b")));
}

} // namespace
} // namespace tovi
