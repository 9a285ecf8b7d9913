#include "core/store/TextMatches.h"

#include "base/Text.h"
#include "core/records/IntelligenceError.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sqlite3.h>

namespace tovi {
namespace {

// Up to this many rows are cheaper to look up than to meet in the order of the listing.
constexpr std::size_t fewRows = 10'000;

// Up to this many texts are sooner looked at than a common word's lists are joined.
constexpr std::size_t rowsWorthJudging = 1'000;

// The start of a long phrase selects as well as the whole.
constexpr std::size_t mostRuns = 24;

/// A string of the full-text query language: the quotes keep it from reading operators into what
/// the user typed.
std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"') result += '"';
        result += c;
    }
    return result + '"';
}

/// Every word as a prefix, all of them required.
std::string wordsExpression(const std::vector<std::string>& words) {
    std::vector<std::string> terms;
    for (const std::string& word : words)
        terms.push_back(quoted(word) + '*');
    return fmt::format("{}", fmt::join(terms, " AND "));
}

/// SQLite refuses patterns beyond a length when it first meets a name; say so whatever it meets.
void refuseLongPattern(Database& database, std::string_view text) {
    Statement like(database, "SELECT '' LIKE ? ESCAPE '\\'");
    like.bind(containsPattern(text)).step();
}

std::string_view textOf(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    if (text == nullptr) return {};
    return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void textMatch(sqlite3_context* context, int, sqlite3_value** arguments) {
    const auto* matches =
        static_cast<const TextMatches*>(sqlite3_value_pointer(arguments[0], textMatchesType));
    if (matches == nullptr) return sqlite3_result_int(context, 0);
    const auto decides = matches->decides(sqlite3_value_int64(arguments[1]));
    if (decides) sqlite3_result_int(context, *decides ? 1 : 0);
}

void look(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto* look = static_cast<Look*>(sqlite3_value_pointer(arguments[0], lookType));
    if (look == nullptr) return sqlite3_result_int(context, 0);
    constexpr std::int64_t costOfARow = 200;
    const std::string_view name = textOf(arguments[1]);
    const std::string_view content = textOf(arguments[2]);
    look->remaining -= costOfARow + static_cast<std::int64_t>(name.size() + content.size());
    if (look->isExhausted()) return sqlite3_result_error(context, "Looked long enough", -1);
    sqlite3_result_int(context, look->judge.accepts(name, content) ? 1 : 0);
}

/// The rows among `rows` that hold every word.
std::vector<std::int64_t> judged(Database& database, const WordJudge& judge,
                                 const std::vector<std::int64_t>& rows) {
    std::vector<std::int64_t> accepted;
    Statement statement(database, "SELECT name, content FROM files WHERE rowid = ?");
    for (const std::int64_t row : rows) {
        statement.bind(row);
        if (statement.step() && judge.accepts(statement.text(0), statement.text(1))) {
            accepted.push_back(row);
        }
        statement.reset();
    }
    return accepted;
}

/// Rowids of the full-text table `table` that match, stopping after `most` of them.
std::vector<std::int64_t> rowsMatching(Database& database, const char* table,
                                       const std::string& expression, std::int64_t most) {
    std::vector<std::int64_t> rows;
    Statement statement(database,
                        fmt::format("SELECT rowid FROM {0} WHERE {0} MATCH ? LIMIT ?", table));
    statement.bind(expression).bind(most);
    while (statement.step())
        rows.push_back(statement.integer(0));
    return rows;
}

/// The rows with every word. A common word costs the most, so it is not read for where a longer
/// one has left few files to look at.
std::vector<std::int64_t> rowsWithWords(Database& database, const WordJudge& judge) {
    const auto& words = judge.words();
    if (words.empty()) return {};
    if (words.size() > 1) {
        const auto rows =
            rowsMatching(database, "files_fts", wordsExpression({words[0]}), rowsWorthJudging + 1);
        if (rows.size() <= rowsWorthJudging) return judged(database, judge, rows);
    }
    return rowsMatching(database, "files_fts", wordsExpression(words), -1);
}

/// Where the first code points of `text` begin and end, `most` of these places at most.
std::vector<std::size_t> boundaries(std::string_view text, std::size_t most) {
    std::vector<std::size_t> places = {0};
    while (places.back() < text.size() && places.size() < most)
        places.push_back(places.back() + codePointAt(text, places.back()).length);
    return places;
}

/// Rows whose name has a run of three code points that begins with `text`, which is shorter; absent
/// where they are too many to be worth reading.
std::optional<std::vector<std::int64_t>> rowsWithRunsFrom(Database& database, std::string text,
                                                          std::size_t codePoints) {
    const std::string missing(3 - codePoints, '/');
    std::string folded;
    Tokenizer(database, "trigram")
        .tokenize(text + missing, Tokenizer::Purpose::document, [&](std::string_view run) {
            folded = run.substr(0, run.size() - missing.size());
            return false;
        });
    database.execute("CREATE VIRTUAL TABLE IF NOT EXISTS temp.files_names_runs "
                     "USING fts5vocab('main', 'files_names', 'row')");
    Statement statement(database,
                        "SELECT term, doc FROM temp.files_names_runs WHERE term >= ? AND term < ?");
    statement.bind(folded).bind(folded + '\xff');
    std::vector<std::string> runs;
    std::int64_t total = 0;
    while (statement.step()) {
        total += statement.integer(1);
        if (total > static_cast<std::int64_t>(fewRows)) return std::nullopt;
        runs.push_back(quoted(statement.text(0)));
    }
    std::vector<std::int64_t> rows;
    for (const std::string& run : runs) {
        const auto more = rowsMatching(database, "files_names", run, -1);
        rows.insert(rows.end(), more.begin(), more.end());
    }
    return rows;
}

/// Rows whose name may contain `text`; absent where any may.
std::optional<std::vector<std::int64_t>> rowsNamed(Database& database, std::string_view text) {
    text = text.substr(0, text.find('\0')); // where a LIKE pattern ends as well
    const auto places = boundaries(text, mostRuns + 3);
    const std::size_t codePoints = places.size() - 1;
    if (codePoints == 0 || !hasNamesIndex(database)) return std::nullopt;
    if (codePoints < 3) return rowsWithRunsFrom(database, std::string(text), codePoints);
    std::vector<std::string> runs;
    for (std::size_t at = 0; at + 3 <= codePoints; ++at)
        runs.push_back(quoted(text.substr(places[at], places[at + 3] - places[at])));
    return rowsMatching(database, "files_names", fmt::format("{}", fmt::join(runs, " AND ")), -1);
}

} // namespace

