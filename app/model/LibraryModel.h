#pragma once

#include "app/model/RecordPages.h"

#include <QVariantMap>

namespace tovi {

/// The library: the files of the index, sorted and filtered by kind and preset, and its counts.
class LibraryModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* files READ files CONSTANT)
    Q_PROPERTY(int filesRevision READ filesRevision NOTIFY filesChanged)
    Q_PROPERTY(bool hasMoreFiles READ hasMoreFiles NOTIFY filesChanged)
    Q_PROPERTY(QString sortColumn READ sortColumn NOTIFY filesChanged)
    Q_PROPERTY(bool isSortDescending READ isSortDescending NOTIFY filesChanged)
    Q_PROPERTY(tovi::RowListModel* recentFiles READ recentFiles CONSTANT)
    Q_PROPERTY(QVariantMap librarySummary READ librarySummary NOTIFY summaryChanged)
    Q_PROPERTY(
        QString libraryKind READ libraryKindName WRITE setLibraryKindName NOTIFY filterChanged)
    Q_PROPERTY(QString libraryPreset READ libraryPreset WRITE setLibraryPreset NOTIFY filterChanged)
    Q_PROPERTY(QString downloadSourceSelection READ downloadSourceSelection WRITE
                   setDownloadSourceSelection NOTIFY filterChanged)

  public:
    explicit LibraryModel(ModelContext& context);

    RowListModel* files() { return &pages_.list(); }
    /// The few latest modified, whatever filter and order of `files`.
    RowListModel* recentFiles() { return &recent_; }
    const std::vector<FileRecord>& records() const { return pages_.list().rows(); }
    int filesRevision() const { return pages_.revision(); }
    bool hasMoreFiles() const { return pages_.hasMore(); }
    QString sortColumn() const { return pages_.sortColumn(); }
    bool isSortDescending() const { return pages_.isSortDescending(); }
    Q_INVOKABLE void sortBy(const QString& column) { pages_.sortBy(column); }

    const IndexSummary& summary() const { return summary_; }
    /// total, unread, databaseSize, kinds (list of kind, title, symbol, count) and roots (list of
    /// path, count).
    QVariantMap librarySummary() const;

    /// The raw value of a kind; empty for all.
    QString libraryKindName() const;
    void setLibraryKindName(const QString& kind);

    /// "all", "recent" (the last week), "large" (100 MB and more) or "screenshots".
    QString libraryPreset() const { return libraryPreset_; }
    void setLibraryPreset(const QString& preset);

    QString downloadSourceSelection() const { return downloadSourceSelection_; }
    void setDownloadSourceSelection(const QString& source);

    /// Loads page and counts anew. A failure is told after `errorPrefix`.
    void refresh(const std::string& errorPrefix = {});
    /// The page alone.
    void reloadPage(const std::string& errorPrefix);
    void clear();
    Q_INVOKABLE void loadMoreFiles();

  Q_SIGNALS:
    void filesChanged();
    void summaryChanged();
    void filterChanged();

  private:
    void show();

    ModelContext& context_;
    RecordPages pages_;
    std::string errorPrefix_;
    IndexSummary summary_;
    Generation summaryGeneration_;
    RecordList recent_;
    Generation recentGeneration_;
    std::optional<FileKind> libraryKind_;
    QString libraryPreset_ = QStringLiteral("all");
    QString downloadSourceSelection_;
};

} // namespace tovi
