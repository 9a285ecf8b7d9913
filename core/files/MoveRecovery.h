#pragma once

#include "base/Text.h"
#include "core/files/MoveJournal.h"
#include "platform/Bookmark.h"
#include "platform/ExclusiveMove.h"
#include "platform/Trash.h"

#include <algorithm>
#include <functional>

namespace tovi {

/// What moves files and finds them again.
struct MoveSystem {
    platform::Trash& trash;
    platform::ExclusiveMove& move;
    platform::Bookmarks& bookmarks;
};

enum class Arrival { asReviewed, putBack, unknown };

/// Looks at what was just moved from `source`. What is not the reviewed file took its place in the
/// last moment and goes back, if its old name is still free.
template <typename Form>
Arrival checkArrival(const typename Form::Entry& entry, const platform::DirectoryEntry& source,
                     const MoveSystem& system) {
    try {
        const auto moved = platform::DirectoryEntry::open(entry.currentPath);
        if (Form::leadsTo(moved, entry)) return Arrival::asReviewed;
        system.move.move(moved, source);
    } catch (const std::system_error&) {
        return Arrival::unknown;
    }
    if (Form::isInTrash(entry)) system.trash.forget(entry.currentPath, entry.originalPath);
    return Arrival::putBack;
}

enum class Outcome { made, notMade, unknown };

/// Whether a step was made that was to bring the entry's file from one place to another. Takes the
/// old name away where it was left with both.
template <typename Form>
Outcome outcomeOfMove(const std::string& from, const std::string& to,
                      const typename Form::Entry& entry, platform::ExclusiveMove& move) {
    const auto leading = [&](const std::string& path) -> std::optional<platform::DirectoryEntry> {
        try {
            auto found = platform::DirectoryEntry::open(path);
            if (Form::leadsTo(found, entry)) return found;
        } catch (const std::system_error&) {
            return std::nullopt;
        }
        return std::nullopt;
    };
    const auto source = leading(from);
    const auto target = leading(to);
    if (source && target) {
        try {
            move.finish(*source, *target);
        } catch (const std::system_error&) {
            return Outcome::made; // the file is in its new place, and under its old name too
        }
    }
    if (target) return Outcome::made;
    return source ? Outcome::notMade : Outcome::unknown;
}

template <typename Form>
void recoverExecution(const MoveIntent<typename Form::Entry>& intent,
                      typename Form::Receipt& receipt, const MoveSystem& system) {
    std::string reason = "The program was interrupted.";
    std::size_t missing = intent.remaining;
    if (intent.entry) {
        const auto& entry = *intent.entry;
        bool isRecorded =
            std::any_of(receipt.entries.begin(), receipt.entries.end(),
                        [&](const auto& done) { return done.originalPath == entry.originalPath; });
        if (!isRecorded) {
            const Outcome outcome =
                outcomeOfMove<Form>(entry.originalPath, entry.currentPath, entry, system.move);
            if (outcome == Outcome::made) {
                receipt.entries.push_back(entry);
                isRecorded = true;
            } else if (Form::isInTrash(entry)) {
                system.trash.forget(entry.currentPath, entry.originalPath);
            }
            if (outcome == Outcome::unknown) {
                reason += " The file is neither at " + entry.originalPath + " nor at " +
                          entry.currentPath + ".";
            }
        }
        if (isRecorded) --missing;
    }
    if (missing > 0 && !receipt.error) {
        receipt.error = Form::stopped(receipt.entries.size(), reason);
    }
}

template <typename Form>
void recoverUndo(const MoveIntent<typename Form::Entry>& intent, typename Form::Receipt& receipt,
                 const MoveSystem& system) {
    if (!intent.entry) return;
    const auto& step = *intent.entry;
    for (auto& entry : receipt.entries) {
        if (entry.restored || entry.originalPath != step.originalPath) continue;
        if (outcomeOfMove<Form>(step.currentPath, step.originalPath, step, system.move) !=
            Outcome::made) {
            continue;
        }
        if (Form::isInTrash(entry)) system.trash.forget(entry.currentPath, entry.originalPath);
        entry.restored = true;
    }
    receipt.undone =
        !receipt.entries.empty() && std::all_of(receipt.entries.begin(), receipt.entries.end(),
                                                [](const auto& entry) { return entry.restored; });
}

/// Completes the receipt of a run that a crash or a power cut ended, from the note of its last
/// step: where the file is tells whether that step was made. Moves no file, but for the old name
/// of one that was left with both. The caller holds the lock.
template <typename Form>
void recoverInterruptedRun(MoveJournal<Form>& journal, const MoveSystem& system) {
    const auto intent = journal.intent();
    if (!intent) return;
    if (auto* receipt = journal.find(intent->receipt)) {
        if (intent->kind == MoveJournal<Form>::Intent::Kind::execute) {
            recoverExecution<Form>(*intent, *receipt, system);
        } else {
            recoverUndo<Form>(*intent, *receipt, system);
        }
        journal.save();
    }
    journal.clearIntent();
}

/// Locks and loads the journal for a change, and completes what an earlier one left.
template <typename Form>
ProcessLock beginChange(MoveJournal<Form>& journal, const MoveSystem& system) {
    ProcessLock lock = journal.lock();
    journal.load();
    recoverInterruptedRun(journal, system);
    return lock;
}

/// What an undo asks before it moves a file back.
template <typename Form>
struct UndoChecks {
    /// Throws `Form::Error` unless files at this path may be changed.
    std::function<void(const std::string& originalPath)> requireContained;
    /// Whether what has the name is what the entry left there, content included.
    std::function<bool(const platform::DirectoryEntry&, const typename Form::Entry&)> isUnchanged;
};

/// Moves one file back, announcing the step in the journal.
template <typename Form>
void restore(MoveJournal<Form>& journal, MoveIntent<typename Form::Entry>& intent,
             typename Form::Entry& entry, const MoveSystem& system,
             const UndoChecks<Form>& checks) {
    using Error = typename Form::Error;
    using platform::DirectoryEntry;
    std::string location = entry.currentPath;
    if (entry.bookmark) {
        if (const auto found = system.bookmarks.locate(*entry.bookmark, entry.currentPath)) {
            location = found->path;
        }
    }
    checks.requireContained(entry.originalPath);
    const Error taken("Restore stopped: " + entry.originalPath + " already exists.");
    try {
        const DirectoryEntry target = DirectoryEntry::open(entry.originalPath);
        if (target.attributes()) throw taken;
        std::optional<DirectoryEntry> source;
        try {
            source = DirectoryEntry::open(location);
            if (!checks.isUnchanged(*source, entry)) source.reset();
        } catch (const std::exception&) {
            source.reset();
        }
        if (!source) {
            throw Error("The moved file changed or is no longer available. Review it in Finder.");
        }
        intent.entry = entry;
        intent.entry->currentPath = location;
        journal.writeIntent(intent);
        system.move.move(*source, target);
    } catch (const std::system_error& error) {
        if (error.code() == std::errc::file_exists) throw taken;
        throw Error("The file could not be restored: " + printable(error.what()));
    }
    if (Form::isInTrash(entry)) system.trash.forget(entry.currentPath, entry.originalPath);
    entry.restored = true;
}

/// Takes back what is left of a receipt, the last file first. Throws `Form::Error` at the first
/// file that cannot be restored; those before it stay restored. The caller holds the lock.
template <typename Form>
void undoReceipt(MoveJournal<Form>& journal, typename Form::Receipt& receipt,
                 const MoveSystem& system, const UndoChecks<Form>& checks) {
    std::vector<typename Form::Entry*> pending;
    for (auto& entry : receipt.entries) {
        if (!entry.restored) pending.push_back(&entry);
    }
    if (pending.empty()) {
        throw typename Form::Error("This action has no completed files to restore.");
    }
    using Intent = MoveIntent<typename Form::Entry>;
    Intent intent{Intent::Kind::undo, receipt.id, pending.size(), {}};
    for (auto entry = pending.rbegin(); entry != pending.rend(); ++entry) {
        try {
            restore(journal, intent, **entry, system, checks);
        } catch (...) {
            journal.clearIntent();
            throw;
        }
        --intent.remaining;
        receipt.undone = intent.remaining == 0;
        journal.save();
    }
    journal.clearIntent();
}

} // namespace tovi
