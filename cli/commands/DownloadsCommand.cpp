#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/Json.h"
#include "core/library/DownloadGroups.h"

#include <fmt/format.h>

namespace tovi::cli {
namespace {

void printJson(const std::vector<DownloadGroup>& groups, const Context& context) {
    Json values = Json::array();
    for (const DownloadGroup& group : groups) {
        Json files = Json::array();
        for (const FileRecord& file : group.files)
            files.push_back(toJson(file));
        values.push_back({{"id", group.id},
                          {"name", group.name},
                          {"symbol", group.symbol},
                          {"files", std::move(files)}});
    }
    context.print({{"groups", std::move(values)}});
}

void printText(const std::vector<DownloadGroup>& groups, std::size_t filesShown) {
    if (groups.empty()) fmt::print("No downloads are in the index.\n");
    for (const DownloadGroup& group : groups) {
        fmt::print("{}  {}\n", bold(printable(group.name)),
                   formatCount(static_cast<std::int64_t>(group.files.size()), "file"));
        for (std::size_t at = 0; at < std::min(filesShown, group.files.size()); ++at) {
            const FileRecord& file = group.files[at];
            fmt::print("  {}  {:>9}  {}\n", formatDate(effectiveDate(file)), formatSize(file.size),
                       printable(file.path));
        }
    }
}

} // namespace

void addDownloadsCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("downloads", "List downloads by the website or app they came from");
    const auto filesShown = std::make_shared<std::size_t>(3);
    command->add_option("--files", *filesShown, "Newest files shown of each source, without --json")
        ->capture_default_str();
    command->callback([filesShown, &context] {
        const auto store = context.openIndexForReading();
        const auto groups = DownloadGroups::make(store->downloads(context.stop), context.stop);
        context.json ? printJson(groups, context) : printText(groups, *filesShown);
    });
}

} // namespace tovi::cli
