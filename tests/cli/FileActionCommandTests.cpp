#include "core/files/ProcessLock.h"
#include "tests/support/Environment.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using test::ProgramResult;
using test::readFile;
using test::TemporaryTree;
using testing::HasSubstr;
using testing::Not;

class FileActionCommandTest : public testing::Test {
  protected:
    void index() const { ASSERT_EQ(run({"index", tree.path()}).exitCode, 0); }

    ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--data-dir", data.path("library")});
        return test::runProgram(TOVICTL, arguments);
    }
    Json json(std::vector<std::string> arguments, int exitCode) const {
        arguments.emplace_back("--json");
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << result.errors;
        return Json::parse(result.output, nullptr, false);
    }
    /// Reviews, confirms and returns the receipt.
    Json doIt(std::vector<std::string> arguments) const {
        const Json review = json(arguments, 3);
        arguments.insert(arguments.end(), {"--confirm", review["reviewCode"].get<std::string>()});
        return json(arguments, 0)["receipt"];
    }
    static std::string shell(const std::string& command) {
        return test::runProgram("/bin/sh", {"-c", command}).output;
    }

    TemporaryTree tree;
    TemporaryTree data;
    test::EnvironmentVariable home{"XDG_DATA_HOME", data.path("share")};
};

TEST_F(FileActionCommandTest, ChangesNothingBeforeThePlanIsConfirmed) {
    tree.write("a.txt", "1");
    tree.write("b.txt", "2");
    index();
    const Json review = json({"trash", tree.path("a.txt"), tree.path("b.txt")}, 3);
    EXPECT_EQ(review["plan"]["title"], "Move 2 files to Trash");
    EXPECT_TRUE(fs::exists(tree.path("a.txt")));
    const std::string code = review["reviewCode"];
    tree.write("b.txt", "changed");
    json({"trash", tree.path("a.txt"), tree.path("b.txt"), "--confirm", code}, 3);
    EXPECT_TRUE(fs::exists(tree.path("a.txt"))) << "the code is of another plan";

    const Json receipt = doIt({"trash", tree.path("a.txt"), tree.path("b.txt")});
    EXPECT_TRUE(fs::is_empty(tree.path()));
    EXPECT_TRUE(json({"search", "txt"}, 0)["files"].empty());
    EXPECT_EQ(json({"history"}, 0)["receipts"][0], receipt);
    EXPECT_EQ(json({"undo", receipt["id"]}, 0)["receipt"]["undone"], true);
    EXPECT_EQ(readFile(tree.path("b.txt")), "changed");
    EXPECT_EQ(run({"undo", receipt["id"]}).errors,
              "This action has no completed files to restore.\n");

    doIt({"rename", tree.path("a.txt"), "c.txt"});
    EXPECT_EQ(readFile(tree.path("c.txt")), "1");
    EXPECT_TRUE(json({"search", "txt"}, 0)["files"].empty())
        << "what was restored waits for a scan";
    index();
    doIt({"rename", tree.path("c.txt"), "d.txt"});
    const Json found = json({"search", "txt"}, 0)["files"];
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0]["path"].get<std::string>() + found[1]["path"].get<std::string>(),
              tree.path("b.txt") + tree.path("d.txt"));
    {
        const auto running = ProcessLock::tryTake(data.path("library/library.lock"));
        ASSERT_TRUE(running);
        doIt({"trash", tree.path("d.txt")});
        EXPECT_EQ(json({"search", "txt"}, 0)["files"].size(), 2U) << "the application follows";
    }
    const ProgramResult outside = run({"trash", data.path("library/index.sqlite")});
    EXPECT_EQ(outside.exitCode, 1);
    EXPECT_THAT(outside.errors, HasSubstr("Only files inside currently authorized folders"));
}

TEST_F(FileActionCommandTest, FindsDuplicatesAndKeepsTheChosenCopies) {
    for (const char* name : {"a.txt", "b/long name.txt", "keep/c.txt", "keep/d.txt"})
        tree.write(name, "same");
    tree.write("other.md", "else");
    tree.setModified("a.txt", 2000);
    tree.setModified("b/long name.txt", 3000);
    tree.setModified("keep/c.txt", 1000);
    tree.setModified("keep/d.txt", 2000);
    index();
    const Json groups = json({"duplicates"}, 0)["groups"];
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0]["files"].size(), 4U);
    EXPECT_EQ(groups[0]["reclaimableBytes"], 12);
    EXPECT_TRUE(json({"duplicates", "pdfs"}, 0)["groups"].empty());

    const std::pair<std::string, std::vector<const char*>> rules[] = {
        {"newest", {"b/long name.txt"}},
        {"oldest", {"keep/c.txt"}},
        {"shortest-path", {"a.txt"}},
        {tree.path("keep"), {"keep/c.txt", "keep/d.txt"}},
    };
    for (const auto& [rule, kept] : rules) {
        const Json plan = json({"duplicates", "--trash", "--keep", rule}, 3)["plan"];
        ASSERT_EQ(plan["retainedFiles"].size(), kept.size()) << rule;
        for (std::size_t i = 0; i < kept.size(); ++i)
            EXPECT_EQ(plan["retainedFiles"][i]["path"], tree.path(kept[i])) << rule;
        EXPECT_EQ(plan["items"].size(), 4 - kept.size());
    }
    EXPECT_EQ(doIt({"duplicates", "--trash", "--keep", "newest"})["entries"].size(), 3U);
    EXPECT_TRUE(json({"duplicates"}, 0)["groups"].empty());
}

