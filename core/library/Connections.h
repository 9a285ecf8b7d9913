#pragma once

#include "core/records/FileRecord.h"
#include "core/store/IndexStore.h"

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// What two files have in common, the strongest first.
enum class TieKind { duplicate, project, words, origin, folder };

struct Tie {
    TieKind kind;
    /// The words, the project, the origin's name or the folder's path; empty for duplicates.
    std::string name;

    friend bool operator==(const Tie&, const Tie&) = default;
};

struct ConnectedFile {
    FileRecord file; // without content
    std::vector<Tie> ties;
};

/// Some files under a name: a project.
struct NamedFiles {
    std::string name;
    std::vector<std::string> paths;
};

inline constexpr std::size_t mostConnections = 200;

/// The files tied to the file at `path`, those with the most ties first, then the strongest tie,
/// then the newest; at most `mostConnections`. `duplicates` are groups of paths with the same
/// content. Nothing for a file that is not in the index. Throws as `IndexStore`.
std::optional<std::vector<ConnectedFile>>
connections(IndexStore& index, const std::string& path, const std::vector<NamedFiles>& projects,
            const std::vector<std::vector<std::string>>& duplicates,
            const std::stop_token& stop = {});

} // namespace tovi
