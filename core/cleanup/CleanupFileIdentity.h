#pragma once

#include "base/Date.h"
#include "platform/FileAttributes.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tovi {

/// Why a folder could not be scanned or an item not be identified; `what()` is the whole sentence.
class CleanupScanError : public std::runtime_error {
    using runtime_error::runtime_error;
};

/// An item as the file system reports it, links not followed. Members are those of stat(2).
struct CleanupFileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0; // bytes
    std::int64_t modifiedSeconds = 0;
    std::int64_t modifiedNanoseconds = 0;
    std::int64_t changedSeconds = 0;
    std::int64_t changedNanoseconds = 0;

    static CleanupFileIdentity of(const platform::FileAttributes& attributes);

    /// Of the regular file at an absolute path. Throws `CleanupScanError` for anything else.
    static CleanupFileIdentity read(const std::string& path);

    Date modifiedAt() const;

    /// Whether both are of one item that may have been renamed in between, which changes its
    /// status, or met again after a restart, which may change the number of its device.
    bool isMoved(const CleanupFileIdentity& other) const;

    friend bool operator==(const CleanupFileIdentity&, const CleanupFileIdentity&) = default;
};

} // namespace tovi
