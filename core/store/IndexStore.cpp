#include "core/store/IndexStore.h"

#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/records/IntelligenceError.h"
#include "core/store/IndexSchema.h"
#include "core/store/SearchStatement.h"

#include <filesystem>

namespace tovi {
namespace {

constexpr const char* upsertStatement =
    "INSERT INTO files(path,name,kind,size,created,modified,indexed,content,status,source,checksum,"
    "root,downloaded) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)\n"
    "ON CONFLICT(path) DO UPDATE SET name=excluded.name,kind=excluded.kind,size=excluded.size,"
    "created=excluded.created,modified=excluded.modified,indexed=excluded.indexed,"
    "content=excluded.content,status=excluded.status,source=excluded.source,"
    "checksum=excluded.checksum,root=excluded.root,downloaded=excluded.downloaded";

constexpr const char* scanStatement =
    "SELECT path,size,modified,status,source,downloaded FROM files WHERE root = ?";

constexpr const char* metadataStatement =
    "UPDATE files SET source = ?, downloaded = ? WHERE path = ?";

std::optional<std::string> optionalText(const Statement& row, int column) {
    if (row.isNull(column)) return std::nullopt;
    return std::string(row.text(column));
}

std::optional<Date> optionalDate(const Statement& row, int column) {
    if (row.isNull(column)) return std::nullopt;
    return Date{row.real(column)};
}

std::optional<double> seconds(const std::optional<Date>& date) {
    if (!date) return std::nullopt;
    return date->seconds;
}

FileRecord recordOf(const Statement& row, IndexStore::Content content) {
    FileRecord record;
    record.path = row.text(0);
    record.name = row.text(1);
    record.kind = fileKindFromRawValue(row.text(2)).value_or(FileKind::other);
    record.size = row.integer(3);
    record.createdAt = {row.real(4)};
    record.modifiedAt = {row.real(5)};
    record.indexedAt = {row.real(6)};
    if (content == IndexStore::Content::included) record.content = row.text(7);
    record.contentStatus = row.text(8);
    record.sourceURL = optionalText(row, 9);
    record.sha256 = optionalText(row, 10);
    record.rootPath = row.text(11);
    record.downloadedAt = optionalDate(row, 12);
    return record;
}

std::vector<FileRecord> readAll(Statement& statement, IndexStore::Content content,
                                const std::stop_token& stop) {
    std::vector<FileRecord> records;
    while (statement.step()) {
        throwIfCancelled(stop);
        records.push_back(recordOf(statement, content));
    }
    return records;
}

/// What `read` gives; throws `Cancelled` once `stop` is requested.
template <typename Read>
std::vector<FileRecord> cancellable(Database& database, const std::stop_token& stop, Read read) {
    const InterruptOnStop interrupt(database, stop);
    try {
        return read();
    } catch (const IntelligenceError&) {
        throwIfCancelled(stop); // what failed is the interrupted statement
        throw;
    }
}

void bind(Statement& statement, const SearchClause::Value& value) {
    if (const auto* matches = std::get_if<const TextMatches*>(&value)) {
        statement.bindPointer(*matches, textMatchesType);
    } else if (auto* const* look = std::get_if<Look*>(&value)) {
        statement.bindPointer(*look, lookType);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        statement.bind(*text);
    } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
        statement.bind(*number);
    } else {
        statement.bind(std::get<double>(value));
    }
}

std::int64_t sizeWithLog(const std::string& path) {
    std::int64_t total = 0;
    for (const char* suffix : {"", "-wal"}) {
        std::error_code missing;
        const auto size = std::filesystem::file_size(path + suffix, missing);
        if (!missing) total += static_cast<std::int64_t>(size);
    }
    return total;
}

/// The files of a source, where they are so few that a page of them is not soon met in the order
/// of the listing; an index that an older program wrote does not tell.
std::optional<std::vector<std::int64_t>> fewFrom(Database& database, const std::string& source) {
    if (!Statement(database, "SELECT 1 FROM sqlite_master WHERE name = 'files_source'").step()) {
        return std::nullopt;
    }
    const SearchClause condition = sourceClause(source);
    Statement statement(database, "SELECT rowid FROM files INDEXED BY files_source "
                                  "WHERE source IS NOT NULL AND " +
                                      condition.sql);
    for (const auto& value : condition.values)
        bind(statement, value);
    constexpr std::size_t fewDownloads = 4'000;
    std::vector<std::int64_t> rows;
    while (statement.step()) {
        if (rows.size() == fewDownloads) return std::nullopt;
        rows.push_back(statement.integer(0));
    }
    return rows;
}

} // namespace

