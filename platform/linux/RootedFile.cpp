#include "platform/RootedFile.h"

#include "base/SystemError.h"
#include "base/Text.h"

#include <fcntl.h>

namespace tovi::platform {

RootedFile::RootedFile(std::shared_ptr<const FileDescriptor> root, std::string path,
                       std::size_t rootLength)
    : root_(std::move(root)), path_(std::move(path)), rootLength_(rootLength) {}

std::string_view RootedFile::name() const {
    return lastPathComponent(path_);
}

FileDescriptor RootedFile::openParent() const {
    FileDescriptor parent;
    std::string component;
    for (std::size_t at = rootLength_;;) {
        const std::size_t slash = path_.find('/', at);
        if (slash == std::string::npos) return parent;
        component.assign(path_, at, slash - at);
        const int above = parent.isOpen() ? parent.get() : root_->get();
        parent = FileDescriptor(
            ::openat(above, component.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!parent.isOpen()) throw systemError(path_);
        at = slash + 1;
    }
}

FileDescriptor RootedFile::open() const {
    const FileDescriptor parent = openParent();
    const int above = parent.isOpen() ? parent.get() : root_->get();
    // O_NONBLOCK: a FIFO put in the file's place must not hold the program.
    FileDescriptor file(::openat(above, std::string(name()).c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen()) throw systemError(path_);
    if (attributesOf(file, path_).type != FileType::regular) throw systemError(path_, EINVAL);
    return file;
}

FileAttributes RootedFile::attributes() const {
    const FileDescriptor parent = openParent();
    return attributesAt(parent.isOpen() ? parent : *root_, std::string(name()).c_str(), path_);
}

} // namespace tovi::platform
