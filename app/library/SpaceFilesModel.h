#pragma once

#include "app/background/Background.h"
#include "app/lists/RecordList.h"
#include "core/store/IndexStore.h"

#include <QStringList>
#include <functional>
#include <memory>
#include <unordered_set>

namespace tovi {

/// The files of one project, as the index knows them.
class SpaceFilesModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString space READ space WRITE setSpace NOTIFY spaceChanged)
    Q_PROPERTY(tovi::RowListModel* files READ files CONSTANT)
    Q_PROPERTY(QStringList absent READ absent NOTIFY changed)
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY changed)

  public:
    /// The paths of a project's files; none for an unknown one.
    using Members = std::function<std::vector<std::string>(const QString& space)>;

    SpaceFilesModel(Executor& executor, Members members);

    /// The index to read from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    /// The id of the project whose files are shown.
    QString space() const { return space_; }
    void setSpace(const QString& id);

    /// By name.
    RecordList* files() { return &files_; }
    /// The paths that the index does not know, sorted.
    const QStringList& absent() const { return absent_; }
    bool hasLoaded() const { return hasLoaded_; }
    /// How many of these paths do not belong to the project.
    Q_INVOKABLE int countOutside(const QStringList& paths) const;

    /// Reads anew what is shown, as after a change of the project or the library.
    void refresh();

  Q_SIGNALS:
    void spaceChanged();
    void changed();

  private:
    struct Loaded {
        std::unordered_set<std::string> members;
        std::vector<FileRecord> files;
        QStringList absent;
    };

    void show(Loaded loaded, bool hasLoaded);

    Executor& executor_;
    Members membersOf_;
    std::shared_ptr<IndexStore> index_;
    QString space_;
    std::unordered_set<std::string> members_;
    RecordList files_;
    QStringList absent_;
    bool hasLoaded_ = false;
    Generation generation_;
};

} // namespace tovi
