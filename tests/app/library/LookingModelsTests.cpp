#include "app/library/ExcerptsModel.h"
#include "app/library/GraphModel.h"
#include "app/library/PreviewModel.h"
#include "app/library/SpaceFilesModel.h"
#include "app/library/TimelineModel.h"
#include "app/lists/QtConversions.h"
#include "tests/support/ManualExecutor.h"
#include "tests/support/TemporaryTree.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;

constexpr double day = 86'400;

class LookingModelsTest : public testing::Test {
  protected:
    void add(const std::string& path, double modified, const std::string& content = "") {
        FileRecord file;
        file.path = path;
        file.name = path.substr(path.rfind('/') + 1);
        file.modifiedAt = {modified};
        file.content = content;
        file.rootPath = "/r";
        index->upsert(file);
    }
    static std::vector<std::string> values(RowListModel* list, const char* role) {
        std::vector<std::string> values;
        for (int row = 0; row < list->count(); ++row)
            values.push_back(fromQt(list->value(row, toQt(role)).toString()));
        return values;
    }

    test::TemporaryTree tree;
    test::ManualExecutor executor;
    std::shared_ptr<IndexStore> index = std::make_shared<IndexStore>(tree.path("index.sqlite"));
};

TEST_F(LookingModelsTest, TimelineGroupsByPeriodAndJumps) {
    const double monday = 1'699'833'600; // 2023-11-13 00:00 UTC
    add("/r/a", monday + 10);
    add("/r/b", monday + 20);
    add("/r/c", monday - day);
    add("/r/d", monday - 40 * day);
    TimelineModel model(executor, [] { return UserCalendar{"de_DE", "UTC"}; });
    const QAbstractItemModelTester tester(model.files(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.refresh();
    EXPECT_FALSE(model.isLoading()) << "there is no index";
    model.setIndex(index);
    model.refresh();
    EXPECT_TRUE(model.isLoading());
    executor.settle();
    EXPECT_THAT(values(model.periods(), "count"), ElementsAre("2", "1", "1"));
    EXPECT_THAT(values(model.files(), "name"), ElementsAre("b", "a", "c", "d"));
    const auto sections = values(model.files(), "period");
    EXPECT_EQ(sections[0], sections[1]);
    EXPECT_THAT(values(model.periods(), "id"), ElementsAre(sections[0], sections[2], sections[3]));

    model.setUnit(toQt("month"));
    executor.settle();
    EXPECT_THAT(values(model.periods(), "count"), ElementsAre("3", "1"));
    model.jumpTo(toMilliseconds(Date{monday - day + 3}));
    executor.settle();
    EXPECT_THAT(values(model.files(), "name"), ElementsAre("c", "d"));
    EXPECT_EQ(model.before(), toMilliseconds(Date{monday}));
    add("/r/e", monday - 2 * day);
    model.refresh();
    executor.settle();
    EXPECT_THAT(values(model.files(), "name"), ElementsAre("c", "e", "d")) << "it stays there";
    model.jumpTo(std::nan(""));
    model.setIndex(nullptr); // what was under way no longer counts
    executor.settle();
    EXPECT_EQ(model.files()->count(), 0);
}

TEST_F(LookingModelsTest, SpaceFilesTellsWhatTheIndexDoesNotKnow) {
    std::map<QString, std::vector<std::string>> spaces{
        {toQt("trip"), {"/r/B 10", "/gone", "/r/b 9"}}, {toQt("tax"), {"/r/c"}}};
    for (const char* path : {"/r/B 10", "/r/b 9", "/r/c"})
        add(path, 0);
    SpaceFilesModel model(executor, [&](const QString& id) { return spaces[id]; });
    model.setIndex(index);
    model.setSpace(toQt("tax"));
    model.setSpace(toQt("trip"));
    executor.settle();
    EXPECT_THAT(values(model.files(), "name"), ElementsAre("b 9", "B 10"));
    EXPECT_EQ(model.absent(), QStringList(toQt("/gone")));
    EXPECT_EQ(model.countOutside({toQt("/gone"), toQt("/r/c"), toQt("/r/b 9")}), 1);
    spaces[toQt("trip")] = {"/gone", "/r/c"};
    model.refresh();
    executor.settle();
    EXPECT_THAT(values(model.files(), "name"), ElementsAre("c"));
    model.setSpace(toQt("unknown"));
    executor.settle();
    EXPECT_TRUE(model.hasLoaded() && model.absent().isEmpty());
    EXPECT_EQ(model.files()->count(), 0);
}

TEST_F(LookingModelsTest, GraphNamesTiesAndFollowsTheFileInTheMiddle) {
    add("/r/a/1", 1, "the landlord writes");
    add("/r/a/2", 2, "dear landlord");
    add("/r/b/3", 3);
    GraphModel::Groups groups{{{"Flat", {"/r/a/2", "/r/b/3"}}}, {}};
    GraphModel model(executor, [&] { return groups; });
    const QAbstractItemModelTester tester(model.nodes(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.showAny();
    model.setIndex(index);
    model.showAny();
    executor.settle();
    EXPECT_EQ(model.centerName(), toQt("3")) << "the newest";
    EXPECT_THAT(values(model.nodes(), "tie"), ElementsAre("", "in the space Flat"));

    model.show(toQt("/r/a/1"));
    model.setDepth(2);
    executor.settle();
    EXPECT_THAT(values(model.nodes(), "tie"),
                ElementsAre("", "both say landlord · in the same folder", "in the space Flat"));
    EXPECT_THAT(values(model.nodes(), "kind"), ElementsAre("", "words", "project"));
    EXPECT_THAT(values(model.nodes(), "parentRow"), ElementsAre("0", "0", "1"));

    index->remove({"/r/a/1"});
    model.refresh();
    executor.settle();
    EXPECT_EQ(model.center(), QString());
    EXPECT_EQ(model.nodes()->count(), 0);
}

TEST_F(LookingModelsTest, PreviewShowsTheTextOfTheLastFileWithTheWordsSearchedFor) {
    add("/r/lease", 1, "  The landlord pays in full.\n");
    add("/r/other", 2, "nothing of it");
    PreviewModel model(executor);
    model.setIndex(index);
    model.show(toQt("/r/other"), {});
    model.show(toQt("/r/lease"), toQt("documents landlord from last year"));
    executor.settle();
    EXPECT_EQ(model.excerpt(), toQt("The <b>landlord</b> pays in full."));
    model.show(toQt("/r/gone"), {});
    EXPECT_EQ(model.excerpt(), QString()) << "not that of another file";
    executor.settle();
    EXPECT_FALSE(model.isLoading());
    EXPECT_EQ(model.marked(toQt("Who is\nthe landlord"), toQt("who is the landlord?"), toQt("pdf")),
              toQt("Who is the <b>landlord</b>"));
}

TEST_F(LookingModelsTest, ExcerptsAreReadTogetherForTheWordsAskedForLast) {
    add("/r/lease", 1, std::string(400, 'x') + " The landlord\n pays.");
    add("/r/bill", 2, "rent of May");
    ExcerptsModel model(executor);
    model.setIndex(index);
    const auto ask = [&](const char* words) {
        QStringList told{model.of(toQt("/r/lease"), toQt(words)),
                         model.of(toQt("/r/bill"), toQt(words))};
        QCoreApplication::sendPostedEvents(&model);
        return told;
    };
    ask("landlord");
    ask("rent"); // before the first was read
    executor.settle();
    EXPECT_EQ(ask("rent").last(), toQt("<b>rent</b> of May"));
    ask("landlord");
    executor.settle();
    EXPECT_TRUE(ask("landlord").first().endsWith(toQt(" The <b>landlord</b> pays.")));
    ask("lease");
    executor.settle();
    EXPECT_EQ(ask("lease").first(), QString()) << "found by its name only";
    EXPECT_EQ(model.marked(toQt("a lease"), toQt("lease")), toQt("a <b>lease</b>"));
    model.setIndex(nullptr);
    EXPECT_EQ(ask("landlord").first(), QString()) << "a closed index tells nothing";
}

} // namespace
} // namespace tovi
