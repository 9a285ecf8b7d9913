#include "platform/Trash.h"

#include "base/SystemError.h"
#include "base/Text.h"
#include "platform/linux/MoveWithoutReplacing.h"
#include "platform/linux/TrashDirectory.h"
#include "platform/linux/TrashNote.h"

#include <optional>

#include <fcntl.h>
#include <sys/stat.h>

namespace tovi::platform {
namespace {

constexpr unsigned maximumAttempts = 100;

TrashError refusal(const std::string& path, const std::string& reason) {
    return TrashError("The item could not be moved to the Trash: " + printable(path) + ": " +
                      reason);
}

/// Moves the item into one trash; nothing if the file system there turns out to be another one.
std::optional<TrashedItem> moveInto(const TrashDirectory& trash, const DirectoryEntry& item,
                                    const FileAttributes& attributes, Date now,
                                    const Trash::Announce& announce) {
    for (unsigned attempt = 1; attempt <= maximumAttempts; ++attempt) {
        const std::string name = trashName(item.name(), attempt, trash.longestName());
        const DirectoryEntry destination = trash.item(name);
        const DirectoryEntry note = trash.note(name);
        if (destination.attributes() || note.attributes()) continue;

        announce(destination.path());
        if (!trash.writeNote(note, item.path(), now)) continue;
        try {
            moveWithoutReplacing(item, destination);
        } catch (const std::system_error& error) {
            ::unlinkat(note.directory().get(), note.name(), 0);
            if (error.code() == std::errc::file_exists) continue;
            if (error.code() == std::errc::cross_device_link) return std::nullopt;
            throw;
        }
        std::error_code syncError = destination.syncDirectory();
        if (const auto sourceError = item.syncDirectory()) syncError = sourceError;
        if (attributes.type == FileType::directory) trash.recordDirectorySize(name);
        return TrashedItem{destination.path(), syncError};
    }
    throw refusal(item.path(), "No free name was found in the Trash");
}

} // namespace

SystemTrash::SystemTrash(std::string dataHome, Clock clock)
    : dataHome_(std::move(dataHome)), clock_(std::move(clock)) {}

TrashedItem SystemTrash::move(const DirectoryEntry& item, const Announce& announce) {
    try {
        const auto attributes = item.attributes();
        if (!attributes) throw systemError(item.path(), ENOENT);
        const FileAttributes parent = attributesOf(item.directory(), item.directoryPath());

        // The device numbers tell only where trying is useless: within one of them, a bind mount
        // or a subvolume may still be out of a rename's reach.
        if (const auto home = TrashDirectory::ofHome(dataHome_, parent.device)) {
            if (auto moved = moveInto(*home, item, *attributes, clock_(), announce)) return *moved;
        }
        const OpenDirectory top = topDirectoryOf(item);
        for (const auto open : {TrashDirectory::sharedAt, TrashDirectory::ownAt}) {
            const auto trash = open(top);
            if (!trash) continue;
            if (auto moved = moveInto(*trash, item, *attributes, clock_(), announce)) return *moved;
        }
    } catch (const std::system_error& error) {
        throw refusal(item.path(), printable(error.what()));
    }
    throw refusal(item.path(), "Its file system has no Trash that can be used");
}

void SystemTrash::forget(const std::string& trashedPath, const std::string& originalPath) {
    const auto trash = TrashDirectory::containing(trashedPath);
    if (trash) trash->forget(std::string(lastPathComponent(trashedPath)), originalPath);
}

} // namespace tovi::platform
