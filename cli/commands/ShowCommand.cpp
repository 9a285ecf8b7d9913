#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/Json.h"

#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

/// The record of a path, which the index holds with links resolved.
FileRecord recordOf(const std::string& path, const Context& context) {
    const auto store = context.openIndexForReading();
    const std::string absolute = absolutePath(path);
    if (auto record = store->record(absolute)) return *record;
    std::error_code missing;
    const auto resolved = std::filesystem::canonical(absolute, missing);
    if (!missing) {
        if (auto record = store->record(resolved.string())) return *record;
    }
    throw std::runtime_error("This file is not in the index: " + absolute);
}

void show(const std::string& path, const Context& context) {
    const FileRecord record = recordOf(path, context);
    if (context.json) {
        Json json = toJson(record);
        json["content"] = record.content;
        context.print(json);
        return;
    }
    const auto line = [](const char* label, const std::string& value) {
        fmt::print("{:<11} {}\n", label, printable(value));
    };
    line("Path", record.path);
    line("Kind", std::string(title(record.kind)));
    line("Size", formatSize(record.size));
    line("Created", formatDate(record.createdAt));
    line("Modified", formatDate(record.modifiedAt));
    line("Indexed", formatDate(record.indexedAt));
    if (record.sourceURL) line("Source", *record.sourceURL);
    if (record.downloadedAt) line("Downloaded", formatDate(*record.downloadedAt));
    line("Folder", record.rootPath);
    line("Content", record.contentStatus);
    if (record.content.empty()) return;
    fmt::print("\n");
    std::string_view text = record.content;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        fmt::print("{}\n", printable(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

} // namespace

void addShowCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand("show", "Print what the index holds of one file");
    const auto path = std::make_shared<std::string>();
    command->add_option("path", *path, "The file")->required();
    command->callback([path, &context] { show(*path, context); });
}

} // namespace tovi::cli
