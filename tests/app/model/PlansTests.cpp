#include "tests/app/model/ModelFixture.h"

#include <random>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class PlansTest : public ModelFixture {
  protected:
    void SetUp() override {
        for (const char* name : {"a.txt", "b.txt", "c.txt"})
            tree.write(name, "the same words");
        model = start();
        connectTree();
    }
    PlansModel& plans() { return *model->plans(); }
    void instruct(const char* text, const QStringList& selection) {
        model->notices()->dismissError();
        model->selection()->setSelectedIDs(selection);
        model->planAgent(QString::fromUtf8(text));
        executor.settle();
    }
    void confirm() {
        plans().confirmPlan(plans().proposedPlanValues()[QStringLiteral("id")].toString());
        executor.settle();
    }
};

TEST_F(PlansTest, UnderstandsTwoInstructions) {
    const QStringList one{at("a.txt")};
    const QStringList two{at("a.txt"), at("b.txt")};
    const std::string moveTwo = "Move 2 files to Trash";
    struct Case {
        const char* text;
        QStringList selection;
        std::string title; // empty where the instruction is refused
    };
    for (const Case& example :
         std::vector<Case>{{"  Trash SELECTED files\n", two, moveTwo},
                           {"trash selected", two, moveTwo},
                           {"Rename selected to New Name.TXT", one, "Rename file"},
                           {"rename selected to x.txt", two, ""},
                           {"trash selected", {}, ""},
                           {"trash everything", two, ""},
                           {"", one, ""}}) {
        plans().cancelPlan();
        model->selection()->clear();
        instruct(example.text, example.selection);
        ASSERT_EQ(plans().proposedPlan().has_value(), !example.title.empty()) << example.text;
        EXPECT_EQ(error().empty(), !example.title.empty());
        if (example.title.empty()) {
            EXPECT_THAT(error(), StartsWith("Supported plans: ‘trash selected’ or"));
        } else {
            EXPECT_EQ(plans().proposedPlan()->title, example.title);
        }
    }
    instruct("Rename selected to New Name.TXT", one);
    EXPECT_EQ(plans().proposedPlan()->items[0].destinationPath, tree.path("New Name.TXT"));
}

