#include "platform/linux/TrashDirectory.h"

#include "base/SystemError.h"
#include "base/Text.h"
#include "platform/AtomicFile.h"
#include "platform/Trash.h"
#include "platform/linux/TrashNote.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

#include <fcntl.h>
#include <fmt/format.h>
#include <fts.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi::platform {
namespace {

constexpr int directoryFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t noteLimit = 65'536;
constexpr std::size_t sizesLimit = 16'777'216;

std::string below(const std::string& directory, const std::string& name) {
    return directory == "/" ? "/" + name : directory + "/" + name;
}

std::string above(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

struct stat statusOf(const FileDescriptor& item, const std::string& path) {
    struct stat status {};
    if (::fstat(item.get(), &status) != 0) throw systemError(path);
    return status;
}

/// Opens a directory of the user's own, making it if it is missing and `create` is set.
OpenDirectory openOwn(const OpenDirectory& parent, const std::string& name, bool create) {
    const std::string path = below(parent.path, name);
    FileDescriptor directory(::openat(parent.descriptor->get(), name.c_str(), directoryFlags));
    if (!directory.isOpen() && errno == ENOENT && create) {
        if (::mkdirat(parent.descriptor->get(), name.c_str(), 0700) != 0 && errno != EEXIST) {
            throw systemError(path);
        }
        directory =
            FileDescriptor(::openat(parent.descriptor->get(), name.c_str(), directoryFlags));
    }
    if (!directory.isOpen()) throw systemError(path);
    if (statusOf(directory, path).st_uid != ::geteuid()) {
        throw TrashError("The Trash cannot be used because it belongs to someone else: " +
                         printable(path));
    }
    return {std::make_shared<FileDescriptor>(std::move(directory)), path};
}

struct Volume {
    std::uint64_t mount;
    std::uint64_t device;
    bool operator==(const Volume&) const = default;
};

Volume volumeOf(const FileDescriptor& directory, const std::string& path) {
    struct statx found = {};
    if (::statx(directory.get(), "", AT_EMPTY_PATH, STATX_MNT_ID, &found) != 0) {
        throw systemError(path);
    }
    const bool known = (found.stx_mask & STATX_MNT_ID) != 0;
    return {known ? found.stx_mnt_id : 0, statusOf(directory, path).st_dev};
}

/// The bytes that a tree takes on the disk, a file with several names counted once; nothing if a
/// part of it cannot be read.
std::optional<std::int64_t> diskUsage(const std::string& path) {
    std::string root = path;
    char* roots[] = {root.data(), nullptr};
    const std::unique_ptr<FTS, int (*)(FTS*)> walk(
        ::fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR, nullptr), ::fts_close);
    if (!walk) return std::nullopt;
    std::int64_t total = 0;
    std::set<std::pair<dev_t, ino_t>> counted;
    while (const FTSENT* item = ::fts_read(walk.get())) {
        if (item->fts_info == FTS_DP) continue;
        if (item->fts_info == FTS_DNR || item->fts_info == FTS_ERR || item->fts_info == FTS_NS) {
            return std::nullopt;
        }
        const struct stat& status = *item->fts_statp;
        if (status.st_nlink > 1 && !S_ISDIR(status.st_mode) &&
            !counted.emplace(status.st_dev, status.st_ino).second) {
            continue;
        }
        constexpr std::int64_t blockSize = 512;
        total += status.st_blocks * blockSize;
    }
    return total;
}

} // namespace

OpenDirectory topDirectoryOf(const DirectoryEntry& item) {
    OpenDirectory top{
        std::make_shared<FileDescriptor>(::openat(item.directory().get(), ".", directoryFlags)),
        item.directoryPath()};
    if (!top.descriptor->isOpen()) throw systemError(top.path);
    const Volume volume = volumeOf(*top.descriptor, top.path);
    while (top.path != "/") {
        OpenDirectory parent{
            std::make_shared<FileDescriptor>(::openat(top.descriptor->get(), "..", directoryFlags)),
            above(top.path)};
        if (!parent.descriptor->isOpen()) throw systemError(parent.path);
        if (volumeOf(*parent.descriptor, parent.path) != volume) break;
        top = std::move(parent);
    }
    return top;
}

TrashDirectory::TrashDirectory(OpenDirectory base, std::string topPath, bool create)
    : base_(std::move(base)),
      topPath_(std::move(topPath)),
      items_(openOwn(base_, "files", create).descriptor),
      notes_(openOwn(base_, "info", create).descriptor) {}

std::optional<TrashDirectory> TrashDirectory::ofHome(const std::string& dataHome,
                                                     std::uint64_t device) {
    std::error_code error;
    std::filesystem::create_directories(dataHome, error);
    // The user may keep the folder behind a link; the trash itself may not be one.
    const std::string path = std::filesystem::canonical(dataHome, error).string();
    if (error) return std::nullopt;
    OpenDirectory parent{std::make_shared<FileDescriptor>(openDirectory(path)), path};
    if (attributesOf(*parent.descriptor, path).device != device) return std::nullopt;
    return TrashDirectory(openOwn(parent, "Trash", true), "", true);
}

