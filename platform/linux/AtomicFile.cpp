#include "platform/AtomicFile.h"

#include "base/SystemError.h"

#include <memory>
#include <random>

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

namespace tovi::platform {
namespace {

constexpr std::string_view unfinishedSuffix = ".new";

/// The file that holds the new bytes until it takes its place; removed if it does not.
class Replacement {
  public:
    explicit Replacement(const DirectoryEntry& target)
        : entry_(target.sibling(
              fmt::format("{}.{:08x}{}", target.name(), std::random_device{}(), unfinishedSuffix))),
          file_(::openat(entry_.directory().get(), entry_.name(),
                         O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)) {
        if (!file_.isOpen()) throw systemError(entry_.path());
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() {
        if (!placed_) ::unlinkat(entry_.directory().get(), entry_.name(), 0);
    }

    void write(std::string_view bytes) {
        // The mask of the process may have taken rights from the mode above.
        if (::fchmod(file_.get(), 0600) != 0) throw systemError(entry_.path());
        writeAll(file_, bytes, entry_.path());
        if (::fsync(file_.get()) != 0) throw systemError(entry_.path());
    }

    void placeAt(const DirectoryEntry& target) {
        const int directory = entry_.directory().get();
        if (::renameat(directory, entry_.name(), directory, target.name()) != 0) {
            throw systemError(target.path());
        }
        placed_ = true;
    }

  private:
    DirectoryEntry entry_;
    FileDescriptor file_;
    bool placed_ = false;
};

} // namespace

void writeAll(const FileDescriptor& file, std::string_view bytes, const std::string& path) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file.get(), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) throw systemError(path);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void replaceFile(const DirectoryEntry& file, std::string_view bytes) {
    Replacement replacement(file);
    replacement.write(bytes);
    replacement.placeAt(file);
    if (const auto error = file.syncDirectory()) throw systemError(file.path(), error.value());
}

void removeUnfinishedReplacements(const DirectoryEntry& file) {
    const std::string start = std::string(file.name()) + ".";
    FileDescriptor readable(
        ::openat(file.directory().get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(readable.get()), ::closedir);
    if (!listing) return;
    readable.release();
    while (const dirent* item = ::readdir(listing.get())) {
        const std::string_view name = item->d_name;
        if (name.starts_with(start) && name.ends_with(unfinishedSuffix)) {
            ::unlinkat(file.directory().get(), item->d_name, 0);
        }
    }
}

std::optional<std::string> readFile(const DirectoryEntry& file, std::size_t limit) {
    try {
        const FileDescriptor source = file.openRegularFile();
        std::string bytes;
        for (;;) {
            constexpr std::size_t step = 65'536;
            const std::size_t length = bytes.size();
            bytes.resize(length + step);
            const ssize_t got = ::read(source.get(), bytes.data() + length, step);
            if (got < 0 && errno != EINTR) throw systemError(file.path());
            bytes.resize(length + static_cast<std::size_t>(got < 0 ? 0 : got));
            if (got == 0) return bytes;
            if (bytes.size() > limit) throw systemError(file.path(), EFBIG);
        }
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::no_such_file_or_directory) return std::nullopt;
        throw;
    }
}

} // namespace tovi::platform
