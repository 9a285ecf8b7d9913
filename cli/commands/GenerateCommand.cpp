#include "cli/Commands.h"
#include "cli/outline/Outline.h"

#include <fmt/core.h>

namespace tovi::cli {

void addGenerateCommand(CLI::App& app, Context&) {
    CLI::App* command =
        app.add_subcommand("generate", "Print the manual or a shell's completion script");
    command->group(""); // for those who package the program, not in its help
    command->require_subcommand(1);
    const auto add = [&](const char* name, std::string (*generate)(const Outline&)) {
        command->add_subcommand(name)->callback(
            [&app, generate] { fmt::print("{}", generate(outlineOf(app))); });
    };
    add("bash", bashCompletion);
    add("zsh", zshCompletion);
    add("fish", fishCompletion);
    command->add_subcommand("man")->callback(
        [&app] { fmt::print("{}", manualPage(outlineOf(app), TOVI_VERSION, app.get_footer())); });
}

} // namespace tovi::cli
