#include "platform/Mounts.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <string_view>

#include <sys/sysmacros.h>

namespace tovi::platform {
namespace {

constexpr std::array<std::string_view, 22> virtualTypes{
    "proc",    "sysfs",      "devtmpfs",  "devpts",   "cgroup",     "cgroup2",
    "debugfs", "tracefs",    "mqueue",    "pstore",   "securityfs", "configfs",
    "bpf",     "fusectl",    "autofs",    "nsfs",     "efivarfs",   "binfmt_misc",
    "ramfs",   "rpc_pipefs", "selinuxfs", "hugetlbfs"};

/// Spaces, tabs, line ends and backslashes stand as a backslash and three octal digits.
std::string unescaped(std::string_view text) {
    constexpr std::size_t escapeLength = 4;
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\' && at + escapeLength <= text.size()) {
            result += static_cast<char>(
                std::stoi(std::string(text.substr(at + 1, escapeLength - 1)), nullptr, 8));
            at += escapeLength - 1;
        } else {
            result += text[at];
        }
    }
    return result;
}

} // namespace

std::vector<Mount> mounts() {
    std::vector<Mount> result;
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string parent;
        std::string part;
        std::string path;
        unsigned major = 0;
        unsigned minor = 0;
        char colon = 0;
        fields >> number >> parent >> major >> colon >> minor >> part >> path;
        // A dash ends the optional fields; the type follows it.
        std::string type;
        while (fields >> type && type != "-") {
        }
        if (!(fields >> type)) continue;
        const bool isVirtual =
            std::find(virtualTypes.begin(), virtualTypes.end(), type) != virtualTypes.end();
        result.push_back(
            {unescaped(path), type, makedev(major, minor), unescaped(part), isVirtual});
    }
    return result;
}

} // namespace tovi::platform
