#include "platform/linux/MountTable.h"

#include "base/Text.h"

#include <array>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <mntent.h>

namespace tovi::platform {
namespace {

constexpr const char* table = "/proc/self/mounts";

}

MountTable::MountTable() : changes_(::open(table, O_RDONLY | O_CLOEXEC)) {}

std::vector<std::string> MountTable::around(const std::string& path) const {
    std::vector<std::string> mounts;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(::setmntent(table, "re"), ::endmntent);
    if (!file) return mounts;
    mntent entry{};
    std::array<char, 16384> text{};
    while (::getmntent_r(file.get(), &entry, text.data(), static_cast<int>(text.size()))) {
        const std::string directory = entry.mnt_dir;
        if (isSameOrBelow(path, directory) || isSameOrBelow(directory, path)) {
            mounts.push_back(directory + '\n' + entry.mnt_fsname + '\n' + entry.mnt_type);
        }
    }
    return mounts;
}

} // namespace tovi::platform
