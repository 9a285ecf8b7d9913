#include "core/records/DownloadOrigin.h"

#include "base/Text.h"

#include <algorithm>

#include <boost/url/authority_view.hpp>
#include <boost/url/parse.hpp>
#include <fmt/format.h>

namespace tovi {
namespace {

constexpr std::string_view gmail[] = {"mail.google.com", "mail-attachment.googleusercontent.com"};
constexpr std::string_view slack[] = {"slack.com", "slack-files.com", "slack-edge.com"};
constexpr std::string_view chatgpt[] = {"chatgpt.com", "chat.openai.com", "oaiusercontent.com"};
constexpr std::string_view drive[] = {"drive.google.com", "docs.google.com",
                                      "drive.usercontent.google.com"};
constexpr std::string_view canva[] = {"canva.com"};
constexpr std::string_view claude[] = {"claude.ai", "claude.com", "claude.site",
                                       "claudeusercontent.com", "anthropic.com"};
constexpr std::string_view instagram[] = {"instagram.com", "cdninstagram.com"};
constexpr std::string_view figma[] = {"figma.com"};
constexpr std::string_view github[] = {"github.com", "githubusercontent.com"};
constexpr std::string_view notion[] = {"notion.so", "notion.site"};
constexpr std::string_view dropbox[] = {"dropbox.com", "dropboxusercontent.com"};
constexpr std::string_view x[] = {"x.com", "twitter.com", "twimg.com"};
constexpr std::string_view whatsapp[] = {"whatsapp.com", "whatsapp.net"};
constexpr std::string_view pinterest[] = {"pinterest.com", "pinimg.com"};

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '-';
}

bool isOneOf(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

/// What an address may not contain as it is becomes percent-encoded.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c > ' ' && c < '\x7f' && !isOneOf("\"<>^`{|}", c)) {
            result += c;
        } else {
            result += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return result;
}

/// Without the characters of https://url.spec.whatwg.org/#forbidden-domain-code-point
bool isHostName(std::string_view host) {
    const auto isForbidden = [](char c) {
        return (c >= 0 && c <= ' ') || c == '\x7f' || isOneOf("#%/:<>?@[\\]^|", c);
    };
    return std::none_of(host.begin(), host.end(), isForbidden) && isValidUtf8(host);
}

/// The host in an address's authority, as it is written; empty if there is none.
std::string hostIn(std::string_view authority) {
    auto parsed = boost::urls::parse_authority(authority);
    std::string escapedAuthority;
    if (!parsed) {
        escapedAuthority = escaped(authority);
        parsed = boost::urls::parse_authority(escapedAuthority);
        if (!parsed) return {};
    }
    std::string host = parsed->host_address();
    if (parsed->host_type() == boost::urls::host_type::name && !isHostName(host)) return {};
    return host;
}

/// The host of a web address in lower case; empty if there is none.
std::string hostOf(std::string_view source) {
    const std::size_t colon = source.find(':');
    if (colon == std::string_view::npos || colon > 5) return {};
    const std::string scheme = asciiLowercased(source.substr(0, colon));
    if (scheme != "http" && scheme != "https") return {};
    source.remove_prefix(colon + 1);
    if (!source.starts_with("//")) return {};
    source.remove_prefix(2);

    // Browsers take a backslash for a slash.
    const auto* const end = std::find_if(source.begin(), source.end(), [](char c) {
        return c == '/' || c == '?' || c == '#' || c == '\\';
    });
    const std::string_view authority(source.begin(), end);
    // Nearly all are a bare host name, and this runs for every row of a search by source.
    if (std::all_of(authority.begin(), authority.end(), isPlain)) return asciiLowercased(authority);
    return lowercased(hostIn(authority));
}

bool matches(std::string_view host, std::string_view suffix) {
    if (!host.ends_with(suffix)) return false;
    return host.size() == suffix.size() || host[host.size() - suffix.size() - 1] == '.';
}

} // namespace

constinit const std::array<DownloadService, 14> DownloadOrigin::services{{
    {"gmail", "Gmail", "envelope", gmail},
    {"slack", "Slack", "bubble.left.and.bubble.right", slack},
    {"chatgpt", "ChatGPT", "sparkles", chatgpt},
    {"drive", "Google Drive", "externaldrive", drive},
    {"canva", "Canva", "paintpalette", canva},
    {"claude", "Claude", "sun.max", claude},
    {"instagram", "Instagram", "camera", instagram},
    {"figma", "Figma", "square.on.square", figma},
    {"github", "GitHub", "chevron.left.forwardslash.chevron.right", github},
    {"notion", "Notion", "doc.text", notion},
    {"dropbox", "Dropbox", "shippingbox", dropbox},
    {"x", "X", "bubble.left", x},
    {"whatsapp", "WhatsApp", "message", whatsapp},
    {"pinterest", "Pinterest", "pin", pinterest},
}};

std::optional<DownloadOrigin> DownloadOrigin::from(std::string_view source) {
    std::string host = hostOf(source);
    if (host.starts_with("www.")) host.erase(0, 4);
    if (host.empty()) return std::nullopt;
    for (const DownloadService& service : services) {
        for (const std::string_view suffix : service.hostSuffixes) {
            if (!matches(host, suffix)) continue;
            return DownloadOrigin{std::string(service.id), std::string(service.name),
                                  std::string(service.symbol)};
        }
    }
    return DownloadOrigin{host, host, "globe"};
}

std::optional<std::string>
DownloadOrigin::preferredURL(const std::vector<std::string>& candidates) {
    for (const std::string& candidate : candidates) {
        if (from(candidate)) return candidate;
    }
    return std::nullopt;
}

} // namespace tovi
