#include "cli/Commands.h"

#include <fmt/core.h>

namespace tovi::cli {

void addClearCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("clear", "Empty the index; files on the disk stay as they are");
    command->callback([&context] {
        const ProcessLock lock = context.lockForWriting();
        context.openIndexForWriting()->clear();
        if (context.json) {
            context.print({{"cleared", true}});
        } else {
            fmt::print("The index is empty. Your files were not touched.\n");
        }
    });
}

} // namespace tovi::cli
