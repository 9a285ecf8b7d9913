#pragma once

#include "core/cleanup/CleanupJson.h"
#include "core/files/MoveJournal.h"
#include "platform/DirectoryEntry.h"

namespace tovi {

/// What `cleanup-actions.json` holds, and its sentences.
struct CleanupJournalForm {
    using Receipt = CleanupReceipt;
    using Entry = CleanupActionEntry;
    using Error = CleanupActionError;

    static constexpr std::size_t limit = 33'554'432; // bytes
    static CleanupReceipt receiptFrom(const nlohmann::ordered_json& json) {
        return cleanupReceiptFromJson(json);
    }
    static CleanupActionEntry entryFrom(const nlohmann::ordered_json& json) {
        return cleanupEntryFromJson(json);
    }
    static CleanupActionError error(const JournalError& error);
    static CleanupActionError busy();
    static std::string stopped(std::size_t completed, const std::string& reason);
    static bool leadsTo(const platform::DirectoryEntry& name, const CleanupActionEntry& entry);
    static bool isInTrash(const CleanupActionEntry&) { return true; }
};

using CleanupJournal = MoveJournal<CleanupJournalForm>;

} // namespace tovi
