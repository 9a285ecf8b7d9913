#include "app/cleanup/CleanupCandidates.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

#include <algorithm>

namespace tovi {
namespace {

QVariant bytesOf(std::int64_t size) {
    return QVariant::fromValue<qint64>(size);
}

QString folderOf(const std::string& path) {
    return toQt(path.substr(0, path.size() - lastPathComponent(path).size() - 1));
}

} // namespace

CleanupCandidates::CleanupCandidates()
    : categories_(
          [](const Category& row) { return std::string(rawValue(row.category)); },
          {{"id", [](const Category& row) { return toQt(rawValue(row.category)); }},
           {"title", [](const Category& row) { return toQt(title(row.category)); }},
           {"reason", [](const Category& row) { return toQt(reason(row.category)); }},
           {"count", [](const Category& row) { return row.count; }},
           {"bytes", [](const Category& row) { return bytesOf(row.bytes); }},
           {"reviewOnlyCount", [](const Category& row) { return row.reviewOnlyCount; }},
           {"selectedCount", [](const Category& row) { return row.selectedCount; }},
           {"selectedBytes", [](const Category& row) { return bytesOf(row.selectedBytes); }}}) {
    using Row = CleanupCandidate;
    for (std::size_t n = 0; n < allCleanupCategories.size(); ++n) {
        lists_.push_back(std::make_unique<List>(
            [](const Row& row) { return row.path; },
            std::vector<List::Role>{
                {"path", [](const Row& row) { return toQt(row.path); }},
                {"name", [](const Row& row) { return toQt(row.name); }},
                {"folder", [](const Row& row) { return folderOf(row.path); }},
                {"size", [](const Row& row) { return bytesOf(row.size); }},
                {"modifiedAt", [](const Row& row) { return toMilliseconds(row.modifiedAt); }},
                {"lastUsedAt",
                 [](const Row&
                        row) { return row.lastUsedAt ? toMilliseconds(*row.lastUsedAt) : QVariant(); }},
                {"reviewOnlyReason",
                 [](const Row& row) { return toQt(row.reviewOnlyReason.value_or("")); }},
                {"canMoveToTrash", [](const Row& row) { return row.canMoveToTrash(); }},
                {"isWholeMeasured", [](const Row& row) { return row.isWholeMeasured; }},
                {"selected", [this](const Row& row) { return isSelected(row); }}},
            this));
    }
    summarize();
}

CleanupCandidates::List& CleanupCandidates::list(CleanupCategory category) const {
    return *lists_[static_cast<std::size_t>(category)];
}

RowListModel* CleanupCandidates::list(const QString& category) const {
    const auto known = cleanupCategoryFromRawValue(fromQt(category));
    return known ? &list(*known) : nullptr;
}

bool CleanupCandidates::isSelected(const CleanupCandidate& candidate) const {
    return selected_.contains(candidate.path);
}

int CleanupCandidates::count() const {
    int sum = 0;
    for (const Category& row : categories_.rows())
        sum += row.count;
    return sum;
}

qint64 CleanupCandidates::bytes() const {
    qint64 sum = 0;
    for (const Category& row : categories_.rows())
        sum += row.bytes;
    return sum;
}

qint64 CleanupCandidates::selectedBytes() const {
    qint64 sum = 0;
    for (const Category& row : categories_.rows())
        sum += row.selectedBytes;
    return sum;
}

std::vector<CleanupCandidate> CleanupCandidates::selected() const {
    std::vector<CleanupCandidate> items;
    for (const auto& list : lists_) {
        std::copy_if(list->rows().begin(), list->rows().end(), std::back_inserter(items),
                     [&](const CleanupCandidate& row) { return isSelected(row); });
    }
    return items;
}

void CleanupCandidates::toggle(const QString& path) {
    for (const auto& list : lists_) {
        const int row = list->rowOf(path);
        if (row < 0) continue;
        const CleanupCandidate& item = list->rows()[static_cast<std::size_t>(row)];
        if (!item.canMoveToTrash()) return;
        if (selected_.erase(item.path) == 0) selected_.insert(item.path);
        Q_EMIT list->dataChanged(list->index(row), list->index(row));
        return summarize();
    }
}

void CleanupCandidates::selectCategory(const QString& category, bool isSelected) {
    const auto known = cleanupCategoryFromRawValue(fromQt(category));
    if (!known) return;
    List& items = list(*known);
    for (const CleanupCandidate& item : items.rows()) {
        if (!isSelected) {
            selected_.erase(item.path);
        } else if (item.canMoveToTrash() && selectedCount() < largestReview) {
            selected_.insert(item.path);
        }
    }
    rowsChanged(items);
    summarize();
}

void CleanupCandidates::clearSelection() {
    if (selected_.empty()) return;
    selected_.clear();
    for (const auto& list : lists_)
        rowsChanged(*list);
    summarize();
}

void CleanupCandidates::rowsChanged(List& list) const {
    if (list.count() > 0) Q_EMIT list.dataChanged(list.index(0), list.index(list.count() - 1));
}

void CleanupCandidates::replace(CandidatesByCategory candidates) {
    for (std::size_t n = 0; n < lists_.size(); ++n)
        lists_[n]->replace(std::move(candidates[n]));
    forgetMissing();
    summarize();
}

void CleanupCandidates::remove(const std::function<bool(const CleanupCandidate&)>& isGone) {
    for (const auto& list : lists_) {
        if (std::none_of(list->rows().begin(), list->rows().end(), isGone)) continue;
        std::vector<CleanupCandidate> left = list->rows();
        std::erase_if(left, isGone);
        list->replace(std::move(left));
    }
    forgetMissing();
    summarize();
}

/// Forgets what was selected but is not there any more.
void CleanupCandidates::forgetMissing() {
    std::unordered_set<std::string> left;
    for (const CleanupCandidate& item : selected()) {
        if (item.canMoveToTrash()) left.insert(item.path);
    }
    selected_ = std::move(left);
}

void CleanupCandidates::summarize() {
    std::vector<Category> rows;
    for (const CleanupCategory category : allCleanupCategories) {
        Category& row = rows.emplace_back(Category{category});
        for (const CleanupCandidate& item : list(category).rows()) {
            ++row.count;
            row.bytes += item.size;
            if (!item.canMoveToTrash()) ++row.reviewOnlyCount;
            if (selected_.empty() || !isSelected(item)) continue;
            ++row.selectedCount;
            row.selectedBytes += item.size;
        }
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Category& left, const Category& right) {
        return left.bytes > right.bytes;
    });
    categories_.replace(std::move(rows));
    Q_EMIT changed();
}

} // namespace tovi
