#include "platform/DirectoryEntry.h"

#include "base/SystemError.h"

#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>

namespace tovi::platform {

FileDescriptor openDirectory(const std::string& path) {
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    const bool endsInSlash = path.size() > 1 && path.back() == '/';
    if (!path.starts_with('/') || endsInSlash) throw systemError(path, EINVAL);
    FileDescriptor directory(::open("/", flags));
    for (std::size_t at = 1; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string component = path.substr(at, end - at);
        at = end + 1;
        if (component.empty() || component == "." || component == "..") {
            throw systemError(path, EINVAL);
        }
        FileDescriptor next(::openat(directory.get(), component.c_str(), flags));
        if (!next.isOpen()) throw systemError(path);
        directory = std::move(next);
    }
    if (!directory.isOpen()) throw systemError(path);
    return directory;
}

std::uint64_t volumeNumber(const FileDescriptor& item, const std::string& path) {
    struct statfs volume {};
    if (::fstatfs(item.get(), &volume) != 0) throw systemError(path);
    static_assert(sizeof volume.f_fsid == sizeof(std::uint64_t));
    std::uint64_t number = 0;
    std::memcpy(&number, &volume.f_fsid, sizeof number);
    if (number != 0) return number;
    struct stat status {};
    if (::fstat(item.get(), &status) != 0) throw systemError(path);
    return status.st_dev;
}

DirectoryEntry DirectoryEntry::open(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? "" : path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") throw systemError(path, EINVAL);
    return {
        std::make_shared<FileDescriptor>(openDirectory(slash == 0 ? "/" : path.substr(0, slash))),
        path};
}

DirectoryEntry::DirectoryEntry(std::shared_ptr<const FileDescriptor> directory, std::string path)
    : directory_(std::move(directory)), path_(std::move(path)), nameOffset_(path_.rfind('/') + 1) {}

std::string DirectoryEntry::directoryPath() const {
    return nameOffset_ == 1 ? "/" : path_.substr(0, nameOffset_ - 1);
}

DirectoryEntry DirectoryEntry::sibling(const std::string& name) const {
    return {directory_, path_.substr(0, nameOffset_) + name};
}

std::optional<FileAttributes> DirectoryEntry::attributes() const {
    try {
        return attributesAt(*directory_, name(), path_);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
        throw;
    }
}

FileDescriptor DirectoryEntry::openRegularFile() const {
    // A pipe or a device would block or act on opening.
    FileDescriptor file(
        ::openat(directory_->get(), name(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) throw systemError(path_);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) throw systemError(path_);
    if (!S_ISREG(status.st_mode)) throw systemError(path_, EINVAL);
    return file;
}

std::error_code DirectoryEntry::syncDirectory() const {
    const FileDescriptor readable(
        ::openat(directory_->get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (readable.isOpen() && ::fsync(readable.get()) == 0) return {};
    return {errno, std::generic_category()};
}

} // namespace tovi::platform
