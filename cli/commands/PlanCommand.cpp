#include "app/model/PlanInstruction.h"
#include "cli/Commands.h"
#include "cli/FileActions.h"

#include <stdexcept>

namespace tovi::cli {
namespace {

struct PlanArguments {
    std::string instruction;
    std::vector<std::string> paths;
    std::string confirmation;
};

void plan(const PlanArguments& arguments, Context& context) {
    const auto instruction = readInstruction(arguments.instruction, arguments.paths.size());
    if (!instruction) throw std::runtime_error(unsupportedInstruction);
    FileActions actions(context);
    std::vector<FileRecord> files;
    for (const std::string& path : arguments.paths)
        files.emplace_back().path = absolutePath(path);
    const ActionPlan proposed = actions.service().plan(
        files, instruction->operation, instruction->newName, actions.roots(), {}, context.stop);
    reviewAndExecute(proposed, arguments.confirmation, actions, context);
}

} // namespace

void addPlanCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand(
        "plan", "Do what an instruction says with files of connected folders, after a review");
    const auto arguments = std::make_shared<PlanArguments>();
    command
        ->add_option("instruction", arguments->instruction,
                     "\"trash selected\" or \"rename selected to NAME\"")
        ->required();
    command->add_option("path", arguments->paths, "The selected files");
    addConfirmation(*command, arguments->confirmation);
    command->callback([arguments, &context] { plan(*arguments, context); });
}

} // namespace tovi::cli
