#pragma once

#include "base/LruCache.h"
#include "core/photos/PhotoPrint.h"
#include "core/records/FileRecord.h"

#include <mutex>
#include <optional>
#include <string>

namespace tovi {

/// Keeps the prints of photos between checks, in memory only, so that a second check reads only
/// what is new. A print belongs to a path with a size and a modification date. May be used from
/// any thread.
class PhotoPrintCache {
  public:
    explicit PhotoPrintCache(std::size_t maximumPrints = 10'000);

    std::optional<PhotoPrint> find(const FileRecord& file);
    void insert(const FileRecord& file, const PhotoPrint& print);

  private:
    std::mutex mutex_;
    LruCache<std::string, PhotoPrint> prints_;
};

} // namespace tovi
