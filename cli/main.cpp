#include "base/Cancelled.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Interruption.h"
#include "core/records/IntelligenceError.h"
#include "platform/Sandbox.h"
#include "platform/StandardLocations.h"

#include <clocale>

#include <fmt/core.h>

namespace {

using namespace tovi;
using namespace tovi::cli;

constexpr const char* exitCodes = R"(Exit codes:
  0    done
  1    failed; the reason is on standard error
  2    the command line is wrong
  3    done, but something needs your attention
  130  interrupted; what was done before is kept)";

constexpr const char* rebuildHint =
    "If the index is damaged, this moves it aside whole and scans anew:\n"
    "  tovictl index --rebuild FOLDER\n";

int run(int argc, char** argv, Context& context) {
    CLI::App app("Tovi keeps a private index of your folders and answers plain phrases.",
                 "tovictl");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(exitCodes);
    app.set_version_flag("--version", "tovictl " TOVI_VERSION, "Print the version and exit");
    app.add_option("--data-dir", context.dataDirectory,
                   "Where the index is kept (default: $XDG_DATA_HOME/Ardeno)");
    app.add_flag("--json", context.json, "Print JSON for programs");
    addCommands(app, context);
    app.parse_complete_callback([&] {
        context.dataDirectory = context.dataDirectory.empty() ? platform::dataHome() + "/Ardeno"
                                                              : absolutePath(context.dataDirectory);
    });
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitCode::done : ExitCode::wrongUsage;
    }
    return context.exitCode;
}

} // namespace

int main(int argc, char** argv) {
    // Wildcards match characters, not bytes, whatever the user's language.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const Interruption interruption;
    Context context;
    context.stop = interruption.token();
    try {
        platform::refuseInternetSockets();
        return run(argc, argv, context);
    } catch (const Cancelled&) {
        fmt::print(stderr, "Interrupted.\n");
        return ExitCode::interrupted;
    } catch (const IntelligenceError& error) {
        fmt::print(stderr, "{}\n", printable(error.what()));
        if (error.kind() == IntelligenceError::Kind::database)
            fmt::print(stderr, "{}", rebuildHint);
        return ExitCode::failed;
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", printable(error.what()));
        return ExitCode::failed;
    }
}
