#include "cli/FileActions.h"

#include "base/Text.h"
#include "cli/Format.h"
#include "core/actions/ActionJson.h"
#include "platform/StandardLocations.h"

#include <iostream>

#include <fmt/format.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

void printPlan(const ActionPlan& plan) {
    std::int64_t total = 0;
    fmt::print("{}\n", bold(plan.title));
    for (const PlannedFileAction& item : plan.items) {
        const auto size = static_cast<std::int64_t>(item.snapshot.size);
        total += size;
        fmt::print("  {:>9}  {}", formatSize(size), printable(item.sourcePath));
        if (item.destinationPath)
            fmt::print("\n             to {}", printable(*item.destinationPath));
        if (item.operation == FileOperation::trash && freesNothing(item, plan)) {
            fmt::print("  (frees nothing: the same file stays under another name)");
        }
        fmt::print("\n");
    }
    fmt::print("  {:>9}  in {}\n", formatSize(total),
               formatCount(static_cast<std::int64_t>(plan.items.size()), "file"));
    for (const RetainedFile& file : plan.retainedFiles)
        fmt::print("  stays      {}\n", printable(file.path));
    fmt::print("{}\n", plan.explanation);
}

void printForReview(const ActionPlan& plan, const std::string& code, const Context& context) {
    if (context.json) {
        context.print({{"plan", toJson(plan)}, {"reviewCode", code}});
        return;
    }
    printPlan(plan);
    fmt::print("Nothing was changed. To do this, repeat the command with: --confirm {}\n", code);
}

bool isConfirmedOnTerminal() {
    fmt::print("Type yes to do this: ");
    std::fflush(stdout);
    std::string answer;
    std::getline(std::cin, answer);
    return trimmed(answer) == "yes";
}

void execute(const ActionPlan& plan, FileActions& actions, Context& context) {
    const ActionReceipt receipt =
        actions.service().execute(plan, plan.id, actions.roots(), context.stop);
    if (context.json) {
        context.print({{"receipt", toJson(receipt)}});
    } else {
        for (const ActionEntry& entry : receipt.entries) {
            fmt::print("{}\n  is now {}\n", printable(entry.originalPath),
                       printable(entry.currentPath));
        }
        if (!receipt.entries.empty()) {
            fmt::print("To take this back: tovictl undo {}\n", receipt.id.string());
        }
    }
    if (!receipt.error) return;
    fmt::print(stderr, "{}\n", printable(*receipt.error));
    context.exitCode = receipt.entries.empty() ? ExitCode::failed : ExitCode::needsAttention;
}

} // namespace

FileActions::FileActions(const Context& context)
    : trash_(platform::dataHome(), Date::now),
      roots_(context.openIndexForReading()->roots()),
      service_(context.dataDirectory + "/actions.json",
               {trash_, move_, bookmarks_, availability_, Date::now}) {}

void addConfirmation(CLI::App& command, std::string& code) {
    command.add_option("--confirm", code, "The review code that this command printed before")
        ->type_name("CODE");
}

void reviewAndExecute(const ActionPlan& plan, const std::string& confirmation, FileActions& actions,
                      Context& context) {
    const std::string code = reviewCode(plan);
    if (confirmation == code) {
        execute(plan, actions, context);
        return;
    }
    if (confirmation.empty() && !context.json && isTerminal(STDIN_FILENO) &&
        isTerminal(STDOUT_FILENO)) {
        printPlan(plan);
        if (isConfirmedOnTerminal()) {
            execute(plan, actions, context);
        } else {
            fmt::print("Nothing was changed.\n");
        }
        return;
    }
    if (!confirmation.empty()) {
        fmt::print(stderr, "This review code belongs to another plan. Review the plan again.\n");
    }
    printForReview(plan, code, context);
    context.exitCode = ExitCode::needsAttention;
}

void printReceipt(const ActionReceipt& receipt) {
    std::size_t restored = 0;
    for (const ActionEntry& entry : receipt.entries)
        restored += entry.restored ? 1 : 0;
    fmt::print("{}  {}  {}", receipt.id.string(), formatDate(receipt.date),
               bold(printable(receipt.title)));
    fmt::print("  {} done", receipt.entries.size());
    if (restored > 0) fmt::print(", {} restored", restored);
    fmt::print("\n");
    if (receipt.error) fmt::print("  {}\n", printable(*receipt.error));
}

void printRestored(const ActionReceipt& receipt) {
    for (const ActionEntry& entry : receipt.entries) {
        fmt::print("{}  {}\n", entry.restored ? "restored    " : "not restored",
                   printable(entry.originalPath));
    }
}

} // namespace tovi::cli
