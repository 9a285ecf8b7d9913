#pragma once

#include "core/records/FileRecord.h"

#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// The files downloaded from one website or app.
struct DownloadGroup {
    std::string id; // of the origin, or "unknown"
    std::string name;
    std::string symbol; // the name of its icon
    std::vector<FileRecord> files;

    friend bool operator==(const DownloadGroup&, const DownloadGroup&) = default;
};

/// When a file was downloaded or, where that is not known, modified.
inline Date effectiveDate(const FileRecord& file) {
    return file.downloadedAt.value_or(file.modifiedAt);
}

/// Whether the file was downloaded: it has an address or a date of download, or lies in a folder
/// "Downloads".
bool isDownload(const FileRecord& file);

/// Newest first by `effectiveDate`, ties by path.
bool isLaterDownload(const FileRecord& left, const FileRecord& right);

struct DownloadGroups {
    /// The downloads among `files`, the largest group first, ties by name; files of no known origin
    /// are in the last group, "unknown". Newest files first by `effectiveDate`, ties by path.
    /// Throws nothing but `Cancelled`.
    static std::vector<DownloadGroup> make(std::vector<FileRecord> files,
                                           const std::stop_token& stop = {});
};

} // namespace tovi
