#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/FileActions.h"
#include "cli/Format.h"
#include "cli/Json.h"
#include "cli/ProgressLine.h"
#include "core/actions/ExactDuplicates.h"
#include "core/search/QueryParser.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

struct DuplicatesArguments {
    std::vector<std::string> words;
    bool trash = false;
    std::string keep;
    std::string confirmation;
};

std::vector<FileRecord> recordsMatching(const std::vector<std::string>& words,
                                        const Context& context) {
    constexpr std::int64_t page = 100'000;
    const SearchQuery query =
        words.empty() ? SearchQuery{}
                      : QueryParser().parse(fmt::format("{}", fmt::join(words, " ")), Date::now());
    const auto store = context.openIndexForReading();
    std::vector<FileRecord> files;
    for (bool isLast = false; !isLast;) {
        std::vector<FileRecord> found =
            store->search(query, page, static_cast<std::int64_t>(files.size()),
                          IndexStore::Content::leftOut, context.stop);
        isLast = found.size() < static_cast<std::size_t>(page);
        std::move(found.begin(), found.end(), std::back_inserter(files));
    }
    return files;
}

ExactDuplicates find(const std::vector<std::string>& words, const Context& context) {
    const std::vector<FileRecord> files = recordsMatching(words, context);
    std::optional<ProgressLine> line;
    const auto show = [&](std::size_t done, std::size_t total) {
        if (!line) line.emplace(static_cast<std::int64_t>(total), "files", !context.json);
        line->show(static_cast<std::int64_t>(done), "");
    };
    return exactDuplicates(files, platform::SystemAvailability(), show, context.stop);
}

void print(const ExactDuplicates& found, const Context& context) {
    if (context.json) {
        Json groups = Json::array();
        for (const DuplicateGroup& group : found.groups) {
            Json files = Json::array();
            for (const FileRecord& file : group.files)
                files.push_back(toJson(file));
            groups.push_back(
                {{"files", std::move(files)}, {"reclaimableBytes", group.reclaimableBytes}});
        }
        context.print({{"groups", std::move(groups)}});
        return;
    }
    std::int64_t reclaimable = 0;
    for (const DuplicateGroup& group : found.groups) {
        reclaimable += group.reclaimableBytes;
        fmt::print("{} each, {} reclaimable\n", bold(formatSize(group.files.front().size)),
                   formatSize(group.reclaimableBytes));
        for (const FileRecord& file : group.files)
            fmt::print("  {}\n", printable(file.path));
    }
    fmt::print("{}, {} reclaimable.\n",
               formatCount(static_cast<std::int64_t>(found.groups.size()), "group"),
               formatSize(reclaimable));
}

/// Which files of a group stay: the one by a rule, or all in the folder given instead.
std::vector<bool> kept(const std::vector<FileRecord>& files, const std::string& keep) {
    std::vector<bool> result(files.size(), false);
    if (const auto rule = keepRule(keep)) {
        result[keptBy(*rule, files)] = true;
        return result;
    }
    const std::string folder = absolutePath(keep);
    for (std::size_t i = 0; i < files.size(); ++i)
        result[i] = isSameOrBelow(files[i].path, folder);
    return result;
}

void trashAllButKept(const ExactDuplicates& found, const DuplicatesArguments& arguments,
                     Context& context) {
    CopiesToTrash copies;
    for (const DuplicateGroup& group : found.groups)
        copies.addGroup(group.files, kept(group.files, arguments.keep));
    reviewAndExecute(copies, "duplicate", arguments.confirmation, context);
}

void duplicates(const DuplicatesArguments& arguments, Context& context) {
    const ExactDuplicates found = find(arguments.words, context);
    if (arguments.trash) {
        trashAllButKept(found, arguments, context);
    } else {
        print(found, context);
    }
    if (found.unreadable == 0) return;
    fmt::print(stderr, "{} could not be read.\n",
               formatCount(static_cast<std::int64_t>(found.unreadable), "file"));
    if (context.exitCode == ExitCode::done) context.exitCode = ExitCode::needsAttention;
}

} // namespace

void addDuplicatesCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand(
        "duplicates", "Find files of equal content, and move all copies but one to the Trash");
    const auto arguments = std::make_shared<DuplicatesArguments>();
    command->add_option("phrase", arguments->words, "Only among the files that match");
    CLI::Option* trash =
        command->add_flag("--trash", arguments->trash, "Propose to move the other copies");
    CLI::Option* keep =
        command
            ->add_option("--keep", arguments->keep,
                         "Which copy stays: newest, oldest, shortest-path, or those in a folder")
            ->type_name("RULE");
    keep->needs(trash);
    trash->needs(keep);
    addConfirmation(*command, arguments->confirmation);
    command->get_option("--confirm")->needs(trash);
    command->callback([arguments, &context] { duplicates(*arguments, context); });
}

} // namespace tovi::cli
