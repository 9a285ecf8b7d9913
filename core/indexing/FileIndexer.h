#pragma once

#include "core/indexing/ContentExtractor.h"
#include "core/store/IndexStore.h"
#include "platform/Availability.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace tovi {

struct ScanReport {
    std::int64_t indexed = 0;        // files written
    std::int64_t skipped = 0;        // items left out by rules, and unchanged files
    std::vector<std::string> errors; // one line for each item that could not be handled
};

/// One step of a scan; the texts are valid during the call.
struct ScanProgress {
    std::int64_t count = 0; // files handled so far
    std::string_view item;  // path of the file handled last
    std::string_view root;
    std::string_view phase; // for people; the last one is "Finished"
};

/// Brings the index in line with one connected folder: new and changed files are read and
/// stored, unchanged files are left alone, rows of files that are gone are removed. Rows below a
/// folder that could not be listed are kept, and a connected folder inside this one is left to
/// its own scan; the folder of the index and the Trash are left out. Never writes to the folder.
///
/// Walking and storing happen on the calling thread, reading on threads that end with the scan.
class FileIndexer {
  public:
    using Progress = std::function<void(const ScanProgress&)>;

    struct Settings {
        std::optional<std::string> downloadsDirectory;
        unsigned readers = 1; // threads that read files
        Clock clock = Date::now;
    };

    /// All references must outlive the indexer.
    FileIndexer(const platform::Availability& availability, const ContentExtractor& extractor,
                Settings settings)
        : availability_(availability), extractor_(extractor), settings_(std::move(settings)) {}

    /// `exclusions` is the user's skip list. Without `includeCodeContent` files of kind `code`
    /// are recorded without their text. `progress` is called once a file on this thread.
    ///
    /// Throws `IntelligenceError::inaccessible` for a folder that cannot be scanned, or is not the
    /// one at the path any more when the scan ends, the store's errors as they come, and
    /// `Cancelled`; what was stored before stays.
    ScanReport scan(const std::string& root, IndexStore& store,
                    const std::vector<std::string>& exclusions, bool includeCodeContent,
                    const Progress& progress, const std::stop_token& stop) const;

    /// The form in which a root is stored: absolute, links resolved. Throws
    /// `IntelligenceError::inaccessible` for what may not or cannot be connected.
    std::string acceptedRoot(const std::string& folder) const;

  private:
    const platform::Availability& availability_;
    const ContentExtractor& extractor_;
    Settings settings_;
};

} // namespace tovi
