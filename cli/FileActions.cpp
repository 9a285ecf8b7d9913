#include "cli/FileActions.h"

#include "app/model/FollowInIndex.h"
#include "base/Text.h"
#include "cli/Format.h"
#include "cli/Receipts.h"
#include "core/actions/ActionJson.h"
#include "platform/StandardLocations.h"

#include <fmt/format.h>

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

} // namespace

FileActions::FileActions(const Context& context)
    : trash_(platform::dataHome(), Date::now),
      roots_(context.connectedFolders()),
      service_(context.dataDirectory + "/actions.json",
               {trash_, move_, bookmarks_, availability_, Date::now}) {}

void reviewAndExecute(const ActionPlan& plan, const std::string& confirmation, FileActions& actions,
                      Context& context) {
    const auto execute = [&] {
        const ActionReceipt receipt =
            actions.service().execute(plan, plan.id, actions.roots(), context.stop);
        context.updateIndex([&](IndexStore& store) { followInIndex(receipt, store); });
        reportExecution(receipt, "tovictl undo", context);
    };
    reviewAndExecute({reviewCode(plan), toJson(plan), [&] { printPlan(plan); }, execute},
                     confirmation, context);
}

void reviewAndExecute(const CopiesToTrash& copies, const char* noun,
                      const std::string& confirmation, Context& context) {
    if (copies.files().empty()) {
        if (context.json)
            context.print({{"plan", nullptr}});
        else
            fmt::print("There is nothing to move.\n");
        return;
    }
    FileActions actions(context);
    const ActionPlan plan = actions.service().plan(copies.files(), FileOperation::trash, {},
                                                   actions.roots(), copies.keepers(), context.stop);
    if (copies.left() > 0) {
        fmt::print(stderr, "{} more for a further plan.\n",
                   formatCount(static_cast<std::int64_t>(copies.left()), noun));
    }
    reviewAndExecute(plan, confirmation, actions, context);
}

void reviewAndExecute(const FileArguments& arguments, FileOperation operation, Context& context) {
    FileActions actions(context);
    std::vector<FileRecord> files;
    for (const std::string& path : arguments.paths)
        files.emplace_back().path = absolutePath(path);
    const ActionPlan plan = actions.service().plan(files, operation, arguments.newName,
                                                   actions.roots(), {}, context.stop);
    reviewAndExecute(plan, arguments.confirmation, actions, context);
}

} // namespace tovi::cli
