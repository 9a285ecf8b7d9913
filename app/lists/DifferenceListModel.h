#pragma once

#include "app/lists/RowListModel.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tovi {

/// A list of values that is brought from one content to the next by the difference: a row that
/// stays, known by its identity, keeps its persistent index, so that selection, focus and scroll
/// position outlive a refresh. Identities are unique; of rows that share one the first stays.
template <typename Row>
class DifferenceListModel : public RowListModel {
  public:
    struct Role {
        const char* name;
        std::function<QVariant(const Row&)> value;
    };
    using Identity = std::function<std::string(const Row&)>;

    DifferenceListModel(Identity identity, std::vector<Role> roles, QObject* parent = nullptr)
        : RowListModel(parent), identity_(std::move(identity)), roles_(std::move(roles)) {}

    const std::vector<Row>& rows() const { return rows_; }

    void replace(std::vector<Row> rows) {
        dropRepeated(rows);
        const std::size_t before = rows_.size();
        std::unordered_map<std::string, std::size_t> places;
        for (std::size_t at = 0; at < rows.size(); ++at)
            places.emplace(identity_(rows[at]), at);
        removeMissing(places);
        reorder(places);
        insertNew(rows);
        update(std::move(rows));
        if (rows_.size() != before) Q_EMIT countChanged();
    }

    /// Adds rows at the end, without those that are there already.
    void append(std::vector<Row> rows) {
        std::unordered_set<std::string> known;
        for (const Row& row : rows_)
            known.insert(identity_(row));
        std::erase_if(rows, [&](const Row& row) { return !known.insert(identity_(row)).second; });
        if (rows.empty()) return;
        beginInsertRows({}, rowCount({}), rowCount({}) + static_cast<int>(rows.size()) - 1);
        std::move(rows.begin(), rows.end(), std::back_inserter(rows_));
        endInsertRows();
        Q_EMIT countChanged();
    }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        const int column = role - firstRole;
        if (!checkIndex(index, CheckIndexOption::IndexIsValid) || column < 0 ||
            static_cast<std::size_t>(column) >= roles_.size()) {
            return {};
        }
        return roles_[static_cast<std::size_t>(column)].value(
            rows_[static_cast<std::size_t>(index.row())]);
    }

    QHash<int, QByteArray> roleNames() const override {
        QHash<int, QByteArray> names;
        for (std::size_t at = 0; at < roles_.size(); ++at)
            names.insert(firstRole + static_cast<int>(at), roles_[at].name);
        return names;
    }

    int rowOf(const QString& identity) const override {
        const std::string wanted = identity.toStdString();
        const auto found = std::find_if(rows_.begin(), rows_.end(),
                                        [&](const Row& row) { return identity_(row) == wanted; });
        return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
    }

  private:
    static constexpr int firstRole = Qt::UserRole + 1;
    using Places = std::unordered_map<std::string, std::size_t>;

    void dropRepeated(std::vector<Row>& rows) const {
        std::unordered_set<std::string> seen;
        std::erase_if(rows, [&](const Row& row) { return !seen.insert(identity_(row)).second; });
    }

    void removeMissing(const Places& places) {
        const auto isMissing = [&](std::size_t at) {
            return !places.contains(identity_(rows_[at]));
        };
        for (std::size_t end = rows_.size(); end > 0;) {
            if (!isMissing(end - 1)) {
                --end;
                continue;
            }
            std::size_t begin = end - 1;
            while (begin > 0 && isMissing(begin - 1))
                --begin;
            beginRemoveRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
            rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(begin),
                        rows_.begin() + static_cast<std::ptrdiff_t>(end));
            endRemoveRows();
            end = begin;
        }
    }

    /// Puts the rows that stay into their new order.
    void reorder(const Places& places) {
        std::vector<std::size_t> order(rows_.size()); // old rows in their new order
        std::iota(order.begin(), order.end(), 0U);
        std::vector<std::size_t> target;
        target.reserve(rows_.size());
        for (const Row& row : rows_)
            target.push_back(places.at(identity_(row)));
        if (std::is_sorted(target.begin(), target.end())) return;
        std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
            return target[left] < target[right];
        });
        Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
        std::vector<int> moved(rows_.size());
        std::vector<Row> sorted;
        sorted.reserve(rows_.size());
        for (const std::size_t old : order) {
            moved[old] = static_cast<int>(sorted.size());
            sorted.push_back(std::move(rows_[old]));
        }
        rows_ = std::move(sorted);
        const QModelIndexList before = persistentIndexList();
        QModelIndexList after;
        for (const QModelIndex& index : before)
            after.append(this->index(moved[static_cast<std::size_t>(index.row())], index.column()));
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged({}, VerticalSortHint);
    }

    void insertNew(const std::vector<Row>& rows) {
        const auto isThere = [&](std::size_t at) {
            return at < rows_.size() && identity_(rows_[at]) == identity_(rows[at]);
        };
        for (std::size_t begin = 0; begin < rows.size();) {
            if (isThere(begin)) {
                ++begin;
                continue;
            }
            // The rows that stay are in order, so the run ends where the next of them belongs.
            std::size_t end = rows.size();
            if (begin < rows_.size()) {
                const std::string next = identity_(rows_[begin]);
                end = begin;
                while (identity_(rows[end]) != next)
                    ++end;
            }
            beginInsertRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
            rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(begin),
                         rows.begin() + static_cast<std::ptrdiff_t>(begin),
                         rows.begin() + static_cast<std::ptrdiff_t>(end));
            endInsertRows();
            begin = end;
        }
    }

    void update(std::vector<Row> rows) {
        const auto differs = [&](std::size_t at) {
            if constexpr (requires(const Row& row) { row == row; }) {
                return !(rows_[at] == rows[at]);
            } else {
                return true;
            }
        };
        for (std::size_t begin = 0; begin < rows.size(); ++begin) {
            if (!differs(begin)) continue;
            std::size_t end = begin;
            for (; end < rows.size() && differs(end); ++end)
                rows_[end] = std::move(rows[end]);
            Q_EMIT dataChanged(index(static_cast<int>(begin), 0),
                               index(static_cast<int>(end) - 1, 0));
            begin = end;
        }
    }

    Identity identity_;
    std::vector<Role> roles_;
    std::vector<Row> rows_;
};

} // namespace tovi
