#include "platform/ExclusiveMove.h"

#include "base/SystemError.h"
#include "platform/linux/MoveWithoutReplacing.h"

#include <cstdio>

#include <fcntl.h>

namespace tovi::platform {
namespace {

bool isSameFile(const DirectoryEntry& left, const DirectoryEntry& right) {
    const auto one = left.attributes();
    const auto other = right.attributes();
    return one && other && one->inode == other->inode && one->device == other->device;
}

} // namespace

void removeLinkedName(const DirectoryEntry& from, const DirectoryEntry& to) {
    if (!isSameFile(from, to)) return; // another program's file has the name now
    if (::unlinkat(from.directory().get(), from.name(), 0) != 0) throw systemError(from.path());
}

void moveByLinking(const DirectoryEntry& from, const DirectoryEntry& to) {
    const auto before = from.attributes();
    if (!before) throw systemError(from.path(), ENOENT);
    if (before->type != FileType::regular) throw systemError(from.path(), ENOTSUP);
    if (::linkat(from.directory().get(), from.name(), to.directory().get(), to.name(), 0) != 0) {
        const bool unsupported = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
        throw systemError(to.path(), unsupported ? ENOTSUP : errno);
    }
    try {
        if (const auto error = to.syncDirectory()) throw systemError(to.path(), error.value());
        removeLinkedName(from, to);
    } catch (const std::system_error&) {
        // The new name was made above, and `from` keeps the file.
        if (isSameFile(from, to)) ::unlinkat(to.directory().get(), to.name(), 0);
        throw;
    }
}

void moveWithoutReplacing(const DirectoryEntry& from, const DirectoryEntry& to) {
    if (::renameat2(from.directory().get(), from.name(), to.directory().get(), to.name(),
                    RENAME_NOREPLACE) == 0) {
        return;
    }
    // Only a free name shows that the file system lacks the flag: a taken one gives EEXIST.
    if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) throw systemError(to.path());
    moveByLinking(from, to);
}

std::error_code SystemExclusiveMove::move(const DirectoryEntry& from, const DirectoryEntry& to) {
    moveWithoutReplacing(from, to);
    const std::error_code error = to.syncDirectory();
    const std::error_code sourceError = from.syncDirectory();
    return error ? error : sourceError;
}

void SystemExclusiveMove::finish(const DirectoryEntry& from, const DirectoryEntry& to) {
    removeLinkedName(from, to);
    if (const auto error = from.syncDirectory()) throw systemError(from.path(), error.value());
}

} // namespace tovi::platform
