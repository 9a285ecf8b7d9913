#pragma once

#include "core/records/FileRecord.h"

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace tovi {

/// A passage that answers a question, and the file it was cut from.
struct EvidenceCitation {
    FileRecord file;
    std::string excerpt; // as it stands in the file's text

    std::string id() const { return file.path + '\n' + excerpt; }

    friend bool operator==(const EvidenceCitation&, const EvidenceCitation&) = default;
};

/// Answers questions with literal passages of files, never with made text.
struct EvidenceRetriever {
    /// One passage from each file whose text holds a word of the question, beginning 120
    /// characters before the first such place and at most 600 characters long. Passages with more
    /// of the question's words come first, ties in the order of `files`.
    static std::vector<EvidenceCitation> answer(std::string_view query,
                                                const std::vector<FileRecord>& files,
                                                const std::stop_token& stop = {});

    /// The words of a question in lower case (UAX #29), each once and of two characters or more.
    static std::vector<std::string> words(std::string_view query);
};

} // namespace tovi

template <>
struct std::hash<tovi::EvidenceCitation> {
    std::size_t operator()(const tovi::EvidenceCitation& citation) const {
        return std::hash<std::string>()(citation.id());
    }
};
