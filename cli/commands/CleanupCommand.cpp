#include "app/cleanup/CleanupSearch.h"
#include "app/model/FolderAccess.h"
#include "app/model/FollowInIndex.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Confirmation.h"
#include "cli/Format.h"
#include "cli/ProgressLine.h"
#include "cli/Receipts.h"
#include "core/cleanup/CleanupTrashService.h"
#include "core/files/AuthorizedFolders.h"
#include "platform/StandardLocations.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi::cli {
namespace {

constexpr std::size_t candidatesShown = 5; // of each category
constexpr std::size_t issuesShown = 20;

constexpr std::size_t largestPlan = 200; // items

struct CleanupArguments {
    std::string folder;
    std::string category;
    std::vector<std::string> paths;
    std::string confirmation;
};

/// The cleanup of the connected folders, or of one folder, which naming it approves, with the
/// system's Trash and the data directory's journal.
class Cleanup {
  public:
    Cleanup(const std::string& folder, const Context& context)
        : search_{.connected = {},
                  .folder = {},
                  .folders = {platform::homeDirectory(), platform::cacheHome()},
                  .excludedPaths = {context.dataDirectory, platform::dataHome() + "/Trash"},
                  .now = Date::now()},
          metadata_(platform::dataHome()),
          trash_(platform::dataHome(), Date::now) {
        if (folder.empty()) {
            search_.connected =
                FolderAccess(bookmarks_).pathsInPlace(context.readPreferences().roots);
        } else {
            search_.connected = {absolutePath(folder)};
        }
        if (const auto downloads = platform::downloadsDirectory()) {
            search_.folders.downloads.push_back(*downloads);
        }
    }

    CleanupReport scan(const Context& context) const {
        ProgressLine line(0, "entries", !context.json);
        const auto show = [&](const CleanupSearchProgress& progress) {
            line.show(progress.entries, progress.path);
        };
        throwIfNoneIsConnected();
        CleanupFindings findings =
            searchForCleanup(search_, CleanupScanner(metadata_, availability_), show, context.stop);
        std::vector<CleanupCandidate>& all = findings.report.candidates;
        for (auto& ofCategory : findings.candidates)
            std::move(ofCategory.begin(), ofCategory.end(), std::back_inserter(all));
        std::stable_sort(all.begin(), all.end(), [](const auto& left, const auto& right) {
            return left.size > right.size;
        });
        return std::move(findings.report);
    }

    CleanupCandidate candidateAt(const std::string& path, const std::stop_token& stop) const {
        throwIfNoneIsConnected();
        const std::string resolved = resolvedFolders(absolutePath(path)).value_or(path);
        for (const std::string& root : search_.connected) {
            const CleanupContext surroundings(root, search_.folders, search_.excludedPaths,
                                              metadata_, availability_);
            auto candidate = CleanupPolicy(surroundings, search_.now).candidateAt(resolved, stop);
            if (candidate) return std::move(*candidate);
        }
        throw std::runtime_error(fmt::format("This is not among what cleanup proposes in {}: {}",
                                             fmt::join(search_.connected, ", "), path));
    }

    CleanupTrashService makeService(const Context& context) {
        return CleanupTrashService(
            context.dataDirectory + "/cleanup-actions.json", search_.folders, search_.excludedPaths,
            {trash_, move_, bookmarks_, availability_, programs_, metadata_, Date::now});
    }

    const std::vector<std::string>& roots() const { return search_.connected; }

  private:
    void throwIfNoneIsConnected() const {
        if (!search_.connected.empty()) return;
        throw std::runtime_error("No connected folder is available. Name a folder, or connect one: "
                                 "tovictl folders add FOLDER");
    }

