#include "core/vault/VaultKeys.h"

#include "base/Text.h"
#include "core/vault/VaultError.h"

#include <cerrno>
#include <memory>
#include <string>
#include <utility>

#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/kdf.h>
#include <openssl/params.h>
#include <sys/mman.h>
#include <unistd.h>

namespace tovi::vault {
namespace {

std::size_t pageSize() {
    return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

unsigned char* allocatePage() {
    void* const page =
        ::mmap(nullptr, pageSize(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) throw VaultError::system(errno);
    if (::mlock(page, pageSize()) != 0 || ::madvise(page, pageSize(), MADV_DONTDUMP) != 0 ||
        ::madvise(page, pageSize(), MADV_WIPEONFORK) != 0) {
        const int code = errno;
        ::munmap(page, pageSize());
        throw VaultError::system(code);
    }
    return static_cast<unsigned char*>(page);
}

EVP_KDF* hkdf() {
    static EVP_KDF* const algorithm = EVP_KDF_fetch(nullptr, OSSL_KDF_NAME_HKDF, nullptr);
    return algorithm;
}

} // namespace

VaultKey::VaultKey() : page_(allocatePage()) {}

VaultKey::VaultKey(VaultKey&& other) noexcept : page_(std::exchange(other.page_, nullptr)) {}

VaultKey& VaultKey::operator=(VaultKey&& other) noexcept {
    std::swap(page_, other.page_);
    return *this;
}

VaultKey::~VaultKey() {
    if (page_ == nullptr) return;
    OPENSSL_cleanse(page_, keySize);
    ::munmap(page_, pageSize());
}

void VaultKey::requireAcceptable(std::string_view password) {
    if (password.size() > maximumPasswordBytes || !isValidUtf8(password)) {
        throw VaultError(VaultError::Kind::invalidPasswordOrDamagedVault);
    }
}

VaultKey VaultKey::derive(std::string_view password, const Salt& salt) {
    requireAcceptable(password);
    VaultKey key;
    if (PKCS5_PBKDF2_HMAC(password.data(), static_cast<int>(password.size()), salt.data(),
                          static_cast<int>(salt.size()), static_cast<int>(keyDerivationRounds),
                          EVP_sha256(), static_cast<int>(keySize), key.page_) != 1) {
        throw VaultError::io("Password derivation failed.");
    }
    return key;
}

ItemKey::ItemKey(const VaultKey& vaultKey, const Uuid& item) {
    const std::unique_ptr<EVP_KDF_CTX, decltype(&EVP_KDF_CTX_free)> context(EVP_KDF_CTX_new(hkdf()),
                                                                            &EVP_KDF_CTX_free);
    std::string digest = "SHA256";
    std::string salt = item.string();
    std::string info = "ArdenoVault/file-key/v1";
    // OpenSSL takes its input through pointers to non-const and does not write to it.
    auto* const secret = const_cast<unsigned char*>(vaultKey.bytes().data());
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest.data(), digest.size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_KEY, secret, keySize),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_SALT, salt.data(), salt.size()),
        OSSL_PARAM_construct_octet_string(OSSL_KDF_PARAM_INFO, info.data(), info.size()),
        OSSL_PARAM_construct_end(),
    };
    if (!context || EVP_KDF_derive(context.get(), bytes_.data(), keySize, parameters) != 1) {
        throw VaultError::io("Key derivation failed.");
    }
}

ItemKey::~ItemKey() {
    OPENSSL_cleanse(bytes_.data(), bytes_.size());
}

} // namespace tovi::vault
