#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/ModelContext.h"
#include "core/actions/CopiesToTrash.h"
#include "core/actions/ExactDuplicates.h"

#include <memory>

namespace tovi {

/// Groups of equal files. They are shared between the threads and the rounds of looking at them, as
/// a large library has tens of thousands.
using DuplicateGroups = std::vector<std::shared_ptr<const DuplicateGroup>>;
using SharedGroups = std::shared_ptr<const DuplicateGroups>;

/// The first of the groups, more of them when a view comes to the end.
class DuplicateList final : public DifferenceListModel<DuplicateGroups::value_type> {
  public:
    explicit DuplicateList(std::vector<Role> roles);

    /// Gives back what was shown before.
    SharedGroups show(SharedGroups groups);
    /// Tells views that a role has other values now.
    void changeValues();
    const SharedGroups& all() const { return all_; }

    bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;

  private:
    SharedGroups all_ = std::make_shared<const DuplicateGroups>();
};

/// Files of the index that are byte for byte the same, and which copy of each group stays.
class DuplicatesModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* duplicates READ list CONSTANT)
    Q_PROPERTY(bool isFindingDuplicates READ isFindingDuplicates NOTIFY changed)
    Q_PROPERTY(bool hasSearched READ hasSearched NOTIFY changed)
    Q_PROPERTY(int filesDone READ filesDone NOTIFY progressChanged)
    Q_PROPERTY(int filesToRead READ filesToRead NOTIFY progressChanged)
    Q_PROPERTY(int groupCount READ groupCount NOTIFY changed)
    Q_PROPERTY(qint64 reclaimableBytes READ reclaimableBytes NOTIFY changed)
    Q_PROPERTY(int unreadableFiles READ unreadableFiles NOTIFY changed)
    Q_PROPERTY(QString keep READ keep WRITE setKeep NOTIFY changed)

  public:
    DuplicatesModel(ModelContext& context, const platform::Availability& availability);

    /// Those that free the most first. Roles: digest, files (list of the values of a file: the
    /// copy that stays and some others), count, size and reclaimableBytes.
    RowListModel* list() { return &list_; }
    const SharedGroups& groups() const { return list_.all(); }
    bool isFindingDuplicates() const { return isFindingDuplicates_; }
    bool hasSearched() const { return found_ != nullptr; }
    int filesDone() const { return static_cast<int>(progress_.done); }
    int filesToRead() const { return static_cast<int>(progress_.total); }
    int groupCount() const { return static_cast<int>(groups()->size()); }
    qint64 reclaimableBytes() const { return reclaimableBytes_; }
    int unreadableFiles() const { return static_cast<int>(unreadable_); }

    /// "newest", "oldest" or "shortest-path".
    QString keep() const;
    void setKeep(const QString& rule);

    /// Starts anew.
    Q_INVOKABLE void findDuplicates();
    Q_INVOKABLE void cancel();
    /// Leaves out what is gone or was changed since it was read, and shows again what was taken
    /// back; reads no file.
    void checkPlaces();
    void clear();

    /// What goes and what stays of the group with this digest, or of all that free anything where
    /// it is empty; to be called away from the main thread.
    std::function<CopiesToTrash()> copies(const QString& digest) const;

  Q_SIGNALS:
    void changed();
    void progressChanged();

  private:
    struct Progress {
        std::size_t done = 0;
        std::size_t total = 0;
    };
    struct InPlace {
        SharedGroups groups = std::make_shared<const DuplicateGroups>();
        qint64 reclaimableBytes = 0;
    };
    struct Result {
        SharedGroups found;
        InPlace inPlace;
        std::size_t unreadable = 0;
    };
    static InPlace inPlace(const DuplicateGroups& found, const std::stop_token& stop);
    static Result resultOf(ExactDuplicates found);
    void show(SharedGroups found, InPlace inPlace);

    ModelContext& context_;
    const platform::Availability& availability_;
    DuplicateList list_;
    SharedGroups found_; // by the last search; none before it
    KeepRule keep_ = KeepRule::newest;
    bool isFindingDuplicates_ = false;
    bool isCheckDue_ = false; // once the search under way is over
    std::size_t unreadable_ = 0;
    qint64 reclaimableBytes_ = 0;
    Progress progress_;
    Generation duplicateGeneration_;
};

} // namespace tovi
