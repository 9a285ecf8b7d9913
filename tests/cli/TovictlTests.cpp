#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sqlite3.h>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;
using test::ProgramResult;
using test::TemporaryTree;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class TovictlTest : public testing::Test {
  protected:
    ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--data-dir", data.path("library")});
        return test::runProgram(TOVICTL, arguments);
    }

    Json json(std::vector<std::string> arguments, int exitCode = 0) const {
        arguments.emplace_back("--json");
        const ProgramResult result = run(std::move(arguments));
        EXPECT_EQ(result.exitCode, exitCode) << result.errors;
        return Json::parse(result.output, nullptr, false);
    }

    std::vector<std::string> namesFound(const std::string& phrase) const {
        std::vector<std::string> names;
        const Json answer = json({"search", phrase});
        for (const Json& file : answer["files"]) {
            names.push_back(file["name"].get<std::string>());
        }
        return names;
    }

    static std::vector<std::string> keys(const Json& object) {
        std::vector<std::string> names;
        for (const auto& [key, value] : object.items())
            names.push_back(key);
        return names;
    }

    std::string indexPath() const { return data.path("library/index.sqlite"); }

    TemporaryTree tree;
    TemporaryTree data;
};

TEST_F(TovictlTest, IndexesAFolderAndAnswersAPhrase) {
    tree.write("report.md", "The quarterly figures");
    tree.write("code.c", "quarterly");
    const Json report = json({"index", tree.path()})["reports"][0];
    EXPECT_EQ(report["root"], tree.path());
    EXPECT_EQ(report["indexed"], 2);
    EXPECT_EQ(report["statuses"]["Metadata only — source content disabled"], 1);

    const Json answer = json({"search", "documents", "about", "quarterly", "from", "today"});
    EXPECT_THAT(keys(answer["query"]),
                ElementsAre("text", "kind", "modifiedAfter", "modifiedBefore", "minimumSize",
                            "source", "chips", "screenshotsOnly"));
    EXPECT_EQ(answer["query"]["chips"],
              Json({"Type: Document", "Modified: today", "Text: quarterly"}));
    ASSERT_EQ(answer["files"].size(), 1U);
    EXPECT_THAT(keys(answer["files"][0]),
                ElementsAre("path", "name", "kind", "size", "createdAt", "modifiedAt", "indexedAt",
                            "contentStatus", "sourceURL", "downloadedAt", "sha256", "rootPath"));
    EXPECT_EQ(answer["files"][0]["path"], tree.path("report.md"));

    EXPECT_EQ(json({"index", "--code", tree.path()})["reports"][0]["indexed"], 1);
    EXPECT_THAT(namesFound("quarterly"), testing::SizeIs(2));
    EXPECT_THAT(run({"search", "quarterly"}).output, HasSubstr(tree.path("report.md")));
}

TEST_F(TovictlTest, ShowsAFileAndTheState) {
    tree.write("a.txt", "one\x1b[31mtwo\n");
    tree.write("broken.pdf", "not a pdf");
    run({"index", tree.path()});
    const Json record = json({"show", tree.path("sub/../a.txt")});
    EXPECT_EQ(record["content"], "one\x1b[31mtwo\n");
    EXPECT_EQ(record["contentStatus"], "Text indexed");
    EXPECT_THAT(run({"show", tree.path("a.txt")}).output, HasSubstr("\none\\x1b[31mtwo\n"));
    const ProgramResult missing = run({"show", tree.path("none")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.errors, "This file is not in the index: " + tree.path("none") + "\n");

    const Json status = json({"status"});
    EXPECT_EQ(status["files"], 2);
    EXPECT_EQ(status["kinds"], Json({{"pdf", 1}, {"document", 1}}));
    EXPECT_EQ(status["roots"][0]["path"], tree.path());
    EXPECT_EQ(status["failures"][0]["path"], tree.path("broken.pdf"));
    EXPECT_THAT(status["failures"][0]["contentStatus"].get<std::string>(),
                StartsWith("Extraction failed: "));
}

TEST_F(TovictlTest, FindsTheWordsOfPdfsAndPictures) {
    const std::string fixtures = std::string(TOVI_TEST_DATA) + "/decoder/";
    for (const char* name : {"owner-password.pdf", "user-password.pdf", "screenshot.png"})
        tree.write(name, test::readFile(fixtures + name));
    const Json statuses = json({"index", tree.path()})["reports"][0]["statuses"];
    EXPECT_EQ(statuses["PDF text indexed"], 1);
    EXPECT_EQ(statuses["Metadata only — encrypted PDF"], 1);
    EXPECT_EQ(statuses["Apple Vision OCR — verify against original"], 1);
    EXPECT_THAT(namesFound("Behind"), ElementsAre("owner-password.pdf"));
    EXPECT_THAT(namesFound("Margarethe"), ElementsAre("screenshot.png"));
}

TEST_F(TovictlTest, ChecksWhatIsEnforced) {
    const ProgramResult result = run({"privacy", "--json"});
    const Json privacy = Json::parse(result.output, nullptr, false);
    EXPECT_EQ(privacy["internetSocketsRefused"], true);
    EXPECT_EQ(privacy["decoder"]["systemCallFilter"], true);
    EXPECT_EQ(privacy["decoder"]["coreBytes"], 0);
    EXPECT_EQ(result.exitCode, privacy["decoder"]["landlockVersion"] > 0 ? 0 : 3);
    EXPECT_THAT(run({"privacy"}).output, HasSubstr("Refused to make internet sockets   yes"));
}

TEST_F(TovictlTest, PagesAndPrintsNamesOnOneLine) {
    for (const char* name : {"a.txt", "b\nb.txt", "c.txt"}) {
        tree.write(name, "x");
        tree.setModified(name, 1'000'000 - name[0]);
    }
    run({"index", tree.path()});
    const ProgramResult page = run({"search", "txt", "--limit", "1", "--offset", "1"});
    EXPECT_THAT(page.output, HasSubstr("b\\nb.txt"));
    EXPECT_THAT(page.output, testing::Not(HasSubstr("c.txt")));
    EXPECT_THAT(page.errors, HasSubstr("--offset 2"));
}

TEST_F(TovictlTest, ForgetsAndClears) {
    tree.write("one/a.txt", "x");
    tree.write("two/b.txt", "x");
    run({"index", tree.path("one"), tree.path("two")});
    std::filesystem::remove_all(tree.path("one"));
    EXPECT_EQ(json({"forget", tree.path("one/")})["files"], 1);
    EXPECT_EQ(json({"status"})["roots"].size(), 1U);
    EXPECT_EQ(run({"forget", tree.path("one")}).errors,
              "This folder is not connected: " + tree.path("one") + "\n");
    EXPECT_EQ(json({"index"})["reports"][0]["root"], tree.path("two"));
    EXPECT_EQ(run({"clear"}).exitCode, 0);
    EXPECT_EQ(json({"status"})["files"], 0);
    EXPECT_EQ(test::readFile(tree.path("two/b.txt")), "x");
}

TEST_F(TovictlTest, SaysWhatIsWrongOnStandardError) {
    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        std::string sentence;
    };
    const Case table[] = {
        {{"search", "x"}, 1, "There is no index yet. Connect a folder with: tovictl index FOLDER"},
        {{"index"}, 1, "No folder is connected yet. Name one to index."},
        {{"index", "/etc"},
         1,
         "Folder is unavailable: System, hidden, and cache folders cannot be indexed"},
        {{"index", tree.path("none")},
         1,
         "Folder is unavailable: " + tree.path("none") + ": No such file or directory"},
        {{}, 2, "A subcommand is required"},
        {{"search"}, 2, "phrase is required"},
        {{"search", "x", "--limit", "0"}, 2, "--limit: Value 0 not in range"},
    };
    for (const auto& [arguments, exitCode, sentence] : table) {
        const ProgramResult result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << sentence;
        EXPECT_THAT(result.errors, StartsWith(sentence));
        EXPECT_THAT(result.output, IsEmpty());
        EXPECT_FALSE(std::filesystem::exists(indexPath())) << "nothing may be made";
    }
}

