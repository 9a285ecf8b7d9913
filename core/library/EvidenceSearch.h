#pragma once

#include "core/search/EvidenceRetriever.h"
#include "core/store/IndexStore.h"

#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace tovi {

/// The first 32 words of a question that say what it is about; all of them if none does.
std::vector<std::string> contentWords(std::string_view question);

/// Answers a question from the index: looks for each of its `contentWords` alone, so that a natural
/// question finds files which hold only some of them, and cuts passages out of the most promising
/// files. Throws as `IndexStore`.
std::vector<EvidenceCitation> findEvidence(IndexStore& index, std::string_view question,
                                           std::int64_t limit, const std::stop_token& stop = {});

} // namespace tovi
