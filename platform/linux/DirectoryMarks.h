#pragma once

#include "base/FileDescriptor.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tovi::platform {

/// Identifies a marked directory whatever its path is now.
using MarkKey = std::string;

/// What the kernel says of a marked directory, or of the queue.
struct MarkNotice {
    MarkKey key;           // empty when the queue overflowed
    std::string_view name; // the entry concerned; empty if it is the directory itself
    bool isDirectory = false;
    bool isGone = false;  // the directory itself was deleted, or its file system unmounted
    bool isMoved = false; // the directory itself was renamed

    bool isOverflow() const { return key.empty(); }
};

/// One of the kernel's services that tell of changes in single directories.
class DirectoryMarks {
  public:
    enum class Scope {
        entries, // and the directory itself
        itself,  // its renaming and deletion only
    };

    virtual ~DirectoryMarks() = default;

    virtual int descriptor() const = 0;

    /// Marks an open directory; the same one again gives the same key. Throws
    /// `std::system_error`; its code is ENOSPC where no more may be marked.
    virtual MarkKey add(const FileDescriptor& directory, Scope scope) = 0;
    virtual void remove(const MarkKey& key) = 0;

    /// Hands over one buffer of notices; whether there were any. Does not wait.
    virtual bool read(const std::function<void(const MarkNotice&)>& receive) = 0;

    /// Half of what the user may mark.
    virtual std::size_t allowance() const = 0;
};

/// Both give none where the kernel does not let this user have one more.
std::unique_ptr<DirectoryMarks> makeInotifyMarks();
std::unique_ptr<DirectoryMarks> makeFanotifyMarks();

/// A number that the kernel keeps in a file of /proc; `fallback` where it does not.
std::size_t kernelNumber(const char* path, std::size_t fallback);

} // namespace tovi::platform
