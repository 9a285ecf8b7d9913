#include "core/files/FileSnapshot.h"

#include "base/Cancelled.h"

#include <cerrno>
#include <system_error>
#include <vector>

#include <fcntl.h>

namespace tovi {
namespace {

using platform::FileAttributes;

std::string digestOf(const FileDescriptor& file, const std::string& path,
                     const std::stop_token& stop) {
    constexpr std::size_t chunkSize = 1'048'576;
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    std::vector<std::byte> chunk(chunkSize);
    Sha256 sum;
    for (;;) {
        throwIfCancelled(stop);
        const ssize_t length = ::read(file.get(), chunk.data(), chunk.size());
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) throw std::system_error(errno, std::generic_category(), path);
        if (length == 0) return hexadecimal(sum.finish());
        sum.update(std::span(chunk).first(static_cast<std::size_t>(length)));
    }
}

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
        const std::string digest = digestOf(file, entry.path(), stop);
        const FileAttributes after = platform::attributesOf(file, entry.path());
        // The name must still lead to what was read.
        const auto named = entry.attributes();
        if (after.size != before.size || !isSameFileDate(after.modifiedAt, before.modifiedAt) ||
            !named || named->inode != after.inode || named->device != after.device) {
            throw SnapshotError(SnapshotError::Kind::changed);
        }
        return {static_cast<std::uint64_t>(after.size), after.modifiedAt, after.inode,
                platform::volumeNumber(file, entry.path()), digest};
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
