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

struct KernelLimit {
    std::string_view name; // as sysctl(8) knows it
    std::size_t number = 0;
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

    /// How many directories the user may have marked, by all programs together.
    virtual KernelLimit limit() const = 0;
};

/// Both give none where the kernel does not let this user have one more.
std::unique_ptr<DirectoryMarks> makeInotifyMarks();
std::unique_ptr<DirectoryMarks> makeFanotifyMarks();

/// The lower of two limits, such as "fs.inotify.max_user_watches"; `fallback` stands for the first
/// where the kernel does not tell.
KernelLimit lowerLimit(std::string_view first, std::string_view second, std::size_t fallback);

} // namespace tovi::platform
