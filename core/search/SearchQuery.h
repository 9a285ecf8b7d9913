#pragma once

#include "base/Date.h"
#include "core/records/FileKind.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// What a phrase asks for: filters, and the words that are left over.
struct SearchQuery {
    std::string text; // words separated by single spaces
    std::optional<FileKind> kind;
    std::optional<Date> modifiedAfter;       // inclusive
    std::optional<Date> modifiedBefore;      // exclusive
    std::optional<std::int64_t> minimumSize; // bytes
    std::optional<std::string> source;       // host or word of the website downloaded from
    std::vector<std::string> chips;          // for the user: how the phrase was understood
    bool screenshotsOnly = false;

    friend bool operator==(const SearchQuery&, const SearchQuery&) = default;
};

} // namespace tovi
