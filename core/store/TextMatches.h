#pragma once

#include "core/store/Database.h"
#include "core/store/WordJudge.h"

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tovi {

/// Rowids, in pages of bits: as small as a list where they are few and fast where they are many.
class RowSet {
  public:
    void add(std::int64_t row) { pages_[row >> pageBits].set(bitOf(row)); }
    bool contains(std::int64_t row) const {
        const auto page = pages_.find(row >> pageBits);
        return page != pages_.end() && page->second.test(bitOf(row));
    }

  private:
    static constexpr int pageBits = 12;
    static std::size_t bitOf(std::int64_t row) {
        return static_cast<std::size_t>(row & ((1 << pageBits) - 1));
    }

    std::unordered_map<std::int64_t, std::bitset<1 << pageBits>> pages_;
};

/// What the two text indexes say of a phrase before any file is looked at.
struct TextMatches {
    /// Rows with every word of the phrase in name or content, as prefixes of words there.
    RowSet matched;

    /// Rows whose name may contain the phrase, all others do not; absent where any name may.
    std::optional<RowSet> named;

    /// Every row of the two, where they are few enough to be looked up one by one.
    std::optional<std::vector<std::int64_t>> few;

    /// Whether a file belongs to the result; absent where its name decides.
    std::optional<bool> decides(std::int64_t row) const;
};

/// Reads both indexes for the words of `text`, of which there is at least one.
TextMatches findTextMatches(Database& database, const WordJudge& judge, std::string_view text);

/// Looking at the files themselves, newest first, until `remaining` bytes of name and text are used
/// up. Where a word is so short that a good part of all files holds it, a page is full long before
/// the index has joined the lists of all words that begin with it; and a glance that costs little
/// often finds the few files of a small page.
struct Look {
    const WordJudge& judge;
    std::int64_t remaining;

    /// How many bytes are worth looking at for a page of so many files; 0 for none.
    static std::int64_t patience(const WordJudge& judge, std::int64_t limit);
    bool isExhausted() const { return remaining < 0; }
};

/// Makes the list of names: their runs of three letters, so that a phrase in the middle of one is
/// found without looking at all. Two slashes, which no name holds, end each name, so that every
/// letter and every pair of letters begins a run.
inline constexpr const char* namesTable =
    "CREATE VIRTUAL TABLE files_names USING fts5(name, content='files_named', "
    "content_rowid='id', tokenize='trigram', detail='none')";

/// Whether the index has this list of names; one that an older program wrote may lack it.
bool hasNamesIndex(Database& database);

/// Makes two SQL functions known to the connection: `tovi_text_match(matches, rowid)` gives 1, 0,
/// or NULL where the name decides; `tovi_look(look, name, content)` gives 1 or 0, and fails once
/// the look is exhausted. The first arguments are bound with the types below.
void registerTextFunctions(Database& database);
inline constexpr const char* textMatchesType = "tovi_text_matches";
inline constexpr const char* lookType = "tovi_look";

/// The pattern of names that contain `text`, for LIKE with the backslash as its escape character.
std::string containsPattern(std::string_view text);

/// The part of such a pattern that matches `text` literally.
std::string escapedForLike(std::string_view text);

} // namespace tovi
