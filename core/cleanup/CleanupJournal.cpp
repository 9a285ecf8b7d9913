#include "core/cleanup/CleanupJournal.h"

namespace tovi {

CleanupActionError CleanupJournalForm::error(const JournalError& error) {
    switch (error.kind()) {
    case JournalError::Kind::unreadable:
        return CleanupActionError("The cleanup history is unavailable. No files were changed.");
    case JournalError::Kind::full:
        return CleanupActionError("Cleanup history has reached its storage limit. Preserve the "
                                  "history before starting another cleanup.");
    case JournalError::Kind::unsaved:
        break;
    }
    return CleanupActionError(error.what());
}

CleanupActionError CleanupJournalForm::busy() {
    return CleanupActionError(
        "Another process of Tovi is changing files. Try again when it has finished.");
}

std::string CleanupJournalForm::stopped(std::size_t completed, const std::string& reason) {
    return completed == 0 ? reason : reason + " Use Finder Trash to restore moved files.";
}

bool CleanupJournalForm::leadsTo(const platform::DirectoryEntry& name,
                                 const CleanupActionEntry& entry) {
    try {
        const auto found = name.attributes();
        return found && CleanupFileIdentity::of(*found).isMoved(entry.snapshot.identity);
    } catch (const std::system_error&) {
        return false;
    }
}

} // namespace tovi
