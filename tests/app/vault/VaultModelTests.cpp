#include "app/lists/QtConversions.h"
#include "app/vault/SessionLock.h"
#include "tests/core/vault/VaultFixture.h"
#include "tests/support/ManualExecutor.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QMouseEvent>
#include <random>
#include <thread>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Phase = VaultModel::Phase;
using SignalKind = platform::SessionSignals::Kind;

constexpr const char* inactive = "Locked after 5 minutes of inactivity.";
constexpr const char* leftProgram = "Locked when you left Tovi.";
constexpr const char* interrupted = "Locked when your Mac went to sleep or changed sessions.";
constexpr const char* closed = "Locked when the window closed.";

class FakePanels final : public VaultPanels {
  public:
    void chooseFiles(const OpenRequest& request, OpenAnswer answer) override {
        title = request.title;
        open = std::move(answer);
    }
    void chooseDestination(const SaveRequest& request, SaveAnswer answer) override {
        title = request.title;
        name = request.name;
        save = std::move(answer);
    }
    void close() override {
        ++closings;
        if (open) open({});
        if (save) save(std::nullopt);
    }
    std::string title;
    std::string name;
    OpenAnswer open;
    SaveAnswer save;
    int closings = 0;
};

class FakeSignals final : public platform::SessionSignals {
  public:
    void start(Handler newHandler) override { handler = std::move(newHandler); }
    void stop() override { handler = nullptr; }
    Handler handler;
};

class VaultModelTest : public VaultFixture {
  protected:
    static QString passwordText() { return toQt(password); }
    void create() {
        model.load();
        executor.settle();
        model.authenticate(passwordText(), true);
        executor.settle();
        ASSERT_EQ(model.phase(), Phase::unlocked) << fromQt(model.errorMessage());
    }
    void unlock() {
        model.authenticate(passwordText(), false);
        executor.settle();
        ASSERT_EQ(model.phase(), Phase::unlocked);
    }
    void import(const std::vector<std::string>& paths) {
        model.importFiles(paths);
        executor.settle();
    }
    /// Time passes with the machine awake.
    void wait(double seconds) {
        asleep += seconds;
        executor.advance(0);
        asleep -= seconds;
        executor.advance(seconds);
    }
    void expectLocked(const std::string& reason) {
        EXPECT_EQ(model.phase(), Phase::locked);
        EXPECT_EQ(fromQt(model.lockReason()), reason);
        EXPECT_EQ(model.items()->count() + model.importedOriginals()->count(), 0);
        EXPECT_FALSE(model.isBusy());
        EXPECT_EQ(store->status(), VaultStatus::locked);
    }
    std::string notice() const { return fromQt(model.notice()); }
    std::string error() const { return fromQt(model.errorMessage()); }

