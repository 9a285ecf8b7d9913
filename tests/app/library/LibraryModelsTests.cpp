#include "app/library/DownloadsModel.h"
#include "app/library/EvidenceModel.h"
#include "app/lists/QtConversions.h"
#include "tests/support/ManualExecutor.h"
#include "tests/support/TemporaryTree.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LibraryModelsTest : public testing::Test {
  protected:
    void add(const std::string& path, const std::string& content,
             const std::optional<std::string>& source = std::nullopt, double modified = 0) {
        FileRecord file;
        file.path = path;
        file.name = path.substr(path.rfind('/') + 1);
        file.size = 10;
        file.content = content;
        file.sourceURL = source;
        file.modifiedAt = {modified};
        file.rootPath = "/root";
        index->upsert(file);
    }

    static std::vector<std::string> names(const std::vector<FileRecord>& files) {
        std::vector<std::string> result;
        for (const FileRecord& file : files)
            result.push_back(file.name);
        return result;
    }

    test::TemporaryTree tree;
    test::ManualExecutor executor;
    std::shared_ptr<IndexStore> index = std::make_shared<IndexStore>(tree.path("index.sqlite"));
};

TEST_F(LibraryModelsTest, ShowsThePassagesOfTheLastQuestion) {
    add("/root/lease", "The landlord pays the heating", std::nullopt, 2);
    add("/root/letter", "Dear landlord", std::nullopt, 1);
    EvidenceModel model(executor);
    const QAbstractItemModelTester tester(model.list(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.ask(toQt("landlord"));
    EXPECT_EQ(model.status(), toQt("The local library is not open."));
    EXPECT_FALSE(model.isAnswering());

    model.setIndex(index);
    model.ask(toQt("Who is the landlord?"));
    executor.settle();
    ASSERT_EQ(model.list()->count(), 2);
    EXPECT_EQ(model.list()->value(0, toQt("excerpt")).toString(),
              toQt("The landlord pays the heating"));
    EXPECT_EQ(model.list()->value(1, toQt("file")).toMap()[toQt("path")].toString(),
              toQt("/root/letter"));
    EXPECT_THAT(model.passages()[0].file.content, IsEmpty()) << "texts are not kept in memory";

    const QPersistentModelIndex selected(model.list()->index(0, 0));
    model.ask(toQt("letter"));
    model.ask(toQt("heating"));
    EXPECT_TRUE(model.isAnswering());
    EXPECT_EQ(model.list()->count(), 2) << "until the new ones are there";
    executor.work(1); // the answer to the last question comes first
    executor.settle();
    EXPECT_FALSE(model.isAnswering());
    ASSERT_EQ(model.passages().size(), 1U);
    EXPECT_TRUE(selected.isValid());

    model.ask(toQt("nowhere"));
    executor.settle();
    EXPECT_EQ(model.status(), toQt("No indexed text holds a word of this question."));
    model.ask(toQt("heating"));
    model.ask(toQt("  "));
    executor.settle();
    EXPECT_EQ(model.list()->count(), 0);
    EXPECT_EQ(model.question(), QString());
}

TEST_F(LibraryModelsTest, GroupsDownloadsAndKeepsSelectionAcrossARefresh) {
    const std::string slack = "https://files.slack.com/x";
    for (int n = 0; n < 501; ++n)
        add("/root/s" + std::to_string(n), "", slack, n);
    add("/root/Downloads/loose", "", std::nullopt, 9'000);
    add("/root/plain", "");
    DownloadsModel model(executor);
    const QAbstractItemModelTester tester(model.files(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.refresh();
    EXPECT_FALSE(model.isLoading()) << "there is no index";
    model.setIndex(index);
    model.selectGroup(toQt("slack"));
    model.refresh();
    executor.settle();
    ASSERT_EQ(model.groupRows().size(), 2U);
    EXPECT_EQ(model.groupRows()[0],
              (DownloadsModel::Group{"slack", "Slack", "bubble.left.and.bubble.right", 501, 5'010,
                                     Date{500}}));
    EXPECT_EQ(model.groupRows()[1].id, "unknown");
    EXPECT_EQ(model.latest()->rows().size(), DownloadsModel::latestCount);
    EXPECT_EQ(model.latest()->rows()[0].name, "loose");
    EXPECT_EQ(model.files()->rows().size(), DownloadsModel::pageSize);
    EXPECT_TRUE(model.hasMoreFiles());
    model.loadMoreFiles();
    executor.settle();
    EXPECT_EQ(model.files()->rows().size(), 501U);
    EXPECT_FALSE(model.hasMoreFiles());

    model.setNameFilter(toQt("S50"));
    executor.settle();
    EXPECT_THAT(names(model.files()->rows()), ElementsAre("s500", "s50"));
    const QPersistentModelIndex selected(model.files()->index(1, 0));
    add("/root/s5000", "", slack, 10'000);
    model.refresh();
    executor.settle();
    EXPECT_THAT(names(model.files()->rows()), ElementsAre("s5000", "s500", "s50"));
    EXPECT_EQ(selected.row(), 2);

    model.refresh();
    model.setIndex(nullptr); // what was under way no longer counts
    executor.settle();
    EXPECT_EQ(model.groups()->count(), 0);
    EXPECT_EQ(model.files()->count(), 0);
    EXPECT_FALSE(model.isLoading());
}

} // namespace
} // namespace tovi
