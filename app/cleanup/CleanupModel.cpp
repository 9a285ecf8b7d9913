#include "app/cleanup/CleanupModel.h"

#include "app/lists/QtConversions.h"
#include "app/model/ReceiptRoles.h"
#include "base/SystemError.h"
#include "base/Text.h"

#include <QLocale>
#include <QPointer>
#include <algorithm>
#include <utility>

namespace tovi {
namespace {

constexpr double progressInterval = 0.5; // seconds
constexpr double lookInterval = 600;     // seconds between two looks whether a scan is due
constexpr double hour = 3600;            // seconds

QVariant bytesOf(std::int64_t size) {
    return QVariant::fromValue<qint64>(size);
}

std::int64_t totalBytes(const CleanupReceipt& receipt) {
    std::int64_t sum = 0;
    for (const CleanupActionEntry& entry : receipt.entries)
        sum += entry.size;
    return sum;
}

std::vector<std::string> excludedPaths(const CleanupModelSystem& system) {
    return {system.dataDirectory, system.dataHome + "/Trash"};
}

QString scanned(const CleanupReport& report, int found) {
    QString looked =
        QStringLiteral("Looked at %1 files.").arg(QLocale().toString(report.scannedFiles));
    if (report.isPartial) return looked + QStringLiteral(" Not everything could be looked at.");
    if (found > 0) return looked;
    return looked + QStringLiteral(" Nothing was found that may be cleaned up.");
}

} // namespace

/// The service with the records of use that it judges by, which are as new as the service.
struct CleanupModel::Service {
    explicit Service(const CleanupModelSystem& system)
        : metadata(system.dataHome),
          trash(system.dataDirectory + "/cleanup-actions.json", system.folders,
                excludedPaths(system),
                {system.actions.trash, system.actions.move, system.actions.bookmarks,
                 system.actions.availability, system.programs, metadata, system.actions.clock}) {}

