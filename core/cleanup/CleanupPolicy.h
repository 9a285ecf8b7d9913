#pragma once

#include "core/cleanup/CleanupCandidate.h"
#include "core/cleanup/CleanupDiscoveryMetadata.h"
#include "platform/Availability.h"
#include "platform/FileAttributes.h"

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// Folders of the user's that have a meaning for cleanup, absolute.
struct CleanupFolders {
    std::string home;
    std::string userCache;                // where programs keep caches, on Linux ~/.cache
    std::vector<std::string> downloads{}; // besides `Downloads` in the home folder
};

/// What is the same for all items of one scan. Paths are standardized, their links resolved.
struct CleanupContext {
    CleanupContext(const std::string& root, const CleanupFolders& folders,
                   const std::vector<std::string>& excludedPaths,
                   const CleanupDiscoveryMetadata& metadata,
                   const platform::Availability& availability);

    const CleanupDiscoveryMetadata& metadata;
    const platform::Availability& availability;
    std::string root;
    std::string home;
    std::vector<std::string> excluded;
    std::string userCache;
    std::vector<std::string> cacheRoots; // the user's cache last
    std::vector<std::string> downloads;
};

/// One item met on the disk, in an open directory.
struct CleanupItem {
    const std::string& path; // below the root
    const FileDescriptor& directory;
    const platform::FileAttributes& attributes;
};

/// Decides what is proposed for cleanup, and in which category: the first that fits of unused
/// apps, screenshots, installers, caches and logs, downloads, large files. Changes nothing.
class CleanupPolicy {
  public:
    CleanupPolicy(const CleanupContext& context, Date now) : context_(context), now_(now) {}

    /// Whether no item at or below this folder is ever proposed. Judges its own name and place,
    /// not the folders above it.
    bool excludesFolder(const std::string& path) const;

    /// The same for every folder from the root down to the one that holds the item.
    bool excludesPlace(const std::string& path) const;

    /// The category of a regular file in a place that is not excluded, if it has any.
    std::optional<CleanupCategory> category(const CleanupItem& file) const;

    /// A regular file or an application bundle in a place that is not excluded, if it is to be
    /// proposed. Bundles that cannot be moved say why. Throws `Cancelled`.
    std::optional<CleanupCandidate> candidate(const CleanupItem& item,
                                              const std::stop_token& stop) const;

    /// The same for any path, checked from the root down. Nothing for what is not below the root,
    /// is reached through a link or cannot be looked at.
    std::optional<CleanupCandidate> candidateAt(const std::string& path,
                                                const std::stop_token& stop) const;

  private:
    bool isHidden(const std::string& path) const;
    std::optional<CleanupCandidate> application(const CleanupItem& bundle,
                                                const std::stop_token& stop) const;

    const CleanupContext& context_;
    Date now_;
};

/// Whether the name is that of a folder that is shown as an application.
bool isApplicationName(std::string_view name);

} // namespace tovi
