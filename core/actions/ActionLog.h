#pragma once

#include "core/actions/ActionReceipt.h"
#include "core/files/ProcessLock.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// The step that is under way, kept beside the log while a plan is executed or undone.
struct ActionIntent {
    enum class Kind { execute, undo };

    Kind kind = Kind::execute;
    Uuid receipt;
    std::size_t remaining = 0;        // files still to change, this step's included
    std::optional<ActionEntry> entry; // as the log will hold it; none before the first step
};

/// The receipts of all executed plans in one JSON file, the oldest first. Several processes may
/// read it; the one that writes holds the lock and reads it again first.
class ActionLog {
  public:
    /// Makes the folder of `path` (mode 0700) if it is missing and reads the log. Throws
    /// `ActionError` for one that cannot be read whole, and leaves it alone.
    explicit ActionLog(std::string path);

    std::vector<ActionReceipt>& receipts() { return receipts_; }
    ActionReceipt* find(const Uuid& id);

    /// Throws `ActionError`; `tryLock` gives nothing where another process is writing.
    ProcessLock lock() const;
    std::optional<ProcessLock> tryLock() const;

    /// The following throw `ActionError`. `load` and `save` move the whole log.
    void load();
    void save() const;
    std::optional<ActionIntent> intent() const;
    void writeIntent(const ActionIntent& intent) const;
    void clearIntent() const;

  private:
    std::string path_;
    std::vector<ActionReceipt> receipts_;
};

} // namespace tovi
