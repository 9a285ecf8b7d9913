#pragma once

#include "app/background/Background.h"
#include "app/lists/DifferenceListModel.h"
#include "core/photos/SimilarPhotoScanner.h"

#include <QStringList>
#include <set>

namespace tovi {

/// Runs one look-alike check at a time and holds what the user marked in its groups. Changes no
/// file: marked photos go through the reviewed file actions.
class SimilarPhotosModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* groups READ groups CONSTANT)
    Q_PROPERTY(bool isScanning READ isScanning NOTIFY changed)
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY changed)
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(QString caution READ caution CONSTANT)
    Q_PROPERTY(QStringList selectedIDs READ selectedIDList NOTIFY selectionChanged)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)

  public:
    /// Compares photos; called away from the main thread, may tell of progress from any thread,
    /// and throws `Cancelled`.
    using Scanner = std::function<SimilarPhotoReport(
        const std::vector<FileRecord>& files, const std::vector<std::string>& roots,
        const SimilarPhotoOptions& options, const SimilarPhotoProgressHandler& progress,
        const std::stop_token& stop)>;

    SimilarPhotosModel(Executor& executor, Scanner scanner);

    /// Roles: id, files (the first of `filesOf`), count, potentialBytes, hasKeeper (whether one
    /// deserves more to stay than the others), warning (a sentence to show with the group; may be
    /// empty).
    RowListModel* groups() { return &groups_; }
    /// All files of a group, the one that deserves to stay first: their values, with the width and
    /// height in pixels.
    Q_INVOKABLE QVariantList filesOf(const QString& group) const;
    /// The last finished check.
    const std::optional<SimilarPhotoReport>& report() const { return report_; }
    bool hasReport() const { return report_.has_value(); }
    bool isScanning() const { return isScanning_; }
    /// Empty before the first check.
    QString status() const { return status_; }
    /// What the finished check has to say besides its groups; may be empty.
    QString notice() const;
    QString caution() const;

    const std::set<std::string>& selectedIDs() const { return selectedIDs_; }
    QStringList selectedIDList() const;
    int selectedCount() const { return static_cast<int>(selectedIDs_.size()); }
    Q_INVOKABLE bool isSelected(const QString& id) const;
    /// Whether all photos of the group are marked.
    Q_INVOKABLE bool isAllSelected(const QString& group) const;
    /// The records of the marked photos, in the order of the groups.
    std::vector<FileRecord> selected() const;

    /// Begins a check of these records below the connected folders, in place of one that runs. At
    /// its end those of `marked` that are in a group are marked again.
    void start(std::vector<FileRecord> files, std::vector<std::string> roots,
               std::set<std::string> marked = {});
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void toggle(const QString& id);
    /// Marks all photos of the group but the one that deserves to stay; does nothing where none
    /// does.
    Q_INVOKABLE void selectAllButKeeper(const QString& group);

  Q_SIGNALS:
    void changed();
    void selectionChanged();

  private:
    void updateProgress(std::uint64_t job, const SimilarPhotoProgress& progress);
    void finish(Outcome<SimilarPhotoReport> outcome, const std::set<std::string>& marked);
    void setStatus(const QString& status);
    const SimilarPhotoGroup* groupOf(const QString& id) const;

    Executor& executor_;
    Scanner scanner_;
    std::optional<SimilarPhotoReport> report_;
    DifferenceListModel<SimilarPhotoGroup> groups_;
    bool isScanning_ = false;
    QString status_;
    std::set<std::string> selectedIDs_;
    Generation generation_;
};

} // namespace tovi
