#include "base/Text.h"
#include "cli/Context.h"
#include "cli/Format.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

/// The connected folder that the user named; it may be gone from the disk.
std::string connectedRoot(const std::string& folder, IndexStore& store) {
    const std::vector<std::string> roots = store.roots();
    const std::string absolute = absolutePath(folder);
    std::error_code missing;
    for (const std::string& candidate :
         {absolute, std::filesystem::weakly_canonical(absolute, missing).string()}) {
        if (std::find(roots.begin(), roots.end(), candidate) != roots.end()) return candidate;
    }
    throw std::runtime_error("This folder is not connected: " + absolute);
}

void forget(const std::string& folder, const Context& context) {
    const auto store = context.openIndexForWriting();
    const std::string root = connectedRoot(folder, *store);
    const std::int64_t files = store->summary().filesByRoot[root];
    store->removeRoot(root);
    if (context.json) {
        context.print({{"forgotten", root}, {"files", files}});
    } else {
        fmt::print("Forgot {} with {}. The files themselves were not touched.\n", printable(root),
                   formatCount(files, "file"));
    }
}

} // namespace

void addForgetCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("forget", "Disconnect a folder; its files stay where they are");
    const auto folder = std::make_shared<std::string>();
    command->add_option("folder", *folder, "A connected folder")->required();
    command->callback([folder, &context] { forget(*folder, context); });
}

} // namespace tovi::cli
