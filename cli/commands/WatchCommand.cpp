#include "app/lists/QtConversions.h"
#include "base/Cancelled.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/ModelSession.h"

#include <algorithm>
#include <cstdio>
#include <deque>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

using platform::FolderFreshness;

/// Prints what happens to the model, one line each, until the program is asked to stop.
class Watch {
  public:
    explicit Watch(const Context& context) : context_(context) {}

    void run(double interval) {
        ModelSession session(context_,
                             ModelSession::Following{interval, [this](AppModel& m) { listen(m); }});
        if (session.model().folders()->roots().empty()) {
            throw std::runtime_error("No folder is connected yet. To connect one: tovictl folders "
                                     "add FOLDER");
        }
        for (;;) {
            session.waitUntil([this] { return !happened_.empty(); });
            for (const auto& print : std::exchange(happened_, {}))
                print(session.model());
            std::fflush(stdout);
        }
    }

  private:
    void listen(AppModel& model) {
        QObject::connect(model.scan(), &ScanModel::scanEnded, [this](bool hasCompleted) {
            happened_.emplace_back([=, this](AppModel& m) { printScan(m, hasCompleted); });
        });
        FoldersModel& folders = *model.folders();
        QObject::connect(&folders, &FoldersModel::freshnessChanged,
                         [this, &folders] { freshnessChanged(folders.freshness()); });
        Notices& notices = *model.notices();
        QObject::connect(&notices, &Notices::errorMessageChanged, [this, &notices] {
            const std::string error = fromQt(notices.errorMessage());
            if (error.empty()) return;
            happened_.emplace_back([error](AppModel& m) {
                fmt::print(stderr, "{}\n", printable(error));
                m.notices()->dismissError(); // so that the same one is heard of again
            });
        });
    }

    void printScan(AppModel& model, bool hasCompleted) const {
        const std::int64_t files = model.index()->reader.count();
        if (!context_.json) {
            fmt::print("{}  {}  {}\n", formatDate(Date::now()), formatCount(files, "file"),
                       printable(fromQt(model.notices()->statusMessage())));
            return;
        }
        Json issues = Json::array();
        for (const QString& issue : model.scan()->scanIssues())
            issues.push_back(fromQt(issue));
        printLine({{"event", "scan"},
                   {"date", iso8601(Date::now())},
                   {"completed", hasCompleted},
                   {"files", files},
                   {"issues", std::move(issues)}});
    }

    void freshnessChanged(const std::vector<FolderFreshness>& folders) {
        for (const FolderFreshness& folder : folders) {
            if (std::find(known_.begin(), known_.end(), folder) != known_.end()) continue;
            happened_.emplace_back([this, folder](AppModel&) { printFreshness(folder); });
        }
        known_ = folders;
    }

    void printFreshness(const FolderFreshness& folder) const {
        if (context_.json) {
            return printLine({{"event", "freshness"},
                              {"date", iso8601(folder.since)},
                              {"root", folder.root},
                              {"state", nameOf(folder.state)},
                              {"reason", folder.reason}});
        }
        fmt::print("{}  {}  {}\n", formatDate(folder.since), printable(folder.root),
                   folder.reason.empty() ? "Changes are noticed at once." : folder.reason);
    }

    static void printLine(const Json& event) {
        fmt::print("{}\n", event.dump(-1, ' ', false, Json::error_handler_t::replace));
    }

    const Context& context_;
    std::deque<std::function<void(AppModel&)>> happened_;
    std::vector<FolderFreshness> known_;
};

} // namespace

void addWatchCommand(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand(
        "watch", "Bring the index in line with the connected folders and keep it so, until Ctrl-C "
                 "or a termination signal, which end it with 0");
    const auto interval = std::make_shared<std::uint32_t>(15);
    command->add_option("--interval", *interval, "Seconds between the starts of two scans")
        ->capture_default_str();
    command->callback([interval, &context] {
        try {
            Watch(context).run(*interval);
        } catch (const Cancelled&) {
            context.exitCode = ExitCode::done;
        }
    });
}

} // namespace tovi::cli
