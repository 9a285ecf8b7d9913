#include "base/SystemError.h"
#include "platform/linux/DirectoryMarks.h"

#include <array>
#include <cstddef>
#include <cstring>

#include <fcntl.h>
#include <sys/fanotify.h>
#include <sys/statfs.h>

namespace tovi::platform {
namespace {

constexpr std::uint64_t itselfMask = FAN_DELETE_SELF | FAN_MOVE_SELF | FAN_ONDIR;
constexpr std::uint64_t entriesMask = itselfMask | FAN_CREATE | FAN_DELETE | FAN_MOVE | FAN_MODIFY |
                                      FAN_CLOSE_WRITE | FAN_ATTRIB | FAN_EVENT_ON_CHILD;

/// A key is the file system's number and the directory's handle, as an event states them.
MarkKey keyOf(const void* fileSystem, const void* handle, std::size_t handleSize) {
    MarkKey key(sizeof(fsid_t) + handleSize, '\0');
    std::memcpy(key.data(), fileSystem, sizeof(fsid_t));
    std::memcpy(key.data() + sizeof(fsid_t), handle, handleSize);
    return key;
}

MarkKey keyOf(const FileDescriptor& directory) {
    struct statfs fileSystem {};
    if (::fstatfs(directory.get(), &fileSystem) != 0) throw systemError("fanotify");
    alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> bytes{};
    auto* handle = new (bytes.data()) file_handle{};
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (::name_to_handle_at(directory.get(), "", handle, &mount, AT_EMPTY_PATH) != 0) {
        throw systemError("fanotify");
    }
    return keyOf(&fileSystem.f_fsid, bytes.data(), sizeof(file_handle) + handle->handle_bytes);
}

class FanotifyMarks final : public DirectoryMarks {
  public:
    explicit FanotifyMarks(FileDescriptor queue) : queue_(std::move(queue)) {}

    int descriptor() const override { return queue_.get(); }

    MarkKey add(const FileDescriptor& directory, Scope scope) override {
        MarkKey key = keyOf(directory);
        const std::uint64_t mask = scope == Scope::entries ? entriesMask : itselfMask;
        if (::fanotify_mark(queue_.get(), FAN_MARK_ADD | FAN_MARK_ONLYDIR, mask, directory.get(),
                            nullptr) != 0) {
            throw systemError("fanotify");
        }
        return key;
    }

    /// A mark is removed through its path only, which is gone by now; the kernel drops it with
    /// the directory or the queue.
    void remove(const MarkKey&) override {}

    bool read(const std::function<void(const MarkNotice&)>& receive) override {
        const ssize_t count = ::read(queue_.get(), buffer_.data(), buffer_.size());
        if (count <= 0) return false;
        for (std::size_t at = 0; at + FAN_EVENT_METADATA_LEN <= static_cast<std::size_t>(count);) {
            fanotify_event_metadata event{};
            std::memcpy(&event, buffer_.data() + at, sizeof event);
            receive(noticeOf(event, buffer_.data() + at));
            at += event.event_len;
        }
        return true;
    }

    KernelLimit limit() const override {
        return lowerLimit("fs.fanotify.max_user_marks", "user.max_fanotify_marks", 8192);
    }

  private:
    static MarkNotice noticeOf(const fanotify_event_metadata& event, const char* bytes) {
        MarkNotice notice;
        if ((event.mask & FAN_Q_OVERFLOW) != 0) return notice;
        const char* information = bytes + event.metadata_len;
        const char* handleBytes = information + offsetof(fanotify_event_info_fid, handle);
        file_handle handle{};
        std::memcpy(&handle, handleBytes, sizeof handle);
        const std::size_t handleSize = sizeof handle + handle.handle_bytes;
        notice.key =
            keyOf(information + offsetof(fanotify_event_info_fid, fsid), handleBytes, handleSize);
        notice.name = handleBytes + handleSize;
        if (notice.name == ".") notice.name = {};
        notice.isDirectory = (event.mask & FAN_ONDIR) != 0;
        notice.isGone = (event.mask & FAN_DELETE_SELF) != 0;
        notice.isMoved = (event.mask & FAN_MOVE_SELF) != 0;
        return notice;
    }

    FileDescriptor queue_;
    alignas(fanotify_event_metadata) std::array<char, 65536> buffer_;
};

} // namespace

std::unique_ptr<DirectoryMarks> makeFanotifyMarks() {
    FileDescriptor queue(::fanotify_init(
        FAN_CLASS_NOTIF | FAN_REPORT_DFID_NAME | FAN_CLOEXEC | FAN_NONBLOCK, O_RDONLY));
    if (!queue.isOpen()) return nullptr;
    return std::make_unique<FanotifyMarks>(std::move(queue));
}

} // namespace tovi::platform
