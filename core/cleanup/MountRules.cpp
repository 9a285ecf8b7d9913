#include "core/cleanup/MountRules.h"

#include "base/Text.h"

#include <algorithm>

namespace tovi {

MountRules::MountRules(const std::string& root, const std::vector<platform::Mount>& mounts)
    : isWholeSystem_(root == "/") {
    const platform::Mount* holder = nullptr;
    for (const platform::Mount& mount : mounts) {
        mounts_.insert_or_assign(mount.path, mount);
        const bool holdsRoot = isSameOrBelow(root, mount.path);
        if (holdsRoot && (holder == nullptr || mount.path.size() >= holder->path.size())) {
            holder = &mount;
        }
    }
    if (holder == nullptr) return;
    std::string part = holder->part == "/" ? "" : holder->part;
    part += root.substr(holder->path == "/" ? 0 : holder->path.size());
    if (part.size() > 1 && part.back() == '/') part.pop_back();
    entered_.push_back({holder->device, part.empty() ? "/" : part});
}

std::optional<std::string> MountRules::reasonToSkip(const std::string& directory) {
    const auto found = mounts_.find(directory);
    if (found == mounts_.end()) return std::nullopt;
    const platform::Mount& mount = found->second;
    if (mount.isVirtual) return "this location holds no files of users.";
    if (isWholeSystem_) return "other volumes are not scanned with the whole system.";
    if (std::any_of(entered_.begin(), entered_.end(), [&](const Part& part) {
            return part.device == mount.device &&
                   (isSameOrBelow(mount.part, part.path) || isSameOrBelow(part.path, mount.part));
        })) {
        return "files of this location are scanned in another place.";
    }
    entered_.push_back({mount.device, mount.part});
    return std::nullopt;
}

} // namespace tovi
