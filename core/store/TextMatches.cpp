#include "core/store/TextMatches.h"

#include "base/Text.h"
#include "core/records/IntelligenceError.h"

#include <utility>

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
constexpr std::size_t mostTrigrams = 24;

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

/// All runs of three code points, which a name that contains the text has too; empty for a shorter
/// text.
std::string trigramsExpression(std::string_view text) {
    text = text.substr(0, text.find('\0')); // where a LIKE pattern ends as well
    std::vector<std::string> trigrams;
    std::size_t starts[2] = {0, 0};
    std::size_t passed = 0;
    for (std::size_t at = 0; at < text.size() && trigrams.size() < mostTrigrams; ++passed) {
        const std::size_t end = at + codePointAt(text, at).length;
        if (passed >= 2) trigrams.push_back(quoted(text.substr(starts[0], end - starts[0])));
        starts[0] = std::exchange(starts[1], at);
        at = end;
    }
    return fmt::format("{}", fmt::join(trigrams, " AND "));
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
    const std::string trigrams = trigramsExpression(text);
    if (trigrams.empty() || !hasNamesIndex(database)) return matches;
    const auto named = rowsMatching(database, "files_names", trigrams, -1);
    matches.named.emplace();
    for (const std::int64_t row : named)
        matches.named->add(row);
    if (all.size() + named.size() <= fewRows) {
        all.insert(all.end(), named.begin(), named.end());
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
    return Statement(database, "SELECT 1 FROM sqlite_master WHERE name = 'files_names'").step();
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
