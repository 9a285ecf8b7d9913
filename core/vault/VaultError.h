#pragma once

#include <stdexcept>
#include <string>

namespace tovi {

/// The error of the vault; `what()` is the whole sentence for the user.
class VaultError : public std::runtime_error {
  public:
    enum class Kind {
        io,
        alreadyCreated,
        locked,
        passwordTooShort,
        invalidPasswordOrDamagedVault,
        invalidFormat,
        unsupportedFile,
        notAvailableLocally,
        sourceChanged,
        destinationExists,
        unsafePath,
        busy,
        itemNotFound,
        damagedFile,
    };

    /// Every kind but `io`, which says what failed.
    explicit VaultError(Kind kind);
    static VaultError io(const std::string& detail);
    /// `io` with the system's text for `code`, an errno value.
    static VaultError system(int code);

    Kind kind() const { return kind_; }

  private:
    VaultError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}

    Kind kind_;
};

} // namespace tovi
