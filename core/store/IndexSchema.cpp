#include "core/store/IndexSchema.h"

#include "core/records/DownloadOrigin.h"
#include "core/records/IntelligenceError.h"
#include "core/store/TextMatches.h"
#include "platform/PrivateDirectory.h"

#include <filesystem>

#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>

namespace tovi {
namespace {

constexpr const char* settings =
    "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA secure_delete=ON; "
    "PRAGMA busy_timeout=5000;";

constexpr const char* schema = R"(CREATE TABLE IF NOT EXISTS files (
  path TEXT PRIMARY KEY, name TEXT NOT NULL, kind TEXT NOT NULL, size INTEGER NOT NULL,
  created REAL NOT NULL, modified REAL NOT NULL, indexed REAL NOT NULL,
  content TEXT NOT NULL, status TEXT NOT NULL, source TEXT, checksum TEXT, root TEXT NOT NULL
);
CREATE INDEX IF NOT EXISTS files_root ON files(root);
CREATE INDEX IF NOT EXISTS files_modified ON files(modified);
CREATE VIRTUAL TABLE IF NOT EXISTS files_fts USING fts5(name, content, content='files', content_rowid='rowid', tokenize='unicode61 remove_diacritics 2');
CREATE TRIGGER IF NOT EXISTS files_insert AFTER INSERT ON files BEGIN
  INSERT INTO files_fts(rowid,name,content) VALUES(new.rowid,new.name,new.content);
END;
CREATE TRIGGER IF NOT EXISTS files_delete AFTER DELETE ON files BEGIN
  INSERT INTO files_fts(files_fts,rowid,name,content) VALUES('delete',old.rowid,old.name,old.content);
END;)";

// Rewriting a row whose name and content stay the same leaves the full-text index untouched.
constexpr const char* updateTrigger = R"(BEGIN IMMEDIATE;
DROP TRIGGER IF EXISTS files_update;
CREATE TRIGGER files_update AFTER UPDATE OF name,content ON files
WHEN old.name IS NOT new.name OR old.content IS NOT new.content BEGIN
  INSERT INTO files_fts(files_fts,rowid,name,content) VALUES('delete',old.rowid,old.name,old.content);
  INSERT INTO files_fts(rowid,name,content) VALUES(new.rowid,new.name,new.content);
END;
COMMIT;)";

// The texts lie in the rows, so whatever runs through many rows reads from an index that covers
// it: searches and listings in their order from the first, rescans and counts from the second, and
// what looks for the few downloads of a source from the third.
constexpr const char* coveringIndexes =
    "CREATE INDEX IF NOT EXISTS files_listing"
    " ON files(modified DESC, path ASC, name, kind, size, source);"
    "CREATE INDEX IF NOT EXISTS files_scan"
    " ON files(root, path, size, modified, status, source, downloaded, kind);"
    "CREATE INDEX IF NOT EXISTS files_source ON files(source) WHERE source IS NOT NULL;";

// The list of names that findTextMatches reads, in place of an older one.
constexpr const char* namesIndex =
    R"(DROP TRIGGER IF EXISTS files_names_insert;
DROP TRIGGER IF EXISTS files_names_delete;
DROP TRIGGER IF EXISTS files_names_update;
DROP TABLE IF EXISTS files_names;
CREATE VIEW IF NOT EXISTS files_named(id, name) AS SELECT rowid, name || '//' FROM files;
{};
CREATE TRIGGER files_names_insert AFTER INSERT ON files BEGIN
  INSERT INTO files_names(rowid,name) VALUES(new.rowid,new.name || '//');
END;
CREATE TRIGGER files_names_delete AFTER DELETE ON files BEGIN
  INSERT INTO files_names(files_names,rowid,name) VALUES('delete',old.rowid,old.name || '//');
END;
CREATE TRIGGER files_names_update AFTER UPDATE OF name ON files WHEN old.name IS NOT new.name BEGIN
  INSERT INTO files_names(files_names,rowid,name) VALUES('delete',old.rowid,old.name || '//');
  INSERT INTO files_names(rowid,name) VALUES(new.rowid,new.name || '//');
END;
INSERT INTO files_names(files_names) VALUES('rebuild');)";

// A first scan writes as much log as database; folding it in seldom saves a third of the time. Few
// pages are mapped, so that a scan stays small; a reader maps all it can instead.
constexpr const char* writerTuning = "PRAGMA wal_autocheckpoint=16000; PRAGMA mmap_size=67108864;";
constexpr const char* readerTuning = "PRAGMA mmap_size=4294967296;";

void sourceGroup(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) != SQLITE_TEXT) return sqlite3_result_null(context);
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
    if (text == nullptr) return sqlite3_result_error_nomem(context);
    const auto length = static_cast<std::size_t>(sqlite3_value_bytes(arguments[0]));
    const auto origin = DownloadOrigin::from({text, length});
    if (!origin) return sqlite3_result_null(context);
    sqlite3_result_text(context, origin->id.data(), static_cast<int>(origin->id.size()),
                        SQLITE_TRANSIENT);
}

void registerSourceGroup(Database& database) {
    if (sqlite3_create_function_v2(database.handle(), "tovi_source_group", 1,
                                   SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, sourceGroup,
                                   nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw IntelligenceError::database("Unable to prepare download groups");
    }
}

void refuseNewerVersion(Database& database) {
    // Closing the last connection would otherwise fold the log of a newer program into its file.
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    Statement version(database, "PRAGMA user_version");
    version.step();
    if (version.integer(0) > indexSchemaVersion) {
        throw IntelligenceError::database(
            fmt::format("The index was written by a newer version of this program ({} instead of "
                        "{}). It was left as it is.",
                        version.integer(0), indexSchemaVersion));
    }
    sqlite3_db_config(database.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

void addNamesIndex(Database& database) {
    if (hasNamesIndex(database)) return;
    Transaction transaction(database, Transaction::Kind::writing);
    if (!hasNamesIndex(database)) database.execute(fmt::format(namesIndex, namesTable));
    transaction.commit();
}

bool hasDownloadedColumn(Database& database) {
    try {
        Statement columns(database, "PRAGMA table_info(files)");
        while (columns.step()) {
            if (columns.text(1) == "downloaded") return true;
        }
        return false;
    } catch (const IntelligenceError&) {
        throw IntelligenceError::database("Unable to inspect index schema");
    }
}

void makePrivate(const std::string& path) {
    ::chmod(path.c_str(), 0600);
}

} // namespace

std::unique_ptr<Database> openIndexForWriting(const std::string& path) {
    platform::makePrivateDirectory(std::filesystem::path(path).parent_path());
    auto database = std::make_unique<Database>(path, Database::Access::readWrite);
    registerSourceGroup(*database);
    registerTextFunctions(*database);
    makePrivate(path);
    refuseNewerVersion(*database);
    database->execute(settings);
    database->execute(writerTuning);
    database->execute(schema);
    database->execute(updateTrigger);
    if (!hasDownloadedColumn(*database)) {
        database->execute("ALTER TABLE files ADD COLUMN downloaded REAL;");
    }
    database->execute(coveringIndexes);
    addNamesIndex(*database);
    database->execute(fmt::format("PRAGMA user_version={};", indexSchemaVersion));
    makePrivate(path);
    return database;
}

std::unique_ptr<Database> openIndexForReading(const std::string& path) {
    auto database = std::make_unique<Database>(path, Database::Access::readOnly);
    registerSourceGroup(*database);
    registerTextFunctions(*database);
    refuseNewerVersion(*database);
    database->execute(readerTuning);
    return database;
}

} // namespace tovi
