#include "tests/support/MountNamespace.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace tovi::test {
namespace {

void check(int result, const std::string& what) {
    if (result != 0) throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

MountNamespace::MountNamespace() {
    const int original = ::open("/proc/self/ns/mnt", O_RDONLY | O_CLOEXEC);
    if (::unshare(CLONE_NEWNS) == 0 &&
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0) {
        original_ = original;
    } else {
        ::close(original);
    }
}

MountNamespace::~MountNamespace() {
    if (original_ < 0) return;
    ::setns(original_, CLONE_NEWNS);
    ::close(original_);
}

void MountNamespace::mountMemory(const std::string& directory, const std::string& options) const {
    check(::mount("tmpfs", directory.c_str(), "tmpfs", 0, options.c_str()), directory);
}

void MountNamespace::bind(const std::string& source, const std::string& directory) const {
    check(::mount(source.c_str(), directory.c_str(), nullptr, MS_BIND, nullptr), directory);
}

void MountNamespace::makeReadOnly(const std::string& directory) const {
    check(::mount(nullptr, directory.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
          directory);
}

} // namespace tovi::test
