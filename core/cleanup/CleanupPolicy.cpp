#include "core/cleanup/CleanupPolicy.h"

#include "base/Text.h"
#include "core/cleanup/CleanupApplicationBundle.h"
#include "core/files/AuthorizedFolders.h"
#include "core/records/FileKind.h"
#include "core/records/IndexingPolicy.h"
#include "platform/DirectoryEntry.h"
#include "platform/Packages.h"

#include <algorithm>
#include <array>

namespace tovi {
namespace {

using platform::FileType;

constexpr std::int64_t largeFile = 100'000'000; // bytes
constexpr double day = 86'400;                  // seconds
constexpr double cacheAge = 7 * day;
constexpr double screenshotAge = 30 * day;
constexpr double installerAge = 30 * day;
constexpr double downloadAge = 90 * day;
constexpr double applicationAge = 90 * day;

// Besides the folders of the system that may not be connected either.
constexpr std::array<std::string_view, 12> systemFolders{
    "/lib",       "/lib32",   "/lib64",   "/opt",      "/snap",      "/private/var/root",
    "/var/cache", "/var/lib", "/var/log", "/var/mail", "/var/spool", "/lost+found"};

// Folders whose files belong to a program's own store of private things.
constexpr std::array<std::string_view, 10> privateNames{
    "keychains", "keyrings", "kwalletd", "wallets",    "passwords",
    "cookies",   "accounts", "mail",     "mobilesync", "messages"};

std::string resolved(const std::string& path) {
    return canonicalPath(path).value_or(path);
}

std::vector<std::string> allResolved(const std::vector<std::string>& paths) {
    std::vector<std::string> result;
    std::transform(paths.begin(), paths.end(), std::back_inserter(result), resolved);
    return result;
}

bool isAtOrBelowAny(const std::string& path, const std::vector<std::string>& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](const std::string& folder) { return isSameOrBelow(path, folder); });
}

bool isPrivateName(std::string_view name) {
    if (IndexingPolicy::isSensitiveName(name)) return true;
    return std::find(privateNames.begin(), privateNames.end(), lowercased(name)) !=
           privateNames.end();
}

bool isInstallerName(std::string_view name) {
    const std::string extension = lowercasedExtension(name);
    return extension == "dmg" || extension == "pkg";
}

bool startsWithDate(std::string_view text) {
    constexpr std::string_view form = "####-##-##";
    if (text.size() < form.size()) return false;
    return std::equal(form.begin(), form.end(), text.begin(), [](char expected, char character) {
        return expected == '#' ? character >= '0' && character <= '9' : character == expected;
    });
}

/// As the expression ^(Screenshot|Screen Shot)[ _-]\d{4}-\d{2}-\d{2}(?:[ _-]|$) matches.
bool isScreenshotName(std::string_view name) {
    constexpr std::string_view separators = " _-";
    constexpr std::size_t dateLength = 10;
    for (const std::string_view word : {"Screenshot", "Screen Shot"}) {
        if (!name.starts_with(word)) continue;
        name.remove_prefix(word.size());
        if (name.empty() || separators.find(name.front()) == std::string_view::npos) return false;
        name.remove_prefix(1);
        if (!startsWithDate(name)) return false;
        name.remove_prefix(dateLength);
        return name.empty() || separators.find(name.front()) != std::string_view::npos;
    }
    return false;
}

/// Whether the file can be one that shows the screen: pictures, films and, without an extension,
/// anything.
bool mayShowScreen(std::string_view name) {
    const FileKind kind = classify(name, false);
    return kind == FileKind::image || kind == FileKind::video || kind == FileKind::pdf ||
           name.find('.') == std::string_view::npos;
}

bool isScreenshot(const CleanupItem& file) {
    const std::string_view name = lastPathComponent(file.path);
    return isScreenshotName(name) ||
           (mayShowScreen(name) &&
            CleanupDiscoveryMetadata::isScreenCapture(file.path, file.directory));
}

} // namespace

CleanupContext::CleanupContext(const std::string& rootPath, const CleanupFolders& folders,
                               const std::vector<std::string>& excludedPaths,
                               const CleanupDiscoveryMetadata& discoveryMetadata,
                               const platform::Availability& localFiles)
    : metadata(discoveryMetadata),
      availability(localFiles),
      root(resolved(rootPath)),
      home(resolved(folders.home)),
      excluded(allResolved(excludedPaths)),
      userCache(resolved(folders.userCache)),
      cacheRoots{home + "/Library/Caches", home + "/Library/Logs",
                 home + "/Library/Developer/Xcode/DerivedData", userCache},
      downloads(allResolved(folders.downloads)) {
    downloads.insert(downloads.begin(), home + "/Downloads");
}

