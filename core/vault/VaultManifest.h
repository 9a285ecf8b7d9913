#pragma once

#include "core/vault/AesGcm.h"
#include "core/vault/VaultItem.h"

#include <string>
#include <string_view>
#include <vector>

namespace tovi::vault {

/// What lies in the manifest file, in the clear but for the sealed item list.
struct Envelope {
    Salt salt{};
    std::string sealedManifest; // AES-GCM combined form
};

/// Throws `VaultError` (`invalidFormat`).
Envelope decodeEnvelope(std::string_view json);

/// The item list of an envelope. Throws `VaultError`: `invalidPasswordOrDamagedVault` where the key
/// does not open it, `invalidFormat` where what it opens is not a valid list.
std::vector<VaultItem> openManifest(const Envelope& envelope, const VaultKey& key);

/// The whole text of a manifest file. Throws `VaultError` (`io`) where it would exceed the limit.
std::string sealManifest(const std::vector<VaultItem>& items, const Salt& salt, const VaultKey& key,
                         const Nonce& nonce);

/// The plaintext of the item list and back; the latter throws `VaultError` (`invalidFormat`).
std::string encodeItems(const std::vector<VaultItem>& items);
std::vector<VaultItem> decodeItems(std::string_view json);

} // namespace tovi::vault
