#include "core/cleanup/CandidateHeap.h"

#include <algorithm>

namespace tovi {
namespace {

bool ranksBefore(const CleanupCandidate& left, const CleanupCandidate& right) {
    return left.size != right.size ? left.size > right.size : left.path < right.path;
}

} // namespace

void CandidateHeap::insert(CleanupCandidate candidate) {
    if (candidates_.size() >= limit_) {
        ++moreMatched_;
        if (candidates_.empty() || !ranksBefore(candidate, candidates_.front())) return;
        std::pop_heap(candidates_.begin(), candidates_.end(), ranksBefore);
        candidates_.pop_back();
    }
    candidates_.push_back(std::move(candidate));
    std::push_heap(candidates_.begin(), candidates_.end(), ranksBefore);
}

std::vector<CleanupCandidate> CandidateHeap::take() {
    std::sort_heap(candidates_.begin(), candidates_.end(), ranksBefore);
    return std::move(candidates_);
}

} // namespace tovi
