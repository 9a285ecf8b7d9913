#include "tests/app/model/ModelFixture.h"
#include "ui/desktop/LongWorkNotices.h"
#include "ui/desktop/Notifications.h"

#include <QDBusMessage>
#include <QTest>

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

TEST_F(LongWorkTest, OffersToTakeALongMoveBack) {
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
}

/// A stand-in for the desktop's notifications.
class Daemon : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

  public Q_SLOTS:
    // NOLINTNEXTLINE(readability-identifier-naming)
    uint Notify(const QString&, uint, const QString&, const QString& title, const QString&,
                const QStringList& actions, const QVariantMap&, int) {
        shown << title + QLatin1Char(':') + actions.join(QLatin1Char(','));
        return 7;
    }

  public:
    QStringList shown;
};

TEST(Notifications, ShowsActionsAndDoesTheChosenOne) {
    const QString name = QStringLiteral("org.freedesktop.Notifications");
    const QString path = QStringLiteral("/org/freedesktop/Notifications");
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("daemon"));
    Daemon daemon;
    ASSERT_TRUE(bus.registerObject(path, &daemon, QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(bus.registerService(name));
    const auto say = [&](const QString& signal, const QVariant& value) {
        QDBusMessage message = QDBusMessage::createSignal(path, name, signal);
        message << 7U << value;
        bus.send(message);
    };
    Notifications notifications(QDBusConnection::sessionBus());
    QStringList done;
    const auto note = [&](const QString& text) {
        return Notifications::Action{text,
                                     [&done, text](const QString& token) { done << text + token; }};
    };
    notifications.show(QStringLiteral("T"), QStringLiteral("x"),
                       {note(QStringLiteral("Show")), note(QStringLiteral("Undo"))});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !daemon.shown.isEmpty(); }));
    EXPECT_EQ(daemon.shown.first(), QStringLiteral("T:default,Show,0,Show,1,Undo"));
    ASSERT_TRUE(QTest::qWaitFor([&] {
        say(QStringLiteral("ActivationToken"), QStringLiteral("!"));
        say(QStringLiteral("ActionInvoked"), QStringLiteral("1"));
        say(QStringLiteral("ActionInvoked"), QStringLiteral("default"));
        return done.size() > 2;
    }));
    EXPECT_EQ(done.mid(0, 2), QStringList({QStringLiteral("Undo!"), QStringLiteral("Show")}));
}

} // namespace
} // namespace tovi

#include "LongWorkTests.moc"
