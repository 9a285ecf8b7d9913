#include "core/actions/ActionJson.h"
#include "tests/core/actions/ServiceFixture.h"

#include <fstream>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using test::readFile;

class ActionLogTest : public ServiceFixture {
  protected:
    void writeLog(const std::string& text) const { std::ofstream(journal()) << text; }
};

TEST_F(ActionLogTest, IsPrivateAndKeepsTheDocumentedForm) {
    tree.write("a", "1");
    const ActionReceipt receipt = execute(planTrash({"a"}));
    struct stat status {};
    ASSERT_EQ(::stat(journal().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    ASSERT_EQ(::stat(data.path("private").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);

    const Json log = Json::parse(readFile(journal()));
    ASSERT_TRUE(log.is_array());
    EXPECT_EQ(log[0].dump().find("{\"id\":\"" + receipt.id.string() + "\",\"title\":"), 0U);
    EXPECT_EQ(log[0]["date"], now.seconds - 978'307'200);
    std::vector<std::string> keys;
    for (const auto& [key, value] : log[0]["entries"][0].items())
        keys.push_back(key);
    EXPECT_THAT(keys, testing::ElementsAre("originalPath", "currentPath", "operation", "snapshot",
                                           "restored", "bookmark"));
    EXPECT_EQ(log[0]["entries"][0]["bookmark"], "MA==") << "base64 of the fake's \"0\"";
    EXPECT_EQ(toJson(receiptFromJson(log[0])), log[0]);
}

TEST_F(ActionLogTest, RefusesWhatItWouldNotWriteBackAndLeavesItAlone) {
    tree.write("a", "1");
    const ActionPlan plan = planTrash({"a"});
    execute(plan);
    const std::string whole = readFile(journal());
    Json newer = Json::parse(whole);
    newer[0]["color"] = "red";
    Json odd = Json::parse(whole);
    odd[0]["entries"][0]["operation"] = "burn";
    Json broken = Json::parse(whole);
    broken[0]["entries"][0]["bookmark"] = "M===";
    for (const std::string& text : {whole.substr(0, whole.size() / 2), std::string("{}"),
                                    std::string(), newer.dump(), odd.dump(), broken.dump()}) {
        writeLog(text);
        EXPECT_THAT(refusal([&] { makeService(); }),
                    testing::StartsWith("The action history cannot be read"))
            << text;
        EXPECT_NE(refusal([&] { service.undo(plan.id, roots); }), "");
        EXPECT_EQ(readFile(journal()), text);
    }
    fs::remove(journal());
    EXPECT_TRUE(makeService().history().empty());
}

TEST_F(ActionLogTest, ASecondWriterIsToldAndAnotherProcessesReceiptsAreKept) {
    tree.write("a", "1");
    tree.write("b", "2");
    FileActionService other = makeService();
    const ActionPlan first = planTrash({"a"});
    const ActionPlan second = other.plan(records({"b"}), FileOperation::trash, {}, roots);
    std::string told;
    trash.before = [&](const std::string& path) {
        if (path != tree.path("a")) return;
        told = refusal([&] { other.execute(second, second.id, roots); });
        EXPECT_TRUE(makeService().history()[0].entries.empty()) << "a run under way is no crash";
    };
    EXPECT_FALSE(execute(first).error);
    EXPECT_EQ(told, "Another process of Tovi is changing files. Try again when it has finished.");
    EXPECT_FALSE(other.execute(second, second.id, roots).error);
    EXPECT_EQ(service.history().size(), 2U);
}

TEST_F(ActionLogTest, AWriteFailureChangesNoFile) {
    tree.write("a", "1");
    const ActionPlan plan = planTrash({"a"});
    fs::create_directories(journal() + "/in the way"); // the log cannot be replaced
    EXPECT_NE(refusal([&] { execute(plan); }), "");
    fs::remove_all(journal());
    EXPECT_EQ(readFile(tree.path("a")), "1");
}

} // namespace
} // namespace tovi
