#include "cli/Commands.h"
#include "cli/FileActions.h"
#include "cli/Receipts.h"
#include "core/actions/ActionJson.h"

namespace tovi::cli {

void addHistoryCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("history", "List what was moved and renamed, newest first");
    command->callback([&context] {
        printHistory(FileActions(context).service().history(), "No file was changed yet.", context);
    });
}

} // namespace tovi::cli
