#pragma once

#include "core/search/EvidenceRetriever.h"
#include "core/store/IndexStore.h"

#include <cstdint>
#include <stop_token>
#include <string_view>
#include <vector>

namespace tovi {

/// Answers a question from the index: looks for each of its content words alone, so that a natural
/// question finds files which hold only some of them, and cuts passages out of the most promising
/// files. The first 32 content words of a question are looked for. Throws as `IndexStore`.
std::vector<EvidenceCitation> findEvidence(IndexStore& index, std::string_view question,
                                           std::int64_t limit, const std::stop_token& stop = {});

} // namespace tovi