std::optional<bool> TextMatches::decides(std::int64_t row) const {
    if (matched.contains(row)) return true;
    if (!named || named->contains(row)) return std::nullopt;
    return false;
}

TextMatches findTextMatches(Database& database, const WordJudge& judge, std::string_view text) {
    refuseLongPattern(database, text);
    TextMatches matches;
    std::vector<std::int64_t> all = rowsWithWords(database, judge);
    for (const std::int64_t row : all)
        matches.matched.add(row);
    const auto named = rowsNamed(database, text);
    if (!named) return matches;
    matches.named.emplace();
    for (const std::int64_t row : *named)
        matches.named->add(row);
    if (all.size() + named->size() <= fewRows) {
        all.insert(all.end(), named->begin(), named->end());
        matches.few = std::move(all);
    }
    return matches;
}

std::int64_t Look::patience(const WordJudge& judge, std::int64_t limit) {
    constexpr std::size_t shortWord = 2;   // bytes
    constexpr std::int64_t smallPage = 50; // files
    if (judge.words().empty()) return 0;
    if (judge.words().front().size() <= shortWord) return 4'000'000;
    return limit <= smallPage ? 500'000 : 0;
}

bool hasNamesIndex(Database& database) {
    Statement statement(database,
                        "SELECT 1 FROM sqlite_master WHERE name = 'files_names' AND sql = ?");
    return statement.bind(namesTable).step();
}

void registerTextFunctions(Database& database) {
    const auto add = [&](const char* name, int arguments, auto* function) {
        if (sqlite3_create_function_v2(database.handle(), name, arguments,
                                       SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr, function, nullptr,
                                       nullptr, nullptr) != SQLITE_OK) {
            database.fail();
        }
    };
    add("tovi_text_match", 2, textMatch);
    add("tovi_look", 3, look);
}

std::string containsPattern(std::string_view text) {
    return '%' + escapedForLike(text) + '%';
}

std::string escapedForLike(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\' || c == '%' || c == '_') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

} // namespace tovi
