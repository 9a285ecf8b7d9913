#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/records/IntelligenceError.h"
#include "core/store/IndexStore.h"
#include "core/store/TextMatches.h"
#include "tests/support/TemporaryTree.h"

#include <algorithm>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tovi {
namespace {

using test::TemporaryTree;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

FileRecord makeRecord(const std::string& path, const std::string& content = "",
                      double modified = 0) {
    FileRecord record;
    record.path = path;
    record.name = path.substr(path.rfind('/') + 1);
    record.kind = FileKind::document;
    record.size = static_cast<std::int64_t>(content.size());
    record.createdAt = {modified - 1.5};
    record.modifiedAt = {modified};
    record.indexedAt = {modified + 1};
    record.content = content;
    record.contentStatus = "Text indexed";
    record.rootPath = "/root";
    return record;
}

class IndexStoreTest : public testing::Test {
  protected:
    TemporaryTree tree;
    std::string path = tree.path("data/index.sqlite");

    /// Runs SQL on a connection of its own; returns the first column of every row.
    std::vector<std::string> sql(const std::string& text) const {
        sqlite3* db = nullptr;
        EXPECT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
        std::vector<std::string> rows;
        char* error = nullptr;
        sqlite3_exec(
            db, text.c_str(),
            [](void* out, int, char** values, char**) {
                static_cast<std::vector<std::string>*>(out)->emplace_back(
                    values[0] != nullptr ? values[0] : "NULL");
                return 0;
            },
            &rows, &error);
        EXPECT_EQ(error, nullptr) << error;
        sqlite3_free(error);
        sqlite3_close(db);
        return rows;
    }

    static std::vector<std::string> paths(const std::vector<FileRecord>& records) {
        std::vector<std::string> result;
        for (const FileRecord& record : records)
            result.push_back(record.path);
        return result;
    }

    static std::vector<std::string> find(IndexStore& store, const std::string& text) {
        SearchQuery query;
        query.text = text;
        return paths(store.search(query, 100, 0));
    }
};

std::string replaced(std::string_view text, std::string_view from, std::string_view to) {
    std::string result(text);
    for (std::size_t at = 0; (at = result.find(from, at)) != std::string::npos; at += to.size())
        result.replace(at, from.size(), to);
    return result;
}

std::string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no error";
}

