#pragma once

#include "base/FileDescriptor.h"
#include "core/vault/FileCalls.h"
#include "platform/Availability.h"

#include <optional>
#include <string>

#include <sys/stat.h>

namespace tovi::vault {

/// A file that may be added to a vault, open for reading.
struct VaultSource {
    std::string path;
    std::string name;
    FileDescriptor file;
    struct stat before {}; // of `file`
    std::optional<std::string> quarantine;
    bool isQuarantineLeftOut = false; // it has one that is longer than a vault keeps

    /// Checks everything that can be checked before reading. Throws `VaultError`.
    static VaultSource open(FileCalls& calls, const platform::Availability& availability,
                            const std::string& vaultDirectory, const std::string& path);

    /// Throws `VaultError` (`sourceChanged`) where the file, or what its path names, is no longer
    /// what was opened.
    void requireUnchanged(FileCalls& calls) const;
};

/// The attribute that carries where a file came from, in the namespace of user attributes.
inline constexpr const char* quarantineAttribute = "user.com.apple.quarantine";

} // namespace tovi::vault
