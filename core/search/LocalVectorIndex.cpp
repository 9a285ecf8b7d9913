#include "core/search/LocalVectorIndex.h"

#include "core/records/IntelligenceError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace tovi {
namespace {

/// In double precision, which no sum of products of floats leaves; in lanes, so that the compiler
/// may use vector instructions without being allowed to reorder a sum.
double dotProduct(const std::vector<float>& left, const std::vector<float>& right) {
    constexpr std::size_t laneCount = 8;
    std::array<double, laneCount> lanes{};
    const std::size_t whole = left.size() - left.size() % laneCount;
    for (std::size_t at = 0; at < whole; at += laneCount) {
        for (std::size_t lane = 0; lane < laneCount; ++lane) {
            lanes[lane] += static_cast<double>(left[at + lane]) * double{right[at + lane]};
        }
    }
    double sum = std::accumulate(lanes.begin(), lanes.end(), 0.0);
    for (std::size_t at = whole; at < left.size(); ++at)
        sum += double{left[at]} * double{right[at]};
    return sum;
}

double norm(const std::vector<float>& vector) {
    return std::sqrt(dotProduct(vector, vector));
}

} // namespace

bool LocalVectorIndex::fits(const std::vector<float>& vector) const {
    return vector.size() == dimensions_ &&
           std::all_of(vector.begin(), vector.end(), [](float v) { return std::isfinite(v); });
}

void LocalVectorIndex::upsert(VectorEntry entry) {
    if (!fits(entry.vector)) {
        throw IntelligenceError::invalidQuery(
            "Embedding dimensions or values do not match the provider");
    }
    if (!fileIDs_.insert(entry.fileID).second) {
        const auto old = std::find_if(entries_.begin(), entries_.end(), [&](const auto& other) {
            return other.fileID == entry.fileID;
        });
        norms_.erase(norms_.begin() + (old - entries_.begin()));
        entries_.erase(old);
    }
    norms_.push_back(norm(entry.vector));
    entries_.push_back(std::move(entry));
}

std::vector<LocalVectorIndex::Neighbour> LocalVectorIndex::nearest(const std::vector<float>& vector,
                                                                   std::int64_t limit) const {
    if (!fits(vector)) throw IntelligenceError::invalidQuery("Query vector is incompatible");
    const double queryNorm = norm(vector);
    if (!(queryNorm > 0) || limit < 1) return {};

    struct Score {
        std::size_t entry;
        float value;
    };
    std::vector<Score> scores;
    scores.reserve(entries_.size());
    for (std::size_t at = 0; at < entries_.size(); ++at) {
        if (norms_[at] == 0) continue;
        const double score = dotProduct(vector, entries_[at].vector) / (queryNorm * norms_[at]);
        scores.push_back({at, static_cast<float>(score)});
    }
    const auto wanted = static_cast<std::size_t>(
        std::min<std::uint64_t>(static_cast<std::uint64_t>(limit), scores.size()));
    const auto end = scores.begin() + static_cast<std::ptrdiff_t>(wanted);
    std::partial_sort(scores.begin(), end, scores.end(), [](const Score& left, const Score& right) {
        return left.value != right.value ? left.value > right.value : left.entry < right.entry;
    });
    std::vector<Neighbour> neighbours;
    neighbours.reserve(wanted);
    for (auto score = scores.begin(); score != end; ++score)
        neighbours.push_back({entries_[score->entry].fileID, score->value});
    return neighbours;
}

} // namespace tovi
