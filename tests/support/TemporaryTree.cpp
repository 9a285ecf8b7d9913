#include "tests/support/TemporaryTree.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi::test {
namespace fs = std::filesystem;

TemporaryTree::TemporaryTree() {
    std::string pattern = (fs::temp_directory_path() / "tovi-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = fs::canonical(pattern).string();
}

TemporaryTree::~TemporaryTree() {
    // A test may leave directories it took its own permissions from.
    std::error_code ignored;
    for (auto entry = fs::recursive_directory_iterator(path_, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) {
            ::chmod(entry->path().c_str(), 0700);
        }
    }
    fs::remove_all(path_, ignored);
}

std::string TemporaryTree::path(std::string_view relative) const {
    return path_ + "/" + std::string(relative);
}

std::string TemporaryTree::write(std::string_view relative, std::string_view bytes) const {
    const std::string target = path(relative);
    fs::create_directories(fs::path(target).parent_path());
    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream.flush()) throw std::runtime_error("cannot write " + target);
    return target;
}

std::string TemporaryTree::makeDirectory(std::string_view relative) const {
    fs::create_directories(path(relative));
    return path(relative);
}

std::string TemporaryTree::link(std::string_view relative, std::string_view target) const {
    fs::create_symlink(target, path(relative));
    return path(relative);
}

void TemporaryTree::setModified(std::string_view relative, double seconds) const {
    const double whole = std::floor(seconds);
    const timespec modified{static_cast<time_t>(whole), std::lround((seconds - whole) * 1e9)};
    const timespec times[2] = {{0, UTIME_OMIT}, modified};
    if (::utimensat(AT_FDCWD, path(relative).c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
        throw std::runtime_error("cannot date " + path(relative));
    }
}

std::string readFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

namespace {
constexpr uid_t nobody = 65534;
}

WithoutPrivileges::WithoutPrivileges(const TemporaryTree& tree) {
    if (::geteuid() != 0) return;
    bool done = ::lchown(tree.path().c_str(), nobody, nobody) == 0;
    for (const auto& entry : fs::recursive_directory_iterator(tree.path())) {
        done = done && ::lchown(entry.path().c_str(), nobody, nobody) == 0;
    }
    if (!done || ::seteuid(nobody) != 0) throw std::runtime_error("cannot drop privileges");
}

WithoutPrivileges::~WithoutPrivileges() {
    if (::getuid() == 0 && ::seteuid(0) != 0) std::abort();
}

} // namespace tovi::test
