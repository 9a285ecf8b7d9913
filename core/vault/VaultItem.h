#pragma once

#include "base/Date.h"
#include "base/Uuid.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tovi {

/// One encrypted copy, as the vault's manifest records it.
struct VaultItem {
    Uuid id;
    std::string name;      // one path component, UTF-8
    std::int64_t size = 0; // of the plaintext, in bytes
    Date importedAt;
    std::string sha256; // of the plaintext, 64 lower-case hexadecimal digits
    /// The original's "com.apple.quarantine" attribute, raw bytes.
    std::optional<std::string> quarantine;

    friend bool operator==(const VaultItem&, const VaultItem&) = default;
};

enum class VaultStatus { notCreated, locked, unlocked };

} // namespace tovi