TEST_F(IndexStoreTest, GivesBackEveryProperty) {
    IndexStore store(path);
    FileRecord record = makeRecord("/root/a.txt", "text\nwith lines", 1'700'000'000.123456);
    record.sourceURL = "https://example.org/a.txt";
    record.downloadedAt = Date{1'600'000'000.5};
    record.sha256 = std::string(64, 'a');
    store.upsert(record);
    EXPECT_EQ(store.record("/root/a.txt"), record);
    EXPECT_EQ(store.record("/root/A.txt"), std::nullopt);
    const FileRecord plain = makeRecord("/root/b.txt", "", 5);
    store.upsert(plain);
    EXPECT_THAT(store.allFiles(), ElementsAre(record, plain));
    const auto scanned = store.scanRecords("/root");
    ASSERT_EQ(scanned.size(), 2U);
    EXPECT_EQ(scanned[0],
              (IndexScanRecord{record.path, record.size, record.modifiedAt, record.contentStatus,
                               record.sourceURL, record.downloadedAt}));
    EXPECT_THAT(store.scanRecords("/ro"), IsEmpty());
    sql("UPDATE files SET kind = 'hologram' WHERE path = '/root/b.txt'");
    EXPECT_EQ(store.record("/root/b.txt")->kind, FileKind::other);
}

TEST_F(IndexStoreTest, IsPrivateToItsUser) {
    const IndexStore store(path);
    struct stat found {};
    ::stat(path.c_str(), &found);
    EXPECT_EQ(found.st_mode & 0777, 0600U);
    ::stat(tree.path("data").c_str(), &found);
    EXPECT_EQ(found.st_mode & 0777, 0700U);
}

TEST_F(IndexStoreTest, FindsWordsPrefixesAndNames) {
    IndexStore store(path);
    store.upsert(makeRecord("/root/plan.txt", "The quarterly r\u00e9sum\u00e9 is done", 3));
    store.upsert(makeRecord("/root/50%_off.txt", "nothing", 2));
    store.upsert(makeRecord("/root/unquartered.txt", "", 1));
    EXPECT_THAT(find(store, "resume quart"), ElementsAre("/root/plan.txt"));
    EXPECT_THAT(find(store, "quarter"), ElementsAre("/root/plan.txt", "/root/unquartered.txt"));
    EXPECT_THAT(find(store, "0%_o"), ElementsAre("/root/50%_off.txt"));
    EXPECT_THAT(find(store, "0%o"), IsEmpty());
    EXPECT_THAT(find(store, "NOT AND OR done"), IsEmpty());
    EXPECT_THAT(find(store, "name:plan"), IsEmpty());
    EXPECT_THAT(find(store, "done - is"), ElementsAre("/root/plan.txt"));
    EXPECT_THAT(find(store, "\"done\""), ElementsAre("/root/plan.txt"));
    EXPECT_THAT(find(store, "\""), IsEmpty());
    EXPECT_EQ(find(store, " ").size(), 3U);
}

TEST_F(IndexStoreTest, FiltersAndPages) {
    IndexStore store(path);
    for (int n = 0; n < 5; ++n) {
        FileRecord record = makeRecord("/root/" + std::to_string(n), std::string(10U * n, 'x'), n);
        if (n % 2 == 0) record.kind = FileKind::pdf;
        if (n == 3) record.sourceURL = "https://files.slack.com/x";
        if (n == 4) record.sourceURL = "ftp://slack.com/x";
        store.upsert(record);
    }
    SearchQuery query;
    query.kind = FileKind::pdf;
    EXPECT_THAT(paths(store.search(query, 2, 1)), ElementsAre("/root/2", "/root/0"));
    query.minimumSize = 20;
    query.modifiedBefore = Date{4};
    EXPECT_THAT(paths(store.search(query, 9, 0)), ElementsAre("/root/2"));
    SearchQuery bySource;
    bySource.source = "slack.com";
    EXPECT_THAT(paths(store.search(bySource, 9, 0)), ElementsAre("/root/3"));
    bySource.source = "slack";
    EXPECT_THAT(paths(store.search(bySource, 9, 0)), ElementsAre("/root/4", "/root/3"));
    store.upsert(makeRecord("/root/A/z", "", 9));
    SearchQuery sorted;
    sorted.order = {FileColumn::folder, true};
    EXPECT_THAT(paths(store.search(sorted, 2, 0)), ElementsAre("/root/A/z", "/root/0"));
    EXPECT_THAT(paths(store.search(sorted, 2, 4)), ElementsAre("/root/3", "/root/4"));
    EXPECT_EQ(store.search({}, 1, 0, IndexStore::Content::leftOut)[0].content, "");
}

TEST_F(IndexStoreTest, KeepsTheTextIndexInStepWithTheRows) {
    IndexStore store(path);
    store.upsert(makeRecord("/root/a", "alpha"));
    store.upsert(makeRecord("/root/b", "beta"));
    store.upsert(makeRecord("/root/a", "gamma"));
    EXPECT_THAT(find(store, "alpha"), IsEmpty());
    EXPECT_THAT(find(store, "gamma"), ElementsAre("/root/a"));
    store.remove({"/root/a", "/root/none"});
    EXPECT_THAT(find(store, "gamma"), IsEmpty());
    sql("INSERT INTO files_fts(files_fts) VALUES('integrity-check')");
    store.removeRoot("/root");
    EXPECT_THAT(store.allFiles(), IsEmpty());
}

TEST_F(IndexStoreTest, LeavesTheTextIndexAloneWhenTheTextIsTheSame) {
    IndexStore store(path);
    store.upsert(makeRecord("/root/a", "alpha"));
    const auto before = sql("SELECT count(*) || max(id) FROM files_fts_data");
    for (int n = 0; n < 20; ++n)
        store.upsert(makeRecord("/root/a", "alpha", n));
    EXPECT_EQ(sql("SELECT count(*) || max(id) FROM files_fts_data"), before);
}

TEST_F(IndexStoreTest, MovesItsRevisionWithEveryChange) {
    IndexStore store(path);
    IndexStore other(path);
    const std::uint64_t start = store.changeRevision();
    EXPECT_EQ(store.changeRevision(), start);
    store.upsert(makeRecord("/root/a"));
    EXPECT_EQ(store.changeRevision(), start + 1);
    store.updateDownloadMetadata("/root/none", "x", std::nullopt);
    store.remove({"/root/none"});
    store.removeRoot("/none");
    EXPECT_EQ(store.changeRevision(), start + 1);
    store.updateDownloadMetadata("/root/a", "https://example.org", Date{5});
    EXPECT_EQ(store.record("/root/a")->downloadedAt, Date{5});
    EXPECT_EQ(store.changeRevision(), start + 2);
    other.upsert(makeRecord("/root/b"));
    EXPECT_EQ(store.changeRevision(), start + 3);
}

TEST_F(IndexStoreTest, LeavesNoDeletedTextInTheFile) {
    IndexStore store(path);
    store.upsert(makeRecord("/root/a", "canaryword " + std::string(100'000, 'x')));
    store.clear();
    EXPECT_THAT(store.allFiles(), IsEmpty());
    EXPECT_EQ(test::readFile(path).find("canaryword"), std::string::npos);
    EXPECT_EQ(test::readFile(path + "-wal").find("canaryword"), std::string::npos);
    store.upsert(makeRecord("/root/a", "again"));
    EXPECT_THAT(find(store, "again"), ElementsAre("/root/a"));
}

TEST_F(IndexStoreTest, SummarisesWhatItHolds) {
    IndexStore store(path);
    store.upsert(makeRecord("/b/x"));
    FileRecord failed = makeRecord("/a/y");
    failed.rootPath = "/a";
    failed.kind = FileKind::pdf;
    failed.contentStatus = "Extraction failed: Invalid_PDF";
    store.upsert(failed);
    EXPECT_THAT(store.roots(), ElementsAre("/a", "/root"));
    const IndexSummary summary = store.summary();
    EXPECT_EQ(summary.filesByKind.at(FileKind::pdf), 1);
    EXPECT_EQ(summary.filesByStatus.at("Text indexed"), 1);
    EXPECT_EQ(summary.filesByRoot.at("/root"), 1);
    EXPECT_GT(summary.databaseSize, 0);
    EXPECT_THAT(store.filesWithStatus("Extraction failed: Invalid_", 9),
                ElementsAre(std::pair(failed.path, failed.contentStatus)));
}

TEST_F(IndexStoreTest, TakesTheRowsOfARootAlong) {
    IndexStore store(path);
    for (const char* old : {"/ä/one", "/ä/b/two"}) {
        FileRecord record = makeRecord(old, "words");
        record.rootPath = "/ä";
        store.upsert(record);
    }
    store.upsert(makeRecord("/new/one", "newer"));
    store.moveRoot("/ä", "/new");
    EXPECT_THAT(find(store, "words"), ElementsAre("/new/b/two"));
    EXPECT_THAT(find(store, "newer"), ElementsAre("/new/one"));
    EXPECT_EQ(store.count(), 2);
    EXPECT_THAT(store.roots(), ElementsAre("/new", "/root"));
}

TEST_F(IndexStoreTest, FindsTheFilesThatShareTheirSize) {
    IndexStore store(path);
    for (const char* name : {"/a", "/b", "/c", "/bundle"}) {
        FileRecord record = makeRecord(name, "same");
        if (record.path == "/c") record.size = 9;
        if (record.path == "/bundle") record.kind = FileKind::application;
        store.upsert(record);
    }
    EXPECT_THAT(paths(store.filesSharingSize()), testing::UnorderedElementsAre("/a", "/b"));
}

TEST_F(IndexStoreTest, StopsReadingWhenCancelled) {
    IndexStore store(path);
    store.upsert(makeRecord("/root/a"));
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(store.allFiles(source.get_token()), Cancelled);
    EXPECT_THROW(store.search({}, 1, 0, IndexStore::Content::included, source.get_token()),
                 Cancelled);
    EXPECT_EQ(store.allFiles().size(), 1U);
}

TEST_F(IndexStoreTest, BringsAnOlderDatabaseUpToDate) {
    {
        IndexStore store(path);
        store.upsert(makeRecord("/root/a", "kept"));
    }
    sql("DROP INDEX files_scan; ALTER TABLE files DROP COLUMN downloaded; PRAGMA user_version=1;");
    IndexStore store(path);
    EXPECT_EQ(store.record("/root/a")->downloadedAt, std::nullopt);
    store.updateDownloadMetadata("/root/a", "https://example.org", Date{7});
    EXPECT_EQ(IndexStore(path).record("/root/a")->downloadedAt, Date{7});
    EXPECT_THAT(sql("PRAGMA user_version"), ElementsAre("2"));
}

TEST_F(IndexStoreTest, RefusesANewerDatabaseAndLeavesItAsItIs) {
    IndexStore(path).upsert(makeRecord("/root/a"));
    sql("PRAGMA user_version=3; PRAGMA wal_checkpoint(TRUNCATE);");
    const std::string before = test::readFile(path);
    const std::string message = messageOf([&] { IndexStore store(path); });
    EXPECT_THAT(message, HasSubstr("Index database: The index was written by a newer version"));
    EXPECT_EQ(messageOf([&] { IndexStore store(path, IndexStore::Access::readOnly); }), message);
    EXPECT_EQ(test::readFile(path), before);
}

TEST_F(IndexStoreTest, ReadsBesideAWriterWithoutWriting) {
    EXPECT_EQ(messageOf([&] { IndexStore store(path, IndexStore::Access::readOnly); }),
              "Index database: Unable to open index");
    IndexStore writer(path);
    writer.upsert(makeRecord("/root/a", "word"));
    IndexStore reader(path, IndexStore::Access::readOnly);
    EXPECT_THAT(find(reader, "word"), ElementsAre("/root/a"));
    writer.upsert(makeRecord("/root/b", "word", 1));
    EXPECT_THAT(find(reader, "word"), ElementsAre("/root/b", "/root/a"));
    EXPECT_THAT(messageOf([&] { reader.upsert(makeRecord("/root/c")); }),
                HasSubstr("readonly database"));
}

TEST_F(IndexStoreTest, SaysWhyItCannotOpen) {
    tree.write("data/index.sqlite", std::string(4096, 'x'));
    EXPECT_EQ(messageOf([&] { IndexStore store(path); }), "Index database: file is not a database");
    EXPECT_EQ(test::readFile(path), std::string(4096, 'x'));
    path = tree.makeDirectory("folder.sqlite");
    EXPECT_EQ(messageOf([&] { IndexStore store(path); }), "Index database: Unable to open index");
    tree.write("file");
    EXPECT_THAT(messageOf([&] { IndexStore store(tree.path("file/below/index.sqlite")); }),
                HasSubstr(tree.path("file")));
}

/// Has SQLite call `prepare` on every connection that is opened in its lifetime.
class PreparedConnections {
  public:
    using Prepare = int (*)(sqlite3*, char**, const sqlite3_api_routines*);

    explicit PreparedConnections(Prepare prepare) {
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(prepare));
    }
    ~PreparedConnections() { sqlite3_reset_auto_extension(); }
    PreparedConnections(const PreparedConnections&) = delete;
    PreparedConnections& operator=(const PreparedConnections&) = delete;
};

TEST_F(IndexStoreTest, SaysWhichStepOfOpeningFailed) {
    { const IndexStore create(path); }
    {
        const PreparedConnections denied([](sqlite3* db, char**, const sqlite3_api_routines*) {
            return sqlite3_set_authorizer(
                db,
                [](void*, int action, const char* name, const char*, const char*, const char*) {
                    const bool inspects =
                        action == SQLITE_PRAGMA && std::string_view(name) == "table_info";
                    return inspects ? SQLITE_DENY : SQLITE_OK;
                },
                nullptr);
        });
        EXPECT_EQ(messageOf([&] { IndexStore store(path); }),
                  "Index database: Unable to inspect index schema");
    }
    // A function cannot be replaced while a statement is running.
    static sqlite3_stmt* running = nullptr;
    const PreparedConnections busy([](sqlite3* db, char**, const sqlite3_api_routines*) {
        sqlite3_create_function_v2(
            db, "tovi_source_group", 1, SQLITE_UTF8, nullptr,
            [](sqlite3_context*, int, sqlite3_value**) {}, nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(db, "VALUES (1), (2)", -1, &running, nullptr);
        sqlite3_step(running);
        return sqlite3_exec(db, "SELECT 1", nullptr, nullptr, nullptr); // ends without an error
    });
    EXPECT_EQ(messageOf([&] { IndexStore store(path); }),
              "Index database: Unable to prepare download groups");
    sqlite3* const db = sqlite3_db_handle(running);
    sqlite3_finalize(running);
    sqlite3_close(db);
}

// What a search finds is fixed by two plain conditions; the indexes only find it faster.
TEST_F(IndexStoreTest, FindsWhatLookingAtEveryRowFinds) {
    const std::vector<std::string> pieces = {
        "a",    "b",        "ab",   "Report", "rep", "50%_", "\\", "\"x\"", "été", "ÉT",
        "日本", "日本語版", ".pdf", "-",      " ",   "'",    "OR", "\x01",  "ﬀ",   "K"};
    std::mt19937 random(20);
    const auto made = [&](int most) {
        std::string text;
        for (auto n = 1 + random() % static_cast<unsigned>(most); n > 0; --n)
            text += pieces[random() % pieces.size()];
        return text;
    };
    IndexStore store(path);
    for (int n = 0; n < 400; ++n) {
        FileRecord record = makeRecord("/root/" + std::to_string(n % 300), made(12), n);
        record.name = made(5); // the later ones rename the first
        store.upsert(record);
    }
    store.remove({"/root/7", "/root/8", "/root/9"});
    const std::pair<FileOrder, std::string> orders[] = {
        {{}, "modified DESC, path"},
        {{FileColumn::modified, false}, "modified, path"},
        {{FileColumn::name, false}, "name COLLATE NOCASE, path"},
        {{FileColumn::size, true}, "size DESC, path"},
        {{FileColumn::kind, false}, "kind, name COLLATE NOCASE, path"}};
    const IndexStore::Content content = IndexStore::Content::leftOut;
    int found = 0;
    for (int n = 0; n < 400; ++n) {
        const int limit = n % 2 == 0 ? 50 : 400; // a glance is worth while, or not
        SearchQuery query;
        query.text = made(4);
        if (n % 3 == 0) query.modifiedAfter = Date{200};
        const auto& [order, terms] = orders[n % std::size(orders)];
        query.order = order;
        std::string words;
        for (const std::string_view word : splitWhitespace(query.text)) {
            if (!std::any_of(word.begin(), word.end(), [](char c) { return isalnum(c) || c < 0; }))
                continue;
            words += (words.empty() ? "\"" : " AND \"") + replaced(word, "\"", "\"\"") + "\"*";
        }
        const std::string like =
            "name LIKE '%" + replaced(escapedForLike(query.text), "'", "''") + "%' ESCAPE '\\'";
        const std::string match = words.empty() ? "0"
                                                : "rowid IN (SELECT rowid FROM files_fts WHERE "
                                                  "files_fts MATCH '" +
                                                      replaced(words, "'", "''") + "')";
        const auto expected =
            sql("SELECT path FROM files WHERE (" +
                (splitWhitespace(query.text).empty() ? "1" : match + " OR " + like) + ")" +
                (query.modifiedAfter ? " AND modified >= 200" : "") + " ORDER BY " + terms +
                " LIMIT " + std::to_string(limit));
        EXPECT_EQ(paths(store.search(query, limit, 0, content)), expected) << query.text;
        found += static_cast<int>(expected.size());
    }
    EXPECT_GT(found, 1'000);
}

TEST_F(IndexStoreTest, GivesAnOlderIndexItsListOfNames) {
    { IndexStore(path).upsert(makeRecord("/root/annual-report.txt")); }
    sql("DROP TRIGGER files_names_insert; DROP TRIGGER files_names_delete; "
        "DROP TRIGGER files_names_update; DROP TABLE files_names; "
        "CREATE VIRTUAL TABLE files_names USING fts5(name, tokenize='trigram')");
    const std::vector<std::string> found = {"/root/annual-report.txt"};
    IndexStore reader(path, IndexStore::Access::readOnly);
    EXPECT_EQ(find(reader, "ual-rep"), found);
    IndexStore writer(path);
    EXPECT_EQ(find(writer, "ual-rep"), found);
    EXPECT_EQ(sql("SELECT rowid FROM files_names WHERE files_names MATCH '\"ual\"'").size(), 1U);
}

TEST_F(IndexStoreTest, PassesOnWhatSqliteRefuses) {
    IndexStore store(path);
    store.upsert(makeRecord("/root/a"));
    EXPECT_EQ(messageOf([&] { find(store, std::string(60'000, '-')); }),
              "Index database: LIKE or GLOB pattern too complex");
    EXPECT_THAT(find(store, "still usable"), IsEmpty());
}

TEST_F(IndexStoreTest, IsWholeAfterAKilledWriter) {
    { const IndexStore create(path); }
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        IndexStore store(path);
        for (int n = 0;; ++n) {
            store.upsert(makeRecord("/root/" + std::to_string(n), std::string(5000, 'y')));
            if (n == 50 && ::write(ready[1], "", 1) != 1) ::_exit(1);
        }
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    ::close(ready[0]);
    ::close(ready[1]);
    IndexStore store(path);
    EXPECT_GE(store.scanRecords("/root").size(), 51U);
    EXPECT_THAT(sql("PRAGMA integrity_check"), ElementsAre("ok"));
    sql("INSERT INTO files_fts(files_fts) VALUES('integrity-check')");
}

} // namespace
} // namespace tovi
