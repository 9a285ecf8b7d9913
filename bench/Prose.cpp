#include "bench/Prose.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>

namespace tovi::bench {
namespace {

constexpr std::size_t vocabulary = 60'000;
constexpr std::size_t subjectWords = 400;
constexpr double subjectShare = 0.25;

} // namespace

Prose::Prose(std::uint64_t seed) : random_(seed) {
    constexpr std::string_view consonants = "bcdfghklmnprstvz";
    constexpr std::string_view vowels = "aeiou";
    std::unordered_set<std::string> taken;
    double total = 0;
    while (words_.size() < vocabulary) {
        const std::size_t rank = words_.size();
        const std::size_t syllables = rank < 200 ? 1 : rank < 4000 ? 2 : 3;
        std::string word;
        for (std::size_t n = 0; n < syllables; ++n) {
            word += consonants[below(consonants.size())];
            word += vowels[below(vowels.size())];
        }
        if (below(2) == 0) word += consonants[below(consonants.size())];
        if (!taken.insert(word).second) continue;
        words_.push_back(std::move(word));
        total += 1 / std::pow(static_cast<double>(rank) + 2.7, 1.05);
        cumulative_.push_back(total);
    }
}

double Prose::unit() {
    return static_cast<double>(random_() >> 11) * 0x1p-53;
}

double Prose::aroundMedian(double median, double spread) {
    double normal = -6; // the sum of twelve uniform numbers is close to normal
    for (int n = 0; n < 12; ++n)
        normal += unit();
    return median * std::exp(spread * normal);
}

std::size_t Prose::frequentRank() {
    const auto found =
        std::upper_bound(cumulative_.begin(), cumulative_.end(), unit() * cumulative_.back());
    return std::min(static_cast<std::size_t>(found - cumulative_.begin()), vocabulary - 1);
}

std::string Prose::text(std::size_t bytes) {
    const std::size_t subject = below(vocabulary - subjectWords);
    std::string result;
    while (result.size() < bytes) {
        const std::size_t length = 6 + below(16);
        for (std::size_t n = 0; n < length; ++n) {
            const std::size_t rank =
                unit() < subjectShare ? subject + below(subjectWords) : frequentRank();
            const std::size_t start = result.size();
            result += words_[rank];
            if (n == 0) result[start] = static_cast<char>(result[start] - 'a' + 'A');
            if (n + 1 < length) result += below(12) == 0 ? ", " : " ";
        }
        result += below(7) == 0 ? ".\n\n" : ". ";
    }
    result += '\n';
    return result;
}

} // namespace tovi::bench
