#include "cli/Commands.h"
#include "cli/FileActions.h"
#include "cli/Receipts.h"
#include "core/actions/ActionJson.h"

namespace tovi::cli {
namespace {

void undo(const std::string& receipt, const Context& context) {
    FileActions actions(context);
    undoAndPrint(
        receipt, [&](const Uuid& id) { return actions.service().undo(id, actions.roots()); },
        [&] { return actions.service().history(); }, context);
}

} // namespace

void addUndoCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("undo", "Restore the files of a receipt to where they were");
    const auto receipt = std::make_shared<std::string>();
    command->add_option("receipt", *receipt, "As listed by: tovictl history")->required();
    command->callback([receipt, &context] { undo(*receipt, context); });
}

} // namespace tovi::cli
