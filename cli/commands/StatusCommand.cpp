#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "core/indexing/ContentExtractor.h"

#include <fmt/format.h>

namespace tovi::cli {
namespace {

constexpr std::int64_t failuresShown = 20;
constexpr std::int64_t failuresInJson = 100'000;

void printJson(const IndexSummary& summary, IndexStore& store, const Context& context) {
    Json kinds = Json::object();
    for (const auto& [kind, count] : summary.filesByKind)
        kinds[std::string(rawValue(kind))] = count;
    Json roots = Json::array();
    for (const auto& [root, count] : summary.filesByRoot) {
        roots.push_back({{"path", root}, {"files", count}});
    }
    Json failures = Json::array();
    for (const auto& [path, status] :
         store.filesWithStatus(contentStatus::failed, failuresInJson)) {
        failures.push_back({{"path", path}, {"contentStatus", status}});
    }
    context.print({{"dataDirectory", context.dataDirectory},
                   {"databaseSize", summary.databaseSize},
                   {"files", summary.total()},
                   {"kinds", std::move(kinds)},
                   {"statuses", summary.filesByStatus},
                   {"roots", std::move(roots)},
                   {"failures", std::move(failures)}});
}

void printText(const IndexSummary& summary, IndexStore& store, const Context& context) {
    fmt::print("{} in {} of {}\n", formatCount(summary.total(), "file"),
               formatSize(summary.databaseSize), printable(context.dataDirectory));
    fmt::print("\n{}\n", bold("Connected folders"));
    for (const auto& [root, count] : summary.filesByRoot) {
        fmt::print("  {:>9}  {}\n", formatCount(count), printable(root));
    }
    fmt::print("\n{}\n", bold("Kinds"));
    for (const auto& [kind, count] : summary.filesByKind) {
        fmt::print("  {:>9}  {}\n", formatCount(count), title(kind));
    }
    fmt::print("\n{}\n", bold("Content"));
    for (const auto& [status, count] : summary.filesByStatus) {
        fmt::print("  {:>9}  {}\n", formatCount(count), printable(status));
    }
    const auto failures = store.filesWithStatus(contentStatus::failed, failuresShown + 1);
    if (failures.empty()) return;
    fmt::print("\n{}\n", bold("Not read"));
    for (const auto& [path, status] : failures) {
        if (&path == &failures.back().first && failures.size() > failuresShown) {
            fmt::print("  More with --json.\n");
            break;
        }
        fmt::print("  {}: {}\n", printable(path), printable(status));
    }
}

} // namespace

void addStatusCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand("status", "Print what the index holds, in numbers");
    command->callback([&context] {
        const auto store = context.openIndexForReading();
        const IndexSummary summary = store->summary();
        context.json ? printJson(summary, *store, context) : printText(summary, *store, context);
    });
}

} // namespace tovi::cli
