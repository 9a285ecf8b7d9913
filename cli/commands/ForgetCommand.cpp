#include "cli/Commands.h"
#include "cli/Folders.h"

namespace tovi::cli {

void addForgetCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("forget", "Disconnect a folder; its files stay where they are");
    const auto folder = std::make_shared<std::string>();
    command->add_option("folder", *folder, "A connected folder")->required();
    command->callback([folder, &context] { forgetFolder(*folder, context); });
}

} // namespace tovi::cli
