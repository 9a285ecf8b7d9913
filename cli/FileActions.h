#pragma once

#include "cli/Context.h"
#include "core/actions/FileActionService.h"

#include <optional>
#include <string>
#include <vector>

namespace tovi::cli {

/// The service on the data directory's log, with the system's Trash and the folders of the index.
class FileActions {
  public:
    explicit FileActions(const Context& context);

    FileActionService& service() { return service_; }
    const std::vector<std::string>& roots() const { return roots_; }

  private:
    platform::SystemTrash trash_;
    platform::SystemExclusiveMove move_;
    platform::SystemBookmarks bookmarks_;
    platform::SystemAvailability availability_;
    std::vector<std::string> roots_;
    FileActionService service_;
};

/// Adds `--confirm CODE`.
void addConfirmation(CLI::App& command, std::string& code);

/// Shows the whole plan and executes it once it is confirmed: on a terminal by typing yes, else by
/// the plan's own review code in `confirmation`, which is empty if none was given. Without either
/// nothing changes and the exit code says that a review is needed.
void reviewAndExecute(const ActionPlan& plan, const std::string& confirmation, FileActions& actions,
                      Context& context);

/// For people: the line of a receipt, and with `restored` what became of each of its files.
void printReceipt(const ActionReceipt& receipt);
void printRestored(const ActionReceipt& receipt);

} // namespace tovi::cli