std::optional<TrashDirectory> TrashDirectory::sharedAt(const OpenDirectory& top) {
    const std::string path = below(top.path, ".Trash");
    FileDescriptor shared(::openat(top.descriptor->get(), ".Trash", directoryFlags));
    if (!shared.isOpen() || (statusOf(shared, path).st_mode & S_ISVTX) == 0) return std::nullopt;
    try {
        const OpenDirectory parent{std::make_shared<FileDescriptor>(std::move(shared)), path};
        return TrashDirectory(openOwn(parent, std::to_string(::getuid()), true), top.path, true);
    } catch (const std::exception&) {
        return std::nullopt; // the user's own trash beside it is tried next
    }
}

std::optional<TrashDirectory> TrashDirectory::ownAt(const OpenDirectory& top) {
    return TrashDirectory(openOwn(top, ".Trash-" + std::to_string(::getuid()), true), top.path,
                          true);
}

std::optional<TrashDirectory> TrashDirectory::containing(const std::string& trashedPath) {
    const std::string items = above(trashedPath);
    const std::string base = above(items);
    if (lastPathComponent(items) != "files") return std::nullopt;
    const std::string parent = above(base);
    std::string top;
    if (lastPathComponent(base).starts_with(".Trash-")) top = parent;
    if (lastPathComponent(parent) == ".Trash") top = above(parent);
    try {
        const OpenDirectory holder{std::make_shared<FileDescriptor>(openDirectory(parent)), parent};
        return TrashDirectory(openOwn(holder, std::string(lastPathComponent(base)), false), top,
                              false);
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

DirectoryEntry TrashDirectory::item(const std::string& name) const {
    return {items_, base_.path + "/files/" + name};
}

DirectoryEntry TrashDirectory::note(const std::string& itemName) const {
    return {notes_, base_.path + "/info/" + itemName + std::string(trashNoteSuffix)};
}

std::size_t TrashDirectory::longestName() const {
    constexpr long usual = 255;
    constexpr long shortest = 64; // leaves room for the number and the suffix
    const long limit = ::fpathconf(notes_->get(), _PC_NAME_MAX);
    return static_cast<std::size_t>(limit < shortest ? usual : limit);
}

bool TrashDirectory::writeNote(const DirectoryEntry& note, const std::string& originalPath,
                               Date now) const {
    const FileDescriptor file(::openat(notes_->get(), note.name(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen() && errno == EEXIST) return false;
    if (!file.isOpen()) throw systemError(note.path());
    try {
        const std::size_t skipped = topPath_ == "/" ? 1 : topPath_.size() + 1;
        writeAll(file,
                 trashNote(topPath_.empty() ? originalPath : originalPath.substr(skipped), now),
                 note.path());
        if (::fsync(file.get()) != 0) throw systemError(note.path());
        if (const auto error = note.syncDirectory()) throw systemError(note.path(), error.value());
    } catch (const std::system_error&) {
        ::unlinkat(notes_->get(), note.name(), 0);
        throw;
    }
    return true;
}

void TrashDirectory::rewriteDirectorySizes(const std::string& name,
                                           const std::string& newLine) const {
    const DirectoryEntry file(base_.descriptor, base_.path + "/directorysizes");
    const std::string old = readFile(file, sizesLimit).value_or("");
    const std::string ending = " " + percentEncoded(name);
    std::string lines;
    for (std::size_t at = 0; at < old.size();) {
        const std::size_t end = std::min(old.find('\n', at), old.size());
        const std::string_view line = std::string_view(old).substr(at, end - at);
        if (!line.ends_with(ending)) lines.append(line).append("\n");
        at = end + 1;
    }
    lines += newLine;
    if (lines != old) replaceFile(file, lines);
}

void TrashDirectory::recordDirectorySize(const std::string& name) const {
    try {
        const auto size = diskUsage(item(name).path());
        const auto attributes = note(name).attributes();
        if (!size || !attributes) return;
        rewriteDirectorySizes(name,
                              fmt::format("{} {} {}\n", *size,
                                          static_cast<std::int64_t>(attributes->modifiedAt.seconds),
                                          percentEncoded(name)));
    } catch (const std::system_error&) {
        return; // only a cache
    }
}

void TrashDirectory::forget(const std::string& name, const std::string& originalPath) const {
    try {
        const DirectoryEntry entry = note(name);
        const auto text = readFile(entry, noteLimit);
        if (!text || item(name).attributes()) return;
        auto original = pathOfTrashNote(*text);
        if (original && !original->starts_with('/')) original = below(topPath_, *original);
        // A crash may have left the note empty.
        if (!text->empty() && original != originalPath) return;
        ::unlinkat(notes_->get(), entry.name(), 0);
        entry.syncDirectory();
        rewriteDirectorySizes(name, "");
    } catch (const std::system_error&) {
        return; // a note without its item is harmless
    }
}

} // namespace tovi::platform
