#pragma once

#include "core/store/Tokenizer.h"

#include <string>
#include <string_view>
#include <vector>

namespace tovi {

/// Says of one name and text what the full-text index would say, with the index's own tokenizer:
/// whether they hold every word of a phrase as the start of a word. The way to ask where looking
/// at some files costs less than what the index does to answer for all. The database outlives it.
class WordJudge {
  public:
    WordJudge(Database& database, std::string_view phrase);

    /// The words of the phrase that have a token, the longest first; the others select nothing.
    const std::vector<std::string>& words() const { return words_; }

    bool accepts(std::string_view name, std::string_view content) const;

  private:
    using Tokens = std::vector<std::string>;

    void lookFor(std::string_view text, std::vector<bool>& found, std::size_t& missing) const;

    Tokenizer tokenizer_;
    std::vector<std::string> words_;
    std::vector<Tokens> tokens_; // of each word, to be found in a row, the last as a prefix
};

} // namespace tovi
