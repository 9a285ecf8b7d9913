#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace tovi {

/// The embedding of one file.
struct VectorEntry {
    std::string fileID;
    std::vector<float> vector;

    friend bool operator==(const VectorEntry&, const VectorEntry&) = default;
};

/// Embeddings of one provider, at most one a file, searched by cosine similarity.
class LocalVectorIndex {
  public:
    struct Neighbour {
        std::string fileID;
        float score; // -1 to 1

        friend bool operator==(const Neighbour&, const Neighbour&) = default;
    };

    /// Every vector has `dimensions` elements.
    LocalVectorIndex(std::string providerID, std::size_t dimensions)
        : providerID_(std::move(providerID)), dimensions_(dimensions) {}

    const std::string& providerID() const { return providerID_; }
    std::size_t dimensions() const { return dimensions_; }
    const std::vector<VectorEntry>& entries() const { return entries_; }

    /// Adds the entry at the end, in place of an earlier one of the file. Throws
    /// `IntelligenceError::invalidQuery` for another length and for an element that is not finite.
    void upsert(VectorEntry entry);

    /// The most similar entries, the most similar first, equal ones in the order of `entries`;
    /// vectors of length zero are similar to nothing. Throws as `upsert`.
    std::vector<Neighbour> nearest(const std::vector<float>& vector, std::int64_t limit) const;

  private:
    bool fits(const std::vector<float>& vector) const;

    std::string providerID_;
    std::size_t dimensions_;
    std::vector<VectorEntry> entries_;
    std::vector<double> norms_; // of the entries
    std::unordered_set<std::string> fileIDs_;
};

} // namespace tovi
