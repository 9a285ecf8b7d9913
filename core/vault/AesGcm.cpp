#include "core/vault/AesGcm.h"

#include "core/vault/VaultError.h"

#include <algorithm>
#include <cassert>

#include <openssl/evp.h>

namespace tovi::vault {
namespace {

const EVP_CIPHER* algorithm() {
    static EVP_CIPHER* const aes = EVP_CIPHER_fetch(nullptr, "AES-256-GCM", nullptr);
    return aes;
}

void check(bool success) {
    if (!success) throw VaultError::io("AES-256-GCM is not available.");
}

template <typename Byte>
auto* raw(Byte* bytes) {
    if constexpr (std::is_const_v<Byte>) {
        return reinterpret_cast<const unsigned char*>(bytes);
    } else {
        return reinterpret_cast<unsigned char*>(bytes);
    }
}

} // namespace

void AesGcm::Free::operator()(evp_cipher_ctx_st* context) const {
    EVP_CIPHER_CTX_free(context);
}

AesGcm::AesGcm(Direction direction, KeyBytes key) : context_(EVP_CIPHER_CTX_new()) {
    check(context_ != nullptr &&
          EVP_CipherInit_ex2(context_.get(), algorithm(), key.data(), nullptr,
                             direction == Direction::seal ? 1 : 0, nullptr) == 1);
}

void AesGcm::seal(std::span<const std::byte> plaintext, std::string_view associatedData,
                  const Nonce& nonce, std::span<std::byte> combined) {
    assert(combined.size() == nonceSize + plaintext.size() + tagSize);
    EVP_CIPHER_CTX* const context = context_.get();
    unsigned char* const out = raw(combined.data());
    std::copy(nonce.begin(), nonce.end(), out);
    int length = 0;
    check(EVP_EncryptInit_ex2(context, nullptr, nullptr, nonce.data(), nullptr) == 1 &&
          EVP_EncryptUpdate(context, nullptr, &length, raw(associatedData.data()),
                            static_cast<int>(associatedData.size())) == 1 &&
          EVP_EncryptUpdate(context, out + nonceSize, &length, raw(plaintext.data()),
                            static_cast<int>(plaintext.size())) == 1 &&
          EVP_EncryptFinal_ex(context, out + nonceSize + plaintext.size(), &length) == 1 &&
          EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_GET_TAG, tagSize,
                              out + nonceSize + plaintext.size()) == 1);
}

bool AesGcm::open(std::span<const std::byte> combined, std::string_view associatedData,
                  std::span<std::byte> plaintext) {
    assert(combined.size() == nonceSize + plaintext.size() + tagSize);
    EVP_CIPHER_CTX* const context = context_.get();
    const unsigned char* const in = raw(combined.data());
    std::array<unsigned char, tagSize> tag{};
    std::copy_n(in + nonceSize + plaintext.size(), tagSize, tag.begin());
    int length = 0;
    check(EVP_DecryptInit_ex2(context, nullptr, nullptr, in, nullptr) == 1 &&
          EVP_DecryptUpdate(context, nullptr, &length, raw(associatedData.data()),
                            static_cast<int>(associatedData.size())) == 1 &&
          EVP_DecryptUpdate(context, raw(plaintext.data()), &length, in + nonceSize,
                            static_cast<int>(plaintext.size())) == 1 &&
          EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_GCM_SET_TAG, tagSize, tag.data()) == 1);
    return EVP_DecryptFinal_ex(context, tag.data(), &length) == 1;
}

} // namespace tovi::vault
