#pragma once

#include "app/lists/RecordList.h"
#include "app/model/ModelContext.h"
#include "core/search/SearchQuery.h"

#include <optional>

namespace tovi {

/// Files of the index that match a query, loaded page by page. Only what was asked for last is
/// shown.
class RecordPages : public QObject {
    Q_OBJECT

  public:
    static constexpr std::int64_t pageSize = 1000;

    /// What to look for is decided away from the main thread.
    using MakeQuery = std::function<SearchQuery()>;

    explicit RecordPages(ModelContext& context) : context_(context) {}

    RecordList& list() { return list_; }
    const RecordList& list() const { return list_; }

    /// The query whose files are shown; none before the first page and after `clear`.
    const std::optional<SearchQuery>& query() const { return query_; }

    /// Counts the replacements of the list.
    int revision() const { return revision_; }
    bool hasMore() const { return hasMore_; }
    bool isLoadingMore() const { return isLoadingMore_; }

    /// "modified", "name", "folder", "kind" or "size"; the latest modified first by default.
    QString sortColumn() const;
    bool isSortDescending() const { return order_.isDescending; }
    /// The other way round if it is sorted by the column already.
    void sortBy(const QString& column);

    /// Loads the first page.
    void show(MakeQuery query);
    /// Loads what is shown once more.
    void reload();
    void loadMore();
    void clear();

  Q_SIGNALS:
    void changed();
    void arrived(); // the list was replaced
    void failed(const QString& error);

  private:
    struct Page {
        SearchQuery query;
        std::vector<FileRecord> files;
    };
    void load(std::int64_t limit);

    ModelContext& context_;
    RecordList list_;
    MakeQuery makeQuery_;
    std::optional<SearchQuery> query_;
    FileOrder order_;
    std::int64_t nextOffset_ = 0;
    int revision_ = 0;
    bool hasMore_ = false;
    bool isLoadingMore_ = false;
    Generation generation_;
};

} // namespace tovi
