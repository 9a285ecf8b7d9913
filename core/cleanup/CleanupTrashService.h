#pragma once

#include "core/cleanup/CleanupJournal.h"
#include "core/cleanup/CleanupPolicy.h"
#include "platform/Bookmark.h"
#include "platform/ExclusiveMove.h"
#include "platform/RunningPrograms.h"
#include "platform/Trash.h"

#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

struct MoveSystem;

/// What the cleanup needs of the system; everything outlives the service.
struct CleanupSystem {
    platform::Trash& trash;
    platform::ExclusiveMove& move;
    platform::Bookmarks& bookmarks;
    const platform::Availability& availability;
    const platform::RunningPrograms& programs;
    const CleanupDiscoveryMetadata& metadata;
    Clock clock;
};

/// Moves reviewed candidates to the Trash and takes them back. A plan is prepared, confirmed, and
/// executed once; every item is verified again right before it is moved, and every step is in the
/// journal before and after it is made.
///
/// May be called from any thread: one operation runs at a time. Two processes may share a journal;
/// the one that comes while the other moves files gets a `CleanupActionError`.
class CleanupTrashService {
  public:
    /// `folders` and `excludedPaths` are those of the scan. A journal that cannot be read makes
    /// every later operation throw. Completes the receipt of a run that was cut off.
    CleanupTrashService(const std::string& journalPath, CleanupFolders folders,
                        std::vector<std::string> excludedPaths, CleanupSystem system);

    /// Proposes to move 1 to 200 candidates that lie in the approved folders `roots` and makes
    /// this the plan under review. Changes nothing. Throws `CleanupActionError` and `Cancelled`.
    CleanupPlan prepare(std::span<const CleanupCandidate> candidates,
                        const std::vector<std::string>& roots, const std::stop_token& stop = {});

    /// Executes the plan under review once. Throws `CleanupActionError` where nothing was moved;
    /// what stops it later is the receipt's error.
    CleanupReceipt execute(const CleanupPlan& plan, const Uuid& confirmedPlanID,
                           const std::vector<std::string>& roots, const std::stop_token& stop = {});

    /// Moves back what is left of a receipt, the last item first. Throws `CleanupActionError` at
    /// the first that cannot be restored; those before it stay restored, as `history` tells.
    CleanupReceipt undo(const Uuid& receipt);

    /// Newest first. Throws `CleanupActionError` for a journal that cannot be read.
    std::vector<CleanupReceipt> history();

  private:
    struct CheckedItem;

    MoveSystem moves() const;
    /// Nothing for an item that changed or is no candidate any more.
    std::optional<CheckedItem> check(const std::string& path, CleanupCategory category,
                                     const CleanupFileIdentity& identity,
                                     const std::vector<std::string>& roots,
                                     const std::stop_token& stop) const;
    CheckedItem checkReviewed(const CleanupPlannedItem& item, const std::vector<std::string>& roots,
                              const std::stop_token& stop) const;
    CleanupContentSnapshot snapshotOf(const platform::DirectoryEntry& item,
                                      const std::stop_token& stop) const;
    void moveToTrash(const CleanupPlannedItem& item, const CheckedItem& checked,
                     CleanupReceipt& receipt, CleanupJournal::Intent& intent);

    std::mutex mutex_;
    CleanupFolders folders_;
    std::vector<std::string> excludedPaths_;
    CleanupSystem system_; // with all below under the mutex
    CleanupJournal journal_;
    std::optional<CleanupPlan> reviewedPlan_;
};

} // namespace tovi
