#pragma once

#include "app/background/Background.h"
#include "app/lists/RecordList.h"
#include "core/library/DownloadGroups.h"
#include "core/store/IndexStore.h"

#include <memory>

namespace tovi {

/// Everything that was downloaded, by the website or app it came from.
class DownloadsModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* groups READ groups CONSTANT)
    Q_PROPERTY(tovi::RowListModel* latest READ latest CONSTANT)
    Q_PROPERTY(tovi::RowListModel* files READ files CONSTANT)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(bool hasLoaded READ hasLoaded NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString selectedGroup READ selectedGroup WRITE selectGroup NOTIFY filterChanged)
    Q_PROPERTY(QString nameFilter READ nameFilter WRITE setNameFilter NOTIFY filterChanged)
    Q_PROPERTY(bool hasMoreFiles READ hasMoreFiles NOTIFY filesChanged)

  public:
    static constexpr std::size_t latestCount = 12;
    static constexpr std::size_t pageSize = 500;

    /// A group without its files.
    struct Group {
        std::string id;
        std::string name;
        std::string symbol;
        std::size_t count = 0;
        std::int64_t bytes = 0;
        Date newest; // the latest effective date

        friend bool operator==(const Group&, const Group&) = default;
    };

    explicit DownloadsModel(Executor& executor);

    /// The index to read from now on; none while it is closed.
    void setIndex(std::shared_ptr<IndexStore> index);

    /// Roles: id, name, symbol, count, bytes, newest.
    RowListModel* groups() { return &groups_; }
    const std::vector<Group>& groupRows() const { return groups_.rows(); }
    /// The newest downloads of all groups.
    RecordList* latest() { return &latest_; }
    /// The files of the selected group whose names contain the filter.
    RecordList* files() { return &files_; }

    bool isLoading() const { return isLoading_; }
    bool hasLoaded() const { return downloads_ != nullptr; }
    QString error() const { return error_; }
    QString selectedGroup() const { return selectedGroup_; }
    QString nameFilter() const { return nameFilter_; }
    bool hasMoreFiles() const { return hasMoreFiles_; }

    /// Reads the downloads anew, as after a change of the library.
    Q_INVOKABLE void refresh();
    void selectGroup(const QString& id);
    void setNameFilter(const QString& text);
    Q_INVOKABLE void loadMoreFiles();

  Q_SIGNALS:
    void changed();
    void filterChanged();
    void filesChanged();

  private:
    using Downloads = std::shared_ptr<const std::vector<DownloadGroup>>;
    struct Loaded {
        Downloads downloads;
        std::vector<Group> groups;
        std::vector<FileRecord> latest;
    };

    static Loaded load(IndexStore& index, const std::stop_token& stop);
    void keep(Downloads downloads);
    void showFiles(std::size_t count);

    Executor& executor_;
    std::shared_ptr<IndexStore> index_;
    DifferenceListModel<Group> groups_;
    RecordList latest_;
    RecordList files_;
    Downloads downloads_;
    QString error_;
    QString selectedGroup_;
    QString nameFilter_;
    bool isLoading_ = false;
    bool hasMoreFiles_ = false;
    std::size_t shownFiles_ = pageSize;
    Generation loadGeneration_;
    Generation filesGeneration_;
};

} // namespace tovi
