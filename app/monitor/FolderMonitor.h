#pragma once

#include "app/background/Background.h"
#include "app/monitor/FolderChanges.h"
#include "app/monitor/FolderListener.h"

#include <QObject>
#include <thread>

namespace tovi {

/// The name of the thread that listens; the system keeps its first 15 bytes.
inline constexpr const char* folderMonitorLabel = "app.ardeno.fsevents";

/// Watches the connected folders on a thread of its own. Made, used and destroyed on the main
/// thread, which never waits for the disk; both handlers are called there. What was to be told of
/// folders that are watched no longer is dropped.
class FolderMonitor final : public FolderChanges {
  public:
    /// `handlers.freshness` hears of every change, also that no folder is watched any more.
    FolderMonitor(Executor& executor, std::unique_ptr<platform::FolderEvents> events,
                  FolderListener::Handlers handlers, FolderListener::Timing timing = {});
    ~FolderMonitor() override;

    void start(const std::vector<std::string>& paths) override;
    void stop() override { start({}); }

  private:
    struct Order {
        std::vector<std::string> paths;
        std::uint64_t generation = 0;
        std::stop_source superseded;
    };
    void listen(FolderListener::Timing timing);

    const std::unique_ptr<platform::FolderEvents> events_;
    QObject context_; // what is posted to the main thread asks whether it still lives
    std::uint64_t generation_ = 0;
    const LatestValue<std::uint64_t> changed_; // the generation that it is told by
    const LatestValue<std::vector<platform::FolderFreshness>> freshness_;

    std::mutex mutex_; // guards what follows
    Order order_;
    bool isEnding_ = false;

    std::thread thread_;
};

/// Whether the index in this data directory enters no folder of that path, wherever it lies.
std::function<bool(const std::string& path)> unwatchedFolders(const std::string& dataDirectory);

/// Watches all folders that the index in this data directory enters. Throws `std::system_error`.
std::unique_ptr<FolderMonitor> monitorSystemFolders(Executor& executor,
                                                    const std::string& dataDirectory,
                                                    FolderListener::Handlers handlers);

} // namespace tovi
