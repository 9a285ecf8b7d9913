#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/ModelContext.h"
#include "app/preferences/Preferences.h"

#include <QStringList>

namespace tovi {

/// The projects. Their files stay where they are, whatever becomes of a project.
class SpacesModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* spaces READ list CONSTANT)
    Q_PROPERTY(int spacesRevision READ spacesRevision NOTIFY changed)
    Q_PROPERTY(QString recentlyDeletedName READ recentlyDeletedName NOTIFY noticeChanged)
    Q_PROPERTY(bool showsDeletedSpaceNotice READ showsDeletedSpaceNotice NOTIFY noticeChanged)

  public:
    static constexpr double noticePeriod = 8; // seconds

    explicit SpacesModel(ModelContext& context);

    /// Roles: id, name, count.
    RowListModel* list() { return &list_; }
    const std::vector<ProjectSpace>& spaces() const { return list_.rows(); }
    int spacesRevision() const { return spacesRevision_; }
    const std::optional<ProjectSpace>& recentlyDeletedSpace() const {
        return recentlyDeletedSpace_;
    }
    QString recentlyDeletedName() const;
    bool showsDeletedSpaceNotice() const { return showsDeletedSpaceNotice_; }

    /// The paths of a project's files; none for an unknown one.
    std::vector<std::string> filesOf(const QString& id) const;

    /// The id of the new project; empty for a blank name, which makes none.
    Q_INVOKABLE QString createSpace(const QString& name, const QStringList& paths = {});
    /// The following say whether there is such a project.
    Q_INVOKABLE bool renameSpace(const QString& id, const QString& name);
    Q_INVOKABLE bool addToSpace(const QString& id, const QStringList& paths);
    Q_INVOKABLE bool removeFromSpace(const QString& id, const QStringList& paths);
    Q_INVOKABLE bool removeSpace(const QString& id);
    Q_INVOKABLE bool restoreDeletedSpace();
    Q_INVOKABLE void dismissDeletedSpaceNotice();

    void restore(const Preferences& preferences);
    void storeIn(Preferences& preferences) const;

    /// A file or a connected folder has a new path: it, or the files below it, stay in their
    /// projects.
    void moveFiles(const std::string& from, const std::string& to);

  Q_SIGNALS:
    void changed();
    void noticeChanged();
    void edited(); // to be saved

  private:
    template <typename Change>
    bool change(const QString& id, Change change);
    void replace(std::vector<ProjectSpace> spaces);
    void showNotice();
    void forgetDeletedSpace();

    ModelContext& context_;
    DifferenceListModel<ProjectSpace> list_;
    int spacesRevision_ = 0;
    std::optional<ProjectSpace> recentlyDeletedSpace_;
    bool showsDeletedSpaceNotice_ = false;
    std::uint64_t projectDeletionNoticeGeneration_ = 0;
};

} // namespace tovi
