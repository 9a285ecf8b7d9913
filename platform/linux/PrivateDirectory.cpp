#include "platform/PrivateDirectory.h"

#include "base/SystemError.h"

#include <filesystem>

#include <sys/stat.h>

namespace tovi::platform {

void makePrivateDirectory(const std::string& path) {
    if (path.empty() || std::filesystem::exists(path)) return;
    makePrivateDirectory(std::filesystem::path(path).parent_path());
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) throw systemError(path);
}

} // namespace tovi::platform
