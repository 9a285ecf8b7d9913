#include "app/model/AppModel.h"

#include "app/lists/QtConversions.h"
#include "base/SystemError.h"
#include "base/Text.h"
#include "core/store/IndexFiles.h"
#include "platform/PrivateDirectory.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include <fmt/format.h>

namespace tovi {
namespace {

constexpr double otherProcessesInterval = 2; // seconds

std::string indexPath(const std::string& directory) {
    return directory + "/index.sqlite";
}

} // namespace

/// What opening the data directory gives; each part may fail by itself.
struct AppModel::Opened {
    std::string directory;
    std::optional<ProcessLock> writerLock;
    SharedIndex index;
    std::string indexError;
    std::shared_ptr<FileActionService> actions;
    std::string actionsError;
    std::shared_ptr<PreferencesFile> preferencesFile; // none if it must not be written
    PreferencesFile::Loaded preferences;
    std::string preferencesError;
};

AppModel::AppModel(AppSystem system, AppSettings settings)
    : system_(std::move(system)),
      options_(std::move(settings)),
      context_{system_.executor, notices_, nullptr},
      folders_(context_, system_.indexer, system_.actions.bookmarks, system_.folderPicker),
      scan_(context_, folders_, settings_, system_.indexer, options_.automaticRescanInterval),
      library_(context_),
      search_(context_),
      spaces_(context_),
      savedSearches_(context_),
      plans_(context_, folders_),
      duplicates_(context_, system_.actions.availability),
      copyText_(context_, system_.clipboard) {
    notices_.setStatus("Choose a folder to build your private index");
    connectParts();
}

AppModel::~AppModel() {
    if (monitor_) monitor_->stop();
    if (!unsaved_) return;
    try {
        preferencesFile_->save(++preferencesRevision_, *unsaved_);
    } catch (const std::exception&) {
        return; // there is no one left to tell
    }
}

void AppModel::connectParts() {
    connect(&settings_, &SettingsModel::edited, this, &AppModel::persistPreferences);
    connect(&spaces_, &SpacesModel::edited, this, &AppModel::persistPreferences);
    connect(&savedSearches_, &SavedSearchesModel::edited, this, &AppModel::persistPreferences);
    connect(&settings_, &SettingsModel::rulesEdited, &scan_, &ScanModel::restart);
    connect(&folders_, &FoldersModel::rootsEdited, this, &AppModel::accessChanged);
    connect(&folders_, &FoldersModel::connected, &scan_, &ScanModel::restartForConnectedFolders);
    connect(&folders_, &FoldersModel::rootMoved, this,
            [this](const QString& from, const QString& to) {
                spaces_.moveFiles(fromQt(from), fromQt(to));
                std::replace(removals_.begin(), removals_.end(), fromQt(from), fromQt(to));
            });
    connect(&plans_, &PlansModel::fileRenamed, this,
            [this](const QString& from, const QString& to) {
                spaces_.moveFiles(fromQt(from), fromQt(to));
            });
    connect(&folders_, &FoldersModel::rootReturned, &scan_, [this] {
        if (options_.automaticallyScan) scan_.filesDidChange();
    });
    connect(&scan_, &ScanModel::libraryFilled, this,
            [this] { library_.reloadPage("Could not update the live library: "); });
    connect(&scan_, &ScanModel::scanEnded, this, &AppModel::filesChanged);
    connect(&library_, &LibraryModel::summaryChanged, this, [this] {
        if (!scan_.isIndexing()) scan_.setIndexedCount(library_.summary().total());
    });
    connect(&plans_, &PlansModel::filesMoved, this, [this] {
        filesChanged();
        scan_.rescan();
    });
    connect(this, &AppModel::libraryFilesChanged, &duplicates_, &DuplicatesModel::checkPlaces);
}

QString AppModel::modelStatus() const {
    return QStringLiteral(
        "Local extraction and lexical retrieval · no generative or embedding model installed");
}

void AppModel::setSection(const QString& section) {
    if (section == section_) return;
    section_ = section;
    Q_EMIT sectionChanged();
}

void AppModel::setShowCommandPalette(bool isShown) {
    if (isShown == showCommandPalette_) return;
    showCommandPalette_ = isShown;
    Q_EMIT showCommandPaletteChanged();
}

AppModel::Opened AppModel::openDataDirectory(const std::string& directory,
                                             const FileActionSystem& actions, Date now) {
    platform::makePrivateDirectory(directory);
    Opened opened;
    opened.directory = std::filesystem::canonical(directory).string();
    opened.writerLock = ProcessLock::tryTake(opened.directory + "/library.lock");
    if (!opened.writerLock) return opened;
    try {
        opened.index = std::make_shared<IndexConnections>(indexPath(opened.directory));
    } catch (const std::exception& error) {
        opened.indexError = error.what();
    }
    try {
        opened.actions =
            std::make_shared<FileActionService>(opened.directory + "/actions.json", actions);
    } catch (const std::exception& error) {
        opened.actionsError = error.what();
    }
    auto file = std::make_shared<PreferencesFile>(opened.directory + "/preferences.json");
    try {
        opened.preferences = file->load(now);
        opened.preferencesFile = std::move(file);
    } catch (const std::exception& error) {
        opened.preferencesError = reasonOf(error);
    }
    return opened;
}

void AppModel::prepare() {
    if (context_.isLoaded || isOpening_) return;
    isOpening_ = true;
    runInBackground(
        context_.executor, this, {},
        [directory = options_.dataDirectory, actions = system_.actions,
         now = context_.executor.now()](const std::stop_token&) {
            return openDataDirectory(directory, actions, now);
        },
        [this](Outcome<Opened> outcome) {
            isOpening_ = false;
            if (!outcome) {
                notices_.setError("Could not open the local library: " + outcome.error);
                Q_EMIT loaded();
                return;
            }
            finishOpening(*std::move(outcome.value));
        });
}

void AppModel::finishOpening(Opened opened) {
    if (!opened.writerLock) {
        notices_.setError("Could not open the local library: Another Tovi program is using it. "
                          "Close it and try again.");
        Q_EMIT loaded();
        return;
    }
    directory_ = opened.directory;
    writerLock_ = std::move(opened.writerLock);
    context_.index = std::move(opened.index);
    preferencesFile_ = std::move(opened.preferencesFile);
    if (!opened.actionsError.empty()) notices_.setError(opened.actionsError);
    if (!opened.preferencesError.empty()) {
        notices_.setError("Settings could not be read, and will not be saved: " +
                          opened.preferencesError);
    }
    if (opened.preferences.movedTo) {
        notices_.setError("Settings could not be understood. They were moved to " +
                          *opened.preferences.movedTo + ", and Tovi starts with its defaults.");
    }
    if (!context_.index) {
        notices_.setError("Could not open the local library: " + opened.indexError);
    }
    const Preferences& preferences = opened.preferences.preferences;
    otherPreferences_ = preferences.others;
    settings_.restore(preferences);
    folders_.restore(preferences.roots);
    spaces_.restore(preferences);
    savedSearches_.restore(preferences);
    context_.isLoaded = true;
    plans_.setService(std::move(opened.actions));
    makeMonitor();
    Q_EMIT loaded();
    prepareLibrary();
    checkFolders();
    requestInitialHomeAccess();
    watchOtherProcesses();
}

void AppModel::makeMonitor() {
    try {
        monitor_ =
            system_.makeMonitor({[this] { scan_.filesDidChange(); },
                                 [this](const auto& watched) { folders_.setFreshness(watched); }});
    } catch (const std::system_error& error) {
        notices_.setError("Changes of files cannot be noticed: " + reasonOf(error));
    }
}

void AppModel::checkFolders() {
    isCheckingFolders_ = true;
    runInBackground(
        context_.executor, this, {},
        [roots = folders_.roots(), index = context_.index,
         access = folders_.access()](const std::stop_token& stop) {
            return std::pair(roots,
                             checkRoots(roots, index ? &index->store : nullptr, *access, stop));
        },
        [this](const Outcome<std::pair<std::vector<FolderGrant>, std::vector<FolderGrant>>>& both) {
            isCheckingFolders_ = false;
            if (both) {
                folders_.applyChecks(both.value->first, both.value->second);
            } else {
                notices_.setError(both.error);
            }
            if (!scan_.isIndexing()) startRemovals();
            updateMonitor();
            Q_EMIT libraryAccessChanged();
            if (options_.automaticallyScan && !folders_.roots().empty()) scan_.rescan();
        });
}

void AppModel::prepareLibrary() {
    if (!context_.index) return;
    library_.refresh();
    runInBackground(
        context_.executor, this, {},
        [index = context_.index](const std::stop_token&) { return index->reader.count(); },
        [this](const Outcome<std::int64_t>& count) {
            if (!count || *count.value == 0 || scan_.isIndexing()) return;
            scan_.setIndexedCount(*count.value);
            notices_.setStatus(fmt::format("{} files indexed locally", *count.value));
        });
}

void AppModel::rebuildIndex() {
    if (!context_.isLoaded || context_.index || isOpening_) return;
    isOpening_ = true;
    runInBackground(
        context_.executor, this, {},
        [path = indexPath(directory_), now = context_.executor.now()](const std::stop_token&) {
            const std::string aside = moveIndexAside(path, now);
            return std::pair(std::make_shared<IndexConnections>(path), aside);
        },
        [this](Outcome<std::pair<SharedIndex, std::string>> outcome) {
            isOpening_ = false;
            if (!outcome) {
                return notices_.setError("Could not open the local library: " + outcome.error);
            }
            context_.index = outcome.value->first;
            notices_.dismissError();
            notices_.setStatus("The old index was moved to " + outcome.value->second);
            Q_EMIT loaded();
            watchOtherProcesses();
            scan_.rescan();
        });
}

void AppModel::refresh() {
    library_.refresh();
    search_.refresh();
    plans_.refreshHistory();
}

void AppModel::filesChanged() {
    library_.refresh();
    search_.refresh();
    Q_EMIT libraryFilesChanged();
}

void AppModel::watchOtherProcesses() {
    if (!context_.index) return;
    runInBackground(
        context_.executor, this, {},
        [index = context_.index](const std::stop_token&) {
            return index->counter.changeRevision();
        },
        [this](const Outcome<std::uint64_t>& revision) {
            const bool hasChanged =
                revision && std::exchange(seenIndexRevision_, *revision.value) != *revision.value;
            if (hasChanged && !scan_.isIndexing() && !context_.isInMaintenance()) filesChanged();
            runAfter(context_.executor, this, otherProcessesInterval,
                     [this] { watchOtherProcesses(); });
        });
}

void AppModel::requestInitialHomeAccess() {
    if (!context_.isLoaded || !options_.automaticallyScan || settings_.homeAccessOffered() ||
        folders_.isPresentingFolderPicker() || options_.isDataDirectoryGiven) {
        return;
    }
    settings_.setHomeAccessOffered();
    folders_.addHomeFolder();
}

void AppModel::accessChanged() {
    persistPreferences();
    updateMonitor();
    Q_EMIT libraryAccessChanged();
}

void AppModel::updateMonitor() {
    if (!monitor_ || !options_.automaticallyScan) return;
    const std::vector<std::string> paths = folders_.availablePaths();
    paths.empty() ? monitor_->stop() : monitor_->start(paths);
}

void AppModel::removeRoot(const QString& root) {
    const std::string path = fromQt(root);
    const auto& roots = folders_.roots();
    const bool isConnected = std::any_of(
        roots.begin(), roots.end(), [&](const FolderGrant& grant) { return grant.path == path; });
    const auto isIn = [&](const std::vector<std::string>& paths) {
        return std::find(paths.begin(), paths.end(), path) != paths.end();
    };
    if (!isConnected || isIn(removals_) || isIn(runningRemovals_)) return;
    removals_.push_back(path);
    ++context_.maintenanceCount;
    notices_.setStatus("Removing folder access and cached content…");
    scan_.whenStopped(true, [this] { startRemovals(); });
}

void AppModel::startRemovals() {
    if (isCheckingFolders_) return; // a check may still give a folder its new path
    for (const std::string& path : std::exchange(removals_, {})) {
        runningRemovals_.push_back(path);
        removeFromIndex(path);
    }
}

void AppModel::removeFromIndex(const std::string& path) {
    runInBackground(
        context_.executor, this, {},
        [path, index = context_.index](const std::stop_token&) -> std::int64_t {
            if (!index) return 0;
            index->store.removeRoot(path);
            return index->store.count();
        },
        [this, path](const Outcome<std::int64_t>& remaining) {
            std::erase(runningRemovals_, path);
            if (remaining) {
                folders_.forget(path);
                notices_.setStatus(fmt::format("Folder access removed · {} files remain indexed",
                                               *remaining.value));
                const auto& roots = folders_.roots();
                if (std::any_of(roots.begin(), roots.end(), [&](const FolderGrant& grant) {
                        return isSameOrBelow(path, grant.path);
                    })) {
                    scan_.rescan(); // the folder above takes the files over
                }
            } else {
                notices_.setError(remaining.error);
            }
            endMaintenance();
            filesChanged();
        });
}

void AppModel::resetIndex() {
    if (!context_.index || context_.isInMaintenance()) return;
    ++context_.maintenanceCount;
    notices_.setStatus("Clearing the local index…");
    scan_.whenStopped(false, [this] {
        runInBackground(
            context_.executor, this, {},
            [index = context_.index](const std::stop_token&) { index->store.clear(); },
            [this](const Outcome<std::monostate>& outcome) {
                if (outcome) {
                    library_.clear();
                    search_.clear();
                    selection_.clear();
                    duplicates_.clear();
                    scan_.pauseQuietly();
                    scan_.setIndexedCount(0);
                    notices_.setStatus("Index cleared · resume to rebuild");
                } else {
                    notices_.setError(outcome.error);
                }
                endMaintenance();
                Q_EMIT libraryFilesChanged();
            });
    });
}

void AppModel::endMaintenance() {
    --context_.maintenanceCount;
    if (context_.isInMaintenance()) return;
    search_.refresh();
    scan_.maintenanceFinished();
}

bool AppModel::beginCleanupMaintenance(std::function<void()> begun) {
    if (plans_.isExecuting() || context_.isInMaintenance()) {
        notices_.setError("Another file operation is still finishing. Try cleanup again in a "
                          "moment.");
        return false;
    }
    ++context_.maintenanceCount;
    scan_.whenStopped(true, std::move(begun));
    return true;
}

void AppModel::finishCleanupMaintenance(bool hasChangedFiles) {
    if (hasChangedFiles) scan_.rescan(); // remembered until the maintenance is over
    library_.refresh("Cleanup finished, but the search index could not refresh: ");
    endMaintenance();
    Q_EMIT libraryFilesChanged();
}

void AppModel::copyIndexedText() {
    copyText_.copy(selection_.paths());
}

void AppModel::planAgent(const QString& instruction) {
    plans_.planAgent(instruction, selection_.paths());
}

void AppModel::proposeDuplicateTrash(const QString& digest) {
    plans_.proposeDuplicateTrash(duplicates_.copies(digest));
}

bool AppModel::open(const QString& path) {
    return system_.opener.open(fromQt(path)) || tellMissing(path);
}

bool AppModel::reveal(const QString& path) {
    return system_.opener.reveal(fromQt(path)) || tellMissing(path);
}

bool AppModel::tellMissing(const QString& path) {
    notices_.setError("“" + fromQt(path.section(QLatin1Char('/'), -1)) +
                      "” could not be opened. It may have been moved.");
    return false;
}

void AppModel::persistPreferences() {
    if (!context_.isLoaded || !preferencesFile_) return;
    Preferences preferences;
    preferences.roots = folders_.roots();
    spaces_.storeIn(preferences);
    savedSearches_.storeIn(preferences);
    settings_.storeIn(preferences);
    preferences.others = otherPreferences_;
    unsaved_ = std::move(preferences);
    savePending();
}

void AppModel::savePending() {
    if (isSaving_ || !unsaved_) return;
    isSaving_ = true;
    runInBackground(
        context_.executor, this, {},
        [file = preferencesFile_, revision = ++preferencesRevision_,
         preferences = *std::exchange(unsaved_, std::nullopt)](const std::stop_token&) {
            file->save(revision, preferences);
        },
        [this](const Outcome<std::monostate>& outcome) {
            isSaving_ = false;
            if (!outcome) notices_.setError("Settings could not be saved: " + outcome.error);
            savePending();
        });
}

} // namespace tovi
