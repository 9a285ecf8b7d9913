#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/ModelSession.h"

#include <algorithm>
#include <stdexcept>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

void listSearches(const Context& context) {
    const std::vector<SavedSearch> searches = context.readPreferences().searches;
    if (context.json) {
        Json saved = Json::array();
        for (const SavedSearch& search : searches) {
            saved.push_back(
                {{"id", search.id.string()}, {"name", search.name}, {"query", search.query}});
        }
        return context.print({{"searches", std::move(saved)}});
    }
    for (const SavedSearch& search : searches)
        fmt::print("{}: {}\n", printable(search.name), printable(search.query));
    if (searches.empty()) fmt::print("No search is saved yet.\n");
}

void save(const std::string& name, const std::string& phrase, const Context& context) {
    ModelSession session(context);
    const QString id = session.model().savedSearches()->saveSearch(QString::fromStdString(name),
                                                                   QString::fromStdString(phrase));
    if (id.isEmpty()) throw std::runtime_error("A saved search needs a phrase.");
    session.finish();
    listSearches(context);
}

void remove(const std::string& name, const Context& context) {
    ModelSession session(context);
    SavedSearchesModel& model = *session.model().savedSearches();
    const auto found = std::find_if(model.searches().begin(), model.searches().end(),
                                    [&](const SavedSearch& search) {
                                        return search.name == name || search.id.string() == name;
                                    });
    if (found == model.searches().end()) {
        throw std::runtime_error("No search is saved under this name: " + name);
    }
    model.removeSearch(QString::fromStdString(found->id.string()));
    session.finish();
    listSearches(context);
}

} // namespace

void addSearchesCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand("searches", "Keep phrases under a name");
    command->require_subcommand(1);
    command->add_subcommand("list", "Print the saved searches")->callback([&context] {
        listSearches(context);
    });
    const auto name = std::make_shared<std::string>();
    const auto phrase = std::make_shared<std::string>();
    CLI::App* saving = command->add_subcommand("save", "Save a phrase");
    saving->add_option("name", *name, "The name to save it under")->required();
    saving->add_option("phrase", *phrase, "The phrase, as for search")->required();
    saving->callback([name, phrase, &context] { save(*name, *phrase, context); });
    CLI::App* removal = command->add_subcommand("remove", "Forget a saved search");
    removal->add_option("name", *name, "Its name or id")->required();
    removal->callback([name, &context] { remove(*name, context); });
}

} // namespace tovi::cli
