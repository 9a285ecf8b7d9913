#include "core/search/EvidenceRetriever.h"

#include "base/Cancelled.h"
#include "base/Text.h"

#include <algorithm>
#include <bitset>
#include <memory>
#include <optional>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include <unicode/brkiter.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/edits.h>
#include <unicode/ubrk.h>

namespace tovi {
namespace {

constexpr std::size_t leadCharacters = 120;
constexpr std::size_t excerptCharacters = 600;

/// A text in lower case, whose length may differ, and the way back to the text as it was.
class LoweredText {
  public:
    explicit LoweredText(std::string_view text) {
        UErrorCode status = U_ZERO_ERROR;
        icu::StringByteSink<std::string> sink(&lowered_);
        icu::CaseMap::utf8ToLower(
            "", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink,
            &edits_, status);
        if (U_FAILURE(status)) throw std::runtime_error("ICU cannot lower-case text");
    }

    const std::string& text() const { return lowered_; }

    /// Where the character at `position` of the lower-cased text begins in the text as it was.
    std::size_t originalPosition(std::size_t position) const {
        UErrorCode status = U_ZERO_ERROR;
        const auto index = static_cast<std::int32_t>(position);
        icu::Edits::Iterator edit = edits_.getFineIterator();
        if (!edit.findDestinationIndex(index, status)) return position;
        const std::int32_t inside = edit.hasChange() ? 0 : index - edit.destinationIndex();
        return static_cast<std::size_t>(edit.sourceIndex() + inside);
    }

  private:
    std::string lowered_;
    icu::Edits edits_;
};

/// Finds the first of many words in one pass, however many they are.
class FirstOccurrence {
  public:
    explicit FirstOccurrence(const std::vector<std::string>& words) {
        std::vector<std::string_view> sorted(words.begin(), words.end());
        std::sort(sorted.begin(), sorted.end());
        for (const std::string_view word : sorted) {
            // A word that another one begins with is found wherever the other is.
            if (!words_.empty() && word.starts_with(words_.back())) continue;
            words_.push_back(word);
            beginnings_.set(beginning(word, 0));
        }
    }

    std::optional<std::size_t> in(std::string_view text) const {
        for (std::size_t at = 0; at + 1 < text.size(); ++at) {
            if (!beginnings_.test(beginning(text, at))) continue;
            // No word begins with another, so only the last one that sorts before can be here.
            const std::string_view rest = text.substr(at);
            const auto after = std::upper_bound(words_.begin(), words_.end(), rest);
            if (after != words_.begin() && rest.starts_with(*std::prev(after))) return at;
        }
        return std::nullopt;
    }

  private:
    /// The first two bytes of a word, which has no fewer.
    static std::size_t beginning(std::string_view text, std::size_t at) {
        return static_cast<std::size_t>(static_cast<unsigned char>(text[at])) << 8U |
               static_cast<unsigned char>(text[at + 1]);
    }

    std::vector<std::string_view> words_;
    std::bitset<65'536> beginnings_;
};

std::string_view excerptAround(std::string_view text, std::size_t match) {
    const std::size_t lead = lastCharacters(text.substr(0, match), leadCharacters).size();
    return firstCharacters(text.substr(match - lead), excerptCharacters);
}

} // namespace

std::vector<std::string> EvidenceRetriever::words(std::string_view query) {
    const std::string lowered = lowercased(query);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
    UText source = UTEXT_INITIALIZER;
    utext_openUTF8(&source, lowered.data(), static_cast<std::int64_t>(lowered.size()), &status);
    if (U_SUCCESS(status)) breaks->setText(&source, status);
    if (U_FAILURE(status)) throw std::runtime_error("ICU cannot split text into words");

    std::vector<std::string> words;
    std::unordered_set<std::string_view> seen;
    std::int32_t start = breaks->first();
    for (std::int32_t end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        const auto from = static_cast<std::size_t>(std::exchange(start, end));
        const std::string_view word =
            std::string_view(lowered).substr(from, static_cast<std::size_t>(end) - from);
        const bool isWord = breaks->getRuleStatus() >= UBRK_WORD_NONE_LIMIT;
        if (isWord && countCharacters(word) >= 2 && seen.insert(word).second)
            words.emplace_back(word);
    }
    utext_close(&source);
    return words;
}

std::vector<EvidenceCitation> EvidenceRetriever::answer(std::string_view query,
                                                        const std::vector<FileRecord>& files,
                                                        const std::stop_token& stop) {
    const std::vector<std::string> words = EvidenceRetriever::words(query);
    const FirstOccurrence firstOccurrence(words);

    struct Passage {
        const FileRecord* file;
        std::string_view excerpt;
        std::ptrdiff_t wordsHeld;
    };
    std::vector<Passage> passages;
    for (const FileRecord& file : files) {
        throwIfCancelled(stop);
        const LoweredText lowered(file.content);
        const auto match = firstOccurrence.in(lowered.text());
        if (!match) continue;
        const std::string_view excerpt =
            excerptAround(file.content, lowered.originalPosition(*match));
        const std::string held = lowercased(excerpt);
        passages.push_back(
            {&file, excerpt, std::count_if(words.begin(), words.end(), [&](const auto& word) {
                 return held.find(word) != std::string::npos;
             })});
    }
    std::stable_sort(passages.begin(), passages.end(), [](const auto& left, const auto& right) {
        return left.wordsHeld > right.wordsHeld;
    });

    std::vector<EvidenceCitation> citations;
    citations.reserve(passages.size());
    for (const Passage& passage : passages)
        citations.push_back({*passage.file, std::string(passage.excerpt)});
    return citations;
}

} // namespace tovi
