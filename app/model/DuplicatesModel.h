#pragma once

#include "app/lists/DifferenceListModel.h"
#include "app/model/ModelContext.h"
#include "core/actions/ExactDuplicates.h"

namespace tovi {

/// The files of the index that are byte for byte the same.
class DuplicatesModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* duplicates READ list CONSTANT)
    Q_PROPERTY(bool isFindingDuplicates READ isFindingDuplicates NOTIFY changed)
    Q_PROPERTY(bool hasSearched READ hasSearched NOTIFY changed)
    Q_PROPERTY(int filesDone READ filesDone NOTIFY progressChanged)
    Q_PROPERTY(int filesToRead READ filesToRead NOTIFY progressChanged)
    Q_PROPERTY(qint64 reclaimableBytes READ reclaimableBytes NOTIFY changed)
    Q_PROPERTY(int unreadableFiles READ unreadableFiles NOTIFY changed)

  public:
    DuplicatesModel(ModelContext& context, const platform::Availability& availability);

    /// Roles: digest, files (list of the values of a file), count, size and reclaimableBytes.
    RowListModel* list() { return &list_; }
    const std::vector<DuplicateGroup>& groups() const { return list_.rows(); }
    bool isFindingDuplicates() const { return isFindingDuplicates_; }
    bool hasSearched() const { return hasSearched_; }
    int filesDone() const { return static_cast<int>(progress_.done); }
    int filesToRead() const { return static_cast<int>(progress_.total); }
    qint64 reclaimableBytes() const;
    int unreadableFiles() const { return static_cast<int>(unreadable_); }

    /// Starts anew.
    Q_INVOKABLE void findDuplicates();
    Q_INVOKABLE void cancel();
    void clear();

    /// The records of these paths with the digests found here; paths of no group are left out.
    std::vector<FileRecord> records(const QStringList& paths) const;

  Q_SIGNALS:
    void changed();
    void progressChanged();

  private:
    struct Progress {
        std::size_t done = 0;
        std::size_t total = 0;
    };

    ModelContext& context_;
    const platform::Availability& availability_;
    DifferenceListModel<DuplicateGroup> list_;
    bool isFindingDuplicates_ = false;
    bool hasSearched_ = false;
    std::size_t unreadable_ = 0;
    Progress progress_;
    Generation duplicateGeneration_;
};

} // namespace tovi
