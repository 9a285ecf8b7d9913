#include "core/library/EvidenceSearch.h"

#include "base/Cancelled.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi {
namespace {

constexpr std::size_t mostWords = 32;
constexpr std::int64_t filesPerWord = 200;
constexpr std::size_t mostTexts = 100; // read at once

/// English words that say nothing about what a question is about, in byte order.
constexpr std::string_view functionWords[] = {
    "about", "after",  "all",  "also",  "am",   "an",    "and",  "any",   "are",  "as",     "at",
    "be",    "been",   "but",  "by",    "can",  "could", "did",  "do",    "does", "for",    "from",
    "had",   "has",    "have", "he",    "her",  "his",   "how",  "if",    "in",   "into",   "is",
    "it",    "its",    "me",   "much",  "my",   "no",    "not",  "of",    "on",   "or",     "our",
    "she",   "should", "so",   "some",  "than", "that",  "the",  "their", "them", "then",   "there",
    "these", "they",   "this", "those", "to",   "was",   "we",   "were",  "what", "what's", "when",
    "where", "which",  "who",  "whose", "why",  "will",  "with", "would", "you",  "your"};
static_assert(std::is_sorted(std::begin(functionWords), std::end(functionWords)));

/// Paths of files that hold some of the words, most promising first, ties newest first: a word that
/// few files hold says more about a file than a common one.
std::vector<std::string> candidates(IndexStore& index, const std::vector<std::string>& words,
                                    const std::stop_token& stop) {
    struct Candidate {
        double weight = 0;
        Date modifiedAt;
    };
    std::map<std::string, Candidate> candidates;
    for (const std::string& word : words) {
        throwIfCancelled(stop);
        SearchQuery query;
        query.text = word;
        const auto files = index.search(query, filesPerWord, 0, IndexStore::Content::leftOut, stop);
        for (const FileRecord& file : files) {
            Candidate& candidate = candidates[file.path];
            candidate.weight += 1.0 / static_cast<double>(files.size());
            candidate.modifiedAt = file.modifiedAt;
        }
    }
    std::vector<std::pair<std::string, Candidate>> ranked(candidates.begin(), candidates.end());
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& left, const auto& right) {
        return std::pair(left.second.weight, left.second.modifiedAt) >
               std::pair(right.second.weight, right.second.modifiedAt);
    });
    std::vector<std::string> paths;
    for (auto& [path, candidate] : ranked)
        paths.push_back(std::move(path));
    return paths;
}

} // namespace

std::vector<std::string> contentWords(std::string_view question) {
    std::vector<std::string> words = EvidenceRetriever::words(question);
    std::vector<std::string> content;
    std::copy_if(words.begin(), words.end(), std::back_inserter(content), [](const auto& word) {
        return !std::binary_search(std::begin(functionWords), std::end(functionWords), word);
    });
    if (content.empty()) content = std::move(words);
    if (content.size() > mostWords) content.resize(mostWords);
    return content;
}

std::vector<EvidenceCitation> findEvidence(IndexStore& index, std::string_view question,
                                           std::int64_t limit, const std::stop_token& stop) {
    const std::vector<std::string> words = contentWords(question);
    std::vector<FileRecord> files;
    for (const std::string& path : candidates(index, words, stop)) {
        throwIfCancelled(stop);
        if (files.size() == mostTexts) break;
        auto file = index.record(path);
        if (file && !file->content.empty()) files.push_back(*std::move(file));
    }
    auto citations =
        EvidenceRetriever::answer(fmt::format("{}", fmt::join(words, " ")), files, stop);
    const auto surplus =
        static_cast<std::int64_t>(citations.size()) - std::max<std::int64_t>(limit, 0);
    if (surplus > 0) citations.erase(citations.end() - surplus, citations.end());
    return citations;
}

} // namespace tovi
