#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/ModelSession.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

struct SpaceArguments {
    std::string space;
    std::string name;
    std::vector<std::string> paths;
};

void listSpaces(const Context& context) {
    const std::vector<ProjectSpace> spaces = context.readPreferences().spaces;
    if (context.json) {
        Json projects = Json::array();
        for (const ProjectSpace& space : spaces) {
            projects.push_back(
                {{"id", space.id.string()}, {"name", space.name}, {"paths", space.paths}});
        }
        return context.print({{"spaces", std::move(projects)}});
    }
    for (const ProjectSpace& space : spaces) {
        fmt::print("{}\n", bold(printable(space.name)));
        for (const std::string& path : space.paths)
            fmt::print("  {}\n", printable(path));
    }
    if (spaces.empty()) fmt::print("There is no project yet.\n");
}

QStringList absolutePaths(const std::vector<std::string>& paths) {
    QStringList absolute;
    for (const std::string& path : paths)
        absolute.append(QString::fromStdString(absolutePath(path)));
    return absolute;
}

/// The id of the project that the user named.
QString idOf(const std::string& space, const SpacesModel& model) {
    const auto found =
        std::find_if(model.spaces().begin(), model.spaces().end(), [&](const ProjectSpace& each) {
            return each.name == space || each.id.string() == space;
        });
    if (found == model.spaces().end()) {
        throw std::runtime_error("There is no project of this name: " + space);
    }
    return QString::fromStdString(found->id.string());
}

/// Lets `change` work on the model, saves and shows the result.
template <typename Change>
void change(const Context& context, Change change) {
    ModelSession session(context);
    change(*session.model().spaces());
    session.finish();
    listSpaces(context);
}

} // namespace

void addSpacesCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("spaces", "Group files into projects; the files stay where they are");
    command->require_subcommand(1);
    command->add_subcommand("list", "Print the projects")->callback([&context] {
        listSpaces(context);
    });

    const auto arguments = std::make_shared<SpaceArguments>();
    const auto addSubcommand = [&](const char* name, const char* description, auto work) {
        CLI::App* subcommand = command->add_subcommand(name, description);
        subcommand->add_option("project", arguments->space, "Its name or id")->required();
        subcommand->callback([arguments, &context, work] {
            change(context, [&](SpacesModel& model) { work(*arguments, model); });
        });
        return subcommand;
    };
    addSubcommand("create", "Make a project", [](const SpaceArguments& given, SpacesModel& model) {
        if (model.createSpace(QString::fromStdString(given.space), absolutePaths(given.paths))
                .isEmpty()) {
            throw std::runtime_error("A project needs a name.");
        }
    })->add_option("path", arguments->paths, "Files");
    addSubcommand(
        "rename", "Give a project another name",
        [](const SpaceArguments& given, SpacesModel& model) {
            if (!model.renameSpace(idOf(given.space, model), QString::fromStdString(given.name))) {
                throw std::runtime_error("A project needs a name.");
            }
        })
        ->add_option("name", arguments->name, "The new name")
        ->required();
    addSubcommand("add", "Add files to a project",
                  [](const SpaceArguments& given, SpacesModel& model) {
                      model.addToSpace(idOf(given.space, model), absolutePaths(given.paths));
                  })
        ->add_option("path", arguments->paths, "Files")
        ->required();
    addSubcommand("take", "Take files out of a project",
                  [](const SpaceArguments& given, SpacesModel& model) {
                      model.removeFromSpace(idOf(given.space, model), absolutePaths(given.paths));
                  })
        ->add_option("path", arguments->paths, "Files")
        ->required();
    addSubcommand("remove", "Delete a project; its files stay where they are",
                  [](const SpaceArguments& given, SpacesModel& model) {
                      model.removeSpace(idOf(given.space, model));
                  });
    command->add_subcommand("restore", "Bring the project deleted last back")->callback([&context] {
        change(context, [](SpacesModel& model) {
            if (!model.restoreDeletedSpace()) {
                throw std::runtime_error("There is no deleted project to bring back.");
            }
        });
    });
}

} // namespace tovi::cli
