#include "core/vault/VaultError.h"

#include <system_error>

namespace tovi {
namespace {

const char* sentence(VaultError::Kind kind) {
    using Kind = VaultError::Kind;
    switch (kind) {
    case Kind::io:
        return "The Vault could not finish: ";
    case Kind::alreadyCreated:
        return "A Vault already exists here. Unlock it with its password.";
    case Kind::locked:
        return "Unlock your Vault first.";
    case Kind::passwordTooShort:
        return "Use a password or passphrase with at least 12 characters.";
    case Kind::invalidPasswordOrDamagedVault:
        return "The password is incorrect, or the Vault metadata is damaged.";
    case Kind::invalidFormat:
        return "This Vault format is unsupported or damaged.";
    case Kind::unsupportedFile:
        return "Choose a regular file. Compress folders, app bundles, aliases or files with "
               "resource forks into a ZIP first. Symbolic links are not supported.";
    case Kind::notAvailableLocally:
        return "This file is not available locally. Download it in Finder first, then add it to "
               "the Vault.";
    case Kind::sourceChanged:
        return "The original changed while it was being encrypted. Try again when it is no longer "
               "being edited.";
    case Kind::destinationExists:
        return "A file already exists at that destination. Choose another name.";
    case Kind::unsafePath:
        return "This location is not safe for a Vault operation. Choose a normal folder or file.";
    case Kind::busy:
        return "Another Vault operation is using this storage. Try again in a moment.";
    case Kind::itemNotFound:
        return "This file is no longer in the Vault.";
    case Kind::damagedFile:
        return "The encrypted file is damaged or incomplete. No restored file was saved.";
    }
    return "";
}

} // namespace

VaultError::VaultError(Kind kind) : VaultError(kind, sentence(kind)) {}

VaultError VaultError::io(const std::string& detail) {
    return {Kind::io, sentence(Kind::io) + detail};
}

VaultError VaultError::system(int code) {
    return io(std::generic_category().message(code));
}

} // namespace tovi