std::int64_t IndexSummary::total() const {
    std::int64_t files = 0;
    for (const auto& [kind, count] : filesByKind)
        files += count;
    return files;
}

IndexStore::IndexStore(const std::string& path, Access access)
    : path_(path),
      db_(access == Access::readWrite ? openIndexForWriting(path) : openIndexForReading(path)) {}

Statement& IndexStore::prepared(const char* sql) {
    const auto found = statements_.find(sql);
    if (found != statements_.end()) return found->second;
    return statements_.try_emplace(sql, *db_, sql).first->second;
}

std::uint64_t IndexStore::changeRevision() {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "PRAGMA data_version");
    statement.step();
    const std::int64_t version = statement.integer(0);
    if (observedDataVersion_ && *observedDataVersion_ != version) ++revision_;
    observedDataVersion_ = version;
    return revision_;
}

void IndexStore::upsert(const FileRecord& record) {
    const std::lock_guard lock(mutex_);
    Statement& statement = prepared(upsertStatement);
    statement.bind(record.path).bind(record.name).bind(rawValue(record.kind)).bind(record.size);
    statement.bind(record.createdAt.seconds).bind(record.modifiedAt.seconds);
    statement.bind(record.indexedAt.seconds).bind(record.content).bind(record.contentStatus);
    statement.bind(record.sourceURL).bind(record.sha256).bind(record.rootPath);
    statement.bind(seconds(record.downloadedAt));
    statement.run();
    ++revision_;
}

std::vector<FileRecord> IndexStore::allFiles(const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    return cancellable(*db_, stop, [&] {
        Statement statement(*db_, "SELECT * FROM files ORDER BY modified DESC, path ASC");
        return readAll(statement, Content::included, stop);
    });
}

std::vector<FileRecord> IndexStore::search(const SearchQuery& query, std::int64_t limit,
                                           std::int64_t offset, Content content,
                                           const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    return cancellable(*db_, stop, [&] {
        // Both indexes and the rows as they were at one moment.
        const Transaction transaction(*db_, Transaction::Kind::reading);
        const auto page = [&](const std::optional<SearchClause>& text,
                              const std::optional<std::vector<std::int64_t>>& rows) {
            const SearchClause search = searchStatement(query, text, rows, limit, offset);
            Statement statement(*db_, search.sql);
            for (const auto& value : search.values)
                bind(statement, value);
            return readAll(statement, content, stop);
        };
        const auto few = query.source ? fewFrom(*db_, *query.source) : std::nullopt;
        if (splitWhitespace(query.text).empty()) return page({}, few);

        const WordJudge judge(*db_, query.text);
        const bool isListing = query.order == FileOrder{};
        if (Look look{judge, isListing ? Look::patience(judge, limit) : 0}; look.remaining > 0) {
            try {
                return page(textClause(look, query.text), {});
            } catch (const IntelligenceError&) {
                if (!look.isExhausted()) throw;
            }
        }
        const TextMatches matches = findTextMatches(*db_, judge, query.text);
        return page(textClause(matches, query.text), few ? few : matches.few);
    });
}

std::optional<FileRecord> IndexStore::record(const std::string& path) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "SELECT * FROM files WHERE path = ?");
    statement.bind(path);
    if (!statement.step()) return std::nullopt;
    return recordOf(statement, Content::included);
}

std::vector<FileRecord> IndexStore::records(const std::vector<std::string>& paths,
                                            const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "SELECT * FROM files WHERE path = ?");
    std::vector<FileRecord> records;
    for (const std::string& path : paths) {
        throwIfCancelled(stop);
        statement.bind(path);
        if (statement.step()) records.push_back(recordOf(statement, Content::leftOut));
        statement.reset();
    }
    return records;
}

