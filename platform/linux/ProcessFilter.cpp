#include "platform/Sandbox.h"

#include <filesystem>
#include <fstream>

namespace tovi::platform {
namespace {

namespace fs = std::filesystem;

/// The first word after "key:" in /proc/PID/status; empty where there is none.
std::string statusOf(const fs::path& process, const std::string& key) {
    std::ifstream status(process / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key + ":\t")) return line.substr(key.size() + 2);
    }
    return {};
}

} // namespace

std::optional<bool> runsWithFilter(const std::string& program, const std::string& name) {
    std::optional<bool> isFiltered;
    std::error_code error;
    for (fs::directory_iterator process("/proc", error), end; !error && process != end;
         process.increment(error)) {
        std::error_code none;
        if (fs::read_symlink(process->path() / "exe", none) != program || none) continue;
        if (statusOf(process->path(), "Name") != name) continue;
        // 2 stands for a filter: https://man7.org/linux/man-pages/man5/proc_pid_status.5.html
        isFiltered = isFiltered.value_or(true) && statusOf(process->path(), "Seccomp") == "2";
    }
    return isFiltered;
}

} // namespace tovi::platform
