#include "base/Text.h"
#include "cli/Context.h"
#include "cli/Format.h"
#include "cli/ProgressLine.h"
#include "core/cleanup/CleanupJson.h"
#include "platform/StandardLocations.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

constexpr std::size_t candidatesShown = 5; // of each category
constexpr std::size_t issuesShown = 20;

struct ScanArguments {
    std::string folder;
    std::string category;
};

CleanupReport scan(const std::string& folder, const Context& context) {
    const CleanupDiscoveryMetadata metadata(platform::dataHome());
    const platform::SystemAvailability availability;
    CleanupScan request{.root = folder.empty() ? platform::homeDirectory() : absolutePath(folder),
                        .folders = {platform::homeDirectory(), platform::cacheHome()},
                        .excludedPaths = {context.dataDirectory, platform::dataHome() + "/Trash"},
                        .now = Date::now()};
    if (const auto downloads = platform::downloadsDirectory()) {
        request.folders.downloads.push_back(*downloads);
    }
    ProgressLine line(0, "entries", !context.json);
    const auto show = [&](const CleanupProgress& progress) {
        line.show(progress.entries, progress.path);
    };
    return CleanupScanner(metadata, availability).scan(request, show, context.stop);
}

void printCandidate(const CleanupCandidate& candidate) {
    fmt::print("  {:>9}  {}\n", formatSize(candidate.size), printable(candidate.path));
    if (candidate.reviewOnlyReason) {
        fmt::print("             {}\n", dim(*candidate.reviewOnlyReason));
    }
}

void print(const CleanupReport& report, bool showAll) {
    std::map<CleanupCategory, std::vector<const CleanupCandidate*>> categories;
    for (const CleanupCandidate& candidate : report.candidates)
        categories[candidate.category].push_back(&candidate);
    for (const auto& [category, candidates] : categories) {
        std::int64_t total = 0;
        for (const CleanupCandidate* candidate : candidates)
            total += candidate->size;
        fmt::print("{}  {}, {}\n  {}\n", bold(std::string(title(category))),
                   formatCount(static_cast<std::int64_t>(candidates.size()), "item"),
                   formatSize(total), dim(std::string(reason(category))));
        const std::size_t shown =
            showAll ? candidates.size() : std::min(candidates.size(), candidatesShown);
        for (std::size_t n = 0; n < shown; ++n)
            printCandidate(*candidates[n]);
        if (shown < candidates.size()) {
            fmt::print("             and {} more: --category {}\n",
                       formatCount(static_cast<std::int64_t>(candidates.size() - shown)),
                       rawValue(category));
        }
    }
    if (categories.empty()) fmt::print("Nothing was found that may be cleaned up.\n");
    fmt::print("{} with {} looked at, {} left out.\n", formatCount(report.scannedFiles, "file"),
               formatSize(report.scannedBytes), formatCount(report.skippedCount));
    fmt::print("{}\n", dim(report.notice));
    const std::size_t issues = std::min(report.issues.size(), issuesShown);
    for (std::size_t n = 0; n < issues; ++n)
        fmt::print("! {}\n", printable(report.issues[n]));
    if (issues < report.issues.size()) {
        fmt::print("! and {} more; --json lists all\n",
                   formatCount(static_cast<std::int64_t>(report.issues.size() - issues)));
    }
}

void scanAndPrint(const ScanArguments& arguments, Context& context) {
    CleanupReport report = scan(arguments.folder, context);
    if (const auto only = cleanupCategoryFromRawValue(arguments.category)) {
        std::erase_if(report.candidates,
                      [&](const CleanupCandidate& item) { return item.category != *only; });
    }
    if (context.json) {
        context.print(toJson(report));
    } else {
        print(report, !arguments.category.empty());
    }
    if (report.isPartial) context.exitCode = ExitCode::needsAttention;
}

void addCategory(CLI::App& command, std::string& category, const std::string& description) {
    std::vector<std::string> names;
    for (const CleanupCategory value : allCleanupCategories)
        names.emplace_back(rawValue(value));
    command.add_option("--category", category, description)->check(CLI::IsMember(names));
}

void addScan(CLI::App& cleanup, Context& context) {
    CLI::App* command =
        cleanup.add_subcommand("scan", "List what may be cleaned up; nothing is changed");
    const auto arguments = std::make_shared<ScanArguments>();
    command->add_option("folder", arguments->folder, "Where to look (default: your home folder)");
    addCategory(*command, arguments->category, "List all of one category");
    command->callback([arguments, &context] { scanAndPrint(*arguments, context); });
}

} // namespace

void addCleanupCommand(CLI::App& app, Context& context) {
    CLI::App* cleanup = app.add_subcommand(
        "cleanup", "Find files you may no longer need, and move those you choose to the Trash");
    cleanup->require_subcommand(1);
    addScan(*cleanup, context);
}

} // namespace tovi::cli
