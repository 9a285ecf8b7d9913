#pragma once

#include "core/cleanup/CleanupCandidate.h"

#include <cstddef>
#include <vector>

namespace tovi {

/// Keeps the best candidates, the largest first and those of one size in byte order of their
/// paths, and counts the rest.
class CandidateHeap {
  public:
    explicit CandidateHeap(std::size_t limit) : limit_(limit) {}

    void insert(CleanupCandidate candidate);

    std::size_t moreMatched() const { return moreMatched_; }

    /// Best first; leaves the heap empty.
    std::vector<CleanupCandidate> take();

  private:
    std::size_t limit_;
    std::size_t moreMatched_ = 0;
    std::vector<CleanupCandidate> candidates_; // a heap whose front is the weakest
};

} // namespace tovi
