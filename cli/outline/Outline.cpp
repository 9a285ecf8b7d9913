#include "cli/outline/Outline.h"

namespace tovi::cli {

Outline outlineOf(const CLI::App& app) {
    Outline outline{app.get_name(), app.get_description(), {}, {}, {}};
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_group().empty()) continue;
        if (option->get_positional()) {
            outline.arguments.push_back({option->get_name(), option->get_description(),
                                         option->get_required(),
                                         option->get_items_expected_max() > 1});
            continue;
        }
        Outline::Option described{
            {}, option->get_description(), option->get_items_expected_max() > 0};
        for (const std::string& name : option->get_snames())
            described.names.push_back("-" + name);
        for (const std::string& name : option->get_lnames())
            described.names.push_back("--" + name);
        outline.options.push_back(std::move(described));
    }
    for (const CLI::App* command : app.get_subcommands({})) {
        if (!command->get_group().empty()) outline.commands.push_back(outlineOf(*command));
    }
    return outline;
}

} // namespace tovi::cli
