#include "core/vault/VaultSource.h"

#include "base/Text.h"
#include "core/vault/VaultError.h"
#include "core/vault/VaultFiles.h"
#include "core/vault/VaultFormat.h"

#include <array>
#include <cerrno>

#include <fcntl.h>

namespace tovi::vault {
namespace {

using Kind = VaultError::Kind;

constexpr const char* resourceForkAttribute = "user.com.apple.ResourceFork";
constexpr const char* finderInfoAttribute = "user.com.apple.FinderInfo";

/// The length of an attribute's value, 0 where there is none. Throws `VaultError` (`io`).
std::size_t attributeSize(FileCalls& calls, const FileDescriptor& file, const char* name) {
    const ssize_t size = calls.getAttribute(file.get(), name, {});
    if (size >= 0) return static_cast<std::size_t>(size);
    if (errno == ENODATA || errno == ENOTSUP) return 0;
    throw VaultError::system(errno);
}

/// Finder's flags are a big-endian number at byte 8 of its 32 bytes.
bool isFinderAlias(FileCalls& calls, const FileDescriptor& file) {
    std::array<char, 32> info{};
    constexpr unsigned aliasFlag = 0x80; // of the first byte
    return calls.getAttribute(file.get(), finderInfoAttribute, info) ==
               static_cast<ssize_t>(info.size()) &&
           (static_cast<unsigned char>(info[8]) & aliasFlag) != 0;
}

void readQuarantine(FileCalls& calls, VaultSource& source) {
    const ssize_t size = calls.getAttribute(source.file.get(), quarantineAttribute, {});
    if (size < 0) {
        if (errno == ENODATA || errno == ENOTSUP) return;
        throw VaultError::system(errno);
    }
    if (static_cast<std::size_t>(size) > maximumQuarantineBytes) {
        source.isQuarantineLeftOut = true;
        return;
    }
    std::string value(static_cast<std::size_t>(size) + 1, '\0'); // room to notice that it grew
    if (calls.getAttribute(source.file.get(), quarantineAttribute, value) != size) {
        throw VaultError(Kind::sourceChanged);
    }
    value.pop_back();
    source.quarantine = std::move(value);
}

bool isSame(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino &&
           left.st_size == right.st_size && left.st_ctim.tv_sec == right.st_ctim.tv_sec &&
           left.st_ctim.tv_nsec == right.st_ctim.tv_nsec;
}

} // namespace

VaultSource VaultSource::open(FileCalls& calls, const platform::Availability& availability,
                              const std::string& vaultDirectory, const std::string& path) {
    VaultSource source;
    source.path = path;
    source.name = lastPathComponent(path);
    if (!isValidName(source.name) || path.find('\0') != std::string::npos ||
        isInside(path, vaultDirectory)) {
        throw VaultError(Kind::unsafePath);
    }
    struct stat found {};
    if (calls.statAt(AT_FDCWD, path.c_str(), found) != 0) {
        throw VaultError(Kind::notAvailableLocally);
    }
    if (!S_ISREG(found.st_mode)) throw VaultError(Kind::unsupportedFile);
    if (!availability.isAvailableLocally(path)) throw VaultError(Kind::notAvailableLocally);

    source.file =
        FileDescriptor(calls.open(AT_FDCWD, path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW));
    if (!source.file.isOpen() || calls.stat(source.file.get(), source.before) != 0 ||
        !S_ISREG(source.before.st_mode) || source.before.st_size > maximumFileSize ||
        isFinderAlias(calls, source.file) ||
        attributeSize(calls, source.file, resourceForkAttribute) > 0) {
        throw VaultError(Kind::unsupportedFile);
    }
    readQuarantine(calls, source);
    return source;
}

void VaultSource::requireUnchanged(FileCalls& calls) const {
    struct stat opened {};
    struct stat named {};
    if (calls.stat(file.get(), opened) != 0 || calls.statAt(AT_FDCWD, path.c_str(), named) != 0 ||
        !isSame(opened, before) || !isSame(named, before)) {
        throw VaultError(Kind::sourceChanged);
    }
}

} // namespace tovi::vault
