#include "cli/Json.h"

namespace tovi::cli {
namespace {

template <typename Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

Json orNull(const std::optional<Date>& date) {
    return date ? Json(iso8601(*date)) : Json();
}

} // namespace

Json toJson(const FileRecord& record) {
    return {{"path", record.path},
            {"name", record.name},
            {"kind", rawValue(record.kind)},
            {"size", record.size},
            {"createdAt", iso8601(record.createdAt)},
            {"modifiedAt", iso8601(record.modifiedAt)},
            {"indexedAt", iso8601(record.indexedAt)},
            {"contentStatus", record.contentStatus},
            {"sourceURL", orNull(record.sourceURL)},
            {"downloadedAt", orNull(record.downloadedAt)},
            {"sha256", orNull(record.sha256)},
            {"rootPath", record.rootPath}};
}

Json toJson(const SearchQuery& query) {
    return {{"text", query.text},
            {"kind", query.kind ? Json(rawValue(*query.kind)) : Json()},
            {"modifiedAfter", orNull(query.modifiedAfter)},
            {"modifiedBefore", orNull(query.modifiedBefore)},
            {"minimumSize", orNull(query.minimumSize)},
            {"source", orNull(query.source)},
            {"chips", query.chips},
            {"screenshotsOnly", query.screenshotsOnly}};
}

} // namespace tovi::cli
