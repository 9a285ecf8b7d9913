#include "base/Cancelled.h"
#include "core/library/EvidenceSearch.h"
#include "tests/support/TemporaryTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EvidenceSearchTest : public testing::Test {
  protected:
    void add(const std::string& name, const std::string& content, double modified = 0) {
        FileRecord file;
        file.path = "/root/" + name;
        file.name = name;
        file.content = content;
        file.modifiedAt = {modified};
        file.rootPath = "/root";
        store.upsert(file);
    }

    std::vector<std::string> answered(const std::string& question, std::int64_t limit = 10) {
        std::vector<std::string> names;
        for (const auto& citation : findEvidence(store, question, limit))
            names.push_back(citation.file.name);
        return names;
    }

    test::TemporaryTree tree;
    IndexStore store{tree.path("index.sqlite")};
};

TEST_F(EvidenceSearchTest, FindsFilesThatHoldOnlySomeWordsOfAQuestion) {
    add("lease", "The landlord pays for the heating.", 1);
    add("letter", "Dear landlord", 2);
    add("notes", "What did you write about the weather?", 9);
    add("heating.jpg", "", 9);
    for (int n = 0; n < 5; ++n)
        add("diary" + std::to_string(n), "I write", 3 + n);
    const std::string question = "What did the landlord write about the heating?";
    EXPECT_THAT(answered(question, 4), ElementsAre("lease", "letter", "notes", "diary4"));
    EXPECT_EQ(findEvidence(store, question, 1)[0].excerpt, "The landlord pays for the heating.");
    EXPECT_THAT(answered("and what about you"), ElementsAre("notes"))
        << "function words count where there is nothing else";
    EXPECT_THAT(answered("a ? \U0001F600"), IsEmpty());
}

TEST_F(EvidenceSearchTest, AnswersAQuestionOfAMegabyteAndStops) {
    add("found", "zebra");
    std::string question = "zebra ";
    while (question.size() < 1'000'000)
        question += "w" + std::to_string(question.size()) + " \" OR ";
    EXPECT_THAT(answered(question), ElementsAre("found"));
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(findEvidence(store, "zebra", 1, stop.get_token()), Cancelled);
}

} // namespace
} // namespace tovi
