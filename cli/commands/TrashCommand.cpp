#include "cli/Commands.h"
#include "cli/FileActions.h"

namespace tovi::cli {

void addTrashCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("trash", "Move files of connected folders to the Trash after a review");
    const auto arguments = std::make_shared<FileArguments>();
    command->add_option("path", arguments->paths, "Files, 500 at the most")->required();
    addConfirmation(*command, arguments->confirmation);
    command->callback(
        [arguments, &context] { reviewAndExecute(*arguments, FileOperation::trash, context); });
}

} // namespace tovi::cli