    CleanupSearch search_;
    CleanupDiscoveryMetadata metadata_;
    platform::SystemTrash trash_;
    platform::SystemExclusiveMove move_;
    platform::SystemBookmarks bookmarks_;
    platform::SystemAvailability availability_;
    platform::SystemRunningPrograms programs_;
};

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

void scanAndPrint(const CleanupArguments& arguments, Context& context) {
    CleanupReport report = Cleanup(arguments.folder, context).scan(context);
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

/// The items that were named, or the largest of the category.
std::vector<CleanupCandidate> select(const CleanupArguments& arguments, const Cleanup& cleanup,
                                     const Context& context) {
    std::vector<CleanupCandidate> selected;
    for (const std::string& path : arguments.paths)
        selected.push_back(cleanup.candidateAt(path, context.stop));
    const auto category = cleanupCategoryFromRawValue(arguments.category);
    if (!category) return selected;
    std::size_t left = 0;
    for (CleanupCandidate& candidate : cleanup.scan(context).candidates) {
        if (candidate.category != *category || !candidate.canMoveToTrash()) continue;
        if (selected.size() < largestPlan) {
            selected.push_back(std::move(candidate));
        } else {
            ++left;
        }
    }
    if (left > 0) {
        fmt::print(stderr, "{} more for a further plan.\n",
                   formatCount(static_cast<std::int64_t>(left), "item"));
    }
    return selected;
}

void printPlan(const CleanupPlan& plan) {
    std::int64_t total = 0;
    fmt::print("{}\n", bold(plan.title));
    for (const CleanupPlannedItem& item : plan.items) {
        total += item.size;
        fmt::print("  {:>9}  {}  ({})\n", formatSize(item.size), printable(item.sourcePath),
                   title(item.category));
    }
    fmt::print("  {:>9}  in {}\n{}\n", formatSize(total),
               formatCount(static_cast<std::int64_t>(plan.items.size()), "item"), plan.explanation);
}

void trash(const CleanupArguments& arguments, Context& context) {
    Cleanup cleanup(arguments.folder, context);
    const std::vector<CleanupCandidate> selected = select(arguments, cleanup, context);
    CleanupTrashService service = cleanup.makeService(context);
    const CleanupPlan plan = service.prepare(selected, cleanup.roots(), context.stop);
    const auto execute = [&] {
        const auto receipt = service.execute(plan, plan.id, cleanup.roots(), context.stop);
        std::vector<std::string> trashed;
        for (const auto& entry : receipt.entries)
            trashed.push_back(entry.originalPath);
        context.updateIndex([&](IndexStore& store) { followInIndex(trashed, store); });
        reportExecution(receipt, "tovictl cleanup undo", context);
    };
    reviewAndExecute({reviewCode(plan), toJson(plan), [&] { printPlan(plan); }, execute},
                     arguments.confirmation, context);
}

void undo(const std::string& receipt, const Context& context) {
    Cleanup cleanup("", context);
    CleanupTrashService service = cleanup.makeService(context);
    undoAndPrint(
        receipt, [&](const Uuid& id) { return service.undo(id); },
        [&] { return service.history(); }, context);
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
    const auto arguments = std::make_shared<CleanupArguments>();
    command->add_option("folder", arguments->folder,
                        "Where to look (default: the connected folders)");
    addCategory(*command, arguments->category, "List all of one category");
    command->callback([arguments, &context] { scanAndPrint(*arguments, context); });
}

void addTrash(CLI::App& cleanup, Context& context) {
    CLI::App* command = cleanup.add_subcommand(
        "trash", "Move items that the scan lists to the Trash after a review");
    const auto arguments = std::make_shared<CleanupArguments>();
    command->add_option("path", arguments->paths, "Items, 200 at the most");
    addCategory(*command, arguments->category, "The 200 largest items of one category");
    command->get_option("--category")->excludes(command->get_option("path"));
    command->add_option("--folder", arguments->folder,
                        "The folder that was scanned (default: the connected folders)");
    addConfirmation(*command, arguments->confirmation);
    command->callback([arguments, &context] { trash(*arguments, context); });
}

void addHistory(CLI::App& cleanup, Context& context) {
    CLI::App* command = cleanup.add_subcommand("history", "List what was moved, newest first");
    command->callback([&context] {
        Cleanup surroundings("", context);
        printHistory(surroundings.makeService(context).history(), "Nothing was cleaned up yet.",
                     context);
    });
}

void addUndo(CLI::App& cleanup, Context& context) {
    CLI::App* command =
        cleanup.add_subcommand("undo", "Restore the items of a receipt to where they were");
    const auto receipt = std::make_shared<std::string>();
    command->add_option("receipt", *receipt, "As listed by: tovictl cleanup history")->required();
    command->callback([receipt, &context] { undo(*receipt, context); });
}

} // namespace

void addCleanupCommand(CLI::App& app, Context& context) {
    CLI::App* cleanup = app.add_subcommand(
        "cleanup", "Find files you may no longer need, and move those you choose to the Trash");
    cleanup->require_subcommand(1);
    addScan(*cleanup, context);
    addTrash(*cleanup, context);
    addHistory(*cleanup, context);
    addUndo(*cleanup, context);
}

} // namespace tovi::cli
