#include "core/photos/PhotoPrintCache.h"

#include <bit>
#include <cstdint>

namespace tovi {
namespace {

std::string keyOf(const FileRecord& file) {
    return file.path + '|' +
           std::to_string(std::bit_cast<std::uint64_t>(file.modifiedAt.referenceSeconds())) + '|' +
           std::to_string(file.size);
}

} // namespace

PhotoPrintCache::PhotoPrintCache(std::size_t maximumPrints)
    : prints_(maximumPrints, maximumPrints) {}

std::optional<PhotoPrint> PhotoPrintCache::find(const FileRecord& file) {
    const std::lock_guard lock(mutex_);
    const PhotoPrint* found = prints_.find(keyOf(file));
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

void PhotoPrintCache::insert(const FileRecord& file, const PhotoPrint& print) {
    const std::lock_guard lock(mutex_);
    prints_.insert(keyOf(file), print, 1);
}

} // namespace tovi
