#include "core/actions/FileChecks.h"

#include "base/Text.h"
#include "core/actions/ActionError.h"

#include <unicode/uchar.h>

namespace tovi {
namespace {

using platform::DirectoryEntry;
using platform::FileType;

constexpr const char* outside =
    "Only files inside currently authorized folders can be changed. Symbolic links are excluded.";

DirectoryEntry openEntry(const std::string& path) {
    try {
        return DirectoryEntry::open(path);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::not_a_directory) throw ActionError(outside);
        throw ActionError("The file is unavailable or no longer a regular file.");
    }
}

bool hasControlCharacter(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint character = codePointAt(text, at);
        const auto category = u_charType(character.value);
        if (category == U_CONTROL_CHAR || category == U_FORMAT_CHAR) return true;
        at += character.length;
    }
    return false;
}

} // namespace

FileChecks::FileChecks(const std::vector<std::string>& roots,
                       const platform::Availability& availability, const std::stop_token& stop)
    : folders_(roots), availability_(availability), stop_(stop) {}

std::string FileChecks::containedPath(const std::string& path) const {
    const auto resolved = resolvedFolders(path);
    if (!resolved || !folders_.contains(*resolved)) throw ActionError(outside);
    if (isProtectedPath(*resolved)) {
        throw ActionError("System, application, hidden and Library paths are protected.");
    }
    if (!isValidUtf8(*resolved)) {
        throw ActionError("The path is not valid UTF-8 and cannot be kept in the history: " +
                          printable(*resolved));
    }
    return *resolved;
}

void FileChecks::requireContained(const std::string& path) const {
    if (containedPath(path) != path) throw ActionError(outside);
}

CheckedFile FileChecks::check(const std::string& path) const {
    return checkAgain(containedPath(path));
}

CheckedFile FileChecks::checkAgain(const std::string& path) const {
    requireContained(path);
    const DirectoryEntry entry = openEntry(path);
    std::optional<platform::FileAttributes> attributes;
    try {
        attributes = entry.attributes();
    } catch (const std::system_error&) {
        attributes.reset();
    }
    if (!attributes) throw ActionError("The file is unavailable or no longer a regular file.");
    if (attributes->type == FileType::symbolicLink) throw ActionError(outside);
    if (attributes->type != FileType::regular) {
        throw ActionError("Only regular files can be changed. Folders and symlinks are protected.");
    }
    if (!availability_.isAvailableLocally(path)) {
        throw ActionError("This file is not available locally. No content was read.");
    }
    try {
        return {entry, takeSnapshot(entry, availability_, stop_), attributes->linkCount,
                attributes->changed};
    } catch (const SnapshotError& error) {
        throw ActionError(error.what());
    }
}

CheckedFile FileChecks::checkReviewed(const PlannedFileAction& item) const {
    CheckedFile file = checkAgain(item.sourcePath);
    if (!file.snapshot.matches(item.snapshot)) {
        throw ActionError("File changed since review: " + item.sourcePath +
                          ". Create a fresh plan.");
    }
    if (item.operation == FileOperation::rename && item.destinationPath) {
        const std::string& destination = *item.destinationPath;
        const DirectoryEntry target =
            file.entry.sibling(std::string(lastPathComponent(destination)));
        bool isFree = false;
        try {
            isFree = !target.attributes();
        } catch (const std::system_error&) {
            isFree = false;
        }
        if (target.path() != destination || !isFree) {
            throw ActionError("Rename destination changed or already exists.");
        }
    }
    return file;
}

bool FileChecks::isWhole(const RetainedFile& file, bool read) {
    try {
        const auto known = retainedAt_.find(file.path);
        if (!read && known != retainedAt_.end()) {
            requireContained(file.path);
            const DirectoryEntry entry = openEntry(file.path);
            const auto found = entry.attributes();
            if (found && found->changed.tv_sec == known->second.tv_sec &&
                found->changed.tv_nsec == known->second.tv_nsec) {
                return leadsTo(entry, file.snapshot);
            }
        }
        const CheckedFile checked = checkAgain(file.path);
        retainedAt_[file.path] = checked.changed;
        return checked.snapshot.matches(file.snapshot);
    } catch (const std::runtime_error&) {
        return false;
    }
}

void FileChecks::checkRetained(const std::vector<RetainedFile>& files, const std::string& digest) {
    for (const RetainedFile& file : files) {
        if (!isWhole(file, file.snapshot.digest == digest)) {
            throw ActionError("The retained copy changed or disappeared. No further duplicates "
                              "will be moved.");
        }
    }
}

std::string validatedName(const std::optional<std::string>& newName) {
    constexpr std::size_t longestName = 255;
    const std::string name(trimmed(newName.value_or("")));
    if (name.empty() || name.find_first_of(std::string_view("/:\0", 3)) != std::string::npos ||
        name.starts_with('.') || name.size() > longestName || !isValidUtf8(name)) {
        throw ActionError("Use a visible filename without slashes, colons or control characters.");
    }
    if (hasControlCharacter(name)) throw ActionError("Filename contains a control character.");
    return name;
}

} // namespace tovi
