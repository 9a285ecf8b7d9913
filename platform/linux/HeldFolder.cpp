#include "platform/HeldFolder.h"

#include "platform/StandardLocations.h"

#include <array>
#include <climits>

#include <fcntl.h>
#include <sys/stat.h>

namespace tovi::platform {
namespace {

std::optional<struct statx> statusOf(int directory, const char* path, int flags) {
    struct statx status {};
    constexpr unsigned wanted = STATX_INO | STATX_NLINK | STATX_MNT_ID;
    if (::statx(directory, path, flags | AT_NO_AUTOMOUNT, wanted, &status) != 0) return {};
    return status;
}

bool isOnSameMount(const struct statx& left, const struct statx& right) {
    return (left.stx_mask & right.stx_mask & STATX_MNT_ID) != 0 &&
           left.stx_mnt_id == right.stx_mnt_id;
}

} // namespace

std::optional<HeldFolder> HeldFolder::hold(const std::string& path) {
    FileDescriptor directory(::open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const auto status = statusOf(directory.get(), "", AT_EMPTY_PATH);
    if (!status) return std::nullopt;
    for (const std::string& always : {std::string("/"), homeDirectory()}) {
        const auto base = statusOf(AT_FDCWD, always.c_str(), 0);
        if (base && isOnSameMount(*status, *base)) return HeldFolder(std::move(directory));
    }
    return std::nullopt;
}

std::optional<std::string> HeldFolder::path() const {
    const auto status = statusOf(directory_.get(), "", AT_EMPTY_PATH);
    if (!status || status->stx_nlink == 0) return std::nullopt;
    std::array<char, PATH_MAX> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(directory_.get());
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    if (length <= 0) return std::nullopt;
    std::string found(target.data(), static_cast<std::size_t>(length));
    if (!isAt(found)) return std::nullopt;
    return found;
}

bool HeldFolder::isAt(const std::string& path) const {
    const auto held = statusOf(directory_.get(), "", AT_EMPTY_PATH);
    const auto found = statusOf(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW);
    return held && found && held->stx_ino == found->stx_ino &&
           held->stx_dev_major == found->stx_dev_major &&
           held->stx_dev_minor == found->stx_dev_minor;
}

} // namespace tovi::platform
