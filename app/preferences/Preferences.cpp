#include "app/preferences/Preferences.h"

#include "base/Text.h"
#include "core/files/Base64.h"

#include <stdexcept>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;

Json toJson(const FolderGrant& grant) {
    return {{"path", grant.path},
            {"bookmark", toBase64(grant.bookmark)},
            {"available", grant.available}};
}

Json toJson(const ProjectSpace& space) {
    return {{"id", space.id.string()}, {"name", space.name}, {"paths", space.paths}};
}

Json toJson(const SavedSearch& search) {
    return {{"id", search.id.string()}, {"name", search.name}, {"query", search.query}};
}

template <typename Value>
Json toJson(const std::vector<Value>& values) {
    Json array = Json::array();
    for (const Value& value : values)
        array.push_back(toJson(value));
    return array;
}

template <typename Value>
Value required(std::optional<Value> value, const char* what) {
    if (!value) throw std::runtime_error(std::string("This is not ") + what);
    return *std::move(value);
}

FolderGrant grantFrom(const Json& json) {
    return {json.at("path").get<std::string>(),
            required(fromBase64(json.at("bookmark").get<std::string>()), "base64"),
            json.at("available").get<bool>()};
}

ProjectSpace spaceFrom(const Json& json) {
    return {required(Uuid::parse(json.at("id").get<std::string>()), "a UUID"),
            json.at("name").get<std::string>(), json.at("paths").get<std::vector<std::string>>()};
}

SavedSearch searchFrom(const Json& json) {
    return {required(Uuid::parse(json.at("id").get<std::string>()), "a UUID"),
            json.at("name").get<std::string>(), json.at("query").get<std::string>()};
}

template <typename Decode>
auto listFrom(const Json& json, Decode decode) {
    if (!json.is_array()) throw std::runtime_error("This is not a list");
    std::vector<decltype(decode(json))> values;
    for (const Json& value : json)
        values.push_back(decode(value));
    return values;
}

/// Takes a key out, so that what is left at the end is unknown. A key that may be missing may
/// also be null.
std::optional<Json> take(Json& json, const char* key) {
    const auto found = json.find(key);
    if (found == json.end()) return std::nullopt;
    Json value = std::move(*found);
    json.erase(found);
    if (value.is_null()) return std::nullopt;
    return value;
}

Json takeRequired(Json& json, const char* key) {
    auto value = take(json, key);
    if (!value) throw std::runtime_error(std::string("The key \"") + key + "\" is missing");
    return *std::move(value);
}

} // namespace

std::vector<std::string> exclusionPatterns(const std::string& exclusions) {
    std::vector<std::string> patterns;
    for (std::size_t start = 0; start <= exclusions.size();) {
        const std::size_t end = std::min(exclusions.find('\n', start), exclusions.size());
        const std::string_view line =
            trimmed(std::string_view(exclusions).substr(start, end - start));
        if (!line.empty()) patterns.emplace_back(line);
        start = end + 1;
    }
    return patterns;
}

std::string encode(const Preferences& preferences) {
    Json json{
        {"roots", toJson(preferences.roots)},          {"spaces", toJson(preferences.spaces)},
        {"searches", toJson(preferences.searches)},    {"exclusions", preferences.exclusions},
        {"appearance", preferences.appearance},        {"developerMode", preferences.developerMode},
        {"shortcutChoice", preferences.shortcutChoice}};
    if (preferences.homeAccessOffered) json["homeAccessOffered"] = *preferences.homeAccessOffered;
    if (preferences.themeChoice) json["themeChoice"] = *preferences.themeChoice;
    if (preferences.recentlyDeletedSpace) {
        json["recentlyDeletedSpace"] = toJson(*preferences.recentlyDeletedSpace);
    }
    json.update(preferences.others);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Preferences decodePreferences(const std::string& text) {
    Json json = Json::parse(text);
    if (!json.is_object()) throw std::runtime_error("This is not an object");
    Preferences preferences;
    preferences.roots = listFrom(takeRequired(json, "roots"), grantFrom);
    preferences.spaces = listFrom(takeRequired(json, "spaces"), spaceFrom);
    preferences.searches = listFrom(takeRequired(json, "searches"), searchFrom);
    preferences.exclusions = takeRequired(json, "exclusions").get<std::string>();
    preferences.appearance = takeRequired(json, "appearance").get<std::string>();
    preferences.developerMode = takeRequired(json, "developerMode").get<bool>();
    preferences.shortcutChoice = takeRequired(json, "shortcutChoice").get<std::string>();
    if (const auto offered = take(json, "homeAccessOffered")) {
        preferences.homeAccessOffered = offered->get<bool>();
    }
    if (const auto theme = take(json, "themeChoice")) {
        preferences.themeChoice = theme->get<std::string>();
    }
    if (const auto space = take(json, "recentlyDeletedSpace")) {
        preferences.recentlyDeletedSpace = spaceFrom(*space);
    }
    preferences.others = std::move(json);
    return preferences;
}

} // namespace tovi
