#pragma once

#include "core/search/SearchQuery.h"
#include "core/store/TextMatches.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tovi {

/// A condition and the values to bind in it, in order.
struct SearchClause {
    using Value = std::variant<std::string, std::int64_t, double, const TextMatches*, Look*>;

    std::string sql;
    std::vector<Value> values;
};

/// How the words of a query choose files: by what the indexes found, or by looking at each. What is
/// pointed to must outlive the statement.
SearchClause textClause(const TextMatches& matches, const std::string& text);
SearchClause textClause(Look& look, const std::string& text);

/// The condition on the addresses of downloads that a query's `source` sets: a host name stands for
/// its group, any other word for the addresses that contain it.
SearchClause sourceClause(const std::string& source);

/// One page of search results in the order of the query. `limit` is taken as 1 to 100,000,
/// `offset` as 0 or more. `text` is absent where the query has no word. With `rows` only these are
/// looked up.
SearchClause searchStatement(const SearchQuery& query, const std::optional<SearchClause>& text,
                             const std::optional<std::vector<std::int64_t>>& rows,
                             std::int64_t limit, std::int64_t offset);

} // namespace tovi
