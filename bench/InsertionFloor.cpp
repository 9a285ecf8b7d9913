// Stores the texts of a folder with SQLite alone: the least an index of them can cost. The
// statements and the transactions, one for each row, are those of the index.

#include "base/Text.h"
#include "bench/Stopwatch.h"
#include "core/indexing/ContentExtractor.h"
#include "core/store/IndexStore.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include <nlohmann/json.hpp>
#include <sqlite3.h>

namespace {

namespace fs = std::filesystem;

struct Text {
    std::string path;
    std::string name;
    std::string content;
};

std::vector<Text> readTexts(const std::string& folder) {
    std::vector<Text> texts;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream file(entry.path(), std::ios::binary);
        texts.push_back(
            {entry.path(), entry.path().filename(), {std::istreambuf_iterator<char>(file), {}}});
    }
    std::sort(texts.begin(), texts.end(),
              [](const Text& left, const Text& right) { return left.path < right.path; });
    return texts;
}

void require(bool isDone, sqlite3* database) {
    if (!isDone) throw std::runtime_error(sqlite3_errmsg(database));
}

void bindText(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void insert(sqlite3* database, const std::vector<Text>& texts, const std::string& root) {
    sqlite3_stmt* statement = nullptr;
    const int prepared = sqlite3_prepare_v2(
        database,
        "INSERT INTO files(path,name,kind,size,created,modified,indexed,content,status,source,"
        "checksum,root,downloaded) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)\n"
        "ON CONFLICT(path) DO UPDATE SET name=excluded.name,kind=excluded.kind,size=excluded.size,"
        "created=excluded.created,modified=excluded.modified,indexed=excluded.indexed,"
        "content=excluded.content,status=excluded.status,source=excluded.source,"
        "checksum=excluded.checksum,root=excluded.root,downloaded=excluded.downloaded",
        -1, &statement, nullptr);
    require(prepared == SQLITE_OK, database);
    double modified = 1'710'000'000;
    for (const Text& text : texts) {
        modified += 60;
        bindText(statement, 1, text.path);
        bindText(statement, 2, text.name);
        bindText(statement, 3, "document");
        sqlite3_bind_int64(statement, 4, static_cast<sqlite3_int64>(text.content.size()));
        for (const int column : {5, 6, 7})
            sqlite3_bind_double(statement, column, modified);
        bindText(statement, 8, text.content);
        bindText(statement, 9, tovi::contentStatus::textIndexed);
        bindText(statement, 12, root);
        require(sqlite3_step(statement) == SQLITE_DONE, database);
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }
    sqlite3_finalize(statement);
}

void run(const std::string& folder, const std::string& path, bool withFurtherIndexes) {
    const std::vector<Text> texts = readTexts(folder);
    tovi::IndexStore(path).roots(); // makes the schema
    sqlite3* database = nullptr;
    const int opened = sqlite3_open_v2(path.c_str(), &database,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_FULLMUTEX, nullptr);
    require(opened == SQLITE_OK, database);
    std::string script = "PRAGMA synchronous=NORMAL; PRAGMA secure_delete=ON;";
    if (!withFurtherIndexes) {
        script += "DROP INDEX files_listing; DROP INDEX files_scan; DROP TABLE files_names;"
                  "DROP TRIGGER files_names_insert; DROP TRIGGER files_names_delete;"
                  "DROP TRIGGER files_names_update;";
    }
    require(sqlite3_exec(database, script.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK,
            database);

    const tovi::bench::Stopwatch stopwatch;
    insert(database, texts, folder);
    std::size_t bytes = 0;
    for (const Text& text : texts)
        bytes += text.content.size();
    std::cout << nlohmann::ordered_json{{"rows", texts.size()},
                                        {"bytes", bytes},
                                        {"wall", stopwatch.wall()},
                                        {"processor", stopwatch.processor()}}
              << "\n";
    sqlite3_close(database);
}

} // namespace

int main(int argc, char** argv) {
    const bool isBare = argc == 4 && std::string_view(argv[3]) == "--fixed-tables-only";
    if (argc != 3 && !isBare) {
        std::cerr << "usage: insertion-floor FOLDER DATABASE [--fixed-tables-only]\n";
        return 2;
    }
    try {
        run(argv[1], argv[2], !isBare);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << tovi::printable(error.what()) << "\n";
        return 1;
    }
}
