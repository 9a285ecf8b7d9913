#include "core/store/SearchStatement.h"

#include "core/records/DownloadOrigin.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi {
namespace {

std::string orderTerms(const FileOrder& order) {
    const char* direction = order.isDescending ? "DESC" : "ASC";
    switch (order.column) {
    case FileColumn::name:
        return fmt::format("name COLLATE NOCASE {}, path ASC", direction);
    case FileColumn::folder:
        return fmt::format("substr(path, 1, length(path) - length(name)) COLLATE NOCASE {}, "
                           "name COLLATE NOCASE ASC, path ASC",
                           direction);
    case FileColumn::kind:
        return fmt::format("kind {}, name COLLATE NOCASE ASC, path ASC", direction);
    case FileColumn::size:
        return fmt::format("size {}, path ASC", direction);
    case FileColumn::modified:
        break;
    }
    return fmt::format("modified {}, path ASC", direction);
}

} // namespace

SearchClause textClause(const TextMatches& matches, const std::string& text) {
    return {"coalesce(tovi_text_match(?, files.rowid), name LIKE ? ESCAPE '\\')",
            {&matches, containsPattern(text)}};
}

SearchClause textClause(Look& look, const std::string& text) {
    return {"(tovi_look(?, name, content) OR name LIKE ? ESCAPE '\\')",
            {&look, containsPattern(text)}};
}

SearchClause sourceClause(const std::string& source) {
    const bool isHost = source.find('.') != std::string::npos;
    if (const auto origin = isHost ? DownloadOrigin::from("https://" + source) : std::nullopt) {
        return {"tovi_source_group(source) = ?", {origin->id}};
    }
    return {"source LIKE ? ESCAPE '\\'", {containsPattern(source)}};
}

SearchClause searchStatement(const SearchQuery& query, const std::optional<SearchClause>& text,
                             const std::optional<std::vector<std::int64_t>>& rows,
                             std::int64_t limit, std::int64_t offset) {
    std::vector<std::string> clauses;
    SearchClause result;
    const auto add = [&](std::string clause, const std::vector<SearchClause::Value>& values) {
        clauses.push_back(std::move(clause));
        result.values.insert(result.values.end(), values.begin(), values.end());
    };

    // In the order of the listing the rows of the page are met one after the other. Any other order
    // sorts all that match, so only their numbers are.
    const bool isListing = query.order == FileOrder{};
    result.sql = isListing ? "SELECT * FROM files" : "SELECT files.rowid AS found FROM files";
    if (rows) {
        result.sql += " NOT INDEXED"; // the rows are looked up, then sorted
        add("files.rowid IN (SELECT value FROM json_each(?))",
            {fmt::format("[{}]", fmt::join(*rows, ","))});
    }
    if (text) add(text->sql, text->values);
    if (query.kind) add("kind = ?", {std::string(rawValue(*query.kind))});
    if (query.screenshotsOnly) {
        add("(lower(name) LIKE '%screenshot%' OR lower(name) LIKE '%screen shot%')", {});
    }
    if (query.modifiedAfter) add("modified >= ?", {query.modifiedAfter->seconds});
    if (query.modifiedBefore) add("modified < ?", {query.modifiedBefore->seconds});
    if (query.minimumSize) add("size >= ?", {*query.minimumSize});
    if (query.source) {
        const SearchClause source = sourceClause(*query.source);
        add(source.sql, source.values);
    }

    if (!clauses.empty()) result.sql += fmt::format(" WHERE {}", fmt::join(clauses, " AND "));
    const std::string order = orderTerms(query.order);
    result.sql += fmt::format(" ORDER BY {} LIMIT ? OFFSET ?", order);
    if (!isListing) {
        result.sql = fmt::format("SELECT files.* FROM ({}) CROSS JOIN files ON files.rowid = found "
                                 "ORDER BY {}",
                                 result.sql, order);
    }
    result.values.emplace_back(std::clamp<std::int64_t>(limit, 1, 100'000));
    result.values.emplace_back(std::max<std::int64_t>(offset, 0));
    return result;
}

} // namespace tovi
