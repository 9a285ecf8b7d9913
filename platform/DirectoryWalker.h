#pragma once

#include "platform/FileAttributes.h"

#include <stop_token>
#include <string>
#include <string_view>
#include <system_error>

namespace tovi::platform {

/// One entry met by a walk; valid during the call that receives it.
class WalkItem {
  public:
    virtual const std::string& path() const = 0; // absolute
    virtual std::string_view name() const = 0;
    virtual const FileDescriptor& directory() const = 0; // open, and holds the item
    /// From the directory entry where it tells, else from the attributes.
    virtual FileType type() = 0;
    /// Reads them on the first call; throws `std::system_error`.
    virtual const FileAttributes& attributes() = 0;

  protected:
    ~WalkItem() = default;
};

/// A directory that a walk has opened and listed; valid during the call that receives it.
class WalkDirectory {
  public:
    virtual const std::string& path() const = 0; // absolute
    virtual const FileDescriptor& descriptor() const = 0;
    virtual bool contains(std::string_view name) const = 0;

  protected:
    ~WalkDirectory() = default;
};

/// Decides what a walk does. All calls come from the walking thread.
class WalkVisitor {
  public:
    enum class Step { skip, descend };

    virtual ~WalkVisitor() = default;

    /// After a directory was listed, before its entries are visited; the root comes first.
    virtual void enter(const WalkDirectory& directory) = 0;

    /// Every entry of the directory entered last, in byte order of the names. A directory for
    /// which it answers `descend` is walked before the next entry.
    virtual Step visit(WalkItem& item) = 0;

    /// After the last entry of a directory that was entered.
    virtual void leave() = 0;

    /// A directory that could not be listed, whole or from here on, or an item whose attributes
    /// could not be read inside `visit`. The walk goes on.
    virtual void failed(const std::string& path, const std::system_error& error) = 0;
};

/// Walks the tree below `root` on descriptors: no link is followed, no path is resolved twice, at
/// most one attribute call is made an entry, a directory that contains itself is not entered again
/// (ELOOP), and depth is limited by memory only. Throws `std::system_error` where the root itself
/// cannot be listed, and `Cancelled` between two entries.
void walkDirectory(const std::string& root, WalkVisitor& visitor, const std::stop_token& stop);

/// As above, from a directory that is open for reading; `path` is its name.
void walkDirectory(FileDescriptor root, const std::string& path, WalkVisitor& visitor,
                   const std::stop_token& stop);

} // namespace tovi::platform
