#include "core/library/ConnectionGraph.h"

#include "base/Cancelled.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <set>

namespace tovi {
namespace {

// With a second ring, fewer in the first leave room for it.
constexpr std::size_t mostNearWithFar = 40;
constexpr std::size_t expanded = 12;
constexpr std::size_t farOfEach = 10;

constexpr std::size_t ringCapacity = 18;
constexpr std::size_t mostRings = 5;

/// Spreads nodes over rings between two radii, in their order around the circle.
void place(std::vector<GraphNode>& nodes, const std::vector<std::size_t>& chosen, double inner,
           double outer) {
    const std::size_t count = chosen.size();
    const std::size_t rings =
        std::clamp((count + ringCapacity - 1) / ringCapacity, std::size_t{1}, mostRings);
    // The same number on each ring, so that the last one is as far from the first as others are.
    const std::size_t places = (count + rings - 1) / rings * rings;
    for (std::size_t at = 0; at < count; ++at) {
        const double turn = static_cast<double>(at) / static_cast<double>(places);
        const double angle = 2 * std::numbers::pi * turn - std::numbers::pi / 2;
        const double share =
            rings == 1 ? 0.8 : static_cast<double>(at % rings) / static_cast<double>(rings - 1);
        const double radius = inner + share * (outer - inner);
        nodes[chosen[at]].x = radius * std::cos(angle);
        nodes[chosen[at]].y = radius * std::sin(angle);
    }
}

/// Files with the same strongest tie lie side by side; a far file lies near its parent.
void layOut(std::vector<GraphNode>& nodes) {
    std::vector<std::size_t> near;
    std::vector<std::size_t> far;
    for (std::size_t at = 1; at < nodes.size(); ++at)
        (nodes[at].depth == 1 ? near : far).push_back(at);
    std::stable_sort(near.begin(), near.end(), [&](std::size_t left, std::size_t right) {
        return nodes[left].ties.front().kind < nodes[right].ties.front().kind;
    });
    if (far.empty()) return place(nodes, near, 0.55, 1);
    place(nodes, near, 0.3, 0.6);
    std::vector<std::size_t> turnOf(nodes.size());
    for (std::size_t at = 0; at < near.size(); ++at)
        turnOf[near[at]] = at;
    std::stable_sort(far.begin(), far.end(), [&](std::size_t left, std::size_t right) {
        return turnOf[nodes[left].parent] < turnOf[nodes[right].parent];
    });
    place(nodes, far, 0.8, 1);
}

} // namespace

std::optional<std::vector<GraphNode>> connectionGraph(
    IndexStore& index, const std::string& path, int depth, const std::vector<NamedFiles>& projects,
    const std::vector<std::vector<std::string>>& duplicates, const std::stop_token& stop) {
    auto center = index.records({path}, stop);
    if (center.empty()) return std::nullopt;
    std::vector<GraphNode> nodes;
    nodes.emplace_back().file = std::move(center.front());
    std::set<std::string> known{path};
    const auto addTied = [&](std::size_t parent, std::size_t most) {
        auto tied = connections(index, nodes[parent].file.path, projects, duplicates, stop);
        if (!tied) return; // taken out of the index meanwhile
        for (ConnectedFile& file : *tied) {
            if (most == 0 || nodes.size() == mostGraphNodes) return;
            if (!known.insert(file.file.path).second) continue;
            GraphNode& node = nodes.emplace_back();
            node.file = std::move(file.file);
            node.parent = parent;
            node.depth = nodes[parent].depth + 1;
            node.ties = std::move(file.ties);
            --most;
        }
    };
    addTied(0, depth > 1 ? mostNearWithFar : mostGraphNodes);
    if (depth > 1) {
        const std::size_t last = std::min(nodes.size(), expanded + 1);
        for (std::size_t parent = 1; parent < last; ++parent) {
            throwIfCancelled(stop);
            addTied(parent, farOfEach);
        }
    }
    layOut(nodes);
    return nodes;
}

} // namespace tovi
