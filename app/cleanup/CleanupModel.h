#pragma once

#include "app/cleanup/CleanupCandidates.h"
#include "app/cleanup/CleanupSettings.h"
#include "app/model/AppModel.h"
#include "core/cleanup/CleanupTrashService.h"

#include <QStringList>
#include <QVariantMap>

namespace tovi {

/// What the cleanup is built on; everything outlives the model.
struct CleanupModelSystem {
    Executor& executor;
    FileActionSystem actions;
    const platform::RunningPrograms& programs;
    std::string dataHome;      // of the user: the Trash and the list of recently used files
    std::string dataDirectory; // of the application
    CleanupFolders folders;
};

/// Finds what may be cleaned up in the connected folders, and moves what the user selected,
/// reviewed and confirmed to the Trash. Stands beside `AppModel`, which outlives it and whose
/// notices it uses. Lives on the main thread; all that blocks runs away from it. One operation
/// runs at a time, and scans that nobody asked for wait until nothing else runs.
class CleanupModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::CleanupCandidates* candidates READ candidates CONSTANT)
    Q_PROPERTY(tovi::RowListModel* history READ history CONSTANT)
    Q_PROPERTY(tovi::RowListModel* receiptFiles READ receiptFiles CONSTANT)
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY reportChanged)
    Q_PROPERTY(QVariantMap report READ reportValues NOTIFY reportChanged)
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY changed)
    Q_PROPERTY(qint64 scannedEntries READ scannedEntries NOTIFY changed)
    Q_PROPERTY(QString scannedPath READ scannedPath NOTIFY changed)
    Q_PROPERTY(bool isPreparingReview READ isPreparingReview NOTIFY changed)
    Q_PROPERTY(bool isExecuting READ isExecuting NOTIFY changed)
    Q_PROPERTY(QVariantMap proposedPlan READ proposedPlanValues NOTIFY changed)
    Q_PROPERTY(tovi::RowListModel* plannedItems READ plannedItems CONSTANT)
    Q_PROPERTY(bool automaticRefresh READ automaticRefresh WRITE setAutomaticRefresh NOTIFY
                   settingsChanged)
    Q_PROPERTY(int refreshHours READ refreshHours WRITE setRefreshHours NOTIFY settingsChanged)
    Q_PROPERTY(QString folder READ folder WRITE setFolder NOTIFY settingsChanged)

  public:
    CleanupModel(AppModel& app, CleanupModelSystem system);
    /// Asks all work to stop and saves what is not saved yet.
    ~CleanupModel() override;

    CleanupCandidates* candidates() { return &candidates_; }

    /// Receipts, newest first. Roles: id, title, date, count, restoredCount, bytes, firstPaths
    /// (where the first three files were), symbol, undone, canUndo, error.
    RowListModel* history() { return &history_; }
    /// All items of the receipt that was asked for last.
    RowListModel* receiptFiles() { return &receiptFiles_; }
    Q_INVOKABLE void showReceipt(const QString& receipt);

    bool hasReport() const { return report_.has_value(); }
    /// scannedFiles, scannedBytes, skippedCount, issues (sentences), notice, isPartial,
    /// reachedLimit, startedAt, finishedAt; empty before the first scan has ended.
    QVariantMap reportValues() const;

    /// What the scan does or how it ended, in a line.
    QString status() const { return status_; }
    /// Whether the data directory is open and a folder connected.
    bool isReady() const { return service_ && !app_.folders()->availablePaths().empty(); }
    bool isScanning() const { return isScanning_; }
    qint64 scannedEntries() const { return scannedEntries_; }
    QString scannedPath() const { return scannedPath_; }
    bool isPreparingReview() const { return isPreparingReview_; }
    /// Whether items are being moved to the Trash or back.
    bool isExecuting() const { return isExecuting_; }
    /// id, title, explanation and totalSize; empty unless a plan waits to be confirmed.
    QVariantMap proposedPlanValues() const;
    /// Its items. Roles: path, size and categoryTitle.
    RowListModel* plannedItems() { return &items_; }

    /// Whether to scan from time to time without being asked.
    bool automaticRefresh() const { return settings_.automaticRefresh; }
    void setAutomaticRefresh(bool isOn);
    /// Between two of those scans: 1 to 8,760.
    int refreshHours() const { return static_cast<int>(settings_.refreshHours); }
    void setRefreshHours(int hours);
    /// The only folder to scan, a connected one or one below; empty for all connected folders.
    QString folder() const;
    void setFolder(const QString& folder);

    /// Scans now, in place of a scan that runs; what was selected stays so if it is still there.
    Q_INVOKABLE void scan();
    Q_INVOKABLE void stopScan();

    /// Proposes to move the selected items to the Trash; a refusal is the error message.
    Q_INVOKABLE void review();
    Q_INVOKABLE void cancelReview();
    /// Executes the plan that the user reviewed, which `reviewedID` names.
    Q_INVOKABLE void confirm(const QString& reviewedID);
    /// Asks an execution to stop after the item it is at.
    Q_INVOKABLE void stopExecution();
    Q_INVOKABLE void undo(const QString& receipt);
    /// Takes back the last change, be it a cleanup or one of files.
    Q_INVOKABLE void undoLast();

    void refreshHistory();

  Q_SIGNALS:
    void changed();
    void reportChanged();
    void settingsChanged();
    void executed(const QString& receipt);
    void undone(); // the status says what

  private:
    struct Service;
    struct Opened;
    struct Review;
    enum class Cause { user, schedule };

    void open();
    void finishOpening(Opened opened);
    void accessChanged();
    void scanFor(Cause cause);
    void showProgress(std::uint64_t job, const CleanupSearchProgress& progress);
    void scanEnded(Cause cause, Outcome<CleanupFindings> outcome);
    bool interruptScan();
    void refreshIfDue();
    void refreshSoon();
    void refreshNowAndThen();
    void setPlan(std::optional<CleanupPlan> plan);
    void beginMoving(std::function<void()> begun);
    void movingEnded(bool hasChangedFiles);
    void execute();
    void executionEnded(const Outcome<CleanupReceipt>& outcome);
    void settingsEdited();
    void savePending();
    void setStatus(const QString& status);

    AppModel& app_;
    CleanupModelSystem system_;
    CleanupCandidates candidates_;
    DifferenceListModel<CleanupReceipt> history_;
    ReceiptFiles receiptFiles_;
    std::shared_ptr<Service> service_;
    std::optional<CleanupReport> report_;
    std::optional<CleanupPlan> plan_;
    DifferenceListModel<CleanupPlannedItem> items_; // of the plan
    QString status_;
    QString scannedPath_;
    qint64 scannedEntries_ = 0;
    double shownProgressUptime_ = 0;
    bool isOpening_ = false;
    bool isScanning_ = false;
    bool isPreparingReview_ = false;
    bool isExecuting_ = false;
    std::optional<Date> lastScan_;         // begun
    std::vector<std::string> lastScanned_; // the folders that were connected then
    Generation scanGeneration_;
    Generation reviewGeneration_;
    Generation historyGeneration_;
    std::stop_source execution_;

    CleanupSettings settings_;
    std::shared_ptr<CleanupSettingsFile> settingsFile_; // none if it must not be written
    std::uint64_t settingsRevision_ = 0;
    bool hasUnsavedSettings_ = false;
    bool isSaving_ = false;
};

} // namespace tovi
