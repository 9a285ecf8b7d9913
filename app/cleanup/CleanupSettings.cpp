#include "app/cleanup/CleanupSettings.h"

#include "platform/AtomicFile.h"

#include <algorithm>
#include <stdexcept>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t largestFile = 1 << 20; // bytes

/// The member, taken out of the object, or what is given where there is none.
template <typename Value>
Value take(Json& json, const char* key, Value missing) {
    const auto found = json.find(key);
    if (found == json.end()) return missing;
    Value value = found->get<Value>();
    json.erase(found);
    return value;
}

CleanupSettings settingsFrom(Json json) {
    if (!json.is_object()) throw std::runtime_error("an object is missing");
    CleanupSettings settings;
    settings.automaticRefresh = take(json, "automaticRefresh", settings.automaticRefresh);
    settings.refreshHours = std::clamp<std::int64_t>(
        take(json, "refreshHours", settings.refreshHours), 1, CleanupSettings::mostHours);
    settings.folder = take(json, "folder", settings.folder);
    settings.others = std::move(json);
    return settings;
}

} // namespace

CleanupSettings CleanupSettingsFile::load() const {
    const auto bytes = platform::readFile(platform::DirectoryEntry::open(path_), largestFile);
    return bytes ? settingsFrom(Json::parse(*bytes)) : CleanupSettings{};
}

void CleanupSettingsFile::save(std::uint64_t revision, const CleanupSettings& settings) {
    Json json{{"automaticRefresh", settings.automaticRefresh},
              {"refreshHours", settings.refreshHours},
              {"folder", settings.folder}};
    json.update(settings.others);
    const std::lock_guard lock(mutex_);
    if (revision <= written_) return;
    platform::replaceFile(platform::DirectoryEntry::open(path_), json.dump(2) + "\n");
    written_ = revision;
}

} // namespace tovi
