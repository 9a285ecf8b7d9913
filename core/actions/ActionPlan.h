#pragma once

#include "base/Date.h"
#include "base/Uuid.h"
#include "core/files/FileSnapshot.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

enum class FileOperation { trash, rename };

/// One file of a plan, as it was when it was reviewed.
struct PlannedFileAction {
    std::string sourcePath;                     // absolute, links resolved
    std::optional<std::string> destinationPath; // for a rename only
    FileOperation operation = FileOperation::trash;
    FileSnapshot snapshot;
    /// Hard links to the file: where not all of them are in the plan, its bytes stay in use. Not
    /// part of the plan's JSON.
    std::uint64_t linkCount = 1;
};

/// A copy that stays when its duplicates are moved.
struct RetainedFile {
    std::string path;
    FileSnapshot snapshot;
};

/// A plan has no more files than a person can review.
inline constexpr std::size_t mostPlannedFiles = 500;

/// What the user reviews and confirms. Executed at most once, within 900 seconds.
struct ActionPlan {
    Uuid id;
    std::string title;
    std::vector<PlannedFileAction> items;
    std::string explanation;
    Date createdAt;
    std::vector<RetainedFile> retainedFiles;
};

/// Sixteen hexadecimal digits over every path, operation and snapshot of a plan: two plans with
/// one code propose the same.
std::string reviewCode(const ActionPlan& plan);

/// Whether moving the item leaves its bytes in use under a name that the plan does not move.
bool freesNothing(const PlannedFileAction& item, const ActionPlan& plan);

} // namespace tovi
