#pragma once

#include "base/Date.h"
#include "platform/ExtendedAttributes.h"
#include "platform/FileAttributes.h"

#include <optional>
#include <string>

namespace tovi {

/// Where a file was downloaded from, and when.
struct DownloadMetadata {
    std::optional<std::string> sourceURL; // a web address
    std::optional<Date> downloadedAt;

    /// What the browser wrote beside the file, else what the desktop did. A file below
    /// `downloadsFolder` or any folder named "Downloads" counts as downloaded, without a date of
    /// its own when it was created. `path` and `downloadsFolder` are absolute, links resolved.
    /// Malformed metadata counts as none.
    static DownloadMetadata read(const std::string& path,
                                 const platform::ExtendedAttributes& extended,
                                 const platform::FileAttributes& attributes,
                                 bool isAvailableLocally,
                                 const std::optional<std::string>& downloadsFolder);

    friend bool operator==(const DownloadMetadata&, const DownloadMetadata&) = default;
};

} // namespace tovi
