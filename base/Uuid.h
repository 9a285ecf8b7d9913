#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tovi {

/// A universally unique identifier (RFC 4122).
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    static Uuid random();
    /// Reads the 36-character form in either case; anything else gives nothing.
    static std::optional<Uuid> parse(std::string_view text);
    /// The 36-character form in capitals.
    std::string string() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

} // namespace tovi