    test::ManualExecutor executor;
    FakePanels panels;
    double asleep = 0; // seconds
    VaultStore* store = nullptr;
    VaultModel model{[this] {
                         auto made = openStore();
                         store = made.get();
                         return made;
                     }(),
                     {executor, panels, [this] { return executor.uptime() + asleep; }}};
    QAbstractItemModelTester tester{model.items(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(VaultModelTest, OpensFillsAndReadsAVault) {
    model.load();
    EXPECT_EQ(model.phase(), Phase::loading);
    executor.settle();
    EXPECT_EQ(model.phase(), Phase::notCreated);
    model.authenticate(QStringLiteral("short"), true);
    EXPECT_EQ(fromQt(model.activity()), "Creating your encrypted vault…");
    executor.settle();
    EXPECT_EQ(model.phase(), Phase::notCreated);
    EXPECT_EQ(error(), "Use a password or passphrase with at least 12 characters.");
    create();

    model.chooseFiles();
    EXPECT_EQ(panels.title, "Add encrypted copies");
    panels.open({tree.write("a", "alpha"), tree.makeDirectory("folder\n"), tree.write("b", "beta"),
                 tree.write("c.placeholder")});
    EXPECT_EQ(fromQt(model.activity()), "Encrypting file 1 of 4…");
    model.lock(); // before the first file is begun
    executor.settle();
    expectLocked("");

    unlock();
    import({tree.path("a"), tree.path("folder\n"), tree.path("b"), tree.path("c.placeholder")});
    EXPECT_EQ(notice(), "2 encrypted copies saved. Originals remain outside the vault.");
    EXPECT_EQ(error(),
              "folder\\n: Choose a regular file. Compress folders, app bundles, aliases or files "
              "with resource forks into a ZIP first. Symbolic links are not supported.\n"
              "c.placeholder: This file is not available locally. Download it in Finder first, "
              "then add it to the Vault.");
    EXPECT_EQ(model.originalPaths(), QStringList({toQt(tree.path("a")), toQt(tree.path("b"))}));
    import({tree.path("a")});
    EXPECT_EQ(notice(), "1 encrypted copy saved. Originals remain outside the vault.");

    const QString id = model.items()->value(1, QStringLiteral("id")).toString();
    for (const auto& [name, result] : std::vector<std::pair<std::string, std::string>>{
             {"x/y", "Choose a filename without path separators."},
             {"a", "A file already exists at that destination. Choose another name."},
             {"new", ""}}) {
        model.exportItem(id);
        EXPECT_EQ(panels.name, "b");
        panels.save(VaultPanels::Destination{tree.path(), name});
        executor.settle();
        EXPECT_EQ(error(), result);
    }
    EXPECT_EQ(notice(), "Decrypted copy exported. It is readable outside the vault.");
    EXPECT_EQ(test::readFile(tree.path("new")), "beta");

    model.lock();
    executor.settle();
    model.addFiles({toQt(tree.path("a"))});
    model.authenticate(QStringLiteral("twelve wrong chars"), false);
    executor.settle();
    expectLocked("");
    EXPECT_EQ(error(), "The password is incorrect, or the Vault metadata is damaged.");
    EXPECT_EQ(model.waitingCount(), 1);
    model.forgetWaiting();
    unlock();
    EXPECT_EQ(model.items()->count(), 3);
    EXPECT_TRUE(model.originalPaths().isEmpty());
    model.lock();
    executor.settle();
    model.addFiles({toQt(tree.path("a"))});
    unlock();
    EXPECT_EQ(notice(), "1 encrypted copy saved. Originals remain outside the vault.");
    EXPECT_EQ(model.waitingCount(), 0);
}

TEST_F(VaultModelTest, LocksWhenNobodyUsesIt) {
    create();
    wait(299);
    QMouseEvent move(QEvent::MouseMove, {}, {}, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&model, &move);
    wait(290);
    EXPECT_EQ(model.phase(), Phase::unlocked);
    wait(30);
    expectLocked(inactive);

    unlock();
    asleep += 400;
    model.noteActivity(); // comes before the next look at the clock
    executor.settle();
    expectLocked(inactive);
    unlock();
    asleep += 400;
    executor.advance(VaultModel::idleCheck);
    expectLocked(inactive);
}

TEST_F(VaultModelTest, TellsTheTimeLeftWhileSomebodyListens) {
    create();
    EXPECT_EQ(model.secondsUntilLock(), 300);
    EXPECT_EQ(executor.timerCount(), 1U) << "nobody listens";
    std::vector<int> told;
    QObject listener;
    QObject::connect(&model, &VaultModel::secondsUntilLockChanged, &listener,
                     [&] { told.push_back(model.secondsUntilLock()); });
    executor.advance(3);
    EXPECT_EQ(told, std::vector({299, 298, 297}));
    model.noteActivity();
    asleep += 297.5;
    executor.advance(1);
    EXPECT_EQ(told, std::vector({299, 298, 297, 300, 2}));
    executor.advance(2); // sooner than the next look at the clock
    expectLocked(inactive);
    EXPECT_EQ(model.secondsUntilLock(), -1);
    EXPECT_EQ(executor.timerCount(), 1U);

    unlock();
    std::vector<int> left;
    QObject::connect(&model, &VaultModel::runningSecondsLeftChanged, &listener,
                     [&] { left.push_back(model.runningSecondsLeft()); });
    hook = [&, main = std::this_thread::get_id()](vault::FileCalls::Call call) {
        if (call == vault::FileCalls::Call::write && std::this_thread::get_id() == main) {
            executor.pass(1); // what each mebibyte takes
            executor.deliver();
        }
        return 0;
    };
    const auto expectCountdown = [&] {
        ASSERT_GE(left.size(), 3U);
        EXPECT_NEAR(left.front(), 4, 2);
        EXPECT_EQ(left.back(), -1);
        EXPECT_TRUE(std::is_sorted(left.rbegin(), left.rend()));
        left.clear();
    };
    import({tree.write("big", std::string(3 << 20, 'x'))});
    expectCountdown();
    model.exportItem(model.items()->rows().front().id, tree.path("copy"));
    executor.settle();
    expectCountdown();
}

TEST_F(VaultModelTest, LocksWhenTheProgramOrTheSessionIsLeft) {
    FakeSignals signals;
    SessionLock sessionLock(signals, executor, model);
    signals.handler({SignalKind::connected, nullptr});
    create();
    EXPECT_TRUE(model.followsSession());

    model.setApplicationActive(false);
    model.setApplicationActive(true); // focus passed to a dialog of ours
    executor.advance(1);
    EXPECT_EQ(model.phase(), Phase::unlocked);
    model.setApplicationActive(false);
    executor.advance(1);
    expectLocked(leftProgram);

    unlock();
    model.windowClosed();
    executor.settle();
    expectLocked(closed);

    for (const SignalKind kind : {SignalKind::locked, SignalKind::left, SignalKind::sleep}) {
        unlock();
        auto delay = std::make_shared<const int>(0);
        const std::weak_ptr<const void> isHeld = delay;
        signals.handler({kind, std::move(delay)});
        executor.deliver();
        EXPECT_EQ(model.phase(), Phase::locked);
        EXPECT_EQ(fromQt(model.activity()), "Locking vault…");
        EXPECT_EQ(store->status(), VaultStatus::unlocked);
        EXPECT_FALSE(isHeld.expired()) << "sleep came before the keys were forgotten";
        executor.settle();
        EXPECT_TRUE(isHeld.expired());
        expectLocked(interrupted);
    }
    signals.handler({SignalKind::disconnected, nullptr});
    executor.settle();
    EXPECT_FALSE(model.followsSession());
}

TEST_F(VaultModelTest, LocksInTheMiddleOfAnything) {
    model.load();
    executor.settle();
    model.lock(); // nothing is open
    EXPECT_EQ(model.phase(), Phase::notCreated);
    model.authenticate(passwordText(), true);
    model.windowClosed();
    executor.settle();
    EXPECT_EQ(model.phase(), Phase::notCreated);
    EXPECT_FALSE(fs::exists(vaultPath + "/manifest.ardeno-vault"));
    create();
    import({tree.write("a", "alpha")});

    int locks = 0;
    QObject::connect(&model, &VaultModel::onLock, [&] { ++locks; });
    model.exportItem(model.items()->value(0, QStringLiteral("id")).toString());
    model.lock();
    executor.settle();
    EXPECT_EQ(panels.closings, 1);
    panels.save(VaultPanels::Destination{tree.path(), "late"});
    executor.settle();
    EXPECT_FALSE(fs::exists(tree.path("late")));

    model.authenticate(passwordText(), false);
    executor.work(); // the password was right, but its result comes after the lock
    model.windowClosed();
    executor.settle();
    expectLocked(closed);

    unlock();
    const auto before = contents(vaultPath);
    const std::string big = tree.write("big", std::string(5 << 20, 'x'));
    bool isHit = false;
    hook = [&, main = std::this_thread::get_id()](vault::FileCalls::Call call) {
        if (!isHit && call == vault::FileCalls::Call::write && std::this_thread::get_id() == main) {
            isHit = true;
            model.windowClosed();
        }
        return 0;
    };
    import({big});
    EXPECT_TRUE(isHit);
    expectLocked(closed);
    EXPECT_EQ(contents(vaultPath), before);
    EXPECT_EQ(locks, 3);
}

TEST_F(VaultModelTest, WhateverIsAskedForInWhichOrderKeepsEveryCopyAndLocksWhole) {
    create();
    import({tree.write("a", "alpha")});
    const QString id = model.items()->value(0, QStringLiteral("id")).toString();
    const std::vector<std::function<void()>> operations{
        [&] { executor.deliver(); },
        [&] { executor.advance(7); },
        [&] { asleep += 400; },
        [&] { model.load(); },
        [&] { model.authenticate(passwordText(), false); },
        [&] { model.authenticate(passwordText(), true); },
        [&] { model.authenticate(QStringLiteral("twelve wrong chars"), false); },
        [&] { model.chooseFiles(); },
        [&] {
            if (panels.open) std::exchange(panels.open, nullptr)({tree.path("a")});
        },
        [&] {
            model.importFiles({tree.path("a"), tree.path("missing")});
        },
        [&] { model.exportItem(id); },
        [&] {
            if (panels.save) std::exchange(panels.save, nullptr)({{tree.path(), "copy"}});
        },
        [&] { model.noteActivity(); },
        [&] { model.setApplicationActive(false); },
        [&] { model.setApplicationActive(true); },
        [&] { model.windowClosed(); },
        [&] { model.sessionInterrupted(nullptr); },
        [&] { model.lock(); }};
    std::mt19937 random(5);
    int unlocked = 0;
    for (int round = 0; round < 16; ++round) {
        for (auto n = random() % 16; n > 0; --n)
            operations[random() % operations.size()]();
        executor.settle();
        ASSERT_FALSE(model.isBusy()) << "round " << round;
        ASSERT_TRUE(model.phase() == Phase::locked || model.phase() == Phase::unlocked);
        ASSERT_EQ(store->status() == VaultStatus::unlocked, model.phase() == Phase::unlocked);
        ASSERT_EQ(model.items()->count() > 0, model.phase() == Phase::unlocked);
        unlocked += model.phase() == Phase::unlocked ? 1 : 0;
        if (model.phase() == Phase::unlocked && random() % 2 == 0) model.lock();
        executor.settle();
        unlock();
        fs::remove(tree.path("copy"));
        model.exportItem(model.items()->rows().back().id, tree.path("copy"));
        executor.settle();
        ASSERT_EQ(test::readFile(tree.path("copy")), "alpha") << "round " << round;
    }
    EXPECT_GT(unlocked, 2);
    EXPECT_LT(unlocked, 14);
}

} // namespace
} // namespace tovi
