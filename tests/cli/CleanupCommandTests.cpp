#include "tests/support/Environment.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <array>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

class CleanupCommandTest : public testing::Test {
  protected:
    test::ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--data-dir", data.path("library")});
        return test::runProgram(TOVICTL, arguments);
    }
    Json json(std::vector<std::string> arguments, int exitCode) const {
        arguments.emplace_back("--json");
        const test::ProgramResult result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << result.errors;
        return Json::parse(result.output, nullptr, false);
    }

    /// Runs the program on a terminal of its own, types the answer and returns what it showed.
    std::string runOnTerminal(std::vector<std::string> arguments, const std::string& answer) const {
        arguments.insert(arguments.begin(), {TOVICTL, "--data-dir", data.path("library")});
        std::vector<char*> words;
        for (std::string& word : arguments)
            words.push_back(word.data());
        words.push_back(nullptr);
        int terminal = -1;
        const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            ::execv(TOVICTL, words.data());
            ::_exit(127);
        }
        std::string shown;
        std::array<char, 4096> part{};
        bool isAnswered = false;
        for (ssize_t got = 0; (got = ::read(terminal, part.data(), part.size())) > 0;) {
            shown.append(part.data(), static_cast<std::size_t>(got));
            if (isAnswered || shown.find("Type yes") == std::string::npos) continue;
            isAnswered = true;
            const std::string line = answer + "\n";
            EXPECT_EQ(::write(terminal, line.data(), line.size()),
                      static_cast<ssize_t>(line.size()));
        }
        ::close(terminal);
        ::waitpid(child, nullptr, 0);
        return shown;
    }

    test::TemporaryTree tree;
    test::TemporaryTree data;
    test::EnvironmentVariable home{"HOME", tree.path()};
    test::EnvironmentVariable dataHome{"XDG_DATA_HOME", data.path("share")};
    test::EnvironmentVariable cacheHome{"XDG_CACHE_HOME", std::nullopt};
};

TEST_F(CleanupCommandTest, ScansMovesListsAndTakesBack) {
    tree.write(".cache/program/old", "12345");
    tree.setModified(".cache/program/old", 1'600'000'000);
    tree.write("setup.dmg", "1");
    tree.setModified("setup.dmg", 1'600'000'000);
    tree.write("note.txt", "1");
    EXPECT_THAT(run({"cleanup", "scan"}).errors, HasSubstr("No connected folder is available."));
    tree.write("other/setup.dmg", "1");
    tree.setModified("other/setup.dmg", 1'600'000'000);
    ASSERT_EQ(run({"folders", "add", tree.path("other")}).exitCode, 0);
    EXPECT_EQ(json({"cleanup", "scan"}, 0)["candidates"].size(), 1U);
    EXPECT_EQ(json({"cleanup", "scan", tree.path()}, 0)["candidates"].size(), 3U);
    fs::remove(tree.path("other/setup.dmg"));
    ASSERT_EQ(run({"folders", "add", tree.path()}).exitCode, 0);
    ASSERT_EQ(run({"index", tree.path()}).exitCode, 0);
    EXPECT_EQ(json({"search", "setup"}, 0)["files"].size(), 1U);
    const Json report = json({"cleanup", "scan"}, 0);
    ASSERT_EQ(report["candidates"].size(), 2U);
    EXPECT_EQ(report["candidates"][0]["category"], "cachesAndLogs");
    EXPECT_THAT(run({"cleanup", "scan"}).output, HasSubstr("Installers  1 item, 1 B"));
    EXPECT_EQ(json({"cleanup", "scan", "--category", "installers"}, 0)["candidates"].size(), 1U);
    EXPECT_EQ(run({"cleanup", "scan", tree.path("none")}).errors,
              "This folder could not be scanned: " + tree.path("none") + "\n");
    EXPECT_THAT(run({"cleanup", "trash", tree.path("note.txt")}).errors,
                HasSubstr("This is not among what cleanup proposes"));

    std::vector<std::string> trash{"cleanup", "trash", tree.path("setup.dmg"),
                                   tree.path(".cache/program/old")};
    const std::string code = json(trash, 3)["reviewCode"];
    EXPECT_TRUE(fs::exists(tree.path("setup.dmg")));
    trash.insert(trash.end(), {"--confirm", code});
    const Json receipt = json(trash, 0)["receipt"];
    EXPECT_FALSE(fs::exists(tree.path("setup.dmg")));
    EXPECT_TRUE(json({"search", "setup"}, 0)["files"].empty());
    EXPECT_EQ(json({"cleanup", "history"}, 0)["receipts"][0], receipt);
    EXPECT_EQ(json({"cleanup", "undo", receipt["id"]}, 0)["receipt"]["undone"], true);
    EXPECT_EQ(test::readFile(tree.path(".cache/program/old")), "12345");
}

TEST_F(CleanupCommandTest, ChangesNothingOnATerminalButForAYes) {
    tree.write("setup.dmg", "1");
    tree.setModified("setup.dmg", 1'600'000'000);
    ASSERT_EQ(run({"index", tree.path()}).exitCode, 0);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"trash", tree.path("setup.dmg")},
          std::vector<std::string>{"cleanup", "trash", "--category", "installers"}}) {
        tree.write("setup.dmg", "1");
        tree.setModified("setup.dmg", 1'600'000'000);
        for (const char* answer : {"", "no", "y", "yes please", "YES"}) {
            EXPECT_THAT(runOnTerminal(command, answer), HasSubstr("Nothing was changed."));
            EXPECT_TRUE(fs::exists(tree.path("setup.dmg"))) << answer;
        }
        const std::string shown = runOnTerminal(command, "yes");
        EXPECT_THAT(shown, HasSubstr(tree.path("setup.dmg")));
        EXPECT_THAT(shown, HasSubstr("To take this back: tovictl"));
        EXPECT_FALSE(fs::exists(tree.path("setup.dmg")));
    }
}

} // namespace
} // namespace tovi
