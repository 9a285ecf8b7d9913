#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/Json.h"
#include "core/search/QueryParser.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi::cli {
namespace {

struct SearchArguments {
    std::vector<std::string> words;
    std::int64_t limit = 50;
    std::int64_t offset = 0;
};

constexpr std::size_t widestName = 48; // characters

std::string padded(const std::string& text, std::size_t width) {
    const std::size_t length = countCharacters(text);
    if (length <= width) return text + std::string(width - length, ' ');
    return std::string(firstCharacters(text, width - 1)) + "…";
}

void printTable(const std::vector<FileRecord>& files) {
    std::size_t width = 0;
    for (const FileRecord& file : files) {
        width = std::max(width, countCharacters(printable(file.name)));
    }
    width = std::min(width, widestName);
    for (const FileRecord& file : files) {
        fmt::print("{}  {:<11}  {:>9}  {}  {}\n", bold(padded(printable(file.name), width)),
                   title(file.kind), formatSize(file.size), formatDate(file.modifiedAt),
                   dim(printable(file.path)));
    }
}

void search(const SearchArguments& arguments, const Context& context) {
    const std::string phrase = fmt::format("{}", fmt::join(arguments.words, " "));
    const SearchQuery query = QueryParser().parse(phrase, Date::now());
    const auto store = context.openIndexForReading();
    const std::vector<FileRecord> files = store->search(query, arguments.limit, arguments.offset,
                                                        IndexStore::Content::leftOut, context.stop);
    if (context.json) {
        Json found = Json::array();
        for (const FileRecord& file : files)
            found.push_back(toJson(file));
        context.print({{"query", toJson(query)}, {"files", std::move(found)}});
        return;
    }
    if (!query.chips.empty()) {
        fmt::print("{}\n", printable(fmt::format("{}", fmt::join(query.chips, " · "))));
    }
    if (files.empty()) {
        fmt::print("No files match.\n");
        return;
    }
    printTable(files);
    if (static_cast<std::int64_t>(files.size()) == arguments.limit) {
        fmt::print(stderr, "More with --offset {}.\n", arguments.offset + arguments.limit);
    }
}

} // namespace

void addSearchCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand(
        "search", "Find files by a phrase such as: pdfs from last week over 5 mb");
    const auto arguments = std::make_shared<SearchArguments>();
    command->add_option("phrase", arguments->words, "Words, kinds, dates, sizes, sources")
        ->required();
    command->add_option("--limit", arguments->limit, "Files at the most")
        ->check(CLI::Range(1, 100'000))
        ->capture_default_str();
    command->add_option("--offset", arguments->offset, "Files to pass over")
        ->check(CLI::NonNegativeNumber);
    command->callback([arguments, &context] { search(*arguments, context); });
}

} // namespace tovi::cli
