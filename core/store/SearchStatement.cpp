#include "core/store/SearchStatement.h"

#include "base/Text.h"
#include "core/records/DownloadOrigin.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace tovi {
namespace {

std::string containsPattern(std::string_view text) {
    return '%' + escapedForLike(text) + '%';
}

/// Whether the full-text index makes any token of the word.
bool hasToken(std::string_view word) {
    const auto length = static_cast<std::int32_t>(word.size());
    for (std::int32_t at = 0; at < length;) {
        UChar32 character = 0;
// The macro narrows its own temporaries.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
        U8_NEXT(word.data(), at, length, character);
#pragma GCC diagnostic pop
        if (character < 0) continue;
        constexpr std::uint32_t tokenCharacters = U_GC_L_MASK | U_GC_N_MASK | U_GC_CO_MASK;
        if ((U_GET_GC_MASK(character) & tokenCharacters) != 0) return true;
    }
    return false;
}

/// Every word as a quoted prefix, all of them required; the quotes keep FTS5 from reading
/// operators into what the user typed.
std::string matchExpression(const std::vector<std::string_view>& words) {
    std::vector<std::string> terms;
    for (const std::string_view word : words) {
        if (!hasToken(word)) continue;
        std::string term = "\"";
        for (const char c : word) {
            if (c == '"') term += '"';
            term += c;
        }
        terms.push_back(term + "\"*");
    }
    return fmt::format("{}", fmt::join(terms, " AND "));
}

} // namespace

std::string escapedForLike(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\\' || c == '%' || c == '_') escaped += '\\';
        escaped += c;
    }
    return escaped;
}

SearchStatement searchStatement(const SearchQuery& query, std::int64_t limit, std::int64_t offset) {
    std::vector<std::string> clauses;
    SearchStatement result;
    const auto add = [&](std::string clause, std::initializer_list<SearchStatement::Value> values) {
        clauses.push_back(std::move(clause));
        result.values.insert(result.values.end(), values);
    };

    if (const auto words = splitWhitespace(query.text); !words.empty()) {
        const std::string match = matchExpression(words);
        const std::string pattern = containsPattern(query.text);
        if (match.empty()) {
            add("name LIKE ? ESCAPE '\\'", {pattern});
        } else {
            add("(files.rowid IN (SELECT rowid FROM files_fts WHERE files_fts MATCH ?)"
                " OR name LIKE ? ESCAPE '\\')",
                {match, pattern});
        }
    }
    if (query.kind) add("kind = ?", {std::string(rawValue(*query.kind))});
    if (query.screenshotsOnly) {
        add("(lower(name) LIKE '%screenshot%' OR lower(name) LIKE '%screen shot%')", {});
    }
    if (query.modifiedAfter) add("modified >= ?", {query.modifiedAfter->seconds});
    if (query.modifiedBefore) add("modified < ?", {query.modifiedBefore->seconds});
    if (query.minimumSize) add("size >= ?", {*query.minimumSize});
    if (query.source) {
        const bool isHost = query.source->find('.') != std::string::npos;
        if (const auto origin =
                isHost ? DownloadOrigin::from("https://" + *query.source) : std::nullopt) {
            add("tovi_source_group(source) = ?", {origin->id});
        } else {
            add("source LIKE ? ESCAPE '\\'", {containsPattern(*query.source)});
        }
    }

    result.sql = "SELECT * FROM files";
    if (!clauses.empty()) result.sql += fmt::format(" WHERE {}", fmt::join(clauses, " AND "));
    result.sql += " ORDER BY modified DESC, path ASC LIMIT ? OFFSET ?";
    result.values.emplace_back(std::clamp<std::int64_t>(limit, 1, 100'000));
    result.values.emplace_back(std::max<std::int64_t>(offset, 0));
    return result;
}

} // namespace tovi
