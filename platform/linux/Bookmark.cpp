#include "platform/Bookmark.h"

#include "base/SystemError.h"

#include <array>
#include <climits>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <nlohmann/json.hpp>

namespace tovi::platform {
namespace {

using Json = nlohmann::ordered_json;

struct Identity {
    std::string path;
    std::uint64_t volume = 0;
    std::uint64_t inode = 0;
    Date createdAt;
    bool hasOtherNames = false; // hard links: another name must not be taken for this one
    std::optional<int> handleType;
    std::vector<std::uint8_t> handle;
};

// Room for the largest handle a file system may give (MAX_HANDLE_SZ).
struct HandleBuffer {
    alignas(file_handle) std::array<std::byte, sizeof(file_handle) + MAX_HANDLE_SZ> bytes{};
    file_handle* get() { return std::launder(reinterpret_cast<file_handle*>(bytes.data())); }
};

std::optional<Identity> decode(const std::string& bookmark) {
    const Json json = Json::parse(bookmark, nullptr, false);
    try {
        Identity identity{json.at("path"),
                          json.at("volume"),
                          json.at("inode"),
                          {json.at("createdAt")},
                          json.at("hasOtherNames"),
                          {},
                          {}};
        if (json.contains("handle")) {
            identity.handleType = json.at("handleType");
            json.at("handle").get_to(identity.handle);
        }
        return identity;
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

struct Handle {
    int type = 0;
    std::vector<std::uint8_t> bytes;
};

std::optional<Handle> handleOf(const DirectoryEntry& item) {
    HandleBuffer buffer;
    buffer.get()->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (::name_to_handle_at(item.directory().get(), item.name(), buffer.get(), &mount, 0) != 0) {
        return std::nullopt;
    }
    const auto* bytes = buffer.get()->f_handle;
    return Handle{buffer.get()->handle_type, {bytes, bytes + buffer.get()->handle_bytes}};
}

/// Whether an inode number that is the same is that of the same file: it may have been given to
/// another one since. The birth time tells, else the handle, which counts how often it was given.
bool isSameLife(const Identity& identity, const DirectoryEntry& entry,
                const FileAttributes& found) {
    if (found.hasBirthTime) return isSameFileDate(found.createdAt, identity.createdAt);
    if (!identity.handleType) return true;
    const auto handle = handleOf(entry);
    return !handle || (handle->type == *identity.handleType && handle->bytes == identity.handle);
}

bool isTheFile(const Identity& identity, const DirectoryEntry& entry) {
    const auto found = entry.attributes();
    return found && found->inode == identity.inode && isSameLife(identity, entry, *found) &&
           volumeNumber(entry.directory(), entry.path()) == identity.volume;
}

std::optional<std::string> lookAt(const Identity& identity, const std::string& path) {
    try {
        if (isTheFile(identity, DirectoryEntry::open(path))) return path;
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> lookBeside(const Identity& identity, const std::string& path) {
    try {
        const DirectoryEntry entry = DirectoryEntry::open(path);
        FileDescriptor readable(
            ::openat(entry.directory().get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(readable.get()), ::closedir);
        if (!listing) return std::nullopt;
        readable.release();
        while (const dirent* item = ::readdir(listing.get())) {
            if (item->d_ino != identity.inode) continue;
            const DirectoryEntry candidate = entry.sibling(item->d_name);
            if (isTheFile(identity, candidate)) return candidate.path();
        }
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::string> lookEverywhere(const Identity& identity) {
    if (!identity.handleType || identity.handle.size() > MAX_HANDLE_SZ) return std::nullopt;
    // Any open item of the file system will do: the nearest directory that is left.
    FileDescriptor anchor;
    for (std::string path = identity.path; !anchor.isOpen() && path.size() > 1;) {
        path.resize(path.rfind('/') == 0 ? 1 : path.rfind('/'));
        anchor = FileDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    HandleBuffer buffer;
    buffer.get()->handle_bytes = static_cast<unsigned>(identity.handle.size());
    buffer.get()->handle_type = *identity.handleType;
    std::memcpy(buffer.get()->f_handle, identity.handle.data(), identity.handle.size());
    const FileDescriptor file(::open_by_handle_at(anchor.get(), buffer.get(), O_PATH | O_CLOEXEC));
    if (!file.isOpen()) return std::nullopt;
    std::array<char, PATH_MAX> target{};
    const std::string link = "/proc/self/fd/" + std::to_string(file.get());
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    if (length <= 0) return std::nullopt;
    return lookAt(identity, std::string(target.data(), static_cast<std::size_t>(length)));
}

} // namespace

std::string SystemBookmarks::create(const DirectoryEntry& item) {
    const auto attributes = item.attributes();
    if (!attributes) throw systemError(item.path(), ENOENT);
    Json json;
    json["path"] = item.path();
    json["volume"] = volumeNumber(item.directory(), item.path());
    json["inode"] = attributes->inode;
    json["createdAt"] = attributes->createdAt.seconds;
    // A directory's links are its own "." and those of the directories in it.
    json["hasOtherNames"] = attributes->type != FileType::directory && attributes->linkCount > 1;
    if (const auto handle = handleOf(item)) {
        json["handleType"] = handle->type;
        json["handle"] = handle->bytes;
    }
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<Bookmarks::Location> SystemBookmarks::locate(const std::string& bookmark,
                                                           const std::string& likelyPath) {
    const auto identity = decode(bookmark);
    if (!identity) return std::nullopt;
    auto path = lookAt(*identity, identity->path);
    if (!path) path = lookAt(*identity, likelyPath);
    if (!identity->hasOtherNames) {
        if (!path) path = lookBeside(*identity, likelyPath);
        if (!path) path = lookBeside(*identity, identity->path);
        if (!path) path = lookEverywhere(*identity);
    }
    if (!path) return std::nullopt;
    return Location{*path, *path != identity->path};
}

} // namespace tovi::platform
