#pragma once

#include "cli/Context.h"
#include "core/indexing/FileIndexer.h"

#include <string>
#include <vector>

namespace tovi::cli {

/// Notes folders that are about to be indexed, as `FileIndexer::acceptedRoot` gives them, among the
/// connected ones. The caller holds the writer lock.
void rememberFolders(const std::vector<std::string>& roots, const FileIndexer& indexer,
                     const Context& context);

/// Whether the folder at `root` may stand for its rows: not where another was connected there.
bool isTheConnectedFolder(const std::string& root, const Context& context);

/// Disconnects a folder and says so.
void forgetFolder(const std::string& folder, const Context& context);

} // namespace tovi::cli
