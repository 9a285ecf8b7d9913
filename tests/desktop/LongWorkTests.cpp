#include "tests/app/model/ModelFixture.h"
#include "ui/session/LongWorkNotices.h"

namespace tovi {
namespace {

class NoPrograms final : public platform::RunningPrograms {
  public:
    bool use(const std::string&) const override { return false; }
};

class LongWorkTest : public ModelFixture {
  protected:
    LongWorkTest() {
        tree.write("one.txt", "same");
        tree.write("two.txt", "same");
        model = makeModel();
        notices.emplace(
            executor, *model,
            cleanup.emplace(*model, CleanupModelSystem{executor,
                                                       {trash, move, bookmarks, availability,
                                                        [this] { return executor.now(); }},
                                                       programs,
                                                       data.path("home"),
                                                       data.path(),
                                                       {tree.path(), tree.path(".cache"), {}}}));
        QObject::connect(&*notices, &LongWorkNotices::ended,
                         [this](const LongWorkNotice& notice) { told.push_back(notice); });
        model->prepare();
        executor.settle();
    }
    void confirmTrash(double seconds) {
        model->plans()->proposeTrash({at("two.txt")});
        executor.settle();
        model->plans()->confirmPlan(
            model->plans()->proposedPlanValues()[QStringLiteral("id")].toString());
        executor.pass(seconds);
        executor.settle();
    }

    NoPrograms programs;
    std::optional<CleanupModel> cleanup;
    std::optional<LongWorkNotices> notices;
    std::vector<LongWorkNotice> told;
};

TEST_F(LongWorkTest, TellsOfTheFirstScanOnlyAndOfWhatTookLong) {
    afterReading = [this] { executor.pass(6); };
    connectTree();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].section, QStringLiteral("files"));
    tree.write("three.txt", "other");
    tree.write("four.txt", "another");
    model->scan()->rescan();
    executor.settle();
    EXPECT_EQ(told.size(), 1U);

    model->duplicates()->findDuplicates();
    executor.pass(9);
    executor.settle();
    EXPECT_EQ(told.size(), 1U);
    model->duplicates()->findDuplicates();
    executor.pass(11);
    executor.settle();
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[1].section, QStringLiteral("duplicates"));
}

TEST_F(LongWorkTest, OffersToTakeLongMovesBack) {
    const std::string old = tree.write("Screenshot 2020-01-01 at 9.png", "123");
    tree.setModified("Screenshot 2020-01-01 at 9.png", executor.now().seconds - 100 * 86'400);
    connectTree();
    confirmTrash(11);
    ASSERT_EQ(told.size(), 1U) << error();
    EXPECT_EQ(told[0].text.toStdString(), "Move 1 file to Trash");
    EXPECT_FALSE(std::filesystem::exists(tree.path("two.txt")));
    told[0].undo();
    executor.settle();
    EXPECT_TRUE(std::filesystem::exists(tree.path("two.txt")));
    confirmTrash(9);
    EXPECT_FALSE(std::filesystem::exists(tree.path("two.txt")));
    EXPECT_EQ(told.size(), 1U);

    cleanup->scan();
    executor.settle();
    cleanup->candidates()->toggle(QString::fromStdString(old));
    cleanup->review();
    executor.settle();
    cleanup->confirm(cleanup->proposedPlanValues()[QStringLiteral("id")].toString());
    executor.pass(11);
    executor.settle();
    ASSERT_EQ(told.size(), 2U) << error();
    EXPECT_FALSE(told[1].text.contains(QStringLiteral("Screenshot")));
    told[1].undo();
    executor.settle();
    EXPECT_TRUE(std::filesystem::exists(old));
}

} // namespace
} // namespace tovi
