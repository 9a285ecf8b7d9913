#include "core/vault/VaultDirectory.h"

#include "core/vault/VaultError.h"
#include "core/vault/VaultFiles.h"
#include "core/vault/VaultFormat.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi::vault {
namespace fs = std::filesystem;
namespace {

constexpr mode_t privateMode = 0700;

/// Makes the directory and those above it that are missing, each durable in its parent.
void createDirectories(FileCalls& calls, const fs::path& path) {
    if (calls.makeDirectory(path.c_str(), privateMode) != 0) {
        if (errno == EEXIST) return;
        if (errno != ENOENT || !path.has_relative_path()) throw VaultError::system(errno);
        createDirectories(calls, path.parent_path());
        if (calls.makeDirectory(path.c_str(), privateMode) != 0 && errno != EEXIST) {
            throw VaultError::system(errno);
        }
    }
    const FileDescriptor parent(
        calls.open(AT_FDCWD, path.parent_path().c_str(), O_RDONLY | O_DIRECTORY));
    if (!parent.isOpen()) throw VaultError::system(errno);
    sync(calls, parent);
}

FileDescriptor openLock(FileCalls& calls, const FileDescriptor& directory) {
    FileDescriptor lock(
        calls.open(directory.get(), lockName, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600));
    if (!lock.isOpen()) {
        if (errno == ELOOP || errno == EISDIR) throw VaultError(VaultError::Kind::unsafePath);
        throw VaultError::system(errno);
    }
    struct stat found {};
    if (calls.stat(lock.get(), found) != 0) throw VaultError::system(errno);
    if (!S_ISREG(found.st_mode) || found.st_nlink != 1) {
        throw VaultError(VaultError::Kind::unsafePath);
    }
    if (calls.lock(lock.get()) != 0) {
        if (errno == EWOULDBLOCK) throw VaultError(VaultError::Kind::busy);
        throw VaultError::system(errno);
    }
    return lock;
}

} // namespace

VaultDirectory::VaultDirectory(FileCalls& calls, const std::string& path, IfMissing ifMissing) {
    if (ifMissing == IfMissing::create) {
        createDirectories(calls, fs::absolute(path).lexically_normal());
    }
    directory_ = openDirectory(calls, path);
    struct stat found {};
    if (calls.stat(directory_.get(), found) != 0) throw VaultError::system(errno);
    if (found.st_uid != ::geteuid()) throw VaultError(VaultError::Kind::unsafePath);
    if ((found.st_mode & 07777U) != privateMode &&
        calls.changeMode(directory_.get(), privateMode) != 0) {
        throw VaultError::system(errno);
    }
    lock_ = openLock(calls, directory_);
}

} // namespace tovi::vault
