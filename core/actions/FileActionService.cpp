#include "core/actions/FileActionService.h"

#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/actions/FileChecks.h"
#include "core/files/MoveRecovery.h"

#include <algorithm>
#include <set>

#include <fmt/format.h>

namespace tovi {
namespace {

using platform::DirectoryEntry;

constexpr double planLifetime = 900; // seconds

constexpr const char* explanation =
    "Review every path. Files are checked again before execution. Trash can be restored while its "
    "contents remain available; rename can be undone if the original name is free.";

std::string titleOf(FileOperation operation, std::size_t count) {
    if (operation == FileOperation::rename) return "Rename file";
    return fmt::format("Move {} file{} to Trash", count, count == 1 ? "" : "s");
}

/// Whether two checked paths are one and the same name of a file, perhaps through two mounts.
bool isSameName(const std::string& path, const FileSnapshot& snapshot, const CheckedFile& file) {
    if (path == file.entry.path()) return true;
    return file.linkCount == 1 && snapshot.inode == file.snapshot.inode &&
           snapshot.device == file.snapshot.device;
}

std::vector<RetainedFile> retain(std::span<const FileRecord> keepers, const FileChecks& checks) {
    std::vector<RetainedFile> retained;
    for (const FileRecord& keeper : keepers) {
        const CheckedFile file = checks.check(keeper.path);
        if (keeper.sha256 != file.snapshot.digest) {
            throw ActionError(
                "The copy chosen to keep changed since duplicate analysis. Scan again.");
        }
        retained.push_back({file.entry.path(), file.snapshot});
    }
    return retained;
}

std::string freeDestination(const CheckedFile& file, const std::string& name) {
    const DirectoryEntry destination = file.entry.sibling(name);
    bool isTaken = true;
    try {
        isTaken = destination.attributes().has_value();
    } catch (const std::system_error& error) {
        throw ActionError("The new name cannot be used: " + printable(error.what()));
    }
    if (isTaken) {
        throw ActionError("A file already exists at " + destination.path() +
                          ". Nothing was replaced.");
    }
    return destination.path();
}

} // namespace

FileActionService::FileActionService(const std::string& journalPath, FileActionSystem system)
    : system_(std::move(system)), log_(journalPath) {
    log_.load();
    if (!log_.intent()) return;
    // Without the lock the run is not cut off but under way in another process.
    if (const auto lock = log_.tryLock()) {
        log_.load();
        recoverInterruptedRun(log_, moves());
    }
}

ActionPlan FileActionService::plan(std::span<const FileRecord> files, FileOperation operation,
                                   const std::optional<std::string>& newName,
                                   const std::vector<std::string>& roots,
                                   std::span<const FileRecord> keepers,
                                   const std::stop_token& stop) {
    const std::lock_guard guard(mutex_);
    if (files.empty() || files.size() > mostPlannedFiles) {
        throw ActionError("Select between 1 and 500 files to review.");
    }
    const bool isRename = operation == FileOperation::rename;
    if (isRename && files.size() != 1) throw ActionError("Rename one file at a time.");

    const FileChecks checks(roots, system_.availability, stop);
    ActionPlan plan;
    plan.retainedFiles = retain(keepers, checks);
    constexpr const char* keptAndMoved = "A retained copy cannot also be moved to Trash.";
    for (const FileRecord& file : files) {
        for (const FileRecord& keeper : keepers) {
            if (file.path == keeper.path) throw ActionError(keptAndMoved);
        }
    }

    std::set<std::string> seen;
    for (const FileRecord& record : files) {
        if (!seen.insert(record.path).second) continue;
        const std::string path = checks.containedPath(record.path);
        if (path != record.path && !seen.insert(path).second) continue;
        const CheckedFile file = checks.checkAgain(path);
        if (std::any_of(plan.items.begin(), plan.items.end(), [&](const auto& item) {
                return isSameName(item.sourcePath, item.snapshot, file);
            })) {
            continue;
        }
        if (record.sha256 && *record.sha256 != file.snapshot.digest) {
            throw ActionError("This file changed since duplicate analysis. Scan again: " +
                              record.path);
        }
        bool hasKeeper = plan.retainedFiles.empty();
        for (const RetainedFile& kept : plan.retainedFiles) {
            if (isSameName(kept.path, kept.snapshot, file)) throw ActionError(keptAndMoved);
            hasKeeper = hasKeeper || kept.snapshot.digest == file.snapshot.digest;
        }
        if (!hasKeeper) {
            throw ActionError("No verified retained copy exists for this duplicate.");
        }
        PlannedFileAction item{path, {}, operation, file.snapshot, file.linkCount};
        if (isRename) item.destinationPath = freeDestination(file, validatedName(newName));
        plan.items.push_back(std::move(item));
    }
    plan.id = Uuid::random();
    plan.createdAt = system_.clock();
    plan.title = titleOf(operation, plan.items.size());
    plan.explanation = explanation;
    return plan;
}

MoveSystem FileActionService::moves() const {
    return {system_.trash, system_.move, system_.bookmarks};
}

ActionReceipt FileActionService::execute(const ActionPlan& plan, const Uuid& confirmedPlanID,
                                         const std::vector<std::string>& roots,
                                         const std::stop_token& stop) {
    const std::lock_guard guard(mutex_);
    if (confirmedPlanID != plan.id) {
        throw ActionError("This exact plan must be confirmed before execution.");
    }
    const ProcessLock lock = beginChange(log_, moves());
    if (log_.find(plan.id) != nullptr) throw ActionError("This plan has already been executed.");
    const double age = system_.clock() - plan.createdAt;
    // The clock may have been set back since, and then tells nothing.
    if (age >= planLifetime || age < 0) throw ActionError("The plan expired. Review a fresh plan.");

    FileChecks checks(roots, system_.availability, stop);
    checks.checkRetained(plan.retainedFiles, "");
    for (const PlannedFileAction& item : plan.items)
        checks.checkReviewed(item);

    ActionIntent intent{ActionIntent::Kind::execute, plan.id, plan.items.size(), {}};
    log_.writeIntent(intent);
    log_.receipts().push_back({plan.id, plan.title, system_.clock(), {}, false, {}});
    ActionReceipt& receipt = log_.receipts().back();
    log_.save();

    const auto stopAt = [&](const std::string& reason) {
        receipt.error = ActionLogForm::stopped(receipt.entries.size(), reason);
        log_.save();
    };
    try {
        for (const PlannedFileAction& item : plan.items) {
            throwIfCancelled(stop);
            checks.checkRetained(plan.retainedFiles, item.snapshot.digest);
            const CheckedFile file = checks.checkReviewed(item);
            std::error_code syncError;
            receipt.entries.push_back(change(file, item, intent, syncError));
            log_.save();
            --intent.remaining;
            if (syncError) {
                throw ActionError("The last move could not be written to the disk: " +
                                  syncError.message());
            }
        }
    } catch (const Cancelled&) {
        stopAt("Cancelled.");
    } catch (const std::exception& error) {
        stopAt(error.what());
    }
    log_.clearIntent();
    return receipt;
}

ActionEntry FileActionService::change(const CheckedFile& file, const PlannedFileAction& item,
                                      ActionIntent& intent, std::error_code& syncError) {
    ActionEntry entry{item.sourcePath, "", item.operation, file.snapshot, false, {}};
    entry.bookmark = system_.bookmarks.create(file.entry);
    const auto announce = [&](const std::string& destination) {
        entry.currentPath = destination;
        intent.entry = entry;
        log_.writeIntent(intent);
    };
    if (item.operation == FileOperation::rename) {
        if (!item.destinationPath) throw ActionError("Missing rename destination.");
        const DirectoryEntry destination =
            file.entry.sibling(std::string(lastPathComponent(*item.destinationPath)));
        announce(destination.path());
        try {
            syncError = system_.move.move(file.entry, destination);
        } catch (const std::system_error& error) {
            if (error.code() != std::errc::file_exists) throw;
            throw ActionError("Rename destination changed or already exists.");
        }
    } else {
        const platform::TrashedItem moved = system_.trash.move(file.entry, announce);
        entry.currentPath = moved.path;
        syncError = moved.syncError;
    }
    if (checkArrival<ActionLogForm>(entry, file.entry, moves()) == Arrival::putBack) {
        throw ActionError("File changed since review: " + entry.originalPath +
                          ". Create a fresh plan.");
    }
    return entry;
}

ActionReceipt FileActionService::undo(const Uuid& id, const std::vector<std::string>& roots) {
    const std::lock_guard guard(mutex_);
    const ProcessLock lock = beginChange(log_, moves());
    ActionReceipt* receipt = log_.find(id);
    if (receipt == nullptr) throw ActionError("No restorable action was found.");
    const FileChecks checks(roots, system_.availability, {});
    undoReceipt<ActionLogForm>(
        log_, *receipt, moves(),
        {[&](const std::string& path) { checks.requireContained(path); },
         [&](const DirectoryEntry& moved, const ActionEntry& entry) {
             return takeSnapshot(moved, system_.availability).matches(entry.snapshot);
         }});
    return *receipt;
}

std::vector<ActionReceipt> FileActionService::history() {
    const std::lock_guard guard(mutex_);
    log_.load();
    return log_.newestFirst();
}

} // namespace tovi
