#include "cli/FileActions.h"
#include "core/actions/ActionJson.h"

#include <stdexcept>

#include <fmt/core.h>

namespace tovi::cli {
namespace {

void print(const ActionReceipt& receipt, const Context& context) {
    if (context.json) {
        context.print({{"receipt", toJson(receipt)}});
    } else {
        printRestored(receipt);
    }
}

void undo(const std::string& text, const Context& context) {
    const auto id = Uuid::parse(text);
    if (!id) throw std::runtime_error("This is not the identifier of a receipt: " + text);
    FileActions actions(context);
    try {
        print(actions.service().undo(*id, actions.roots()), context);
    } catch (const ActionError&) {
        for (const ActionReceipt& receipt : actions.service().history()) {
            if (receipt.id == *id) print(receipt, context);
        }
        throw;
    }
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