TEST_F(PlansTest, ExecutesWhatWasReviewedAndTakesItBack) {
    instruct("trash selected", {at("a.txt")});
    const QString reviewed = plans().proposedPlanValues()[QStringLiteral("id")].toString();
    instruct("trash selected", {at("b.txt")});
    plans().confirmPlan(reviewed);
    EXPECT_EQ(error(), "The reviewed plan changed. Review the current paths before confirming.");
    EXPECT_FALSE(plans().isExecuting());

    confirm();
    EXPECT_TRUE(fs::exists(tree.path("a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("b.txt")));
    EXPECT_FALSE(plans().proposedPlan());
    ASSERT_THAT(plans().receipts(), SizeIs(1));
    EXPECT_THAT(model->library()->records(), SizeIs(2));
    const QString receipt = plans().actions()->value(0, QStringLiteral("id")).toString();
    const auto shown = [&](const char* role) {
        plans().showReceipt(receipt);
        return plans().receiptFiles()->value(0, QString::fromLatin1(role));
    };
    EXPECT_EQ(shown("path").toString(), at("b.txt"));
    EXPECT_FALSE(shown("isRestored").toBool());

    plans().undoLast();
    executor.settle();
    EXPECT_TRUE(fs::exists(tree.path("b.txt")));
    EXPECT_THAT(model->library()->records(), SizeIs(3));
    EXPECT_TRUE(plans().receipts().front().undone);
    EXPECT_TRUE(shown("isRestored").toBool());
    plans().showReceipt(QStringLiteral("another"));
    EXPECT_EQ(plans().receiptFiles()->count(), 0);
}

TEST_F(PlansTest, FollowsARenameInTheIndexAndInProjectsAtOnce) {
    const auto& spaces = model->spaces()->spaces();
    model->spaces()->createSpace(QStringLiteral("Mine"), {at("a.txt")});
    instruct("rename selected to d.md", {at("a.txt")});
    model->scan()->pauseIndexing();
    confirm();
    model->search()->search(QStringLiteral("d.md"));
    executor.settle();
    ASSERT_THAT(names(model->search()->records()), ElementsAre("d.md"));
    EXPECT_EQ(model->search()->records()[0].path, tree.path("d.md"));
    EXPECT_THAT(spaces.front().paths, ElementsAre(tree.path("d.md")));
    plans().showReceipt(plans().actions()->value(0, QStringLiteral("id")).toString());
    EXPECT_EQ(plans().receiptFiles()->value(0, QStringLiteral("newName")).toString(),
              QStringLiteral("d.md"));
    plans().undoLast();
    executor.settle();
    EXPECT_THAT(spaces.front().paths, ElementsAre(tree.path("a.txt")));
}

TEST_F(PlansTest, RefusesAPlanForAFolderThatWasDisconnected) {
    instruct("trash selected", {at("a.txt")});
    model->removeRoot(QString::fromStdString(tree.path()));
    executor.settle();
    confirm();
    EXPECT_EQ(error(), "The reviewed plan changed. Review the current paths before confirming.");
    EXPECT_TRUE(fs::exists(tree.path("a.txt")));
}

TEST_F(PlansTest, KeepsATrueReceiptOfAPlanThatWasStopped) {
    instruct("trash selected", {at("a.txt"), at("b.txt"), at("c.txt")});
    int moves = 0;
    trash.before = [&](const std::string&) {
        if (++moves == 2) plans().stopExecution();
    };
    confirm();
    EXPECT_THAT(error(), HasSubstr("Cancelled."));
    ASSERT_THAT(plans().receipts(), SizeIs(1));
    EXPECT_THAT(plans().receipts()[0].entries, SizeIs(2));
    EXPECT_FALSE(fs::exists(tree.path("a.txt")) || fs::exists(tree.path("b.txt")));
    EXPECT_TRUE(fs::exists(tree.path("c.txt")));
    plans().undoLast();
    executor.settle();
    EXPECT_TRUE(fs::exists(tree.path("a.txt")) && fs::exists(tree.path("b.txt")));
}

TEST_F(PlansTest, ChangesNothingInAFolderThatTookThePlaceOfTheConnectedOne) {
    instruct("trash selected", {at("a.txt")});
    const std::string away = tree.path() + "-away";
    fs::rename(tree.path(), away);
    fs::copy(away, tree.path(), fs::copy_options::recursive);
    confirm();
    EXPECT_NE(error(), "");
    EXPECT_TRUE(fs::exists(tree.path("a.txt")));
    EXPECT_TRUE(fs::exists(away + "/a.txt"));
    EXPECT_TRUE(model->plans()->receipts().empty());
    fs::remove_all(away);
}

TEST_F(PlansTest, CleansDuplicatesAndShowsThemAgainWhenTakenBack) {
    using namespace std::chrono_literals;
    fs::last_write_time(tree.path("b.txt"), fs::file_time_type::clock::now() - 1h);
    model->scan()->rescan();
    executor.settle();
    DuplicatesModel& duplicates = *model->duplicates();
    duplicates.findDuplicates();
    duplicates.findDuplicates();
    executor.settle();
    ASSERT_THAT(*duplicates.groups(), SizeIs(1));
    EXPECT_EQ(duplicates.reclaimableBytes(), 28);
    const auto stays = [&] {
        const QVariantList files = duplicates.list()->value(0, QStringLiteral("files")).toList();
        return files.front().toMap()[QStringLiteral("path")];
    };
    for (const auto& [rule, name] : {std::pair{"oldest", "b.txt"}, {"shortest-path", "a.txt"}}) {
        duplicates.setKeep(QString::fromUtf8(rule));
        EXPECT_EQ(stays(), at(name)) << rule;
    }
    model->proposeDuplicateTrash(QStringLiteral("of no group"));
    executor.settle();
    EXPECT_EQ(error(), "No verified retained copy exists for this duplicate.");
    model->proposeDuplicateTrash({});
    executor.settle();
    EXPECT_EQ(plans().plannedItems()->count(), 2);
    confirm();
    EXPECT_TRUE(fs::exists(tree.path("a.txt")));
    EXPECT_FALSE(fs::exists(tree.path("b.txt")));
    EXPECT_THAT(*duplicates.groups(), IsEmpty());

    plans().undoLast();
    executor.settle();
    ASSERT_THAT(*duplicates.groups(), SizeIs(1));
    EXPECT_EQ(duplicates.reclaimableBytes(), 28);
    fs::remove(tree.path("b.txt"));
    model->scan()->rescan();
    executor.settle();
    EXPECT_THAT(duplicates.groups()->front()->files, SizeIs(2));
    EXPECT_EQ(duplicates.reclaimableBytes(), 14);
}

TEST_F(PlansTest, ProposesAsManyDuplicatesAsOnePlanTakes) {
    for (int n = 0; n < 600; ++n)
        tree.write("copies/" + std::to_string(n), "many of these");
    model->scan()->rescan();
    executor.settle();
    model->duplicates()->findDuplicates();
    executor.settle();
    ASSERT_THAT(*model->duplicates()->groups(), SizeIs(2));
    EXPECT_THAT(model->duplicates()->groups()->front()->files, SizeIs(600)) << "frees the most";
    model->proposeDuplicateTrash({});
    executor.settle();
    EXPECT_EQ(plans().plannedItems()->count(), 500);
    EXPECT_EQ(plans().proposedPlanValues()[QStringLiteral("leftCount")].toInt(), 101);

    QStringList photos;
    for (const FileRecord& file : model->duplicates()->groups()->front()->files)
        photos.append(QString::fromStdString(file.path));
    plans().proposePhotoTrash(photos);
    executor.settle();
    EXPECT_EQ(plans().plannedItems()->count(), 500);
    EXPECT_EQ(plans().proposedPlanValues()[QStringLiteral("leftCount")].toInt(), 100);
    EXPECT_EQ(plans().proposedPlanValues()[QStringLiteral("retainedCount")].toInt(), 0);
}

TEST_F(PlansTest, ReviewsOriginalsOfTheVaultInsideConnectedFoldersOnly) {
    const QString outside = QString::fromStdString(data.write("outside.txt"));
    plans().proposeVaultOriginalTrash({outside, at("a.txt")});
    executor.settle();
    EXPECT_THAT(error(), StartsWith("Your encrypted copies are saved. To remove originals"));
    ASSERT_TRUE(plans().isVaultOriginalReview());
    EXPECT_THAT(plans().proposedPlan()->items, SizeIs(1));
    plans().cancelVaultOriginalReview();
    EXPECT_FALSE(plans().proposedPlan());
}

TEST_F(PlansTest, WhateverIsAskedForInWhichOrderLosesNothingAndEndsTrue) {
    const QString one = QString::fromStdString(tree.makeDirectory("one"));
    tree.write("one/d.txt", "the same words");
    bool isInMaintenance = false;
    bool hasBegun = false;
    const std::vector<std::function<void()>> operations{
        [&] { executor.deliver(); },
        [&] { executor.advance(7); },
        [&] { connectTree(); },
        [&] { model->folders()->grantFolders({one}); },
        [&] { model->removeRoot(one); },
        [&] { model->removeRoot(QString::fromStdString(tree.path())); },
        [&] { model->scan()->rescan(); },
        [&] { model->scan()->pauseIndexing(); },
        [&] { model->resetIndex(); },
        [&] { filesChange(); },
        [&] { model->search()->search(QStringLiteral("words")); },
        [&] { model->settings()->setDeveloperMode(!model->settings()->developerMode()); },
        [&] { model->duplicates()->findDuplicates(); },
        [&] { model->duplicates()->cancel(); },
        [&] { model->spaces()->createSpace(QStringLiteral("Mine"), {at("a.txt")}); },
        [&] {
            plans().proposeTrash({at("a.txt"), at("one/d.txt")});
        },
        [&] { plans().proposeRename(at("b.txt"), QStringLiteral("e.txt")); },
        [&] { plans().confirmPlan(plans().proposedPlanValues()[QStringLiteral("id")].toString()); },
        [&] { plans().cancelPlan(); },
        [&] { plans().stopExecution(); },
        [&] { plans().undoLast(); },
        [&] {
            if (isInMaintenance) return;
            isInMaintenance = model->beginCleanupMaintenance([&] { hasBegun = true; });
        },
        [&] {
            if (std::exchange(hasBegun, false)) model->finishCleanupMaintenance(true);
            isInMaintenance = isInMaintenance && hasBegun;
        }};
    std::mt19937 random(11);
    for (int round = 0; round < 20; ++round) {
        for (int step = 0; step < 40; ++step) {
            if (random() % 2 == 0 && executor.workCount() > 0) {
                executor.work(random() % executor.workCount());
            } else {
                operations[random() % operations.size()]();
            }
        }
        executor.settle();
        operations.back()();
        isInMaintenance = false;
        plans().cancelPlan();
        connectTree();
        if (model->scan()->isPaused()) model->scan()->pauseIndexing();
        model->scan()->rescan();
        executor.advance(30);

        std::vector<std::string> onDisk;
        for (const auto& file : fs::recursive_directory_iterator(tree.path())) {
            if (file.is_regular_file()) onDisk.push_back(file.path());
        }
        std::size_t inTrash = 0;
        for ([[maybe_unused]] const auto& file : fs::directory_iterator(data.path("trash")))
            ++inTrash;
        std::vector<std::string> known;
        for (const FileRecord& file : model->library()->records())
            known.push_back(file.path);
        ASSERT_EQ(onDisk.size() + inTrash, 4U) << "round " << round;
        ASSERT_THAT(known, testing::UnorderedElementsAreArray(onDisk)) << "round " << round;
        ASSERT_FALSE(plans().isExecuting() || model->scan()->isIndexing());
        ASSERT_EQ(watched, model->folders()->availablePaths());
        ASSERT_EQ(PreferencesFile(data.path("preferences.json")).read().roots,
                  model->folders()->roots());
    }
}

TEST_F(PlansTest, KeepsADeletedProjectForEightSeconds) {
    SpacesModel& spaces = *model->spaces();
    EXPECT_EQ(spaces.createSpace(QStringLiteral("  ")), QString());
    const QString id =
        spaces.createSpace(QStringLiteral("Taxes "), {at("a.txt"), at("a.txt"), at("b.txt")});
    EXPECT_TRUE(spaces.removeFromSpace(id, {at("a.txt")}));
    EXPECT_FALSE(spaces.renameSpace(QStringLiteral("unknown"), QStringLiteral("x")));
    EXPECT_TRUE(spaces.removeSpace(id));
    executor.advance(7);
    EXPECT_TRUE(spaces.showsDeletedSpaceNotice());
    EXPECT_THAT(preferences(), HasSubstr("recentlyDeletedSpace"));
    EXPECT_TRUE(spaces.restoreDeletedSpace());
    EXPECT_FALSE(spaces.showsDeletedSpaceNotice());
    EXPECT_EQ(spaces.spaces().front().name, "Taxes");
    EXPECT_THAT(spaces.spaces().front().paths, ElementsAre(tree.path("b.txt")));

    spaces.removeSpace(id);
    executor.advance(4); // the first deletion's eight seconds are over, the second's are not
    EXPECT_TRUE(spaces.showsDeletedSpaceNotice());
    executor.advance(5);
    EXPECT_FALSE(spaces.showsDeletedSpaceNotice());
    EXPECT_FALSE(spaces.restoreDeletedSpace());
    executor.settle();
    EXPECT_THAT(preferences(), testing::Not(HasSubstr("recentlyDeletedSpace")));
}

TEST_F(PlansTest, CopiesTheStoredTextAndSaysOfWhat) {
    tree.write("photo.bin", std::string("\xff\0\x01", 3));
    model->scan()->rescan();
    executor.settle();
    const auto message = [&](const QStringList& selection) {
        model->selection()->setSelectedIDs(selection);
        model->copyIndexedText();
        executor.settle();
        return model->copyText()->copyTextMessage().toStdString();
    };
    EXPECT_EQ(message({at("photo.bin")}),
              "No readable text yet. Wait for scanning to finish, or choose a different file.");
    EXPECT_EQ(clipboard.text, "");
    executor.advance(5);
    EXPECT_EQ(message({at("a.txt")}), "Text copied from a.txt");
    executor.advance(4); // the first notice's time is over
    EXPECT_EQ(model->copyText()->copyTextMessage().toStdString(), "Text copied from a.txt");
    EXPECT_EQ(message({at("a.txt"), at("b.txt"), at("photo.bin")}),
              "Text copied from 2 files; 1 file left out (photo.bin) because no readable text was "
              "found.");
    EXPECT_EQ(clipboard.text, "the same words\n\nthe same words");
    clipboard.works = false;
    EXPECT_EQ(message({at("a.txt")}), "Couldn’t copy text. Please try again.");
    executor.advance(8);
    EXPECT_EQ(model->copyText()->copyTextMessage(), QString());
}

TEST_F(PlansTest, StopsCopyingAtEightMebibytes) {
    IndexStore store(data.path("index.sqlite"));
    QStringList paths;
    for (int n = 0; n < 9; ++n) {
        FileRecord record;
        record.path = "/large/" + std::to_string(n);
        record.content = std::string(1 << 20, 'x');
        store.upsert(record);
        paths.append(QString::fromStdString(record.path));
    }
    model->selection()->setSelectedIDs(paths);
    model->copyIndexedText();
    executor.settle();
    EXPECT_EQ(model->copyText()->copyTextMessage().toStdString(),
              "Text copied from 7 files; choose fewer files to copy more.");
    EXPECT_LE(clipboard.text.size(), CopyTextModel::largestText);
}

} // namespace
} // namespace tovi
