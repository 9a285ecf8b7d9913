#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;
using test::TemporaryTree;
using testing::HasSubstr;
using testing::Not;

TEST(LibraryCommands, AnswersAQuestionAndListsDownloads) {
    const TemporaryTree tree;
    const TemporaryTree data;
    const auto run = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--data-dir", data.path("library")});
        return test::runProgram(TOVICTL, arguments);
    };
    tree.write("lease.txt", "The landlord\npays for the \x1b[31m heating.");
    tree.write("shopping.txt", "What else? Bread.");
    tree.write("Downloads/loose.txt", "");
    EXPECT_EQ(run({"ask", "anything"}).exitCode, 1) << "there is no index yet";
    ASSERT_EQ(run({"index", tree.path()}).exitCode, 0);

    const auto json = [&](const std::vector<std::string>& arguments) {
        return Json::parse(run(arguments).output, nullptr, false);
    };
    const Json answer = json({"ask", "Who", "pays the heating?", "--json"});
    ASSERT_EQ(answer["citations"].size(), 1U);
    EXPECT_EQ(answer["question"], "Who pays the heating?");
    EXPECT_EQ(answer["citations"][0]["file"]["path"], tree.path("lease.txt"));
    EXPECT_EQ(answer["citations"][0]["excerpt"], "The landlord\npays for the \x1b[31m heating.");
    EXPECT_THAT(run({"ask", "heating"}).output,
                HasSubstr("The landlord pays for the \\x1b[31m heating."));
    EXPECT_THAT(run({"ask", "unheard-of"}).output, HasSubstr("No indexed text"));
    EXPECT_EQ(run({"ask", "heating", "--limit", "0"}).exitCode, 2);

    const Json groups = json({"downloads", "--json"})["groups"];
    ASSERT_EQ(groups.size(), 1U);
    EXPECT_EQ(groups[0]["name"], "Other downloads");
    EXPECT_EQ(groups[0]["files"][0]["name"], "loose.txt");
    EXPECT_THAT(run({"downloads"}).output, HasSubstr(tree.path("Downloads/loose.txt")));
    EXPECT_THAT(run({"downloads", "--files", "0"}).output, Not(HasSubstr("loose")));
}

} // namespace
} // namespace tovi
