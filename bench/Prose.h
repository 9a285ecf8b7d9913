#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace tovi::bench {

/// Of everything that `make-corpus` makes.
inline constexpr std::uint64_t corpusSeed = 20'240'313;

/// Made-up prose whose words are as unevenly frequent as those of a language (Zipf-Mandelbrot),
/// each text with a subject whose words it repeats. The same seed gives the same texts anywhere.
class Prose {
  public:
    explicit Prose(std::uint64_t seed);

    /// Sentences and paragraphs of about so many bytes.
    std::string text(std::size_t bytes);

    /// The word of this rank; 0 is the most frequent one.
    const std::string& word(std::size_t rank) const { return words_[rank]; }
    const std::string& anyWord() { return words_[below(words_.size())]; }
    std::size_t wordCount() const { return words_.size(); }

    double unit(); // from 0 to below 1
    std::size_t below(std::size_t end) {
        return static_cast<std::size_t>(unit() * static_cast<double>(end));
    }

    /// Log-normal with this median; `spread` is the standard deviation of the logarithm.
    double aroundMedian(double median, double spread);

  private:
    std::size_t frequentRank();

    std::mt19937_64 random_;
    std::vector<std::string> words_; // by rank
    std::vector<double> cumulative_; // frequency of this rank and those above
};

} // namespace tovi::bench
