#pragma once

#include "base/Date.h"
#include "core/records/FileKind.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

enum class FileColumn { modified, name, folder, kind, size };

/// By what files are listed. Equal ones stand by name or path.
struct FileOrder {
    FileColumn column = FileColumn::modified;
    bool isDescending = true;

    friend bool operator==(const FileOrder&, const FileOrder&) = default;
};

/// A search: filters, the free text that is left, and the order of what is found.
struct SearchQuery {
    std::string text; // words separated by single spaces; may be empty
    std::optional<FileKind> kind;
    std::optional<Date> modifiedAfter;       // included
    std::optional<Date> modifiedBefore;      // not included
    std::optional<std::int64_t> minimumSize; // bytes
    std::optional<std::string> source;       // a host name or a word of a stored address
    std::vector<std::string> chips;          // how the phrase was understood, in order
    std::vector<std::string> chipWords;      // the words of the phrase behind each of them
    bool screenshotsOnly = false;
    FileOrder order;

    friend bool operator==(const SearchQuery&, const SearchQuery&) = default;
};

} // namespace tovi
