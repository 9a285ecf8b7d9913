#include "cli/FileActions.h"
#include "core/actions/ActionJson.h"

#include <fmt/core.h>

namespace tovi::cli {
namespace {

void history(const Context& context) {
    FileActions actions(context);
    const std::vector<ActionReceipt> receipts = actions.service().history();
    if (context.json) {
        Json list = Json::array();
        for (const ActionReceipt& receipt : receipts)
            list.push_back(toJson(receipt));
        context.print({{"receipts", std::move(list)}});
        return;
    }
    if (receipts.empty()) fmt::print("No file was changed yet.\n");
    for (const ActionReceipt& receipt : receipts)
        printReceipt(receipt);
}

} // namespace

void addHistoryCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("history", "List what was moved and renamed, newest first");
    command->callback([&context] { history(context); });
}

} // namespace tovi::cli
