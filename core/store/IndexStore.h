#pragma once

#include "core/records/FileRecord.h"
#include "core/search/SearchQuery.h"
#include "core/store/Database.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// What the index holds, in numbers.
struct IndexSummary {
    std::map<FileKind, std::int64_t> filesByKind;
    std::map<std::string, std::int64_t> filesByStatus;
    std::map<std::string, std::int64_t> filesByRoot;
    std::int64_t databaseSize = 0; // bytes, with the log beside it

    std::int64_t total() const;
};

/// Files of one kind, in numbers.
struct KindTotal {
    FileKind kind;
    std::int64_t files;
    std::int64_t bytes;
};

/// Owns the connection to the index, the file "index.sqlite". May be called from any thread: each
/// operation holds the one lock for as long as it runs. Other processes may read meanwhile, and a
/// second writer waits up to five seconds for the first.
///
/// Every operation throws `IntelligenceError` of the kind `database` on failure; those that take a
/// stop token throw `Cancelled`.
class IndexStore {
  public:
    using Access = Database::Access;
    enum class Content { included, leftOut };

    explicit IndexStore(const std::string& path, Access access = Access::readWrite);

    /// A number that moves with every change of the index, by this process or another.
    std::uint64_t changeRevision();

    void upsert(const FileRecord& record);

    /// All files, newest first, ties by path.
    std::vector<FileRecord> allFiles(const std::stop_token& stop = {});

    /// One page in the order of the query, ties by path; `limit` is taken as 1 to 100,000, `offset`
    /// as 0 or more. With `leftOut` the records' `content` is empty and the texts are not read.
    std::vector<FileRecord> search(const SearchQuery& query, std::int64_t limit,
                                   std::int64_t offset, Content content = Content::included,
                                   const std::stop_token& stop = {});

    std::optional<FileRecord> record(const std::string& path);

    /// The files of these paths that are in the index, in the order given, without content.
    std::vector<FileRecord> records(const std::vector<std::string>& paths,
                                    const std::stop_token& stop = {});

    /// Files that lie in `folder` itself, by path, without content. Looks past 10,000 files and
    /// folders at the most.
    std::vector<FileRecord> filesInFolder(const std::string& folder, std::int64_t limit);

    /// The latest modification before `date`.
    std::optional<Date> newestBefore(Date date);

    /// The files modified from `start` on and before `end`.
    std::vector<KindTotal> modifiedBetween(Date start, Date end);

    std::vector<IndexScanRecord> scanRecords(const std::string& rootPath);

    /// The same rows one at a time, for roots of any size; `each` must not call the store.
    void forEachScanRecord(const std::string& rootPath,
                           const std::function<void(const IndexScanRecord&)>& each);

    void updateDownloadMetadata(const std::string& path,
                                const std::optional<std::string>& sourceURL,
                                const std::optional<Date>& downloadedAt);

    /// Deletes the rows of the paths, all or none.
    void remove(const std::vector<std::string>& paths);

    void removeRoot(const std::string& rootPath);

    /// Hands the rows below `rootPath` that a connected folder above it holds over to it.
    void adoptRows(const std::string& rootPath);

    /// Takes the rows of a connected folder along to its new path. Rows that lie there already
    /// stay as they are, and those they stand for are deleted.
    void moveRoot(const std::string& from, const std::string& to);

    /// Files, folders and applications aside, whose size another of them has; without content.
    std::vector<FileRecord> filesSharingSize(const std::stop_token& stop = {});

    /// Empties the index and compacts its file, so that no text lingers in free pages.
    void clear();

    /// The files that may be downloads, in no order and without content: those with an address or
    /// a date of download, and those below a folder "Downloads".
    std::vector<FileRecord> downloads(const std::stop_token& stop = {});

    /// The connected folders that have files in the index, in byte order.
    std::vector<std::string> roots();

    std::int64_t count();

    /// Of the database file, as it was opened.
    const std::string& path() const { return path_; }

    /// Of the whole index, or of one connected folder.
    IndexSummary summary(const std::optional<std::string>& rootPath = std::nullopt);

    /// Path and status of the files whose content status starts with `prefix`, by path.
    std::vector<std::pair<std::string, std::string>> filesWithStatus(const std::string& prefix,
                                                                     std::int64_t limit);

  private:
    Statement& prepared(const char* sql);

    const std::string path_;
    std::mutex mutex_; // guards everything below
    std::unique_ptr<Database> db_;
    std::map<const char*, Statement> statements_;
    std::uint64_t revision_ = 0;
    std::optional<std::int64_t> observedDataVersion_;
};

} // namespace tovi
