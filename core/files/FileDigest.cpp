#include "core/files/FileDigest.h"

#include "base/Cancelled.h"
#include "base/SystemError.h"
#include "core/files/Sha256.h"

#include <vector>

#include <fcntl.h>

namespace tovi {

std::optional<std::string> digestOf(const FileDescriptor& file, std::uint64_t limit,
                                    const std::string& path, const std::stop_token& stop) {
    constexpr std::size_t chunkSize = 1'048'576;
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_SEQUENTIAL);
    std::vector<std::byte> chunk(chunkSize);
    Sha256 sum;
    for (std::uint64_t total = 0;;) {
        throwIfCancelled(stop);
        const ssize_t length = ::read(file.get(), chunk.data(), chunk.size());
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) throw systemError(path);
        if (length == 0) return hexadecimal(sum.finish());
        total += static_cast<std::size_t>(length);
        if (total > limit) return std::nullopt;
        sum.update(std::span(chunk).first(static_cast<std::size_t>(length)));
    }
}

} // namespace tovi
