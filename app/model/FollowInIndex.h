#pragma once

#include "core/actions/ActionReceipt.h"
#include "core/store/IndexStore.h"

#include <string>
#include <vector>

namespace tovi {

/// Lets the index follow what was done, so that nothing that was moved is found at its old place
/// until the next scan. What fails here the scan puts right.
void followInIndex(const ActionReceipt& receipt, IndexStore& store);

/// The same for files and whole folders that went to the Trash.
void followInIndex(const std::vector<std::string>& trashed, IndexStore& store);

} // namespace tovi
