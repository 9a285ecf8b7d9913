#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Folders.h"
#include "cli/Format.h"
#include "cli/ProgressLine.h"
#include "core/indexing/FileIndexer.h"
#include "core/records/IntelligenceError.h"
#include "core/store/IndexFiles.h"
#include "decoder/client/DecoderPool.h"
#include "platform/StandardLocations.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

struct IndexArguments {
    std::vector<std::string> folders;
    std::vector<std::string> exclusions;
    bool includeCode = false;
    bool rebuild = false;
};

constexpr std::size_t errorsShown = 20;

/// The folders to scan: those named, else those connected; a rebuilt index gets both. All are
/// checked before the first is scanned or the index is moved.
std::vector<std::string> chooseRoots(const IndexArguments& arguments, const Context& context,
                                     const FileIndexer& indexer) {
    std::vector<std::string> roots;
    for (const std::string& folder : arguments.folders) {
        roots.push_back(indexer.acceptedRoot(folder));
    }
    if (roots.empty() || arguments.rebuild) {
        try {
            for (std::string& root : context.connectedFolders())
                roots.push_back(std::move(root));
        } catch (const IntelligenceError&) {
            if (roots.empty()) throw; // a damaged index cannot say which folders it held
        }
    }
    std::sort(roots.begin(), roots.end());
    roots.erase(std::unique(roots.begin(), roots.end()), roots.end());
    if (roots.empty()) throw std::runtime_error("No folder is connected yet. Name one to index.");
    return roots;
}

void printReport(const std::string& root, const ScanReport& report, double seconds) {
    fmt::print("{}: {} indexed, {} skipped or unchanged, {:.1f} s\n", bold(printable(root)),
               formatCount(report.indexed, "file"), formatCount(report.skipped), seconds);
    for (std::size_t n = 0; n < std::min(report.errors.size(), errorsShown); ++n) {
        fmt::print("  {}\n", printable(report.errors[n]));
    }
    if (report.errors.size() > errorsShown) {
        fmt::print("  and {} more; --json lists all\n",
                   formatCount(static_cast<std::int64_t>(report.errors.size() - errorsShown)));
    }
}

/// How the content of the folder's files stands, where it is more than "read".
void printStatuses(const std::map<std::string, std::int64_t>& statuses) {
    for (const auto& [status, count] : statuses) {
        fmt::print("  {:>9}  {}\n", formatCount(count), printable(status));
    }
}

void index(const IndexArguments& arguments, Context& context) {
    const platform::SystemAvailability availability;
    decoder::DecoderPool decoders({.program = decoderPath()});
    const ContentExtractor extractor(decoders, decoders);
    const FileIndexer indexer(availability, extractor,
                              {.downloadsDirectory = platform::downloadsDirectory(),
                               .readers = std::max(1U, std::thread::hardware_concurrency())});

    const std::vector<std::string> roots = chooseRoots(arguments, context, indexer);
    const ProcessLock lock = context.lockForWriting();
    if (arguments.rebuild && context.hasIndex()) {
        const std::string aside = moveIndexAside(context.indexPath(), Date::now());
        fmt::print(stderr, "The old index was moved to {}\n", printable(aside));
    }
    const auto store = context.openIndexForWriting();
    if (!arguments.folders.empty()) {
        std::vector<std::string> named;
        for (const std::string& folder : arguments.folders)
            named.push_back(indexer.acceptedRoot(folder));
        rememberFolders(named, indexer, context);
    }
    Json reports = Json::array();
    for (const std::string& root : roots) {
        try {
            if (!isTheConnectedFolder(root, context)) {
                throw IntelligenceError::inaccessible(root +
                                                      ": Another folder was connected there");
            }
            const auto started = std::chrono::steady_clock::now();
            ScanReport report;
            {
                ProgressLine line(store->summary(root).total(), "files", !context.json);
                report = indexer.scan(
                    root, *store, arguments.exclusions, arguments.includeCode,
                    [&](const ScanProgress& progress) { line.show(progress.count, progress.item); },
                    context.stop);
            }
            const std::chrono::duration<double> elapsed =
                std::chrono::steady_clock::now() - started;
            const auto statuses = store->summary(root).filesByStatus;
            if (!report.errors.empty()) context.exitCode = ExitCode::needsAttention;
            if (context.json) {
                reports.push_back({{"root", root},
                                   {"indexed", report.indexed},
                                   {"skipped", report.skipped},
                                   {"errors", report.errors},
                                   {"statuses", statuses}});
            } else {
                printReport(root, report, elapsed.count());
                printStatuses(statuses);
            }
        } catch (const IntelligenceError& error) {
            if (error.kind() != IntelligenceError::Kind::inaccessible) throw;
            fmt::print(stderr, "{}\n", printable(error.what()));
            context.exitCode = ExitCode::failed;
        }
    }
    if (context.json) context.print({{"reports", std::move(reports)}});
}

} // namespace

void addIndexCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand(
        "index", "Connect folders and bring the index in line with them; without a folder, with "
                 "all that are connected");
    const auto arguments = std::make_shared<IndexArguments>();
    command->add_option("folder", arguments->folders, "Folders to connect");
    command
        ->add_option("--exclude", arguments->exclusions,
                     "Leave out what matches: an absolute path, or a pattern such as *.log for "
                     "names and paths below the folder")
        ->allow_extra_args(false);
    command->add_flag("--code", arguments->includeCode,
                      "Search text inside source code and configuration files");
    command->add_flag("--rebuild", arguments->rebuild,
                      "Move the index aside and scan the folders anew");
    command->callback([arguments, &context] { index(*arguments, context); });
}

} // namespace tovi::cli
