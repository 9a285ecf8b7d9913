#include "core/files/ProcessLock.h"

#include "base/SystemError.h"

#include <fcntl.h>
#include <sys/file.h>

namespace tovi {

std::optional<ProcessLock> ProcessLock::tryTake(const std::string& path) {
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen()) throw systemError(path);
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) return ProcessLock(std::move(file));
    if (errno == EWOULDBLOCK) return std::nullopt;
    throw systemError(path);
}

} // namespace tovi
