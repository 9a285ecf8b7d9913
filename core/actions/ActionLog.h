#pragma once

#include "core/actions/ActionError.h"
#include "core/actions/ActionJson.h"
#include "core/files/MoveJournal.h"
#include "platform/DirectoryEntry.h"

#include <limits>

namespace tovi {

/// What `actions.json` holds, and its sentences.
struct ActionLogForm {
    using Receipt = ActionReceipt;
    using Entry = ActionEntry;
    using Error = ActionError;

    static constexpr std::size_t limit = std::numeric_limits<std::size_t>::max();
    static ActionReceipt receiptFrom(const nlohmann::ordered_json& json) {
        return receiptFromJson(json);
    }
    static ActionEntry entryFrom(const nlohmann::ordered_json& json) { return entryFromJson(json); }
    static ActionError error(const JournalError& error);
    static ActionError busy();
    static std::string stopped(std::size_t completed, const std::string& reason);
    static bool leadsTo(const platform::DirectoryEntry& name, const ActionEntry& entry);
    static bool isInTrash(const ActionEntry& entry);
};

using ActionLog = MoveJournal<ActionLogForm>;
using ActionIntent = ActionLog::Intent;

} // namespace tovi
