#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/FolderGrants.h"
#include "app/model/ModelContext.h"
#include "app/model/Ports.h"

namespace tovi {

/// The connected folders and how they are chosen.
class FoldersModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* roots READ rootList CONSTANT)
    Q_PROPERTY(QString connectionMessage READ connectionMessage NOTIFY changed)
    Q_PROPERTY(bool isPresentingFolderPicker READ isPresentingFolderPicker NOTIFY changed)

  public:
    FoldersModel(ModelContext& context, const FileIndexer& indexer, platform::Bookmarks& bookmarks,
                 FolderPicker& picker);

    /// Roles: path, name, available.
    RowListModel* rootList() { return &list_; }
    const std::vector<FolderGrant>& roots() const { return list_.rows(); }
    std::vector<std::string> availablePaths() const;

    /// Of the last attempt to connect a folder; empty if there is nothing to say.
    QString connectionMessage() const { return connectionMessage_; }
    bool isPresentingFolderPicker() const { return isPresentingFolderPicker_; }

    Q_INVOKABLE void presentFolderPicker();
    Q_INVOKABLE void addHomeFolder();
    Q_INVOKABLE void grantFolders(const QStringList& folders);
    Q_INVOKABLE void dismissConnectionMessage();

    /// Replaces the list without saying that the user changed it.
    void restore(std::vector<FolderGrant> roots);

    /// Takes over what a check of the disk found; says so if something changed.
    void applyChecks(const std::vector<FolderGrant>& before, const std::vector<FolderGrant>& after);

    /// Takes a folder off the list.
    void forget(const std::string& path);

  Q_SIGNALS:
    void changed();
    void rootsEdited(); // to be saved, and watched anew
    void rootMoved(const QString& from, const QString& to);
    void connected(const QString& name, const QStringList& paths);

  private:
    void pick(const FolderPicker::Request& request);
    void setConnectionMessage(const std::string& text);

    ModelContext& context_;
    const FileIndexer& indexer_;
    platform::Bookmarks& bookmarks_;
    FolderPicker& picker_;
    DifferenceListModel<FolderGrant> list_;
    QString connectionMessage_;
    bool isPresentingFolderPicker_ = false;
};

} // namespace tovi
