#pragma once

#include "platform/DirectoryEntry.h"

namespace tovi::platform {

/// The two ways of moving an item without replacing anything. Neither syncs a directory at the
/// end; both throw `std::system_error` where nothing was moved.
void moveWithoutReplacing(const DirectoryEntry& from, const DirectoryEntry& to);
void moveByLinking(const DirectoryEntry& from, const DirectoryEntry& to);

/// Removes `from` if it and `to` are one file.
void removeLinkedName(const DirectoryEntry& from, const DirectoryEntry& to);

} // namespace tovi::platform
