#include "core/vault/VaultFiles.h"

#include "base/Uuid.h"
#include "core/vault/VaultError.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace tovi::vault {
namespace fs = std::filesystem;

std::size_t readFully(FileCalls& calls, const FileDescriptor& file, std::span<std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = calls.read(file.get(), bytes.subspan(done));
        if (count == 0) break;
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            throw VaultError::system(errno);
        }
    }
    return done;
}

void writeFully(FileCalls& calls, const FileDescriptor& file, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = calls.write(file.get(), bytes);
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            throw VaultError::system(errno);
        }
    }
}

void sync(FileCalls& calls, const FileDescriptor& file) {
    if (calls.sync(file.get()) != 0) throw VaultError::system(errno);
}

FileDescriptor openDirectory(FileCalls& calls, const std::string& path) {
    FileDescriptor directory(
        calls.open(AT_FDCWD, path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW));
    if (directory.isOpen()) return directory;
    if (errno == ELOOP || errno == ENOTDIR) throw VaultError(VaultError::Kind::unsafePath);
    throw VaultError::system(errno);
}

namespace {

struct CloseListing {
    void operator()(DIR* listing) const { ::closedir(listing); }
};

} // namespace

std::vector<std::string> namesIn(FileCalls& calls, const FileDescriptor& directory) {
    FileDescriptor listing(calls.open(directory.get(), ".", O_RDONLY | O_DIRECTORY));
    const std::unique_ptr<DIR, CloseListing> stream(listing.isOpen() ? ::fdopendir(listing.get())
                                                                     : nullptr);
    if (stream == nullptr) throw VaultError::system(errno);
    listing.release();
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
        errno = 0;
    }
    if (errno != 0) throw VaultError::system(errno);
    return names;
}

bool isInside(const std::string& path, const std::string& directory) {
    std::error_code error;
    fs::path place = fs::weakly_canonical(path, error);
    if (error) place = fs::weakly_canonical(fs::path(path).parent_path(), error);
    if (error) place = fs::absolute(path).lexically_normal();
    while (!fs::equivalent(place, directory, error)) {
        if (!place.has_relative_path()) return false;
        place = place.parent_path();
    }
    return true;
}

TemporaryFile::TemporaryFile(FileCalls& calls, const FileDescriptor& directory,
                             std::string_view prefix)
    : calls_(calls),
      directory_(directory),
      name_(std::string(prefix) + Uuid::random().string()),
      file_(calls.open(directory.get(), name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW,
                       0600)) {
    if (!file_.isOpen()) throw VaultError::system(errno);
    if (calls.stat(file_.get(), created_) != 0) {
        const int code = errno;
        calls.unlink(directory.get(), name_.c_str());
        throw VaultError::system(code);
    }
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : calls_(other.calls_),
      directory_(other.directory_),
      name_(std::exchange(other.name_, {})),
      file_(std::move(other.file_)),
      created_(other.created_) {}

TemporaryFile::~TemporaryFile() {
    if (name_.empty()) return;
    // Its final name may lie where others write: what is not this file is left alone.
    struct stat found {};
    if (calls_.statAt(directory_.get(), name_.c_str(), found) == 0 &&
        found.st_dev == created_.st_dev && found.st_ino == created_.st_ino) {
        calls_.unlink(directory_.get(), name_.c_str());
    }
}

int TemporaryFile::publish(const std::string& name) {
    const int directory = directory_.get();
    if (calls_.rename(directory, name_.c_str(), name.c_str(), RENAME_NOREPLACE) != 0) {
        // File systems without an exclusive rename often have links, which never replace either.
        if (errno != EINVAL && errno != ENOSYS) return errno;
        if (calls_.link(directory, name_.c_str(), name.c_str()) != 0) return errno;
        if (calls_.unlink(directory, name_.c_str()) != 0) {
            const int code = errno;
            calls_.unlink(directory, name.c_str());
            return code;
        }
    }
    name_ = name;
    return 0;
}

int TemporaryFile::replace(const std::string& name) {
    if (calls_.rename(directory_.get(), name_.c_str(), name.c_str(), 0) != 0) return errno;
    keep();
    return 0;
}

} // namespace tovi::vault