    CleanupDiscoveryMetadata metadata;
    CleanupTrashService trash;
};

struct CleanupModel::Opened {
    std::shared_ptr<Service> service;
    std::shared_ptr<CleanupSettingsFile> settingsFile;
    CleanupSettings settings;
    std::string settingsError;
};

struct CleanupModel::Review {
    std::shared_ptr<Service> service;
    CleanupPlan plan;
};

CleanupModel::CleanupModel(AppModel& app, CleanupModelSystem system)
    : app_(app),
      system_(std::move(system)),
      history_(
          [](const CleanupReceipt& receipt) { return receipt.id.string(); },
          {{"id", [](const CleanupReceipt& receipt) { return toQt(receipt.id.string()); }},
           {"title", [](const CleanupReceipt& receipt) { return toQt(receipt.title); }},
           {"date", [](const CleanupReceipt& receipt) { return toMilliseconds(receipt.date); }},
           {"count",
            [](const CleanupReceipt& receipt) { return static_cast<int>(receipt.entries.size()); }},
           {"restoredCount", restoredCount<CleanupReceipt>},
           {"bytes", [](const CleanupReceipt& receipt) { return bytesOf(totalBytes(receipt)); }},
           {"firstPaths", firstPathsOf<CleanupReceipt>},
           {"symbol", [](const CleanupReceipt&) { return QStringLiteral("trash"); }},
           {"undone", [](const CleanupReceipt& receipt) { return receipt.undone; }},
           {"canUndo", canUndo<CleanupReceipt>},
           {"error",
            [](const CleanupReceipt& receipt) { return toQt(receipt.error.value_or("")); }}}),
      items_([](const CleanupPlannedItem& item) { return item.sourcePath; },
             {{"path", [](const CleanupPlannedItem& item) { return toQt(item.sourcePath); }},
              {"size", [](const CleanupPlannedItem& item) { return bytesOf(item.size); }},
              {"categoryTitle",
               [](const CleanupPlannedItem& item) { return toQt(title(item.category)); }}}) {
    connect(&app_, &AppModel::loaded, this, &CleanupModel::open);
    connect(&app_, &AppModel::libraryAccessChanged, this, &CleanupModel::accessChanged);
    // What just ended may begin again at once, so look a moment later.
    connect(&app_, &AppModel::libraryFilesChanged, this, &CleanupModel::refreshSoon);
    connect(app_.plans(), &PlansModel::planChanged, this, &CleanupModel::refreshSoon);
    open();
}

CleanupModel::~CleanupModel() {
    execution_.request_stop();
    if (!hasUnsavedSettings_) return;
    try {
        settingsFile_->save(++settingsRevision_, settings_);
    } catch (const std::exception&) {
        return; // there is no one left to tell
    }
}

void CleanupModel::open() {
    if (service_ || isOpening_ || !app_.isLoaded()) return;
    isOpening_ = true;
    runInBackground(
        system_.executor, this, {},
        [system = system_](const std::stop_token&) {
            Opened opened{std::make_shared<Service>(system), nullptr, {}, {}};
            auto file = std::make_shared<CleanupSettingsFile>(system.dataDirectory +
                                                              "/cleanup-settings.json");
            try {
                opened.settings = file->load();
                opened.settingsFile = std::move(file);
            } catch (const std::exception& error) {
                opened.settingsError = reasonOf(error);
            }
            return opened;
        },
        [this](Outcome<Opened> outcome) {
            isOpening_ = false;
            if (!outcome) return app_.notices()->setError(outcome.error);
            finishOpening(*std::move(outcome.value));
        });
}

void CleanupModel::finishOpening(Opened opened) {
    service_ = std::move(opened.service);
    settings_ = std::move(opened.settings);
    settingsFile_ = std::move(opened.settingsFile);
    if (!opened.settingsError.empty()) {
        app_.notices()->setError("Cleanup settings could not be read, and will not be saved: " +
                                 opened.settingsError);
    }
    Q_EMIT settingsChanged();
    Q_EMIT changed();
    refreshHistory();
    refreshNowAndThen();
}

void CleanupModel::accessChanged() {
    const std::vector<std::string> roots = app_.folders()->availablePaths();
    candidates_.remove([&](const CleanupCandidate& item) {
        return std::none_of(roots.begin(), roots.end(), [&](const std::string& root) {
            return isSameOrBelow(item.path, root);
        });
    });
    Q_EMIT changed();
    refreshSoon();
}

void CleanupModel::refreshNowAndThen() {
    refreshIfDue();
    runAfter(system_.executor, this, lookInterval, [this] { refreshNowAndThen(); });
}

void CleanupModel::refreshSoon() {
    system_.executor.post([self = QPointer<CleanupModel>(this)] {
        if (self) self->refreshIfDue();
    });
}

void CleanupModel::refreshIfDue() {
    const bool isBusy = isScanning_ || isPreparingReview_ || plan_ || isExecuting_;
    const bool isAppBusy = app_.scan()->isIndexing() || app_.isInMaintenance() ||
                           app_.plans()->isPlanning() || app_.plans()->isExecuting() ||
                           app_.plans()->proposedPlan();
    if (!isReady() || !settings_.automaticRefresh || isBusy || isAppBusy) return;
    if (lastScan_ && lastScanned_ == app_.folders()->availablePaths()) {
        const double age = system_.executor.now() - *lastScan_;
        if (age >= 0 && age < static_cast<double>(settings_.refreshHours) * hour) return;
    }
    scanFor(Cause::schedule);
}

void CleanupModel::scan() {
    scanFor(Cause::user);
}

void CleanupModel::scanFor(Cause cause) {
    if (!service_ || isExecuting_) return;
    if (!isReady()) {
        return setStatus(QStringLiteral("Connect a folder to look for what may be cleaned up."));
    }
    isScanning_ = true;
    lastScan_ = system_.executor.now();
    lastScanned_ = app_.folders()->availablePaths();
    scannedEntries_ = 0;
    scannedPath_.clear();
    setStatus(QStringLiteral("Looking for what may be cleaned up…"));
    const std::uint64_t job = scanGeneration_.stamp() + 1; // what `runLatest` makes of it
    const LatestValue<CleanupSearchProgress> progress(
        system_.executor, this,
        [this, job](const CleanupSearchProgress& step) { showProgress(job, step); });
    runLatest(
        system_.executor, this, scanGeneration_,
        [search = CleanupSearch{lastScanned_, settings_.folder, system_.folders,
                                excludedPaths(system_), *lastScan_},
         system = system_, progress](const std::stop_token& stop) {
            const CleanupDiscoveryMetadata metadata(system.dataHome);
            const CleanupScanner scanner(metadata, system.actions.availability, platform::mounts(),
                                         system.actions.clock);
            return searchForCleanup(
                search, scanner, [&](const CleanupSearchProgress& step) { progress.set(step); },
                stop);
        },
        [this, cause](Outcome<CleanupFindings> outcome) { scanEnded(cause, std::move(outcome)); });
}

void CleanupModel::showProgress(std::uint64_t job, const CleanupSearchProgress& progress) {
    const double now = system_.executor.uptime();
    if (job != scanGeneration_.stamp() || !isScanning_ ||
        now - shownProgressUptime_ < progressInterval) {
        return;
    }
    shownProgressUptime_ = now;
    scannedEntries_ = progress.entries;
    scannedPath_ = toQt(printable(progress.path));
    Q_EMIT changed();
}

void CleanupModel::scanEnded(Cause cause, Outcome<CleanupFindings> outcome) {
    isScanning_ = false;
    if (!outcome) {
        if (cause == Cause::user) app_.notices()->setError(outcome.error);
        return setStatus(toQt(outcome.error));
    }
    candidates_.replace(std::move(outcome.value->candidates));
    report_ = std::move(outcome.value->report);
    Q_EMIT reportChanged();
    setStatus(scanned(*report_, candidates_.count()));
    accessChanged(); // meanwhile, perhaps
}

bool CleanupModel::interruptScan() {
    if (!isScanning_) return false;
    scanGeneration_.cancel();
    isScanning_ = false;
    setStatus(QStringLiteral("Scan stopped. Your files are unchanged."));
    return true;
}

void CleanupModel::stopScan() {
    interruptScan();
}

QVariantMap CleanupModel::reportValues() const {
    if (!report_) return {};
    QStringList issues;
    for (const std::string& issue : report_->issues)
        issues.append(toQt(printable(issue)));
    return {{QStringLiteral("scannedFiles"), bytesOf(report_->scannedFiles)},
            {QStringLiteral("scannedBytes"), bytesOf(report_->scannedBytes)},
            {QStringLiteral("skippedCount"), bytesOf(report_->skippedCount)},
            {QStringLiteral("issues"), issues},
            {QStringLiteral("notice"), toQt(report_->notice)},
            {QStringLiteral("isPartial"), report_->isPartial},
            {QStringLiteral("reachedLimit"), report_->reachedLimit},
            {QStringLiteral("startedAt"), toMilliseconds(report_->startedAt)},
            {QStringLiteral("finishedAt"), toMilliseconds(report_->finishedAt)}};
}

QVariantMap CleanupModel::proposedPlanValues() const {
    if (!plan_) return {};
    qint64 total = 0;
    for (const CleanupPlannedItem& item : plan_->items)
        total += item.size;
    return {{QStringLiteral("id"), toQt(plan_->id.string())},
            {QStringLiteral("title"), toQt(plan_->title)},
            {QStringLiteral("explanation"), toQt(plan_->explanation)},
            {QStringLiteral("totalSize"), total}};
}

void CleanupModel::setPlan(std::optional<CleanupPlan> plan) {
    isPreparingReview_ = false;
    plan_ = std::move(plan);
    items_.replace(plan_ ? plan_->items : std::vector<CleanupPlannedItem>());
    Q_EMIT changed();
}

void CleanupModel::review() {
    if (!service_ || isExecuting_) return;
    if (interruptScan()) lastScan_.reset(); // to be repeated after the review
    plan_.reset();
    isPreparingReview_ = true;
    Q_EMIT changed();
    runLatest(
        system_.executor, this, reviewGeneration_,
        [system = system_, items = candidates_.selected(),
         roots = app_.folders()->pathsInPlace()](const std::stop_token& stop) {
            auto service = std::make_shared<Service>(system);
            CleanupPlan plan = service->trash.prepare(items, roots(), stop);
            return Review{std::move(service), std::move(plan)};
        },
        [this](Outcome<Review> outcome) {
            if (!outcome) {
                app_.notices()->setError(outcome.error);
                setPlan(std::nullopt);
                return refreshSoon();
            }
            service_ = std::move(outcome.value->service);
            setPlan(std::move(outcome.value->plan));
        });
}

void CleanupModel::cancelReview() {
    if (isExecuting_) return;
    reviewGeneration_.cancel();
    setPlan(std::nullopt);
    refreshSoon();
}

void CleanupModel::confirm(const QString& reviewedID) {
    if (!service_ || isExecuting_ || !plan_) return;
    if (reviewedID != toQt(plan_->id.string())) {
        return app_.notices()->setError(
            "Review and confirm this exact cleanup plan before moving files.");
    }
    execution_ = std::stop_source();
    beginMoving([this] { execute(); });
}

void CleanupModel::beginMoving(std::function<void()> begun) {
    if (interruptScan()) lastScan_.reset();
    isExecuting_ = true;
    Q_EMIT changed();
    const bool mayBegin = app_.beginCleanupMaintenance(
        [self = QPointer<CleanupModel>(this), begun = std::move(begun)] {
            if (self) begun();
        });
    if (mayBegin) return;
    isExecuting_ = false;
    Q_EMIT changed();
}

void CleanupModel::movingEnded(bool hasChangedFiles) {
    isExecuting_ = false;
    Q_EMIT changed();
    refreshHistory();
    app_.finishCleanupMaintenance(hasChangedFiles);
}

void CleanupModel::execute() {
    runInBackground(
        system_.executor, this, execution_.get_token(),
        [plan = *plan_, service = service_,
         roots = app_.folders()->pathsInPlace()](const std::stop_token& stop) {
            return service->trash.execute(plan, plan.id, roots(), stop);
        },
        [this](const Outcome<CleanupReceipt>& outcome) { executionEnded(outcome); });
}

void CleanupModel::executionEnded(const Outcome<CleanupReceipt>& outcome) {
    setPlan(std::nullopt);
    std::unordered_set<std::string> moved;
    if (outcome) {
        const CleanupReceipt& receipt = *outcome.value;
        for (const CleanupActionEntry& entry : receipt.entries)
            moved.insert(entry.originalPath);
        candidates_.remove([&](const CleanupCandidate& item) { return moved.contains(item.path); });
        app_.notices()->setStatus(receipt.title);
        if (receipt.error) app_.notices()->setError(*receipt.error);
    } else {
        app_.notices()->setError(outcome.isCancelled ? "Cleanup was cancelled." : outcome.error);
    }
    movingEnded(!moved.empty());
    if (outcome) Q_EMIT executed(toQt(outcome.value->id.string()));
}

void CleanupModel::stopExecution() {
    execution_.request_stop();
}

void CleanupModel::showReceipt(const QString& receipt) {
    std::vector<ReceiptFile> files;
    if (const int row = history_.rowOf(receipt); row >= 0) {
        for (const CleanupActionEntry& entry :
             history_.rows()[static_cast<std::size_t>(row)].entries)
            files.push_back({entry.originalPath, "", entry.size, entry.restored});
    }
    receiptFiles_.replace(std::move(files));
}

void CleanupModel::undo(const QString& receipt) {
    const auto id = Uuid::parse(fromQt(receipt));
    if (!service_ || isExecuting_ || !id) return;
    beginMoving([this, id = *id] {
        runInBackground(
            system_.executor, this, {},
            [id, service = service_](const std::stop_token&) { return service->trash.undo(id); },
            [this](const Outcome<CleanupReceipt>& outcome) {
                if (outcome) {
                    app_.notices()->setStatus("Taken back: " + outcome.value->title);
                    Q_EMIT undone();
                } else {
                    app_.notices()->setError(outcome.error);
                }
                movingEnded(true);
                if (hasReport()) scan(); // what came back may be found again
            });
    });
}

void CleanupModel::undoLast() {
    const std::vector<CleanupReceipt>& receipts = history_.rows();
    const auto last = std::find_if(receipts.begin(), receipts.end(), canUndo<CleanupReceipt>);
    const ActionReceipt* change = app_.plans()->lastChange();
    if (last != receipts.end() && (!change || change->date < last->date))
        undo(toQt(last->id.string()));
    else
        app_.plans()->undoLast();
}

void CleanupModel::refreshHistory() {
    if (!service_) return;
    runLatest(
        system_.executor, this, historyGeneration_,
        [service = service_](const std::stop_token&) { return service->trash.history(); },
        [this](Outcome<std::vector<CleanupReceipt>> outcome) {
            if (outcome) return history_.replace(*std::move(outcome.value));
            app_.notices()->setError(outcome.error);
        });
}

void CleanupModel::setAutomaticRefresh(bool isOn) {
    if (!service_ || isOn == settings_.automaticRefresh) return;
    settings_.automaticRefresh = isOn;
    settingsEdited();
    refreshIfDue();
}

void CleanupModel::setRefreshHours(int hours) {
    const auto allowed = std::clamp<std::int64_t>(hours, 1, CleanupSettings::mostHours);
    if (!service_ || allowed == settings_.refreshHours) return;
    settings_.refreshHours = allowed;
    settingsEdited();
    refreshIfDue();
}

QString CleanupModel::folder() const {
    return toQt(settings_.folder);
}

void CleanupModel::setFolder(const QString& folder) {
    if (!service_ || folder == this->folder()) return;
    settings_.folder = fromQt(folder);
    settingsEdited();
    scan();
}

void CleanupModel::settingsEdited() {
    hasUnsavedSettings_ = settingsFile_ != nullptr;
    Q_EMIT settingsChanged();
    savePending();
}

void CleanupModel::savePending() {
    if (isSaving_ || !hasUnsavedSettings_) return;
    isSaving_ = true;
    hasUnsavedSettings_ = false;
    runInBackground(
        system_.executor, this, {},
        [file = settingsFile_, revision = ++settingsRevision_,
         settings = settings_](const std::stop_token&) { file->save(revision, settings); },
        [this](const Outcome<std::monostate>& outcome) {
            isSaving_ = false;
            if (!outcome) {
                app_.notices()->setError("Cleanup settings could not be saved: " + outcome.error);
            }
            savePending();
        });
}

void CleanupModel::setStatus(const QString& status) {
    status_ = status;
    Q_EMIT changed();
}

} // namespace tovi