std::vector<FileRecord> IndexStore::filesInFolder(const std::string& folder, std::int64_t limit) {
    constexpr int mostSteps = 10'000;
    const std::string prefix = folder == "/" ? folder : folder + '/';
    const std::string end = prefix.substr(0, prefix.size() - 1) + '0'; // "0" follows "/"
    const std::lock_guard lock(mutex_);
    Statement next(*db_, "SELECT * FROM files WHERE path >= ? AND path < ? ORDER BY path LIMIT 1");
    std::vector<FileRecord> records;
    std::string start = prefix + '\1'; // no text without NUL lies between the two
    for (int steps = 0; steps < mostSteps; ++steps) {
        if (static_cast<std::int64_t>(records.size()) >= limit) break;
        next.bind(start).bind(end);
        if (!next.step()) break;
        const std::string_view path = next.text(0);
        const std::size_t slash = path.find('/', prefix.size());
        if (slash == std::string_view::npos) {
            start = std::string(path) + '\1';
            records.push_back(recordOf(next, Content::leftOut));
        } else {
            start = std::string(path.substr(0, slash)) + '0'; // past everything below it
        }
        next.reset();
    }
    return records;
}

std::optional<Date> IndexStore::newestBefore(Date date) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "SELECT max(modified) FROM files WHERE modified < ?");
    statement.bind(date.seconds);
    statement.step();
    return optionalDate(statement, 0);
}

std::vector<KindTotal> IndexStore::modifiedBetween(Date start, Date end) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "SELECT kind, count(*), sum(size) FROM files INDEXED BY "
                              "files_listing WHERE modified >= ? AND modified < ? GROUP BY kind");
    statement.bind(start.seconds).bind(end.seconds);
    std::vector<KindTotal> totals;
    while (statement.step()) {
        totals.push_back({fileKindFromRawValue(statement.text(0)).value_or(FileKind::other),
                          statement.integer(1), statement.integer(2)});
    }
    return totals;
}

std::vector<IndexScanRecord> IndexStore::scanRecords(const std::string& rootPath) {
    std::vector<IndexScanRecord> records;
    forEachScanRecord(rootPath, [&](const IndexScanRecord& record) { records.push_back(record); });
    return records;
}

void IndexStore::forEachScanRecord(const std::string& rootPath,
                                   const std::function<void(const IndexScanRecord&)>& each) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, scanStatement);
    statement.bind(rootPath);
    IndexScanRecord record; // reused, so that a million rows allocate a few strings
    while (statement.step()) {
        record.path = statement.text(0);
        record.size = statement.integer(1);
        record.modifiedAt = {statement.real(2)};
        record.contentStatus = statement.text(3);
        record.sourceURL = optionalText(statement, 4);
        record.downloadedAt = optionalDate(statement, 5);
        each(record);
    }
}

void IndexStore::updateDownloadMetadata(const std::string& path,
                                        const std::optional<std::string>& sourceURL,
                                        const std::optional<Date>& downloadedAt) {
    const std::lock_guard lock(mutex_);
    Statement& statement = prepared(metadataStatement);
    statement.bind(sourceURL).bind(seconds(downloadedAt)).bind(path);
    statement.run();
    if (db_->changes() > 0) ++revision_;
}

void IndexStore::remove(const std::vector<std::string>& paths) {
    if (paths.empty()) return;
    const std::lock_guard lock(mutex_);
    std::int64_t removed = 0;
    Transaction transaction(*db_, Transaction::Kind::writing);
    Statement statement(*db_, "DELETE FROM files WHERE path = ?");
    for (const std::string& path : paths) {
        statement.bind(path);
        statement.run();
        removed += db_->changes();
    }
    transaction.commit();
    if (removed > 0) ++revision_;
}

void IndexStore::removeRoot(const std::string& rootPath) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "DELETE FROM files WHERE root = ?");
    statement.bind(rootPath);
    statement.run();
    if (db_->changes() > 0) ++revision_;
}

void IndexStore::adoptRows(const std::string& rootPath) {
    const std::lock_guard lock(mutex_);
    // "0" follows "/". Of two roots that hold rows below this one, the shorter lies above it.
    Statement statement(*db_, "UPDATE files SET root = ?1 WHERE path > ?1 || '/' AND "
                              "path < ?1 || '0' AND length(root) < length(?1)");
    statement.bind(rootPath);
    statement.run();
    if (db_->changes() > 0) ++revision_;
}

