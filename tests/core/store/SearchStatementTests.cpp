#include "core/store/SearchStatement.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

std::string whereOf(const SearchQuery& query) {
    const std::string sql = searchStatement(query, {}, {}, 10, 0).sql;
    const std::string start = "SELECT * FROM files";
    const std::string end = " ORDER BY modified DESC, path ASC LIMIT ? OFFSET ?";
    EXPECT_TRUE(sql.starts_with(start) && sql.ends_with(end)) << sql;
    return sql.substr(start.size(), sql.size() - start.size() - end.size());
}

TEST(SearchStatement, AddsTheFiltersInOrder) {
    SearchQuery query;
    query.kind = FileKind::pdf;
    query.screenshotsOnly = true;
    query.modifiedAfter = Date{1};
    query.modifiedBefore = Date{2};
    query.minimumSize = 3;
    query.source = "docs.google.com";
    EXPECT_EQ(whereOf(query),
              " WHERE kind = ? AND (lower(name) LIKE '%screenshot%' OR lower(name) LIKE '%screen "
              "shot%') AND modified >= ? AND modified < ? AND size >= ? AND "
              "tovi_source_group(source) = ?");
    EXPECT_EQ(std::get<std::string>(searchStatement(query, {}, {}, 1, 0).values[4]), "drive");
    query.source = "acme_mail";
    EXPECT_TRUE(whereOf(query).ends_with("source LIKE ? ESCAPE '\\'"));
    EXPECT_EQ(std::get<std::string>(searchStatement(query, {}, {}, 1, 0).values[4]),
              "%acme\\_mail%");
}

TEST(SearchStatement, ClampsThePage) {
    const auto last = [](std::int64_t limit, std::int64_t offset) {
        const auto values = searchStatement({}, {}, {}, limit, offset).values;
        return std::pair(std::get<std::int64_t>(values[0]), std::get<std::int64_t>(values[1]));
    };
    EXPECT_EQ(last(0, -1), std::pair(std::int64_t{1}, std::int64_t{0}));
    EXPECT_EQ(last(1'000'000, 5), std::pair(std::int64_t{100'000}, std::int64_t{5}));
}

} // namespace
} // namespace tovi
