#pragma once

#include "base/Uuid.h"
#include "core/cleanup/CleanupCategory.h"
#include "core/cleanup/CleanupContentSnapshot.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tovi {

/// Why a cleanup was refused or stopped; `what()` is the whole sentence for the user.
class CleanupActionError : public std::runtime_error {
    using runtime_error::runtime_error;
};

/// One item of a plan, as it was when it was reviewed.
struct CleanupPlannedItem {
    std::string sourcePath; // absolute, links resolved
    std::string name;
    std::int64_t size = 0; // bytes
    CleanupCategory category = CleanupCategory::largeFiles;
    CleanupContentSnapshot snapshot;

    friend bool operator==(const CleanupPlannedItem&, const CleanupPlannedItem&) = default;
};

/// What the user reviews and confirms. Executed at most once, within 900 seconds.
struct CleanupPlan {
    Uuid id;
    std::string title;
    std::vector<CleanupPlannedItem> items;
    Date createdAt;
    std::string rootPath; // the first of `rootPaths`
    std::string explanation;
    std::vector<std::string> rootPaths; // the folders that were approved, links resolved

    friend bool operator==(const CleanupPlan&, const CleanupPlan&) = default;
};

/// One item that was moved.
struct CleanupActionEntry {
    std::string originalPath;
    std::string currentPath; // in the Trash
    std::int64_t size = 0;   // bytes
    CleanupCategory category = CleanupCategory::largeFiles;
    CleanupContentSnapshot snapshot;     // verified just before the move
    std::optional<std::string> bookmark; // bytes of `platform::Bookmarks`
    bool restored = false;
};

/// One executed plan.
struct CleanupReceipt {
    Uuid id; // the plan's
    std::string title;
    Date date;
    std::string rootPath;
    std::vector<CleanupActionEntry> entries; // in the order of execution
    std::optional<std::string> error;        // set when execution stopped early
    bool undone = false;                     // every entry was restored
    std::vector<std::string> rootPaths;
};

/// Sixteen hexadecimal digits: two plans with one code propose the same.
std::string reviewCode(const CleanupPlan& plan);

} // namespace tovi
