#pragma once

#include "app/model/RecordPages.h"

#include <QStringList>

namespace tovi {

/// Searching by plain phrases.
class SearchModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(tovi::RowListModel* results READ results CONSTANT)
    Q_PROPERTY(int resultsRevision READ resultsRevision NOTIFY resultsChanged)
    Q_PROPERTY(bool hasMoreSearchResults READ hasMoreSearchResults NOTIFY resultsChanged)
    Q_PROPERTY(
        bool isLoadingMoreSearchResults READ isLoadingMoreSearchResults NOTIFY resultsChanged)
    Q_PROPERTY(QString sortColumn READ sortColumn NOTIFY resultsChanged)
    Q_PROPERTY(bool isSortDescending READ isSortDescending NOTIFY resultsChanged)
    Q_PROPERTY(QString activeSearchText READ activeSearchText NOTIFY resultsChanged)
    Q_PROPERTY(QString searchedWords READ searchedWords NOTIFY resultsChanged)
    Q_PROPERTY(QStringList chips READ chips NOTIFY resultsChanged)
    Q_PROPERTY(double searchSeconds READ searchSeconds NOTIFY resultsChanged)

  public:
    explicit SearchModel(ModelContext& context);

    /// The text of the search field; setting it does not search.
    QString query() const { return query_; }
    void setQuery(const QString& text);

    RowListModel* results() { return &pages_.list(); }
    const std::vector<FileRecord>& records() const { return pages_.list().rows(); }
    int resultsRevision() const { return pages_.revision(); }
    bool hasMoreSearchResults() const { return pages_.hasMore(); }
    bool isLoadingMoreSearchResults() const { return pages_.isLoadingMore(); }
    QString sortColumn() const { return pages_.sortColumn(); }
    bool isSortDescending() const { return pages_.isSortDescending(); }
    Q_INVOKABLE void sortBy(const QString& column) { pages_.sortBy(column); }

    /// The phrase whose results are shown, and how it was understood; empty while a search runs.
    QString activeSearchText() const;
    QStringList chips() const;
    /// What of the phrase is looked for in names and texts.
    QString searchedWords() const;
    /// From the search's start to its first page.
    double searchSeconds() const { return searchSeconds_; }

    /// Searches; during maintenance, once it is over.
    Q_INVOKABLE void search(const QString& text);
    /// Searches without the words behind a chip of what is shown.
    Q_INVOKABLE void removeChip(int at);
    Q_INVOKABLE void loadMoreSearchResults();
    /// Searches the text last searched for once more, for what changed in the index.
    void refresh();
    void clear();

    using QuickResults = std::function<void(const Outcome<std::vector<FileRecord>>&)>;
    /// For the quick search panel: at most `limit` files. Only the latest call is answered, with
    /// an error while there is no index or it is in maintenance.
    void quickSearch(const QString& text, int limit, QuickResults answer);

  Q_SIGNALS:
    void queryChanged();
    void resultsChanged();

  private:
    ModelContext& context_;
    RecordPages pages_;
    QString query_;
    std::optional<QString> requestedText_;
    QString shownText_;
    bool isSearchDue_ = false; // asked for during maintenance
    bool isFirstPageDue_ = false;
    double startedUptime_ = 0;
    double searchSeconds_ = 0;
    Generation quickGeneration_;
};

} // namespace tovi
