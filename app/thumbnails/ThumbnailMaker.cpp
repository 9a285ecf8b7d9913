#include "app/thumbnails/ThumbnailMaker.h"

#include "app/thumbnails/SharedThumbnails.h"
#include "base/Text.h"
#include "platform/DirectoryEntry.h"

#include <cmath>
#include <stdexcept>

namespace tovi {
namespace {

bool isFileOf(const FileThumbnailKey& key, const platform::FileAttributes& attributes) {
    return attributes.size == key.byteCount &&
           isSameFileDate(attributes.modifiedAt, key.modifiedAt);
}

} // namespace

Thumbnail ThumbnailMaker::make(const FileThumbnailKey& key, const std::stop_token& stop) const {
    if (!availability_.isAvailableLocally(key.path)) return nullptr;
    const FileDescriptor file = platform::DirectoryEntry::open(key.path).openRegularFile();
    if (!isFileOf(key, platform::attributesOf(file, key.path))) return nullptr;
    const FileDescriptor shared = openSharedThumbnail(
        sharedFolder_, key.path, static_cast<std::int64_t>(std::floor(key.modifiedAt.seconds)),
        key.pixels);
    if (shared.isOpen()) {
        try {
            return std::make_shared<DecodedPicture>(
                decoders_.decodePicture(shared, key.pixels, stop));
        } catch (const decoder::DecodingError&) {
            // The desktop's thumbnail is damaged; ours is made of the file.
        }
    }
    const bool isPdf = lowercasedExtension(lastPathComponent(key.path)) == "pdf";
    auto made =
        std::make_shared<DecodedPicture>(isPdf ? decoders_.drawPdfPage(file, key.pixels, stop)
                                               : decoders_.decodePicture(file, key.pixels, stop));
    if (!isFileOf(key, platform::attributesOf(file, key.path))) return nullptr;
    return made;
}

} // namespace tovi
