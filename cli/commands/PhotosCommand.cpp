#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/FileActions.h"
#include "cli/Format.h"
#include "cli/Json.h"
#include "cli/ProgressLine.h"
#include "core/photos/SimilarPhotoScanner.h"
#include "decoder/client/DecoderPool.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

struct PhotosArguments {
    std::string folder;
    SimilarPhotoOptions options;
    bool trash = false;
    std::string confirmation;
};

/// The folders to look in: all that are connected, or the one that is named.
std::vector<std::string> chooseRoots(const PhotosArguments& arguments, IndexStore& store) {
    std::vector<std::string> roots = store.roots();
    if (arguments.folder.empty()) return roots;
    const std::string folder = absolutePath(arguments.folder);
    const bool isConnected = std::ranges::any_of(
        roots, [&](const std::string& root) { return isSameOrBelow(folder, root); });
    if (!isConnected)
        throw std::runtime_error("This folder is not in the index. Connect it with: "
                                 "tovictl index " +
                                 folder);
    return {folder};
}

std::vector<FileRecord> imagesIn(IndexStore& store, const std::stop_token& stop) {
    constexpr std::int64_t page = 100'000;
    SearchQuery images;
    images.kind = FileKind::image;
    std::vector<FileRecord> files;
    for (bool isLast = false; !isLast;) {
        std::vector<FileRecord> found =
            store.search(images, page, static_cast<std::int64_t>(files.size()),
                         IndexStore::Content::leftOut, stop);
        isLast = found.size() < static_cast<std::size_t>(page);
        std::ranges::move(found, std::back_inserter(files));
    }
    return files;
}

SimilarPhotoReport check(const PhotosArguments& arguments, const Context& context) {
    const auto store = context.openIndexForReading();
    const std::vector<std::string> roots = chooseRoots(arguments, *store);
    const std::vector<FileRecord> files = imagesIn(*store, context.stop);
    decoder::DecoderPool decoders({.program = decoderPath()});
    PhotoPrintCache cache;
    std::optional<ProgressLine> line;
    const auto show = [&](const SimilarPhotoProgress& progress) {
        if (!line) line.emplace(progress.total, "photos", !context.json);
        line->show(progress.completed, progress.phase);
    };
    return similarPhotos(files, roots, arguments.options, show, decoders,
                         platform::SystemAvailability(), cache, context.stop);
}

Json toJson(const SimilarPhotoGroup& group) {
    Json files = Json::array();
    for (std::size_t at = 0; at < group.files.size(); ++at) {
        Json file = cli::toJson(group.files[at]);
        file["width"] = group.traits[at].width;
        file["height"] = group.traits[at].height;
        file["sharpness"] = group.traits[at].sharpness;
        files.push_back(std::move(file));
    }
    const auto keeper = group.keeper();
    return {{"files", std::move(files)},
            {"keep", keeper ? Json(group.files[*keeper].path) : Json(nullptr)},
            {"looksLikeText", group.looksLikeText()},
            {"potentialBytes", group.potentialBytes()}};
}

void printJson(const SimilarPhotoReport& report, const Context& context) {
    Json groups = Json::array();
    for (const SimilarPhotoGroup& group : report.groups)
        groups.push_back(toJson(group));
    context.print({{"groups", std::move(groups)},
                   {"considered", report.considered},
                   {"analyzed", report.analyzed},
                   {"skipped", report.skipped},
                   {"comparisons", report.comparisons},
                   {"limited", report.limited}});
}

void print(const SimilarPhotoReport& report) {
    std::int64_t potential = 0;
    for (const SimilarPhotoGroup& group : report.groups) {
        potential += group.potentialBytes();
        fmt::print("{}, perhaps {} to free\n",
                   bold(formatCount(static_cast<std::int64_t>(group.files.size()), "photo")),
                   formatSize(group.potentialBytes()));
        if (group.looksLikeText())
            fmt::print("  These look like pages of text, which may say different things: compare "
                       "them before you decide.\n");
        for (std::size_t at = 0; at < group.files.size(); ++at) {
            const PhotoTraits& traits = group.traits[at];
            fmt::print("  {}  {:>9}  {:>11}  {}\n", at == group.keeper() ? "keep" : "    ",
                       formatSize(group.files[at].size),
                       fmt::format("{} x {}", traits.width, traits.height),
                       printable(group.files[at].path));
        }
    }
    if (report.groups.empty()) {
        fmt::print("No look-alikes found in this check\n");
    } else {
        fmt::print("{}, perhaps {} to free. Similar photos can contain different details. File "
                   "sizes shown here aren't a promise of freed disk space.\n",
                   formatCount(static_cast<std::int64_t>(report.groups.size()), "group"),
                   formatSize(potential));
    }
}

void trashAllButKept(const SimilarPhotoReport& report, const std::string& confirmation,
                     Context& context) {
    CopiesToTrash copies;
    std::int64_t pages = 0;
    for (const SimilarPhotoGroup& group : report.groups) {
        const auto keeper = group.keeper();
        if (!keeper) ++pages;
        for (std::size_t at = 0; at < group.files.size(); ++at) {
            if (keeper && at != *keeper) copies.add(group.files[at]);
        }
    }
    if (!context.json && !report.groups.empty()) print(report);
    if (pages > 0)
        fmt::print(stderr,
                   "{} of pages of text stay whole; move what you do not need with: "
                   "tovictl trash FILE...\n",
                   formatCount(pages, "group"));
    reviewAndExecute(copies, "photo", confirmation, context);
}

void photos(const PhotosArguments& arguments, Context& context) {
    const SimilarPhotoReport report = check(arguments, context);
    if (arguments.trash) {
        trashAllButKept(report, arguments.confirmation, context);
    } else if (context.json) {
        printJson(report, context);
    } else {
        print(report);
    }
    if (report.limited)
        fmt::print(stderr, "This comparison reached its limit. Choose a smaller folder to check "
                           "more photos.\n");
    if (report.skipped > 0)
        fmt::print(stderr, "{} could not be read or changed since the folder was indexed.\n",
                   formatCount(report.skipped, "photo"));
    if ((report.limited || report.skipped > 0) && context.exitCode == ExitCode::done)
        context.exitCode = ExitCode::needsAttention;
}

} // namespace

void addPhotosCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand(
        "photos", "Find photos that look alike, and move all but the best to the Trash");
    const auto arguments = std::make_shared<PhotosArguments>();
    command->add_option("folder", arguments->folder, "Only photos in this folder");
    command
        ->add_option("--limit", arguments->options.maximumImages,
                     "Photos at the most, the newest first")
        ->check(CLI::Range(1, 5000))
        ->capture_default_str();
    command
        ->add_option("--comparisons", arguments->options.maximumComparisons,
                     "Comparisons of two photos at the most")
        ->check(CLI::Range(1, 250'000))
        ->capture_default_str();
    CLI::Option* trash = command->add_flag("--trash", arguments->trash,
                                           "Propose to move all but one photo of each group");
    addConfirmation(*command, arguments->confirmation);
    command->get_option("--confirm")->needs(trash);
    command->callback([arguments, &context] { photos(*arguments, context); });
}

} // namespace tovi::cli
