#include "platform/ReadFile.h"

#include "base/SystemError.h"

#include <algorithm>

#include <sys/stat.h>

namespace tovi::platform {

std::string readFile(const FileDescriptor& file, std::size_t maximum, const std::string& path) {
    struct stat found = {};
    if (::fstat(file.get(), &found) != 0) throw systemError(path);
    // One byte more than the size tells the end of the file without growing the buffer.
    const auto size = static_cast<std::size_t>(std::max<off_t>(found.st_size, 0));
    std::string bytes(std::min(size, maximum) + 1, '\0');
    std::size_t length = 0;
    while (length < maximum) {
        if (length == bytes.size()) bytes.resize(std::min(2 * length, maximum));
        const std::size_t room = std::min(bytes.size(), maximum) - length;
        const ssize_t got =
            ::pread(file.get(), bytes.data() + length, room, static_cast<off_t>(length));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw systemError(path);
        if (got == 0) break;
        length += static_cast<std::size_t>(got);
    }
    bytes.resize(length);
    return bytes;
}

} // namespace tovi::platform
