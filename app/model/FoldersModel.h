#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/FolderAccess.h"
#include "app/model/ModelContext.h"
#include "app/model/Ports.h"
#include "platform/FolderEvents.h"

#include <map>

namespace tovi {

/// "live", "periodic" or "stale".
const char* nameOf(platform::FolderFreshness::State state);

/// The connected folders, how they are chosen, and how soon changes in them are noticed.
class FoldersModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* roots READ rootList CONSTANT)
    Q_PROPERTY(QString connectionMessage READ connectionMessage NOTIFY changed)
    Q_PROPERTY(bool isPresentingFolderPicker READ isPresentingFolderPicker NOTIFY changed)
    Q_PROPERTY(QString freshnessNotice READ freshnessNotice NOTIFY freshnessChanged)

  public:
    FoldersModel(ModelContext& context, const FileIndexer& indexer, platform::Bookmarks& bookmarks,
                 FolderPicker& picker);

    /// Roles: path, name, available, freshness ("live", "periodic" or "stale"), freshSince (a date)
    /// and freshnessReason (a sentence, empty while live).
    RowListModel* rootList() { return &list_; }
    const std::vector<FolderGrant>& roots() const { return list_.rows(); }
    std::vector<std::string> availablePaths() const;
    const std::shared_ptr<FolderAccess>& access() const { return access_; }
    /// To be called away from the main thread: the available paths at which the connected folders
    /// lie still.
    std::function<std::vector<std::string>()> pathsInPlace() const;
    /// One of each root, in their order.
    std::vector<platform::FolderFreshness> freshness() const;

    /// Of the last attempt to connect a folder; empty if there is nothing to say.
    QString connectionMessage() const { return connectionMessage_; }
    bool isPresentingFolderPicker() const { return isPresentingFolderPicker_; }

    /// One line about the folders in which changes are not noticed at once; empty if there is none.
    QString freshnessNotice() const;

    Q_INVOKABLE void presentFolderPicker();
    Q_INVOKABLE void addHomeFolder();
    Q_INVOKABLE void grantFolders(const QStringList& folders);
    Q_INVOKABLE void dismissConnectionMessage();

    /// Replaces the list without saying that the user changed it.
    void restore(std::vector<FolderGrant> roots);

    /// Takes over what a check of the disk found; says so if something changed.
    void applyChecks(const std::vector<FolderGrant>& before, const std::vector<FolderGrant>& after);

    /// Takes over what the monitor says of the folders that it watches.
    void setFreshness(const std::vector<platform::FolderFreshness>& watched);

    /// Takes a folder off the list.
    void forget(const std::string& path);

  Q_SIGNALS:
    void changed();
    void freshnessChanged();
    void rootsEdited(); // to be saved, and watched anew
    void rootMoved(const QString& from, const QString& to);
    void rootReturned(); // one that was not available; a scan will tell which
    void connected(const QString& name, const QStringList& paths);

  private:
    void pick(const FolderPicker::Request& request);
    void setConnectionMessage(const std::string& text);
    void setRoots(std::vector<FolderGrant> roots);
    void updateFreshness();
    void awaitReturn();
    const platform::FolderFreshness* toldOf(const FolderGrant& root) const;
    const platform::FolderFreshness& freshnessOf(const FolderGrant& root) const;

    ModelContext& context_;
    const FileIndexer& indexer_;
    const std::shared_ptr<FolderAccess> access_; // jobs under way hold it too
    FolderPicker& picker_;
    DifferenceListModel<FolderGrant> list_;
    std::vector<platform::FolderFreshness> watched_;             // as the monitor told last
    std::map<std::string, platform::FolderFreshness> freshness_; // of every root, by its path
    QString connectionMessage_;
    bool isPresentingFolderPicker_ = false;
    bool isAwaitingReturn_ = false;
};

} // namespace tovi
