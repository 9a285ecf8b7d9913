#include "cli/FileActions.h"

namespace tovi::cli {
namespace {

struct RenameArguments {
    std::string path;
    std::string name;
    std::string confirmation;
};

void rename(const RenameArguments& arguments, Context& context) {
    FileActions actions(context);
    FileRecord file;
    file.path = absolutePath(arguments.path);
    const ActionPlan plan = actions.service().plan(
        {&file, 1}, FileOperation::rename, arguments.name, actions.roots(), {}, context.stop);
    reviewAndExecute(plan, arguments.confirmation, actions, context);
}

} // namespace

void addRenameCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("rename", "Rename a file of a connected folder after a review");
    const auto arguments = std::make_shared<RenameArguments>();
    command->add_option("path", arguments->path, "A file")->required();
    command->add_option("name", arguments->name, "Its new name, in the same folder")->required();
    addConfirmation(*command, arguments->confirmation);
    command->callback([arguments, &context] { rename(*arguments, context); });
}

} // namespace tovi::cli