void IndexStore::moveRoot(const std::string& from, const std::string& to) {
    const std::lock_guard lock(mutex_);
    Transaction transaction(*db_, Transaction::Kind::writing);
    // Substrings count characters, and so does the length.
    Statement rename(*db_, "UPDATE OR IGNORE files SET root = ?2, "
                           "path = ?2 || substr(path, length(?1) + 1) WHERE root = ?1");
    rename.bind(from).bind(to);
    rename.run();
    Statement remove(*db_, "DELETE FROM files WHERE root = ?");
    remove.bind(from);
    remove.run();
    transaction.commit();
    ++revision_;
}

std::vector<FileRecord> IndexStore::filesSharingSize(const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    return cancellable(*db_, stop, [&] {
        Statement statement(*db_,
                            "SELECT * FROM files WHERE kind NOT IN ('folder','application') AND "
                            "size IN (SELECT size FROM files "
                            "WHERE kind NOT IN ('folder','application') "
                            "GROUP BY size HAVING count(*) > 1)");
        return readAll(statement, Content::leftOut, stop);
    });
}

void IndexStore::clear() {
    const std::lock_guard lock(mutex_);
    db_->execute("DELETE FROM files;");
    ++revision_;
    db_->execute("INSERT INTO files_fts(files_fts) VALUES('rebuild'); "
                 "INSERT INTO files_names(files_names) VALUES('rebuild'); "
                 "PRAGMA wal_checkpoint(TRUNCATE); VACUUM;");
}

std::vector<FileRecord> IndexStore::downloads(const std::stop_token& stop) {
    const std::lock_guard lock(mutex_);
    return cancellable(*db_, stop, [&] {
        Statement statement(*db_, "SELECT * FROM files INDEXED BY files_scan "
                                  "WHERE kind <> 'folder' AND (source IS NOT NULL OR "
                                  "downloaded IS NOT NULL OR instr(path, '/Downloads/') > 0)");
        return readAll(statement, Content::leftOut, stop);
    });
}

std::vector<std::string> IndexStore::roots() {
    const std::lock_guard lock(mutex_);
    // One look-up a root instead of a run through all rows.
    Statement next(*db_, "SELECT min(root) FROM files WHERE root > ?");
    std::vector<std::string> roots;
    for (std::string last;; last = roots.back()) {
        next.bind(last);
        if (!next.step() || next.isNull(0)) return roots;
        roots.emplace_back(next.text(0));
        next.reset();
    }
}

std::int64_t IndexStore::count() {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "SELECT count(*) FROM files");
    statement.step();
    return statement.integer(0);
}

IndexSummary IndexStore::summary(const std::optional<std::string>& rootPath) {
    const std::lock_guard lock(mutex_);
    const auto countBy = [&](const std::string& column, const auto& add) {
        const std::string condition = rootPath ? " WHERE root = ?" : "";
        Statement counts(*db_, "SELECT " + column + ", count(*) FROM files" + condition +
                                   " GROUP BY " + column);
        if (rootPath) counts.bind(*rootPath);
        while (counts.step())
            add(std::string(counts.text(0)), counts.integer(1));
    };
    IndexSummary summary;
    countBy("kind", [&](const std::string& kind, std::int64_t count) {
        summary.filesByKind[fileKindFromRawValue(kind).value_or(FileKind::other)] += count;
    });
    countBy("status", [&](const std::string& status, std::int64_t count) {
        summary.filesByStatus[status] = count;
    });
    countBy("root", [&](const std::string& root, std::int64_t count) {
        summary.filesByRoot[root] = count;
    });
    summary.databaseSize = sizeWithLog(path_);
    return summary;
}

std::vector<std::pair<std::string, std::string>>
IndexStore::filesWithStatus(const std::string& prefix, std::int64_t limit) {
    const std::lock_guard lock(mutex_);
    Statement statement(*db_, "SELECT path, status FROM files WHERE status LIKE ? ESCAPE '\\' "
                              "ORDER BY root, path LIMIT ?");
    statement.bind(escapedForLike(prefix) + '%').bind(limit);
    std::vector<std::pair<std::string, std::string>> files;
    while (statement.step())
        files.emplace_back(statement.text(0), statement.text(1));
    return files;
}

} // namespace tovi