bool CleanupPolicy::isHidden(const std::string& path) const {
    // Caches are kept in a hidden folder, so hidden names count below it only.
    const bool isInCache = isSameOrBelow(path, context_.userCache);
    const std::string& start = isInCache && context_.userCache.size() > context_.root.size()
                                   ? context_.userCache
                                   : context_.root;
    const std::size_t from = start == "/" ? 0 : start.size();
    return path.find("/.", from) != std::string::npos;
}

bool CleanupPolicy::excludesFolder(const std::string& path) const {
    if (isHidden(path) && !isSameOrBelow(context_.userCache, path)) return true;
    if (isAtOrBelowAny(path, context_.excluded)) return true;
    const std::string_view name = lastPathComponent(path);
    return isPrivateName(name) || platform::isPackage(name) ||
           IndexingPolicy::isSystemLocation(path) ||
           std::any_of(systemFolders.begin(), systemFolders.end(),
                       [&](std::string_view folder) { return isSameOrBelow(path, folder); });
}

bool CleanupPolicy::excludesPlace(const std::string& path) const {
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        if (excludesFolder(path.substr(0, slash))) return true;
    }
    return false;
}

std::optional<CleanupCategory> CleanupPolicy::category(const CleanupItem& file) const {
    const double age = now_ - file.attributes.modifiedAt;
    if (age >= screenshotAge && isScreenshot(file)) return CleanupCategory::oldScreenshots;
    if (age >= installerAge && isInstallerName(lastPathComponent(file.path))) {
        return CleanupCategory::installers;
    }
    if (age >= cacheAge && isAtOrBelowAny(file.path, context_.cacheRoots)) {
        return CleanupCategory::cachesAndLogs;
    }
    if (age >= downloadAge && isAtOrBelowAny(file.path, context_.downloads)) {
        return CleanupCategory::oldDownloads;
    }
    if (file.attributes.size >= largeFile) return CleanupCategory::largeFiles;
    return std::nullopt;
}

std::optional<CleanupCandidate> CleanupPolicy::candidate(const CleanupItem& item,
                                                         const std::stop_token& stop) const {
    const std::string name(lastPathComponent(item.path));
    if (item.attributes.type == FileType::directory) {
        return isApplicationName(name) ? application(item, stop) : std::nullopt;
    }
    if (item.attributes.type != FileType::regular) return std::nullopt;
    const auto found = category(item);
    if (!found || isHidden(item.path) || isPrivateName(name) ||
        isAtOrBelowAny(item.path, context_.excluded) ||
        !context_.availability.isAvailableLocally(
            item.path, platform::ExtendedAttributes(item.path, item.directory))) {
        return std::nullopt;
    }
    return CleanupCandidate{item.path,
                            name,
                            item.attributes.size,
                            item.attributes.modifiedAt,
                            *found,
                            CleanupFileIdentity::of(item.attributes),
                            {},
                            {}};
}

std::optional<CleanupCandidate> CleanupPolicy::application(const CleanupItem& item,
                                                           const std::stop_token& stop) const {
    const std::string name(lastPathComponent(item.path));
    if (isHidden(item.path) || isPrivateName(name)) return std::nullopt;
    const platform::ExtendedAttributes attributes(item.path, item.directory);
    const auto lastUsed = context_.metadata.lastUsed(item.path, attributes);
    if (!lastUsed || now_ - *lastUsed < applicationAge) return std::nullopt;

    CleanupCandidate candidate{item.path,
                               name,
                               0,
                               item.attributes.modifiedAt,
                               CleanupCategory::unusedApps,
                               CleanupFileIdentity::of(item.attributes),
                               lastUsed,
                               {}};
    try {
        const CleanupApplicationBundle bundle(item.directory, item.path, context_.availability);
        const auto identifier = bundle.identifier();
        if (!identifier || lowercased(*identifier).starts_with("com.apple.")) return std::nullopt;
        const auto inspection = bundle.inspect(CleanupApplicationBundle::itemLimit, stop);
        candidate.size = inspection.size;
        candidate.isWholeMeasured = inspection.isWholeMeasured;
        candidate.reviewOnlyReason = inspection.problem;
    } catch (const CleanupBundleError& error) {
        candidate.reviewOnlyReason = error.what();
        candidate.isWholeMeasured = false;
    }
    return candidate;
}

std::optional<CleanupCandidate> CleanupPolicy::candidateAt(const std::string& path,
                                                           const std::stop_token& stop) const {
    if (!isSameOrBelow(path, context_.root) || resolvedFolders(path) != path ||
        !isValidUtf8(path) || excludesPlace(path)) {
        return std::nullopt;
    }
    try {
        const auto item = platform::DirectoryEntry::open(path);
        const auto attributes = item.attributes();
        if (!attributes) return std::nullopt;
        return candidate({path, item.directory(), *attributes}, stop);
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

bool isApplicationName(std::string_view name) {
    return lowercasedExtension(name) == "app";
}

} // namespace tovi
