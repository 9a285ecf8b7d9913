#include "cli/FileActions.h"

namespace tovi::cli {
namespace {

struct TrashArguments {
    std::vector<std::string> paths;
    std::string confirmation;
};

void trash(const TrashArguments& arguments, Context& context) {
    FileActions actions(context);
    std::vector<FileRecord> files;
    for (const std::string& path : arguments.paths)
        files.emplace_back().path = absolutePath(path);
    const ActionPlan plan =
        actions.service().plan(files, FileOperation::trash, {}, actions.roots(), {}, context.stop);
    reviewAndExecute(plan, arguments.confirmation, actions, context);
}

} // namespace

void addTrashCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("trash", "Move files of connected folders to the Trash after a review");
    const auto arguments = std::make_shared<TrashArguments>();
    command->add_option("path", arguments->paths, "Files, 500 at the most")->required();
    addConfirmation(*command, arguments->confirmation);
    command->callback([arguments, &context] { trash(*arguments, context); });
}

} // namespace tovi::cli
