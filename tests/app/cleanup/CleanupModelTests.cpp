#include "app/cleanup/CleanupModel.h"
#include "tests/app/model/ModelFixture.h"

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class NoPrograms final : public platform::RunningPrograms {
  public:
    bool use(const std::string&) const override { return false; }
};

class CleanupModelTest : public ModelFixture {
  protected:
    CleanupModelTest() {
        write("Downloads/old.zip", "12345");
        write("Screenshot 2020-01-01 at 9.png", "123");
        write("notes.txt", "1");
        model = start();
    }
    void write(const std::string& relative, const std::string& bytes) {
        tree.write(relative, bytes);
        tree.setModified(relative, executor.now().seconds - 100 * 86'400);
    }
    std::unique_ptr<CleanupModel> makeCleanup() {
        auto made = std::make_unique<CleanupModel>(
            *model, CleanupModelSystem{
                        executor,
                        {trash, move, bookmarks, availability, [this] { return executor.now(); }},
                        programs,
                        data.path("home"),
                        data.path(),
                        {tree.path(), tree.path(".cache"), {}}});
        executor.settle();
        return made;
    }
    std::vector<std::string> found() {
        std::vector<std::string> names;
        RowListModel& categories = *cleanup->candidates()->categories();
        for (int n = 0; n < categories.count(); ++n) {
            RowListModel& list =
                *cleanup->candidates()->list(categories.value(n, QStringLiteral("id")).toString());
            for (int row = 0; row < list.count(); ++row)
                names.push_back(list.value(row, QStringLiteral("name")).toString().toStdString());
        }
        return names;
    }
    void reviewScreenshot() {
        cleanup->candidates()->toggle(at("Screenshot 2020-01-01 at 9.png"));
        cleanup->review();
        executor.settle();
    }
    void confirm() {
        cleanup->confirm(cleanup->proposedPlanValues()[QStringLiteral("id")].toString());
    }

    NoPrograms programs;
    std::unique_ptr<CleanupModel> cleanup = nullptr;
};

TEST_F(CleanupModelTest, FindsMovesAndRestoresWhatWasReviewed) {
    cleanup = makeCleanup();
    cleanup->scan();
    EXPECT_THAT(cleanup->status().toStdString(), HasSubstr("Connect a folder"));
    connectTree();
    EXPECT_THAT(found(), ElementsAre("old.zip", "Screenshot 2020-01-01 at 9.png"));
    EXPECT_EQ(cleanup->candidates()->bytes(), 8);
    EXPECT_EQ(cleanup->reportValues()[QStringLiteral("scannedFiles")].toInt(), 3);

    PlansModel& plans = *model->plans();
    plans.proposeRename(at("notes.txt"), QStringLiteral("memo.txt"));
    executor.settle();
    plans.confirmPlan(plans.proposedPlanValues()[QStringLiteral("id")].toString());
    executor.settle();
    executor.advance(1);
    cleanup->review();
    executor.settle();
    EXPECT_EQ(error(), "Select between 1 and 200 items for each cleanup review.");
    cleanup->candidates()->selectCategory(QStringLiteral("oldDownloads"), true);
    reviewScreenshot();
    EXPECT_EQ(cleanup->candidates()->selectedBytes(), 8);
    EXPECT_EQ(cleanup->proposedPlanValues()[QStringLiteral("title")].toString().toStdString(),
              "Move 2 items to Trash");
    cleanup->confirm(QStringLiteral("another"));
    EXPECT_EQ(error(), "Review and confirm this exact cleanup plan before moving files.");
    confirm();
    executor.settle();
    EXPECT_THAT(found(), testing::IsEmpty());
    EXPECT_EQ(cleanup->candidates()->selectedCount(), 0);
    EXPECT_FALSE(std::filesystem::exists(tree.path("Downloads/old.zip")));
    EXPECT_EQ(model->library()->summary().total(), 1);
    ASSERT_EQ(cleanup->history()->value(0, QStringLiteral("count")).toInt(), 2);
    cleanup->showReceipt(cleanup->history()->value(0, QStringLiteral("id")).toString());
    EXPECT_THAT(cleanup->receiptFiles()->texts(QStringLiteral("path")),
                testing::Contains(QString::fromStdString(tree.path("Downloads/old.zip"))));

    cleanup->undoLast();
    executor.settle();
    EXPECT_TRUE(cleanup->history()->value(0, QStringLiteral("undone")).toBool());
    EXPECT_EQ(test::readFile(tree.path("Downloads/old.zip")), "12345");
    EXPECT_EQ(found().size(), 2U);
    EXPECT_EQ(model->library()->summary().total(), 3);
    EXPECT_FALSE(model->isInMaintenance());
    EXPECT_FALSE(std::filesystem::exists(tree.path("notes.txt")));
    cleanup->undoLast();
    executor.settle();
    EXPECT_TRUE(std::filesystem::exists(tree.path("notes.txt"))) << "changed before";
}

TEST_F(CleanupModelTest, ScansByItselfOnlyWhenItIsDueAndNothingElseRuns) {
    connectTree();
    ASSERT_TRUE(model->beginCleanupMaintenance());
    cleanup = makeCleanup();
    EXPECT_FALSE(cleanup->hasReport());
    model->finishCleanupMaintenance(false);
    executor.settle();
    EXPECT_TRUE(cleanup->hasReport());

    cleanup->setRefreshHours(1);
    write("Downloads/two.zip", "12");
    executor.advance(3000);
    EXPECT_EQ(found().size(), 2U);
    reviewScreenshot();
    executor.advance(1200);
    EXPECT_EQ(found().size(), 2U);
    cleanup->cancelReview();
    executor.settle();
    EXPECT_EQ(found().size(), 3U);
    EXPECT_EQ(cleanup->candidates()->selectedCount(), 1);

    cleanup->setAutomaticRefresh(false);
    executor.settle();
    std::filesystem::remove(tree.path("Downloads/two.zip"));
    cleanup = makeCleanup();
    EXPECT_FALSE(cleanup->automaticRefresh() || cleanup->hasReport());
    EXPECT_EQ(cleanup->refreshHours(), 1);
    model->removeRoot(QString::fromStdString(tree.path()));
    cleanup->scan();
    executor.settle();
    EXPECT_THAT(found(), testing::IsEmpty());
}

TEST_F(CleanupModelTest, DropsStoppedScansAndRefusesWhatIsNotConnected) {
    data.write("cleanup-settings.json", R"({"automaticRefresh": false, "later": 1})");
    connectTree();
    cleanup = makeCleanup();
    cleanup->scan();
    executor.work();
    cleanup->stopScan();
    executor.settle();
    EXPECT_FALSE(cleanup->hasReport());
    EXPECT_THAT(cleanup->status().toStdString(), HasSubstr("Scan stopped."));

    cleanup->setFolder(at("Downloads"));
    executor.settle();
    EXPECT_THAT(found(), ElementsAre("old.zip"));
    EXPECT_THAT(test::readFile(data.path("cleanup-settings.json")), HasSubstr("\"later\": 1"));
    cleanup->setFolder(QString::fromStdString(data.path()));
    executor.settle();
    EXPECT_EQ(error(), "This folder is not in your connected folders: " + data.path());
    EXPECT_THAT(found(), ElementsAre("old.zip"));
}

TEST_F(CleanupModelTest, WaitsForOthersAndLeavesDamagedSettingsAlone) {
    data.write("cleanup-settings.json", "{broken");
    connectTree();
    cleanup = makeCleanup();
    EXPECT_THAT(error(), testing::StartsWith("Cleanup settings could not be read, and will not"));
    cleanup->setAutomaticRefresh(false);
    executor.settle();
    EXPECT_EQ(test::readFile(data.path("cleanup-settings.json")), "{broken");

    reviewScreenshot();
    ASSERT_TRUE(model->beginCleanupMaintenance());
    confirm();
    EXPECT_EQ(error(), "Another file operation is still finishing. Try cleanup again in a moment.");
    EXPECT_FALSE(cleanup->isExecuting());
    model->finishCleanupMaintenance(false);
    executor.settle();
    tree.write("Screenshot 2020-01-01 at 9.png", "edited");
    confirm();
    EXPECT_TRUE(cleanup->isExecuting());
    executor.settle();
    EXPECT_THAT(error(), HasSubstr("A selected file changed or is no longer eligible."));
    EXPECT_EQ(test::readFile(tree.path("Screenshot 2020-01-01 at 9.png")), "edited");
    EXPECT_FALSE(cleanup->isExecuting() || model->isInMaintenance());
}

} // namespace
} // namespace tovi
