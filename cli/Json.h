#pragma once

#include "cli/Context.h"
#include "core/search/SearchQuery.h"

namespace tovi::cli {

/// Every member of the record but `content`; dates in ISO 8601, null where something is absent.
Json toJson(const FileRecord& record);
Json toJson(const SearchQuery& query);

} // namespace tovi::cli
