#pragma once

#include "core/vault/VaultKeys.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

struct evp_cipher_ctx_st;

namespace tovi::vault {

using Nonce = std::array<unsigned char, nonceSize>;

/// AES-256-GCM (NIST SP 800-38D) in combined form: nonce, ciphertext, tag. One object works in one
/// direction and on one thread at a time; its key schedule is wiped at the end.
class AesGcm {
  public:
    enum class Direction { seal, open };

    AesGcm(Direction direction, KeyBytes key);

    /// `combined` has room for exactly `plaintext` and the overhead of 28 bytes.
    void seal(std::span<const std::byte> plaintext, std::string_view associatedData,
              const Nonce& nonce, std::span<std::byte> combined);

    /// False where the authentication fails; `plaintext` then holds nothing of use. `plaintext` has
    /// room for exactly `combined` without its overhead, and may be the same memory further on.
    [[nodiscard]] bool open(std::span<const std::byte> combined, std::string_view associatedData,
                            std::span<std::byte> plaintext);

  private:
    struct Free {
        void operator()(evp_cipher_ctx_st* context) const;
    };
    std::unique_ptr<evp_cipher_ctx_st, Free> context_;
};

} // namespace tovi::vault