TEST_F(FileActionCommandTest, MovesAllButTheBestOfLookAlikePhotos) {
    const std::string fixtures = std::string(TOVI_TEST_DATA) + "/decoder/";
    const std::string scan = readFile(fixtures + "scan.png");
    tree.write("photos/older.png", scan);
    tree.write("photos/scan.heic", readFile(fixtures + "scan.heic"));
    tree.write("photos/screenshot.png", readFile(fixtures + "screenshot.png"));
    tree.write("elsewhere/newer.png", scan);
    tree.write("photos/words.jpg", "words");
    tree.write("photos/paper.jpg", readFile(fixtures + "user-password.pdf"));
    const std::string halves = readFile(fixtures + "lying-thumbnail.heic");
    for (const char* name : {"photos/1.heic", "photos/2.heic", "photos/3.heic"})
        tree.write(name, halves);
    tree.setModified("photos/2.heic", 1000);
    tree.setModified("photos/older.png", 1);
    index();
    const Json report = json({"photos"}, 3); // two of them cannot be read
    EXPECT_EQ(report["considered"], 9);
    EXPECT_EQ(report["skipped"], 2);
    ASSERT_EQ(report["groups"].size(), 2U);
    const Json& photos = report["groups"][0];
    EXPECT_EQ(photos["keep"], tree.path("photos/2.heic"));
    EXPECT_FALSE(photos["looksLikeText"]);
    const Json& pages = report["groups"][1];
    EXPECT_EQ(pages["files"].size(), 3U);
    EXPECT_EQ(pages["files"][0]["width"], 1240);
    EXPECT_TRUE(pages["looksLikeText"] && pages["keep"].is_null());

    fs::remove(tree.path("photos/words.jpg"));
    fs::remove(tree.path("photos/paper.jpg"));
    index();
    const Json receipt = doIt({"photos", "--trash"});
    EXPECT_EQ(receipt["entries"].size(), 2U) << "no page of text is proposed";
    EXPECT_EQ(json({"photos", tree.path("photos")}, 0)["groups"].size(), 1U)
        << "the index knows what was moved";
    EXPECT_EQ(run({"undo", receipt["id"].get<std::string>()}).exitCode, 0);
    EXPECT_EQ(readFile(tree.path("photos/3.heic")), halves);
    EXPECT_EQ(run({"photos", data.path()}).exitCode, 1);

    const std::string thumbnail = data.path("thumbnail.png");
    const std::string photo = tree.path("photos/scan.heic");
    EXPECT_EQ(json({"thumbnail", photo, thumbnail, "--pixels", "100"}, 0)["width"], 100);
    const std::string png = readFile(thumbnail);
    EXPECT_EQ(png.substr(0, 4), "\x89PNG");
    EXPECT_EQ(run({"thumbnail", photo, thumbnail}).exitCode, 1) << "nothing is replaced";
    EXPECT_EQ(readFile(thumbnail), png);
}

class TrashInteroperability : public FileActionCommandTest {
  protected:
    void SetUp() override {
        tree.write("folder/a b%.txt", "ours");
        index();
        receipt = doIt({"trash", tree.path("folder/a b%.txt")});
        tree.write("folder/theirs.txt", "theirs");
    }
    void expectUndoNoticesTheRestoredFile() const {
        EXPECT_EQ(readFile(tree.path("folder/a b%.txt")), "ours");
        const ProgramResult undone = run({"undo", receipt["id"].get<std::string>()});
        EXPECT_EQ(undone.exitCode, 1);
        EXPECT_EQ(undone.errors,
                  "Restore stopped: " + tree.path("folder/a b%.txt") + " already exists.\n");
    }
    static bool has(const char* program) {
        return !shell(std::string("command -v ") + program).empty();
    }

    Json receipt;
};

TEST_F(TrashInteroperability, TrashCliListsAndRestoresOurs) {
    if (!has("trash-restore")) GTEST_SKIP() << "trash-cli is not installed";
    EXPECT_THAT(shell("trash-list"), HasSubstr(" " + tree.path("folder/a b%.txt") + "\n"));
    shell("trash-put '" + tree.path("folder/theirs.txt") + "'");
    EXPECT_THAT(shell("trash-list"), HasSubstr(tree.path("folder/theirs.txt")));
    shell("echo 0 | trash-restore '" + tree.path("folder/a b%.txt") + "'");
    expectUndoNoticesTheRestoredFile();
    EXPECT_THAT(shell("trash-list"), HasSubstr(tree.path("folder/theirs.txt")));
}

TEST_F(TrashInteroperability, GioListsAndRestoresOursAndKeepsItsOwn) {
    if (!has("gio") || !has("dbus-run-session")) GTEST_SKIP() << "gio has no session here";
    fs::create_directory(data.path("run"));
    fs::permissions(data.path("run"), fs::perms::owner_all);
    const test::EnvironmentVariable runtime("XDG_RUNTIME_DIR", data.path("run"));
    shell("gio trash '" + tree.path("folder/theirs.txt") + "'");
    const std::string listed = shell("dbus-run-session -- gio trash --list");
    if (listed.empty()) GTEST_SKIP() << "gio cannot list a Trash here";
    EXPECT_THAT(listed, HasSubstr("\t" + tree.path("folder/a b%.txt") + "\n"));
    EXPECT_THAT(listed, HasSubstr("\t" + tree.path("folder/theirs.txt") + "\n"));

    EXPECT_EQ(run({"undo", receipt["id"].get<std::string>()}).exitCode, 0);
    EXPECT_EQ(readFile(data.path("share/Trash/files/theirs.txt")), "theirs");
    EXPECT_THAT(shell("dbus-run-session -- gio trash --list"), Not(HasSubstr("a b%.txt")));
    receipt = doIt({"trash", tree.path("folder/a b%.txt")});
    shell("dbus-run-session -- gio trash --restore 'trash:///a%20b%25.txt'");
    expectUndoNoticesTheRestoredFile();
}

} // namespace
} // namespace tovi
