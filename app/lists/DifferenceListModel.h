#pragma once

#include "app/lists/RowListModel.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
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
        const std::size_t before = rows_.size();
        Content content = dropRepeated(rows);
        if (content.identities == identities_) return update(std::move(rows));
        if (rows_.empty() || rows.empty()) {
            remove(0, rows_.size());
            insertAtEnd(std::move(rows), std::move(content.identities));
        } else {
            bringTo(rows, content);
            update(std::move(rows));
        }
        if (rows_.size() != before) Q_EMIT countChanged();
    }

    /// Adds rows at the end, without those that are there already.
    void append(std::vector<Row> rows) {
        Strings identities = dropRepeated(rows).identities;
        const std::unordered_set<std::string_view> known(identities_.begin(), identities_.end());
        const auto isKnown = [&](const Row& row) { return known.contains(identity_(row)); };
        std::erase_if(rows, isKnown);
        std::erase_if(identities, [&](const auto& identity) { return known.contains(identity); });
        if (rows.empty()) return;
        insertAtEnd(std::move(rows), std::move(identities));
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
        const auto found =
            std::find(identities_.begin(), identities_.end(), identity.toStdString());
        return found == identities_.end() ? -1 : static_cast<int>(found - identities_.begin());
    }

  private:
    static constexpr int firstRole = Qt::UserRole + 1;
    using Strings = std::vector<std::string>;
    /// Of each row its place in the new content, or `gone`.
    using Places = std::vector<std::size_t>;
    static constexpr std::size_t gone = static_cast<std::size_t>(-1);
    /// Each run of rows that come or go costs the time of moving those after it; of more runs than
    /// this the rows are sorted to or from the end instead, where they are one run.
    static constexpr std::size_t mostRuns = 16;

    struct Content {
        Strings identities;
        std::unordered_map<std::string_view, std::size_t> placeOf; // by what `identities` hold
    };

    /// What is known of the rows that stay.
    Content dropRepeated(std::vector<Row>& rows) const {
        Content content;
        Strings& identities = content.identities;
        identities.reserve(rows.size()); // views of them must last
        content.placeOf.reserve(rows.size());
        std::erase_if(rows, [&](const Row& row) {
            identities.push_back(identity_(row));
            const bool isNew =
                content.placeOf.emplace(identities.back(), identities.size() - 1).second;
            if (!isNew) identities.pop_back();
            return !isNew;
        });
        return content;
    }

    template <typename IsInRun>
    static std::size_t countRuns(std::size_t size, IsInRun isInRun) {
        std::size_t runs = 0;
        for (std::size_t at = 0; at < size; ++at)
            runs += isInRun(at) && (at == 0 || !isInRun(at - 1)) ? 1 : 0;
        return runs;
    }

    /// The same rows in the same order as the new content, if not with the same values.
    void bringTo(const std::vector<Row>& rows, const Content& content) {
        const auto& [identities, placeOf] = content;
        Places places;
        places.reserve(rows_.size() + rows.size());
        std::vector<bool> isThere(rows.size());
        for (const std::string& identity : identities_) {
            const auto found = placeOf.find(identity);
            places.push_back(found == placeOf.end() ? gone : found->second);
            if (places.back() != gone) isThere[places.back()] = true;
        }
        const auto isGone = [&](std::size_t at) { return places[at] == gone; };
        if (countRuns(places.size(), isGone) > mostRuns) sortBy(places);
        removeGone(places);
        sortBy(places);
        const auto isNew = [&](std::size_t at) { return !isThere[at]; };
        countRuns(rows.size(), isNew) > mostRuns ? insertSorting(rows, identities, isThere, places)
                                                 : insertRuns(rows, identities, isThere);
    }

    void removeGone(Places& places) {
        for (std::size_t end = rows_.size(); end > 0;) {
            std::size_t begin = end;
            while (begin > 0 && places[begin - 1] == gone)
                --begin;
            remove(begin, end);
            places.erase(places.begin() + static_cast<std::ptrdiff_t>(begin),
                         places.begin() + static_cast<std::ptrdiff_t>(end));
            end = begin == end ? end - 1 : begin;
        }
    }

    void remove(std::size_t begin, std::size_t end) {
        if (begin == end) return;
        const auto first = static_cast<std::ptrdiff_t>(begin);
        const auto last = static_cast<std::ptrdiff_t>(end);
        beginRemoveRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
        rows_.erase(rows_.begin() + first, rows_.begin() + last);
        identities_.erase(identities_.begin() + first, identities_.begin() + last);
        endRemoveRows();
    }

    /// The rows by their places, of which each is taken once; those that are gone come last.
    static std::vector<std::size_t> orderOf(const Places& places) {
        std::vector<std::size_t> rowAt;
        std::vector<std::size_t> goneRows;
        for (std::size_t row = 0; row < places.size(); ++row) {
            if (places[row] == gone) {
                goneRows.push_back(row);
                continue;
            }
            if (places[row] >= rowAt.size()) rowAt.resize(places[row] + 1, gone);
            rowAt[places[row]] = row;
        }
        std::erase(rowAt, gone);
        rowAt.insert(rowAt.end(), goneRows.begin(), goneRows.end());
        return rowAt;
    }

    /// Puts the rows into the order of their places.
    void sortBy(Places& places) {
        if (std::is_sorted(places.begin(), places.end())) return;
        const std::vector<std::size_t> order = orderOf(places);
        Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
        std::vector<int> moved(rows_.size());
        std::vector<Row> rows;
        rows.reserve(rows_.size());
        Strings identities;
        identities.reserve(rows_.size());
        Places sorted;
        sorted.reserve(places.size());
        for (const std::size_t old : order) {
            moved[old] = static_cast<int>(rows.size());
            rows.push_back(std::move(rows_[old]));
            identities.push_back(std::move(identities_[old]));
            sorted.push_back(places[old]);
        }
        rows_ = std::move(rows);
        identities_ = std::move(identities);
        places = std::move(sorted);
        const QModelIndexList before = persistentIndexList();
        QModelIndexList after;
        for (const QModelIndex& index : before)
            after.append(this->index(moved[static_cast<std::size_t>(index.row())], index.column()));
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged({}, VerticalSortHint);
    }

    void insertRuns(const std::vector<Row>& rows, const Strings& identities,
                    const std::vector<bool>& isThere) {
        for (std::size_t begin = 0; begin < rows.size(); ++begin) {
            std::size_t end = begin;
            while (end < rows.size() && !isThere[end])
                ++end;
            if (begin == end) continue;
            const auto first = static_cast<std::ptrdiff_t>(begin);
            const auto last = static_cast<std::ptrdiff_t>(end);
            beginInsertRows({}, static_cast<int>(begin), static_cast<int>(end) - 1);
            rows_.insert(rows_.begin() + first, rows.begin() + first, rows.begin() + last);
            identities_.insert(identities_.begin() + first, identities.begin() + first,
                               identities.begin() + last);
            endInsertRows();
            begin = end;
        }
    }

    void insertSorting(const std::vector<Row>& rows, const Strings& identities,
                       const std::vector<bool>& isThere, Places& places) {
        std::vector<Row> fresh;
        Strings freshIdentities;
        for (std::size_t at = 0; at < rows.size(); ++at) {
            if (isThere[at]) continue;
            fresh.push_back(rows[at]);
            freshIdentities.push_back(identities[at]);
            places.push_back(at);
        }
        insertAtEnd(std::move(fresh), std::move(freshIdentities));
        sortBy(places);
    }

    void insertAtEnd(std::vector<Row> rows, Strings identities) {
        if (rows.empty()) return;
        beginInsertRows({}, rowCount({}), rowCount({}) + static_cast<int>(rows.size()) - 1);
        if (rows_.empty()) {
            rows_ = std::move(rows);
            identities_ = std::move(identities);
        } else {
            std::move(rows.begin(), rows.end(), std::back_inserter(rows_));
            std::move(identities.begin(), identities.end(), std::back_inserter(identities_));
        }
        endInsertRows();
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
    Strings identities_; // of the rows; made once, as some are long
};

} // namespace tovi
