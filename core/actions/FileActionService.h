#pragma once

#include "core/actions/ActionError.h"
#include "core/actions/ActionLog.h"
#include "core/actions/ActionPlan.h"
#include "core/actions/ActionReceipt.h"
#include "core/records/FileRecord.h"
#include "platform/Availability.h"
#include "platform/Bookmark.h"
#include "platform/ExclusiveMove.h"
#include "platform/Trash.h"

#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

class FileChecks;
struct CheckedFile;
struct MoveSystem;

/// What file actions need of the system; everything outlives the service.
struct FileActionSystem {
    platform::Trash& trash;
    platform::ExclusiveMove& move;
    platform::Bookmarks& bookmarks;
    const platform::Availability& availability;
    Clock clock;
};

/// Moves files to the Trash and renames one file, and takes both back. A change is first planned,
/// then confirmed, then executed, every file verified again right before it is touched; nothing is
/// deleted or replaced. Every step is in the log on the disk before and after it is made.
///
/// May be called from any thread: one operation runs at a time. Two processes may share a log; the
/// one that comes while the other changes files gets an `ActionError`.
class FileActionService {
  public:
    /// Reads the log, making its folder (mode 0700) if it is missing, and completes the receipt of
    /// a run that was cut off. Throws `ActionError` for a log that cannot be read.
    FileActionService(const std::string& journalPath, FileActionSystem system);

    /// Proposes to change 1 to 500 records inside `roots` and changes nothing. `newName` is for a
    /// rename only. `keepers` are copies that stay, with their digests; each file must then have
    /// a keeper of equal content. Throws `ActionError` and `Cancelled`.
    ActionPlan plan(std::span<const FileRecord> files, FileOperation operation,
                    const std::optional<std::string>& newName,
                    const std::vector<std::string>& roots, std::span<const FileRecord> keepers = {},
                    const std::stop_token& stop = {});

    /// Executes a plan once. Throws `ActionError`, or `Cancelled` while the files are verified,
    /// where nothing was changed; what stops it later is the receipt's error. Also throws where
    /// the log cannot be written: the run is completed from the step's own note at the next start.
    ActionReceipt execute(const ActionPlan& plan, const Uuid& confirmedPlanID,
                          const std::vector<std::string>& roots, const std::stop_token& stop = {});

    /// Takes back what is left of a receipt, the last file first. Throws `ActionError` at the
    /// first file that cannot be restored; those before it stay restored, as `history` tells.
    ActionReceipt undo(const Uuid& receipt, const std::vector<std::string>& roots);

    /// Newest first.
    std::vector<ActionReceipt> history();

  private:
    MoveSystem moves() const;
    ActionEntry change(const CheckedFile& file, const PlannedFileAction& item, ActionIntent& intent,
                       std::error_code& syncError);

    std::mutex mutex_;
    FileActionSystem system_; // with the log under the mutex
    ActionLog log_;
};

} // namespace tovi
