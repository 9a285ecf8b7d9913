#pragma once

#include "platform/FileAttributes.h"

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <system_error>

namespace tovi::platform {

/// One entry met by a walk; valid during the call that receives it.
class WalkItem {
  public:
    virtual const std::string& path() const = 0; // absolute
    virtual const char* name() const = 0;
    /// From the directory entry where it tells, else from the attributes.
    virtual FileType type() = 0;
    /// Reads them on the first call; throws `std::system_error`.
    virtual const FileAttributes& attributes() = 0;

  protected:
    ~WalkItem() = default;
};

/// A directory the walk has opened and listed.
struct WalkDirectory {
    const std::string& path; // absolute
    const FileDescriptor& descriptor;
    const FileAttributes& attributes;
    const std::vector<std::string_view>& names; // sorted by bytes
};

/// Decides what a walk does. All calls come from the walking thread.
class WalkVisitor {
  public:
    enum class Step { skip, descend };

    virtual ~WalkVisitor() = default;

    /// Every entry but "." and "..", the entries of one directory in byte order of their names,
    /// a directory's own entries right after it. `descend` matters for directories only.
    virtual Step visit(WalkItem& item) = 0;

    /// After a directory was listed, before its entries are visited; the root comes first.
    virtual void enter(const WalkDirectory& directory) = 0;

    /// After the last entry of a directory that was entered.
    virtual void leave() = 0;

    /// A directory that could not be opened or listed, or an item whose attributes failed inside
    /// `visit`. The walk goes on.
    virtual void failed(const std::string& path, const std::system_error& error) = 0;
};

/// Walks the tree below `root` with descriptors only: no link is followed, no path is resolved
/// twice, at most one attribute call is made an entry, and a directory is entered only if it is
/// the one that was seen. Throws `std::system_error` where the root itself cannot be listed and
/// `Cancelled` between two entries.
void walkDirectory(const std::string& root, WalkVisitor& visitor, const std::stop_token& stop);

} // namespace tovi::platform
