#pragma once

#include "app/model/CopyTextModel.h"
#include "app/model/DuplicatesModel.h"
#include "app/model/LibraryModel.h"
#include "app/model/PlansModel.h"
#include "app/model/SavedSearchesModel.h"
#include "app/model/ScanModel.h"
#include "app/model/SearchModel.h"
#include "app/model/SelectionModel.h"
#include "app/model/SpacesModel.h"
#include "app/monitor/FolderChanges.h"
#include "app/monitor/FolderListener.h"
#include "app/preferences/PreferencesFile.h"
#include "core/files/ProcessLock.h"

namespace tovi {

/// What the application is built on; everything outlives the model.
struct AppSystem {
    Executor& executor;
    const FileIndexer& indexer;
    FileActionSystem actions;
    FolderPicker& folderPicker;
    Clipboard& clipboard;
    FileOpener& opener;
    /// Makes the monitor of the connected folders, which calls the handlers on the main thread; may
    /// return none. Throws `std::system_error`.
    std::function<std::unique_ptr<FolderChanges>(FolderListener::Handlers handlers)> makeMonitor;
};

struct AppSettings {
    std::string dataDirectory;
    bool isDataDirectoryGiven = false;     // by the user: the home folder is then not offered
    bool automaticallyScan = true;         // after the start and when files change
    double automaticRescanInterval = 15.0; // seconds
};

/// The owner of the running state: one index, one file action service, one folder monitor, and
/// the parts below, which are the properties that screens bind to. Lives on the main thread; all
/// that blocks runs away from it. Usable in every state, also without an index.
class AppModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::Notices* notices READ notices CONSTANT)
    Q_PROPERTY(tovi::SettingsModel* settings READ settings CONSTANT)
    Q_PROPERTY(tovi::FoldersModel* folders READ folders CONSTANT)
    Q_PROPERTY(tovi::ScanModel* scan READ scan CONSTANT)
    Q_PROPERTY(tovi::LibraryModel* library READ library CONSTANT)
    Q_PROPERTY(tovi::SearchModel* search READ search CONSTANT)
    Q_PROPERTY(tovi::SelectionModel* selection READ selection CONSTANT)
    Q_PROPERTY(tovi::SpacesModel* spaces READ spaces CONSTANT)
    Q_PROPERTY(tovi::SavedSearchesModel* savedSearches READ savedSearches CONSTANT)
    Q_PROPERTY(tovi::PlansModel* plans READ plans CONSTANT)
    Q_PROPERTY(tovi::DuplicatesModel* duplicates READ duplicates CONSTANT)
    Q_PROPERTY(tovi::CopyTextModel* copyText READ copyText CONSTANT)
    Q_PROPERTY(QString section READ section WRITE setSection NOTIFY sectionChanged)
    Q_PROPERTY(bool showCommandPalette READ showCommandPalette WRITE setShowCommandPalette NOTIFY
                   showCommandPaletteChanged)
    Q_PROPERTY(QString modelStatus READ modelStatus CONSTANT)
    Q_PROPERTY(bool isLoaded READ isLoaded NOTIFY loaded)
    Q_PROPERTY(bool hasIndex READ hasIndex NOTIFY loaded)

  public:
    AppModel(AppSystem system, AppSettings settings);
    /// Asks all work to stop and saves what is not saved yet.
    ~AppModel() override;

    Notices* notices() { return &notices_; }
    SettingsModel* settings() { return &settings_; }
    FoldersModel* folders() { return &folders_; }
    ScanModel* scan() { return &scan_; }
    LibraryModel* library() { return &library_; }
    SearchModel* search() { return &search_; }
    SelectionModel* selection() { return &selection_; }
    SpacesModel* spaces() { return &spaces_; }
    SavedSearchesModel* savedSearches() { return &savedSearches_; }
    PlansModel* plans() { return &plans_; }
    DuplicatesModel* duplicates() { return &duplicates_; }
    CopyTextModel* copyText() { return &copyText_; }

    /// The screen shown: "overview", "files", "search", "spaces", "timeline", "graph",
    /// "downloads", "duplicates", "storage", "activity", "settings", "models", "privacy" or
    /// "vault".
    QString section() const { return section_; }
    void setSection(const QString& section);
    bool showCommandPalette() const { return showCommandPalette_; }
    void setShowCommandPalette(bool isShown);
    QString modelStatus() const;

    /// Whether the start is over.
    bool isLoaded() const { return context_.isLoaded; }
    /// Whether every change of the settings is on the disk, as far as it could be written.
    bool isSaved() const { return !isSaving_ && !unsaved_; }
    bool hasIndex() const { return context_.index != nullptr; }
    /// For models beside this one; none without an index.
    const SharedIndex& index() const { return context_.index; }

    /// Opens the data directory, restores the settings and the access to folders, loads the
    /// library, and starts a scan if it may. Does nothing once it has succeeded.
    Q_INVOKABLE void prepare();
    /// The index count, the summary and the first page.
    void prepareLibrary();
    /// Moves an index that could not be opened aside and starts with an empty one.
    Q_INVOKABLE void rebuildIndex();

    /// Reloads the library page, the summary, the search results and the history.
    Q_INVOKABLE void refresh();
    /// Offers the home folder, once.
    Q_INVOKABLE void requestInitialHomeAccess();
    Q_INVOKABLE void removeRoot(const QString& path);
    Q_INVOKABLE void resetIndex();

    Q_INVOKABLE void copyIndexedText();
    Q_INVOKABLE void planAgent(const QString& instruction);
    /// Of the group of duplicates with this digest, or of all that free anything where it is empty,
    /// the copies that do not stay; as many as one plan takes.
    Q_INVOKABLE void proposeDuplicateTrash(const QString& digest);
    /// Whether a program was asked; else the error message says so.
    Q_INVOKABLE bool open(const QString& path);
    Q_INVOKABLE bool reveal(const QString& path);

    /// Keeps the scanner away while another model changes files. Refused, with the error message,
    /// while a plan or another maintenance runs; else `begun` is called once no scan runs.
    bool beginCleanupMaintenance(std::function<void()> begun = [] {});
    /// Whether an operation is under way that keeps the scanner away.
    bool isInMaintenance() const { return context_.isInMaintenance(); }
    /// Ends what `beginCleanupMaintenance` began; `hasChangedFiles` asks for a scan.
    void finishCleanupMaintenance(bool hasChangedFiles);

  Q_SIGNALS:
    void loaded();
    void sectionChanged();
    void showCommandPaletteChanged();
    /// For models beside this one. The folders are `folders()->roots()`.
    void libraryAccessChanged();
    void libraryFilesChanged();

  private:
    struct Opened;
    bool tellMissing(const QString& path);
    static Opened openDataDirectory(const std::string& directory, const FileActionSystem& actions,
                                    Date now);
    void finishOpening(Opened opened);
    void connectParts();
    void makeMonitor();
    void checkFolders();
    void filesChanged();
    void accessChanged();
    void updateMonitor();
    void persistPreferences();
    void savePending();
    void watchOtherProcesses();
    void startRemovals();
    void removeFromIndex(const std::string& path);
    void endMaintenance();

    AppSystem system_;
    AppSettings options_;
    Notices notices_;
    ModelContext context_;
    SettingsModel settings_;
    FoldersModel folders_;
    ScanModel scan_;
    LibraryModel library_;
    SearchModel search_;
    SelectionModel selection_;
    SpacesModel spaces_;
    SavedSearchesModel savedSearches_;
    PlansModel plans_;
    DuplicatesModel duplicates_;
    CopyTextModel copyText_;

    std::optional<ProcessLock> writerLock_;
    std::unique_ptr<FolderChanges> monitor_;
    std::string directory_; // links resolved, once it is open
    std::shared_ptr<PreferencesFile> preferencesFile_;
    nlohmann::ordered_json otherPreferences_ = nlohmann::ordered_json::object();
    std::optional<Preferences> unsaved_;
    std::uint64_t preferencesRevision_ = 0;
    bool isSaving_ = false;
    bool isOpening_ = false;
    bool isCheckingFolders_ = false;
    std::vector<std::string> removals_; // of roots, asked for
    std::vector<std::string> runningRemovals_;
    std::uint64_t seenIndexRevision_ = 0;
    QString section_ = QStringLiteral("files");
    bool showCommandPalette_ = false;
};

} // namespace tovi
