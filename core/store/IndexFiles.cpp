#include "core/store/IndexFiles.h"

#include "base/FileDescriptor.h"
#include "core/records/IntelligenceError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>

namespace tovi {
namespace {

// The log goes first: a log without its database is harmless, but SQLite would replay a log that
// is left behind into the database that comes next.
constexpr std::array<const char*, 3> suffixes{"-wal", "-shm", ""};

/// Every connection of SQLite holds a lock on the database or on its shared memory.
bool isInUse(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen()) return false;
    struct flock held {};
    held.l_type = F_WRLCK;
    held.l_whence = SEEK_SET;
    return ::fcntl(file.get(), F_GETLK, &held) == 0 && held.l_type != F_UNLCK;
}

} // namespace

std::string moveIndexAside(const std::string& path, Date date) {
    if (std::any_of(suffixes.begin(), suffixes.end(),
                    [&](const char* suffix) { return isInUse(path + suffix); })) {
        throw IntelligenceError::database("Another program is using the index");
    }
    std::string stamp = iso8601(date);
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    const std::size_t dot = path.rfind('.');
    std::string aside = path.substr(0, dot) + "-" + stamp + path.substr(dot);
    for (const char* suffix : suffixes) {
        const int result = ::renameat2(AT_FDCWD, (path + suffix).c_str(), AT_FDCWD,
                                       (aside + suffix).c_str(), RENAME_NOREPLACE);
        if (result != 0 && errno != ENOENT) {
            throw IntelligenceError::database("The old index could not be moved aside: " +
                                              std::string(std::strerror(errno)));
        }
    }
    return aside;
}

} // namespace tovi
