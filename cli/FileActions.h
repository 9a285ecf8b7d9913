#pragma once

#include "cli/Confirmation.h"
#include "core/actions/CopiesToTrash.h"
#include "core/actions/FileActionService.h"

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

/// What the commands take that change files named on the command line.
struct FileArguments {
    std::vector<std::string> paths;
    std::string newName; // of a rename
    std::string confirmation;
};

/// Plans the operation on these files, and executes it after a review.
void reviewAndExecute(const FileArguments& arguments, FileOperation operation, Context& context);

/// Moves the copies to the Trash after a review. `noun` names one of them in what is printed.
void reviewAndExecute(const CopiesToTrash& copies, const char* noun,
                      const std::string& confirmation, Context& context);

/// Executes a plan after a review.
void reviewAndExecute(const ActionPlan& plan, const std::string& confirmation, FileActions& actions,
                      Context& context);

} // namespace tovi::cli
