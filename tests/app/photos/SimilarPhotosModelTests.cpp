#include "app/lists/QtConversions.h"
#include "app/photos/SimilarPhotosModel.h"
#include "tests/support/ManualExecutor.h"

#include <QAbstractItemModelTester>
#include <QLocale>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FileRecord photo(const std::string& path, std::int64_t size = 1) {
    FileRecord file;
    file.path = path;
    file.size = size;
    return file;
}

class SimilarPhotosModelTest : public testing::Test {
  protected:
    SimilarPhotosModelTest() { QLocale::setDefault(QLocale(QLocale::German)); }
    ~SimilarPhotosModelTest() override { QLocale::setDefault(QLocale::system()); }

    std::string status() const { return fromQt(model.status()); }
    void start() { model.start({photo("/r/a")}, {"/r"}); }

    test::ManualExecutor executor;
    /// What the next check does between its beginning and its report.
    std::function<void(const SimilarPhotoProgressHandler&)> during = [](const auto&) {};
    SimilarPhotoReport report;
    std::vector<std::string> checkedPaths;
    SimilarPhotosModel model{
        executor, [this](const std::vector<FileRecord>& files,
                         const std::vector<std::string>& roots, const SimilarPhotoOptions& options,
                         const SimilarPhotoProgressHandler& progress, const std::stop_token& stop) {
            EXPECT_EQ(options.maximumImages, 1200);
            checkedPaths = {files.at(0).path, roots.at(0)};
            during(progress);
            throwIfCancelled(stop);
            return report;
        }};
    QAbstractItemModelTester tester{model.groups(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(SimilarPhotosModelTest, ShowsProgressAndTheFinishedReport) {
    EXPECT_EQ(status(), "");
    start();
    EXPECT_TRUE(model.isScanning());
    EXPECT_EQ(status(), "Getting your photos ready…");
    std::vector<std::string> seen;
    during = [&](const auto& progress) {
        for (const SimilarPhotoProgress& step :
             {SimilarPhotoProgress{1'200, 5'000, "Reading photos"}, {0, 9, "Comparing photos"}}) {
            progress(step);
            executor.deliver();
            seen.push_back(status());
        }
    };
    report.analyzed = 4'711;
    report.groups = {{{photo("/r/a", 5), photo("/r/b", 7), photo("/r/c", 6)}, {{}, {}, {}}}};
    report.groups.push_back({{photo("/r/d"), photo("/r/e")}, {{.looksLikeText = true}, {}}});
    executor.settle();
    EXPECT_THAT(
        seen, ElementsAre("Looking at photos · 1.200 of 5.000", "Finding photos that look alike…"));
    EXPECT_THAT(checkedPaths, ElementsAre("/r/a", "/r"));
    EXPECT_FALSE(model.isScanning());
    EXPECT_EQ(status(), "Compared 4.711 photos.");
    ASSERT_EQ(model.groups()->count(), 2);
    EXPECT_TRUE(model.groups()->value(0, toQt("hasKeeper")).toBool());
    EXPECT_EQ(model.groups()->value(0, toQt("warning")).toString(), QString());
    EXPECT_FALSE(model.groups()->value(1, toQt("hasKeeper")).toBool()) << "half of it is text";
    EXPECT_NE(model.groups()->value(1, toQt("warning")).toString(), QString());
    EXPECT_EQ(model.groups()->value(0, toQt("potentialBytes")).toLongLong(), 11);
    EXPECT_EQ(model.notice(), QString());

    model.toggle(toQt("/r/c"));
    model.toggle(toQt("/r/b"));
    model.toggle(toQt("/r/a"));
    model.toggle(toQt("/r/b"));
    std::vector<std::string> marked;
    for (const FileRecord& file : model.selected())
        marked.push_back(file.path);
    EXPECT_THAT(marked, ElementsAre("/r/a", "/r/c"));
    for (int row : {0, 1}) // only the first has one that stays: the first
        model.selectAllButKeeper(model.groups()->value(row, toQt("id")).toString());
    EXPECT_FALSE(model.isSelected(toQt("/r/a")));
    EXPECT_TRUE(model.isSelected(toQt("/r/b")) && model.isSelected(toQt("/r/c")));
    start();
    EXPECT_THAT(model.selectedIDs(), IsEmpty());
    EXPECT_TRUE(model.report()) << "until the new one is there";

    during = [](const auto&) {};
    model.start({photo("/r/a")}, {"/r"}, {"/r/c", "/r/gone"});
    executor.settle();
    EXPECT_THAT(model.selectedIDs(), ElementsAre("/r/c"));
    report = {};
    start();
    executor.settle();
    EXPECT_EQ(fromQt(model.notice()), "No look-alikes found in this check");
    report.limited = true;
    start();
    executor.settle();
    EXPECT_EQ(fromQt(model.notice()),
              "This comparison reached its limit. Choose a smaller folder to check more photos.");
}

TEST_F(SimilarPhotosModelTest, ShowsTheFirstOfALargeGroupAndTheOneThatStays) {
    SimilarPhotoGroup group;
    for (char name = 'a'; name <= 'n'; ++name) {
        group.files.push_back(photo(std::string("/r/") + name));
        group.traits.push_back({.width = name == 'm' ? 9 : 1, .height = 1});
    }
    report.groups = {group};
    start();
    executor.settle();
    const auto names = [](const QVariantList& files) {
        std::string last;
        for (const QVariant& file : files)
            last += file.toMap().value(toQt("path")).toString().back().toLatin1();
        return last;
    };
    EXPECT_EQ(names(model.groups()->value(0, toQt("files")).toList()), "mabcdefghijk");
    const QString id = model.groups()->value(0, toQt("id")).toString();
    EXPECT_EQ(names(model.filesOf(id)), "mabcdefghijkln");
    EXPECT_EQ(model.filesOf(id).front().toMap().value(toQt("width")).toInt(), 9);
    model.selectAllButKeeper(id);
    EXPECT_FALSE(model.isAllSelected(id));
    model.toggle(toQt("/r/m"));
    EXPECT_TRUE(model.isAllSelected(id));
    EXPECT_FALSE(model.isAllSelected(toQt("gone")));
    EXPECT_TRUE(model.filesOf(toQt("gone")).isEmpty());
}

TEST_F(SimilarPhotosModelTest, StopsAndFailsWithoutAReport) {
    const char* stopped = "Comparison stopped. Your files are unchanged.";
    model.cancel();
    EXPECT_EQ(status(), "") << "nothing ran";
    start();
    model.cancel();
    EXPECT_EQ(status(), stopped);
    executor.settle();
    EXPECT_EQ(status(), stopped);
    EXPECT_FALSE(model.isScanning());

    during = [](const auto&) { throw Cancelled{}; };
    start();
    executor.settle();
    EXPECT_EQ(status(), stopped);

    during = [](const auto&) { throw std::runtime_error("broken"); };
    start();
    executor.settle();
    EXPECT_EQ(status(), "Couldn't compare these photos. Try again or choose a smaller folder.");
    EXPECT_FALSE(model.isScanning());
    EXPECT_FALSE(model.report());
}

TEST_F(SimilarPhotosModelTest, ASecondCheckSilencesTheFirst) {
    during = [&](const auto& progress) {
        start(); // while the first is at work
        progress({1, 2, "Reading photos"});
        during = [](const auto&) {};
    };
    start();
    executor.work();
    executor.deliver();
    EXPECT_EQ(status(), "Getting your photos ready…");
    EXPECT_TRUE(model.isScanning());
    report.analyzed = 1;
    executor.settle();
    EXPECT_EQ(status(), "Compared 1 photos.");
}

} // namespace
} // namespace tovi