TEST_F(TovictlTest, NeedsAttentionWhereSomeItemsHadTrouble) {
    tree.write("latin\xe9.txt", "x");
    tree.write("good.txt", "x");
    const Json report = json({"index", tree.path()}, 3)["reports"][0];
    EXPECT_EQ(report["indexed"], 1);
    EXPECT_EQ(report["errors"][0], tree.path("latin\\xe9.txt") + ": the name is not valid UTF-8");
}

TEST_F(TovictlTest, MovesADamagedIndexAsideAndScansAnew) {
    tree.write("a.txt", "word");
    run({"index", tree.path()});
    std::filesystem::remove(indexPath() + "-wal");
    data.write("library/index.sqlite", std::string(8192, 'x'));
    const ProgramResult damaged = run({"search", "word"});
    EXPECT_EQ(damaged.exitCode, 1);
    EXPECT_THAT(damaged.errors, StartsWith("Index database: file is not a database\n"));
    EXPECT_THAT(damaged.errors, HasSubstr("tovictl index --rebuild FOLDER"));
    EXPECT_EQ(run({"index", tree.path()}).exitCode, 1);
    EXPECT_EQ(run({"index", "--rebuild"}).exitCode, 1);
    EXPECT_EQ(test::readFile(indexPath()), std::string(8192, 'x'));

    EXPECT_EQ(run({"index", "--rebuild", tree.path()}).exitCode, 0);
    EXPECT_THAT(namesFound("word"), ElementsAre("a.txt"));
    std::vector<std::string> aside;
    for (const auto& entry : std::filesystem::directory_iterator(data.path("library"))) {
        const std::string name = entry.path().filename();
        if (name.starts_with("index-") && name.ends_with(".sqlite")) aside.push_back(entry.path());
    }
    ASSERT_EQ(aside.size(), 1U);
    EXPECT_EQ(test::readFile(aside[0]), std::string(8192, 'x'));
}

TEST_F(TovictlTest, RebuildsEveryConnectedFolder) {
    tree.write("one/a.txt", "word");
    tree.write("two/b.txt", "word");
    run({"index", tree.path("one"), tree.path("two")});
    EXPECT_EQ(json({"index", "--rebuild"})["reports"].size(), 2U);
    EXPECT_THAT(namesFound("word"), testing::UnorderedElementsAre("a.txt", "b.txt"));
}

TEST_F(TovictlTest, WaitsForALockedIndexThenSaysSo) {
    tree.write("a.txt", "word");
    run({"index", tree.path()});
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(indexPath().c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_THAT(namesFound("word"), ElementsAre("a.txt")) << "readers are not held up";
    const ProgramResult locked = run({"index", tree.path()});
    EXPECT_EQ(locked.exitCode, 1);
    EXPECT_THAT(locked.errors, StartsWith("Index database: database is locked"));
    sqlite3_close(other);
}

} // namespace
} // namespace tovi
