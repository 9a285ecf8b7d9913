#include "core/files/ProcessLock.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;
using testing::HasSubstr;

class ModelCommandTest : public testing::Test {
  protected:
    test::ProgramResult run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--data-dir", data.path("library"), "--json"});
        return test::runProgram(TOVICTL, arguments);
    }
    Json json(std::vector<std::string> arguments) const {
        const test::ProgramResult result = run(std::move(arguments));
        EXPECT_EQ(result.exitCode, 0) << result.errors;
        return Json::parse(result.output, nullptr, false);
    }

    test::TemporaryTree tree;
    test::TemporaryTree data;
};

TEST_F(ModelCommandTest, KeepFoldersSearchesAndProjects) {
    const std::string file = tree.write("garden/a.txt", "words");
    const std::string garden = tree.path("garden");
    EXPECT_EQ(json({"folders", "add", garden})["folders"][0]["files"], 0);
    EXPECT_THAT(run({"folders", "add", garden}).errors, HasSubstr("is already included in garden"));
    json({"index"});
    EXPECT_EQ(json({"folders", "list"})["folders"][0]["files"], 1);
    EXPECT_EQ(json({"searches", "save", "", "over 5 mb"})["searches"][0]["name"], "over 5 mb");
    EXPECT_TRUE(json({"searches", "remove", "over 5 mb"})["searches"].empty());
    json({"spaces", "create", "Taxes", file});
    EXPECT_TRUE(json({"spaces", "remove", "Taxes"})["spaces"].empty());
    EXPECT_EQ(json({"spaces", "restore"})["spaces"][0]["paths"][0], file);
    EXPECT_EQ(run({"plan", "Rename selected to b.TXT", file}).exitCode, 3);
    EXPECT_THAT(run({"plan", "burn selected", file}).errors, HasSubstr("Supported plans: "));

    std::filesystem::rename(garden, tree.path("elsewhere"));
    tree.makeDirectory("garden");
    EXPECT_THAT(run({"index"}).errors, HasSubstr("Another folder was connected there"));
    EXPECT_EQ(json({"folders", "remove", tree.path("elsewhere")})["files"], 1);
    EXPECT_TRUE(json({"folders", "list"})["folders"].empty());
}

TEST_F(ModelCommandTest, WriteNothingWhileAnotherProcessDoes) {
    json({"folders", "add", tree.path()});
    const auto lock = ProcessLock::tryTake(data.path("library/library.lock"));
    ASSERT_TRUE(lock);
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"index"}, {"clear"}, {"forget", tree.path()}, {"spaces", "create", "x"}}) {
        const test::ProgramResult result = run(arguments);
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_THAT(result.errors, HasSubstr("Tovi"));
    }
    json({"folders", "list"});
    json({"search", "words"});
}

TEST_F(ModelCommandTest, FollowChangesUntilTheyAreToldToStop) {
    EXPECT_THAT(run({"watch"}).errors, HasSubstr("No folder is connected yet."));
    tree.write("a.txt", "first");
    json({"folders", "add", tree.path()});
    for (const int signal : {SIGTERM, SIGINT}) {
        test::RunningProgram watch(
            TOVICTL, {"watch", "--interval", "0", "--json", "--data-dir", data.path("library")});
        const auto waitForFiles = [&](int count) {
            for (Json event = Json::object(); event.value("files", -1) != count;) {
                event = Json::parse(watch.nextLine(), nullptr, false);
                if (!event.is_object()) return false;
                if (event["event"] == "freshness") {
                    EXPECT_EQ(event["root"], tree.path());
                }
            }
            return true;
        };
        ASSERT_TRUE(waitForFiles(1));
        tree.write("made/b.txt", "second");
        ASSERT_TRUE(waitForFiles(2));
        EXPECT_EQ(json({"search", "second"})["files"].size(), 1U);
        std::filesystem::remove_all(tree.path("made"));
        ASSERT_TRUE(waitForFiles(1));
        EXPECT_EQ(watch.end(signal), 0);
    }
}

} // namespace
} // namespace tovi
