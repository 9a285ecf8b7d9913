#include "base/SystemError.h"
#include "platform/FileAttributes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace tovi::platform {
namespace {

FileType typeOf(std::uint32_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return FileType::regular;
    case S_IFDIR:
        return FileType::directory;
    case S_IFLNK:
        return FileType::symbolicLink;
    default:
        return FileType::other;
    }
}

timespec timeOf(const statx_timestamp& time) {
    return {time.tv_sec, static_cast<long>(time.tv_nsec)};
}

FileAttributes read(int directory, const char* name, int flags, const std::string& path) {
    constexpr unsigned wanted =
        STATX_TYPE | STATX_SIZE | STATX_MTIME | STATX_CTIME | STATX_BTIME | STATX_INO | STATX_NLINK;
    struct statx found = {};
    if (::statx(directory, name, flags | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, wanted, &found) !=
        0) {
        throw systemError(path);
    }
    FileAttributes result;
    result.type = typeOf(found.stx_mode);
    result.size = static_cast<std::int64_t>(found.stx_size);
    result.modified = timeOf(found.stx_mtime);
    result.changed = timeOf(found.stx_ctime);
    result.modifiedAt = Date::fromTimespec(result.modified);
    result.hasBirthTime = (found.stx_mask & STATX_BTIME) != 0;
    result.createdAt =
        result.hasBirthTime ? Date::fromTimespec(timeOf(found.stx_btime)) : result.modifiedAt;
    result.inode = found.stx_ino;
    result.linkCount = found.stx_nlink;
    result.device = makedev(found.stx_dev_major, found.stx_dev_minor);
    return result;
}

} // namespace

FileAttributes attributesOf(const std::string& path) {
    return read(AT_FDCWD, path.c_str(), 0, path);
}

FileAttributes attributesOf(const FileDescriptor& item, const std::string& path) {
    return read(item.get(), "", AT_EMPTY_PATH, path);
}

FileAttributes attributesAt(const FileDescriptor& directory, const char* name,
                            const std::string& path) {
    return read(directory.get(), name, 0, path);
}

} // namespace tovi::platform
