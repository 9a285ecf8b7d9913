#include "core/vault/FileCalls.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <openssl/rand.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tovi::vault {

int FileCalls::failureOf(Call /*call*/) {
    return 0;
}

bool FileCalls::fails(Call call) {
    const int code = failureOf(call);
    if (code != 0) errno = code;
    return code != 0;
}

int FileCalls::open(int directory, const char* name, int flags, mode_t mode) {
    return fails(Call::open) ? -1 : ::openat(directory, name, flags | O_CLOEXEC, mode);
}

int FileCalls::stat(int descriptor, struct stat& result) {
    return fails(Call::stat) ? -1 : ::fstat(descriptor, &result);
}

int FileCalls::statAt(int directory, const char* name, struct stat& result) {
    return fails(Call::stat) ? -1 : ::fstatat(directory, name, &result, AT_SYMLINK_NOFOLLOW);
}

ssize_t FileCalls::read(int descriptor, std::span<std::byte> bytes) {
    return fails(Call::read) ? -1 : ::read(descriptor, bytes.data(), bytes.size());
}

ssize_t FileCalls::write(int descriptor, std::span<const std::byte> bytes) {
    return fails(Call::write) ? -1 : ::write(descriptor, bytes.data(), bytes.size());
}

int FileCalls::sync(int descriptor) {
    return fails(Call::sync) ? -1 : ::fsync(descriptor);
}

int FileCalls::rename(int directory, const char* from, const char* to, unsigned flags) {
    return fails(Call::rename) ? -1 : ::renameat2(directory, from, directory, to, flags);
}

int FileCalls::link(int directory, const char* from, const char* to) {
    return fails(Call::link) ? -1 : ::linkat(directory, from, directory, to, 0);
}

int FileCalls::unlink(int directory, const char* name) {
    return fails(Call::unlink) ? -1 : ::unlinkat(directory, name, 0);
}

int FileCalls::lock(int descriptor) {
    return fails(Call::lock) ? -1 : ::flock(descriptor, LOCK_EX | LOCK_NB);
}

int FileCalls::makeDirectory(const char* path, mode_t mode) {
    return fails(Call::makeDirectory) ? -1 : ::mkdir(path, mode);
}

int FileCalls::changeMode(int descriptor, mode_t mode) {
    return fails(Call::changeMode) ? -1 : ::fchmod(descriptor, mode);
}

ssize_t FileCalls::getAttribute(int descriptor, const char* name, std::span<char> value) {
    return fails(Call::getAttribute) ? -1
                                     : ::fgetxattr(descriptor, name, value.data(), value.size());
}

int FileCalls::setAttribute(int descriptor, const char* name, std::span<const char> value) {
    return fails(Call::setAttribute) ? -1
                                     : ::fsetxattr(descriptor, name, value.data(), value.size(), 0);
}

bool FileCalls::randomBytes(std::span<unsigned char> bytes) {
    return !fails(Call::randomBytes) &&
           RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) == 1;
}

} // namespace tovi::vault
