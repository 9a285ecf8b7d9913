#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;
using testing::HasSubstr;

class VaultCommandTest : public testing::Test {
  protected:
    /// Runs `tovictl vault` with the password on descriptor 3.
    test::ProgramResult run(std::vector<std::string> arguments,
                            const std::string& password = "a long passphrase") const {
        const std::string script = R"(exec 3<"$1"; shift; exec "$@" --password-fd 3)";
        arguments.insert(arguments.begin(),
                         {"-c", script, "sh", tree.write("password", password + "\n"), TOVICTL,
                          "--data-dir", tree.path("data"), "vault"});
        return test::runProgram("/bin/sh", arguments);
    }

    Json json(std::vector<std::string> arguments, int exitCode = 0) const {
        arguments.emplace_back("--json");
        const test::ProgramResult result = run(std::move(arguments));
        EXPECT_EQ(result.exitCode, exitCode) << result.errors;
        return Json::parse(result.output, nullptr, false);
    }

    test::TemporaryTree tree;
};

TEST_F(VaultCommandTest, KeepsVerifiesAndGivesBack) {
    EXPECT_EQ(json({"status"})["status"], "notCreated");
    EXPECT_THAT(run({"list"}).errors, HasSubstr("tovictl vault create"));
    EXPECT_EQ(run({"create"}, "too short").exitCode, 1);
    EXPECT_EQ(run({"create"}).exitCode, 0);
    EXPECT_EQ(json({"status"})["status"], "locked");

    const Json added = json({"add", tree.write("in/a\nb", "content"), tree.path("missing")}, 3);
    ASSERT_EQ(added["results"].size(), 2U);
    const Json list = json({"list"});
    ASSERT_EQ(list["items"].size(), 1U);
    EXPECT_EQ(list["items"][0]["name"], "a\nb");
    EXPECT_THAT(run({"list"}).output, HasSubstr("a\\nb"));
    EXPECT_EQ(run({"list"}, "another passphrase").exitCode, 1);

    tree.makeDirectory("out");
    tree.link("linked", tree.path("out"));
    EXPECT_EQ(run({"export", "a\nb", tree.path("linked")}).exitCode, 0);
    EXPECT_EQ(test::readFile(tree.path("out/a\nb")), "content");
    EXPECT_THAT(run({"export", list["items"][0]["id"], tree.path("out")}).errors,
                HasSubstr("already exists"));

    EXPECT_EQ(json({"verify"})["intact"], 1);
    const std::string id = list["items"][0]["id"];
    tree.write("data/Vault/" + id + ".avault", "damage");
    EXPECT_EQ(json({"verify"}, 3)["damaged"][0]["item"]["id"], id);
}

} // namespace
} // namespace tovi
