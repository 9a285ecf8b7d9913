#pragma once

#include "base/Date.h"
#include "core/records/FileKind.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tovi {

/// One indexed file: one row of the table `files`. Its identity is the path.
struct FileRecord {
    std::string path; // absolute
    std::string name; // last path component
    FileKind kind = FileKind::other;
    std::int64_t size = 0; // bytes
    Date createdAt;
    Date modifiedAt;
    Date indexedAt;            // when the indexer last wrote the row
    std::string content;       // extracted text; empty when nothing was read
    std::string contentStatus; // how, or why not, the content was read
    std::optional<std::string> sourceURL;
    std::optional<Date> downloadedAt;
    std::optional<std::string> sha256; // 64 lower-case hexadecimal digits
    std::string rootPath;              // the connected folder

    friend bool operator==(const FileRecord&, const FileRecord&) = default;
};

/// What a rescan needs of a row.
struct IndexScanRecord {
    std::string path;
    std::int64_t size = 0;
    Date modifiedAt;
    std::string contentStatus;
    std::optional<std::string> sourceURL;
    std::optional<Date> downloadedAt;

    friend bool operator==(const IndexScanRecord&, const IndexScanRecord&) = default;
};

} // namespace tovi
