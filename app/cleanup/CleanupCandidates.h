#pragma once

#include "app/cleanup/CleanupSearch.h"
#include "app/lists/DifferenceListModel.h"

#include <QObject>
#include <memory>
#include <unordered_set>

namespace tovi {

/// What the last scan found, by category, and what the user selected of it. Items that are for
/// review only cannot be selected.
class CleanupCandidates : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* categories READ categories CONSTANT)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(qint64 bytes READ bytes NOTIFY changed)
    Q_PROPERTY(int selectedCount READ selectedCount NOTIFY changed)
    Q_PROPERTY(qint64 selectedBytes READ selectedBytes NOTIFY changed)
    Q_PROPERTY(int selectionLimit READ selectionLimit CONSTANT)

  public:
    /// The most items of one review.
    static constexpr int largestReview = 200;

    CleanupCandidates();

    /// All six, the one with the most bytes first. Roles: id (as "largeFiles"), title, reason,
    /// count, bytes, reviewOnlyCount, selectedCount, selectedBytes.
    RowListModel* categories() { return &categories_; }

    /// The items of a category by its id, the largest first; null for another id. Roles: path,
    /// name, folder, size (bytes), modifiedAt, lastUsedAt (applications only, else invalid),
    /// reviewOnlyReason (empty if it may be moved), canMoveToTrash, isWholeMeasured, selected.
    Q_INVOKABLE tovi::RowListModel* list(const QString& category) const;

    int count() const;
    qint64 bytes() const;
    int selectedCount() const { return static_cast<int>(selected_.size()); }
    qint64 selectedBytes() const;
    int selectionLimit() const { return largestReview; }

    Q_INVOKABLE void toggle(const QString& path);
    /// Selects the largest items of a category as far as the limit leaves room, or none of it.
    Q_INVOKABLE void selectCategory(const QString& category, bool isSelected);
    Q_INVOKABLE void clearSelection();

    /// In the order of the lists.
    std::vector<CleanupCandidate> selected() const;

    void replace(CandidatesByCategory candidates);
    /// Takes items off the lists for which `isGone`.
    void remove(const std::function<bool(const CleanupCandidate&)>& isGone);

  Q_SIGNALS:
    void changed();

  private:
    using List = DifferenceListModel<CleanupCandidate>;
    struct Category {
        CleanupCategory category;
        int count = 0;
        qint64 bytes = 0;
        int reviewOnlyCount = 0;
        int selectedCount = 0;
        qint64 selectedBytes = 0;

        friend bool operator==(const Category&, const Category&) = default;
    };

    List& list(CleanupCategory category) const;
    bool isSelected(const CleanupCandidate& candidate) const;
    void rowsChanged(List& list) const;
    void forgetMissing();
    void summarize();

    std::unordered_set<std::string> selected_; // by path
    std::vector<std::unique_ptr<List>> lists_; // in the order of the categories
    DifferenceListModel<Category> categories_;
};

} // namespace tovi
