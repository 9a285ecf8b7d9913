#include "cli/Commands.h"
#include "cli/Format.h"
#include "decoder/client/DecoderPool.h"
#include "platform/Sandbox.h"

#include <filesystem>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

constexpr const char* withoutLandlock =
    "This kernel has no Landlock. The system-call filter alone keeps decoders from opening\n"
    "files. PDFs in Chinese, Japanese or Korean that bring no font tables are then read less "
    "well,\n"
    "and previews lack the letters of fonts that a PDF leaves out.";

/// tovi, which is installed beside this program.
std::string windowPath() {
    return std::filesystem::path(decoderPath()).replace_filename("tovi");
}

const char* yesOrNo(bool value) {
    return value ? "yes" : "NO";
}

const char* describe(std::optional<bool> isWindowFiltered) {
    return isWindowFiltered ? yesOrNo(*isWindowFiltered) : "not running";
}

void printText(bool socketsRefused, std::optional<bool> isWindowFiltered,
               const decoder::Confinement& decoder) {
    fmt::print("{}\n", bold("This program"));
    fmt::print("  {:34} {}\n", "Refused to make internet sockets", yesOrNo(socketsRefused));
    fmt::print("\n{}\n", bold("The window"));
    fmt::print("  {:34} {}\n", "System-call filter", describe(isWindowFiltered));
    fmt::print("\n{}\n", bold("The programs that read PDFs and pictures"));
    fmt::print("  {:34} {}\n", "System-call filter", yesOrNo(decoder.systemCallFilter));
    fmt::print("  {:34} {}\n", "Landlock",
               decoder.landlockVersion > 0 ? fmt::format("version {}", decoder.landlockVersion)
                                           : "MISSING");
    fmt::print("  {:34} {}\n", "Cannot gain privileges", yesOrNo(decoder.noNewPrivileges));
    fmt::print("  {:34} {} MB\n", "Memory at most", decoder.memoryBytes / (1024 * 1024));
    fmt::print("  {:34} {} s\n", "Processor time at most", decoder.cpuSeconds);
    fmt::print("  {:34} {}\n", "Open files at most", decoder.openFiles);
    fmt::print("  {:34} {}\n", "No core dumps", yesOrNo(decoder.coreBytes == 0));
    if (decoder.landlockVersion == 0) fmt::print("\n{}\n", withoutLandlock);
}

void printJson(bool socketsRefused, std::optional<bool> isWindowFiltered,
               const decoder::Confinement& decoder, const Context& context) {
    context.print({{"internetSocketsRefused", socketsRefused},
                   {"windowHasFilter", isWindowFiltered ? Json(*isWindowFiltered) : Json()},
                   {"decoder",
                    {{"systemCallFilter", decoder.systemCallFilter},
                     {"landlockVersion", decoder.landlockVersion},
                     {"noNewPrivileges", decoder.noNewPrivileges},
                     {"memoryBytes", decoder.memoryBytes},
                     {"cpuSeconds", decoder.cpuSeconds},
                     {"openFiles", decoder.openFiles},
                     {"coreBytes", decoder.coreBytes}}}});
}

void checkPrivacy(Context& context) {
    const bool socketsRefused = !platform::canMakeInternetSocket();
    const std::optional<bool> isWindowFiltered = platform::runsWithFilter(windowPath(), "tovi");
    const decoder::Confinement decoder =
        decoder::DecoderPool({.program = decoderPath()}).confinement(context.stop);
    const bool whole = socketsRefused && isWindowFiltered.value_or(true) &&
                       decoder.systemCallFilter && decoder.noNewPrivileges &&
                       decoder.landlockVersion > 0 && decoder.coreBytes == 0;
    if (!whole) context.exitCode = ExitCode::needsAttention;
    context.json ? printJson(socketsRefused, isWindowFiltered, decoder, context)
                 : printText(socketsRefused, isWindowFiltered, decoder);
}

} // namespace

void addPrivacyCommand(CLI::App& app, Context& context) {
    app.add_subcommand("privacy", "Check what is enforced on this machine, now")
        ->callback([&context] { checkPrivacy(context); });
}

} // namespace tovi::cli
