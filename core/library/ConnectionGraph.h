#pragma once

#include "core/library/Connections.h"

namespace tovi {

/// One file of a graph, and where it is drawn: in a circle of radius 1 around the middle.
struct GraphNode {
    FileRecord file;        // without content
    std::size_t parent = 0; // the node it is tied to; the middle's own index for the middle
    int depth = 0;          // 0 in the middle, then 1 or 2
    std::vector<Tie> ties;  // to the parent
    double x = 0;
    double y = 0;
};

inline constexpr std::size_t mostGraphNodes = 200;

/// The file at `path` in the middle, then those tied to it as `connections` orders them, then, with
/// `depth` 2, those tied to the closest of them; each file once, `mostGraphNodes` at the most.
/// Nothing for a file that is not in the index. Throws as `IndexStore`.
std::optional<std::vector<GraphNode>> connectionGraph(
    IndexStore& index, const std::string& path, int depth, const std::vector<NamedFiles>& projects,
    const std::vector<std::vector<std::string>>& duplicates, const std::stop_token& stop = {});

} // namespace tovi
