#include "core/cleanup/CleanupFileIdentity.h"

#include <system_error>

namespace tovi {

CleanupFileIdentity CleanupFileIdentity::of(const platform::FileAttributes& attributes) {
    return {attributes.device,
            attributes.inode,
            attributes.size,
            attributes.modified.tv_sec,
            attributes.modified.tv_nsec,
            attributes.changed.tv_sec,
            attributes.changed.tv_nsec};
}

CleanupFileIdentity CleanupFileIdentity::read(const std::string& path) {
    const CleanupScanError unavailable(
        "The file is unavailable, changed, or is not a regular file: " + path);
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) throw unavailable;
    try {
        const platform::FileAttributes attributes = platform::attributesOf(path);
        if (attributes.type == platform::FileType::regular && attributes.size >= 0) {
            return of(attributes);
        }
    } catch (const std::system_error&) {
        throw unavailable;
    }
    throw unavailable;
}

Date CleanupFileIdentity::modifiedAt() const {
    return Date::fromTimespec({modifiedSeconds, static_cast<long>(modifiedNanoseconds)});
}

bool CleanupFileIdentity::isMoved(const CleanupFileIdentity& other) const {
    return inode == other.inode && size == other.size && modifiedSeconds == other.modifiedSeconds &&
           modifiedNanoseconds == other.modifiedNanoseconds;
}

} // namespace tovi
