#include "core/actions/ActionLog.h"

#include "base/Text.h"

#include <fmt/format.h>

namespace tovi {

ActionError ActionLogForm::error(const JournalError& error) {
    if (error.kind() == JournalError::Kind::unreadable) {
        return ActionError("The action history cannot be read, so files are left alone: " +
                           printable(error.path()) + ": " + printable(error.what()));
    }
    return ActionError(std::string("The action history could not be saved: ") + error.what());
}

ActionError ActionLogForm::busy() {
    return ActionError(
        "Another process of Tovi is changing files. Try again when it has finished.");
}

std::string ActionLogForm::stopped(std::size_t completed, const std::string& reason) {
    return fmt::format("Stopped after {} completed file actions: {}", completed, reason);
}

bool ActionLogForm::leadsTo(const platform::DirectoryEntry& name, const ActionEntry& entry) {
    return tovi::leadsTo(name, entry.snapshot);
}

bool ActionLogForm::isInTrash(const ActionEntry& entry) {
    return entry.operation == FileOperation::trash;
}

} // namespace tovi
