#include "platform/linux/MountTable.h"

#include "base/Text.h"

#include <fcntl.h>

namespace tovi::platform {

MountTable::MountTable() : changes_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {}

std::vector<Mount> MountTable::around(const std::string& path) {
    std::vector<Mount> found = mounts();
    std::erase_if(found, [&](const Mount& mount) {
        return !isSameOrBelow(path, mount.path) && !isSameOrBelow(mount.path, path);
    });
    return found;
}

} // namespace tovi::platform
