#include "app/model/ScanModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

#include <algorithm>

namespace tovi {
namespace {

constexpr double progressInterval = 0.5; // seconds
constexpr double refreshInterval = 3.0;  // seconds
constexpr const char* pausedStatus = "Indexing paused · existing results remain searchable";

/// The available roots, those that were just connected first.
std::vector<FolderGrant> scanOrder(const std::vector<FolderGrant>& roots,
                                   const std::vector<std::string>& preferred) {
    std::vector<FolderGrant> order;
    std::copy_if(roots.begin(), roots.end(), std::back_inserter(order),
                 [](const FolderGrant& root) { return root.available; });
    std::stable_partition(order.begin(), order.end(), [&](const FolderGrant& root) {
        return std::find(preferred.begin(), preferred.end(), root.path) != preferred.end();
    });
    return order;
}

QStringList linesOf(const std::vector<std::string>& issues) {
    QStringList lines;
    for (const std::string& issue : issues)
        lines.append(toQt(printable(issue)));
    return lines;
}

} // namespace

ScanModel::ScanModel(ModelContext& context, FoldersModel& folders, const SettingsModel& settings,
                     const FileIndexer& indexer, double automaticRescanInterval)
    : context_(context),
      folders_(folders),
      settings_(settings),
      indexer_(indexer),
      automaticRescanInterval_(std::max(automaticRescanInterval, 0.0)) {}

ScanModel::~ScanModel() {
    stop_.request_stop();
}

void ScanModel::setIndexedCount(qint64 count) {
    if (count == indexedCount_) return;
    indexedCount_ = count;
    Q_EMIT indexedCountChanged();
}

void ScanModel::rescan() {
    if (context_.isInMaintenance() || isIndexing_) {
        pendingRescan_ = true;
        return;
    }
    if (isPaused_) return context_.notices.setStatus(pausedStatus);
    if (!context_.index) return;
    if (folders_.roots().empty()) {
        return context_.notices.setStatus("Choose a folder to build your private index");
    }
    pendingRescan_ = false;
    pendingAutomaticRescan_ = false;
    ++scanGeneration_;
    stop_ = std::stop_source();
    isIndexing_ = true;
    lastScanStartedUptime_ = context_.executor.uptime();
    lastProgressUptime_ = -std::numeric_limits<double>::infinity();
    lastScanRefreshUptime_ = lastScanStartedUptime_;
    Q_EMIT changed();

    const std::vector<FolderGrant> roots = folders_.roots();
    runInBackground(
        context_.executor, this, stop_.get_token(),
        [roots, index = context_.index, access = folders_.access()](const std::stop_token& stop) {
            return checkRoots(roots, &index->store, *access, stop);
        },
        [this, roots](const Outcome<std::vector<FolderGrant>>& outcome) {
            if (!outcome) return ended({std::nullopt, outcome.error, outcome.isCancelled});
            folders_.applyChecks(roots, *outcome.value);
            scanRoots(*outcome.value);
        });
}

void ScanModel::scanRoots(const std::vector<FolderGrant>& roots) {
    unavailable_.clear();
    for (const FolderGrant& root : roots) {
        if (!root.available) unavailable_.push_back(unavailableFolder(root.path));
    }
    scanIssues_ = linesOf(unavailable_);
    if (!unavailable_.empty()) context_.notices.setStatus(unavailable_.front());
    Q_EMIT changed();

    const LatestValue<PublishedProgress> progress(
        context_.executor, this,
        [this, generation = scanGeneration_](const PublishedProgress& step) {
            publishScanProgress(generation, step);
        });
    const ScanSettings settings{scanOrder(roots, preferredScanRoots_), settings_.skipList(),
                                settings_.developerMode()};
    runInBackground(
        context_.executor, this, stop_.get_token(),
        [settings, progress, index = context_.index, access = folders_.access(),
         &indexer = indexer_](const std::stop_token& stop) {
            return runScan(
                settings, *access, indexer, index->store,
                [&](PublishedProgress step) { progress.set(std::move(step)); }, stop);
        },
        [this](const Outcome<ScanOutcome>& outcome) { ended(outcome); });
}

void ScanModel::publishScanProgress(std::uint64_t generation, const PublishedProgress& progress) {
    if (generation != scanGeneration_ || !isIndexing_ || stop_.stop_requested()) return;
    const double now = context_.executor.uptime();
    if (now - lastProgressUptime_ < progressInterval && !progress.isFinished) return;
    lastProgressUptime_ = now;
    setIndexedCount(progress.count);
    context_.notices.setStatus("Indexing · " + std::string(lastPathComponent(progress.root)));
    if (activeScanRootPath_ != toQt(progress.root)) {
        activeScanRootPath_ = toQt(progress.root);
        Q_EMIT changed();
    }
    if (now - lastScanRefreshUptime_ < refreshInterval) return;
    lastScanRefreshUptime_ = now;
    Q_EMIT libraryFilled();
}

void ScanModel::ended(const Outcome<ScanOutcome>& outcome) {
    isIndexing_ = false;
    activeScanRootPath_.clear();
    if (outcome) {
        const ScanOutcome& scan = *outcome.value;
        unavailable_.insert(unavailable_.end(), scan.unavailable.begin(), scan.unavailable.end());
        scanIssues_ = linesOf(unavailable_) + linesOf(scan.unread);
        context_.notices.setStatus(isPaused_               ? pausedStatus
                                   : !unavailable_.empty() ? unavailable_.front()
                                   : scan.unread.empty()
                                       ? "Connected folders are up to date."
                                       : "Connected · some files could not be read.");
        preferredScanRoots_.clear();
    } else if (isPaused_) {
        context_.notices.setStatus(pausedStatus);
    } else if (!outcome.isCancelled) {
        context_.notices.setStatus("Indexing stopped · existing results remain searchable");
        context_.notices.setError(outcome.error);
    }
    Q_EMIT changed();
    Q_EMIT scanEnded(outcome.value.has_value());

    for (const auto& callback : std::exchange(waiting_, {}))
        callback();
    if (pendingRescan_ && !isPaused_) {
        rescan();
    } else {
        scheduleAutomaticRescan();
    }
}

void ScanModel::pauseIndexing() {
    if (isPaused_) {
        isPaused_ = false;
        Q_EMIT changed();
        rescan();
        return;
    }
    isPaused_ = true;
    pendingRescan_ = false;
    if (isIndexing_) {
        context_.notices.setStatus("Pausing indexing…");
        stop_.request_stop();
    } else {
        context_.notices.setStatus(pausedStatus);
    }
    Q_EMIT changed();
}

void ScanModel::pauseQuietly() {
    if (std::exchange(isPaused_, true)) return;
    pendingRescan_ = false;
    Q_EMIT changed();
}

void ScanModel::restartForConnectedFolders(const QString& name, const QStringList& paths) {
    for (const QString& path : paths)
        preferredScanRoots_.push_back(fromQt(path));
    if (isPaused_) return context_.notices.setStatus("Connected. Indexing is paused.");
    context_.notices.setStatus("Updating files and cleanup for " + fromQt(name));
    restart();
}

void ScanModel::restart() {
    stop_.request_stop();
    rescan();
}

void ScanModel::whenStopped(bool again, std::function<void()> callback) {
    if (!isIndexing_) return callback();
    pendingRescan_ = pendingRescan_ || again;
    stop_.request_stop();
    waiting_.push_back(std::move(callback));
}

void ScanModel::maintenanceFinished() {
    if (context_.isInMaintenance()) return;
    if (pendingRescan_ && !isPaused_) {
        rescan();
    } else {
        scheduleAutomaticRescan();
    }
}

void ScanModel::filesDidChange() {
    if (isPaused_) return;
    pendingAutomaticRescan_ = true;
    scheduleAutomaticRescan();
}

bool ScanModel::mayScanByItself() const {
    return pendingAutomaticRescan_ && !isIndexing_ && !isPaused_ && !context_.isInMaintenance();
}

void ScanModel::scheduleAutomaticRescan() {
    if (!mayScanByItself() || isAutomaticRescanScheduled_) return;
    isAutomaticRescanScheduled_ = true;
    const double sinceLast = context_.executor.uptime() - lastScanStartedUptime_;
    runAfter(context_.executor, this, std::max(automaticRescanInterval_ - sinceLast, 0.0), [this] {
        isAutomaticRescanScheduled_ = false;
        if (mayScanByItself()) rescan();
    });
}

} // namespace tovi
