#include "app/preferences/PreferencesFile.h"

#include "base/SystemError.h"
#include "platform/AtomicFile.h"
#include "platform/ExclusiveMove.h"

#include <algorithm>
#include <filesystem>

namespace tovi {
namespace {

constexpr std::size_t largestFile = 64 << 20; // bytes

std::optional<std::string> bytesOf(const std::string& path) {
    if (!std::filesystem::exists(path)) return std::nullopt;
    return platform::readFile(platform::DirectoryEntry::open(path), largestFile);
}

std::string moveAside(const std::string& path, Date now) {
    std::string stamp = iso8601(now);
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    const auto from = platform::DirectoryEntry::open(path);
    const auto to = from.sibling("preferences-" + stamp + ".json");
    platform::SystemExclusiveMove().move(from, to);
    return to.path();
}

} // namespace

PreferencesFile::Loaded PreferencesFile::load(Date now) const {
    const auto bytes = bytesOf(path_);
    if (!bytes) return {};
    try {
        return {decodePreferences(*bytes), {}};
    } catch (const std::exception&) {
        return {{}, moveAside(path_, now)};
    }
}

Preferences PreferencesFile::read() const {
    const auto bytes = bytesOf(path_);
    return bytes ? decodePreferences(*bytes) : Preferences{};
}

void PreferencesFile::save(std::uint64_t revision, const Preferences& preferences) {
    const std::lock_guard lock(mutex_);
    if (revision <= written_) return;
    platform::replaceFile(platform::DirectoryEntry::open(path_), encode(preferences));
    written_ = revision;
}

} // namespace tovi
