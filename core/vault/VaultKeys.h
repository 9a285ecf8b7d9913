#pragma once

#include "base/Uuid.h"
#include "core/vault/VaultFormat.h"

#include <span>
#include <string_view>

namespace tovi::vault {

using KeyBytes = std::span<const unsigned char, keySize>;

/// The vault's key. It lives in a page of its own that is never swapped out, left out of core
/// dumps, empty in a forked child and wiped at the end.
class VaultKey {
  public:
    /// Throws `VaultError`, as for a wrong password, where it is too long or not UTF-8.
    static void requireAcceptable(std::string_view password);

    /// PBKDF2 with HMAC-SHA-256 (RFC 8018), after `requireAcceptable`. Makes no copy of the
    /// password. Throws `VaultError`.
    static VaultKey derive(std::string_view password, const Salt& salt);

    VaultKey(VaultKey&& other) noexcept;
    VaultKey& operator=(VaultKey&& other) noexcept;
    VaultKey(const VaultKey&) = delete;
    VaultKey& operator=(const VaultKey&) = delete;
    ~VaultKey();

    KeyBytes bytes() const { return KeyBytes(page_, keySize); }

  private:
    VaultKey();

    unsigned char* page_;
};

/// The key of one item, HKDF with SHA-256 (RFC 5869) of the vault's key; wiped at the end.
class ItemKey {
  public:
    ItemKey(const VaultKey& vaultKey, const Uuid& item);
    ItemKey(const ItemKey&) = delete;
    ItemKey& operator=(const ItemKey&) = delete;
    ~ItemKey();

    KeyBytes bytes() const { return bytes_; }

  private:
    std::array<unsigned char, keySize> bytes_{};
};

} // namespace tovi::vault
