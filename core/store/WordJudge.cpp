#include "core/store/WordJudge.h"

#include "base/Text.h"

#include <algorithm>
#include <deque>

namespace tovi {
namespace {

bool isRow(const std::deque<std::string>& seen, const std::vector<std::string>& tokens) {
    if (seen.size() < tokens.size()) return false;
    const auto start = seen.end() - static_cast<std::ptrdiff_t>(tokens.size());
    return std::equal(tokens.begin(), tokens.end() - 1, start) &&
           seen.back().starts_with(tokens.back());
}

} // namespace

WordJudge::WordJudge(Database& database, std::string_view phrase)
    : tokenizer_(database, "unicode61", {"remove_diacritics", "2"}) { // as the table files_fts
    for (const std::string_view word : splitWhitespace(phrase))
        words_.emplace_back(word);
    std::stable_sort(words_.begin(), words_.end(), [](const auto& left, const auto& right) {
        return left.size() > right.size();
    });
    std::erase_if(words_, [&](const std::string& word) {
        Tokens tokens;
        tokenizer_.tokenize(word, Tokenizer::Purpose::prefix, [&](std::string_view token) {
            tokens.emplace_back(token);
            return true;
        });
        if (tokens.empty()) return true;
        tokens_.push_back(std::move(tokens));
        return false;
    });
}

void WordJudge::lookFor(std::string_view text, std::vector<bool>& found,
                        std::size_t& missing) const {
    std::size_t longest = 0;
    for (const Tokens& tokens : tokens_)
        longest = std::max(longest, tokens.size());
    std::deque<std::string> seen;
    tokenizer_.tokenize(text, Tokenizer::Purpose::document, [&](std::string_view token) {
        seen.emplace_back(token);
        if (seen.size() > longest) seen.pop_front();
        for (std::size_t word = 0; word < tokens_.size(); ++word) {
            if (found[word] || !isRow(seen, tokens_[word])) continue;
            found[word] = true;
            --missing;
        }
        return missing > 0;
    });
}

bool WordJudge::accepts(std::string_view name, std::string_view content) const {
    std::vector<bool> found(tokens_.size());
    std::size_t missing = tokens_.size();
    lookFor(name, found, missing);
    if (missing > 0) lookFor(content, found, missing);
    return missing == 0;
}

} // namespace tovi
