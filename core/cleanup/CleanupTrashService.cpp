#include "core/cleanup/CleanupTrashService.h"

#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/cleanup/CleanupApplicationBundle.h"
#include "core/files/AuthorizedFolders.h"
#include "core/files/FileDigest.h"
#include "core/files/MoveRecovery.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include <fmt/format.h>

namespace tovi {
namespace {

using platform::DirectoryEntry;
using platform::FileType;

constexpr std::size_t maximumItems = 200;
constexpr double planLifetime = 900; // seconds

constexpr const char* explanation =
    "Review the selected items. Large or old does not mean unnecessary. Removing an app does not "
    "remove its settings or other files. Close the related apps before removing caches or logs; "
    "caches may be rebuilt and logs contain diagnostic history. Trash is not emptied, so this does "
    "not immediately free disk space.";

/// The approved folders that exist, links resolved, each once.
std::vector<std::string> canonicalRoots(const std::vector<std::string>& roots) {
    std::set<std::string> result;
    std::error_code ignored;
    for (const std::string& root : roots) {
        const auto resolved = canonicalPath(root);
        if (resolved && std::filesystem::is_directory(*resolved, ignored)) result.insert(*resolved);
    }
    return {result.begin(), result.end()};
}

/// Room for the receipt that a plan may lead to: its names stand in each entry about four times,
/// besides numbers and digests.
std::size_t roomFor(const CleanupPlan& plan) {
    constexpr std::size_t fixed = 4096;
    constexpr std::size_t names = 8;
    std::size_t bytes = fixed;
    for (const CleanupPlannedItem& item : plan.items)
        bytes += fixed + names * item.sourcePath.size();
    return bytes;
}

std::optional<platform::FileAttributes> attributesOrNone(const DirectoryEntry& item) {
    try {
        return item.attributes();
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

CleanupContentSnapshot fileSnapshot(const DirectoryEntry& item, const CleanupFileIdentity& before,
                                    const std::stop_token& stop) {
    try {
        const FileDescriptor file = item.openRegularFile();
        if (CleanupFileIdentity::of(platform::attributesOf(file, item.path())) != before) {
            throw CleanupActionError("The selected file changed while opening it: " + item.path());
        }
        const auto digest =
            digestOf(file, static_cast<std::uint64_t>(before.size), item.path(), stop);
        if (!digest) {
            throw CleanupActionError(
                "The selected file grew while being checked. Refresh and try again.");
        }
        const auto named = item.attributes();
        if (CleanupFileIdentity::of(platform::attributesOf(file, item.path())) != before ||
            !named || CleanupFileIdentity::of(*named) != before) {
            throw CleanupActionError("The selected file changed while being checked: " +
                                     item.path());
        }
        return {before, *digest};
    } catch (const std::system_error&) {
        throw CleanupActionError("The selected file could not be read: " + item.path());
    }
}

} // namespace

struct CleanupTrashService::CheckedItem {
    DirectoryEntry entry;
    std::int64_t size;
    CleanupContentSnapshot snapshot;

    bool isUnchanged() const {
        const auto now = attributesOrNone(entry);
        return now && CleanupFileIdentity::of(*now) == snapshot.identity;
    }
};

CleanupTrashService::CleanupTrashService(const std::string& journalPath, CleanupFolders folders,
                                         std::vector<std::string> excludedPaths,
                                         CleanupSystem system)
    : folders_(std::move(folders)),
      excludedPaths_(std::move(excludedPaths)),
      system_(std::move(system)),
      journal_(journalPath) {
    try {
        // Without the lock a run is not cut off but under way in another process.
        if (!journal_.intent()) return;
        if (const auto lock = journal_.tryLock()) {
            journal_.load();
            recoverInterruptedRun(journal_, moves());
        }
    } catch (const CleanupActionError&) {
        return; // every later operation says so
    }
}

MoveSystem CleanupTrashService::moves() const {
    return {system_.trash, system_.move, system_.bookmarks};
}

CleanupContentSnapshot CleanupTrashService::snapshotOf(const DirectoryEntry& item,
                                                       const std::stop_token& stop) const {
    if (isApplicationName(item.name())) {
        try {
            return CleanupApplicationBundle(item.directory(), item.path(), system_.availability)
                .snapshot(stop);
        } catch (const CleanupBundleError& error) {
            throw CleanupActionError(error.what());
        }
    }
    const auto attributes = attributesOrNone(item);
    if (!attributes || attributes->type != FileType::regular) {
        throw CleanupActionError(
            "Cleanup only moves regular files. Folders and symbolic links are protected.");
    }
    if (!system_.availability.isAvailableLocally(
            item.path(), platform::ExtendedAttributes(item.path(), item.directory()))) {
        throw CleanupActionError("This file is not fully available locally: " + item.path());
    }
    return fileSnapshot(item, CleanupFileIdentity::of(*attributes), stop);
}

std::optional<CleanupTrashService::CheckedItem> CleanupTrashService::check(
    const std::string& path, CleanupCategory category, const CleanupFileIdentity& identity,
    const std::vector<std::string>& roots, const std::stop_token& stop) const {
    // A hidden folder may be approved itself: the innermost one decides.
    const std::string* holder = nullptr;
    for (const std::string& root : roots) {
        if (isSameOrBelow(path, root) && (holder == nullptr || root.size() > holder->size())) {
            holder = &root;
        }
    }
    if (holder == nullptr) return std::nullopt;
    const CleanupContext context(*holder, folders_, excludedPaths_, system_.metadata,
                                 system_.availability);
    const auto found = CleanupPolicy(context, system_.clock()).candidateAt(path, stop);
    if (!found || found->category != category || found->identity != identity) return std::nullopt;
    if (found->reviewOnlyReason) throw CleanupActionError(*found->reviewOnlyReason);
    try {
        const DirectoryEntry entry = DirectoryEntry::open(path);
        return CheckedItem{entry, found->size, snapshotOf(entry, stop)};
    } catch (const std::system_error&) {
        return std::nullopt;
    }
}

CleanupPlan CleanupTrashService::prepare(std::span<const CleanupCandidate> candidates,
                                         const std::vector<std::string>& roots,
                                         const std::stop_token& stop) {
    const std::lock_guard guard(mutex_);
    if (candidates.empty() || candidates.size() > maximumItems) {
        throw CleanupActionError("Select between 1 and 200 items for each cleanup review.");
    }
    CleanupPlan plan;
    plan.rootPaths = canonicalRoots(roots);
    if (plan.rootPaths.empty()) {
        throw CleanupActionError("Reconnect an approved folder before reviewing cleanup.");
    }
    plan.rootPath = plan.rootPaths.front();
    std::set<std::string> seen;
    for (const CleanupCandidate& candidate : candidates) {
        if (!seen.insert(candidate.path).second) continue;
        const auto item =
            check(candidate.path, candidate.category, candidate.identity, plan.rootPaths, stop);
        if (!item) {
            throw CleanupActionError(
                "A selected file changed or is no longer eligible. Scan again: " + candidate.path);
        }
        if (item->snapshot.identity != candidate.identity) {
            throw CleanupActionError("A selected file changed while preparing review: " +
                                     candidate.path);
        }
        plan.items.push_back({candidate.path, std::string(lastPathComponent(candidate.path)),
                              item->size, candidate.category, item->snapshot});
    }
    plan.id = Uuid::random();
    plan.createdAt = system_.clock();
    plan.title = fmt::format("Move {} {} to Trash", plan.items.size(),
                             plan.items.size() == 1 ? "item" : "items");
    plan.explanation = explanation;
    reviewedPlan_ = plan;
    return plan;
}

CleanupReceipt CleanupTrashService::execute(const CleanupPlan& plan, const Uuid& confirmedPlanID,
                                            const std::vector<std::string>& roots,
                                            const std::stop_token& stop) {
    const std::lock_guard guard(mutex_);
    if (reviewedPlan_ != plan || confirmedPlanID != plan.id) {
        throw CleanupActionError("Review and confirm this exact cleanup plan before moving files.");
    }
    const ProcessLock lock = beginChange(journal_, moves());
    if (journal_.find(plan.id) != nullptr) {
        throw CleanupActionError(
            "This cleanup plan has already been attempted. Review a fresh plan.");
    }
    const double age = system_.clock() - plan.createdAt;
    if (age < 0 || age >= planLifetime) {
        throw CleanupActionError("The cleanup review expired. Review a fresh plan.");
    }
    if (canonicalRoots(roots) != plan.rootPaths) {
        throw CleanupActionError(
            "The authorized scan locations changed. Review a fresh cleanup plan.");
    }

    CleanupJournal::Intent intent{
        CleanupJournal::Intent::Kind::execute, plan.id, plan.items.size(), {}};
    journal_.receipts().push_back(
        {plan.id, plan.title, system_.clock(), plan.rootPath, {}, {}, false, plan.rootPaths});
    CleanupReceipt& receipt = journal_.receipts().back();
    try {
        journal_.writeIntent(intent);
        journal_.save(roomFor(plan));
    } catch (const CleanupActionError& error) {
        journal_.receipts().pop_back(); // the note of a run without a receipt says nothing
        throw CleanupActionError(
            std::string("Cleanup history could not be saved. Nothing was moved: ") + error.what());
    }
    try {
        for (const CleanupPlannedItem& item : plan.items) {
            throwIfCancelled(stop);
            moveToTrash(item, checkReviewed(item, plan.rootPaths, stop), receipt, intent);
        }
    } catch (const Cancelled&) {
        receipt.error =
            CleanupJournalForm::stopped(receipt.entries.size(), "Cleanup was cancelled.");
    } catch (const std::exception& error) {
        receipt.error = CleanupJournalForm::stopped(receipt.entries.size(), error.what());
    }
    try {
        if (receipt.error) journal_.save();
        journal_.clearIntent();
    } catch (const CleanupActionError&) {
        // The note of the last step stays, and the next start completes the journal from it.
        receipt.error = receipt.error.value_or("") +
                        " The recovery history could not be saved; use Finder to inspect Trash.";
    }
    return receipt;
}

CleanupTrashService::CheckedItem
CleanupTrashService::checkReviewed(const CleanupPlannedItem& item,
                                   const std::vector<std::string>& roots,
                                   const std::stop_token& stop) const {
    auto checked = check(item.sourcePath, item.category, item.snapshot.identity, roots, stop);
    if (!checked) {
        throw CleanupActionError(
            "A selected file changed or is no longer eligible. No further files will be moved: " +
            item.sourcePath);
    }
    const bool isApplication = item.category == CleanupCategory::unusedApps;
    if (checked->snapshot != item.snapshot) {
        throw CleanupActionError(
            isApplication ? "The app changed during review. Refresh and try again."
                          : "A selected file changed before it could be moved: " + item.sourcePath);
    }
    if (isApplication && system_.programs.use(item.sourcePath)) {
        throw CleanupActionError(
            "This app is running or changed since review. Nothing else will be moved.");
    }
    return std::move(*checked);
}

void CleanupTrashService::moveToTrash(const CleanupPlannedItem& item, const CheckedItem& checked,
                                      CleanupReceipt& receipt, CleanupJournal::Intent& intent) {
    const std::string changed =
        "A selected file changed before it could be moved: " + item.sourcePath;
    CleanupActionEntry entry{item.sourcePath, "", item.size, item.category,
                             item.snapshot,   {}, false};
    entry.bookmark = system_.bookmarks.create(checked.entry);
    const auto announce = [&](const std::string& destination) {
        entry.currentPath = destination;
        intent.entry = entry;
        journal_.writeIntent(intent);
        if (!checked.isUnchanged()) throw CleanupActionError(changed);
    };
    const platform::TrashedItem moved = system_.trash.move(checked.entry, announce);
    entry.currentPath = moved.path;
    const Arrival arrival = checkArrival<CleanupJournalForm>(entry, checked.entry, moves());
    if (arrival == Arrival::putBack) throw CleanupActionError(changed);
    receipt.entries.push_back(entry);
    journal_.save();
    --intent.remaining;
    if (arrival == Arrival::unknown) {
        throw CleanupActionError(
            "A moved file could not be verified. Review its location in Finder Trash.");
    }
    if (moved.syncError) {
        throw CleanupActionError("The last move could not be written to the disk: " +
                                 moved.syncError.message());
    }
}

CleanupReceipt CleanupTrashService::undo(const Uuid& id) {
    const std::lock_guard guard(mutex_);
    const ProcessLock lock = beginChange(journal_, moves());
    CleanupReceipt* receipt = journal_.find(id);
    if (receipt == nullptr) throw CleanupActionError("No restorable action was found.");
    const AuthorizedFolders folders(receipt->rootPaths);
    undoReceipt<CleanupJournalForm>(
        journal_, *receipt, moves(),
        {[&](const std::string& path) {
             if (resolvedFolders(path) == path && folders.contains(path)) return;
             throw CleanupActionError("Only files inside currently authorized folders can be "
                                      "changed. Symbolic links are excluded.");
         },
         [&](const DirectoryEntry& moved, const CleanupActionEntry& entry) {
             return CleanupJournalForm::leadsTo(moved, entry) &&
                    snapshotOf(moved, {}).sha256 == entry.snapshot.sha256;
         }});
    return *receipt;
}

std::vector<CleanupReceipt> CleanupTrashService::history() {
    const std::lock_guard guard(mutex_);
    journal_.load();
    return journal_.newestFirst();
}

} // namespace tovi
