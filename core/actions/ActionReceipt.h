#pragma once

#include "core/actions/ActionPlan.h"

#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// One completed file action.
struct ActionEntry {
    std::string originalPath;
    std::string currentPath; // where the action put the file
    FileOperation operation = FileOperation::trash;
    FileSnapshot snapshot; // verified just before the action
    bool restored = false;
    std::optional<std::string> bookmark; // bytes of `platform::Bookmarks`
};

/// One executed plan.
struct ActionReceipt {
    Uuid id; // the plan's
    std::string title;
    Date date;
    std::vector<ActionEntry> entries; // in the order of execution
    bool undone = false;              // every entry was restored
    std::optional<std::string> error; // set when execution stopped early
};

} // namespace tovi
