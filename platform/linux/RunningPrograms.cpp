#include "platform/RunningPrograms.h"

#include "base/Text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace tovi::platform {
namespace {

namespace fs = std::filesystem;

bool leadsBelow(const fs::path& link, const std::string& directory) {
    std::error_code error;
    const fs::path target = fs::read_symlink(link, error);
    return !error && isSameOrBelow(target.native(), directory);
}

bool mapsBelow(const fs::path& process, const std::string& directory) {
    std::ifstream maps(process / "maps");
    for (std::string line; std::getline(maps, line);) {
        const std::size_t path = line.find('/');
        if (path != std::string::npos && isSameOrBelow(line.substr(path), directory)) return true;
    }
    return false;
}

bool uses(const fs::path& process, const std::string& directory) {
    if (leadsBelow(process / "exe", directory) || leadsBelow(process / "cwd", directory)) {
        return true;
    }
    std::error_code error;
    for (fs::directory_iterator file(process / "fd", error), end; !error && file != end;
         file.increment(error)) {
        if (leadsBelow(file->path(), directory)) return true;
    }
    return mapsBelow(process, directory);
}

} // namespace

bool SystemRunningPrograms::use(const std::string& directory) const {
    const std::string own = std::to_string(::getpid());
    std::error_code error;
    for (fs::directory_iterator process("/proc", error), end; !error && process != end;
         process.increment(error)) {
        const std::string number = process->path().filename();
        const bool isProcess = number.find_first_not_of("0123456789") == std::string::npos;
        if (isProcess && number != own && uses(process->path(), directory)) return true;
    }
    return false;
}

} // namespace tovi::platform
