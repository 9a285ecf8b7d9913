#include "core/files/FileSnapshot.h"

#include "core/files/FileDigest.h"

#include <limits>
#include <system_error>

namespace tovi {
namespace {

using platform::FileAttributes;

} // namespace

const char* SnapshotError::sentence(Kind kind) {
    switch (kind) {
    case Kind::notLocal:
        return "File is unavailable locally or is a symbolic link.";
    case Kind::notRegular:
        return "The file is unavailable or no longer a regular file.";
    case Kind::changed:
        return "File changed while being reviewed.";
    }
    return "";
}

bool FileSnapshot::matches(const FileSnapshot& other) const {
    return size == other.size && inode == other.inode && device == other.device &&
           digest == other.digest && isSameFileDate(modified, other.modified);
}

FileSnapshot takeSnapshot(const platform::DirectoryEntry& entry,
                          const platform::Availability& availability, const std::stop_token& stop) {
    if (!availability.isAvailableLocally(entry.path())) {
        throw SnapshotError(SnapshotError::Kind::notLocal);
    }
    try {
        const FileDescriptor file = entry.openRegularFile();
        const FileAttributes before = platform::attributesOf(file, entry.path());
        const auto digest =
            digestOf(file, std::numeric_limits<std::uint64_t>::max(), entry.path(), stop);
        const FileAttributes after = platform::attributesOf(file, entry.path());
        // The name must still lead to what was read.
        const auto named = entry.attributes();
        if (after.size != before.size || !isSameFileDate(after.modifiedAt, before.modifiedAt) ||
            !named || named->inode != after.inode || named->device != after.device) {
            throw SnapshotError(SnapshotError::Kind::changed);
        }
        return {static_cast<std::uint64_t>(after.size), after.modifiedAt, after.inode,
                platform::volumeNumber(file, entry.path()), digest.value_or("")};
    } catch (const std::system_error&) {
        throw SnapshotError(SnapshotError::Kind::notRegular);
    }
}

bool leadsTo(const platform::DirectoryEntry& entry, const FileSnapshot& snapshot) {
    try {
        const auto found = entry.attributes();
        return found && found->inode == snapshot.inode &&
               static_cast<std::uint64_t>(found->size) == snapshot.size &&
               isSameFileDate(found->modifiedAt, snapshot.modified) &&
               platform::volumeNumber(entry.directory(), entry.path()) == snapshot.device;
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace tovi
