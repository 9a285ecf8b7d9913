#include "core/actions/ActionRecovery.h"

#include "core/actions/ActionError.h"

#include <algorithm>

#include <fmt/format.h>

namespace tovi {
namespace {

using platform::DirectoryEntry;

std::optional<DirectoryEntry> entryLeadingTo(const std::string& path,
                                             const FileSnapshot& snapshot) {
    try {
        DirectoryEntry entry = DirectoryEntry::open(path);
        if (leadsTo(entry, snapshot)) return entry;
    } catch (const std::system_error&) {
        return std::nullopt;
    }
    return std::nullopt;
}

enum class Outcome { made, notMade, unknown };

Outcome outcomeOfMove(const std::string& from, const std::string& to, const FileSnapshot& snapshot,
                      platform::ExclusiveMove& move) {
    const auto source = entryLeadingTo(from, snapshot);
    const auto target = entryLeadingTo(to, snapshot);
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

void recoverExecution(const ActionIntent& intent, ActionReceipt& receipt, platform::Trash& trash,
                      platform::ExclusiveMove& move) {
    std::string reason = "The program was interrupted.";
    std::size_t missing = intent.remaining;
    if (intent.entry) {
        const ActionEntry& entry = *intent.entry;
        bool isRecorded = std::any_of(
            receipt.entries.begin(), receipt.entries.end(),
            [&](const ActionEntry& done) { return done.originalPath == entry.originalPath; });
        if (!isRecorded) {
            const Outcome outcome =
                outcomeOfMove(entry.originalPath, entry.currentPath, entry.snapshot, move);
            if (outcome == Outcome::made) {
                receipt.entries.push_back(entry);
                isRecorded = true;
            } else if (entry.operation == FileOperation::trash) {
                trash.forget(entry.currentPath, entry.originalPath);
            }
            if (outcome == Outcome::unknown) {
                reason += " The file is neither at " + entry.originalPath + " nor at " +
                          entry.currentPath + ".";
            }
        }
        if (isRecorded) --missing;
    }
    if (missing > 0 && !receipt.error) {
        receipt.error = fmt::format("Stopped after {} completed file actions: {}",
                                    receipt.entries.size(), reason);
    }
}

void recoverUndo(const ActionIntent& intent, ActionReceipt& receipt, platform::Trash& trash,
                 platform::ExclusiveMove& move) {
    if (!intent.entry) return;
    const ActionEntry& step = *intent.entry;
    for (ActionEntry& entry : receipt.entries) {
        if (entry.restored || entry.originalPath != step.originalPath) continue;
        if (outcomeOfMove(step.currentPath, step.originalPath, step.snapshot, move) !=
            Outcome::made) {
            continue;
        }
        if (entry.operation == FileOperation::trash) {
            trash.forget(entry.currentPath, entry.originalPath);
        }
        entry.restored = true;
    }
    receipt.undone = !receipt.entries.empty() &&
                     std::all_of(receipt.entries.begin(), receipt.entries.end(),
                                 [](const ActionEntry& entry) { return entry.restored; });
}

} // namespace

void recoverInterruptedRun(ActionLog& log, platform::Trash& trash, platform::ExclusiveMove& move) {
    const auto intent = log.intent();
    if (!intent) return;
    if (ActionReceipt* receipt = log.find(intent->receipt)) {
        if (intent->kind == ActionIntent::Kind::execute) {
            recoverExecution(*intent, *receipt, trash, move);
        } else {
            recoverUndo(*intent, *receipt, trash, move);
        }
        log.save();
    }
    log.clearIntent();
}

} // namespace tovi
