#pragma once

#include "app/model/FoldersModel.h"
#include "app/model/ScanRun.h"
#include "app/model/SettingsModel.h"

#include <QStringList>
#include <limits>

namespace tovi {

/// Starts, pauses and repeats scans of the connected folders and publishes their progress. At
/// most one scan runs.
class ScanModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isIndexing READ isIndexing NOTIFY changed)
    Q_PROPERTY(bool isPaused READ isPaused NOTIFY changed)
    Q_PROPERTY(qint64 indexedCount READ indexedCount NOTIFY indexedCountChanged)
    Q_PROPERTY(QString activeScanRootPath READ activeScanRootPath NOTIFY changed)
    Q_PROPERTY(QStringList scanIssues READ scanIssues NOTIFY changed)

  public:
    /// `automaticRescanInterval`, in seconds, lies between the starts of two automatic scans; a
    /// negative one is taken as 0.
    ScanModel(ModelContext& context, FoldersModel& folders, const SettingsModel& settings,
              const FileIndexer& indexer, double automaticRescanInterval);
    ~ScanModel() override;

    bool isIndexing() const { return isIndexing_; }
    bool isPaused() const { return isPaused_; }

    /// Files in the index; while a scan runs, files it has handled.
    qint64 indexedCount() const { return indexedCount_; }
    void setIndexedCount(qint64 count);

    /// Empty while no scan runs.
    QString activeScanRootPath() const { return activeScanRootPath_; }

    /// Problems of the last scan, one line each.
    QStringList scanIssues() const { return scanIssues_; }

    /// Starts a scan of all connected folders, or asks for one after what is under way.
    Q_INVOKABLE void rescan();
    /// Pauses, or goes on with a new scan.
    Q_INVOKABLE void pauseIndexing();
    /// Pauses without a scan under way or a word about it.
    void pauseQuietly();

    /// Starts over, for instance because the rules have changed.
    void restart();

    /// Scans again because folders were connected, those first.
    void restartForConnectedFolders(const QString& name, const QStringList& paths);

    /// Stops the scan under way and calls back once none runs, at once if none does. The caller
    /// has begun maintenance, so that no other starts; with `again` the scan is repeated after it.
    void whenStopped(bool again, std::function<void()> callback);

    /// Runs what was asked for during maintenance.
    void maintenanceFinished();

    /// The monitor's handler.
    void filesDidChange();

  Q_SIGNALS:
    void changed();
    void indexedCountChanged();
    void libraryFilled();              // now and then during a scan
    void scanEnded(bool hasCompleted); // cancelled or failed if not

  private:
    void scanRoots(const std::vector<FolderGrant>& roots);
    void publishScanProgress(std::uint64_t generation, const PublishedProgress& progress);
    void ended(const Outcome<ScanOutcome>& outcome);
    void scheduleAutomaticRescan();
    bool mayScanByItself() const;

    ModelContext& context_;
    FoldersModel& folders_;
    const SettingsModel& settings_;
    const FileIndexer& indexer_;
    const double automaticRescanInterval_;

    bool isIndexing_ = false;
    bool isPaused_ = false;
    qint64 indexedCount_ = 0;
    QString activeScanRootPath_;
    QStringList scanIssues_;

    std::stop_source stop_;
    std::uint64_t scanGeneration_ = 0;
    bool pendingRescan_ = false;
    std::vector<std::string> preferredScanRoots_;
    std::vector<std::string> unavailable_; // of the scan under way
    std::vector<std::function<void()>> waiting_;
    double lastProgressUptime_ = -std::numeric_limits<double>::infinity();
    double lastScanRefreshUptime_ = -std::numeric_limits<double>::infinity();
    double lastScanStartedUptime_ = -std::numeric_limits<double>::infinity();
    bool pendingAutomaticRescan_ = false;
    bool isAutomaticRescanScheduled_ = false;
};

} // namespace tovi
