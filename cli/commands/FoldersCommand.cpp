#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Folders.h"
#include "cli/Format.h"
#include "cli/ModelSession.h"

#include <fmt/format.h>

namespace tovi::cli {
namespace {

void listFolders(const Context& context) {
    const Preferences preferences = context.readPreferences();
    std::map<std::string, std::int64_t> files;
    if (context.hasIndex()) files = context.openIndexForReading()->summary().filesByRoot;
    if (context.json) {
        Json folders = Json::array();
        for (const FolderGrant& root : preferences.roots) {
            folders.push_back(
                {{"path", root.path}, {"available", root.available}, {"files", files[root.path]}});
        }
        return context.print({{"folders", std::move(folders)}});
    }
    for (const FolderGrant& root : preferences.roots) {
        fmt::print("{:>9}  {}{}\n", formatCount(files[root.path]), printable(root.path),
                   root.available ? "" : "  (not available at the last look)");
    }
    if (preferences.roots.empty()) fmt::print("No folder is connected yet.\n");
}

void add(const std::vector<std::string>& folders, Context& context) {
    ModelSession session(context);
    FoldersModel& model = *session.model().folders();
    bool isConnected = false;
    QObject::connect(&model, &FoldersModel::connected, [&] { isConnected = true; });
    QStringList paths;
    for (const std::string& folder : folders)
        paths.append(QString::fromStdString(absolutePath(folder)));
    model.grantFolders(paths);
    session.waitUntil([&] { return isConnected || !model.connectionMessage().isEmpty(); });
    session.finish();
    if (!model.connectionMessage().isEmpty()) {
        fmt::print(stderr, "{}\n", model.connectionMessage().toStdString());
        context.exitCode = isConnected ? ExitCode::needsAttention : ExitCode::failed;
    }
    if (context.json) return listFolders(context);
    if (isConnected) fmt::print("Connected. To read what is new: tovictl index\n");
}

} // namespace

void addFoldersCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand("folders", "Connect and disconnect folders");
    command->require_subcommand(1);
    command->add_subcommand("list", "Print the connected folders")->callback([&context] {
        listFolders(context);
    });
    const auto folders = std::make_shared<std::vector<std::string>>();
    CLI::App* addition = command->add_subcommand("add", "Connect folders without reading them yet");
    addition->add_option("folder", *folders, "Folders")->required();
    addition->callback([folders, &context] { add(*folders, context); });
    const auto folder = std::make_shared<std::string>();
    CLI::App* removal = command->add_subcommand(
        "remove", "Disconnect a folder, as forget does; its files stay where they are");
    removal->add_option("folder", *folder, "A connected folder")->required();
    removal->callback([folder, &context] { forgetFolder(*folder, context); });
}

} // namespace tovi::cli
