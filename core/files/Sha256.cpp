#include "core/files/Sha256.h"

#include <stdexcept>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <openssl/evp.h>

namespace tovi {
namespace {

// Looking an algorithm up costs more than hashing a small file, so it is done once.
const EVP_MD* algorithm() {
    static EVP_MD* const sha256 = EVP_MD_fetch(nullptr, "SHA256", nullptr);
    return sha256;
}

void check(int result) {
    if (result != 1) throw std::runtime_error("SHA-256 is not available");
}

} // namespace

struct Sha256::Context {
    EVP_MD_CTX* evp = EVP_MD_CTX_new();

    Context() = default;
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;
    ~Context() { EVP_MD_CTX_free(evp); }

    void start() { check(EVP_DigestInit_ex2(evp, algorithm(), nullptr)); }
};

Sha256::Sha256() : context_(std::make_unique<Context>()) {
    context_->start();
}
Sha256::Sha256(Sha256&&) noexcept = default;
Sha256& Sha256::operator=(Sha256&&) noexcept = default;
Sha256::~Sha256() = default;

void Sha256::update(std::span<const std::byte> bytes) {
    check(EVP_DigestUpdate(context_->evp, bytes.data(), bytes.size()));
}

Sha256::Digest Sha256::digestSoFar() const {
    const Context copy;
    check(EVP_MD_CTX_copy_ex(copy.evp, context_->evp));
    Digest digest{};
    check(EVP_DigestFinal_ex(copy.evp, digest.data(), nullptr));
    return digest;
}

Sha256::Digest Sha256::finish() {
    Digest digest{};
    check(EVP_DigestFinal_ex(context_->evp, digest.data(), nullptr));
    context_->start();
    return digest;
}

std::string hexadecimal(const Sha256::Digest& digest) {
    return fmt::format("{:02x}", fmt::join(digest, ""));
}

} // namespace tovi
