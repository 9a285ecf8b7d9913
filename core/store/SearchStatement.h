#pragma once

#include "core/search/SearchQuery.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tovi {

/// The SQL of one page of search results and the values to bind, in order.
struct SearchStatement {
    using Value = std::variant<std::string, std::int64_t, double>;

    std::string sql;
    std::vector<Value> values;
};

/// Newest first, ties by path. `limit` is taken as 1 to 100,000, `offset` as 0 or more.
SearchStatement searchStatement(const SearchQuery& query, std::int64_t limit, std::int64_t offset);

/// The part of a LIKE pattern that matches `text` literally; the escape character is the backslash.
std::string escapedForLike(std::string_view text);

} // namespace tovi
