#pragma once

#include "core/library/LibraryOrder.h"
#include "core/store/IndexStore.h"

#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// What a project is at the moment.
struct ProjectFiles {
    std::vector<FileRecord> files;    // newest first, without content
    std::vector<std::string> missing; // paths that are not in the index, in byte order
    LibrarySummary summary;
};

/// The files of a project from its paths. Throws as `IndexStore`.
ProjectFiles projectFiles(IndexStore& index, const std::vector<std::string>& paths,
                          const std::stop_token& stop = {});

} // namespace tovi
