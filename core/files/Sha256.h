#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace tovi {

/// A running SHA-256 (FIPS 180-4) over the bytes given to `update`.
class Sha256 {
  public:
    using Digest = std::array<std::uint8_t, 32>;

    Sha256();
    Sha256(Sha256&&) noexcept;
    Sha256& operator=(Sha256&&) noexcept;
    ~Sha256();

    void update(std::span<const std::byte> bytes);

    /// The sum as it would end now; it goes on.
    Digest digestSoFar() const;

    /// Ends the sum; a new one starts with the next `update`.
    Digest finish();

  private:
    struct Context;
    std::unique_ptr<Context> context_;
};

/// 64 lower-case hexadecimal digits.
std::string hexadecimal(const Sha256::Digest& digest);

} // namespace tovi
