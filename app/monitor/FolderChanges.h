#pragma once

#include <string>
#include <vector>

namespace tovi {

/// Tells of changes below folders, through a handler on the main thread that it was made with.
/// Used on the main thread.
class FolderChanges {
  public:
    virtual ~FolderChanges() = default;

    /// Watches these folders and no others.
    virtual void start(const std::vector<std::string>& paths) = 0;
    virtual void stop() = 0;
};

} // namespace tovi
