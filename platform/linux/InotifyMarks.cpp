#include "base/SystemError.h"
#include "platform/linux/DirectoryMarks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <fstream>

#include <sys/inotify.h>

namespace tovi::platform {
namespace {

constexpr std::uint32_t itselfMask = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t entriesMask = itselfMask | IN_CREATE | IN_DELETE | IN_MOVE | IN_MODIFY |
                                      IN_CLOSE_WRITE | IN_ATTRIB | IN_EXCL_UNLINK;

class InotifyMarks final : public DirectoryMarks {
  public:
    explicit InotifyMarks(FileDescriptor queue) : queue_(std::move(queue)) {}

    int descriptor() const override { return queue_.get(); }

    MarkKey add(const FileDescriptor& directory, Scope scope) override {
        const std::string path = "/proc/self/fd/" + std::to_string(directory.get());
        // A directory that is also the ancestor of a root keeps what it is marked for.
        const std::uint32_t mask = scope == Scope::entries ? entriesMask : itselfMask | IN_MASK_ADD;
        const int watch = ::inotify_add_watch(queue_.get(), path.c_str(), mask);
        if (watch < 0) throw systemError(path);
        return std::to_string(watch);
    }

    void remove(const MarkKey& key) override {
        int watch = -1;
        std::from_chars(key.data(), key.data() + key.size(), watch);
        ::inotify_rm_watch(queue_.get(), watch);
    }

    bool read(const std::function<void(const MarkNotice&)>& receive) override {
        const ssize_t count = ::read(queue_.get(), buffer_.data(), buffer_.size());
        if (count <= 0) return false;
        for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
            inotify_event event{};
            std::memcpy(&event, buffer_.data() + at, sizeof event);
            const char* name = buffer_.data() + at + sizeof event;
            at += sizeof event + event.len;
            MarkNotice notice;
            if ((event.mask & IN_Q_OVERFLOW) == 0) notice.key = std::to_string(event.wd);
            if (event.len > 0) notice.name = name;
            notice.isDirectory = (event.mask & IN_ISDIR) != 0 || event.len == 0;
            notice.isGone = (event.mask & (IN_DELETE_SELF | IN_UNMOUNT | IN_IGNORED)) != 0;
            notice.isMoved = (event.mask & IN_MOVE_SELF) != 0;
            receive(notice);
        }
        return true;
    }

    KernelLimit limit() const override {
        return lowerLimit("fs.inotify.max_user_watches", "user.max_inotify_watches", 8192);
    }

  private:
    FileDescriptor queue_;
    alignas(inotify_event) std::array<char, 65536> buffer_;
};

} // namespace

std::unique_ptr<DirectoryMarks> makeInotifyMarks() {
    FileDescriptor queue(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!queue.isOpen()) return nullptr;
    return std::make_unique<InotifyMarks>(std::move(queue));
}

KernelLimit lowerLimit(std::string_view first, std::string_view second, std::size_t fallback) {
    const auto read = [](std::string_view name) -> std::optional<std::size_t> {
        std::string path = "/proc/sys/" + std::string(name);
        std::replace(path.begin(), path.end(), '.', '/');
        std::size_t number = 0;
        return std::ifstream(path) >> number ? std::optional(number) : std::nullopt;
    };
    const KernelLimit usual{first, read(first).value_or(fallback)};
    const KernelLimit other{second, read(second).value_or(usual.number)};
    return other.number < usual.number ? other : usual;
}

} // namespace tovi::platform
