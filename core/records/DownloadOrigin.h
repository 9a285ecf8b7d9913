#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tovi {

/// A website whose downloads are grouped under its own name, whatever host they came from.
struct DownloadService {
    std::string_view id;
    std::string_view name;
    std::string_view symbol; // the name of its icon
    std::span<const std::string_view> hostSuffixes;
};

/// Where a file was downloaded from: a known service, or the bare host of any other site.
struct DownloadOrigin {
    std::string id; // the service's key, or the host
    std::string name;
    std::string symbol;

    /// Searched in this order; the first matching suffix decides.
    static const std::array<DownloadService, 14> services;

    /// The origin of an http or https address (RFC 3986). Characters that browsers leave
    /// unescaped in the rest of the address do no harm; anything without a host gives nothing.
    static std::optional<DownloadOrigin> from(std::string_view source);

    /// The first of the addresses that has an origin.
    static std::optional<std::string> preferredURL(const std::vector<std::string>& candidates);

    friend bool operator==(const DownloadOrigin&, const DownloadOrigin&) = default;
};

} // namespace tovi
