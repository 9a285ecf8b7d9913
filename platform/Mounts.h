#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tovi::platform {

/// A place in the tree where a file system, or a part of one, begins.
struct Mount {
    std::string path;         // absolute
    std::string type;         // for instance "ext4"
    std::uint64_t device = 0; // as in `FileAttributes`
    std::string part;         // the path within its own file system that is seen here
    bool isVirtual = false;   // made by the kernel and holding no files of users

    friend bool operator==(const Mount&, const Mount&) = default;
};

/// In the order in which they were made: of two at one path the later one is seen. Empty where the
/// system does not tell. https://docs.kernel.org/filesystems/proc.html (mountinfo)
std::vector<Mount> mounts();

} // namespace tovi::platform
