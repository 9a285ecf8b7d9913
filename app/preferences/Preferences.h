#pragma once

#include "base/Uuid.h"

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tovi {

/// One connected folder.
struct FolderGrant {
    std::string path;     // absolute, links resolved
    std::string bookmark; // bytes of `platform::Bookmarks`
    bool available = true;

    friend bool operator==(const FolderGrant&, const FolderGrant&) = default;
};

/// A project: a name for some files, which stay where they are.
struct ProjectSpace {
    Uuid id;
    std::string name;
    std::vector<std::string> paths;

    friend bool operator==(const ProjectSpace&, const ProjectSpace&) = default;
};

struct SavedSearch {
    Uuid id;
    std::string name;
    std::string query; // as typed

    friend bool operator==(const SavedSearch&, const SavedSearch&) = default;
};

inline constexpr const char* defaultExclusions =
    "node_modules\n.build\nDerivedData\nCaches\n.env\n*.pem\n*.key\ncredentials*\nsecrets*";
inline constexpr const char* defaultTheme = "minimal";

/// Everything that is remembered between runs but the index and the log.
struct Preferences {
    std::vector<FolderGrant> roots;
    std::vector<ProjectSpace> spaces;
    std::vector<SavedSearch> searches;
    std::string exclusions = defaultExclusions; // one pattern a line
    std::string appearance = "light";
    bool developerMode = false; // the text of code files is searched
    std::string shortcutChoice = "commandShiftSpace";
    std::optional<bool> homeAccessOffered;
    std::optional<std::string> themeChoice;
    std::optional<ProjectSpace> recentlyDeletedSpace;

    /// Keys that this version does not know, kept for the one that wrote them.
    nlohmann::ordered_json others = nlohmann::ordered_json::object();

    friend bool operator==(const Preferences&, const Preferences&) = default;
};

/// The skip patterns without white space around them and without empty lines.
std::vector<std::string> exclusionPatterns(const std::string& exclusions);

/// The file's form. `decodePreferences` throws `std::runtime_error` where a required key is
/// missing or a value is of another type.
std::string encode(const Preferences& preferences);
Preferences decodePreferences(const std::string& json);

} // namespace tovi
