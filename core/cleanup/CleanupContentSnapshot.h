#pragma once

#include "core/cleanup/CleanupFileIdentity.h"

namespace tovi {

/// The identity and the content of an item at one moment.
struct CleanupContentSnapshot {
    CleanupFileIdentity identity;
    /// 64 lower-case hexadecimal digits: SHA-256 of a file's content; of a bundle's entries, in
    /// byte order of their paths, the path, type, and identity of each but its device.
    std::string sha256;

    friend bool operator==(const CleanupContentSnapshot&, const CleanupContentSnapshot&) = default;
};

} // namespace tovi
