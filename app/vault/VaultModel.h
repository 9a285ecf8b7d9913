#pragma once

#include "app/background/Background.h"
#include "app/vault/TimeLeft.h"
#include "app/vault/VaultLists.h"
#include "app/vault/VaultPanels.h"
#include "core/vault/VaultStore.h"

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// The vault as the user sees it: opened, filled, read, and locked by itself when nobody uses it,
/// the user turns to another program, the session is locked or left, the machine goes to sleep or
/// the window closes. One operation runs at a time; another asked for meanwhile is ignored. A lock
/// stops the one that runs and drops its result.
class VaultModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::VaultModel::Phase phase READ phase NOTIFY changed)
    Q_PROPERTY(tovi::RowListModel* items READ items CONSTANT)
    Q_PROPERTY(tovi::RowListModel* importedOriginals READ importedOriginals CONSTANT)
    Q_PROPERTY(int waitingCount READ waitingCount NOTIFY changed)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString activity READ activity NOTIFY changed)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(QString lockReason READ lockReason NOTIFY changed)
    Q_PROPERTY(bool followsSession READ followsSession NOTIFY changed)
    Q_PROPERTY(int secondsUntilLock READ secondsUntilLock NOTIFY secondsUntilLockChanged)
    Q_PROPERTY(int runningSecondsLeft READ runningSecondsLeft NOTIFY runningSecondsLeftChanged)

  public:
    enum class Phase { loading, notCreated, locked, unlocked, unavailable };
    Q_ENUM(Phase)

    static constexpr double idlePeriod = 300; // seconds without input until the vault locks
    static constexpr double idleCheck = 15;   // seconds between two looks at the clock
    /// Seconds for focus to pass from one window of the program to another.
    static constexpr double focusPeriod = 0.25;
    /// Sleep waits while a copy lives.
    using SleepDelay = std::shared_ptr<const void>;

    /// What a vault works with besides its store; all outlive it.
    struct Surroundings {
        Executor& executor;
        VaultPanels& panels;
        std::function<double()> secondsSinceBoot; // goes on while the machine sleeps
    };

    VaultModel(std::unique_ptr<VaultStore> store, Surroundings surroundings);
    ~VaultModel() override;

    Phase phase() const { return phase_; }
    /// Roles: id, name, size (bytes) and importedAt. Empty while locked.
    VaultItemList* items() { return &items_; }
    /// Roles: id, sourceURL and name. The files added since the last unlock.
    VaultOriginalList* importedOriginals() { return &importedOriginals_; }
    /// Files that are added with the next unlocking.
    int waitingCount() const { return static_cast<int>(waiting_.size()); }
    bool isBusy() const { return isBusy_; }
    /// Texts are empty where there is nothing to say.
    QString activity() const { return activity_; }
    QString errorMessage() const { return errorMessage_; }
    QString notice() const { return notice_; }
    QString lockReason() const { return lockReason_; }
    /// Whether locks of the session and sleep can be heard of; the other locks work without.
    bool followsSession() const { return followsSession_; }
    /// Until the vault locks because nobody uses it; -1 unless it is unlocked. Told each second
    /// while somebody is connected to it.
    int secondsUntilLock() const;
    /// About how long the import or export under way still takes; -1 while that is not known.
    int runningSecondsLeft() const { return running_.seconds(); }

    /// Finds out whether there is a vault; once, and again after it could not be opened.
    Q_INVOKABLE void load();
    /// Makes the vault or unlocks it. No copy of the password made here outlives the attempt.
    Q_INVOKABLE void authenticate(const QString& password, bool creating);
    Q_INVOKABLE void chooseFiles();
    /// Adds these files now, or once the vault is open unless they are forgotten before.
    Q_INVOKABLE void addFiles(const QStringList& paths);
    Q_INVOKABLE void forgetWaiting();
    /// Absolute paths.
    void importFiles(const std::vector<std::string>& paths);
    /// Asks where to; `id` is an item's.
    Q_INVOKABLE void exportItem(const QString& id);
    void exportItem(const Uuid& id, const std::string& destination);
    Q_INVOKABLE void lock();

    /// The paths of `importedOriginals`, to be reviewed and moved to the Trash.
    Q_INVOKABLE QStringList originalPaths() const;

    /// Any input of the user. Input that Qt delivers is noticed without.
    Q_INVOKABLE void noteActivity();
    /// Whether a window or dialog of the program is in front, also one that another process shows
    /// for it.
    Q_INVOKABLE void setApplicationActive(bool isActive);
    Q_INVOKABLE void windowClosed();
    /// The machine goes to sleep, or the session is locked or left. `delay` is let go of when the
    /// keys are forgotten.
    void sessionInterrupted(SleepDelay delay);
    void setFollowsSession(bool follows);

    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    void changed();
    void secondsUntilLockChanged();
    void runningSecondsLeftChanged();
    /// After each lock, when the store has forgotten its keys.
    void onLock();

  protected:
    void connectNotify(const QMetaMethod& signal) override;

  private:
    struct Reported;
    struct Passed {
        double done = 0;
        double total = 0;
        std::size_t files = 0;
    };

    template <typename Work, typename Finished>
    void operate(const QString& activity, Work work, Finished finished);
    void setActivity(const QString& activity);
    void fail(const std::string& error);
    bool canShowPanel() const;
    std::uint64_t openPanel();
    bool closePanel(std::uint64_t panel);
    void lockBecause(const QString& reason, SleepDelay delay = nullptr);
    void finishLock(const Outcome<VaultStatus>& status);
    void take(const std::vector<std::string>& paths, Reported& reported);
    void setRunning(TimeLeft running);
    void tellTimeLeft(const Passed& step);
    void checkIdleTimeLater();
    void lockIfIdle();
    double idleTimeLeft() const;
    void tellTimeUntilLock();
    void countDown();

    std::shared_ptr<VaultStore> store_; // jobs under way hold it too
    Surroundings surroundings_;
    Phase phase_ = Phase::loading;
    VaultItemList items_;
    VaultOriginalList importedOriginals_;
    std::vector<std::string> waiting_;
    bool isBusy_ = false;
    bool isLocking_ = false;
    bool followsSession_ = false;
    QString activity_;
    QString errorMessage_;
    QString notice_;
    QString lockReason_;
    double lastActivity_ = 0;
    int toldSecondsUntilLock_ = TimeLeft::unknown;
    bool isCountingDown_ = false;
    TimeLeft running_;
    std::uint64_t panelCount_ = 0;
    std::optional<std::uint64_t> activePanel_;
    std::vector<SleepDelay> sleepDelays_; // given up when the lock is done
    Generation generation_;
    Generation activation_;
};

} // namespace tovi
