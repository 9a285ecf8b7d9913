#pragma once

#include "app/preferences/Preferences.h"
#include "core/indexing/FileIndexer.h"
#include "platform/Bookmark.h"

#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// The grant of a folder that the user chose: its path with the links resolved, and its bookmark.
/// Blocks. Throws `IntelligenceError` for a folder that cannot be connected.
FolderGrant makeGrant(const std::string& folder, const FileIndexer& indexer,
                      platform::Bookmarks& bookmarks);

/// The grant as the disk has it now. A folder that was renamed is found again: the grant then has
/// its new path and a new bookmark. A folder that is missing, closed to the user, in the Trash, or
/// another one of the same name, such as the empty directory of a disk that is away, is not
/// available; nothing else of the grant changes. Blocks.
FolderGrant checkedGrant(const FolderGrant& grant, platform::Bookmarks& bookmarks);

/// Adds `grant` to `roots`, or renews the one of that path where it was lost. Gives the sentence
/// for the user where the folder is in an available root already.
std::optional<std::string> addGrant(std::vector<FolderGrant>& roots, const FolderGrant& grant);

} // namespace tovi
