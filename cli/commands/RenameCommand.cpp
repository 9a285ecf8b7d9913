#include "cli/Commands.h"
#include "cli/FileActions.h"

namespace tovi::cli {

void addRenameCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("rename", "Rename a file of a connected folder after a review");
    const auto arguments = std::make_shared<FileArguments>();
    arguments->paths.resize(1);
    command->add_option("path", arguments->paths.front(), "A file")->required();
    command->add_option("name", arguments->newName, "Its new name, in the same folder")->required();
    addConfirmation(*command, arguments->confirmation);
    command->callback(
        [arguments, &context] { reviewAndExecute(*arguments, FileOperation::rename, context); });
}

} // namespace tovi::cli
